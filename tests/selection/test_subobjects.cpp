// Points, polygons and track points picked in the Edit Group tab and on a track: the click box, the
// occurrence-aligned polygon array, back faces, select all and invert, and what each pushes.
#include "SelTestSupport.h"

#include "selection/WeldedPoints.h"

using namespace vexil;
using namespace vexil::test;

namespace {

constexpr int Right = 3;

class SubObjects : public SelFixture {
  protected:
    void SetUp() override {
        SelFixture::SetUp();
        // Two quads side by side in the plane y = 0, below the boxes: their shared edge has coincident
        // points.
        d = makeGroup("Sheet", world.root);
        q1 = quad(-100, 0);
        q2 = quad(0, 100);
        doc->PopulateTrees();
        host.tab = 1;
    }
    int quad(double x0, double x1) {
        const int p = ZELMAR_polygon_create();
        const double v[4][3] = {{x0, 0, -300}, {x1, 0, -300}, {x1, 0, -200}, {x0, 0, -200}};
        for (auto& c : v) {
            const double vert[6] = {c[0], c[1], c[2], 0, 0, 100};
            ZELMAR_polygon_add_point(p, vert);
        }
        ZELMAR_polygon_set_group(p, d);
        ZELMAR_engine_add_polygon(p);
        return p;
    }
    std::vector<int> pointsOf(int pol) {
        std::vector<int> pts;
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt; pt = ZELMAR_point_get_next_point(pt))
            pts.push_back(pt);
        return pts;
    }
    void current(int g) {
        model->SelectEntityFromTree(1, g);
        host.stack->Reset();
    }
    int d = 0, q1 = 0, q2 = 0;
};

TEST_F(SubObjects, TwoCoincidentPointsInTheClickBoxAreBothTaken) {
    current(d);
    host.mode = SelectMode::Point;
    click(Right, pixelOf(Right, {0, 0, -300}));
    ASSERT_EQ(sel().SelPts.Count(), 2);
    EXPECT_EQ(sel().SelPts[1], pointsOf(q1)[1]);
    EXPECT_EQ(sel().SelPts[2], pointsOf(q2)[0]);
    // One owning polygon per selected point occurrence.
    EXPECT_EQ(sel().SelPtsPols.ToVector(), (std::vector<int>{q1, q2}));
    EXPECT_DOUBLE_EQ(sel().SelPtsAvgCenter[2], -300);
    EXPECT_EQ(sel().PtNearestToAvgCenter, sel().SelPts[1]); // the first of equal distances
    EXPECT_EQ(pushes(), 1);
    undo();
    EXPECT_EQ(sel().SelPts.Count(), 0);
    redo();
    EXPECT_EQ(sel().SelPts.Count(), 2);
}

TEST_F(SubObjects, ShiftOnEmptySpaceStillPushesForPoints) {
    current(d);
    host.mode = SelectMode::Point;
    click(Right, pixelOf(Right, {100, 0, -200}));
    ASSERT_EQ(sel().SelPts.Count(), 1);
    withKey(Qt::Key_Shift, [&] { click(Right, {20, 20}); });
    EXPECT_EQ(sel().SelPts.Count(), 1);
    EXPECT_EQ(pushes(), 2);
    withKey(Qt::Key_Control, [&] { click(Right, pixelOf(Right, {-100, 0, -200})); });
    EXPECT_EQ(sel().SelPts.Count(), 2);
    withKey(Qt::Key_Control, [&] { click(Right, pixelOf(Right, {-100, 0, -200})); }); // already in: not twice
    EXPECT_EQ(sel().SelPts.Count(), 2);
    withKey(Qt::Key_Shift, [&] { click(Right, pixelOf(Right, {100, 0, -200})); });
    ASSERT_EQ(sel().SelPts.Count(), 1);
    EXPECT_EQ(sel().SelPts[1], pointsOf(q1)[3]);
}

