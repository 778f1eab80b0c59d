#pragma once
// A LineSource over lines held in memory, as an editor buffer would supply them. It
// remembers which lines were asked for.
#include <string>
#include <vector>

#include "scanner/scan_output.h"

namespace kestrel::test {

struct TextLines : LineSource {
    std::vector<std::u16string> lines;
    std::vector<int32_t> asked;
    TextLines(std::initializer_list<std::u16string> l) : lines(l) {}
    explicit TextLines(std::vector<std::u16string> l) : lines(std::move(l)) {}
    int32_t GetLineCount() override { return static_cast<int32_t>(lines.size()); }
    std::u16string Line(int32_t n) override {
        asked.push_back(n);
        return lines.at(static_cast<size_t>(n - 1));
    }
};

}  // namespace kestrel::test
