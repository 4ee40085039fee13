// engine_load_world, engine_add_world and engine_save as the editor calls them.
#include "WorldGen.h"
#include "io/ImageCodec.h"
#include "scene/Current.h"
#include "scene/World.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using iotest::TempDir;
namespace fs = std::filesystem;

namespace {

void emptyEngine() {
    ASSERT_EQ(ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4), 1);
}

// A quad in a group, built the way the editor builds polygons.
int quad(int group, double x) {
    const int p = ZELMAR_polygon_create();
    for (int i = 0; i < 4; ++i) {
        const double v[6] = {x + (i & 1), double(i >> 1), 0, double(i & 1), double(i >> 1), 100};
        ZELMAR_polygon_add_point(p, v);
    }
    ZELMAR_polygon_set_group(p, group);
    ZELMAR_engine_add_polygon(p);
    return p;
}

int polygonsOf(int group) {
    int n = 0;
    for (int p = ZELMAR_group_get_first_polygon(group); p; p = ZELMAR_group_get_next_polygon(p))
        ++n;
    return n;
}

struct ApiWorld : ::testing::Test {
    TempDir dir;
    int root = 0, box = 0;
    void SetUp() override {
        emptyEngine();
        root = ZELMAR_group_create("the_world");
        box = ZELMAR_group_create("box");
        ZELMAR_group_set_father_group(box, root);
        quad(root, 0);
        quad(box, 10);
        const int cam = ZELMAR_camera_create("scene");
        ZELMAR_camera_set_save_flag(cam, 1);
        ZELMAR_camera_create("camera0"); // a viewport camera: never saved
    }
    void TearDown() override { ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4); }
};

TEST_F(ApiWorld, ThreeNullsEmptyTheEngine) {
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 0);
    EXPECT_EQ(ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4), 1);
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
    EXPECT_EQ(ZELMAR_group_is_group(root), 0);
}

TEST_F(ApiWorld, SaveThenLoadReplacesTheWorld) {
    const std::string path = dir / "w.zelmar";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    ZELMAR_group_create("stray");
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", (dir / "bitmaps").c_str(), 4), 1);
    EXPECT_EQ(ZELMAR_group_get_using_name("stray"), 0);
    EXPECT_EQ(ZELMAR_group_is_group(root), 0); // new handles
    const int r = ZELMAR_group_get_using_name("the_world");
    ASSERT_NE(r, 0);
    EXPECT_EQ(polygonsOf(r), 2);
    EXPECT_EQ(ZELMAR_group_get_father_group(ZELMAR_group_get_using_name("box")), r);
    int cameras = 0;
    for (int c = ZELMAR_camera_get_first_camera(); c; c = ZELMAR_camera_get_next_camera(c))
        ++cameras;
    EXPECT_EQ(cameras, 1);
}

TEST_F(ApiWorld, RelativeFileIsTakenInTheFolder) {
    ASSERT_EQ(ZELMAR_engine_save((dir / "rel.wld").c_str(), root, 0x1203), 1);
    EXPECT_EQ(ZELMAR_engine_load_world("rel.wld", dir.path.c_str(), nullptr, 4), 1)
        << ZELMAR_engine_get_last_error();
}

TEST_F(ApiWorld, AddWorldAnswersItsRootMovedToTheLocation) {
    const std::string path = dir / "model.tolvane";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), box, 0x243), 1) << ZELMAR_engine_get_last_error();
    const double at[3] = {100, -50, 7.25};
    const int added = ZELMAR_engine_add_world(path.c_str(), "", (dir / "Bitmaps").c_str(), at);
    ASSERT_NE(added, 0) << ZELMAR_engine_get_last_error();
    char name[256];
    ZELMAR_entity_get_name(added, name, 255);
    EXPECT_STREQ(name, "box"); // kept: the editor renames
    EXPECT_EQ(ZELMAR_group_get_father_group(added), 0);
    double loc[3];
    ZELMAR_group_get_location(added, loc);
    EXPECT_DOUBLE_EQ(loc[0], 100);
    EXPECT_DOUBLE_EQ(loc[1], -50);
    EXPECT_DOUBLE_EQ(loc[2], 7.25);
    EXPECT_EQ(polygonsOf(added), 1);
    EXPECT_EQ(ZELMAR_group_is_group(root), 1); // the open world is still there
    EXPECT_EQ(polygonsOf(root), 2);
}

