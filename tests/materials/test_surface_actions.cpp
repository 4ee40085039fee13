// The surface actions through their commands: each change is one undo step that gives every polygon back its
// own value; fills of groups that mixed bitmaps, animations and colours; a transparent colour that makes a new
// engine bitmap for the polygons meant and leaves every other polygon on the old one.
#include "MaterialsTestSupport.h"
#include "materials/ActionApplyTextureToGrp.h"
#include "materials/BitmapFiles.h"
#include "materials/SurfaceCommands.h"
#include "materials/SurfaceActions.h"

#include <QFile>

using namespace vexil;
using namespace vexil::test;

namespace {

struct Fill {
    std::array<int, 3> colour{};
    int bitmap = 0, animation = 0, frame = 0;
    bool operator==(const Fill&) const = default;
};

Fill fillOf(int p) {
    Fill f;
    ZELMAR_polygon_get_color(p, f.colour.data());
    f.bitmap = ZELMAR_polygon_get_bitmap_handle(p);
    f.animation = ZELMAR_polygon_get_animation(p);
    f.frame = ZELMAR_polygon_get_animation_frame(p);
    return f;
}

class SurfaceActions : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        house = makeGroup("House", root);
        walls = addBox(house, {0, 0, 0}, 10);
        brick = ZELMAR_bitmap_load(writeBitmap(file("brick.bmp"), 8, 8, checker).c_str(), -1);
        stone = ZELMAR_bitmap_load(writeBitmap(file("stone.png"), 8, 8, stripes).c_str(), -1);
        ASSERT_TRUE(brick && stone) << ZELMAR_engine_get_last_error();
        anim = ZELMAR_animation_create("Flames");
        ZELMAR_animation_add_bitmap(anim, 1, brick);
        ZELMAR_animation_add_bitmap(anim, 1, stone);
    }
    std::vector<Fill> fills(const std::vector<int>& pols) {
        std::vector<Fill> out;
        for (int p : pols) out.push_back(fillOf(p));
        return out;
    }
    int house = 0, brick = 0, stone = 0, anim = 0;
    std::vector<int> walls;
};

TEST_F(SurfaceActions, UndoOfAFillOnAGroupThatMixedBitmapsAndColoursGivesEachPolygonItsOwn) {
    ZELMAR_polygon_set_bitmap_fill(walls[0], brick);
    ZELMAR_polygon_set_bitmap_fill(walls[1], stone);
    ZELMAR_polygon_set_bitmap_fill(walls[2], brick);
    ZELMAR_polygon_set_animation(walls[2], anim); // an animation over a bitmap, at its third frame
    ZELMAR_polygon_set_animation_frame(walls[2], 1);
    ZELMAR_polygon_set_color_fill(walls[3], 10, 20, 30);
    const std::vector<Fill> before = fills(walls);

    select(house);
    EXPECT_EQ(ApplyFillToSelection(stone, false, true), QString());
    for (int p : walls) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), stone);
    ASSERT_TRUE(undo());
    EXPECT_EQ(fills(walls), before);

    // The group colour at group level: colour everywhere, bitmaps and animation gone; back again exactly.
    ASSERT_TRUE(ApplyColourToSelection(200, 100, 50, false));
    for (int p : walls) {
        const Fill f = fillOf(p);
        EXPECT_EQ(f.colour, (std::array<int, 3>{200, 100, 50}));
        EXPECT_EQ(f.bitmap + f.animation, 0);
    }
    ASSERT_TRUE(undo());
    EXPECT_EQ(fills(walls), before);
    ASSERT_TRUE(redo());
    for (int p : walls) EXPECT_EQ(fillOf(p).colour, (std::array<int, 3>{200, 100, 50}));
    ASSERT_TRUE(undo());

    // At polygon level with two polygons selected only those change.
    select(house, {walls[4], walls[5]});
    ASSERT_TRUE(ApplyColourToSelection(1, 2, 3, true));
    EXPECT_EQ(fillOf(walls[0]), before[0]);
    EXPECT_EQ(fillOf(walls[5]).colour, (std::array<int, 3>{1, 2, 3}));
    ActionRef top = host.stack->Retrive();
    ASSERT_TRUE(top);
    auto* a = top->As<ActionApplyTextureToGrp>();
    ASSERT_NE(a, nullptr);
    EXPECT_FALSE(a->ForGroup());
}

TEST_F(SurfaceActions, ApplyRefusesWithTheDesignMessagesAndChangesNothing) {
    Sel().Clear();
    EXPECT_EQ(ApplyFillToSelection(brick, false, true), GetLocaleString(357)); // "No group selected"
    select(house);
    EXPECT_EQ(ApplyFillToSelection(brick, false, false), GetLocaleString(358)); // "No polygon/s selected"
    EXPECT_EQ(pushes(), 0);
    // An animation to the selected polygons keeps their bitmap beneath it.
    ZELMAR_polygon_set_bitmap_fill(walls[0], brick);
    select(house, {walls[0], walls[1]});
    EXPECT_EQ(ApplyFillToSelection(anim, true, false), QString());
    EXPECT_EQ(ZELMAR_polygon_get_animation(walls[1]), anim);
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[0]), brick);
    EXPECT_EQ(ZELMAR_polygon_get_animation(walls[2]), 0);
    ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_get_animation(walls[1]), 0);
}

