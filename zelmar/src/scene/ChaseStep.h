// One step of a camera's chase rule, for the player and for camera_advance. The editor
// only stores chase values; this gives them a simple, predictable meaning.
#pragma once
#include "scene/Entities.h"

namespace zelmar::chase {

// Chase codes as the editor stores them.
constexpr int kNone = 0, kLocation = 2, kPrecise = 3, kFlexible = 4, kPhysics = 9, kTrack = 135,
              kAirplane = 136;

// Moves the camera one step. False when it has nothing to follow (no chase, the chased
// entity or track is gone, or the track is finished).
bool advance(Camera& c);

} // namespace zelmar::chase
