#include "scene/CameraModel.h"

#include <algorithm>
#include <cmath>

namespace zelmar::camera {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

double dot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
void cross(const double a[3], const double b[3], double out[3]) {
    const double r[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    out[0] = r[0], out[1] = r[1], out[2] = r[2];
}
double length(const double a[3]) {
    return std::sqrt(dot(a, a));
}
bool finite3(const double a[3]) {
    return std::isfinite(a[0]) && std::isfinite(a[1]) && std::isfinite(a[2]);
}
// Normalises in place; false (vector untouched) for zero or non-finite input.
bool normalise(double a[3]) {
    if (!finite3(a)) return false;
    const double len = length(a);
    if (!(len > 1e-300) || !std::isfinite(len)) return false;
    a[0] /= len, a[1] /= len, a[2] /= len;
    return true;
}
void copy3(const double a[3], double out[3]) {
    out[0] = a[0], out[1] = a[1], out[2] = a[2];
}
// Rodrigues rotation of v about the unit axis k.
void rotate(double v[3], const double k[3], double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    double kxv[3];
    cross(k, v, kxv);
    const double kd = dot(k, v) * (1 - c);
    for (int i = 0; i < 3; ++i)
        v[i] = v[i] * c + kxv[i] * s + k[i] * kd;
}

} // namespace

bool validZoom(double degrees) {
    return std::isfinite(degrees) && degrees > kMinZoom && degrees < kMaxZoom;
}

bool setAxisSystem(Camera& c, const double x[3], const double y[3], const double z[3]) {
    if (!x || !z || !finite3(x) || !finite3(z) || (y && !finite3(y))) return false;
    double nx[3], ny[3], nz[3];
    copy3(x, nx);
    if (!normalise(nx)) return false;
    // Gram-Schmidt: keep the view direction exactly, then the up axis; left follows.
    copy3(z, nz);
    const double d = dot(nz, nx);
    for (int i = 0; i < 3; ++i)
        nz[i] -= d * nx[i];
    if (!normalise(nz)) {
        // Up parallel to the view: fall back on the given left axis.
        if (!y) return false;
        double ly[3];
        copy3(y, ly);
        const double e = dot(ly, nx);
        for (int i = 0; i < 3; ++i)
            ly[i] -= e * nx[i];
        if (!normalise(ly)) return false;
        cross(nx, ly, nz);
    }
    cross(nz, nx, ny);
    copy3(nx, c.axis[0]);
    copy3(ny, c.axis[1]);
    copy3(nz, c.axis[2]);
    return true;
}

bool setDirection(Camera& c, const double dir[3], bool level) {
    if (!dir) return false;
    double d[3];
    copy3(dir, d);
    if (!normalise(d)) return false;
    if (level) {
        const double head = headDegrees(c);
        const double tilt = std::asin(std::clamp(d[2], -1.0, 1.0)) / kDeg;
        const bool vertical = std::hypot(d[0], d[1]) < 1e-12;
        setAngles(c, vertical ? head : std::atan2(d[1], d[0]) / kDeg, tilt, 0.0);
        copy3(d, c.axis[0]); // exact direction, free of trigonometric round-off
        cross(c.axis[0], c.axis[1], c.axis[2]);
        normalise(c.axis[2]);
        cross(c.axis[2], c.axis[0], c.axis[1]);
        return true;
    }
    // Smallest rotation taking the present view direction onto d.
    double k[3];
    cross(c.axis[0], d, k);
    const double s = length(k), cosA = std::clamp(dot(c.axis[0], d), -1.0, 1.0);
    if (s < 1e-15) {
        if (cosA > 0) return true;
        copy3(c.axis[2], k); // opposite: half a turn about up
    } else {
        k[0] /= s, k[1] /= s, k[2] /= s;
    }
    const double angle = std::atan2(s, cosA);
    for (auto& row : c.axis)
        rotate(row, k, angle);
    copy3(d, c.axis[0]);
    return setAxisSystem(c, c.axis[0], c.axis[1], c.axis[2]);
}

bool pointAt(Camera& c, const double point[3]) {
    if (!point) return false;
    const double d[3] = {point[0] - c.location[0], point[1] - c.location[1], point[2] - c.location[2]};
    return setDirection(c, d, true);
}

void rotateAboutOwnAxis(Camera& c, int axis, double radians) {
    if (axis < 0 || axis > 2 || !std::isfinite(radians)) return;
    double k[3];
    copy3(c.axis[axis], k);
    for (int i = 0; i < 3; ++i)
        if (i != axis) rotate(c.axis[i], k, radians);
    setAxisSystem(c, c.axis[0], c.axis[1], c.axis[2]);
}

double headDegrees(const Camera& c) {
    const double* x = c.axis[0];
    if (std::hypot(x[0], x[1]) > 1e-12) return std::atan2(x[1], x[0]) / kDeg;
    // Looking straight down the up axis points the way the head faces; straight up, away.
    const double* z = c.axis[2];
    return x[2] < 0 ? std::atan2(z[1], z[0]) / kDeg : std::atan2(-z[1], -z[0]) / kDeg;
}

double tiltDegrees(const Camera& c) {
    return std::asin(std::clamp(c.axis[0][2], -1.0, 1.0)) / kDeg;
}

double bankDegrees(const Camera& c) {
    const double* x = c.axis[0];
    if (std::hypot(x[0], x[1]) <= 1e-12) return 0.0;
    // The level frame for this view direction, then the angle of the actual left axis in it.
    const double up[3] = {0, 0, 1};
    double y0[3], z0[3];
    cross(up, x, y0);
    normalise(y0);
    cross(x, y0, z0);
    return std::atan2(dot(c.axis[1], z0), dot(c.axis[1], y0)) / kDeg;
}

void setAngles(Camera& c, double headDeg, double tiltDeg, double bankDeg) {
    if (!std::isfinite(headDeg) || !std::isfinite(tiltDeg) || !std::isfinite(bankDeg)) return;
    const double h = headDeg * kDeg, t = tiltDeg * kDeg, b = bankDeg * kDeg;
    const double ch = std::cos(h), sh = std::sin(h), ct = std::cos(t), st = std::sin(t);
    // Level frame: Rz(head) * Ry(-tilt) applied to the world axes.
    double x[3] = {ch * ct, sh * ct, st};
    double y[3] = {-sh, ch, 0};
    double z[3] = {-ch * st, -sh * st, ct};
    // Bank: right-handed turn of left and up about the view direction.
    const double cb = std::cos(b), sb = std::sin(b);
    for (int i = 0; i < 3; ++i) {
        const double yi = y[i], zi = z[i];
        y[i] = cb * yi + sb * zi;
        z[i] = -sb * yi + cb * zi;
    }
    copy3(x, c.axis[0]);
    copy3(y, c.axis[1]);
    copy3(z, c.axis[2]);
}

void worldToCamera(const Camera& c, const double world[3], double out[3]) {
    const double d[3] = {world[0] - c.location[0], world[1] - c.location[1], world[2] - c.location[2]};
    const double r[3] = {dot(d, c.axis[0]), dot(d, c.axis[1]), dot(d, c.axis[2])};
    copy3(r, out);
}

void cameraToWorld(const Camera& c, const double local[3], double out[3]) {
    double r[3];
    for (int i = 0; i < 3; ++i)
        r[i] = c.location[i] + local[0] * c.axis[0][i] + local[1] * c.axis[1][i] + local[2] * c.axis[2][i];
    copy3(r, out);
}

void viewMatrix(const Camera& c, double m[16]) {
    for (int r = 0; r < 3; ++r) {
        for (int k = 0; k < 3; ++k)
            m[r * 4 + k] = c.axis[r][k];
        m[r * 4 + 3] = -dot(c.axis[r], c.location);
    }
    m[12] = m[13] = m[14] = 0;
    m[15] = 1;
}

double focalPixels(const Camera& c, int width) {
    return 0.5 * width / std::tan(0.5 * c.zoom * kDeg);
}

namespace {
// Pixels per world unit of a parallel camera, horizontally and vertically. Without a
// stored width the view is as wide as the field of view at the projection plane.
void parallelScale(const Camera& c, int width, int height, double& sx, double& sy) {
    double w = c.parallelWidth;
    if (!(w > 0)) w = 2.0 * c.distanceFromEye * std::tan(0.5 * c.zoom * kDeg);
    if (!(w > 0)) w = 1.0;
    sx = width / w;
    sy = c.parallelHeight > 0 ? height / c.parallelHeight : sx;
}
} // namespace

bool project(const Camera& c, int width, int height, const double world[3], double& sx, double& sy,
             double& depth) {
    double p[3];
    worldToCamera(c, world, p);
    depth = p[0];
    const double cx = 0.5 * width, cy = 0.5 * height;
    if (!c.perspective) {
        double kx, ky;
        parallelScale(c, width, height, kx, ky);
        sx = cx - p[1] * kx;
        sy = cy - p[2] * ky;
        return true;
    }
    if (!(p[0] >= c.distanceFromEye) || p[0] <= 0) return false;
    const double f = focalPixels(c, width);
    sx = cx - f * p[1] / p[0];
    sy = cy - f * p[2] / p[0];
    return true;
}

void rayThrough(const Camera& c, int width, int height, double sx, double sy, double origin[3],
                double dir[3]) {
    const double cx = 0.5 * width, cy = 0.5 * height;
    if (!c.perspective) {
        double kx, ky;
        parallelScale(c, width, height, kx, ky);
        const double local[3] = {0, (cx - sx) / kx, (cy - sy) / ky};
        cameraToWorld(c, local, origin);
        copy3(c.axis[0], dir);
        return;
    }
    const double f = focalPixels(c, width);
    double local[3] = {1.0, (cx - sx) / f, (cy - sy) / f};
    double d[3];
    for (int i = 0; i < 3; ++i)
        d[i] = local[0] * c.axis[0][i] + local[1] * c.axis[1][i] + local[2] * c.axis[2][i];
    const double near = c.distanceFromEye > 0 ? c.distanceFromEye : 0.0;
    for (int i = 0; i < 3; ++i)
        origin[i] = c.location[i] + d[i] * near;
    copy3(d, dir);
    normalise(dir);
}

void locationToFit(const Camera& c, const double box[6], double out[3]) {
    double centre[3], half[3];
    for (int i = 0; i < 3; ++i) {
        centre[i] = 0.5 * (box[i] + box[i + 3]);
        half[i] = 0.5 * std::fabs(box[i + 3] - box[i]);
    }
    const double radius = length(half);
    const double s = std::sin(0.5 * c.zoom * kDeg);
    const double dist = c.perspective ? radius / (s > 1e-12 ? s : 1e-12) : radius + c.distanceFromEye;
    for (int i = 0; i < 3; ++i)
        out[i] = centre[i] - c.axis[0][i] * dist;
}

} // namespace zelmar::camera
