// Camera navigation driven by mouse and wheel on the real picture windows.
#include "ViewTestSupport.h"

#include <cmath>

using namespace vexil;
using namespace vexil::test;

namespace {

class CameraNavigation : public ViewFixture {
  protected:
    void tool(int mode) { views->SetToolMode(mode); }
    double zoom(int i) { return ZELMAR_camera_get_zoom(world.cams[i]); }
};

TEST_F(CameraNavigation, StandardViewsLookAlongTheAxesAndCarryTheirLabels) {
    double dir[3];
    ZELMAR_camera_get_direction(world.cams[0], dir);
    EXPECT_NEAR(dir[2], -1.0, 1e-5); // Top looks down
    ZELMAR_camera_get_direction(world.cams[1], dir);
    EXPECT_NEAR(dir[0], -1.0, 1e-5); // Front looks along -x
    ZELMAR_camera_get_direction(world.cams[3], dir);
    EXPECT_NEAR(dir[1], -1.0, 1e-5); // Right looks along -y
    // 3.14 is not pi: the views are very slightly off axis.
    EXPECT_NE(dir[1], -1.0);
    EXPECT_EQ(views->ViewLabel(0), "Top");
    EXPECT_EQ(views->ViewLabel(1), "Front");
    EXPECT_EQ(views->ViewLabel(2), "Perspective");
    EXPECT_EQ(views->ViewLabel(3), "Right");
    EXPECT_DOUBLE_EQ(zoom(0), 1.0);
    EXPECT_DOUBLE_EQ(zoom(2), PerspectiveZoom);
    EXPECT_DOUBLE_EQ(views->ViewCams(0).Dist, host.worldSize * 100);
    EXPECT_DOUBLE_EQ(views->ViewCams(2).Dist, host.worldSize * 2);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_distance_from_eye(world.cams[0]), host.worldSize);
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_distance_from_eye(world.cams[2]), host.worldSize / 100);
}

TEST_F(CameraNavigation, RevolveTurnsByTheMouseAndWrapsIntoOneTurn) {
    tool(ToolRevolve);
    camera& c = views->ViewCams(2);
    const double theta0 = c.Theta, phi0 = c.Phi;
    drag(2, {100, 100}, {140, 80}, Qt::LeftButton);
    EXPECT_NEAR(c.Theta, theta0 - 0.4, 1e-9);
    EXPECT_NEAR(c.Phi, phi0 + 0.2, 1e-9);

    // Theta near 0 revolved further negative comes back as an angle just below a full turn.
    c.Theta = 0.05;
    drag(2, {100, 100}, {120, 100}, Qt::LeftButton);
    EXPECT_NEAR(c.Theta, TwoPi - 0.15, 1e-9);
    EXPECT_GE(c.Theta, 0.0);
    EXPECT_LT(c.Theta, TwoPi);
}

TEST_F(CameraNavigation, RollIsClampedBothWays) {
    tool(ToolRollCamera);
    camera& c = views->ViewCams(2);
    drag(2, {100, 20}, {100, 250}, Qt::LeftButton, 10);
    EXPECT_DOUBLE_EQ(c.Roll, 1.57);
    drag(2, {100, 250}, {100, 10}, Qt::LeftButton, 2);
    drag(2, {100, 250}, {100, 10}, Qt::LeftButton, 2);
    EXPECT_DOUBLE_EQ(c.Roll, -1.57);
}

TEST_F(CameraNavigation, ZoomDragStopsAtTheLimits) {
    tool(ToolZoomCamera);
    views->picWindow_MouseDown(2, BtnLeft, 0, 10, 10); // make window 2 active
    double last = zoom(2);
    // Each step multiplies by (1 + dy / 400): large steps would overshoot 179 and are refused.
    for (int k = 0; k < 12; ++k) {
        drag(2, {200, 20}, {200, 260}, Qt::LeftButton, 1);
        const double z = zoom(2);
        EXPECT_LT(z, MaxZoom);
        EXPECT_GT(z, MinZoom);
        EXPECT_GE(z, last);
        last = z;
    }
    EXPECT_GT(last, 100.0);
    for (int k = 0; k < 40; ++k) {
        drag(2, {200, 260}, {200, 20}, Qt::LeftButton, 1);
        EXPECT_GT(zoom(2), MinZoom);
    }
    EXPECT_LT(zoom(2), 5.0);
}

