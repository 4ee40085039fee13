// Camera model conventions as render and the viewport navigator rely on them.
#include "api/LastError.h"
#include "scene/CameraModel.h"
#include "scene/World.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cmath>
#include <string>

namespace {

void expectVec(const double* v, double x, double y, double z, double tol = 1e-9) {
    EXPECT_NEAR(v[0], x, tol);
    EXPECT_NEAR(v[1], y, tol);
    EXPECT_NEAR(v[2], z, tol);
}

double dot(const double* a, const double* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

class CameraTest : public ::testing::Test {
  protected:
    void SetUp() override {
        zelmar::world().clear();
        cam = ZELMAR_camera_create("cam");
        ASSERT_NE(cam, 0);
    }
    void axes(double x[3], double y[3], double z[3]) { ZELMAR_camera_get_axis_system(cam, x, y, z); }
    // The axis system is orthonormal and right-handed with y = z cross x.
    void expectFrame() {
        double x[3], y[3], z[3];
        axes(x, y, z);
        EXPECT_NEAR(dot(x, x), 1, 1e-12);
        EXPECT_NEAR(dot(y, y), 1, 1e-12);
        EXPECT_NEAR(dot(z, z), 1, 1e-12);
        EXPECT_NEAR(dot(x, y), 0, 1e-12);
        EXPECT_NEAR(dot(y, z), 0, 1e-12);
        const double zx[3] = {z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2],
                              z[0] * x[1] - z[1] * x[0]};
        expectVec(zx, y[0], y[1], y[2], 1e-12);
    }
    int cam = 0;
};

TEST_F(CameraTest, NewCameraLooksAlongXWithUpZAndSixtyDegrees) {
    double x[3], y[3], z[3], loc[3];
    axes(x, y, z);
    expectVec(x, 1, 0, 0);
    expectVec(y, 0, 1, 0);
    expectVec(z, 0, 0, 1);
    ZELMAR_camera_get_location(cam, loc);
    expectVec(loc, 0, 0, 0);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 60.0);
    EXPECT_EQ(ZELMAR_camera_is_perspective_projection(cam), 1);
    EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 0);
}

TEST_F(CameraTest, PointAtGivesNormalisedDirectionAndLevelFrame) {
    const double loc[3] = {10, 20, 30}, target[3] = {13, 24, 30};
    ZELMAR_camera_set_location(cam, loc);
    ZELMAR_camera_point_at(cam, target);
    double d[3], d1[3];
    ZELMAR_camera_get_direction(cam, d);
    ZELMAR_camera_get_direction1(cam, d1);
    expectVec(d, 0.6, 0.8, 0);
    expectVec(d1, 0.6, 0.8, 0);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), 0, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), std::atan2(0.8, 0.6) * 180 / M_PI, 1e-9);
    double x[3], y[3], z[3];
    axes(x, y, z);
    expectVec(z, 0, 0, 1); // level: up stays world up
    expectFrame();

    // Looking down at a point below: tilt is negative, up still leans to +z.
    const double below[3] = {10, 20, 0};
    ZELMAR_camera_point_at(cam, below);
    ZELMAR_camera_get_direction(cam, d);
    expectVec(d, 0, 0, -1);
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), -90, 1e-9);
    expectFrame();

    // Pointing at its own location is refused and explained.
    zelmar::clearLastError();
    ZELMAR_camera_point_at(cam, loc);
    EXPECT_FALSE(zelmar::lastError().empty());
    expectVec(d, 0, 0, -1);
}

TEST_F(CameraTest, RotationsTurnAboutTheCameraOwnAxesByNinetyDegrees) {
    double x[3], y[3], z[3];
    // Roll (x): left goes up.
    ZELMAR_camera_rotate_x(cam, 90);
    axes(x, y, z);
    expectVec(x, 1, 0, 0);
    expectVec(y, 0, 0, 1);
    expectVec(z, 0, -1, 0);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), 90, 1e-9);
    ZELMAR_camera_rotate_x_radians(cam, -M_PI / 2);
    // Turn about up (z): the view swings to the left (+y).
    ZELMAR_camera_rotate_z(cam, 90);
    axes(x, y, z);
    expectVec(x, 0, 1, 0);
    expectVec(y, -1, 0, 0);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 90, 1e-9);
    // Turn about left (y) by -90 degrees: the view tilts up.
    ZELMAR_camera_rotate_y_radians(cam, -M_PI / 2);
    axes(x, y, z);
    expectVec(x, 0, 0, 1);
    expectFrame();
}

