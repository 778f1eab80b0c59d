#pragma once
// Scans a list of files on worker threads, a bounded distance ahead of the thread that
// takes the results in list order. The results are exactly what scanning each file on
// the taking thread would give (see RecordedScan), so only the time changes.
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "scanner/recorded_scan.h"

namespace kestrel {

struct ScanJob {
    std::u16string fileName;  // absolute, as the file record names it
    int32_t fileType;
    int16_t language;
};

class ScanAhead {
public:
    // `threads` workers, at least one and at most one per core, or as many of them as
    // the system lets start (none at all: every Take answers nullptr); jobs past the
    // window wait until the taker catches up, so that memory stays bounded however
    // long the list is.
    ScanAhead(std::vector<ScanJob> jobs, unsigned threads);
    ~ScanAhead();
    ScanAhead(const ScanAhead&) = delete;
    ScanAhead& operator=(const ScanAhead&) = delete;

    // The scan of the next listed job for exactly this file, type and language,
    // waiting for it when it is not finished; earlier jobs never asked for are
    // dropped. nullptr when no later job matches: the caller scans for itself.
    std::unique_ptr<RecordedScan> Take(const std::u16string& fileName, int32_t fileType, int16_t language);

    // True when Take with the same arguments would return at once, so that a thread
    // that must not wait (a window's) can come back later instead.
    bool Ready(const std::u16string& fileName, int32_t fileType, int16_t language);

    // True once every job has been taken or passed by.
    bool AllTaken();

    // Worker threads worth starting on this machine: 0 when there is a single core.
    static unsigned UsefulThreads();

private:
    void Work();
    // The first job from nextToTake_ on for this file, type and language; jobs_.size() if none.
    size_t FindJob(const std::u16string& fileName, int32_t fileType, int16_t language) const;

    std::vector<ScanJob> jobs_;
    std::vector<std::unique_ptr<RecordedScan>> done_;
    size_t window_;
    size_t nextToScan_ = 0;  // the first job no worker has claimed
    size_t nextToTake_ = 0;  // the first job not yet taken or dropped
    bool stopping_ = false;
    std::mutex lock_;
    std::condition_variable changed_;
    std::vector<std::thread> workers_;
};

}  // namespace kestrel