TEST_F(CameraNavigation, DollyAndWheelNeverBringDistBelowTheMinimum) {
    tool(ToolMoveCamera);
    camera& c = views->ViewCams(2);
    c.Dist = 10;
    drag(2, {200, 260}, {200, 20}, Qt::LeftButton, 3);
    EXPECT_DOUBLE_EQ(c.Dist, MinDist);
    // Dolly moves by dy * factor * world size / (zoom * 10).
    drag(2, {200, 100}, {200, 130}, Qt::LeftButton, 1);
    EXPECT_NEAR(c.Dist, MinDist + 30 * 1.0 * host.worldSize / (PerspectiveZoom * 10), 1e-9);

    // The wheel: sign only, 3 (or 30 with Shift) world sizes per zoom degree.
    views->ViewHasFocus = true;
    views->ActiveWin = 2;
    const double d0 = c.Dist;
    views->AddWheelDelta(120);
    views->AddWheelDelta(240);
    views->ScrollCheck();
    EXPECT_NEAR(c.Dist, d0 + host.worldSize * 3 / PerspectiveZoom, 1e-9);
    fake->press(Qt::Key_Shift);
    views->AddWheelDelta(-120);
    views->ScrollCheck();
    fake->release(Qt::Key_Shift);
    EXPECT_DOUBLE_EQ(c.Dist, MinDist);
    // Nothing happens without the focus; the turn is dropped.
    views->ViewHasFocus = false;
    views->AddWheelDelta(120);
    views->ScrollCheck();
    views->ViewHasFocus = true;
    views->ScrollCheck();
    EXPECT_DOUBLE_EQ(c.Dist, MinDist);
}

