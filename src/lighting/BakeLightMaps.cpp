#include "BakeLightMaps.h"

#include <zelmar/zelmar.h>

namespace vexil {

// The engine bakes on its worker threads and calls `progress` on this thread after each polygon, in order,
// so the dialog's counts, bar and abort question work as they do for one polygon at a time.
int BakeLightMaps(const std::vector<int>& polygons, const LightMapParams& p, BakeProgress progress, void* user) {
    if (polygons.empty()) return 0;
    return ZELMAR_polygons_create_lightmaps(polygons.data(), static_cast<int>(polygons.size()), p.maxSize, p.minSize,
                                            p.samplingRate, p.rayTracing, p.mode, progress, user);
}

} // namespace vexil
