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


// ---- four edges at once, one edge per lane ----
//
// The placement and cost of four edges computed lane by lane: every lane makes exactly the
// operations of the scalar code for its edge (sum, placeOnSegment or placeOptimal, cost), in
// the same order, so a lane's results have the scalar code's bits. Written with the compiler's
// generic vectors so that the same body builds for AVX2 (one 4-lane register) and for the
// baseline (two 2-lane halves). A lane is "clean" when the scalar code would take its plain
// path there: no fallback to the better end, no Overflow. Only clean lanes may be used; the
// others are finished by the scalar code (docs/simplify.md).
using v4d = double __attribute__((vector_size(32)));
using v4l = long long __attribute__((vector_size(32)));

// Four doubles in memory, as a vector (no function returns a vector: without AVX that would
// change the calling convention of the portable build).
using v4dm = double __attribute__((vector_size(32), aligned(8), may_alias));
[[gnu::always_inline]] inline const v4dm& at4(const double* p) { return *reinterpret_cast<const v4dm*>(p); }
[[gnu::always_inline]] inline v4dm& at4(double* p) { return *reinterpret_cast<v4dm*>(p); }

// Rows r0..r3 become columns: afterwards r_j holds element j of the four rows, row i in lane i.
[[gnu::always_inline]] inline void transpose4(v4d& r0, v4d& r1, v4d& r2, v4d& r3) {
    const v4d t0 = __builtin_shuffle(r0, r1, v4l{0, 4, 2, 6});
    const v4d t1 = __builtin_shuffle(r0, r1, v4l{1, 5, 3, 7});
    const v4d t2 = __builtin_shuffle(r2, r3, v4l{0, 4, 2, 6});
    const v4d t3 = __builtin_shuffle(r2, r3, v4l{1, 5, 3, 7});
    r0 = __builtin_shuffle(t0, t2, v4l{0, 1, 4, 5});
    r1 = __builtin_shuffle(t1, t3, v4l{0, 1, 4, 5});
    r2 = __builtin_shuffle(t0, t2, v4l{2, 3, 6, 7});
    r3 = __builtin_shuffle(t1, t3, v4l{2, 3, 6, 7});
}

