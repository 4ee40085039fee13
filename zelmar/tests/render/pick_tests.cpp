// 2D to 3D picks: which polygon and group a pixel hits, the hit point, and what is passed.
// Same camera as the projection tests: origin, looking along +x, zoom 90, 64 x 48.
#include "TestScene.h"

#include "pick/Picker.h"
#include "render/SceneCache.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

// A square across the view at `depth`, facing the camera at the origin (clockwise as it sees it).
Polygon* wall(Group* g, double depth, double half) {
    return polygon(g,
                   {{depth, half, half}, {depth, -half, half}, {depth, -half, -half}, {depth, half, -half}});
}

class Pick : public ::testing::Test {
  protected:
    void SetUp() override {
        resetEngine();
        target = ZELMAR_target_create(64, 48);
        camera = cameraAlongX({0, 0, 0}, 90, 1.0);
        ZELMAR_camera_set_current(camera->handle, target);
        far = group("far");
        farWall = wall(far, 10, 5);
        nearGroup = group("near");
        nearWall = wall(nearGroup, 5, 1);
    }
    void TearDown() override {
        ZELMAR_target_destroy(target);
        resetEngine();
    }
    int pickAt(int x, int y, double r[3], int* g) {
        int p = -9;
        const int status = ZELMAR_engine_2D_point_to_3D(x, y, r, g, &p);
        EXPECT_EQ(status, p ? 1 : -1);
        return p;
    }
    int target = 0;
    Camera* camera = nullptr;
    Group *far = nullptr, *nearGroup = nullptr;
    Polygon *farWall = nullptr, *nearWall = nullptr;
};

TEST_F(Pick, NearestPolygonOfAnotherGroupInFrontWins) {
    double r[3];
    int g = 0;
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
    EXPECT_EQ(g, nearGroup->handle);
    EXPECT_DOUBLE_EQ(r[0], 5);
    EXPECT_DOUBLE_EQ(r[1], -5.0 / 64);
    EXPECT_DOUBLE_EQ(r[2], -5.0 / 64);
    // Pixel 20: the ray passes beside the near wall (y 1.8 at x 5) and meets the far one.
    EXPECT_EQ(pickAt(20, 24, r, &g), farWall->handle);
    EXPECT_EQ(g, far->handle);
    EXPECT_DOUBLE_EQ(r[1], (32 - 20.5) * 10 / 32);
    EXPECT_EQ(ZELMAR_engine_get_polygon_at_point_2D(32, 24), nearWall->handle);
    EXPECT_EQ(ZELMAR_engine_get_object_at_point_2D(20, 24), far->handle);
}

TEST_F(Pick, EmptySpaceAnswersMinusOneAndZeros) {
    double r[3] = {7, 7, 7};
    int g = -9;
    EXPECT_EQ(pickAt(5, 24, r, &g), 0);
    EXPECT_EQ(g, 0);
    EXPECT_EQ(r[0], 7) << "result untouched";
    EXPECT_EQ(ZELMAR_engine_get_polygon_at_point_2D(5, 24), 0);
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D(5, 24, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D(32, 24, nullptr, nullptr, nullptr), 1);
}

TEST_F(Pick, DisabledGroupsAncestorsAndPolygonsArePassed) {
    double r[3];
    int g;
    nearGroup->disabled = true;
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    nearGroup->disabled = false;
    Group* parent = group("parent");
    world().setFather(*nearGroup, parent);
    parent->disabled = true;
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    parent->disabled = false;
    nearWall->disabled = true;
    changed(nearWall);
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
}

TEST_F(Pick, PolygonsBehindTheEyeOrTheNearPlaneAreNotHit) {
    Group* behind = group("behind");
    wall(behind, -3, 50);
    Group* tooNear = group("too near");
    wall(tooNear, 0.5, 3);
    double r[3];
    int g;
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
}

TEST_F(Pick, FrontOnlyPolygonSeenFromBehindIsPassed) {
    // The near wall's ring runs clockwise seen from the camera: flip it around.
    std::reverse(nearWall->points.begin() + 1, nearWall->points.end());
    nearWall->orientation = 1;
    changed(nearWall);
    double r[3];
    int g;
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    nearWall->orientation = 0;
    changed(nearWall);
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
}

TEST_F(Pick, GroupToRenderLimitsPicks) {
    ZELMAR_engine_set_group_to_render(far->handle);
    double r[3];
    int g;
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    ZELMAR_engine_set_group_to_render(0);
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
}

TEST_F(Pick, MovedGeometryIsPickedWhereItIsNow) {
    double r[3];
    int g;
    ASSERT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
    for (PointData& d : nearWall->points)
        d.xyz[2] += 30; // far above the view
    changed(nearWall);
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    // And a polygon added later is found.
    Polygon* added = wall(far, 8, 2);
    EXPECT_EQ(pickAt(32, 24, r, &g), added->handle);
    world().destroyPolygon(*added);
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
}

