// The geometry of extrude and bevel (mdlExtrude): the outline of a polygon selection, its averaged normal,
// the side polygons of a press, and the live steps that move the selection's welded point sets.
#pragma once
#include <array>
#include <utility>
#include <vector>

namespace vexil {

using Vec3d = std::array<double, 3>;
// The points of one welded set: they share a location and move together.
using WeldSet = std::vector<int>;
using PointEdge = std::pair<int, int>;

// Locations, not handles: every coordinate differs by less than 1e-09.
bool SamePointLocation(int a, int b);
// The outline of the polygons: each ring edge (p, q), unless an edge already listed joins the same two
// locations (either way round), in which case that one leaves the list and this one is not added. The
// order of the rest is kept.
std::vector<PointEdge> CollectBoundaryEdges(const std::vector<int>& polygons);
// The sum of the polygons' plane normals over their count: not made unit length.
Vec3d AveragedNormal(const std::vector<int>& polygons);
// |x| + |y| + |z| is exactly 0: no direction to extrude in.
bool IsZeroNormal(const Vec3d& n);

struct ExtrudeFill {
    int bitmap = 0;
    int rgb[3] = {255, 255, 255};
};
// The fill of the first polygon: its bitmap, else its colour.
ExtrudeFill FillOf(int polygon);

// The tiny first offset of a press.
constexpr double ExtrudeSeedFactor = 0.000001;

// The side polygons of a press: one quad per boundary edge (a, b) with the corners a, b, b + seed, a + seed
// (u, v: 0 1, 1 1, 1 0, 0 0; brightness 100), each corner with the side's normal turned away from
// `centre`, named "Extruded Pol", added to `group` and the world, wearing `fill`. Then every point of the
// polygons moves by seed. Answers the sides in edge order.
std::vector<int> MakeExtrudeSides(const std::vector<int>& polygons, const std::vector<PointEdge>& boundary,
                                  int group, const Vec3d& centre, const Vec3d& seed, const ExtrudeFill& fill);

// Moves each set by delta: its first point's location + delta goes to all of its points.
void MoveWeldSetsBy(const std::vector<WeldSet>& sets, const Vec3d& delta);
// Scales each set about centre by f: centre + f x (first point - centre) goes to all of its points.
void ScaleWeldSetsAbout(const std::vector<WeldSet>& sets, const Vec3d& centre, double f);
// Each polygon's plane normal to each of its points.
void SetPlaneNormals(const std::vector<int>& polygons);

} // namespace vexil
