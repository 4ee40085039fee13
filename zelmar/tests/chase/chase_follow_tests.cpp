// Chasing another entity: location, precise and flexible, by name or by handle, against
// positions worked out by hand.
#include "ChaseWorld.h"

using namespace chasetest;

namespace {

class ChaseFollow : public ::testing::Test {
  protected:
    void SetUp() override { resetWorld(); }
};

TEST_F(ChaseFollow, LocationTakesTheTargetsPlacePlusAnOffsetInItsOwnAxes) {
    // The target looks along +y: ahead is +y, left is -x, up is +z.
    const int target = cameraAt("target", {1, 2, 3}, {0, 1, 0});
    const int chaser = cameraAt("chaser", {50, 50, 50}, {1, 0, 0});
    ZELMAR_camera_set_chase_type(chaser, 2);
    ZELMAR_camera_set_name_to_chase(chaser, "target");
    const double offset[3] = {-5, 1, 2}; // 5 behind, 1 to the left, 2 up
    ZELMAR_camera_set_chase_offset(chaser, offset);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 0, -3, 5, 1e-12);
    EXPECT_P3(cameraDirection(chaser), 1, 0, 0, 1e-12); // a location chase does not turn
    const double there[3] = {10, 0, 0};
    ZELMAR_camera_set_location(target, there);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 9, -5, 2, 1e-12);
}

TEST_F(ChaseFollow, PreciseKeepsTheDistanceOnTheLineToTheTargetAndLooksAtIt) {
    const int target = cameraAt("target", {0, 0, 0});
    const int chaser = cameraAt("chaser", {10, 0, 0});
    ZELMAR_camera_set_chase_type(chaser, 3);
    ZELMAR_camera_set_camera_to_chase(chaser, target);
    ZELMAR_camera_set_chase_distance(chaser, 4);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 4, 0, 0, 1e-12);
    EXPECT_P3(cameraDirection(chaser), -1, 0, 0, 1e-12);
    // The target steps aside: the chaser stays 4 away, on the line from the target to it.
    // away = (4, -10) / sqrt(116); 4 * away = (1.4855627, -3.7139068).
    const double aside[3] = {0, 10, 0};
    ZELMAR_camera_set_location(target, aside);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 1.4855627054164149, 6.2860932364589629, 0, 1e-12);
    EXPECT_P3(cameraDirection(chaser), -0.37139067635410372, 0.92847669088525919, 0, 1e-12);
}

TEST_F(ChaseFollow, FlexibleCoversTheGapLessTheSoftnessEachStep) {
    cameraAt("target", {0, 0, 0});
    const int chaser = cameraAt("chaser", {8, 0, 0});
    ZELMAR_camera_set_chase_type(chaser, 4);
    ZELMAR_camera_set_name_to_chase(chaser, "target");
    ZELMAR_camera_set_chase_softness(chaser, 0.5);
    ZELMAR_camera_set_chase_distance(chaser, 2);
    // Wanted place (2, 0, 0); half of the gap remains after each step: 5, 3.5, 2.75.
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 5, 0, 0, 1e-12);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 3.5, 0, 0, 1e-12);
    steps(1);
    EXPECT_P3(cameraLocation(chaser), 2.75, 0, 0, 1e-12);
}

TEST_F(ChaseFollow, AGroupChasesByNameAndTurnsUprightToFaceItsTarget) {
    cameraAt("hero", {0, 0, 0});
    const int monster = box("monster", {0, 10, 0}, 1);
    ZELMAR_group_set_chase_type(monster, 3);
    ZELMAR_group_set_name_to_chase(monster, "hero");
    ZELMAR_group_set_chase_distance(monster, 4);
    steps(1);
    EXPECT_P3(groupLocation(monster), 0, 4, 0, 1e-12);
    EXPECT_P3(groupAxisX(monster), 0, -1, 0, 1e-12);
    // The box turned about its centre: its dimensions are unchanged.
    double dims[3];
    ZELMAR_group_get_dimensions(monster, dims);
    EXPECT_P3(dims, 2, 2, 2, 1e-12);
}

TEST_F(ChaseFollow, GroupsStepBeforeCamerasSoAFollowerSeesThisStepsPlace) {
    const int car = box("car", {0, 0, 0}, 1);
    track("road", {{0, 0, 0}, {100, 0, 0}}, 0);
    ZELMAR_group_set_chase_type(car, 135);
    ZELMAR_group_set_track_name(car, "road");
    ZELMAR_group_set_absolute_speed(car, 120); // 2 per step
    const int cam = cameraAt("follow", {0, 0, 0});
    ZELMAR_camera_set_chase_type(cam, 2);
    ZELMAR_camera_set_group_to_chase(cam, car);
    steps(3);
    EXPECT_P3(groupLocation(car), 6, 0, 0, 1e-12);
    EXPECT_P3(cameraLocation(cam), 6, 0, 0, 1e-12);
}

TEST_F(ChaseFollow, NothingToChaseLeavesTheChaserWhereItIs) {
    const int target = box("target", {5, 5, 5}, 1);
    const int chaser = cameraAt("chaser", {1, 2, 3});
    ZELMAR_camera_set_chase_type(chaser, 3);
    ZELMAR_camera_set_name_to_chase(chaser, "target");
    ZELMAR_camera_set_chase_distance(chaser, 1);
    ZELMAR_group_delete_members(target); // deleted under the chase
    EXPECT_EQ(ZELMAR_camera_advance(chaser), 0);
    EXPECT_P3(cameraLocation(chaser), 1, 2, 3, 0);
    ZELMAR_camera_set_name_to_chase(chaser, "chaser"); // itself
    EXPECT_EQ(ZELMAR_camera_advance(chaser), 0);
    ZELMAR_camera_set_name_to_chase(chaser, "NO_CHASE");
    EXPECT_EQ(ZELMAR_camera_advance(chaser), 0);
    EXPECT_P3(cameraLocation(chaser), 1, 2, 3, 0);
    // A new entity of the chased name is found again.
    ZELMAR_camera_set_name_to_chase(chaser, "target");
    box("target", {1, 2, 13}, 1);
    EXPECT_EQ(ZELMAR_camera_advance(chaser), 1);
    EXPECT_P3(cameraLocation(chaser), 1, 2, 12, 1e-12);
}

TEST_F(ChaseFollow, TwoEntitiesChasingEachOtherStepOnceEach) {
    const int a = cameraAt("a", {0, 0, 0});
    const int b = cameraAt("b", {10, 0, 0});
    for (int c : {a, b})
        ZELMAR_camera_set_chase_type(c, 2);
    ZELMAR_camera_set_name_to_chase(a, "b");
    ZELMAR_camera_set_name_to_chase(b, "a");
    const double up[3] = {0, 0, 1};
    ZELMAR_camera_set_chase_offset(a, up);
    ZELMAR_camera_set_chase_offset(b, up);
    steps(2); // a goes to b + up, then b to a + up, in creation order
    EXPECT_P3(cameraLocation(a), 10, 0, 3, 1e-12);
    EXPECT_P3(cameraLocation(b), 10, 0, 4, 1e-12);
}

} // namespace
