// The literal reference of SurfSimpli: each procedure follows the text of simplification mesh to simplification output step
// by step. See RefSurfSimpli.h.
#include "RefSurfSimpli.h"

#include "base/VexilError.h"

#include <cmath>

using namespace Maths;
using namespace mdlMatrixFunctions;

namespace simplify_ref {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
inline double cdiv(double a, double b) { return fin(vexil::checkedDiv(a, b)); }
} // namespace

RefSurfSimpli::RefSurfSimpli(simplify::SimplifyEngine* engine) : engine_(engine) { Reset(); }

// ---------------------------------------------------------------- the simplification mesh

bool RefSurfSimpli::listHas(const std::vector<std::int32_t>& list, std::int32_t count, std::int32_t value) {
    for (int i = 1; i <= count; ++i)
        if (list[static_cast<std::size_t>(i)] == value) return true;
    return false;
}

void RefSurfSimpli::addIfAbsent(std::vector<std::int32_t>& list, std::int32_t& count, std::int32_t value) {
    for (int i = 1; i <= count; ++i)
        if (list[static_cast<std::size_t>(i)] == value) return;
    count += 1;
    list.resize(static_cast<std::size_t>(count) + 1);
    list[static_cast<std::size_t>(count)] = value;
}

void RefSurfSimpli::AddTriangle(const double c1[9], const double c2[9], const double c3[9], const double plane[4],
                                int bitmapHandle, double brightness, const int color[3]) {
    // 1.
    Tris.resize(Tris.size() + 1);
    NumTris += 1;
    const int t = NumTris;
    Tris[static_cast<std::size_t>(t)].Valid = vbTrue;
    Tris[static_cast<std::size_t>(t)].BitmapHandle = bitmapHandle;
    Tris[static_cast<std::size_t>(t)].TriBrightness = brightness;
    for (int k = 1; k <= 3; ++k) Tris[static_cast<std::size_t>(t)].TriColor[k] = color[k - 1];
    // 2.
    const double* corner[4] = {nullptr, c1, c2, c3};
    for (int k = 1; k <= 3; ++k) {
        const int p = BucketPoint(corner[k], t);
        Tris[static_cast<std::size_t>(t)].Pts[k] = p;
        Tris[static_cast<std::size_t>(t)].TexUV[k][0] = corner[k][3];
        Tris[static_cast<std::size_t>(t)].TexUV[k][1] = corner[k][4];
    }
    // 3.
    for (int k = 0; k < 4; ++k) Tris[static_cast<std::size_t>(t)].Plane[k] = plane[k];
    // 4.
    const int p1 = Tris[static_cast<std::size_t>(t)].Pts[1];
    const int p2 = Tris[static_cast<std::size_t>(t)].Pts[2];
    const int p3 = Tris[static_cast<std::size_t>(t)].Pts[3];
    const int e1 = AddEdgeOfTri(p1, p2, t);
    const int e2 = AddEdgeOfTri(p2, p3, t);
    const int e3 = AddEdgeOfTri(p3, p1, t);
    Tris[static_cast<std::size_t>(t)].Edges[1] = e1;
    Tris[static_cast<std::size_t>(t)].Edges[2] = e2;
    Tris[static_cast<std::size_t>(t)].Edges[3] = e3;
    // 5.
    for (int k = 1; k <= 3; ++k) {
        RPoint& P = Points[static_cast<std::size_t>(Tris[static_cast<std::size_t>(t)].Pts[k])];
        P.VertBrightness = corner[k][5];
        P.VertNormal[0] = corner[k][6];
        P.VertNormal[1] = corner[k][7];
        P.VertNormal[2] = corner[k][8];
    }
}

int RefSurfSimpli::BucketPoint(const double coords[3], int tri) {
    int b = 0;
    if (!(coords[0] < OctantCentre[0])) b += 1;
    if (!(coords[1] < OctantCentre[1])) b += 2;
    if (!(coords[2] < OctantCentre[2])) b += 4;
    for (int i = 1; i <= OctantCount[b]; ++i) {
        const RBucketEntry& en = OctantBuckets[b][static_cast<std::size_t>(i)];
        if (en.x == coords[0] && en.y == coords[1] && en.z == coords[2]) {
            RPoint& P = Points[static_cast<std::size_t>(en.Point)];
            P.NumAssTris += 1;
            P.AssTris.resize(static_cast<std::size_t>(P.NumAssTris) + 1);
            P.AssTris[static_cast<std::size_t>(P.NumAssTris)] = tri;
            return en.Point;
        }
    }
    Points.resize(Points.size() + 1);
    NumPts += 1;
    RPoint& P = Points[static_cast<std::size_t>(NumPts)];
    P.Valid = vbTrue;
    P.Coords = Vector{coords[0], coords[1], coords[2]};
    P.NumAssTris = 1;
    P.AssTris = {0, tri};
    OctantCount[b] += 1;
    OctantBuckets[b].resize(static_cast<std::size_t>(OctantCount[b]) + 1);
    OctantBuckets[b][static_cast<std::size_t>(OctantCount[b])] = RBucketEntry{NumPts, coords[0], coords[1], coords[2]};
    return NumPts;
}

int RefSurfSimpli::AddEdgeOfTri(int pA, int pB, int tri) {
    for (int e = 1; e <= NumEdges; ++e) {
        REdge& E = Edges[static_cast<std::size_t>(e)];
        if ((E.PtA == pA && E.PtB == pB) || (E.PtA == pB && E.PtB == pA)) {
            E.NumAssTris += 1;
            E.AssTris.resize(static_cast<std::size_t>(E.NumAssTris) + 1);
            E.AssTris[static_cast<std::size_t>(E.NumAssTris)] = tri;
            addIfAbsent(Points[static_cast<std::size_t>(pA)].AssEdges, Points[static_cast<std::size_t>(pA)].NumAssEdges, e);
            addIfAbsent(Points[static_cast<std::size_t>(pB)].AssEdges, Points[static_cast<std::size_t>(pB)].NumAssEdges, e);
            return e;
        }
    }
    Edges.resize(Edges.size() + 1);
    NumEdges += 1;
    REdge& E = Edges[static_cast<std::size_t>(NumEdges)];
    E.Valid = vbTrue;
    E.PtA = pA;
    E.PtB = pB;
    E.NumAssTris = 1;
    E.AssTris = {0, tri};
    addIfAbsent(Points[static_cast<std::size_t>(pA)].AssEdges, Points[static_cast<std::size_t>(pA)].NumAssEdges, NumEdges);
    addIfAbsent(Points[static_cast<std::size_t>(pB)].AssEdges, Points[static_cast<std::size_t>(pB)].NumAssEdges, NumEdges);
    return NumEdges;
}

