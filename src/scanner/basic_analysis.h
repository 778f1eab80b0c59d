#pragma once
// Declaration analysis for Basic statements: procedure and variable names cut out by
// plain (case-sensitive, first occurrence) searches for the language's keywords.
#include <string>

#include "scanner/params.h"
#include "scanner/rword.h"
#include "scanner/scan_output.h"
#include "scanner/syntax.h"

namespace kestrel {

struct BasicAnalysis {
    const SyntaxTable& syntax;
    ParamCollector& params;
    ScanOutput& output;

    void ProcessBasicDeclaration(RWord& wrd);
    // Sets wrd.Scope from the scope word it finds.
    void ProcessBasicVariable(RWord& wrd);
    // The statement after its first scope word (trimmed), or the whole statement with
    // scope 0 when there is none; sets wrd.Scope.
    std::u16string GetBasicScope(RWord& wrd);
};

}  // namespace kestrel
