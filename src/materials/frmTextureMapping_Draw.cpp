// The texture map editor's picture: the visible part of the bitmap, the group's polygons in bitmap space,
// the selected points, the rubber band; all into the back buffer, then one copy to the screen.
#include "frmTextureMapping.h"

#include "BufferDrawing.h"
#include "PolygonLists.h"
#include "TextureImages.h"
#include "TextureMapPicture.h"
#include "selection/SelectionState.h"

#include <QPainter>
#include <cmath>
#include <cstring>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

const QRgb kWhite = qRgb(255, 255, 255);
const QRgb kBlue = qRgb(0, 0, 255);
const QRgb kFrame = qRgb(0, 0, 0);
const QRgb kSelectedPolygon = qRgb(255, 255, 0);

} // namespace

void frmTextureMapping::PicMain_Paint() {
    m_bufferDirty = true;
    PicMain->update();
}

const QImage& frmTextureMapping::BackBuffer() {
    if (m_bufferDirty) render();
    return m_buffer;
}

void frmTextureMapping::render() {
    m_bufferDirty = false;
    syncGroup();
    m_bufferDirty = false; // syncGroup may have asked again
    const QSize box = PicMain->size();
    if (m_buffer.size() != box) m_buffer = QImage(box, QImage::Format_RGB32);
    if (!m_backgroundValid || m_background.size() != box) {
        if (m_background.size() != box) m_background = QImage(box, QImage::Format_RGB32);
        DrawImg(m_background);
        m_backgroundValid = true;
    }
    // The background into the buffer, without a new allocation.
    std::memcpy(m_buffer.bits(), m_background.constBits(), std::size_t(m_buffer.sizeInBytes()));
    DrawMapCoor(m_buffer);
    DrawSelectedPts(m_buffer);
    if (!m_band.isNull()) {
        const QRgb c = m_bandMode == 1 ? qRgb(0, 255, 0) : m_bandMode == 2 ? qRgb(0, 0, 255) : qRgb(0, 255, 255);
        BufferBox(m_buffer, m_band.left(), m_band.top(), m_band.right(), m_band.bottom(), c);
    }
}

void frmTextureMapping::DrawImg(QImage& into) {
    into.fill(kWhite);
    const int boxW = into.width(), boxH = into.height();
    const int x0 = ImgLeft + PanX, y0 = ImgTop + PanY;
    const QRect picture(x0, y0, std::max(1, ImgWidth), std::max(1, ImgHeight));
    const QRect visible = picture.intersected(QRect(0, 0, boxW, boxH));
    // One bitmap pixel more than 100 screen pixels wide or tall, or a picture wholly outside: only cleared.
    const bool huge = MapWidth > 0 && MapHeight > 0 &&
                      (double(ImgWidth) / MapWidth > 100 || double(ImgHeight) / MapHeight > 100);
    if (visible.isEmpty() || huge) return;
    if (TextureOn() && m_bitmap && ZELMAR_bitmap_is_bitmap(m_bitmap)) {
        const QImage view = BitmapView(m_bitmap);
        // Only the visible part is stretched: its source rectangle in bitmap pixels.
        const double kx = double(MapWidth) / ImgWidth, ky = double(MapHeight) / ImgHeight;
        const QRectF source((visible.left() - x0) * kx, (visible.top() - y0) * ky, visible.width() * kx,
                            visible.height() * ky);
        QPainter p(&into);
        p.drawImage(QRectF(visible), view, source);
    }
    BufferBox(into, x0, y0, x0 + ImgWidth, y0 + ImgHeight, kFrame);
}

void frmTextureMapping::drawPolygons(QImage& into, const std::vector<int>& polygons, const QColor& colour) {
    const QRgb c = colour.rgb();
    const double ox = ImgLeft + PanX, oy = ImgTop + PanY;
    for (int p : polygons) {
        double firstX = 0, firstY = 0, prevX = 0, prevY = 0;
        bool first = true;
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(pt, uv);
            const double x = ox + ImgWidth * uv[0], y = oy + ImgHeight * uv[1];
            const int ix = int(std::floor(x)), iy = int(std::floor(y));
            BufferBox(into, ix - 2, iy - 2, ix + 2, iy + 2, c);
            if (first) {
                firstX = x, firstY = y;
                first = false;
            } else {
                BufferLine(into, prevX, prevY, x, y, c);
            }
            prevX = x, prevY = y;
        }
        if (!first) BufferLine(into, prevX, prevY, firstX, firstY, c);
    }
}

void frmTextureMapping::DrawMapCoor(QImage& into) {
    if (!m_group || !ZELMAR_group_is_group(m_group) || Sel().CurrSelEntityType != 1) return;
    if (SelectedOnly()) {
        drawPolygons(into, SelectedPolygons(), Qt::white);
        return;
    }
    drawPolygons(into, GroupPolygons(m_group), Qt::white);
    // The selected polygons stand out over the others.
    if (Sel().SelPols.Count() > 0) drawPolygons(into, SelectedPolygons(), QColor(kSelectedPolygon));
}

void frmTextureMapping::DrawSelectedPts(QImage& into) {
    const int w = into.width(), h = into.height();
    for (const PointOfPolygon& s : ListedPoints()) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(s.point, uv);
        const QPointF q = ScreenOf(uv[0], uv[1]);
        if (q.x() < 0 || q.y() < 0 || q.x() >= w || q.y() >= h) continue;
        const int ix = int(std::floor(q.x())), iy = int(std::floor(q.y()));
        BufferBox(into, ix - 2, iy - 2, ix + 2, iy + 2, kBlue);
    }
}

} // namespace vexil