int RefSurfSimpli::GetFirstValidTri() {
    for (int i = 1; i <= NumTris; ++i)
        if (Tris[static_cast<std::size_t>(i)].Valid == vbTrue) return TriCursor = i;
    return 0;
}
int RefSurfSimpli::GetNextValidTri() {
    for (int i = TriCursor + 1; i <= NumTris; ++i)
        if (Tris[static_cast<std::size_t>(i)].Valid == vbTrue) return TriCursor = i;
    return 0;
}
int RefSurfSimpli::GetPrevValidTri() {
    for (int i = TriCursor - 1; i >= 1; --i)
        if (Tris[static_cast<std::size_t>(i)].Valid == vbTrue) return TriCursor = i;
    return 0;
}
int RefSurfSimpli::GetFirstValidEdge() {
    for (int i = 1; i <= NumEdges; ++i)
        if (Edges[static_cast<std::size_t>(i)].Valid == vbTrue) return EdgeCursor = i;
    return 0;
}
int RefSurfSimpli::GetNextValidEdge() {
    for (int i = EdgeCursor + 1; i <= NumEdges; ++i)
        if (Edges[static_cast<std::size_t>(i)].Valid == vbTrue) return EdgeCursor = i;
    return 0;
}
int RefSurfSimpli::GetPrevValidEdge() {
    for (int i = EdgeCursor - 1; i >= 1; --i)
        if (Edges[static_cast<std::size_t>(i)].Valid == vbTrue) return EdgeCursor = i;
    return 0;
}
int RefSurfSimpli::GetFirstValidPt() {
    for (int i = 1; i <= NumPts; ++i)
        if (Points[static_cast<std::size_t>(i)].Valid == vbTrue) return PtCursor = i;
    return 0;
}
int RefSurfSimpli::GetNextValidPt() {
    for (int i = PtCursor + 1; i <= NumPts; ++i)
        if (Points[static_cast<std::size_t>(i)].Valid == vbTrue) return PtCursor = i;
    return 0;
}
int RefSurfSimpli::GetPrevValidPt() {
    for (int i = PtCursor - 1; i >= 1; --i)
        if (Points[static_cast<std::size_t>(i)].Valid == vbTrue) return PtCursor = i;
    return 0;
}

void RefSurfSimpli::Reset() {
    NumPts = NumEdges = NumTris = 0;
    for (int b = 0; b < 8; ++b) {
        OctantCount[b] = 0;
        OctantBuckets[b].assign(1, RBucketEntry{});
    }
    Points.assign(1, RPoint{});
    Edges.assign(1, REdge{});
    Tris.assign(1, RTri{});
    MinEdge = -1;
    MinCost = 0;
    OutCursor = 1;
    TriCursor = EdgeCursor = PtCursor = 0;
    TriCurrent = 0;
    SourceGroup = 0;
    ContinueRun = vbFalse;
}

void RefSurfSimpli::CopyGeomForRestore() {
    BkNumPts = NumPts;
    BkNumEdges = NumEdges;
    BkNumTris = NumTris;
    BkPoints.assign(static_cast<std::size_t>(NumPts) + 1, RPoint{});
    BkEdges.assign(static_cast<std::size_t>(NumEdges) + 1, REdge{});
    BkTris.assign(static_cast<std::size_t>(NumTris) + 1, RTri{});
    for (int i = 0; i <= NumPts; ++i) BkPoints[static_cast<std::size_t>(i)] = Points[static_cast<std::size_t>(i)];
    for (int i = 0; i <= NumEdges; ++i) BkEdges[static_cast<std::size_t>(i)] = Edges[static_cast<std::size_t>(i)];
    for (int i = 0; i <= NumTris; ++i) BkTris[static_cast<std::size_t>(i)] = Tris[static_cast<std::size_t>(i)];
    BkMade = true;
}

void RefSurfSimpli::RestoreGeomFromCopy() {
    if (!BkMade) { // never copied: an empty model (docs/simplify.md)
        NumPts = NumEdges = NumTris = 0;
        Points.assign(1, RPoint{});
        Edges.assign(1, REdge{});
        Tris.assign(1, RTri{});
        return;
    }
    NumPts = BkNumPts;
    NumEdges = BkNumEdges;
    NumTris = BkNumTris;
    Points.assign(static_cast<std::size_t>(NumPts) + 1, RPoint{});
    Edges.assign(static_cast<std::size_t>(NumEdges) + 1, REdge{});
    Tris.assign(static_cast<std::size_t>(NumTris) + 1, RTri{});
    for (int i = 0; i <= NumPts; ++i) Points[static_cast<std::size_t>(i)] = BkPoints[static_cast<std::size_t>(i)];
    for (int i = 0; i <= NumEdges; ++i) Edges[static_cast<std::size_t>(i)] = BkEdges[static_cast<std::size_t>(i)];
    for (int i = 0; i <= NumTris; ++i) Tris[static_cast<std::size_t>(i)] = BkTris[static_cast<std::size_t>(i)];
}

bool RefSurfSimpli::IsSelected(int point) const {
    for (std::size_t i = 0; i < SelectedPts.size(); ++i)
        if (SelectedPts[i] == point) return true;
    return false;
}

void RefSurfSimpli::RemoveSelected(int point) {
    for (std::size_t i = 0; i < SelectedPts.size(); ++i)
        if (SelectedPts[i] == point) {
            for (std::size_t j = i + 1; j < SelectedPts.size(); ++j) SelectedPts[j - 1] = SelectedPts[j];
            SelectedPts.pop_back();
            return;
        }
}

// ---------------------------------------------------------------- the edge contraction

int RefSurfSimpli::Reduce(int target, int group, bool protectTexSeams, simplify::SimplifyProgress* progress,
                          simplify::SimplifyStatus* status, bool geomOnly, bool lockSelected, bool protectColorBorders) {
    // 1.
    ProtectTexSeams = protectTexSeams ? vbTrue : vbFalse;
    progress_ = progress;
    status_ = status;
    GeomOnly = geomOnly ? vbTrue : vbFalse;
    LockSelected = lockSelected ? vbTrue : vbFalse;
    ProtectColorBorders = protectColorBorders ? vbTrue : vbFalse;
    // 2.
    if (group != SourceGroup) {
        Reset();
        ExtractTriangles(group);
        TriCurrent = TriTotal;
    }
    if (target <= TriCurrent && ForceRestart != vbTrue) {
        ContinueRun = vbTrue; // 3.
    } else {                  // 4.
        ForceRestart = vbFalse;
        RestoreGeomFromCopy();
        ContinueRun = vbFalse;
        TriCurrent = TriTotal;
    }
    OutputGroup = group;
    SimplifyLoop(target); // 5.
    const int out = BuildOutput(); // 6.
    SourceGroup = group;  // 7.
    return out;
}

