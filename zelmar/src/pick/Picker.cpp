#include "pick/Picker.h"

#include "pick/Bvh.h"
#include "render/Renderer.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "render/ThreadPool.h"
#include "scene/World.h"
#include <cmath>
#include <unordered_map>

namespace zelmar::pick {
namespace {

struct Entry {
    uint64_t stamp = 0;
    Bvh bvh;
};

std::unordered_map<Handle, Entry>& bvhs() {
    static std::unordered_map<Handle, Entry> m;
    return m;
}

const Bvh& bvhFor(const Group& g, const render::GroupCache& gc) {
    Entry& e = bvhs()[g.handle];
    if (e.stamp != gc.stamp) {
        e.bvh.build(gc);
        e.stamp = gc.stamp;
    }
    return e.bvh;
}

void prune() {
    static uint64_t seen = ~0ull;
    World& w = world();
    if (w.generation == seen) return;
    seen = w.generation;
    auto& m = bvhs();
    for (auto it = m.begin(); it != m.end();)
        it = w.group(it->first) ? std::next(it) : m.erase(it);
}

// Brings the drawn groups' packed data and BVHs up to date (stale ones in parallel) and
// answers those groups.
std::vector<const Group*> refreshed() {
    prune();
    render::SceneCache& cache = render::sceneCache();
    const std::vector<const Group*> groups = render::drawnGroups();
    const int threads = render::workerCount();
    cache.update(groups, threads);
    std::vector<std::pair<const render::GroupCache*, Entry*>> stale;
    for (const Group* g : groups) {
        const render::GroupCache& gc = cache.get(*g);
        Entry& e = bvhs()[g->handle];
        if (e.stamp != gc.stamp) stale.emplace_back(&gc, &e);
    }
    render::parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        auto [gc, e] = stale[static_cast<size_t>(i)];
        e->bvh.build(*gc);
        e->stamp = gc->stamp;
    });
    return groups;
}

} // namespace

bool pickRay(const double origin[3], const double dir[3], double tMin, double tMax, WorldHit& out) {
    const std::vector<const Group*> groups = refreshed();
    Ray ray = makeRay(origin, dir, tMin, tMax);
    bool found = false;
    render::SceneCache& cache = render::sceneCache();
    for (const Group* g : groups) {
        const render::GroupCache& gc = cache.get(*g);
        if (gc.polys.empty()) continue;
        double tEnter;
        if (!rayBox(ray, gc.box, tEnter)) continue;
        Hit h;
        if (bvhFor(*g, gc).intersect(gc, ray, h)) {
            found = true;
            out.t = h.t;
            out.polygon = gc.polys[h.polygon].handle;
            out.group = g->handle;
        }
    }
    if (found)
        for (int k = 0; k < 3; ++k)
            out.point[k] = origin[k] + dir[k] * out.t;
    return found;
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
        tMin = -1e300; // parallel views see at any depth
    }
    return pickRay(o, d, tMin, INFINITY, out);
}

void refreshAll() {
    refreshed();
}

} // namespace zelmar::pick
