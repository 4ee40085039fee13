#include "scene/ChasePhysics.h"

#include "pick/Picker.h"
#include "scene/ChaseStep.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>

namespace zelmar::chase {
namespace {

struct Contact {
    double t = 0;
    V3 normal; // unit, facing the ray's origin
};

// The nearest collisional polygon along the ray within (0, tMax), the mover's own polygons
// left out (its group is disabled for the moment of the pick, which reads the flags then).
bool cast(const Mover& mv, V3 origin, V3 dir, double tMax, Contact& out) {
    bool wasDisabled = false;
    if (mv.grp) {
        wasDisabled = mv.grp->disabled;
        mv.grp->disabled = true;
    }
    World& w = world();
    bool found = false;
    double tMin = 0;
    double o[3], d[3];
    origin.store(o);
    dir.store(d);
    // Polygons that are not collisional are passed through: look again beyond them.
    for (int tries = 0; tries < 8 && tMin < tMax; ++tries) {
        pick::WorldHit hit;
        if (!pick::pickRay(o, d, tMin, tMax, hit)) break;
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
        found = true;
        break;
    }
    if (mv.grp) mv.grp->disabled = wasDisabled;
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
    V3 next = here;
    const V3 d = v * kStep;
    const double len = length(d);
    if (len > 0) {
        const V3 dir = d * (1.0 / len);
        const double r = mv.radiusAlong(dir);
        Contact c;
        if (cast(mv, here, dir, len + r, c)) {
            // Stop short of the surface, then bounce: the normal part of the velocity turns
            // over, scaled by the elasticity (0 slides along the surface).
            const double gap = 1e-6 * std::max(1.0, len);
            next = here + dir * std::max(0.0, c.t - r - gap);
            const double e = std::clamp(mv.elasticity, 0.0, 1.0);
            const double vn = dot(v, c.normal);
            if (vn < 0) v = v - c.normal * ((1 + e) * vn);
        } else {
            next = here + d;
        }
    }
    v.store(m.velocity);
    if (mv.currentSpeed) *mv.currentSpeed = length(v);
    const bool moves = next.x != here.x || next.y != here.y || next.z != here.z;
    bool spins = false;
    if (mv.grp && (mv.spin.x != 0 || mv.spin.y != 0 || mv.spin.z != 0)) {
        // Spin about the group's own axes, about its location, moving it at the same time.
        const double deg[3] = {mv.spin.x * kStep, mv.spin.y * kStep, mv.spin.z * kStep};
        const M3 a = axisMatrix(*mv.grp);
        transformGroup(*mv.grp, a.transposed() * rotationXYZ(deg) * a, here, next - here, true);
        spins = true;
    } else if (moves) {
        mv.place(next);
    }
    return moves || spins;
}

V3 setDown(Mover& mv, V3 trackPos) {
    const double h = std::max(0.0, mv.fallHeight);
    Contact c;
    const V3 from = trackPos + V3(0, 0, h);
    if (!cast(mv, from, V3(0, 0, -1), INFINITY, c)) return trackPos;
    return V3(trackPos.x, trackPos.y, from.z - c.t + h);
}

} // namespace zelmar::chase
