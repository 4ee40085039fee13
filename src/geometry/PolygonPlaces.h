// Taking polygons out of their groups and putting them back exactly where they were. A deleted polygon
// is only taken out and disabled (a fake delete): the action that remembers it puts it back on undo, or
// destroys it when it leaves the undo stack for good.
#pragma once
#include <vector>

namespace vexil {

// Where a polygon stood: its group and the polygon that followed it there (0 at the end).
struct PolygonPlace {
    int polygon = 0;
    int group = 0;
    int next = 0;
    bool disabled = false; // disabled already before it was taken out
};

// Takes each live polygon out of its group and disables it, in the order given; answers their places.
std::vector<PolygonPlace> FakeDeletePols(const std::vector<int>& polygons);
// Puts the polygons back in their places (the reverse of FakeDeletePols) and enables them.
void UnDeletePols(const std::vector<PolygonPlace>& places);
// Moves polygons into `group` (appended in the order given) and answers where they came from.
std::vector<PolygonPlace> MovePolsToGroup(const std::vector<int>& polygons, int group);
// Puts moved polygons back where they came from (the reverse of MovePolsToGroup).
void ReturnPols(const std::vector<PolygonPlace>& places);
// Destroys polygons that stand deleted (in no group); live ones in a group are left alone.
void DeletePolsPermanently(const std::vector<int>& polygons);
// The polygons of a list of places.
std::vector<int> PolygonsOf(const std::vector<PolygonPlace>& places);

} // namespace vexil
