#include "pick/Picker.h"

#include "rays/Narrow.h"
#include "rays/PickScene.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "render/ThreadPool.h"
#include "scene/World.h"
#include <cmath>
#include <limits>
#include <unordered_map>

namespace zelmar::pick {
namespace {

constexpr rays::PickScene::Member kNoMember = std::numeric_limits<rays::PickScene::Member>::max();

struct Entry {
    Handle group = 0;
    const render::GroupCache* gc = nullptr; // stable: the cache's entries are map nodes
    uint64_t stamp = 0;                     // of gc when this entry was built
    rays::PickScene::Member member = kNoMember;
    std::vector<uint32_t> polygonOf; // per triangle: index into gc->polys
    double origin[3] = {0, 0, 0};
    // Filled in parallel, then handed to the scene.
    std::vector<float> points;
    std::vector<uint32_t> corners;
};

struct PickWorld {
    rays::PickScene scene;
    std::unordered_map<Handle, Entry> entries; // by group handle
    std::vector<Entry*> byMember;
    uint64_t generation = std::numeric_limits<uint64_t>::max();

    struct Known {
        const Group* group;
        Handle handle;
        uint32_t version;
        int64_t own;
    };
    std::vector<Known> known;

    void refresh(bool force);
    bool changedGroups(std::vector<const Group*>& changed);
    Entry* entry(rays::PickScene::Member m) const { return m < byMember.size() ? byMember[m] : nullptr; }
};

PickWorld& pickWorld() {
    static PickWorld w;
    return w;
}

// The group's triangles of enabled polygons, points relative to the middle of its box.
void pack(Entry& e) {
    const render::GroupCache& gc = *e.gc;
    for (int k = 0; k < 3; ++k)
        e.origin[k] = gc.box[k] <= gc.box[k + 3] ? 0.5 * (gc.box[k] + gc.box[k + 3]) : 0.0;
    e.points.resize(gc.verts.size() * 3);
    for (size_t i = 0; i < gc.verts.size(); ++i)
        for (int k = 0; k < 3; ++k)
            e.points[i * 3 + k] = rays::narrow(gc.verts[i].xyz[k] - e.origin[k]);
    e.corners.clear();
    e.polygonOf.clear();
    for (uint32_t p = 0; p < gc.polys.size(); ++p) {
        const render::PackedPolygon& pp = gc.polys[p];
        if (pp.disabled) continue;
        const uint32_t* t = gc.tris.data() + static_cast<size_t>(pp.firstTri) * 3;
        for (uint32_t i = 0; i < pp.triCount; ++i) {
            const uint32_t a = t[3 * i], b = t[3 * i + 1], c = t[3 * i + 2];
            if (a >= pp.vertexCount || b >= pp.vertexCount || c >= pp.vertexCount) continue;
            e.corners.insert(e.corners.end(), {pp.firstVertex + a, pp.firstVertex + b, pp.firstVertex + c});
            e.polygonOf.push_back(p);
        }
    }
}

// The groups as the last refresh saw them, in the world's order: a refresh after an edit
// reads each group's version once, in one pass, and looks nothing up.
bool PickWorld::changedGroups(std::vector<const Group*>& changed) {
    World& w = world();
    if (w.groupCount() != known.size()) return false;
    size_t i = 0;
    for (const Group* g = w.firstGroup(); g; g = g->nextInWorld, ++i) {
        Known& k = known[i];
        if (k.group != g || k.handle != g->handle) return false;
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
            known.push_back({g, g->handle, g->version, g->ownPolygons});
        }
        for (auto it = entries.begin(); it != entries.end();) {
            if (w.group(it->first)) {
                ++it;
                continue;
            }
            if (it->second.member != kNoMember) {
                scene.remove(it->second.member);
                byMember[it->second.member] = nullptr;
            }
            it = entries.erase(it);
        }
    }
    render::SceneCache& cache = render::sceneCache();
    const int threads = render::workerCount();
    cache.update(changed, threads);
    std::vector<Entry*> stale;
    for (const Group* g : changed) {
        const render::GroupCache& gc = cache.get(*g);
        Entry& e = entries[g->handle];
        if (e.gc == &gc && e.stamp == gc.stamp) continue;
        e.group = g->handle;
        e.gc = &gc;
        e.stamp = gc.stamp;
        stale.push_back(&e);
    }
    render::parallelFor(threads, static_cast<int>(stale.size()), [&](int i) { pack(*stale[static_cast<size_t>(i)]); });
    // Members come and go on this thread only; their scenes are built in parallel below.
    for (Entry* e : stale) {
        if (e->corners.empty() && e->member != kNoMember) {
            scene.remove(e->member);
            byMember[e->member] = nullptr;
            e->member = kNoMember;
        } else if (!e->corners.empty() && e->member == kNoMember) {
            e->member = scene.add();
            if (e->member == kNoMember) continue; // no ray kernel on this machine
            if (e->member >= byMember.size()) byMember.resize(e->member + 1, nullptr);
            byMember[e->member] = e;
        }
    }
    render::parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        Entry& e = *stale[static_cast<size_t>(i)];
        if (e.member != kNoMember) {
            if (scene.holds(e.member, e.points, e.corners))
                scene.setOrigin(e.member, e.origin); // moved as a whole, or not at all
            else
                scene.setTriangles(e.member, std::move(e.points), std::move(e.corners), e.origin);
        }
        e.points = {};
        e.corners = {};
    });
    scene.commit();
    generation = w.generation;
}

