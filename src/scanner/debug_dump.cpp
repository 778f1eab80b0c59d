#include "scanner/debug_dump.h"

#include "common/text.h"

namespace kestrel {

void WriteLineDump(std::ostream& out, const std::vector<std::u16string>& lines, int32_t lastLine) {
    for (int32_t i = 1; i <= lastLine; ++i) {
        out << i << " -- " << ToUtf8(lines.at(static_cast<size_t>(i))) << '\n';
    }
}

void WriteResultDump(std::ostream& out, const ResultList& results) {
    for (const RWord& r : results) {
        out << "Line:" << r.Line << ",Class:" << ToUtf8(r.Class) << ",Scope:" << r.Scope << " -- " << ToUtf8(r.word)
            << '\n';
    }
}

}  // namespace kestrel
