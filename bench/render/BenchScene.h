// The benchmark scene: a grid of triangles that exactly fills the view of a camera at the
// origin looking along +x (y left, z up), tilted so that depth (and fog) grows upwards.
#pragma once
#include <cstdint>
#include <vector>

namespace bench {

struct GridVertex {
    double xyz[3]; // engine world space
    float u, v;
    uint8_t rgb[3];
};

struct Grid {
    int cols = 0, rows = 0;
    std::vector<GridVertex> triangles; // 3 vertices per triangle
};

constexpr int kWidth = 1280, kHeight = 720;
constexpr double kZoom = 70.0; // horizontal field of view, degrees
constexpr double kNear = 0.5;
constexpr double kFogEnd = 40.0; // linear fog from depth 0

Grid makeGrid(int triangles);

// Engine side: one group per 1,000 triangles, each triangle a polygon; a 256 x 256 bitmap;
// linear-ish fog; a camera. Answers the camera handle.
int buildEngineScene(const Grid& g);

std::vector<uint8_t> textureRgba(); // 256 x 256

double nowMs();
double median(std::vector<double> v);

} // namespace bench