void RefSurfSimpli::SimplifyLoop(int target) {
    setStatus(msg(messages_.simplifying, "Simplyfing"));
    if (ContinueRun != vbTrue) {
        BuildAllQuadrics();
        MarkBorderEdges();
        if (LockSelected == vbTrue) AddLockTerms();
        EvaluateAllEdges();
        MinCost = -1e21;
        MinEdge = 0;
        MinEdge = SelectContractibleEdge();
        if (MinEdge == -1) {
            if (host_) host_->messageBox(msg(messages_.cantSimplify, "Can't simplify further!"));
            return;
        }
    }
    const int progressMax = TriTotal - target + 1;
    if (progress_) {
        progress_->setMaximum(progressMax);
        progress_->setMinimum(0);
    }
    for (;;) {
        if (ZeroErrorMode == vbTrue) {
            const double rounded = std::nearbyint(MinCost * 100.0) / 100.0;
            if (rounded > 0) break;
        }
        if (TriCurrent <= target) break;
        const int removed = ContractEdge();
        TriCurrent -= removed;
        if (!(TriTotal - TriCurrent > progressMax) && progress_) progress_->setValue(TriTotal - TriCurrent);
        if (host_) host_->yieldEvents();
        MinCost = -1e21;
        MinEdge = 0;
        MinEdge = SelectContractibleEdge();
        if (MinEdge == -1) {
            if (host_) host_->messageBox(msg(messages_.cantSimplify, "Can't simplify further!"));
            break;
        }
    }
    if (progress_) progress_->setValue(0);
}

void RefSurfSimpli::addTriProducts(Matrix& q, const double p[4]) {
    const double a = p[0], b = p[1], c = p[2], d = p[3];
    q(1, 1) += a * a; q(1, 2) += a * b; q(1, 3) += a * c; q(1, 4) += a * d;
    q(2, 1) += b * a; q(2, 2) += b * b; q(2, 3) += b * c; q(2, 4) += b * d;
    q(3, 1) += c * a; q(3, 2) += c * b; q(3, 3) += c * c; q(3, 4) += c * d;
    q(4, 1) += d * a; q(4, 2) += d * b; q(4, 3) += d * c; q(4, 4) += d * d;
}

void RefSurfSimpli::BuildAllQuadrics() {
    for (int p = 1; p <= NumPts; ++p) {
        RPoint& P = Points[static_cast<std::size_t>(p)];
        if (P.Valid == vbFalse) continue;
        for (int i = 1; i <= P.NumAssTris; ++i)
            addTriProducts(P.Quadric, Tris[static_cast<std::size_t>(P.AssTris[static_cast<std::size_t>(i)])].Plane);
    }
}

void RefSurfSimpli::BuildPointQuadric(int point) {
    RPoint& P = Points[static_cast<std::size_t>(point)];
    for (int i = 1; i <= P.NumAssTris; ++i) {
        const RTri& T = Tris[static_cast<std::size_t>(P.AssTris[static_cast<std::size_t>(i)])];
        if (T.Valid != vbFalse) addTriProducts(P.Quadric, T.Plane);
    }
}

void RefSurfSimpli::ClearPointQuadric(int point) {
    RPoint& P = Points[static_cast<std::size_t>(point)];
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) P.Quadric(i, j) = 0;
}

int RefSurfSimpli::CountValidTris(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    int n = 0;
    for (int i = 1; i <= E.NumAssTris; ++i)
        if (Tris[static_cast<std::size_t>(E.AssTris[static_cast<std::size_t>(i)])].Valid == vbTrue) n += 1;
    return n;
}

void RefSurfSimpli::MarkBorderEdges() {
    for (int e = 1; e <= NumEdges; ++e) {
        if (Edges[static_cast<std::size_t>(e)].Valid == vbFalse) continue;
        Edges[static_cast<std::size_t>(e)].IsBorder = vbFalse;
        const int n = CountValidTris(e);
        bool border = false;
        if (n == 1) border = true;
        else if (GeomOnly == vbTrue) border = false;
        else if (HasBitmapBorder(e)) border = true;
        else if (ProtectTexSeams == vbTrue && HasTexSeam(e)) border = true;
        else if (ProtectColorBorders == vbTrue && HasColorBorder(e)) border = true;
        if (border) {
            Edges[static_cast<std::size_t>(e)].IsBorder = vbTrue;
            AddBorderPenalty(e);
        }
    }
}

bool RefSurfSimpli::HasBitmapBorder(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    int firstBitmap = 0;
    bool haveFirst = false;
    for (int i = 1; i <= E.NumAssTris; ++i) {
        const RTri& T = Tris[static_cast<std::size_t>(E.AssTris[static_cast<std::size_t>(i)])];
        if (T.Valid == vbFalse) continue;
        if (!haveFirst) {
            firstBitmap = T.BitmapHandle;
            haveFirst = true;
        } else if (T.BitmapHandle != firstBitmap) {
            return true;
        }
    }
    return false;
}

void RefSurfSimpli::uvOf(int tri, int point, double uv[2]) {
    uv[0] = 0;
    uv[1] = 0;
    const RTri& T = Tris[static_cast<std::size_t>(tri)];
    for (int k = 1; k <= 3; ++k)
        if (T.Pts[k] == point) {
            uv[0] = T.TexUV[k][0];
            uv[1] = T.TexUV[k][1];
            return;
        }
}

void RefSurfSimpli::setUvOf(int tri, int point, const double uv[2]) {
    RTri& T = Tris[static_cast<std::size_t>(tri)];
    for (int k = 1; k <= 3; ++k)
        if (T.Pts[k] == point) {
            T.TexUV[k][0] = uv[0];
            T.TexUV[k][1] = uv[1];
            return;
        }
}

