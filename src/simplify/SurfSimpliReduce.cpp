// Reduce, the loop, and the contraction with its helpers.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"
#include "simplify/QuadricMath.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace simplify {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
constexpr double kFloor = -1e21; // MinCost before each fresh selection
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
        cancelled_ = false;
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
        notePeak();
        if (cancelled_) { // the model stands after a whole contraction; the next run starts over
            sourceGroup_ = group;
            return 0;
        }
        const int out = BuildOutput();
        sourceGroup_ = group;
        return out;
    });
}

void SurfSimpli::Load(int group, SimplifyProgress* progress, SimplifyStatus* status) {
    vexil::propagate("SurfSimpli", "Load", [&] {
        progress_ = progress;
        status_ = status;
        cancelled_ = false;
        Reset();
        ExtractTriangles(group);
        triCurrent_ = triTotal_;
        sourceGroup_ = group;
        outputGroup_ = group;
        ForceRestart = true;
        notePeak();
        setStatus("");
    });
}

void SurfSimpli::SimplifyLoop(int target) {
    pristine_ = false;
    setStatus(msg(messages_.simplifying, "Simplyfing"));
    if (selectedMark_.size() != pValid_.size()) markSelected();
    if (!continueRun_) {
        costlyContraction_ = false;
        BuildAllQuadrics();
        MarkBorderEdges();
        if (lockSelected_) AddLockTerms();
        EvaluateAllEdges();
        minCost_ = kFloor;
        minEdge_ = 0;
        minEdge_ = selectEdge();
        if (minEdge_ == -1) {
            showMessage(msg(messages_.cantSimplify, "Can't simplify further!"));
            return;
        }
    }
    // the first selection has the progress calls of the host after it: its contraction computes
    // its planes itself
    bool selectedHere = false;
    const int progressMax = triTotal_ - target + 1;
    if (progress_) {
        progress_->setMaximum(progressMax);
        progress_->setMinimum(0);
    }
    for (;;) {
        if (ZeroErrorMode && roundsAboveZero(minCost_)) break;
        if (triCurrent_ <= target) break;
        if (roundsAboveZero(minCost_)) costlyContraction_ = true;
        reusePlanes_ = selectedHere; // nothing changed since this loop's selection
        const int removed = ContractEdge();
        triCurrent_ -= removed;
        if (progress_ && triTotal_ - triCurrent_ <= progressMax) progress_->setValue(triTotal_ - triCurrent_);
        if (host_) {
            host_->yieldEvents();
            if (host_->cancelRequested()) {
                cancelled_ = true;
                ForceRestart = true;
                break;
            }
        }
        minCost_ = kFloor;
        minEdge_ = 0;
        minEdge_ = selectEdge();
        selectedHere = true;
        if (minEdge_ == -1) {
            showMessage(msg(messages_.cantSimplify, "Can't simplify further!"));
            break;
        }
    }
    if (progress_) progress_->setValue(0);
}

// ---- the contraction ----

