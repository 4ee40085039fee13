// Physics: force as acceleration, friction, the speed limit, bounces off polygons with the
// elasticity, and a group's spin.
#include "ChaseWorld.h"

using namespace chasetest;

namespace {

class ChasePhysics : public ::testing::Test {
  protected:
    void SetUp() override { resetWorld(); }
};

TEST_F(ChasePhysics, AForceAcceleratesStepByStep) {
    const int cam = cameraAt("cam", {0, 0, 0});
    ZELMAR_camera_set_chase_type(cam, 9);
    const double gravity[3] = {0, 0, -60};
    ZELMAR_camera_set_force(cam, gravity);
    // Speed after n steps is n units per second; the fall is (1 + 2 + ... + n) / 60.
    steps(3);
    EXPECT_P3(cameraLocation(cam), 0, 0, -0.1, 1e-12);
    EXPECT_NEAR(ZELMAR_camera_get_speed(cam), 3, 1e-12);
}

TEST_F(ChasePhysics, FrictionAndTheSpeedLimitSlowTheStartingSpeed) {
    const int cam = cameraAt("cam", {0, 0, 0}, {0, 1, 0});
    ZELMAR_camera_set_chase_type(cam, 9);
    ZELMAR_camera_set_absolute_speed(cam, 600); // along the view direction
    ZELMAR_camera_set_friction(cam, 6);         // 10% a step
    steps(2);                                   // 540 then 486 units per second
    EXPECT_P3(cameraLocation(cam), 0, 9 + 8.1, 0, 1e-9);
    ZELMAR_camera_set_max_speed(cam, 60);
    steps(1);
    EXPECT_P3(cameraLocation(cam), 0, 18.1, 0, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_speed(cam), 60, 1e-9);
}

TEST_F(ChasePhysics, BouncesOffAPolygonByTheElasticity) {
    floor("ground", 0, 100);
    const int cam = cameraAt("ball", {0, 0, 0.5}, {0, 0, -1});
    ZELMAR_camera_set_chase_type(cam, 9);
    ZELMAR_camera_set_absolute_speed(cam, 60); // 1 a step, straight down
    ZELMAR_camera_set_elasticity(cam, 0.5);
    // Half a step down to the floor, then the other half up again at half the speed.
    steps(1);
    EXPECT_P3(cameraLocation(cam), 0, 0, 0.25, 1e-5);
    EXPECT_NEAR(ZELMAR_camera_get_speed(cam), 30, 1e-9);
    steps(1);
    EXPECT_P3(cameraLocation(cam), 0, 0, 0.75, 1e-5);
    // A polygon that is not collisional is passed through.
    resetWorld();
    const int glass = floor("glass", 0, 100);
    ZELMAR_polygon_make_non_collisional(ZELMAR_group_get_first_polygon(glass));
    const int drop = cameraAt("drop", {0, 0, 0.5}, {0, 0, -1});
    ZELMAR_camera_set_chase_type(drop, 9);
    ZELMAR_camera_set_absolute_speed(drop, 60);
    steps(1);
    EXPECT_P3(cameraLocation(drop), 0, 0, -0.5, 1e-12);
}

TEST_F(ChasePhysics, AGroupStopsAtAWallByItsSizeAndSlidesWithoutElasticity) {
    const int wall = ZELMAR_group_create("wall");
    const int p = ZELMAR_polygon_create();
    for (auto q : {P3{10, -50, -50}, P3{10, 50, -50}, P3{10, 50, 50}, P3{10, -50, 50}}) {
        const double v[6] = {q[0], q[1], q[2], 0, 0, 100};
        ZELMAR_polygon_add_point(p, v);
    }
    ZELMAR_polygon_set_group(p, wall);
    const int ball = box("ball", {0, 0, 0}, 1);
    ZELMAR_group_set_chase_type(ball, 9);
    const double push[3] = {600, 600, 0}; // starts at rest
    ZELMAR_group_set_physics_force(ball, push);
    steps(3); // speeds 10, 20, 30 a second: 1/6, 1/3, 1/2 along x and y
    EXPECT_P3(groupLocation(ball), 1, 1, 0, 1e-12);
    for (int i = 0; i < 10; ++i)
        ZELMAR_group_advance(ball);
    // The box's face stops at the wall (centre 1 short of it) and the x speed is gone.
    const P3 at = groupLocation(ball);
    EXPECT_NEAR(at[0], 9, 1e-5);
    EXPECT_GT(at[1], 9);
    double dims[3];
    ZELMAR_group_get_dimensions(ball, dims);
    EXPECT_P3(dims, 2, 2, 2, 1e-12);
}

TEST_F(ChasePhysics, AGroupSpinsAboutItsOwnAxesByItsRotationPerSecond) {
    const int top = box("top", {3, 4, 5}, 1);
    ZELMAR_group_set_chase_type(top, 9);
    const double spin[3] = {0, 0, 90};
    ZELMAR_group_set_physics_rotation(top, spin);
    steps(60);
    EXPECT_P3(groupAxisX(top), 0, 1, 0, 1e-9);
    EXPECT_P3(groupLocation(top), 3, 4, 5, 1e-9);
}

} // namespace
