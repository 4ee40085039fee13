// The worlds the light-map benchmark bakes, built through the C operations. Each answers
// the polygons to bake, in order.
#pragma once
#include <string>
#include <vector>

namespace bench {

struct BakeScene {
    std::string name;
    long triangles = 0;
    std::vector<int> receivers; // the surfaces the shadows fall on: the ray-rate bake
    std::vector<int> polygons;  // every polygon to bake: the whole-bake figure
    double samplingRate = 1.0;
    int maxSize = 64, minSize = 2;
};

// The bunny of glmark2-data (OBJ) standing on a ground of 16 x 16 tiles, under a low sun;
// the ground receives. Empty name when the model file is missing.
BakeScene bunnyOnGround(const std::string& objFile);
// About 100,000 triangles: a ground of 100 x 100 tiles and 6,667 boxes on it; the ground
// receives.
BakeScene boxesOnGround();
// The rolling terrain of 1,000,000 quads (2,000,000 triangles) under a low sun; a patch of
// 100 x 100 quads in its middle receives (and is all that is baked).
BakeScene terrain();

} // namespace bench
