// Edge cost: quadrics, border penalties, lock terms, placement and cost.
//
// The arithmetic is that of the documented procedures and of the maths library they name
// (src/maths), written out for speed but in the same order of operations, so that every
// result is bit-identical to the literal implementation (tests/simplify/reference). Where the
// maths library raises (a non-finite result is Overflow, a zero divisor Division by zero), this
// code raises at the same places.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"
#include "simplify/QuadricMath.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace simplify {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
inline double sq(double x) { return fin(x * x); }
inline double cdiv(double a, double b) { return fin(vexil::checkedDiv(a, b)); }
} // namespace

void SurfSimpli::BuildAllQuadrics() {
    pristine_ = false;
    for (int p = 1; p <= PointCount(); ++p) {
        const std::size_t pi = static_cast<std::size_t>(p);
        if (!pValid_[pi]) continue;
        PointHot& P = pts_[pi];
        qm::Acc q;
        q.load(P.s, P.u);
        for (const std::int32_t* t = pTris_.begin(pi); t != pTris_.end(pi); ++t) q.add(tris_[static_cast<std::size_t>(*t)].plane);
        q.store(P.s, P.u);
    }
}

void SurfSimpli::BuildPointQuadric(int point) { buildPointQuadric(inPt(point)); }

void SurfSimpli::buildPointQuadric(int point) {
    pristine_ = false;
    const std::size_t pi = static_cast<std::size_t>(point);
    if (pi >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    // Triangles that have gone are dropped from the list as it is read; the order of the others stays.
    PointHot& P = pts_[pi];
    qm::Acc q;
    q.load(P.s, P.u);
    pTris_.filter(pi, [&](std::int32_t t) {
        const TriHot& T = tris_[static_cast<std::size_t>(t)];
        if (!T.valid) return false;
        q.add(T.plane);
        return true;
    });
    q.store(P.s, P.u);
}

void SurfSimpli::ClearPointQuadric(int point) {
    pristine_ = false;
    PointHot& P = pts_.at(static_cast<std::size_t>(inPt(point)));
    std::fill(std::begin(P.s), std::end(P.s), 0.0);
    std::fill(std::begin(P.u), std::end(P.u), 0.0);
}

int SurfSimpli::CountValidTris(int edge) const { return countValidTris(inEdge(edge)); }

int SurfSimpli::countValidTris(int edge) const {
    const std::size_t e = static_cast<std::size_t>(edge);
    if (e >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    int n = 0;
    for (const std::int32_t* t = eTris_.begin(e); t != eTris_.end(e); ++t)
        if (tris_[static_cast<std::size_t>(*t)].valid) ++n;
    return n;
}

void SurfSimpli::cornerUV(int tri, int point, double uv[2]) const {
    const std::size_t t = static_cast<std::size_t>(tri);
    const TriHot& T = tris_[t];
    for (int k = 0; k < 3; ++k)
        if (T.pts[k] == point) {
            uv[0] = tUV_[t][static_cast<std::size_t>(k * 2)];
            uv[1] = tUV_[t][static_cast<std::size_t>(k * 2 + 1)];
            return;
        }
    uv[0] = uv[1] = 0.0; // not a corner of the triangle: see docs/simplify.md
}

void SurfSimpli::setCornerUV(int tri, int point, const double uv[2]) {
    const std::size_t t = static_cast<std::size_t>(tri);
    const TriHot& T = tris_[t];
    for (int k = 0; k < 3; ++k)
        if (T.pts[k] == point) {
            tUV_[t][static_cast<std::size_t>(k * 2)] = uv[0];
            tUV_[t][static_cast<std::size_t>(k * 2 + 1)] = uv[1];
            return;
        }
}

bool SurfSimpli::HasBitmapBorder(int edge) const { return hasBitmapBorder(inEdge(edge)); }
bool SurfSimpli::HasTexSeam(int edge) const { return hasTexSeam(inEdge(edge)); }
bool SurfSimpli::HasColorBorder(int edge) const { return hasColorBorder(inEdge(edge)); }

bool SurfSimpli::hasBitmapBorder(int edge) const {
    const std::size_t e = static_cast<std::size_t>(edge);
    if (e >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    bool first = true;
    int bitmap = 0;
    for (const std::int32_t* t = eTris_.begin(e); t != eTris_.end(e); ++t) {
        const std::size_t ti = static_cast<std::size_t>(*t);
        if (!tris_[ti].valid) continue;
        if (first) {
            bitmap = tBitmap_[ti];
            first = false;
        } else if (tBitmap_[ti] != bitmap) {
            return true;
        }
    }
    return false;
}

bool SurfSimpli::hasTexSeam(int edge) const {
    const std::size_t e = static_cast<std::size_t>(edge);
    if (e >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    if (eTris_.size(e) < 2) return false;
    const int t1 = eTris_.at(e, 0), t2 = eTris_.at(e, 1);
    if (!tris_[static_cast<std::size_t>(t1)].valid || !tris_[static_cast<std::size_t>(t2)].valid) return false;
    const EdgeHot& E = edges_[e];
    double a1[2], a2[2], b1[2], b2[2];
    cornerUV(t1, E.a, a1);
    cornerUV(t2, E.a, a2);
    cornerUV(t1, E.b, b1);
    cornerUV(t2, E.b, b2);
    return a1[0] != a2[0] || a1[1] != a2[1] || b1[0] != b2[0] || b1[1] != b2[1];
}

bool SurfSimpli::hasColorBorder(int edge) const {
    const std::size_t e = static_cast<std::size_t>(edge);
    if (e >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    bool result = false;
    std::size_t prev = 0;
    for (const std::int32_t* t = eTris_.begin(e); t != eTris_.end(e); ++t) {
        const std::size_t ti = static_cast<std::size_t>(*t);
        if (!tris_[ti].valid) continue;
        if (prev != 0) {
            if (tBitmap_[prev] == 0 && tBitmap_[ti] == 0)
                result = tColor_[prev] != tColor_[ti];
            else
                result = false;
        }
        prev = ti;
    }
    return result;
}

// Which edges are borders reads only triangles; the penalties go to the ends' quadrics in the
// order of the design's edge indices, as the documented loop adds them (a sum's order fixes
// its bits, and the first penalty that raises is the same one).
void SurfSimpli::MarkBorderEdges() {
    pristine_ = false;
    std::vector<std::int32_t> borders;
    for (int e = 1; e <= EdgeCount(); ++e) {
        EdgeHot& E = edges_[static_cast<std::size_t>(e)];
        if (!E.valid) continue;
        E.border = false;
        const int n = countValidTris(e);
        bool border;
        if (n == 1) border = true;
        else if (geomOnly_) border = false;
        else if (hasBitmapBorder(e)) border = true;
        else if (protectTexSeams_ && hasTexSeam(e)) border = true;
        else if (protectColorBorders_ && hasColorBorder(e)) border = true;
        else border = false;
        if (border) borders.push_back(e);
    }
    std::sort(borders.begin(), borders.end(), [&](std::int32_t a, std::int32_t b) { return exEdge(a) < exEdge(b); });
    for (const std::int32_t e : borders) {
        edges_[static_cast<std::size_t>(e)].border = true;
        addBorderPenalty(e);
    }
}

// The doubled plane through the edge, perpendicular to its first valid triangle.
void SurfSimpli::borderPlane(int edge, double p[4]) const {
    const std::size_t ei = static_cast<std::size_t>(edge);
    if (ei >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    const EdgeHot& E = edges_[ei];
    std::size_t tri = 0; // none valid: slot 0, whose corners are the unused point 0 at the origin
    for (const std::int32_t* t = eTris_.begin(ei); t != eTris_.end(ei); ++t)
        if (tris_[static_cast<std::size_t>(*t)].valid) {
            tri = static_cast<std::size_t>(*t);
            break;
        }
    const double* A = pts_[static_cast<std::size_t>(E.a)].xyz;
    const double* B = pts_[static_cast<std::size_t>(E.b)].xyz;
    double C[3] = {0, 0, 0};
    const TriHot& T = tris_[tri];
    for (int k = 0; k < 3; ++k)
        if (T.pts[k] != E.a && T.pts[k] != E.b) {
            const double* c = pts_[static_cast<std::size_t>(T.pts[k])].xyz;
            C[0] = c[0];
            C[1] = c[1];
            C[2] = c[2];
            break;
        }
    // e := VectorFromTo(A, B), VectorNormalize
    double e[3] = {fin(B[0] - A[0]), fin(B[1] - A[1]), fin(B[2] - A[2])};
    double len = fin(std::sqrt(fin(sq(e[0]) + sq(e[1]) + sq(e[2]))));
    e[0] = cdiv(e[0], len);
    e[1] = cdiv(e[1], len);
    e[2] = cdiv(e[2], len);
    // w := VectorFromTo(A, C)
    const double w[3] = {fin(C[0] - A[0]), fin(C[1] - A[1]), fin(C[2] - A[2])};
    // n := w - e * (e . w), VectorNormalize
    const double dot = fin(fin(e[0] * w[0]) + fin(e[1] * w[1]) + fin(e[2] * w[2]));
    const double s[3] = {fin(dot * e[0]), fin(dot * e[1]), fin(dot * e[2])};
    double n[3] = {fin(w[0] - s[0]), fin(w[1] - s[1]), fin(w[2] - s[2])};
    len = fin(std::sqrt(fin(sq(n[0]) + sq(n[1]) + sq(n[2]))));
    n[0] = cdiv(n[0], len);
    n[1] = cdiv(n[1], len);
    n[2] = cdiv(n[2], len);
    // d := -(n . A)
    const double d = -fin(fin(n[0] * A[0]) + fin(n[1] * A[1]) + fin(n[2] * A[2]));
    p[0] = 2.0 * n[0];
    p[1] = 2.0 * n[1];
    p[2] = 2.0 * n[2];
    p[3] = 2.0 * d;
}

void SurfSimpli::AddBorderPenalty(int edge) { addBorderPenalty(inEdge(edge)); }

void SurfSimpli::addBorderPenalty(int edge) {
    pristine_ = false;
    double p[4];
    borderPlane(edge, p);
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    for (const std::int32_t end : {E.a, E.b}) {
        PointHot& P = pts_[static_cast<std::size_t>(end)];
        qm::Acc q;
        q.load(P.s, P.u);
        q.add(p);
        q.store(P.s, P.u);
    }
}

void SurfSimpli::AddBorderPenaltyToPoint(int point, int edge) { addBorderPenaltyToPoint(inPt(point), inEdge(edge)); }

void SurfSimpli::addBorderPenaltyToPoint(int point, int edge) {
    pristine_ = false;
    double p[4];
    borderPlane(edge, p);
    PointHot& P = pts_.at(static_cast<std::size_t>(point));
    qm::Acc q;
    q.load(P.s, P.u);
    q.add(p);
    q.store(P.s, P.u);
}

void SurfSimpli::AddLockTerms() {
    pristine_ = false;
    for (const std::int32_t idx : selectedPts_) {
        if (idx < 0 || idx > PointCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        PointHot& P = pts_[static_cast<std::size_t>(inPt(idx))];
        const double x = P.xyz[0], y = P.xyz[1], z = P.xyz[2];
        P.s[0] += 1.0; // (1,1)
        P.s[4] += 1.0; // (2,2)
        P.s[7] += 1.0; // (3,3)
        P.u[0] -= x;   // (1,4): the lower (4,1) is not changed
        P.u[1] -= y;
        P.u[2] -= z;
        P.s[9] += x * x + y * y + z * z; // (4,4)
    }
}

[[gnu::always_inline]] inline void SurfSimpli::sumEdgeQuadric(int edge, QSum& q) const {
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const PointHot& A = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& B = pts_[static_cast<std::size_t>(E.b)];
    if (!qm::sum(A.s, A.u, B.s, B.u, q.s, q.u)) vexil::raiseOverflow(); // MatrixADD raises on a non-finite sum
}

// The sixteen entries from the stored thirteen (see PointHot).
Quadric SurfSimpli::fullQuadric(const double s[10], const double u[3]) const {
    static constexpr int kIndex[4][4] = {{0, 1, 2, 3}, {1, 4, 5, 6}, {2, 5, 7, 8}, {3, 6, 8, 9}};
    Quadric q;
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j)
            q[static_cast<std::size_t>(qi(i, j))] = (j == 4 && i < 4) ? u[i - 1] : s[kIndex[i - 1][j - 1]];
    return q;
}

Quadric SurfSimpli::EdgeQuadric(int edge) const {
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(inEdge(edge)));
    const PointHot& A = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& B = pts_[static_cast<std::size_t>(E.b)];
    QSum q;
    qm::sum(A.s, A.u, B.s, B.u, q.s, q.u);
    return fullQuadric(q.s, q.u);
}

void SurfSimpli::EvaluateEdgeQuadric(int edge) {
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    QSum q;
    sumEdgeQuadric(inEdge(edge), q); // nothing is stored: the sum is formed where it is used
}

double SurfSimpli::EdgeCostAt(int edge) const {
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(inEdge(edge)));
    const PointHot& A = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& B = pts_[static_cast<std::size_t>(E.b)];
    QSum q; // added afresh, as MatrixADD would (a non-finite sum ends in a non-finite cost)
    qm::sum(A.s, A.u, B.s, B.u, q.s, q.u);
    return fin(qm::cost(E.nc, q.s, q.u));
}

void SurfSimpli::PlaceAtBetterEnd(int edge) { placeAtBetterEnd(inEdge(edge)); }

void SurfSimpli::placeAtBetterEnd(int edge) {
    pristine_ = false;
    EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const PointHot& PA = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& PB = pts_[static_cast<std::size_t>(E.b)];
    const Vec3 A{PA.xyz[0], PA.xyz[1], PA.xyz[2]};
    const Vec3 B{PB.xyz[0], PB.xyz[1], PB.xyz[2]};
    QSum q;
    qm::sum(PA.s, PA.u, PB.s, PB.u, q.s, q.u);
    for (int k = 0; k < 3; ++k) E.nc[k] = A[static_cast<std::size_t>(k)];
    const double c1 = fin(qm::cost(E.nc, q.s, q.u));
    if (c1 == 0.0) return;
    for (int k = 0; k < 3; ++k) E.nc[k] = B[static_cast<std::size_t>(k)];
    const double c2 = fin(qm::cost(E.nc, q.s, q.u));
    if (c1 < c2)
        for (int k = 0; k < 3; ++k) E.nc[k] = A[static_cast<std::size_t>(k)];
}

// Elimination without pivoting. Every value and divisor is tested as the library tests it; a
// failed test means the fallback to the better end (no later step has side effects, so testing
// them all and deciding once gives the same answer as stopping at the first failure).
void SurfSimpli::placeOptimal(int edge, const QSum& q) {
    bool ok = true;
    auto f = [&ok](double v) {
        ok &= std::isfinite(v);
        return v;
    };
    auto div = [&ok, &f](double a, double b) {
        ok &= b != 0.0;
        return f(a / b);
    };
    // the upper triangle of rows 1 to 3 (see PointHot)
    auto Q = [&](int r, int c) { return c == 4 ? q.u[r - 1] : q.s[r == 1 ? c - 1 : r == 2 ? c + 2 : c + 4]; };
    const double k1 = div(Q(1, 2), Q(1, 1));
    const double k2 = div(Q(1, 3), Q(1, 1));
    const double m = f(k1 * Q(1, 3));
    const double a22 = f(Q(2, 2) - f(k1 * Q(1, 2)));
    const double a23 = f(Q(2, 3) - m);
    const double a24 = f(Q(2, 4) - f(k1 * Q(1, 4)));
    const double a32 = f(Q(2, 3) - m);
    const double a33 = f(Q(3, 3) - f(k2 * Q(1, 3)));
    const double a34 = f(Q(3, 4) - f(k2 * Q(1, 4)));
    const double z = div(f(f(a32 * a24) - f(a22 * a34)), f(f(a22 * a33) - f(a32 * a23)));
    const double y = div(f(f(-a23 * z) - a24), a22);
    const double x = div(f(f(f(-Q(1, 2) * y) - f(z * Q(1, 3))) - Q(1, 4)), Q(1, 1));
    if (!ok) {
        placeAtBetterEnd(edge);
        return;
    }
    EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    E.nc[0] = x;
    E.nc[1] = y;
    E.nc[2] = z;
}

// The settled formula; a zero divisor or a non-finite term falls back to the better end. The
// terms are tested together once the division is done: no later value can hide an earlier
// non-finite one except a division, which is tested before it is made.
[[gnu::always_inline]] inline void SurfSimpli::placeOnSegment(int edge, const QSum& q) {
    EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const double* A = pts_[static_cast<std::size_t>(E.a)].xyz;
    const double* B = pts_[static_cast<std::size_t>(E.b)].xyz;
    // Two lanes at a time where two terms have the same shape: each lane makes exactly the
    // operations of its scalar term, in the same order; the sums of N and D stay in order.
    using qm::v2d;
    const double q13 = q.s[2], q34 = q.u[2];
    const v2d a01 = qm::ld(A), a12 = qm::ld(A + 1), b01 = qm::ld(B), b12 = qm::ld(B + 1);
    const v2d d01 = b01 - a01, d12 = b12 - a12; // (d0, d1), (d1, d2)
    const double p0 = a01[0], p2 = a12[1];
    const double d0 = d01[0], d1 = d01[1], d2 = d12[1];
    // (q11 * p0 * d0, q22 * p1 * d1), (q12 * (d1 * p0 + d0 * p1), q23 * (d2 * p1 + d1 * p2)), (q14 * d0, q24 * d1)
    const v2d t15 = v2d{q.s[0], q.s[4]} * a01 * d01;
    const v2d t26 = v2d{q.s[1], q.s[5]} * (d12 * a01 + d01 * a12);
    const v2d t47 = qm::ld(q.u) * d01;
    const double t3 = q13 * (d2 * p0 + d0 * p2), t8 = q.s[7] * p2 * d2, t9 = q34 * d2;
    const double N = t15[0] + t26[0] + t3 + t47[0] + t15[1] + t26[1] + t47[1] + t8 + t9;
    // D = (2 * q23 * d2 + q22 * d1 + q33 * d2 * d2) * d1 + (2 * q12 * d1 + q11 * d0 + 2 * q13 * d2) * d0,
    // the two brackets in two lanes (the Q(3,3) term stands inside the bracket multiplied by d1)
    const v2d d21 = v2d{d2, d1}, d10 = v2d{d1, d0};
    const v2d br = 2 * v2d{q.s[5], q.s[1]} * d21 + v2d{q.s[4], q.s[0]} * d10 + v2d{q.s[7] * d2, 2 * q13} * v2d{d2, d2};
    const v2d dd = br * d10;
    const double D = dd[0] + dd[1];
    // N * 0 + D * 0 is NaN exactly when one of them is not finite. A non-finite d0, d1 or d2
    // makes N non-finite (its terms q14 * d0, q24 * d1 and q34 * d2 are then inf or NaN, and
    // no sum with an inf or NaN term is finite), so N and D stand for all five.
    if (D != 0.0 && (N * 0.0 + D * 0.0) == 0.0) {
        double t = -N / D;
        if (t * 0.0 == 0.0) { // finite before it is clamped
            if (t < 0) t = 0;
            if (t > 1) t = 1;
            // VectorScale then VectorAdd
            const v2d n01 = a01 + qm::splat(t) * d01;
            const double n2 = p2 + t * d2;
            // |t * d| <= |d| (0 <= t <= 1) and d is finite here: only n can overflow
            const v2d z01 = n01 * 0.0;
            if ((z01[0] + z01[1] + n2 * 0.0) == 0.0) {
                qm::st(E.nc, n01);
                E.nc[2] = n2;
                return;
            }
        }
    }
    placeAtBetterEnd(edge);
}

void SurfSimpli::PlaceOptimal(int edge) {
    pristine_ = false;
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    edge = inEdge(edge);
    QSum q;
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const PointHot& A = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& B = pts_[static_cast<std::size_t>(E.b)];
    qm::sum(A.s, A.u, B.s, B.u, q.s, q.u);
    placeOptimal(edge, q);
}

void SurfSimpli::PlaceOnSegment(int edge) {
    pristine_ = false;
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    edge = inEdge(edge);
    QSum q;
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const PointHot& A = pts_[static_cast<std::size_t>(E.a)];
    const PointHot& B = pts_[static_cast<std::size_t>(E.b)];
    qm::sum(A.s, A.u, B.s, B.u, q.s, q.u);
    placeOnSegment(edge, q);
}

[[gnu::always_inline]] inline void SurfSimpli::evaluateEdge(int edge, const QSum& q) {
    if (geomOnly_) placeOptimal(edge, q);
    else placeOnSegment(edge, q);
    EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    E.cost = fin(qm::cost(E.nc, q.s, q.u));
}

void SurfSimpli::EvaluateAllEdges() {
    pristine_ = false;
    std::int32_t chunk[256];
    std::size_t n = 0;
    for (int e = 1; e <= EdgeCount(); ++e) {
        if (!edges_[static_cast<std::size_t>(e)].valid) continue;
        chunk[n++] = e;
        if (n == std::size(chunk)) {
            evaluateList(chunk, n, false);
            n = 0;
        }
    }
    evaluateList(chunk, n, false);
    heapDirty_ = true;
}

// A cost that rose leaves the edge's key where it was (a lower bound, put right when the edge
// comes up in a selection); a cost that fell moves the edge up at once. An edge outside the
// heap comes in only when it costs less than the heap's limit. Once per re-costed edge (about
// 40 a contraction): inlined into its one caller.
[[gnu::always_inline]] inline void SurfSimpli::heapUpdate(int edge, double oldCost) {
    if (heapDirty_) return;
    const std::size_t x = static_cast<std::size_t>(edge);
    if (x < parked_.size() && parked_[x]) clearPark(x); // parked edges are never in the heap
    const EdgeHot& E = edges_[x];
    if (!eligible(E)) heap_.remove(edge);
    // held keys are at most the cost they were set from, and oldCost was at least that
    else if (heap_.contains(edge)) {
        if (!(E.cost >= oldCost)) heap_.set(edge, E.cost);
    } else if (E.cost < heapLimit_) {
        heap_.set(edge, E.cost);
    }
}

// The edges of a neighbourhood are independent: each reads its two ends' records (which no
// re-costing writes) and writes its own placement and cost; a heap update reads only its own
// edge's old and new cost. So four are costed at once, then their heap updates are made in
// list order. A lane the batch cannot finish is done by the scalar code in its turn, so a
// raise leaves what the one-by-one loop leaves: the edges before it costed and in the heap, the
// raising edge placed but not costed, the ones after it untouched.
void SurfSimpli::EvaluateAffectedEdges() {
    pristine_ = false;
    evaluateList(affectedEdges_.data(), affectedEdges_.size(), true);
}

void SurfSimpli::evaluateOne(int edge, bool withHeap) {
    const double oldCost = edges_[static_cast<std::size_t>(edge)].cost;
    QSum q;
    sumEdgeQuadric(edge, q);
    evaluateEdge(edge, q);
    if (withHeap) heapUpdate(edge, oldCost);
}

namespace {
using ListKernel = void (*)(const qm::EdgeList&, double*, unsigned char*);
void segmentListPortable(const qm::EdgeList& l, double* res, unsigned char* clean) { qm::costList<false>(l, res, clean); }
void optimalListPortable(const qm::EdgeList& l, double* res, unsigned char* clean) { qm::costList<true>(l, res, clean); }
#if defined(__x86_64__)
__attribute__((target("avx2"))) void segmentListAvx2(const qm::EdgeList& l, double* res, unsigned char* clean) {
    qm::costList<false>(l, res, clean);
}
__attribute__((target("avx2"))) void optimalListAvx2(const qm::EdgeList& l, double* res, unsigned char* clean) {
    qm::costList<true>(l, res, clean);
}
#endif
} // namespace

// Without AVX2 the one-by-one code: the two-lane build of the batch runs fewer instructions but
// spills most of its values (sixteen 128-bit registers) and was measured slower.
SurfSimpli::Costing SurfSimpli::DefaultCosting() {
#if defined(__x86_64__)
    static const Costing path = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") ? Costing::Avx2 : Costing::Scalar;
    }();
    return path;
#else
    return Costing::Scalar;
#endif
}

// The edges of a list are independent: each reads its two ends' records (which no re-costing
// writes) and writes its own placement and cost, and a heap update reads only its own edge's
// old and new cost. So all are costed first, four at a time, and then, in list order, each
// edge's results are stored and its heap update made. An edge the batches cannot finish (a
// fallback to the better end, or an Overflow) is done by the scalar code in its turn, so a
// raise leaves what the one-by-one loop leaves: the edges before it costed and in the heap,
// the raising edge as far as the scalar code got, the ones after it untouched.
void SurfSimpli::evaluateList(const std::int32_t* list, std::size_t n, bool withHeap) {
    if (n == 0) return;
    ListKernel kernel = geomOnly_ ? optimalListPortable : segmentListPortable;
    switch (CostingPath) {
    case Costing::Scalar: {
        // The records of a neighbourhood lie anywhere in the arrays: ask for the next edges'
        // ends and heap slots ahead of their turn.
        auto ahead = [&](std::size_t i) {
            const EdgeHot& E = edges_[static_cast<std::size_t>(list[i])];
            const double* a = pts_[static_cast<std::size_t>(E.a)].s;
            const double* b = pts_[static_cast<std::size_t>(E.b)].s;
            __builtin_prefetch(a);
            __builtin_prefetch(a + 8);
            __builtin_prefetch(b);
            __builtin_prefetch(b + 8);
            heap_.prefetch(list[i]);
        };
        for (std::size_t i = 0; i < n && i < 3; ++i) __builtin_prefetch(&edges_[static_cast<std::size_t>(list[i])]);
        for (std::size_t i = 0; i < n && i < 2; ++i) ahead(i);
        for (std::size_t i = 0; i < n; ++i) {
            if (i + 3 < n) __builtin_prefetch(&edges_[static_cast<std::size_t>(list[i + 3])]);
            if (i + 2 < n) ahead(i + 2);
            const std::int32_t e = list[i]; // evaluateOne, inlined
            const double oldCost = edges_[static_cast<std::size_t>(e)].cost;
            QSum q;
            sumEdgeQuadric(e, q);
            evaluateEdge(e, q);
            if (withHeap) heapUpdate(e, oldCost);
        }
        return;
    }
    case Costing::Avx2:
#if defined(__x86_64__)
        kernel = geomOnly_ ? optimalListAvx2 : segmentListAvx2;
#endif
        break;
    case Costing::Portable:
        break;
    }
    const std::size_t fours = (n + 3) / 4;
    if (laneClean_.size() < fours) {
        laneClean_.resize(fours);
        laneOut_.resize(16 * fours);
    }
    static_assert(offsetof(EdgeHot, a) == 0 && offsetof(EdgeHot, b) == sizeof(std::int32_t), "the ends first");
    static_assert(sizeof(PointHot) == 16 * sizeof(double) && offsetof(PointHot, s) == 0, "sixteen doubles a point");
    const qm::EdgeList l{list, n, reinterpret_cast<const unsigned char*>(edges_.data()), sizeof(EdgeHot), reinterpret_cast<const double*>(pts_.data())};
    kernel(l, laneOut_.data(), laneClean_.data());
    const bool heapLive = withHeap && !heapDirty_;
    static_assert(offsetof(EdgeHot, nc) == offsetof(EdgeHot, cost) + sizeof(double), "cost and placement side by side");
    for (std::size_t i = 0; i < n; ++i) {
        const std::int32_t e = list[i];
        if (!(laneClean_[i / 4] >> (i % 4) & 1u)) {
            evaluateOne(e, withHeap);
            continue;
        }
        EdgeHot& E = edges_[static_cast<std::size_t>(e)];
        const double oldCost = E.cost;
        std::memcpy(reinterpret_cast<char*>(&E) + offsetof(EdgeHot, cost), &laneOut_[4 * i], 4 * sizeof(double));
        if (heapLive) heapUpdate(e, oldCost);
    }
}

} // namespace simplify
