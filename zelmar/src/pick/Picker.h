// World picks: the nearest drawn polygon along a ray, through one BVH per group. A
// group's BVH is rebuilt when its packed render data is (its version changed), so moving
// one group costs that group alone.
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

// Nearest hit along origin + t dir, t in (tMin, tMax), among the groups a render draws.
bool pickRay(const double origin[3], const double dir[3], double tMin, double tMax, WorldHit& out);

// The ray through the centre of pixel (x, y) of the view, beyond its near plane.
bool pickPixel(const render::View& view, int x, int y, WorldHit& out);

// Brings every drawn group's BVH up to date (benchmarks time this after an edit).
void refreshAll();

} // namespace zelmar::pick