TEST_F(SubObjects, PointsRespondOnlyToAGroupInPointMode) {
    host.mode = SelectMode::Point;
    click(Right, pixelOf(Right, {0, 0, -300})); // nothing current
    EXPECT_EQ(sel().SelPts.Count(), 0);
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    EXPECT_EQ(pushes(), 0);
}

TEST_F(SubObjects, BackFacesAreLeftOutOfABandWhenAsked) {
    current(world.a);
    host.mode = SelectMode::Point;
    const QPoint c = pixelOf(Right, {-250, 0, 0});
    band(Right, c - QPoint(60, 60), c + QPoint(60, 60));
    const int all = sel().SelPts.Count();
    EXPECT_EQ(all, 24);
    // The owners found by the scan are those a walk of the group finds.
    const std::vector<int> owners = sel().SelPtsPols.ToVector();
    model->UpdateSelPtsPolArray();
    EXPECT_EQ(sel().SelPtsPols.ToVector(), owners);
    host.ignoreBackPts = true;
    band(Right, c - QPoint(60, 60), c + QPoint(60, 60));
    EXPECT_GT(sel().SelPts.Count(), 0);
    EXPECT_LT(sel().SelPts.Count(), all);
}

TEST_F(SubObjects, SelectAllAndInvertPointsKeepThePolygonArrayInStep) {
    current(world.a);
    host.mode = SelectMode::Point;
    model->mnuSelectAll_Click();
    EXPECT_EQ(sel().SelPts.Count(), 24);
    EXPECT_EQ(sel().SelPtsPols.Count(), 24);
    Sel().SelPts.Assign(pointsOf(world.aPols[0]));
    model->UpdateSelPtsPolArray();
    EXPECT_EQ(sel().SelPtsPols.ToVector(), std::vector<int>(4, world.aPols[0]));
    model->mnuSelectInvert_Click();
    EXPECT_EQ(sel().SelPts.Count(), 20);
    EXPECT_FALSE(sel().SelPts.Contains(pointsOf(world.aPols[0])[0]));
    EXPECT_EQ(sel().SelPtsPols.Count(), 20);
    undo();
    EXPECT_EQ(sel().SelPts.Count(), 4);
    // A point that stands twice brings its polygon twice.
    Sel().SelPts.Append(pointsOf(world.aPols[0])[0]);
    model->UpdateSelPtsPolArray();
    EXPECT_EQ(sel().SelPtsPols.Count(), 5);
}

TEST_F(SubObjects, APolygonClickPassesThroughNothingAndABandTakesTheSubtree) {
    current(world.b);
    host.mode = SelectMode::Polygon;
    click(Right, pixelOf(Right, {250, 0, 0}));
    ASSERT_EQ(sel().SelPols.Count(), 1);
    const int face = sel().SelPols[1];
    EXPECT_NE(std::find(world.bPols.begin(), world.bPols.end(), face), world.bPols.end());
    withKey(Qt::Key_Control, [&] { click(Right, pixelOf(Right, {250, 0, 150})); }); // the child's face
    ASSERT_EQ(sel().SelPols.Count(), 2);
    EXPECT_NE(std::find(world.cPols.begin(), world.cPols.end(), sel().SelPols[2]), world.cPols.end());
    click(Right, pixelOf(Right, {-250, 0, 0})); // another group's polygon: a miss
    EXPECT_EQ(sel().SelPols.Count(), 0);
    const QPoint c = pixelOf(Right, {250, 0, 60});
    band(Right, c - QPoint(80, 100), c + QPoint(80, 100));
    EXPECT_EQ(sel().SelPols.Count(), 12);
    host.ignoreBackPols = true;
    band(Right, c - QPoint(80, 100), c + QPoint(80, 100));
    EXPECT_LT(sel().SelPols.Count(), 12);
    EXPECT_EQ(pushes(), 5);
    // Outside the Edit Group tab nothing is taken.
    host.tab = 0;
    click(Right, pixelOf(Right, {250, 0, 0}));
    EXPECT_EQ(pushes(), 5);
}

