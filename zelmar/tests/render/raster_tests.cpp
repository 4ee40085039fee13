// Rasteriser properties that golden images do not pin down: thread independence, fill
// rule, triangulation, caches, animation timing, targets and bad input.
#include "TestScene.h"

#include "render/Raster.h"
#include "render/Settings.h"
#include "render/Triangulate.h"
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cmath>

using namespace zelmar;
using namespace zelmar::test;

namespace {

unsigned noise(int x, int y) {
    return static_cast<unsigned>((x * 73 + y * 151) * 2654435761u) & 0xFFFFFF;
}

class Raster : public ::testing::Test {
  protected:
    void SetUp() override { resetEngine(); }
    void TearDown() override {
        ZELMAR_engine_set_render_threads(0);
        resetEngine();
    }
};

// Many small overlapping, translucent and clipped triangles: the picture must not depend
// on how the rows are shared between threads.
TEST_F(Raster, PictureIsIdenticalForAnyThreadCount) {
    Group* g = group("g");
    Bitmap* b = bitmap("noise", 32, 32, noise);
    for (int i = 0; i < 400; ++i) {
        const double a = i * 0.37, r = 1 + (i % 17) * 0.5;
        const double x = 4 + (i % 23), y = std::sin(a) * r * 2, z = std::cos(a * 1.3) * r * 1.5;
        Polygon* p = polygon(
            g, {{x, y + 1.5, z + 1, 0, 0}, {x + 0.5, y - 1.5, z + 0.5, 1, 0}, {x - 0.3, y, z - 1.2, 0.5, 1}},
            {static_cast<int>(i * 37 % 256), static_cast<int>(i * 91 % 256), 200});
        if (i % 3 == 0) p->fill.bitmap = b->handle;
        if (i % 7 == 0) p->fill.translucent = 0x52;
        changed(p);
    }
    polygon(g, {{-5, 30, -3}, {60, 30, -3}, {60, -30, -3}, {-5, -30, -3}},
            {90, 90, 90}); // crosses the near plane
    ZELMAR_engine_set_atmospheric_effect_intensity(0.05);
    Camera* c = cameraAlongX({0, 0, 0}, 80, 0.5);
    ZELMAR_engine_set_render_threads(1);
    const std::vector<uint8_t> one = renderImage(c, 160, 120);
    ASSERT_FALSE(one.empty());
    for (int threads : {2, 3, 7}) {
        ZELMAR_engine_set_render_threads(threads);
        EXPECT_TRUE(renderImage(c, 160, 120) == one) << threads << " threads";
    }
}

// Two triangles sharing an edge cover every pixel of their quad exactly once: a
// translucent "Bright Transparent" pair over black would show doubled pixels as brighter.
TEST_F(Raster, SharedEdgesAreNeitherDoubledNorMissed) {
    Group* g = group("g");
    const double y0 = 5.3, y1 = -4.7, z0 = 3.8, z1 = -3.1;
    Polygon* a = polygon(g, {{10, y0, z0}, {10, y0, z1}, {10, y1, z1}}, {100, 100, 100});
    Polygon* b = polygon(g, {{10, y0, z0}, {10, y1, z1}, {10, y1, z0}}, {100, 100, 100});
    a->fill.translucent = b->fill.translucent = 0x32;
    changed(a), changed(b);
    const std::vector<uint8_t> img = renderImage(cameraAlongX({0, 0, 0}, 90), 64, 48);
    int covered = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            const int r = pixelAt(img, x, y)[0];
            EXPECT_TRUE(r == 0 || r == 100) << "pixel " << x << "," << y << " = " << r;
            covered += r == 100;
        }
    // The quad spans (32 - 5.3*3.2 .. 32 + 4.7*3.2) x (24 - 3.8*3.2 .. 24 + 3.1*3.2) pixels.
    EXPECT_EQ(covered, 32 * 22);
}

TEST_F(Raster, ConcaveRingsAreCutIntoTheirOwnArea) {
    // An L shape: area 3 (unit squares), ear clipping must not cover the notch.
    const double ring[6][3] = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}};
    std::vector<uint32_t> tris;
    render::triangulate(&ring[0][0], 3, 6, tris);
    ASSERT_EQ(tris.size(), 12u);
    double area = 0;
    for (size_t t = 0; t < tris.size(); t += 3) {
        const double* a = ring[tris[t]];
        const double* b = ring[tris[t + 1]];
        const double* c = ring[tris[t + 2]];
        const double cr = (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
        EXPECT_GT(cr, 0) << "every triangle keeps the ring's turning";
        area += cr / 2;
    }
    EXPECT_DOUBLE_EQ(area, 3.0);
    // Clockwise ring and a self-crossing one still give triangles, never an out-of-range index.
    const double bow[4][3] = {{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}};
    tris.clear();
    render::triangulate(&bow[0][0], 3, 4, tris);
    EXPECT_EQ(tris.size(), 6u);
    for (uint32_t i : tris)
        EXPECT_LT(i, 4u);
}

