// From a validated WorldData to entities of the engine's world.
#pragma once
#include "io/ImageCodec.h"
#include "io/WorldData.h"
#include "scene/World.h"
#include <string>
#include <vector>

namespace zelmar::io {

// The images of a file's bitmaps, decoded before the world is touched. A bitmap that
// could not be found or decoded has `found` false and `problem` says why.
struct BitmapImages {
    std::vector<image::Image> images;
    std::vector<std::string> paths; // where each was found
    std::vector<bool> found;
    std::vector<std::string> problems; // one text per missing or unreadable bitmap
};

// Looks each bitmap file up in `folders` in order and decodes it.
BitmapImages loadBitmapImages(const WorldData& d, const std::vector<std::string>& folders);

// The version of a bitmap whose pixels are still those of its file (what a fresh load
// gives); a save copies such a bitmap's file byte for byte instead of encoding it again.
constexpr uint32_t kPristineBitmapVersion = 1;

struct BuildResult {
    std::vector<Group*> topGroups; // groups of the file without a father, in file order
};

// Creates every staged entity in `w`. `d` must have passed `validate`. Polygons whose
// bitmap is missing keep their colour fill. Bitmaps already in `w` with the same name and
// transparency are shared rather than loaded twice.
BuildResult build(World& w, WorldData& d, BitmapImages& images);

} // namespace zelmar::io
