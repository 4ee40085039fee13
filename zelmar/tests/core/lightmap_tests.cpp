// Light maps: size from the sampling rate, brightness falling off from the light,
// shadows only with ray tracing, second uv on texel centres, replacement on a new bake; the
// bake of a list on worker threads, its progress and abort.
#include "CoreTest.h"
#include "scene/World.h"

#include <filesystem>
#include <thread>
#include <unistd.h>

using LightMaps = CoreTest;

namespace {
zelmar::Light& omniLight(double x, double y, double z) {
    zelmar::Light* l = zelmar::world().createLight("lamp");
    l->location[0] = x;
    l->location[1] = y;
    l->location[2] = z;
    l->type = 8 | 16; // omni, ambient and diffuse, no decay
    l->ambient = 0.1;
    l->diffuse = 0.9;
    return *l;
}

int texel(int bitmap, int x, int y) {
    const zelmar::Bitmap* b = zelmar::world().bitmap(bitmap);
    return b->rgba[(static_cast<size_t>(y) * b->width + x) * 4];
}
} // namespace

TEST_F(LightMaps, BrightestUnderTheLightAndSizedBySamplingRate) {
    const int g = ZELMAR_group_create("floor");
    const int p = square(g, 0, 0, 0, 10);
    omniLight(5, 5, 5);
    const int b = ZELMAR_polygon_create_lightmap(p, 64, 2, 1.0, 0, 1);
    ASSERT_NE(b, 0);
    EXPECT_EQ(ZELMAR_polygon_get_second_bitmap(p), b);
    const zelmar::Bitmap* bm = zelmar::world().bitmap(b);
    ASSERT_NE(bm, nullptr);
    EXPECT_EQ(bm->width, 10);
    EXPECT_EQ(bm->height, 10);
    // Straight below the light: ambient + diffuse = 1.0 of the light, i.e. 128.
    EXPECT_NEAR(texel(b, 5, 5), 126, 3);
    EXPECT_LT(texel(b, 0, 0), texel(b, 4, 4));
    // Corners of the polygon meet texel centres.
    double uv[2];
    ZELMAR_point_get_second_bitmap_xy(ZELMAR_polygon_get_first_point(p), uv);
    EXPECT_DOUBLE_EQ(uv[0], 0.05);
    EXPECT_DOUBLE_EQ(uv[1], 0.05);
    // Size limits.
    EXPECT_EQ(zelmar::world().bitmap(ZELMAR_polygon_create_lightmap(p, 4, 2, 1.0, 0, 1))->width, 4);
    EXPECT_EQ(zelmar::world().bitmap(ZELMAR_polygon_create_lightmap(p, 64, 32, 1.0, 0, 1))->width, 32);
}

TEST_F(LightMaps, ShadowsOnlyWithRayTracing) {
    const int g = ZELMAR_group_create("floor");
    const int p = square(g, 0, 0, 0, 10);
    square(g, 4, 4, 2, 2); // a small roof between the light and the middle of the floor
    omniLight(5, 5, 5);
    const int lit = ZELMAR_polygon_create_lightmap(p, 64, 2, 1.0, 0, 1);
    const int litMiddle = texel(lit, 5, 5);
    const int shaded = ZELMAR_polygon_create_lightmap(p, 64, 2, 1.0, 1, 1);
    EXPECT_EQ(zelmar::world().bitmap(lit), nullptr); // the earlier map of this polygon is gone
    EXPECT_NEAR(texel(shaded, 5, 5), 13, 2);         // ambient only: 0.1 * 128
    EXPECT_GT(litMiddle, 100);
    EXPECT_GT(texel(shaded, 0, 0), 50); // the edge still sees the light
    // A disabled group casts no shadow.
    const int roofGroup = ZELMAR_group_create("roof");
    ZELMAR_polygon_set_group(walk(g)[1], roofGroup);
    ZELMAR_group_disable(roofGroup, 1);
    EXPECT_GT(texel(ZELMAR_polygon_create_lightmap(p, 64, 2, 1.0, 1, 1), 5, 5), 100);
}

