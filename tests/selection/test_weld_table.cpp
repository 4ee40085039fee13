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
