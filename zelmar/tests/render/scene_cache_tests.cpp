// A group packed again after some of its polygons changed copies the others from the last
// packing: the result must be the one a whole packing of the group gives, field for field.
#include "TestScene.h"

#include "render/SceneCache.h"
#include <cstring>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

class SceneCacheRepack : public ::testing::Test {
  protected:
    void SetUp() override {
        resetEngine();
        g = group("grid");
        for (int j = 0; j < 20; ++j)
            for (int i = 0; i < 20; ++i)
                polys.push_back(
                    polygon(g, {{10, -i - 1.0, j + 1.0}, {10, -i - 0.0, j + 1.0}, {10, -i - 0.0, j + 0.0},
                                {10, -i - 1.0, j + 0.0}},
                            {i * 10, j * 10, 7}));
    }
    void TearDown() override { resetEngine(); }

    // The cached entry against a whole packing made now.
    static ::testing::AssertionResult sameAsWhole(const render::GroupCache& a, const Group& g) {
        render::GroupCache b;
        render::packGroup(g, b);
        if (a.verts.size() != b.verts.size() || a.extras.size() != b.extras.size() ||
            a.polys.size() != b.polys.size() || a.tris != b.tris || std::memcmp(a.box, b.box, sizeof a.box) != 0)
            return ::testing::AssertionFailure() << "sizes, triangles or box differ";
        for (size_t i = 0; i < a.verts.size(); ++i)
            if (std::memcmp(a.verts[i].xyz, b.verts[i].xyz, sizeof a.verts[i].xyz) != 0 ||
                std::memcmp(a.verts[i].shade, b.verts[i].shade, sizeof a.verts[i].shade) != 0 ||
                std::memcmp(&a.extras[i], &b.extras[i], sizeof a.extras[i]) != 0)
                return ::testing::AssertionFailure() << "vertex " << i << " differs";
        for (size_t i = 0; i < a.polys.size(); ++i) {
            const render::PackedPolygon &x = a.polys[i], &y = b.polys[i];
            if (x.handle != y.handle || x.version != y.version || x.firstVertex != y.firstVertex ||
                x.vertexCount != y.vertexCount || x.firstTri != y.firstTri || x.triCount != y.triCount ||
                x.bitmap != y.bitmap || std::memcmp(x.color, y.color, 3) != 0 || x.translucent != y.translucent ||
                x.frontOnly != y.frontOnly || x.disabled != y.disabled ||
                std::memcmp(x.normal, y.normal, sizeof x.normal) != 0 || std::memcmp(x.box, y.box, sizeof x.box) != 0)
                return ::testing::AssertionFailure() << "polygon " << i << " differs";
        }
        return ::testing::AssertionSuccess();
    }

    Group* g = nullptr;
    std::vector<Polygon*> polys;
};

TEST_F(SceneCacheRepack, ChangedPolygonsArePackedAgainAndTheRestCopied) {
    render::SceneCache& cache = render::sceneCache();
    ASSERT_TRUE(sameAsWhole(cache.get(*g), *g));
    // Points moved (one of them to make a concave ring), a colour, a point colour, a disabled polygon;
    // then a polygon deleted, one added at the end and one moved from another group.
    const double dent[3] = {10, -5.5, 3.5};
    ZELMAR_point_set_xyz(polys[45]->points[0].handle, dent);
    const double up[3] = {10, -3, 2.5};
    ZELMAR_point_set_xyz(polys[22]->points[1].handle, up);
    ZELMAR_polygon_set_color_fill(polys[100]->handle, 1, 2, 3);
    const double rgb[3] = {9, 99, 199};
    ZELMAR_point_set_rgb(polys[101]->points[2].handle, rgb);
    ZELMAR_polygon_disable(polys[102]->handle);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g)) << "packed again in place";
    // A point moved early in the list, then a polygon further on that gained a point: the
    // packing in place gives up there and the whole group is laid out again.
    ZELMAR_point_set_xyz(polys[10]->points[0].handle, up);
    const double extra[6] = {10, -10.5, 12, 0, 0, 0};
    ZELMAR_polygon_add_point(polys[350]->handle, extra);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));
    ZELMAR_polygon_delete(polys[200]->handle);
    polygon(g, {{11, 0, 0}, {11, 0, 1}, {11, 1, 1}}, {1, 1, 1});
    Group* other = group("other");
    Polygon* moved = polygon(other, {{12, 0, 0}, {12, 0, 2}, {12, 2, 2}}, {5, 5, 5});
    ZELMAR_polygon_set_group(moved->handle, g->handle);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));

    // A pick packs the geometry only; a second change before the next frame, then the frame.
    ZELMAR_polygon_set_brightness(polys[300]->handle, 30);
    cache.geometry(*g);
    ZELMAR_polygon_set_brightness(polys[301]->handle, 60);
    cache.geometry(*g);
    cache.update({g}, 2);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));

    // The geometry packed with the looks of the changed polygons still to come.
    ZELMAR_point_set_rgb(polys[5]->points[0].handle, rgb);
    cache.geometry(*g);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));
}

TEST_F(SceneCacheRepack, AReorderedGroupIsPackedInItsNewOrder) {
    render::SceneCache& cache = render::sceneCache();
    cache.get(*g);
    // Every other polygon to another group and back: the survivors come first, the returned last.
    Group* other = group("other");
    for (size_t i = 0; i < polys.size(); i += 2)
        ZELMAR_polygon_set_group(polys[i]->handle, other->handle);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));
    for (size_t i = 0; i < polys.size(); i += 2)
        ZELMAR_polygon_set_group(polys[i]->handle, g->handle);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));
    EXPECT_EQ(cache.get(*g).polys.front().handle, polys[1]->handle);
}

} // namespace
