// Extrude, bevel and cut: the gesture's rules and its one undo step.
#include "undo_property/UndoPropertyFixture.h"

#include "modelling/ExtrudeActions.h"
#include "modelling/mdlCutPols.h"
#include "modelling/mdlExtrude.h"

namespace vexil::test {
namespace {

class Gestures : public UndoPropertyFixture {
  protected:
    int sides(int g) {
        int n = 0;
        for (int p : PolygonsOf(g))
            if (EntityName(p) == "Extruded Pol") ++n;
        return n;
    }
    void extrude(std::initializer_list<double> values) {
        mdlExtrude& x = mdlExtrude::Instance();
        x.updwnExtBvl_MouseDown(0);
        double last = 0;
        for (double v : values)
            x.updwnExtBvl_Change(0, last = v);
        x.updwnExtBvl_MouseUp(0, last);
    }
};

TEST_F(Gestures, TwoAdjacentQuadsGiveSixSidesWhicheverWayTheSharedEdgeRuns) {
    Edit(grid, SelectMode::Polygon);
    const std::vector<int> pols = PolygonsOf(grid);
    SelectPolygons({pols[0], pols[1]}); // neighbours along y: the shared edge runs opposite ways
    extrude({10});
    EXPECT_EQ(6, sides(grid));
    undo();
    EXPECT_EQ(0, sides(grid));
    // Turn one over: the shared edge now runs the same way in both.
    ZELMAR_polygon_flip_visible_side(pols[1]);
    Edit(grid, SelectMode::Polygon);
    SelectPolygons({pols[0], pols[1]});
    EXPECT_EQ(6u, CollectBoundaryEdges({pols[0], pols[1]}).size());
}

TEST_F(Gestures, PressAndReleaseWithoutChangeAddsSidesAMillionthHighAsOneStep) {
    Edit(grid, SelectMode::Polygon);
    const int p = PolygonsOf(grid)[4];
    SelectPolygons({p});
    const QByteArray before = Saved();
    const int changes = Changes();
    extrude({});
    EXPECT_EQ(changes + 1, Changes());
    EXPECT_EQ(4, sides(grid));
    double c[3];
    ZELMAR_polygon_get_center(p, c);
    EXPECT_NEAR(-120 + 0.000001, c[2], 1e-12); // the grid faces +z
    extrude({5, 12.5});
    ZELMAR_polygon_get_center(p, c);
    EXPECT_NEAR(-120 + 0.000002 + 12.5, c[2], 1e-9); // absolute: the last value counts
    EXPECT_EQ(8, sides(grid));
    undo();
    undo();
    EXPECT_TRUE(Saved() == before);
}

TEST_F(Gestures, BothFacesOfASheetHaveNoNormalToExtrudeAlong) {
    Edit(grid, SelectMode::Polygon);
    const std::vector<int> pols = PolygonsOf(grid);
    // A copy turned over lies on the first: together their normals cancel.
    const int back = ZELMAR_polygon_duplicate(pols[0]);
    ZELMAR_polygon_flip_visible_side(back);
    SelectPolygons({pols[0], back});
    const int changes = Changes();
    extrude({10});
    EXPECT_EQ(GetLocaleString(613), dlg->last("msgBox")->text);
    EXPECT_EQ(0, sides(grid));
    EXPECT_EQ(changes + 1, Changes()); // the gesture still yields its action
    undo();
}

TEST_F(Gestures, BevelIsAbsoluteAndZeroDoesNothing) {
    Edit(grid, SelectMode::Polygon);
    SelectPolygons({PolygonsOf(grid)[4]});
    const QByteArray before = Saved();
    const int changes = Changes();
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(1);
    x.updwnExtBvl_Change(1, 0.5);
    x.updwnExtBvl_Change(1, 0.0); // ignored
    x.updwnExtBvl_Change(1, 1.0);
    x.updwnExtBvl_MouseUp(1, 1.0);
    EXPECT_TRUE(Saved() == before);
    EXPECT_EQ(changes, Changes()); // back where it started: nothing to undo
    x.updwnExtBvl_MouseDown(1);
    x.updwnExtBvl_Change(1, 0.5);
    x.updwnExtBvl_MouseUp(1, 0.5);
    EXPECT_EQ(changes + 1, Changes());
    double plane[4];
    undo();
    EXPECT_TRUE(Saved() == before);
    redo();
    ZELMAR_polygon_get_plane(PolygonsOf(grid)[4], plane);
    EXPECT_NEAR(1.0, plane[2], 1e-12);
}

TEST_F(Gestures, ACutSplitsTheSelectionAndUndoRedoKeepTheHandles) {
    Edit(grid, SelectMode::Polygon);
    const std::vector<int> pols = PolygonsOf(grid);
    SelectPolygons({pols[0], pols[3]}); // two quads side by side along x
    views->ActiveWin = 0;
    std::array<double, 3> a{}, b{};
    double c0[3], c1[3];
    ZELMAR_polygon_get_center(pols[0], c0);
    ZELMAR_polygon_get_center(pols[3], c1);
    a = {c0[0] - 30, c0[1], c0[2]};
    b = {c1[0] + 30, c1[1], c1[2]};
    bool inA = false, inB = false;
    const QPoint pa = pixelOf(0, a, &inA), pb = pixelOf(0, b, &inB);
    ASSERT_TRUE(inA && inB);
    mdlCutPols& cut = mdlCutPols::Instance();
    const int changes = Changes();
    // A line that misses: nothing.
    cut.CutMouseDown(2, 2);
    cut.CutMouseUp(3, 3);
    EXPECT_EQ(changes, Changes());
    cut.CutMouseDown(pa.x(), pa.y());
    cut.CutMouseMove(pb.x(), pb.y());
    std::array<unsigned, 4> paints{};
    for (int i = 0; i < 4; ++i)
        paints[size_t(i)] = views->PaintCount(i);
    cut.CutMouseUp(pb.x(), pb.y());
    ASSERT_EQ(changes + 1, Changes());
    // The active view shows the cut at once, the others at the next turn of the event loop, once each,
    // and the active view's camera is current again after them.
    EXPECT_EQ(paints[0] + 1, views->PaintCount(0));
    for (int i = 1; i < 4; ++i)
        EXPECT_EQ(paints[size_t(i)], views->PaintCount(i));
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(paints[size_t(i)] + 1, views->PaintCount(i)) << "view " << i;
    EXPECT_EQ(0u, views->DeferredViews());
    EXPECT_EQ(views->ViewCams(0).CamHandle, ZELMAR_camera_get_current());
    const std::vector<int> halves = Sel().SelPols.ToVector();
    EXPECT_EQ(4u, halves.size());
    for (int h : halves) {
        EXPECT_EQ("Cut_Poly", EntityName(h));
        EXPECT_EQ(1, ZELMAR_polygon_is_valid(h));
    }
    EXPECT_EQ(0, ZELMAR_polygon_get_group(pols[0]));
    undo();
    EXPECT_EQ(pols, PolygonsOf(grid));
    redo();
    EXPECT_EQ(halves, Sel().SelPols.ToVector());
    for (int h : halves)
        EXPECT_EQ(grid, ZELMAR_polygon_get_group(h));
}

// A live step bounds the group from the moved sets and the points it kept at the press: the box must be the
// one the engine answers, on a group turned off the world's axes, after extrude and bevel steps.
TEST_F(Gestures, TheLiveBoxIsTheGroupsBox) {
    const double turn[3] = {10, 25, -40};
    ZELMAR_group_rotate(grid, turn, 0);
    Edit(grid, SelectMode::Polygon);
    SelectPolygons({PolygonsOf(grid)[4], PolygonsOf(grid)[5]});
    auto expectEngineBox = [&](const char* when) {
        const auto live = views->SelectionBox().Corners();
        BoundingBox engine;
        engine.Initialize(grid);
        for (size_t i = 0; i < 8; ++i)
            for (size_t k = 0; k < 3; ++k)
                EXPECT_NEAR(engine.Corners()[i][k], live[i][k], 1e-9) << when << " corner " << i;
    };
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(0);
    for (double v : {40.0, -300.0, 15.0}) {
        x.updwnExtBvl_Change(0, v);
        expectEngineBox("extrude");
    }
    x.updwnExtBvl_MouseUp(0, 15.0);
    x.updwnExtBvl_MouseDown(1);
    for (double v : {3.0, 0.25, -2.0}) {
        x.updwnExtBvl_Change(1, v);
        expectEngineBox("bevel");
    }
    x.updwnExtBvl_MouseUp(1, -2.0);
}

// A bevel step checks again only the polygons whose validity it can change: a rigid polygon keeps its answer
// while it stays at least 1 across (the planarity tolerance is relative from there). Two slightly warped
// quads: a small valid one that scaling up makes invalid, a large invalid one that scaling down makes valid.
TEST_F(Gestures, ABevelStepCountsTheInvalidPolygonsItMakes) {
    const int g = makeGroup("Warped", world.root);
    auto quad = [&](double x0, double size, double lift) {
        const int p = ZELMAR_polygon_create();
        const double c[4][3] = {{x0, 0, 0}, {x0, size, 0}, {x0 + size, size, 0}, {x0 + size, 0, lift}};
        for (const auto& k : c) {
            const double v[6] = {k[0], k[1], k[2], 0, 0, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        return p;
    };
    const int small = quad(0, 0.5, 3.2e-6), large = quad(10, 4, 24e-6);
    ASSERT_EQ(1, ZELMAR_polygon_is_valid(small));
    ASSERT_EQ(0, ZELMAR_polygon_is_valid(large));
    Edit(g, SelectMode::Polygon);
    SelectPolygons({small, large});
    const int both[2] = {small, large};
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(1);
    x.updwnExtBvl_Change(1, 3.0);
    EXPECT_EQ(0, ZELMAR_polygon_is_valid(small));
    EXPECT_EQ(2, host.invalidShown);
    x.updwnExtBvl_Change(1, 0.1);
    EXPECT_EQ(1, ZELMAR_polygon_is_valid(large));
    EXPECT_EQ(ZELMAR_polygons_count_invalid(both, 2), host.invalidShown);
    EXPECT_EQ(0, host.invalidShown);
    x.updwnExtBvl_MouseUp(1, 0.1);
}

} // namespace
} // namespace vexil::test
