// Edge cost: quadrics, border penalties, lock terms, placement and cost.
//
// The arithmetic is that of the documented procedures and of the maths library they name
// (src/maths), written out for speed but in the same order of operations, so that every
// result is bit-identical to the literal implementation (tests/simplify/reference). Where the
// maths library raises (a non-finite result is Overflow, a zero divisor Division by zero), this
// code raises at the same places.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"

#include <cmath>

namespace simplify {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
inline double sq(double x) { return fin(x * x); }
inline double cdiv(double a, double b) { return fin(vexil::checkedDiv(a, b)); }
} // namespace

void SurfSimpli::addProducts(Quadric& q, const double p[4]) const {
    // the sixteen products aa, ab, ..., dd, added term by term
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) q[static_cast<std::size_t>(i * 4 + j)] += p[i] * p[j];
}

void SurfSimpli::BuildAllQuadrics() {
    pristine_ = false;
    for (int p = 1; p <= PointCount(); ++p) {
        const std::size_t pi = static_cast<std::size_t>(p);
        if (!pValid_[pi]) continue;
        Quadric& Q = pQ_[pi];
        for (const std::int32_t* t = pTris_.begin(pi); t != pTris_.end(pi); ++t)
            addProducts(Q, tris_[static_cast<std::size_t>(*t)].plane);
    }
}

