#include "control/memory/memory_timer.h"

namespace kestrel {

void MemoryTimer::SetInterval(int32_t milliseconds) {
    interval_ = milliseconds;
    elapsed_ = 0;
}

void MemoryTimer::SetEnabled(bool enabled) {
    if (enabled && !enabled_) elapsed_ = 0;
    enabled_ = enabled;
}

void MemoryTimer::Fire() {
    elapsed_ = 0;
    if (handler_) handler_();
}

int MemoryTimer::Advance(long long milliseconds) {
    int ticks = 0;
    // A timer with no interval never ticks, as on the host platforms.
    while (enabled_ && interval_ > 0 && milliseconds >= interval_ - elapsed_) {
        milliseconds -= interval_ - elapsed_;
        Fire();
        ++ticks;
    }
    if (enabled_) elapsed_ += milliseconds;
    return ticks;
}

long long MemoryTimer::Drain(long long maxTicks) {
    long long ticks = 0;
    while (enabled_ && interval_ > 0 && ticks < maxTicks) {
        Fire();
        ++ticks;
    }
    return ticks;
}

}  // namespace kestrel
