// Geometry of one polygon ring: plane, centre, validity, convexity, triangulation.
// Pure functions over the stored points; nothing here changes the world.
#pragma once
#include "scene/Entities.h"
#include "scene/Vec.h"
#include <array>
#include <vector>

namespace zelmar {

inline V3 pos(const PointData& d) {
    return V3(d.xyz);
}

// Newell normal of the ring, not normalised: its length is twice the area. The ring runs
// counter-clockwise seen from the side it points to.
V3 newellNormal(const Polygon& p);
// The normal of the polygon's visible side: a ring runs clockwise seen from its front, so this is
// the Newell normal turned over. Planes, lighting and back-face tests all use this one.
inline V3 frontNormal(const Polygon& p) {
    return newellNormal(p) * -1.0;
}
V3 ringCentre(const Polygon& p);   // mean of the points; origin for an empty ring
double ringSize(const Polygon& p); // largest extent of the points' box

// A, B, C the unit front normal and D = -(N . centre); all zero for a degenerate ring.
void polygonPlane(const Polygon& p, double plane[4]);

bool hasArea(const Polygon& p);          // at least 3 points and a non-zero normal
bool allPointsOnPlane(const Polygon& p); // within 1e-6 x max(size, 1) of the plane
bool isValidPolygon(const Polygon& p);   // >= 3 points, area, planar
bool isConvexPolygon(const Polygon& p);  // valid, all corners turn one way, one winding

// Triangles as index triples into the ring: a fan for convex rings, ear clipping otherwise.
// Empty for rings without area.
std::vector<std::array<uint32_t, 3>> triangulate(const Polygon& p);

// Whether a point (projected along the normal) lies inside the ring; boundary counts as inside.
bool pointInside(const Polygon& p, V3 q);

// Indices of points that coincide with their predecessor or lie on the straight line
// between their neighbours.
std::vector<uint32_t> redundantPoints(const Polygon& p);

} // namespace zelmar
