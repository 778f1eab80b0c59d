#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "errorlog/errorlog.h"
#include "errorlog/resume.h"
#include "support/error_capture.h"
#include "support/scratch.h"

using namespace kestrel;
namespace fs = std::filesystem;

namespace {

// Sets an environment variable for the life of the object.
struct EnvVar {
    std::string name;
    std::optional<std::string> saved;
    EnvVar(const char* n, const char* value) : name(n) {
        if (const char* old = std::getenv(n)) saved = old;
        ::setenv(n, value, 1);
    }
    ~EnvVar() { saved ? ::setenv(name.c_str(), saved->c_str(), 1) : ::unsetenv(name.c_str()); }
};

}  // namespace

TEST(Trap, EndsTheOperationAndReportsModuleAndTitleWhereIgnoreErrorsStaysQuiet) {
    test::ErrorCapture capture;
    int reached = 0;
    bool finished = Trap("clsStack.cls", "Sub Push", [&] {
        reached = 1;
        throw RuntimeError(kErrSubscriptOutOfRange, "Subscript out of range");
        reached = 2;
    });
    EXPECT_FALSE(finished);
    EXPECT_EQ(reached, 1);
    // Standard exceptions map to error numbers; a body that finishes reports nothing.
    std::string s = "ab";
    Trap("m", "t", [&] { (void)s.at(5); });
    EXPECT_TRUE(Trap("m", "t", [] {}));
    // A host handler's answer goes back to the reporter; removed again, the one before serves.
    ErrorHandler previous = SetErrorHandler([](const ErrorReport&) -> int16_t { return 2; });
    EXPECT_EQ(ReportError("clsOneFile.cls", "Sub UpdateFile__", 5, "x"), 2);
    SetErrorHandler(previous);
    ReportError("n", "u", 5, "y");
    // IgnoreErrors ends its step quietly.
    IgnoreErrors([&] {
        reached = 3;
        throw RuntimeError(kErrInvalidCall, "ignored");
    });
    EXPECT_EQ(reached, 3);
    EXPECT_EQ(capture.Seen(), (std::vector<std::string>{"clsStack.cls|Sub Push|9", "m|t|9", "n|u|5"}));
    int* none = nullptr;
    EXPECT_THROW(Required(none), RuntimeError);
}

TEST(ErrorLog, TheDefaultHandlerAppendsLinesToTheStateDirectoryLogOrOneUnderHome) {
    test::ScratchDir dir;
    const fs::path state = dir.path() / "state", home = dir.path() / "home";
    EnvVar h("HOME", home.c_str());
    {
        EnvVar s("XDG_STATE_HOME", state.c_str());
        EXPECT_EQ(ErrorLogPath(), (state / "kestrel/error.log").string());
        testing::internal::CaptureStdout();
        EXPECT_EQ(ReportError("clsOneFile.cls", "Function InProc", 9, "Subscript out of range"), 0);
        ReportError("TreeView.ctl", "Sub tView_Click", 5, "Invalid procedure call");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");  // reports never reach standard output
        std::ifstream log(state / "kestrel/error.log");
        std::string first, second;
        std::getline(log, first);
        std::getline(log, second);
        EXPECT_NE(first.find("clsOneFile.cls\tFunction InProc\t9 Subscript out of range"), std::string::npos);
        EXPECT_NE(second.find("TreeView.ctl\tSub tView_Click"), std::string::npos);
    }
    EnvVar relative("XDG_STATE_HOME", "relative/state");
    EXPECT_EQ(ErrorLogPath(), (home / ".local/state/kestrel/error.log").string());
    ReportError("clsSaveIntoFile.cls", "Function Load", 75, "Path/File access error");
    EXPECT_NE(test::ReadFileBytes(home / ".local/state/kestrel/error.log")
                  .find("clsSaveIntoFile.cls\tFunction Load\t75 Path/File access error"),
              std::string::npos);
}
