// The records' own order. A contraction reads and writes one neighbourhood: a point, its
// neighbours, their edges and triangles, and the far ends of those edges. In the order
// extraction makes them these lie anywhere in the arrays; renumbered here (points along a
// Morton curve through their positions, edges by their lower end, triangles by their lowest
// corner) a neighbourhood takes a few runs of neighbouring cache lines. The design's indices
// stay at the interface (docs/simplify.md, "How the model is stored").
#include "simplify/SurfSimpli.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace simplify {

namespace {

// Spreads the low 21 bits of v to every third bit.
std::uint64_t spread3(std::uint64_t v) {
    v &= 0x1fffff;
    v = (v | v << 32) & 0x1f00000000ffffULL;
    v = (v | v << 16) & 0x1f0000ff0000ffULL;
    v = (v | v << 8) & 0x100f00f00f00f00fULL;
    v = (v | v << 4) & 0x10c30c30c30c30c3ULL;
    v = (v | v << 2) & 0x1249249249249249ULL;
    return v;
}

// Records grouped by a key from 0 to keys - 1, in their present order within a key: answers the
// old record number of each new one (slot 0 stays 0).
template <class Key>
std::vector<std::int32_t> countingOrder(std::size_t records, std::size_t keys, Key key) {
    std::vector<std::int32_t> start(keys + 1, 0);
    for (std::size_t i = 1; i < records; ++i) ++start[static_cast<std::size_t>(key(i)) + 1];
    for (std::size_t k = 0; k < keys; ++k) start[k + 1] += start[k];
    std::vector<std::int32_t> order(records, 0);
    for (std::size_t i = 1; i < records; ++i) order[static_cast<std::size_t>(1 + start[static_cast<std::size_t>(key(i))]++)] = static_cast<std::int32_t>(i);
    return order;
}

std::vector<std::int32_t> inverse(const std::vector<std::int32_t>& order) {
    std::vector<std::int32_t> of(order.size(), 0);
    for (std::size_t i = 0; i < order.size(); ++i) of[static_cast<std::size_t>(order[i])] = static_cast<std::int32_t>(i);
    return of;
}

template <class T, class A> void permute(std::vector<T, A>& v, const std::vector<std::int32_t>& order) {
    std::vector<T, A> out;
    out.reserve(order.size());
    for (const std::int32_t i : order) out.push_back(v[static_cast<std::size_t>(i)]);
    v.swap(out);
}

// The design index of each new record, and the new record of each design index.
void composeMaps(std::vector<std::int32_t>& extOf, std::vector<std::int32_t>& inOf, const std::vector<std::int32_t>& order) {
    permute(extOf, order);
    for (std::size_t i = 0; i < extOf.size(); ++i) inOf[static_cast<std::size_t>(extOf[i])] = static_cast<std::int32_t>(i);
}

} // namespace

void SurfSimpli::renumberForLocality() {
    leaveListMode(); // the model is read: a late AddEdgeOfTri uses the index
    const std::size_t points = pValid_.size(), edges = edges_.size(), tris = tris_.size();
    if (!RenumberRecords || points < 3) {
        pTris_.compact();
        pEdges_.compact();
        eTris_.compact();
        return;
    }
    // points: Morton order of their positions in the box of the finite ones
    double lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
    bool any = false;
    for (std::size_t p = 1; p < points; ++p) {
        const double* c = pts_[p].xyz;
        if (!std::isfinite(c[0]) || !std::isfinite(c[1]) || !std::isfinite(c[2])) continue;
        for (int k = 0; k < 3; ++k) {
            lo[k] = any ? std::min(lo[k], c[k]) : c[k];
            hi[k] = any ? std::max(hi[k], c[k]) : c[k];
        }
        any = true;
    }
    std::vector<std::pair<std::uint64_t, std::int32_t>> keyed;
    keyed.reserve(points - 1);
    for (std::size_t p = 1; p < points; ++p) {
        const double* c = pts_[p].xyz;
        std::uint64_t key = 0;
        for (int k = 0; k < 3; ++k) {
            const double extent = hi[k] - lo[k];
            double f = extent > 0 && std::isfinite(c[k]) ? (c[k] - lo[k]) / extent : 0.0;
            f = std::clamp(f, 0.0, 1.0);
            key |= spread3(static_cast<std::uint64_t>(f * 2097151.0)) << k;
        }
        keyed.emplace_back(key, static_cast<std::int32_t>(p));
    }
    std::sort(keyed.begin(), keyed.end());
    std::vector<std::int32_t> ptOrder(points, 0);
    for (std::size_t i = 0; i < keyed.size(); ++i) ptOrder[i + 1] = keyed[i].second;
    std::vector<std::pair<std::uint64_t, std::int32_t>>().swap(keyed);
    const std::vector<std::int32_t> newPt = inverse(ptOrder);

    // edges by their lower end, triangles by their lowest corner
    const std::vector<std::int32_t> edgeOrder = countingOrder(edges, points, [&](std::size_t e) {
        const EdgeHot& E = edges_[e];
        return std::min(newPt[static_cast<std::size_t>(E.a)], newPt[static_cast<std::size_t>(E.b)]);
    });
    const std::vector<std::int32_t> triOrder = countingOrder(tris, points, [&](std::size_t t) {
        const TriHot& T = tris_[t];
        return std::min({newPt[static_cast<std::size_t>(T.pts[0])], newPt[static_cast<std::size_t>(T.pts[1])],
                         newPt[static_cast<std::size_t>(T.pts[2])]});
    });
    const std::vector<std::int32_t> newEdge = inverse(edgeOrder), newTri = inverse(triOrder);
    auto np = [&](std::int32_t p) { return newPt[static_cast<std::size_t>(p)]; };
    auto ne = [&](std::int32_t e) { return newEdge[static_cast<std::size_t>(e)]; };
    auto nt = [&](std::int32_t t) { return newTri[static_cast<std::size_t>(t)]; };

    permute(pValid_, ptOrder);
    permute(pts_, ptOrder);
    permute(pBright_, ptOrder);
    permute(pNormal_, ptOrder);
    // A kept point's lists take in the gone point's: with room for four more entries, few of
    // them move to the end of their pool (where a neighbourhood's lists would scatter).
    pTris_ = pTris_.reordered(ptOrder, nt, 4);
    pEdges_ = pEdges_.reordered(ptOrder, ne, 4);

    permute(edges_, edgeOrder);
    for (EdgeHot& E : edges_) {
        E.a = np(E.a);
        E.b = np(E.b);
    }
    eTris_ = eTris_.reordered(edgeOrder, nt);

    permute(tris_, triOrder);
    for (TriHot& T : tris_)
        for (int k = 0; k < 3; ++k) {
            T.pts[k] = np(T.pts[k]);
            T.edges[k] = ne(T.edges[k]);
        }
    permute(tUV_, triOrder);
    permute(tBitmap_, triOrder);
    permute(tBright_, triOrder);
    permute(tColor_, triOrder);

    composeMaps(extOfPt_, ptOfExt_, ptOrder);
    composeMaps(extOfEdge_, edgeOfExt_, edgeOrder);
    composeMaps(extOfTri_, triOfExt_, triOrder);

    // everything kept by record number starts afresh
    selectedMark_.clear();
    affectedPts_.clear();
    affectedEdges_.clear();
    pointIndexDirty_ = true;
    edgeIndexDirty_ = true;
    heapDirty_ = true;
}

} // namespace simplify
