#pragma once
// Comment removal for C++ that knows its literals: a comment marker inside a string,
// character or raw-string literal starts nothing. Literals are emptied on the way
// ("" and ''), so later passes meet neither their braces nor their semicolons.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

// Works on one line after another, carrying an open block comment or raw string from
// each line to the next; an unterminated ordinary literal ends with its line. Offers
// the reader the same shortcuts as the C family's CommentStripper. A run-time error
// ends the removal: that line and every later one keep their comments.
class CppCommentStripper {
public:
    // `syntax` must outlive the stripper.
    explicit CppCommentStripper(const SyntaxTable& syntax);

    // `units` holds at least the line's units: a line in code that holds no comment
    // marker and no quote is passed over unread.
    void StripLine(std::u16string& line, const UnitSet& units = UnitSet::Anything()) {
        if (inComment_ || inRaw_ || MayOpenIn(units)) StripTrapped(line);
    }
    // The bytes of the marker that ends the open block comment, when the lines so far
    // end inside one: a line whose UTF-8 bytes do not hold them is emptied whole.
    std::string_view OpenCommentEnd() const { return inComment_ && !stopped_ ? endBytes_ : std::string_view(); }
    // The one-line marker when the lines so far end in code: a line whose UTF-8 bytes
    // start with it after blanks is emptied whole.
    std::string_view OneLineStart() const {
        return !inComment_ && !inRaw_ && !stopped_ ? oneLineBytes_ : std::string_view();
    }

private:
    void StripTrapped(std::u16string& line);
    void Strip(std::u16string& line);
    bool MayOpenIn(const UnitSet& units) const {
        for (const UnitSet& opener : openers_) {
            if (units.MayHold(opener)) return true;
        }
        return false;
    }
    // Finishes a comment or raw string left open by earlier lines. False while the
    // line still lies inside it.
    bool Resume(std::u16string_view text, size_t& k);
    // Whether a comment or literal may start at c: most units are passed over on this.
    bool MayOpen(char16_t c) const { return c == oneLine_[0] || c == open_[0] || c == string_ || c == char_; }

    const bool used_;  // all three markers are there
    const std::u16string_view oneLine_, open_, close_;
    const char16_t string_, char_;
    const std::string oneLineBytes_, endBytes_;
    const UnitSet openers_[4];  // the first units of the markers and delimiters
    bool inComment_ = false;
    bool inRaw_ = false;
    bool stopped_ = false;
    std::u16string rawEnd_;  // )delimiter" of the open raw string
};

// A CppCommentStripper run over lines 1 to lineCount.
void RemoveCppComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax);

}  // namespace kestrel
