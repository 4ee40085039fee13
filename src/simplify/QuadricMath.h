// Arithmetic on SurfSimpli's point quadrics (PointHot, QSum). Included by the library's sources
// only: they are built with -ffp-contract=off, and every operation here is the one the literal
// implementation's 5 x 5 matrix procedures make, in the same order, lane by lane (two lanes of
// a vector are two independent sums), so every result is bit-identical.
#pragma once
#include "simplify/SurfSimpli.h"

#include <cstring>

namespace simplify::qm {

using v2d = double __attribute__((vector_size(16)));
inline v2d ld(const double* p) {
    v2d r;
    std::memcpy(&r, p, sizeof r);
    return r;
}
inline void st(double* p, v2d v) { std::memcpy(p, &v, sizeof v); }
inline v2d splat(double x) { return v2d{x, x}; }

// A quadric being summed, in registers: s and u as in PointHot.
struct Acc {
    v2d s01{0, 0}, s23{0, 0}, s45{0, 0}, s67{0, 0}, s89{0, 0}, u01{0, 0};
    double u2 = 0;
    // The sixteen products of a plane added term by term (as MatrixADD of the plane's product
    // matrix): p_i * p_j is p_j * p_i, so a mirrored entry gets the very same sum.
    void add(const double* p) {
        const double a = p[0], b = p[1], c = p[2], d = p[3];
        s01 += splat(a) * v2d{a, b};
        s23 += splat(a) * v2d{c, d};
        s45 += splat(b) * v2d{b, c};
        s67 += v2d{b, c} * v2d{d, c};
        s89 += splat(d) * v2d{c, d};
        u01 += splat(d) * v2d{a, b};
        u2 += c * d;
    }
    void load(const double* s, const double* u) {
        s01 = ld(s);
        s23 = ld(s + 2);
        s45 = ld(s + 4);
        s67 = ld(s + 6);
        s89 = ld(s + 8);
        u01 = ld(u);
        u2 = u[2];
    }
    void store(double* s, double* u) const {
        st(s, s01);
        st(s + 2, s23);
        st(s + 4, s45);
        st(s + 6, s67);
        st(s + 8, s89);
        st(u, u01);
        u[2] = u2;
    }
};

// q = a + b, entry by entry; false when a sum is not finite (x * 0 is 0 for every finite x and
// NaN otherwise, and a NaN stays in any sum).
inline bool sum(const double* as, const double* au, const double* bs, const double* bu, double* qs, double* qu) {
    v2d probe{0, 0};
    for (int k = 0; k < 10; k += 2) {
        const v2d x = ld(as + k) + ld(bs + k);
        st(qs + k, x);
        probe += x * 0.0;
    }
    const v2d x = ld(au) + ld(bu);
    st(qu, x);
    probe += x * 0.0;
    qu[2] = au[2] + bu[2];
    return probe[0] + probe[1] + qu[2] * 0.0 == 0.0;
}

// v^T Q v for v = (x, y, z, 1), as MatrixTranspose and two MatrixMultiply sum it: each row
// times column from 0, k upward, then the products with v from 0, j upward. Not finite when any
// term is not (the caller tests it).
// A product with w = 1 is the other factor itself (a NaN stays a NaN, and a non-finite cost
// raises whatever its bits), so it is not made.
inline double cost(const double* v, const double* s, const double* u) {
    const v2d x = splat(v[0]), y = splat(v[1]), z = splat(v[2]);
    const v2d r12 = v2d{0, 0} + x * v2d{s[0], s[1]} + y * v2d{s[1], s[4]} + z * v2d{s[2], s[5]} + v2d{s[3], s[6]};
    const v2d r34 = v2d{0, 0} + x * v2d{s[2], u[0]} + y * v2d{s[5], u[1]} + z * v2d{s[7], u[2]} + v2d{s[8], s[9]};
    return 0.0 + r12[0] * v[0] + r12[1] * v[1] + r34[0] * v[2] + r34[1];
}

} // namespace simplify::qm
