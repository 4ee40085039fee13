// Baking the light that falls on a polygon into a second bitmap (a light map): texel value
// 128 means the polygon's colour unchanged, 255 about twice as bright (see engine-render.md).
// Shadow rays go to the ray kernel's any-hit queries; a bake of many polygons computes them
// on worker threads and puts the maps on the polygons in order on the calling thread, so
// the maps and the bitmap handles are the same for any thread count.
#pragma once
#include "rays/OcclusionScene.h"
#include "scene/Entities.h"
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zelmar {

struct LightMapParams {
    int maxSize = 64, minSize = 2; // texels per side
    double samplingRate = 1.0;     // world units per texel
    bool rayTracing = false;       // shadows from other polygons
    int mode = 1;                  // 1 sharp, 2 smoothed by a 3 x 3 filter
};

// Checks the parameters; an empty string when they are usable.
std::string checkLightMapParams(const LightMapParams& p);

// Makes the light map of one polygon on the calling thread, puts it on the polygon as
// second bitmap with second uv on its points, and answers the bitmap handle; 0 for a
// polygon without area.
Handle createLightMap(Polygon& p, const LightMapParams& params);

struct BakeOptions {
    int threads = 1;
    // Called on the calling thread after each polygon is finished (done counts up to
    // total); false stops the bake: the polygons not finished yet keep what they had.
    std::function<bool(int done, int total)> progress;
    // For benchmarks: receives every shadow ray, in polygon order.
    std::vector<rays::ShadowRay>* record = nullptr;
};

struct BakeStats {
    int made = 0;     // polygons that got a light map
    int finished = 0; // polygons done, with or without a map
    bool aborted = false;
    uint64_t shadowRays = 0;
    Handle lastBitmap = 0;
    std::string error; // set when the bake could not start
};

// Bakes the polygons in list order, with the same outcome as createLightMap on each in
// turn; a handle that is not a live polygon gets nothing.
BakeStats bakeLightMaps(const std::vector<Handle>& polygons, const LightMapParams& params, const BakeOptions& options);

} // namespace zelmar
