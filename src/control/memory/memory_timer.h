#pragma once
// A timer without a clock: time passes only when the owner says so. Tests advance it
// by so many milliseconds; the command-line program drains it.
#include "control/platform/timer.h"

namespace kestrel {

class MemoryTimer final : public PlatformTimer {
public:
    int32_t Interval() const override { return interval_; }
    void SetInterval(int32_t milliseconds) override;
    bool Enabled() const override { return enabled_; }
    void SetEnabled(bool enabled) override;
    void SetTickHandler(std::function<void()> handler) override { handler_ = std::move(handler); }

    // Lets the given time pass, ticking once for every interval that ends in it.
    // Returns the number of ticks.
    int Advance(long long milliseconds);
    // Ticks, one period after another, until the timer is switched off or the limit of
    // ticks is reached. Returns the number of ticks.
    long long Drain(long long maxTicks = 1'000'000'000);
    // Milliseconds left in the running period.
    long long Remaining() const { return interval_ - elapsed_; }

private:
    void Fire();

    int32_t interval_ = 0;
    bool enabled_ = false;
    long long elapsed_ = 0;
    std::function<void()> handler_;
};

}  // namespace kestrel
