// Pictures of small scenes compared with checked-in golden images (64 x 48).
// Regenerate with ZELMAR_UPDATE_GOLDENS=1, then look at every changed PNG before committing.
#include "TestScene.h"

#include "render/Settings.h"
#include "scene/Current.h"
#include <cmath>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

unsigned checker(int x, int y) {
    static const unsigned colours[4] = {0xE04030, 0x30A0E0, 0xF0F0F0, 0x208020};
    return colours[((x / 4) + (y / 4) * 2) % 4];
}
unsigned gradient(int x, int y) {
    return static_cast<unsigned>(x * 16) << 16 | static_cast<unsigned>(y * 16) << 8 | 0x80;
}
unsigned lightMapPixels(int x, int) {
    const unsigned v = static_cast<unsigned>(x * 255 / 15);
    return v << 16 | v << 8 | v;
}
unsigned sky(int, int y) {
    return static_cast<unsigned>(60 + y * 3) << 8 | static_cast<unsigned>(120 + y * 4);
}

// A quad facing the camera (plane x = depth), centred on (depth, cy, cz).
Polygon* facingQuad(Group* g, double depth, double cy, double cz, double half,
                    std::array<int, 3> color = {255, 255, 255}) {
    return polygon(g,
                   {{depth, cy + half, cz + half, 0, 0},
                    {depth, cy + half, cz - half, 0, 1},
                    {depth, cy - half, cz - half, 1, 1},
                    {depth, cy - half, cz + half, 1, 0}},
                   color);
}

class Golden : public ::testing::Test {
  protected:
    void SetUp() override { resetEngine(); }
    void TearDown() override { resetEngine(); }
    void expectGolden(const std::string& name, Camera* c) {
        const std::vector<uint8_t> picture = renderImage(c);
        EXPECT_EQ(matchGolden(name, picture), "");
    }
};

TEST_F(Golden, TexturedQuadInPerspective) {
    Group* g = group("g");
    Polygon* p = polygon(g, {{2, 6, 4, 0, 0}, {2, 6, -4, 0, 1}, {14, -6, -4, 1, 1}, {14, -6, 4, 1, 0}});
    p->fill.bitmap = bitmap("checker", 16, 16, checker)->handle;
    changed(p);
    expectGolden("textured_quad", cameraAlongX({-4, 0, 0}, 70));
}

