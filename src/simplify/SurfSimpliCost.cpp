// the edge contraction: quadrics, border penalties, lock terms, placement and cost.
//
// The arithmetic is that of the documented procedures and of the maths library they name
// (src/maths), written out for speed but in the same order of operations, so that every
// result is bit-identical to the literal implementation (tests/simplify/reference). Where the
// maths library raises (a non-finite result is the Windows design's Overflow, a zero divisor its
// Division by zero), this code raises at the same places.
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
        SimpPoint& P = pts_[static_cast<std::size_t>(p)];
        if (!P.Valid) continue;
        for (const std::int32_t t : P.AssTris) addProducts(P.Q, tris_[static_cast<std::size_t>(t)].Plane);
    }
}

void SurfSimpli::BuildPointQuadric(int point) {
    pristine_ = false;
    SimpPoint& P = pts_.at(static_cast<std::size_t>(point));
    // Triangles that have gone are dropped from the list as it is read; the order of the others stays.
    std::size_t w = 0;
    for (std::size_t r = 0; r < P.AssTris.size(); ++r) {
        const std::int32_t t = P.AssTris[r];
        const SimpTri& T = tris_[static_cast<std::size_t>(t)];
        if (!T.Valid) continue;
        P.AssTris[w++] = t;
        addProducts(P.Q, T.Plane);
    }
    P.AssTris.resize(w);
}

void SurfSimpli::ClearPointQuadric(int point) {
    pristine_ = false;
    pts_.at(static_cast<std::size_t>(point)).Q.fill(0.0);
}

int SurfSimpli::CountValidTris(int edge) const {
    int n = 0;
    for (const std::int32_t t : edges_.at(static_cast<std::size_t>(edge)).AssTris)
        if (tris_[static_cast<std::size_t>(t)].Valid) ++n;
    return n;
}

void SurfSimpli::cornerUV(int tri, int point, double uv[2]) const {
    const SimpTri& T = tris_[static_cast<std::size_t>(tri)];
    for (int k = 0; k < 3; ++k)
        if (T.Pts[k] == point) {
            uv[0] = T.TexUV[k][0];
            uv[1] = T.TexUV[k][1];
            return;
        }
    uv[0] = uv[1] = 0.0; // not a corner of the triangle: see docs/simplify.md
}

void SurfSimpli::setCornerUV(int tri, int point, const double uv[2]) {
    SimpTri& T = tris_[static_cast<std::size_t>(tri)];
    for (int k = 0; k < 3; ++k)
        if (T.Pts[k] == point) {
            T.TexUV[k][0] = uv[0];
            T.TexUV[k][1] = uv[1];
            return;
        }
}

bool SurfSimpli::HasBitmapBorder(int edge) const {
    bool first = true;
    int bitmap = 0;
    for (const std::int32_t t : edges_.at(static_cast<std::size_t>(edge)).AssTris) {
        const SimpTri& T = tris_[static_cast<std::size_t>(t)];
        if (!T.Valid) continue;
        if (first) {
            bitmap = T.BitmapHandle;
            first = false;
        } else if (T.BitmapHandle != bitmap) {
            return true;
        }
    }
    return false;
}

bool SurfSimpli::HasTexSeam(int edge) const {
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    if (E.AssTris.size() < 2) return false;
    const int t1 = E.AssTris[0], t2 = E.AssTris[1];
    if (!tris_[static_cast<std::size_t>(t1)].Valid || !tris_[static_cast<std::size_t>(t2)].Valid) return false;
    double a1[2], a2[2], b1[2], b2[2];
    cornerUV(t1, E.PtA, a1);
    cornerUV(t2, E.PtA, a2);
    cornerUV(t1, E.PtB, b1);
    cornerUV(t2, E.PtB, b2);
    return a1[0] != a2[0] || a1[1] != a2[1] || b1[0] != b2[0] || b1[1] != b2[1];
}

bool SurfSimpli::HasColorBorder(int edge) const {
    bool result = false;
    int prev = 0;
    for (const std::int32_t t : edges_.at(static_cast<std::size_t>(edge)).AssTris) {
        const SimpTri& T = tris_[static_cast<std::size_t>(t)];
        if (!T.Valid) continue;
        if (prev != 0) {
            const SimpTri& P = tris_[static_cast<std::size_t>(prev)];
            if (P.BitmapHandle == 0 && T.BitmapHandle == 0)
                result = P.TriColor[0] != T.TriColor[0] || P.TriColor[1] != T.TriColor[1] || P.TriColor[2] != T.TriColor[2];
            else
                result = false;
        }
        prev = t;
    }
    return result;
}

void SurfSimpli::MarkBorderEdges() {
    pristine_ = false;
    for (int e = 1; e <= EdgeCount(); ++e) {
        SimpEdge& E = edges_[static_cast<std::size_t>(e)];
        if (!E.Valid) continue;
        E.IsBorder = false;
        const int n = CountValidTris(e);
        bool border;
        if (n == 1) border = true;
        else if (geomOnly_) border = false;
        else if (HasBitmapBorder(e)) border = true;
        else if (protectTexSeams_ && HasTexSeam(e)) border = true;
        else if (protectColorBorders_ && HasColorBorder(e)) border = true;
        else border = false;
        if (border) {
            E.IsBorder = true;
            AddBorderPenalty(e);
        }
    }
}