int SurfSimpli::ContractEdge() {
    pristine_ = false;
    const int edge = minEdge_;
    const bool reusePlanes = reusePlanes_ && movedPlanesEdge_ == edge;
    reusePlanes_ = false;
    if (edge < 1 || edge > EdgeCount()) return 0; // e.g. -1 after "Can't simplify further!"
    const std::size_t ei = static_cast<std::size_t>(edge);
    if (!edges_[ei].valid) return 0;
    if (TraceContractions) ContractionTrace.push_back(exEdge(edge));
    int kept = edges_[ei].a, gone = edges_[ei].b;
    if (selectedMark_.size() != pValid_.size()) markSelected();
    if (selectedFast(gone)) std::swap(kept, gone);
    const std::size_t k = static_cast<std::size_t>(kept), g = static_cast<std::size_t>(gone);
    // the points whose tests may read something this contraction changes (refusal cache):
    // touched, the edges parked at them come back (none while the heap is to be made afresh,
    // none when no edge is parked)
    if (ptParked_.size() < pValid_.size()) ptParked_.resize(pValid_.size(), 0);
    const bool watch = !heapDirty_ && !refusals_.empty();
    const std::int32_t* const parkedAt = ptParked_.data(); // (unparking changes counts, not the array)
    auto touch = [&](std::int32_t p) {
        if (parkedAt[p] > 0) unparkAt(p);
    };
    auto touchCorners = [&](std::int32_t t) {
        const TriHot& T = tris_[static_cast<std::size_t>(t)];
        for (int c = 0; c < 3; ++c) touch(T.pts[c]);
    };
    auto touchEnds = [&](std::int32_t e) {
        const EdgeHot& X = edges_[static_cast<std::size_t>(e)];
        touch(X.a);
        touch(X.b);
    };
    if (watch)
        for (const std::int32_t* t = eTris_.begin(ei); t != eTris_.end(ei); ++t) {
            touchCorners(*t);
            for (const std::int32_t s : tris_[static_cast<std::size_t>(*t)].edges) touchEnds(s);
        }
    for (const std::size_t p : {k, g}) {
        for (const std::int32_t* t = pTris_.begin(p); t != pTris_.end(p); ++t) {
            // the texture coordinates are read by the interpolation below: on their way in now
            if (!geomOnly_) {
                const double* uv = tUV_[static_cast<std::size_t>(*t)].data();
                __builtin_prefetch(uv);
                __builtin_prefetch(uv + 5);
            }
            if (watch) touchCorners(*t);
        }
        for (const std::int32_t* e = pEdges_.begin(p); e != pEdges_.end(p); ++e) {
            if (watch) touchEnds(*e);
            // the far ends are the neighbourhood whose quadrics and edges are made again below:
            // their list heads and records on their way in now
            const EdgeHot& X = edges_[static_cast<std::size_t>(*e)];
            const std::size_t f = static_cast<std::size_t>(X.a == static_cast<std::int32_t>(p) ? X.b : X.a);
            pEdges_.prefetchHead(f);
            pTris_.prefetchHead(f);
            __builtin_prefetch(pts_[f].s);
            __builtin_prefetch(pts_[f].s + 8);
        }
    }
    if (!geomOnly_) {
        const double nc[3] = {edges_[ei].nc[0], edges_[ei].nc[1], edges_[ei].nc[2]};
        interpolateTexCoords(nc, kept, gone);
    }
    edges_[ei].valid = false;
    if (!heapDirty_) {
        heap_.remove(edge);
        clearPark(ei);
    }
    for (int c = 0; c < 3; ++c) pts_[k].xyz[c] = edges_[ei].nc[c];
    int removed = 0;
    for (std::uint32_t i = 0; i < eTris_.size(ei); ++i) {
        const int t = eTris_.at(ei, i);
        if (!tris_[static_cast<std::size_t>(t)].valid) continue;
        removeTriOfEdge(t, edge);
        ++removed;
    }
    // merge the lists (kept == gone only for an edge from a point to itself: nothing to add then)
    // the kept point's lists lose the dead entries first (nothing reads them; the merged lists
    // are the same, and need less room)
    pTris_.filter(k, [&](std::int32_t t) { return tris_[static_cast<std::size_t>(t)].valid; });
    pEdges_.filter(k, [&](std::int32_t e) { return edges_[static_cast<std::size_t>(e)].valid; });
    if (kept != gone) {
        for (std::uint32_t i = 0; i < pTris_.size(g); ++i) {
            const std::int32_t t = pTris_.at(g, i);
            if (tris_[static_cast<std::size_t>(t)].valid) pTris_.addIfAbsent(k, t);
        }
        for (std::uint32_t i = 0; i < pEdges_.size(g); ++i) {
            const std::int32_t e = pEdges_.at(g, i);
            if (edges_[static_cast<std::size_t>(e)].valid) pEdges_.addIfAbsent(k, e);
        }
    }
    for (const std::int32_t* t = pTris_.begin(g); t != pTris_.end(g); ++t) {
        TriHot& T = tris_[static_cast<std::size_t>(*t)];
        if (!T.valid) continue;
        for (int c = 0; c < 3; ++c)
            if (T.pts[c] == gone) {
                T.pts[c] = kept;
                break;
            }
    }
    for (const std::int32_t* e = pEdges_.begin(g); e != pEdges_.end(g); ++e) {
        EdgeHot& X = edges_[static_cast<std::size_t>(*e)];
        if (X.a == gone) X.a = kept;
        if (X.b == gone) X.b = kept;
    }
    pValid_[g] = 0;
    edgeIndexDirty_ = true;
    leaveListMode();
    for (const std::int32_t* e = pEdges_.begin(k); e != pEdges_.end(k); ++e) { // the lists read next
        const EdgeHot& X = edges_[static_cast<std::size_t>(*e)];
        const std::size_t f = static_cast<std::size_t>(X.a == kept ? X.b : X.a);
        pEdges_.prefetchEntries(f);
        pTris_.prefetchEntries(f);
    }

    collectAffected(kept);
    // The neighbourhood's triangles lie anywhere in the array: have them all on their way in
    // before the planes and quadrics read them one by one.
    for (const std::int32_t p : affectedPts_) {
        const std::size_t pi = static_cast<std::size_t>(p);
        for (const std::int32_t* t = pTris_.begin(pi); t != pTris_.end(pi); ++t)
            __builtin_prefetch(&tris_[static_cast<std::size_t>(*t)]);
        __builtin_prefetch(pts_[pi].s);
        __builtin_prefetch(pts_[pi].s + 8);
    }
    evaluatePlanes(kept, reusePlanes ? &movedPlanes_ : nullptr);
    // Each affected point's quadric afresh: its valid triangles' planes, then its borders'
    // penalties, in list order (ClearPointQuadric, BuildPointQuadric, AddBorderPenaltyToPoint
    // point by point; a point's sum reads no other point's quadric, and only the penalties can
    // raise, in the same order as when the three passes run one after the other).
    static const bool wide = DefaultCosting() == Costing::Avx2; // the processor has AVX2
    if (wide && WideSums) sumAffectedQuadricsWide();
    else sumAffectedQuadricsPlain();
    // (collectAffected noted which points have a valid border edge; nothing since changed an
    // edge or an edge list)
    for (std::size_t a = 0; a < affectedPts_.size(); ++a) {
        if (!affectedBorder_[a]) continue;
        const std::int32_t p = affectedPts_[a];
        const std::size_t pi = static_cast<std::size_t>(p);
        for (std::uint32_t i = 0; i < pEdges_.size(pi); ++i) {
            const std::int32_t e = pEdges_.at(pi, i);
            const EdgeHot& X = edges_[static_cast<std::size_t>(e)];
            if (X.valid && X.border) addBorderPenaltyToPoint(p, e);
        }
    }
    if (lockSelected_) AddLockTerms();
    EvaluateAffectedEdges();
    return removed;
}

