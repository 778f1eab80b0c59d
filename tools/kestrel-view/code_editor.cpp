#include "code_editor.h"

#include <QFontDatabase>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>

namespace kestrel::view {

namespace {

class Gutter final : public QWidget {
public:
    explicit Gutter(CodeEditor* editor) : QWidget(editor), editor_(editor) {}
    QSize sizeHint() const override { return {editor_->GutterWidth(), 0}; }

protected:
    void paintEvent(QPaintEvent* event) override { editor_->PaintGutter(event); }

private:
    CodeEditor* editor_;
};

const QColor kGutterBackground(0xF3, 0xF4, 0xF6);
const QColor kGutterText(0x9A, 0xA0, 0xA8);
const QColor kGutterCurrent(0x33, 0x3A, 0x44);
const QColor kCurrentLine(0xEE, 0xF4, 0xFF);

}  // namespace

CodeEditor::CodeEditor(QWidget* parent) : QPlainTextEdit(parent), gutter_(new Gutter(this)) {
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    mono.setStyleHint(QFont::Monospace);
    setFont(mono);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabStopDistance(fontMetrics().horizontalAdvance(QLatin1Char(' ')) * 4);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEditor::UpdateGutterWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &CodeEditor::UpdateGutter);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CodeEditor::HighlightCursorLine);
    UpdateGutterWidth();
    HighlightCursorLine();
}

int CodeEditor::CursorLine() const { return textCursor().blockNumber() + 1; }

void CodeEditor::GoToLine(int line) {
    const QTextBlock block = document()->findBlockByNumber(qMax(0, line - 1));
    if (!block.isValid()) return;
    QTextCursor cursor(block);
    setTextCursor(cursor);
    // Scroll so the line sits a third down the pane, with its context above it.
    const int visibleLines = qMax(1, viewport()->height() / qMax(1, fontMetrics().lineSpacing()));
    verticalScrollBar()->setValue(qMax(0, block.firstLineNumber() - visibleLines / 3));
    setFocus();
}

int CodeEditor::GutterWidth() const {
    int digits = 1;
    for (int lines = qMax(1, blockCount()); lines >= 10; lines /= 10) ++digits;
    return 14 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * qMax(3, digits);
}

void CodeEditor::UpdateGutterWidth() { setViewportMargins(GutterWidth(), 0, 0, 0); }

void CodeEditor::UpdateGutter(const QRect& rect, int dy) {
    if (dy != 0) {
        gutter_->scroll(0, dy);
    } else {
        gutter_->update(0, rect.y(), gutter_->width(), rect.height());
    }
    if (rect.contains(viewport()->rect())) UpdateGutterWidth();
}

void CodeEditor::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    const QRect inner = contentsRect();
    gutter_->setGeometry(QRect(inner.left(), inner.top(), GutterWidth(), inner.height()));
}

void CodeEditor::HighlightCursorLine() {
    QTextEdit::ExtraSelection line;
    line.format.setBackground(kCurrentLine);
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    setExtraSelections({line});
    gutter_->update();
}

void CodeEditor::PaintGutter(QPaintEvent* event) {
    QPainter painter(gutter_);
    painter.fillRect(event->rect(), kGutterBackground);
    painter.setFont(font());
    const int current = textCursor().blockNumber();
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    const int width = gutter_->width() - 8;
    while (block.isValid() && top <= event->rect().bottom()) {
        const int height = qRound(blockBoundingRect(block).height());
        if (block.isVisible() && top + height >= event->rect().top()) {
            painter.setPen(block.blockNumber() == current ? kGutterCurrent : kGutterText);
            painter.drawText(0, top, width, fontMetrics().height(), Qt::AlignRight,
                             QString::number(block.blockNumber() + 1));
        }
        top += height;
        block = block.next();
    }
}

}  // namespace kestrel::view
