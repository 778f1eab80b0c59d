#pragma once
// The longest event-loop step of a Qt program while it works, for the benchmarks.
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <ctime>
#include <utility>

namespace kestrel::bench {

// A step's time on the clock, and the processor time this thread spent in it.
struct StepTime {
    double wall = 0, processor = 0;
};

inline double ThreadProcessorMs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// The longest time the event loop went without getting back to a 1 ms heartbeat: the
// longest step of work (ours, the control's timer, painting) between two of its turns.
// On a virtual machine whose host takes the processor away now and then, such a gap
// also holds the time the process was not running at all, so the processor time
// spent in the longest one is kept beside it.
class StepMeter {
public:
    StepMeter() {
        heartbeat_.setTimerType(Qt::PreciseTimer);
        heartbeat_.setInterval(1);
        QObject::connect(&heartbeat_, &QTimer::timeout, [this] {
            const double processor = ThreadProcessorMs();
            if (clock_.isValid()) {
                const StepTime step{clock_.nsecsElapsed() / 1e6, processor - processorAt_};
                if (step.wall > longest_.wall) longest_ = step;
            }
            clock_.start();
            processorAt_ = processor;
        });
        heartbeat_.start();
    }
    StepTime TakeLongest() {
        clock_.invalidate();
        return std::exchange(longest_, StepTime{});
    }

private:
    QTimer heartbeat_;
    QElapsedTimer clock_;
    double processorAt_ = 0;
    StepTime longest_;
};

}  // namespace kestrel::bench
