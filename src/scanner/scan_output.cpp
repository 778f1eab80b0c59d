#include "scanner/scan_output.h"

namespace kestrel {

void ScanOutput::WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName,
                               int32_t line, int16_t scope, const std::u16string& text) {
    // Built in storage reused from one member to the next on this thread; the output
    // copies what it keeps.
    thread_local std::u16string fullName;
    fullName.assign(className).append(u"::").append(memberName);
    if (isFunction) WriteDeclare__(fullName, line, scope, text);
    else WriteVariable__(fullName, line, scope, text);
}

}  // namespace kestrel
