// Extraction. A fresh model is made in one pass over the group's triangles (a few hundred at a
// time as the engine gives them: each corner finds its point, each pair of corners its edge, by
// compact tables), then every array and list is written once, in the records' own order,
// instead of triangle by triangle and renumbered afterwards. The result is the same, record for
// record and list for list (tests/simplify/ExtractionTests):
//   - a point is made by the first corner at its position, in corner order (the bucket scan's
//     first match; -0.0 and 0.0 are one position), and lists its triangles in corner order;
//   - an edge is made by the first of the corner pairs 1-2, 2-3, 3-1 of the triangles, in
//     order, that joins its two points either way (AddEdgeOfTri's search), has the ends of that
//     pair, lists its triangles in pair order and is listed by its ends in the order of edges;
//   - then the records are put in the order renumberForLocality gives them.
// A corner with a NaN coordinate never matches (the scan's comparisons fail): it always makes a
// point of its own. A model that is not fresh (Reset, nothing added) is built by AddTriangle.
#include "simplify/SurfSimpli.h"

#include "simplify/RecordOrder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>

namespace simplify {

namespace {

// The same for -0.0 and 0.0 (x + 0.0 is 0.0 for both and x for every other value).
std::uint32_t positionHash(const double c[3]) {
    std::uint64_t h = std::bit_cast<std::uint64_t>(c[0] + 0.0) * 0x9E3779B97F4A7C15ULL;
    h = (h ^ (h >> 29) ^ std::bit_cast<std::uint64_t>(c[1] + 0.0)) * 0xBF58476D1CE4E5B9ULL;
    h = (h ^ (h >> 31) ^ std::bit_cast<std::uint64_t>(c[2] + 0.0)) * 0x94D049BB133111EBULL;
    return static_cast<std::uint32_t>(h ^ (h >> 32));
}

std::uint32_t pairHash(std::int32_t lo, std::int32_t hi) {
    const std::uint64_t k = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(lo)) << 32) | static_cast<std::uint32_t>(hi);
    const std::uint64_t h = k * 0x9E3779B97F4A7C15ULL;
    return static_cast<std::uint32_t>(h >> 32);
}

// An open-addressing table of record numbers (0: empty), at most half full.
struct Slots {
    std::vector<std::int32_t> at;
    std::size_t mask = 0;
    explicit Slots(std::size_t expected) {
        std::size_t cap = 16;
        while (cap < expected * 2) cap *= 2;
        at.assign(cap, 0);
        mask = cap - 1;
    }
    // Makes room when `records` (with slot 0) passes half the table: every record again by its hash.
    template <class Hash> void grow(std::size_t records, Hash hash) {
        if (records * 2 <= at.size()) return;
        at.assign(at.size() * 2, 0);
        mask = at.size() - 1;
        for (std::size_t r = 1; r < records; ++r) {
            std::size_t i = hash(r) & mask;
            while (at[i] != 0) i = (i + 1) & mask;
            at[i] = static_cast<std::int32_t>(r);
        }
    }
};

int octantOf(const double c[3], const double centre[3]) {
    return (c[0] < centre[0] ? 0 : 1) | (c[1] < centre[1] ? 0 : 2) | (c[2] < centre[2] ? 0 : 4);
}

template <class V> std::size_t bytesOf(const V& v) { return v.capacity() * sizeof(typename V::value_type); }

std::vector<std::int32_t> identity(std::size_t n) {
    std::vector<std::int32_t> v(n);
    for (std::size_t i = 0; i < n; ++i) v[i] = static_cast<std::int32_t>(i);
    return v;
}

// A scratch array whose room is not cleared: every entry is written before it is read.
template <class T> class Scratch {
public:
    // Room for n entries, keeping the first `used`.
    void grow(std::size_t n, std::size_t used) {
        if (n <= room_) return;
        std::unique_ptr<T[]> more = std::make_unique_for_overwrite<T[]>(n);
        std::copy(data_.get(), data_.get() + used, more.get());
        data_ = std::move(more);
        room_ = n;
    }
    std::size_t room() const { return room_; }
    std::size_t bytes() const { return room_ * sizeof(T); }
    T* data() { return data_.get(); }
    T& operator[](std::size_t i) { return data_[i]; }
    const T& operator[](std::size_t i) const { return data_[i]; }

private:
    std::unique_ptr<T[]> data_;
    std::size_t room_ = 0;
};

