// Lights (every value of the editor's panel) and tracks (points, buffers, closest point).
#include "api/LastError.h"
#include "scene/World.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cmath>
#include <vector>

namespace {

class LightTest : public ::testing::Test {
  protected:
    void SetUp() override { zelmar::world().clear(); }
};

TEST_F(LightTest, NewLightHasTheDefaultTypeAndIsPlacedWhereAsked) {
    const double at[3] = {1, 2, 3};
    const int l = ZELMAR_light_create("Light1", at);
    ASSERT_NE(l, 0);
    double loc[3];
    ZELMAR_light_get_location(l, loc);
    EXPECT_EQ(loc[0], 1);
    EXPECT_EQ(loc[2], 3);
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l), 58);
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 0);
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 0);
    EXPECT_EQ(ZELMAR_light_get_entity_to_light(l), 0);
    EXPECT_NE(ZELMAR_light_create("origin", nullptr), 0);
    EXPECT_EQ(ZELMAR_light_create(nullptr, at), 0);
}

// Plain values come back as set (the editor's light panel and the save round trip rely on that); only
// what the engine changes or refuses is checked here.
TEST_F(LightTest, ColoursAreBytesAndBadValuesAreRefused) {
    const int l = ZELMAR_light_create("L", nullptr);
    const int g = zelmar::world().createGroup("target")->handle;
    const double colour[3] = {10, 20, 300};
    ZELMAR_light_set_color(l, colour);
    double c[3];
    ZELMAR_light_get_color(l, c);
    EXPECT_EQ(c[0], 10);
    EXPECT_EQ(c[2], 255);
    ZELMAR_light_set_ambient(l, 0.25);
    ZELMAR_light_set_ambient(l, NAN);
    EXPECT_EQ(ZELMAR_light_get_ambient(l), 0.25);
    ZELMAR_light_set_entity_to_light(l, g);
    ZELMAR_light_set_entity_to_light(l, l); // not a group: refused
    EXPECT_EQ(ZELMAR_light_get_entity_to_light(l), g);
    ZELMAR_light_set_entity_to_light(l, 0);
    EXPECT_EQ(ZELMAR_light_get_entity_to_light(l), 0);
    ZELMAR_light_set_name(l, "renamed");
    EXPECT_EQ(ZELMAR_light_get_using_name("renamed"), l);
}

TEST_F(LightTest, DirectionIsNormalisedAndZeroIsRefused) {
    const int l = ZELMAR_light_create("L", nullptr);
    const double d[3] = {0, 3, 4}, zero[3] = {0, 0, 0};
    ZELMAR_light_set_direction(l, d);
    double out[3];
    ZELMAR_light_get_direction(l, out);
    EXPECT_DOUBLE_EQ(out[1], 0.6);
    EXPECT_DOUBLE_EQ(out[2], 0.8);
    zelmar::clearLastError();
    ZELMAR_light_set_direction(l, zero);
    EXPECT_FALSE(zelmar::lastError().empty());
    ZELMAR_light_get_direction(l, out);
    EXPECT_DOUBLE_EQ(out[2], 0.8);
    const double target[3] = {0, 0, -10};
    ZELMAR_light_point_at(l, target);
    ZELMAR_light_get_direction(l, out);
    EXPECT_DOUBLE_EQ(out[2], -1);
}

TEST_F(LightTest, ActivationRemembersTheValuesItApplied) {
    const int l = ZELMAR_light_create("L", nullptr);
    const zelmar::Light* light = zelmar::world().light(l);
    EXPECT_FALSE(light->activated);
    EXPECT_EQ(ZELMAR_light_activate(l, 0), 1);
    EXPECT_TRUE(light->activated);
    EXPECT_EQ(light->activatedVersion, light->version);
    ZELMAR_light_set_diffuse(l, 0.3); // waits for the next activation
    EXPECT_NE(light->activatedVersion, light->version);
    EXPECT_EQ(ZELMAR_light_remove_light(l), 1);
    EXPECT_FALSE(light->activated);
    EXPECT_EQ(ZELMAR_light_activate(0, 0), 0);
}

TEST_F(LightTest, WalkDeleteAndDeleteAll) {
    const int a = ZELMAR_light_create("a", nullptr);
    const int b = ZELMAR_light_create("b", nullptr);
    const int c = ZELMAR_light_create("c", nullptr);
    std::vector<int> seen;
    for (int h = ZELMAR_light_get_first_light(); h; h = ZELMAR_light_get_next_light(h))
        seen.push_back(h);
    EXPECT_EQ(seen, (std::vector<int>{a, b, c}));
    ZELMAR_light_delete(b);
    EXPECT_EQ(ZELMAR_light_is_light(b), 0);
    EXPECT_EQ(ZELMAR_light_get_next_light(a), c);
    EXPECT_EQ(ZELMAR_light_get_using_name("b"), 0);
    ZELMAR_light_delete_all();
    EXPECT_EQ(ZELMAR_light_get_first_light(), 0);
    EXPECT_EQ(ZELMAR_light_is_light(a), 0);
}

