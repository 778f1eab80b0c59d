#include "control/text_order.h"

#include <algorithm>
#include <cwctype>
#include <locale.h>

#include "common/text.h"

namespace kestrel {

int CompareCaseBlind(std::u16string_view a, std::u16string_view b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        if (a[i] == b[i]) continue;  // most compared texts share a long prefix
        const char16_t ua = UpperUnit(a[i]);
        const char16_t ub = UpperUnit(b[i]);
        if (ua != ub) return ua < ub ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

std::u16string LowerCase(std::u16string_view s) {
    // C.UTF-8 is built into glibc and carries the full simple case mapping.
    static const locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    std::u16string out(s);
    for (char16_t& c : out) {
        if (c < 128) {
            if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
        } else if (loc && (c < 0xD800 || c > 0xDFFF)) {
            const wint_t lower = towlower_l(static_cast<wint_t>(c), loc);
            if (lower < 0x10000 && (lower < 0xD800 || lower > 0xDFFF)) c = static_cast<char16_t>(lower);
        }
    }
    return out;
}

}  // namespace kestrel
