#pragma once
// The code pane: a monospace plain-text editor with line numbers in a gutter and the
// cursor's line highlighted.
#include <QPlainTextEdit>

namespace kestrel::view {

class CodeEditor final : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit CodeEditor(QWidget* parent = nullptr);

    // 1-based line of the text cursor.
    int CursorLine() const;
    // Puts the cursor at the start of a 1-based line and scrolls it to the upper third.
    void GoToLine(int line);

    int GutterWidth() const;
    void PaintGutter(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void UpdateGutterWidth();
    void UpdateGutter(const QRect& rect, int dy);
    void HighlightCursorLine();

    QWidget* gutter_;
};

}  // namespace kestrel::view
