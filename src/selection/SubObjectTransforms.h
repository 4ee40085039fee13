// Moving, turning and scaling of points, welded point sets and track points: what the gizmo, the typed
// transform panel and the sub-object actions all do, so that an undo replays exactly what the drag did.
//
// Angles are degrees about a world axis (0 x, 1 y, 2 z), counter-clockwise looking down the axis towards
// the origin, as the engine turns groups. A point named twice in a list is moved once.
#pragma once
#include <array>
#include <vector>

namespace vexil {

using Vec3 = std::array<double, 3>;
// The points of one welded set: they share a location and always move together.
using PointSet = std::vector<int>;

// p turned about centre.
Vec3 RotateAbout(const Vec3& p, const Vec3& centre, double degrees, int axis);
// p scaled about centre by factors along the world axes.
Vec3 ScaleAbout(const Vec3& p, const Vec3& centre, const Vec3& factors);

void MovePoints(const std::vector<int>& points, const Vec3& offset);
// Normals turn with their points.
void RotatePoints(const std::vector<int>& points, const Vec3& centre, double degrees, int axis);
void ScalePoints(const std::vector<int>& points, const Vec3& centre, const Vec3& factors);

// Each set: the new location is worked out from its first point and written to all of its points, which
// keeps welded corners together.
void MoveWeldSets(const std::vector<PointSet>& sets, const Vec3& offset);
void RotateWeldSets(const std::vector<PointSet>& sets, const Vec3& centre, double degrees, int axis);
void ScaleWeldSets(const std::vector<PointSet>& sets, const Vec3& centre, const Vec3& factors);

// Track points by their index (from 0).
void MoveTrackPoints(int track, const std::vector<int>& indices, const Vec3& offset);
void RotateTrackPoints(int track, const std::vector<int>& indices, const Vec3& centre, double degrees,
                       int axis);
void ScaleTrackPoints(int track, const std::vector<int>& indices, const Vec3& centre, const Vec3& factors);
// The centre of a track: the middle of the box of its points, per axis.
Vec3 TrackCentre(int track);

// Component-wise 1 / factor; a factor of 0 stays 0 (a flattened selection cannot be restored).
Vec3 InverseFactors(const Vec3& factors);

} // namespace vexil
