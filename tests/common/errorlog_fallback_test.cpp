#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "errorlog/errorlog.h"
#include "errorlog/resume.h"
#include "support/error_capture.h"

using namespace kestrel;
namespace fs = std::filesystem;

namespace {

// Sets an environment variable for the life of the object.
struct EnvVar {
    std::string name, saved;
    bool had;
    EnvVar(const char* n, const char* value) : name(n) {
        const char* old = std::getenv(n);
        had = old != nullptr;
        if (had) saved = old;
        if (value) ::setenv(n, value, 1); else ::unsetenv(n);
    }
    ~EnvVar() {
        if (had) ::setenv(name.c_str(), saved.c_str(), 1); else ::unsetenv(name.c_str());
    }
};

}  // namespace

TEST(ErrorLog, WithoutAnAbsoluteStateHomeTheLogGoesUnderHome) {
    fs::path home = fs::temp_directory_path() / ("kestrel-home-" + std::to_string(::getpid()));
    fs::remove_all(home);
    EnvVar h("HOME", home.c_str());
    EnvVar relative("XDG_STATE_HOME", "relative/state");
    EXPECT_EQ(ErrorLogPath(), (home / ".local/state/kestrel/error.log").string());
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReportError("clsSaveIntoFile.cls", "Function Load", 75, "Path/File access error"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");  // reports never reach standard output
    std::ifstream log(home / ".local/state/kestrel/error.log");
    std::string line;
    std::getline(log, line);
    EXPECT_NE(line.find("clsSaveIntoFile.cls\tFunction Load\t75 Path/File access error"), std::string::npos);
    fs::remove_all(home);
}

TEST(ErrorLog, AHostHandlerReceivesReportsAndCanBeRemovedAgain) {
    std::vector<std::string> seen;
    ErrorHandler previous = SetErrorHandler([&](const ErrorReport& r) -> int16_t {
        seen.push_back(std::string(r.module) + "|" + std::string(r.title));
        return 2;
    });
    EXPECT_EQ(ReportError("clsOneFile.cls", "Sub UpdateFile__", 5, "x"), 2);
    SetErrorHandler(previous);
    EXPECT_EQ(seen, (std::vector<std::string>{"clsOneFile.cls|Sub UpdateFile__"}));
}

TEST(IgnoreErrors, EndsTheStepQuietly) {
    test::ErrorCapture errors;
    int reached = 0;
    IgnoreErrors([&] {
        reached = 1;
        throw RuntimeError(kErrInvalidCall, "ignored");
    });
    EXPECT_EQ(reached, 1);
    EXPECT_TRUE(errors.reports.empty());
    int* none = nullptr;
    EXPECT_THROW(Required(none), RuntimeError);
}
