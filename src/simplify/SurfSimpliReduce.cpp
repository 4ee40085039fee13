// the edge contraction: Reduce, the loop, the choice of the next edge, the refusal tests and the contraction.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"
#include "maths/Maths.h"

#include <algorithm>
#include <cmath>

namespace simplify {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
constexpr double kFloor = -1e21;  // MinCost before each fresh selection
constexpr double kNoCost = 1e32;  // "best" at the start of a scan
inline bool eligible(const SimpEdge& E) { return E.Valid && E.Cost >= kFloor && E.Cost < kNoCost; }
// Round(x, 2), half to even: is it above 0?
inline bool roundsAboveZero(double x) { return std::nearbyint(x * 100.0) / 100.0 > 0.0; }
} // namespace

// ---- Reduce and the loop ----

int SurfSimpli::Reduce(int target, int group, bool protectTexSeams, SimplifyProgress* progress,
                       SimplifyStatus* status, bool geomOnly, bool lockSelected, bool protectColorBorders) {
    return vexil::propagate("SurfSimpli", "Reduce", [&] {
        protectTexSeams_ = protectTexSeams;
        progress_ = progress;
        status_ = status;
        geomOnly_ = geomOnly;
        lockSelected_ = lockSelected;
        protectColorBorders_ = protectColorBorders;
        if (group != sourceGroup_) {
            Reset();
            ExtractTriangles(group);
            triCurrent_ = triTotal_;
        }
        if (target <= triCurrent_ && !ForceRestart) {
            continueRun_ = true;
        } else {
            ForceRestart = false;
            RestoreGeomFromCopy();
            continueRun_ = false;
            triCurrent_ = triTotal_;
        }
        markSelected();
        outputGroup_ = group;
        SimplifyLoop(target);
        const int out = BuildOutput();
        sourceGroup_ = group;
        return out;
    });
}

void SurfSimpli::SimplifyLoop(int target) {
    pristine_ = false;
    setStatus(msg(messages_.simplifying, "Simplyfing"));
    if (selectedMark_.size() != pts_.size()) markSelected();
    if (!continueRun_) {
        BuildAllQuadrics();
        MarkBorderEdges();
        if (lockSelected_) AddLockTerms();
        EvaluateAllEdges();
        minCost_ = kFloor;
        minEdge_ = 0;
        minEdge_ = SelectContractibleEdge();
        if (minEdge_ == -1) {
            showMessage(msg(messages_.cantSimplify, "Can't simplify further!"));
            return;
        }
    }
    const int progressMax = triTotal_ - target + 1;
    if (progress_) {
        progress_->setMaximum(progressMax);
        progress_->setMinimum(0);
    }
    for (;;) {
        if (ZeroErrorMode && roundsAboveZero(minCost_)) break;
        if (triCurrent_ <= target) break;
        const int removed = ContractEdge();
        triCurrent_ -= removed;
        if (progress_ && triTotal_ - triCurrent_ <= progressMax) progress_->setValue(triTotal_ - triCurrent_);
        if (host_) host_->yieldEvents();
        minCost_ = kFloor;
        minEdge_ = 0;
        minEdge_ = SelectContractibleEdge();
        if (minEdge_ == -1) {
            showMessage(msg(messages_.cantSimplify, "Can't simplify further!"));
            break;
        }
    }
    if (progress_) progress_->setValue(0);
}

// ---- choosing the edge ----

int SurfSimpli::NextCheapestEdge(int after, const std::vector<int>& excluded) {
    double best = kNoCost;
    int chosen = 1;
    const double floor = minCost_;
    for (int i = 1; i <= EdgeCount(); ++i) {
        const SimpEdge& E = edges_[static_cast<std::size_t>(i)];
        if (!E.Valid) continue;
        if (std::find(excluded.begin(), excluded.end(), i) != excluded.end()) continue;
        if (E.Cost < best && E.Cost >= floor && i != after) {
            best = E.Cost;
            chosen = i;
        }
    }
    if (best == kNoCost) return -1;
    minCost_ = best;
    return chosen;
}

