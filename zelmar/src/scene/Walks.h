// The subtree walks whose "next" step gets only the current handle: polygons of a group and
// its descendants, and the groups below a group. Each open walk remembers its root and the
// handle it answered last, so nested walks don't disturb each other (docs/engine-api.md).
#pragma once
#include "scene/Entities.h"

namespace zelmar {

Handle firstPolygonOfSubtree(const Group& root);
Handle nextPolygonOfSubtree(Handle polygon); // 0 also for a handle that is not a live polygon

Handle firstIncludedGroup(const Group& root);
Handle nextIncludedGroup(const Group& current);

// Same set as the polygon walk; O(groups of the subtree).
int64_t countPolygonsOfSubtree(const Group& root);

// Forgets every open walk (the world was emptied).
void resetWalks();

} // namespace zelmar