TEST_F(Raster, EditedGeometryIsRedrawnAfterItsVersionChanges) {
    Group* g = group("g");
    Polygon* p = polygon(g, {{10, 2, 2}, {10, 2, -2}, {10, -2, -2}, {10, -2, 2}}, {255, 0, 0});
    Camera* c = cameraAlongX({0, 0, 0}, 90);
    EXPECT_EQ(pixelAt(renderImage(c), 32, 24)[0], 255);
    for (PointData& d : p->points)
        d.xyz[1] += 10; // moved off to the left
    changed(p);
    EXPECT_EQ(pixelAt(renderImage(c), 32, 24)[0], 0);
}

TEST_F(Raster, FrontOnlyPolygonsShowOneSide) {
    Group* g = group("g");
    // Clockwise seen from the camera at the origin: its front faces the camera.
    Polygon* facing = polygon(g, {{10, 2, 4}, {10, -2, 4}, {10, -2, 0}, {10, 2, 0}}, {0, 255, 0});
    facing->orientation = 1;
    Polygon* away = polygon(g, {{10, 2, -4}, {10, -2, -4}, {10, -2, 0}, {10, 2, 0}}, {255, 0, 0});
    away->orientation = 1;
    changed(facing), changed(away);
    const auto img = renderImage(cameraAlongX({0, 0, 0}, 90));
    EXPECT_EQ(pixelAt(img, 32, 18)[1], 255);
    EXPECT_EQ(pixelAt(img, 32, 30)[0], 0);
    away->orientation = 0; // both sides again
    changed(away);
    EXPECT_EQ(pixelAt(renderImage(cameraAlongX({0, 0, 0}, 90)), 32, 30)[0], 255);
}

unsigned red(int, int) {
    return 0xFF0000;
}
unsigned blue(int, int) {
    return 0x0000FF;
}

TEST_F(Raster, AnimationsAdvanceByTheirFrameTimes) {
    Animation* a = world().createAnimation("blink");
    a->frames[0].push_back({bitmap("red", 2, 2, red)->handle, 10, -1});   // 100 ms
    a->frames[0].push_back({bitmap("blue", 2, 2, blue)->handle, 30, -1}); // 300 ms
    Polygon* p =
        polygon(group("g"), {{10, 2, 2, 0, 0}, {10, 2, -2, 0, 1}, {10, -2, -2, 1, 1}, {10, -2, 2, 1, 0}});
    p->fill.animation = a->handle;
    changed(p);
    Camera* c = cameraAlongX({0, 0, 0}, 90);
    const std::pair<int, bool> expectations[] = {{0, true},    {99, true},  {100, false},
                                                 {399, false}, {400, true}, {450, true}};
    for (auto [ms, isRed] : expectations) {
        render::setAnimationClockMs(ms);
        const auto px = pixelAt(renderImage(c), 32, 24);
        EXPECT_EQ(px[0], isRed ? 255 : 0) << ms << " ms";
        EXPECT_EQ(px[2], isRed ? 0 : 255) << ms << " ms";
    }
}

unsigned keyed(int x, int) {
    return x == 0 ? 0xFF00FF : 0x00FF00;
}

TEST_F(Raster, TransparentTexelsLeaveWhatIsBehind) {
    Group* g = group("g");
    polygon(g, {{20, 20, 20}, {20, 20, -20}, {20, -20, -20}, {20, -20, 20}}, {0, 0, 255});
    Bitmap* b = bitmap("keyed", 2, 1, keyed);
    b->transparentRgb[0] = 255, b->transparentRgb[1] = 0, b->transparentRgb[2] = 255;
    Polygon* p = polygon(g, {{10, 4, 4, 0, 0}, {10, 4, -4, 0, 1}, {10, -4, -4, 1, 1}, {10, -4, 4, 1, 0}});
    p->fill.bitmap = b->handle;
    p->fill.bilinear = 0;
    changed(p);
    const auto img = renderImage(cameraAlongX({0, 0, 0}, 90));
    EXPECT_EQ(pixelAt(img, 24, 24), (std::array<int, 3>{0, 0, 255})); // left half of the quad: keyed out
    EXPECT_EQ(pixelAt(img, 40, 24), (std::array<int, 3>{0, 255, 0}));
    // A paletted bitmap keys out by its transparent index instead.
    b->transparentRgb[0] = -1;
    b->indices = {7, 3};
    b->transparentIndex = 3;
    ++b->version;
    const auto byIndex = renderImage(cameraAlongX({0, 0, 0}, 90));
    EXPECT_EQ(pixelAt(byIndex, 24, 24), (std::array<int, 3>{255, 0, 255}));
    EXPECT_EQ(pixelAt(byIndex, 40, 24), (std::array<int, 3>{0, 0, 255}));
}