void SurfSimpli::rebuildHeap() {
    std::vector<EdgeHeap::Entry> entries;
    entries.reserve(edges_.size());
    for (int e = 1; e <= EdgeCount(); ++e) {
        const SimpEdge& E = edges_[static_cast<std::size_t>(e)];
        if (eligible(E)) entries.push_back({E.Cost, e});
    }
    heap_.build(std::move(entries), EdgeCount());
    heapDirty_ = false;
    clearRefusals();
    parked_.assign(edges_.size(), 0);
}

void SurfSimpli::heapUpdate(int edge) {
    if (heapDirty_) return;
    if (parked_[static_cast<std::size_t>(edge)]) parked_[static_cast<std::size_t>(edge)] = 0;
    const SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    if (eligible(E)) heap_.set(edge, E.Cost);
    else heap_.remove(edge);
}

// The scans of NextCheapestEdge, with the floor raised to each refused candidate's cost and the
// refused ones excluded, visit the chosen-able edges in (cost, index) order: this visits the
// heap in that order, without changing it, until a candidate passes the three tests.
// A refused edge is parked out of the heap until a contraction touches one of its ends (its
// refusal cannot change before), so later selections do not visit it again. A failed
// selection leaves MinCost at the cost of the last chosen-able edge in that order, as the scans do.
int SurfSimpli::SelectContractibleEdge() {
    if (heapDirty_) rebuildHeap();
    ++SelectionCount;
    toPark_.clear();
    int result = -1;
    try {
        result = heap_.visitInOrder([&](const EdgeHeap::Entry& top) {
            ++CandidateCount;
            minCost_ = top.cost;
            if (CacheRefusals && knownRefused(top.edge)) {
                ++CachedRefusals;
                toPark_.push_back(top.edge);
                return false;
            }
            const bool ok = !WouldDegenerate(top.edge) && !WouldFlipNormal(top.edge) && KeepsManifold(top.edge);
            if (!ok && CacheRefusals) {
                const SimpEdge& E = edges_[static_cast<std::size_t>(top.edge)];
                refusals_[static_cast<std::size_t>(top.edge)] = Refusal{contractions_, E.PtA, E.PtB};
                toPark_.push_back(top.edge);
            }
            return ok;
        });
    } catch (...) {
        heapDirty_ = true; // a test raised: the heap is rebuilt from the costs when next used
        throw;
    }
    for (const int e : toPark_) {
        heap_.remove(e);
        parked_[static_cast<std::size_t>(e)] = 1;
    }
    if (result == -1 && CacheRefusals) {
        // every chosen-able edge was refused: the scans' last candidate is the greatest in order
        int last = 0;
        for (int e = 1; e <= EdgeCount(); ++e) {
            const SimpEdge& E = edges_[static_cast<std::size_t>(e)];
            if (!eligible(E)) continue;
            if (last == 0 || !(E.Cost < edges_[static_cast<std::size_t>(last)].Cost)) last = e;
        }
        if (last != 0) minCost_ = edges_[static_cast<std::size_t>(last)].Cost;
    }
    return result;
}

void SurfSimpli::unpark(int edge) {
    if (static_cast<std::size_t>(edge) >= parked_.size() || !parked_[static_cast<std::size_t>(edge)]) return;
    parked_[static_cast<std::size_t>(edge)] = 0;
    const SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    if (eligible(E)) heap_.set(edge, E.Cost);
}

// Refusal cache. The three tests of an edge (A, B) read: the edge's ends, NewCoords and
// AssTris; the valid triangles of A and B with their corners, positions and planes; the valid
// edges of A and B with their ends and their triangles' validity. A contraction changes these
// only for edges with an end among the points it touches (touchPoint in ContractEdge), so a
// refusal stands while neither end has been touched since and the ends are the same.
void SurfSimpli::clearRefusals() {
    ptChanged_.assign(pts_.size(), 0);
    refusals_.assign(edges_.size(), Refusal{});
}