bool RefSurfSimpli::HasTexSeam(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    if (E.NumAssTris < 2) return false;
    const int t1 = E.AssTris[1], t2 = E.AssTris[2];
    if (Tris[static_cast<std::size_t>(t1)].Valid != vbTrue || Tris[static_cast<std::size_t>(t2)].Valid != vbTrue) return false;
    double a1[2], a2[2], b1[2], b2[2];
    uvOf(t1, E.PtA, a1);
    uvOf(t2, E.PtA, a2);
    uvOf(t1, E.PtB, b1);
    uvOf(t2, E.PtB, b2);
    const bool differA = a1[0] != a2[0] || a1[1] != a2[1];
    const bool differB = b1[0] != b2[0] || b1[1] != b2[1];
    return differA || differB;
}

bool RefSurfSimpli::HasColorBorder(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    bool answer = false;
    int previous = 0;
    for (int i = 1; i <= E.NumAssTris; ++i) {
        const int t = E.AssTris[static_cast<std::size_t>(i)];
        if (Tris[static_cast<std::size_t>(t)].Valid == vbFalse) continue;
        if (previous != 0) {
            const RTri& A = Tris[static_cast<std::size_t>(previous)];
            const RTri& B = Tris[static_cast<std::size_t>(t)];
            if (A.BitmapHandle == 0 && B.BitmapHandle == 0)
                answer = !(A.TriColor[1] == B.TriColor[1] && A.TriColor[2] == B.TriColor[2] && A.TriColor[3] == B.TriColor[3]);
            else
                answer = false;
        }
        previous = t;
    }
    return answer;
}

void RefSurfSimpli::borderPlane(int edge, double p[4]) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    // 1.
    int tri = 0;
    for (int i = 1; i <= E.NumAssTris; ++i)
        if (Tris[static_cast<std::size_t>(E.AssTris[static_cast<std::size_t>(i)])].Valid != vbFalse) {
            tri = E.AssTris[static_cast<std::size_t>(i)];
            break;
        }
    const Vector A = Points[static_cast<std::size_t>(E.PtA)].Coords;
    const Vector B = Points[static_cast<std::size_t>(E.PtB)].Coords;
    Vector C(3, 0.0);
    for (int k = 1; k <= 3; ++k) {
        const int pt = Tris[static_cast<std::size_t>(tri)].Pts[k];
        if (pt != E.PtA && pt != E.PtB) {
            C = Points[static_cast<std::size_t>(pt)].Coords;
            break;
        }
    }
    // 2.
    Vector e, w;
    VectorFromTo(A, B, e);
    VectorNormalize(e, e);
    VectorFromTo(A, C, w);
    // 3.
    Vector s, n;
    VectorScale(e, VectorDot(e, w), s);
    VectorFromTo(s, w, n);
    VectorNormalize(n, n);
    // 4.
    const double d = -VectorDot(n, A);
    // 5.
    p[0] = 2 * n[0];
    p[1] = 2 * n[1];
    p[2] = 2 * n[2];
    p[3] = 2 * d;
}

void RefSurfSimpli::AddBorderPenalty(int edge) {
    double p[4];
    borderPlane(edge, p);
    addTriProducts(Points[static_cast<std::size_t>(Edges[static_cast<std::size_t>(edge)].PtA)].Quadric, p);
    addTriProducts(Points[static_cast<std::size_t>(Edges[static_cast<std::size_t>(edge)].PtB)].Quadric, p);
}

void RefSurfSimpli::AddBorderPenaltyToPoint(int point, int edge) {
    double p[4];
    borderPlane(edge, p);
    addTriProducts(Points[static_cast<std::size_t>(point)].Quadric, p);
}

void RefSurfSimpli::AddLockTerms() {
    for (std::size_t i = 0; i < SelectedPts.size(); ++i) {
        const int idx = SelectedPts[i];
        if (idx < 0 || idx > NumPts) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        RPoint& P = Points[static_cast<std::size_t>(idx)];
        const double x = P.Coords[0], y = P.Coords[1], z = P.Coords[2];
        P.Quadric(1, 1) += 1.0;
        P.Quadric(2, 2) += 1.0;
        P.Quadric(3, 3) += 1.0;
        P.Quadric(1, 4) -= x;
        P.Quadric(2, 4) -= y;
        P.Quadric(3, 4) -= z;
        P.Quadric(4, 4) += x * x + y * y + z * z;
    }
}

void RefSurfSimpli::EvaluateEdgeQuadric(int edge) {
    REdge& E = Edges[static_cast<std::size_t>(edge)];
    MatrixADD(Points[static_cast<std::size_t>(E.PtA)].Quadric, Points[static_cast<std::size_t>(E.PtB)].Quadric, E.Quadric);
}

void RefSurfSimpli::EvaluateAllEdges() {
    for (int e = 1; e <= NumEdges; ++e) {
        if (Edges[static_cast<std::size_t>(e)].Valid == vbFalse) continue;
        EvaluateEdgeQuadric(e);
        if (GeomOnly == vbTrue) PlaceOptimal(e);
        else PlaceOnSegment(e);
        Edges[static_cast<std::size_t>(e)].Cost = EdgeCostAt(e);
    }
}

void RefSurfSimpli::EvaluateAffectedEdges() {
    for (std::size_t i = 0; i < AffectedEdges.size(); ++i) {
        const int e = AffectedEdges[i];
        EvaluateEdgeQuadric(e);
        if (GeomOnly == vbTrue) PlaceOptimal(e);
        else PlaceOnSegment(e);
        Edges[static_cast<std::size_t>(e)].Cost = EdgeCostAt(e);
    }
}

double RefSurfSimpli::EdgeCostAt(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    Matrix v(4, 1);
    v(1, 1) = E.NewCoords[0];
    v(2, 1) = E.NewCoords[1];
    v(3, 1) = E.NewCoords[2];
    v(4, 1) = 1.0;
    Matrix q, vt, tmp, res;
    MatrixADD(Points[static_cast<std::size_t>(E.PtA)].Quadric, Points[static_cast<std::size_t>(E.PtB)].Quadric, q);
    MatrixTranspose(v, vt);
    MatrixMultiply(vt, q, tmp);
    MatrixMultiply(tmp, v, res);
    return res(1, 1);
}

