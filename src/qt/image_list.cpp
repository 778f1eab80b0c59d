#include "qt/image_list.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace kestrel::qt {

namespace {

// Palette: one hue per kind of entry, so kinds differ at a glance even at 16 pixels.
const QColor kClassFill(0xF2, 0xA5, 0x2C), kClassEdge(0xA8, 0x62, 0x0A);
const QColor kFunctionFill(0x9B, 0x59, 0xD6), kFunctionEdge(0x5E, 0x2A, 0x8C);
const QColor kVariableFill(0x2E, 0x9C, 0xCA), kVariableEdge(0x17, 0x5E, 0x80);
const QColor kFolderFill(0xE8, 0xC5, 0x6A), kFolderEdge(0xA6, 0x80, 0x22);
const QColor kProjectFill(0x4A, 0x7B, 0xD0), kProjectEdge(0x23, 0x48, 0x8C);
const QColor kPageFill(0xFB, 0xFB, 0xFB), kPageEdge(0x70, 0x76, 0x80);

QLinearGradient Shade(const QColor& base, qreal top, qreal bottom) {
    QLinearGradient g(0, top, 0, bottom);
    g.setColorAt(0, base.lighter(125));
    g.setColorAt(1, base.darker(108));
    return g;
}

void Outline(QPainter& p, const QColor& edge, qreal width = 1.0) {
    QPen pen(edge, width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    p.setPen(pen);
}

// A golden tile with a white "C" arc: the class.
void PaintClass(QPainter& p) {
    Outline(p, kClassEdge);
    p.setBrush(Shade(kClassFill, 1, 15));
    p.drawRoundedRect(QRectF(1.5, 1.5, 13, 13), 3, 3);
    QPen arc(Qt::white, 2.2);
    arc.setCapStyle(Qt::RoundCap);
    p.setPen(arc);
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(4.6, 4.6, 6.8, 6.8), 45 * 16, 270 * 16);
}

// A purple diamond: a function (method).
void PaintFunction(QPainter& p, QRectF box) {
    const QPointF c = box.center();
    Outline(p, kFunctionEdge);
    p.setBrush(Shade(kFunctionFill, box.top(), box.bottom()));
    p.drawPolygon(QPolygonF{{c.x(), box.top()}, {box.right(), c.y()}, {c.x(), box.bottom()}, {box.left(), c.y()}});
    // A highlight facet gives the diamond its volume.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 90));
    p.drawPolygon(QPolygonF{{c.x(), box.top() + 1.2}, {box.right() - 1.2, c.y()}, {c.x(), c.y()}});
}

// A blue brick: a variable (field).
void PaintVariable(QPainter& p, QRectF box) {
    Outline(p, kVariableEdge);
    p.setBrush(Shade(kVariableFill, box.top(), box.bottom()));
    p.drawRoundedRect(box, 1.5, 1.5);
    p.setPen(QPen(QColor(255, 255, 255, 150), 1.0));
    p.drawLine(QPointF(box.left() + 2, box.top() + 1.6), QPointF(box.right() - 2, box.top() + 1.6));
}

// Scope badges in the lower right corner; public entries carry none.
void PaintProtectedBadge(QPainter& p) {
    // A key-coloured shield.
    QPainterPath s;
    s.moveTo(11.5, 8.5);
    s.lineTo(15.2, 9.6);
    s.lineTo(15.0, 12.6);
    s.quadTo(14.2, 14.8, 11.5, 15.6);
    s.quadTo(8.8, 14.8, 8.0, 12.6);
    s.lineTo(7.8, 9.6);
    s.closeSubpath();
    Outline(p, QColor(0x9A, 0x6A, 0x00));
    p.setBrush(QColor(0xFF, 0xD0, 0x3A));
    p.drawPath(s);
}

void PaintPrivateBadge(QPainter& p) {
    // A red padlock.
    Outline(p, QColor(0x8E, 0x1B, 0x1B), 1.2);
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(9.4, 7.6, 4.4, 5.0), 0, 180 * 16);
    p.drawLine(QPointF(9.4, 10.1), QPointF(9.4, 11.2));
    p.drawLine(QPointF(13.8, 10.1), QPointF(13.8, 11.2));
    Outline(p, QColor(0x8E, 0x1B, 0x1B));
    p.setBrush(QColor(0xE0, 0x3C, 0x3C));
    p.drawRoundedRect(QRectF(8.2, 10.7, 6.8, 4.8), 1, 1);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x5A, 0x0E, 0x0E));
    p.drawEllipse(QRectF(11.0, 12.3, 1.2, 1.2));
}

void PaintScopeBadge(QPainter& p, int scopeStep) {
    if (scopeStep == 1) PaintProtectedBadge(p);
    if (scopeStep == 2) PaintPrivateBadge(p);
}

// A tan folder with a tab, holding the small picture of what it holds.
void PaintFolder(QPainter& p) {
    Outline(p, kFolderEdge);
    p.setBrush(kFolderFill.darker(112));
    p.drawPolygon(QPolygonF{{1.5, 3.5}, {6.0, 3.5}, {7.5, 5.0}, {14.5, 5.0}, {14.5, 13.5}, {1.5, 13.5}});
    p.setBrush(Shade(kFolderFill, 6, 14));
    p.drawRoundedRect(QRectF(1.5, 6.5, 13, 7), 0.8, 0.8);
}

