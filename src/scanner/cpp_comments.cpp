#include "scanner/cpp_comments.h"

#include <string_view>

#include "errorlog/errorlog.h"
#include "scanner/line_cleaning.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";
constexpr size_t npos = std::u16string::npos;

bool IsWordUnit(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
}

// The two tests below look at what was kept before the quote (`kept`), which ends with
// the code right before it.

// A quote inside a number is a digit separator (1'000), not a character literal.
bool IsDigitSeparator(std::u16string_view kept) {
    size_t k = kept.size();
    while (k > 0 && (IsWordUnit(kept[k - 1]) || kept[k - 1] == u'.')) --k;
    return k < kept.size() && kept[k] >= u'0' && kept[k] <= u'9';
}

// The prefix of a raw string ends in R right before the quote: R"( u8R"( LR"x(.
bool OpensRawString(std::u16string_view kept) {
    if (kept.empty() || kept.back() != u'R') return false;
    size_t k = kept.size() - 1;
    while (k > 0 && IsWordUnit(kept[k - 1])) --k;
    const std::u16string_view prefix = kept.substr(k, kept.size() - 1 - k);
    return prefix.empty() || prefix == u"u8" || prefix == u"u" || prefix == u"U" || prefix == u"L";
}

// Where an ordinary literal opened at `open` closes (escapes skipped); npos when the
// line ends first.
size_t LiteralEnd(std::u16string_view text, size_t open) {
    const char16_t quote = text[open];
    for (size_t k = open + 1; k < text.size(); ++k) {
        if (text[k] == u'\\') ++k;
        else if (text[k] == quote) return k;
    }
    return npos;
}

}  // namespace

CppCommentStripper::CppCommentStripper(const SyntaxTable& syntax)
    : used_(!syntax.OneLineComment.empty() && !syntax.MultiCommentStart.empty() && !syntax.MultiCommentEnd.empty()),
      oneLine_(syntax.OneLineComment),
      open_(syntax.MultiCommentStart),
      close_(syntax.MultiCommentEnd),
      string_(syntax.StringDelim.empty() ? u'"' : syntax.StringDelim[0]),
      char_(syntax.CharDelim.empty() ? u'\'' : syntax.CharDelim[0]),
      oneLineBytes_(MarkerBytes(oneLine_)),
      endBytes_(MarkerBytes(close_)),
      openers_{UnitSet::Of(oneLine_.substr(0, 1)), UnitSet::Of(open_.substr(0, 1)),
               UnitSet::Of(std::u16string_view(&string_, 1)), UnitSet::Of(std::u16string_view(&char_, 1))} {}

void CppCommentStripper::StripTrapped(std::u16string& line) {
    if (used_ && !stopped_) stopped_ = !Trap(kModule, "Sub RemoveComments", [&] { Strip(line); });
}

// Works in place: what is kept is never longer than what was read, so the line
// is written over from its start as it is read.
void CppCommentStripper::Strip(std::u16string& line) {
    std::u16string_view text = line;
    size_t k = 0;
    size_t w = 0;
    if (!Resume(text, k)) {
        line.clear();
        return;
    }
    while (k < text.size()) {
        const char16_t c = text[k];
        if (!MayOpen(c)) {
            line[w++] = c;
            ++k;
            continue;
        }
        if (c == oneLine_[0] && text.substr(k, oneLine_.size()) == oneLine_) break;
        if (c == open_[0] && text.substr(k, open_.size()) == open_) {
            const size_t end = text.find(close_, k + open_.size());
            if (end == npos) {
                inComment_ = true;
                break;
            }
            k = end + close_.size();
            continue;
        }
        if (c == string_ && OpensRawString(std::u16string_view(line.data(), w))) {
            const size_t paren = text.find(u'(', k + 1);
            rawEnd_.assign(1, u')');
            rawEnd_.append(text.substr(k + 1, paren == npos ? 0 : paren - k - 1));
            rawEnd_.push_back(c);
            line[w++] = c;
            line[w++] = c;
            inRaw_ = true;
            k = paren == npos ? text.size() : paren + 1;
            if (!Resume(text, k)) break;
            continue;
        }
        if (c == string_ || (c == char_ && !IsDigitSeparator(std::u16string_view(line.data(), w)))) {
            const size_t end = LiteralEnd(text, k);
            if (end == npos) {
                while (k < text.size()) line[w++] = text[k++];
                break;
            }
            line[w++] = c;
            line[w++] = c;
            k = end + 1;
            continue;
        }
        line[w++] = c;
        ++k;
    }
    line.resize(w);
}

bool CppCommentStripper::Resume(std::u16string_view text, size_t& k) {
    if (inComment_) {
        const size_t end = text.find(close_, k);
        if (end == npos) return false;
        inComment_ = false;
        k = end + close_.size();
    }
    if (inRaw_) {
        const size_t end = text.find(rawEnd_, k);
        if (end == npos) return false;
        inRaw_ = false;
        k = end + rawEnd_.size();
    }
    return true;
}

void RemoveCppComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax) {
    CppCommentStripper stripper(syntax);
    // A line count past the array is an error of the pass, as one inside a line is.
    Trap(kModule, "Sub RemoveComments", [&] {
        for (int32_t i = 1; i <= lineCount; ++i) stripper.StripLine(lines.at(static_cast<size_t>(i)));
    });
}

}  // namespace kestrel
