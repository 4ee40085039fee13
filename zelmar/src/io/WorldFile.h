// Saving and loading whole world files: the format by extension on save and by content on
// load, the bitmaps folder, crash-safe writes, and all-or-nothing loads.
#pragma once
#include "io/Build.h"
#include "io/Bytes.h"
#include "io/SaveSet.h"
#include "io/WorldData.h"
#include "scene/World.h"
#include <string>
#include <vector>

namespace zelmar::io {

enum class FileFormat { Text, Zelmar, Tolvane, Compressed };

// ".wld", ".zelmar", ".tolvane", ".3dzelmar" (any letter case); false for anything else.
bool formatForPath(const std::string& path, FileFormat& format);

bool writeWorld(const World& w, const SaveSet& s, FileFormat f, Sink& out, std::string& error);
// Any of the formats, told apart by their first bytes. `maxBytes` bounds a decompressed size.
bool parseWorld(std::vector<uint8_t>&& bytes, WorldData& d, std::string& error,
                uint64_t maxBytes = uint64_t(1) << 36);

// Writes the subtree of `root` with what `flags` asks for (SaveFlags.h) to `path`, and the
// bitmaps in use to the "bitmaps" folder beside it. On failure the previous file is intact.
bool saveWorld(const World& w, const std::string& path, Group* root, int flags, std::string& error);

struct LoadOutcome {
    BuildResult built;
    std::string warning; // missing bitmaps: the load still succeeded
};

// Reads `path` and builds it into `w`. With `replace` the world is emptied first, also
// when the file turns out bad; without, a bad file leaves `w` untouched. Bitmaps are looked
// up in `bitmapsFolder`, then in "bitmaps" beside the file.
bool loadWorld(World& w, const std::string& path, const std::string& bitmapsFolder, bool replace,
               LoadOutcome& outcome, std::string& error);

} // namespace zelmar::io
