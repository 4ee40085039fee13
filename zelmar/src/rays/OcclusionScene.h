// Any-hit queries against a fixed set of triangles: the shadow rays of light maps. Each
// triangle has an owner (a polygon handle) so that a ray can pass through the triangles of
// the polygon it starts from. Single precision inside, around the centre of the triangles'
// box; queries are thread-safe once built.
#pragma once
#include "rays/Narrow.h"
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zelmar::rays {

struct Triangles {
    std::vector<double> xyz;       // points, three coordinates each
    std::vector<uint32_t> corners; // three point indices per triangle
    std::vector<int32_t> owner;    // one per triangle
};

// Rays from a grid of points, all in one direction (the texels of a polygon towards a
// directional light): point (i, j) = corner + i along + j across.
struct GridRays {
    double corner[3], along[3], across[3];
    int width = 0, height = 0;
    double dir[3];
    int32_t ignore = 0;
};

// A ray as the kernel sees it: origin relative to the scene's centre, single precision;
// it passes through the triangles owned by `ignore`.
struct ShadowRay {
    float org[3];
    float dir[3];
    float tNear, tFar;
    int32_t ignore;
};

class OcclusionScene {
  public:
    OcclusionScene();
    ~OcclusionScene();
    OcclusionScene(const OcclusionScene&) = delete;
    OcclusionScene& operator=(const OcclusionScene&) = delete;

    // Replaces the triangles. Triangles with a point index out of range are dropped.
    void build(const Triangles& t);
    void clear();
    size_t triangleCount() const;
    // The largest distance of a point from the centre along an axis: single precision
    // blurs positions by about 1e-7 of it.
    double extent() const;

    // The ray org + t dir for t in [tNear, tFar] (tFar may be infinite).
    ShadowRay makeRay(const double org[3], const double dir[3], double tNear, double tFar, int32_t ignore) const {
        ShadowRay r;
        for (int k = 0; k < 3; ++k) {
            r.org[k] = narrow(org[k] - centre_[k]);
            r.dir[k] = narrow(dir[k]);
        }
        r.tNear = narrow(tNear);
        r.tFar = std::isinf(tFar) ? static_cast<float>(tFar) : narrow(tFar);
        r.ignore = ignore;
        return r;
    }
    // True when the ray meets a triangle whose owner is not the ray's `ignore`.
    bool occluded(const ShadowRay& r) const;
    // The same for n rays that share their `ignore` (the rays of one polygon), traced eight
    // at a time: blocked[i] is 1 or 0.
    void occluded(const ShadowRay* r, size_t n, uint8_t* blocked) const;
    // The grid's rays (unbounded), blocked[j * width + i] for point (i, j); `record`, when
    // given, receives the rays as traced.
    void occluded(const GridRays& g, uint8_t* blocked, std::vector<ShadowRay>* record) const;

    // What the kernel holds, for benchmarks that time it without the engine around it:
    // points relative to the centre (padded by one float) and corner triples.
    const std::vector<float>& points() const;
    const std::vector<uint32_t>& corners() const;
    const std::vector<int32_t>& owners() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    double centre_[3] = {0, 0, 0}; // of the triangles' box: the kernel's origin
};

} // namespace zelmar::rays
