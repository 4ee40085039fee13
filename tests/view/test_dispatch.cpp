// The mouse dispatch, the key table, the refresh rules and the layout of the viewport area.
#include "ViewTestSupport.h"

#include <QAction>
#include <QLabel>
#include <QToolBar>

using namespace vexil;
using namespace vexil::test;

namespace {

class Dispatch : public ViewFixture {};

TEST_F(Dispatch, MovesInAWindowOtherThanTheActiveOneDoNothing) {
    views->SetToolMode(ToolRevolve);
    press(1, {50, 50}, Qt::LeftButton);
    camera& c2 = views->ViewCams(2);
    const double theta = c2.Theta;
    const unsigned paints = views->PaintCount(2);
    host.status3.clear();
    move(2, {60, 60}, Qt::LeftButton);
    move(2, {90, 90}, Qt::LeftButton);
    EXPECT_DOUBLE_EQ(c2.Theta, theta);
    EXPECT_EQ(views->PaintCount(2), paints);
    EXPECT_TRUE(host.status3.empty());
    release(1, {50, 50}, Qt::LeftButton);
}

TEST_F(Dispatch, TheMiddleButtonNavigatesUnderEveryToolAndNeverSelects) {
    for (int tool = ToolSelect; tool <= ToolRollCamera; ++tool) {
        views->SetToolMode(tool);
        camera& c = views->ViewCams(2);
        const double theta = c.Theta;
        drag(2, {100, 100}, {120, 100}, Qt::MiddleButton, 2);
        EXPECT_NEAR(c.Theta, theta - 0.2 + (theta - 0.2 < 0 ? TwoPi : 0), 1e-9) << "tool " << tool;
    }
    EXPECT_EQ(host.selectObjects, 0);
    EXPECT_EQ(host.multipleSelection, 0);
    // Middle with Alt dollies, with Shift pans.
    views->SetToolMode(ToolSelect);
    camera& c = views->ViewCams(2);
    const double dist = c.Dist;
    fake->press(Qt::Key_Alt);
    drag(2, {100, 100}, {100, 110}, Qt::MiddleButton, 1);
    fake->release(Qt::Key_Alt);
    EXPECT_NEAR(c.Dist, dist + 10 * host.worldSize / (PerspectiveZoom * 10), 1e-9);
    const double h = c.LookAtOffsetH;
    drag(2, {100, 100}, {110, 100}, Qt::MiddleButton, 1, Qt::ShiftModifier);
    EXPECT_GT(c.LookAtOffsetH, h) << "the camera goes left as the cursor goes right";
}

TEST_F(Dispatch, SelectionHappensOnMouseUpInTheSelectToolOnly) {
    views->SetToolMode(ToolSelect);
    press(0, {40, 40}, Qt::LeftButton);
    move(0, {60, 60}, Qt::LeftButton);
    release(0, {60, 60}, Qt::LeftButton);
    EXPECT_EQ(host.multipleSelection, 1); // the rubber band follows the move
    EXPECT_EQ(host.selectObjects, 1);
    EXPECT_EQ(views->LastDownX, 40);
    EXPECT_EQ(views->LastUpY, 60);

    // Right click in tool 0: select first, then the context menu.
    press(0, {40, 40}, Qt::RightButton);
    release(0, {40, 40}, Qt::RightButton);
    EXPECT_EQ(host.selectObjects, 2);
    EXPECT_EQ(host.contextMenus, 1);

    // Right click in tool 1 does nothing but pass through the gizmo.
    views->SetToolMode(ToolMove);
    const int ups = host.gizmoUps;
    press(0, {40, 40}, Qt::RightButton);
    release(0, {40, 40}, Qt::RightButton);
    EXPECT_EQ(host.selectObjects, 2);
    EXPECT_EQ(host.contextMenus, 1);
    EXPECT_EQ(host.gizmoUps, ups + 1);

    // Point mode reacts to button 1 only.
    views->SetToolMode(ToolSelect);
    host.mode = SelectMode::Point;
    press(0, {40, 40}, Qt::RightButton);
    release(0, {40, 40}, Qt::RightButton);
    EXPECT_EQ(host.selectPoints, 0);
    press(0, {40, 40}, Qt::LeftButton);
    release(0, {40, 40}, Qt::LeftButton);
    EXPECT_EQ(host.selectPoints, 1);
}

TEST_F(Dispatch, APlugInThatTakesTheMouseUpStopsSelection) {
    host.pluginStopsMouseUp = true;
    press(0, {40, 40}, Qt::LeftButton);
    release(0, {40, 40}, Qt::LeftButton);
    EXPECT_EQ(host.selectObjects, 0);
    EXPECT_EQ(host.gizmoUps, 0);
}

TEST_F(Dispatch, NoWorldMeansNoNavigationAndNoPaint) {
    host.worldOpen = false;
    views->SetToolMode(ToolRevolve);
    const double theta = views->ViewCams(2).Theta;
    const unsigned paints = views->PaintCount(2);
    drag(2, {100, 100}, {150, 100}, Qt::LeftButton);
    EXPECT_DOUBLE_EQ(views->ViewCams(2).Theta, theta);
    EXPECT_EQ(views->PaintCount(2), paints);
    EXPECT_EQ(views->ActiveWin, 2); // the press still makes the window active
}

TEST_F(Dispatch, MouseDownMakesTheWindowActiveInsideAYellowFrame) {
    win(3)->setFocus();
    press(3, {10, 10}, Qt::LeftButton);
    release(3, {10, 10}, Qt::LeftButton);
    EXPECT_EQ(views->ActiveWin, 3);
    EXPECT_TRUE(views->ViewHasFocus);
    const QRect w = win(3)->geometry();
    const QRect f = views->FocusFrameGeometry();
    EXPECT_LT(f.left(), w.left());
    EXPECT_LT(f.top(), w.top());
    EXPECT_GT(f.right(), w.right());
    EXPECT_GT(f.bottom(), w.bottom());
    EXPECT_EQ(views->FocusFrameColor(), QColor(255, 255, 0));
    views->picWindow_LostFocus(3);
    EXPECT_EQ(views->FocusFrameColor(), QColor(0, 0, 225));
    EXPECT_FALSE(views->ViewHasFocus);
}

TEST_F(Dispatch, GroupNameUnderTheMouseThenTheGridLocation) {
    // The box fills the centre of the top view.
    const QPoint centre(win(0)->width() / 2, win(0)->height() / 2);
    views->picWindow_MouseDown(0, BtnLeft, 0, 1, 1);
    views->picWindow_MouseUp(0, BtnLeft, 0, 1, 1);
    host.status3.clear();
    move(0, centre, Qt::NoButton);
    ASSERT_EQ(host.status3.size(), 2u);
    EXPECT_EQ(host.status3[0], "Box");
    EXPECT_TRUE(host.status3[1].startsWith("[ ")) << host.status3[1].toStdString();
    // A hidden group is not named.
    ZELMAR_group_disable(world.box, 1);
    host.status3.clear();
    move(0, centre + QPoint(1, 0), Qt::NoButton);
    ASSERT_EQ(host.status3.size(), 1u);
    EXPECT_TRUE(host.status3[0].startsWith("[ "));
}

TEST_F(Dispatch, UpdateCamerasSkipsSmallWindowsButNeverTheActiveOne) {
    // The cross at the far right: windows 1 and 3 have no width.
    views->imgSplitterHV_ResetPos(1.0, 0.5);
    views->ActiveWin = 3;
    unsigned before[4];
    for (int i = 0; i < 4; ++i)
        before[i] = views->PaintCount(i);
    views->UpdateCameras();
    EXPECT_EQ(views->PaintCount(0), before[0] + 1);
    EXPECT_EQ(views->PaintCount(1), before[1]);
    EXPECT_EQ(views->PaintCount(2), before[2] + 1);
    EXPECT_EQ(views->PaintCount(3), before[3]); // active, but zero size: not painted at all

    // A window a few pixels wide is minimised for the rule; the active one is painted whatever its size.
    const double fx = (views->width() - 3.0 - views->TwipsToPixels(80) / 2) / views->width();
    views->imgSplitterHV_ResetPos(fx, 0.5);
    ASSERT_GT(win(1)->width(), 0);
    ASSERT_LE(views->PixelsToTwips(win(1)->width()), 75.0);
    views->ActiveWin = 1;
    for (int i = 0; i < 4; ++i)
        before[i] = views->PaintCount(i);
    views->UpdateCameras();
    EXPECT_EQ(views->PaintCount(1), before[1] + 1);
    EXPECT_EQ(views->PaintCount(3), before[3]);
    // The active camera stays current.
    EXPECT_EQ(ZELMAR_camera_get_current(), world.cams[1]);
}

TEST_F(Dispatch, PaintLockedStopsEveryPaint) {
    views->PaintLocked = true;
    const unsigned p = views->PaintCount(0);
    views->UpdateCameras();
    EXPECT_EQ(views->PaintCount(0), p);
    views->PaintLocked = false;
    views->UpdateCameras();
    EXPECT_EQ(views->PaintCount(0), p + 1);
}

TEST_F(Dispatch, ToolButtonsAndPointersAgree) {
    views->picWindow_MouseDown(2, BtnLeft, 0, 5, 5);
    const std::pair<const char*, int> buttons[] = {{"Revolve", ToolRevolve},
                                                   {"Pan", ToolPan},
                                                   {"Zoom Camera", ToolZoomCamera},
                                                   {"Move Camera", ToolMoveCamera},
                                                   {"Select", ToolSelect}};
    for (const auto& [k, mode] : buttons) {
        views->Toolbar1_ButtonClick(QString::fromLatin1(k));
        EXPECT_EQ(views->ToolMode(), mode);
        for (int m = 0; m < 10; ++m)
            EXPECT_EQ(views->ToolButton(m)->isChecked(), m == mode);
    }
    EXPECT_EQ(views->MousePointerKey(0), "Select");
    views->Toolbar1_ButtonClick(QStringLiteral("Move"));
    EXPECT_EQ(views->ToolMode(), ToolMove);
    EXPECT_EQ(views->MousePointerKey(3), "Pointer");

    // The band: clicking "Roll Camera" sets the tool and the pointer.
    views->ToolButton(ToolRollCamera)->trigger();
    EXPECT_EQ(views->ToolMode(), ToolRollCamera);
    EXPECT_EQ(views->MousePointerKey(1), "Roll Camera");
    EXPECT_EQ(views->ToolBand()->actions().size(), 10);
}

TEST_F(Dispatch, HoldingIPansWithoutAButton) {
    views->picWindow_MouseDown(2, BtnLeft, 0, 100, 100);
    views->picWindow_MouseUp(2, BtnLeft, 0, 100, 100);
    camera& c = views->ViewCams(2);
    // The main window's I key starts the pan where the cursor is (camera.MouseDown).
    fake->setCursorPos(global(2, {100, 100}));
    fake->press(Qt::Key_I);
    c.MouseDown(0, 0, 100, 100);
    const double h = c.LookAtOffsetH;
    move(2, {120, 100}, Qt::NoButton);
    EXPECT_NE(c.LookAtOffsetH, h);
    fake->release(Qt::Key_I);
    const double h2 = c.LookAtOffsetH;
    move(2, {140, 100}, Qt::NoButton);
    EXPECT_DOUBLE_EQ(c.LookAtOffsetH, h2);
}

TEST_F(Dispatch, TheMainWindowsToolButtonsCanDriveTheTools) {
    std::array<QAction*, 10> mine{};
    QToolBar band;
    const char* keys[10] = {"Select",  "Move",        "Rotate",      "Scale",       "Pan",
                            "Revolve", "Zoom Camera", "Move Camera", "Roll Camera", "Align"};
    for (int m = 0; m < 10; ++m)
        mine[m] = band.addAction(keys[m]);
    views->UseToolButtons(mine);
    mine[ToolPan]->trigger();
    EXPECT_EQ(views->ToolMode(), ToolPan);
    EXPECT_EQ(views->MousePointerKey(2), "Pan");
    views->SetToolMode(ToolRevolve);
    EXPECT_TRUE(mine[ToolRevolve]->isChecked());
    EXPECT_FALSE(mine[ToolPan]->isChecked());
}

TEST_F(Dispatch, MaximiseFillsWithTheActiveWindowAndRestoresWithTheDrift) {
    views->picWindow_MouseDown(3, BtnLeft, 0, 5, 5);
    const double fx = views->SplitterFractionX(), fy = views->SplitterFractionY();
    views->ToggleWindowMinMax();
    EXPECT_TRUE(views->WindowMaximised());
    EXPECT_DOUBLE_EQ(views->SplitterFractionX(), 0.0);
    EXPECT_DOUBLE_EQ(views->SplitterFractionY(), 0.0);
    EXPECT_GT(win(3)->width(), views->width() * 0.95);
    EXPECT_EQ(win(0)->width() * win(0)->height(), 0);
    views->ToggleWindowMinMax();
    EXPECT_FALSE(views->WindowMaximised());
    EXPECT_DOUBLE_EQ(views->SplitterFractionX(), fx + 0.007);
    EXPECT_DOUBLE_EQ(views->SplitterFractionY(), fy + 0.007);
}

// The splitters of a resized frame meet where the cross handle's position over the old size, plus 0.0086
// of the width and 0.0116 of the height, says; the handle is placed by the same rule, so resizes keep it.
TEST_F(Dispatch, ResizesKeepTheSplitterRatiosOfTheCrossHandle) {
    auto* hv = views->findChild<QWidget*>(QStringLiteral("imgSplitterHV"));
    ASSERT_NE(hv, nullptr);
    views->imgSplitterHV_ResetPos(0.3, 0.6);
    const QSize sizes[] = {{640, 480}, {1000, 700}, {513, 433}, {1600, 900}, {640, 480}};
    for (const QSize& sz : sizes) {
        views->resize(sz);
        QCoreApplication::processEvents();
        const QRect g = hv->geometry();
        EXPECT_NEAR(g.x() / double(sz.width()) + SplitterRatioX, 0.3, 0.6 / sz.width()) << sz.width();
        EXPECT_NEAR(g.y() / double(sz.height()) + SplitterRatioY, 0.6, 0.6 / sz.height()) << sz.height();
        EXPECT_DOUBLE_EQ(views->SplitterFractionX(), 0.3) << "no drift";
        EXPECT_DOUBLE_EQ(views->SplitterFractionY(), 0.6);
        // The windows meet at the ratios.
        EXPECT_NEAR(win(0)->geometry().right(), 0.3 * sz.width(), views->TwipsToPixels(80));
        EXPECT_NEAR(win(2)->geometry().top(), 0.6 * sz.height(), views->TwipsToPixels(80) + 30);
    }
    // A handle moved by hand (a drag sets the ratio) is taken at the next resize.
    hv->move(int(0.5 * 640) - int(SplitterRatioX * 640), hv->y());
    views->resize(800, 480);
    QCoreApplication::processEvents();
    EXPECT_NEAR(views->SplitterFractionX(), 0.5, 1.0 / 640);
}

TEST_F(Dispatch, SplitterDragResizesAtMouseUp) {
    const int w0 = win(0)->width();
    views->Splitter_MouseDown(0, QPoint(320, 100));
    views->Splitter_MouseMove(0, QPoint(400, 100));
    EXPECT_EQ(win(0)->width(), w0); // only the rubber line moves during the drag
    views->Splitter_MouseUp(0, QPoint(400, 100));
    EXPECT_GT(win(0)->width(), w0 + 70);
    EXPECT_DOUBLE_EQ(views->SplitterFractionX(), 400.0 / views->width());
}

TEST_F(Dispatch, ViewCommandsOfTheCaptionMenu) {
    views->ApplyViewCommand(1, ViewBack);
    EXPECT_EQ(views->ViewLabel(1), "Back");
    double dir[3];
    ZELMAR_camera_get_direction(world.cams[1], dir);
    EXPECT_NEAR(dir[0], 1.0, 1e-5);
    views->ApplyViewCommand(1, ViewPerspective);
    EXPECT_EQ(views->ViewLabel(1), "Perspective");
    // Dolly in a perspective view makes it a user view.
    views->SetToolMode(ToolMoveCamera);
    drag(1, {50, 50}, {50, 60}, Qt::LeftButton, 1);
    EXPECT_EQ(views->ViewLabel(1), "User");
    // The camera entry is enabled only when the world has a camera of its own.
    EXPECT_FALSE(views->WorldHasCamera());
    ZELMAR_camera_create("Scene camera");
    EXPECT_TRUE(views->WorldHasCamera());
}

TEST_F(Dispatch, ZoomExtentFramesTheCurrentGroup) {
    host.selType = 1;
    host.selEntity = world.box;
    camera& c = views->ViewCams(2);
    c.LookAt = {500, 0, 0};
    c.SetLookAtOffset(30, 40);
    views->ZoomExtentSingle(2);
    EXPECT_NEAR(c.LookAt[0], 0.0, 1e-9);
    EXPECT_DOUBLE_EQ(c.LookAtOffsetH, 0.0);
    // The sphere around the box (diameter 200 * sqrt(3)) fills the 60 degree view.
    EXPECT_NEAR(c.Dist, 100 * std::sqrt(3.0) / std::sin(30 * 3.14159265358979 / 180), 1e-6);
    // An empty group leaves the view alone.
    const int empty = ZELMAR_group_create("Empty");
    ZELMAR_group_set_father_group(empty, world.root);
    host.selEntity = empty;
    c.Dist = 123;
    views->ZoomExtentSingle(2);
    EXPECT_DOUBLE_EQ(c.Dist, 123);
}

} // namespace
