#include "pick/Picker.h"

#include "rays/Narrow.h"
#include "rays/PickScene.h"
#include "render/Facing.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "render/ThreadPool.h"
#include "scene/World.h"
#include <bit>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace zelmar::pick {
namespace {

constexpr rays::PickScene::Member kNoMember = std::numeric_limits<rays::PickScene::Member>::max();
// The caller's word of a triangle: its polygon's index in the group's packed polygons, and
// whether that polygon is seen from the front only (so a hit on a two-sided one reads no
// polygon data).
constexpr uint32_t kFrontOnly = 0x80000000u;

struct Entry {
    Handle group = 0;
    const Group* owner = nullptr;           // alive while the entry is (refresh drops dead groups' entries)
    const render::GroupCache* gc = nullptr; // stable: the cache's entries are map nodes
    uint64_t stamp = 0;                     // of gc when this entry was built
    rays::PickScene::Member member = kNoMember;
    uint32_t triangleCount = 0;
    double origin[3] = {0, 0, 0};
    bool moved = false; // this refresh: the member's triangles stay, only its origin changes
    // The enabled rotated polygons (sprite cards), by index in the packed polygons: they turn with the
    // view, so they are tested apart from the kernel's scene, which holds the rest.
    std::vector<uint32_t> cards;
    // Filled in parallel, then handed to the scene.
    std::vector<float> points;
    std::vector<uint32_t> triangles;
};

// What a candidate hit reads of its member, side by side in one array indexed by member:
// the chain entry -> cache -> arrays would cost a cache miss per link on every click.
struct Hot {
    const uint32_t* triangles = nullptr; // four words each (rays::PickScene)
    uint32_t triangleCount = 0;
    const render::PackedVertex* verts = nullptr;
    const render::PackedPolygon* polys = nullptr;
    const render::GroupCache* gc = nullptr;
    uint64_t stamp = 0;
    const Group* owner = nullptr;
    Entry* entry = nullptr;
};

struct PickWorld {
    rays::PickScene scene;
    std::unordered_map<Handle, Entry> entries; // by group handle
    std::vector<Hot> hot;                      // by member
    std::vector<const Entry*> withCards;       // the entries holding cards
    uint64_t generation = std::numeric_limits<uint64_t>::max();
    // The render cache's last stamp when a refresh ended: every entry then matched its
    // cache entry, and still does while the stamp stays.
    uint64_t cacheStamp = std::numeric_limits<uint64_t>::max();

    struct Known {
        const Group* group;
        uint32_t version;
        int64_t own;
    };
    std::vector<Known> known;
    const World* knownWorld = nullptr;
    uint64_t knownTree = std::numeric_limits<uint64_t>::max();

