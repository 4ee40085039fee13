// Where a group is and how it turns: boxes, location, dimensions, axis system, reference
// point, and the transforms that move a whole subtree. Points are stored in world space;
// a group's "group space" is world space turned about its location so that the group's
// axes become the world axes (docs/engine-api.md).
#pragma once
#include "scene/Entities.h"
#include "scene/Vec.h"

namespace zelmar {

M3 axisMatrix(const Group& g); // rows: the group's x, y, z axes in world space

// All of these look at every point of the subtree (disabled groups included); the result is
// cached until the world's generation moves on.
bool groupHasPoints(const Group& g);
V3 groupLocation(const Group& g);                     // centre of the box along the group's axes
V3 groupDimensions(const Group& g);                   // extents along the group's axes
void groupBoundingBox(const Group& g, double box[6]); // world-aligned: min x y z, max x y z
V3 groupCenterOfMass(const Group& g);                 // mean of the points
V3 groupReferencePoint(const Group& g);               // the location until one is set

V3 groupToWorld(const Group& g, V3 p);
V3 worldToGroup(const Group& g, V3 p);

void moveGroup(Group& g, V3 offset); // the subtree, its reference points and empty locations
// p -> pivot + M (p - pivot) + shift for every point of the subtree; normals by M's cofactor
// (kept at their length); reference points and empty locations go along. With turnAxes the
// axis systems of the subtree turn with M (re-orthonormalised).
void transformGroup(Group& g, const M3& m, V3 pivot, V3 shift, bool turnAxes);

void rotateGroup(Group& g, const double degrees[3], int space); // about the reference point
void scaleGroup(Group& g, int space, V3 factors);               // about the reference point
// Turns the subtree about the reference point so that its axes become x, y (z from them).
bool rotateGroupToAxes(Group& g, V3 x, V3 y, V3 z);

// Same for one polygon (about the given pivot); normals by the cofactor.
void transformPolygon(Polygon& p, const M3& m, V3 pivot, V3 shift);

} // namespace zelmar
