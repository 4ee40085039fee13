// A bounding volume hierarchy over the triangles of one group's polygons, for the rays of chase physics and
// falls (picks go through the ray kernel, src/rays).
// Built from the group's packed render data, so it follows the same version checks.
#pragma once
#include "render/SceneCache.h"
#include <cstdint>
#include <vector>

namespace zelmar::pick {

struct Ray {
    double origin[3];
    double dir[3]; // unit
    double inv[3];
    double tMin, tMax;
};

Ray makeRay(const double origin[3], const double dir[3], double tMin, double tMax);

struct Hit {
    double t = 0;
    uint32_t polygon = 0; // index into GroupCache::polys
};

class Bvh {
  public:
    void build(const render::GroupCache& gc);
    // Nearest triangle of an enabled polygon hit by the ray within (tMin, tMax); front-only
    // polygons seen from behind are passed. Updates ray.tMax on a hit.
    bool intersect(const render::GroupCache& gc, Ray& ray, Hit& hit) const;
    size_t triangleCount() const { return tris_.size(); }

  private:
    struct Node {
        double box[6];
        uint32_t first, count; // leaf: range of tris_; inner: first = left child, count = 0
        uint32_t right;
    };
    struct TriRef {
        uint32_t a, b, c; // vertex indices into GroupCache::verts
        uint32_t polygon;
    };
    std::vector<Node> nodes_;
    std::vector<TriRef> tris_;
};

bool rayBox(const Ray& r, const double box[6], double& tEnter);

} // namespace zelmar::pick
