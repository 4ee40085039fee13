// The subtree walks whose "next" step gets only the current handle: polygons of a group and
// its descendants, and the groups below a group. Each open walk remembers its root and the
// handle it answered last, so nested walks don't disturb each other (docs/engine-api.md).
#pragma once
#include "scene/Entities.h"
#include <vector>

namespace zelmar {

Handle firstPolygonOfSubtree(const Group& root);
Handle nextPolygonOfSubtree(Handle polygon); // 0 also for a handle that is not a live polygon

Handle firstIncludedGroup(const Group& root);
Handle nextIncludedGroup(const Group& current);

// Same set as the polygon walk; O(groups of the subtree).
int64_t countPolygonsOfSubtree(const Group& root);

// The groups that are neither disabled nor below a disabled group: those of root's subtree in
// pre-order, or (root null) every group of the world in creation order. Linear in the number
// of groups however deep the tree, with no recursion.
std::vector<const Group*> enabledGroups(const Group* root);

// The group after g's whole subtree in root's pre-order, nullptr at the end.
const Group* nextAfterSubtree(const Group* g, const Group* root);

// Forgets every open walk (the world was emptied).
void resetWalks();

} // namespace zelmar
