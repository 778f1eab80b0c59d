#include "control/text_order.h"

#include <algorithm>

#include "common/text.h"

namespace kestrel {

int CompareCaseBlind(std::u16string_view a, std::u16string_view b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        const char16_t ua = UpperUnit(a[i]);
        const char16_t ub = UpperUnit(b[i]);
        if (ua != ub) return ua < ub ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

}  // namespace kestrel