// a[i], b[i]: the PointHot records of lane i's ends (s, u, xyz: sixteen doubles, 64-byte
// aligned). res[i] receives lane i's (cost, x, y, z). Answers the clean lanes, bit i for lane i.
//
// Clean means: the sum of N, D, t, the new position and the cost is finite (each term is then
// finite, and D is not 0, for -N / 0 is not finite). The scalar code's plain path needs exactly
// these terms finite and D not 0, so a clean lane is one the scalar code places on the segment
// and costs without a raise; a lane whose probe overflows only goes to the scalar code needlessly.
// The sums of the two quadrics need no probe of their own: every entry enters the cost through
// a product with a finite coordinate or as a term of its own, so a non-finite entry makes the
// cost non-finite (inf * 0 is NaN).
// Optimal: placeOptimal's elimination instead (geometry only), probed the same way: a zero
// divisor makes its quotient non-finite, and every tested product stands in a sum that is probed
// or in a quotient whose numerator is probed.
template <bool Optimal>
[[gnu::always_inline]] inline unsigned costFour(const double* const a[4], const double* const b[4], double res[4][4]) {
    // the quadric sums entry by entry (as qm::sum), then one lane per edge
    v4d q0[4], q1[4], q2[4], pa[4], pb[4];
    for (int i = 0; i < 4; ++i) {
        q0[i] = at4(a[i]) + at4(b[i]);
        q1[i] = at4(a[i] + 4) + at4(b[i] + 4);
        q2[i] = at4(a[i] + 8) + at4(b[i] + 8);
        pa[i] = at4(a[i] + 12);
        pb[i] = at4(b[i] + 12);
    }
    transpose4(q0[0], q0[1], q0[2], q0[3]);
    transpose4(q1[0], q1[1], q1[2], q1[3]);
    transpose4(q2[0], q2[1], q2[2], q2[3]);
    transpose4(pa[0], pa[1], pa[2], pa[3]);
    transpose4(pb[0], pb[1], pb[2], pb[3]);
    const v4d s0 = q0[0], s1 = q0[1], s2 = q0[2], s3 = q0[3];
    const v4d s4 = q1[0], s5 = q1[1], s6 = q1[2], s7 = q1[3];
    const v4d s8 = q2[0], s9 = q2[1], u0 = q2[2], u1 = q2[3];
    const v4d u2 = pa[0] + pb[0];
    const v4d zero = {0, 0, 0, 0}, one = {1, 1, 1, 1}, two = {2, 2, 2, 2};
    v4d x, y, z, probe;
    if constexpr (!Optimal) {
        // placeOnSegment, term by term
        const v4d p0 = pa[1], p1 = pa[2], p2 = pa[3];
        const v4d d0 = pb[1] - p0, d1 = pb[2] - p1, d2 = pb[3] - p2;
        const v4d t1 = s0 * p0 * d0, t5 = s4 * p1 * d1;
        const v4d t2 = s1 * (d1 * p0 + d0 * p1), t6 = s5 * (d2 * p1 + d1 * p2);
        const v4d t4 = u0 * d0, t7 = u1 * d1;
        const v4d t3 = s2 * (d2 * p0 + d0 * p2), t8 = s7 * p2 * d2, t9 = u2 * d2;
        const v4d N = t1 + t2 + t3 + t4 + t5 + t6 + t7 + t8 + t9;
        const v4d br0 = two * s5 * d2 + s4 * d1 + s7 * d2 * d2;
        const v4d br1 = two * s1 * d1 + s0 * d0 + two * s2 * d2;
        const v4d D = br0 * d1 + br1 * d0;
        v4d t = -N / D;
        probe = N + D + t;
        t = t < zero ? zero : t;
        t = t > one ? one : t;
        x = p0 + t * d0;
        y = p1 + t * d1;
        z = p2 + t * d2;
    } else {
        // placeOptimal: elimination without pivoting
        const v4d k1 = s1 / s0, k2 = s2 / s0;
        const v4d m = k1 * s2;
        const v4d a22 = s4 - k1 * s1, a23 = s5 - m, a24 = u1 - k1 * u0;
        const v4d a32 = s5 - m, a33 = s7 - k2 * s2, a34 = u2 - k2 * u0;
        const v4d nz = a32 * a24 - a22 * a34, dz = a22 * a33 - a32 * a23;
        z = nz / dz;
        const v4d ny = -a23 * z - a24;
        y = ny / a22;
        const v4d nx = -s1 * y - z * s2 - u0;
        x = nx / s0;
        probe = k1 + k2 + a22 + a23 + a24 + a33 + a34 + nz + dz + z + ny + y + nx + x;
    }
    // v^T Q v, as qm::cost
    const v4d r1 = zero + x * s0 + y * s1 + z * s2 + s3;
    const v4d r2 = zero + x * s1 + y * s4 + z * s5 + s6;
    const v4d r3 = zero + x * s2 + y * s5 + z * s7 + s8;
    const v4d r4 = zero + x * u0 + y * u1 + z * u2 + s9;
    v4d c = zero + r1 * x + r2 * y + r3 * z + r4;
    probe = (probe + x + y + z + c) * zero;
    const v4l clean = probe == zero;
    v4d px = x, py = y, pz = z;
    transpose4(c, px, py, pz);
    at4(res[0]) = c;
    at4(res[1]) = px;
    at4(res[2]) = py;
    at4(res[3]) = pz;
    return static_cast<unsigned>((clean[0] & 1) | (clean[1] & 2) | (clean[2] & 4) | (clean[3] & 8));
}

// The edges of a list as costList reads them: edge e's record lies at edges + e * stride and
// starts with the indices of its two ends (32 bits each); point p's record (PointHot, sixteen
// doubles) lies at points + 16 p.
struct EdgeList {
    const std::int32_t* list;
    std::size_t count;
    const unsigned char* edges;
    std::size_t stride;
    const double* points;
};

// costFour over a list, four edges at a time (a short last four repeats its first edge): edge i's
// (cost, x, y, z) goes to res[4 i .. 4 i + 3], its clean bit to bit i % 4 of clean[i / 4].
template <bool Optimal>
[[gnu::always_inline]] inline void costList(const EdgeList& l, double* res, unsigned char* clean) {
    for (std::size_t i = 0; i < l.count; i += 4) {
        const double* a[4];
        const double* b[4];
        for (std::size_t k = 0; k < 4; ++k) {
            const std::int32_t* ends =
                reinterpret_cast<const std::int32_t*>(l.edges + static_cast<std::size_t>(l.list[i + k < l.count ? i + k : i]) * l.stride);
            a[k] = l.points + 16 * static_cast<std::size_t>(ends[0]);
            b[k] = l.points + 16 * static_cast<std::size_t>(ends[1]);
        }
        clean[i / 4] = static_cast<unsigned char>(costFour<Optimal>(a, b, reinterpret_cast<double (*)[4]>(res + 4 * i)));
    }
}

} // namespace simplify::qm
