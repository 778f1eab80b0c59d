#pragma once
// Declaration analysis for C, C++ and Java statements: decides between function and
// variable by plain text searches and writes what it finds to the output.
#include <cstdint>
#include <string>
#include <string_view>

#include "scanner/params.h"
#include "scanner/rword.h"
#include "scanner/scan_output.h"
#include "scanner/syntax.h"
#include "scanner/unit_set.h"

namespace kestrel {

struct CAnalysis {
    // The titles of the two traps; a write to the output that fails is reported under them.
    static constexpr std::string_view kDeclarationTitle = "Sub ProcessDeclaration";
    static constexpr std::string_view kVariableTitle = "Sub ProcessCVariable";

    const SyntaxTable& syntax;
    ParamCollector& params;
    ScanOutput& output;

    // `units` holds at least the tracked units of the statement: searches for what it
    // cannot hold are passed over.
    void ProcessDeclaration(RWord& wrd, const UnitSet& units = UnitSet::Anything());
    // Writes its trimmed statement text back into wrd.word.
    void ProcessCVariable(RWord& wrd);
};

// The type text before a variable's name: the statement before the last occurrence of
// the name, trimmed ("" when that occurrence starts within the first two characters).
// A view into wrd.word.
std::u16string_view CollectCVarParams(const RWord& wrd, std::u16string_view name);

// 1-based position of the first "=", else ">", else "<", else "#" in line; -1 if none.
int32_t AssignmentOffset(std::u16string_view line);

}  // namespace kestrel
