#include "Deformers.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <array>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

constexpr double DegToRad = 3.14159265358979 / 180.0;

template <class F> void eachPoint(int group, F&& f) {
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            f(p, pt);
}

double hash01(long long x, long long y, long long z, unsigned seed) {
    uint64_t h = static_cast<uint64_t>(x) * 0x9E3779B97F4A7C15ull ^ static_cast<uint64_t>(y) * 0xC2B2AE3D27D4EB4Full ^
                 static_cast<uint64_t>(z) * 0x165667B19E3779F9ull ^ (static_cast<uint64_t>(seed) << 17);
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDull;
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ull;
    h ^= h >> 33;
    return static_cast<double>(h >> 11) / 9007199254740992.0;
}

} // namespace

bool BendGroup(int group, int along, int direction, double degrees) {
    if (along < 0 || along > 2 || direction < 0 || direction > 2 || along == direction) return false;
    if (degrees == 0 || !std::isfinite(degrees)) return false;
    double box[6];
    ZELMAR_group_get_bounding_box(group, box);
    const double lo = box[along], len = box[along + 3] - box[along];
    if (!(len > 0)) return false;
    const double mid = (box[direction] + box[direction + 3]) / 2;
    const double angle = degrees * DegToRad;
    const double radius = len / angle; // the arc of the bent axis keeps its length
    eachPoint(group, [&](int, int pt) {
        double p[3];
        ZELMAR_point_get_xyz(pt, p);
        const double theta = (p[along] - lo) / radius;
        const double r = radius - (p[direction] - mid);
        p[along] = lo + r * std::sin(theta);
        p[direction] = mid + radius - r * std::cos(theta);
        ZELMAR_point_set_xyz(pt, p);
    });
    return true;
}

double ValueNoise(const double xyz[3], double scale, unsigned seed) {
    if (!(scale > 0)) scale = 1;
    double f[3];
    long long c[3];
    for (int k = 0; k < 3; ++k) {
        const double v = xyz[k] / scale;
        const double fl = std::floor(v);
        c[k] = static_cast<long long>(fl);
        const double t = v - fl;
        f[k] = t * t * (3 - 2 * t);
    }
    double acc = 0;
    for (int i = 0; i < 8; ++i) {
        const int dx = i & 1, dy = (i >> 1) & 1, dz = (i >> 2) & 1;
        const double w = (dx ? f[0] : 1 - f[0]) * (dy ? f[1] : 1 - f[1]) * (dz ? f[2] : 1 - f[2]);
        acc += w * hash01(c[0] + dx, c[1] + dy, c[2] + dz, seed);
    }
    return acc;
}

int DisplaceGroup(int group, double strength, const DisplaceSampler& sample) {
    if (!sample || !std::isfinite(strength)) return 0;
    // The points of one location share one direction: the mean of their normals.
    struct Spot {
        std::vector<int> points;
        double normal[3] = {0, 0, 0};
        double xyz[3] = {0, 0, 0};
        double uv[2] = {0, 0};
    };
    std::map<std::array<double, 3>, Spot> spots;
    eachPoint(group, [&](int pol, int pt) {
        std::array<double, 3> p{};
        ZELMAR_point_get_xyz(pt, p.data());
        Spot& s = spots[p];
        if (s.points.empty()) {
            for (int k = 0; k < 3; ++k)
                s.xyz[k] = p[size_t(k)];
            ZELMAR_point_get_bitmap_xy(pt, s.uv);
        }
        s.points.push_back(pt);
        double n[3];
        ZELMAR_point_get_normal(pt, n);
        if (n[0] == 0 && n[1] == 0 && n[2] == 0) {
            double plane[4];
            ZELMAR_polygon_get_plane(pol, plane);
            for (int k = 0; k < 3; ++k)
                n[k] = plane[k];
        }
        for (int k = 0; k < 3; ++k)
            s.normal[k] += n[k];
    });
    int moved = 0;
    for (auto& [key, s] : spots) {
        const double len = std::sqrt(s.normal[0] * s.normal[0] + s.normal[1] * s.normal[1] + s.normal[2] * s.normal[2]);
        if (!(len > 0)) continue;
        const double d = strength * sample(s.xyz, s.uv[0], s.uv[1]) / len;
        if (d == 0) continue;
        const double to[3] = {s.xyz[0] + s.normal[0] * d, s.xyz[1] + s.normal[1] * d, s.xyz[2] + s.normal[2] * d};
        for (int pt : s.points) {
            ZELMAR_point_set_xyz(pt, to);
            ++moved;
        }
    }
    return moved;
}

} // namespace vexil
