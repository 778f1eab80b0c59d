// A recorded scan handed on later must look to its output exactly like the scan itself,
// also when the output fails.
#include <gtest/gtest.h>

#include <algorithm>

#include "common/constants.h"
#include "errorlog/errorlog.h"
#include "scanner/recorded_scan.h"
#include "support/error_capture.h"
#include "support/scan_recorder.h"

using namespace kestrel;

namespace {

// Records calls and reports in one sequence, and fails on names holding "bad".
class FailingRecorder : public test::ScanRecorder {
public:
    using test::ScanRecorder::ScanRecorder;
    void WriteDeclare__(const std::u16string& n, int32_t l, int16_t s, const std::u16string& p) override {
        if (n.find(u"bad") != std::u16string::npos) throw RuntimeError(kErrInvalidCall, "bad function");
        test::ScanRecorder::WriteDeclare__(n, l, s, p);
    }
    void WriteVariable__(const std::u16string& n, int32_t l, int16_t s, const std::u16string& t) override {
        if (n.find(u"bad") != std::u16string::npos) throw RuntimeError(kErrInvalidCall, "bad variable");
        test::ScanRecorder::WriteVariable__(n, l, s, t);
    }
};

std::vector<std::string> Observed(const std::string& text, int16_t language, bool recorded) {
    test::TempFile file(text);
    FailingRecorder out(file.name());
    test::ErrorCapture reports(&out.calls);
    if (recorded) {
        RecordedScan scan(file.name(), FILETYPE_IMPLEMENTATION, language);
        scan.Scan();
        out.calls.push_back("scanned");  // nothing reaches the output before the replay
        scan.Replay(out);
    } else {
        out.calls.push_back("scanned");
        clsQuillbox().ParseFile(out, language);
    }
    return out.calls;
}

}  // namespace

TEST(RecordedScan, ReplaysCallsAndReportsInTheirPlaces) {
    std::string c = "int good;\nint bad;\nvoid bad();\nclass A\n{\n  void ok();\n};\n";
    for (int k = 0; k < 1030; ++k) c += "class N\n{\n";
    const std::string basic = "Dim good As Long\nDim bad As Long\nSub bad()\nEnd Sub\nSub ok()\nEnd Sub\n";
    for (const auto& [text, language] : {std::pair{c, LANGUAGE_C}, std::pair{basic, LANGUAGE_BASIC}}) {
        std::vector<std::string> direct = Observed(text, language, false);
        EXPECT_EQ(std::count_if(direct.begin(), direct.end(),
                                [](const std::string& call) { return call.starts_with("report Sub Process") && call.find("bad") != std::string::npos; }),
                  2);
        EXPECT_EQ(Observed(text, language, true), direct);
    }
}
