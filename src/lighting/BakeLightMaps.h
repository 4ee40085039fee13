// The bake of light maps over a list of polygons: the one place that knows how the engine is asked. The
// progress callback runs on the calling thread after each polygon with the count done so far (1 to
// total); a nonzero answer stops the bake before the next polygon. A polygon that the engine refuses
// makes no map and the bake goes on.
#pragma once
#include <vector>

namespace vexil {

struct LightMapParams {
    int maxSize = 64;
    int minSize = 2;
    double samplingRate = 10;
    int rayTracing = 1; // 0 or 1
    int mode = 1;       // 1, or 2 for a smoothed map
};

using BakeProgress = int (*)(int done, int total, void* user);

// Answers the number of maps made.
int BakeLightMaps(const std::vector<int>& polygons, const LightMapParams& params, BakeProgress progress, void* user);

} // namespace vexil
