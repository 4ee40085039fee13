#include "scene/ChaseMover.h"

#include "scene/CameraModel.h"
#include "scene/GroupGeometry.h"
#include "scene/World.h"

#include <cmath>

namespace zelmar::chase {

Mover Mover::of(Camera& c) {
    Mover v;
    v.cam = &c;
    v.m = &c.motion;
    v.type = c.chaseType;
    v.chasedName = &c.chasedName;
    v.chasedHandles[0] = c.chasedCamera;
    v.chasedHandles[1] = c.chasedGroup;
    v.chasedHandles[2] = c.chasedObject;
    v.offset = V3(c.chaseOffset);
    v.distance = c.chaseDistance;
    v.softness = c.chaseSoftness;
    v.trackName = &c.trackName;
    v.trackHandle = c.track;
    v.trackOffset = V3(c.trackOffset);
    v.speed = c.absoluteSpeed;
    v.force = V3(c.force);
    v.friction = c.friction;
    v.elasticity = c.elasticity;
    v.maxSpeed = c.maxSpeed;
    v.nextPoint = &c.nextPointOnTrack;
    v.currentSpeed = &c.speed;
    return v;
}

Mover Mover::of(Group& g) {
    Mover v;
    v.grp = &g;
    v.m = &g.motion;
    v.type = g.chaseType;
    v.chasedName = &g.chasedName;
    v.offset = V3(g.chaseOffset);
    v.distance = g.chaseDistance;
    v.softness = g.chaseSoftness;
    v.trackName = &g.trackName;
    v.trackOffset = V3(g.trackOffset);
    v.speed = g.absoluteSpeed;
    v.force = V3(g.physicsForce);
    v.friction = g.physicsFriction;
    v.elasticity = g.physicsElasticity;
    v.maxSpeed = g.physicsMaxSpeed;
    v.spin = V3(g.physicsRotation);
    v.fall = g.fallingFromTrack != 0;
    v.fallHeight = g.fallingHeight;
    v.nextPoint = &g.motion.nextPoint;
    v.currentSpeed = &g.speed;
    return v;
}

Handle Mover::handle() const {
    return cam ? cam->handle : grp->handle;
}

V3 Mover::position() const {
    return cam ? V3(cam->location) : groupLocation(*grp);
}

V3 Mover::heading() const {
    return cam ? V3(cam->axis[0]) : V3(grp->axis[0]);
}

M3 Mover::axes() const {
    if (grp) return axisMatrix(*grp);
    return M3::fromRows(V3(cam->axis[0]), V3(cam->axis[1]), V3(cam->axis[2]));
}

namespace {

// The group's new axis rows when its x axis turns onto dir; false when it need not turn.
bool turnedAxes(const Group& g, V3 dir, bool upright, M3& out) {
    const M3 old = axisMatrix(g);
    if (upright) {
        const V3 x = normalized(V3(dir.x, dir.y, 0));
        if (length(x) == 0) return false;
        const V3 z(0, 0, 1);
        out = M3::fromRows(x, cross(z, x), z);
    } else {
        const V3 d = normalized(dir);
        if (length(d) == 0) return false;
        const M3 r = rotationBetween(old.row(0), d);
        out = M3::fromRows(d, r * old.row(1), r * old.row(2));
    }
    double change = 0;
    for (int i = 0; i < 3; ++i)
        change += length(out.row(i) - old.row(i));
    return change > 1e-13;
}

} // namespace

void Mover::place(V3 p, V3 dir, bool upright) {
    if (cam) {
        p.store(cam->location);
        if (length(dir) > 0) {
            const double d[3] = {dir.x, dir.y, dir.z};
            camera::setDirection(*cam, d, upright);
        }
        return;
    }
    const V3 here = groupLocation(*grp);
    M3 turned;
    if (length(dir) > 0 && turnedAxes(*grp, dir, upright, turned)) {
        // New rows times the old ones transposed: takes each old axis onto its new one.
        transformGroup(*grp, turned.transposed() * axisMatrix(*grp), here, p - here, true);
        return;
    }
    const V3 d = p - here;
    if (d.x != 0 || d.y != 0 || d.z != 0) moveGroup(*grp, d);
}

bool entityFrame(Handle h, V3& pos, M3& axes) {
    World& w = world();
    if (const Camera* c = w.camera(h)) {
        pos = V3(c->location);
        axes = M3::fromRows(V3(c->axis[0]), V3(c->axis[1]), V3(c->axis[2]));
        return true;
    }
    if (const Group* g = w.group(h)) {
        pos = groupLocation(*g);
        axes = axisMatrix(*g);
        return true;
    }
    return false;
}

} // namespace zelmar::chase
