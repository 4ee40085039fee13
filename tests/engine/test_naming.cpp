// Naming of new entities against the real engine.
#include "engine/EntityNaming.h"

#include <zelmar/zelmar.h>

#include <gtest/gtest.h>

using namespace vexil;

namespace {
class Naming : public ::testing::Test {
protected:
    void SetUp() override { ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4); }
};
} // namespace

TEST(Padding, AtLeastTwoDigits) {
    EXPECT_EQ(PadCounter(1), "01");
    EXPECT_EQ(PadCounter(9), "09");
    EXPECT_EQ(PadCounter(10), "10");
    EXPECT_EQ(PadCounter(100), "100");
}

TEST_F(Naming, ANewCameraNameFillsTheFirstGap) {
    EXPECT_EQ(GetNewCamName(), "Camera01");
    ZELMAR_camera_create("Camera01");
    ZELMAR_camera_create("Camera03");
    EXPECT_EQ(GetNewCamName(), "Camera02");
    ZELMAR_camera_create("Camera02");
    EXPECT_EQ(GetNewCamName(), "Camera04");
}

TEST_F(Naming, EachFamilyAsksItsOwnLookup) {
    ZELMAR_light_create("Light01", nullptr);
    ZELMAR_track_create("Track01", nullptr, 0, 0);
    ZELMAR_track_create("Track02", nullptr, 0, 0);
    ZELMAR_background_create("Background01", 0);
    ZELMAR_camera_create("Light02");  // another family's name does not count
    EXPECT_EQ(GetNewLightName(), "Light02");
    EXPECT_EQ(GetNewTrkName(), "Track03");
    EXPECT_EQ(GetNewBkName(), "Background02");
    EXPECT_EQ(GetNewCamName(), "Camera01");
}

TEST_F(Naming, HundredAndMore) {
    for (int i = 1; i <= 99; ++i) ZELMAR_light_create(("Light" + PadCounter(i)).c_str(), nullptr);
    EXPECT_EQ(GetNewLightName(), "Light100");
}

TEST_F(Naming, GroupNamesFromAGivenString) {
    EXPECT_EQ(GetNewGrpNameFrmGivenStr("Box"), "Box");
    ZELMAR_group_create("Box");
    EXPECT_EQ(GetNewGrpNameFrmGivenStr("Box"), "Box01");
    ZELMAR_group_create("Box01");
    EXPECT_EQ(GetNewGrpNameFrmGivenStr("Box"), "Box02");
    EXPECT_EQ(GetNewGrpNameFrmGivenStr("Box01"), "Box0101");
}

TEST_F(Naming, LookupsAndNames) {
    const int g = ZELMAR_group_create("alpha");
    const int p = ZELMAR_polygon_create();
    ZELMAR_polygon_set_name(p, "face");
    EXPECT_EQ(GroupUsingName("alpha"), g);
    EXPECT_EQ(GroupUsingName("beta"), 0);
    EXPECT_EQ(PolygonUsingName("face"), p);
    EXPECT_EQ(PolygonUsingName("none"), 0);
    EXPECT_EQ(EntityName(g), "alpha");
    const std::string longName(255, 'x');
    ZELMAR_group_set_name(g, longName.c_str());
    EXPECT_EQ(EntityName(g), longName);  // 255 characters come back whole
    EXPECT_EQ(EntityName(0), "");
}
