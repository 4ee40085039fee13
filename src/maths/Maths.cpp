// the maths library, module Maths: vectors, lines and planes. Angles are in MathsAngles.cpp.
#include "Maths.h"

#include "MathsDetail.h"
#include "MathsReport.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace Maths {

using detail::at;
using detail::fin;
using detail::grow;
using detail::sq;
using vexil::propagate;

namespace {
// Writes three values into dest (grown to three elements when smaller).
void put3(Vector& dest, double x, double y, double z) {
    grow(dest, 3);
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
}

// VB's conversion to Long: round half to even, Overflow outside the int32 range.
std::int32_t toLong(double x) {
    const double r = std::nearbyint(fin(x));
    if (r < std::numeric_limits<std::int32_t>::min() || r > std::numeric_limits<std::int32_t>::max())
        vexil::raiseOverflow();
    return static_cast<std::int32_t>(r);
}
} // namespace

// ---- Vectors ----

void VectorCopy(Vector& dest, const Vector& src) {
    propagate("Maths", "VectorCopy", [&] { put3(dest, at(src, 0), at(src, 1), at(src, 2)); });
}

void VectorFromValues(Vector& dest, double x, double y, double z) {
    propagate("Maths", "VectorFromValues", [&] { put3(dest, x, y, z); });
}

void VectorAdd(const Vector& a, const Vector& b, Vector& dest) {
    propagate("Maths", "VectorAdd", [&] {
        put3(dest, fin(at(a, 0) + at(b, 0)), fin(at(a, 1) + at(b, 1)), fin(at(a, 2) + at(b, 2)));
    });
}

void VectorFromTo(const Vector& from, const Vector& to, Vector& dest) {
    propagate("Maths", "VectorFromTo", [&] {
        put3(dest, fin(at(to, 0) - at(from, 0)), fin(at(to, 1) - at(from, 1)), fin(at(to, 2) - at(from, 2)));
    });
}

void VectorScale(const Vector& src, double factor, Vector& dest) {
    propagate("Maths", "VectorScale", [&] {
        put3(dest, fin(factor * at(src, 0)), fin(factor * at(src, 1)), fin(factor * at(src, 2)));
    });
}

void VectorNormalize(const Vector& src, Vector& dest) {
    propagate("Maths", "VectorNormalize", [&] {
        const double x = at(src, 0), y = at(src, 1), z = at(src, 2);
        const double length = fin(std::sqrt(fin(sq(x) + sq(y) + sq(z))));
        put3(dest, fin(vexil::checkedDiv(x, length)), fin(vexil::checkedDiv(y, length)),
             fin(vexil::checkedDiv(z, length)));
    });
}

void VectorNegate(Vector& v) {
    propagate("Maths", "VectorNegate", [&] {
        const double x = at(v, 0), y = at(v, 1), z = at(v, 2);
        put3(v, -x, -y, -z);
    });
}

double VectorLength(const Vector& v) {
    return propagate("Maths", "VectorLength",
                     [&] { return fin(std::sqrt(fin(sq(at(v, 0)) + sq(at(v, 1)) + sq(at(v, 2))))); });
}

double VectorDot(const Vector& a, const Vector& b) {
    return propagate("Maths", "VectorDot", [&] {
        return fin(fin(at(a, 0) * at(b, 0)) + fin(at(a, 1) * at(b, 1)) + fin(at(a, 2) * at(b, 2)));
    });
}

void VectorCross(const Vector& a, const Vector& b, Vector& dest) {
    propagate("Maths", "VectorCross", [&] {
        const double ax = at(a, 0), ay = at(a, 1), az = at(a, 2);
        const double bx = at(b, 0), by = at(b, 1), bz = at(b, 2);
        put3(dest, fin(ay * bz - az * by), fin(az * bx - ax * bz), fin(ax * by - ay * bx));
    });
}

double DistanceSquared(const Vector& a, const Vector& b) {
    return propagate("Maths", "DistanceSquared", [&] {
        return fin(sq(at(a, 0) - at(b, 0)) + sq(at(a, 1) - at(b, 1)) + sq(at(a, 2) - at(b, 2)));
    });
}

