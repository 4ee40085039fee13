// The choice of the next edge: the documented scan, the heap that stands in for it, the refusal
// cache, and the three refusal tests.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"
#include "maths/Maths.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace simplify {

namespace {
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}
constexpr double kNoCost = 1e32;  // "best" at the start of a scan
} // namespace

// Edges are scanned in the order of the design's indices, which the answer and the arguments are.
int SurfSimpli::NextCheapestEdge(int after, const std::vector<int>& excluded) {
    double best = kNoCost;
    int chosen = 1;
    const double floor = minCost_;
    for (int i = 1; i <= EdgeCount(); ++i) {
        const EdgeHot& E = edges_[static_cast<std::size_t>(inEdge(i))];
        if (!E.valid) continue;
        if (std::find(excluded.begin(), excluded.end(), i) != excluded.end()) continue;
        if (E.cost < best && E.cost >= floor && i != after) {
            best = E.cost;
            chosen = i;
        }
    }
    if (best == kNoCost) return -1;
    minCost_ = best;
    return chosen;
}

void SurfSimpli::rebuildHeap() {
    clearRefusals();
    parked_.assign(edges_.size(), 0);
    refusedNow_.clear();
    fillHeap();
    heapDirty_ = false;
}

// Fills the heap afresh with the cheapest chosen-able edges that are not parked and not refused
// by the running selection, and sets heapLimit_ so that the heap holds exactly the ones that
// cost less. Every edge below the old limit was visited then (refused or parked), so those
// taken in cost at least as much. Which limit is taken does not change the order of the visit
// (a visit that reaches the limit fills the heap again and goes on): about the keep-th cheapest
// cost, from every eighth waiting edge, is enough.
void SurfSimpli::fillHeap() {
    ++HeapFills;
    // the running selection's refused edges wait outside while the heap is filled, as the parked ones
    for (const int e : refusedNow_)
        if (!parked_[static_cast<std::size_t>(e)]) parked_[static_cast<std::size_t>(e)] = 2;
    std::vector<EdgeHeap::Entry> waiting;
    waiting.reserve(edges_.size());
    for (std::size_t e = 1; e < edges_.size(); ++e) {
        const EdgeHot& E = edges_[e];
        if (eligible(E) && !parked_[e]) waiting.push_back({E.cost, static_cast<int>(e)});
    }
    for (const int e : refusedNow_)
        if (parked_[static_cast<std::size_t>(e)] == 2) parked_[static_cast<std::size_t>(e)] = 0;
    // A few thousand or an eighth of the waiting edges: the heap stays small enough for the
    // caches, and is filled again rarely (each time costs one pass over the edges).
    const std::size_t keep = std::max<std::size_t>(4096, waiting.size() / 8);
    heapLimit_ = EdgeHeap::kNoLimit;
    std::size_t n = waiting.size();
    if (n > keep) {
        std::vector<double>& sample = costScratch_;
        sample.clear();
        for (std::size_t i = 0; i < n; i += 8) sample.push_back(waiting[i].cost);
        const std::size_t k = keep / 8; // below sample.size(): n > keep
        std::nth_element(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(k), sample.end(),
                         [](double a, double b) { return a < b; });
        // everything that costs no more than that sample (ties included)
        heapLimit_ = std::nextafter(sample[k], EdgeHeap::kNoLimit);
        std::size_t w = 0;
        for (std::size_t i = 0; i < n; ++i)
            if (waiting[i].cost < heapLimit_) waiting[w++] = waiting[i];
        n = w;
    }
    heap_.setOrder(&extOfEdge_); // ties go to the lower design index
    heap_.build(std::vector<EdgeHeap::Entry>(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(n)), EdgeCount());
}