constexpr int kNext[3] = {1, 2, 0}; // the pairs of AddTriangle: corners 1-2, 2-3, 3-1

} // namespace

void SurfSimpli::extractByTriangles(int group, int count) {
    const std::size_t expected = count > 0 ? static_cast<std::size_t>(count) : 0;
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
    // The triangles are read a few hundred at a time, then added in the same order: while
    // one is added, the index slots of the corners a few triangles on are on their way in.
    constexpr int kChunk = 256;
    constexpr std::size_t kAhead = 8;
    std::vector<SimplifyTriangle> chunk(kChunk);
    int done = 0;
    for (int pol = engine_->group_get_first_polygon(group); pol != 0;) {
        const int got = engine_->read_triangles(pol, chunk.data(), kChunk);
        if (got <= 0) break;
        const std::size_t n = static_cast<std::size_t>(got);
        for (std::size_t i = 0; i < kAhead && i < n; ++i)
            for (const auto& c : chunk[i].corners) prefetchPoint(c);
        for (std::size_t i = 0; i < n; ++i) {
            if (i + kAhead < n)
                for (const auto& c : chunk[i + kAhead].corners) prefetchPoint(c);
            SimplifyTriangle& r = chunk[i];
            AddTriangle(r.corners[0], r.corners[1], r.corners[2], r.plane, r.bitmap, r.brightness, r.color);
            ++done;
            if (progress_) progress_->setValue(done);
        }
    }
    if (progress_) progress_->setValue(0);
    notePeak();
    dropIndexes();
    // the records in an order of their own, with the lists packed, before the copy is made
    renumberForLocality();
}