bool SurfSimpli::knownRefused(int edge) const {
    const Refusal& r = refusals_[static_cast<std::size_t>(edge)];
    if (r.at < 0) return false;
    const SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    return E.PtA == r.a && E.PtB == r.b && ptChanged_[static_cast<std::size_t>(r.a)] <= r.at &&
           ptChanged_[static_cast<std::size_t>(r.b)] <= r.at;
}

void SurfSimpli::touchTriCorners(int t) {
    const SimpTri& T = tris_[static_cast<std::size_t>(t)];
    for (int k = 0; k < 3; ++k) touchPoint(T.Pts[k]);
}

void SurfSimpli::touchEdgeEnds(int e) {
    const SimpEdge& E = edges_[static_cast<std::size_t>(e)];
    touchPoint(E.PtA);
    touchPoint(E.PtB);
}

// ---- the refusal tests ----

bool SurfSimpli::edgeHasTri(int edge, int tri) const {
    const auto& l = edges_[static_cast<std::size_t>(edge)].AssTris;
    return std::find(l.begin(), l.end(), tri) != l.end();
}

template <class Test> bool SurfSimpli::anyMovedTri(int edge, Test test) const {
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    const int ends[2] = {E.PtA, E.PtB};
    for (const int end : ends) {
        for (const std::int32_t t : pts_.at(static_cast<std::size_t>(end)).AssTris) {
            const SimpTri& T = tris_[static_cast<std::size_t>(t)];
            if (!T.Valid || edgeHasTri(edge, t)) continue;
            const double* c[3];
            for (int k = 0; k < 3; ++k)
                c[k] = (T.Pts[k] == E.PtA || T.Pts[k] == E.PtB) ? E.NewCoords : pts_[static_cast<std::size_t>(T.Pts[k])].Coords;
            if (test(T, c)) return true;
        }
    }
    return false;
}

bool SurfSimpli::WouldDegenerate(int edge) {
    return anyMovedTri(edge, [](const SimpTri&, const double* const* c) {
        const double s1[3] = {fin(c[1][0] - c[0][0]), fin(c[1][1] - c[0][1]), fin(c[1][2] - c[0][2])};
        const double s2[3] = {fin(c[2][0] - c[0][0]), fin(c[2][1] - c[0][1]), fin(c[2][2] - c[0][2])};
        const double x = fin(s1[1] * s2[2] - s1[2] * s2[1]);
        const double y = fin(s1[2] * s2[0] - s1[0] * s2[2]);
        const double z = fin(s1[0] * s2[1] - s1[1] * s2[0]);
        return x == 0.0 && y == 0.0 && z == 0.0;
    });
}

bool SurfSimpli::WouldFlipNormal(int edge) {
    return anyMovedTri(edge, [](const SimpTri& T, const double* const* c) {
        // PlaneFromPoints, as the maths library writes it
        const double x1 = c[0][0], y1 = c[0][1], z1 = c[0][2];
        const double x2 = c[1][0], y2 = c[1][1], z2 = c[1][2];
        const double x3 = c[2][0], y3 = c[2][1], z3 = c[2][2];
        const double a = fin(y1 * (z2 - z3) + y2 * (z3 - z1) + y3 * (z1 - z2));
        const double b = fin(z1 * (x2 - x3) + z2 * (x3 - x1) + z3 * (x1 - x2));
        const double cc = fin(x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2));
        fin(-(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1)));
        // VectorNegate, then angleBetVectors(negated normal, triangle's plane normal) > 90
        const double n[3] = {-a, -b, -cc};
        const double* p = T.Plane;
        // Where the sign of the cosine settles the answer beyond any rounding, it is read
        // directly; otherwise (near 90 degrees, tiny or huge vectors) the library decides.
        const double la2 = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
        const double lb2 = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
        if (la2 >= 1e-250 && la2 <= 1e250 && lb2 >= 1e-250 && lb2 <= 1e250) {
            const double dot = fin(fin(n[0] * p[0]) + fin(n[1] * p[1]) + fin(n[2] * p[2]));
            const double m = std::sqrt(la2) * std::sqrt(lb2);
            if (dot <= -1e-6 * m) return true;  // cosine below 0: above 90 degrees
            if (dot >= 1e-6 * m) return false; // cosine above 1e-6: below 90 degrees
        }
        const Maths::Vector nv{n[0], n[1], n[2]}, pv{p[0], p[1], p[2]};
        return Maths::angleBetVectors(nv, pv) > 90.0;
    });
}