TEST_F(SubObjects, AClickTakesABackFacingPolygonThatTheEngineShowsAndABandDoesNot) {
    // The sheet is seen from both sides; make its first quad face away from the Right view's camera.
    double plane[4], eye[3];
    ZELMAR_polygon_get_plane(q1, plane);
    ZELMAR_camera_get_location(views->ViewCams(Right).CamHandle, eye);
    if (ZELMAR_math_get_plane_point_relations(plane, eye, 0.0) != 2) {
        ZELMAR_polygon_set_group(q1, 0);
        const int p = ZELMAR_polygon_create();
        const double v[4][3] = {{-100, 0, -200}, {0, 0, -200}, {0, 0, -300}, {-100, 0, -300}};
        for (auto& c : v) {
            const double vert[6] = {c[0], c[1], c[2], 0, 0, 100};
            ZELMAR_polygon_add_point(p, vert);
        }
        ZELMAR_polygon_set_group(p, d);
        ZELMAR_engine_add_polygon(p);
        q1 = p;
        ZELMAR_polygon_get_plane(q1, plane);
        ASSERT_EQ(ZELMAR_math_get_plane_point_relations(plane, eye, 0.0), 2);
    }
    current(d);
    host.mode = SelectMode::Polygon;
    host.ignoreBackPols = true;
    const QPoint c = pixelOf(Right, {-50, 0, -250});
    click(Right, c);
    ASSERT_EQ(sel().SelPols.Count(), 1);
    EXPECT_EQ(sel().SelPols[1], q1);
    // A band over the quad's outer corners only (its inner ones are the neighbour's too).
    const QPoint lo = pixelOf(Right, {-100, 0, -300}), hi = pixelOf(Right, {-100, 0, -200});
    const QRect outer = QRect(lo, hi).normalized().adjusted(-4, -4, 4, 4);
    band(Right, outer.topLeft(), outer.bottomRight());
    EXPECT_EQ(sel().SelPols.Count(), 0);
    host.ignoreBackPols = false;
    band(Right, outer.topLeft(), outer.bottomRight());
    ASSERT_EQ(sel().SelPols.Count(), 1);
    EXPECT_EQ(sel().SelPols[1], q1);
}

TEST_F(SubObjects, TheWeldedSetsOfSelectedPolygonsAppearOnce) {
    current(d);
    WeldTable().Clear();
    WeldTable().EnterGroup(d);
    Sel().SelPols.Assign({q1, q2});
    model->UpdateSelPolsRelatedPtsArray();
    EXPECT_EQ(sel().SelPolsWeldedPts.Count(), 6); // eight points, two pairs welded
    model->ComputeSelPolsAvgCenter();
    EXPECT_DOUBLE_EQ(sel().SelPolsAvgCenter[0], 0);
    WeldTable().Clear();
}

TEST_F(SubObjects, TrackPointsAreTakenAddedAndRemovedByIndex) {
    const double pts[9] = {-200, 0, -100, 0, 0, -100, 200, 0, -100};
    const int track = ZELMAR_track_create("Track01", pts, 3, 0);
    Sel().CurrSelEntityType = 3;
    Sel().CurrSelEntity = track;
    host.mode = SelectMode::TrackPoint;
    click(Right, pixelOf(Right, {0, 0, -100}));
    EXPECT_EQ(sel().SelTrackPts, (std::vector<int>{0, 1}));
    withKey(Qt::Key_Control, [&] { click(Right, pixelOf(Right, {200, 0, -100})); });
    EXPECT_EQ(sel().SelTrackPts, (std::vector<int>{0, 1, 2}));
    EXPECT_DOUBLE_EQ(sel().SelTrackPtsAvgCenter[0], 100);
    withKey(Qt::Key_Shift, [&] { click(Right, pixelOf(Right, {0, 0, -100})); });
    EXPECT_EQ(sel().SelTrackPts, (std::vector<int>{0, 2}));
    EXPECT_EQ(pushes(), 3);
    undo();
    EXPECT_EQ(sel().SelTrackPts, (std::vector<int>{0, 1, 2}));
}

} // namespace