TEST_F(CameraTest, HeadTiltBankSettersKeepTheOtherAngles) {
    ZELMAR_camera_set_head_angle(cam, 30);
    ZELMAR_camera_set_tilt(cam, 20);
    ZELMAR_camera_set_bank(cam, -15);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 30, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), 20, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), -15, 1e-9);
    ZELMAR_camera_modify_head_angle(cam, 15);
    ZELMAR_camera_modify_tilt(cam, -5);
    ZELMAR_camera_modify_bank(cam, 15);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 45, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), 15, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), 0, 1e-9);
    expectFrame();
}

TEST_F(CameraTest, SetDirectionKeepsRollWhileDirection1Levels) {
    ZELMAR_camera_set_bank(cam, 30);
    const double dir[3] = {0, 2, 0};
    ZELMAR_camera_set_direction(cam, dir);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), 30, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 90, 1e-9);
    const double dir1[3] = {-1, 0, 0};
    ZELMAR_camera_set_direction1(cam, dir1);
    EXPECT_NEAR(ZELMAR_camera_get_bank(cam), 0, 1e-9);
    double d[3];
    ZELMAR_camera_get_direction1(cam, d);
    expectVec(d, -1, 0, 0);
    expectFrame();
    // A zero direction changes nothing.
    const double zero[3] = {0, 0, 0};
    ZELMAR_camera_set_direction(cam, zero);
    ZELMAR_camera_get_direction(cam, d);
    expectVec(d, -1, 0, 0);
}

TEST_F(CameraTest, WorldCameraWorldRoundTripAndCameraSpaceMeaning) {
    const double loc[3] = {5, -3, 2};
    ZELMAR_camera_set_location(cam, loc);
    ZELMAR_camera_set_head_angle(cam, 37);
    ZELMAR_camera_set_tilt(cam, -12);
    ZELMAR_camera_set_bank(cam, 8);
    const double p[3] = {1.5, 7.25, -4};
    double c[3], back[3];
    ZELMAR_camera_convert_point_to_camera_space(cam, p, c);
    ZELMAR_camera_convert_point_to_world_space(cam, c, back);
    expectVec(back, p[0], p[1], p[2], 1e-12);

    // Ahead, left, up: a point one unit along each axis from the location.
    double x[3], y[3], z[3];
    axes(x, y, z);
    const double ahead[3] = {loc[0] + 2 * x[0], loc[1] + 2 * x[1], loc[2] + 2 * x[2]};
    ZELMAR_camera_convert_point_to_camera_space(cam, ahead, c);
    expectVec(c, 2, 0, 0, 1e-12);

    // The matrix agrees with the conversion.
    double m[16];
    ZELMAR_camera_get_transformation_matrix(cam, m);
    ZELMAR_camera_convert_point_to_camera_space(cam, p, c);
    for (int r = 0; r < 3; ++r)
        EXPECT_NEAR(m[r * 4] * p[0] + m[r * 4 + 1] * p[1] + m[r * 4 + 2] * p[2] + m[r * 4 + 3], c[r], 1e-12);
    expectVec(m + 12, 0, 0, 0);
    EXPECT_EQ(m[15], 1);
}

TEST_F(CameraTest, MoveInWorldAndInCameraSpace) {
    ZELMAR_camera_set_head_angle(cam, 90); // looking along +y, left is -x
    const double step[3] = {1, 2, 3};
    ZELMAR_camera_move(cam, step, 0);
    double loc[3];
    ZELMAR_camera_get_location1(cam, loc);
    expectVec(loc, 1, 2, 3);
    ZELMAR_camera_move(cam, step, 1); // 1 ahead (+y), 2 left (-x), 3 up
    ZELMAR_camera_get_location(cam, loc);
    expectVec(loc, -1, 3, 6);
}

TEST_F(CameraTest, ZoomStaysStrictlyBetweenZeroAndOneEightyDegrees) {
    ZELMAR_camera_set_zoom(cam, 1.0);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 1.0);
    ZELMAR_camera_set_zoom(cam, 179);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 179);
    for (double bad : {0.0, -5.0, 180.0, 200.0, double(NAN), double(INFINITY)}) {
        zelmar::clearLastError();
        ZELMAR_camera_set_zoom(cam, bad);
        EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 179) << bad;
        EXPECT_FALSE(zelmar::lastError().empty()) << bad;
    }
    ZELMAR_camera_modify_zoom(cam, 5); // would pass 180
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 179);
    ZELMAR_camera_modify_zoom(cam, -100);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), 79);

    ZELMAR_camera_set_distance_from_eye(cam, 0.25);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_distance_from_eye(cam), 0.25);
    ZELMAR_camera_set_distance_from_eye(cam, 0);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_distance_from_eye(cam), 0.25);
}

