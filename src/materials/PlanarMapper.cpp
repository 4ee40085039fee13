#include "PlanarMapper.h"

#include "base/VexilError.h"
#include "maths/Maths.h"

#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

using V3 = std::array<double, 3>;

double dot(const V3& a, const V3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// A vector projected on the plane through the origin with normal n.
V3 onPlane(const V3& p, const V3& n) {
    const double nn = dot(n, n);
    const double k = -checkedDiv(dot(n, p), nn);
    return {p[0] + k * n[0], p[1] + k * n[1], p[2] + k * n[2]};
}

// The angle to an axis, folded into 0..90.
double foldedAngle(const V3& n, const V3& axis) {
    double a = Maths::angleBetVectors({n[0], n[1], n[2]}, {axis[0], axis[1], axis[2]});
    if (a > 90.0) a = 180.0 - a;
    return a;
}

} // namespace

MappingAxes PlanarMappingAxes(int option, const std::vector<int>& polygons) {
    return propagate("PlanarMapper", "PlanarMappingAxes", [&] {
        static const V3 X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1};
        MappingAxes m;
        switch (option) {
        case 1: m = {Y, X, {0, 0, -1}}; break;
        case 2: m = {Z, Y, X}; break;
        case 3: {
            V3 sum{0, 0, 0};
            for (int p : polygons) {
                double plane[4] = {0, 0, 0, 0};
                ZELMAR_polygon_get_plane(p, plane);
                for (int i = 0; i < 3; ++i) sum[i] += plane[i];
            }
            V3 n = sum;
            if (!polygons.empty())
                for (double& c : n) c /= double(polygons.size());
            const double len = std::sqrt(dot(n, n));
            if (len > 0)
                for (double& c : n) c /= len;
            // The exact sum, so that (1,-1,0) falls back as well as the zero vector.
            if (n[0] + n[1] + n[2] == 0.0) {
                m = {X, Y, {0, 0, -1}};
                break;
            }
            const double ax = foldedAngle(n, X), ay = foldedAngle(n, Y), az = foldedAngle(n, Z);
            m.n = n;
            if (ax <= ay && ax <= az) m.u = Z, m.v = Y;
            else if (ay <= az) m.u = Z, m.v = X;
            else m.u = X, m.v = Y;
            break;
        }
        default: m = {X, Y, {0, 0, -1}}; break;
        }
        m.u = onPlane(m.u, m.n);
        m.v = onPlane(m.v, m.n);
        return m;
    });
}

std::vector<std::array<double, 2>> PlanarMapPoints(int option, const std::vector<int>& polygons,
                                                   const std::vector<PointOfPolygon>& points) {
    return propagate("PlanarMapper", "PlanarMap", [&] {
        const MappingAxes m = PlanarMappingAxes(option, polygons);
        const double lu = std::sqrt(dot(m.u, m.u)), lv = std::sqrt(dot(m.v, m.v));
        double minU = 9e300, minV = 9e300, maxU = -9e300, maxV = -9e300;
        std::vector<std::array<double, 2>> uvs(points.size());
        // First pass: the scalar projections. They are kept here rather than written and read back: the
        // second pass gives every point its final pair, and a failure leaves the points untouched.
        for (std::size_t i = 0; i < points.size(); ++i) {
            V3 xyz;
            ZELMAR_point_get_xyz(points[i].point, xyz.data());
            const V3 q = onPlane(xyz, m.n);
            std::array<double, 2>& uv = uvs[i];
            uv = {checkedDiv(dot(q, m.u), lu), checkedDiv(dot(q, m.v), lv)};
            minU = std::min(minU, uv[0]), maxU = std::max(maxU, uv[0]);
            minV = std::min(minV, uv[1]), maxV = std::max(maxV, uv[1]);
        }
        if (points.empty()) return uvs;
        // Second pass: one range for both directions keeps the bitmap's proportions on the surface.
        const double range = std::max(maxU - minU, maxV - minV);
        for (std::size_t i = 0; i < points.size(); ++i) {
            std::array<double, 2>& uv = uvs[i];
            uv = {checkedDiv(uv[0] - minU, range), checkedDiv(uv[1] - minV, range)};
            ZELMAR_point_set_bitmap_xy(points[i].point, uv.data());
        }
        return uvs;
    });
}

void PlanarMap(int option, const std::vector<int>& polygons) {
    PlanarMapPoints(option, polygons, PolygonPointPairs(polygons));
}

} // namespace vexil