bool SurfSimpli::extractWhole(int group, int count) {
    // a fresh model only: nothing added, contracted or restored since Reset
    if (!WholeExtraction || TriCount() != 0 || PointCount() != 0 || EdgeCount() != 0 || !edgesInLists_) return false;
    for (const auto& b : buckets_)
        if (!b.empty()) return false;
    const std::size_t expected = count > 0 ? static_cast<std::size_t>(count) : 0;
    const std::size_t expectPoints = expected / 2 + 16, expectEdges = expected * 3 / 2 + 16;

    // per triangle, in the design's order (corner k of triangle t at 3 t + k, its pair k at 3 t + k)
    // what a triangle's records take from the engine, together: they are gathered in the records'
    // own order, one random read each
    struct TriRead {
        double plane[4];
        std::array<double, 6> uv;
        double bright;
        std::int32_t bitmap;
        std::array<std::int32_t, 3> color;
    };
    Scratch<TriRead> triOf;
    Scratch<std::int32_t> pid, es; // each corner's point, each pair's edge (design indices)
    // per point (slot 0 unused): position (its first corner's), the last corner's brightness and
    // normal (as AddTriangle leaves them), numbers of corners and of edges
    struct PointRead {
        Vec3 pos;
        std::array<double, 4> bn;
        std::uint32_t hash, corners, degree;
    };
    std::vector<PointRead> pr(1, PointRead{});
    pr.reserve(expectPoints);
    // per edge: the ends of its first pair, its number of pairs
    struct EdgeRead {
        std::int32_t a, b;
        std::uint32_t pairs;
    };
    std::vector<EdgeRead> er(1, EdgeRead{0, 0, 0});
    er.reserve(expectEdges);
    Slots pointAt(expectPoints), edgeAt(expectEdges);

    constexpr int kChunk = 256;
    std::vector<SimplifyTriangle> chunk(kChunk);
    std::vector<std::uint32_t> hashes(kChunk * 3);
    int done = 0;
    std::size_t tris = 0; // read so far
    auto makeRoom = [&](std::size_t need) {
        if (need <= triOf.room()) return;
        const std::size_t room = std::max({need, expected, triOf.room() * 2});
        triOf.grow(room, tris);
        pid.grow(room * 3, tris * 3);
        es.grow(room * 3, tris * 3);
    };
    for (int pol = engine_->group_get_first_polygon(group); pol != 0;) {
        const int got = engine_->read_triangles(pol, chunk.data(), kChunk);
        if (got <= 0) break;
        const std::size_t n = static_cast<std::size_t>(got), t0 = tris;
        makeRoom(t0 + n);
        for (std::size_t i = 0; i < n; ++i) {
            const SimplifyTriangle& r = chunk[i];
            TriRead& T = triOf[t0 + i];
            for (std::size_t k = 0; k < 4; ++k) T.plane[k] = r.plane[k];
            T.uv = {r.corners[0][3], r.corners[0][4], r.corners[1][3], r.corners[1][4], r.corners[2][3], r.corners[2][4]};
            T.bright = r.brightness;
            T.bitmap = r.bitmap;
            T.color = {r.color[0], r.color[1], r.color[2]};
            for (std::size_t k = 0; k < 3; ++k) {
                const std::uint32_t h = positionHash(r.corners[k]);
                hashes[i * 3 + k] = h;
                __builtin_prefetch(&pointAt.at[h & pointAt.mask]); // on its way in by the search below
            }
            ++done;
            if (progress_) progress_->setValue(done);
        }
        tris += n;
        // points: each corner takes the point of the first corner at its position
        std::int32_t* cp = pid.data() + t0 * 3;
        for (std::size_t i = 0, c = 0; i < n; ++i)
            for (std::size_t k = 0; k < 3; ++k, ++c) {
                const double* x = chunk[i].corners[k];
                std::int32_t p = 0;
                std::size_t at = hashes[c] & pointAt.mask;
                for (;; at = (at + 1) & pointAt.mask) { // a NaN coordinate never compares equal
                    p = pointAt.at[at];
                    if (p == 0) break;
                    const Vec3& y = pr[static_cast<std::size_t>(p)].pos;
                    if (y[0] == x[0] && y[1] == x[1] && y[2] == x[2]) break;
                }
                if (p == 0) { // a new point; one with a NaN coordinate is never found, so not entered
                    p = static_cast<std::int32_t>(pr.size());
                    pr.push_back(PointRead{Vec3{x[0], x[1], x[2]}, {}, hashes[c], 0, 0});
                    if (!std::isnan(x[0]) && !std::isnan(x[1]) && !std::isnan(x[2])) {
                        pointAt.at[at] = p;
                        pointAt.grow(pr.size(), [&](std::size_t q) { return pr[q].hash; });
                    }
                }
                cp[c] = p;
                PointRead& P = pr[static_cast<std::size_t>(p)];
                P.bn = {x[5], x[6], x[7], x[8]};
                ++P.corners;
            }
        // edges: the pairs 1-2, 2-3, 3-1 of each triangle take the edge of the first pair of the
        // same two points, either way round
        for (std::size_t i = 0; i < n; ++i) {
            const std::int32_t* q = cp + i * 3;
            hashes[i * 3] = pairHash(std::min(q[0], q[1]), std::max(q[0], q[1]));
            hashes[i * 3 + 1] = pairHash(std::min(q[1], q[2]), std::max(q[1], q[2]));
            hashes[i * 3 + 2] = pairHash(std::min(q[2], q[0]), std::max(q[2], q[0]));
            for (std::size_t j = 0; j < 3; ++j) __builtin_prefetch(&edgeAt.at[hashes[i * 3 + j] & edgeAt.mask]);
        }
        std::int32_t* ep = es.data() + t0 * 3;
        for (std::size_t i = 0, s = 0; i < n; ++i)
            for (std::size_t j = 0; j < 3; ++j, ++s) {
                const std::int32_t a = cp[s], b = cp[i * 3 + static_cast<std::size_t>(kNext[j])];
                std::int32_t e = 0;
                std::size_t at = hashes[s] & edgeAt.mask;
                for (;; at = (at + 1) & edgeAt.mask) {
                    e = edgeAt.at[at];
                    if (e == 0) break;
                    const EdgeRead& x = er[static_cast<std::size_t>(e)];
                    if ((x.a == a && x.b == b) || (x.a == b && x.b == a)) break;
                }
                if (e == 0) {
                    e = static_cast<std::int32_t>(er.size());
                    er.push_back(EdgeRead{a, b, 0});
                    ++pr[static_cast<std::size_t>(a)].degree;
                    if (b != a) ++pr[static_cast<std::size_t>(b)].degree;
                    edgeAt.at[at] = e;
                    edgeAt.grow(er.size(), [&](std::size_t f) {
                        const EdgeRead& x = er[f];
                        return pairHash(std::min(x.a, x.b), std::max(x.a, x.b));
                    });
                }
                ep[s] = e;
                ++er[static_cast<std::size_t>(e)].pairs;
            }
    }
    if (progress_) progress_->setValue(0);
    const std::size_t n = tris, points = pr.size(), edges = er.size();
    auto scratch = [&] {
        return triOf.bytes() + pid.bytes() + es.bytes() +
               bytesOf(pr) + bytesOf(er) + bytesOf(pointAt.at) + bytesOf(edgeAt.at) + bytesOf(chunk) + bytesOf(hashes);
    };
    notePeak(scratch());
    std::vector<std::int32_t>().swap(pointAt.at);
    std::vector<std::int32_t>().swap(edgeAt.at);

    // ---- the records' own order (renumberForLocality) ----
    const bool renumber = RenumberRecords && points >= 3;
    std::vector<std::int32_t> ptOrder = renumber ? order::mortonOrder(points, [&](std::size_t p) { return pr[p].pos.data(); }) : identity(points);
    std::vector<std::int32_t> newPt = order::inverse(ptOrder);
    std::vector<std::int32_t> newEdge, newTri;
    std::vector<std::int32_t> edgeOrder = renumber ? order::countingOrder(edges, points, [&](std::size_t e) {
        return std::min(newPt[static_cast<std::size_t>(er[e].a)], newPt[static_cast<std::size_t>(er[e].b)]);
    }, &newEdge) : identity(edges);
    std::vector<std::int32_t> triOrder = renumber ? order::countingOrder(n + 1, points, [&](std::size_t t) {
        const std::size_t c = (t - 1) * 3;
        return std::min({newPt[static_cast<std::size_t>(pid[c])], newPt[static_cast<std::size_t>(pid[c + 1])],
                         newPt[static_cast<std::size_t>(pid[c + 2])]});
    }, &newTri) : identity(n + 1);
    if (!renumber) {
        newEdge = edgeOrder;
        newTri = triOrder;
    }
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
            const PointRead& P = pr[p];
            hot.push_back(PointHot{{}, {}, {P.pos[0], P.pos[1], P.pos[2]}});
            bright.push_back(P.bn[0]);
            normal.push_back(Vec3{P.bn[1], P.bn[2], P.bn[3]});
        }
        pts_.swap(hot);
        pBright_.swap(bright);
        pNormal_.swap(normal);
    }
    ListPool ptTris, ptEdges, edgeTris;
    // triangles of each point, in corner order
    ptTris.shape(points, [&](std::size_t i) { return pr[static_cast<std::size_t>(ptOrder[i])].corners; }, slack);
    for (std::size_t t = 0; t < n; ++t)
        for (std::size_t k = 0; k < 3; ++k) ptTris.fill(static_cast<std::size_t>(np(pid[t * 3 + k])), newTri[t + 1]);
    // edges of each point (once for an edge from a point to itself), in the order of the edges
    ptEdges.shape(points, [&](std::size_t i) { return pr[static_cast<std::size_t>(ptOrder[i])].degree; }, slack);
    for (std::size_t e = 1; e < edges; ++e) {
        ptEdges.fill(static_cast<std::size_t>(np(er[e].a)), newEdge[e]);
        if (er[e].b != er[e].a) ptEdges.fill(static_cast<std::size_t>(np(er[e].b)), newEdge[e]);
    }
    // triangles of each edge, in the order of the pairs
    edgeTris.shape(edges, [&](std::size_t i) { return er[static_cast<std::size_t>(edgeOrder[i])].pairs; }, 0);
    for (std::size_t t = 0; t < n; ++t)
        for (std::size_t j = 0; j < 3; ++j) edgeTris.fill(static_cast<std::size_t>(ne(es[t * 3 + j])), newTri[t + 1]);
    if (!renumber) { // as compact leaves the pools of a group read one by one
        ptTris.setFirstRoom(8);
        ptEdges.setFirstRoom(8);
    }
    pTris_ = std::move(ptTris);
    pEdges_ = std::move(ptEdges);
    eTris_ = std::move(edgeTris);

    // ---- edges ----
    {
        BigVector<EdgeHot> hot(edges, EdgeHot{0, 0, 0.0, {0, 0, 0}, false, false});
        for (std::size_t i = 1; i < edges; ++i) {
            const EdgeRead& x = er[static_cast<std::size_t>(edgeOrder[i])];
            EdgeHot& E = hot[i];
            E.a = np(x.a);
            E.b = np(x.b);
            E.valid = true;
        }
        edges_.swap(hot);
    }

    // ---- triangles ----
    {
        const std::size_t records = n + 1;
        BigVector<TriHot> hot;
        BigVector<std::array<double, 6>> uv;
        BigVector<std::int32_t> bitmap;
        BigVector<double> bright;
        BigVector<std::array<std::int32_t, 3>> color;
        hot.reserve(records);
        uv.reserve(records);
        bitmap.reserve(records);
        bright.reserve(records);
        color.reserve(records);
        hot.push_back(TriHot{});
        uv.push_back({});
        bitmap.push_back(0);
        bright.push_back(0.0);
        color.push_back({0, 0, 0});
        for (std::size_t i = 1; i < records; ++i) {
            const std::size_t t = static_cast<std::size_t>(triOrder[i]) - 1, c = t * 3;
            TriHot& T = hot.emplace_back();
            const TriRead& R = triOf[t];
            for (std::size_t k = 0; k < 4; ++k) T.plane[k] = R.plane[k];
            for (std::size_t k = 0; k < 3; ++k) {
                T.pts[k] = np(pid[c + k]);
                T.edges[k] = ne(es[c + k]);
            }
            T.valid = true;
            uv.push_back(R.uv);
            bitmap.push_back(R.bitmap);
            bright.push_back(R.bright);
            color.push_back(R.color);
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
    for (std::size_t p = 1; p < points; ++p) {
        octant[p] = static_cast<std::uint8_t>(octantOf(pr[p].pos.data(), octantCentre_));
        ++inOctant[octant[p]];
    }
    for (std::size_t o = 0; o < 8; ++o) buckets_[o].reserve(inOctant[o]);
    for (std::size_t p = 1; p < points; ++p) {
        SimpBucketEntry entry;
        entry.Point = static_cast<std::int32_t>(p);
        for (std::size_t k = 0; k < 3; ++k) entry.Coords[k] = pr[p].pos[k];
        buckets_[octant[p]].push_back(entry);
    }

    notePeak(scratch() + bytesOf(octant) + bytesOf(ptOrder) + bytesOf(newPt) + bytesOf(edgeOrder) + bytesOf(newEdge) +
             bytesOf(triOrder) + bytesOf(newTri));
    extOfPt_ = std::move(ptOrder);
    ptOfExt_ = std::move(newPt);
    extOfEdge_ = std::move(edgeOrder);
    edgeOfExt_ = std::move(newEdge);
    extOfTri_ = std::move(triOrder);
    triOfExt_ = std::move(newTri);

    // the state AddTriangle, dropIndexes and renumberForLocality leave
    pristine_ = false;
    extractedZero_ = true;
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