bool SurfSimpli::KeepsManifold(int edge) {
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(edge));
    // Triangles are counted only when the edge has exactly two entries; otherwise every count
    // is 0 and no pair can fail.
    if (E.AssTris.size() != 2) return true;
    const int t1 = E.AssTris[0], t2 = E.AssTris[1];
    auto count = [&](int e) {
        int n = 0;
        for (const std::int32_t t : edges_[static_cast<std::size_t>(e)].AssTris)
            if (tris_[static_cast<std::size_t>(t)].Valid && t != t1 && t != t2) ++n;
        return n;
    };
    const auto& aList = pts_.at(static_cast<std::size_t>(E.PtA)).AssEdges;
    const auto& bList = pts_.at(static_cast<std::size_t>(E.PtB)).AssEdges;
    for (const std::int32_t a : aList) {
        if (a == edge) continue;
        const SimpEdge& A = edges_[static_cast<std::size_t>(a)];
        if (!A.Valid) continue;
        int far;
        if (A.PtA != E.PtA && A.PtA != E.PtB) far = A.PtA;
        else if (A.PtB != E.PtA && A.PtB != E.PtB) far = A.PtB;
        else continue; // both ends on this edge: they do not meet
        int ca = -1;
        for (const std::int32_t b : bList) {
            if (b == edge) continue;
            const SimpEdge& B = edges_[static_cast<std::size_t>(b)];
            if (!B.Valid) continue;
            if (B.PtA != far && B.PtB != far) continue;
            if (ca < 0) ca = count(a);
            if (ca + count(b) > 2) return false;
        }
    }
    return true;
}

// ---- the contraction ----