void RefSurfSimpli::PlaceOptimal(int edge) {
    REdge& E = Edges[static_cast<std::size_t>(edge)];
    try {
        const Matrix& Q = E.Quadric;
        const double k1 = cdiv(Q(1, 2), Q(1, 1));
        const double k2 = cdiv(Q(1, 3), Q(1, 1));
        const double m = fin(k1 * Q(1, 3));
        const double a22 = fin(Q(2, 2) - fin(k1 * Q(1, 2)));
        const double a23 = fin(Q(2, 3) - m);
        const double a24 = fin(Q(2, 4) - fin(k1 * Q(1, 4)));
        const double a32 = fin(Q(2, 3) - m);
        const double a33 = fin(Q(3, 3) - fin(k2 * Q(1, 3)));
        const double a34 = fin(Q(3, 4) - fin(k2 * Q(1, 4)));
        const double z = cdiv(fin(fin(a32 * a24) - fin(a22 * a34)), fin(fin(a22 * a33) - fin(a32 * a23)));
        const double y = cdiv(fin(fin(-a23 * z) - a24), a22);
        const double x = cdiv(fin(fin(fin(-Q(1, 2) * y) - fin(z * Q(1, 3))) - Q(1, 4)), Q(1, 1));
        E.NewCoords[0] = x;
        E.NewCoords[1] = y;
        E.NewCoords[2] = z;
    } catch (const vexil::VexilError&) {
        PlaceAtBetterEnd(edge);
    }
}

void RefSurfSimpli::PlaceOnSegment(int edge) {
    REdge& E = Edges[static_cast<std::size_t>(edge)];
    try {
        const Vector p = Points[static_cast<std::size_t>(E.PtA)].Coords;
        Vector d;
        VectorFromTo(p, Points[static_cast<std::size_t>(E.PtB)].Coords, d);
        const Matrix& Q = E.Quadric;
        const double d0 = d[0], d1 = d[1], d2 = d[2], p0 = p[0], p1 = p[1], p2 = p[2];
        const double N = fin(Q(1, 1) * p0 * d0 + Q(1, 2) * (d1 * p0 + d0 * p1) + Q(1, 3) * (d2 * p0 + d0 * p2) +
                             Q(1, 4) * d0 + Q(2, 2) * p1 * d1 + Q(2, 3) * (d2 * p1 + d1 * p2) + Q(2, 4) * d1 +
                             Q(3, 3) * p2 * d2 + Q(3, 4) * d2);
        const double D = fin((2 * Q(2, 3) * d2 + Q(2, 2) * d1 + Q(3, 3) * d2 * d2) * d1 +
                             (2 * Q(1, 2) * d1 + Q(1, 1) * d0 + 2 * Q(1, 3) * d2) * d0);
        double t = cdiv(-N, D);
        if (t < 0) t = 0;
        if (t > 1) t = 1;
        Vector s, nc;
        VectorScale(d, t, s);
        VectorAdd(p, s, nc);
        E.NewCoords = nc;
    } catch (const vexil::VexilError&) {
        PlaceAtBetterEnd(edge);
    }
}

void RefSurfSimpli::PlaceAtBetterEnd(int edge) {
    REdge& E = Edges[static_cast<std::size_t>(edge)];
    E.NewCoords = Points[static_cast<std::size_t>(E.PtA)].Coords;
    const double c1 = EdgeCostAt(edge);
    if (c1 == 0) return;
    E.NewCoords = Points[static_cast<std::size_t>(E.PtB)].Coords;
    const double c2 = EdgeCostAt(edge);
    if (c1 < c2) E.NewCoords = Points[static_cast<std::size_t>(E.PtA)].Coords;
}

int RefSurfSimpli::NextCheapestEdge(int after, const std::vector<int>& excluded) {
    double best = 1e32;
    int chosen = 1;
    const double floor = MinCost;
    for (int i = 1; i <= NumEdges; ++i) {
        const REdge& E = Edges[static_cast<std::size_t>(i)];
        if (E.Valid != vbTrue) continue;
        bool isExcluded = false;
        for (std::size_t k = 0; k < excluded.size(); ++k)
            if (excluded[k] == i) {
                isExcluded = true;
                break;
            }
        if (isExcluded) continue;
        if (E.Cost < best && E.Cost >= floor && i != after) {
            best = E.Cost;
            chosen = i;
        }
    }
    if (best == 1e32) return -1;
    MinCost = best;
    return chosen;
}

int RefSurfSimpli::SelectContractibleEdge() {
    int candidate = 0;
    std::vector<int> excluded;
    for (;;) {
        candidate = NextCheapestEdge(candidate, excluded);
        if (candidate == -1) return -1;
        if (!WouldDegenerate(candidate) && !WouldFlipNormal(candidate) && KeepsManifold(candidate) == vbTrue) return candidate;
        excluded.push_back(candidate);
    }
}

bool RefSurfSimpli::WouldDegenerate(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    const int ends[2] = {E.PtA, E.PtB};
    for (int end : ends) {
        const RPoint& P = Points[static_cast<std::size_t>(end)];
        for (int i = 1; i <= P.NumAssTris; ++i) {
            const int t = P.AssTris[static_cast<std::size_t>(i)];
            const RTri& T = Tris[static_cast<std::size_t>(t)];
            if (T.Valid != vbTrue) continue;
            if (listHas(E.AssTris, E.NumAssTris, t)) continue;
            Vector c[4];
            for (int k = 1; k <= 3; ++k)
                c[k] = (T.Pts[k] == E.PtA || T.Pts[k] == E.PtB) ? E.NewCoords : Points[static_cast<std::size_t>(T.Pts[k])].Coords;
            Vector s1, s2, x;
            VectorFromTo(c[1], c[2], s1);
            VectorFromTo(c[1], c[3], s2);
            VectorCross(s1, s2, x);
            if (x[0] == 0 && x[1] == 0 && x[2] == 0) return true;
        }
    }
    return false;
}

bool RefSurfSimpli::WouldFlipNormal(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    const int ends[2] = {E.PtA, E.PtB};
    for (int end : ends) {
        const RPoint& P = Points[static_cast<std::size_t>(end)];
        for (int i = 1; i <= P.NumAssTris; ++i) {
            const int t = P.AssTris[static_cast<std::size_t>(i)];
            const RTri& T = Tris[static_cast<std::size_t>(t)];
            if (T.Valid != vbTrue) continue;
            if (listHas(E.AssTris, E.NumAssTris, t)) continue;
            Vector c[4];
            for (int k = 1; k <= 3; ++k)
                c[k] = (T.Pts[k] == E.PtA || T.Pts[k] == E.PtB) ? E.NewCoords : Points[static_cast<std::size_t>(T.Pts[k])].Coords;
            Plane pl;
            PlaneFromPoints(c[1], c[2], c[3], pl);
            Vector n{pl[0], pl[1], pl[2]};
            VectorNegate(n);
            const Vector tp{T.Plane[0], T.Plane[1], T.Plane[2]};
            if (angleBetVectors(n, tp) > 90.0) return true;
        }
    }
    return false;
}

