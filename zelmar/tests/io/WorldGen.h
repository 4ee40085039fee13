// Random worlds for the file tests, and a field-by-field comparison of two worlds.
#pragma once
#include "scene/World.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace iotest {

struct GenSize {
    int groups = 12;
    int polygons = 60;
    int cameras = 3, lights = 3, tracks = 2, backgrounds = 2, animations = 2, bitmaps = 3;
};

// A world under one root "the_world" where every entity is flagged for saving and every
// bitmap is in use, so that a save with 0x1203 writes all of it. Every stored field gets a
// random value (extreme doubles, -0.0, subnormals, names with any byte).
zelmar::Group* makeRandomWorld(zelmar::World& w, uint64_t seed, const GenSize& size = {});

double extremeDouble(std::mt19937_64& rng);

// Everything saved of `a` (subtree of the group named "the_world") equals `b`, references
// compared by the position of their target in file order.
::testing::AssertionResult sameWorlds(zelmar::World& a, zelmar::World& b);

// A scratch folder removed at destruction.
struct TempDir {
    std::string path;
    TempDir();
    ~TempDir();
    std::string operator/(const std::string& name) const { return path + "/" + name; }
};

std::vector<uint8_t> fileBytes(const std::string& path);

} // namespace iotest