int SurfSimpli::ContractEdge() {
    pristine_ = false;
    const int edge = minEdge_;
    if (edge < 1 || edge > EdgeCount()) return 0; // e.g. -1 after "Can't simplify further!"
    SimpEdge& E = edges_[static_cast<std::size_t>(edge)];
    if (!E.Valid) return 0;
    if (TraceContractions) ContractionTrace.push_back(edge);
    int kept = E.PtA, gone = E.PtB;
    if (selectedMark_.size() != pts_.size()) markSelected();
    if (selectedFast(gone)) std::swap(kept, gone);
    // the points whose tests may read something this contraction changes (refusal cache)
    ++contractions_;
    if (ptChanged_.size() < pts_.size()) ptChanged_.resize(pts_.size(), 0);
    if (refusals_.size() < edges_.size()) refusals_.resize(edges_.size());
    for (const std::int32_t t : E.AssTris) {
        touchTriCorners(t);
        for (const std::int32_t s : tris_[static_cast<std::size_t>(t)].Edges) touchEdgeEnds(s);
    }
    for (const int p : {kept, gone}) {
        for (const std::int32_t t : pts_[static_cast<std::size_t>(p)].AssTris) touchTriCorners(t);
        for (const std::int32_t e : pts_[static_cast<std::size_t>(p)].AssEdges) touchEdgeEnds(e);
    }
    if (!geomOnly_) InterpolateTexCoords(E.NewCoords, kept, gone);
    E.Valid = false;
    if (!heapDirty_) {
        heap_.remove(edge);
        parked_[static_cast<std::size_t>(edge)] = 0;
    }
    SimpPoint& K = pts_[static_cast<std::size_t>(kept)];
    for (int k = 0; k < 3; ++k) K.Coords[k] = E.NewCoords[k];
    int removed = 0;
    for (std::size_t i = 0; i < edges_[static_cast<std::size_t>(edge)].AssTris.size(); ++i) {
        const int t = edges_[static_cast<std::size_t>(edge)].AssTris[i];
        if (!tris_[static_cast<std::size_t>(t)].Valid) continue;
        RemoveTriOfEdge(t, edge);
        ++removed;
    }
    // merge the lists (kept == gone only for an edge from a point to itself: nothing to add then)
    {
        SimpPoint& G = pts_[static_cast<std::size_t>(gone)];
        SimpPoint& KP = pts_[static_cast<std::size_t>(kept)];
        if (kept != gone) {
            for (const std::int32_t t : G.AssTris)
                if (tris_[static_cast<std::size_t>(t)].Valid) addIfAbsent(KP.AssTris, t);
            for (const std::int32_t e : G.AssEdges)
                if (edges_[static_cast<std::size_t>(e)].Valid) addIfAbsent(KP.AssEdges, e);
        }
        for (const std::int32_t t : G.AssTris) {
            SimpTri& T = tris_[static_cast<std::size_t>(t)];
            if (!T.Valid) continue;
            for (int k = 0; k < 3; ++k)
                if (T.Pts[k] == gone) {
                    T.Pts[k] = kept;
                    break;
                }
        }
        for (const std::int32_t e : G.AssEdges) {
            SimpEdge& X = edges_[static_cast<std::size_t>(e)];
            if (X.PtA == gone) X.PtA = kept;
            if (X.PtB == gone) X.PtB = kept;
        }
        G.Valid = false;
        edgeIndexDirty_ = true;
        // the kept point's lists lose the dead entries (nothing reads them)
        auto prune = [](std::vector<std::int32_t>& l, auto dead) { l.erase(std::remove_if(l.begin(), l.end(), dead), l.end()); };
        prune(KP.AssTris, [&](std::int32_t t) { return !tris_[static_cast<std::size_t>(t)].Valid; });
        prune(KP.AssEdges, [&](std::int32_t e) { return !edges_[static_cast<std::size_t>(e)].Valid; });
    }
    CollectAffected(kept);
    for (const std::int32_t p : affectedPts_) touchPoint(p);
    EvaluatePlaneOfAffectedTris(kept);
    for (const std::int32_t p : affectedPts_) ClearPointQuadric(p);
    for (const std::int32_t p : affectedPts_) BuildPointQuadric(p);
    for (const std::int32_t p : affectedPts_) {
        const auto& list = pts_[static_cast<std::size_t>(p)].AssEdges;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const SimpEdge& X = edges_[static_cast<std::size_t>(list[i])];
            if (X.Valid && X.IsBorder) AddBorderPenaltyToPoint(p, list[i]);
        }
    }
    if (lockSelected_) AddLockTerms();
    EvaluateAffectedEdges();
    return removed;
}

void SurfSimpli::RemoveTriOfEdge(int tri, int edge) {
    pristine_ = false;
    SimpTri& T = tris_.at(static_cast<std::size_t>(tri));
    T.Valid = false;
    int e1 = 0, e2 = 0;
    for (int k = 0; k < 3; ++k) {
        if (T.Edges[k] == edge) continue;
        if (e1 == 0) e1 = T.Edges[k];
        else if (e2 == 0) e2 = T.Edges[k];
    }
    if (e1 == 0 || e2 == 0) return; // a triangle without two other sides: see docs/simplify.md
    MergeEdgeTris(e1, e2);
    RepointTriEdges(e2, e1);
    SimpEdge& E2 = edges_[static_cast<std::size_t>(e2)];
    if (E2.IsBorder) edges_[static_cast<std::size_t>(e1)].IsBorder = true;
    E2.Valid = false;
    if (!heapDirty_) {
        heap_.remove(e2);
        parked_[static_cast<std::size_t>(e2)] = 0;
    }
}

