// Small vector and 3x3 matrix helpers over plain double arrays, as the C API passes them.
#pragma once
#include <cmath>

namespace zelmar {

struct V3 {
    double x = 0, y = 0, z = 0;
    V3() = default;
    V3(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}
    explicit V3(const double* p) : x(p[0]), y(p[1]), z(p[2]) {}
    void store(double* p) const {
        p[0] = x;
        p[1] = y;
        p[2] = z;
    }
    double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
};

inline V3 operator+(V3 a, V3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline V3 operator-(V3 a, V3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline V3 operator*(V3 a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline V3 operator*(double s, V3 a) {
    return a * s;
}
inline V3 operator-(V3 a) {
    return {-a.x, -a.y, -a.z};
}
inline double dot(V3 a, V3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline V3 cross(V3 a, V3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(V3 a) {
    return std::sqrt(dot(a, a));
}
// Unit vector, or the zero vector for a zero (or non-finite) input.
inline V3 normalized(V3 a) {
    const double l = length(a);
    return (l > 0 && std::isfinite(l)) ? a * (1.0 / l) : V3{};
}

// Row-major 3x3 matrix: m[r][c]; applied as M * v.
struct M3 {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    static M3 fromRows(V3 a, V3 b, V3 c) {
        M3 r;
        for (int i = 0; i < 3; ++i) {
            r.m[0][i] = a[i];
            r.m[1][i] = b[i];
            r.m[2][i] = c[i];
        }
        return r;
    }
    V3 row(int r) const { return {m[r][0], m[r][1], m[r][2]}; }
    V3 operator*(V3 v) const {
        return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z, m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z};
    }
    M3 operator*(const M3& o) const {
        M3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.m[i][j] = m[i][0] * o.m[0][j] + m[i][1] * o.m[1][j] + m[i][2] * o.m[2][j];
        return r;
    }
    M3 transposed() const {
        M3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.m[i][j] = m[j][i];
        return r;
    }
    double det() const {
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
               m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    }
    // Cofactor matrix = det * inverse-transpose; defined for singular matrices too. Normals
    // transform by it: it keeps them on the side given by the (possibly mirrored) ring order.
    M3 cofactor() const {
        M3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                const int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
                r.m[i][j] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
            }
        return r;
    }
};

// Rotation by `degrees` about a unit axis, right-handed (counter-clockwise looking down the axis).
M3 rotationAbout(V3 unitAxis, double degrees);
// Rotation turning unit vector a onto unit vector b by the smallest angle.
M3 rotationBetween(V3 a, V3 b);
// x, then y, then z rotation about the world axes.
M3 rotationXYZ(const double degrees[3]);

} // namespace zelmar
