#include "BufferDrawing.h"

#include <algorithm>
#include <cmath>

namespace vexil {
namespace {

// Cohen-Sutherland against [0, w-1] x [0, h-1]; false when the segment misses the image.
bool clip(double& x0, double& y0, double& x1, double& y1, double w, double h) {
    auto code = [&](double x, double y) {
        return (x < 0 ? 1 : 0) | (x > w ? 2 : 0) | (y < 0 ? 4 : 0) | (y > h ? 8 : 0);
    };
    int c0 = code(x0, y0), c1 = code(x1, y1);
    for (int guard = 0; guard < 8; ++guard) {
        if (!(c0 | c1)) return true;
        if (c0 & c1) return false;
        const int c = c0 ? c0 : c1;
        double x = 0, y = 0;
        if (c & 8) x = x0 + (x1 - x0) * (h - y0) / (y1 - y0), y = h;
        else if (c & 4) x = x0 + (x1 - x0) * (0 - y0) / (y1 - y0), y = 0;
        else if (c & 2) y = y0 + (y1 - y0) * (w - x0) / (x1 - x0), x = w;
        else y = y0 + (y1 - y0) * (0 - x0) / (x1 - x0), x = 0;
        if (c == c0) x0 = x, y0 = y, c0 = code(x0, y0);
        else x1 = x, y1 = y, c1 = code(x1, y1);
    }
    return false;
}

} // namespace

void BufferLine(QImage& img, double x0, double y0, double x1, double y1, QRgb colour) {
    const int w = img.width(), h = img.height();
    if (w <= 0 || h <= 0) return;
    if (!std::isfinite(x0 + y0 + x1 + y1)) return;
    if (!clip(x0, y0, x1, y1, w - 1, h - 1)) return;
    int ax = int(std::lround(x0)), ay = int(std::lround(y0));
    const int bx = int(std::lround(x1)), by = int(std::lround(y1));
    const int dx = std::abs(bx - ax), sx = ax < bx ? 1 : -1;
    const int dy = -std::abs(by - ay), sy = ay < by ? 1 : -1;
    int err = dx + dy;
    const qsizetype stride = img.bytesPerLine() / 4;
    QRgb* bits = reinterpret_cast<QRgb*>(img.bits());
    for (;;) {
        if (ax >= 0 && ay >= 0 && ax < w && ay < h) bits[ay * stride + ax] = colour;
        if (ax == bx && ay == by) break;
        const int e2 = 2 * err;
        if (e2 >= dy) err += dy, ax += sx;
        if (e2 <= dx) err += dx, ay += sy;
    }
}

void BufferFill(QImage& img, int x0, int y0, int x1, int y1, QRgb colour) {
    x0 = std::max(x0, 0), y0 = std::max(y0, 0);
    x1 = std::min(x1, img.width() - 1), y1 = std::min(y1, img.height() - 1);
    if (x0 > x1 || y0 > y1) return;
    for (int y = y0; y <= y1; ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(img.scanLine(y));
        std::fill(row + x0, row + x1 + 1, colour);
    }
}

void BufferBox(QImage& img, int x0, int y0, int x1, int y1, QRgb colour) {
    if (x0 > x1) std::swap(x0, x1);
    if (y0 > y1) std::swap(y0, y1);
    const int w = img.width(), h = img.height();
    if (x1 < 0 || y1 < 0 || x0 >= w || y0 >= h) return;
    const qsizetype stride = img.bytesPerLine() / 4;
    QRgb* bits = reinterpret_cast<QRgb*>(img.bits());
    const int cx0 = std::max(x0, 0), cx1 = std::min(x1, w - 1), cy0 = std::max(y0, 0), cy1 = std::min(y1, h - 1);
    if (y0 >= 0) std::fill(bits + y0 * stride + cx0, bits + y0 * stride + cx1 + 1, colour);
    if (y1 < h) std::fill(bits + y1 * stride + cx0, bits + y1 * stride + cx1 + 1, colour);
    for (int y = cy0; y <= cy1; ++y) {
        if (x0 >= 0) bits[y * stride + x0] = colour;
        if (x1 < w) bits[y * stride + x1] = colour;
    }
}

} // namespace vexil
