// The records' own order. A contraction reads and writes one neighbourhood: a point, its
// neighbours, their edges and triangles, and the far ends of those edges. In the order
// extraction makes them these lie anywhere in the arrays; renumbered here (points along a
// Morton curve through their positions, edges by their lower end, triangles by their lowest
// corner) a neighbourhood takes a few runs of neighbouring cache lines. The design's indices
// stay at the interface (docs/simplify.md, "How the model is stored").
#include "simplify/SurfSimpli.h"

#include "simplify/RecordOrder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace simplify {

namespace {

using order::countingOrder;
using order::inverse;

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
    const std::vector<std::int32_t> ptOrder = order::mortonOrder(points, [&](std::size_t p) { return pts_[p].xyz; });
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
