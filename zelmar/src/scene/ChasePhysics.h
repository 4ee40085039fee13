// The chase rules that meet the world's polygons: physics (force, friction, speed limit,
// bounces) and a group set down on the surface below its track. They meet the polygons of
// the groups that no chase rule moves; chasers pass through each other.
#pragma once
#include "scene/ChaseMover.h"

namespace zelmar::chase {

// The world may have changed since the last step: what the rules meet is gathered again
// (once, at the first ray of the step).
void beginStep();

// One physics step; false when the mover is at rest and no force acts.
bool physicsStep(Mover& mv);

// Where a group following a track with "fall" stands: `fallHeight` above the first surface
// below the point that high above its track position; the track position when there is none.
V3 setDown(Mover& mv, V3 trackPos);

} // namespace zelmar::chase
