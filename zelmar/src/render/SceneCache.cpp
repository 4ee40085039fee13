#include "render/SceneCache.h"

#include "render/ThreadPool.h"
#include "render/Triangulate.h"
#include "scene/World.h"
#include <algorithm>
#include <cmath>

namespace zelmar::render {

SceneCache& sceneCache() {
    static SceneCache c;
    return c;
}

const GroupCache& SceneCache::get(const Group& g) {
    GroupCache& c = groups_[g.handle];
    if (c.version != g.version || c.ownPolygons != g.ownPolygons) {
        packGroup(g, c);
        c.stamp = ++stamps_;
    } else if (!c.looksPacked) {
        packLooks(g, c);
    }
    return c;
}

const GroupCache& SceneCache::geometry(const Group& g) {
    GroupCache& c = groups_[g.handle];
    if (c.version != g.version || c.ownPolygons != g.ownPolygons) {
        packGeometry(g, c);
        c.stamp = ++stamps_;
    }
    return c;
}

void SceneCache::update(const std::vector<const Group*>& groups, int threads) {
    std::vector<std::pair<const Group*, GroupCache*>> stale, looks;
    for (const Group* g : groups) {
        GroupCache& c = groups_[g->handle]; // inserted here, never while packing
        if (c.version != g->version || c.ownPolygons != g->ownPolygons)
            stale.emplace_back(g, &c);
        else if (!c.looksPacked)
            looks.emplace_back(g, &c);
    }
    const size_t whole = stale.size(); // packed whole; the rest finish their looks
    stale.insert(stale.end(), looks.begin(), looks.end());
    parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        const auto& [g, c] = stale[static_cast<size_t>(i)];
        if (static_cast<size_t>(i) < whole)
            packGroup(*g, *c);
        else
            packLooks(*g, *c);
    });
    for (size_t i = 0; i < whole; ++i)
        stale[i].second->stamp = ++stamps_;
}

void SceneCache::updateGeometry(const std::vector<const Group*>& groups, int threads) {
    std::vector<std::pair<const Group*, GroupCache*>> stale;
    for (const Group* g : groups) {
        GroupCache& c = groups_[g->handle];
        if (c.version != g->version || c.ownPolygons != g->ownPolygons) stale.emplace_back(g, &c);
    }
    parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        packGeometry(*stale[static_cast<size_t>(i)].first, *stale[static_cast<size_t>(i)].second);
    });
    for (auto& [g, c] : stale)
        c->stamp = ++stamps_;
}

void SceneCache::prune() {
    World& w = world();
    for (auto it = groups_.begin(); it != groups_.end();)
        it = w.group(it->first) ? std::next(it) : groups_.erase(it);
}

