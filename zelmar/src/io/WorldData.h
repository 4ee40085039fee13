// A world as read from a file, before it touches the engine. Readers fill it, `validate`
// checks every index and link, and only then `build` creates entities: a bad file can
// never leave a half-built world behind.
#pragma once
#include "scene/Entities.h"
#include <cstdint>
#include <string>
#include <vector>

namespace zelmar::io {

// References between entities travel as (kind, index in the file's list of that kind).
// While staged, a Handle field holds 1 + the position of its reference in WorldData::refs
// (0 means none); `build` turns it into a real handle.
struct StagedRef {
    Kind kind = Kind::None;
    uint32_t index = 0;
    uint64_t where = 0; // line or byte offset, for the error text
};

struct StagedBitmap {
    Bitmap bitmap;    // name and transparency
    std::string file; // file name in the bitmaps folder
    uint64_t where = 0;
};

struct StagedGroup {
    Group group;
    int64_t father = -1; // index of an earlier group, or -1 for a top-level group
    uint64_t where = 0;
};

struct StagedPolygon {
    uint32_t group = 0;
    uint32_t style = 0;
    uint32_t pointCount = 0;
    uint32_t mask = 0;        // present point attributes, bit i = pointAttrs()[i]
    uint64_t pointOffset = 0; // bytes into WorldData::pointBytes
    uint64_t where = 0;
    std::string name;
};

struct WorldData {
    std::vector<StagedBitmap> bitmaps;
    std::vector<Animation> animations;
    std::vector<StagedGroup> groups;
    std::vector<Polygon> styles; // only the style fields are meaningful
    std::vector<StagedPolygon> polygons;
    std::vector<Camera> cameras;
    std::vector<Light> lights;
    std::vector<Track> tracks;
    std::vector<uint64_t> trackWhere;
    std::vector<Background> backgrounds;
    std::vector<StagedRef> refs;

    // Point values: for each polygon, point after point, the present attributes in
    // pointAttrs() order as little-endian doubles, already checked to be finite. Either
    // into `ownedBytes` or into a reader's buffer kept alive in `fileBytes`.
    std::vector<uint8_t> ownedBytes;
    std::vector<uint8_t> fileBytes;
    const uint8_t* pointBytes = nullptr;
    uint64_t pointBytesSize = 0;
    uint64_t totalPoints = 0;

    Handle addRef(Kind k, uint32_t index, uint64_t where) {
        refs.push_back(StagedRef{k, index, where});
        return static_cast<Handle>(refs.size());
    }
};

// Bytes of one point with the attributes of `mask`.
uint32_t pointStride(uint32_t mask);

// Checks links and indices; `where` of the offending item goes into the text, prefixed
// by `unit` ("line" or "byte offset").
bool validate(const WorldData& d, const char* unit, std::string& error);

} // namespace zelmar::io
