#pragma once
// Substring searches whose cost stays linear in the searched text, also when the
// searched-for text is long (names cut from a hostile 10 MB line can be).
#include <cstddef>
#include <string_view>

namespace kestrel {

// First occurrence of needle in hay at or after index `from`; npos when absent.
size_t FindText(std::u16string_view hay, std::u16string_view needle, size_t from = 0);
// Last occurrence of needle in hay; npos when absent.
size_t FindLastText(std::u16string_view hay, std::u16string_view needle);

}  // namespace kestrel