TEST_F(Golden, ConcavePolygonWithVertexColours) {
    Group* g = group("g");
    // An arrow pointing up, concave at its two shoulders.
    Polygon* p =
        polygon(g, {{10, 0, 8}, {10, -7, 1}, {10, -3, 1}, {10, -3, -7}, {10, 3, -7}, {10, 3, 1}, {10, 7, 1}},
                {240, 200, 40});
    p->points[0].rgb[0] = 255, p->points[0].rgb[1] = 60, p->points[0].rgb[2] = 60;
    p->points[3].brightness = 40;
    changed(p);
    expectGolden("concave_polygon", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, TwoOverlappingGroupsDepthTested) {
    // The nearer group is created last and the farther, larger one first, then the reverse
    // for the second pair: depth decides, not order.
    Group* far1 = group("far");
    facingQuad(far1, 12, 2, 0, 6, {200, 40, 40});
    Group* near1 = group("near");
    facingQuad(near1, 8, -2, 1, 3, {40, 200, 40});
    Group* tilted = group("tilted");
    polygon(tilted, {{6, 3, -6}, {16, 3, 6}, {16, -3, 6}, {6, -3, -6}}, {60, 60, 230});
    expectGolden("overlapping_groups", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, Fog) {
    Group* g = group("g");
    for (int i = 0; i < 5; ++i)
        facingQuad(g, 5 + i * 8, -8 + i * 4, 0, 2 + i * 1.5, {250, 250, 250});
    ZELMAR_engine_set_atmospheric_effect(40, 60, 140);
    ZELMAR_engine_set_atmospheric_effect_intensity(0.25);
    expectGolden("fog", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, EveryBlendingFilter) {
    Group* back = group("backdrop");
    Polygon* b =
        polygon(back, {{20, 16, 12, 0, 0}, {20, 16, -12, 0, 1}, {20, -16, -12, 1, 1}, {20, -16, 12, 1, 0}});
    b->fill.bitmap = bitmap("gradient", 16, 16, gradient)->handle;
    changed(b);
    Group* front = group("filters");
    const int filters[9] = {0x00, 0x31, 0x43, 0x52, 0x44, 0x32, 0x42, 0x22, 0x51};
    for (int i = 0; i < 9; ++i) {
        Polygon* p = facingQuad(front, 10, 6 - (i % 3) * 6, 4 - (i / 3) * 4.5, 1.8, {230, 120, 30});
        p->fill.translucent = filters[i];
        changed(p);
    }
    expectGolden("blending_filters", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, ActivatedPointLight) {
    Group* g = group("floor");
    // A floor below the eye in small tiles (lights are computed per point), lit by a point
    // light above its middle.
    for (int i = 0; i < 14; ++i)
        for (int j = 0; j < 10; ++j) {
            const double x = 2 + i * 2, y = -10 + j * 2;
            polygon(g, {{x, y + 2, -3}, {x + 2, y + 2, -3}, {x + 2, y, -3}, {x, y, -3}}, {220, 220, 220});
        }
    Light* l = world().createLight("lamp");
    l->location[0] = 10, l->location[1] = 2, l->location[2] = 0;
    l->color[0] = 255, l->color[1] = 210, l->color[2] = 160;
    l->type = 58; // ambient, diffuse, specular, linear decay
    l->ambient = 0.1, l->diffuse = 1.0, l->specular = 0.0;
    l->distanceReach = 14;
    l->activated = true;
    l->activatedVersion = l->version;
    Light* off = world().createLight("never activated");
    off->location[0] = 20, off->ambient = 1.0;
    expectGolden("point_light", cameraAlongX({0, 0, 1}, 90));
}

TEST_F(Golden, LightMapAsSecondBitmap) {
    Group* g = group("g");
    Polygon* p = facingQuad(g, 10, 0, 0, 6);
    p->fill.bitmap = bitmap("checker", 16, 16, checker)->handle;
    p->fill.secondBitmap = bitmap("lightmap", 16, 4, lightMapPixels)->handle;
    for (PointData& d : p->points)
        d.uv2[0] = d.uv[0], d.uv2[1] = d.uv[1];
    changed(p);
    expectGolden("light_map", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, BakedLightMapWithAShadow) {
    // A floor below the eye, a plate floating over it, a lamp above and to the right: the
    // baked light map darkens the floor where the plate keeps the lamp's light off.
    Group* g = group("g");
    Polygon* floor =
        polygon(g, {{4, -8, -3}, {4, 8, -3}, {20, 8, -3}, {20, -8, -3}}, {230, 230, 230}); // faces up
    polygon(g, {{9, -1.5, -1.5}, {9, 1.5, -1.5}, {12, 1.5, -1.5}, {12, -1.5, -1.5}}, {200, 60, 40});
    Light* lamp = world().createLight("lamp");
    lamp->location[0] = 11, lamp->location[1] = -5, lamp->location[2] = 3;
    lamp->type = 8 | 16;
    lamp->ambient = 0.25, lamp->diffuse = 0.9;
    ASSERT_NE(ZELMAR_polygon_create_lightmap(floor->handle, 64, 2, 0.25, 1, 2), 0);
    expectGolden("light_map_shadow", cameraAlongX({0, 0, 1}, 90));
}

TEST_F(Golden, ActiveBackgroundBehindTheWorld) {
    Background* bg = world().createBackground("sky");
    bg->bitmap = bitmap("sky", 8, 32, sky)->handle;
    bg->intensityStep = 0.5;
    bg->bottomIntensity = 0.6;
    setActiveBackground(bg->handle);
    facingQuad(group("g"), 10, 0, -2, 3, {200, 150, 90});
    expectGolden("background", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, WireframeMode) {
    Group* g = group("g");
    Polygon* p = polygon(g, {{2, 6, 4, 0, 0}, {2, 6, -4, 0, 1}, {14, -6, -4, 1, 1}, {14, -6, 4, 1, 0}});
    p->fill.bitmap = bitmap("checker", 16, 16, checker)->handle;
    changed(p);
    polygon(g, {{10, 0, 8}, {10, -7, 1}, {10, 7, 1}}, {255, 255, 0});
    ZELMAR_engine_set_wire_frame_rendering_mode(1);
    expectGolden("wireframe", cameraAlongX({-4, 0, 0}, 70));
}

TEST_F(Golden, ColourFillModeIgnoresBitmaps) {
    Group* g = group("g");
    Polygon* p = polygon(g, {{2, 6, 4, 0, 0}, {2, 6, -4, 0, 1}, {14, -6, -4, 1, 1}, {14, -6, 4, 1, 0}},
                         {90, 160, 220});
    p->fill.bitmap = bitmap("checker", 16, 16, checker)->handle;
    p->points[2].brightness = 30;
    changed(p);
    ZELMAR_engine_set_color_fill_rendering_mode(1);
    expectGolden("color_fill", cameraAlongX({-4, 0, 0}, 70));
}

TEST_F(Golden, DisabledGroupsAndPolygonsAreNotDrawn) {
    Group* root = group("root");
    Group* shown = group("shown", root);
    facingQuad(shown, 10, 4, 0, 3, {40, 200, 40});
    Group* hiddenParent = group("hidden parent", root);
    Group* child = group("child of hidden", hiddenParent);
    facingQuad(child, 10, -4, 0, 3, {200, 40, 40});
    hiddenParent->disabled = true;
    Polygon* off = facingQuad(shown, 8, 0, 4, 2, {40, 40, 200});
    off->disabled = true;
    changed(off);
    expectGolden("disabled_group", cameraAlongX({0, 0, 0}, 90));
}

TEST_F(Golden, ParallelViewAsNarrowPerspectiveFarAway) {
    // A box seen from far along a diagonal with a 1-degree field of view: sides stay parallel.
    Group* g = group("box");
    polygon(g, {{-2, -2, 2}, {2, -2, 2}, {2, 2, 2}, {-2, 2, 2}}, {230, 230, 230});
    polygon(g, {{-2, -2, -2}, {2, -2, -2}, {2, -2, 2}, {-2, -2, 2}}, {200, 80, 80});
    polygon(g, {{-2, -2, -2}, {-2, -2, 2}, {-2, 2, 2}, {-2, 2, -2}}, {80, 80, 200});
    Camera* c = world().createCamera("far");
    const double d = 10000.0;
    c->location[0] = -d * 0.6, c->location[1] = -d * 0.48, c->location[2] = d * 0.64;
    const double fwd[3] = {0.6, 0.48, -0.64};
    // left = up x forward with up = +z, then up = forward x left.
    double left[3] = {-fwd[1], fwd[0], 0};
    const double ll = std::sqrt(left[0] * left[0] + left[1] * left[1]);
    for (double& v : left)
        v /= ll;
    const double up[3] = {fwd[1] * left[2] - fwd[2] * left[1], fwd[2] * left[0] - fwd[0] * left[2],
                          fwd[0] * left[1] - fwd[1] * left[0]};
    for (int i = 0; i < 3; ++i)
        c->axis[0][i] = fwd[i], c->axis[1][i] = left[i], c->axis[2][i] = up[i];
    c->zoom = 0.06;
    c->distanceFromEye = d * 0.5;
    expectGolden("parallel_view", c);
    // A true parallel camera gives the same framing.
    c->perspective = false;
    c->parallelWidth = 2 * d * std::tan(0.03 * 3.14159265358979323846 / 180);
    expectGolden("parallel_view", c);
}

} // namespace
