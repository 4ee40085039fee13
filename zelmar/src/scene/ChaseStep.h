// The run-time of the chase rules: cameras and groups move by their chase type, one fixed
// time step at a time. The editor only stores the values; a player (vexil-viewer) calls
// engine_advance each frame. What each type and parameter means: docs/chase.md.
#pragma once
#include "scene/Entities.h"

namespace zelmar::chase {

// Chase codes as the editor stores them.
constexpr int kNone = 0, kLocation = 2, kPrecise = 3, kFlexible = 4, kPhysics = 9, kTrack = 135,
              kAirplane = 136;

// One step is this many seconds; speeds are world units per second.
constexpr double kStep = 1.0 / 60.0;
// engine_advance runs at most this many steps per call, so that a long stall does not make
// the next frame spend its time catching up.
constexpr int kMaxStepsPerCall = 60;

// One step of one entity. False when it did not move: no chase, the chased entity or track
// is gone (or empty), a one-way track is finished, a speed of 0.
bool advance(Camera& c);
bool advance(Group& g);

// One step of every chasing group (creation order), then of every chasing camera, so that a
// camera chasing a group sees where the group is this step. Answers how many moved.
int advanceAll();
int advanceAllCameras();

// Adds `seconds` to the clock and runs as many whole steps as it holds (the remainder waits
// for the next call). Answers the number of steps run. Negative or non-finite time runs none.
int advanceTime(double seconds);
// Forgets the remainder of the clock (a new world starts in step).
void resetClock();

} // namespace zelmar::chase
