#include "common/text.h"

#include <array>
#include <clocale>
#include <cwctype>
#include <locale.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel {

namespace {

// The C.UTF-8 locale carries the full simple case mapping; it is built into glibc,
// so no locale package is needed. The table is filled once, on first use.
struct UpperTable {
    std::array<char16_t, 0x10000> map{};
    UpperTable() {
        locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
        for (unsigned c = 0; c < 0x10000; ++c) {
            char16_t up = static_cast<char16_t>(c);
            bool surrogate = c >= 0xD800 && c <= 0xDFFF;
            if (!surrogate) {
                wint_t u = loc ? towupper_l(static_cast<wint_t>(c), loc)
                               : (c < 128 ? static_cast<wint_t>(std::towupper(static_cast<wint_t>(c))) : c);
                if (u < 0x10000 && !(u >= 0xD800 && u <= 0xDFFF)) up = static_cast<char16_t>(u);
            }
            map[c] = up;
        }
        if (loc) freelocale(loc);
    }
};

const UpperTable& Table() {
    static const UpperTable table;
    return table;
}

}  // namespace

char16_t UpperUnitFromTable(char16_t c) { return Table().map[c]; }

std::u16string UpperCase(std::u16string_view s) {
    std::u16string out(s);
    char16_t* const units = out.data();
    const size_t n = out.size();
    size_t i = 0;
#if defined(__SSE2__)
    // Keys are mostly ASCII: eight units at a time, and the last few as part of a step
    // that overlaps the one before (UpperUnit keeps what it gives).
    const auto eight = [&](size_t at) {
        __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + at));
        if (!UpperAsciiEight(chunk)) {
            for (size_t k = at; k < at + 8; ++k) units[k] = UpperUnit(units[k]);
            return;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(units + at), chunk);
    };
    if (n >= 8) {
        for (; i + 8 <= n; i += 8) eight(i);
        if (i < n) eight(n - 8);
        return out;
    }
#endif
    for (; i < n; ++i) units[i] = UpperUnit(units[i]);
    return out;
}

std::u16string_view TrimmedView(std::u16string_view s) {
    size_t b = 0, e = s.size();
    while (b < e && s[b] == u' ') ++b;
    while (e > b && s[e - 1] == u' ') --e;
    return s.substr(b, e - b);
}

std::u16string TrimSpaces(std::u16string_view s) { return std::u16string(TrimmedView(s)); }

namespace {

// Length of the valid UTF-8 sequence starting at s[i] and its value, or 0 when the
// byte at i does not start a valid sequence.
size_t DecodeOne(std::string_view s, size_t i, char32_t& cp, EncodedSurrogates surrogates) {
    auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
    unsigned char c = b(i);
    if (c < 0x80) { cp = c; return 1; }
    size_t len;
    char32_t min;
    if (c >= 0xC2 && c <= 0xDF) { len = 2; cp = c & 0x1F; min = 0x80; }
    else if (c >= 0xE0 && c <= 0xEF) { len = 3; cp = c & 0x0F; min = 0x800; }
    else if (c >= 0xF0 && c <= 0xF4) { len = 4; cp = c & 0x07; min = 0x10000; }
    else return 0;
    if (i + len > s.size()) return 0;
    for (size_t k = 1; k < len; ++k) {
        if ((b(i + k) & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (b(i + k) & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF) return 0;
    if (cp >= 0xD800 && cp <= 0xDFFF && surrogates == EncodedSurrogates::Invalid) return 0;
    return len;
}

}  // namespace

std::u16string FromUtf8(std::string_view bytes) {
    std::u16string out;
    AppendUtf8(out, bytes);
    return out;
}

void AppendUtf8(std::u16string& out, std::string_view bytes, EncodedSurrogates surrogates) {
    // Never more units than bytes: written in place, then cut to what was produced.
    const size_t start = out.size();
    out.resize(start + bytes.size());
    char16_t* o = out.data() + start;
    const unsigned char* in = reinterpret_cast<const unsigned char*>(bytes.data());
    const size_t n = bytes.size();
    size_t i = 0;
    while (i < n) {
#if defined(__SSE2__)
        // Plain ASCII runs are the common case in source code: sixteen bytes at a time.
        while (i + 16 <= n) {
            const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
            if (_mm_movemask_epi8(chunk) != 0) break;
            const __m128i zero = _mm_setzero_si128();
            _mm_storeu_si128(reinterpret_cast<__m128i*>(o), _mm_unpacklo_epi8(chunk, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(o + 8), _mm_unpackhi_epi8(chunk, zero));
            o += 16;
            i += 16;
        }
        if (i >= n) break;
        // A short ASCII tail is widened with the last sixteen bytes: those before it are
        // ASCII too, so each of them already stands as one unit just before `o`.
        if (n >= 16 && n - i < 16) {
            const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + n - 16));
            if (_mm_movemask_epi8(last) == 0) {
                const __m128i zero = _mm_setzero_si128();
                char16_t* at = o - (i - (n - 16));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(at), _mm_unpacklo_epi8(last, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(at + 8), _mm_unpackhi_epi8(last, zero));
                o = at + 16;
                break;
            }
        }
#endif
        unsigned char c = in[i];
        if (c < 0x80) {
            *o++ = c;
            ++i;
            continue;
        }
        char32_t cp;
        size_t len = DecodeOne(bytes, i, cp, surrogates);
        if (len == 0) {
            *o++ = c;
            ++i;
        } else if (cp < 0x10000) {
            *o++ = static_cast<char16_t>(cp);
            i += len;
        } else {
            cp -= 0x10000;
            *o++ = static_cast<char16_t>(0xD800 + (cp >> 10));
            *o++ = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
            i += len;
        }
    }
    out.resize(static_cast<size_t>(o - out.data()));
}

size_t EncodeUtf8(std::u16string_view text, char* to, size_t limit) {
    size_t written = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t cp = text[i];
        size_t units = 1;
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            units = 2;
        }
        const size_t length = cp < 0x80 ? 1 : cp < 0x800 ? 2 : cp < 0x10000 ? 3 : 4;
        if (written + length > limit) break;
        char* o = to + written;
        switch (length) {
            case 1: o[0] = static_cast<char>(cp); break;
            case 2:
                o[0] = static_cast<char>(0xC0 | (cp >> 6));
                o[1] = static_cast<char>(0x80 | (cp & 0x3F));
                break;
            case 3:
                o[0] = static_cast<char>(0xE0 | (cp >> 12));
                o[1] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
                o[2] = static_cast<char>(0x80 | (cp & 0x3F));
                break;
            default:
                o[0] = static_cast<char>(0xF0 | (cp >> 18));
                o[1] = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
                o[2] = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
                o[3] = static_cast<char>(0x80 | (cp & 0x3F));
        }
        written += length;
        i += units - 1;
    }
    return written;
}

std::string ToUtf8(std::u16string_view text) {
    // Three bytes a unit at most: a pair of units makes one four-byte character.
    std::string out(3 * text.size(), '\0');
    out.resize(EncodeUtf8(text, out.data(), out.size()));
    return out;
}

std::u16string ToText(long long n) {
    std::string s = std::to_string(n);
    return std::u16string(s.begin(), s.end());
}

}  // namespace kestrel
