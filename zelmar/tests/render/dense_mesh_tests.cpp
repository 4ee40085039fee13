// Meshes of many small polygons, as in a terrain seen whole: triangles of a pixel or less,
// groups drawn without per-vertex clip tests, and caches that must survive camera moves.
#include "TestScene.h"

#include "render/SceneCache.h"
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cmath>

using namespace zelmar;
using namespace zelmar::test;

namespace {

class DenseMesh : public ::testing::Test {
  protected:
    void SetUp() override { resetEngine(); }
    void TearDown() override { resetEngine(); }
};

// cols x rows quads tiling the rectangle y in [-4.7, 5.3], z in [-3.1, 3.8] at depth 10,
// inner corners moved by a fixed pseudo-random amount up to 0.3 of a cell.
std::vector<Polygon*> tiledRectangle(Group* g, int cols, int rows, std::array<int, 3> color) {
    auto corner = [&](int i, int j) {
        double y = 5.3 - 10.0 * i / cols, z = 3.8 - 6.9 * j / rows;
        if (i > 0 && i < cols && j > 0 && j < rows) {
            y += 0.3 * (10.0 / cols) * std::sin(i * 12.9898 + j * 78.233);
            z += 0.3 * (6.9 / rows) * std::cos(i * 39.346 + j * 11.135);
        }
        return V{10, y, z};
    };
    std::vector<Polygon*> out;
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < cols; ++i)
            out.push_back(
                polygon(g, {corner(i, j), corner(i, j + 1), corner(i + 1, j + 1), corner(i + 1, j)}, color));
    return out;
}

unsigned stripes(int x, int y) {
    return (x + y) % 3 == 0 ? 0xF0C020u : 0x3050A0u;
}

} // namespace

// Cells from under a pixel to over ten pixels across, drawn additively over black: every
// pixel centre of the rectangle gets exactly one triangle whatever the triangles' size, so
// the coverage test, the narrow spans and the wide spans agree on the fill rule.
TEST_F(DenseMesh, TinyNarrowAndWideTrianglesTileWithoutGapsOrOverlaps) {
    for (auto [cols, rows] : {std::pair{40, 30}, std::pair{13, 9}, std::pair{7, 5}, std::pair{3, 2}}) {
        resetEngine();
        Group* g = group("g");
        for (Polygon* p : tiledRectangle(g, cols, rows, {40, 40, 40})) {
            p->fill.translucent = 0x32;
            changed(p);
        }
        const std::vector<uint8_t> img = renderImage(cameraAlongX({0, 0, 0}, 90), 64, 48);
        ASSERT_FALSE(img.empty());
        int covered = 0, wrong = 0;
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 64; ++x) {
                const int r = pixelAt(img, x, y)[0];
                wrong += r != 0 && r != 40;
                covered += r == 40;
            }
        EXPECT_EQ(wrong, 0) << cols << " x " << rows << " cells";
        // The rectangle spans pixels 15.04 .. 47.04 across and 11.84 .. 33.92 down.
        EXPECT_EQ(covered, 32 * 22) << cols << " x " << rows << " cells";
    }
}

// A group wholly inside the guard band is drawn without clip tests; one that reaches
// behind the camera or far beyond the side of the picture is tested vertex by vertex.
// Invisible extra polygons that switch the group from one way to the other change no pixel.
TEST_F(DenseMesh, GroupsReachingBeyondTheGuardBandDrawTheSamePixels) {
    auto picture = [&](int extra) {
        resetEngine();
        Group* g = group("g");
        Bitmap* b = bitmap("stripes", 8, 8, stripes);
        int k = 0;
        for (Polygon* p : tiledRectangle(g, 23, 17, {200, 120, 60})) {
            if (++k % 2) p->fill.bitmap = b->handle;
            p->points[0].xyz[0] += 0.01 * (k % 7); // not quite flat, so depth varies
            changed(p);
        }
        if (extra == 1) polygon(g, {{-50, 1, 1}, {-50, 1, -1}, {-50, -1, -1}});       // behind the camera
        if (extra == 2) polygon(g, {{10, 1e6, 1}, {10, 1e6, -1}, {10, 1e6 - 2, -1}}); // far to the left
        ZELMAR_engine_set_atmospheric_effect_intensity(0.5);
        return renderImage(cameraAlongX({0, 0, 0}, 40, 0.5), 64, 48); // larger than the picture
    };
    const std::vector<uint8_t> inside = picture(0);
    ASSERT_FALSE(inside.empty());
    EXPECT_TRUE(picture(1) == inside) << "group crossing the near plane";
    EXPECT_TRUE(picture(2) == inside) << "group reaching beyond the guard band";
}

// A floor from behind the camera to depth 30 crosses the near plane: its group must take the
// clipped way, or the corners behind the eye would fold over the top of the picture.
TEST_F(DenseMesh, GroupsCrossingTheNearPlaneAreClipped) {
    Group* g = group("g");
    polygon(g, {{-10, 5, -1}, {30, 5, -1}, {30, -5, -1}, {-10, -5, -1}}, {255, 255, 255});
    const std::vector<uint8_t> img = renderImage(cameraAlongX({0, 0, 0}, 90), 64, 48);
    ASSERT_FALSE(img.empty());
    int wrong = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            // Seen at row centre sy, the floor lies at depth 32 / (sy - 24), half as wide as
            // 5 * (sy - 24) pixels; pixels within 0.6 of its outline are not judged.
            const double below = y + 0.5 - 24, off = std::fabs(x + 0.5 - 32);
            const bool in = below > 32.0 / 30 + 0.6 && off < 5 * below - 0.6;
            const bool out = below < 32.0 / 30 - 0.1 || off > 5 * below + 0.6;
            const bool lit = pixelAt(img, x, y)[0] == 255;
            wrong += (in && !lit) || (out && lit);
        }
    EXPECT_EQ(wrong, 0);
}

// The packed copy of a group follows its polygons, never the camera: a drag must not
// repack the world at every frame.
TEST_F(DenseMesh, CameraMovesKeepThePackedGroups) {
    Group* g = group("g");
    std::vector<Polygon*> polys = tiledRectangle(g, 10, 10, {90, 90, 90});
    Camera* c = cameraAlongX({0, 0, 0}, 90);
    ASSERT_FALSE(renderImage(c).empty());
    const uint64_t stamp = render::sceneCache().get(*g).stamp;
    for (int step = 0; step < 3; ++step) {
        c->location[1] += 0.5;
        c->zoom -= 10;
        ASSERT_FALSE(renderImage(c).empty());
    }
    EXPECT_EQ(render::sceneCache().get(*g).stamp, stamp);
    polys[0]->points[0].xyz[2] += 0.1;
    changed(polys[0]);
    ASSERT_FALSE(renderImage(c).empty());
    EXPECT_NE(render::sceneCache().get(*g).stamp, stamp);
}
