// The planar mapper of the Texture tab: bitmap coordinates for the points of polygons, from their world
// positions projected on a plane. GUI-free.
//
// Options (opnNormal): 0, 1, 2 the plane normal X, Y, Z; 3 the averaged normal of the polygons.
#pragma once
#include "PolygonLists.h"

#include <array>
#include <vector>

namespace vexil {

struct MappingAxes {
    std::array<double, 3> n{}, u{}, v{};
};

// The plane normal N and the two mapping axes U and V of an option, the axes projected on the plane
// through the origin with normal N. Option 3 averages the polygons' plane normals.
MappingAxes PlanarMappingAxes(int option, const std::vector<int>& polygons);

// Maps every point of the polygons: (u, v) is the point's scalar projection on U and V, then scaled by one
// range for both directions so that the larger extent runs 0 to 1. All points on one spot give a range of
// 0, which raises a division failure (the coordinates are then those of the first pass).
void PlanarMap(int option, const std::vector<int>& polygons);
// The same on points already listed (the points of `polygons`, in ring order); answers each point's final
// (u, v), so that the caller need not read them back.
std::vector<std::array<double, 2>> PlanarMapPoints(int option, const std::vector<int>& polygons,
                                                   const std::vector<PointOfPolygon>& points);

} // namespace vexil