double Distance(const Vector& a, const Vector& b) {
    return propagate("Maths", "Distance", [&] {
        double sum = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i)
            sum = fin(sum + sq(a[i] - at(b, i)));
        return std::sqrt(sum);
    });
}

double DistanceInt(const IntPoint& a, const IntPoint& b) {
    return propagate("Maths", "DistanceInt", [&] {
        double sum = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i)
            sum = fin(sum + sq(double(a[i]) - at(b, i)));
        return std::sqrt(sum);
    });
}

bool SameLocation(const Vector& a, const Vector& b) {
    return propagate("Maths", "SameLocation", [&] {
        // Round(x, 6): scaled by 10^6 and rounded half to even (the default rounding mode).
        auto round6 = [](double x) { return std::nearbyint(x * 1e6); };
        for (std::size_t i = 0; i < 3; ++i)
            if (round6(at(a, i)) != round6(at(b, i))) return false;
        return true;
    });
}

void CopyLinearArray(Vector& dest, const Vector& src) {
    // The only failure of the copy is an index of src that dest does not have.
    for (std::size_t i = 0; i < src.size(); ++i) {
        if (i >= dest.size()) {
            LogEvent("CopyLinearArray: Array bounds dont match\nDetails: Subscript out of range", 1);
            return;
        }
        dest[i] = src[i];
    }
}

// ---- Lines and planes ----

void PointOnLine(Vector& dest, const Vector& start, Vector& direction, bool negate, double t, double lift) {
    propagate("Maths", "PointOnLine", [&] {
        if (negate) VectorNegate(direction);
        const double x = fin(at(start, 0) + fin(t * at(direction, 0)));
        const double y = fin(at(start, 1) + fin(t * at(direction, 1)));
        const double z = fin(fin(at(start, 2) + fin(t * at(direction, 2))) + lift);
        put3(dest, x, y, z);
    });
}

void ProjectPointOnPlane(const Vector& point, const Plane& plane, Vector& dest) {
    propagate("Maths", "ProjectPointOnPlane", [&] {
        const double nx = at(plane, 0), ny = at(plane, 1), nz = at(plane, 2);
        const double px = at(point, 0), py = at(point, 1), pz = at(point, 2);
        const double nn = fin(sq(nx) + sq(ny) + sq(nz));
        const double np = fin(fin(nx * px) + fin(ny * py) + fin(nz * pz));
        const double k = fin(at(plane, 3) - fin(vexil::checkedDiv(np, nn)));
        put3(dest, fin(px + fin(k * nx)), fin(py + fin(k * ny)), fin(pz + fin(k * nz)));
    });
}

void NearestPointOnLine(const Vector& point, const Vector& a, const Vector& b, Vector& dest) {
    propagate("Maths", "NearestPointOnLine", [&] {
        const std::size_t n = point.size();
        double s1 = 0.0, s2 = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            const double e = fin(at(b, i) - at(a, i));
            s1 = fin(s1 + fin(fin(b[i] - point[i]) * e));
            s2 = fin(s2 + fin(fin(a[i] - point[i]) * e));
        }
        if (s1 == 0.0) {
            const Vector bb(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(n));
            grow(dest, n);
            for (std::size_t i = 0; i < n; ++i)
                dest[i] = bb[i];
            return;
        }
        const double t = fin(-s2 / s1);
        const double t1 = fin(t + 1.0);
        if (t1 == 0.0) return;
        Vector result(n);
        for (std::size_t i = 0; i < n; ++i)
            result[i] = fin(fin(fin(t * b[i]) + a[i]) / t1);
        grow(dest, n);
        for (std::size_t i = 0; i < n; ++i)
            dest[i] = result[i];
    });
}

