// The worlds the light-map benchmark bakes, built through the C operations. Each answers
// the polygons to bake, in order.
#pragma once
#include <string>
#include <vector>

namespace bench {

struct BakeScene {
    std::string name;
    long triangles = 0;
    std::vector<int> polygons; // to bake
    double samplingRate = 1.0;
    int maxSize = 64, minSize = 2;
};

// The bunny of glmark2-data (OBJ) standing on a ground of 16 x 16 tiles, under a low sun;
// every polygon is baked. Empty name when the model file is missing.
BakeScene bunnyOnGround(const std::string& objFile);
// About 100,000 triangles: a ground of 100 x 100 tiles and 6,667 boxes on it; every
// polygon is baked.
BakeScene boxesOnGround();
// The rolling terrain of 1,000,000 quads (2,000,000 triangles) under a low sun; a patch of
// 100 x 100 quads in its middle is baked.
BakeScene terrain();

} // namespace bench
