#pragma once
// Companions of Trap() for steps that run with errors ignored, and for calls on an
// object that may be missing.
#include "errorlog/errorlog.h"

namespace kestrel {

// Runs one step whose run-time errors are ignored: an error ends the step, is not
// reported, and the caller continues with its next step.
template <class Body>
void IgnoreErrors(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
    }
}

// The object behind p; a missing object is the run-time error "Object required".
template <class Pointer>
auto& Required(const Pointer& p) {
    if (!p) throw RuntimeError(kErrObjectRequired, "Object required");
    return *p;
}

}  // namespace kestrel
