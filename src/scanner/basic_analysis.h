#pragma once
// Declaration analysis for Basic statements: procedure and variable names cut out by
// plain (case-sensitive, first occurrence) searches for the language's keywords.
#include <string>
#include <string_view>

#include "scanner/params.h"
#include "scanner/rword.h"
#include "scanner/scan_output.h"
#include "scanner/syntax.h"

namespace kestrel {

struct BasicAnalysis {
    // The titles of the two traps; a write to the output that fails is reported under them.
    static constexpr std::string_view kDeclarationTitle = "Sub ProcessBasicDeclaration";
    static constexpr std::string_view kVariableTitle = "Sub ProcessBasicVariable";

    const SyntaxTable& syntax;
    ParamCollector& params;
    ScanOutput& output;

    void ProcessBasicDeclaration(RWord& wrd);
    // Sets wrd.Scope from the scope word it finds.
    void ProcessBasicVariable(RWord& wrd);
    // The statement after its first scope word (trimmed), or the whole statement with
    // scope 0 when there is none, as a view into wrd.word; sets wrd.Scope.
    std::u16string_view GetBasicScope(RWord& wrd);
};

}  // namespace kestrel
