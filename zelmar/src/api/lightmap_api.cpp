// Light maps of a polygon, of a list of polygons, of every polygon of a group's subtree, or
// of an entity.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "render/Settings.h"
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

int bake(const std::vector<Handle>& polygons, const LightMapParams& p, const char* op, BakeOptions options = {}) {
    options.threads = render::workerCount();
    const BakeStats s = bakeLightMaps(polygons, p, options);
    if (!s.error.empty()) setLastError(std::string(op) + ": " + s.error);
    return s.made;
}
} // namespace

extern "C" {

int ZELMAR_polygon_create_lightmap(int polygon, int max_size, int min_size, double sampling_rate,
                                   int ray_tracing, int mode) {
    const char* op = "polygon_create_lightmap";
    Polygon* p = polygonArg(polygon, op);
    LightMapParams lp;
    if (!p || !params(max_size, min_size, sampling_rate, ray_tracing, mode, op, lp)) return 0;
    const BakeStats s = bakeLightMaps({p->handle}, lp, BakeOptions{});
    if (!s.error.empty())
        setLastError(std::string(op) + ": " + s.error);
    else if (!s.made)
        setLastError(std::string(op) + ": polygon " + std::to_string(polygon) + " has no area");
    return s.made ? s.lastBitmap : 0;
}

int ZELMAR_polygons_create_lightmaps(const int* polygons, int count, int max_size, int min_size,
                                     double sampling_rate, int ray_tracing, int mode,
                                     int (*progress)(int done, int total, void* user), void* user) {
    const char* op = "polygons_create_lightmaps";
    if (count < 0 || (count > 0 && !polygons)) {
        setLastError(std::string(op) + ": no list of " + std::to_string(count) + " polygons");
        return 0;
    }
    LightMapParams lp;
    if (!params(max_size, min_size, sampling_rate, ray_tracing, mode, op, lp)) return 0;
    const std::vector<Handle> list(polygons, polygons + count);
    BakeOptions options;
    if (progress) options.progress = [progress, user](int done, int total) { return progress(done, total, user) == 0; };
    return bake(list, lp, op, options);
}

int ZELMAR_group_create_lightmap(int group, int max_size, int min_size, double sampling_rate, int ray_tracing,
                                 int mode) {
    const char* op = "group_create_lightmap";
    Group* g = groupArg(group, op);
    LightMapParams lp;
    if (!g || !params(max_size, min_size, sampling_rate, ray_tracing, mode, op, lp)) return 0;
    std::vector<Handle> list;
    for (Group* s = g; s; s = World::nextInSubtree(s, g))
        for (Polygon* q = s->firstPolygon; q; q = q->nextInGroup)
            list.push_back(q->handle);
    return bake(list, lp, op);
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