TEST_F(Raster, TargetsAndRendersRefuseBadInput) {
    EXPECT_EQ(ZELMAR_target_create(0, 10), 0);
    EXPECT_EQ(ZELMAR_target_create(10, 20000), 0);
    const int t = ZELMAR_target_create(8, 4);
    ASSERT_GT(t, 0);
    EXPECT_EQ(ZELMAR_target_is_target(t), 1);
    EXPECT_EQ(ZELMAR_target_is_target(t + 1000), 0);
    EXPECT_EQ(ZELMAR_engine_render(t, 12345), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("not a camera"), std::string::npos);
    Camera* c = cameraAlongX({0, 0, 0});
    EXPECT_EQ(ZELMAR_engine_render(t + 1000, c->handle), 0);
    c->zoom = NAN;
    EXPECT_EQ(ZELMAR_engine_render(t, c->handle), 0);
    c->zoom = 90;
    EXPECT_EQ(ZELMAR_engine_render(t, c->handle), 1);
    unsigned char small[4];
    EXPECT_EQ(ZELMAR_target_read_pixels(t, small, 4), 0);
    EXPECT_EQ(ZELMAR_target_read_pixels(t, nullptr, 1000), 0);
    EXPECT_EQ(ZELMAR_target_resize(t, 16, 16), 1);
    EXPECT_EQ(ZELMAR_target_get_width(t), 16);
    EXPECT_EQ(ZELMAR_target_destroy(t), 1);
    EXPECT_EQ(ZELMAR_target_destroy(t), 0);
    EXPECT_EQ(ZELMAR_target_get_pixels(t), nullptr);
    const int again = ZELMAR_target_create(8, 4);
    EXPECT_GT(again, t) << "handles are never reused";
    ZELMAR_target_destroy(again);
}

TEST_F(Raster, PolygonsWithNonFiniteOrTooFewPointsAreSkipped) {
    Group* g = group("g");
    polygon(g, {{10, 1, 1}, {10, -1, 1}}, {255, 0, 0});
    polygon(g, {{10, 1, 1}, {NAN, -1, 1}, {10, 0, -1}}, {255, 0, 0});
    polygon(g, {{10, 1e300, 1}, {10, -1e300, 1}, {10, 0, -1e300}}, {0, 255, 0});
    // Absurd shading and texture coordinates draw, saturated, without overflow.
    Polygon* bright =
        polygon(g, {{12, 3, 3, 1e30, NAN}, {12, 3, -3, -1e30, 0}, {12, -3, -3, 0, 1e20}, {12, -3, 3, 0, 0}},
                {255, 255, 255});
    bright->fill.brightness = 1e30;
    bright->points[1].rgb[0] = -1e300;
    bright->fill.bitmap = bitmap("noise", 32, 32, noise)->handle;
    changed(bright);
    const auto img = renderImage(cameraAlongX({0, 0, 0}, 90));
    EXPECT_EQ(pixelAt(img, 32, 24)[1], 255) << "only the saturated polygon is drawn";
}

TEST_F(Raster, RenderOnTopKeepsThePreviousPictureAndDepth) {
    Group* a = group("a");
    polygon(a, {{10, 3, 3}, {10, 3, -3}, {10, -3, -3}, {10, -3, 3}}, {255, 0, 0});
    Camera* c = cameraAlongX({0, 0, 0}, 90);
    const int t = ZELMAR_target_create(64, 48);
    ASSERT_EQ(ZELMAR_engine_render(t, c->handle), 1);
    a->disabled = true;
    Group* b = group("b");
    polygon(b, {{12, 1, 10}, {12, 1, -10}, {12, -1, -10}, {12, -1, 10}}, {0, 0, 255}); // behind a, taller
    ASSERT_EQ(ZELMAR_engine_render_on_top_of_previous_rendering(t, c->handle), 1);
    const unsigned char* px = ZELMAR_target_get_pixels(t);
    auto at = [&](int x, int y) {
        return std::array<int, 3>{px[(y * 64 + x) * 4], px[(y * 64 + x) * 4 + 1], px[(y * 64 + x) * 4 + 2]};
    };
    EXPECT_EQ(at(32, 24), (std::array<int, 3>{255, 0, 0})) << "hidden behind the earlier picture's depth";
    EXPECT_EQ(at(32, 4), (std::array<int, 3>{0, 0, 255}));
    ZELMAR_target_destroy(t);
}

TEST_F(Raster, BlendingFiltersFollowTheirFormulas) {
    const uint32_t s = 0xFF000000u | 200 | (100 << 8) | (0 << 16);
    const uint32_t d = 0xFF000000u | 100 | (200 << 8) | (255 << 16);
    auto ch = [](uint32_t c, int k) { return static_cast<int>((c >> (8 * k)) & 0xFF); };
    const struct {
        uint8_t f;
        int r, g, b;
    } cases[] = {{0x00, 200, 100, 0},   {0x31, 78, 78, 0},     {0x43, 175, 125, 63},  {0x52, 150, 150, 127},
                 {0x44, 125, 175, 191}, {0x32, 255, 255, 255}, {0x42, 200, 250, 255}, {0x22, 222, 222, 255},
                 {0x51, 21, 121, 255},  {0x77, 200, 100, 0}};
    for (const auto& c : cases) {
        const uint32_t o = render::blendPixel(c.f, s, d);
        EXPECT_EQ(ch(o, 0), c.r) << std::hex << int(c.f);
        EXPECT_EQ(ch(o, 1), c.g) << std::hex << int(c.f);
        EXPECT_EQ(ch(o, 2), c.b) << std::hex << int(c.f);
    }
}

} // namespace