namespace {
using v4d = double __attribute__((vector_size(32)));
using v4i = long long __attribute__((vector_size(32)));
// qm::Acc four lanes at a time: every entry gets the same products added in the same order
// (a product of two doubles is the same whichever comes first).
struct Acc4 {
    v4d s0123{0, 0, 0, 0}, s4567{0, 0, 0, 0}, s89u01{0, 0, 0, 0};
    double u2 = 0;
    [[gnu::always_inline]] void add(const double* p) {
        v4d P;
        std::memcpy(&P, p, sizeof P); // a, b, c, d
        s0123 += v4d{p[0], p[0], p[0], p[0]} * P;                                        // a * (a, b, c, d)
        s4567 += __builtin_shuffle(P, v4i{1, 1, 1, 2}) * __builtin_shuffle(P, v4i{1, 2, 3, 2}); // (b, b, b, c) * (b, c, d, c)
        s89u01 += v4d{p[3], p[3], p[3], p[3]} * __builtin_shuffle(P, v4i{2, 3, 0, 1});   // d * (c, d, a, b)
        u2 += p[2] * p[3];
    }
    [[gnu::always_inline]] void store(double* s, double* u) const {
        std::memcpy(s, &s0123, sizeof s0123);
        std::memcpy(s + 4, &s4567, sizeof s4567);
        s[8] = s89u01[0];
        s[9] = s89u01[1];
        u[0] = s89u01[2];
        u[1] = s89u01[3];
        u[2] = u2;
    }
};
} // namespace

