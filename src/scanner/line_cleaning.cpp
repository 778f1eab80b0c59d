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

std::u16string& CleanLine(std::u16string& line) {
    size_t out = 0;
    for (char16_t c : line) {
        if (c == u'\t') c = u' ';
        if (c == u' ' && (out == 0 || line[out - 1] == u' ')) continue;
        line[out++] = c;
    }
    line.resize(out);
    return line;
}

void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax) {
    Trap(kModule, "Sub RemoveComments", [&] {
        bool inComment = false;
        for (int32_t i = 1; i <= lineCount; ++i) {
            std::u16string& line = lines.at(static_cast<size_t>(i));
            if (line.empty()) continue;
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
