#include "scene/ChaseStep.h"

#include "scene/CameraModel.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>

namespace zelmar::chase {
namespace {

// Where the chased entity stands: a camera's location or a group's reference point.
bool targetLocation(const Camera& c, double out[3]) {
    World& w = world();
    const Camera* cam = w.camera(c.chasedCamera);
    const Group* grp = w.group(c.chasedGroup);
    if (!cam && !grp && w.kindOf(c.chasedObject) == Kind::Camera) cam = w.camera(c.chasedObject);
    if (!cam && !grp && w.kindOf(c.chasedObject) == Kind::Group) grp = w.group(c.chasedObject);
    if (!cam && !grp && !c.chasedName.empty()) {
        for (const Camera* x : w.list<Camera>())
            if (x->name == c.chasedName && x != &c) {
                cam = x;
                break;
            }
        if (!cam) grp = w.groupByName(c.chasedName);
    }
    if (cam == &c) return false;
    const double* p = cam ? cam->location : grp ? grp->referencePoint : nullptr;
    if (!p) return false;
    for (int i = 0; i < 3; ++i)
        out[i] = p[i];
    return true;
}

bool followTarget(Camera& c) {
    double t[3];
    if (!targetLocation(c, t)) return false;
    for (int i = 0; i < 3; ++i)
        t[i] += c.chaseOffset[i];
    if (c.chaseType == kLocation) {
        for (int i = 0; i < 3; ++i)
            c.location[i] = t[i];
        return true;
    }
    // Precise and flexible: stay chaseDistance behind the target, looking at it.
    double want[3];
    for (int i = 0; i < 3; ++i)
        want[i] = t[i] - c.axis[0][i] * c.chaseDistance;
    const double keep = c.chaseType == kFlexible ? std::clamp(c.chaseSoftness, 0.0, 1.0) : 0.0;
    for (int i = 0; i < 3; ++i)
        c.location[i] = want[i] + (c.location[i] - want[i]) * keep;
    camera::pointAt(c, t);
    return true;
}

bool followTrack(Camera& c) {
    World& w = world();
    const Track* t = w.track(c.track);
    if (!t && !c.trackName.empty())
        for (const Track* x : w.list<Track>())
            if (x->name == c.trackName) {
                t = x;
                break;
            }
    const int n = t ? int(t->points.size() / 3) : 0;
    if (n == 0) return false;
    if (c.nextPointOnTrack >= n) {
        if (!t->cyclic) return false;
        c.nextPointOnTrack = 0;
    }
    double step = std::fabs(c.absoluteSpeed);
    // Walk along the track by the speed, passing as many points as the step reaches.
    for (int guard = 0; guard <= n && step > 0; ++guard) {
        const double* p = &t->points[size_t(c.nextPointOnTrack) * 3];
        double d[3], len = 0;
        for (int i = 0; i < 3; ++i) {
            d[i] = p[i] + c.trackOffset[i] - c.location[i];
            len += d[i] * d[i];
        }
        len = std::sqrt(len);
        if (len > 1e-12) camera::setDirection(c, d, c.chaseType != kAirplane);
        if (len > step) {
            for (int i = 0; i < 3; ++i)
                c.location[i] += d[i] / len * step;
            return true;
        }
        for (int i = 0; i < 3; ++i)
            c.location[i] = p[i] + c.trackOffset[i];
        step -= len;
        if (++c.nextPointOnTrack >= n) {
            if (!t->cyclic) return true;
            c.nextPointOnTrack = 0;
        }
    }
    return true;
}

bool physics(Camera& c) {
    double f = 0;
    for (double x : c.force)
        f += x * x;
    f = std::sqrt(f);
    double v = (c.speed + f) * (1.0 - std::clamp(c.friction, 0.0, 1.0));
    if (c.maxSpeed > 0) v = std::min(v, c.maxSpeed);
    c.speed = v;
    // Along the force when there is one, else straight ahead.
    for (int i = 0; i < 3; ++i)
        c.location[i] += (f > 0 ? c.force[i] / f : c.axis[0][i]) * v;
    return true;
}

} // namespace

bool advance(Camera& c) {
    switch (c.chaseType) {
    case kLocation:
    case kPrecise:
    case kFlexible:
        return followTarget(c);
    case kTrack:
    case kAirplane:
        return followTrack(c);
    case kPhysics:
        return physics(c);
    default:
        return false;
    }
}

} // namespace zelmar::chase
