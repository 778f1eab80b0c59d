// The error log's cap on the reports of one operation.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "errorlog/errorlog.h"
#include "support/scratch.h"

using namespace kestrel;

namespace {

class ErrorCap : public ::testing::Test {
protected:
    void SetUp() override {
        if (const char* old = std::getenv("XDG_STATE_HOME")) saved_ = old;
        ::setenv("XDG_STATE_HOME", (dir.path() / "state").c_str(), 1);
    }
    void TearDown() override { saved_.empty() ? ::unsetenv("XDG_STATE_HOME") : ::setenv("XDG_STATE_HOME", saved_.c_str(), 1); }

    std::vector<std::string> Logged() const {
        std::vector<std::string> lines;
        std::istringstream in(test::ReadFileBytes(dir.path() / "state/kestrel/error.log"));
        for (std::string line; std::getline(in, line);) lines.push_back(line.substr(line.find('\t') + 1));  // no stamp
        return lines;
    }

    // An operation whose steps each fail in a trap of their own.
    static void Operation(const char* title, int failingSteps) {
        Trap("clsAllFiles.cls", title, [&] {
            for (int i = 0; i < failingSteps; ++i)
                Trap("clsQuillbox.cls", "Sub ProcessCVariable", [] { throw RuntimeError(kErrSubscriptOutOfRange, "x"); });
        });
    }

    test::ScratchDir dir;

private:
    std::string saved_;
};

TEST_F(ErrorCap, TheLogKeepsTwentyReportsOfAnOperationAndCountsTheRest) {
    Operation("Function Add", 25);
    Operation("Function Add", 2);  // the next operation starts afresh
    const std::vector<std::string> logged = Logged();
    ASSERT_EQ(logged.size(), 23u);
    EXPECT_EQ(logged[19], "clsQuillbox.cls\tSub ProcessCVariable\t9 x");
    EXPECT_EQ(logged[20], "clsAllFiles.cls\tFunction Add\t0 5 more error reports of this operation left out");
    EXPECT_EQ(logged[22], "clsQuillbox.cls\tSub ProcessCVariable\t9 x");
}

TEST_F(ErrorCap, ReportsOutsideATrapAreEachLoggedAndHandlersSeeEveryReport) {
    for (int i = 0; i < 25; ++i) ReportError("TreeView.ctl", "Sub Refresh", kErrInvalidCall, "y");
    EXPECT_EQ(Logged().size(), 25u);
    int seen = 0;
    ErrorHandler previous = SetErrorHandler([&](const ErrorReport&) -> int16_t { return ++seen, 0; });
    Operation("Function Add", 25);
    SetErrorHandler(previous);
    EXPECT_EQ(seen, 25);
    EXPECT_EQ(Logged().size(), 25u);
}

}  // namespace
