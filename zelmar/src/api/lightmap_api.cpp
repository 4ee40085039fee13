// Light maps of a polygon, of every polygon of a group's subtree, or of an entity.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/LightMap.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {
bool params(int max_size, int min_size, double sampling_rate, int ray_tracing, int mode, const char* op,
            LightMapParams& out) {
    out = {max_size, min_size, sampling_rate, ray_tracing != 0, mode};
    const std::string why = checkLightMapParams(out);
    if (!why.empty()) setLastError(std::string(op) + ": " + why);
    return why.empty();
}

int bakeGroup(Group& root, const LightMapParams& p) {
    int made = 0;
    for (Group* g = &root; g; g = World::nextInSubtree(g, &root))
        for (Polygon* q = g->firstPolygon; q; q = q->nextInGroup)
            if (createLightMap(*q, p)) ++made;
    return made;
}
} // namespace

extern "C" {

int ZELMAR_polygon_create_lightmap(int polygon, int max_size, int min_size, double sampling_rate,
                                   int ray_tracing, int mode) {
    const char* op = "polygon_create_lightmap";
    Polygon* p = polygonArg(polygon, op);
    LightMapParams lp;
    if (!p || !params(max_size, min_size, sampling_rate, ray_tracing, mode, op, lp)) return 0;
    const Handle b = createLightMap(*p, lp);
    if (!b) setLastError(std::string(op) + ": polygon " + std::to_string(polygon) + " has no area");
    return b;
}

int ZELMAR_group_create_lightmap(int group, int max_size, int min_size, double sampling_rate, int ray_tracing,
                                 int mode) {
    const char* op = "group_create_lightmap";
    Group* g = groupArg(group, op);
    LightMapParams lp;
    if (!g || !params(max_size, min_size, sampling_rate, ray_tracing, mode, op, lp)) return 0;
    return bakeGroup(*g, lp);
}

int ZELMAR_entity_create_lightmap(int handle, int max_size, int min_size, double sampling_rate,
                                  int ray_tracing, int mode) {
    World& w = world();
    if (w.group(handle))
        return ZELMAR_group_create_lightmap(handle, max_size, min_size, sampling_rate, ray_tracing, mode);
    if (w.polygon(handle))
        return ZELMAR_polygon_create_lightmap(handle, max_size, min_size, sampling_rate, ray_tracing, mode)
                   ? 1
                   : 0;
    setLastError("entity_create_lightmap: " + std::to_string(handle) + " is not a group or a polygon");
    return 0;
}

} // extern "C"
