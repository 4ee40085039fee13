// Extraction: the group's triangles are read into arrays first, then the model is made from them
// at once, in the records' own order, instead of triangle by triangle and renumbered afterwards.
// The result is the same, record for record and list for list (tests/simplify/ExtractionTests):
//   - a point is made by the first corner at its position, in corner order (the bucket scan's
//     first match; -0.0 and 0.0 are one position), and lists its triangles in corner order;
//   - an edge is made by the first of the corner pairs 1-2, 2-3, 3-1 of the triangles, in
//     order, that joins its two points either way (AddEdgeOfTri's search), has the ends of that
//     pair, lists its triangles in pair order and is listed by its ends in the order of edges;
//   - then the records are put in the order renumberForLocality gives them.
// An input with a corner that is not a finite number, and a model that is not fresh, are left to
// AddTriangle.
#include "simplify/SurfSimpli.h"

#include "simplify/RecordOrder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace simplify {

namespace {

std::uint64_t keyBits(double v) { return std::bit_cast<std::uint64_t>(v == 0.0 ? 0.0 : v); } // -0.0 == 0.0

std::uint32_t positionHash(const double c[3]) {
    std::uint64_t h = keyBits(c[0]) * 0x9E3779B97F4A7C15ULL;
    h = (h ^ (h >> 29) ^ keyBits(c[1])) * 0xBF58476D1CE4E5B9ULL;
    h = (h ^ (h >> 31) ^ keyBits(c[2])) * 0x94D049BB133111EBULL;
    return static_cast<std::uint32_t>(h ^ (h >> 32));
}

int octantOf(const double c[3], const double centre[3]) {
    return (c[0] < centre[0] ? 0 : 1) | (c[1] < centre[1] ? 0 : 2) | (c[2] < centre[2] ? 0 : 4);
}

template <class V> std::size_t bytesOf(const V& v) { return v.capacity() * sizeof(typename V::value_type); }

std::vector<std::int32_t> identity(std::size_t n) {
    std::vector<std::int32_t> v(n);
    for (std::size_t i = 0; i < n; ++i) v[i] = static_cast<std::int32_t>(i);
    return v;
}

constexpr int kNext[3] = {1, 2, 0}; // the pairs of AddTriangle: corners 1-2, 2-3, 3-1

} // namespace

std::size_t SurfSimpli::ReadTris::bytes() const {
    return bytesOf(xyz) + bytesOf(bn) + bytesOf(uv) + bytesOf(plane) + bytesOf(bitmap) + bytesOf(bright) + bytesOf(color);
}

void SurfSimpli::readGroup(int group, int count, ReadTris& in) {
    const std::size_t expected = count > 0 ? static_cast<std::size_t>(count) : 0;
    in.xyz.reserve(expected * 3);
    in.bn.reserve(expected * 3);
    in.uv.reserve(expected);
    in.plane.reserve(expected);
    in.bitmap.reserve(expected);
    in.bright.reserve(expected);
    in.color.reserve(expected);
    constexpr int kChunk = 256;
    std::vector<SimplifyTriangle> chunk(kChunk);
    int done = 0;
    for (int pol = engine_->group_get_first_polygon(group); pol != 0;) {
        const int got = engine_->read_triangles(pol, chunk.data(), kChunk);
        if (got <= 0) break;
        for (int i = 0; i < got; ++i) {
            const SimplifyTriangle& r = chunk[static_cast<std::size_t>(i)];
            for (const auto& c : r.corners) {
                in.xyz.push_back(Vec3{c[0], c[1], c[2]});
                in.bn.push_back({c[5], c[6], c[7], c[8]});
            }
            in.uv.push_back({r.corners[0][3], r.corners[0][4], r.corners[1][3], r.corners[1][4], r.corners[2][3], r.corners[2][4]});
            in.plane.push_back({r.plane[0], r.plane[1], r.plane[2], r.plane[3]});
            in.bitmap.push_back(r.bitmap);
            in.bright.push_back(r.brightness);
            in.color.push_back({r.color[0], r.color[1], r.color[2]});
            ++done;
            if (progress_) progress_->setValue(done);
        }
    }
}

