// Small worlds built straight through the scene model, for render and pick tests.
#pragma once
#include "scene/World.h"
#include <array>
#include <string>
#include <vector>

namespace zelmar::test {

struct V {
    double x, y, z;
    double u = 0, v = 0;
};

// Empties the world and resets every render switch to its default.
void resetEngine();

Group* group(const std::string& name, Group* father = nullptr);
// A polygon in ring order; the optional colour makes it a colour fill.
Polygon* polygon(Group* g, const std::vector<V>& ring, std::array<int, 3> color = {255, 255, 255});
// Marks a polygon changed after its fields were edited directly.
void changed(Polygon* p);
// A camera at `eye` looking along +x, with +y on the left and +z up.
Camera* cameraAlongX(const std::array<double, 3>& eye, double zoom = 90.0, double nearDepth = 1.0);
// A bitmap of width x height from a function of (x, y) giving 0xRRGGBB.
Bitmap* bitmap(const std::string& name, int width, int height, unsigned (*pixel)(int x, int y));

// Renders into a fresh target and answers the RGBA bytes.
std::vector<uint8_t> renderImage(Camera* c, int width = 64, int height = 48);

// Compares with golden/<name>.png: every channel within `tolerance`. With
// ZELMAR_UPDATE_GOLDENS=1 the golden is (re)written instead. Answers a failure text or "".
std::string matchGolden(const std::string& name, const std::vector<uint8_t>& rgba, int width = 64,
                        int height = 48, int tolerance = 2);

std::array<int, 3> pixelAt(const std::vector<uint8_t>& rgba, int x, int y, int width = 64);

} // namespace zelmar::test