    void refresh(bool force);
    bool changedGroups(std::vector<const Group*>& changed);
    const Hot* member(rays::PickScene::Member m) const { return m < hot.size() && hot[m].entry ? &hot[m] : nullptr; }
    void setHot(Entry& e);
};

PickWorld& pickWorld() {
    static PickWorld w;
    return w;
}

// The middle of the group's box: its points are kept relative to it.
void setOrigin(Entry& e) {
    const render::GroupCache& gc = *e.gc;
    for (int k = 0; k < 3; ++k)
        e.origin[k] = gc.box[k] <= gc.box[k + 3] ? 0.5 * (gc.box[k] + gc.box[k + 3]) : 0.0;
}

// Calls f(a, b, c, word) for each triangle of the group's enabled polygons but its cards, in order.
template <class F> void forEachTriangle(const render::GroupCache& gc, F&& f) {
    for (uint32_t p = 0; p < gc.polys.size(); ++p) {
        const render::PackedPolygon& pp = gc.polys[p];
        if (pp.disabled || pp.rotated) continue;
        const uint32_t word = p | (pp.frontOnly ? kFrontOnly : 0u);
        const uint32_t* t = gc.tris.data() + static_cast<size_t>(pp.firstTri) * 3;
        for (uint32_t i = 0; i < pp.triCount; ++i) {
            const uint32_t a = t[3 * i], b = t[3 * i + 1], c = t[3 * i + 2];
            if (a >= pp.vertexCount || b >= pp.vertexCount || c >= pp.vertexCount) continue;
            if (!f(pp.firstVertex + a, pp.firstVertex + b, pp.firstVertex + c, word)) return;
        }
    }
}

// True when the member already holds, bit for bit, what pack would give it: a group moved
// as a whole keeps its points relative to its box. Compared as they are made, with nothing
// allocated.
bool holdsPacked(const Entry& e, const rays::PickScene& scene) {
    if (e.member == kNoMember) return false;
    const render::GroupCache& gc = *e.gc;
    const float* pts = scene.points(e.member);
    if (scene.pointFloats(e.member) != gc.verts.size() * 3) return false;
    for (size_t i = 0; i < gc.verts.size(); ++i)
        for (int k = 0; k < 3; ++k)
            if (std::bit_cast<uint32_t>(rays::narrow(gc.verts[i].xyz[k] - e.origin[k])) !=
                std::bit_cast<uint32_t>(pts[i * 3 + k]))
                return false;
    const uint32_t* held = scene.triangles(e.member);
    const size_t words = scene.triangleWords(e.member);
    size_t at = 0;
    bool same = true;
    forEachTriangle(gc, [&](uint32_t a, uint32_t b, uint32_t c, uint32_t word) {
        same = at + 4 <= words && held[at] == a && held[at + 1] == b && held[at + 2] == c && held[at + 3] == word;
        at += 4;
        return same;
    });
    return same && at == words;
}

// The group's triangles of enabled polygons, points relative to the origin.
void pack(Entry& e) {
    const render::GroupCache& gc = *e.gc;
    e.points.resize(gc.verts.size() * 3);
    for (size_t i = 0; i < gc.verts.size(); ++i)
        for (int k = 0; k < 3; ++k)
            e.points[i * 3 + k] = rays::narrow(gc.verts[i].xyz[k] - e.origin[k]);
    e.triangles.clear();
    forEachTriangle(gc, [&](uint32_t a, uint32_t b, uint32_t c, uint32_t word) {
        e.triangles.insert(e.triangles.end(), {a, b, c, word});
        return true;
    });
    e.cards.clear();
    for (uint32_t p = 0; p < gc.polys.size(); ++p)
        if (gc.polys[p].rotated && !gc.polys[p].disabled && gc.polys[p].triCount > 0) e.cards.push_back(p);
}

void PickWorld::setHot(Entry& e) {
    if (e.member == kNoMember) return;
    if (e.member >= hot.size()) hot.resize(e.member + 1);
    Hot& h = hot[e.member];
    h.triangles = scene.triangles(e.member);
    h.triangleCount = e.triangleCount;
    h.verts = e.gc->verts.data();
    h.polys = e.gc->polys.data();
    h.gc = e.gc;
    h.stamp = e.stamp;
    h.owner = e.owner;
    h.entry = &e;
}

// The groups as the last refresh saw them, in the world's order. While no group came or
// died (the same count and tree generation: a death moves it on) they are still the world's
// groups in its order, so a refresh after an edit reads each group's version through this
// array, fetching ahead, rather than chasing the world's list one miss at a time.
bool PickWorld::changedGroups(std::vector<const Group*>& changed) {
    World& w = world();
    if (&w != knownWorld || w.treeGeneration() != knownTree || w.groupCount() != known.size() ||
        (!known.empty() && w.firstGroup() != known.front().group))
        return false;
    constexpr size_t kAhead = 8;
    for (size_t i = 0; i < known.size(); ++i) {
        if (i + kAhead < known.size()) __builtin_prefetch(&known[i + kAhead].group->version);
        Known& k = known[i];
        const Group* g = k.group;
        if (k.version != g->version || k.own != g->ownPolygons) {
            changed.push_back(g);
            k.version = g->version;
            k.own = g->ownPolygons;
        }
    }
    return true;
}

void PickWorld::refresh(bool force) {
    World& w = world();
    if (!force && w.generation == generation) return;
    std::vector<const Group*> changed;
    const bool sameGroups = !force && changedGroups(changed);
    if (!sameGroups) {
        // Groups came or went (or a pick met data changed behind the world's back): walk
        // every group, drop the entries of dead ones.
        changed.clear();
        known.clear();
        for (const Group* g = w.firstGroup(); g; g = g->nextInWorld) {
            changed.push_back(g);
            known.push_back({g, g->version, g->ownPolygons});
        }
        knownWorld = &w;
        knownTree = w.treeGeneration();
        for (auto it = entries.begin(); it != entries.end();) {
            if (w.group(it->first)) {
                ++it;
                continue;
            }
            if (it->second.member != kNoMember) {
                scene.remove(it->second.member);
                hot[it->second.member] = Hot{};
            }
            it = entries.erase(it);
        }
    }
    render::SceneCache& cache = render::sceneCache();
    const int threads = render::workerCount();
    cache.updateGeometry(changed, threads); // the looks wait for the next frame
    std::vector<Entry*> stale;
    for (const Group* g : changed) {
        const render::GroupCache& gc = cache.geometry(*g);
        Entry& e = entries[g->handle];
        if (e.gc == &gc && e.stamp == gc.stamp) continue;
        e.group = g->handle;
        e.owner = g;
        e.gc = &gc;
        e.stamp = gc.stamp;
        stale.push_back(&e);
    }
    render::parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        Entry& e = *stale[static_cast<size_t>(i)];
        setOrigin(e);
        e.moved = holdsPacked(e, scene);
        if (!e.moved) pack(e);
    });
    // Members come and go on this thread only; their scenes are built in parallel below.
    for (Entry* e : stale) {
        if (e->moved) continue;
        if (e->triangles.empty() && e->member != kNoMember) {
            scene.remove(e->member);
            hot[e->member] = Hot{};
            e->member = kNoMember;
        } else if (!e->triangles.empty() && e->member == kNoMember) {
            e->member = scene.add();
            if (e->member == kNoMember) continue; // no ray kernel on this machine
            if (e->member >= hot.size()) hot.resize(e->member + 1);
        }
    }
    render::parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        Entry& e = *stale[static_cast<size_t>(i)];
        if (e.moved)
            scene.setOrigin(e.member, e.origin); // moved as a whole, or not at all
        else if (e.member != kNoMember)
            scene.setTriangles(e.member, std::move(e.points), std::move(e.triangles), e.origin);
        e.points = {};
        e.triangles = {};
    });
    for (Entry* e : stale) {
        if (!e->moved) e->triangleCount = static_cast<uint32_t>(scene.triangleWords(e->member) / 4);
        setHot(*e);
    }
    scene.commit();
    withCards.clear();
    for (const auto& [handle, e] : entries)
        if (!e.cards.empty()) withCards.push_back(&e);
    generation = w.generation;
    cacheStamp = cache.lastStamp();
}

