// The polygon lists the materials work on: a group's subtree, the polygon selection, and the points of a
// list of polygons.
#pragma once
#include <vector>

namespace vexil {

// Every polygon of the group and of its descendants, in the engine's walk order.
std::vector<int> GroupPolygons(int group);
// The selected polygons (SelPols), in selection order.
std::vector<int> SelectedPolygons();
// The groups a fill for "the group" reaches: the current group, or the groups of a multiple selection.
std::vector<int> SelectedGroups();

// A point with the polygon that owns it.
struct PointOfPolygon {
    int point = 0;
    int polygon = 0;
};
std::vector<PointOfPolygon> PolygonPointPairs(const std::vector<int>& polygons);

} // namespace vexil