// The doubled plane through the edge, perpendicular to its first valid triangle.
void SurfSimpli::borderPlane(int edge, double p[4]) const {
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    int tri = 0; // none valid: slot 0, whose corners are the unused point 0 at the origin
    for (const std::int32_t t : E.AssTris)
        if (tris_[static_cast<std::size_t>(t)].Valid) {
            tri = t;
            break;
        }
    const double* A = pts_.at(static_cast<std::size_t>(E.PtA)).Coords;
    const double* B = pts_.at(static_cast<std::size_t>(E.PtB)).Coords;
    double C[3] = {0, 0, 0};
    const SimpTri& T = tris_[static_cast<std::size_t>(tri)];
    for (int k = 0; k < 3; ++k)
        if (T.Pts[k] != E.PtA && T.Pts[k] != E.PtB) {
            const double* c = pts_.at(static_cast<std::size_t>(T.Pts[k])).Coords;
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
    const SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    addProducts(pts_.at(static_cast<std::size_t>(E.PtA)).Q, p);
    addProducts(pts_.at(static_cast<std::size_t>(E.PtB)).Q, p);
}

void SurfSimpli::AddBorderPenaltyToPoint(int point, int edge) {
    pristine_ = false;
    double p[4];
    borderPlane(edge, p);
    addProducts(pts_.at(static_cast<std::size_t>(point)).Q, p);
}

void SurfSimpli::AddLockTerms() {
    pristine_ = false;
    for (const std::int32_t idx : selectedPts_) {
        if (idx < 0 || idx > PointCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        SimpPoint& P = pts_[static_cast<std::size_t>(idx)];
        const double x = P.Coords[0], y = P.Coords[1], z = P.Coords[2];
        P.Q[qi(1, 1)] += 1.0;
        P.Q[qi(2, 2)] += 1.0;
        P.Q[qi(3, 3)] += 1.0;
        P.Q[qi(1, 4)] -= x;
        P.Q[qi(2, 4)] -= y;
        P.Q[qi(3, 4)] -= z;
        P.Q[qi(4, 4)] += x * x + y * y + z * z;
    }
}

void SurfSimpli::EvaluateEdgeQuadric(int edge) {
    pristine_ = false;
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    const Quadric& a = pts_.at(static_cast<std::size_t>(E.PtA)).Q;
    const Quadric& b = pts_.at(static_cast<std::size_t>(E.PtB)).Q;
    Quadric& q = edgeQ_[static_cast<std::size_t>(edge)];
    bool finite = true;
    for (std::size_t k = 0; k < 16; ++k) {
        q[k] = a[k] + b[k];
        finite &= std::isfinite(q[k]);
    }
    if (!finite) vexil::raiseOverflow(); // MatrixADD raises on a non-finite sum
}

double SurfSimpli::EdgeCostAt(int edge) const {
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    const Quadric& a = pts_.at(static_cast<std::size_t>(E.PtA)).Q;
    const Quadric& b = pts_.at(static_cast<std::size_t>(E.PtB)).Q;
    const double v[4] = {E.NewCoords[0], E.NewCoords[1], E.NewCoords[2], 1.0};
    // v^T (a + b) v, as MatrixTranspose and two MatrixMultiply sum it: each sum from 0, k upward.
    // Any non-finite intermediate makes the result non-finite, so one test stands for the
    // library's test of each term.
    double cost = 0.0;
    for (int j = 0; j < 4; ++j) {
        double r = 0.0;
        for (int k = 0; k < 4; ++k) r += v[k] * (a[static_cast<std::size_t>(k * 4 + j)] + b[static_cast<std::size_t>(k * 4 + j)]);
        cost += r * v[j];
    }
    return fin(cost);
}

double SurfSimpli::edgeCostFromEdgeQuadric(int edge) const {
    const SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    const Quadric& q = edgeQ_[static_cast<std::size_t>(edge)];
    const double v[4] = {E.NewCoords[0], E.NewCoords[1], E.NewCoords[2], 1.0};
    double cost = 0.0;
    for (int j = 0; j < 4; ++j) {
        double r = 0.0;
        for (int k = 0; k < 4; ++k) r += v[k] * q[static_cast<std::size_t>(k * 4 + j)];
        cost += r * v[j];
    }
    return fin(cost);
}

void SurfSimpli::PlaceAtBetterEnd(int edge) {
    pristine_ = false;
    SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    const double* A = pts_.at(static_cast<std::size_t>(E.PtA)).Coords;
    const double* B = pts_.at(static_cast<std::size_t>(E.PtB)).Coords;
    for (int k = 0; k < 3; ++k) E.NewCoords[k] = A[k];
    const double c1 = EdgeCostAt(edge);
    if (c1 == 0.0) return;
    for (int k = 0; k < 3; ++k) E.NewCoords[k] = B[k];
    const double c2 = EdgeCostAt(edge);
    if (c1 < c2)
        for (int k = 0; k < 3; ++k) E.NewCoords[k] = A[k];
}

void SurfSimpli::PlaceOptimal(int edge) {
    pristine_ = false;
    double x, y, z;
    try {
        const Quadric& q = edgeQ_.at(static_cast<std::size_t>(edge));
        auto Q = [&](int r, int c) { return q[static_cast<std::size_t>(qi(r, c))]; };
        const double k1 = cdiv(Q(1, 2), Q(1, 1));
        const double k2 = cdiv(Q(1, 3), Q(1, 1));
        const double m = fin(k1 * Q(1, 3));
        const double a22 = fin(Q(2, 2) - fin(k1 * Q(1, 2)));
        const double a23 = fin(Q(2, 3) - m);
        const double a24 = fin(Q(2, 4) - fin(k1 * Q(1, 4)));
        const double a32 = fin(Q(2, 3) - m);
        const double a33 = fin(Q(3, 3) - fin(k2 * Q(1, 3)));
        const double a34 = fin(Q(3, 4) - fin(k2 * Q(1, 4)));
        z = cdiv(fin(fin(a32 * a24) - fin(a22 * a34)), fin(fin(a22 * a33) - fin(a32 * a23)));
        y = cdiv(fin(fin(-a23 * z) - a24), a22);
        x = cdiv(fin(fin(fin(-Q(1, 2) * y) - fin(z * Q(1, 3))) - Q(1, 4)), Q(1, 1));
    } catch (const vexil::VexilError&) {
        PlaceAtBetterEnd(edge);
        return;
    }
    SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    E.NewCoords[0] = x;
    E.NewCoords[1] = y;
    E.NewCoords[2] = z;
}

void SurfSimpli::PlaceOnSegment(int edge) {
    pristine_ = false;
    double nc[3];
    try {
        const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
        const double* A = pts_.at(static_cast<std::size_t>(E.PtA)).Coords;
        const double* B = pts_.at(static_cast<std::size_t>(E.PtB)).Coords;
        const Quadric& q = edgeQ_[static_cast<std::size_t>(edge)];
        auto Q = [&](int r, int c) { return q[static_cast<std::size_t>(qi(r, c))]; };
        const double p0 = A[0], p1 = A[1], p2 = A[2];
        const double d0 = fin(B[0] - A[0]), d1 = fin(B[1] - A[1]), d2 = fin(B[2] - A[2]);
        const double N = fin(Q(1, 1) * p0 * d0 + Q(1, 2) * (d1 * p0 + d0 * p1) + Q(1, 3) * (d2 * p0 + d0 * p2) +
                             Q(1, 4) * d0 + Q(2, 2) * p1 * d1 + Q(2, 3) * (d2 * p1 + d1 * p2) + Q(2, 4) * d1 +
                             Q(3, 3) * p2 * d2 + Q(3, 4) * d2);
        // the formula as settled: the Q(3,3) term stands inside the bracket multiplied by d1
        const double D = fin((2 * Q(2, 3) * d2 + Q(2, 2) * d1 + Q(3, 3) * d2 * d2) * d1 +
                             (2 * Q(1, 2) * d1 + Q(1, 1) * d0 + 2 * Q(1, 3) * d2) * d0);
        double t = cdiv(-N, D);
        if (t < 0) t = 0;
        if (t > 1) t = 1;
        // VectorScale then VectorAdd
        const double s0 = fin(t * d0), s1 = fin(t * d1), s2 = fin(t * d2);
        nc[0] = fin(p0 + s0);
        nc[1] = fin(p1 + s1);
        nc[2] = fin(p2 + s2);
    } catch (const vexil::VexilError&) {
        PlaceAtBetterEnd(edge);
        return;
    }
    SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    E.NewCoords[0] = nc[0];
    E.NewCoords[1] = nc[1];
    E.NewCoords[2] = nc[2];
}

void SurfSimpli::EvaluateAllEdges() {
    pristine_ = false;
    for (int e = 1; e <= EdgeCount(); ++e) {
        if (!edges_[static_cast<std::size_t>(e)].Valid) continue;
        EvaluateEdgeQuadric(e);
        if (geomOnly_) PlaceOptimal(e);
        else PlaceOnSegment(e);
        edges_[static_cast<std::size_t>(e)].Cost = edgeCostFromEdgeQuadric(e);
    }
    heapDirty_ = true;
}

void SurfSimpli::EvaluateAffectedEdges() {
    pristine_ = false;
    for (const std::int32_t e : affectedEdges_) {
        EvaluateEdgeQuadric(e);
        if (geomOnly_) PlaceOptimal(e);
        else PlaceOnSegment(e);
        edges_[static_cast<std::size_t>(e)].Cost = edgeCostFromEdgeQuadric(e);
        heapUpdate(e);
    }
}

} // namespace simplify