void SurfSimpli::BuildPointQuadric(int point) {
    pristine_ = false;
    const std::size_t pi = static_cast<std::size_t>(point);
    if (pi >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    // Triangles that have gone are dropped from the list as it is read; the order of the others stays.
    Quadric q = pQ_[pi];
    pTris_.filter(pi, [&](std::int32_t t) {
        const TriHot& T = tris_[static_cast<std::size_t>(t)];
        if (!T.valid) return false;
        addProducts(q, T.plane);
        return true;
    });
    pQ_[pi] = q;
}

void SurfSimpli::ClearPointQuadric(int point) {
    pristine_ = false;
    pQ_.at(static_cast<std::size_t>(point)).fill(0.0);
}

int SurfSimpli::CountValidTris(int edge) const {
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

bool SurfSimpli::HasBitmapBorder(int edge) const {
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

bool SurfSimpli::HasTexSeam(int edge) const {
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

bool SurfSimpli::HasColorBorder(int edge) const {
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

void SurfSimpli::MarkBorderEdges() {
    pristine_ = false;
    for (int e = 1; e <= EdgeCount(); ++e) {
        EdgeHot& E = edges_[static_cast<std::size_t>(e)];
        if (!E.valid) continue;
        E.border = false;
        const int n = CountValidTris(e);
        bool border;
        if (n == 1) border = true;
        else if (geomOnly_) border = false;
        else if (HasBitmapBorder(e)) border = true;
        else if (protectTexSeams_ && HasTexSeam(e)) border = true;
        else if (protectColorBorders_ && HasColorBorder(e)) border = true;
        else border = false;
        if (border) {
            E.border = true;
            AddBorderPenalty(e);
        }
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
    const double* A = pCoords_[static_cast<std::size_t>(E.a)].data();
    const double* B = pCoords_[static_cast<std::size_t>(E.b)].data();
    double C[3] = {0, 0, 0};
    const TriHot& T = tris_[tri];
    for (int k = 0; k < 3; ++k)
        if (T.pts[k] != E.a && T.pts[k] != E.b) {
            const double* c = pCoords_[static_cast<std::size_t>(T.pts[k])].data();
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

void SurfSimpli::AddBorderPenalty(int edge) {
    pristine_ = false;
    double p[4];
    borderPlane(edge, p);
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    addProducts(pQ_[static_cast<std::size_t>(E.a)], p);
    addProducts(pQ_[static_cast<std::size_t>(E.b)], p);
}

void SurfSimpli::AddBorderPenaltyToPoint(int point, int edge) {
    pristine_ = false;
    double p[4];
    borderPlane(edge, p);
    addProducts(pQ_.at(static_cast<std::size_t>(point)), p);
}

void SurfSimpli::AddLockTerms() {
    pristine_ = false;
    for (const std::int32_t idx : selectedPts_) {
        if (idx < 0 || idx > PointCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        const std::size_t pi = static_cast<std::size_t>(idx);
        Quadric& Q = pQ_[pi];
        const double x = pCoords_[pi][0], y = pCoords_[pi][1], z = pCoords_[pi][2];
        Q[qi(1, 1)] += 1.0;
        Q[qi(2, 2)] += 1.0;
        Q[qi(3, 3)] += 1.0;
        Q[qi(1, 4)] -= x;
        Q[qi(2, 4)] -= y;
        Q[qi(3, 4)] -= z;
        Q[qi(4, 4)] += x * x + y * y + z * z;
    }
}

void SurfSimpli::sumEdgeQuadric(int edge, Quadric& q) const {
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const double* a = pQ_[static_cast<std::size_t>(E.a)].data();
    const double* b = pQ_[static_cast<std::size_t>(E.b)].data();
    // probe is NaN exactly when some term is not finite (x * 0 is 0 for every finite x)
    double probe = 0.0;
    for (std::size_t k = 0; k < 16; ++k) {
        q[k] = a[k] + b[k];
        probe += q[k] * 0.0;
    }
    if (probe != probe) vexil::raiseOverflow(); // MatrixADD raises on a non-finite sum
}

Quadric SurfSimpli::EdgeQuadric(int edge) const {
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const Quadric& a = pQ_[static_cast<std::size_t>(E.a)];
    const Quadric& b = pQ_[static_cast<std::size_t>(E.b)];
    Quadric q;
    for (std::size_t k = 0; k < 16; ++k) q[k] = a[k] + b[k];
    return q;
}

void SurfSimpli::EvaluateEdgeQuadric(int edge) {
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    Quadric q;
    sumEdgeQuadric(edge, q); // nothing is stored: the sum is formed where it is used
}

double SurfSimpli::costAt(const EdgeHot& E, const Quadric& q) const {
    const double v[4] = {E.nc[0], E.nc[1], E.nc[2], 1.0};
    // v^T Q v, as MatrixTranspose and two MatrixMultiply sum it: each sum from 0, k upward.
    // Any non-finite intermediate makes the result non-finite, so one test stands for the
    // library's test of each term.
    double cost = 0.0;
    for (int j = 0; j < 4; ++j) {
        double r = 0.0;
        for (int k = 0; k < 4; ++k) r += v[k] * q[static_cast<std::size_t>(k * 4 + j)];
        cost += r * v[j];
    }
    return fin(cost);
}

double SurfSimpli::EdgeCostAt(int edge) const {
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const Quadric q = EdgeQuadric(edge); // added afresh, as MatrixADD would (a non-finite sum ends in a non-finite cost)
    return costAt(E, q);
}

void SurfSimpli::PlaceAtBetterEnd(int edge) {
    pristine_ = false;
    EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const Vec3 A = pCoords_[static_cast<std::size_t>(E.a)];
    const Vec3 B = pCoords_[static_cast<std::size_t>(E.b)];
    const Quadric q = EdgeQuadric(edge);
    for (int k = 0; k < 3; ++k) E.nc[k] = A[static_cast<std::size_t>(k)];
    const double c1 = costAt(E, q);
    if (c1 == 0.0) return;
    for (int k = 0; k < 3; ++k) E.nc[k] = B[static_cast<std::size_t>(k)];
    const double c2 = costAt(E, q);
    if (c1 < c2)
        for (int k = 0; k < 3; ++k) E.nc[k] = A[static_cast<std::size_t>(k)];
}

// Elimination without pivoting. Every value and divisor is tested as the library tests it; a
// failed test means the fallback to the better end (no later step has side effects, so testing
// them all and deciding once gives the same answer as stopping at the first failure).
void SurfSimpli::placeOptimal(int edge, const Quadric& q) {
    bool ok = true;
    auto f = [&ok](double v) {
        ok &= std::isfinite(v);
        return v;
    };
    auto div = [&ok, &f](double a, double b) {
        ok &= b != 0.0;
        return f(a / b);
    };
    auto Q = [&](int r, int c) { return q[static_cast<std::size_t>(qi(r, c))]; };
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
        PlaceAtBetterEnd(edge);
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
void SurfSimpli::placeOnSegment(int edge, const Quadric& q) {
    EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    const double* A = pCoords_[static_cast<std::size_t>(E.a)].data();
    const double* B = pCoords_[static_cast<std::size_t>(E.b)].data();
    const double q11 = q[0], q12 = q[1], q13 = q[2], q14 = q[3], q22 = q[5], q23 = q[6], q24 = q[7], q33 = q[10],
                 q34 = q[11];
    const double p0 = A[0], p1 = A[1], p2 = A[2];
    const double d0 = B[0] - A[0], d1 = B[1] - A[1], d2 = B[2] - A[2];
    const double N = q11 * p0 * d0 + q12 * (d1 * p0 + d0 * p1) + q13 * (d2 * p0 + d0 * p2) + q14 * d0 + q22 * p1 * d1 +
                     q23 * (d2 * p1 + d1 * p2) + q24 * d1 + q33 * p2 * d2 + q34 * d2;
    // the Q(3,3) term stands inside the bracket multiplied by d1
    const double D = (2 * q23 * d2 + q22 * d1 + q33 * d2 * d2) * d1 + (2 * q12 * d1 + q11 * d0 + 2 * q13 * d2) * d0;
    // N * 0 + D * 0 + ... is NaN exactly when one of them is not finite
    if (D != 0.0 && (d0 * 0.0 + d1 * 0.0 + d2 * 0.0 + N * 0.0 + D * 0.0) == 0.0) {
        double t = -N / D;
        if (t * 0.0 == 0.0) { // finite before it is clamped
            if (t < 0) t = 0;
            if (t > 1) t = 1;
            // VectorScale then VectorAdd
            const double s0 = t * d0, s1 = t * d1, s2 = t * d2;
            const double n0 = p0 + s0, n1 = p1 + s1, n2 = p2 + s2;
            if ((s0 * 0.0 + s1 * 0.0 + s2 * 0.0 + n0 * 0.0 + n1 * 0.0 + n2 * 0.0) == 0.0) {
                E.nc[0] = n0;
                E.nc[1] = n1;
                E.nc[2] = n2;
                return;
            }
        }
    }
    PlaceAtBetterEnd(edge);
}

void SurfSimpli::PlaceOptimal(int edge) {
    pristine_ = false;
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    placeOptimal(edge, EdgeQuadric(edge));
}

void SurfSimpli::PlaceOnSegment(int edge) {
    pristine_ = false;
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    placeOnSegment(edge, EdgeQuadric(edge));
}

void SurfSimpli::evaluateEdge(int edge, const Quadric& q) {
    if (geomOnly_) placeOptimal(edge, q);
    else placeOnSegment(edge, q);
    EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    E.cost = costAt(E, q);
}

void SurfSimpli::EvaluateAllEdges() {
    pristine_ = false;
    Quadric q;
    for (int e = 1; e <= EdgeCount(); ++e) {
        if (!edges_[static_cast<std::size_t>(e)].valid) continue;
        sumEdgeQuadric(e, q);
        evaluateEdge(e, q);
    }
    heapDirty_ = true;
}

void SurfSimpli::EvaluateAffectedEdges() {
    pristine_ = false;
    alignas(64) Quadric q;
    const std::size_t n = affectedEdges_.size();
    // The records of a neighbourhood lie anywhere in the arrays: ask for the next edges' ends
    // and heap slots ahead of their turn.
    auto ahead = [&](std::size_t i) {
        const EdgeHot& E = edges_[static_cast<std::size_t>(affectedEdges_[i])];
        __builtin_prefetch(pQ_[static_cast<std::size_t>(E.a)].data());
        __builtin_prefetch(pQ_[static_cast<std::size_t>(E.a)].data() + 8);
        __builtin_prefetch(pQ_[static_cast<std::size_t>(E.b)].data());
        __builtin_prefetch(pQ_[static_cast<std::size_t>(E.b)].data() + 8);
        __builtin_prefetch(&pCoords_[static_cast<std::size_t>(E.a)]);
        __builtin_prefetch(&pCoords_[static_cast<std::size_t>(E.b)]);
        heap_.prefetch(affectedEdges_[i]);
    };
    for (std::size_t i = 0; i < n && i < 3; ++i) __builtin_prefetch(&edges_[static_cast<std::size_t>(affectedEdges_[i])]);
    for (std::size_t i = 0; i < n && i < 2; ++i) ahead(i);
    for (std::size_t i = 0; i < n; ++i) {
        if (i + 3 < n) __builtin_prefetch(&edges_[static_cast<std::size_t>(affectedEdges_[i + 3])]);
        if (i + 2 < n) ahead(i + 2);
        const std::int32_t e = affectedEdges_[i];
        const double oldCost = edges_[static_cast<std::size_t>(e)].cost;
        sumEdgeQuadric(e, q);
        evaluateEdge(e, q);
        heapUpdate(e, oldCost);
    }
}

} // namespace simplify