TEST_F(Pick, ConcavePolygonNotchIsEmpty) {
    Group* l = group("L");
    // An L in the plane x = 4 whose notch is the upper left quarter around the centre ray.
    polygon(l, {{4, 2, -2}, {4, -2, -2}, {4, -2, 2}, {4, 0, 2}, {4, 0, 0}, {4, 2, 0}});
    double r[3];
    int g;
    EXPECT_EQ(pickAt(28, 20, r, &g), nearWall->handle) << "through the notch";
    EXPECT_EQ(world().polygon(pickAt(36, 28, r, &g))->group, l);
    EXPECT_EQ(world().polygon(pickAt(36, 20, r, &g))->group, l);
}

TEST_F(Pick, MovedGroupIsPickedAfterEachMove) {
    // Many groups, so that a move refits the hierarchy of groups rather than rebuilding it.
    std::vector<Group*> posts;
    for (int i = 0; i < 40; ++i) {
        posts.push_back(group("post"));
        wall(posts.back(), 20 + i, 1);
        const double aside[3] = {0, 30.0 + i * 3, 0};
        ZELMAR_group_move(posts.back()->handle, aside, 0);
    }
    double r[3];
    int g;
    ASSERT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
    const double closer[3] = {-7, 0, 0}; // the far wall to depth 3, in front of the near one
    ZELMAR_group_move(far->handle, closer, 0);
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    EXPECT_EQ(g, far->handle);
    EXPECT_DOUBLE_EQ(r[0], 3);
    const double away[3] = {0, 0, 40};
    ZELMAR_group_move(far->handle, away, 0);
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
    // One of the posts, brought back into the middle of the view, hides everything behind it.
    for (const int i : {7, 31, 7}) {
        Group* post = posts[static_cast<size_t>(i)];
        const double back[3] = {0, -(30.0 + i * 3), 0}, out[3] = {0, 30.0 + i * 3, 0};
        ZELMAR_group_move(post->handle, back, 0);
        nearGroup->disabled = true;
        EXPECT_EQ(ZELMAR_engine_get_object_at_point_2D(32, 24), post->handle);
        EXPECT_EQ(pickAt(32, 24, r, &g), post->firstPolygon->handle);
        EXPECT_NEAR(r[0], 20 + i, 1e-12);
        nearGroup->disabled = false;
        ZELMAR_group_move(post->handle, out, 0);
    }
    // A deleted group is not picked.
    const double down[3] = {0, 0, -40};
    ZELMAR_group_move(far->handle, down, 0);
    EXPECT_EQ(pickAt(32, 24, r, &g), farWall->handle);
    world().destroyGroupTree(*far);
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
}

TEST_F(Pick, EditsBetweenTwoClicksChangeTheAnswer) {
    // Enough groups that an edit refits the hierarchy of groups and the refresh takes the
    // path that reads the known groups' versions.
    for (int i = 0; i < 40; ++i) {
        Group* post = group("post");
        wall(post, 20 + i, 1);
        const double aside[3] = {0, 60.0 + i * 3, 0}; // out of the view
        ZELMAR_group_move(post->handle, aside, 0);
    }
    const auto at = [] { return ZELMAR_engine_get_polygon_at_point_2D(32, 24); };
    ASSERT_EQ(at(), nearWall->handle);
    ZELMAR_group_disable(nearGroup->handle, 1);
    EXPECT_EQ(at(), farWall->handle) << "hidden";
    ZELMAR_group_disable(nearGroup->handle, 0);
    EXPECT_EQ(at(), nearWall->handle) << "shown again";

    Group* parent = group("parent");
    ZELMAR_group_disable(parent->handle, 1);
    ZELMAR_group_set_father_group(nearGroup->handle, parent->handle);
    EXPECT_EQ(at(), farWall->handle) << "moved under a hidden group";
    ZELMAR_group_disable(parent->handle, 0);
    EXPECT_EQ(at(), nearWall->handle) << "its new father shown";
    ZELMAR_engine_set_group_to_render(parent->handle);
    EXPECT_EQ(at(), nearWall->handle) << "inside the group to render";
    ZELMAR_group_set_father_group(nearGroup->handle, 0);
    EXPECT_EQ(at(), 0) << "moved out of the group to render, which now holds nothing";
    ZELMAR_engine_set_group_to_render(0);
    EXPECT_EQ(at(), nearWall->handle);

    ZELMAR_polygon_disable(nearWall->handle);
    EXPECT_EQ(at(), farWall->handle) << "polygon hidden";
    ZELMAR_polygon_enable(nearWall->handle);
    EXPECT_EQ(at(), nearWall->handle);

    const double up[3] = {0, 0, 30}, down[3] = {0, 0, -30};
    ZELMAR_group_move(nearGroup->handle, up, 0);
    EXPECT_EQ(at(), farWall->handle) << "moved out of the ray";
    ZELMAR_group_move(nearGroup->handle, down, 0);
    EXPECT_EQ(at(), nearWall->handle) << "moved back";

    // One group deleted and another created between two clicks: as many groups as before.
    world().destroyGroupTree(*nearGroup);
    Group* again = group("near again");
    Polygon* wallAgain = wall(again, 4, 1);
    EXPECT_EQ(at(), wallAgain->handle);
    world().destroyGroupTree(*again);
    EXPECT_EQ(at(), farWall->handle) << "deleted";
}

