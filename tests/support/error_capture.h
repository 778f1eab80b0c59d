#pragma once
// Collects every error report while in scope, so tests can assert on them
// (and no test writes to the user's error log).
#include <string>
#include <vector>

#include "errorlog/errorlog.h"

namespace kestrel::test {

struct CapturedError {
    std::string module;
    std::string title;
    int number;
    std::string message;
};

class ErrorCapture {
public:
    // With `interleaved`, each report is also appended there as "report <title> <message>",
    // to see reports in their places among other recorded calls.
    explicit ErrorCapture(std::vector<std::string>* interleaved = nullptr) {
        previous_ = SetErrorHandler([this, interleaved](const ErrorReport& r) -> int16_t {
            reports.push_back({std::string(r.module), std::string(r.title), r.number, std::string(r.message)});
            if (interleaved) interleaved->push_back("report " + std::string(r.title) + " " + std::string(r.message));
            return 0;
        });
    }
    ~ErrorCapture() { SetErrorHandler(previous_); }
    ErrorCapture(const ErrorCapture&) = delete;
    ErrorCapture& operator=(const ErrorCapture&) = delete;

    std::vector<CapturedError> reports;

    // Each report as "module|title|number", to compare them all at once.
    std::vector<std::string> Seen() const {
        std::vector<std::string> seen;
        for (const CapturedError& r : reports) seen.push_back(r.module + "|" + r.title + "|" + std::to_string(r.number));
        return seen;
    }

private:
    ErrorHandler previous_;
};

}  // namespace kestrel::test
