#include "ViewCursors.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <cmath>

namespace vexil {

namespace {

// Glyphs on a 32 x 32 canvas; a black outline under a white stroke keeps them visible on any picture.
using Glyph = void (*)(QPainter&);

void arrow(QPainter& p) {
    QPainterPath a;
    a.moveTo(2, 2);
    a.lineTo(2, 22);
    a.lineTo(7, 17);
    a.lineTo(11, 26);
    a.lineTo(14, 25);
    a.lineTo(10, 16);
    a.lineTo(17, 16);
    a.closeSubpath();
    p.drawPath(a);
}
void cross(QPainter& p) {
    p.drawLine(16, 2, 16, 12);
    p.drawLine(16, 20, 16, 30);
    p.drawLine(2, 16, 12, 16);
    p.drawLine(20, 16, 30, 16);
}
void selectBox(QPainter& p) {
    arrow(p);
    QPen dash = p.pen();
    dash.setStyle(Qt::DotLine);
    p.save();
    p.setPen(dash);
    p.setBrush(Qt::NoBrush);
    p.drawRect(18, 18, 12, 12);
    p.restore();
}
void hand(QPainter& p) {
    for (int i = 0; i < 4; ++i)
        p.drawRoundedRect(8 + i * 5, 4 + (i == 0 || i == 3 ? 4 : 0), 4, 14, 2, 2);
    p.drawRoundedRect(7, 14, 21, 14, 5, 5);
}
void revolve(QPainter& p) {
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(QRectF(4, 9, 24, 14));
    p.drawEllipse(QRectF(12, 3, 8, 26));
    p.setBrush(p.pen().color());
    QPolygonF tip({QPointF(24, 6), QPointF(30, 10), QPointF(23, 12)});
    p.drawPolygon(tip);
}
void zoom(QPainter& p) {
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(QRectF(3, 3, 18, 18));
    QPen thick = p.pen();
    thick.setWidth(4);
    p.setPen(thick);
    p.drawLine(19, 19, 29, 29);
}
void moveCamera(QPainter& p) {
    p.drawRect(6, 12, 14, 10);
    QPolygonF lens({QPointF(20, 14), QPointF(28, 10), QPointF(28, 24), QPointF(20, 20)});
    p.drawPolygon(lens);
    p.drawLine(13, 2, 13, 9);
    p.drawLine(13, 25, 13, 30);
}
void rollCamera(QPainter& p) {
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(4, 4, 24, 24), 30 * 16, 300 * 16);
    p.setBrush(p.pen().color());
    QPolygonF tip({QPointF(25, 4), QPointF(30, 11), QPointF(22, 11)});
    p.drawPolygon(tip);
    p.drawRect(12, 13, 8, 6);
}
void moveArrows(QPainter& p) {
    p.drawLine(16, 2, 16, 30);
    p.drawLine(2, 16, 30, 16);
    for (auto t : {QPolygonF({QPointF(16, 1), QPointF(12, 6), QPointF(20, 6)}),
                   QPolygonF({QPointF(16, 31), QPointF(12, 26), QPointF(20, 26)}),
                   QPolygonF({QPointF(1, 16), QPointF(6, 12), QPointF(6, 20)}),
                   QPolygonF({QPointF(31, 16), QPointF(26, 12), QPointF(26, 20)})})
        p.drawPolygon(t);
}
void rotate(QPainter& p) {
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(5, 5, 22, 22), 90 * 16, 270 * 16);
    p.setBrush(p.pen().color());
    p.drawPolygon(QPolygonF({QPointF(16, 1), QPointF(22, 5), QPointF(16, 10)}));
}
void scale(QPainter& p) {
    p.setBrush(Qt::NoBrush);
    p.drawRect(3, 13, 14, 14);
    p.drawRect(3, 3, 26, 24);
    p.drawLine(12, 18, 26, 6);
    p.setBrush(p.pen().color());
    p.drawPolygon(QPolygonF({QPointF(28, 4), QPointF(21, 6), QPointF(26, 11)}));
}
void align(QPainter& p) {
    p.drawLine(4, 3, 4, 29);
    p.drawRect(8, 6, 16, 7);
    p.drawRect(8, 19, 10, 7);
}

struct Entry {
    Glyph glyph;
    int hotX, hotY;
};

const QHash<QString, Entry>& glyphs() {
    static const QHash<QString, Entry> g = {
        {"Select", {selectBox, 2, 2}},
        {"Cross hair", {cross, 16, 16}},
        {"Pointer", {arrow, 2, 2}},
        {"Pan", {hand, 16, 16}},
        {"Revolve", {revolve, 16, 16}},
        {"Zoom", {zoom, 12, 12}},
        {"Zoom Camera", {zoom, 12, 12}},
        {"Move Camera", {moveCamera, 16, 16}},
        {"Roll Camera", {rollCamera, 16, 16}},
        {"Move", {moveArrows, 16, 16}},
        {"Rotate", {rotate, 16, 16}},
        {"Scale", {scale, 16, 16}},
        {"Align", {align, 4, 16}},
    };
    return g;
}

QPixmap render(Glyph glyph, const QColor& stroke, const QColor& outline) {
    QPixmap pm(32, 32);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QPen under(outline, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(under);
    p.setBrush(outline);
    glyph(p);
    QPen over(stroke, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(over);
    p.setBrush(stroke);
    glyph(p);
    return pm;
}

} // namespace

QCursor ViewCursor(const QString& key) {
    static QHash<QString, QCursor> cache;
    const auto it = cache.find(key);
    if (it != cache.end()) return *it;
    const auto g = glyphs().find(key);
    if (g == glyphs().end()) return QCursor(Qt::ArrowCursor);
    const QCursor c(render(g->glyph, Qt::white, Qt::black), g->hotX, g->hotY);
    cache.insert(key, c);
    return c;
}

QIcon ToolIcon(const QString& key) {
    const auto g = glyphs().find(key);
    if (g == glyphs().end()) return {};
    return QIcon(render(g->glyph, QColor(30, 30, 30), QColor(235, 235, 235)));
}

} // namespace vexil
