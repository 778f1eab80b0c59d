#pragma once
// Substring searches over UTF-16 text. Every pass of the scanner looks for its
// delimiters and keywords in every line, so these run eight code units at a time where
// the processor allows it, and their cost stays linear in the searched text also when
// the searched-for text is long (names cut from a hostile 10 MB line can be).
#include <cstddef>
#include <string_view>

namespace kestrel {

// First occurrence of needle in hay at or after index `from`; npos when absent. An
// empty needle is found at `from` when `from` lies within the text.
size_t FindText(std::u16string_view hay, std::u16string_view needle, size_t from = 0);
// Where the earlier of two texts first occurs at or after `from`, and whether that is
// `second` (`first` when both start there). An empty text is never found.
struct EarlierFound {
    size_t at;  // npos when neither occurs
    bool second;
};
EarlierFound FindEarlierOf(std::u16string_view hay, std::u16string_view first, std::u16string_view second,
                           size_t from = 0);
// First occurrence of one code unit at or after `from`; npos when absent.
size_t FindUnit(std::u16string_view hay, char16_t unit, size_t from = 0);
// Last occurrence of one code unit; npos when absent.
size_t FindLastUnit(std::u16string_view hay, char16_t unit);
// Last occurrence of needle in hay; npos when absent.
size_t FindLastText(std::u16string_view hay, std::u16string_view needle);

}  // namespace kestrel
