#include "qt/qt_timer.h"

namespace kestrel::qt {

QtTimer::QtTimer() {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
        if (tick_) tick_();
    });
}

void QtTimer::SetInterval(int32_t milliseconds) {
    // QTimer restarts a running period when its interval changes, as the control expects.
    timer_.setInterval(milliseconds);
}

void QtTimer::SetEnabled(bool enabled) {
    if (enabled) {
        timer_.start();
    } else {
        timer_.stop();
    }
}

}  // namespace kestrel::qt
