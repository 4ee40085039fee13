// Deformers of a group's points (docs/modelling.md): bend by an angle about an axis, displace along the
// normals by a bitmap's brightness or by noise. Coincident points move together, so welded corners stay
// closed.
#pragma once
#include <functional>
#include <vector>

namespace vexil {

// Bends the group's subtree: the points are laid along axis `along` (0 x, 1 y, 2 z) over the group's
// extent there and bent towards axis `direction` (another axis) by `degrees` in total, the low end of the
// extent staying where it is. Answers false (nothing moved) for equal axes, an angle of 0 or a group with
// no extent along the axis.
bool BendGroup(int group, int along, int direction, double degrees);

// Samples 0..1 of a displacement: by the point's location, or its bitmap coordinates (u, v).
using DisplaceSampler = std::function<double(const double xyz[3], double u, double v)>;
// Moves every point of the subtree by strength x sample along the mean normal of the points at its
// location (the polygons' plane normals where the points carry none). Answers the points moved.
int DisplaceGroup(int group, double strength, const DisplaceSampler& sample);
// Smooth value noise in 0..1 of a location, repeating every `scale` units; the same seed gives the same
// field.
double ValueNoise(const double xyz[3], double scale, unsigned seed);

} // namespace vexil
