// mdlSmoothLight: smooth shading across polygons. The points of the given polygons are gathered into weld
// sets (points at exactly one location); each point's normal becomes the average of the plane normals of
// the polygons at its spot that meet its own polygon at no more than the threshold angle, so that hard
// edges stay hard. Clear All gives every point its polygon's plane normal (flat shading). Not undoable.
#pragma once
#include <vector>

namespace vexil {

// A weld set: the points that share one location, each with the polygon it belongs to.
struct WeldSetEntry {
    int point = 0, polygon = 0;
};
// The weld sets of the polygons' points, each set in the order its points were met (polygon by polygon,
// point by point). Points with a NaN coordinate stay alone.
std::vector<std::vector<WeldSetEntry>> BuildWeldSets(const std::vector<int>& polygons);

// thresholdDegrees in 0..180 (outside values are held to it). Answers the number of points given a normal.
int SmoothLight(const std::vector<int>& polygons, double thresholdDegrees);
// Answers the number of points given a normal.
int SmoothClearAll(const std::vector<int>& polygons);

// updwnSmoothLight_Change: the up-down's value (a wheel around 0) moves the threshold by 1 per step, by 2
// with Shift held, by 0.5 with Alt; the result stays within 0 and 180. A value of 0 changes nothing.
double StepSmoothThreshold(double threshold, int updownValue, bool shift, bool alt);

} // namespace vexil