// The scans of NextCheapestEdge, with the floor raised to each refused candidate's cost and the
// refused ones excluded, visit the chosen-able edges in (cost, index) order: this visits the
// heap in that order, without changing it, until a candidate passes the three tests.
// A refused edge is parked out of the heap until a contraction touches one of its ends (its
// refusal cannot change before), so later selections do not visit it again. A failed
// selection leaves MinCost at the cost of the last chosen-able edge in that order, as the scans do.
int SurfSimpli::SelectContractibleEdge() { return exEdge(selectEdge()); }

int SurfSimpli::selectEdge() {
    refusedNow_.clear();
    if (heapDirty_) rebuildHeap();
    ++SelectionCount;
    int result = -1;
    bool refilled = false;
    try {
        stale_.clear();
        for (;;) {
            result = heap_.visitInOrder([&](int e) { return edges_[static_cast<std::size_t>(e)].cost; }, [&](const EdgeHeap::Entry& top) {
                ++CandidateCount;
                minCost_ = top.cost;
                // (a parked edge is never in the heap: no refusal here is known already)
                const bool ok = !degeneratesOrFlips(top.edge) && keepsManifold(top.edge);
                if (!ok) refusedNow_.push_back(top.edge);
                return ok;
            }, stale_, heapLimit_);
            // an empty heap or a visit to its end means the limit is reached as well
            if (result >= 0 || heapLimit_ == EdgeHeap::kNoLimit) break;
            // every edge below the limit was refused: the next cheapest come in, and the visit
            // goes on in order from them
            fillHeap();
            refilled = true;
            stale_.clear(); // the heap was made afresh from the true costs
        }
    } catch (...) {
        heapDirty_ = true; // a test raised: the heap is rebuilt from the costs when next used
        throw;
    }
    for (const int e : stale_) { // risen costs met on the way: their keys become their costs
        if (e == result || !heap_.contains(e)) continue;
        const double cost = edges_[static_cast<std::size_t>(e)].cost;
        if (cost < heapLimit_) heap_.set(e, cost);
        else heap_.remove(e);
    }
    // a refill left out this selection's refused edges; without the refusal cache they stay
    // candidates (they all cost less than the limit)
    if (refilled && !CacheRefusals)
        for (const int e : refusedNow_) heap_.set(e, edges_[static_cast<std::size_t>(e)].cost);
    if (CacheRefusals)
        for (const int e : refusedNow_) {
            heap_.remove(e);
            const std::size_t x = static_cast<std::size_t>(e);
            if (parked_[x]) continue;
            parked_[x] = 1; // with the ends it has now, which it keeps while parked
            const EdgeHot& E = edges_[x];
            refusals_[e] = Refusal{E.a, E.b};
            ++ptParked_[static_cast<std::size_t>(E.a)];
            ++ptParked_[static_cast<std::size_t>(E.b)];
        }
    if (result == -1 && CacheRefusals) {
        // every chosen-able edge was refused: the scans' last candidate is the greatest in
        // (cost, design index) order
        int last = 0;
        for (int e = 1; e <= EdgeCount(); ++e) {
            const EdgeHot& E = edges_[static_cast<std::size_t>(e)];
            if (!eligible(E)) continue;
            const double lastCost = edges_[static_cast<std::size_t>(last)].cost;
            if (last == 0 || lastCost < E.cost || (!(E.cost < lastCost) && exEdge(last) < exEdge(e))) last = e;
        }
        if (last != 0) minCost_ = edges_[static_cast<std::size_t>(last)].cost;
    }
    return result;
}

void SurfSimpli::clearPark(std::size_t edge) {
    if (edge >= parked_.size() || !parked_[edge]) return;
    parked_[edge] = 0;
    const auto found = refusals_.find(static_cast<std::int32_t>(edge));
    --ptParked_[static_cast<std::size_t>(found->second.a)];
    --ptParked_[static_cast<std::size_t>(found->second.b)];
    refusals_.erase(found);
}

void SurfSimpli::unparkAt(int p) {
    const std::size_t pi = static_cast<std::size_t>(p);
    for (const std::int32_t* e = pEdges_.begin(pi); e != pEdges_.end(pi); ++e) unpark(*e);
}

