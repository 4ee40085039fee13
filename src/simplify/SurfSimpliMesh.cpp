// the simplification mesh: the mesh model of SurfSimpli (records, sharing of points and edges, walks, the copy
// kept for restarting, the selection list).
#include "simplify/SurfSimpli.h"

#include "base/VexilError.h"

#include <algorithm>
#include <bit>
#include <cmath>

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

// ---- building ----

void SurfSimpli::AddTriangle(const double c1[9], const double c2[9], const double c3[9], const double plane[4],
                             int bitmapHandle, double brightness, const int color[3]) {
    pristine_ = false;
    tris_.emplace_back();
    const int t = TriCount();
    {
        SimpTri& tri = tris_.back();
        tri.Valid = true;
        tri.BitmapHandle = bitmapHandle;
        tri.TriBrightness = brightness;
        for (int k = 0; k < 3; ++k) tri.TriColor[k] = color[k];
    }
    const double* corners[3] = {c1, c2, c3};
    for (int k = 0; k < 3; ++k) {
        const int p = BucketPoint(corners[k], t);
        SimpTri& tri = tris_[static_cast<std::size_t>(t)];
        tri.Pts[k] = p;
        tri.TexUV[k][0] = corners[k][3];
        tri.TexUV[k][1] = corners[k][4];
    }
    SimpTri& tri = tris_[static_cast<std::size_t>(t)];
    for (int k = 0; k < 4; ++k) tri.Plane[k] = plane[k];
    const int p1 = tri.Pts[0], p2 = tri.Pts[1], p3 = tri.Pts[2];
    const int e1 = AddEdgeOfTri(p1, p2, t);
    const int e2 = AddEdgeOfTri(p2, p3, t);
    const int e3 = AddEdgeOfTri(p3, p1, t);
    SimpTri& tr = tris_[static_cast<std::size_t>(t)];
    tr.Edges[0] = e1;
    tr.Edges[1] = e2;
    tr.Edges[2] = e3;
    for (int k = 0; k < 3; ++k) {
        SimpPoint& P = pts_[static_cast<std::size_t>(tr.Pts[k])];
        P.VertBrightness = corners[k][5];
        for (int n = 0; n < 3; ++n) P.VertNormal[n] = corners[k][6 + n];
    }
}

int SurfSimpli::BucketPoint(const double coords[3], int tri) {
    pristine_ = false;
    if (pointIndexDirty_) rebuildPointIndex();
    const int octant = octantOf(coords, octantCentre_);
    const bool hashable = !std::isnan(coords[0]) && !std::isnan(coords[1]) && !std::isnan(coords[2]);
    PointKey key{keyBits(coords[0]), keyBits(coords[1]), keyBits(coords[2]), octant};
    if (hashable) {
        const std::int32_t found = pointIndex_.find(key);
        if (found != 0) {
            pts_.at(static_cast<std::size_t>(found)).AssTris.push_back(tri);
            return found;
        }
    }
    pts_.emplace_back();
    const int p = PointCount();
    SimpPoint& P = pts_.back();
    P.Valid = true;
    for (int k = 0; k < 3; ++k) P.Coords[k] = coords[k];
    P.AssTris.push_back(tri);
    SimpBucketEntry entry;
    entry.Point = p;
    for (int k = 0; k < 3; ++k) entry.Coords[k] = coords[k];
    buckets_[static_cast<std::size_t>(octant)].push_back(entry);
    if (hashable) pointIndex_.emplace(key, p);
    return p;
}

int SurfSimpli::AddEdgeOfTri(int pA, int pB, int tri) {
    pristine_ = false;
    if (edgeIndexDirty_) rebuildEdgeIndex();
    const std::uint64_t key = edgeKey(pA, pB);
    int e = edgeIndex_.find(key);
    if (e != 0) {
        edges_[static_cast<std::size_t>(e)].AssTris.push_back(tri);
    } else {
        edges_.emplace_back();
        edgeQ_.emplace_back();
        e = EdgeCount();
        SimpEdge& E = edges_.back();
        E.Valid = true;
        E.PtA = pA;
        E.PtB = pB;
        E.AssTris.push_back(tri);
        edgeIndex_.emplace(key, e);
    }
    addIfAbsent(pts_.at(static_cast<std::size_t>(pA)).AssEdges, e);
    addIfAbsent(pts_.at(static_cast<std::size_t>(pB)).AssEdges, e);
    heapDirty_ = true;
    return e;
}

void SurfSimpli::addIfAbsent(std::vector<std::int32_t>& list, std::int32_t value) {
    if (std::find(list.begin(), list.end(), value) == list.end()) list.push_back(value);
}

// The buckets hold the positions the points had when they were made; the scan of the simplification mesh
// compares with those, first entry first. The index keeps the first entry of each position.
void SurfSimpli::rebuildPointIndex() {
    pointIndex_.clear();
    for (int o = 0; o < 8; ++o)
        for (const SimpBucketEntry& b : buckets_[static_cast<std::size_t>(o)]) {
            if (std::isnan(b.Coords[0]) || std::isnan(b.Coords[1]) || std::isnan(b.Coords[2])) continue;
            pointIndex_.emplace(PointKey{keyBits(b.Coords[0]), keyBits(b.Coords[1]), keyBits(b.Coords[2]), o}, b.Point);
        }
    pointIndexDirty_ = false;
}

