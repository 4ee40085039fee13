// The simplification mesh: records, sharing of points and edges, walks, the copy kept for
// restarting, the selection list.
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace simplify {

namespace {
std::uint64_t keyBits(double v) { return std::bit_cast<std::uint64_t>(v == 0.0 ? 0.0 : v); } // -0.0 == 0.0
std::uint64_t edgeKey(int a, int b) {
    const auto lo = static_cast<std::uint32_t>(std::min(a, b)), hi = static_cast<std::uint32_t>(std::max(a, b));
    return (static_cast<std::uint64_t>(lo) << 32) | hi;
}
int octantOf(const double c[3], const double centre[3]) {
    return (c[0] < centre[0] ? 0 : 1) | (c[1] < centre[1] ? 0 : 2) | (c[2] < centre[2] ? 0 : 4);
}
template <class T, class A> std::size_t bytes(const std::vector<T, A>& v) { return v.capacity() * sizeof(T); }
} // namespace

std::size_t SurfSimpli::PointKeyHash::operator()(const PointKey& k) const {
    std::uint64_t h = k.x * 0x9E3779B97F4A7C15ULL;
    h ^= (k.y + 0x632BE59BD9B4E019ULL + (h << 6) + (h >> 2)) * 0xBF58476D1CE4E5B9ULL;
    h ^= (k.z + 0x94D049BB133111EBULL + (h << 6) + (h >> 2)) * 0x94D049BB133111EBULL;
    h ^= static_cast<std::uint64_t>(k.octant) + (h >> 29);
    return static_cast<std::size_t>(h ^ (h >> 32));
}

SurfSimpli::SurfSimpli(SimplifyEngine* engine) {
    SetEngine(engine);
    // The seven pens of the diagnostic drawing are the SimpPen values; nothing to make here.
    Reset();
}

SurfSimpli::~SurfSimpli() = default;

void SurfSimpli::SetEngine(SimplifyEngine* engine) {
    if (engine) {
        engine_ = engine;
        ownEngine_.reset();
    } else {
        ownEngine_ = std::make_unique<ZelmarSimplifyEngine>();
        engine_ = ownEngine_.get();
    }
}

void SurfSimpli::SetOptions(bool protectTexSeams, bool geomOnly, bool lockSelected, bool protectColorBorders) {
    protectTexSeams_ = protectTexSeams;
    geomOnly_ = geomOnly;
    lockSelected_ = lockSelected;
    protectColorBorders_ = protectColorBorders;
}

// ---- the records as copies ----

std::vector<std::int32_t> SurfSimpli::mapList(const std::vector<std::int32_t>& m, const std::int32_t* from,
                                              const std::int32_t* to) {
    std::vector<std::int32_t> out;
    out.reserve(static_cast<std::size_t>(to - from));
    for (; from != to; ++from) out.push_back(mapIndex(m, *from));
    return out;
}

SimpPoint SurfSimpli::Point(int i) const {
    const std::size_t p = static_cast<std::size_t>(inPt(i));
    SimpPoint P;
    P.Valid = pValid_.at(p) != 0;
    for (int k = 0; k < 3; ++k) P.Coords[k] = pts_[p].xyz[k];
    P.AssTris = mapList(extOfTri_, pTris_.begin(p), pTris_.end(p));
    P.AssEdges = mapList(extOfEdge_, pEdges_.begin(p), pEdges_.end(p));
    P.Q = fullQuadric(pts_[p].s, pts_[p].u);
    P.VertBrightness = pBright_[p];
    for (int k = 0; k < 3; ++k) P.VertNormal[k] = pNormal_[p][static_cast<std::size_t>(k)];
    return P;
}

SimpEdge SurfSimpli::Edge(int i) const {
    const std::size_t e = static_cast<std::size_t>(inEdge(i));
    const EdgeHot& H = edges_.at(e);
    SimpEdge E;
    E.Valid = H.valid;
    E.IsBorder = H.border;
    E.PtA = exPt(H.a);
    E.PtB = exPt(H.b);
    E.AssTris = mapList(extOfTri_, eTris_.begin(e), eTris_.end(e));
    for (int k = 0; k < 3; ++k) E.NewCoords[k] = H.nc[k];
    E.Cost = H.cost;
    return E;
}

SimpTri SurfSimpli::Tri(int i) const {
    const std::size_t t = static_cast<std::size_t>(inTri(i));
    const TriHot& H = tris_.at(t);
    SimpTri T;
    T.Valid = H.valid;
    for (int k = 0; k < 3; ++k) {
        T.Pts[k] = exPt(H.pts[k]);
        T.Edges[k] = exEdge(H.edges[k]);
        T.TexUV[k][0] = tUV_[t][static_cast<std::size_t>(k * 2)];
        T.TexUV[k][1] = tUV_[t][static_cast<std::size_t>(k * 2 + 1)];
        T.TriColor[k] = tColor_[t][static_cast<std::size_t>(k)];
    }
    for (int k = 0; k < 4; ++k) T.Plane[k] = H.plane[k];
    T.BitmapHandle = tBitmap_[t];
    T.TriBrightness = tBright_[t];
    return T;
}

// ---- building ----

// A record made after the renumbering keeps its design index (the counts are equal).
void SurfSimpli::pushIdentity(std::vector<std::int32_t>& ext, std::vector<std::int32_t>& in) {
    const auto n = static_cast<std::int32_t>(ext.size());
    ext.push_back(n);
    in.push_back(n);
}

std::size_t SurfSimpli::newPoint(const double coords[3]) {
    pushIdentity(extOfPt_, ptOfExt_);
    pValid_.push_back(1);
    pts_.push_back(PointHot{{}, {}, {coords[0], coords[1], coords[2]}});
    pBright_.push_back(0.0);
    pNormal_.push_back(Vec3{0, 0, 0});
    pTris_.addList();
    pEdges_.addList();
    if (edgesInLists_) pFar_.addList();
    return pValid_.size() - 1;
}

std::size_t SurfSimpli::newEdge(int pA, int pB) {
    pushIdentity(extOfEdge_, edgeOfExt_);
    edges_.push_back(EdgeHot{pA, pB, 0.0, {0, 0, 0}, true, false});
    eTris_.addList();
    return edges_.size() - 1;
}

// Brightness and normals of existing points change only here: the copy for restarting takes
// them before the first such change after it was made.
void SurfSimpli::copyColdForRestore() {
    if (!backup_.made || backup_.coldCopied) return;
    backup_.pBright.assign(pBright_.begin(), pBright_.begin() + static_cast<std::ptrdiff_t>(backup_.points));
    backup_.pNormal.assign(pNormal_.begin(), pNormal_.begin() + static_cast<std::ptrdiff_t>(backup_.points));
    backup_.coldCopied = true;
}

void SurfSimpli::AddTriangle(const double c1[9], const double c2[9], const double c3[9], const double plane[4],
                             int bitmapHandle, double brightness, const int color[3]) {
    pristine_ = false;
    copyColdForRestore();
    pushIdentity(extOfTri_, triOfExt_);
    tris_.push_back(TriHot{});
    tUV_.push_back({});
    tBitmap_.push_back(bitmapHandle);
    tBright_.push_back(brightness);
    tColor_.push_back({color[0], color[1], color[2]});
    const int t = TriCount();
    const std::size_t ti = static_cast<std::size_t>(t);
    tris_[ti].valid = true;
    const double* corners[3] = {c1, c2, c3};
    for (int k = 0; k < 3; ++k) {
        const int p = bucketPoint(corners[k], t);
        tris_[ti].pts[k] = p;
        tUV_[ti][static_cast<std::size_t>(k * 2)] = corners[k][3];
        tUV_[ti][static_cast<std::size_t>(k * 2 + 1)] = corners[k][4];
    }
    for (int k = 0; k < 4; ++k) tris_[ti].plane[k] = plane[k];
    const int p1 = tris_[ti].pts[0], p2 = tris_[ti].pts[1], p3 = tris_[ti].pts[2];
    const int e1 = addEdgeOfTri(p1, p2, t);
    const int e2 = addEdgeOfTri(p2, p3, t);
    const int e3 = addEdgeOfTri(p3, p1, t);
    tris_[ti].edges[0] = e1;
    tris_[ti].edges[1] = e2;
    tris_[ti].edges[2] = e3;
    for (int k = 0; k < 3; ++k) {
        const std::size_t p = static_cast<std::size_t>(tris_[ti].pts[k]);
        pBright_[p] = corners[k][5];
        for (int n = 0; n < 3; ++n) pNormal_[p][static_cast<std::size_t>(n)] = corners[k][6 + n];
    }
}

int SurfSimpli::BucketPoint(const double coords[3], int tri) { return exPt(bucketPoint(coords, inTri(tri))); }

void SurfSimpli::prefetchPoint(const double coords[3]) const {
    if (pointIndexDirty_) return;
    pointIndex_.prefetch(PointKey{keyBits(coords[0]), keyBits(coords[1]), keyBits(coords[2]), octantOf(coords, octantCentre_)});
}

int SurfSimpli::bucketPoint(const double coords[3], int tri) {
    pristine_ = false;
    if (pointIndexDirty_) rebuildPointIndex();
    const int octant = octantOf(coords, octantCentre_);
    const bool hashable = !std::isnan(coords[0]) && !std::isnan(coords[1]) && !std::isnan(coords[2]);
    PointKey key{keyBits(coords[0]), keyBits(coords[1]), keyBits(coords[2]), octant};
    if (hashable) {
        const std::int32_t found = pointIndex_.find(key);
        if (found != 0) {
            pTris_.push(static_cast<std::size_t>(found), tri);
            return found;
        }
    }
    const int p = static_cast<int>(newPoint(coords));
    pTris_.push(static_cast<std::size_t>(p), tri);
    SimpBucketEntry entry;
    entry.Point = exPt(p);
    for (int k = 0; k < 3; ++k) entry.Coords[k] = coords[k];
    buckets_[static_cast<std::size_t>(octant)].push_back(entry);
    if (hashable) pointIndex_.emplace(key, p);
    return p;
}

int SurfSimpli::AddEdgeOfTri(int pA, int pB, int tri) { return exEdge(addEdgeOfTri(inPt(pA), inPt(pB), inTri(tri))); }

int SurfSimpli::addEdgeOfTri(int pA, int pB, int tri) {
    pristine_ = false;
    int e = 0;
    if (edgesInLists_) {
        // Every edge is in both its ends' lists and no pair has two edges: the edge, if any, is
        // in A's list, found by the far ends kept beside it; a new one goes into both lists.
        const std::size_t a = static_cast<std::size_t>(pA), b = static_cast<std::size_t>(pB);
        const std::int32_t* far = pFar_.begin(a);
        for (std::uint32_t i = 0, n = pFar_.size(a); i < n; ++i)
            if (far[i] == pB) {
                e = pEdges_.at(a, i);
                break;
            }
        edgeIndexDirty_ = true; // made from the edges if the lists stop holding them all
        if (e == 0) {
            e = static_cast<int>(newEdge(pA, pB));
            pEdges_.push(a, e);
            pFar_.push(a, pB);
            if (b != a) {
                pEdges_.push(b, e);
                pFar_.push(b, pA);
            }
        }
    } else {
        if (edgeIndexDirty_) rebuildEdgeIndex();
        const std::uint64_t key = edgeKey(pA, pB);
        e = edgeIndex_.find(key);
        if (e == 0) {
            e = static_cast<int>(newEdge(pA, pB));
            edgeIndex_.emplace(key, e);
        }
        pEdges_.addIfAbsent(static_cast<std::size_t>(pA), e);
        pEdges_.addIfAbsent(static_cast<std::size_t>(pB), e);
    }
    eTris_.push(static_cast<std::size_t>(e), tri);
    heapDirty_ = true;
    return e;
}

// The buckets hold the positions the points had when they were made; the scan of the mesh
// compares with those, first entry first. The index keeps the first entry of each position.
void SurfSimpli::rebuildPointIndex() {
    pointIndex_.clear();
    std::size_t n = 0;
    for (const auto& b : buckets_) n += b.size();
    pointIndex_.reserve(n);
    for (int o = 0; o < 8; ++o)
        for (const SimpBucketEntry& b : buckets_[static_cast<std::size_t>(o)]) {
            if (std::isnan(b.Coords[0]) || std::isnan(b.Coords[1]) || std::isnan(b.Coords[2])) continue;
            pointIndex_.emplace(PointKey{keyBits(b.Coords[0]), keyBits(b.Coords[1]), keyBits(b.Coords[2]), o}, inPt(b.Point));
        }
    pointIndexDirty_ = false;
}

// The edge scan of the mesh matches every edge, valid or not, by its current ends, lowest index
// first. Contractions change ends, so the index is rebuilt before it is next used.
void SurfSimpli::rebuildEdgeIndex() {
    edgeIndex_.clear();
    edgeIndex_.reserve(edges_.size());
    for (int x = 1; x <= EdgeCount(); ++x) {
        const int e = inEdge(x);
        const EdgeHot& E = edges_[static_cast<std::size_t>(e)];
        edgeIndex_.emplace(edgeKey(E.a, E.b), e);
    }
    edgeIndexDirty_ = false;
}

// Both indexes can be made again from the buckets and the edges; they are let go once the
// mesh is read, and made again only if more triangles come.
void SurfSimpli::dropIndexes() {
    pointIndex_.release();
    pointIndexDirty_ = true;
    edgeIndex_.release();
    edgeIndexDirty_ = true;
}

// ---- walks ----

// The walks go in the order of the design's indices; cursors hold those indices.
namespace {
template <class Valid>
int walk(int n, int from, int step, int& cursor, Valid valid) {
    for (int i = from; i >= 1 && i <= n; i += step)
        if (valid(i)) {
            cursor = i;
            return i;
        }
    return 0;
}
} // namespace

int SurfSimpli::GetFirstValidTri() { return walk(TriCount(), 1, 1, triCursor_, [&](int x) { return tris_[static_cast<std::size_t>(inTri(x))].valid; }); }
int SurfSimpli::GetNextValidTri() {
    return walk(TriCount(), triCursor_ + 1, 1, triCursor_, [&](int x) { return tris_[static_cast<std::size_t>(inTri(x))].valid; });
}
int SurfSimpli::GetPrevValidTri() {
    return walk(TriCount(), triCursor_ - 1, -1, triCursor_, [&](int x) { return tris_[static_cast<std::size_t>(inTri(x))].valid; });
}
int SurfSimpli::GetFirstValidEdge() {
    return walk(EdgeCount(), 1, 1, edgeCursor_, [&](int x) { return edges_[static_cast<std::size_t>(inEdge(x))].valid; });
}
int SurfSimpli::GetNextValidEdge() {
    return walk(EdgeCount(), edgeCursor_ + 1, 1, edgeCursor_, [&](int x) { return edges_[static_cast<std::size_t>(inEdge(x))].valid; });
}
int SurfSimpli::GetPrevValidEdge() {
    return walk(EdgeCount(), edgeCursor_ - 1, -1, edgeCursor_, [&](int x) { return edges_[static_cast<std::size_t>(inEdge(x))].valid; });
}
int SurfSimpli::GetFirstValidPt() { return walk(PointCount(), 1, 1, ptCursor_, [&](int x) { return pValid_[static_cast<std::size_t>(inPt(x))] != 0; }); }
int SurfSimpli::GetNextValidPt() {
    return walk(PointCount(), ptCursor_ + 1, 1, ptCursor_, [&](int x) { return pValid_[static_cast<std::size_t>(inPt(x))] != 0; });
}
int SurfSimpli::GetPrevValidPt() {
    return walk(PointCount(), ptCursor_ - 1, -1, ptCursor_, [&](int x) { return pValid_[static_cast<std::size_t>(inPt(x))] != 0; });
}

double SurfSimpli::GetEdgCost(int edge) const {
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    return edges_[static_cast<std::size_t>(inEdge(edge))].cost;
}

const std::vector<std::int32_t>& SurfSimpli::AffectedPoints() const {
    affectedPtsExt_ = mapList(extOfPt_, affectedPts_.data(), affectedPts_.data() + affectedPts_.size());
    return affectedPtsExt_;
}

const std::vector<std::int32_t>& SurfSimpli::AffectedEdges() const {
    affectedEdgesExt_ = mapList(extOfEdge_, affectedEdges_.data(), affectedEdges_.data() + affectedEdges_.size());
    return affectedEdgesExt_;
}

// ---- life cycle ----

void SurfSimpli::clearArrays() {
    for (auto* m : {&ptOfExt_, &extOfPt_, &edgeOfExt_, &extOfEdge_, &triOfExt_, &extOfTri_}) m->assign(1, 0);
    pValid_.assign(1, 0);
    pts_.assign(1, PointHot{});
    pBright_.assign(1, 0.0);
    pNormal_.assign(1, Vec3{0, 0, 0});
    pTris_.clear();
    pTris_.addList();
    pEdges_.clear();
    pEdges_.addList();
    pFar_.clear();
    pFar_.addList();
    edges_.assign(1, EdgeHot{0, 0, 0.0, {0, 0, 0}, false, false});
    eTris_.clear();
    eTris_.addList();
    edgesInLists_ = true;
    tris_.assign(1, TriHot{});
    tUV_.assign(1, {});
    tBitmap_.assign(1, 0);
    tBright_.assign(1, 0.0);
    tColor_.assign(1, {0, 0, 0});
}

void SurfSimpli::Reset() {
    pristine_ = false;
    copyColdForRestore(); // the copy for restarting shares these arrays until now
    clearArrays();
    for (auto& b : buckets_) b.clear();
    minEdge_ = -1;
    minCost_ = 0;
    outCursor_ = 1;
    triCursor_ = edgeCursor_ = ptCursor_ = 0;
    triCurrent_ = 0;
    sourceGroup_ = 0;
    continueRun_ = false;
    pointIndex_.clear();
    pointIndexDirty_ = false;
    edgeIndex_.clear();
    edgeIndexDirty_ = false;
    heap_.clear();
    heapDirty_ = true;
}

void SurfSimpli::CopyGeomForRestore() {
    notePeak();
    Backup& b = backup_;
    b.made = true;
    b.points = pValid_.size();
    b.pValid = pValid_;
    // One pass each: the positions (edge ends) are copied while the quadrics (placements and
    // costs) are found all zero, the full records only when one is not.
    b.pCoords.clear();
    b.pts.clear();
    b.pCoords.reserve(pts_.size());
    bool zeroQ = true;
    const bool knownZero = std::exchange(extractedZero_, false);
    for (const PointHot& q : pts_) {
        if (knownZero) {
            b.pCoords.push_back(Vec3{q.xyz[0], q.xyz[1], q.xyz[2]});
            continue;
        }
        std::uint64_t bits = 0;
        for (const double v : q.s) bits |= std::bit_cast<std::uint64_t>(v);
        for (const double v : q.u) bits |= std::bit_cast<std::uint64_t>(v);
        if (bits != 0) {
            zeroQ = false;
            break;
        }
        b.pCoords.push_back(Vec3{q.xyz[0], q.xyz[1], q.xyz[2]});
    }
    if (!zeroQ) {
        decltype(b.pCoords)().swap(b.pCoords);
        b.pts = pts_;
    }
    b.pTris = pTris_;
    b.pEdges = pEdges_;
    b.edges.clear();
    b.edgeEnds.clear();
    b.edgeEnds.reserve(edges_.size());
    bool placed = false;
    for (const EdgeHot& e : edges_) {
        if (!knownZero && (std::bit_cast<std::uint64_t>(e.cost) | std::bit_cast<std::uint64_t>(e.nc[0]) | std::bit_cast<std::uint64_t>(e.nc[1]) |
             std::bit_cast<std::uint64_t>(e.nc[2])) != 0) {
            placed = true;
            break;
        }
        b.edgeEnds.push_back({e.a, e.b, e.valid, e.border});
    }
    if (placed) {
        decltype(b.edgeEnds)().swap(b.edgeEnds);
        b.edges = edges_;
    }
    b.eTris = eTris_;
    b.tris = tris_;
    b.tUV = tUV_;
    b.pBright.clear();
    b.pNormal.clear();
    b.coldCopied = false;
    pristine_ = true;
    notePeak();
    bigarray::Cache::instance().giveBack(); // the arrays the renumbering let go have served the copy
}

void SurfSimpli::RestoreGeomFromCopy() {
    // Nothing changed since the copy or the last restore: the arrays are the copy already.
    if (pristine_ && backup_.made) {
        heapDirty_ = true;
        return;
    }
    if (!backup_.made) { // never copied: the arrays of an empty model
        clearArrays();
        pristine_ = false;
        edgeIndexDirty_ = true;
        heapDirty_ = true;
        return;
    }
    const Backup& b = backup_;
    pValid_ = b.pValid;
    if (b.pts.empty()) {
        pts_.resize(b.pCoords.size());
        for (std::size_t i = 0; i < b.pCoords.size(); ++i) pts_[i] = PointHot{{}, {}, {b.pCoords[i][0], b.pCoords[i][1], b.pCoords[i][2]}};
    } else {
        pts_ = b.pts;
    }
    pBright_.resize(b.points);
    pNormal_.resize(b.points);
    if (b.coldCopied) {
        pBright_ = b.pBright;
        pNormal_ = b.pNormal;
    }
    pTris_ = b.pTris;
    pEdges_ = b.pEdges;
    if (!b.edges.empty()) {
        edges_ = b.edges;
    } else {
        edges_.resize(b.edgeEnds.size());
        for (std::size_t i = 0; i < b.edgeEnds.size(); ++i) {
            const Backup::EdgeEnds& x = b.edgeEnds[i];
            edges_[i] = EdgeHot{x.a, x.b, 0.0, {0.0, 0.0, 0.0}, x.valid, x.border};
        }
    }
    eTris_ = b.eTris;
    tris_ = b.tris;
    tUV_ = b.tUV;
    tBitmap_.resize(tris_.size());
    tBright_.resize(tris_.size());
    tColor_.resize(tris_.size());
    // records made after the copy had their design indices; the rest keep their numbering
    for (auto* m : {&ptOfExt_, &extOfPt_}) m->resize(pValid_.size());
    for (auto* m : {&edgeOfExt_, &extOfEdge_}) m->resize(edges_.size());
    for (auto* m : {&triOfExt_, &extOfTri_}) m->resize(tris_.size());
    selectedMark_.clear();
    pristine_ = true;
    edgeIndexDirty_ = true;
    leaveListMode();
    heapDirty_ = true;
}

// ---- selection ----

bool SurfSimpli::IsPtSelected(std::int32_t point) const {
    return std::find(selectedPts_.begin(), selectedPts_.end(), point) != selectedPts_.end();
}

void SurfSimpli::RemoveSelectedPt(std::int32_t point) {
    const auto it = std::find(selectedPts_.begin(), selectedPts_.end(), point);
    if (it != selectedPts_.end()) selectedPts_.erase(it);
    selectedMark_.clear();
}

void SurfSimpli::markSelected() {
    selectedMark_.assign(pValid_.size(), 0);
    for (const std::int32_t p : selectedPts_)
        if (p >= 0 && static_cast<std::size_t>(p) < selectedMark_.size()) selectedMark_[static_cast<std::size_t>(inPt(p))] = 1;
}

bool SurfSimpli::selectedFast(int point) const {
    return point >= 0 && static_cast<std::size_t>(point) < selectedMark_.size() &&
           selectedMark_[static_cast<std::size_t>(point)] != 0;
}

std::size_t SurfSimpli::MemoryBytes() const {
    std::size_t n = bytes(pValid_) + bytes(pts_) + bytes(pBright_) + bytes(pNormal_) +
                    pTris_.memoryBytes() + pEdges_.memoryBytes() + pFar_.memoryBytes() + bytes(edges_) + eTris_.memoryBytes() + bytes(tris_) +
                    bytes(tUV_) + bytes(tBitmap_) + bytes(tBright_) + bytes(tColor_);
    const Backup& b = backup_;
    n += bytes(b.pValid) + bytes(b.pCoords) + bytes(b.pts) + b.pTris.memoryBytes() + b.pEdges.memoryBytes() +
         bytes(b.edges) + bytes(b.edgeEnds) + b.eTris.memoryBytes() + bytes(b.tris) + bytes(b.tUV) + bytes(b.pBright) + bytes(b.pNormal);
    for (const auto& bucket : buckets_) n += bytes(bucket);
    n += pointIndex_.memoryBytes() + edgeIndex_.memoryBytes() + heap_.memoryBytes();
    n += bytes(ptOfExt_) + bytes(extOfPt_) + bytes(edgeOfExt_) + bytes(extOfEdge_) + bytes(triOfExt_) + bytes(extOfTri_);
    n += bytes(ptStamp_) + bytes(selectedMark_) + bytes(ptParked_) +
         refusals_.size() * (sizeof(Refusal) + 2 * sizeof(void*)) + refusals_.bucket_count() * sizeof(void*) +
         bytes(parked_) + bytes(affectedPts_) + bytes(affectedEdges_);
    return n;
}

} // namespace simplify
