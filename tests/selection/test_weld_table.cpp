// The table of coincident points.
#include "selection/WeldedPoints.h"

#include "base/VexilError.h"

#include <gtest/gtest.h>
#include <vector>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

class WeldTableTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ZELMAR_engine_close();
        WeldTable().Clear();
        group = ZELMAR_group_create("G");
    }
    void TearDown() override {
        WeldTable().Clear();
        ZELMAR_engine_close();
    }
    int polygon(std::vector<std::array<double, 3>> pts) {
        const int p = ZELMAR_polygon_create();
        for (const auto& q : pts) {
            const double v[6] = {q[0], q[1], q[2], 0, 0, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_group(p, group);
        return p;
    }
    std::vector<int> points(int pol) {
        std::vector<int> r;
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt; pt = ZELMAR_point_get_next_point(pt))
            r.push_back(pt);
        return r;
    }
    int group = 0;
};

TEST_F(WeldTableTest, ExactlyCoincidentPointsShareASet) {
    // Two squares sharing the edge x = 1; a third touches it only 1e-8 away, a fourth within 1e-10.
    const int a = polygon({{{0, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{0, 1, 0}}});
    const int b = polygon({{{1, 0, 0}}, {{2, 0, 0}}, {{2, 1, 0}}, {{1, 1, 0}}});
    const int c = polygon({{{2 + 1e-8, 0, 0}}, {{3, 0, 0}}, {{3, 1, 0}}});
    const int d = polygon({{{3, 1, 1e-10}}, {{4, 1, 0}}, {{4, 2, 0}}});
    WeldTableT& t = WeldTable();
    t.EnterGroup(group);
    EXPECT_EQ(t.Count(), 4 + 2 + 3 + 2);
    const auto pa = points(a), pb = points(b), pc = points(c), pd = points(d);
    EXPECT_EQ(t.IndexOf(pa[1]), t.IndexOf(pb[0]));
    EXPECT_EQ(t.IndexOf(pa[2]), t.IndexOf(pb[3]));
    EXPECT_NE(t.IndexOf(pb[1]), t.IndexOf(pc[0])); // 1e-8 apart: two sets
    EXPECT_EQ(t.IndexOf(pc[2]), t.IndexOf(pd[0])); // 1e-10 apart: one set
    WeldedPoints* shared = t.At(t.IndexOf(pa[1]));
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(shared->Count(), 2);
    EXPECT_EQ(shared->Point(1), pa[1]);
    EXPECT_EQ(shared->CorrsPol(1), a);
    EXPECT_EQ(shared->Point(2), pb[0]);
    EXPECT_EQ(shared->CorrsPol(2), b);
    EXPECT_EQ(shared->Point(3), 0);
    // Sets are numbered in the order their first point was met.
    EXPECT_EQ(t.IndexOf(pa[0]), 1);
    EXPECT_EQ(t.IndexOf(pb[1]), 5);
}

TEST_F(WeldTableTest, LeavingAPolygonDropsEmptiedSetsAndShiftsTheRest) {
    const int a = polygon({{{0, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}});
    const int b = polygon({{{1, 0, 0}}, {{2, 0, 0}}, {{1, 1, 0}}});
    WeldTableT& t = WeldTable();
    t.EnterPolygon(a);
    t.EnterPolygon(b);
    ASSERT_EQ(t.Count(), 4);
    const auto pa = points(a), pb = points(b);
    const int lastBefore = t.IndexOf(pb[1]);
    EXPECT_EQ(lastBefore, 4);
    t.LeavePolygon(a);
    // The set of (0,0,0) is gone; the shared sets keep b's points; later sets moved down one slot.
    EXPECT_EQ(t.Count(), 3);
    EXPECT_EQ(t.IndexOf(pa[0]), 0);
    EXPECT_EQ(t.IndexOf(pb[0]), 1);
    EXPECT_EQ(t.At(1)->Count(), 1);
    EXPECT_EQ(t.At(1)->Point(1), pb[0]);
    EXPECT_EQ(t.IndexOf(pb[1]), 3);
    // A point entered again joins by location even though the set's first point changed.
    t.EnterPolygon(a);
    EXPECT_EQ(t.IndexOf(pa[1]), t.IndexOf(pb[0]));
    EXPECT_EQ(t.Count(), 4);
}

// The sets were filed under the location where they began: after the shared corner moved, a polygon
// made at its new place started a set of its own, and a polygon made at the old place was compared with
// a set that was no longer there.
TEST_F(WeldTableTest, SetsAreFoundWhereTheirPointsAreNowAfterMovesUndoAndRedo) {
    const int a = polygon({{{0, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}});
    const int b = polygon({{{1, 0, 0}}, {{2, 0, 0}}, {{1, 1, 0}}});
    WeldTableT& t = WeldTable();
    t.EnterGroup(group);
    const auto pa = points(a), pb = points(b);
    const int shared = t.IndexOf(pa[1]);
    ASSERT_EQ(shared, t.IndexOf(pb[0]));
    // A move of the shared corner, as a polygon drag moves every member of its set; the editor re-files the
    // table after such moves (Rekey) before it enters polygons.
    auto moveSet = [&](double dx, double dy, double dz) {
        const WeldedPoints* s = t.At(shared);
        for (int i = 1; i <= s->Count(); ++i) {
            double xyz[3];
            ZELMAR_point_get_xyz(s->Point(i), xyz);
            xyz[0] += dx, xyz[1] += dy, xyz[2] += dz;
            ZELMAR_point_set_xyz(s->Point(i), xyz);
        }
    };
    moveSet(50, 0, 7);
    t.Rekey();
    const int c = polygon({{{51, 0, 7}}, {{52, 0, 7}}, {{52, 1, 7}}});
    t.EnterPolygon(c);
    EXPECT_EQ(t.IndexOf(points(c)[0]), shared) << "the moved corner is found at its new place";
    const int countAfterMove = t.Count();
    // Undo of the move: the corner is back, and is found there again.
    moveSet(-50, 0, -7);
    t.Rekey();
    const int d = polygon({{{1, 0, 0}}, {{1, -1, 0}}, {{0, -1, 0}}});
    t.EnterPolygon(d);
    EXPECT_EQ(t.IndexOf(points(d)[0]), shared);
    EXPECT_EQ(t.Count(), countAfterMove + 2) << "d's two other points only";
    // Redo: again at the new place; a polygon at the old place does not join it.
    moveSet(50, 0, 7);
    t.Rekey();
    const int e = polygon({{{1, 0, 0}}, {{1, 5, 0}}, {{0, 5, 0}}});
    t.EnterPolygon(e);
    EXPECT_NE(t.IndexOf(points(e)[0]), shared);
    const int f = polygon({{{51, 0, 7}}, {{51, 3, 7}}, {{50, 3, 7}}});
    t.EnterPolygon(f);
    EXPECT_EQ(t.IndexOf(points(f)[0]), shared);
    EXPECT_EQ(t.At(shared)->Count(), 5);
}

// The cells' borders sit at (k - 0.381966...) / 1e4 on every axis: points within the tolerance on either
// side of one weld however they are entered, and a set begun beside a border is found from the other
// side. Then every set moves (the table is filed anew) and is found at its new place.
TEST_F(WeldTableTest, PointsAcrossACellBorderWeldAndEverySetIsFoundAfterAllMoved) {
    const double border = (1 - 0.3819660112501051) / 1e4;
    const double below = border - 4e-10, above = border + 4e-10;
    const int a = polygon({{{below, 0, 0}}, {{1, below, 0}}, {{1, 1, below}}});
    const int b = polygon({{{above, 0, 0}}, {{1, above, 0}}, {{1, 1, above}}, {{above, above, above}}});
    const int c = polygon({{{below, below, below}}, {{above, 0, 5}}, {{below, 0, 5}}});
    WeldTableT& t = WeldTable();
    t.EnterGroup(group);
    const auto pa = points(a), pb = points(b), pc = points(c);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(t.IndexOf(pa[i]), t.IndexOf(pb[i])) << "axis " << i;
    EXPECT_EQ(t.IndexOf(pc[0]), t.IndexOf(pb[3]));
    EXPECT_EQ(t.IndexOf(pc[1]), t.IndexOf(pc[2]));
    EXPECT_EQ(t.Count(), 5);
    // Within the tolerance of c's second point but wholly above the border: only the upper cells are visited.
    const int e = polygon({{{above + 9e-10, 0, 5}}, {{above + 9e-10, 0, 6}}, {{above, 1, 5}}});
    t.EnterPolygon(e);
    EXPECT_EQ(t.IndexOf(points(e)[0]), t.IndexOf(pc[1]));
    EXPECT_EQ(t.Count(), 7);
    // Every point 30 along x; the sets are filed under their new cells, and a polygon entered there joins.
    for (int pol : {a, b, c, e})
        for (int pt : points(pol)) {
            double xyz[3];
            ZELMAR_point_get_xyz(pt, xyz);
            xyz[0] += 30;
            ZELMAR_point_set_xyz(pt, xyz);
        }
    t.Rekey();
    const int d = polygon({{{30 + below, 0, 0}}, {{31, above, 0}}, {{31, 1, below}}, {{30 + above, 0, 5}}});
    t.EnterPolygon(d);
    const auto pd = points(d);
    EXPECT_EQ(t.IndexOf(pd[0]), t.IndexOf(pa[0]));
    EXPECT_EQ(t.IndexOf(pd[1]), t.IndexOf(pa[1]));
    EXPECT_EQ(t.IndexOf(pd[2]), t.IndexOf(pa[2]));
    EXPECT_EQ(t.IndexOf(pd[3]), t.IndexOf(pc[1]));
    EXPECT_EQ(t.Count(), 7);
}

TEST(WeldedPointsSet, AddRemoveAndResize) {
    WeldedPoints s;
    s.AddPt(11, 1);
    s.AddPt(12, 2);
    s.AddPt(13, 3);
    EXPECT_TRUE(s.RemovePt(12));
    EXPECT_FALSE(s.RemovePt(12));
    EXPECT_EQ(s.Count(), 2);
    EXPECT_EQ(s.Point(2), 13);
    EXPECT_EQ(s.CorrsPol(2), 3);
    s.SetCount(4);
    EXPECT_EQ(s.Point(4), 0);
    s.SetCount(-1);
    EXPECT_EQ(s.Count(), 0);
    EXPECT_EQ(s.Point(0), 0);
}

} // namespace