void SurfSimpli::MergeEdgeTris(int e1, int e2) {
    pristine_ = false;
    auto& l1 = edges_.at(static_cast<std::size_t>(e1)).AssTris;
    const auto& l2 = edges_.at(static_cast<std::size_t>(e2)).AssTris;
    for (std::size_t i = 0; i < l2.size(); ++i) {
        const int t = l2[i];
        if (!tris_[static_cast<std::size_t>(t)].Valid) continue;
        if (std::find(l1.begin(), l1.end(), t) != l1.end()) continue;
        for (auto& slot : l1)
            if (!tris_[static_cast<std::size_t>(slot)].Valid) {
                slot = t;
                break;
            }
    }
}

void SurfSimpli::RepointTriEdges(int from, int to) {
    pristine_ = false;
    for (const std::int32_t t : edges_.at(static_cast<std::size_t>(from)).AssTris) {
        SimpTri& T = tris_[static_cast<std::size_t>(t)];
        if (!T.Valid) continue;
        for (int k = 0; k < 3; ++k)
            if (T.Edges[k] == from) {
                T.Edges[k] = to;
                break;
            }
    }
}

void SurfSimpli::CollectAffected(int kept) {
    pristine_ = false;
    affectedPts_.clear();
    affectedEdges_.clear();
    if (++stamp_ == 0) { // wrapped: start the marks afresh
        std::fill(ptStamp_.begin(), ptStamp_.end(), 0u);
        std::fill(edgeStamp_.begin(), edgeStamp_.end(), 0u);
        stamp_ = 1;
    }
    if (ptStamp_.size() < pts_.size()) ptStamp_.resize(pts_.size(), 0);
    if (edgeStamp_.size() < edges_.size()) edgeStamp_.resize(edges_.size(), 0);
    auto addPt = [&](int p) {
        if (ptStamp_[static_cast<std::size_t>(p)] != stamp_) {
            ptStamp_[static_cast<std::size_t>(p)] = stamp_;
            affectedPts_.push_back(p);
        }
    };
    for (const std::int32_t e : pts_.at(static_cast<std::size_t>(kept)).AssEdges) {
        const SimpEdge& X = edges_[static_cast<std::size_t>(e)];
        if (!X.Valid) continue;
        addPt(X.PtA);
        addPt(X.PtB);
    }
    for (std::size_t i = 0; i < affectedPts_.size(); ++i) {
        auto& list = pts_[static_cast<std::size_t>(affectedPts_[i])].AssEdges;
        std::size_t w = 0; // dead edges leave the list as it is read
        for (std::size_t r = 0; r < list.size(); ++r) {
            const std::int32_t e = list[r];
            if (!edges_[static_cast<std::size_t>(e)].Valid) continue;
            list[w++] = e;
            if (edgeStamp_[static_cast<std::size_t>(e)] != stamp_) {
                edgeStamp_[static_cast<std::size_t>(e)] = stamp_;
                affectedEdges_.push_back(e);
            }
        }
        list.resize(w);
    }
}

