#pragma once
// Text helpers shared by every subsystem. All texts are UTF-16 code units
// (std::u16string); positions count code units.
#include <cstring>
#include <string>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

// The simple upper-case mapping of a code unit above 127, from a table built once.
char16_t UpperUnitFromTable(char16_t c);

// Simple upper-case mapping of one UTF-16 code unit (surrogates map to themselves).
// Keys are built unit by unit, so the ASCII case stays inline.
inline char16_t UpperUnit(char16_t c) {
    if (c < 128) return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
    return UpperUnitFromTable(c);
}
#if defined(__SSE2__)
// Eight units mapped through UpperUnit at once, by comparisons, when all of them are
// ASCII; otherwise answers false and leaves them for UpperUnit one by one.
inline bool UpperAsciiEight(__m128i& units) {
    const __m128i beyondAscii = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(beyondAscii, _mm_setzero_si128())) != 0xFFFF) return false;
    const __m128i lower =
        _mm_and_si128(_mm_cmpgt_epi16(units, _mm_set1_epi16(u'a' - 1)), _mm_cmplt_epi16(units, _mm_set1_epi16(u'z' + 1)));
    units = _mm_sub_epi16(units, _mm_and_si128(lower, _mm_set1_epi16(0x20)));
    return true;
}
#endif
// Every code unit mapped through UpperUnit. Collection keys are compared in this form.
std::u16string UpperCase(std::u16string_view s);
// Removes leading and trailing spaces (code 32) only; tabs and other blanks stay.
std::u16string TrimSpaces(std::u16string_view s);
// The same, as a view into s.
std::u16string_view TrimmedView(std::u16string_view s);

// Whether two texts hold the same units. The standard library compares UTF-16 texts one
// unit at a time; the names and parameter lists compared for every declaration are
// long enough for a block comparison to pay. An empty view may have no storage at all,
// and memcmp must not be handed a null pointer even for no bytes.
inline bool SameText(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

// Whether a three-byte sequence of a surrogate's value is text. Source files hold UTF-8,
// where it is not; texts that kestrel wrote itself may hold a lone surrogate, written
// as its own three-byte sequence by ToUtf8, and must read back as they were.
enum class EncodedSurrogates { Invalid, Accepted };

// UTF-8 in, UTF-16 out. Validated strictly: overlong forms, encoded surrogates and
// values above U+10FFFF are invalid; every byte that is not part of a valid sequence
// becomes the code point of the byte's value.
std::u16string FromUtf8(std::string_view bytes);
// As FromUtf8, appending to `out`.
void AppendUtf8(std::u16string& out, std::string_view bytes,
                EncodedSurrogates surrogates = EncodedSurrogates::Invalid);
// UTF-16 out as UTF-8: a valid surrogate pair becomes one four-byte character, a lone
// surrogate is written as its own three-byte sequence.
std::string ToUtf8(std::u16string_view text);
// As ToUtf8, into `to`, with whole characters only while they fit in `limit` bytes;
// answers how many bytes it wrote.
size_t EncodeUtf8(std::u16string_view text, char* to, size_t limit);

// Decimal form of a number, as UTF-16.
std::u16string ToText(long long n);

}  // namespace kestrel
