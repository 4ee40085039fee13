// Geometry over a track's point list (x, y, z triples).
#pragma once
#include <vector>

namespace zelmar::tracks {

// The point of the polyline (with the closing segment when cyclic) nearest to `p`,
// written to `out`; answers the index of the nearest segment's first point, or -1 for
// an empty track. A single point is its own segment 0. Ties go to the earlier segment.
int closestPoint(const std::vector<double>& points, bool cyclic, const double p[3], double out[3]);

} // namespace zelmar::tracks