void SurfSimpli::unpark(int edge) {
    if (static_cast<std::size_t>(edge) >= parked_.size() || !parked_[static_cast<std::size_t>(edge)]) return;
    clearPark(static_cast<std::size_t>(edge));
    const EdgeHot& E = edges_[static_cast<std::size_t>(edge)];
    if (eligible(E) && E.cost < heapLimit_) heap_.set(edge, E.cost);
}

// Refusal cache. The three tests of an edge (A, B) read: the edge's ends, NewCoords and
// AssTris; the valid triangles of A and B with their corners, positions and planes; the valid
// edges of A and B with their ends and their triangles' validity. A contraction changes these
// only for edges with an end among the points it touches (touchPoint in ContractEdge), so a
// refusal stands while neither end has been touched since: a parked edge comes back when one
// of its ends is touched (it is in both ends' edge lists), or when it is re-costed (then an end
// of it is an affected point, touched as well), and only then. So an edge in the heap never
// has a standing refusal, and nothing needs to remember when a point was touched.
void SurfSimpli::clearRefusals() {
    ptParked_.assign(pValid_.size(), 0);
    refusals_.clear();
}

// ---- the refusal tests ----

template <class Test> bool SurfSimpli::anyMovedTri(int edge, Test test) const {
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const int ends[2] = {E.a, E.b};
    for (const int end : ends) {
        const std::size_t pe = static_cast<std::size_t>(end);
        if (pe >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        for (const std::int32_t* t = pTris_.begin(pe); t != pTris_.end(pe); ++t) {
            const TriHot& T = tris_[static_cast<std::size_t>(*t)];
            if (!T.valid || edgeHasTri(edge, *t)) continue;
            const double* c[3];
            for (int k = 0; k < 3; ++k)
                c[k] = (T.pts[k] == E.a || T.pts[k] == E.b) ? E.nc : pts_[static_cast<std::size_t>(T.pts[k])].xyz;
            if (test(T, c)) return true;
        }
    }
    return false;
}

bool SurfSimpli::WouldDegenerate(int edge) { return wouldDegenerate(inEdge(edge)); }
bool SurfSimpli::WouldFlipNormal(int edge) { return wouldFlipNormal(inEdge(edge)); }
bool SurfSimpli::KeepsManifold(int edge) { return keepsManifold(inEdge(edge)); }

namespace {
using v2d = double __attribute__((vector_size(16)));
inline v2d ld2(const double* p) {
    v2d r;
    std::memcpy(&r, p, sizeof r);
    return r;
}
// The moved triangle has no area (CrossProduct of its sides is zero); raises Overflow for a
// side or a component that is not finite.
inline bool degenerate(const double* const* c) {
    const double s1[3] = {fin(c[1][0] - c[0][0]), fin(c[1][1] - c[0][1]), fin(c[1][2] - c[0][2])};
    const double s2[3] = {fin(c[2][0] - c[0][0]), fin(c[2][1] - c[0][1]), fin(c[2][2] - c[0][2])};
    const double x = fin(s1[1] * s2[2] - s1[2] * s2[1]);
    const double y = fin(s1[2] * s2[0] - s1[0] * s2[2]);
    const double z = fin(s1[0] * s2[1] - s1[1] * s2[0]);
    return x == 0.0 && y == 0.0 && z == 0.0;
}

} // namespace

// The flip test of one moved triangle without its side effects: the answer when it is settled
// here, Overflow when a value it tests is not finite, or the negated normal to hand to
// angleBetVectors (whose log lines must come in the order the tests run).
SurfSimpli::FlipCheck SurfSimpli::flipCheck(const double* plane, const double* const* c) {
    // PlaneFromPoints, as the maths library writes it
    const double x1 = c[0][0], y1 = c[0][1], z1 = c[0][2];
    const double x2 = c[1][0], y2 = c[1][1], z2 = c[1][2];
    const double x3 = c[2][0], y3 = c[2][1], z3 = c[2][2];
    const double a = y1 * (z2 - z3) + y2 * (z3 - z1) + y3 * (z1 - z2);
    const double b = z1 * (x2 - x3) + z2 * (x3 - x1) + z3 * (x1 - x2);
    const double cc = x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2);
    const double d = -(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1));
    // VectorNegate, then angleBetVectors(negated normal, triangle's plane normal) > 90
    FlipCheck r{FlipCheck::Ask, {-a, -b, -cc}, plane};
    if (!std::isfinite(a) || !std::isfinite(b) || !std::isfinite(cc) || !std::isfinite(d)) {
        r.kind = FlipCheck::Overflows;
        return r;
    }
    const double* n = r.n;
    const double* p = plane;
    // Where the sign of the cosine settles the answer beyond any rounding, it is read
    // directly; otherwise (near 90 degrees, tiny or huge vectors) the library decides.
    const double la2 = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
    const double lb2 = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
    if (la2 >= 1e-250 && la2 <= 1e250 && lb2 >= 1e-250 && lb2 <= 1e250) {
        const double t0 = n[0] * p[0], t1 = n[1] * p[1], t2 = n[2] * p[2];
        const double dot = t0 + t1 + t2;
        if (!std::isfinite(t0) || !std::isfinite(t1) || !std::isfinite(t2) || !std::isfinite(dot)) {
            r.kind = FlipCheck::Overflows;
            return r;
        }
        const double m = std::sqrt(la2) * std::sqrt(lb2);
        if (dot <= -1e-6 * m) r.kind = FlipCheck::Flips; // cosine below 0: above 90 degrees
        else if (dot >= 1e-6 * m) r.kind = FlipCheck::Keeps; // cosine above 1e-6: below 90 degrees
    }
    return r;
}

