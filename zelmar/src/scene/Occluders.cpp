#include "scene/Occluders.h"

#include "scene/PolygonGeometry.h"
#include "scene/Walks.h"
#include "scene/World.h"

#include <cmath>
#include <limits>

namespace zelmar {

namespace {
struct Cache {
    rays::OcclusionScene scene;
    uint64_t generation = std::numeric_limits<uint64_t>::max();
};
Cache& cache() {
    static Cache c;
    return c;
}

void build(rays::OcclusionScene& scene) {
    rays::Triangles t;
    // Group by group: asking per polygon whether an ancestor is disabled would walk up to the
    // root each time, quadratic in the depth. (The order of the triangles does not matter.)
    for (const Group* g : enabledGroups(nullptr))
        for (const Polygon* p = g->firstPolygon; p; p = p->nextInGroup) {
            if (p->disabled || p->points.size() < 3) continue;
            bool finite = true;
            for (const PointData& d : p->points)
                finite = finite && std::isfinite(d.xyz[0]) && std::isfinite(d.xyz[1]) && std::isfinite(d.xyz[2]);
            if (!finite) continue;
            const auto tris = triangulate(*p);
            if (tris.empty()) continue;
            const uint32_t first = static_cast<uint32_t>(t.xyz.size() / 3);
            for (const PointData& d : p->points)
                t.xyz.insert(t.xyz.end(), d.xyz, d.xyz + 3);
            for (const auto& tri : tris) {
                t.corners.insert(t.corners.end(), {first + tri[0], first + tri[1], first + tri[2]});
                t.owner.push_back(p->handle);
            }
        }
    scene.build(t);
}
} // namespace

const rays::OcclusionScene& worldOccluders() {
    Cache& c = cache();
    if (c.generation != world().generation) {
        build(c.scene);
        c.generation = world().generation;
    }
    return c.scene;
}

void occludersStillValid() {
    cache().generation = world().generation;
}

} // namespace zelmar
