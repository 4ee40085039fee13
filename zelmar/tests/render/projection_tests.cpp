// 3D to 2D: exact pixels and every status, for the current camera on its target.
// Camera at the origin looking along +x, zoom 90 on 64 x 48: focal length 32 pixels,
// centre (32, 24), so a point (d, l, u) lands at (32 - 32 l / d, 24 - 32 u / d).
#include "TestScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

class Projection : public ::testing::Test {
  protected:
    void SetUp() override {
        resetEngine();
        target = ZELMAR_target_create(64, 48);
        camera = cameraAlongX({0, 0, 0}, 90, 1.0);
        ZELMAR_camera_set_current(camera->handle, target);
    }
    void TearDown() override {
        ZELMAR_target_destroy(target);
        resetEngine();
    }
    int target = 0;
    Camera* camera = nullptr;
};

TEST_F(Projection, PointStatuses) {
    int r[2] = {-7, -7};
    const double centre[3] = {10, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(centre, r), 0);
    EXPECT_EQ(r[0], 32);
    EXPECT_EQ(r[1], 24);
    const double leftUp[3] = {10, 5, 2.5};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(leftUp, r), 0);
    EXPECT_EQ(r[0], 16);
    EXPECT_EQ(r[1], 16);
    const double offTarget[3] = {10, 20, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(offTarget, r), 1);
    EXPECT_EQ(r[0], -32);
    const double nearerThanNear[3] = {0.5, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(nearerThanNear, r), 2);
    r[0] = r[1] = -7;
    const double behind[3] = {-3, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(behind, r), -1);
    const double level[3] = {0, 4, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(level, r), -1);
    EXPECT_EQ(r[0], -7) << "untouched when it cannot be projected";
    const double bad[3] = {NAN, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(bad, r), -1);
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(nullptr, r), -1);
}

TEST_F(Projection, TheLastColumnAndRowAreInside) {
    int r[2];
    const double lastPixel[3] = {32, -32, 0}; // left -32 at depth 32: x = 64, just outside
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(lastPixel, r), 1);
    const double inside[3] = {32, -31.9, -23.9};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(inside, r), 0);
    EXPECT_EQ(r[0], 63);
    EXPECT_EQ(r[1], 47);
}

TEST_F(Projection, NoCurrentTargetMeansNoProjection) {
    ZELMAR_target_destroy(target);
    int r[2];
    const double p[3] = {10, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(p, r), -1);
    int r2[2];
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(p, p, r, r2), 0);
    target = ZELMAR_target_create(64, 48);
}

TEST_F(Projection, EdgeWhollyVisible) {
    const double a[3] = {10, 5, 0}, b[3] = {10, -5, 2.5};
    int r1[2], r2[2];
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(a, b, r1, r2), 1);
    EXPECT_EQ(r1[0], 16);
    EXPECT_EQ(r1[1], 24);
    EXPECT_EQ(r2[0], 48);
    EXPECT_EQ(r2[1], 16);
}

TEST_F(Projection, EdgeCrossingTheNearPlaneIsClipped) {
    // From behind the eye to (10, 5, 0): the visible part starts where it enters the left
    // side of the view, at depth 2.5 (left 2.5 -> x = 0).
    const double a[3] = {-5, 0, 0}, b[3] = {10, 5, 0};
    int r1[2] = {-7, -7}, r2[2] = {-7, -7};
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(a, b, r1, r2), -1);
    EXPECT_EQ(r1[0], 0);
    EXPECT_EQ(r1[1], 24);
    EXPECT_EQ(r2[0], 16);
    EXPECT_EQ(r2[1], 24);
    // Straight ahead through the near plane: clipped at depth 1, which is still the centre.
    const double c[3] = {-5, 0, 0}, d[3] = {10, 0, 0};
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(c, d, r1, r2), -1);
    EXPECT_EQ(r1[0], 32);
    EXPECT_EQ(r2[0], 32);
}

TEST_F(Projection, EdgesOutOfViewAreRefused) {
    int r1[2] = {-7, -7}, r2[2] = {-7, -7};
    const double a[3] = {-5, 0, 0}, b[3] = {-1, 3, 0};
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(a, b, r1, r2), 0);
    const double c[3] = {10, 30, 0}, d[3] = {10, 40, 5};
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(c, d, r1, r2), 0);
    EXPECT_EQ(r1[0], -7);
    // Both ends off the view on either side, the middle across it.
    const double e[3] = {10, 30, 0}, f[3] = {10, -30, 0};
    EXPECT_EQ(ZELMAR_engine_3D_edge_to_2D(e, f, r1, r2), -1);
    EXPECT_EQ(r1[0], 0);
    EXPECT_EQ(r2[0], 63);
}