TEST_F(CameraTest, ProjectionPutsTheViewDirectionAtTheCentreAndLeftOnTheLeft) {
    zelmar::Camera* c = zelmar::world().camera(cam);
    c->zoom = 90; // focal length = half the width
    const double ahead[3] = {10, 0, 0}, left[3] = {10, 10, 0}, up[3] = {10, 0, 10}, behind[3] = {-1, 0, 0};
    double sx, sy, depth;
    ASSERT_TRUE(zelmar::camera::project(*c, 200, 100, ahead, sx, sy, depth));
    EXPECT_NEAR(sx, 100, 1e-9);
    EXPECT_NEAR(sy, 50, 1e-9);
    EXPECT_NEAR(depth, 10, 1e-12);
    ASSERT_TRUE(zelmar::camera::project(*c, 200, 100, left, sx, sy, depth));
    EXPECT_NEAR(sx, 0, 1e-9); // 45 degrees left is the left edge
    ASSERT_TRUE(zelmar::camera::project(*c, 200, 100, up, sx, sy, depth));
    EXPECT_NEAR(sy, -50, 1e-9); // above the top: square pixels, horizontal field of view
    EXPECT_FALSE(zelmar::camera::project(*c, 200, 100, behind, sx, sy, depth));

    // A ray through a projected pixel passes through the point again.
    double o[3], d[3];
    zelmar::camera::project(*c, 200, 100, left, sx, sy, depth);
    zelmar::camera::rayThrough(*c, 200, 100, sx, sy, o, d);
    const double t = (left[0] - o[0]) / d[0];
    EXPECT_NEAR(o[1] + t * d[1], left[1], 1e-9);
}

TEST_F(CameraTest, ParallelProjectionMapsItsWidthOntoTheTarget) {
    ZELMAR_camera_set_parallel_projection(cam, 20, 0);
    EXPECT_EQ(ZELMAR_camera_is_perspective_projection(cam), 0);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_parallel_projection_width(cam), 20);
    const zelmar::Camera* c = zelmar::world().camera(cam);
    const double p[3] = {-50, 10, 5}; // behind the eye still projects
    double sx, sy, depth;
    ASSERT_TRUE(zelmar::camera::project(*c, 200, 100, p, sx, sy, depth));
    EXPECT_NEAR(sx, 0, 1e-9);
    EXPECT_NEAR(sy, 0, 1e-9);
    ZELMAR_camera_set_perspective_projection(cam);
    EXPECT_EQ(ZELMAR_camera_is_perspective_projection(cam), 1);
}

TEST_F(CameraTest, LocationToFitSeesTheWholeBox) {
    const double box[6] = {-1, -1, -1, 1, 1, 1};
    double loc[3];
    ASSERT_EQ(ZELMAR_camera_get_location_to_fit_rectangle(cam, box, loc), 1);
    const double r = std::sqrt(3.0);
    expectVec(loc, -r / std::sin(30 * M_PI / 180), 0, 0, 1e-9);
}

TEST_F(CameraTest, AxisSystemIsReOrthonormalised) {
    const double x[3] = {0, 3, 0}, y[3] = {9, 9, 9}, z[3] = {0, 1, 1};
    ZELMAR_camera_set_axis_system(cam, x, y, z);
    double ax[3], ay[3], az[3];
    axes(ax, ay, az);
    expectVec(ax, 0, 1, 0);
    expectVec(az, 0, 0, 1);
    expectVec(ay, -1, 0, 0);
    // Up parallel to the view falls back on the given left axis.
    const double x2[3] = {1, 0, 0}, y2[3] = {0, 1, 0}, z2[3] = {2, 0, 0};
    ZELMAR_camera_set_axis_system(cam, x2, y2, z2);
    axes(ax, ay, az);
    expectVec(az, 0, 0, 1);
    expectFrame();
}

