#pragma once
// The full name the analysers hand to the output: "Class::" + prefix + name.
#include <string>
#include <string_view>

namespace kestrel {

// Built in storage reused from one declaration to the next on this thread, so the
// text is valid until the next call there; the output copies what it keeps.
const std::u16string& QualifiedName(std::u16string_view className, std::u16string_view prefix,
                                    std::u16string_view name);

}  // namespace kestrel
