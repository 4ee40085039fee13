// The construction grid: decade cells, axis detection, snap and its mark.
#include "ViewTestSupport.h"

using namespace vexil;
using namespace vexil::test;

namespace {

TEST(GridCells, FitCellSizeStepsInDecadesFromOne) {
    EXPECT_DOUBLE_EQ(FitCellSize(0.0), 1.0); // the first round already answers
    EXPECT_DOUBLE_EQ(FitCellSize(0.5), 1.0);
    EXPECT_DOUBLE_EQ(FitCellSize(1.0), 10.0); // the cell must be above the raw step
    EXPECT_DOUBLE_EQ(FitCellSize(20.94), 100.0);
    EXPECT_DOUBLE_EQ(FitCellSize(999.0), 1000.0);
    EXPECT_DOUBLE_EQ(FitCellSize(1e12), 1e10); // stops once past 1e9
}

TEST(GridCells, SnapRoundsHalfToEven) {
    EXPECT_DOUBLE_EQ(SnapToCell(2.5, 0, 1), 2.0);
    EXPECT_DOUBLE_EQ(SnapToCell(3.5, 0, 1), 4.0);
    EXPECT_DOUBLE_EQ(SnapToCell(-2.5, 0, 1), -2.0);
    EXPECT_DOUBLE_EQ(SnapToCell(0.5, 0, 1), 0.0);
    EXPECT_DOUBLE_EQ(SnapToCell(250, 0, 100), 200.0);
    EXPECT_DOUBLE_EQ(SnapToCell(350, 0, 100), 400.0);
    EXPECT_DOUBLE_EQ(SnapToCell(12.5, 10, 5), 10.0); // (12.5 - 10) / 5 = 0.5 -> 0
    EXPECT_DOUBLE_EQ(SnapToCell(7.4, 0, 1), 7.0);
}

TEST(GridCells, StatusNumbersAreRoundedHalfToEven) {
    EXPECT_EQ(FormatRounded(1.005, 2), "1"); // 1.005 is 1.00499999... in binary
    EXPECT_EQ(FormatRounded(0.125, 2), "0.12");
    EXPECT_EQ(FormatRounded(0.375, 2), "0.38");
    EXPECT_EQ(FormatRounded(-0.001, 2), "0");
    EXPECT_EQ(FormatRounded(1234567.0, 0), "1234567");
}

class GridInViews : public ViewFixture {
  protected:
    void SetUp() override {
        ViewFixture::SetUp();
        views->picWindow_MouseDown(0, BtnLeft, 0, 1, 1);
        views->picWindow_MouseUp(0, BtnLeft, 0, 1, 1);
    }
};

TEST_F(GridInViews, AxisAndCellFollowTheView) {
    Grid& g = views->ViewGrids(0);
    views->UpdateCamerasSingle(0);
    EXPECT_DOUBLE_EQ(g.GetGridSize(), 100.0); // 1 degree at 40000: 837.8 across, 40 cells
    EXPECT_EQ(g.GridAxis, 0);                 // looks along z
    EXPECT_DOUBLE_EQ(g.GridPlane[2], 1.0);

    // Three Shift wheel notches bring the camera ten times nearer: the cell follows at once.
    views->ViewHasFocus = true;
    fake->press(Qt::Key_Shift);
    for (int k = 0; k < 3; ++k) {
        views->AddWheelDelta(-120);
        views->ScrollCheck();
    }
    fake->release(Qt::Key_Shift);
    EXPECT_NEAR(views->ViewCams(0).Dist, 4000, 1e-6);
    EXPECT_DOUBLE_EQ(g.GetGridSize(), 10.0);

    // The front and right views look along x and y.
    views->ActiveWin = 1;
    views->UpdateCamerasSingle(1);
    EXPECT_DOUBLE_EQ(views->ViewGrids(1).GetGridSize(), 100.0);
    EXPECT_EQ(views->ViewGrids(1).GridAxis, 1);
    views->ActiveWin = 3;
    views->UpdateCamerasSingle(3);
    views->ViewGrids(3).GetGridSize();
    EXPECT_EQ(views->ViewGrids(3).GridAxis, 2);
}

TEST_F(GridInViews, APerspectiveViewDrawsNoGridAndKeepsItsCell) {
    views->picWindow_MouseDown(2, BtnLeft, 0, 1, 1);
    Grid& g = views->ViewGrids(2);
    g.CellSize = 1000;
    EXPECT_FALSE(g.Draw(nullptr));
    EXPECT_DOUBLE_EQ(g.GetGridSize(), 1000.0);
    views->UpdateCamerasSingle(2);
    const QImage without = win(2)->BackBuffer().copy();
    g.GridVisible = true;
    views->UpdateCamerasSingle(2);
    EXPECT_TRUE(without == win(2)->BackBuffer());
}

TEST_F(GridInViews, AVisibleGridDrawsGreyLinesInAParallelView) {
    auto greyPixels = [&] {
        const QImage img = win(0)->BackBuffer().convertToFormat(QImage::Format_RGB32);
        int n = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (img.pixel(x, y) == qRgb(122, 122, 122)) ++n;
        return n;
    };
    views->UpdateCamerasSingle(0);
    EXPECT_EQ(greyPixels(), 0);
    views->ViewGrids(0).ToggleVisibility(); // repaints the view
    EXPECT_GT(greyPixels(), 500);
}

TEST_F(GridInViews, SnapFindsTheCrossingNearTheMouseOnlyWhenVisibleAndOn) {
    Grid& g = views->ViewGrids(0);
    views->UpdateCamerasSingle(0);
    ASSERT_EQ(ZELMAR_camera_get_current(), world.cams[0]);
    const double origin[3] = {0, 0, 0};
    int px[2] = {0, 0};
    ASSERT_EQ(ZELMAR_engine_3D_point_to_2D(origin, px), 0);
    const QPoint near(px[0] + 2, px[1] + 1);

    Maths::Vector c(3, 0.0);
    host.status3.clear();
    g.Snap(near.x(), near.y(), c);
    EXPECT_FALSE(g.SnapMarkVisible);
    EXPECT_NE(c[0], 0.0); // the raw location under the mouse
    EXPECT_DOUBLE_EQ(c[2], 0.0);

    g.GridVisible = true;
    g.GridSnapOn = true;
    host.status3.clear();
    move(0, near, Qt::NoButton);
    EXPECT_TRUE(g.SnapMarkVisible);
    EXPECT_DOUBLE_EQ(g.SnapPoint[0], 0.0);
    EXPECT_DOUBLE_EQ(g.SnapPoint[1], 0.0);
    ASSERT_FALSE(host.status3.empty());
    EXPECT_EQ(host.status3.back(), "[ 0, 0, 0 ]");
    // The mark is drawn at the crossing: a yellow square around the origin's pixel.
    const QImage img = win(0)->BackBuffer().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(img.pixel(px[0] - 4, px[1]), qRgb(255, 255, 0));

    // Far from any crossing the mark goes off and the raw location is the answer.
    const QPoint far(px[0] + 22, px[1] + 22); // about 48 units away in a 100 cell
    g.Snap(far.x(), far.y(), c);
    EXPECT_FALSE(g.SnapMarkVisible);
    EXPECT_NE(c[0], 0.0);
}

TEST_F(GridInViews, GridSnapTogglesOneOrEveryView) {
    views->Grid_ToggleSnap(false);
    EXPECT_TRUE(views->ViewGrids(0).GridSnapOn);
    EXPECT_FALSE(views->ViewGrids(1).GridSnapOn);
    views->Grid_ToggleSnap(true);
    EXPECT_FALSE(views->ViewGrids(0).GridSnapOn);
    EXPECT_TRUE(views->ViewGrids(3).GridSnapOn);
}

} // namespace