TEST_F(SurfaceActions, FilterRotatedAndDiminutionUndoPerPolygon) {
    ZELMAR_polygon_set_translucent(walls[0], 0x31);
    ZELMAR_polygon_set_translucent(walls[1], 0x22);
    ZELMAR_polygon_set_rotated(walls[1], 1);
    ZELMAR_polygon_set_light_diminution(walls[0], 15);
    ZELMAR_polygon_set_light_diminution(walls[1], 40);
    select(house, {walls[0], walls[1]});

    ASSERT_TRUE(ChangeSelectedPolygonsFilter(0x52));
    ASSERT_TRUE(ChangeSelectedPolygonsRotated(true));
    ASSERT_TRUE(ChangeSelectedPolygonsLightDimu(70));
    EXPECT_FALSE(ChangeSelectedPolygonsLightDimu(70)); // the first polygon has it already: no step
    EXPECT_EQ(pushes(), 3);
    for (int p : {walls[0], walls[1]}) {
        EXPECT_EQ(ZELMAR_polygon_get_translucent(p), 0x52);
        EXPECT_EQ(ZELMAR_polygon_is_rotated(p), 1);
        EXPECT_EQ(ZELMAR_polygon_get_light_diminution(p), 70);
    }
    EXPECT_EQ(ZELMAR_polygon_get_translucent(walls[2]), 0);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_get_translucent(walls[0]), 0x31);
    EXPECT_EQ(ZELMAR_polygon_get_translucent(walls[1]), 0x22);
    EXPECT_EQ(ZELMAR_polygon_is_rotated(walls[0]), 0);
    EXPECT_EQ(ZELMAR_polygon_is_rotated(walls[1]), 1);
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(walls[0]), 15);
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(walls[1]), 40);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(redo());
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(walls[1]), 70);
    Sel().SelPols.Clear();
    EXPECT_FALSE(ChangeSelectedPolygonsFilter(0x31)); // nothing selected: nothing to do
}

TEST_F(SurfaceActions, ATransparentColourForAllPolygonsOfTheBitmapLeavesOtherGroupsUntouched) {
    const int fence = makeGroup("Fence", root);
    const std::vector<int> posts = addBox(fence, {30, 0, 0}, 4);
    for (int p : walls) ZELMAR_polygon_set_bitmap_fill(p, brick);
    for (int p : posts) ZELMAR_polygon_set_bitmap_fill(p, brick);
    ZELMAR_polygon_set_bitmap_fill(walls[5], stone);

    const long blue = ColourValue(0x30, 0xA0, 0xE0);
    ASSERT_TRUE(ChangeTransparentColour(walls[0], house, blue, true));
    const int clear = ZELMAR_polygon_get_bitmap_handle(walls[0]);
    EXPECT_NE(clear, brick); // another engine bitmap ...
    EXPECT_EQ(ZELMAR_bitmap_get_transparent_index(clear), 0x30 + 256 * 0xA0 + 65536 * 0xE0);
    EXPECT_TRUE(ZELMAR_bitmap_is_bitmap(brick)); // ... the old one stays for the others
    for (int i = 0; i < 5; ++i) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[size_t(i)]), clear);
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[5]), stone);
    for (int p : posts) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), brick);

    ASSERT_TRUE(undo());
    for (int i = 0; i < 5; ++i) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[size_t(i)]), brick);
    ASSERT_TRUE(redo());
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[3]), clear);

    // One polygon alone: the rest of the group keeps its bitmap.
    ASSERT_TRUE(ChangeTransparentColour(posts[0], fence, ColourValue(0xE0, 0x40, 0x30), false));
    EXPECT_NE(ZELMAR_polygon_get_bitmap_handle(posts[0]), brick);
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(posts[1]), brick);
    // No transparent colour (the button face) is index -1: the opaque bitmap again.
    ASSERT_TRUE(ChangeTransparentColour(posts[0], fence, kButtonFace, false));
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(posts[0]), brick);
}

TEST_F(SurfaceActions, ATransparentColourNeedsABitmapWithAFile) {
    EXPECT_FALSE(ChangeTransparentColour(walls[0], house, 0, false)); // a colour fill
    ZELMAR_polygon_set_bitmap_fill(walls[0], brick);
    QFile::remove(file("brick.bmp"));
    EXPECT_FALSE(ChangeTransparentColour(walls[0], house, 0, false)); // its file has gone
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(walls[0]), brick);
    EXPECT_EQ(pushes(), 0);
}

TEST(BitmapNames, TheLightMapNameTestIsNarrow) {
    EXPECT_TRUE(IsListedBitmapName("brick"));
    EXPECT_TRUE(IsListedBitmapName("LIGHTMAP_0001"));     // at the very start: listed
    EXPECT_FALSE(IsListedBitmapName("wall_LIGHTMAP_12")); // further on: left out
    EXPECT_TRUE(IsListedBitmapName("lightmap_low"));      // the test minds the letter case
}

TEST(BitmapNames, ColoursSplitByDivision) {
    int r = 0, g = 0, b = 0;
    SplitColour(ColourValue(12, 250, 7), r, g, b);
    EXPECT_EQ((std::array<int, 3>{r, g, b}), (std::array<int, 3>{12, 250, 7}));
    SplitColour(0xFFFFFF, r, g, b);
    EXPECT_EQ((std::array<int, 3>{r, g, b}), (std::array<int, 3>{255, 255, 255}));
}

} // namespace