TEST_F(ApiWorld, AddedWorldWithSeveralTopGroupsGetsOneRoot) {
    // A file from elsewhere, written by hand: no "the_world", two top-level groups, and
    // only the fields that differ from their defaults.
    const std::string text = "zelmar-world-text 1\n# two groups\n\ngroup 0 father=-1 name=\"left\"\r\n"
                             "group 1 father=-1 name=\"right\" disabled=1\nend\n";
    FILE* f = std::fopen((dir / "pair.wld").c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);

    const double at[3] = {0, 0, 0};
    const int added = ZELMAR_engine_add_world((dir / "pair.wld").c_str(), "", "", at);
    ASSERT_NE(added, 0) << ZELMAR_engine_get_last_error();
    EXPECT_EQ(ZELMAR_group_get_father_group(ZELMAR_group_get_using_name("left")), added);
    EXPECT_EQ(ZELMAR_group_get_father_group(ZELMAR_group_get_using_name("right")), added);

    // Loaded on its own, such a file is fine: the editor adopts the top-level groups.
    ASSERT_EQ(ZELMAR_engine_load_world((dir / "pair.wld").c_str(), "", "", 4), 1);
    EXPECT_EQ(ZELMAR_group_get_using_name("the_world"), 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(ZELMAR_group_get_using_name("left")), 0);
    EXPECT_EQ(ZELMAR_group_is_disable(ZELMAR_group_get_using_name("right")), 1);
}

TEST_F(ApiWorld, MissingBitmapKeepsAColourFillAndIsNamed) {
    image::Image img;
    img.width = img.height = 2;
    img.rgba = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 255};
    std::string error;
    fs::create_directories(dir / "src");
    ASSERT_TRUE(image::encodeFile(img, dir / "src/brick.bmp", error)) << error;
    const int bmp = ZELMAR_bitmap_load((dir / "src/brick.bmp").c_str(), -1);
    ASSERT_NE(bmp, 0) << ZELMAR_engine_get_last_error();
    const int p = ZELMAR_group_get_first_polygon(box);
    ZELMAR_polygon_set_bitmap_fill(p, bmp);
    const std::string path = dir / "w.wld";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    ASSERT_TRUE(fs::exists(dir / "bitmaps/brick.bmp"));

    // Found in the folder given.
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", (dir / "bitmaps").c_str(), 4), 1);
    EXPECT_NE(
        ZELMAR_polygon_get_bitmap_handle(ZELMAR_group_get_first_polygon(ZELMAR_group_get_using_name("box"))),
        0);
    // Found beside the file when the folder given has nothing.
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", (dir / "Bitmaps").c_str(), 4), 1);
    EXPECT_NE(
        ZELMAR_polygon_get_bitmap_handle(ZELMAR_group_get_first_polygon(ZELMAR_group_get_using_name("box"))),
        0);

    fs::remove(dir / "bitmaps/brick.bmp");
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", (dir / "bitmaps").c_str(), 4), 1);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("brick.bmp"), std::string::npos)
        << ZELMAR_engine_get_last_error();
    const int q = ZELMAR_group_get_first_polygon(ZELMAR_group_get_using_name("box"));
    ASSERT_NE(q, 0);
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(q), 0);
    EXPECT_EQ(ZELMAR_engine_get_number_of_loaded_bitmaps(), 0);
}

TEST_F(ApiWorld, FailedSaveLeavesThePreviousFileIntact) {
    const std::string path = dir / "keep.zelmar";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1);
    const auto before = iotest::fileBytes(path);

    // A value that cannot be written fails the save half-way.
    const double bad[3] = {NAN, 0, 0};
    const int p = ZELMAR_group_get_first_polygon(root);
    world().polygon(p)->points[0].xyz[0] = bad[0];
    EXPECT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()), "");
    EXPECT_EQ(iotest::fileBytes(path), before);
    world().polygon(p)->points[0].xyz[0] = 0;
    size_t files = 0;
    for (const auto& e : fs::directory_iterator(dir.path)) {
        (void)e;
        ++files;
    }
    EXPECT_EQ(files, 1u); // no scratch file left behind

    // Over a folder, into a folder that does not exist, into a place nobody may write.
    fs::create_directories(dir / "folder.wld");
    EXPECT_EQ(ZELMAR_engine_save((dir / "folder.wld").c_str(), root, 0x1203), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("folder"), std::string::npos);
    EXPECT_EQ(ZELMAR_engine_save((dir / "no/such/dir/w.wld").c_str(), root, 0x1203), 0);
    EXPECT_EQ(ZELMAR_engine_save("/proc/zelmar-test.wld", root, 0x1203), 0);
    EXPECT_EQ(ZELMAR_engine_save(path.c_str(), 0, 0x1203), 0);
    EXPECT_EQ(ZELMAR_engine_save(path.c_str(), 987654, 0x1203), 0);
    EXPECT_EQ(iotest::fileBytes(path), before);
}

