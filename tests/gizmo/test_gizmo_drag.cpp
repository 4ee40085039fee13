// The gizmo on the real viewports: which handle is grabbed, what a drag does to a group, its undo records.
#include "GizmoTestSupport.h"
#include "selection/ActionTransformEntity.h"

using namespace vexil;
using namespace vexil::test;

namespace {

class GizmoDrag : public GizmoFixture {};

TEST_F(GizmoDrag, TopViewGrabsXAndYButNeverZ) {
    selectBoxByClick();
    views->SetToolMode(ToolMove);
    TransformGizmo& g = gizmo(0);
    ASSERT_TRUE(g.Place());
    // Z points at the viewer: its handle has (next to) no length on screen.
    EXPECT_LE(std::hypot(g.TipZ[0] - g.Center2D[0], g.TipZ[1] - g.Center2D[1]), 1.0);
    EXPECT_GT(std::hypot(g.TipX[0] - g.Center2D[0], g.TipX[1] - g.Center2D[1]), 20.0);
    hover(0, onHandle(0, 0));
    EXPECT_EQ(g.ActiveAxis, TransformGizmo::AxisX);
    EXPECT_EQ(views->MousePointerKey(0), QStringLiteral("Move"));
    hover(0, onHandle(0, 1));
    EXPECT_EQ(g.ActiveAxis, TransformGizmo::AxisY);
    // Everything near the pivot and the Z tip is taken by X or Y, or by nothing.
    for (int dx = -3; dx <= 3; ++dx)
        for (int dy = -3; dy <= 3; ++dy) {
            hover(0, QPoint(g.Center2D[0] + dx, g.Center2D[1] + dy));
            EXPECT_NE(g.ActiveAxis, TransformGizmo::AxisZ);
        }
    hover(0, QPoint(5, 5));
    EXPECT_EQ(g.ActiveAxis, TransformGizmo::AxisNone);
    EXPECT_EQ(views->MousePointerKey(0), QStringLiteral("Pointer"));
}

TEST_F(GizmoDrag, OverlappingTipsPickX) {
    selectBoxByClick();
    views->SetToolMode(ToolMove);
    // A parallel side view along (1, -1, 0): the X and Y handles lie on top of each other.
    camera& c = views->ViewCams(1);
    c.Theta = 3 * 3.14159265358979 / 4;
    c.Phi = 0;
    c.Update();
    TransformGizmo& g = gizmo(1);
    ASSERT_TRUE(g.Place());
    ASSERT_LE(std::hypot(g.TipX[0] - g.TipY[0], g.TipX[1] - g.TipY[1]), 1.0);
    click(1, QPoint(0, 0)); // makes view 1 the active one (the move tool selects nothing)
    ASSERT_EQ(views->ActiveWin, 1);
    hover(1, onHandle(1, 0, 0.5));
    EXPECT_EQ(g.ActiveAxis, TransformGizmo::AxisX);
    hover(1, onHandle(1, 1, 0.9));
    EXPECT_EQ(g.ActiveAxis, TransformGizmo::AxisX);
}

TEST_F(GizmoDrag, DragAlongXMovesTheBoxAndUndoRedoReplayIt) {
    selectBoxByClick();
    views->SetToolMode(ToolMove);
    const auto before = location(box);
    const int pushed = host.stack.GetChangesSinceSave();
    const QPoint from = onHandle(0, 0);
    const QPointF dir = handleDir(0, 0);
    const double handleLen = gizmo(0).HandleLen;
    drag(0, from, from + (dir * 40).toPoint(), 4);
    const auto after = location(box);
    // Three of the four moves count (the first only sets the reference): about 30 pixels of handle.
    const double expected = 30 * handleLen / Prefs().TransformGizmoSensitivity;
    EXPECT_NEAR(after[0] - before[0], expected, handleLen / Prefs().TransformGizmoSensitivity * 2);
    EXPECT_GT(after[0] - before[0], 0);
    EXPECT_DOUBLE_EQ(after[1], before[1]);
    EXPECT_DOUBLE_EQ(after[2], before[2]);
    ASSERT_EQ(host.stack.GetChangesSinceSave(), pushed + 1);
    auto* move = host.stack.Retrive()->As<ActionMove>();
    ASSERT_NE(move, nullptr);
    // The status bar told the distance while dragging and was emptied at the end.
    ASSERT_GE(host.status3.size(), 2u);
    EXPECT_TRUE(host.status3[host.status3.size() - 2].startsWith(QStringLiteral("Dist Moved: ")));
    EXPECT_TRUE(host.status3.back().isEmpty());

    ASSERT_TRUE(undo());
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(location(box)[size_t(k)], before[size_t(k)], 1e-9);
    ASSERT_TRUE(redo());
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(location(box)[size_t(k)], after[size_t(k)], 1e-9);
}

// A click on a handle changes nothing, so nothing is pushed (it used to push a move with equal ends).
TEST_F(GizmoDrag, AClickWithoutMotionPushesNothing) {
    selectBoxByClick();
    const int base = host.stack.GetChangesSinceSave();
    const auto l = location(box);
    for (int tool : {ToolMove, ToolRotate, ToolScale}) {
        views->SetToolMode(tool);
        click(0, onHandle(0, 0));
        EXPECT_EQ(host.stack.GetChangesSinceSave(), base) << "tool " << tool;
    }
    EXPECT_EQ(location(box), l);
    // A click off the handles pushes nothing either.
    views->SetToolMode(ToolMove);
    click(0, QPoint(3, 3));
    EXPECT_EQ(host.stack.GetChangesSinceSave(), base);
}

TEST_F(GizmoDrag, ShiftOnXScalesUniformlyButOnYOrZOnlyThatAxis) {
    selectBoxByClick();
    views->SetToolMode(ToolScale);
    const auto d0 = dimensions(box);
    // Shift on Y: that axis alone, the active axis stays Y.
    const QPoint y = onHandle(0, 1);
    fake->press(Qt::Key_Shift);
    hover(0, y, Qt::ShiftModifier);
    EXPECT_EQ(gizmo(0).ActiveAxis, TransformGizmo::AxisY);
    drag(0, y, y + (handleDir(0, 1) * 60).toPoint(), 6, Qt::ShiftModifier);
    const auto d1 = dimensions(box);
    EXPECT_GT(d1[1], d0[1] * 1.01);
    EXPECT_DOUBLE_EQ(d1[0], d0[0]);
    EXPECT_DOUBLE_EQ(d1[2], d0[2]);
    // Shift on X: all three grow by the same factor.
    const QPoint x = onHandle(0, 0);
    hover(0, x, Qt::ShiftModifier);
    EXPECT_EQ(gizmo(0).ActiveAxis, TransformGizmo::AxisAll);
    drag(0, x, x + (handleDir(0, 0) * 60).toPoint(), 6, Qt::ShiftModifier);
    fake->release(Qt::Key_Shift);
    const auto d2 = dimensions(box);
    const double f = d2[0] / d1[0];
    EXPECT_GT(f, 1.01);
    EXPECT_NEAR(d2[1] / d1[1], f, 1e-9);
    EXPECT_NEAR(d2[2] / d1[2], f, 1e-9);
    EXPECT_TRUE(host.status3[host.status3.size() - 2].startsWith(QStringLiteral("Scale Factor: ")));
    // Each scale drag is one step; undo goes back through both.
    ASSERT_TRUE(undo());
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(dimensions(box)[size_t(k)], d1[size_t(k)], 1e-9);
    ASSERT_TRUE(undo());
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(dimensions(box)[size_t(k)], d0[size_t(k)], 1e-9);
}

TEST_F(GizmoDrag, RotateTurnsAboutTheReferencePointAndUndoTurnsBack) {
    selectBoxByClick();
    views->SetToolMode(ToolRotate);
    std::vector<std::array<double, 3>> before;
    for (int p = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(box)); p;
         p = ZELMAR_point_get_next_point(p)) {
        before.push_back({});
        ZELMAR_point_get_xyz(p, before.back().data());
    }
    const QPoint from = onHandle(0, 0);
    drag(0, from, from + (handleDir(0, 0) * 30).toPoint(), 3);
    ASSERT_EQ(host.stack.Retrive()->ActionType, AT_ActionRotate);
    EXPECT_TRUE(host.status3[host.status3.size() - 2].startsWith(QStringLiteral("Deg's Rotated: ")));
    // 30 degrees per sensitivity-many pixels: 20 counted pixels give 12 degrees about x.
    auto* r = host.stack.Retrive()->As<ActionRotate>();
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->Steps(), 1);
    int i = 0;
    bool moved = false;
    for (int p = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(box)); p;
         p = ZELMAR_point_get_next_point(p), ++i) {
        double xyz[3];
        ZELMAR_point_get_xyz(p, xyz);
        EXPECT_NEAR(xyz[0], before[size_t(i)][0], 1e-9); // a turn about x keeps x
        moved = moved || std::abs(xyz[1] - before[size_t(i)][1]) > 1;
    }
    EXPECT_TRUE(moved);
    ASSERT_TRUE(undo());
    i = 0;
    for (int p = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(box)); p;
         p = ZELMAR_point_get_next_point(p), ++i) {
        double xyz[3];
        ZELMAR_point_get_xyz(p, xyz);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(xyz[k], before[size_t(i)][size_t(k)], 1e-9);
    }
}

