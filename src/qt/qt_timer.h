#pragma once
// The control's load timer on a QTimer: it ticks from the Qt event loop, on the
// user-interface thread, between the host's own work.
#include <QTimer>
#include <functional>

#include "control/platform/timer.h"

namespace kestrel::qt {

class QtTimer final : public PlatformTimer {
public:
    QtTimer();

    int32_t Interval() const override { return timer_.interval(); }
    void SetInterval(int32_t milliseconds) override;
    bool Enabled() const override { return timer_.isActive(); }
    void SetEnabled(bool enabled) override;
    void SetTickHandler(std::function<void()> handler) override { tick_ = std::move(handler); }

    QTimer& Timer() { return timer_; }

private:
    QTimer timer_;
    std::function<void()> tick_;
};

}  // namespace kestrel::qt
