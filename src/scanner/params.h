#pragma once
// Collects the parameter text of a procedure declaration: from the first "(" of the
// statement to its matching ")", continued over the following lines when the
// statement does not close it.
#include <cstdint>
#include <string>
#include <vector>

#include "scanner/rword.h"

namespace kestrel {

class ParamCollector {
public:
    // `lines` is the scanner's line array (entry 0 unused); entries past lineCount
    // count as empty lines.
    ParamCollector(const std::vector<std::u16string>& lines, int32_t lineCount) : lines_(lines), lineCount_(lineCount) {}

    // "(" + parameters + ")", "" when the statement holds no "(", and "()" when the
    // list never closes before the end of the text.
    std::u16string CollectParams(const RWord& wrd);

private:
    const std::u16string& LineAt(int32_t n) const;
    // The first line at or after n that holds a parenthesis (lineCount + 1 when none).
    int32_t NextParenLine(int32_t n);

    const std::vector<std::u16string>& lines_;
    int32_t lineCount_;
    std::vector<int32_t> nextParen_;  // built on first use
};

}  // namespace kestrel
