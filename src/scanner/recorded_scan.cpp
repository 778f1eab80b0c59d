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
        calls_.push_back(Call{Kind::Report, 0, r.number, texts_.empty() ? 0 : texts_.size() - 1, reports_.size()});
        reports_.push_back(Report{std::string(r.module), std::string(r.title), std::string(r.message)});
    });
    clsQuillbox scanner;
    scanner.ParseFile(*this, language_);
}

void RecordedScan::Add(Kind kind, int16_t scope, int32_t line, std::u16string_view name, std::u16string_view text,
                       std::u16string_view memberName) {
    const size_t nameLength = name.size() + memberName.size();
    if (texts_.empty() || (!texts_.back().empty() && texts_.back().size() + nameLength + text.size() > kChunkUnits))
        texts_.emplace_back();
    std::u16string& buffer = texts_.back();
    const bool inParts = kind == Kind::DeclareMember || kind == Kind::VariableMember;
    calls_.push_back(Call{kind, scope, line, texts_.size() - 1, buffer.size(), nameLength, buffer.size() + nameLength,
                          text.size(), inParts ? name.size() : 0});
    buffer.append(name).append(memberName).append(text);
}

void RecordedScan::ReleaseBefore(size_t call) {
    const size_t firstKept = call < calls_.size() ? calls_[call].chunk : texts_.size();
    for (size_t chunk = 0; chunk < firstKept; ++chunk) std::u16string().swap(texts_[chunk]);
}

void RecordedScan::WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                                  const std::u16string& params) {
    Add(Kind::Declare, scope, line, fullName, params);
}

void RecordedScan::WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                                   const std::u16string& typeText) {
    Add(Kind::Variable, scope, line, fullName, typeText);
}

void RecordedScan::WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName,
                                 int32_t line, int16_t scope, const std::u16string& text) {
    if (className.find(u"::") == std::u16string_view::npos) {
        ScanOutput::WriteMember__(isFunction, className, memberName, line, scope, text);
        return;
    }
    Add(isFunction ? Kind::DeclareMember : Kind::VariableMember, scope, line, className, text, memberName);
}

void RecordedScan::WriteEndClass__(const std::u16string& className, int32_t endLine) {
    Add(Kind::EndClass, 0, endLine, className);
}

void RecordedScan::WriteInclude__(const std::u16string& fileName, int32_t line) { Add(Kind::Include, 0, line, fileName); }

size_t RecordedScan::Replay(ScanOutput& to, size_t from, size_t budget) const {
    const bool basic = language_ == LANGUAGE_BASIC;
    const std::string_view declarationTitle = basic ? BasicAnalysis::kDeclarationTitle : CAnalysis::kDeclarationTitle;
    const std::string_view variableTitle = basic ? BasicAnalysis::kVariableTitle : CAnalysis::kVariableTitle;
    // The texts are handed on in two strings whose room every call reuses.
    std::u16string name, text;
    auto nameOf = [&](const Call& c) -> const std::u16string& {
        return name.assign(texts_[c.chunk], c.nameAt, c.nameLength);
    };
    auto textOf = [&](const Call& c) -> const std::u16string& {
        return text.assign(texts_[c.chunk], c.textAt, c.textLength);
    };
    size_t next = calls_.size();  // also where a failing end-of-class or include write leaves it
    Trap(kModule, "Sub SecondPass", [&] {
        size_t call = from;
        for (size_t spent = 0; call < calls_.size() && spent < budget; ++call) {
            const Call& c = calls_[call];
            spent += kCallCost + c.nameLength + c.textLength;
            switch (c.kind) {
            case Kind::Declare:
                Trap(kModule, declarationTitle, [&] { to.WriteDeclare__(nameOf(c), c.line, c.scope, textOf(c)); });
                break;
            case Kind::Variable:
                Trap(kModule, variableTitle, [&] { to.WriteVariable__(nameOf(c), c.line, c.scope, textOf(c)); });
                break;
            case Kind::DeclareMember:
            case Kind::VariableMember: {
                const bool isFunction = c.kind == Kind::DeclareMember;
                const std::u16string_view both = std::u16string_view(texts_[c.chunk]).substr(c.nameAt, c.nameLength);
                Trap(kModule, isFunction ? declarationTitle : variableTitle, [&] {
                    to.WriteMember__(isFunction, both.substr(0, c.classLength), both.substr(c.classLength), c.line,
                                     c.scope, textOf(c));
                });
                break;
            }
            case Kind::EndClass: to.WriteEndClass__(nameOf(c), c.line); break;
            case Kind::Include: to.WriteInclude__(nameOf(c), c.line); break;
            case Kind::Report: {
                const Report& r = reports_[c.nameAt];
                ReportError(r.module, r.title, c.line, r.message);
                break;
            }
            }
        }
        next = call;
    });
    return next;
}

}  // namespace kestrel