VBool RefSurfSimpli::KeepsManifold(int edge) {
    const REdge& E = Edges[static_cast<std::size_t>(edge)];
    const RPoint& PA = Points[static_cast<std::size_t>(E.PtA)];
    const RPoint& PB = Points[static_cast<std::size_t>(E.PtB)];
    for (int i = 1; i <= PA.NumAssEdges; ++i) {
        const int a = PA.AssEdges[static_cast<std::size_t>(i)];
        if (a == edge || Edges[static_cast<std::size_t>(a)].Valid != vbTrue) continue;
        for (int j = 1; j <= PB.NumAssEdges; ++j) {
            const int b = PB.AssEdges[static_cast<std::size_t>(j)];
            if (b == edge || Edges[static_cast<std::size_t>(b)].Valid != vbTrue) continue;
            const REdge& A = Edges[static_cast<std::size_t>(a)];
            const REdge& B = Edges[static_cast<std::size_t>(b)];
            // 1.
            int other = 0;
            if (A.PtA != E.PtA && A.PtA != E.PtB) other = A.PtA;
            else if (A.PtB != E.PtA && A.PtB != E.PtB) other = A.PtB;
            const bool meet = other != 0 && (B.PtA == other || B.PtB == other);
            if (!meet) continue;
            // 2.
            int count = 0;
            if (E.NumAssTris == 2) {
                const int t1 = E.AssTris[1], t2 = E.AssTris[2];
                for (int k = 1; k <= A.NumAssTris; ++k) {
                    const int t = A.AssTris[static_cast<std::size_t>(k)];
                    if (Tris[static_cast<std::size_t>(t)].Valid == vbTrue && t != t1 && t != t2) count += 1;
                }
                for (int k = 1; k <= B.NumAssTris; ++k) {
                    const int t = B.AssTris[static_cast<std::size_t>(k)];
                    if (Tris[static_cast<std::size_t>(t)].Valid == vbTrue && t != t1 && t != t2) count += 1;
                }
            }
            // 3.
            if (count > 2) return vbFalse;
        }
    }
    return vbTrue;
}

int RefSurfSimpli::ContractEdge() {
    const int edge = MinEdge;
    if (edge < 1 || edge > NumEdges) return 0;
    if (Edges[static_cast<std::size_t>(edge)].Valid == vbFalse) return 0;
    if (TraceContractions) ContractionTrace.push_back(edge);
    // 1.
    int kept = Edges[static_cast<std::size_t>(edge)].PtA;
    int gone = Edges[static_cast<std::size_t>(edge)].PtB;
    if (IsSelected(gone)) {
        const int s = kept;
        kept = gone;
        gone = s;
    }
    // 2.
    if (GeomOnly == vbFalse) InterpolateTexCoords(Edges[static_cast<std::size_t>(edge)].NewCoords, kept, gone);
    // 3.
    Edges[static_cast<std::size_t>(edge)].Valid = vbFalse;
    Points[static_cast<std::size_t>(kept)].Coords = Edges[static_cast<std::size_t>(edge)].NewCoords;
    // 4.
    int removed = 0;
    for (int i = 1; i <= Edges[static_cast<std::size_t>(edge)].NumAssTris; ++i) {
        const int t = Edges[static_cast<std::size_t>(edge)].AssTris[static_cast<std::size_t>(i)];
        if (Tris[static_cast<std::size_t>(t)].Valid == vbTrue) {
            RemoveTriOfEdge(t, edge);
            removed += 1;
        }
    }
    // 5.
    {
        const std::vector<std::int32_t> goneTris = Points[static_cast<std::size_t>(gone)].AssTris;
        const int nGoneTris = Points[static_cast<std::size_t>(gone)].NumAssTris;
        for (int i = 1; i <= nGoneTris; ++i) {
            const int t = goneTris[static_cast<std::size_t>(i)];
            if (Tris[static_cast<std::size_t>(t)].Valid == vbTrue)
                addIfAbsent(Points[static_cast<std::size_t>(kept)].AssTris, Points[static_cast<std::size_t>(kept)].NumAssTris, t);
        }
        const std::vector<std::int32_t> goneEdges = Points[static_cast<std::size_t>(gone)].AssEdges;
        const int nGoneEdges = Points[static_cast<std::size_t>(gone)].NumAssEdges;
        for (int i = 1; i <= nGoneEdges; ++i) {
            const int e = goneEdges[static_cast<std::size_t>(i)];
            if (Edges[static_cast<std::size_t>(e)].Valid == vbTrue)
                addIfAbsent(Points[static_cast<std::size_t>(kept)].AssEdges, Points[static_cast<std::size_t>(kept)].NumAssEdges, e);
        }
    }
    // 6.
    {
        RPoint& G = Points[static_cast<std::size_t>(gone)];
        for (int i = 1; i <= G.NumAssTris; ++i) {
            RTri& T = Tris[static_cast<std::size_t>(G.AssTris[static_cast<std::size_t>(i)])];
            if (T.Valid != vbTrue) continue;
            for (int k = 1; k <= 3; ++k)
                if (T.Pts[k] == gone) {
                    T.Pts[k] = kept;
                    break;
                }
        }
        for (int i = 1; i <= G.NumAssEdges; ++i) {
            REdge& X = Edges[static_cast<std::size_t>(G.AssEdges[static_cast<std::size_t>(i)])];
            if (X.PtA == gone) X.PtA = kept;
            if (X.PtB == gone) X.PtB = kept;
        }
    }
    // 7.
    Points[static_cast<std::size_t>(gone)].Valid = vbFalse;
    // 8. - 11.
    CollectAffected(kept);
    EvaluatePlaneOfAffectedTris(kept);
    for (std::size_t i = 0; i < AffectedPoints.size(); ++i) ClearPointQuadric(AffectedPoints[i]);
    for (std::size_t i = 0; i < AffectedPoints.size(); ++i) BuildPointQuadric(AffectedPoints[i]);
    // 12.
    for (std::size_t i = 0; i < AffectedPoints.size(); ++i) {
        const int p = AffectedPoints[i];
        for (int j = 1; j <= Points[static_cast<std::size_t>(p)].NumAssEdges; ++j) {
            const int e = Points[static_cast<std::size_t>(p)].AssEdges[static_cast<std::size_t>(j)];
            if (Edges[static_cast<std::size_t>(e)].Valid != vbFalse && Edges[static_cast<std::size_t>(e)].IsBorder != vbFalse)
                AddBorderPenaltyToPoint(p, e);
        }
    }
    // 13.
    if (LockSelected == vbTrue) AddLockTerms();
    // 14.
    EvaluateAffectedEdges();
    return removed;
}

