#pragma once
// A timer that ticks on the user-interface thread, between the host's calls.
#include <cstdint>
#include <functional>

namespace kestrel {

class PlatformTimer {
public:
    virtual ~PlatformTimer() = default;

    // Setting the interval restarts the period that is running.
    virtual int32_t Interval() const = 0;
    virtual void SetInterval(int32_t milliseconds) = 0;
    // Switching on starts a fresh period; switching off drops the one that was running.
    virtual bool Enabled() const = 0;
    virtual void SetEnabled(bool enabled) = 0;
    // Called once per elapsed interval while the timer is on.
    virtual void SetTickHandler(std::function<void()> handler) = 0;
};

}  // namespace kestrel
