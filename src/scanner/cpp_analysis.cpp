#include "scanner/cpp_analysis.h"

#include <string>

#include "errorlog/errorlog.h"
#include "scanner/cpp_declaration.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsQuillbox.cls";

// The parameter list as written, in `text`; a list opened on a line of its own starts
// with a blank, which goes.
const std::u16string& ParameterText(std::u16string& text, std::u16string_view params) {
    text.assign(params);
    if (text.size() > 1 && text[1] == u' ') text.erase(1, 1);
    return text;
}

}  // namespace

void WriteCppResults(ResultList& results, ScanOutput& output) {
    std::u16string text;  // the output takes its texts as strings
    for (const RWord& r : results) {
        if (r.Scope == kResultEndClass) {
            Trap(kModule, "Sub SecondPass", [&] { output.WriteEndClass__(text.assign(r.Class), r.Line); });
            continue;
        }
        Trap(kModule, "Sub ProcessDeclaration", [&] {
            if (r.Bag == kReadFunction) {
                const size_t tab = r.word.find(kReadSeparator);
                output.WriteMember__(true, r.Class, r.word.substr(0, tab), r.Line, r.Scope,
                                     ParameterText(text, r.word.substr(tab + 1)));
                return;
            }
            CppDeclaration d;
            if (!ReadCppDeclaration(r.word, r.Class, d)) return;
            // A qualified name belongs to the class it names; classes keep their own
            // names wherever they are defined, so headers and sources meet.
            const std::u16string_view owner = d.qualifier.empty() ? r.Class : d.qualifier;
            if (d.isFunction) ParameterText(text, d.text);
            else text.assign(d.text);
            do {
                output.WriteMember__(d.isFunction, owner, d.Member(), r.Line, r.Scope, text);
            } while (ReadNextCppVariable(r.word, d));
        });
    }
}

}  // namespace kestrel
