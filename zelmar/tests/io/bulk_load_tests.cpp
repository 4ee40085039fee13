// A load creates its polygons in bulk (blocks of polygons and rings, handles reserved up
// front): what it leaves must be indistinguishable from polygons made one by one, and the
// blocks must go back when the polygons do.
#include "WorldGen.h"
#include "scene/World.h"

#include <algorithm>
#include <zelmar/zelmar.h>

using namespace zelmar;
using iotest::TempDir;

namespace {

// Rings of 3 to 12 points: pooled rings, the common quad, and rings longer than a pool takes.
int ringOf(int group, int points, double at) {
    const int p = ZELMAR_polygon_create();
    for (int i = 0; i < points; ++i) {
        const double v[6] = {at + i, at * 2 - i, 0.5 * i, 0.1 * i, 0.2 * i, 100.0 - i};
        ZELMAR_polygon_add_point(p, v);
    }
    ZELMAR_polygon_set_group(p, group);
    ZELMAR_engine_add_polygon(p);
    return p;
}

struct Walked {
    int handle;
    std::vector<int> points;
    std::vector<std::array<double, 3>> xyz;
};

std::vector<Walked> walk(int root) {
    std::vector<Walked> out;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p)) {
        Walked r{p, {}, {}};
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) {
            r.points.push_back(pt);
            r.xyz.emplace_back();
            ZELMAR_point_get_xyz(pt, r.xyz.back().data());
        }
        out.push_back(std::move(r));
    }
    return out;
}

struct BulkLoad : ::testing::Test {
    TempDir dir;
    int root = 0;
    std::vector<Walked> original;

    void SetUp() override {
        ZELMAR_engine_close();
        root = ZELMAR_group_create("the_world");
        const int a = ZELMAR_group_create("a"), b = ZELMAR_group_create("b");
        ZELMAR_group_set_father_group(a, root);
        ZELMAR_group_set_father_group(b, a);
        for (int i = 0; i < 40; ++i)
            ringOf(i % 3 == 0 ? root : i % 3 == 1 ? a : b, 3 + i % 10, i);
        original = walk(root);
    }
    void TearDown() override { ZELMAR_engine_close(); }

    std::string save(const std::string& name) {
        const std::string path = dir / name;
        EXPECT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
        return path;
    }
    int load(const std::string& path) {
        EXPECT_EQ(ZELMAR_engine_load_world(path.c_str(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
        return ZELMAR_group_get_using_name("the_world");
    }
};

} // namespace

TEST_F(BulkLoad, HandlesAreFreshMonotonicAndInTheOneByOneOrder) {
    for (const char* ext : {".wld", ".zelmar", ".tolvane", ".3dzelmar"}) {
        SCOPED_TRACE(ext);
        const std::string path = save(std::string("w") + ext);
        const int before = ZELMAR_group_create("probe"); // the newest handle before the load
        root = load(path);
        ASSERT_NE(root, 0);
        const std::vector<Walked> loaded = walk(root);
        ASSERT_EQ(loaded.size(), original.size());
        // Walk order is file order is creation order: each polygon's handle, then its points'.
        int last = before;
        for (size_t i = 0; i < loaded.size(); ++i) {
            EXPECT_GT(loaded[i].handle, last);
            last = loaded[i].handle;
            for (int pt : loaded[i].points) {
                EXPECT_EQ(pt, last + 1);
                last = pt;
            }
            EXPECT_EQ(loaded[i].xyz, original[i].xyz);
        }
        for (const Walked& r : original) // nothing of the old world answers, not even by chance
            EXPECT_EQ(ZELMAR_polygon_is_polygon(r.handle), 0);
        EXPECT_GT(ZELMAR_polygon_create(), last);
        original = loaded;
    }
}

TEST_F(BulkLoad, DeletingAndGrowingLoadedPolygonsThenReloadingAndClosingFreesEverything) {
    const std::string path = save("w.zelmar");
    const auto first = iotest::fileBytes(path);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        root = load(path);
        std::vector<Walked> loaded = walk(root);
        ASSERT_EQ(loaded.size(), original.size());
        EXPECT_GT(world().polygonBlocks(), 0u);
        // Rings leave their pooled places (longer, shorter, at the head) and polygons go.
        for (size_t i = 0; i < loaded.size(); ++i) {
            const int p = loaded[i].handle;
            if (i % 2) {
                ZELMAR_polygon_delete(p);
                continue;
            }
            const double v[6] = {7, 7, 7, 0, 0, 100};
            for (int k = 0; k < 9; ++k)
                ZELMAR_polygon_add_point(p, v);
            ZELMAR_polygon_add_point_to_head(p, v);
            ZELMAR_polygon_delete_point(p, ZELMAR_polygon_get_first_point(p));
            EXPECT_EQ(ZELMAR_polygon_get_num_of_points(p), static_cast<int>(loaded[i].points.size()) + 9);
            double xyz[3];
            ZELMAR_point_get_xyz(ZELMAR_polygon_get_first_point(p), xyz);
            EXPECT_EQ(xyz[0], loaded[i].xyz[0][0]);
        }
        EXPECT_EQ(walk(root).size(), (loaded.size() + 1) / 2);
    }
    // The file still loads to the same world, whatever happened to the one before.
    root = load(path);
    EXPECT_EQ(iotest::fileBytes(save("again.zelmar")), first);
    ZELMAR_engine_close();
    EXPECT_TRUE(world().empty());
    EXPECT_EQ(world().polygonBlocks(), 0u);
}

TEST_F(BulkLoad, ABadFileAfterALoadLeavesAnEmptyEngineHoldingNoBlocks) {
    const std::string path = save("w.zelmar");
    auto bytes = iotest::fileBytes(path);
    root = load(path);
    bytes[bytes.size() / 2] ^= 0x55; // a checksum mismatch somewhere in the polygons
    const std::string bad = dir / "bad.zelmar";
    FILE* f = std::fopen(bad.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
    EXPECT_EQ(ZELMAR_engine_load_world(bad.c_str(), "", "", 4), -1);
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
    EXPECT_EQ(world().polygonBlocks(), 0u);
    root = load(path);
    EXPECT_EQ(walk(root).size(), original.size());
}

TEST(BulkLoadLarge, AWorldMappedInAheadLoadsWholeAndSavesTheSameBytes) {
    // Enough polygons for the load to reserve its blocks and map them on another thread.
    TempDir dir;
    ZELMAR_engine_close();
    const int root = ZELMAR_group_create("the_world");
    const int g = ZELMAR_group_create("g");
    ZELMAR_group_set_father_group(g, root);
    for (int i = 0; i < 120000; ++i)
        ringOf(i % 7 ? g : root, i % 50 ? 4 : 3 + i % 11, i * 0.5);
    const std::string path = dir / "big.zelmar", again = dir / "again.zelmar";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    ZELMAR_engine_close();
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
    const int loaded = ZELMAR_group_get_using_name("the_world");
    ASSERT_EQ(ZELMAR_engine_save(again.c_str(), loaded, 0x1203), 1) << ZELMAR_engine_get_last_error();
    EXPECT_EQ(iotest::fileBytes(again), iotest::fileBytes(path));
    ZELMAR_engine_close();
    EXPECT_EQ(world().polygonBlocks(), 0u);
}
