#include "scene/ChaseStep.h"

#include "scene/ChaseMover.h"
#include "scene/ChasePhysics.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>

namespace zelmar::chase {
namespace {

bool noName(const std::string& name) {
    return name.empty() || name == "NO_CHASE";
}

// The entity a mover chases: a camera's stored handles first, then the name (cameras before
// groups, never the mover itself). The answer is kept in the motion and checked each step,
// so a chase by name costs a search only when its target changes.
Handle resolveTarget(Mover& mv) {
    World& w = world();
    const Handle self = mv.handle();
    for (Handle h : mv.chasedHandles)
        if (h != 0 && h != self && (w.camera(h) || w.group(h))) return h;
    const std::string& name = *mv.chasedName;
    if (noName(name)) return 0;
    const Handle cached = mv.m->target;
    if (cached != 0 && cached != self) {
        if (const Camera* c = w.camera(cached); c && c->name == name) return cached;
        if (const Group* g = w.group(cached); g && g->name == name) return cached;
    }
    Handle found = 0;
    for (const Camera* c : w.list<Camera>())
        if (c->name == name && c->handle != self) {
            found = c->handle;
            break;
        }
    if (!found)
        for (const Group* g = w.firstGroup(); g; g = g->nextInWorld)
            if (g->name == name && g->handle != self) {
                found = g->handle;
                break;
            }
    mv.m->target = found;
    return found;
}

const Track* resolveTrack(Mover& mv) {
    World& w = world();
    const Track* t = w.track(mv.trackHandle);
    if (!t && !mv.trackName->empty()) {
        if (const Track* c = w.track(mv.m->track); c && c->name == *mv.trackName)
            t = c;
        else
            for (const Track* x : w.list<Track>())
                if (x->name == *mv.trackName) {
                    t = x;
                    break;
                }
    }
    const Handle h = t ? t->handle : 0;
    if (h != mv.m->track) {
        // Another track (or none): the walk starts again from where the mover stands.
        if (mv.m->track != 0) *mv.nextPoint = 0;
        mv.m->track = h;
        mv.m->started = false;
    }
    return t;
}

// Location, precise and flexible chases.
bool followTarget(Mover& mv) {
    V3 tpos;
    M3 taxes;
    if (!entityFrame(resolveTarget(mv), tpos, taxes)) return false;
    // The offset is in the chased entity's own axes (a camera: ahead, left, up).
    const V3 goal = tpos + taxes.transposed() * mv.offset;
    if (mv.type == kLocation) {
        mv.place(goal);
        return true;
    }
    const V3 here = mv.position();
    V3 away = normalized(here - goal);
    if (length(away) == 0) away = -taxes.row(0); // on the goal: behind the chased entity
    const V3 want = goal + away * mv.distance;
    const double keep = mv.type == kFlexible ? std::clamp(mv.softness, 0.0, 1.0) : 0.0;
    const V3 next = want + (here - want) * keep;
    mv.place(next, goal - next, true);
    return true;
}

// Walks the track by the step's distance. The walk starts where the mover stands and heads
// for the next point; passing a point turns it towards the following one.
bool followTrack(Mover& mv) {
    const Track* t = resolveTrack(mv);
    const int n = t ? static_cast<int>(t->points.size() / 3) : 0;
    if (n == 0) return false;
    Motion& m = *mv.m;
    int32_t& next = *mv.nextPoint;
    if (!m.started) {
        mv.position().store(m.trackPos);
        m.started = true;
    }
    if (next < 0) next = 0;
    if (next >= n) {
        if (!t->cyclic) return false; // finished
        next = 0;
    }
    double step = std::fabs(mv.speed) * kStep;
    if (!(step > 0) || !std::isfinite(step)) return false;
    V3 pos(m.trackPos), dir;
    for (int passed = 0; passed <= n && step > 0; ++passed) {
        const V3 p = V3(&t->points[size_t(next) * 3]) + mv.trackOffset;
        const V3 d = p - pos;
        const double len = length(d);
        if (len > 1e-12) dir = d * (1.0 / len);
        if (len > step) {
            pos = pos + dir * step;
            break;
        }
        pos = p;
        step -= len;
        if (++next >= n) {
            if (!t->cyclic) break;
            next = 0;
        }
    }
    pos.store(m.trackPos);
    if (mv.grp && mv.fall && mv.type == kTrack) pos = setDown(mv, pos);
    // Softness eases the turn: the heading moves that fraction of the way less each step.
    if (length(dir) > 0) {
        const double keep = std::clamp(mv.softness, 0.0, 1.0);
        const V3 eased = normalized(dir + (mv.heading() - dir) * keep);
        if (length(eased) > 0) dir = eased;
    }
    mv.place(pos, dir, mv.type != kAirplane);
    return true;
}

bool step(Mover mv) {
    Motion& m = *mv.m;
    if (m.type != mv.type) {
        m.type = mv.type;
        m.started = false;
    }
    switch (mv.type) {
    case kLocation:
    case kPrecise:
    case kFlexible:
        return followTarget(mv);
    case kTrack:
    case kAirplane:
        return followTrack(mv);
    case kPhysics:
        return physicsStep(mv);
    default:
        return false;
    }
}

double& clock() {
    static double seconds = 0;
    return seconds;
}

int stepCameras() {
    int moved = 0;
    for (Camera* c : world().list<Camera>())
        if (c->chaseType != kNone && step(Mover::of(*c))) ++moved;
    return moved;
}

} // namespace

bool advance(Camera& c) {
    beginStep();
    return step(Mover::of(c));
}

bool advance(Group& g) {
    beginStep();
    return step(Mover::of(g));
}

int advanceAllCameras() {
    beginStep();
    return stepCameras();
}

int advanceAll() {
    beginStep();
    int moved = 0;
    for (Group* g = world().firstGroup(); g; g = g->nextInWorld)
        if (g->chaseType != kNone && step(Mover::of(*g))) ++moved;
    return moved + stepCameras();
}

int advanceTime(double seconds) {
    if (!(seconds >= 0) || !std::isfinite(seconds)) return 0;
    double& c = clock();
    c += seconds;
    int steps = 0;
    // A little slack so that adding kStep n times runs n steps despite rounding.
    while (c >= kStep * (1 - 1e-9) && steps < kMaxStepsPerCall) {
        advanceAll();
        c -= kStep;
        ++steps;
    }
    if (steps == kMaxStepsPerCall) c = 0;
    if (c < 0) c = 0;
    return steps;
}

void resetClock() {
    clock() = 0;
}

} // namespace zelmar::chase
