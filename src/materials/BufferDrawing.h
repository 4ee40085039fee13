// Plain drawing into a 32-bit back buffer, for pictures of many thin lines and small boxes (the texture map
// editor draws every point of a group): one-pixel lines clipped to the image, hollow boxes, filled
// rectangles. Far cheaper than a general painter for hundreds of thousands of short lines.
#pragma once
#include <QImage>

namespace vexil {

// A line from (x0, y0) to (x1, y1), both ends drawn, clipped to the image.
void BufferLine(QImage& img, double x0, double y0, double x1, double y1, QRgb colour);
// The outline of the rectangle from (x0, y0) to (x1, y1), corners included, clipped to the image.
void BufferBox(QImage& img, int x0, int y0, int x1, int y1, QRgb colour);
// A filled rectangle (edges included), clipped.
void BufferFill(QImage& img, int x0, int y0, int x1, int y1, QRgb colour);

} // namespace vexil