void SurfSimpli::addReadTriangles(const ReadTris& in) {
    const std::size_t expected = in.plane.size();
    const std::size_t points = expected / 2 + 16, edges = expected * 3 / 2 + 16;
    tris_.reserve(expected + 1);
    tUV_.reserve(expected + 1);
    tBitmap_.reserve(expected + 1);
    tBright_.reserve(expected + 1);
    tColor_.reserve(expected + 1);
    edges_.reserve(edges);
    eTris_.reserve(edges, edges * 2 + 64);
    pValid_.reserve(points);
    pts_.reserve(points);
    pBright_.reserve(points);
    pNormal_.reserve(points);
    // a point has about six triangles and six edges: room for eight at once, one block each
    for (ListPool* pool : {&pTris_, &pEdges_, &pFar_}) pool->setFirstRoom(8);
    pTris_.reserve(points, points * 8);
    pEdges_.reserve(points, points * 8);
    if (edgesInLists_) pFar_.reserve(points, points * 8);
    pointIndex_.reserve(points);
    if (!edgesInLists_) edgeIndex_.reserve(edges);
    // While one triangle is added, the index slots of the corners a few triangles on are on
    // their way in.
    constexpr std::size_t kAhead = 8;
    const std::size_t n = expected;
    for (std::size_t t = 0; t < kAhead && t < n; ++t)
        for (std::size_t k = 0; k < 3; ++k) prefetchPoint(in.xyz[t * 3 + k].data());
    double c[3][9];
    for (std::size_t t = 0; t < n; ++t) {
        if (t + kAhead < n)
            for (std::size_t k = 0; k < 3; ++k) prefetchPoint(in.xyz[(t + kAhead) * 3 + k].data());
        for (std::size_t k = 0; k < 3; ++k) {
            const Vec3& x = in.xyz[t * 3 + k];
            const auto& b = in.bn[t * 3 + k];
            c[k][0] = x[0];
            c[k][1] = x[1];
            c[k][2] = x[2];
            c[k][3] = in.uv[t][k * 2];
            c[k][4] = in.uv[t][k * 2 + 1];
            c[k][5] = b[0];
            c[k][6] = b[1];
            c[k][7] = b[2];
            c[k][8] = b[3];
        }
        AddTriangle(c[0], c[1], c[2], in.plane[t].data(), in.bitmap[t], in.bright[t], in.color[t].data());
    }
}

