#include "BakeLightMaps.h"

#include <cstddef>
#include <zelmar/zelmar.h>

namespace vexil {

int BakeLightMaps(const std::vector<int>& polygons, const LightMapParams& p, BakeProgress progress, void* user) {
    const int total = static_cast<int>(polygons.size());
    int made = 0;
    for (int i = 0; i < total; ++i) {
        if (ZELMAR_polygon_create_lightmap(polygons[static_cast<std::size_t>(i)], p.maxSize, p.minSize, p.samplingRate, p.rayTracing,
                                           p.mode) != 0)
            ++made;
        if (progress && progress(i + 1, total, user) != 0) break;
    }
    return made;
}

} // namespace vexil
