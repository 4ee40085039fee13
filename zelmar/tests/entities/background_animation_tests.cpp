// Backgrounds and two-dimensional animations.
#include "scene/BitmapStore.h"
#include "scene/Current.h"
#include "scene/World.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

namespace {

// A small true-colour bitmap made in memory, so no file is needed.
int makeBitmap(const char* name) {
    zelmar::image::Image img;
    img.width = img.height = 2;
    img.rgba.assign(16, 200);
    std::string error;
    zelmar::Bitmap* b = zelmar::bitmaps::create(name, img, -1, error);
    return b ? b->handle : 0;
}

class BackgroundAnimationTest : public ::testing::Test {
  protected:
    void SetUp() override { zelmar::world().clear(); }
};

// The bottom, distance and step are read back by the background panel's tests; the bottom intensity, which
// the editor leaves at its default, is read back here.
TEST_F(BackgroundAnimationTest, BackgroundKeepsItsBitmapAndRefusesOthers) {
    const int bmp = makeBitmap("sky");
    const int bg = ZELMAR_background_create("Background01", bmp);
    ASSERT_NE(bg, 0);
    EXPECT_EQ(ZELMAR_background_get_bitmap(bg), bmp);
    ZELMAR_background_set_bottom_intensity(bg, 0.5);
    EXPECT_EQ(ZELMAR_background_get_bottom_intensity(bg), 0.5);
    EXPECT_EQ(ZELMAR_background_get_handle("Background01"), bg);
    ZELMAR_background_set_bitmap(bg, bg); // not a bitmap: refused
    EXPECT_EQ(ZELMAR_background_get_bitmap(bg), bmp);
    EXPECT_EQ(ZELMAR_background_create("bad", 99999), 0);
}

TEST_F(BackgroundAnimationTest, UseMakesABackgroundActiveUntilItIsDeleted) {
    const int a = ZELMAR_background_create("a", 0);
    const int b = ZELMAR_background_create("b", 0);
    EXPECT_EQ(zelmar::activeBackground(), nullptr);
    EXPECT_EQ(ZELMAR_background_use(a), 1);
    EXPECT_EQ(zelmar::activeBackground()->handle, a);
    EXPECT_EQ(ZELMAR_background_use(b), 1);
    EXPECT_EQ(zelmar::activeBackground()->handle, b);
    EXPECT_EQ(ZELMAR_background_get_first_background(), a);
    EXPECT_EQ(ZELMAR_background_get_next(a), b);
    ZELMAR_background_delete(b);
    EXPECT_EQ(zelmar::activeBackground(), nullptr);
    EXPECT_EQ(ZELMAR_background_use(b), 0);
    EXPECT_EQ(ZELMAR_background_get_next(a), 0);
}

TEST_F(BackgroundAnimationTest, UnloadingABitmapTakesItFromBackgroundsAndFrames) {
    const int bmp = makeBitmap("frame");
    const int other = makeBitmap("other");
    const int bg = ZELMAR_background_create("bg", bmp);
    const int anim = ZELMAR_animation_create("walk");
    ZELMAR_animation_add_bitmap(anim, 1, bmp);
    ZELMAR_animation_add_bitmap(anim, 1, other);
    ZELMAR_bitmap_unload(bmp);
    EXPECT_EQ(ZELMAR_background_get_bitmap(bg), 0);
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(anim, 1), 1);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(anim, 1, 0), other);
}

TEST_F(BackgroundAnimationTest, FramesByViewDirection) {
    const int a = ZELMAR_animation_create("Anim");
    const int f1 = makeBitmap("f1"), f2 = makeBitmap("f2"), s1 = makeBitmap("s1");
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 1, f1), 1);
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 1, f2), 2);
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 3, s1), 1);
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 6, s1), 0); // no sixth direction
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 0, s1), 0);
    EXPECT_EQ(ZELMAR_animation_add_bitmap(a, 2, a), 0); // not a bitmap
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(a, 1), 2);
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(a, 2), 0);
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(a, 0), 2);
    EXPECT_EQ(ZELMAR_animation_get_number_of_bitmaps(a), 3);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(a, 1, 1), f2);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(a, 1, 2), 0);

    ZELMAR_animation_set_frame_time(a, 1, 1, 25);
    EXPECT_EQ(ZELMAR_animation_get_frame_time(a, 1, 1), 25);
    ZELMAR_animation_set_frame_time(a, 1, 1, -3);
    EXPECT_EQ(ZELMAR_animation_get_frame_time(a, 1, 1), 25);
    EXPECT_EQ(ZELMAR_animation_get_frame_transparent_index(a, 1, 0), -1);

    EXPECT_EQ(ZELMAR_animation_remove_bitmap(a, 1, 0), 1);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(a, 1, 0), f2);
    EXPECT_EQ(ZELMAR_animation_get_frame_time(a, 1, 0), 25);
    EXPECT_EQ(ZELMAR_animation_remove_bitmap(a, 1, 5), 0);

    ZELMAR_animation_set_name(a, "Run");
    EXPECT_EQ(ZELMAR_animation_get_handle("Run"), a);
    ZELMAR_animation_set_save_flag(a, 1);
    EXPECT_EQ(zelmar::world().animation(a)->saveFlag, 1);
}

TEST_F(BackgroundAnimationTest, DeletingAnAnimationFreesItsPolygons) {
    const int a = ZELMAR_animation_create("a");
    const int b = ZELMAR_animation_create("b");
    zelmar::Polygon* p = zelmar::world().createPolygon();
    p->fill.animation = a;
    EXPECT_EQ(ZELMAR_animation_get_first_animation(), a);
    EXPECT_EQ(ZELMAR_animation_get_next(a), b);
    ZELMAR_animation_delete(a);
    EXPECT_EQ(p->fill.animation, 0);
    EXPECT_EQ(ZELMAR_animation_get_first_animation(), b);
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(a, 1), 0);
}

} // namespace