TEST_F(ApiWorld, ReadOnlyFolderFailsAndKeepsTheOldFile) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
    const std::string path = dir / "ro/w.wld";
    fs::create_directories(dir / "ro");
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1);
    const auto before = iotest::fileBytes(path);
    ::chmod((dir / "ro").c_str(), 0555);
    quad(root, 50);
    EXPECT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("ro"), std::string::npos);
    ::chmod((dir / "ro").c_str(), 0755);
    EXPECT_EQ(iotest::fileBytes(path), before);
}

} // namespace

TEST(ApiWorldBackground, ALoadedWorldDrawsItsFirstBackground) {
    emptyEngine();
    const int root = ZELMAR_group_create("the_world");
    quad(root, 0);
    for (const char* name : {"sky", "dusk"}) {
        const int bk = ZELMAR_background_create(name, 0);
        ZELMAR_background_set_save_flag(bk, 1);
    }
    TempDir dir;
    const std::string path = dir / "b.wld";
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
    ASSERT_NE(activeBackground(), nullptr);
    EXPECT_EQ(activeBackground()->name, "sky");
    // a world without one leaves none drawn
    emptyEngine();
    const int bare = ZELMAR_group_create("the_world");
    quad(bare, 0);
    ASSERT_EQ(ZELMAR_engine_save(path.c_str(), bare, 0x1203), 1);
    ASSERT_EQ(ZELMAR_engine_load_world(path.c_str(), "", "", 4), 1);
    EXPECT_EQ(activeBackground(), nullptr);
    emptyEngine();
}

namespace {

// Rings of 4, 5 and 3 vertices, a ring of two and one with a value that is not a number (both refused).
struct Rings {
    std::vector<int> sizes{4, 5, 2, 3, 3};
    std::vector<double> vertices;
    Rings() {
        for (size_t r = 0; r < sizes.size(); ++r)
            for (int k = 0; k < sizes[r]; ++k) {
                const double a = 6.283185307179586 * k / sizes[r];
                vertices.insert(vertices.end(), {10.0 * r + std::cos(a), std::sin(a), 0.5 * r, 0.1 * k, 0.2 * r, 80.0 + k});
            }
        vertices[6 * (4 + 5 + 2 + 3) + 1] = NAN;
    }
};

// The world saved after making the rings' polygons one call at a time or all in one; the handles made.
std::string savedAfter(bool bulk, const TempDir& dir, std::vector<int>& made) {
    emptyEngine();
    const int root = ZELMAR_group_create("the_world");
    const int g = ZELMAR_group_create("cut");
    ZELMAR_group_set_father_group(g, root);
    const Rings r;
    made.assign(r.sizes.size(), 0);
    if (bulk) {
        EXPECT_EQ(ZELMAR_polygons_create(g, r.sizes.data(), int(r.sizes.size()), r.vertices.data(), "Cut_Poly",
                                         made.data()),
                  3);
    } else {
        const double* v = r.vertices.data();
        for (size_t i = 0; i < r.sizes.size(); v += 6 * r.sizes[i], ++i) {
            if (r.sizes[i] < 3 || i == 4) continue;
            const int p = made[i] = ZELMAR_polygon_create();
            ZELMAR_polygon_set_group(p, g);
            for (int k = 0; k < r.sizes[i]; ++k)
                ZELMAR_polygon_add_point(p, v + 6 * k);
            ZELMAR_engine_add_polygon(p);
            ZELMAR_polygon_set_name(p, "Cut_Poly");
        }
    }
    const std::string path = dir / (bulk ? "bulk.wld" : "single.wld");
    EXPECT_EQ(ZELMAR_engine_save(path.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

} // namespace

TEST(BulkPolygons, MadeFromRingsInOneCallTheyAreWhatOneCallPerItemMakes) {
    TempDir dir;
    std::vector<int> single, bulk;
    const std::string one = savedAfter(false, dir, single);
    const std::string all = savedAfter(true, dir, bulk);
    // Handles are never reused: the second world's are the first's shifted by one amount.
    ASSERT_NE(bulk[0], 0);
    for (size_t i = 0; i < bulk.size(); ++i)
        EXPECT_EQ(bulk[i] ? bulk[i] - bulk[0] : -1, single[i] ? single[i] - single[0] : -1) << i;
    EXPECT_EQ(bulk[2], 0);
    EXPECT_EQ(bulk[4], 0);
    ASSERT_FALSE(one.empty());
    EXPECT_TRUE(one == all) << "the saved worlds differ";
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(bulk[1]), 5);
    EXPECT_STREQ(ZELMAR_polygon_get_name(bulk[3]), "Cut_Poly");
    emptyEngine();
}