class TrackTest : public ::testing::Test {
  protected:
    void SetUp() override { zelmar::world().clear(); }
};

TEST_F(TrackTest, CreateReadAndWritePoints) {
    const double pts[9] = {0, 0, 0, 10, 0, 0, 10, 10, 0};
    const int t = ZELMAR_track_create("Track01", pts, 3, 1);
    ASSERT_NE(t, 0);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(t), 3);
    EXPECT_EQ(ZELMAR_track_is_cyclic(t), 1);
    double p[3];
    ZELMAR_track_get_point(t, 2, p);
    EXPECT_EQ(p[1], 10);
    const double moved[3] = {1, 2, 3};
    ZELMAR_track_set_point(t, 1, moved);
    EXPECT_EQ(ZELMAR_track_get_point_element(t, 1, 2), 3);

    // Out of range indices change and read nothing.
    p[0] = 99;
    ZELMAR_track_get_point(t, 3, p);
    ZELMAR_track_get_point(t, -1, p);
    EXPECT_EQ(p[0], 99);
    ZELMAR_track_set_point(t, 3, moved);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(t), 3);
    EXPECT_EQ(ZELMAR_track_get_point_element(t, 0, 3), 0);

    double all[9];
    EXPECT_EQ(ZELMAR_track_get_points(t, nullptr, 0), 3);
    EXPECT_EQ(ZELMAR_track_get_points(t, all, 3), 3);
    EXPECT_EQ(all[3], 1);
    EXPECT_EQ(ZELMAR_track_create("bad", nullptr, 2, 0), 0);
    EXPECT_EQ(ZELMAR_track_create("bad", pts, -1, 0), 0);
}

TEST_F(TrackTest, InsertingAPointGrowsThenFillsTheBuffer) {
    // The editor's insertion: one more point, then the whole buffer.
    const double pts[6] = {0, 0, 0, 10, 0, 0};
    const int t = ZELMAR_track_create("T", pts, 2, 0);
    ZELMAR_track_set_number_of_points(t, 3);
    double p[3];
    ZELMAR_track_get_point(t, 2, p);
    EXPECT_EQ(p[0], 10); // a grown track repeats its last point
    const double buffer[9] = {0, 0, 0, 5, 1, 0, 10, 0, 0};
    ZELMAR_track_set_points_buffer(t, buffer);
    ZELMAR_track_get_point(t, 1, p);
    EXPECT_EQ(p[0], 5);
    EXPECT_EQ(p[1], 1);
    ZELMAR_track_set_number_of_points(t, 1);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(t), 1);
    ZELMAR_track_set_number_of_points(t, -4);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(t), 1);
    ZELMAR_track_set_number_of_points(t, 0);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(t), 0);
}

TEST_F(TrackTest, ClosestPointIncludesTheClosingSegmentOnlyWhenCyclic) {
    const double pts[9] = {0, 0, 0, 10, 0, 0, 10, 10, 0};
    const int open = ZELMAR_track_create("open", pts, 3, 0);
    const int ring = ZELMAR_track_create("ring", pts, 3, 1);
    const double q[3] = {2, 6, 0};
    double c[3];
    EXPECT_EQ(ZELMAR_track_find_closest_point_on_track(ring, q, c), 2);
    EXPECT_NEAR(c[0], 4, 1e-12);
    EXPECT_NEAR(c[1], 4, 1e-12);
    EXPECT_EQ(ZELMAR_track_find_closest_point_on_track(open, q, c), 0);
    EXPECT_NEAR(c[0], 2, 1e-12);
    EXPECT_NEAR(c[1], 0, 1e-12);
    const int empty = ZELMAR_track_create("empty", nullptr, 0, 0);
    EXPECT_EQ(ZELMAR_track_find_closest_point_on_track(empty, q, c), -1);
    EXPECT_EQ(ZELMAR_track_find_closest_point_on_track(12345678, q, c), -1);
}

TEST_F(TrackTest, NamesFlagsWalksAndStaleHandles) {
    const int a = ZELMAR_track_create("a", nullptr, 0, 0);
    const int b = ZELMAR_track_create("b", nullptr, 0, 0);
    EXPECT_EQ(ZELMAR_track_get_first_track(), a);
    EXPECT_EQ(ZELMAR_track_get_next(a), b);
    EXPECT_EQ(ZELMAR_track_get_next(b), 0);
    ZELMAR_track_set_save_flag(a, 1);
    EXPECT_EQ(ZELMAR_track_get_save_flag(a), 1);
    ZELMAR_track_set_name(b, "renamed");
    EXPECT_EQ(ZELMAR_track_get_using_name("renamed"), b);
    ZELMAR_track_delete(a);
    EXPECT_EQ(ZELMAR_track_is_track(a), 0);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(a), 0);
    EXPECT_EQ(ZELMAR_track_get_first_track(), b);
    ZELMAR_track_delete_all();
    EXPECT_EQ(ZELMAR_track_get_first_track(), 0);
}

} // namespace
