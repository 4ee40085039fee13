// Shared by the world-reader fuzz targets: a file a reader accepts must build into a world,
// and that world, saved again, must read back. Bitmaps are never looked up (memory only).
#pragma once
#include "io/Build.h"
#include "io/SaveFlags.h"
#include "io/WorldFile.h"

#include <cstdint>
#include <string>

namespace fuzzworld {

inline void check(bool accepted, zelmar::io::WorldData& d, zelmar::io::FileFormat format) {
    using namespace zelmar;
    if (!accepted) return;
    World w;
    io::BitmapImages none = io::loadBitmapImages(d, {});
    io::BuildResult built = io::build(w, d, none);
    if (built.topGroups.empty()) return;
    io::SaveSet set;
    std::string error;
    if (!io::collectSaveSet(w, built.topGroups[0], 0x1203, set, error)) __builtin_trap();
    io::VectorSink out;
    if (!io::writeWorld(w, set, format, out, error)) __builtin_trap();
    io::WorldData again;
    if (!io::parseWorld(std::move(out.bytes), again, error)) __builtin_trap();
}

} // namespace fuzzworld
