#include "scanner/recorded_scan.h"

#include "common/constants.h"
#include "errorlog/errorlog.h"
#include "scanner/basic_analysis.h"
#include "scanner/c_analysis.h"
#include "scanner/quillbox.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

}  // namespace

void RecordedScan::Scan() {
    ErrorDiversion keep([this](const ErrorReport& r) {
        calls_.push_back(Call{Kind::Report, 0, r.number, {}, {}, std::string(r.module), std::string(r.title),
                              std::string(r.message)});
    });
    clsQuillbox scanner;
    scanner.ParseFile(*this, language_);
}

void RecordedScan::WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                                  const std::u16string& params) {
    calls_.push_back(Call{Kind::Declare, scope, line, fullName, params, {}, {}, {}});
}

void RecordedScan::WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                                   const std::u16string& typeText) {
    calls_.push_back(Call{Kind::Variable, scope, line, fullName, typeText, {}, {}, {}});
}

void RecordedScan::WriteEndClass__(const std::u16string& className, int32_t endLine) {
    calls_.push_back(Call{Kind::EndClass, 0, endLine, className, {}, {}, {}, {}});
}

void RecordedScan::WriteInclude__(const std::u16string& fileName, int32_t line) {
    calls_.push_back(Call{Kind::Include, 0, line, fileName, {}, {}, {}, {}});
}

void RecordedScan::Replay(ScanOutput& to) const {
    const bool basic = language_ == LANGUAGE_BASIC;
    const std::string_view declarationTitle = basic ? BasicAnalysis::kDeclarationTitle : CAnalysis::kDeclarationTitle;
    const std::string_view variableTitle = basic ? BasicAnalysis::kVariableTitle : CAnalysis::kVariableTitle;
    Trap(kModule, "Sub SecondPass", [&] {
        for (const Call& c : calls_) {
            switch (c.kind) {
            case Kind::Declare:
                Trap(kModule, declarationTitle, [&] { to.WriteDeclare__(c.name, c.line, c.scope, c.text); });
                break;
            case Kind::Variable:
                Trap(kModule, variableTitle, [&] { to.WriteVariable__(c.name, c.line, c.scope, c.text); });
                break;
            case Kind::EndClass: to.WriteEndClass__(c.name, c.line); break;
            case Kind::Include: to.WriteInclude__(c.name, c.line); break;
            case Kind::Report: ReportError(c.module, c.title, c.line, c.message); break;
            }
        }
    });
}

}  // namespace kestrel