void SurfSimpli::EvaluatePlaneOfAffectedTris(int kept) {
    pristine_ = false;
    for (const std::int32_t t : pts_.at(static_cast<std::size_t>(kept)).AssTris) {
        SimpTri& T = tris_[static_cast<std::size_t>(t)];
        if (!T.Valid) continue;
        const double* c1 = pts_[static_cast<std::size_t>(T.Pts[0])].Coords;
        const double* c2 = pts_[static_cast<std::size_t>(T.Pts[1])].Coords;
        const double* c3 = pts_[static_cast<std::size_t>(T.Pts[2])].Coords;
        const double x1 = c1[0], y1 = c1[1], z1 = c1[2];
        const double x2 = c2[0], y2 = c2[1], z2 = c2[2];
        const double x3 = c3[0], y3 = c3[1], z3 = c3[2];
        const double A = fin(y1 * (z2 - z3) + y2 * (z3 - z1) + y3 * (z1 - z2));
        const double B = fin(z1 * (x2 - x3) + z2 * (x3 - x1) + z3 * (x1 - x2));
        const double C = fin(x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2));
        const double D = fin(-(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1)));
        auto sq = [](double v) { return fin(v * v); };
        const double m = fin(std::sqrt(fin(sq(A) + sq(B) + sq(C)))); // VectorLength
        if (m != 0.0) {
            T.Plane[0] = -A / m;
            T.Plane[1] = -B / m;
            T.Plane[2] = -C / m;
            T.Plane[3] = -D / m;
        } else {
            setStatus(msg(messages_.invalidTri, "Invalid Tri - EvaluatePlaneOfAffectedTris"));
        }
    }
}

void SurfSimpli::InterpolateTexCoords(const double newCoords[3], int kept, int gone) {
    pristine_ = false;
    const SimpEdge& E = edges_.at(static_cast<std::size_t>(minEdge_ >= 0 ? minEdge_ : 0));
    const double* K = pts_.at(static_cast<std::size_t>(kept)).Coords;
    const double* G = pts_.at(static_cast<std::size_t>(gone)).Coords;
    auto distance = [](const double* a, const double* b) { // Maths::Distance over three elements
        double sum = 0.0;
        for (int i = 0; i < 3; ++i) sum = fin(sum + fin((a[i] - b[i]) * (a[i] - b[i])));
        return std::sqrt(sum);
    };
    const double dg = distance(G, K);
    if (dg == 0.0) return;
    const double t = fin(distance(newCoords, K) / dg);
    const int n = E.NumAssTris();
    if (n < 1) return;
    int tri1 = E.AssTris[0];
    if (!tris_[static_cast<std::size_t>(tri1)].Valid) {
        if (n < 2) return;
        tri1 = E.AssTris[1];
    }
    double uvK1[2], uvG1[2], new1[2], uvK2[2] = {0, 0}, uvG2[2] = {0, 0}, new2[2] = {0, 0};
    int tri2 = 0;
    auto interpolate = [&](int tri, double uvK[2], double uvG[2], double out[2]) {
        cornerUV(tri, kept, uvK);
        cornerUV(tri, gone, uvG);
        if (uvK[0] == uvG[0] && uvK[1] == uvG[1])
            setStatus(msg(messages_.improperTexture, "Improper Texture coordinates found. Defaulting!"));
        out[0] = uvK[0] + t * (uvG[0] - uvK[0]);
        out[1] = uvK[1] + t * (uvG[1] - uvK[1]);
    };
    interpolate(tri1, uvK1, uvG1, new1);
    if (n == 2) {
        tri2 = E.AssTris[1];
        interpolate(tri2, uvK2, uvG2, new2);
    }
    auto apply = [&](int point, const double uv1[2], const double uv2[2]) {
        for (const std::int32_t T : pts_[static_cast<std::size_t>(point)].AssTris) {
            if (!tris_[static_cast<std::size_t>(T)].Valid || T == tri1 || T == tri2) continue;
            double uv[2];
            const SimpTri& tr = tris_[static_cast<std::size_t>(T)];
            if (tr.Pts[0] != point && tr.Pts[1] != point && tr.Pts[2] != point) continue;
            cornerUV(T, point, uv);
            if (uv[0] == uv1[0] && uv[1] == uv1[1]) setCornerUV(T, point, new1);
            else if (uv[0] == uv2[0] && uv[1] == uv2[1]) setCornerUV(T, point, new2);
        }
    };
    apply(kept, uvK1, uvK2);
    apply(gone, uvG1, uvG2);
}

} // namespace simplify
