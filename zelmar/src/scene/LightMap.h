// Baking the light that falls on a polygon into a second bitmap (a light map): texel value
// 128 means the polygon's colour unchanged, 255 about twice as bright (see engine-render.md).
#pragma once
#include "scene/Entities.h"
#include <string>

namespace zelmar {

struct LightMapParams {
    int maxSize = 64, minSize = 2; // texels per side
    double samplingRate = 1.0;     // world units per texel
    bool rayTracing = false;       // shadows from other polygons
    int mode = 1;                  // 1 sharp, 2 smoothed by a 3 x 3 filter
};

// Checks the parameters; an empty string when they are usable.
std::string checkLightMapParams(const LightMapParams& p);

// Makes the light map of one polygon, puts it on the polygon as second bitmap with second
// uv on its points, and answers the bitmap handle; 0 for a polygon without area.
Handle createLightMap(Polygon& p, const LightMapParams& params);

} // namespace zelmar
