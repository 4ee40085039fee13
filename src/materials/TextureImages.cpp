#include "TextureImages.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>

namespace vexil {
namespace {

void folder(QPainter& p, bool open) {
    p.setPen(QColor(150, 110, 20));
    p.setBrush(QColor(250, 205, 80));
    p.drawRect(QRectF(1.5, 2.5, 5, 2));
    if (open) {
        p.drawRect(QRectF(1.5, 4.5, 12, 9));
        p.setBrush(QColor(255, 225, 130));
        p.drawPolygon(QPolygonF({{3.5, 7.5}, {15.5, 7.5}, {13.5, 13.5}, {1.5, 13.5}}));
    } else {
        p.drawRect(QRectF(1.5, 4.5, 13, 9));
    }
}

void texture(QPainter& p) {
    p.setPen(QColor(60, 60, 60));
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x) {
            p.setBrush((x + y) % 2 ? QColor(200, 90, 60) : QColor(240, 220, 180));
            p.drawRect(QRectF(1.5 + 4 * x, 1.5 + 4 * y, 4, 4));
        }
}

void warning(QPainter& p) {
    p.setPen(QColor(150, 40, 0));
    p.setBrush(QColor(255, 200, 0));
    p.drawPolygon(QPolygonF({{11, 7.5}, {15.5, 15.5}, {6.5, 15.5}}));
    p.setPen(QPen(QColor(80, 20, 0), 1.5));
    p.drawLine(QPointF(11, 10), QPointF(11, 13));
    p.drawPoint(QPointF(11, 14.6));
}

} // namespace

QIcon TextureImage(const QString& name) {
    static QHash<QString, QIcon> cache;
    auto it = cache.find(name);
    if (it != cache.end()) return *it;
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    {
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        if (name == QLatin1String("Folder")) folder(p, false);
        else if (name == QLatin1String("FolderOpen")) folder(p, true);
        else {
            texture(p);
            if (name == QLatin1String("Texture Missing")) warning(p);
        }
    }
    return *cache.insert(name, QIcon(pm));
}

PreviewPlace PlacePreview(int frameW, int frameH, int bitmapW, int bitmapH, int captionOffset) {
    PreviewPlace r;
    if (frameW <= 0 || frameH <= 0 || bitmapW <= 0 || bitmapH <= 0) return r;
    const double areaW = frameW * 0.9, areaH = frameH * 0.9;
    if (bitmapW < areaW && bitmapH < areaH) {
        r.width = bitmapW;
        r.height = bitmapH;
    } else {
        const double k = std::min(areaW / bitmapW, areaH / bitmapH); // the tighter side
        r.width = std::max(1, int(bitmapW * k));
        r.height = std::max(1, int(bitmapH * k));
    }
    r.x = (frameW - r.width) / 2;
    r.y = (frameH + captionOffset - r.height) / 2;
    return r;
}

} // namespace vexil

#include <QImage>
#include <zelmar/zelmar.h>

namespace vexil {

QImage BitmapView(int bitmap) {
    const unsigned char* px = ZELMAR_bitmap_get_memory(bitmap);
    const int w = ZELMAR_bitmap_get_width(bitmap), h = ZELMAR_bitmap_get_height(bitmap);
    if (!px || w <= 0 || h <= 0) return {};
    return QImage(px, w, h, qsizetype(w) * 4, QImage::Format_RGBX8888);
}

} // namespace vexil