bool pickable(Handle group) {
    World& w = world();
    const Group* g = w.group(group);
    if (!g) return false;
    for (const Group* a = g; a; a = a->father)
        if (a->disabled) return false;
    const Group* root = w.group(render::settings().groupToRender);
    return !root || w.inSubtree(*g, *root);
}

struct Query {
    const PickWorld* world;
    const double* origin;
    const double* dir;
    double tMin, tMax;
    rays::PickScene::Member lastMember = kNoMember; // the group test, remembered for the next candidate
    bool lastPickable = false;
    bool stale = false; // a group's packed data changed behind the world's back
};

// Distance along the ray to the triangle's plane, in double precision; NaN when parallel.
double exactT(const Query& q, const Entry& e, uint32_t triangle) {
    const uint32_t* c = q.world->scene.corners(e.member) + static_cast<size_t>(triangle) * 3;
    const double* a = e.gc->verts[c[0]].xyz;
    const double* b = e.gc->verts[c[1]].xyz;
    const double* cc = e.gc->verts[c[2]].xyz;
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

bool accept(void* user, rays::PickScene::Member member, uint32_t triangle, double& t) {
    Query& q = *static_cast<Query*>(user);
    const Entry* e = q.world->entry(member);
    if (!e || triangle >= e->polygonOf.size()) return false;
    if (e->gc->stamp != e->stamp) {
        q.stale = true;
        return false;
    }
    if (member != q.lastMember) {
        q.lastMember = member;
        q.lastPickable = pickable(e->group);
    }
    if (!q.lastPickable) return false;
    const render::PackedPolygon& pp = e->gc->polys[e->polygonOf[triangle]];
    if (pp.frontOnly && pp.normal[0] * q.dir[0] + pp.normal[1] * q.dir[1] + pp.normal[2] * q.dir[2] >= 0)
        return false;
    t = exactT(q, *e, triangle);
    return t >= q.tMin && t < q.tMax;
}

} // namespace

bool pickRay(const double origin[3], const double dir[3], double tMin, double tMax, WorldHit& out) {
    PickWorld& pw = pickWorld();
    for (int attempt = 0; attempt < 2; ++attempt) {
        pw.refresh(attempt > 0);
        Query q{&pw, origin, dir, tMin, tMax};
        rays::PickScene::Hit hit;
        const bool found = pw.scene.nearest(origin, dir, tMin, tMax, accept, &q, hit);
        if (q.stale) continue;
        if (!found) return false;
        const Entry* e = pw.entry(hit.member);
        out.t = hit.t;
        out.polygon = e->gc->polys[e->polygonOf[hit.triangle]].handle;
        out.group = e->group;
        for (int k = 0; k < 3; ++k)
            out.point[k] = origin[k] + dir[k] * out.t;
        return true;
    }
    return false;
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
    return pickRay(o, d, tMin, INFINITY, out);
}

void refreshAll() {
    pickWorld().refresh(false);
}

} // namespace zelmar::pick