namespace {

uint8_t byteOf(int32_t v) {
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

float finiteOr0(double v) {
    return std::isfinite(v) ? static_cast<float>(v) : 0.0f;
}

} // namespace

namespace {
void packGeometryAndMaybeLooks(const Group& g, GroupCache& c, bool looksNow);
} // namespace

void packGroup(const Group& g, GroupCache& c) {
    packGeometryAndMaybeLooks(g, c, true);
    packLooks(g, c);
}

namespace {

// The polygon's fill and flags as a packed polygon holds them.
void copyFill(const Polygon& p, PackedPolygon& pp) {
    const Fill& f = p.fill;
    pp.bitmap = f.bitmap;
    pp.animation = f.animation;
    pp.animationFrame = f.animationFrame;
    pp.secondBitmap = f.secondBitmap;
    for (int i = 0; i < 3; ++i)
        pp.color[i] = byteOf(f.color[i]);
    pp.translucent = static_cast<uint8_t>(f.translucent & 0xFF);
    pp.bilinear = f.bilinear != 0;
    pp.frontOnly = p.orientation != 0;
    pp.rotated = f.rotated != 0;
    pp.disabled = p.disabled;
}

// Packs one polygon's geometry at the end of c; false (nothing added) when it cannot be drawn.
bool packPolygonGeometry(const Polygon& p, GroupCache& c, std::vector<double>& ring) {
    const size_t n = p.points.size();
    if (n < 3) return false;
    bool finite = true;
    for (const PointData& d : p.points)
        finite = finite && std::isfinite(d.xyz[0]) && std::isfinite(d.xyz[1]) && std::isfinite(d.xyz[2]);
    if (!finite) return false; // such a polygon cannot be drawn or hit
    PackedPolygon& pp = c.polys.emplace_back(); // filled in place: a copy of it stalls on its piecewise stores
    pp.handle = p.handle;
    pp.version = p.version;
    pp.firstVertex = static_cast<uint32_t>(c.verts.size());
    pp.vertexCount = static_cast<uint32_t>(n);
    copyFill(p, pp);

    ring.resize(n * 3);
    for (size_t i = 0; i < n; ++i)
        for (int k = 0; k < 3; ++k)
            ring[i * 3 + k] = p.points[i].xyz[k];
    double nrm[3];
    newellNormal(ring.data(), 3, n, nrm);
    const double len = std::sqrt(nrm[0] * nrm[0] + nrm[1] * nrm[1] + nrm[2] * nrm[2]);
    // The front is the side from which the ring runs clockwise: the Newell normal turned over.
    if (len > 0 && std::isfinite(len))
        for (int k = 0; k < 3; ++k)
            pp.normal[k] = -nrm[k] / len;
    pp.box[0] = pp.box[1] = pp.box[2] = INFINITY;
    pp.box[3] = pp.box[4] = pp.box[5] = -INFINITY;
    for (const PointData& d : p.points) {
        PackedVertex v;
        for (int k = 0; k < 3; ++k) {
            v.xyz[k] = d.xyz[k];
            v.shade[k] = 0; // packLooks
            pp.box[k] = std::min(pp.box[k], d.xyz[k]);
            pp.box[k + 3] = std::max(pp.box[k + 3], d.xyz[k]);
        }
        c.verts.push_back(v);
    }
    pp.firstTri = static_cast<uint32_t>(c.tris.size() / 3);
    triangulate(ring.data(), 3, n, c.tris);
    pp.triCount = static_cast<uint32_t>(c.tris.size() / 3) - pp.firstTri;
    return true;
}

void growBox(double box[6], const double by[6]) {
    for (int k = 0; k < 3; ++k) {
        box[k] = std::min(box[k], by[k]);
        box[k + 3] = std::max(box[k + 3], by[k + 3]);
    }
}

// Appends old.polys[b, e) with their points, triangles and (when `looks`) extras to c. A
// packing lays out its polygons' points and triangles in polygon order, so each is one run.
void copyPolygons(const GroupCache& old, size_t b, size_t e, GroupCache& c, bool looks) {
    if (b == e) return;
    const PackedPolygon &first = old.polys[b], &last = old.polys[e - 1];
    const uint32_t v0 = first.firstVertex, v1 = last.firstVertex + last.vertexCount;
    const uint32_t t0 = first.firstTri, t1 = last.firstTri + last.triCount;
    const uint32_t nv = static_cast<uint32_t>(c.verts.size()), nt = static_cast<uint32_t>(c.tris.size() / 3);
    const size_t from = c.polys.size();
    c.polys.insert(c.polys.end(), old.polys.begin() + static_cast<ptrdiff_t>(b),
                   old.polys.begin() + static_cast<ptrdiff_t>(e));
    for (size_t i = from; i < c.polys.size(); ++i) {
        PackedPolygon& pp = c.polys[i];
        pp.firstVertex = pp.firstVertex - v0 + nv;
        pp.firstTri = pp.firstTri - t0 + nt;
        growBox(c.box, pp.box);
        c.newest = std::max(c.newest, pp.handle);
    }
    c.verts.insert(c.verts.end(), old.verts.begin() + v0, old.verts.begin() + v1);
    if (looks) c.extras.insert(c.extras.end(), old.extras.begin() + v0, old.extras.begin() + v1);
    c.tris.insert(c.tris.end(), old.tris.begin() + static_cast<ptrdiff_t>(t0) * 3,
                  old.tris.begin() + static_cast<ptrdiff_t>(t1) * 3);
}

void packPolygonLooks(const Polygon& p, const PackedPolygon& pp, PackedVertex* v, VertexExtra* e) {
    const double polyBright = std::isfinite(p.fill.brightness) ? p.fill.brightness / 100.0 : 1.0;
    for (const PointData& d : p.points) {
        e->u = finiteOr0(d.uv[0]);
        e->v = finiteOr0(d.uv[1]);
        e->u2 = finiteOr0(d.uv2[0]);
        e->v2 = finiteOr0(d.uv2[1]);
        const double b = (std::isfinite(d.brightness) ? d.brightness / 100.0 : 1.0) * polyBright;
        for (int i = 0; i < 3; ++i)
            v->shade[i] = std::clamp(finiteOr0(d.rgb[i] / 255.0 * b), 0.0f, 64.0f);
        const double n2 = d.normal[0] * d.normal[0] + d.normal[1] * d.normal[1] + d.normal[2] * d.normal[2];
        const double nl = n2 == 0 ? 0.0 : std::sqrt(n2); // most points have no normal of their own
        for (int i = 0; i < 3; ++i)
            e->normal[i] = (nl > 1e-12 && std::isfinite(nl)) ? static_cast<float>(d.normal[i] / nl)
                                                             : static_cast<float>(pp.normal[i]);
        ++v;
        ++e;
    }
}

} // namespace

namespace {

// The common repacking after an edit: the group has the polygons packed last time, in the
// same order, and each changed one keeps its point and triangle counts. Those are packed
// again where they are and nothing else is written (a copy of the rest would cost more
// than the packing saves). False when the group does not fit; the polygons written by then
// are packed as their present versions, and their looks are left to a whole pass.
bool repackInPlace(const Group& g, GroupCache& c) {
    if (c.polys.empty() || c.polys.size() - c.retired != static_cast<size_t>(g.ownPolygons)) return false;
    const bool looks = c.looksPacked;
    std::vector<std::pair<uint32_t, const Polygon*>> pending;
    std::vector<double> ring;
    std::vector<uint32_t> tris;
    double box[6] = {INFINITY, INFINITY, INFINITY, -INFINITY, -INFINITY, -INFINITY};
    size_t i = 0;
    for (const Polygon* p = g.firstPolygon; p; p = p->nextInGroup, ++i) {
        while (i < c.polys.size() && c.polys[i].handle == 0)
            ++i;
        if (i >= c.polys.size() || c.polys[i].handle != p->handle) return false;
        PackedPolygon& pp = c.polys[i];
        if (pp.version != p->version) {
            const size_t n = p->points.size();
            if (n != pp.vertexCount) return false;
            ring.resize(n * 3);
            for (size_t v = 0; v < n; ++v)
                for (int k = 0; k < 3; ++k)
                    ring[v * 3 + k] = p->points[v].xyz[k];
            for (double x : ring)
                if (!std::isfinite(x)) return false;
            tris.clear();
            triangulate(ring.data(), 3, n, tris);
            if (tris.size() != static_cast<size_t>(pp.triCount) * 3) return false;
            // What packPolygonGeometry writes, in place; its shades are gone, so if this pass
            // gives up later, packLooks must write every polygon's.
            c.looksPacked = false;
            std::copy(tris.begin(), tris.end(), c.tris.begin() + static_cast<ptrdiff_t>(pp.firstTri) * 3);
            pp.version = p->version;
            copyFill(*p, pp);
            double nrm[3];
            newellNormal(ring.data(), 3, n, nrm);
            const double len = std::sqrt(nrm[0] * nrm[0] + nrm[1] * nrm[1] + nrm[2] * nrm[2]);
            for (int k = 0; k < 3; ++k)
                pp.normal[k] = len > 0 && std::isfinite(len) ? -nrm[k] / len : 0.0;
            pp.box[0] = pp.box[1] = pp.box[2] = INFINITY;
            pp.box[3] = pp.box[4] = pp.box[5] = -INFINITY;
            PackedVertex* out = c.verts.data() + pp.firstVertex;
            for (const PointData& d : p->points) {
                for (int k = 0; k < 3; ++k) {
                    out->xyz[k] = d.xyz[k];
                    out->shade[k] = 0; // packLooks
                    pp.box[k] = std::min(pp.box[k], d.xyz[k]);
                    pp.box[k + 3] = std::max(pp.box[k + 3], d.xyz[k]);
                }
                ++out;
            }
            if (looks) pending.emplace_back(static_cast<uint32_t>(i), p);
        }
        growBox(box, pp.box);
    }
    while (i < c.polys.size() && c.polys[i].handle == 0)
        ++i;
    if (i != c.polys.size()) return false;
    std::copy(box, box + 6, c.box);
    c.allLooksPending = !looks;
    c.pendingLooks = std::move(pending);
    return true;
}

// This thread's spare arrays: a packing that outgrows its own moves into them (their pages
// are already mapped; fresh ones cost a fault each) and leaves its old ones there.
GroupCache& spareArrays() {
    thread_local GroupCache spare;
    return spare;
}

template <class T> void makeRoom(std::vector<T>& v, size_t need, std::vector<T>& spare) {
    if (v.capacity() >= need) return;
    spare.clear();
    spare.reserve(std::max(need, v.size() * 2));
    spare.insert(spare.end(), v.begin(), v.end());
    std::swap(v, spare);
}

// The repacking after polygons were removed and others added at the end of the group's list
// (a cut: originals out, halves in), when every other polygon is unchanged: the removed ones
// are retired where they are and the new ones packed at the end, so that nothing else moves.
// Drawn and picked in list order, this is what a whole packing gives. False, with nothing
// written, when the group does not fit or the retired ones would grow past a third of the
// packing (the whole layout then drops them). With `looksNow`, the looks of the appended
// polygons are written as they are packed (their points are at hand), else left pending.
bool repackByAppending(const Group& g, GroupCache& c, bool looksNow) {
    if (c.polys.empty() || g.ownPolygons < 0) return false;
    // First the plan: the packed polygons the group still has, found in order, then the new ones.
    thread_local std::vector<uint32_t> gone;
    gone.clear();
    double box[6] = {INFINITY, INFINITY, INFINITY, -INFINITY, -INFINITY, -INFINITY};
    size_t i = 0;
    const Polygon* p = g.firstPolygon;
    for (; p && p->handle <= c.newest; p = p->nextInGroup, ++i) {
        for (; i < c.polys.size() && c.polys[i].handle != p->handle; ++i)
            if (c.polys[i].handle != 0) gone.push_back(static_cast<uint32_t>(i));
        if (i == c.polys.size()) return false; // not packed, or out of order
        const PackedPolygon& pp = c.polys[i];
        if (pp.version != p->version || pp.vertexCount != p->points.size()) return false;
        growBox(box, pp.box);
    }
    for (; i < c.polys.size(); ++i)
        if (c.polys[i].handle != 0) gone.push_back(static_cast<uint32_t>(i));
    const Polygon* firstNew = p;
    size_t added = 0, addedPoints = 0;
    for (; p; p = p->nextInGroup, ++added) {
        if (p->handle <= c.newest) return false;
        addedPoints += p->points.size();
    }
    if (gone.empty() && added == 0) return false;
    const size_t retired = c.retired + gone.size(), total = c.polys.size() + added;
    if (retired * 3 > total) return false;

    const bool looks = c.looksPacked;
    c.allLooksPending = !looks;
    c.pendingLooks.clear();
    c.retired = static_cast<uint32_t>(retired);
    for (const uint32_t k : gone) {
        PackedPolygon& pp = c.polys[k];
        pp.handle = 0;
        pp.version = 0;
        pp.vertexCount = pp.triCount = 0;
        pp.disabled = true;
    }
    GroupCache& spare = spareArrays();
    makeRoom(c.polys, total, spare.polys);
    makeRoom(c.verts, c.verts.size() + addedPoints, spare.verts);
    makeRoom(c.tris, c.tris.size() + 3 * addedPoints, spare.tris); // a ring of n points has n - 2 triangles
    if (looks) makeRoom(c.extras, c.verts.size() + addedPoints, spare.extras);
    std::vector<double> ring;
    for (p = firstNew; p; p = p->nextInGroup) {
        if (!packPolygonGeometry(*p, c, ring)) continue;
        growBox(box, c.polys.back().box);
        c.newest = std::max(c.newest, p->handle);
        if (!looks) continue;
        c.extras.resize(c.verts.size());
        const PackedPolygon& pp = c.polys.back();
        if (looksNow)
            packPolygonLooks(*p, pp, c.verts.data() + pp.firstVertex, c.extras.data() + pp.firstVertex);
        else
            c.pendingLooks.emplace_back(static_cast<uint32_t>(c.polys.size() - 1), p);
    }
    std::copy(box, box + 6, c.box);
    return true;
}

} // namespace

void packGeometry(const Group& g, GroupCache& c) {
    packGeometryAndMaybeLooks(g, c, false);
}

namespace {

void packGeometryAndMaybeLooks(const Group& g, GroupCache& c, bool looksNow) {
    if (repackInPlace(g, c)) {
        c.version = g.version;
        c.ownPolygons = g.ownPolygons;
        c.looksPacked = false;
        return;
    }
    if (repackByAppending(g, c, looksNow)) {
        c.version = g.version;
        c.ownPolygons = g.ownPolygons;
        c.looksPacked = false;
        return;
    }
    // The last packing moves aside (into this thread's spare arrays, whose memory the new
    // packing reuses): polygons it packed at their present version are copied from it.
    GroupCache& old = spareArrays();
    std::swap(old.verts, c.verts);
    std::swap(old.extras, c.extras);
    std::swap(old.polys, c.polys);
    std::swap(old.tris, c.tris);
    const bool oldLooks = c.looksPacked;
    c.version = g.version;
    c.ownPolygons = g.ownPolygons;
    c.looksPacked = false;
    c.allLooksPending = !oldLooks || old.polys.empty();
    c.pendingLooks.clear();
    c.retired = 0;
    c.newest = 0;
    c.verts.clear();
    c.extras.clear();
    c.polys.clear();
    c.tris.clear();
    c.box[0] = c.box[1] = c.box[2] = INFINITY;
    c.box[3] = c.box[4] = c.box[5] = -INFINITY;
    const bool looks = !c.allLooksPending; // extras kept alongside the copies
    // Room for half as many polygons again, so that those appended later (a cut's halves) fit
    // without moving the rest to fresh pages; room not written maps no pages.
    if (!old.polys.empty()) {
        const size_t n = static_cast<size_t>(g.ownPolygons) * 3 / 2;
        const size_t perPolygon = old.verts.size() / old.polys.size() + 1;
        const size_t trisPerPolygon = old.tris.size() / old.polys.size() + 3;
        c.polys.reserve(n);
        c.verts.reserve(n * perPolygon);
        c.tris.reserve(n * trisPerPolygon);
        if (looks) c.extras.reserve(n * perPolygon);
    }
    std::vector<double> ring;
    std::unordered_map<Handle, uint32_t> where; // old index by handle, made at the first reordering
    size_t next = 0;                            // the old polygon expected next
    Handle maxOld = 0;
    size_t runBegin = 0, runEnd = 0;            // old polygons to copy as one run
    for (const Polygon* p = g.firstPolygon; p; p = p->nextInGroup) {
        size_t k = SIZE_MAX;
        if (next < old.polys.size() && old.polys[next].handle == p->handle) {
            k = next++;
        } else if (!old.polys.empty()) {
            // Handles are never reused: one above every packed handle is a new polygon. A few
            // removed polygons are stepped over; anything else asks the table.
            if (maxOld == 0)
                for (const PackedPolygon& o : old.polys)
                    maxOld = std::max(maxOld, o.handle);
            if (p->handle <= maxOld) {
                for (size_t j = next + 1; j < std::min(old.polys.size(), next + 16) && k == SIZE_MAX; ++j)
                    if (old.polys[j].handle == p->handle) k = j;
                if (k == SIZE_MAX) {
                    if (where.empty())
                        for (size_t i = 0; i < old.polys.size(); ++i)
                            where.emplace(old.polys[i].handle, static_cast<uint32_t>(i));
                    if (auto it = where.find(p->handle); it != where.end()) k = it->second;
                }
                if (k != SIZE_MAX) next = k + 1;
            }
        }
        if (k != SIZE_MAX && old.polys[k].version == p->version && old.polys[k].vertexCount == p->points.size()) {
            if (k != runEnd) {
                copyPolygons(old, runBegin, runEnd, c, looks);
                runBegin = k;
            }
            runEnd = k + 1;
            continue;
        }
        copyPolygons(old, runBegin, runEnd, c, looks);
        runBegin = runEnd = 0;
        if (!packPolygonGeometry(*p, c, ring)) continue;
        growBox(c.box, c.polys.back().box);
        c.newest = std::max(c.newest, p->handle);
        if (looks) {
            c.extras.resize(c.verts.size());
            c.pendingLooks.emplace_back(static_cast<uint32_t>(c.polys.size() - 1), p);
        }
    }
    copyPolygons(old, runBegin, runEnd, c, looks);
}

} // namespace

void packLooks(const Group& g, GroupCache& c) {
    if (!c.allLooksPending) {
        for (const auto& [k, p] : c.pendingLooks) {
            const PackedPolygon& pp = c.polys[k];
            packPolygonLooks(*p, pp, c.verts.data() + pp.firstVertex, c.extras.data() + pp.firstVertex);
        }
        c.pendingLooks.clear();
        c.looksPacked = true;
        return;
    }
    c.extras.resize(c.verts.size());
    size_t k = 0;
    // The packed polygons are the group's own in list order, less those packGeometry passed,
    // retired ones among them.
    for (const Polygon* p = g.firstPolygon; p && k < c.polys.size(); p = p->nextInGroup) {
        while (k + 1 < c.polys.size() && c.polys[k].handle == 0)
            ++k;
        const PackedPolygon& pp = c.polys[k];
        if (p->handle != pp.handle || p->points.size() != pp.vertexCount) continue;
        ++k;
        packPolygonLooks(*p, pp, c.verts.data() + pp.firstVertex, c.extras.data() + pp.firstVertex);
    }
    c.looksPacked = true;
}

} // namespace zelmar::render