TEST_F(Projection, ScreenMovementToWorldMovementKeepsDepth) {
    const double p[3] = {10, 0, 0};
    double move[3], to[3];
    EXPECT_EQ(ZELMAR_engine_translate_movement_on_screen_to_movement_in_world(p, 32, -16, move), 1);
    EXPECT_DOUBLE_EQ(move[0], 0);
    EXPECT_DOUBLE_EQ(move[1], -10); // right on screen is -y (left is +y)
    EXPECT_DOUBLE_EQ(move[2], 5);
    EXPECT_EQ(ZELMAR_engine_translate_movement_on_screen_to_world(p, 32, -16, to), 1);
    EXPECT_DOUBLE_EQ(to[1], -10);
    int r[2];
    ZELMAR_engine_3D_point_to_2D(to, r);
    EXPECT_EQ(r[0], 64) << "32 pixels right of the centre";
    const double behind[3] = {-1, 0, 0};
    EXPECT_EQ(ZELMAR_engine_translate_movement_on_screen_to_world(behind, 1, 1, to), -1);
}

TEST_F(Projection, PixelToPointOnAPlane) {
    const double plane[4] = {1, 0, 0, -10}; // x = 10
    double w[3];
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D_point_on_plane(16, 24, plane, w), 1);
    EXPECT_DOUBLE_EQ(w[0], 10);
    EXPECT_DOUBLE_EQ(w[1], (32 - 16.5) * 10 / 32);
    EXPECT_DOUBLE_EQ(w[2], (24 - 24.5) * 10 / 32);
    const double parallel[4] = {0, 0, 1, -3}; // z = 3: above the eye
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D_point_on_plane(32, 24, parallel, w), -1) << "below the horizon";
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D_point_on_plane(32, 0, parallel, w), 1);
    const double behind[4] = {1, 0, 0, 10}; // x = -10
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D_point_on_plane(32, 24, behind, w), -1);
    const double zero[4] = {0, 0, 0, 0};
    EXPECT_EQ(ZELMAR_engine_2D_point_to_3D_point_on_plane(32, 24, zero, w), -1);
}

TEST_F(Projection, ProjectionAndPixelRayAgree) {
    // Any pixel's plane point projects back onto that pixel.
    const double plane[4] = {0.3, 0.2, 0.9, 4};
    for (int y = 0; y < 48; y += 7)
        for (int x = 0; x < 64; x += 5) {
            double w[3];
            if (ZELMAR_engine_2D_point_to_3D_point_on_plane(x, y, plane, w) != 1) continue;
            int r[2];
            ASSERT_EQ(ZELMAR_engine_3D_point_to_2D(w, r), 0);
            EXPECT_EQ(r[0], x);
            EXPECT_EQ(r[1], y);
        }
}

} // namespace

TEST_F(Projection, ManyEdgesAnswerAsOneByOne) {
    // Whole, clipped at the near plane, out of view, across the view, not finite.
    const double ends[5][6] = {{10, 5, 0, 10, -5, 2.5}, {-5, 0, 0, 10, 5, 0}, {-5, 0, 0, -1, 3, 0},
                               {10, 30, 0, 10, -30, 0}, {NAN, 0, 0, 10, 0, 0}};
    int screen[5][4], shown[5];
    for (auto& s : screen)
        for (int& v : s)
            v = -7;
    EXPECT_EQ(ZELMAR_engine_3D_edges_to_2D(&ends[0][0], 5, &screen[0][0], shown), 1);
    for (int i = 0; i < 5; ++i) {
        int r1[2] = {-7, -7}, r2[2] = {-7, -7};
        EXPECT_EQ(shown[i], ZELMAR_engine_3D_edge_to_2D(ends[i], ends[i] + 3, r1, r2)) << "edge " << i;
        EXPECT_EQ(screen[i][0], r1[0]) << "edge " << i;
        EXPECT_EQ(screen[i][1], r1[1]) << "edge " << i;
        EXPECT_EQ(screen[i][2], r2[0]) << "edge " << i;
        EXPECT_EQ(screen[i][3], r2[1]) << "edge " << i;
    }
    ZELMAR_target_destroy(target);
    EXPECT_EQ(ZELMAR_engine_3D_edges_to_2D(&ends[0][0], 5, &screen[0][0], shown), 0);
    for (int s : shown)
        EXPECT_EQ(s, 0) << "no current target: nothing shown";
    target = ZELMAR_target_create(64, 48);
}
