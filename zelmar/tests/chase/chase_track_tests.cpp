// Following tracks: speed per second at the fixed step, turning at points, cyclic and
// one-way tracks, offsets, groups turning and set down on the ground, and tracks that are
// empty, tiny or deleted under the walk.
#include "ChaseWorld.h"

#include <cmath>
#include <filesystem>

using namespace chasetest;

namespace {

class ChaseTrack : public ::testing::Test {
  protected:
    void SetUp() override { resetWorld(); }
};

TEST_F(ChaseTrack, ACameraWalksAOneWayTrackAndStopsAtItsEnd) {
    track("path", {{10, 0, 0}, {10, 10, 0}}, 0);
    const int cam = cameraAt("cam", {0, 0, 0});
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_track(cam, "path");
    ZELMAR_camera_set_absolute_speed(cam, 240); // 4 a step
    steps(1);
    EXPECT_P3(cameraLocation(cam), 4, 0, 0, 1e-12);
    steps(1);
    EXPECT_P3(cameraLocation(cam), 8, 0, 0, 1e-12);
    steps(1); // 2 to the first point, 2 beyond it towards the second
    EXPECT_P3(cameraLocation(cam), 10, 2, 0, 1e-12);
    EXPECT_P3(cameraDirection(cam), 0, 1, 0, 1e-12);
    EXPECT_EQ(ZELMAR_camera_get_next_point_on_track(cam), 1);
    steps(2);
    EXPECT_P3(cameraLocation(cam), 10, 10, 0, 1e-12);
    EXPECT_EQ(ZELMAR_camera_advance(cam), 0); // finished
    EXPECT_P3(cameraLocation(cam), 10, 10, 0, 1e-12);
}

TEST_F(ChaseTrack, TheOffsetShiftsEveryPointAndAirplaneKeepsThePitch) {
    track("climb", {{0, 0, 0}, {30, 0, 40}}, 0);
    const int cam = cameraAt("cam", {0, 0, 1});
    ZELMAR_camera_set_chase_type(cam, 136);
    ZELMAR_camera_set_track(cam, "climb");
    const double up[3] = {0, 0, 1};
    ZELMAR_camera_set_track_offset(cam, up);
    ZELMAR_camera_set_absolute_speed(cam, 300); // 5 a step along (0.6, 0, 0.8)
    steps(2);
    EXPECT_P3(cameraLocation(cam), 6, 0, 9, 1e-12);
    EXPECT_P3(cameraDirection(cam), 0.6, 0, 0.8, 1e-12);
}

TEST_F(ChaseTrack, AGroupGoesRoundACyclicTrackFacingTheWayItTravels) {
    track("square", {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, 1);
    const int car = box("car", {0, 0, 0}, 1);
    ZELMAR_group_set_chase_type(car, 135);
    ZELMAR_group_set_track_name(car, "square");
    ZELMAR_group_set_absolute_speed(car, 600); // 10 a step: one side each step
    steps(2);
    EXPECT_P3(groupLocation(car), 10, 10, 0, 1e-12);
    EXPECT_P3(groupAxisX(car), 0, 1, 0, 1e-12);
    // A quarter turn about z about the centre: the corner (1, 1, 1) is now at (-1, 1, 1).
    double box6[6];
    ZELMAR_group_get_bounding_box(car, box6);
    EXPECT_P3(box6, 9, 9, -1, 1e-12);
    steps(2);
    EXPECT_P3(groupLocation(car), 0, 0, 0, 1e-12);
    EXPECT_P3(groupAxisX(car), 0, -1, 0, 1e-12);
    steps(1); // round again
    EXPECT_P3(groupLocation(car), 10, 0, 0, 1e-12);
}

TEST_F(ChaseTrack, SoftnessEasesTheTurn) {
    track("corner", {{0, 0, 0}, {0, 100, 0}}, 0);
    const int cam = cameraAt("cam", {0, 0, 0}, {1, 0, 0});
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_track(cam, "corner");
    ZELMAR_camera_set_chase_softness(cam, 0.5);
    ZELMAR_camera_set_absolute_speed(cam, 60);
    steps(1); // halfway between +x and +y
    EXPECT_P3(cameraLocation(cam), 0, 1, 0, 1e-12);
    EXPECT_P3(cameraDirection(cam), std::sqrt(0.5), std::sqrt(0.5), 0, 1e-12);
}

TEST_F(ChaseTrack, AFallingGroupIsSetDownOnTheGroundBelowTheTrack) {
    floor("ground", 0, 100);
    track("high", {{0, 0, 5}, {100, 0, 5}}, 0);
    const int crate = box("crate", {0, 0, 5}, 1);
    ZELMAR_group_set_chase_type(crate, 135);
    ZELMAR_group_set_track_name(crate, "high");
    ZELMAR_group_set_absolute_speed(crate, 60);
    ZELMAR_group_set_falling_from_track(crate, 1); // half its height: its bottom on the ground
    steps(1);
    EXPECT_P3(groupLocation(crate), 1, 0, 1, 1e-9);
    steps(1);
    EXPECT_P3(groupLocation(crate), 2, 0, 1, 1e-9);
    ZELMAR_group_unset_falling_from_track(crate); // back on the track itself
    steps(1);
    EXPECT_P3(groupLocation(crate), 3, 0, 5, 1e-9);
}

TEST_F(ChaseTrack, EmptyTinyAndDeletedTracks) {
    const int cam = cameraAt("cam", {1, 1, 1});
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_absolute_speed(cam, 60000);
    const int empty = track("t", {}, 1);
    ZELMAR_camera_set_track(cam, "t");
    EXPECT_EQ(ZELMAR_camera_advance(cam), 0);
    EXPECT_P3(cameraLocation(cam), 1, 1, 1, 0);
    ZELMAR_track_delete(empty);
    track("t", {{5, 1, 1}}, 1); // one point, cyclic: reached and kept
    EXPECT_EQ(ZELMAR_camera_advance(cam), 1);
    EXPECT_P3(cameraLocation(cam), 5, 1, 1, 1e-12);
    ZELMAR_camera_advance(cam);
    EXPECT_P3(cameraLocation(cam), 5, 1, 1, 1e-12);
    // Deleted while followed: the camera stops where it is.
    ZELMAR_track_delete(ZELMAR_track_get_using_name("t"));
    EXPECT_EQ(ZELMAR_camera_advance(cam), 0);
    EXPECT_P3(cameraLocation(cam), 5, 1, 1, 1e-12);
    // A huge speed on a track of identical points ends its step without looping forever.
    track("t", {{7, 1, 1}, {7, 1, 1}, {7, 1, 1}}, 1);
    ZELMAR_camera_advance(cam);
    EXPECT_P3(cameraLocation(cam), 7, 1, 1, 1e-12);
}

TEST_F(ChaseTrack, TracksOfNoneOrOnePointInALoadedFileAreHarmless) {
    const auto dir = std::filesystem::temp_directory_path() / "zelmar_chase_tracks";
    std::filesystem::create_directories(dir);
    const std::string file = (dir / "tiny.wld").string();
    const int root = ZELMAR_group_create("the_world");
    for (const char* name : {"none", "one"}) {
        const int g = box(name, {0, 0, 0}, 1, root);
        ZELMAR_group_set_chase_type(g, 135);
        ZELMAR_group_set_track_name(g, name);
        ZELMAR_group_set_absolute_speed(g, 600);
    }
    ZELMAR_track_set_save_flag(track("none", {}, 0), 1);
    ZELMAR_track_set_save_flag(track("one", {{3, 0, 0}}, 0), 1);
    ASSERT_NE(ZELMAR_engine_save(file.c_str(), root, 0x1203), 0) << ZELMAR_engine_get_last_error();
    resetWorld();
    ASSERT_NE(ZELMAR_engine_load_world(file.c_str(), "", dir.string().c_str(), 4), -1);
    EXPECT_EQ(ZELMAR_engine_advance(ZELMAR_engine_get_time_step() * 3), 3);
    EXPECT_P3(groupLocation(ZELMAR_group_get_using_name("none")), 0, 0, 0, 1e-12);
    EXPECT_P3(groupLocation(ZELMAR_group_get_using_name("one")), 3, 0, 0, 1e-12);
    std::filesystem::remove_all(dir);
}

TEST_F(ChaseTrack, TheClockRunsWholeStepsAndKeepsTheRest) {
    track("line", {{0, 0, 0}, {1000, 0, 0}}, 0);
    const int cam = cameraAt("cam", {0, 0, 0});
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_track(cam, "line");
    ZELMAR_camera_set_absolute_speed(cam, 60);
    const double step = ZELMAR_engine_get_time_step();
    EXPECT_DOUBLE_EQ(step, 1.0 / 60);
    EXPECT_EQ(ZELMAR_engine_advance(step / 2), 0);
    EXPECT_EQ(ZELMAR_engine_advance(step / 2), 1);
    EXPECT_EQ(ZELMAR_engine_advance(0.05), 3);
    EXPECT_EQ(ZELMAR_engine_advance(-1), 0);
    EXPECT_EQ(ZELMAR_engine_advance(NAN), 0);
    EXPECT_P3(cameraLocation(cam), 4, 0, 0, 1e-9);
    EXPECT_EQ(ZELMAR_engine_advance(10), 60); // a stall is not caught up
    EXPECT_EQ(ZELMAR_engine_advance(0), 0);
    EXPECT_P3(cameraLocation(cam), 64, 0, 0, 1e-9);
}

} // namespace
