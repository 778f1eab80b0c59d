#include "errorlog/errorlog.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <mutex>
#include <new>
#include <sys/stat.h>

namespace kestrel {

namespace {

std::mutex g_handlerLock;
ErrorHandler g_handler;
thread_local ErrorDiversion* t_diversion = nullptr;

void MakeDirs(const std::string& dir) {
    for (size_t i = 1; i <= dir.size(); ++i) {
        if (i == dir.size() || dir[i] == '/') ::mkdir(dir.substr(0, i).c_str(), 0700);
    }
}

int16_t AppendToLog(const ErrorReport& r) {
    std::string path = ErrorLogPath();
    if (path.empty()) return 0;
    MakeDirs(path.substr(0, path.rfind('/')));
    std::ofstream log(path, std::ios::app);
    if (!log) return 0;
    char stamp[32] = "";
    std::time_t now = std::time(nullptr);
    std::tm tmv{};
    if (localtime_r(&now, &tmv)) std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &tmv);
    log << stamp << '\t' << r.module << '\t' << r.title << '\t' << r.number << ' ' << r.message << '\n';
    return 0;
}

// The default handler, holding to the cap of the operation under way.
int16_t LogWithinOperation(const ErrorReport& r) {
    detail::OperationTally& tally = detail::t_operation;
    if (tally.depth == 0) return AppendToLog(r);
    if (tally.kept < kReportsKeptPerOperation) {
        ++tally.kept;
        return AppendToLog(r);
    }
    ++tally.leftOut;
    return 0;
}

}  // namespace

void detail::EndLoggedOperation(std::string_view module, std::string_view title) noexcept {
    OperationTally& tally = t_operation;
    const int leftOut = tally.leftOut;
    tally.kept = tally.leftOut = 0;
    if (leftOut == 0) return;
    try {
        const std::string message = std::to_string(leftOut) + " more error reports of this operation left out";
        AppendToLog(ErrorReport{module, title, 0, message});
    } catch (...) {
    }
}

std::string ErrorLogPath() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state && *state == '/') return std::string(state) + "/kestrel/error.log";
    const char* home = std::getenv("HOME");
    if (home && *home) return std::string(home) + "/.local/state/kestrel/error.log";
    return {};
}

ErrorHandler SetErrorHandler(ErrorHandler handler) {
    std::lock_guard<std::mutex> lock(g_handlerLock);
    std::swap(g_handler, handler);
    return handler;
}

ErrorDiversion::ErrorDiversion(std::function<void(const ErrorReport&)> to)
    : to_(std::move(to)), previous_(t_diversion) {
    t_diversion = this;
}

ErrorDiversion::~ErrorDiversion() { t_diversion = previous_; }

int16_t ReportError(std::string_view module, std::string_view title, int number, std::string_view message) {
    if (t_diversion) {
        try {
            t_diversion->to_(ErrorReport{module, title, number, message});
        } catch (...) {
        }
        return 0;
    }
    ErrorHandler handler;
    {
        std::lock_guard<std::mutex> lock(g_handlerLock);
        handler = g_handler;
    }
    ErrorReport report{module, title, number, message};
    try {
        return handler ? handler(report) : LogWithinOperation(report);
    } catch (...) {
        return 0;  // a failing handler must not take the caller down with it
    }
}

void ReportCurrentException(std::string_view module, std::string_view title) noexcept {
    try {
        throw;
    } catch (const RuntimeError& e) {
        ReportError(module, title, e.Number(), e.what());
    } catch (const std::out_of_range& e) {
        ReportError(module, title, kErrSubscriptOutOfRange, "Subscript out of range");
    } catch (const std::bad_alloc&) {
        ReportError(module, title, kErrOutOfMemory, "Out of memory");
    } catch (const std::exception& e) {
        ReportError(module, title, kErrInvalidCall, e.what());
    } catch (...) {
        ReportError(module, title, kErrInvalidCall, "Unknown error");
    }
}

}  // namespace kestrel