void NearestPointOnLineInt(const IntPoint& point, const IntPoint& a, const IntPoint& b, IntPoint& dest) {
    propagate("Maths", "NearestPointOnLineInt", [&] {
        const std::size_t n = point.size();
        // The sums are integers: rounded after each term, Overflow beyond the int32 range.
        std::int32_t s1 = 0, s2 = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const double e = at(b, i) - at(a, i);
            s1 = toLong(s1 + (double(b[i]) - point[i]) * e);
            s2 = toLong(s2 + (double(a[i]) - point[i]) * e);
        }
        if (s1 == 0) {
            const IntPoint bb(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(n));
            grow(dest, n);
            for (std::size_t i = 0; i < n; ++i)
                dest[i] = bb[i];
            return;
        }
        const double t = -double(s2) / double(s1);
        const double t1 = t + 1.0;
        if (t1 == 0.0) return;
        IntPoint result(n);
        for (std::size_t i = 0; i < n; ++i)
            result[i] = toLong(fin(fin(t * b[i]) + a[i]) / t1);
        grow(dest, n);
        for (std::size_t i = 0; i < n; ++i)
            dest[i] = result[i];
    });
}

void LineMeetsPlane(const Vector& start, const Vector& end, const Vector& planePoint, const Vector& normal,
                    Vector& dest) {
    propagate("Maths", "LineMeetsPlane", [&] {
        Vector d, w;
        VectorFromTo(start, end, d);
        VectorFromTo(start, planePoint, w);
        const double nw = VectorDot(normal, w);
        const double nd = VectorDot(normal, d);
        // A failure of this division ends the procedure; dest stays as it was.
        if (nd == 0.0) return;
        const double k = nw / nd;
        if (!std::isfinite(k)) return;
        put3(dest, fin(start[0] + fin(k * d[0])), fin(start[1] + fin(k * d[1])),
             fin(start[2] + fin(k * d[2])));
    });
}

void PlaneFromPoints(const Vector& p1, const Vector& p2, const Vector& p3, Plane& dest) {
    propagate("Maths", "PlaneFromPoints", [&] {
        const double x1 = at(p1, 0), y1 = at(p1, 1), z1 = at(p1, 2);
        const double x2 = at(p2, 0), y2 = at(p2, 1), z2 = at(p2, 2);
        const double x3 = at(p3, 0), y3 = at(p3, 1), z3 = at(p3, 2);
        const double a = fin(y1 * (z2 - z3) + y2 * (z3 - z1) + y3 * (z1 - z2));
        const double b = fin(z1 * (x2 - x3) + z2 * (x3 - x1) + z3 * (x1 - x2));
        const double c = fin(x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2));
        const double d =
            fin(-(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1)));
        grow(dest, 4);
        dest[0] = a;
        dest[1] = b;
        dest[2] = c;
        dest[3] = d;
    });
}

double DistanceToPlane(const Plane& plane, const Vector& point) {
    return propagate("Maths", "DistanceToPlane", [&] {
        const double a = at(plane, 0), b = at(plane, 1), c = at(plane, 2), d = at(plane, 3);
        const double num = fin(fin(a * at(point, 0)) + fin(b * at(point, 1)) + fin(c * at(point, 2)) + d);
        const double length = fin(std::sqrt(fin(sq(a) + sq(b) + sq(c))));
        return fin(vexil::checkedDiv(num, length));
    });
}

bool SegmentsMeet2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
                    double& meetX, double& meetY) {
    return propagate("Maths", "SegmentsMeet2D", [&] {
        const double dx1 = x2 - x1, dy1 = y2 - y1, dx2 = x4 - x3, dy2 = y4 - y3;
        const double det = fin(fin(dy2 * dx1) - fin(dx2 * dy1));
        if (det == 0.0) return true;
        const double ua = fin(fin(fin(dx2 * (y1 - y3)) - fin(dy2 * (x1 - x3))) / det);
        const double ub = fin(fin(fin(dx1 * (y1 - y3)) - fin(dy1 * (x1 - x3))) / det);
        if (ua < 0.0 || ua > 1.0 || ub < 0.0 || ub > 1.0) return false;
        const double x = fin(x1 + ua * dx1), y = fin(y1 + ua * dy1);
        meetX = x;
        meetY = y;
        return true;
    });
}

} // namespace Maths
