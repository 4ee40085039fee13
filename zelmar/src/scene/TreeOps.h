// Operations that make or rearrange whole groups: copies, ungrouping, triangulated copies.
#pragma once
#include "scene/Entities.h"
#include <string>

namespace zelmar {

// A copy of the polygon (points with new handles, fill, name, flags) in group `into`
// (nullptr: no group); added to the world if the original was.
Polygon* copyPolygon(const Polygon& src, Group* into);

// Deep copy of the group's subtree under the same father; answers the copy's root.
Group* duplicateTree(const Group& src);

// Direct child groups move to the group's father; the group keeps its polygons.
void ungroup(Group& g);

// New group `name` (child of the source's father) of triangles cut from every polygon of
// the source's subtree, keeping each corner's data and each polygon's fill.
Group* triangulatedCopy(const Group& src, const std::string& name);

} // namespace zelmar
