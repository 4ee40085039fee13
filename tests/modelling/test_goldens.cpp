// Pictures of an extruded and a cut box, rendered by the engine through a fixed camera and compared with
// small golden images. VEXIL_UPDATE_GOLDEN=1 rewrites the images (look at them before committing).
#include "../support/GoldenImages.h"
#include "undo_property/UndoPropertyFixture.h"

#include "modelling/mdlCutPols.h"
#include "modelling/mdlExtrude.h"

#include <QDir>
#include <QImage>

namespace vexil::test {
namespace {

constexpr int kTolerance = 12; // per channel, against the golden pictures

class Goldens : public UndoPropertyFixture {
  protected:
    // Box A alone, seen from a corner above, 160 x 120.
    QImage render() {
        ZELMAR_group_disable(world.b, 1);
        ZELMAR_group_disable(grid, 1);
        ZELMAR_group_disable(world.lightGrp, 1);
        const int target = ZELMAR_target_create(160, 120);
        const int cam = ZELMAR_camera_create("golden");
        const double loc[3] = {-20, -330, 260}, at[3] = {-250, 0, 20};
        ZELMAR_camera_set_location(cam, loc);
        ZELMAR_camera_point_at(cam, at);
        ZELMAR_camera_set_zoom(cam, 50);
        ZELMAR_camera_set_distance_from_eye(cam, 1);
        ZELMAR_camera_set_current(cam, target);
        ZELMAR_engine_render(target, cam);
        QImage img(ZELMAR_target_get_pixels(target), 160, 120, 160 * 4, QImage::Format_RGBA8888);
        QImage copy = img.copy();
        ZELMAR_target_destroy(target);
        return copy;
    }
};

TEST_F(Goldens, AnExtrudedBox) {
    Edit(world.a, SelectMode::Polygon);
    SelectPolygons({world.aPols[4]}); // the top
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(0);
    x.updwnExtBvl_Change(0, 60);
    x.updwnExtBvl_MouseUp(0, 60);
    x.updwnExtBvl_MouseDown(1);
    x.updwnExtBvl_Change(1, 0.5);
    x.updwnExtBvl_MouseUp(1, 0.5);
    EXPECT_LE(compareGolden(QStringLiteral("extruded_box"), render(), kTolerance), 40);
}

TEST_F(Goldens, ACutBox) {
    Edit(world.a, SelectMode::Polygon);
    SelectPolygons({world.aPols[3], world.aPols[4]}); // the front (-y) and the top
    views->ActiveWin = 3; // the perspective view
    bool in1 = false, in2 = false;
    const QPoint a = pixelOf(3, {-320, -50, 80}, &in1), b = pixelOf(3, {-180, 60, 0}, &in2);
    ASSERT_TRUE(in1 && in2);
    mdlCutPols& c = mdlCutPols::Instance();
    c.CutMouseDown(a.x(), a.y());
    c.CutMouseUp(b.x(), b.y());
    ASSERT_EQ(4, Sel().SelPols.Count());
    // The halves drawn apart: each moved a little along its own normal.
    for (int h : Sel().SelPols.ToVector()) {
        double plane[4], c0[3];
        ZELMAR_polygon_get_plane(h, plane);
        ZELMAR_polygon_get_center(h, c0);
        const int side = (c0[0] + 250) + (c0[2]) > 0 ? 1 : -1;
        const double d[3] = {plane[0] * 6 * side, plane[1] * 6 * side, plane[2] * 6 * side};
        ZELMAR_polygon_move(h, d);
    }
    EXPECT_LE(compareGolden(QStringLiteral("cut_box"), render(), kTolerance), 40);
}

} // namespace
} // namespace vexil::test