bool SurfSimpli::flips(const FlipCheck& f) {
    switch (f.kind) {
    case FlipCheck::Keeps: return false;
    case FlipCheck::Flips: return true;
    case FlipCheck::Overflows: vexil::raiseOverflow();
    case FlipCheck::Ask: break;
    }
    const Maths::Vector nv{f.n[0], f.n[1], f.n[2]}, pv{f.plane[0], f.plane[1], f.plane[2]};
    return Maths::angleBetVectors(nv, pv) > 90.0;
}

bool SurfSimpli::wouldDegenerate(int edge) {
    return anyMovedTri(edge, [](const TriHot&, const double* const* c) { return degenerate(c); });
}

bool SurfSimpli::wouldFlipNormal(int edge) {
    return anyMovedTri(edge, [](const TriHot& T, const double* const* c) { return flips(flipCheck(T.plane, c)); });
}

// wouldDegenerate(edge) || wouldFlipNormal(edge) in one walk over the moved triangles: the
// degeneracy tests run as they come (the first one that answers or raises ends the walk, as in
// wouldDegenerate), the flip tests' outcomes are kept up to the first settled flip or overflow
// and then given in their order (what wouldFlipNormal would answer, raise or log after them).
bool SurfSimpli::degeneratesOrFlips(int edge) {
    std::vector<FlipCheck>& kept = flipChecks_;
    kept.clear();
    movedPlanes_.clear();
    movedPlanesEdge_ = -1;
    bool flipSettled = false;
    const EdgeHot& E = edges_.at(static_cast<std::size_t>(edge));
    const std::int32_t* edgeTris = eTris_.begin(static_cast<std::size_t>(edge));
    const std::int32_t* edgeTrisEnd = eTris_.end(static_cast<std::size_t>(edge));
    const int ends[2] = {E.a, E.b};
    // The candidate's neighbourhood lies anywhere in the arrays, and this is the first to read
    // it: ask for all its triangles (and the edges keepsManifold reads next) at once, then for
    // their corners, rather than one record after the other as the walk comes to them.
    if (static_cast<std::size_t>(E.a) < pValid_.size() && static_cast<std::size_t>(E.b) < pValid_.size()) {
        for (const int end : ends) {
            const std::size_t pe = static_cast<std::size_t>(end);
            for (const std::int32_t* t = pTris_.begin(pe); t != pTris_.end(pe); ++t) __builtin_prefetch(&tris_[static_cast<std::size_t>(*t)]);
            for (const std::int32_t* e = pEdges_.begin(pe); e != pEdges_.end(pe); ++e) __builtin_prefetch(&edges_[static_cast<std::size_t>(*e)]);
        }
        for (const int end : ends) {
            const std::size_t pe = static_cast<std::size_t>(end);
            for (const std::int32_t* t = pTris_.begin(pe); t != pTris_.end(pe); ++t) {
                const TriHot& T = tris_[static_cast<std::size_t>(*t)];
                for (int k = 0; k < 3; ++k) __builtin_prefetch(pts_[static_cast<std::size_t>(T.pts[k])].xyz);
            }
        }
    }
    for (const int end : ends) { // the walk of anyMovedTri
        const std::size_t pe = static_cast<std::size_t>(end);
        if (pe >= pValid_.size()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
        for (const std::int32_t* t = pTris_.begin(pe); t != pTris_.end(pe); ++t) {
            const TriHot& T = tris_[static_cast<std::size_t>(*t)];
            if (!T.valid || std::find(edgeTris, edgeTrisEnd, *t) != edgeTrisEnd) continue;
            const double* c[3];
            std::int32_t ids[3];
            for (int k = 0; k < 3; ++k) {
                const bool moved = T.pts[k] == E.a || T.pts[k] == E.b;
                c[k] = moved ? E.nc : pts_[static_cast<std::size_t>(T.pts[k])].xyz;
                ids[k] = moved ? -1 : T.pts[k];
            }
            // degenerate(c), its tests of finiteness in one: a side that is not finite makes a
            // component of the cross product not finite (inf times a side's component is inf or
            // NaN, and so is any sum with it), so the components stand for all nine
            // Two lanes where two terms have the same shape, each lane the scalar term's
            // operations in order: with U = (y, z) and W = (z, x) of each corner, the sides'
            // (y, z) and (z, x) are differences of them, (x, y) of the cross product is
            // s1U * s2W - s1W * s2U, and PlaneFromPoints' (a, b) is
            // U1 * (W2 - W3) + U2 * (W3 - W1) + U3 * (W1 - W2).
            const v2d U0 = ld2(c[0] + 1), U1 = ld2(c[1] + 1), U2 = ld2(c[2] + 1);
            const v2d W0 = v2d{c[0][2], c[0][0]}, W1 = v2d{c[1][2], c[1][0]}, W2 = v2d{c[2][2], c[2][0]};
            const v2d s1U = U1 - U0, s1W = W1 - W0, s2U = U2 - U0, s2W = W2 - W0;
            const v2d xy = s1U * s2W - s1W * s2U;
            const double z = s1W[1] * s2U[0] - s1U[0] * s2W[1]; // s1x * s2y - s1y * s2x
            const v2d xy0 = xy * 0.0;
            if (!(xy0[0] + xy0[1] + z * 0.0 == 0.0)) vexil::raiseOverflow();
            if (xy[0] == 0.0 && xy[1] == 0.0 && z == 0.0) return true;
            if (flipSettled) continue;
            // flipCheck(T.plane, c): PlaneFromPoints, as the maths library writes it
            const double x1 = c[0][0], y1 = c[0][1], z1 = c[0][2];
            const double x2 = c[1][0], y2 = c[1][1], z2 = c[1][2];
            const double x3 = c[2][0], y3 = c[2][1], z3 = c[2][2];
            const v2d ab = U0 * (W1 - W2) + U1 * (W2 - W0) + U2 * (W0 - W1);
            const double a = ab[0], b = ab[1];
            const double cc = x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2);
            const double d = -(x1 * (y2 * z3 - y3 * z2) + x2 * (y3 * z1 - y1 * z3) + x3 * (y1 * z2 - y2 * z1));
            movedPlanes_.push_back(MovedPlane{*t, {ids[0], ids[1], ids[2]}, a, b, cc, d});
            FlipCheck::Kind kind = FlipCheck::Ask;
            const double* p = T.plane;
            if (!(a * 0.0 + b * 0.0 + cc * 0.0 + d * 0.0 == 0.0)) {
                kind = FlipCheck::Overflows;
            } else {
                // the negated normal n = -(a, b, cc): n[i] * n[i] is a * a
                const double la2 = a * a + b * b + cc * cc;
                const double lb2 = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
                if (la2 >= 1e-250 && la2 <= 1e250 && lb2 >= 1e-250 && lb2 <= 1e250) {
                    const double dot = -a * p[0] + -b * p[1] + -cc * p[2];
                    // a non-finite product makes the sum non-finite
                    if (!(dot * 0.0 == 0.0)) {
                        kind = FlipCheck::Overflows;
                    } else {
                        const double m = std::sqrt(la2) * std::sqrt(lb2);
                        if (dot <= -1e-6 * m) kind = FlipCheck::Flips;
                        else if (dot >= 1e-6 * m) kind = FlipCheck::Keeps;
                    }
                }
            }
            if (kind == FlipCheck::Keeps) continue;
            flipSettled = kind != FlipCheck::Ask;
            kept.push_back(FlipCheck{kind, {-a, -b, -cc}, p});
        }
    }
    for (const FlipCheck& f : kept)
        if (flips(f)) return true;
    movedPlanesEdge_ = edge; // (a settled flip answers or raises above) every moved triangle has its plane
    return false;
}

