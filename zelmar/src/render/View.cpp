#include "render/View.h"

#include <algorithm>
#include <cmath>

namespace zelmar::render {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kPixelLimit = 1e6; // integer results are clamped to this

double dot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

bool finite(const double* a, int n) {
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(a[i])) return false;
    return true;
}

// A point exactly on a pixel boundary belongs to the pixel after it, whatever the last bit
// of rounding in the transform did.
int toPixel(double s) {
    return static_cast<int>(std::floor(std::clamp(s, -kPixelLimit, kPixelLimit) + 1e-7));
}

} // namespace

void View::toCamera(const double world[3], double out[3]) const {
    const double d[3] = {world[0] - eye[0], world[1] - eye[1], world[2] - eye[2]};
    out[0] = dot(d, axis[0]);
    out[1] = dot(d, axis[1]);
    out[2] = dot(d, axis[2]);
}

void View::toScreen(const double cam[3], double& sx, double& sy) const {
    if (perspective) {
        const double k = focal / cam[0];
        sx = cx - cam[1] * k;
        sy = cy - cam[2] * k;
    } else {
        sx = cx - cam[1] * scale;
        sy = cy - cam[2] * scale;
    }
}

void View::ray(double sx, double sy, double origin[3], double dir[3]) const {
    double local[3]; // camera-space direction (perspective) or offset (parallel)
    if (perspective) {
        local[0] = 1.0;
        local[1] = (cx - sx) / focal;
        local[2] = (cy - sy) / focal;
        for (int i = 0; i < 3; ++i)
            origin[i] = eye[i];
        for (int i = 0; i < 3; ++i)
            dir[i] = local[0] * axis[0][i] + local[1] * axis[1][i] + local[2] * axis[2][i];
    } else {
        const double left = (cx - sx) / scale, up = (cy - sy) / scale;
        for (int i = 0; i < 3; ++i) {
            origin[i] = eye[i] + left * axis[1][i] + up * axis[2][i];
            dir[i] = axis[0][i];
        }
    }
    const double len = std::sqrt(dot(dir, dir));
    if (len > 0)
        for (int i = 0; i < 3; ++i)
            dir[i] /= len;
}

bool makeView(const Camera& c, int width, int height, View& v) {
    if (width <= 0 || height <= 0) return false;
    if (!finite(c.location, 3) || !finite(&c.axis[0][0], 9) || !std::isfinite(c.zoom)) return false;
    v = View{};
    for (int i = 0; i < 3; ++i)
        v.eye[i] = c.location[i];
    for (int r = 0; r < 3; ++r) {
        double len = std::sqrt(dot(c.axis[r], c.axis[r]));
        if (!(len > 1e-300)) return false;
        for (int i = 0; i < 3; ++i)
            v.axis[r][i] = c.axis[r][i] / len;
    }
    v.width = width;
    v.height = height;
    v.cx = width * 0.5;
    v.cy = height * 0.5;
    v.perspective = c.perspective;
    const double zoom = std::clamp(c.zoom, 1e-6, 179.999);
    v.focal = v.cx / std::tan(zoom * 0.5 * kPi / 180.0);
    const double dfe = std::isfinite(c.distanceFromEye) ? c.distanceFromEye : 0.0;
    v.nearDepth = std::max(dfe, 1e-9);
    if (!v.perspective) {
        double w = c.parallelWidth;
        if (!(w > 0) || !std::isfinite(w)) w = 2.0 * v.nearDepth * std::tan(zoom * 0.5 * kPi / 180.0);
        if (!(w > 0)) w = 1.0;
        v.scale = width / w;
        v.nearDepth = -1e300; // a parallel view draws at any depth
    }
    return true;
}

