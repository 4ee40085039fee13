// A polygon filled with a two-dimensional animation shows the frames of the view direction from
// which the camera sees it: front, front sided, side, back sided or back, by the angle between
// its front normal and the way to the eye. Golden pictures from two camera positions, and the
// borrowing of a neighbour's frames by an empty direction.
#include "TestScene.h"

#include <cmath>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

// Direction d shows d + 1 dark bars along its top on its own colour, so that a picture says which it is.
template <int D> unsigned directionFrame(int x, int y) {
    static const unsigned colours[5] = {0xE03030, 0xE0A020, 0x30B040, 0x3070E0, 0xA040C0};
    return y < 8 && x / 4 < D + 1 && x % 4 < 2 ? 0x202020 : colours[D];
}

constexpr unsigned (*kFrames[5])(int, int) = {directionFrame<0>, directionFrame<1>, directionFrame<2>,
                                              directionFrame<3>, directionFrame<4>};

class AnimationDirection : public ::testing::Test {
  protected:
    void SetUp() override {
        resetEngine();
        Group* g = group("tree");
        // Upright in the plane x = 0, seen from both sides.
        sprite = polygon(g, {{0, 4, 4, 0, 0}, {0, 4, -4, 0, 1}, {0, -4, -4, 1, 1}, {0, -4, 4, 1, 0}});
        double plane[4];
        ZELMAR_polygon_get_plane(sprite->handle, plane);
        front = {plane[0], plane[1], plane[2]};
        anim = ZELMAR_animation_create("tree");
    }
    void TearDown() override { resetEngine(); }

    void addDirection(int direction) {
        Bitmap* b = bitmap("dir" + std::to_string(direction), 32, 32, kFrames[direction - 1]);
        ASSERT_GT(ZELMAR_animation_add_bitmap(anim, direction, b->handle), 0);
    }
    void play() {
        ZELMAR_polygon_set_animation(sprite->handle, anim);
    }
    // A camera 14 units from the sprite's centre, `degrees` from its front normal about the
    // vertical axis, looking at the centre.
    Camera* cameraAt(double degrees) {
        const double a = degrees * 3.14159265358979323846 / 180.0;
        // The front normal turned about z.
        const double dir[3] = {front[0] * std::cos(a) - front[1] * std::sin(a),
                               front[0] * std::sin(a) + front[1] * std::cos(a), 0};
        Camera* c = cameraAlongX({dir[0] * 14, dir[1] * 14, 0}, 70);
        const double forward[3] = {-dir[0], -dir[1], 0};
        const double left[3] = {-forward[1], forward[0], 0}; // up x forward, up = z
        for (int i = 0; i < 3; ++i) {
            c->axis[0][i] = forward[i];
            c->axis[1][i] = left[i];
            c->axis[2][i] = i == 2 ? 1 : 0;
        }
        return c;
    }
    // The colour in the middle of the picture, clear of the stripes.
    std::array<int, 3> centre(Camera* c) {
        const std::vector<uint8_t> img = renderImage(c);
        return pixelAt(img, 32, 24);
    }

    Polygon* sprite = nullptr;
    std::array<double, 3> front{};
    int anim = 0;
};

TEST_F(AnimationDirection, EachDirectionShowsItsOwnFramesGoldenFromTwoCameras) {
    for (int d = 1; d <= 5; ++d)
        addDirection(d);
    play();
    Camera* ahead = cameraAt(10);
    Camera* behindSide = cameraAt(140);
    EXPECT_EQ(matchGolden("animation_front", renderImage(ahead)), "");
    EXPECT_EQ(matchGolden("animation_back_sided", renderImage(behindSide)), "");

    // Every sector by its expected colour; the centre pixel is the frame's plain colour.
    const std::array<int, 3> colours[5] = {
        {0xE0, 0x30, 0x30}, {0xE0, 0xA0, 0x20}, {0x30, 0xB0, 0x40}, {0x30, 0x70, 0xE0}, {0xA0, 0x40, 0xC0}};
    const double angles[] = {0, 20, 25, 60, 70, 80, 100, 110, 115, 150, 160, 180, -60, -150};
    const int expected[] = {0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 4, 4, 1, 3};
    for (size_t i = 0; i < std::size(angles); ++i) {
        SCOPED_TRACE(angles[i]);
        if (std::fabs(std::fabs(angles[i]) - 90) < 15) continue; // edge-on: the quad covers no centre pixel
        EXPECT_EQ(centre(cameraAt(angles[i])), colours[expected[i]]);
    }
}

