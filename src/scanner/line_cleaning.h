#pragma once
// Normalising white space in one line, and removing comments from the line array.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

// Tabs become spaces, runs of spaces become one space, leading spaces go.
// A trailing space survives. Changes `line` in place and returns it.
std::u16string& CleanLine(std::u16string& line);
// As CleanLine, then recording in `present` the tracked units the cleaned line holds.
std::u16string& CleanLine(std::u16string& line, UnitSet& present);
// How many bytes after a line CleanAsciiLine and the loader may read, and ignore.
inline constexpr size_t kAsciiLinePadding = 16;
// As CleanLine, on a line of ASCII bytes, each one unit: decoding and cleaning in one
// pass. `line`'s old text is replaced. The kAsciiLinePadding bytes after `bytes` must
// be readable: a line's last bytes are read sixteen at a time.
void CleanAsciiLine(std::string_view bytes, std::u16string& line);

// A comment marker as bytes, when a search of a line's raw UTF-8 bytes finds it exactly
// where a search of the cleaned line would: every unit ASCII (so no byte of a longer
// sequence is mistaken for it) and none a blank (which cleaning turns or drops). Empty
// otherwise.
std::string MarkerBytes(std::u16string_view marker);

// Removes one-line and multi-line comments from one line after another, carrying an
// open multi-line comment from each line to the next. Knows nothing of string
// literals. A run-time error ends the removal: that line and every later one keep
// their comments.
class CommentStripper {
public:
    // `syntax` must outlive the stripper.
    explicit CommentStripper(const SyntaxTable& syntax);

    // Removes the comments of the next line. `units` holds at least the line's units,
    // so a line that cannot hold a marker is passed over unread.
    void StripLine(std::u16string& line, const UnitSet& units) {
        if (!stopped_ && !line.empty() && (inComment_ || MayOpen(units))) StripTrapped(line, units);
    }

    // The bytes of the marker that ends the open multi-line comment, when the lines
    // so far end inside one and the marker is plain ASCII without blanks: then a line
    // whose UTF-8 bytes do not hold these is emptied whole by StripLine, cleaned or
    // not. Empty otherwise.
    std::string_view OpenCommentEnd() const { return inComment_ && !stopped_ ? endBytes_ : std::string_view(); }
    // Likewise the one-line marker when the lines so far end outside a block comment:
    // a line whose UTF-8 bytes start with it after blanks is emptied whole by StripLine,
    // so it can be left empty uncleaned (see CleanAsciiLine).
    std::string_view OneLineStart() const { return !inComment_ && !stopped_ ? oneLineBytes_ : std::string_view(); }

private:
    bool MayOpen(const UnitSet& units) const {
        return (opens_ && units.MayHold(opening_)) || (ones_ && units.MayHold(oneLine_));
    }
    void StripTrapped(std::u16string& line, const UnitSet& units);
    void Strip(std::u16string& line, const UnitSet& units);

    const SyntaxTable& syntax_;
    const bool opens_, ones_;
    const UnitSet opening_, oneLine_, closing_;
    // The markers as a line's UTF-8 bytes hold them, empty where they cannot be told there.
    const std::string oneLineBytes_, endBytes_;
    bool inComment_ = false;
    bool stopped_ = false;
};

// A CommentStripper run over lines 1 to lineCount. `present`, when given, holds the
// units of each line (same indices as `lines`).
void RemoveComments(std::vector<std::u16string>& lines, int32_t lineCount, const SyntaxTable& syntax,
                    const std::vector<UnitSet>* present = nullptr);

}  // namespace kestrel