void RefSurfSimpli::RemoveTriOfEdge(int tri, int edge) {
    // 1.
    Tris[static_cast<std::size_t>(tri)].Valid = vbFalse;
    int e1 = 0, e2 = 0;
    for (int k = 1; k <= 3; ++k) {
        const int x = Tris[static_cast<std::size_t>(tri)].Edges[k];
        if (x == edge) continue;
        if (e1 == 0) e1 = x;
        else if (e2 == 0) e2 = x;
    }
    if (e1 == 0 || e2 == 0) return;
    // 2. - 5.
    MergeEdgeTris(e1, e2);
    RepointTriEdges(e2, e1);
    if (Edges[static_cast<std::size_t>(e2)].IsBorder == vbTrue) Edges[static_cast<std::size_t>(e1)].IsBorder = vbTrue;
    Edges[static_cast<std::size_t>(e2)].Valid = vbFalse;
}

void RefSurfSimpli::MergeEdgeTris(int e1, int e2) {
    const REdge src = Edges[static_cast<std::size_t>(e2)];
    REdge& dst = Edges[static_cast<std::size_t>(e1)];
    for (int i = 1; i <= src.NumAssTris; ++i) {
        const int t = src.AssTris[static_cast<std::size_t>(i)];
        if (Tris[static_cast<std::size_t>(t)].Valid != vbTrue) continue;
        if (listHas(dst.AssTris, dst.NumAssTris, t)) continue;
        for (int j = 1; j <= dst.NumAssTris; ++j)
            if (Tris[static_cast<std::size_t>(dst.AssTris[static_cast<std::size_t>(j)])].Valid != vbTrue) {
                dst.AssTris[static_cast<std::size_t>(j)] = t;
                break;
            }
    }
}

void RefSurfSimpli::RepointTriEdges(int from, int to) {
    const REdge& E = Edges[static_cast<std::size_t>(from)];
    for (int i = 1; i <= E.NumAssTris; ++i) {
        RTri& T = Tris[static_cast<std::size_t>(E.AssTris[static_cast<std::size_t>(i)])];
        if (T.Valid != vbTrue) continue;
        for (int k = 1; k <= 3; ++k)
            if (T.Edges[k] == from) {
                T.Edges[k] = to;
                break;
            }
    }
}

void RefSurfSimpli::CollectAffected(int kept) {
    AffectedPoints.clear();
    AffectedEdges.clear();
    auto addAbsent = [](std::vector<std::int32_t>& list, int v) {
        for (std::size_t i = 0; i < list.size(); ++i)
            if (list[i] == v) return;
        list.push_back(v);
    };
    const RPoint& K = Points[static_cast<std::size_t>(kept)];
    for (int i = 1; i <= K.NumAssEdges; ++i) {
        const REdge& E = Edges[static_cast<std::size_t>(K.AssEdges[static_cast<std::size_t>(i)])];
        if (E.Valid == vbFalse) continue;
        addAbsent(AffectedPoints, E.PtA);
        addAbsent(AffectedPoints, E.PtB);
    }
    for (std::size_t i = 0; i < AffectedPoints.size(); ++i) {
        const RPoint& P = Points[static_cast<std::size_t>(AffectedPoints[i])];
        for (int j = 1; j <= P.NumAssEdges; ++j) {
            const int e = P.AssEdges[static_cast<std::size_t>(j)];
            if (Edges[static_cast<std::size_t>(e)].Valid != vbFalse) addAbsent(AffectedEdges, e);
        }
    }
}

void RefSurfSimpli::EvaluatePlaneOfAffectedTris(int kept) {
    const RPoint& K = Points[static_cast<std::size_t>(kept)];
    for (int i = 1; i <= K.NumAssTris; ++i) {
        RTri& T = Tris[static_cast<std::size_t>(K.AssTris[static_cast<std::size_t>(i)])];
        if (T.Valid != vbTrue) continue;
        Plane pl;
        PlaneFromPoints(Points[static_cast<std::size_t>(T.Pts[1])].Coords, Points[static_cast<std::size_t>(T.Pts[2])].Coords,
                        Points[static_cast<std::size_t>(T.Pts[3])].Coords, pl);
        const double m = VectorLength(pl);
        if (m != 0) {
            T.Plane[0] = -pl[0] / m;
            T.Plane[1] = -pl[1] / m;
            T.Plane[2] = -pl[2] / m;
            T.Plane[3] = -pl[3] / m;
        } else {
            setStatus(msg(messages_.invalidTri, "Invalid Tri - EvaluatePlaneOfAffectedTris"));
        }
    }
}

void RefSurfSimpli::InterpolateTexCoords(const Maths::Vector& newCoords, int kept, int gone) {
    const REdge& E = Edges[static_cast<std::size_t>(MinEdge >= 0 ? MinEdge : 0)];
    const Vector K = Points[static_cast<std::size_t>(kept)].Coords;
    const Vector G = Points[static_cast<std::size_t>(gone)].Coords;
    // 1.
    const double dg = Distance(G, K);
    if (dg == 0) return;
    const double t = fin(Distance(newCoords, K) / dg);
    // 2.
    if (E.NumAssTris < 1) return;
    int tri1 = E.AssTris[1];
    if (Tris[static_cast<std::size_t>(tri1)].Valid != vbTrue) {
        if (E.NumAssTris < 2) return;
        tri1 = E.AssTris[2];
    }
    // 3.
    double uvK1[2], uvG1[2], new1[2];
    double uvK2[2] = {0, 0}, uvG2[2] = {0, 0}, new2[2] = {0, 0};
    int tri2 = 0;
    uvOf(tri1, kept, uvK1);
    uvOf(tri1, gone, uvG1);
    if (uvK1[0] == uvG1[0] && uvK1[1] == uvG1[1])
        setStatus(msg(messages_.improperTexture, "Improper Texture coordinates found. Defaulting!"));
    new1[0] = uvK1[0] + t * (uvG1[0] - uvK1[0]);
    new1[1] = uvK1[1] + t * (uvG1[1] - uvK1[1]);
    // 4.
    if (E.NumAssTris == 2) {
        tri2 = E.AssTris[2];
        uvOf(tri2, kept, uvK2);
        uvOf(tri2, gone, uvG2);
        if (uvK2[0] == uvG2[0] && uvK2[1] == uvG2[1])
            setStatus(msg(messages_.improperTexture, "Improper Texture coordinates found. Defaulting!"));
        new2[0] = uvK2[0] + t * (uvG2[0] - uvK2[0]);
        new2[1] = uvK2[1] + t * (uvG2[1] - uvK2[1]);
    }
    // 5. and 6.
    const int owners[2] = {kept, gone};
    for (int o = 0; o < 2; ++o) {
        const int point = owners[o];
        const double* c1 = o == 0 ? uvK1 : uvG1;
        const double* c2 = o == 0 ? uvK2 : uvG2;
        const RPoint& P = Points[static_cast<std::size_t>(point)];
        for (int i = 1; i <= P.NumAssTris; ++i) {
            const int T = P.AssTris[static_cast<std::size_t>(i)];
            if (Tris[static_cast<std::size_t>(T)].Valid != vbTrue || T == tri1 || T == tri2) continue;
            double uv[2];
            uvOf(T, point, uv);
            if (uv[0] == c1[0] && uv[1] == c1[1]) setUvOf(T, point, new1);
            else if (uv[0] == c2[0] && uv[1] == c2[1]) setUvOf(T, point, new2);
        }
    }
}

