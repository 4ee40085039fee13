// The triangles that can cast shadows on a light map: every polygon that a render would
// draw (owned by a group, enabled, in no disabled group), owned by their polygon's handle,
// in the ray kernel's any-hit scene. Built on demand and kept while the world's geometry is
// unchanged.
#pragma once
#include "rays/OcclusionScene.h"

namespace zelmar {

// The world's occluders, rebuilt when the geometry changed since the last call; the caller
// tells after its own non-geometric change that the set is still right.
const rays::OcclusionScene& worldOccluders();
void occludersStillValid();

} // namespace zelmar
