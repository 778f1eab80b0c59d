#include "scanner/qualified_name.h"

namespace kestrel {

const std::u16string& QualifiedName(std::u16string_view className, std::u16string_view prefix,
                                    std::u16string_view name) {
    thread_local std::u16string fullName;
    fullName.assign(className).append(u"::").append(prefix).append(name);
    return fullName;
}

}  // namespace kestrel