// The edge scan of the simplification mesh matches every edge, valid or not, by its current ends, lowest index
// first. Contractions change ends, so the index is rebuilt before it is next used.
void SurfSimpli::rebuildEdgeIndex() {
    edgeIndex_.clear();
    for (int e = 1; e <= EdgeCount(); ++e) {
        const SimpEdge& E = edges_[static_cast<std::size_t>(e)];
        edgeIndex_.emplace(edgeKey(E.PtA, E.PtB), e);
    }
    edgeIndexDirty_ = false;
}

// ---- walks ----

namespace {
template <class Rec>
int walk(const std::vector<Rec>& v, int from, int step, int& cursor) {
    const int n = static_cast<int>(v.size()) - 1;
    for (int i = from; i >= 1 && i <= n; i += step)
        if (v[static_cast<std::size_t>(i)].Valid) {
            cursor = i;
            return i;
        }
    return 0;
}
} // namespace

int SurfSimpli::GetFirstValidTri() { return walk(tris_, 1, 1, triCursor_); }
int SurfSimpli::GetNextValidTri() { return walk(tris_, triCursor_ + 1, 1, triCursor_); }
int SurfSimpli::GetPrevValidTri() { return walk(tris_, triCursor_ - 1, -1, triCursor_); }
int SurfSimpli::GetFirstValidEdge() { return walk(edges_, 1, 1, edgeCursor_); }
int SurfSimpli::GetNextValidEdge() { return walk(edges_, edgeCursor_ + 1, 1, edgeCursor_); }
int SurfSimpli::GetPrevValidEdge() { return walk(edges_, edgeCursor_ - 1, -1, edgeCursor_); }
int SurfSimpli::GetFirstValidPt() { return walk(pts_, 1, 1, ptCursor_); }
int SurfSimpli::GetNextValidPt() { return walk(pts_, ptCursor_ + 1, 1, ptCursor_); }
int SurfSimpli::GetPrevValidPt() { return walk(pts_, ptCursor_ - 1, -1, ptCursor_); }

double SurfSimpli::GetEdgCost(int edge) const {
    if (edge < 0 || edge > EdgeCount()) vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
    return edges_[static_cast<std::size_t>(edge)].Cost;
}

// ---- life cycle ----

void SurfSimpli::Reset() {
    pristine_ = false;
    pts_.assign(1, SimpPoint{});
    edges_.assign(1, SimpEdge{});
    tris_.assign(1, SimpTri{});
    edgeQ_.assign(1, Quadric{});
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
    pristine_ = true;
    backup_.pts = pts_;
    backup_.edges = edges_;
    backup_.tris = tris_;
    backup_.edgeQ = edgeQ_;
}

void SurfSimpli::RestoreGeomFromCopy() {
    // Nothing changed since the copy or the last restore: the arrays are the copy already.
    if (pristine_ && !backup_.pts.empty()) {
        heapDirty_ = true;
        return;
    }
    pristine_ = !backup_.pts.empty();
    if (backup_.pts.empty()) { // never copied: the arrays of an empty model
        pts_.assign(1, SimpPoint{});
        edges_.assign(1, SimpEdge{});
        tris_.assign(1, SimpTri{});
        edgeQ_.assign(1, Quadric{});
    } else {
        pts_ = backup_.pts;
        edges_ = backup_.edges;
        tris_ = backup_.tris;
        edgeQ_ = backup_.edgeQ;
    }
    edgeIndexDirty_ = true;
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
    selectedMark_.assign(pts_.size(), 0);
    for (const std::int32_t p : selectedPts_)
        if (p >= 0 && static_cast<std::size_t>(p) < selectedMark_.size()) selectedMark_[static_cast<std::size_t>(p)] = 1;
}

bool SurfSimpli::selectedFast(int point) const {
    return point >= 0 && static_cast<std::size_t>(point) < selectedMark_.size() &&
           selectedMark_[static_cast<std::size_t>(point)] != 0;
}

std::size_t SurfSimpli::MemoryBytes() const {
    auto listBytes = [](const std::vector<std::int32_t>& v) { return v.capacity() * sizeof(std::int32_t); };
    auto arrays = [&](const std::vector<SimpPoint>& p, const std::vector<SimpEdge>& e, const std::vector<SimpTri>& t,
                      const std::vector<Quadric>& q) {
        std::size_t n = p.capacity() * sizeof(SimpPoint) + e.capacity() * sizeof(SimpEdge) +
                        t.capacity() * sizeof(SimpTri) + q.capacity() * sizeof(Quadric);
        for (const auto& x : p) n += listBytes(x.AssTris) + listBytes(x.AssEdges);
        for (const auto& x : e) n += listBytes(x.AssTris);
        return n;
    };
    std::size_t n = arrays(pts_, edges_, tris_, edgeQ_) + arrays(backup_.pts, backup_.edges, backup_.tris, backup_.edgeQ);
    for (const auto& b : buckets_) n += b.capacity() * sizeof(SimpBucketEntry);
    n += pointIndex_.memoryBytes() + edgeIndex_.memoryBytes() + heap_.memoryBytes();
    return n;
}

} // namespace simplify
