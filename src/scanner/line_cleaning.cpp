#include "scanner/line_cleaning.h"

#include <algorithm>

#include "errorlog/errorlog.h"
#include "scanner/splice_text.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

// One comment-removal run over a line whose comment flag is clear. Each marker is
// searched for once; after a block comment is cut out only the few characters around
// the cut can form a new marker. Returns true when the line ends inside an open
// multi-line comment.
bool StripComments(SpliceText& text, const SyntaxTable& syntax) {
    const std::u16string& mcs = syntax.MultiCommentStart;
    const std::u16string& mce = syntax.MultiCommentEnd;
    const std::u16string& olc = syntax.OneLineComment;
    constexpr size_t npos = SpliceText::npos;

    size_t fromMcs = 0;
    size_t o = olc.empty() ? npos : text.Find(olc, 0);  // the first one-line marker
    for (;;) {
        size_t s = mcs.empty() ? npos : text.Find(mcs, fromMcs);
        if (s == npos || (o != npos && o <= s)) {
            if (o != npos) text.Truncate(o);
            return false;
        }
        size_t e = text.Find(mce, s + 1);
        if (e == npos) {
            text.Truncate(s);
            return true;
        }
        size_t end = e + mce.size();
        text.Erase(s, end);
        fromMcs = SpliceText::JunctionStart(s, mcs.size());
        if (olc.empty()) continue;
        size_t fromOlc = SpliceText::JunctionStart(s, olc.size());
        if (o != npos && o < end) {
            o = text.Find(olc, fromOlc);  // the marker lay inside the comment
        } else {
            size_t formed = text.Find(olc, fromOlc, s);
            o = formed != npos ? formed : (o == npos ? npos : o - (end - s));
        }
    }
}

}  // namespace

namespace {

// One sweep, written without branches on the characters: a blank is kept only after
// something that is not a blank, so leading blanks and runs both go.
template <bool Collect>
std::u16string& Clean(std::u16string& line, UnitSet* present) {
    char16_t* text = line.data();
    const size_t n = line.size();
    size_t out = 0;
    bool afterBlank = true;
    // The set is gathered in registers: adding to it in memory unit by unit would
    // chain every step of the loop to the store before it.
    uint64_t low = 0, high = 0;
    bool other = false;
    for (size_t i = 0; i < n; ++i) {
        const char16_t c = text[i];
        const bool blank = c == u' ' || c == u'\t';
        const char16_t kept = blank ? u' ' : c;
        text[out] = kept;
        if constexpr (Collect) {
            const uint64_t bit = uint64_t{1} << (kept & 63);
            low |= kept < 64 ? bit : 0;
            high |= kept >= 64 && kept < 128 ? bit : 0;
            other |= kept >= 128;
        }
        out += !(blank && afterBlank);
        afterBlank = blank;
    }
    if constexpr (Collect) present->AddGathered(low, high, other);
    line.resize(out);
    return line;
}

}  // namespace

std::u16string& CleanLine(std::u16string& line) { return Clean<false>(line, nullptr); }

std::u16string& CleanLine(std::u16string& line, UnitSet& present) { return Clean<true>(line, &present); }

void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                    const std::vector<UnitSet>* present) {
    Trap(kModule, "Sub RemoveComments", [&] {
        const bool opens = !syntax.MultiCommentStart.empty(), ones = !syntax.OneLineComment.empty();
        bool inComment = false;
        for (int32_t i = 1; i <= lineCount; ++i) {
            std::u16string& line = lines.at(static_cast<size_t>(i));
            if (line.empty()) continue;
            if (present && !inComment) {
                const UnitSet& units = (*present)[static_cast<size_t>(i)];
                if (!(opens && units.MayHold(syntax.MultiCommentStart)) && !(ones && units.MayHold(syntax.OneLineComment)))
                    continue;  // no marker can start on this line
            }
            SpliceText text(line);
            if (inComment) {
                size_t e = text.Find(syntax.MultiCommentEnd, 0);
                if (e == SpliceText::npos) {
                    text.Truncate(0);
                } else {
                    text.Erase(0, e + syntax.MultiCommentEnd.size());
                    inComment = false;
                }
            }
            if (!inComment) inComment = StripComments(text, syntax);
            text.Finish();
        }
    });
}

}  // namespace kestrel