// A sheet with a folded corner and an optional coloured header band.
void PaintPage(QPainter& p, const QColor& band) {
    Outline(p, kPageEdge);
    p.setBrush(kPageFill);
    p.drawPolygon(QPolygonF{{2.5, 0.5}, {10.0, 0.5}, {13.5, 4.0}, {13.5, 15.5}, {2.5, 15.5}});
    if (band.isValid()) {
        p.setPen(Qt::NoPen);
        p.setBrush(band);
        p.drawRect(QRectF(3.0, 12.0, 10.0, 3.0));
    }
    p.setBrush(QColor(0xD8, 0xDC, 0xE2));
    Outline(p, kPageEdge);
    p.drawPolygon(QPolygonF{{10.0, 0.5}, {10.0, 4.0}, {13.5, 4.0}});
}

void PaintTextLines(QPainter& p, const QColor& colour, const qreal (&indent)[3]) {
    p.setPen(QPen(colour, 1.0, Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < 3; ++i) {
        const qreal y = 4.5 + 2.5 * i;
        p.drawLine(QPointF(4.5 + indent[i], y), QPointF(i == 0 ? 9.0 : 11.5, y));
    }
}

// Implementation: indented code lines, blue band.
void PaintImplementationFile(QPainter& p) {
    PaintPage(p, QColor(0x2F, 0x6F, 0xD0));
    PaintTextLines(p, QColor(0x2F, 0x6F, 0xD0), {0, 2, 2});
}

// Definition: a "#" sign, purple band.
void PaintDefinitionFile(QPainter& p) {
    const QColor purple(0x8E, 0x44, 0xAD);
    PaintPage(p, purple);
    p.setPen(QPen(purple, 1.1, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(6.5, 3.5), QPointF(5.7, 10.5));
    p.drawLine(QPointF(9.7, 3.5), QPointF(8.9, 10.5));
    p.drawLine(QPointF(4.6, 5.6), QPointF(11.2, 5.6));
    p.drawLine(QPointF(4.2, 8.4), QPointF(10.8, 8.4));
}

// Form: a little window with a title bar and a button, orange band.
void PaintFormFile(QPainter& p) {
    const QColor orange(0xE6, 0x7E, 0x22);
    PaintPage(p, orange);
    Outline(p, QColor(0x8A, 0x48, 0x10), 0.8);
    p.setBrush(QColor(0xFD, 0xEB, 0xD0));
    p.drawRect(QRectF(4.2, 4.8, 7.6, 5.8));
    p.setPen(Qt::NoPen);
    p.setBrush(orange);
    p.drawRect(QRectF(4.2, 4.8, 7.6, 1.6));
    p.setBrush(QColor(0x8A, 0x48, 0x10));
    p.drawRect(QRectF(8.2, 8.2, 2.8, 1.4));
}

// Anything else: a plain sheet of grey text.
void PaintOtherFile(QPainter& p) {
    PaintPage(p, QColor());
    PaintTextLines(p, QColor(0x9A, 0xA0, 0xA8), {0, 0, 0});
}

// The project: a blue box; opened, its lid stands up.
void PaintProject(QPainter& p, bool open) {
    Outline(p, kProjectEdge);
    p.setBrush(Shade(kProjectFill, 6, 15));
    p.drawRoundedRect(QRectF(1.5, 6.5, 13, 8.5), 1.2, 1.2);
    p.setBrush(kProjectFill.lighter(130));
    if (open) {
        p.drawPolygon(QPolygonF{{1.5, 6.5}, {3.5, 1.5}, {12.5, 1.5}, {14.5, 6.5}});
        p.setPen(Qt::NoPen);
        p.setBrush(kProjectEdge.darker(130));
        p.drawRect(QRectF(2.2, 6.9, 11.6, 1.2));
    } else {
        p.drawRoundedRect(QRectF(1.0, 3.5, 14, 3.5), 1, 1);
    }
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xFF, 0xE0, 0x70));
    p.drawRoundedRect(QRectF(6.2, open ? 8.6 : 5.0, 3.6, 2.6), 0.6, 0.6);
}

void Paint(QPainter& p, int image) {
    switch (image) {
    case 1: PaintClass(p); break;
    case ImageList::kVariablesFolder:
        PaintFolder(p);
        PaintVariable(p, QRectF(7.0, 9.0, 8.0, 5.5));
        break;
    case 3: case 4: case 5:
        PaintVariable(p, QRectF(1.5, 3.5, 13.0, 8.5));
        PaintScopeBadge(p, image - 3);
        break;
    case 6: case 7: case 8:
        PaintFunction(p, QRectF(1.0, 1.5, 13.0, 13.0));
        PaintScopeBadge(p, image - 6);
        break;
    case ImageList::kFunctionsFolder:
        PaintFolder(p);
        PaintFunction(p, QRectF(7.5, 7.5, 8.0, 8.0));
        break;
    case 10: PaintProject(p, false); break;
    case 11: PaintProject(p, true); break;
    case 12: PaintImplementationFile(p); break;
    case 13: PaintDefinitionFile(p); break;
    case 14: PaintFormFile(p); break;
    case 15: PaintOtherFile(p); break;
    default: break;
    }
}

}  // namespace

QImage ImageList::Render(int image, qreal devicePixelRatio) {
    const int side = qRound(kSize * devicePixelRatio);
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    canvas.setDevicePixelRatio(devicePixelRatio);
    QPainter p(&canvas);
    p.setRenderHint(QPainter::Antialiasing);
    Paint(p, image);
    return canvas;
}

ImageList::ImageList() {
    for (int image = 1; image <= kCount; ++image) {
        for (qreal ratio : {1.0, 2.0, 3.0}) icons_[image - 1].addPixmap(QPixmap::fromImage(Render(image, ratio)));
    }
}

const ImageList& ImageList::Instance() {
    static const ImageList list;
    return list;
}

const QIcon& ImageList::Icon(int image) const {
    return image >= 1 && image <= kCount ? icons_[image - 1] : none_;
}

}  // namespace kestrel::qt