TEST_F(LightMaps, BadParametersAndGroups) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 0, 0, 0, 3);
    square(g, 0, 0, 1, 3);
    omniLight(0, 0, 10);
    EXPECT_EQ(ZELMAR_polygon_create_lightmap(p, 64, 2, 0.0, 0, 1), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("sampling rate"), std::string::npos);
    EXPECT_EQ(ZELMAR_polygon_create_lightmap(p, 64, 2, 1.0, 0, 3), 0);
    EXPECT_EQ(ZELMAR_polygon_create_lightmap(p, 0, 2, 1.0, 0, 1), 0);
    EXPECT_EQ(ZELMAR_polygon_create_lightmap(77777, 64, 2, 1.0, 0, 1), 0);
    const int line = poly(g, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    EXPECT_EQ(ZELMAR_polygon_create_lightmap(line, 64, 2, 1.0, 0, 1), 0);
    // The group form bakes every polygon with area; smoothing keeps values in range.
    EXPECT_EQ(ZELMAR_group_create_lightmap(g, 8, 2, 0.5, 1, 2), 2);
    EXPECT_EQ(ZELMAR_entity_create_lightmap(g, 8, 2, 0.5, 0, 1), 2);
    EXPECT_NE(ZELMAR_polygon_get_second_bitmap(p), 0);
}

namespace {
// A floor of tiles under a roof, lit by a directional sun and a point lamp that both cast
// shadows: answers the tiles and the roof, in creation order.
std::vector<int> shadedTiles() {
    const int g = ZELMAR_group_create("floor");
    std::vector<int> list;
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 4; ++i)
            list.push_back(CoreTest::square(g, i * 3.0, j * 3.0, 0, 3));
    list.push_back(CoreTest::square(g, 3, 2, 2, 4)); // the roof
    zelmar::Light& lamp = omniLight(6, 3, 6);
    lamp.rayTracing = 1;
    zelmar::Light* sun = zelmar::world().createLight("sun");
    sun->type = 1 | 8 | 16;
    sun->direction[0] = 0.3, sun->direction[1] = -0.2, sun->direction[2] = -1;
    sun->ambient = 0.05, sun->diffuse = 0.5;
    sun->rayTracing = 1;
    return list;
}

// Every texel of the polygons' light maps, and each map's handle counted from the first.
std::vector<int> maps(const std::vector<int>& polygons) {
    std::vector<int> out;
    const int first = ZELMAR_polygon_get_second_bitmap(polygons.front());
    for (const int p : polygons) {
        const zelmar::Bitmap* b = zelmar::world().bitmap(ZELMAR_polygon_get_second_bitmap(p));
        if (!b) {
            out.push_back(-1);
            continue;
        }
        out.push_back(b->handle - first);
        out.insert(out.end(), {b->width, b->height});
        out.insert(out.end(), b->rgba.begin(), b->rgba.end());
    }
    return out;
}

struct Progress {
    std::vector<int> done;
    int stopAt = 0;
    std::thread::id thread;
    bool otherThread = false;
    static int call(int done, int total, void* user) {
        auto* self = static_cast<Progress*>(user);
        self->otherThread = self->otherThread || std::this_thread::get_id() != self->thread;
        self->done.push_back(done);
        EXPECT_GT(total, 0);
        return done == self->stopAt ? 1 : 0;
    }
};
} // namespace

TEST_F(LightMaps, ListBakeMatchesOnePolygonAtATimeForAnyThreadCount) {
    const std::vector<int> list = shadedTiles();
    for (const int p : list)
        ASSERT_NE(ZELMAR_polygon_create_lightmap(p, 16, 2, 0.5, 1, 2), 0);
    const std::vector<int> oneByOne = maps(list);
    // The roof's shadow falls across a tile beside it.
    const int edge = ZELMAR_polygon_get_second_bitmap(list[4]);
    EXPECT_GT(std::abs(texel(edge, 0, 0) - texel(edge, 5, 5)), 15);
    for (const int threads : {1, 2, 3}) {
        ZELMAR_engine_set_render_threads(threads);
        EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), static_cast<int>(list.size()), 16, 2, 0.5, 1, 2,
                                                   nullptr, nullptr),
                  static_cast<int>(list.size()));
        EXPECT_EQ(maps(list), oneByOne) << threads << " threads";
    }
    ZELMAR_engine_set_render_threads(0);
    // A map that another polygon uses too outlives its replacement; the others are gone.
    const int shared = ZELMAR_polygon_get_second_bitmap(list[0]);
    ZELMAR_polygon_set_second_bitmap(list[1], shared);
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), 1, 16, 2, 0.5, 1, 2, nullptr, nullptr), 1);
    EXPECT_NE(zelmar::world().bitmap(shared), nullptr);
    ZELMAR_polygon_set_second_bitmap(list[1], 0);
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), static_cast<int>(list.size()), 16, 2, 0.5, 1, 2,
                                               nullptr, nullptr),
              static_cast<int>(list.size()));
    int lightMaps = 0;
    for (const zelmar::Bitmap* b : zelmar::world().list<zelmar::Bitmap>())
        lightMaps += b->name.rfind("lightmap_", 0) == 0;
    // One per polygon, the shared one, and list[1]'s own, left unused (not replaced) when
    // it took the shared one.
    EXPECT_EQ(lightMaps, static_cast<int>(list.size()) + 2);
}

