// A group packed again after some of its polygons changed copies the others from the last
// packing: the result must be the one a whole packing of the group gives, field for field
// (with polygons retired in place: for every polygon still there, and drawn and picked alike).
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

    // As sameAsWhole, for an entry with retired polygons among its own: those have no points,
    // no triangles and are disabled; the others, in order, are a whole packing's, each with
    // the same points, triangles (local indices) and fields.
    static ::testing::AssertionResult sameAsWholeLive(const render::GroupCache& a, const Group& g) {
        render::GroupCache b;
        render::packGroup(g, b);
        if (std::memcmp(a.box, b.box, sizeof a.box) != 0 || a.extras.size() != a.verts.size())
            return ::testing::AssertionFailure() << "box or extras differ";
        size_t k = 0, retired = 0;
        for (const render::PackedPolygon& x : a.polys) {
            if (x.handle == 0) {
                ++retired;
                if (x.vertexCount != 0 || x.triCount != 0 || !x.disabled)
                    return ::testing::AssertionFailure() << "a retired polygon still draws";
                continue;
            }
            if (k == b.polys.size()) return ::testing::AssertionFailure() << "more polygons than a whole packing";
            const render::PackedPolygon& y = b.polys[k++];
            if (x.handle != y.handle || x.version != y.version || x.vertexCount != y.vertexCount ||
                x.triCount != y.triCount || x.bitmap != y.bitmap || std::memcmp(x.color, y.color, 3) != 0 ||
                x.translucent != y.translucent || x.frontOnly != y.frontOnly || x.disabled != y.disabled ||
                std::memcmp(x.normal, y.normal, sizeof x.normal) != 0 || std::memcmp(x.box, y.box, sizeof x.box) != 0)
                return ::testing::AssertionFailure() << "polygon " << x.handle << " differs";
            for (uint32_t v = 0; v < x.vertexCount; ++v) {
                const render::PackedVertex &p = a.verts[x.firstVertex + v], &q = b.verts[y.firstVertex + v];
                if (std::memcmp(p.xyz, q.xyz, sizeof p.xyz) != 0 || std::memcmp(p.shade, q.shade, sizeof p.shade) != 0 ||
                    std::memcmp(&a.extras[x.firstVertex + v], &b.extras[y.firstVertex + v], sizeof a.extras[0]) != 0)
                    return ::testing::AssertionFailure() << "a point of polygon " << x.handle << " differs";
            }
            if (!std::equal(a.tris.begin() + x.firstTri * 3, a.tris.begin() + (x.firstTri + x.triCount) * 3,
                            b.tris.begin() + y.firstTri * 3))
                return ::testing::AssertionFailure() << "the triangles of polygon " << x.handle << " differ";
        }
        if (k != b.polys.size() || retired != a.retired)
            return ::testing::AssertionFailure() << "polygons missing or retired ones miscounted";
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
    EXPECT_EQ(cache.get(*g).retired, 1u) << "the deleted polygon retired, the others appended";
    EXPECT_TRUE(sameAsWholeLive(cache.get(*g), *g));

    // A pick packs the geometry only; a second change before the next frame, then the frame.
    ZELMAR_polygon_set_brightness(polys[300]->handle, 30);
    cache.geometry(*g);
    ZELMAR_polygon_set_brightness(polys[301]->handle, 60);
    cache.geometry(*g);
    cache.update({g}, 2);
    EXPECT_TRUE(sameAsWholeLive(cache.get(*g), *g));

    // The geometry packed with the looks of the changed polygons still to come.
    ZELMAR_point_set_rgb(polys[5]->points[0].handle, rgb);
    cache.geometry(*g);
    EXPECT_TRUE(sameAsWholeLive(cache.get(*g), *g));
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

// What a frame and the picks of a grid of pixels see, as bytes.
std::vector<uint8_t> drawnAndPicked(Camera* camera, int target) {
    std::vector<uint8_t> out = renderImage(camera);
    ZELMAR_camera_set_current(camera->handle, target);
    for (int y = 0; y < 48; y += 3)
        for (int x = 0; x < 64; x += 3) {
            double r[3] = {0, 0, 0};
            int grp = 0, pol = 0;
            ZELMAR_engine_2D_point_to_3D(x, y, r, &grp, &pol);
            const auto* bytes = reinterpret_cast<const uint8_t*>(r);
            out.insert(out.end(), bytes, bytes + sizeof r);
            out.insert(out.end(), reinterpret_cast<const uint8_t*>(&pol), reinterpret_cast<const uint8_t*>(&pol + 1));
        }
    return out;
}

// The cut's edit: polygons removed, new ones added at the end of the group. The removed ones are
// retired where they are and the new ones appended; nothing else moves, and what is drawn and
// picked is what a fresh packing gives, up to the point where the retired ones would pass a third.
TEST_F(SceneCacheRepack, RemovedPolygonsAreRetiredAndNewOnesAppended) {
    render::SceneCache& cache = render::sceneCache();
    Camera* camera = cameraAlongX({0, -10, 10}, 90, 1.0);
    const int target = ZELMAR_target_create(64, 48);
    Polygon* moved = polygon(group("other"), {{12, 0, 0}, {12, 0, 2}, {12, 2, 2}}, {5, 5, 5});
    cache.get(*g);
    const auto firstPacked = cache.get(*g).polys[399];
    // Every third of the first 90 out; two halves of each in front of the grid, one of them translucent
    // over the other (drawn in list order) and a concave one.
    for (size_t i = 0; i < 90; i += 3) {
        const double y0 = -double(i % 20) - 1, z0 = double(i / 20);
        ZELMAR_polygon_delete(polys[i]->handle);
        polygon(g, {{9, y0, z0 + 1}, {9, y0 + 1, z0 + 1}, {9, y0 + 1, z0}}, {200, 10, int(i)});
        Polygon* over = polygon(g, {{8, y0, z0 + 1}, {8, y0 + 1, z0}, {8, y0, z0}, {8, y0 + 0.2, z0 + 0.5}},
                                {10, 200, int(i)});
        ZELMAR_polygon_set_translucent(over->handle, 2);
    }
    const render::GroupCache& c = cache.get(*g);
    EXPECT_EQ(c.retired, 30u);
    EXPECT_EQ(c.polys.size(), 400u + 60u) << "appended, not laid out anew";
    EXPECT_EQ(c.polys[399].firstVertex, firstPacked.firstVertex) << "the rest stays where it was";
    EXPECT_TRUE(sameAsWholeLive(c, *g));
    const std::vector<uint8_t> fragmented = drawnAndPicked(camera, target);
    cache.drop(g->handle);
    EXPECT_EQ(drawnAndPicked(camera, target), fragmented) << "drawn and picked as a fresh packing";

    // Again on the retired ones: a pick packs the geometry, the frame the looks; then a live edit
    // packs in place among the retired ones, and a polygon moved in from another group (an older
    // handle at the end) lays the group out anew without them.
    for (size_t i = 1; i < 30; i += 3)
        ZELMAR_polygon_delete(polys[i]->handle);
    polygon(g, {{9, 0, 0}, {9, 0, 3}, {9, -3, 3}}, {1, 2, 3});
    cache.geometry(*g);
    EXPECT_EQ(cache.get(*g).retired, 10u);
    EXPECT_TRUE(sameAsWholeLive(cache.get(*g), *g));
    const double up[3] = {10, -3, 2.5};
    ZELMAR_point_set_xyz(polys[23]->points[1].handle, up); // a polygon still alive (i % 3 == 2)
    ZELMAR_polygon_set_color_fill(polys[300]->handle, 1, 2, 3);
    EXPECT_EQ(cache.get(*g).retired, 10u) << "packed in place";
    EXPECT_TRUE(sameAsWholeLive(cache.get(*g), *g));
    const std::vector<uint8_t> edited = drawnAndPicked(camera, target);
    cache.drop(g->handle);
    EXPECT_EQ(drawnAndPicked(camera, target), edited);
    for (size_t i = 2; i < 30; i += 3)
        ZELMAR_polygon_delete(polys[i]->handle);
    ZELMAR_polygon_set_group(moved->handle, g->handle);
    EXPECT_EQ(cache.get(*g).retired, 0u);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));

    // Removing more than a third lays the group out anew too.
    for (size_t i = 100; i < 400; i += 2)
        ZELMAR_polygon_delete(polys[i]->handle);
    EXPECT_EQ(cache.get(*g).retired, 0u);
    EXPECT_TRUE(sameAsWhole(cache.get(*g), *g));
    ZELMAR_target_destroy(target);
}

} // namespace
