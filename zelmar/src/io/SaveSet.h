// What one save writes, in file order: chosen from the world by the saved group and the
// flag word, with every entity numbered within its kind so that references can be
// written as (kind, index). Nothing is copied; the writers read the entities in place.
#pragma once
#include "scene/World.h"
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace zelmar::io {

struct SaveSet {
    std::vector<Bitmap*> bitmaps;
    std::vector<std::string> bitmapFiles; // file name in the bitmaps folder, per bitmap
    std::vector<Animation*> animations;
    std::vector<Group*> groups; // pre-order from the saved group
    std::vector<int32_t> fathers;
    std::vector<Polygon*> styles; // one polygon standing for each distinct style
    std::vector<Polygon*> polygons;
    std::vector<uint32_t> polygonGroup;
    std::vector<uint32_t> polygonStyle;
    std::vector<Camera*> cameras;
    std::vector<Light*> lights;
    std::vector<Track*> tracks;
    std::vector<Background*> backgrounds;

    // File index of each saved entity by handle (polygons only when something refers to them).
    std::unordered_map<Handle, uint32_t> index;

    // A handle as (kind, file index); false when the entity is not part of this save.
    bool refOf(const World& w, Handle h, Kind& kind, uint32_t& idx) const;
};

// Fills `out`; false with a text when the flag word has unknown bits or `root` is null
// while groups are asked for.
bool collectSaveSet(const World& w, Group* root, int flags, SaveSet& out, std::string& error);

} // namespace zelmar::io
