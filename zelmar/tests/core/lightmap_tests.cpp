// Light maps: size from the sampling rate, brightness falling off from the light,
// shadows only with ray tracing, second uv on texel centres, replacement on a new bake.
#include "CoreTest.h"
#include "scene/World.h"

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
