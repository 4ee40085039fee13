// The polygon nodes ("Pol" + handle) of the group tree follow deleted and restored polygons.
#pragma once
#include "geometry/PolygonPlaces.h"

#include <vector>

namespace vexil {

void RemovePolygonNodes(const std::vector<int>& polygons);
// A node for each polygon whose group node already lists its polygons.
void AddPolygonNodes(const std::vector<PolygonPlace>& places);
void AddPolygonNodes(int group, const std::vector<int>& polygons);

} // namespace vexil