// Each affected point's quadric from zero: its valid triangles' planes in list order (the dead
// ones leave the list); the touch tells the refusal cache that the point changed.
template <class Acc> [[gnu::always_inline]] inline void SurfSimpli::sumAffectedQuadrics() {
    for (const std::int32_t p : affectedPts_) {
        touchPoint(p);
        const std::size_t pi = static_cast<std::size_t>(p);
        Acc q;
        pTris_.filter(pi, [&](std::int32_t t) {
            const TriHot& T = tris_[static_cast<std::size_t>(t)];
            if (!T.valid) return false;
            q.add(T.plane);
            return true;
        });
        q.store(pts_[pi].s, pts_[pi].u);
    }
}
void SurfSimpli::sumAffectedQuadricsPlain() { sumAffectedQuadrics<qm::Acc>(); }
__attribute__((target("avx2"))) void SurfSimpli::sumAffectedQuadricsWide() { sumAffectedQuadrics<Acc4>(); }

void SurfSimpli::RemoveTriOfEdge(int tri, int edge) { removeTriOfEdge(inTri(tri), inEdge(edge)); }
void SurfSimpli::MergeEdgeTris(int e1, int e2) { mergeEdgeTris(inEdge(e1), inEdge(e2)); }
void SurfSimpli::RepointTriEdges(int from, int to) { repointTriEdges(inEdge(from), inEdge(to)); }
void SurfSimpli::CollectAffected(int kept) { collectAffected(inPt(kept)); }
void SurfSimpli::EvaluatePlaneOfAffectedTris(int kept) { evaluatePlanes(inPt(kept)); }
void SurfSimpli::InterpolateTexCoords(const double newCoords[3], int kept, int gone) {
    interpolateTexCoords(newCoords, inPt(kept), inPt(gone));
}

void SurfSimpli::removeTriOfEdge(int tri, int edge) {
    pristine_ = false;
    TriHot& T = tris_.at(static_cast<std::size_t>(tri));
    T.valid = false;
    int e1 = 0, e2 = 0;
    for (int k = 0; k < 3; ++k) {
        if (T.edges[k] == edge) continue;
        if (e1 == 0) e1 = T.edges[k];
        else if (e2 == 0) e2 = T.edges[k];
    }
    if (e1 == 0 || e2 == 0) return; // a triangle without two other sides: see docs/simplify.md
    mergeEdgeTris(e1, e2);
    repointTriEdges(e2, e1);
    EdgeHot& E2 = edges_[static_cast<std::size_t>(e2)];
    if (E2.border) edges_[static_cast<std::size_t>(e1)].border = true;
    E2.valid = false;
    if (!heapDirty_) {
        heap_.remove(e2);
        clearPark(static_cast<std::size_t>(e2));
    }
}

