#include "scanner/scan_ahead.h"

#include <algorithm>
#include <system_error>

namespace kestrel {

ScanAhead::ScanAhead(std::vector<ScanJob> jobs, unsigned threads)
    : jobs_(std::move(jobs)), done_(jobs_.size()) {
    // More workers than cores only wait on each other, and each holds a window's share
    // of finished scans.
    threads = std::clamp(threads, 1u, std::max(std::thread::hardware_concurrency(), 1u));
    window_ = 8 * threads + 16;
    workers_.reserve(threads);
    for (unsigned t = 0; t < threads; ++t) {
        try {
            workers_.emplace_back([this] { Work(); });
        } catch (const std::system_error&) {
            break;  // the system has no thread to spare: fewer workers do the same work
        }
    }
}

ScanAhead::~ScanAhead() {
    {
        std::lock_guard<std::mutex> hold(lock_);
        stopping_ = true;
    }
    changed_.notify_all();
    for (std::thread& w : workers_) w.join();
}

bool ScanAhead::AllTaken() {
    std::lock_guard<std::mutex> hold(lock_);
    return workers_.empty() || nextToTake_ == jobs_.size();
}

unsigned ScanAhead::UsefulThreads() {
    const unsigned cores = std::thread::hardware_concurrency();
    return cores > 1 ? cores : 0;
}

void ScanAhead::Work() {
    std::unique_lock<std::mutex> hold(lock_);
    for (;;) {
        changed_.wait(hold, [&] {
            return stopping_ || (nextToScan_ < jobs_.size() && nextToScan_ < nextToTake_ + window_);
        });
        if (stopping_) return;
        const size_t job = nextToScan_++;
        hold.unlock();
        auto scan = std::make_unique<RecordedScan>(jobs_[job].fileName, jobs_[job].fileType, jobs_[job].language);
        scan->Scan();
        hold.lock();
        // Kept unless the taker has passed it by; the job it waits for is the last passed.
        if (job + 1 >= nextToTake_) done_[job] = std::move(scan);
        changed_.notify_all();
    }
}

size_t ScanAhead::FindJob(const std::u16string& fileName, int32_t fileType, int16_t language) const {
    size_t job = nextToTake_;
    while (job < jobs_.size() &&
           (jobs_[job].fileName != fileName || jobs_[job].fileType != fileType || jobs_[job].language != language))
        ++job;
    return job;
}

bool ScanAhead::Ready(const std::u16string& fileName, int32_t fileType, int16_t language) {
    // Without a worker nothing is scanned ahead: the caller scans the file itself.
    if (workers_.empty()) return true;
    std::lock_guard<std::mutex> hold(lock_);
    const size_t job = FindJob(fileName, fileType, language);
    return job == jobs_.size() || done_[job] != nullptr;
}

std::unique_ptr<RecordedScan> ScanAhead::Take(const std::u16string& fileName, int32_t fileType, int16_t language) {
    if (workers_.empty()) return nullptr;
    std::unique_lock<std::mutex> hold(lock_);
    const size_t job = FindJob(fileName, fileType, language);
    if (job == jobs_.size()) return nullptr;
    for (size_t skipped = nextToTake_; skipped < job; ++skipped) done_[skipped].reset();
    nextToTake_ = job + 1;
    changed_.notify_all();  // the window moved on
    changed_.wait(hold, [&] { return done_[job] != nullptr; });
    return std::move(done_[job]);
}

}  // namespace kestrel