// A pick packs a changed group's geometry only; whatever reads the cache next (a frame)
// finds the rest written, exactly as a whole packing writes it.
TEST_F(Pick, LooksLeftByAPickAreThoseOfAWholePacking) {
    Group* g = group("looks");
    Polygon* p = polygon(g, {{6, 1, 1, 0.25, 0.5}, {6, -1, 1, 0.75, 0.5}, {6, -1, -1}, {6, 1, -1}}, {10, 200, 30});
    p->points[1].normal[0] = -3; // a point normal of its own
    p->points[2].rgb[1] = 17;
    p->points[3].brightness = 40;
    p->fill.brightness = 80;
    changed(p);
    const auto same = [](const render::GroupCache& a, const render::GroupCache& b) {
        if (a.verts.size() != b.verts.size() || a.extras.size() != b.extras.size() || a.polys.size() != b.polys.size() ||
            a.tris != b.tris || std::memcmp(a.box, b.box, sizeof a.box) != 0)
            return false;
        for (size_t i = 0; i < a.verts.size(); ++i)
            if (std::memcmp(a.verts[i].xyz, b.verts[i].xyz, sizeof a.verts[i].xyz) != 0 ||
                std::memcmp(a.verts[i].shade, b.verts[i].shade, sizeof a.verts[i].shade) != 0 ||
                std::memcmp(&a.extras[i], &b.extras[i], sizeof a.extras[i]) != 0)
                return false;
        for (size_t i = 0; i < a.polys.size(); ++i) {
            const render::PackedPolygon &x = a.polys[i], &y = b.polys[i];
            if (x.handle != y.handle || x.firstVertex != y.firstVertex || x.vertexCount != y.vertexCount ||
                x.firstTri != y.firstTri || x.triCount != y.triCount || std::memcmp(x.color, y.color, 3) != 0 ||
                x.frontOnly != y.frontOnly || x.disabled != y.disabled ||
                std::memcmp(x.normal, y.normal, sizeof x.normal) != 0 || std::memcmp(x.box, y.box, sizeof x.box) != 0)
                return false;
        }
        return true;
    };
    for (int round = 0; round < 2; ++round) {
        EXPECT_NE(ZELMAR_engine_get_polygon_at_point_2D(32, 24), 0);
        render::GroupCache whole;
        render::packGroup(*g, whole);
        if (round == 0) {
            EXPECT_TRUE(same(render::sceneCache().get(*g), whole));
        } else {
            render::sceneCache().update({g}, 1);
            EXPECT_TRUE(same(render::sceneCache().get(*g), whole));
        }
        EXPECT_TRUE(render::sceneCache().get(*g).looksPacked);
        const double aside[3] = {0, 0.5, 0};
        ZELMAR_group_move(g->handle, aside, 0);
    }
}

TEST_F(Pick, DistantEyeStillHitsExactly) {
    // The editor's parallel views are perspective cameras far away with a narrow angle.
    Camera* distant = cameraAlongX({-1e6, 0, 0}, 0.0005, 1.0);
    ZELMAR_camera_set_current(distant->handle, target);
    double r[3];
    int g;
    EXPECT_EQ(pickAt(32, 24, r, &g), nearWall->handle);
    EXPECT_DOUBLE_EQ(r[0], 5);
    EXPECT_EQ(pickAt(60, 24, r, &g), farWall->handle) << "beside the near wall";
    EXPECT_DOUBLE_EQ(r[0], 10);
}

TEST_F(Pick, NoCurrentCameraMeansNoPick) {
    ZELMAR_target_destroy(target);
    double r[3];
    int g = 5, p = 5;
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D(32, 24, r, &g, &p), -1);
    EXPECT_EQ(g, 0);
    EXPECT_EQ(p, 0);
    target = ZELMAR_target_create(64, 48);
}

} // namespace

namespace {

// A rotated card is picked where it is drawn, turned to the eye: seen edge-on as stored, a click beside its
// middle line still meets it, on the plane through its centre facing the camera.
TEST_F(Pick, ARotatedCardIsPickedWhereItIsDrawn) {
    Group* cards = group("cards");
    // Upright in the plane y = 0 (its normal along y), 3 units ahead: the camera sees it edge-on.
    Polygon* card = polygon(cards, {{3, 0, 1}, {3, 0, -1}, {5, 0, -1}, {5, 0, 1}});
    ZELMAR_group_disable(far->handle, 1);
    ZELMAR_group_disable(nearGroup->handle, 1);
    double r[3];
    int g = 0;
    EXPECT_NE(pickAt(36, 24, r, &g), card->handle); // beside the edge: nothing as stored
    ZELMAR_polygon_set_rotated(card->handle, 1);
    EXPECT_EQ(pickAt(36, 24, r, &g), card->handle);
    EXPECT_EQ(g, cards->handle);
    EXPECT_NEAR(r[0], 4, 1e-9); // the turned card stands across the view at its centre
    // Back as stored when the flag goes.
    ZELMAR_polygon_set_rotated(card->handle, 0);
    EXPECT_NE(pickAt(36, 24, r, &g), card->handle);
}

} // namespace
