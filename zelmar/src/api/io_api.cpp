// World files: load, add and save. The work is in io/WorldFile; this is the boundary.
#include "api/LastError.h"
#include "io/WorldFile.h"
#include "scene/Current.h"
#include "scene/GroupGeometry.h"
#include "scene/World.h"

#include <cmath>
#include <exception>
#include <filesystem>
#include <zelmar/zelmar.h>

using namespace zelmar;

namespace {

constexpr int kReplaceMode = 4;

// The file, relative to `folder` when one is given and the file is not absolute.
std::string resolve(const char* file, const char* folder) {
    std::filesystem::path p(file);
    if (folder && *folder && p.is_relative()) p = std::filesystem::path(folder) / p;
    return p.string();
}

// Nothing may escape through the C boundary: running out of memory on a huge world becomes
// an ordinary failure (a load that replaces the world then leaves it empty).
template <class Fn> bool guarded(Fn fn, std::string& error, World* clearOnFailure) {
    try {
        return fn();
    } catch (const std::exception& e) {
        if (clearOnFailure) clearOnFailure->clear();
        error = std::string("out of resources: ") + e.what();
    }
    return false;
}

} // namespace

extern "C" {

int ZELMAR_engine_load_world(const char* file, const char* folder, const char* bitmaps_folder, int mode) {
    World& w = world();
    if (mode != kReplaceMode) {
        w.clear();
        setLastError("engine_load_world: mode " + std::to_string(mode) +
                     " is not supported (4 replaces the world)");
        return -1;
    }
    if (!file) { // no file: an empty engine
        w.clear();
        clearLastError();
        return 1;
    }
    if (!*file) {
        w.clear();
        setLastError("engine_load_world: no file name given");
        return -1;
    }
    io::LoadOutcome outcome;
    std::string error;
    const std::string path = resolve(file, folder), bitmaps = bitmaps_folder ? bitmaps_folder : "";
    if (!guarded([&] { return io::loadWorld(w, path, bitmaps, true, outcome, error); }, error, &w)) {
        setLastError("engine_load_world: " + error);
        return -1;
    }
    // A world saved with a background shows it: the first one becomes the one drawn.
    if (!activeBackground() && !w.list<Background>().empty()) setActiveBackground(w.list<Background>().front()->handle);
    if (outcome.warning.empty())
        clearLastError();
    else
        setLastError("engine_load_world: " + outcome.warning);
    return 1;
}

int ZELMAR_engine_add_world(const char* file, const char* folder, const char* bitmaps_folder,
                            const double location[3]) {
    if (!file || !*file) {
        setLastError("engine_add_world: no file name given");
        return 0;
    }
    if (location &&
        !(std::isfinite(location[0]) && std::isfinite(location[1]) && std::isfinite(location[2]))) {
        setLastError("engine_add_world: the location is not finite");
        return 0;
    }
    World& w = world();
    io::LoadOutcome outcome;
    std::string error;
    const std::string path = resolve(file, folder), bitmaps = bitmaps_folder ? bitmaps_folder : "";
    if (!guarded([&] { return io::loadWorld(w, path, bitmaps, false, outcome, error); }, error, nullptr)) {
        setLastError("engine_add_world: " + error);
        return 0;
    }
    // One top-level group is the added world's root; several (or none) get a common one.
    const auto& tops = outcome.built.topGroups;
    Group* root = tops.size() == 1 ? tops[0] : w.createGroup("the_world");
    if (tops.size() != 1)
        for (Group* g : tops)
            w.setFather(*g, root);
    if (location) moveGroup(*root, V3(location) - groupLocation(*root));
    if (outcome.warning.empty())
        clearLastError();
    else
        setLastError("engine_add_world: " + outcome.warning);
    return root->handle;
}

int ZELMAR_engine_save(const char* file, int group, int flags) {
    World& w = world();
    Group* g = w.group(group);
    if (!file) {
        setLastError("engine_save: no file name given");
        return 0;
    }
    if (!g && group != 0) {
        setLastError("engine_save: " + std::to_string(group) + " is not a group");
        return 0;
    }
    std::string error;
    if (!guarded([&] { return io::saveWorld(w, file, g, flags, error); }, error, nullptr)) {
        setLastError("engine_save: " + error);
        return 0;
    }
    clearLastError();
    return 1;
}

} // extern "C"
