#include "scene/Vec.h"

namespace zelmar {

namespace {
constexpr double kPi = 3.14159265358979323846;

// Exact values for multiples of 90 degrees, so that quarter turns leave integers integral.
void sinCosDegrees(double degrees, double& s, double& c) {
    const double q = degrees / 90.0;
    if (std::isfinite(q) && q == std::floor(q) && std::fabs(q) < 1e15) {
        const long long k = static_cast<long long>(q) % 4;
        const int kk = static_cast<int>((k + 4) % 4);
        static const double sv[4] = {0, 1, 0, -1}, cv[4] = {1, 0, -1, 0};
        s = sv[kk];
        c = cv[kk];
        return;
    }
    const double r = degrees * kPi / 180.0;
    s = std::sin(r);
    c = std::cos(r);
}
} // namespace

M3 rotationAbout(V3 u, double degrees) {
    double s, c;
    sinCosDegrees(degrees, s, c);
    const double t = 1 - c;
    M3 r;
    r.m[0][0] = c + u.x * u.x * t;
    r.m[0][1] = u.x * u.y * t - u.z * s;
    r.m[0][2] = u.x * u.z * t + u.y * s;
    r.m[1][0] = u.y * u.x * t + u.z * s;
    r.m[1][1] = c + u.y * u.y * t;
    r.m[1][2] = u.y * u.z * t - u.x * s;
    r.m[2][0] = u.z * u.x * t - u.y * s;
    r.m[2][1] = u.z * u.y * t + u.x * s;
    r.m[2][2] = c + u.z * u.z * t;
    return r;
}

M3 rotationBetween(V3 a, V3 b) {
    const V3 axis = cross(a, b);
    const double s = length(axis), c = dot(a, b);
    if (s < 1e-15) {
        if (c > 0) return M3{};
        // Opposite: half a turn about any axis perpendicular to a.
        V3 p = std::fabs(a.x) < 0.9 ? cross(a, V3{1, 0, 0}) : cross(a, V3{0, 1, 0});
        return rotationAbout(normalized(p), 180.0);
    }
    return rotationAbout(axis * (1.0 / s), std::atan2(s, c) * 180.0 / kPi);
}

M3 rotationXYZ(const double d[3]) {
    return rotationAbout({0, 0, 1}, d[2]) * rotationAbout({0, 1, 0}, d[1]) * rotationAbout({1, 0, 0}, d[0]);
}

} // namespace zelmar