TEST_F(AnimationDirection, AnEmptyDirectionBorrowsTheNearestOneTowardsTheFront) {
    addDirection(1);
    addDirection(5);
    play();
    const std::array<int, 3> frontColour{0xE0, 0x30, 0x30}, backColour{0xA0, 0x40, 0xC0};
    EXPECT_EQ(centre(cameraAt(45)), frontColour);  // front sided: front is nearer
    EXPECT_EQ(centre(cameraAt(135)), backColour);  // back sided: back is nearer
    EXPECT_EQ(centre(cameraAt(180)), backColour);

    // A one-direction animation plays from everywhere, as before directions were chosen.
    const int single = ZELMAR_animation_create("single");
    ZELMAR_animation_add_bitmap(single, 1, ZELMAR_animation_get_bitmap(anim, 1, 0));
    ZELMAR_polygon_set_animation(sprite->handle, single);
    EXPECT_EQ(centre(cameraAt(170)), frontColour);
}

TEST_F(AnimationDirection, AFramesTransparentColourLetsTheBackgroundThroughOnATrueColourBitmap) {
    // The frame's bitmap is opaque itself; the frame was added with the colour of its dark bars as its
    // transparent index, so those texels are clear when it plays.
    Bitmap* b = bitmap("bars", 32, 32, kFrames[2]);
    ZELMAR_animation_add_bitmap(anim, 1, b->handle);
    world().animation(anim)->frames[0][0].transparentIndex = 0x20 + 256 * 0x20 + 65536 * 0x20;
    play();
    const std::vector<uint8_t> img = renderImage(cameraAt(0));
    int clear = 0, bars = 0;
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x) {
            const std::array<int, 3> p = pixelAt(img, x, y);
            bars += p == std::array<int, 3>{0x20, 0x20, 0x20};
            clear += p == std::array<int, 3>{0, 0, 0};
        }
    EXPECT_EQ(bars, 0);
    EXPECT_GT(clear, 20 * 48); // the background around and through the sprite
}

// A rotated card turns about the vertical through its centre to face the eye: seen edge-on it is drawn as
// wide as face-on, and a played animation still shows the frames of the side it is seen from.
TEST_F(AnimationDirection, ARotatedCardFacesTheEyeAndShowsTheSideItIsSeenFrom) {
    for (int d = 1; d <= 5; ++d)
        addDirection(d);
    play();
    auto covered = [](const std::vector<uint8_t>& img) {
        int n = 0;
        for (int y = 0; y < 48; ++y)
            for (int x = 0; x < 64; ++x)
                n += pixelAt(img, x, y) != std::array<int, 3>{0, 0, 0};
        return n;
    };
    const int faceOn = covered(renderImage(cameraAt(0)));
    EXPECT_LT(covered(renderImage(cameraAt(90))), faceOn / 10);
    ZELMAR_polygon_set_rotated(sprite->handle, 1);
    for (double a : {90.0, -90.0, 30.0}) {
        SCOPED_TRACE(a);
        EXPECT_NEAR(covered(renderImage(cameraAt(a))), faceOn, faceOn / 50);
    }
    EXPECT_EQ(centre(cameraAt(90)), (std::array<int, 3>{0x30, 0xB0, 0x40})); // the side's frames
    EXPECT_EQ(centre(cameraAt(180)), (std::array<int, 3>{0xA0, 0x40, 0xC0})); // the back's, not mirrored away
}

} // namespace
