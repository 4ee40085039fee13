// Points, polygons and track points: the gizmo in the sub-object modes and the actions that undo them.
#include "GizmoTestSupport.h"
#include "selection/ActionTransformSubObject.h"

using namespace vexil;
using namespace vexil::test;

namespace {

using P3 = std::array<double, 3>;

P3 at(int point) {
    P3 p{};
    ZELMAR_point_get_xyz(point, p.data());
    return p;
}

std::vector<int> ring(int polygon) {
    std::vector<int> v;
    for (int p = ZELMAR_polygon_get_first_point(polygon); p; p = ZELMAR_point_get_next_point(p))
        v.push_back(p);
    return v;
}

std::vector<P3> snapshot(int group) {
    std::vector<P3> v;
    for (int pol = ZELMAR_group_get_first_polygon(group); pol; pol = ZELMAR_group_get_next_polygon(pol))
        for (int p : ring(pol))
            v.push_back(at(p));
    return v;
}

void expectSame(const std::vector<P3>& a, const std::vector<P3>& b, double tol = 1e-9) {
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i)
        for (size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(a[i][k], b[i][k], tol) << "point " << i;
}

class SubObjects : public GizmoFixture {
  protected:
    // The box is the current group, its points in the weld table, and `mode` the sub-object mode.
    void editGeometry(SelectMode mode) {
        selectBoxByClick();
        WeldTable().EnterGroup(box);
        host.mode = mode;
    }
    // A click with the select tool in the middle of view `i`.
    void pick(int i, QPoint p) {
        views->SetToolMode(ToolSelect);
        click(i, p);
    }
};

TEST_F(SubObjects, PolygonMoveKeepsWeldedCornersTogetherAndUndoMovesTheRecordedPolygons) {
    editGeometry(SelectMode::Polygon);
    pick(0, middle(0)); // the top face, seen from above
    ASSERT_EQ(Sel().SelPols.Count(), 1);
    const int topFace = Sel().SelPols[1];
    ASSERT_EQ(Sel().SelPolsWeldedPts.Count(), 4);
    const auto before = snapshot(box);

    // Drag the Z handle in the front view: the top face rises, the sides stretch with it.
    // A right click makes the front view the active one; in polygon mode it selects nothing.
    mouse(1, QEvent::MouseButtonPress, QPoint(1, 1), Qt::RightButton, Qt::RightButton);
    mouse(1, QEvent::MouseButtonRelease, QPoint(1, 1), Qt::RightButton, Qt::NoButton);
    ASSERT_EQ(views->ActiveWin, 1);
    ASSERT_EQ(Sel().SelPols.Count(), 1);
    views->SetToolMode(ToolMove);
    const QPoint from = onHandle(1, 2);
    drag(1, from, from + (handleDir(1, 2) * 40).toPoint(), 4);
    ASSERT_EQ(host.stack.Retrive()->ActionType, AT_ActionMoveGrpPols);
    const double rise = at(ring(topFace)[0])[2] - 50;
    EXPECT_GT(rise, 1);
    for (int pol = ZELMAR_group_get_first_polygon(box); pol; pol = ZELMAR_group_get_next_polygon(pol))
        for (int p : ring(pol)) {
            const P3 q = at(p);
            EXPECT_TRUE(std::abs(q[2] + 50) < 1e-9 || std::abs(q[2] - 50 - rise) < 1e-9)
                << "corner left behind";
        }
    const auto moved = snapshot(box);

    // Another polygon is selected since; undo moves the recorded one and leaves the selection alone.
    Sel().SelPols.Clear();
    Sel().SelPols.Append(ZELMAR_group_get_first_polygon(box));
    model->UpdateSelPolsRelatedPtsArray();
    model->ComputeSelPolsAvgCenter();
    const int otherSelected = Sel().SelPols[1];
    ASSERT_NE(otherSelected, topFace);
    ASSERT_TRUE(undo());
    expectSame(snapshot(box), before);
    EXPECT_EQ(Sel().SelPols.Count(), 1);
    EXPECT_EQ(Sel().SelPols[1], otherSelected);
    ASSERT_TRUE(redo());
    expectSame(snapshot(box), moved);
}

TEST_F(SubObjects, PointScaleAndRotateUndoExactly) {
    editGeometry(SelectMode::Point);
    // Three corners of the top face.
    const int top = ZELMAR_group_get_first_polygon(box);
    for (int p : ring(top))
        Sel().SelPts.Append(p);
    model->ComputeSelPtsAvgCenter();
    const auto before = snapshot(box);
    // The first face lies in x = 50: scale it along y, turn it about x.
    views->SetToolMode(ToolScale);
    QPoint from = onHandle(0, 1);
    drag(0, from, from + (handleDir(0, 1) * 40).toPoint(), 4);
    ASSERT_EQ(host.stack.Retrive()->ActionType, AT_ActionScaleGrpPoints);
    const auto scaled = snapshot(box);
    EXPECT_NE(scaled, before);

    views->SetToolMode(ToolRotate);
    from = onHandle(0, 0);
    drag(0, from, from + (handleDir(0, 0) * 30).toPoint(), 3);
    ASSERT_EQ(host.stack.Retrive()->ActionType, AT_ActionRotateGrpPoints);
    const auto turned = snapshot(box);

    ASSERT_TRUE(undo());
    expectSame(snapshot(box), scaled);
    ASSERT_TRUE(undo());
    expectSame(snapshot(box), before);
    ASSERT_TRUE(redo());
    ASSERT_TRUE(redo());
    expectSame(snapshot(box), turned);
}

TEST_F(SubObjects, RotationUndoWalksTheStepsBackwards) {
    // Turns about different axes do not commute: only the reverse order with negated amounts restores.
    editGeometry(SelectMode::Point);
    for (int p : ring(ZELMAR_group_get_first_polygon(box)))
        Sel().SelPts.Append(p);
    model->ComputeSelPtsAvgCenter();
    const auto before = snapshot(box);
    ActionRotateGrpPoints a;
    a.SetRotatedPtsToCurrSelPts();
    a.SetRotatedPtsParentGrp(box);
    a.AddRotation({30, 0, 0}, 0);
    a.AddRotation({0, 0, 50}, 2);
    a.AddRotation({0, -20, 0}, 1);
    ASSERT_EQ(a.Steps().size(), 3u);
    a.Redo();
    const auto turned = snapshot(box);
    // The same turns by hand, in order, about the pivot of the time.
    std::vector<int> pts = Sel().SelPts.ToVector();
    a.Undo();
    expectSame(snapshot(box), before);
    RotatePoints(pts, Sel().SelPtsAvgCenter, 30, 0);
    RotatePoints(pts, Sel().SelPtsAvgCenter, 50, 2);
    RotatePoints(pts, Sel().SelPtsAvgCenter, -20, 1);
    expectSame(snapshot(box), turned);
    a.Undo();
    expectSame(snapshot(box), before);
}

TEST_F(SubObjects, TrackPointActionsWorkByIndex) {
    const double pts[12] = {0, 0, 0, 100, 0, 0, 100, 100, 0, 0, 100, 0};
    const int track = ZELMAR_track_create("Track01", pts, 4, 1);
    ASSERT_NE(track, 0);
    Sel().CurrSelEntityType = 3;
    Sel().CurrSelEntity = track;
    Sel().SelTrackPts = {0, 1, 2};
    model->ComputeSelTrackPtsAvgCenter();
    auto point = [&](int i) {
        P3 p{};
        ZELMAR_track_get_point(track, i, p.data());
        return p;
    };
    ActionMoveTrkPts move;
    move.SetMovedTrkPtsToCurrSelTrkPts();
    move.SetFrmLoc({0, 0, 0});
    move.SetToLoc({0, 0, 25});
    move.Redo();
    EXPECT_EQ(point(1), (P3{100, 0, 25}));
    EXPECT_EQ(point(2), (P3{100, 100, 25}));
    EXPECT_EQ(point(0), (P3{0, 0, 0}));
    // The selection changed since: the recorded indices move back.
    Sel().SelTrackPts = {0, 3};
    move.Undo();
    EXPECT_EQ(point(1), (P3{100, 0, 0}));
    EXPECT_EQ(point(3), (P3{0, 100, 0}));

    Sel().SelTrackPts = {0, 1, 2};
    model->ComputeSelTrackPtsAvgCenter();
    ActionScaleTrkPts scale;
    scale.SetScaledTrkPtsToCurrSelPts();
    scale.SetScaleChng({1, 3, 1});
    scale.Redo();
    EXPECT_NEAR(point(1)[1], -100, 1e-9);
    EXPECT_NEAR(point(2)[1], 200, 1e-9);
    scale.Undo();
    EXPECT_NEAR(point(1)[1], 0, 1e-9);
    EXPECT_NEAR(point(2)[1], 100, 1e-9);

    ActionRotateTrkPts turn;
    turn.SetRotatedTrkPtsToCurrSelTrkPts();
    turn.AddRotation({0, 0, 90}, 2);
    turn.Redo();
    EXPECT_NEAR(point(1)[0], 150, 1e-9);
    EXPECT_NEAR(point(1)[1], 50, 1e-9);
    turn.Undo();
    EXPECT_NEAR(point(1)[0], 100, 1e-9);
    EXPECT_NEAR(point(1)[1], 0, 1e-9);
}

TEST_F(SubObjects, PointNamedTwiceMovesOnceAndScaleThroughZeroIsRefused) {
    editGeometry(SelectMode::Point);
    const int p = ring(ZELMAR_group_get_first_polygon(box))[0];
    const P3 start = at(p);
    MovePoints({p, p, 0}, {1, 2, 3});
    EXPECT_EQ(at(p), (P3{start[0] + 1, start[1] + 2, start[2] + 3}));
    EXPECT_EQ(InverseFactors({2, 0, -4}), (P3{0.5, 0, -0.25}));
    // The gizmo does not take a scale step that would flatten the selection.
    Sel().SelPts.Append(p);
    Sel().SelPts.Append(ring(ZELMAR_group_get_first_polygon(box))[2]);
    model->ComputeSelPtsAvgCenter();
    views->SetToolMode(ToolScale);
    TransformGizmo& g = gizmo(0);
    g.ActiveAxis = TransformGizmo::AxisX;
    g.Dragging = true;
    const auto before = snapshot(box);
    g.ChangeScale(-40); // factor 1 - 1 = 0
    expectSame(snapshot(box), before);
    g.ChangeScale(-20); // factor 0.5
    EXPECT_NE(snapshot(box), before);
    EXPECT_DOUBLE_EQ(g.TotalScale[0], 0.5);
    g.Dragging = false;
}

} // namespace
