#pragma once
// The editor's text as a line source, so a file is rescanned from what the user sees,
// saved or not.
#include <QTextBlock>
#include <QTextDocument>

#include "scanner/scan_output.h"

namespace kestrel::view {

class DocumentLines final : public LineSource {
public:
    explicit DocumentLines(const QTextDocument& document) : document_(document) {}

    int32_t GetLineCount() override { return document_.blockCount(); }
    std::u16string Line(int32_t lineNumber) override {
        return document_.findBlockByNumber(lineNumber - 1).text().toStdU16String();
    }

private:
    const QTextDocument& document_;
};

}  // namespace kestrel::view
