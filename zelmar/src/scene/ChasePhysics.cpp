#include "scene/ChasePhysics.h"

#include "pick/Bvh.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "scene/ChaseStep.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <vector>

namespace zelmar::chase {
namespace {

struct Contact {
    double t = 0;
    V3 normal; // unit, facing the ray's origin
};

// What physics and falling groups meet: the drawn groups that no chase rule moves (nor an
// ancestor's), with their packed polygons and a BVH each. Chasers pass through each other;
// that keeps a step's cost independent of how many of them there are. Gathered once a step.
struct Obstacle {
    const render::GroupCache* gc;
    const pick::Bvh* bvh;
};

struct Obstacles {
    std::vector<Obstacle> list;
    bool valid = false;
    std::unordered_map<Handle, std::pair<uint64_t, pick::Bvh>> bvhs; // stamp of the packed data, BVH
};

Obstacles& obstacles() {
    static Obstacles o;
    return o;
}

// Disabled (itself or above) or moved by a chase rule (itself or above).
bool skipped(const Group* g) {
    for (; g; g = g->father)
        if (g->disabled || g->chaseType != kNone) return true;
    return false;
}

const std::vector<Obstacle>& currentObstacles() {
    Obstacles& o = obstacles();
    if (o.valid) return o.list;
    std::vector<const Group*> groups;
    for (const Group* g = world().firstGroup(); g; g = g->nextInWorld)
        if (g->ownPolygons > 0 && !skipped(g)) groups.push_back(g);
    render::SceneCache& cache = render::sceneCache();
    cache.update(groups, render::workerCount());
    o.list.clear();
    for (const Group* g : groups) {
        const render::GroupCache& gc = cache.get(*g);
        if (gc.polys.empty() || gc.box[0] > gc.box[3]) continue;
        auto& [stamp, bvh] = o.bvhs[g->handle];
        if (stamp != gc.stamp) {
            bvh.build(gc);
            stamp = gc.stamp;
        }
        o.list.push_back({&gc, &bvh});
    }
    if (o.bvhs.size() > 2 * o.list.size() + 16) { // groups that died or started moving
        World& w = world();
        for (auto it = o.bvhs.begin(); it != o.bvhs.end();) {
            const Group* g = w.group(it->first);
            it = g && !skipped(g) ? std::next(it) : o.bvhs.erase(it);
        }
    }
    o.valid = true;
    return o.list;
}

// The nearest collisional polygon along one ray within (0, tMax).
bool castRay(V3 origin, V3 dir, double tMax, Contact& out) {
    const std::vector<Obstacle>& list = currentObstacles();
    World& w = world();
    double o[3], d[3];
    origin.store(o);
    dir.store(d);
    double tMin = 0;
    // Polygons that are not collisional are passed through: look again beyond them.
    for (int tries = 0; tries < 8 && tMin < tMax; ++tries) {
        pick::Ray ray = pick::makeRay(o, d, tMin, tMax);
        const Obstacle* best = nullptr;
        pick::Hit hit;
        for (const Obstacle& ob : list) {
            double tEnter;
            if (!pick::rayBox(ray, ob.gc->box, tEnter)) continue;
            pick::Hit h;
            if (ob.bvh->intersect(*ob.gc, ray, h)) { // narrows ray.tMax
                best = &ob;
                hit = h;
            }
        }
        if (!best) return false;
        const render::PackedPolygon& pp = best->gc->polys[hit.polygon];
        if (const Polygon* p = w.polygon(pp.handle); p && !p->collisional) {
            tMin = hit.t + 1e-9 * std::max(1.0, hit.t);
            continue;
        }
        V3 n(pp.normal);
        if (dot(n, dir) > 0) n = -n;
        out.t = hit.t;
        out.normal = length(n) > 0 ? n : -dir;
        return true;
    }
    return false;
}

} // namespace

void beginStep() {
    obstacles().valid = false;
}

namespace {

// Where rays start for a mover at `pos`: a camera's location; the corners of a group's box
// on the side it moves to (offsets from its centre, so they follow it through a step).
std::vector<V3> leadingCorners(const Mover& mv, V3 dir) {
    if (mv.cam) return {V3{}};
    const V3 half = groupDimensions(*mv.grp) * 0.5;
    const M3 a = axisMatrix(*mv.grp);
    std::vector<V3> out;
    for (int i = 0; i < 8; ++i) {
        const V3 c = a.row(0) * (i & 1 ? half.x : -half.x) + a.row(1) * (i & 2 ? half.y : -half.y) +
                     a.row(2) * (i & 4 ? half.z : -half.z);
        if (dot(c, dir) >= -1e-12 * (half.x + half.y + half.z)) out.push_back(c);
    }
    return out;
}

bool castMover(const Mover& mv, V3 pos, V3 dir, double len, Contact& out) {
    bool found = false;
    for (const V3& corner : leadingCorners(mv, dir)) {
        Contact c;
        if (castRay(pos + corner, dir, found ? out.t : len, c) && (!found || c.t < out.t)) {
            out = c;
            found = true;
        }
    }
    return found;
}

} // namespace

bool physicsStep(Mover& mv) {
    Motion& m = *mv.m;
    if (!m.started) {
        // The set speed starts the mover along the way it faces.
        (mv.heading() * mv.speed).store(m.velocity);
        m.started = true;
    }
    V3 v(m.velocity);
    v = v + mv.force * kStep;
    v = v * std::max(0.0, 1.0 - std::max(0.0, mv.friction) * kStep);
    const double speed = length(v);
    if (mv.maxSpeed > 0 && speed > mv.maxSpeed) v = v * (mv.maxSpeed / speed);
    if (!std::isfinite(length(v))) v = V3{};
    const V3 here = mv.position();
    V3 pos = here;
    {
        // Collide and slide: move to the first contact, bounce (the normal part of the
        // velocity turns over, scaled by the elasticity; 0 slides along the surface), and
        // spend the rest of the step with the new velocity.
        const double e = std::clamp(mv.elasticity, 0.0, 1.0);
        double remaining = kStep;
        for (int pass = 0; pass < 3 && remaining > 0; ++pass) {
            const V3 d = v * remaining;
            const double len = length(d);
            if (!(len > 0)) break;
            const V3 dir = d * (1.0 / len);
            Contact c;
            if (!castMover(mv, pos, dir, len, c)) {
                pos = pos + d;
                break;
            }
            const double travel = std::max(0.0, c.t - 1e-6 * std::max(1.0, len));
            pos = pos + dir * travel;
            remaining *= 1.0 - travel / len;
            const double vn = dot(v, c.normal);
            if (vn < 0) v = v - c.normal * ((1 + e) * vn);
        }
    }
    v.store(m.velocity);
    if (mv.currentSpeed) *mv.currentSpeed = length(v);
    const bool moves = pos.x != here.x || pos.y != here.y || pos.z != here.z;
    if (mv.grp && (mv.spin.x != 0 || mv.spin.y != 0 || mv.spin.z != 0)) {
        // Spin about the group's own axes, about its location, moving it at the same time.
        const double deg[3] = {mv.spin.x * kStep, mv.spin.y * kStep, mv.spin.z * kStep};
        const M3 a = axisMatrix(*mv.grp);
        transformGroup(*mv.grp, a.transposed() * rotationXYZ(deg) * a, here, pos - here, true);
        return true;
    }
    if (moves) mv.place(pos);
    return moves;
}

V3 setDown(Mover& mv, V3 trackPos) {
    const double h = std::max(0.0, mv.fallHeight);
    Contact c;
    const V3 from = trackPos + V3(0, 0, h);
    if (!castRay(from, V3(0, 0, -1), INFINITY, c)) return trackPos;
    return V3(trackPos.x, trackPos.y, from.z - c.t + h);
}

} // namespace zelmar::chase
