// The C operations around a render: saving pictures, switches, current camera and target.
#include "TestScene.h"

#include "io/ImageCodec.h"
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

using namespace zelmar;
using namespace zelmar::test;

namespace {

class RenderApi : public ::testing::Test {
  protected:
    void SetUp() override {
        resetEngine();
        dir = std::filesystem::temp_directory_path() / ("zelmar_render_api_" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir);
    }
    void TearDown() override {
        std::filesystem::remove_all(dir);
        resetEngine();
    }
    std::filesystem::path dir;
};

TEST_F(RenderApi, SavedPicturesHoldTheRenderedPixels) {
    polygon(group("g"), {{10, 40, 40}, {10, 40, -40}, {10, -40, -40}, {10, -40, 40}}, {200, 100, 50});
    Camera* c = cameraAlongX({0, 0, 0}, 90);
    const int t = ZELMAR_target_create(16, 8);
    ASSERT_EQ(ZELMAR_engine_render(t, c->handle), 1);
    const std::string bmp = (dir / "shot.bmp").string();
    ASSERT_EQ(ZELMAR_utilities_save_bitmap24(t, bmp.c_str()), 1);
    image::Image img;
    std::string error;
    ASSERT_TRUE(image::decodeFile(bmp, img, error)) << error;
    EXPECT_EQ(img.width, 16);
    EXPECT_EQ(img.height, 8);
    EXPECT_EQ(img.rgba[0], 200);
    EXPECT_EQ(img.rgba[1], 100);
    EXPECT_EQ(img.rgba[2], 50);
    const std::string jpg = (dir / "shot.jpg").string();
    EXPECT_EQ(ZELMAR_utilities_save_screenshot(jpg.c_str()), 1);
    EXPECT_TRUE(std::filesystem::file_size(jpg) > 0);
    const std::string png = (dir / "shot.png").string();
    EXPECT_EQ(ZELMAR_utilities_save_bitmap24(t, png.c_str()), 1);
    EXPECT_EQ(ZELMAR_utilities_save_bitmap24(t, (dir / "missing" / "x.bmp").string().c_str()), -1);
    EXPECT_EQ(ZELMAR_utilities_save_bitmap24(t, nullptr), -1);
    EXPECT_EQ(ZELMAR_utilities_save_bitmap24(t + 999, bmp.c_str()), -1);
    ZELMAR_target_destroy(t);
    EXPECT_EQ(ZELMAR_utilities_save_screenshot(bmp.c_str()), -1) << "the last rendered target is gone";
}

TEST_F(RenderApi, SwitchesAndTheirToggles) {
    EXPECT_EQ(ZELMAR_engine_toggle_wire_frame_flag(), 1);
    EXPECT_EQ(ZELMAR_engine_toggle_wire_frame_flag(), 0);
    EXPECT_EQ(ZELMAR_engine_toggle_rendering_mode(), 1);
    ZELMAR_engine_set_wire_frame_rendering_mode(1);
    ZELMAR_engine_set_normal_rendering_mode(1);
    EXPECT_EQ(ZELMAR_engine_toggle_wire_frame_flag(), 1) << "normal mode cleared wireframe";
    EXPECT_EQ(ZELMAR_engine_toggle_rendering_mode(), 1) << "normal mode cleared colour fill";
    ZELMAR_engine_set_atmospheric_effect(10, 300, -4);
    EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect(), 10 | (255 << 8));
    ZELMAR_engine_set_atmospheric_effect_intensity(-1);
    EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect_intensity(), 0.0);
    ZELMAR_engine_increase_atmospheric_effect_intensity();
    EXPECT_DOUBLE_EQ(ZELMAR_engine_get_atmospheric_effect_intensity(), 0.0006);
    ZELMAR_engine_decrease_atmospheric_effect_intensity();
    ZELMAR_engine_decrease_atmospheric_effect_intensity();
    EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect_intensity(), 0.0);
    ZELMAR_engine_set_background_color(1 + 2 * 256 + 3 * 65536);
    EXPECT_EQ(ZELMAR_engine_get_background_color(), 1 + 2 * 256 + 3 * 65536);
    ZELMAR_engine_set_group_to_render(987654);
    Camera* c = cameraAlongX({0, 0, 0});
    const auto img = renderImage(c, 4, 4);
    EXPECT_EQ(pixelAt(img, 0, 0, 4), (std::array<int, 3>{1, 2, 3})) << "cleared to the background colour";
}

TEST_F(RenderApi, CameraSetCurrentBindsTheTarget) {
    Camera* c = cameraAlongX({0, 0, 0});
    const int t = ZELMAR_target_create(10, 10);
    ZELMAR_camera_set_current(c->handle, t);
    EXPECT_EQ(ZELMAR_camera_get_current(), c->handle);
    EXPECT_EQ(ZELMAR_engine_get_current_target(), t);
    ZELMAR_camera_set_current(c->handle, 0); // keeps the target
    EXPECT_EQ(ZELMAR_engine_get_current_target(), t);
    ZELMAR_camera_set_current(424242, t);
    EXPECT_EQ(ZELMAR_camera_get_current(), c->handle) << "a non-camera changes nothing";
    ZELMAR_target_destroy(t);
    EXPECT_EQ(ZELMAR_engine_get_current_target(), 0);
    EXPECT_EQ(ZELMAR_engine_copy_image_from_dc_to_screen(), 0);
}

} // namespace