TEST_F(CameraTest, ChasedCameraAndTrackFollowTheirEntities) {
    const int other = ZELMAR_camera_create("other");
    const int track = ZELMAR_track_create("T1", nullptr, 0, 0);
    ZELMAR_camera_set_chase_type(cam, 4);
    ZELMAR_camera_set_camera_to_chase(cam, other);
    EXPECT_EQ(ZELMAR_camera_get_chased_camera(cam), other);
    EXPECT_STREQ(ZELMAR_camera_get_name_to_chase(cam), "other");
    ZELMAR_camera_set_name_to_chase(cam, "NO_CHASE");
    EXPECT_EQ(ZELMAR_camera_get_chased_camera(cam), 0);
    EXPECT_STREQ(ZELMAR_camera_get_name_to_chase(cam), "NO_CHASE");
    ZELMAR_camera_set_track(cam, "T1");
    EXPECT_EQ(ZELMAR_camera_get_track_handle(cam), track);
    EXPECT_STREQ(ZELMAR_camera_get_track_name(cam), "T1");
    ZELMAR_track_delete(track);
    EXPECT_EQ(ZELMAR_camera_get_track_handle(cam), 0);
    ZELMAR_camera_delete(other);
    ZELMAR_camera_set_camera_to_chase(cam, other); // dead: refused
    EXPECT_EQ(ZELMAR_camera_get_chased_camera(cam), 0);
}

TEST_F(CameraTest, WalksNamesCurrentAndStaleHandles) {
    const int b = ZELMAR_camera_create("b");
    const int c = ZELMAR_camera_create("c");
    EXPECT_EQ(ZELMAR_camera_get_first_camera(), cam);
    EXPECT_EQ(ZELMAR_camera_get_next_camera(cam), b);
    EXPECT_EQ(ZELMAR_camera_get_next_camera(c), 0);
    EXPECT_EQ(ZELMAR_camera_get_using_name("b"), b);
    EXPECT_EQ(ZELMAR_camera_get_using_name("nobody"), 0);
    EXPECT_EQ(ZELMAR_camera_get_using_name(nullptr), 0);

    EXPECT_EQ(ZELMAR_camera_get_current(), 0);
    EXPECT_EQ(ZELMAR_camera_get_default_camera(), cam);
    ZELMAR_camera_set_save_flag(b, 7);
    EXPECT_EQ(ZELMAR_camera_get_save_flag(b), 1);

    ZELMAR_camera_delete(b);
    EXPECT_EQ(ZELMAR_camera_is_camera(b), 0);
    EXPECT_EQ(ZELMAR_camera_get_next_camera(cam), c);
    zelmar::clearLastError();
    EXPECT_EQ(ZELMAR_camera_get_next_camera(b), 0);
    EXPECT_NE(zelmar::lastError().find("is not a camera"), std::string::npos);
    double out[3] = {7, 7, 7};
    ZELMAR_camera_get_location(b, out);
    expectVec(out, 7, 7, 7);
    EXPECT_STREQ(ZELMAR_camera_get_name(b), "");
    for (int h : {0, -1, 123456789, INT32_MIN})
        EXPECT_EQ(ZELMAR_camera_is_camera(h), 0);

    const int fresh = ZELMAR_camera_create("d");
    EXPECT_NE(fresh, b); // handles never come back
    ZELMAR_camera_delete_all();
    EXPECT_EQ(ZELMAR_camera_get_first_camera(), 0);
}

} // namespace

namespace {

TEST(CameraScreen, PixelOperationsUseTheCurrentTarget) {
    zelmar::world().clear();
    const int cam = ZELMAR_camera_create("view");
    const int other = ZELMAR_camera_create("other");
    const int target = ZELMAR_target_create(200, 100);
    ASSERT_NE(target, 0);
    ZELMAR_camera_set_current(cam, target);
    EXPECT_EQ(ZELMAR_camera_get_width(cam), 200);
    EXPECT_EQ(ZELMAR_camera_get_height(cam), 100);
    EXPECT_EQ(ZELMAR_camera_get_width(other), 0); // not the current camera
    ZELMAR_camera_set_zoom(cam, 90);
    // The left edge pixel looks 45 degrees to the left (less half a pixel).
    ASSERT_EQ(ZELMAR_camera_point_at_2D(cam, 0, 50), 1);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 45, 0.5);
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), 0, 0.5);
    ZELMAR_camera_set_head_angle(cam, 0);
    ASSERT_EQ(ZELMAR_camera_move_toward_point_2D(cam, 100, 50, 10), 1);
    double loc[3];
    ZELMAR_camera_get_location(cam, loc);
    EXPECT_NEAR(loc[0], 10, 0.01);
    EXPECT_NEAR(loc[1], 0, 0.1);
    ZELMAR_target_destroy(target);
}

} // namespace