bool SurfSimpli::buildWhole(ReadTris& in) {
    const std::size_t n = in.plane.size(), corners = n * 3;
    // a fresh model only (Reset, nothing added), and at most what 32-bit indices can number
    if (n == 0 || corners >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) || TriCount() != 0 ||
        PointCount() != 0 || EdgeCount() != 0 || !edgesInLists_)
        return false;
    for (const auto& b : buckets_)
        if (!b.empty()) return false;
    // a NaN corner never matches (and an infinite one falls outside the Morton box): one by one
    for (const Vec3& x : in.xyz)
        if (!std::isfinite(x[0]) || !std::isfinite(x[1]) || !std::isfinite(x[2])) return false;

    // ---- points: each corner takes the point of the first corner at its position ----
    std::vector<std::uint32_t> hash(corners);
    for (std::size_t c = 0; c < corners; ++c) hash[c] = positionHash(in.xyz[c].data());
    std::size_t cap = 16;
    while (cap < (n / 2 + 16) * 2) cap *= 2;
    std::vector<std::int32_t> table(cap, 0);
    std::size_t mask = cap - 1;
    std::vector<Vec3> pos(1, Vec3{0, 0, 0});         // design point -> its position (its first corner's)
    std::vector<std::uint32_t> posHash(1, 0);
    std::vector<std::int32_t> last(1, 0);             // design point -> its last corner
    std::vector<std::uint32_t> cornersOf(1, 0);       // design point -> its number of corners
    for (auto* v : {&last}) v->reserve(n / 2 + 16);
    pos.reserve(n / 2 + 16);
    posHash.reserve(n / 2 + 16);
    cornersOf.reserve(n / 2 + 16);
    std::vector<std::int32_t> pid(corners);           // corner -> design point
    constexpr std::size_t kAhead = 32;
    for (std::size_t c = 0; c < corners; ++c) {
        if (c + kAhead < corners) __builtin_prefetch(&table[hash[c + kAhead] & mask]);
        const double* x = in.xyz[c].data();
        std::size_t i = hash[c] & mask;
        std::int32_t p;
        for (;; i = (i + 1) & mask) {
            p = table[i];
            if (p == 0) {
                p = static_cast<std::int32_t>(pos.size());
                table[i] = p;
                pos.push_back(Vec3{x[0], x[1], x[2]});
                posHash.push_back(hash[c]);
                last.push_back(0);
                cornersOf.push_back(0);
                if (pos.size() * 2 > cap) { // keep the table at most half full
                    cap *= 2;
                    mask = cap - 1;
                    table.assign(cap, 0);
                    for (std::size_t q = 1; q < pos.size(); ++q) {
                        std::size_t j = posHash[q] & mask;
                        while (table[j] != 0) j = (j + 1) & mask;
                        table[j] = static_cast<std::int32_t>(q);
                    }
                }
                break;
            }
            const Vec3& y = pos[static_cast<std::size_t>(p)];
            if (y[0] == x[0] && y[1] == x[1] && y[2] == x[2]) break;
        }
        pid[c] = p;
        last[static_cast<std::size_t>(p)] = static_cast<std::int32_t>(c);
        ++cornersOf[static_cast<std::size_t>(p)];
    }
    const std::size_t points = pos.size(); // with slot 0
    notePeak(in.bytes() + bytesOf(hash) + bytesOf(table) + bytesOf(pos) + bytesOf(posHash) + bytesOf(last) +
             bytesOf(cornersOf) + bytesOf(pid));
    std::vector<std::uint32_t>().swap(hash);
    std::vector<std::int32_t>().swap(table);
    std::vector<std::uint32_t>().swap(posHash);
    std::vector<Vec3>().swap(in.xyz);

    // ---- edges: the pairs in AddTriangle's order; slot 3 t + j joins corners j and j + 1 ----
    // Slots grouped by their lower point (counting sort, slot order kept), then by the other.
    struct Pair {
        std::int32_t hi, slot;
    };
    std::vector<std::int32_t> at(points + 1, 0);
    for (std::size_t t = 0; t < n; ++t)
        for (int j = 0; j < 3; ++j)
            ++at[static_cast<std::size_t>(std::min(pid[t * 3 + static_cast<std::size_t>(j)], pid[t * 3 + static_cast<std::size_t>(kNext[j])])) + 1];
    for (std::size_t p = 0; p < points; ++p) at[p + 1] += at[p];
    std::vector<Pair> byLow(corners);
    for (std::size_t t = 0; t < n; ++t)
        for (int j = 0; j < 3; ++j) {
            const std::int32_t a = pid[t * 3 + static_cast<std::size_t>(j)], b = pid[t * 3 + static_cast<std::size_t>(kNext[j])];
            byLow[static_cast<std::size_t>(at[static_cast<std::size_t>(std::min(a, b))]++)] =
                Pair{std::max(a, b), static_cast<std::int32_t>(t * 3 + static_cast<std::size_t>(j))};
        }
    // es: first the first slot of the same pair of points, then the design edge of each slot
    std::vector<std::int32_t> es(corners);
    for (std::size_t p = 1, from = static_cast<std::size_t>(at[0]); p < points; from = static_cast<std::size_t>(at[p]), ++p) {
        const std::size_t to = static_cast<std::size_t>(at[p]);
        if (to - from <= 32) {
            for (std::size_t i = from; i < to; ++i) {
                std::int32_t first = byLow[i].slot;
                for (std::size_t k = from; k < i; ++k)
                    if (byLow[k].hi == byLow[i].hi) {
                        first = byLow[k].slot;
                        break;
                    }
                es[static_cast<std::size_t>(byLow[i].slot)] = first;
            }
        } else { // a point with many triangles: sorted by (other point, slot)
            std::sort(byLow.begin() + static_cast<std::ptrdiff_t>(from), byLow.begin() + static_cast<std::ptrdiff_t>(to),
                      [](const Pair& x, const Pair& y) { return x.hi != y.hi ? x.hi < y.hi : x.slot < y.slot; });
            for (std::size_t i = from; i < to; ++i)
                es[static_cast<std::size_t>(byLow[i].slot)] = i > from && byLow[i - 1].hi == byLow[i].hi
                                                                  ? es[static_cast<std::size_t>(byLow[i - 1].slot)]
                                                                  : byLow[i].slot;
        }
    }
    std::vector<Pair>().swap(byLow);
    std::vector<std::int32_t>().swap(at);
    // numbered by their first slot; an edge has the ends of that slot's pair
    std::vector<std::int32_t> ea(1, 0), eb(1, 0);
    ea.reserve(corners / 2 + 16);
    eb.reserve(corners / 2 + 16);
    for (std::size_t t = 0; t < n; ++t)
        for (int j = 0; j < 3; ++j) {
            const std::size_t s = t * 3 + static_cast<std::size_t>(j);
            const std::int32_t first = es[s];
            if (static_cast<std::size_t>(first) == s) {
                es[s] = static_cast<std::int32_t>(ea.size());
                ea.push_back(pid[s]);
                eb.push_back(pid[t * 3 + static_cast<std::size_t>(kNext[j])]);
            } else {
                es[s] = es[static_cast<std::size_t>(first)];
            }
        }
    const std::size_t edges = ea.size(); // with slot 0

    // ---- the records' own order (renumberForLocality) ----
    const bool renumber = RenumberRecords && points >= 3;
    std::vector<std::int32_t> ptOrder = renumber ? order::mortonOrder(points, [&](std::size_t p) { return pos[p].data(); }) : identity(points);
    std::vector<std::int32_t> newPt = order::inverse(ptOrder);
    std::vector<std::int32_t> edgeOrder = renumber ? order::countingOrder(edges, points, [&](std::size_t e) {
        return std::min(newPt[static_cast<std::size_t>(ea[e])], newPt[static_cast<std::size_t>(eb[e])]);
    }) : identity(edges);
    std::vector<std::int32_t> triOrder = renumber ? order::countingOrder(n + 1, points, [&](std::size_t t) {
        const std::size_t c = (t - 1) * 3;
        return std::min({newPt[static_cast<std::size_t>(pid[c])], newPt[static_cast<std::size_t>(pid[c + 1])],
                         newPt[static_cast<std::size_t>(pid[c + 2])]});
    }) : identity(n + 1);
    std::vector<std::int32_t> newEdge = order::inverse(edgeOrder), newTri = order::inverse(triOrder);
    auto np = [&](std::int32_t p) { return newPt[static_cast<std::size_t>(p)]; };
    auto ne = [&](std::int32_t e) { return newEdge[static_cast<std::size_t>(e)]; };
    // A kept point's lists take in the gone point's: room for four more entries when renumbered
    // (as renumberForLocality leaves them), packed otherwise (as compact does).
    const std::uint32_t slack = renumber ? 4 : 0;

    // ---- points ----
    {
        BigVector<std::uint8_t> valid(points, 1);
        valid[0] = 0;
        pValid_.swap(valid);
        BigVector<PointHot> hot;
        BigVector<double> bright;
        BigVector<Vec3> normal;
        hot.reserve(points);
        bright.reserve(points);
        normal.reserve(points);
        hot.push_back(PointHot{});
        bright.push_back(0.0);
        normal.push_back(Vec3{0, 0, 0});
        for (std::size_t i = 1; i < points; ++i) {
            const std::size_t p = static_cast<std::size_t>(ptOrder[i]);
            hot.push_back(PointHot{{}, {}, {pos[p][0], pos[p][1], pos[p][2]}});
            const auto& b = in.bn[static_cast<std::size_t>(last[p])]; // the last corner's, as AddTriangle leaves it
            bright.push_back(b[0]);
            normal.push_back(Vec3{b[1], b[2], b[3]});
        }
        pts_.swap(hot);
        pBright_.swap(bright);
        pNormal_.swap(normal);
    }
    std::vector<std::array<double, 4>>().swap(in.bn);
    // triangles of each point, in corner order
    ListPool ptTris, ptEdges, edgeTris;
    ptTris.shape(points, [&](std::size_t i) { return cornersOf[static_cast<std::size_t>(ptOrder[i])]; }, slack);
    for (std::size_t c = 0; c < corners; ++c) ptTris.fill(static_cast<std::size_t>(np(pid[c])), newTri[c / 3 + 1]);
    // edges of each point (once for an edge from a point to itself), in the order of the edges
    std::vector<std::uint32_t> degree(points, 0);
    for (std::size_t e = 1; e < edges; ++e) {
        ++degree[static_cast<std::size_t>(ea[e])];
        if (eb[e] != ea[e]) ++degree[static_cast<std::size_t>(eb[e])];
    }
    ptEdges.shape(points, [&](std::size_t i) { return degree[static_cast<std::size_t>(ptOrder[i])]; }, slack);
    for (std::size_t e = 1; e < edges; ++e) {
        ptEdges.fill(static_cast<std::size_t>(np(ea[e])), newEdge[e]);
        if (eb[e] != ea[e]) ptEdges.fill(static_cast<std::size_t>(np(eb[e])), newEdge[e]);
    }
    std::vector<std::uint32_t>().swap(degree);
    // triangles of each edge, in the order of the slots
    std::vector<std::uint32_t> slotsOf(edges, 0);
    for (std::size_t s = 0; s < corners; ++s) ++slotsOf[static_cast<std::size_t>(es[s])];
    edgeTris.shape(edges, [&](std::size_t i) { return slotsOf[static_cast<std::size_t>(edgeOrder[i])]; }, 0);
    for (std::size_t s = 0; s < corners; ++s) edgeTris.fill(static_cast<std::size_t>(ne(es[s])), newTri[s / 3 + 1]);
    std::vector<std::uint32_t>().swap(slotsOf);
    if (!renumber) { // as compact leaves the pools of a group read one by one
        ptTris.setFirstRoom(8);
        ptEdges.setFirstRoom(8);
    }
    pTris_ = std::move(ptTris);
    pEdges_ = std::move(ptEdges);
    eTris_ = std::move(edgeTris);

    // ---- edges ----
    {
        BigVector<EdgeHot> hot;
        hot.reserve(edges);
        hot.push_back(EdgeHot{0, 0, 0.0, {0, 0, 0}, false, false});
        for (std::size_t i = 1; i < edges; ++i) {
            const std::size_t e = static_cast<std::size_t>(edgeOrder[i]);
            hot.push_back(EdgeHot{np(ea[e]), np(eb[e]), 0.0, {0, 0, 0}, true, false});
        }
        edges_.swap(hot);
    }

    // ---- triangles ----
    {
        const std::size_t tris = n + 1;
        BigVector<TriHot> hot;
        BigVector<std::array<double, 6>> uv;
        BigVector<std::int32_t> bitmap;
        BigVector<double> bright;
        BigVector<std::array<std::int32_t, 3>> color;
        hot.reserve(tris);
        uv.reserve(tris);
        bitmap.reserve(tris);
        bright.reserve(tris);
        color.reserve(tris);
        hot.push_back(TriHot{});
        uv.push_back({});
        bitmap.push_back(0);
        bright.push_back(0.0);
        color.push_back({0, 0, 0});
        for (std::size_t i = 1; i < tris; ++i) {
            const std::size_t t = static_cast<std::size_t>(triOrder[i]) - 1, c = t * 3;
            TriHot T{};
            for (int k = 0; k < 4; ++k) T.plane[k] = in.plane[t][static_cast<std::size_t>(k)];
            for (std::size_t k = 0; k < 3; ++k) {
                T.pts[k] = np(pid[c + k]);
                T.edges[k] = ne(es[c + k]);
            }
            T.valid = true;
            hot.push_back(T);
            uv.push_back(in.uv[t]);
            bitmap.push_back(in.bitmap[t]);
            bright.push_back(in.bright[t]);
            color.push_back(in.color[t]);
        }
        tris_.swap(hot);
        tUV_.swap(uv);
        tBitmap_.swap(bitmap);
        tBright_.swap(bright);
        tColor_.swap(color);
    }

    // ---- the buckets of the simplification mesh: each point by its first corner, in order ----
    std::array<std::size_t, 8> inOctant{};
    std::vector<std::uint8_t> octant(points, 0);
    for (std::size_t p = 1; p < points; ++p) ++inOctant[static_cast<std::size_t>(octant[p] = static_cast<std::uint8_t>(octantOf(pos[p].data(), octantCentre_)))];
    for (std::size_t o = 0; o < 8; ++o) buckets_[o].reserve(inOctant[o]);
    for (std::size_t p = 1; p < points; ++p) {
        SimpBucketEntry entry;
        entry.Point = static_cast<std::int32_t>(p);
        for (std::size_t k = 0; k < 3; ++k) entry.Coords[k] = pos[p][k];
        buckets_[octant[p]].push_back(entry);
    }

    notePeak(in.bytes() + bytesOf(pos) + bytesOf(last) + bytesOf(cornersOf) + bytesOf(pid) + bytesOf(es) + bytesOf(ea) +
             bytesOf(eb) + bytesOf(octant) + (bytesOf(ptOrder) + bytesOf(newPt)) + bytesOf(edgeOrder) + bytesOf(newEdge) +
             bytesOf(triOrder) + bytesOf(newTri));
    extOfPt_ = std::move(ptOrder);
    ptOfExt_ = std::move(newPt);
    extOfEdge_ = std::move(edgeOrder);
    edgeOfExt_ = std::move(newEdge);
    extOfTri_ = std::move(triOrder);
    triOfExt_ = std::move(newTri);

    // the state AddTriangle, dropIndexes and renumberForLocality leave
    pristine_ = false;
    edgesInLists_ = false;
    pFar_ = ListPool{};
    pointIndex_.release();
    pointIndexDirty_ = true;
    edgeIndex_.release();
    edgeIndexDirty_ = true;
    heapDirty_ = true;
    if (renumber) {
        selectedMark_.clear();
        affectedPts_.clear();
        affectedEdges_.clear();
    }
    return true;
}

} // namespace simplify