// ---------------------------------------------------------------- the simplification output

void RefSurfSimpli::ExtractTriangles(int group) {
    setStatus(msg(messages_.extracting, "Extracting Triangles"));
    const int count = engine_->group_get_number_of_polygons(group);
    if (progress_) {
        progress_->setMaximum(count);
        progress_->setValue(0);
    }
    engine_->group_get_center_of_mass(group, OctantCentre);
    OutputGroup = group;
    int value = 0;
    int pol = engine_->group_get_first_polygon(group);
    while (pol != 0) {
        const int bitmap = engine_->polygon_get_bitmap_handle(pol);
        int color[3];
        engine_->polygon_get_color(pol, color);
        double brightness = engine_->polygon_get_brightness(pol);
        double corner[3][9];
        int pt = 0;
        for (int k = 0; k < 3; ++k) {
            pt = k == 0 ? engine_->polygon_get_first_point(pol) : engine_->point_get_next_point(pt);
            double uv[2] = {0, 0}, nrm[3] = {0, 0, 0}, xyz[3] = {0, 0, 0};
            engine_->point_get_bitmap_xy(pt, uv);
            brightness = engine_->point_get_brightness(pt);
            engine_->point_get_normal(pt, nrm);
            engine_->point_get_xyz(pt, xyz);
            const double c[9] = {xyz[0], xyz[1], xyz[2], uv[0], uv[1], brightness, nrm[0], nrm[1], nrm[2]};
            for (int i = 0; i < 9; ++i) corner[k][i] = c[i];
        }
        double plane[4] = {0, 0, 0, 0};
        engine_->polygon_get_plane(pol, plane);
        AddTriangle(corner[0], corner[1], corner[2], plane, bitmap, brightness, color);
        value += 1;
        if (progress_) progress_->setValue(value);
        pol = engine_->group_get_next_polygon(pol);
    }
    if (progress_) progress_->setValue(0);
    CopyGeomForRestore();
    TriTotal = NumTris;
}

int RefSurfSimpli::BuildOutput() {
    setStatus(msg(messages_.building, "Building Output"));
    if (progress_) progress_->setMaximum(TriCurrent);
    const int group = engine_->group_create("Simplified_version");
    double loc[3] = {0, 0, 0};
    engine_->group_get_location(OutputGroup, loc);
    engine_->group_set_rotate_reference_point(group, loc);
    double c1[9], c2[9], c3[9];
    int bitmap = 0;
    double brightness = 0;
    int color[3];
    int value = 0;
    bool more = GetFirstTriangle(c1, c2, c3, bitmap, brightness, color);
    while (more) {
        const int pol = engine_->polygon_create();
        engine_->polygon_set_group(pol, group);
        const double* cs[3] = {c1, c2, c3};
        for (int k = 0; k < 3; ++k) {
            Vector scratch(9, 0.0);
            CopyLinearArray(scratch, Vector(cs[k], cs[k] + 9));
            engine_->polygon_add_point(pol, scratch.data());
        }
        engine_->engine_add_polygon(pol);
        engine_->polygon_set_color_fill(pol, color[0], color[1], color[2]);
        engine_->polygon_set_brightness(pol, std::nearbyint(brightness));
        engine_->polygon_set_bitmap_fill(pol, bitmap);
        value += 1;
        if (progress_) progress_->setValue(value);
        more = GetNextTriangle(c1, c2, c3, bitmap, brightness, color);
    }
    if (progress_) progress_->setValue(0);
    setStatus("");
    return group;
}

bool RefSurfSimpli::GetFirstTriangle(double c1[9], double c2[9], double c3[9], int& bitmap, double& brightness, int color[3]) {
    OutCursor = 1;
    return GetNextTriangle(c1, c2, c3, bitmap, brightness, color);
}

bool RefSurfSimpli::GetNextTriangle(double c1[9], double c2[9], double c3[9], int& bitmap, double& brightness, int color[3]) {
    for (int t = OutCursor < 1 ? 1 : OutCursor; t <= NumTris; ++t) {
        const RTri& T = Tris[static_cast<std::size_t>(t)];
        if (T.Valid != vbTrue) continue;
        double* out[3] = {c1, c2, c3};
        for (int k = 1; k <= 3; ++k) {
            const RPoint& P = Points[static_cast<std::size_t>(T.Pts[k])];
            Vector pos(3);
            VectorCopy(pos, P.Coords);
            double* o = out[k - 1];
            o[0] = pos[0];
            o[1] = pos[1];
            o[2] = pos[2];
            o[3] = T.TexUV[k][0];
            o[4] = T.TexUV[k][1];
            o[5] = P.VertBrightness;
            o[6] = P.VertNormal[0];
            o[7] = P.VertNormal[1];
            o[8] = P.VertNormal[2];
        }
        bitmap = T.BitmapHandle;
        brightness = T.TriBrightness;
        color[0] = T.TriColor[1];
        color[1] = T.TriColor[2];
        color[2] = T.TriColor[3];
        OutCursor = t + 1;
        return true;
    }
    return false;
}

} // namespace simplify_ref
