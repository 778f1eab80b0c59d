#pragma once
// Letter case in the control: the trees order texts without regard to case (code unit
// by code unit after simple upper-casing, so "alpha" and "Alpha" sort together and
// "beta" follows both), and the project name is shown in lower case after its first
// character.
#include <string>
#include <string_view>

namespace kestrel {

// Negative, zero or positive as a sorts before, with or after b.
int CompareCaseBlind(std::u16string_view a, std::u16string_view b);
// Every code unit mapped to its simple lower-case form.
std::u16string LowerCase(std::u16string_view s);

}  // namespace kestrel