TEST_F(GizmoDrag, RotatingPastTheScreenEdgeWrapsTheCursorWithoutAJump) {
    selectBoxByClick();
    views->SetToolMode(ToolRotate);
    const QPoint from = onHandle(0, 0);
    const QPointF dir = handleDir(0, 0);
    hover(0, from);
    press(0, from);
    moveHeld(0, from + (dir * 2).toPoint());
    moveHeld(0, from + (dir * 8).toPoint());
    const double turned = gizmo(0).TotalRotation[0];
    ASSERT_NE(turned, 0);
    // The cursor reaches the right edge of the screen: it jumps to the left edge, nothing turns.
    const QRect screen = win(0)->screen()->geometry();
    const QPoint edgeGlobal(screen.right() - 5, global(0, from).y());
    const QPoint edge = win(0)->mapFromGlobal(edgeGlobal);
    mouse(0, QEvent::MouseMove, edge, Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(fake->cursorPos().x(), screen.left() + 11);
    EXPECT_EQ(gizmo(0).TotalRotation[0], turned);
    EXPECT_EQ(gizmo(0).LastProj, (std::array<int, 2>{0, 0}));
    // The first event after the wrap only takes its reference.
    const QPoint wrapped = win(0)->mapFromGlobal(fake->cursorPos());
    mouse(0, QEvent::MouseMove, wrapped, Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(gizmo(0).TotalRotation[0], turned);
    fake->setCursorPos(fake->cursorPos() + (dir * 4).toPoint());
    mouse(0, QEvent::MouseMove, wrapped + (dir * 4).toPoint(), Qt::NoButton, Qt::LeftButton);
    EXPECT_NE(gizmo(0).TotalRotation[0], turned);
    release(0, wrapped + (dir * 4).toPoint());
}

TEST_F(GizmoDrag, HandlesKeepTheirSizeOnScreenAtAnyDistance) {
    selectBoxByClick();
    gizmo(2).Place();
    const double near =
        std::hypot(gizmo(2).TipZ[0] - gizmo(2).Center2D[0], gizmo(2).TipZ[1] - gizmo(2).Center2D[1]);
    views->ViewCams(2).Dist *= 3;
    views->ViewCams(2).Update();
    gizmo(2).Place();
    const double far =
        std::hypot(gizmo(2).TipZ[0] - gizmo(2).Center2D[0], gizmo(2).TipZ[1] - gizmo(2).Center2D[1]);
    EXPECT_NEAR(far, near, 2.0);
    EXPECT_GT(near, 10);
}

TEST_F(GizmoDrag, NothingToDrawOrDragWithoutASelectionInTheMode) {
    selectBoxByClick();
    host.mode = SelectMode::Point; // point mode with no point selected
    views->SetToolMode(ToolMove);
    EXPECT_FALSE(gizmo(0).Place());
    const int base = host.stack.GetChangesSinceSave();
    const auto l = location(box);
    drag(0, middle(0), middle(0) + QPoint(40, 0));
    EXPECT_EQ(host.stack.GetChangesSinceSave(), base);
    EXPECT_EQ(location(box), l);
    EXPECT_EQ(gizmo(0).ActiveAxis, TransformGizmo::AxisNone);
    host.mode = SelectMode::Entity;
    EXPECT_TRUE(gizmo(0).Place());
}

TEST_F(GizmoDrag, CtrlRedrawsEveryViewWhileDragging) {
    selectBoxByClick();
    views->SetToolMode(ToolMove);
    const QPoint from = onHandle(0, 0);
    const QPointF dir = handleDir(0, 0);
    hover(0, from);
    press(0, from);
    moveHeld(0, from + (dir * 5).toPoint());
    const unsigned other = views->PaintCount(1);
    moveHeld(0, from + (dir * 15).toPoint());
    EXPECT_EQ(views->PaintCount(1), other);
    fake->press(Qt::Key_Control);
    moveHeld(0, from + (dir * 25).toPoint(), Qt::ControlModifier);
    EXPECT_GT(views->PaintCount(1), other);
    fake->release(Qt::Key_Control);
    release(0, from + (dir * 25).toPoint());
}

} // namespace