void SurfSimpli::mergeEdgeTris(int e1, int e2) {
    pristine_ = false;
    const std::size_t a = static_cast<std::size_t>(e1), b = static_cast<std::size_t>(e2);
    if (a >= edges_.size() || b >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    for (std::uint32_t i = 0; i < eTris_.size(b); ++i) {
        const int t = eTris_.at(b, i);
        if (!tris_[static_cast<std::size_t>(t)].valid) continue;
        if (eTris_.contains(a, t)) continue;
        std::int32_t* l1 = eTris_.begin(a);
        for (std::uint32_t j = 0; j < eTris_.size(a); ++j)
            if (!tris_[static_cast<std::size_t>(l1[j])].valid) {
                l1[j] = t;
                break;
            }
    }
}

void SurfSimpli::repointTriEdges(int from, int to) {
    pristine_ = false;
    const std::size_t f = static_cast<std::size_t>(from);
    if (f >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    for (const std::int32_t* t = eTris_.begin(f); t != eTris_.end(f); ++t) {
        TriHot& T = tris_[static_cast<std::size_t>(*t)];
        if (!T.valid) continue;
        for (int k = 0; k < 3; ++k)
            if (T.edges[k] == from) {
                T.edges[k] = to;
                break;
            }
    }
}

void SurfSimpli::collectAffected(int kept) {
    pristine_ = false;
    leaveListMode(); // dead edges leave the lists below
    affectedPts_.clear();
    affectedEdges_.clear();
    if (++stamp_ == 0) { // wrapped: start the marks afresh
        std::fill(ptStamp_.begin(), ptStamp_.end(), 0u);
        for (EdgeHot& X : edges_) X.stamp = 0;
        stamp_ = 1;
    }
    if (ptStamp_.size() < pValid_.size()) ptStamp_.resize(pValid_.size(), 0);
    const std::uint32_t stamp = stamp_;
    std::uint32_t* const ptStamp = ptStamp_.data();
    EdgeHot* const edges = edges_.data();
    const std::size_t k = static_cast<std::size_t>(kept);
    if (k >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    for (const std::int32_t* e = pEdges_.begin(k); e != pEdges_.end(k); ++e) {
        const EdgeHot& X = edges[*e];
        if (!X.valid) continue;
        for (const std::int32_t p : {X.a, X.b})
            if (ptStamp[p] != stamp) {
                ptStamp[p] = stamp;
                affectedPts_.push_back(p);
            }
    }
    std::size_t room = 0;
    for (const std::int32_t p : affectedPts_) { // the edges of the neighbourhood, on their way in
        const std::size_t pi = static_cast<std::size_t>(p);
        for (const std::int32_t* e = pEdges_.begin(pi); e != pEdges_.end(pi); ++e) __builtin_prefetch(&edges[*e]);
        room += pEdges_.size(pi);
    }
    affectedBorder_.resize(affectedPts_.size());
    affectedEdges_.resize(room);
    std::int32_t* const out = affectedEdges_.data();
    std::size_t n = 0;
    for (std::size_t i = 0; i < affectedPts_.size(); ++i) {
        const std::int32_t p = affectedPts_[i];
        const std::size_t pi = static_cast<std::size_t>(p);
        // dead edges leave the list as it is read
        std::int32_t* const list = pEdges_.begin(pi);
        const std::uint32_t size = pEdges_.size(pi);
        std::uint32_t w = 0;
        bool border = false;
        for (std::uint32_t r = 0; r < size; ++r) {
            const std::int32_t e = list[r];
            EdgeHot& X = edges[e];
            if (!X.valid) continue;
            list[w++] = e;
            border |= X.border;
            if (X.stamp == stamp) continue;
            X.stamp = stamp;
            out[n++] = e;
            // the far end's quadric is summed when the edge is costed, after the planes and
            // the neighbourhood's quadrics: time enough for it to come in
            const double* far = pts_[static_cast<std::size_t>(X.a == p ? X.b : X.a)].s;
            __builtin_prefetch(far);
            __builtin_prefetch(far + 8);
        }
        pEdges_.truncate(pi, w);
        affectedBorder_[i] = border;
    }
    affectedEdges_.resize(n);
}

// moved: the planes the flip test made for the moved triangles of this contraction's edge
// (degeneratesOrFlips), taken for a triangle whose corners are those it had there.
void SurfSimpli::evaluatePlanes(int kept, const std::vector<MovedPlane>* moved) {
    pristine_ = false;
    const std::size_t k = static_cast<std::size_t>(kept);
    if (k >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    std::size_t next = 0; // they come in the order of the kept point's list, as a rule
    for (const std::int32_t* t = pTris_.begin(k); t != pTris_.end(k); ++t) {
        TriHot& T = tris_[static_cast<std::size_t>(*t)];
        if (!T.valid) continue;
        const MovedPlane* found = nullptr;
        if (moved) {
            const MovedPlane* m = moved->data();
            const std::size_t n = moved->size();
            std::size_t i = next < n && m[next].tri == *t ? next : 0;
            while (i < n && m[i].tri != *t) ++i;
            if (i < n) {
                found = &m[i];
                next = i + 1;
                for (int c = 0; c < 3; ++c)
                    if (found->pts[c] != (T.pts[c] == kept ? -1 : T.pts[c])) found = nullptr;
            }
        }
        double A, B, C, D;
        if (found) {
            A = fin(found->a);
            B = fin(found->b);
            C = fin(found->c);
            D = fin(found->d);
        } else {
            const double* c1 = pts_[static_cast<std::size_t>(T.pts[0])].xyz;
            const double* c2 = pts_[static_cast<std::size_t>(T.pts[1])].xyz;
            const double* c3 = pts_[static_cast<std::size_t>(T.pts[2])].xyz;
            const double x1 = c1[0], y1 = c1[1], z1 = c1[2];
            const double x2 = c2[0], y2 = c2[1], z2 = c2[2];
            const double x3 = c3[0], y3 = c3[1], z3 = c3[2];
            A = fin(y1 * (z2 - z3) + y2 * (z3 - z1) + y3 * (z1 - z2));
            B = fin(z1 * (x2 - x3) + z2 * (x3 - x1) + z3 * (x1 - x2));
            C = fin(x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2));
            D = fin(-(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1)));
        }
        auto sq = [](double v) { return fin(v * v); };
        const double m = fin(std::sqrt(fin(sq(A) + sq(B) + sq(C)))); // VectorLength
        if (m != 0.0) {
            T.plane[0] = -A / m;
            T.plane[1] = -B / m;
            T.plane[2] = -C / m;
            T.plane[3] = -D / m;
        } else {
            setStatus(msg(messages_.invalidTri, "Invalid Tri - EvaluatePlaneOfAffectedTris"));
        }
    }
}

void SurfSimpli::interpolateTexCoords(const double newCoords[3], int kept, int gone) {
    pristine_ = false;
    const std::size_t ei = static_cast<std::size_t>(minEdge_ >= 0 ? minEdge_ : 0);
    if (ei >= edges_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    const double* K = pts_.at(static_cast<std::size_t>(kept)).xyz;
    const double* G = pts_.at(static_cast<std::size_t>(gone)).xyz;
    auto distance = [](const double* a, const double* b) { // Maths::Distance over three elements
        double sum = 0.0;
        for (int i = 0; i < 3; ++i) sum = fin(sum + fin((a[i] - b[i]) * (a[i] - b[i])));
        return std::sqrt(sum);
    };
    const double dg = distance(G, K);
    if (dg == 0.0) return;
    const double t = fin(distance(newCoords, K) / dg);
    const int n = static_cast<int>(eTris_.size(ei));
    if (n < 1) return;
    int tri1 = eTris_.at(ei, 0);
    if (!tris_[static_cast<std::size_t>(tri1)].valid) {
        if (n < 2) return;
        tri1 = eTris_.at(ei, 1);
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
        tri2 = eTris_.at(ei, 1);
        interpolate(tri2, uvK2, uvG2, new2);
    }
    // (cornerUV and setCornerUV of the first corner that is the point, found once)
    auto apply = [&](int point, const double uv1[2], const double uv2[2]) {
        const std::size_t p = static_cast<std::size_t>(point);
        for (const std::int32_t* tp = pTris_.begin(p); tp != pTris_.end(p); ++tp) {
            const int T = *tp;
            const TriHot& tr = tris_[static_cast<std::size_t>(T)];
            if (!tr.valid || T == tri1 || T == tri2) continue;
            const int corner = tr.pts[0] == point ? 0 : tr.pts[1] == point ? 1 : tr.pts[2] == point ? 2 : -1;
            if (corner < 0) continue;
            double* uv = tUV_[static_cast<std::size_t>(T)].data() + corner * 2;
            const double* to = nullptr;
            if (uv[0] == uv1[0] && uv[1] == uv1[1]) to = new1;
            else if (uv[0] == uv2[0] && uv[1] == uv2[1]) to = new2;
            if (to) {
                uv[0] = to[0];
                uv[1] = to[1];
            }
        }
    };
    apply(kept, uvK1, uvK2);
    apply(gone, uvG1, uvG2);
}

} // namespace simplify
