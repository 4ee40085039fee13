#include "SubObjectTransforms.h"

#include <cmath>
#include <unordered_set>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

constexpr double DegToRad = 3.14159265358979 / 180.0;

Vec3 turn(const Vec3& v, double c, double s, int axis) {
    switch (axis) {
    case 0:
        return {v[0], v[1] * c - v[2] * s, v[1] * s + v[2] * c};
    case 1:
        return {v[0] * c + v[2] * s, v[1], -v[0] * s + v[2] * c};
    case 2:
        return {v[0] * c - v[1] * s, v[0] * s + v[1] * c, v[2]};
    default:
        return v;
    }
}

Vec3 read(int point) {
    Vec3 p{};
    ZELMAR_point_get_xyz(point, p.data());
    return p;
}

template <class F> void eachOnce(const std::vector<int>& points, F&& f) {
    std::unordered_set<int> done;
    done.reserve(points.size());
    for (int p : points)
        if (p != 0 && done.insert(p).second) f(p);
}

template <class F> void eachSet(const std::vector<PointSet>& sets, F&& newLocation) {
    for (const PointSet& set : sets) {
        if (set.empty()) continue;
        const Vec3 to = newLocation(read(set.front()));
        for (int p : set)
            ZELMAR_point_set_xyz(p, to.data());
    }
}

void turnNormal(int point, double c, double s, int axis) {
    Vec3 n{};
    ZELMAR_point_get_normal(point, n.data());
    n = turn(n, c, s, axis);
    ZELMAR_point_set_normal(point, n.data());
}

template <class F> void eachTrackPoint(int track, const std::vector<int>& indices, F&& newLocation) {
    const int n = ZELMAR_track_get_number_of_points(track);
    std::unordered_set<int> done;
    for (int i : indices) {
        if (i < 0 || i >= n || !done.insert(i).second) continue;
        Vec3 p{};
        ZELMAR_track_get_point(track, i, p.data());
        p = newLocation(p);
        ZELMAR_track_set_point(track, i, p.data());
    }
}

} // namespace

Vec3 RotateAbout(const Vec3& p, const Vec3& centre, double degrees, int axis) {
    const double a = degrees * DegToRad;
    const Vec3 r =
        turn({p[0] - centre[0], p[1] - centre[1], p[2] - centre[2]}, std::cos(a), std::sin(a), axis);
    return {r[0] + centre[0], r[1] + centre[1], r[2] + centre[2]};
}

Vec3 ScaleAbout(const Vec3& p, const Vec3& centre, const Vec3& f) {
    return {centre[0] + (p[0] - centre[0]) * f[0], centre[1] + (p[1] - centre[1]) * f[1],
            centre[2] + (p[2] - centre[2]) * f[2]};
}

Vec3 InverseFactors(const Vec3& f) {
    Vec3 r{};
    for (size_t k = 0; k < 3; ++k)
        r[k] = f[k] != 0 ? 1.0 / f[k] : 0.0;
    return r;
}

void MovePoints(const std::vector<int>& points, const Vec3& d) {
    eachOnce(points, [&](int pt) {
        Vec3 p = read(pt);
        for (size_t k = 0; k < 3; ++k)
            p[k] += d[k];
        ZELMAR_point_set_xyz(pt, p.data());
    });
}

void RotatePoints(const std::vector<int>& points, const Vec3& centre, double degrees, int axis) {
    const double a = degrees * DegToRad, c = std::cos(a), s = std::sin(a);
    eachOnce(points, [&](int pt) {
        const Vec3 p = RotateAbout(read(pt), centre, degrees, axis);
        ZELMAR_point_set_xyz(pt, p.data());
        turnNormal(pt, c, s, axis);
    });
}

void ScalePoints(const std::vector<int>& points, const Vec3& centre, const Vec3& factors) {
    eachOnce(points, [&](int pt) {
        const Vec3 p = ScaleAbout(read(pt), centre, factors);
        ZELMAR_point_set_xyz(pt, p.data());
    });
}

void MoveWeldSets(const std::vector<PointSet>& sets, const Vec3& d) {
    eachSet(sets, [&](Vec3 p) {
        for (size_t k = 0; k < 3; ++k)
            p[k] += d[k];
        return p;
    });
}

void RotateWeldSets(const std::vector<PointSet>& sets, const Vec3& centre, double degrees, int axis) {
    eachSet(sets, [&](const Vec3& p) { return RotateAbout(p, centre, degrees, axis); });
    const double a = degrees * DegToRad, c = std::cos(a), s = std::sin(a);
    for (const PointSet& set : sets)
        for (int p : set)
            turnNormal(p, c, s, axis);
}

void ScaleWeldSets(const std::vector<PointSet>& sets, const Vec3& centre, const Vec3& factors) {
    eachSet(sets, [&](const Vec3& p) { return ScaleAbout(p, centre, factors); });
}

void MoveTrackPoints(int track, const std::vector<int>& indices, const Vec3& d) {
    eachTrackPoint(track, indices, [&](Vec3 p) {
        for (size_t k = 0; k < 3; ++k)
            p[k] += d[k];
        return p;
    });
}

void RotateTrackPoints(int track, const std::vector<int>& indices, const Vec3& centre, double degrees,
                       int axis) {
    eachTrackPoint(track, indices, [&](const Vec3& p) { return RotateAbout(p, centre, degrees, axis); });
}

void ScaleTrackPoints(int track, const std::vector<int>& indices, const Vec3& centre, const Vec3& factors) {
    eachTrackPoint(track, indices, [&](const Vec3& p) { return ScaleAbout(p, centre, factors); });
}

Vec3 TrackCentre(int track) {
    Vec3 lo{1e308, 1e308, 1e308}, hi{-1e308, -1e308, -1e308};
    const int n = ZELMAR_track_get_number_of_points(track);
    if (n <= 0) return {0, 0, 0};
    for (int i = 0; i < n; ++i) {
        Vec3 p{};
        ZELMAR_track_get_point(track, i, p.data());
        for (size_t k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    return {(lo[0] + hi[0]) / 2, (lo[1] + hi[1]) / 2, (lo[2] + hi[2]) / 2};
}

} // namespace vexil