TEST_F(CameraNavigation, WheelEventsOnAWindowAreCollectedForTheTickLoop) {
    views->picWindow_MouseDown(2, BtnLeft, 0, 10, 10);
    camera& c = views->ViewCams(2);
    const double d0 = c.Dist;
    QWheelEvent e(QPointF(20, 20), QPointF(global(2, {20, 20})), QPoint(), QPoint(0, -120), Qt::NoButton,
                  Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(win(2), &e);
    EXPECT_DOUBLE_EQ(c.Dist, d0); // not before the tick
    views->ScrollCheck();
    EXPECT_NEAR(c.Dist, d0 - host.worldSize * 3 / PerspectiveZoom, 1e-9);
}

TEST_F(CameraNavigation, CursorWrapsAtTheScreenEdgeWithoutMotion) {
    tool(ToolRevolve);
    camera& c = views->ViewCams(2);
    const QSize screen = views->ScreenSize();
    press(2, {100, 100}, Qt::LeftButton);
    const double theta0 = c.Theta;
    // The cursor reaches the right edge of the screen: it jumps to x = 11 and nothing turns.
    fake->setCursorPos(QPoint(screen.width() - 5, global(2, {100, 100}).y()));
    QMouseEvent e(QEvent::MouseMove, QPointF(100, 100), QPointF(screen.width() - 5, 0), Qt::NoButton,
                  Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(win(2), &e);
    EXPECT_EQ(fake->cursorPos().x(), 11);
    EXPECT_DOUBLE_EQ(c.Theta, theta0);
    EXPECT_DOUBLE_EQ(c.LastX, 11);
    // The next move continues from there.
    fake->setCursorPos(QPoint(21, fake->cursorPos().y()));
    QApplication::sendEvent(win(2), &e);
    EXPECT_NEAR(c.Theta, theta0 - 0.1, 1e-9);
    // Released where the last move was: no flick, no spin.
    views->picWindow_MouseUp(2, BtnLeft, 0, 100, 100);
    EXPECT_EQ(c.AutoRevolving, 0);
}

TEST_F(CameraNavigation, FirstToggleOfAFreshParallelViewChangesNothingVisible) {
    views->picWindow_MouseDown(0, BtnLeft, 0, 10, 10);
    camera& c = views->ViewCams(0);
    views->UpdateCameras();
    const QImage before = win(0)->BackBuffer().copy();
    const double dist = c.Dist;
    c.ToggleProjection();
    EXPECT_DOUBLE_EQ(zoom(0), 1.0);
    EXPECT_DOUBLE_EQ(c.Dist, dist);
    EXPECT_TRUE(before == win(0)->BackBuffer());
}

TEST_F(CameraNavigation, ToggleProjectionKeepsDistTimesZoom) {
    views->picWindow_MouseDown(2, BtnLeft, 0, 10, 10);
    camera& c = views->ViewCams(2);
    const double product = c.Dist * zoom(2);
    c.ToggleProjection();
    EXPECT_DOUBLE_EQ(zoom(2), 1.0);
    EXPECT_DOUBLE_EQ(c.SavedZoom, PerspectiveZoom);
    EXPECT_NEAR(c.Dist * zoom(2), product, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_distance_from_eye(world.cams[2]), c.Dist * 0.5, 1e-9);
    c.ToggleProjection();
    EXPECT_DOUBLE_EQ(zoom(2), PerspectiveZoom);
    EXPECT_NEAR(c.Dist, host.worldSize * 2, 1e-9);
}

// Found by trying the editor: a pan went the wrong way and 15 to 18 times too fast. A pan keeps the point
// under the cursor under it, in parallel and perspective views, at any zoom, with and without Shift.
TEST_F(CameraNavigation, PanKeepsThePointUnderTheCursorUnderIt) {
    tool(ToolPan);
    auto project = [&](int i, const double p[3], int out[2]) {
        ZELMAR_camera_set_current(world.cams[i], win(i)->Target());
        return ZELMAR_engine_3D_point_to_2D(p, out);
    };
    struct Case {
        int view;
        double zoom; // 0: as the standard view has it
        bool shift;
    };
    const Case cases[] = {{0, 0, false}, {1, 0, false}, {3, 0, false}, {3, 0, true}, {2, 0, false},
                          {2, 25, false}, {2, 100, false}, {2, 0, true}};
    for (const Case& k : cases) {
        SCOPED_TRACE(testing::Message() << "view " << k.view << " zoom " << k.zoom << " shift " << k.shift);
        views->ResetCameras();
        camera& c = views->ViewCams(k.view);
        if (k.zoom > 0) {
            ZELMAR_camera_set_zoom(world.cams[k.view], k.zoom);
            c.ReSetCamDistFrmEye();
        }
        // Empty space under the cursor: the reference point (the look-at point) moves with the cursor.
        const double look[3] = {c.LookAt[0], c.LookAt[1], c.LookAt[2]};
        int before[2] = {0, 0}, after[2] = {0, 0};
        ASSERT_EQ(project(k.view, look, before), 0);
        if (k.shift) fake->press(Qt::Key_Shift);
        const Qt::KeyboardModifiers m = k.shift ? Qt::ShiftModifier : Qt::NoModifier;
        drag(k.view, {12, 12}, {52, 37}, Qt::LeftButton, 4, m);
        const double moved[3] = {look[0], look[1], look[2]};
        ASSERT_GE(project(k.view, moved, after), 0);
        EXPECT_NEAR(after[0] - before[0], 40, 1.5);
        EXPECT_NEAR(after[1] - before[1], 25, 1.5);
        // A press on the box: the point it hit stays under the cursor, wherever it lies in depth.
        int centre[2] = {0, 0};
        const double origin[3] = {0, 0, 0};
        ASSERT_EQ(project(k.view, origin, centre), 0);
        double hit[3] = {0, 0, 0};
        int g = 0, pol = 0;
        ASSERT_EQ(ZELMAR_engine_2D_point_to_3D(centre[0], centre[1], hit, &g, &pol), 1);
        ASSERT_NE(pol, 0);
        const QPoint from(centre[0], centre[1]), to(centre[0] - 30, centre[1] + 20);
        drag(k.view, from, to, Qt::LeftButton, 3, m);
        if (k.shift) fake->release(Qt::Key_Shift);
        ASSERT_GE(project(k.view, hit, after), 0);
        EXPECT_NEAR(after[0], to.x(), 1.5);
        EXPECT_NEAR(after[1], to.y(), 1.5);
    }
}

TEST_F(CameraNavigation, EscapeEndsAnAutomaticRevolve) {
    tool(ToolRevolve);
    camera& c = views->ViewCams(2);
    press(2, {100, 100}, Qt::LeftButton);
    move(2, {110, 100}, Qt::LeftButton);
    // The flick: the cursor moved on after the last move; the release sets the view spinning.
    int spins = 0;
    host.onProcessEvents = [&] {
        if (++spins == 5) fake->press(Qt::Key_Escape);
    };
    const double theta0 = c.Theta;
    fake->setCursorPos(global(2, {115, 100}));
    QMouseEvent up(QEvent::MouseButtonRelease, QPointF(115, 100), QPointF(global(2, {115, 100})),
                   Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(win(2), &up);
    fake->release(Qt::Key_Escape);
    host.onProcessEvents = nullptr;
    EXPECT_EQ(spins, 5);
    EXPECT_EQ(c.AutoRevolving, 0);
    EXPECT_NEAR(c.Theta, theta0 - 5 * 0.05, 1e-9);
}

TEST_F(CameraNavigation, AMouseDownStopsASpinningView) {
    tool(ToolRevolve);
    camera& c = views->ViewCams(2);
    press(2, {100, 100}, Qt::LeftButton);
    move(2, {110, 100}, Qt::LeftButton);
    int spins = 0;
    host.onProcessEvents = [&] {
        if (++spins == 3) views->picWindow_MouseDown(1, BtnLeft, 0, 5, 5);
    };
    fake->setCursorPos(global(2, {112, 100}));
    views->picWindow_MouseUp(2, BtnLeft, 0, 112, 100);
    host.onProcessEvents = nullptr;
    EXPECT_EQ(spins, 3);
    EXPECT_EQ(c.AutoRevolving, 0);
}

} // namespace