bool SurfSimpli::keepsManifold(int edge) {
    const std::size_t ei = static_cast<std::size_t>(edge);
    const EdgeHot& E = edges_.at(ei);
    // Triangles are counted only when the edge has exactly two entries; otherwise every count
    // is 0 and no pair can fail.
    if (eTris_.size(ei) != 2) return true;
    const int t1 = eTris_.at(ei, 0), t2 = eTris_.at(ei, 1);
    auto count = [&](int e) {
        int n = 0;
        const std::size_t x = static_cast<std::size_t>(e);
        for (const std::int32_t* t = eTris_.begin(x); t != eTris_.end(x); ++t)
            if (tris_[static_cast<std::size_t>(*t)].valid && *t != t1 && *t != t2) ++n;
        return n;
    };
    const std::size_t pa = static_cast<std::size_t>(E.a), pb = static_cast<std::size_t>(E.b);
    // B's valid edges (other than this one) with their ends, read once: the pairs are then
    // matched without going back to the records (the answer does not depend on the order in
    // which the pairs are tried)
    std::vector<EdgeEnds>& bs = edgeEnds_;
    bs.clear();
    for (const std::int32_t* bp = pEdges_.begin(pb); bp != pEdges_.end(pb); ++bp) {
        if (*bp == edge) continue;
        const EdgeHot& B = edges_[static_cast<std::size_t>(*bp)];
        if (B.valid) bs.push_back(EdgeEnds{*bp, B.a, B.b});
    }
    for (const std::int32_t* ap = pEdges_.begin(pa); ap != pEdges_.end(pa); ++ap) {
        const int a = *ap;
        if (a == edge) continue;
        const EdgeHot& A = edges_[static_cast<std::size_t>(a)];
        if (!A.valid) continue;
        int far;
        if (A.a != E.a && A.a != E.b) far = A.a;
        else if (A.b != E.a && A.b != E.b) far = A.b;
        else continue; // both ends on this edge: they do not meet
        int ca = -1;
        for (const EdgeEnds& b : bs) {
            if (b.a != far && b.b != far) continue;
            if (ca < 0) ca = count(a);
            if (ca + count(b.edge) > 2) return false;
        }
    }
    return true;
}

} // namespace simplify