int projectPoint(const View& v, const double p[3], int out[2]) {
    if (!finite(p, 3)) return -1;
    double cam[3];
    v.toCamera(p, cam);
    if (v.perspective && !(cam[0] > 0)) return -1;
    double sx, sy;
    v.toScreen(cam, sx, sy);
    out[0] = toPixel(sx);
    out[1] = toPixel(sy);
    if (v.perspective && cam[0] < v.nearDepth) return 2;
    if (sx < 0 || sy < 0 || sx >= v.width || sy >= v.height) return 1;
    return 0;
}

// Clips the camera-space segment a-b against the view volume: near plane and the four
// sides of the target. t0, t1: the kept parameter range.
static bool clipSegment(const View& v, const double a[3], const double b[3], double& t0, double& t1) {
    t0 = 0.0;
    t1 = 1.0;
    // Each plane as f(p) = k0 * depth + k1 * left + k2 * up + k3 >= 0.
    double planes[5][4];
    int n = 0;
    if (v.perspective) {
        const double f = v.focal;
        planes[n][0] = 1, planes[n][1] = 0, planes[n][2] = 0, planes[n][3] = -v.nearDepth, ++n;
        // 0 <= sx = cx - left*f/d <= w  <=>  cx*d - f*left >= 0 and (w-cx)*d + f*left >= 0
        planes[n][0] = v.cx, planes[n][1] = -f, planes[n][2] = 0, planes[n][3] = 0, ++n;
        planes[n][0] = v.width - v.cx, planes[n][1] = f, planes[n][2] = 0, planes[n][3] = 0, ++n;
        planes[n][0] = v.cy, planes[n][1] = 0, planes[n][2] = -f, planes[n][3] = 0, ++n;
        planes[n][0] = v.height - v.cy, planes[n][1] = 0, planes[n][2] = f, planes[n][3] = 0, ++n;
    } else {
        const double s = v.scale;
        planes[n][0] = 0, planes[n][1] = -s, planes[n][2] = 0, planes[n][3] = v.cx, ++n;
        planes[n][0] = 0, planes[n][1] = s, planes[n][2] = 0, planes[n][3] = v.width - v.cx, ++n;
        planes[n][0] = 0, planes[n][1] = 0, planes[n][2] = -s, planes[n][3] = v.cy, ++n;
        planes[n][0] = 0, planes[n][1] = 0, planes[n][2] = s, planes[n][3] = v.height - v.cy, ++n;
    }
    for (int i = 0; i < n; ++i) {
        const double* k = planes[i];
        const double fa = k[0] * a[0] + k[1] * a[1] + k[2] * a[2] + k[3];
        const double fb = k[0] * b[0] + k[1] * b[1] + k[2] * b[2] + k[3];
        if (fa < 0 && fb < 0) return false;
        if (fa >= 0 && fb >= 0) continue;
        const double t = fa / (fa - fb);
        if (fa < 0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1) return false;
    }
    return true;
}

int projectEdge(const View& v, const double p1[3], const double p2[3], int r1[2], int r2[2]) {
    if (!finite(p1, 3) || !finite(p2, 3)) return 0;
    double a[3], b[3];
    v.toCamera(p1, a);
    v.toCamera(p2, b);
    double t0, t1;
    if (!clipSegment(v, a, b, t0, t1)) return 0;
    double ca[3], cb[3];
    for (int i = 0; i < 3; ++i) {
        ca[i] = a[i] + (b[i] - a[i]) * t0;
        cb[i] = a[i] + (b[i] - a[i]) * t1;
    }
    double sx, sy;
    v.toScreen(ca, sx, sy);
    r1[0] = toPixel(std::clamp(sx, 0.0, v.width - 0.5));
    r1[1] = toPixel(std::clamp(sy, 0.0, v.height - 0.5));
    v.toScreen(cb, sx, sy);
    r2[0] = toPixel(std::clamp(sx, 0.0, v.width - 0.5));
    r2[1] = toPixel(std::clamp(sy, 0.0, v.height - 0.5));
    return (t0 == 0.0 && t1 == 1.0) ? 1 : -1;
}

} // namespace zelmar::render
