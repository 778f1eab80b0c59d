#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "errorlog/errorlog.h"
#include "support/error_capture.h"

using namespace kestrel;

TEST(Trap, EndsTheOperationAndReportsModuleAndTitle) {
    test::ErrorCapture capture;
    int reached = 0;
    bool finished = Trap("clsStack.cls", "Sub Push", [&] {
        reached = 1;
        throw RuntimeError(kErrSubscriptOutOfRange, "Subscript out of range");
        reached = 2;
    });
    EXPECT_FALSE(finished);
    EXPECT_EQ(reached, 1);
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].module, "clsStack.cls");
    EXPECT_EQ(capture.reports[0].title, "Sub Push");
    EXPECT_EQ(capture.reports[0].number, kErrSubscriptOutOfRange);
}

TEST(Trap, MapsStandardExceptionsToErrorNumbers) {
    test::ErrorCapture capture;
    std::string s = "ab";
    Trap("m", "t", [&] { (void)s.at(5); });
    ASSERT_EQ(capture.reports.size(), 1u);
    EXPECT_EQ(capture.reports[0].number, kErrSubscriptOutOfRange);
    EXPECT_TRUE(Trap("m", "t", [] {}));
    EXPECT_EQ(capture.reports.size(), 1u);
}

TEST(ErrorLog, DefaultHandlerAppendsALineToTheStateDirectoryLog) {
    namespace fs = std::filesystem;
    fs::path dir = fs::temp_directory_path() / ("kestrel-log-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    const char* old = std::getenv("XDG_STATE_HOME");
    std::string saved = old ? old : "";
    ::setenv("XDG_STATE_HOME", dir.c_str(), 1);
    EXPECT_EQ(ErrorLogPath(), (dir / "kestrel" / "error.log").string());
    EXPECT_EQ(ReportError("clsOneFile.cls", "Function InProc", 9, "Subscript out of range"), 0);
    ReportError("TreeView.ctl", "Sub tView_Click", 5, "Invalid procedure call");
    std::ifstream log(dir / "kestrel" / "error.log");
    std::string first, second;
    std::getline(log, first);
    std::getline(log, second);
    EXPECT_NE(first.find("clsOneFile.cls\tFunction InProc\t9 Subscript out of range"), std::string::npos);
    EXPECT_NE(second.find("TreeView.ctl\tSub tView_Click"), std::string::npos);
    if (old) ::setenv("XDG_STATE_HOME", saved.c_str(), 1); else ::unsetenv("XDG_STATE_HOME");
    fs::remove_all(dir);
}
