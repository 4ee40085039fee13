// What the chase rules need of a camera or a group, in one shape: where it stands, which
// way it faces, its stored parameters, and how it is moved and turned. Internal to the
// chase run-time (ChaseStep, ChasePhysics).
#pragma once
#include "scene/Entities.h"
#include "scene/Vec.h"

#include <string>

namespace zelmar::chase {

struct Mover {
    Camera* cam = nullptr;
    Group* grp = nullptr;
    Motion* m = nullptr;

    // Stored parameters.
    int type = 0;
    const std::string* chasedName = nullptr;
    Handle chasedHandles[3] = {0, 0, 0}; // cameras: chased camera, group, object
    V3 offset;
    double distance = 0, softness = 0;
    const std::string* trackName = nullptr;
    Handle trackHandle = 0; // cameras: the handle camera_set_track found
    V3 trackOffset;
    double speed = 0; // absolute speed, world units per second
    V3 force;
    double friction = 0, elasticity = 0, maxSpeed = 0;
    V3 spin; // groups: physics rotation, degrees per second about the group's own axes
    bool fall = false;
    double fallHeight = 0;
    int32_t* nextPoint = nullptr;
    double* currentSpeed = nullptr;

    static Mover of(Camera& c);
    static Mover of(Group& g);

    Handle handle() const;
    V3 position() const;
    V3 heading() const;
    M3 axes() const; // rows x, y, z

    // Moves to p. With a non-zero direction also turns to face it: a camera looks along it
    // (levelled when `upright`), a group turns its x axis onto it (about the vertical only
    // when `upright`, by the smallest rotation otherwise).
    void place(V3 p, V3 dir = {}, bool upright = true);
};

// Position and axes of a live camera or group; false for anything else.
bool entityFrame(Handle h, V3& pos, M3& axes);

} // namespace zelmar::chase
