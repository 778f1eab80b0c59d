#pragma once
// Text order of the trees: code unit by code unit after simple upper-casing, so that
// "alpha" and "Alpha" sort together and "beta" follows both.
#include <string_view>

namespace kestrel {

// Negative, zero or positive as a sorts before, with or after b.
int CompareCaseBlind(std::u16string_view a, std::u16string_view b);

}  // namespace kestrel
