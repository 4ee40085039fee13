#include "scene/ChasePhysics.h"

#include "pick/Picker.h"
#include "scene/ChaseStep.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zelmar::chase {
namespace {

struct Contact {
    double t = 0;
    V3 normal; // unit, facing the ray's origin
};

// Leaves the mover's own polygons out of the picks while it lives: its group is disabled,
// and picks read the flags at each call.
class SelfHidden {
  public:
    explicit SelfHidden(const Mover& mv) : g_(mv.grp) {
        if (g_) {
            was_ = g_->disabled;
            g_->disabled = true;
        }
    }
    ~SelfHidden() {
        if (g_) g_->disabled = was_;
    }
    SelfHidden(const SelfHidden&) = delete;
    SelfHidden& operator=(const SelfHidden&) = delete;

  private:
    Group* g_;
    bool was_ = false;
};

// The nearest collisional polygon along one ray within (0, tMax).
bool castRay(V3 origin, V3 dir, double tMax, Contact& out) {
    World& w = world();
    double tMin = 0;
    double o[3], d[3];
    origin.store(o);
    dir.store(d);
    // Polygons that are not collisional are passed through: look again beyond them.
    for (int tries = 0; tries < 8 && tMin < tMax; ++tries) {
        pick::WorldHit hit;
        if (!pick::pickRay(o, d, tMin, tMax, hit)) return false;
        const Polygon* p = w.polygon(hit.polygon);
        if (p && !p->collisional) {
            tMin = hit.t + 1e-9 * std::max(1.0, hit.t);
            continue;
        }
        double plane[4] = {0, 0, 0, 0};
        if (p) polygonPlane(*p, plane);
        V3 n(plane[0], plane[1], plane[2]);
        if (dot(n, dir) > 0) n = -n;
        out.t = hit.t;
        out.normal = length(n) > 0 ? n : -dir;
        return true;
    }
    return false;
}

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
        SelfHidden hidden(mv);
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
    SelfHidden hidden(mv);
    if (!castRay(from, V3(0, 0, -1), INFINITY, c)) return trackPos;
    return V3(trackPos.x, trackPos.y, from.z - c.t + h);
}

} // namespace zelmar::chase
