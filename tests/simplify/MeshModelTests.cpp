// the simplification mesh, the mesh model: sharing of points and edges, the octant centre, last-bit
// differences, sides of three triangles, walks at the ends, empty and one-triangle groups, the
// first three points of a polygon, the third corner's brightness, the copy for restarting.
// Each case runs on the production and on the literal reference, and their models are compared.
#include "Harness.h"
#include "MeshMaker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace simplify_test;

namespace {

struct Corner {
    double c[9];
    Corner(double x, double y, double z, double u = 0, double v = 0, double b = 100) : c{x, y, z, u, v, b, 0, 0, 1} {}
};

// Adds the same triangle to both models.
struct Both {
    MemoryEngine e1, e2;
    simplify::SurfSimpli prod{&e1};
    simplify_ref::RefSurfSimpli ref{&e2};
    void add(const Corner& a, const Corner& b, const Corner& c, int bitmap = 0, double brightness = 100) {
        const double plane[4] = {0, 0, 1, 0};
        const int color[3] = {1, 2, 3};
        prod.AddTriangle(a.c, b.c, c.c, plane, bitmap, brightness, color);
        ref.AddTriangle(a.c, b.c, c.c, plane, bitmap, brightness, color);
    }
    void centre(double x, double y, double z) {
        const double c[3] = {x, y, z};
        prod.SetOctantCentre(c);
        for (int k = 0; k < 3; ++k) ref.OctantCentre[k] = c[k];
    }
    void same() { ASSERT_EQ(compareModels(prod, ref), ""); }
};

TEST(MeshModel, ExactCopiesShareTwoPointsAndOneEdge) {
    Both m;
    // two triangles with a common side, each from its own copy of the coordinates
    m.add({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    m.add({1, 0, 0}, {0, 1, 0}, {1, 1, 0});
    m.same();
    EXPECT_EQ(m.prod.PointCount(), 4);
    EXPECT_EQ(m.prod.EdgeCount(), 5);
    const simplify::SimpEdge& shared = m.prod.Edge(m.prod.Tri(1).Edges[1]);
    EXPECT_EQ(shared.NumAssTris(), 2);
    EXPECT_EQ(m.prod.Tri(2).Edges[0], m.prod.Tri(1).Edges[1]);
    // PtA/PtB in the order of the first triangle that named the edge
    EXPECT_EQ(shared.PtA, m.prod.Tri(1).Pts[1]);
    EXPECT_EQ(shared.PtB, m.prod.Tri(1).Pts[2]);
    EXPECT_EQ(m.ref.Edges[static_cast<std::size_t>(m.ref.Tris[1].Edges[2])].NumAssTris, 2);
}

TEST(MeshModel, PointOnTheOctantCentreGoesToTheNotLessSideAndMatchesItself) {
    Both m;
    m.centre(0.5, 0.5, 0.5);
    m.add({0.5, 0.2, 0.2}, {1, 0, 0}, {0, 1, 0});
    m.add({0.5, 0.2, 0.2}, {0, 1, 0}, {-1, 0, 0});
    m.same();
    EXPECT_EQ(m.prod.PointCount(), 4);
    EXPECT_EQ(m.prod.Point(1).NumAssTris(), 2);
    // x equal to the centre's is "not less": octant bit 1 set; y and z are less
    ASSERT_EQ(m.prod.OctantBucket(1).size(), 2u); // (0.5, 0.2, 0.2) and (1, 0, 0)
    EXPECT_EQ(m.prod.OctantBucket(1)[0].Point, 1);
    EXPECT_EQ(m.ref.OctantCount[1], 2);
    EXPECT_EQ(m.ref.OctantBuckets[1][1].Point, 1);
}

TEST(MeshModel, LastBitDifferencesMakeSeparatePointsAndNoSharedEdge) {
    Both m;
    const double x = std::nextafter(1.0, 2.0);
    m.add({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    m.add({x, 0, 0}, {0, 1, 0}, {1, 1, 0});
    m.same();
    EXPECT_EQ(m.prod.PointCount(), 5);
    EXPECT_EQ(m.prod.EdgeCount(), 6);
    for (int e = 1; e <= m.prod.EdgeCount(); ++e) EXPECT_EQ(m.prod.Edge(e).NumAssTris(), 1) << e;
}

TEST(MeshModel, NegativeZeroIsTheSamePointAndNaNNeverMatches) {
    Both m;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    m.add({0.0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    m.add({-0.0, 0, 0}, {0, 1, 0}, {-1, 0, 0});
    m.add({nan, 5, 5}, {nan, 5, 5}, {1, 0, 0});
    m.same();
    EXPECT_EQ(m.prod.Point(1).NumAssTris(), 2);
    EXPECT_EQ(m.prod.PointCount(), 6); // 4 + two NaN corners, each its own point
}

TEST(MeshModel, SideOfThreeTrianglesIsOneEdgeWithThree) {
    Both m;
    m.add({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    m.add({0, 0, 0}, {1, 0, 0}, {0, -1, 0});
    m.add({1, 0, 0}, {0, 0, 0}, {0, 0, 1});
    m.same();
    EXPECT_EQ(m.prod.Edge(1).NumAssTris(), 3);
    EXPECT_EQ(m.prod.Edge(1).AssTris, (std::vector<std::int32_t>{1, 2, 3}));
    EXPECT_EQ(m.prod.Point(1).NumAssEdges(), 4);
}

TEST(MeshModel, DegenerateTriangleListsItsPointTwice) {
    Both m;
    m.add({0, 0, 0}, {0, 0, 0}, {1, 0, 0});
    m.same();
    EXPECT_EQ(m.prod.PointCount(), 2);
    EXPECT_EQ(m.prod.Point(1).AssTris, (std::vector<std::int32_t>{1, 1}));
    EXPECT_EQ(m.prod.Edge(1).PtA, m.prod.Edge(1).PtB);
}

TEST(MeshModel, LastTriangleNamingAPointDecidesItsBrightnessAndNormal) {
    Both m;
    m.add({0, 0, 0, 0, 0, 10}, {1, 0, 0}, {0, 1, 0});
    m.add({0, 0, 0, 0, 0, 20}, {0, 1, 0}, {-1, 0, 0});
    m.same();
    EXPECT_EQ(m.prod.Point(1).VertBrightness, 20);
}

TEST(MeshModel, WalksStopAtTheEndsAndKeepTheirCursor) {
    PairRun run(makeGrid(3, 2));
    Step st;
    st.target = 8;
    ASSERT_EQ(run.step(st), ""); // some triangles are gone now
    simplify::SurfSimpli& s = run.prod;
    simplify_ref::RefSurfSimpli& r = run.ref;
    std::vector<int> valid;
    for (int t = s.GetFirstValidTri(); t != 0; t = s.GetNextValidTri()) valid.push_back(t);
    ASSERT_EQ(static_cast<int>(valid.size()), s.TriCurrent());
    EXPECT_EQ(s.GetNextValidTri(), 0);
    EXPECT_EQ(s.TriCursor(), valid.back()); // the cursor stays on the last valid triangle
    EXPECT_EQ(s.GetPrevValidTri(), valid[valid.size() - 2]);
    // the reference walks the same
    std::vector<int> refValid;
    for (int t = r.GetFirstValidTri(); t != 0; t = r.GetNextValidTri()) refValid.push_back(t);
    EXPECT_EQ(valid, refValid);
    EXPECT_EQ(r.GetNextValidTri(), 0);
    EXPECT_EQ(r.GetPrevValidTri(), valid[valid.size() - 2]);
    // backwards to the front: 0 at the start, cursor on the first
    while (s.GetPrevValidTri() != 0) {
    }
    EXPECT_EQ(s.TriCursor(), valid.front());
    // edges and points
    std::vector<int> e1, e2, p1, p2;
    for (int e = s.GetFirstValidEdge(); e != 0; e = s.GetNextValidEdge()) e1.push_back(e);
    for (int e = r.GetFirstValidEdge(); e != 0; e = r.GetNextValidEdge()) e2.push_back(e);
    for (int p = s.GetFirstValidPt(); p != 0; p = s.GetNextValidPt()) p1.push_back(p);
    for (int p = r.GetFirstValidPt(); p != 0; p = r.GetNextValidPt()) p2.push_back(p);
    EXPECT_EQ(e1, e2);
    EXPECT_EQ(p1, p2);
    EXPECT_EQ(s.GetPrevValidEdge(), e1[e1.size() - 2]);
    EXPECT_EQ(s.GetPrevValidPt(), p1[p1.size() - 2]);
    for (int e : e1) EXPECT_EQ(s.GetEdgCost(e), r.GetEdgCost(e));
}

TEST(MeshModel, EmptyGroupGivesAnEmptyModel) {
    PairRun run(MeshData{});
    Step st;
    st.target = 0;
    StepResult res;
    ASSERT_EQ(run.step(st, &res), "");
    simplify::SurfSimpli& s = run.prod;
    EXPECT_EQ(s.GetFirstValidTri(), 0);
    EXPECT_EQ(s.GetFirstValidEdge(), 0);
    EXPECT_EQ(s.GetFirstValidPt(), 0);
    EXPECT_EQ(s.TriTotal(), 0);
    EXPECT_TRUE(res.output.empty());
    EXPECT_NE(std::find(res.events.begin(), res.events.end(), "message Can't simplify further!"), res.events.end());
}

TEST(MeshModel, GroupOfOneTriangle) {
    PairRun run(makeOneTriangle());
    Step st;
    st.target = 1;
    StepResult res;
    ASSERT_EQ(run.step(st, &res), "");
    const simplify::SurfSimpli& s = run.prod;
    EXPECT_EQ(s.PointCount(), 3);
    EXPECT_EQ(s.EdgeCount(), 3);
    for (int e = 1; e <= 3; ++e) EXPECT_EQ(s.Edge(e).NumAssTris(), 1);
    ASSERT_EQ(res.output.size(), 1u);
    // the third corner's brightness is the triangle's (70.5 rounds half to even: 70), the
    // polygon's own 99 is read and dropped; each corner carries its vertex brightness
    EXPECT_EQ(s.Tri(1).TriBrightness, 70.5);
    EXPECT_EQ(res.output[0].brightness, 70.0);
    EXPECT_EQ(res.output[0].values[5], 10.0);
    EXPECT_EQ(res.output[0].values[11], 20.0);
    EXPECT_EQ(res.output[0].values[17], 70.5);
    EXPECT_EQ(res.output[0].color[0], 10);
    EXPECT_EQ(res.output[0].color[2], 30);
    // every side is a border; the mesh can shrink to nothing
    st.target = 0;
    st.forceRestart = false;
    ASSERT_EQ(run.step(st, &res), "");
    EXPECT_EQ(run.prod.TriCurrent(), 0);
    EXPECT_TRUE(res.output.empty());
}

TEST(MeshModel, FourPointPolygonUsesItsFirstThreePoints) {
    PairRun run(makeQuad());
    Step st;
    st.target = 1;
    StepResult res;
    ASSERT_EQ(run.step(st, &res), "");
    EXPECT_EQ(run.prod.TriCount(), 1);
    EXPECT_EQ(run.prod.PointCount(), 3);
    ASSERT_EQ(res.output.size(), 1u);
    ASSERT_EQ(res.output[0].values.size(), 18u);
    EXPECT_EQ(res.output[0].values[12], 1.0); // third corner (1, 1, 0)
    EXPECT_EQ(res.output[0].values[13], 1.0);
}

TEST(MeshModel, RestoreGivesBackTheModelAsExtractedAndLeavesTheSelection) {
    PairRun run(makeCube(2, 0.2, 3));
    Step st;
    st.target = static_cast<int>(run.prod.TriTotal()); // nothing yet
    st.target = 1000;
    ASSERT_EQ(run.step(st), "");
    simplify::SurfSimpli& s = run.prod;
    const int points = s.PointCount();
    std::vector<double> coords;
    for (int p = 1; p <= points; ++p)
        for (int k = 0; k < 3; ++k) coords.push_back(s.Point(p).Coords[k]);
    st.target = 6;
    st.forceRestart = false;
    ASSERT_EQ(run.step(st), "");
    s.SetSelectedPts({3, 4});
    s.RestoreGeomFromCopy();
    run.ref.RestoreGeomFromCopy();
    EXPECT_EQ(s.SelectedPts(), (std::vector<std::int32_t>{3, 4}));
    for (int p = 1; p <= points; ++p) {
        EXPECT_TRUE(s.Point(p).Valid);
        for (int k = 0; k < 3; ++k) EXPECT_EQ(s.Point(p).Coords[k], coords[static_cast<std::size_t>((p - 1) * 3 + k)]);
    }
    for (int t = 1; t <= s.TriCount(); ++t) EXPECT_TRUE(s.Tri(t).Valid);
    EXPECT_EQ(compareModels(s, run.ref), "");
}

// A fresh model finds edges through its points' lists; after a restore, through the index made
// from the edges. Triangles added then, on points found by their first positions and on new
// points, must find and make the edges the scan of the reference does.
TEST(MeshModel, TrianglesAddedAfterARestoreFindTheScansEdges) {
    const MeshData cube = makeCube(2, 0.2, 3);
    PairRun run(cube);
    Step st;
    st.target = 14;
    ASSERT_EQ(run.step(st), "");
    run.prod.RestoreGeomFromCopy();
    run.ref.RestoreGeomFromCopy();
    auto addFace = [&](std::size_t f, double lift) {
        const MeshFace& face = cube.faces[f];
        double c[3][9];
        for (int k = 0; k < 3; ++k) {
            const MeshVertex& v = cube.vertices[static_cast<std::size_t>(face.v[static_cast<std::size_t>(k)])];
            const double corner[9] = {v.xyz[0], v.xyz[1], v.xyz[2] + (k == 2 ? lift : 0.0), 0, 0, 100, 0, 0, 1};
            std::copy(corner, corner + 9, c[k]);
        }
        const double plane[4] = {0, 0, 1, 0};
        const int color[3] = {1, 2, 3};
        run.prod.AddTriangle(c[0], c[1], c[2], plane, 0, 100, color);
        run.ref.AddTriangle(c[0], c[1], c[2], plane, 0, 100, color);
    };
    const int edges = run.prod.EdgeCount();
    for (std::size_t f = 0; f < cube.faces.size(); f += 5) addFace(f, 0.0); // old points, old edges
    addFace(1, 0.75);                                                        // a new third corner
    addFace(3, -0.5);
    EXPECT_EQ(compareModels(run.prod, run.ref), "");
    EXPECT_EQ(run.prod.EdgeCount(), edges + 4);
}

TEST(MeshModel, ResetEmptiesTheModelButNotTheSelection) {
    PairRun run(makeGrid(2, 2));
    Step st;
    st.target = 4;
    ASSERT_EQ(run.step(st), "");
    simplify::SurfSimpli& s = run.prod;
    s.SetSelectedPts({1});
    s.Reset();
    EXPECT_EQ(s.PointCount(), 0);
    EXPECT_EQ(s.EdgeCount(), 0);
    EXPECT_EQ(s.TriCount(), 0);
    EXPECT_EQ(s.MinEdge(), -1);
    EXPECT_EQ(s.MinCost(), 0.0);
    EXPECT_EQ(s.OutputCursor(), 1);
    EXPECT_EQ(s.TriCurrent(), 0);
    EXPECT_EQ(s.SourceGroup(), 0);
    EXPECT_FALSE(s.ContinueRun());
    EXPECT_EQ(s.SelectedPts(), (std::vector<std::int32_t>{1}));
    EXPECT_EQ(s.OctantBucket(0).size(), 0u);
}

TEST(MeshModel, OutputWalkGivesEveryValidTriangleOnce) {
    PairRun run(makeColorGrid(4, 4, 0.3, 2));
    Step st;
    st.target = 12;
    StepResult res;
    ASSERT_EQ(run.step(st, &res), "");
    double c1[9], c2[9], c3[9];
    int bitmap, color[3];
    double brightness;
    int n = 0;
    for (bool more = run.prod.GetFirstTriangle(c1, c2, c3, bitmap, brightness, color); more;
         more = run.prod.GetNextTriangle(c1, c2, c3, bitmap, brightness, color))
        ++n;
    EXPECT_EQ(n, run.prod.TriCurrent());
    EXPECT_EQ(static_cast<int>(res.output.size()), n);
    EXPECT_FALSE(run.prod.GetNextTriangle(c1, c2, c3, bitmap, brightness, color));
}

} // namespace
