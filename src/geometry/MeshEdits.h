// Edits of whole polygons and groups: flip, detach into a new group, mirror, and putting a group back in
// its place under its father.
#pragma once
#include "PolygonPlaces.h"

#include <array>
#include <vector>

namespace vexil {

// Turns each polygon over (its ring reversed, the first point first, normals negated), first to last.
// Turning the same list over again undoes it exactly.
void FlipPolygons(const std::vector<int>& polygons);

// A new group under the father of `group` that takes the group's rotate reference point, named "Group" and
// its handle; the polygons move into it (their places in `moved`). Answers the new group, 0 when there was
// nothing to move (then nothing was made).
int DetachPolygons(const std::vector<int>& polygons, int group, std::vector<PolygonPlace>& moved);

// Mirrors the group's subtree in place about `centre`: each coordinate whose factor is -1 is reflected
// (factors are +1 or -1). Normals are reflected with the points; when the product of the factors is -1
// every polygon is turned over as well, so that the faces still look outward. The group's own axes and
// its rotate reference point stay.
void MirrorGroup(int group, const std::array<double, 3>& factors, const std::array<double, 3>& centre);
// The centre of the group's box (its location).
std::array<double, 3> GroupCentre(int group);

// Where a group stands among its father's children: the father and the sibling after it.
struct GroupPlace {
    int group = 0, father = 0, next = 0;
};
GroupPlace PlaceOfGroup(int group);
// Under its father again, in front of the recorded sibling.
void RestoreGroupPlace(const GroupPlace& place);

} // namespace vexil