struct Query {
    const PickWorld* world;
    const double* origin;
    const double* dir;
    double tMin, tMax;
    rays::PickScene::Member lastMember = kNoMember; // the group test, remembered for the next candidate
    bool lastPickable = false;
    bool rootKnown = false;
    const Group* root = nullptr;
    bool checkStamps = true; // some group was repacked since the last refresh
    bool stale = false;      // a group's packed data changed behind the world's back
};

// Read live at each pick (a group's flag may be set without a version change).
bool pickable(Query& q, const Group& g) {
    for (const Group* a = &g; a; a = a->father)
        if (a->disabled) return false;
    if (!q.rootKnown) {
        q.root = world().group(render::settings().groupToRender);
        q.rootKnown = true;
    }
    return !q.root || world().inSubtree(g, *q.root);
}

// Distance along the ray to the triangle's plane, in double precision; NaN when parallel.
double exactT(const Query& q, const Hot& h, const uint32_t* c) {
    const double* a = h.verts[c[0]].xyz;
    const double* b = h.verts[c[1]].xyz;
    const double* cc = h.verts[c[2]].xyz;
    const double* d = q.dir;
    const double e1[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const double e2[3] = {cc[0] - a[0], cc[1] - a[1], cc[2] - a[2]};
    const double p[3] = {d[1] * e2[2] - d[2] * e2[1], d[2] * e2[0] - d[0] * e2[2], d[0] * e2[1] - d[1] * e2[0]};
    const double det = e1[0] * p[0] + e1[1] * p[1] + e1[2] * p[2];
    if (det == 0 || !std::isfinite(det)) return NAN;
    const double* o = q.origin;
    const double s[3] = {o[0] - a[0], o[1] - a[1], o[2] - a[2]};
    const double qv[3] = {s[1] * e1[2] - s[2] * e1[1], s[2] * e1[0] - s[0] * e1[2], s[0] * e1[1] - s[1] * e1[0]};
    return (e2[0] * qv[0] + e2[1] * qv[1] + e2[2] * qv[2]) / det;
}

// Distance along the ray to the triangle (Moller-Trumbore, double precision); NaN for a miss.
double rayTriangle(const double* o, const double* d, const double* a, const double* b, const double* c) {
    const double e1[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const double e2[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    const double p[3] = {d[1] * e2[2] - d[2] * e2[1], d[2] * e2[0] - d[0] * e2[2], d[0] * e2[1] - d[1] * e2[0]};
    const double det = e1[0] * p[0] + e1[1] * p[1] + e1[2] * p[2];
    if (det == 0 || !std::isfinite(det)) return NAN;
    const double inv = 1.0 / det;
    const double s[3] = {o[0] - a[0], o[1] - a[1], o[2] - a[2]};
    const double u = (s[0] * p[0] + s[1] * p[1] + s[2] * p[2]) * inv;
    if (u < 0 || u > 1) return NAN;
    const double qv[3] = {s[1] * e1[2] - s[2] * e1[1], s[2] * e1[0] - s[0] * e1[2], s[0] * e1[1] - s[1] * e1[0]};
    const double v = (d[0] * qv[0] + d[1] * qv[1] + d[2] * qv[2]) * inv;
    if (v < 0 || u + v > 1) return NAN;
    return (e2[0] * qv[0] + e2[1] * qv[1] + e2[2] * qv[2]) * inv;
}

bool accept(void* user, rays::PickScene::Member member, uint32_t triangle, double& t) {
    Query& q = *static_cast<Query*>(user);
    const Hot* h = q.world->member(member);
    if (!h || triangle >= h->triangleCount) return false;
    if (q.checkStamps && h->gc->stamp != h->stamp) {
        q.stale = true;
        return false;
    }
    if (member != q.lastMember) {
        q.lastMember = member;
        q.lastPickable = pickable(q, *h->owner);
    }
    if (!q.lastPickable) return false;
    const uint32_t* c = h->triangles + static_cast<size_t>(triangle) * 4;
    if (c[3] & kFrontOnly) {
        const render::PackedPolygon& pp = h->polys[c[3] & ~kFrontOnly];
        if (pp.normal[0] * q.dir[0] + pp.normal[1] * q.dir[1] + pp.normal[2] * q.dir[2] >= 0) return false;
    }
    t = exactT(q, *h, c);
    if (!(t >= q.tMin && t < q.tMax)) return false;
    __builtin_prefetch(&h->polys[c[3] & ~kFrontOnly].handle); // read if this hit stays the nearest
    return true;
}

// The nearest card hit beyond tMin and before `best`, each card turned to the view's eye (as stored
// without a view). False, with `stale` set, when a group was packed again since the last refresh.
bool nearestCard(const PickWorld& pw, Query& q, const render::View* view, double& best, WorldHit& out,
                 bool& stale) {
    bool found = false;
    for (const Entry* e : pw.withCards) {
        const render::GroupCache& gc = *e->gc;
        if (gc.stamp != e->stamp) {
            stale = true;
            return false;
        }
        if (!pickable(q, *e->owner)) continue;
        for (const uint32_t p : e->cards) {
            const render::PackedPolygon& pp = gc.polys[p];
            const render::FacingTurn turn = view ? render::facingTurn(*view, pp) : render::FacingTurn{};
            if (!turn.turned && pp.frontOnly &&
                pp.normal[0] * q.dir[0] + pp.normal[1] * q.dir[1] + pp.normal[2] * q.dir[2] >= 0)
                continue; // a card seen as stored is passed from behind as any polygon
            const uint32_t* tri = gc.tris.data() + static_cast<size_t>(pp.firstTri) * 3;
            for (uint32_t i = 0; i < pp.triCount; ++i) {
                const uint32_t* corner = tri + 3 * i;
                if (corner[0] >= pp.vertexCount || corner[1] >= pp.vertexCount || corner[2] >= pp.vertexCount) continue;
                double v[3][3] = {};
                for (int k = 0; k < 3; ++k) {
                    const double* xyz = gc.verts[pp.firstVertex + corner[k]].xyz;
                    if (turn.turned)
                        turn.point(xyz, v[k]);
                    else
                        std::copy(xyz, xyz + 3, v[k]);
                }
                const double t = rayTriangle(q.origin, q.dir, v[0], v[1], v[2]);
                if (!(t >= q.tMin && t < best)) continue;
                best = t;
                out.polygon = pp.handle;
                out.group = e->group;
                found = true;
            }
        }
    }
    return found;
}

bool pickAlong(const double origin[3], const double dir[3], double tMin, double tMax, const render::View* view,
               WorldHit& out) {
    PickWorld& pw = pickWorld();
    for (int attempt = 0; attempt < 2; ++attempt) {
        pw.refresh(attempt > 0);
        Query q{&pw, origin, dir, tMin, tMax};
        q.checkStamps = render::sceneCache().lastStamp() != pw.cacheStamp;
        rays::PickScene::Hit hit;
        bool found = pw.scene.nearest(origin, dir, tMin, tMax, accept, &q, hit);
        if (q.stale) continue;
        double best = tMax;
        if (found) {
            const Hot* h = pw.member(hit.member);
            best = hit.t;
            out.polygon = h->polys[h->triangles[static_cast<size_t>(hit.triangle) * 4 + 3] & ~kFrontOnly].handle;
            out.group = h->entry->group;
        }
        bool stale = false;
        if (!pw.withCards.empty() && nearestCard(pw, q, view, best, out, stale)) found = true;
        if (stale) continue;
        if (!found) return false;
        out.t = best;
        for (int k = 0; k < 3; ++k)
            out.point[k] = origin[k] + dir[k] * out.t;
        return true;
    }
    return false;
}

} // namespace

bool pickRay(const double origin[3], const double dir[3], double tMin, double tMax, WorldHit& out) {
    return pickAlong(origin, dir, tMin, tMax, nullptr, out);
}

bool pickPixel(const render::View& view, int x, int y, WorldHit& out) {
    double o[3], d[3];
    view.ray(x + 0.5, y + 0.5, o, d);
    // Beyond the near plane: depth along the view axis at least nearDepth.
    const double along = d[0] * view.axis[0][0] + d[1] * view.axis[0][1] + d[2] * view.axis[0][2];
    double tMin = 0;
    if (view.perspective) {
        if (!(along > 0)) return false;
        tMin = view.nearDepth / along;
    } else {
        tMin = -INFINITY; // parallel views see at any depth
    }
    return pickAlong(o, d, tMin, INFINITY, &view, out);
}

void refreshAll() {
    pickWorld().refresh(false);
}

} // namespace zelmar::pick
