#pragma once
// The one error-reporting routine. Every operation runs its body through Trap():
// a run-time error ends that operation with the result it had reached, is reported
// here with the module's file name and the operation's title, and the caller goes on.
#include <cstdint>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kestrel {

// Error numbers, as the reports carry them.
enum ErrorNumber : int {
    kErrInvalidCall = 5,
    kErrOutOfMemory = 7,
    kErrSubscriptOutOfRange = 9,
    kErrFileNotFound = 53,
    kErrFileIo = 75,
    kErrObjectRequired = 424,
    kErrKeyExists = 457,
};

// A run-time error raised inside an operation.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const std::string& message) : std::runtime_error(message), number_(number) {}
    int Number() const { return number_; }

private:
    int number_;
};

struct ErrorReport {
    std::string_view module;   // the module's file name, e.g. "clsQuillbox.cls"
    std::string_view title;    // the operation's title, e.g. "Sub TakeLevelsOut"
    int number;
    std::string_view message;
};

// A handler answers the report with a 16-bit choice.
using ErrorHandler = std::function<int16_t(const ErrorReport&)>;

// Reports an error to the installed handler (the error log by default) and returns its choice.
int16_t ReportError(std::string_view module, std::string_view title, int number, std::string_view message);

// Installs a handler (to show, mail or collect reports) and returns the previous one.
// An empty handler restores the default, which appends a line to ErrorLogPath() and answers 0.
ErrorHandler SetErrorHandler(ErrorHandler handler);

// While one lives on a thread, reports raised on that thread go to it instead of the
// handler: work done on a helper thread keeps its reports for the thread that hands
// its results on, in their place among them.
class ErrorDiversion {
public:
    explicit ErrorDiversion(std::function<void(const ErrorReport&)> to);
    ~ErrorDiversion();
    ErrorDiversion(const ErrorDiversion&) = delete;
    ErrorDiversion& operator=(const ErrorDiversion&) = delete;

private:
    friend int16_t ReportError(std::string_view, std::string_view, int, std::string_view);
    std::function<void(const ErrorReport&)> to_;
    ErrorDiversion* previous_;
};

// $XDG_STATE_HOME/kestrel/error.log, else ~/.local/state/kestrel/error.log.
std::string ErrorLogPath();

// Reports the exception currently being handled.
void ReportCurrentException(std::string_view module, std::string_view title) noexcept;

// How many reports of one operation the error log keeps; one more line then counts the
// rest, so that a hostile file with an error in every declaration cannot fill the disk.
// An operation is the outermost Trap on a thread: one call of the host into the
// component, with every trapped step it makes on the way. Reports made outside any
// trap are each logged. Handlers installed with SetErrorHandler see every report.
inline constexpr int kReportsKeptPerOperation = 20;

namespace detail {

// The reports the error log took and left out within the current operation.
struct OperationTally {
    int depth = 0;  // Traps open on this thread
    int kept = 0;
    int leftOut = 0;
};
constinit inline thread_local OperationTally t_operation{};

// Ends an operation that reached the error log: notes what it left out, starts afresh.
void EndLoggedOperation(std::string_view module, std::string_view title) noexcept;

}  // namespace detail

// Runs body under an error trap. Returns true when it ran to its end, false when a
// run-time error cut it short (the error has then been reported).
template <class Body>
bool Trap(std::string_view module, std::string_view title, Body&& body) noexcept {
    detail::OperationTally& tally = detail::t_operation;
    ++tally.depth;
    bool finished = true;
    try {
        body();
    } catch (...) {
        ReportCurrentException(module, title);
        finished = false;
    }
    if (--tally.depth == 0 && tally.kept != 0) detail::EndLoggedOperation(module, title);
    return finished;
}

}  // namespace kestrel
