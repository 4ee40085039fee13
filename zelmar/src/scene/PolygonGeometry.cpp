#include "scene/PolygonGeometry.h"

#include <algorithm>
#include <cmath>

namespace zelmar {

V3 newellNormal(const Polygon& p) {
    V3 n;
    const size_t k = p.points.size();
    for (size_t i = 0; i < k; ++i) {
        const double* a = p.points[i].xyz;
        const double* b = p.points[(i + 1) % k].xyz;
        n.x += (a[1] - b[1]) * (a[2] + b[2]);
        n.y += (a[2] - b[2]) * (a[0] + b[0]);
        n.z += (a[0] - b[0]) * (a[1] + b[1]);
    }
    return n;
}

V3 ringCentre(const Polygon& p) {
    V3 c;
    if (p.points.empty()) return c;
    for (const PointData& d : p.points)
        c = c + pos(d);
    return c * (1.0 / static_cast<double>(p.points.size()));
}

double ringSize(const Polygon& p) {
    if (p.points.empty()) return 0;
    V3 lo = pos(p.points[0]), hi = lo;
    for (const PointData& d : p.points)
        for (int i = 0; i < 3; ++i) {
            lo[i] = std::min(lo[i], d.xyz[i]);
            hi[i] = std::max(hi[i], d.xyz[i]);
        }
    return std::max({hi.x - lo.x, hi.y - lo.y, hi.z - lo.z});
}

bool hasArea(const Polygon& p) {
    if (p.points.size() < 3) return false;
    const double size = ringSize(p);
    const double n = length(newellNormal(p));
    return std::isfinite(n) && size > 0 && n > 1e-12 * size * size;
}

void polygonPlane(const Polygon& p, double plane[4]) {
    plane[0] = plane[1] = plane[2] = plane[3] = 0;
    if (!hasArea(p)) return;
    const V3 n = normalized(frontNormal(p));
    n.store(plane);
    plane[3] = -dot(n, ringCentre(p));
}

bool allPointsOnPlane(const Polygon& p) {
    if (p.points.size() <= 3) return p.points.size() == 3 ? hasArea(p) : false;
    if (!hasArea(p)) return false;
    double plane[4];
    polygonPlane(p, plane);
    const V3 n(plane);
    const double tol = 1e-6 * std::max(ringSize(p), 1.0);
    for (const PointData& d : p.points)
        if (std::fabs(dot(n, pos(d)) + plane[3]) > tol) return false;
    return true;
}

bool isValidPolygon(const Polygon& p) {
    // hasArea and allPointsOnPlane with each measure of the ring taken once: the same arithmetic, so the
    // same answers, at a quarter of the cost (editors ask this of every touched polygon per mouse step).
    if (p.points.size() < 3) return false;
    const double size = ringSize(p);
    const V3 newell = newellNormal(p);
    const double n = length(newell);
    if (!(std::isfinite(n) && size > 0 && n > 1e-12 * size * size)) return false;
    if (p.points.size() == 3) return true;
    const V3 unit = normalized(newell * -1.0);
    const double d = -dot(unit, ringCentre(p));
    const double tol = 1e-6 * std::max(size, 1.0);
    for (const PointData& pt : p.points)
        if (std::fabs(dot(unit, pos(pt)) + d) > tol) return false;
    return true;
}

namespace {
// The ring projected on the plane that drops the normal's largest component, turned so
// that it runs counter-clockwise in 2D.
struct Ring2D {
    std::vector<double> x, y;
};

Ring2D project(const Polygon& p, V3 n) {
    int drop = 2;
    if (std::fabs(n.x) >= std::fabs(n.y) && std::fabs(n.x) >= std::fabs(n.z))
        drop = 0;
    else if (std::fabs(n.y) >= std::fabs(n.z))
        drop = 1;
    const int ax = (drop + 1) % 3, ay = (drop + 2) % 3;
    const bool flip = n[drop] < 0; // keep counter-clockwise as seen from the normal's side
    Ring2D r;
    r.x.reserve(p.points.size());
    r.y.reserve(p.points.size());
    for (const PointData& d : p.points) {
        r.x.push_back(d.xyz[ax]);
        r.y.push_back(flip ? -d.xyz[ay] : d.xyz[ay]);
    }
    return r;
}

double orient(double ax, double ay, double bx, double by, double cx, double cy) {
    return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
}
} // namespace

bool isConvexPolygon(const Polygon& p) {
    if (!isValidPolygon(p)) return false;
    const V3 n = normalized(newellNormal(p));
    const size_t k = p.points.size();
    const double tol = 1e-9 * ringSize(p) * ringSize(p);
    double turning = 0;
    for (size_t i = 0; i < k; ++i) {
        const V3 a = pos(p.points[(i + k - 1) % k]), b = pos(p.points[i]), c = pos(p.points[(i + 1) % k]);
        const V3 e1 = b - a, e2 = c - b;
        const double s = dot(cross(e1, e2), n);
        if (s < -tol) return false;
        if (length(e1) > 0 && length(e2) > 0) turning += std::atan2(s, dot(e1, e2));
    }
    // One winding: a pentagram turns the same way at every corner but twice around.
    return std::fabs(turning - 2 * 3.14159265358979323846) < 1e-6;
}

std::vector<std::array<uint32_t, 3>> triangulate(const Polygon& p) {
    std::vector<std::array<uint32_t, 3>> out;
    if (!hasArea(p)) return out;
    const uint32_t k = static_cast<uint32_t>(p.points.size());
    if (isConvexPolygon(p)) {
        for (uint32_t i = 1; i + 1 < k; ++i)
            out.push_back({0, i, i + 1});
        return out;
    }
    const Ring2D r = project(p, newellNormal(p));
    std::vector<uint32_t> idx(k);
    for (uint32_t i = 0; i < k; ++i)
        idx[i] = i;
    const double size = ringSize(p);
    const double eps = 1e-12 * size * size;
    auto isEar = [&](size_t ip, size_t ic, size_t in) {
        const uint32_t a = idx[ip], b = idx[ic], c = idx[in];
        if (orient(r.x[a], r.y[a], r.x[b], r.y[b], r.x[c], r.y[c]) <= eps) return false;
        for (size_t j = 0; j < idx.size(); ++j) {
            const uint32_t q = idx[j];
            if (q == a || q == b || q == c) continue;
            // A point of the ring inside (or on the border of) the candidate blocks it.
            if (orient(r.x[a], r.y[a], r.x[b], r.y[b], r.x[q], r.y[q]) >= -eps &&
                orient(r.x[b], r.y[b], r.x[c], r.y[c], r.x[q], r.y[q]) >= -eps &&
                orient(r.x[c], r.y[c], r.x[a], r.y[a], r.x[q], r.y[q]) >= -eps) {
                // A point that coincides with a corner does not block.
                const bool same = (r.x[q] == r.x[a] && r.y[q] == r.y[a]) ||
                                  (r.x[q] == r.x[b] && r.y[q] == r.y[b]) ||
                                  (r.x[q] == r.x[c] && r.y[q] == r.y[c]);
                if (!same) return false;
            }
        }
        return true;
    };
    size_t guard = 0;
    size_t i = 0;
    while (idx.size() > 3 && guard < 2 * idx.size() + 2) {
        const size_t n = idx.size();
        const size_t ip = (i + n - 1) % n, in = (i + 1) % n;
        if (isEar(ip, i, in)) {
            out.push_back({idx[ip], idx[i], idx[in]});
            idx.erase(idx.begin() + static_cast<std::ptrdiff_t>(i));
            guard = 0;
            if (i >= idx.size()) i = 0;
        } else {
            i = (i + 1) % n;
            ++guard;
        }
    }
    if (idx.size() > 3) {
        // A self-crossing ring has no ear left: fan what remains, never give up a polygon.
        for (size_t j = 1; j + 1 < idx.size(); ++j)
            out.push_back({idx[0], idx[j], idx[j + 1]});
    } else if (idx.size() == 3) {
        // The last triangle: skip it only if it has no area (collinear leftovers).
        const uint32_t a = idx[0], b = idx[1], c = idx[2];
        if (std::fabs(orient(r.x[a], r.y[a], r.x[b], r.y[b], r.x[c], r.y[c])) > eps) out.push_back({a, b, c});
    }
    return out;
}

bool pointInside(const Polygon& p, V3 q) {
    if (!hasArea(p)) return false;
    const V3 n = newellNormal(p);
    Ring2D r = project(p, n);
    int drop = 2;
    if (std::fabs(n.x) >= std::fabs(n.y) && std::fabs(n.x) >= std::fabs(n.z))
        drop = 0;
    else if (std::fabs(n.y) >= std::fabs(n.z))
        drop = 1;
    const int ax = (drop + 1) % 3, ay = (drop + 2) % 3;
    const double qx = q[ax], qy = n[drop] < 0 ? -q[ay] : q[ay];
    const size_t k = r.x.size();
    const double eps = 1e-12 * ringSize(p) * ringSize(p);
    bool inside = false;
    for (size_t i = 0, j = k - 1; i < k; j = i++) {
        const double xi = r.x[i], yi = r.y[i], xj = r.x[j], yj = r.y[j];
        // On an edge: inside.
        const double o = orient(xj, yj, xi, yi, qx, qy);
        if (std::fabs(o) <= eps && qx >= std::min(xi, xj) && qx <= std::max(xi, xj) &&
            qy >= std::min(yi, yj) && qy <= std::max(yi, yj))
            return true;
        if ((yi > qy) != (yj > qy) && qx < (xj - xi) * (qy - yi) / (yj - yi) + xi) inside = !inside;
    }
    return inside;
}

std::vector<uint32_t> redundantPoints(const Polygon& p) {
    std::vector<uint32_t> out;
    const size_t k = p.points.size();
    if (k < 3) return out;
    const double size = ringSize(p);
    const double tol = 1e-9 * std::max(size, 1e-300);
    for (size_t i = 0; i < k; ++i) {
        const V3 a = pos(p.points[(i + k - 1) % k]), b = pos(p.points[i]), c = pos(p.points[(i + 1) % k]);
        if (length(b - a) <= tol) {
            out.push_back(static_cast<uint32_t>(i));
            continue;
        }
        const V3 ac = c - a;
        const double l2 = dot(ac, ac), l = std::sqrt(l2);
        if (l <= tol) continue;
        const double t = dot(b - a, ac) / l2;
        if (t > 0 && t < 1 && length(cross(b - a, ac)) / l <= tol) out.push_back(static_cast<uint32_t>(i));
    }
    return out;
}

} // namespace zelmar