TEST_F(LightMaps, ProgressInOrderOnTheCallingThreadAndAbortKeepsTheWorldWhole) {
    std::vector<int> list = shadedTiles();
    const int line = poly(ZELMAR_group_create("line"), {{0, 0, 5}, {1, 0, 5}, {2, 0, 5}});
    list.insert(list.begin() + 2, line);     // no area: counted, no map
    list.insert(list.begin() + 3, 999999);   // not a polygon: the same
    ZELMAR_engine_set_render_threads(2);
    const int n = static_cast<int>(list.size());
    const int seeded = list[6];
    ASSERT_NE(ZELMAR_polygon_create_lightmap(seeded, 4, 2, 1, 0, 1), 0);
    const int seededMap = ZELMAR_polygon_get_second_bitmap(seeded);

    Progress first;
    first.thread = std::this_thread::get_id();
    first.stopAt = 1;
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), n, 16, 2, 0.5, 1, 1, Progress::call, &first), 1);
    EXPECT_EQ(first.done, std::vector<int>{1});
    EXPECT_NE(ZELMAR_polygon_get_second_bitmap(list[0]), 0);
    for (int i = 1; i < n; ++i) {
        if (list[i] != 999999 && list[i] != seeded) {
            EXPECT_EQ(ZELMAR_polygon_get_second_bitmap(list[i]), 0) << i;
        }
    }
    EXPECT_EQ(ZELMAR_polygon_get_second_bitmap(seeded), seededMap) << "not reached: keeps its map";

    Progress last;
    last.thread = std::this_thread::get_id();
    last.stopAt = n;
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), n, 16, 2, 0.5, 1, 1, Progress::call, &last), n - 2);
    std::vector<int> expected(n);
    for (int i = 0; i < n; ++i)
        expected[i] = i + 1;
    EXPECT_EQ(last.done, expected);
    EXPECT_FALSE(last.otherThread);
    EXPECT_EQ(zelmar::world().bitmap(seededMap), nullptr) << "replaced";
    EXPECT_EQ(ZELMAR_polygon_get_second_bitmap(line), 0);

    // The world saves and loads with its light maps.
    const auto dir = std::filesystem::temp_directory_path() / ("lightmaps_" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    const std::string file = (dir / "baked.wld").string();
    const int root = ZELMAR_group_create("the_world");
    ZELMAR_group_set_father_group(ZELMAR_group_get_using_name("floor"), root);
    ASSERT_EQ(ZELMAR_engine_save(file.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    ASSERT_EQ(ZELMAR_engine_load_world(file.c_str(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
    const int floor = ZELMAR_group_get_using_name("floor");
    ASSERT_NE(floor, 0);
    int mapped = 0;
    for (const int p : walk(floor))
        mapped += ZELMAR_polygon_get_second_bitmap(p) != 0;
    EXPECT_EQ(mapped, 13);
    std::filesystem::remove_all(dir);
    ZELMAR_engine_set_render_threads(0);
}

TEST_F(LightMaps, ListBakeRefusesBadArgumentsAndChangesNothing) {
    const std::vector<int> list = shadedTiles();
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), static_cast<int>(list.size()), 16, 2, -1, 1, 1, nullptr,
                                               nullptr),
              0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("sampling rate"), std::string::npos);
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(nullptr, 3, 16, 2, 1, 1, 1, nullptr, nullptr), 0);
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), -1, 16, 2, 1, 1, 1, nullptr, nullptr), 0);
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(nullptr, 0, 16, 2, 1, 1, 1, nullptr, nullptr), 0);
    for (const int p : list)
        EXPECT_EQ(ZELMAR_polygon_get_second_bitmap(p), 0);
}

TEST_F(LightMaps, ProgressMayNotStartAnotherBake) {
    const std::vector<int> list = shadedTiles();
    struct Nested {
        int polygon = 0;
        int answer = -1;
        std::string error;
    } nested;
    nested.polygon = list[0];
    auto call = [](int, int, void* user) {
        auto* n = static_cast<Nested*>(user);
        n->answer = ZELMAR_polygon_create_lightmap(n->polygon, 4, 2, 1, 0, 1);
        n->error = ZELMAR_engine_get_last_error();
        return 1;
    };
    EXPECT_EQ(ZELMAR_polygons_create_lightmaps(list.data(), 2, 4, 2, 1, 1, 1, call, &nested), 1);
    EXPECT_EQ(nested.answer, 0);
    EXPECT_NE(nested.error.find("already running"), std::string::npos) << nested.error;
}
