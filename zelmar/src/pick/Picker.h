// World picks: the nearest drawn polygon along a ray. Each group's triangles (from the
// render's packed data) form a scene of their own in the ray kernel, placed by a
// translation in one top scene; a group is rebuilt when its packed data is, and a group
// that only moved keeps its hierarchy. A pick that finds the world unchanged since the last
// one goes straight to the kernel.
#pragma once
#include "render/View.h"
#include "scene/Entities.h"

namespace zelmar::pick {

struct WorldHit {
    double point[3] = {0, 0, 0};
    double t = 0;
    Handle polygon = 0;
    Handle group = 0;
};

// Nearest hit along origin + t dir, t in [tMin, tMax), among the polygons a render draws:
// enabled, in an enabled group with enabled ancestors, in the subtree of the group to
// render; a front-only polygon seen from behind is passed.
bool pickRay(const double origin[3], const double dir[3], double tMin, double tMax, WorldHit& out);

// The ray through the centre of pixel (x, y) of the view, beyond its near plane.
bool pickPixel(const render::View& view, int x, int y, WorldHit& out);

// Brings every group's pick scene up to date (benchmarks time this after an edit).
void refreshAll();

} // namespace zelmar::pick
