// Bad files give a clear error and an empty, usable engine (load) or an untouched world
// (add); they never crash and never leave part of a world behind.
#include "BinaryFaults.h"
#include "WorldGen.h"
#include "io/Bytes.h"
#include "io/WorldFile.h"
#include "scene/World.h"

#include <filesystem>
#include <zelmar/zelmar.h>

using namespace zelmar;
using iotest::TempDir;

namespace {

std::vector<std::string> badFiles() {
    std::vector<std::string> out;
    for (const auto& e : std::filesystem::directory_iterator(IO_BAD_DIR))
        out.push_back(e.path().string());
    std::sort(out.begin(), out.end());
    return out;
}

bool hasLocation(const std::string& error) {
    return error.find("line ") != std::string::npos || error.find("byte offset ") != std::string::npos;
}

TEST(BadFiles, LoadFailsCleanlyAndTheEngineStaysUsable) {
    const auto files = badFiles();
    ASSERT_GE(files.size(), 30u);
    for (const std::string& f : files) {
        SCOPED_TRACE(f);
        const int g = ZELMAR_group_create("before");
        ASSERT_NE(g, 0);
        EXPECT_EQ(ZELMAR_engine_load_world(f.c_str(), "", "", 4), -1);
        const std::string error = ZELMAR_engine_get_last_error();
        EXPECT_NE(error.find(std::filesystem::path(f).filename().string()), std::string::npos) << error;
        const std::string name = std::filesystem::path(f).filename().string();
        if (name != "empty.wld" && name != "garbage.bin") {
            EXPECT_TRUE(hasLocation(error)) << error;
        }
        EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
        EXPECT_EQ(ZELMAR_group_is_group(g), 0);
        EXPECT_NE(ZELMAR_group_create("after"), 0); // usable
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    }
}

TEST(BadFiles, AddLeavesTheWorldUntouched) {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int root = ZELMAR_group_create("the_world");
    const int poly = ZELMAR_polygon_create();
    const double v[6] = {1, 2, 3, 0, 0, 100};
    ZELMAR_polygon_add_point(poly, v);
    ZELMAR_polygon_set_group(poly, root);
    const size_t groups = world().groupCount(), polygons = world().polygonCount();
    const uint64_t generation = world().generation;
    for (const std::string& f : badFiles()) {
        SCOPED_TRACE(f);
        const double at[3] = {0, 0, 0};
        EXPECT_EQ(ZELMAR_engine_add_world(f.c_str(), "", "", at), 0);
        EXPECT_NE(std::string(ZELMAR_engine_get_last_error()), "");
    }
    EXPECT_EQ(world().groupCount(), groups);
    EXPECT_EQ(world().polygonCount(), polygons);
    EXPECT_EQ(world().generation, generation);
    EXPECT_EQ(ZELMAR_group_is_group(root), 1);
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
}

TEST(BadFiles, EveryTruncationAndEveryByteFlipOfAValidFileIsSafe) {
    TempDir dir;
    World a;
    iotest::GenSize small;
    small.groups = 2, small.polygons = 4, small.bitmaps = 0, small.animations = 0;
    Group* root = iotest::makeRandomWorld(a, 5, small);
    for (const char* ext : {".wld", ".zelmar", ".3dzelmar"}) {
        SCOPED_TRACE(ext);
        std::string error;
        const std::string path = dir / (std::string("w") + ext);
        ASSERT_TRUE(io::saveWorld(a, path, root, 0x1203, error)) << error;
        const std::vector<uint8_t> good = iotest::fileBytes(path);
        for (size_t cut = 0; cut < good.size(); cut += 1 + good.size() / 400) {
            io::WorldData d;
            std::string e;
            EXPECT_FALSE(io::parseWorld(std::vector<uint8_t>(good.begin(), good.begin() + long(cut)), d, e))
                << cut;
            EXPECT_NE(e, "");
        }
        for (size_t at = 0; at < good.size(); at += 1 + good.size() / 300) {
            std::vector<uint8_t> b = good;
            b[at] ^= 0x24;
            io::WorldData d;
            std::string e;
            // A flip may leave a text file valid (a digit in a value); it must never crash, and
            // the binary formats notice every flip through their checksums.
            const bool ok = io::parseWorld(std::move(b), d, e);
            if (std::string(ext) != ".wld") {
                EXPECT_FALSE(ok) << at;
            }
        }
    }
}

// The bytes of a small valid binary world.
std::vector<uint8_t> smallBinaryWorld(const TempDir& dir) {
    World a;
    iotest::GenSize small;
    small.groups = 2, small.polygons = 3, small.bitmaps = 0, small.animations = 0;
    Group* root = iotest::makeRandomWorld(a, 9, small);
    std::string error;
    EXPECT_TRUE(io::saveWorld(a, dir / "w.zelmar", root, 0x1203, error)) << error;
    return iotest::fileBytes(dir / "w.zelmar");
}

// A schema whose camera records take 2^32 bytes each (2.1 million wide fields) once let a
// count of 4 billion records past the check (the 32-bit sum wrapped to 0). Such a schema is
// now refused for its number of fields, and counts are checked in 64 bits whatever the size.
TEST(BinaryRead, RecordSizesSummingTo2To32DoNotWrapPastTheCountCheck) {
    TempDir dir;
    std::vector<uint8_t> bytes = iotest::wrappingRecordSize(smallBinaryWorld(dir));
    io::WorldData d;
    std::string error;
    EXPECT_FALSE(io::parseWorld(std::move(bytes), d, error));
    EXPECT_NE(error.find("has 2105377 fields (at most 4096)"), std::string::npos) << error;
    EXPECT_NE(error.find("byte offset"), std::string::npos) << error;

    const uint8_t counts[12] = {0xFF, 0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 0, 0, 0, 0}; // 4294967295, 1, 0
    for (const uint64_t least : {uint64_t(1) << 32, (uint64_t(1) << 32) + 4, uint64_t(1) << 40, ~uint64_t(0)}) {
        SCOPED_TRACE(least);
        io::Cursor all(counts, 12, 0), one(counts + 4, 8, 0), none(counts + 8, 4, 0);
        EXPECT_THROW(all.count(least), io::ReadError);
        EXPECT_THROW(one.count(least), io::ReadError);
        EXPECT_EQ(none.count(least), 0u);
    }
}

TEST(CompressedRead, ADeclaredSizeFarBeyondTheFileIsRefusedBeforeDecompressing) {
    std::vector<uint8_t> bomb = iotest::compressedZeros(uint64_t(64) << 20);
    ASSERT_LT(bomb.size(), 16u << 10);
    io::WorldData d;
    std::string error;
    EXPECT_FALSE(io::parseWorld(std::move(bomb), d, error));
    EXPECT_NE(error.find("is more than 1024 times the file's"), std::string::npos) << error;
}

TEST(CompressedRead, TheInnerHeaderIsCheckedBeforeTheRestIsDecompressed) {
    // Reading on would meet the cut; the first bytes already tell that this is no world.
    io::WorldData d;
    std::string error;
    EXPECT_FALSE(io::parseWorld(iotest::compressedGarbageCutShort(1 << 20), d, error));
    EXPECT_NE(error.find("inside the compressed data, byte offset 0: not a binary world"), std::string::npos)
        << error;
}

TEST(CompressedWrite, AWorldBeyondTheRatioBoundIsPaddedAndReadsBack) {
    // Thousands of identical empty groups compress far better than any world of real content.
    World a;
    Group* root = a.createGroup("the_world");
    for (int i = 0; i < 30000; ++i)
        a.setFather(*a.createGroup("g"), root);
    TempDir dir;
    std::string error;
    ASSERT_TRUE(io::saveWorld(a, dir / "w.3dzelmar", root, 0x1203, error)) << error;
    ASSERT_TRUE(io::saveWorld(a, dir / "w.zelmar", root, 0x1203, error)) << error;
    const size_t plain = iotest::fileBytes(dir / "w.zelmar").size();
    std::vector<uint8_t> z = iotest::fileBytes(dir / "w.3dzelmar");
    EXPECT_GE(z.size() * 1024, plain);
    io::WorldData d;
    EXPECT_TRUE(io::parseWorld(std::move(z), d, error)) << error;
    EXPECT_EQ(d.groups.size(), 30001u);
    // Padding is the only thing that may follow the compressed data.
    z = iotest::fileBytes(dir / "w.3dzelmar");
    z.back() ^= 1; // inside the padding: still fine
    EXPECT_TRUE(io::parseWorld(std::vector<uint8_t>(z), d, error)) << error;
    z.push_back(0);
    EXPECT_FALSE(io::parseWorld(std::move(z), d, error));
    EXPECT_NE(error.find("bytes after the compressed data"), std::string::npos) << error;
}

TEST(BadFiles, MissingOrUnreadableFiles) {
    TempDir dir;
    EXPECT_EQ(ZELMAR_engine_load_world((dir / "nothing.wld").c_str(), nullptr, nullptr, 4), -1);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("nothing.wld"), std::string::npos);
    EXPECT_EQ(ZELMAR_engine_load_world(dir.path.c_str(), nullptr, nullptr, 4), -1); // a folder
    EXPECT_EQ(ZELMAR_engine_load_world("", nullptr, nullptr, 4), -1);
    EXPECT_EQ(ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 3), -1);
    EXPECT_EQ(ZELMAR_engine_add_world(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
}

} // namespace
