// Pictures of lit scenes drawn by the engine, compared with small golden images: a box lit by an
// omnidirectional light, the same box under a directional light, a sphere flat and smoothed, and fog.
// VEXIL_UPDATE_GOLDEN=1 rewrites the images (look at them before committing).
#include "../support/GoldenImages.h"
#include "../support/OffscreenApp.h"
#include "builders/Primitives.h"
#include "lighting/mdlSmoothLight.h"

#include <QDir>
#include <QImage>
#include <cmath>
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

using namespace vexil;
using vexil::test::compareGolden;

namespace {

constexpr int W = 128, H = 96;

constexpr int kTolerance = 6; // per channel, against the golden pictures

class LitScenes : public ::testing::Test {
  protected:
    void SetUp() override {
        test::offscreenApp();
        ZELMAR_engine_set_render_threads(1);
        root = ZELMAR_group_create("the_world");
        target = ZELMAR_target_create(W, H);
        cam = ZELMAR_camera_create("view");
        look({420, -330, 260}, {0, 0, 0});
    }
    void TearDown() override {
        ZELMAR_target_destroy(target);
        ZELMAR_engine_close();
        ZELMAR_engine_set_render_threads(0);
    }
    void look(std::array<double, 3> from, std::array<double, 3> at) {
        ZELMAR_camera_set_location(cam, from.data());
        ZELMAR_camera_point_at(cam, at.data());
        ZELMAR_camera_set_zoom(cam, 50);
        ZELMAR_camera_set_distance_from_eye(cam, 1);
    }
    QImage render() {
        ZELMAR_engine_render(target, cam);
        QImage img(W, H, QImage::Format_RGBA8888);
        ZELMAR_target_read_pixels(target, img.bits(), int(img.sizeInBytes()));
        return img.convertToFormat(QImage::Format_RGB32);
    }
    int greyBox() {
        const int g = CreateBox().Create(200, 200, 200, 1, 1, 1, {0, 0, 0}, root);
        for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p))
            ZELMAR_polygon_set_color_fill(p, 200, 200, 200);
        return g;
    }
    int light(std::array<double, 3> at, std::array<double, 3> dir, int type) {
        const int l = ZELMAR_light_create("L", at.data());
        ZELMAR_light_set_direction(l, dir.data());
        ZELMAR_light_set_type_of_light(l, type);
        ZELMAR_light_set_entity_to_light(l, root);
        ZELMAR_light_activate(l, 0);
        return l;
    }
    static double mean(const QImage& img) {
        double s = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                s += qGray(img.pixel(x, y));
        return s / (img.width() * img.height());
    }
    int root = 0, target = 0, cam = 0;
};

TEST_F(LitScenes, ABoxLitByAnOmnidirectionalLight) {
    greyBox();
    const QImage unlit = render();
    const int l = light({300, -150, 250}, {0, 0, -1}, 58);
    ZELMAR_light_set_distance_reach(l, 2000);
    ZELMAR_light_activate(l, 0);
    const QImage lit = render();
    EXPECT_NE(lit, unlit);
    EXPECT_EQ(compareGolden(QStringLiteral("light_omni_box"), lit, kTolerance), 0);
}

TEST_F(LitScenes, ABoxUnderADirectionalLight) {
    greyBox();
    const int l = light({0, 0, 0}, {-0.3, 0.5, -0.8}, 59);
    const double warm[3] = {255, 210, 160};
    ZELMAR_light_set_color(l, warm);
    ZELMAR_light_activate(l, 0);
    const QImage img = render();
    // The three faces seen turn to the light at three angles: three different shades.
    EXPECT_EQ(compareGolden(QStringLiteral("light_directional_box"), img, kTolerance), 0);
}

TEST_F(LitScenes, ASphereFlatAndSmoothed) {
    const int g = CreateSphere().Create(150, 10, {0, 0, 0}, root);
    std::vector<int> pols;
    for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        ZELMAR_polygon_set_color_fill(p, 180, 200, 230);
        pols.push_back(p);
    }
    light({0, 0, 0}, {-0.5, 0.6, -0.6}, 59);
    SmoothClearAll(pols);
    const QImage flat = render();
    SmoothLight(pols, 60);
    const QImage smooth = render();
    EXPECT_NE(flat, smooth);
    EXPECT_EQ(compareGolden(QStringLiteral("light_sphere_flat"), flat, kTolerance), 0);
    EXPECT_EQ(compareGolden(QStringLiteral("light_sphere_smooth"), smooth, kTolerance), 0);
}

TEST_F(LitScenes, FogFadesTheFarBoxesIntoItsColour) {
    for (int i = 0; i < 4; ++i) {
        const int g = CreateBox().Create(80, 80, 80, 1, 1, 1, {-300.0 + 250 * i, 250.0 * i, 0}, root);
        for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p))
            ZELMAR_polygon_set_color_fill(p, 40 + 50 * i, 120, 200 - 40 * i);
    }
    look({-450, -500, 200}, {200, 600, 0});
    const QImage clear = render();
    ZELMAR_engine_set_atmospheric_effect(200, 200, 210);
    ZELMAR_engine_set_atmospheric_effect_intensity(0.006);
    const QImage foggy = render();
    EXPECT_NE(clear, foggy);
    EXPECT_EQ(compareGolden(QStringLiteral("light_fog"), foggy, kTolerance), 0);
    ZELMAR_engine_set_atmospheric_effect_intensity(0);
    EXPECT_EQ(render(), clear);
}

} // namespace
