// The selection's containers: the handle arrays with their occurrence counts and the entity sets.
#include "base/VexilError.h"
#include "selection/MultipleSelection.h"
#include "selection/SelectionArrays.h"

#include <gtest/gtest.h>
#include <random>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

TEST(HandleArrays, KeepOrderDuplicatesAndCountsInStep) {
    HandleArray a(100);
    for (int h : {5, 7, 5, 9})
        a.Append(h);
    EXPECT_EQ(a.Count(), 4);
    EXPECT_EQ(a[0], 0); // slot 0 is never used
    EXPECT_EQ(a[1], 5);
    EXPECT_EQ(a[3], 5);
    EXPECT_EQ(a[5], 0);
    EXPECT_EQ(a.Occurrences(5), 2);
    EXPECT_TRUE(a.RemoveFirst(5));
    EXPECT_EQ(a.ToVector(), (std::vector<int>{7, 5, 9}));
    EXPECT_EQ(a.Occurrences(5), 1);
    EXPECT_FALSE(a.RemoveFirst(42));
    a.Clear();
    EXPECT_EQ(a.Count(), 0);
    EXPECT_FALSE(a.Contains(7));
}

TEST(HandleArrays, BatchRemovalEqualsOneFirstOccurrenceRemovalPerHit) {
    std::mt19937 rng(7);
    for (int round = 0; round < 200; ++round) {
        HandleArray batch(1000), oneByOne(1000);
        std::vector<int> items, hits;
        for (int i = 0; i < 40; ++i)
            items.push_back(int(rng() % 12) + 1);
        for (int i = 0; i < 15; ++i)
            hits.push_back(int(rng() % 14) + 1);
        batch.Assign(items);
        oneByOne.Assign(items);
        batch.RemoveFirstOfEach(hits);
        for (int h : hits)
            oneByOne.RemoveFirst(h);
        ASSERT_EQ(batch.ToVector(), oneByOne.ToVector()) << "round " << round;
        for (int h = 1; h <= 14; ++h)
            ASSERT_EQ(batch.Occurrences(h), oneByOne.Occurrences(h));
    }
}

TEST(HandleArrays, RunningPastTheCapacityIsASubscriptErrorThatKeepsWhatWasThere) {
    HandleArray a(4); // slots 0..3: three handles
    a.Append(1);
    a.Append(2);
    a.Append(3);
    try {
        a.Append(4);
        FAIL() << "no error";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrSubscript);
    }
    EXPECT_EQ(a.ToVector(), (std::vector<int>{1, 2, 3}));
    // The assignment from a 1-based copy reads slots 1..count.
    a.Assign1({0, 8, 9, 10}, 2);
    EXPECT_EQ(a.ToVector(), (std::vector<int>{8, 9}));
}

TEST(HandleArrays, TheOccurrenceTableSurvivesGrowthAndHandlesThatCameAndWent) {
    OccurrenceTable t;
    std::mt19937 rng(3);
    std::vector<int> ref(5000, 0);
    for (int step = 0; step < 60000; ++step) {
        const int h = int(rng() % 4999) + 1;
        const int d = (rng() % 3 == 0) ? -1 : 1;
        const int want = std::max(0, ref[size_t(h)] + d);
        ref[size_t(h)] = want;
        ASSERT_EQ(t.Add(h, d), want);
    }
    for (int h = 1; h < 5000; ++h)
        ASSERT_EQ(t.Get(h), ref[size_t(h)]) << h;
    EXPECT_EQ(t.Get(0), 0);
    // An array without the table answers the same by counting.
    HandleArray plain(100, false);
    plain.Assign({4, 4, 6});
    EXPECT_EQ(plain.Occurrences(4), 2);
    EXPECT_TRUE(plain.RemoveFirst(4));
    EXPECT_EQ(plain.ToVector(), (std::vector<int>{4, 6}));
}

class EntitySets : public ::testing::Test {
  protected:
    void SetUp() override {
        ZELMAR_engine_close();
        const char* names[3] = {"G0", "G1", "G2"};
        for (int i = 0; i < 3; ++i)
            g[i] = ZELMAR_group_create(names[i]);
    }
    void TearDown() override { ZELMAR_engine_close(); }
    int g[3]{};
};

TEST_F(EntitySets, AddIsIdempotentRemoveShiftsAndBoxesFollowTheGroups) {
    MultipleSelection m;
    m.AddGrpHandles(g[0]);
    m.AddGrpHandles(g[1]);
    m.AddGrpHandles(g[0]);
    m.AddLightHandles(900001);
    m.AddTrackHandles(900002);
    EXPECT_EQ(m.GrpCount, 2);
    EXPECT_EQ(m.TotalCount, 4);
    EXPECT_EQ(m.BoxCount(), 2);
    m.RemoveGrp(g[0]);
    EXPECT_EQ(m.GetGrp(1), g[1]);
    EXPECT_EQ(m.GetGrp(2), 0);
    EXPECT_EQ(m.BoxCount(), 1);
    EXPECT_EQ(m.Box(1).Group(), g[1]);
    EXPECT_EQ(m.TotalCount, 3);
    m.RemoveLight(12345); // absent: nothing
    EXPECT_EQ(m.LightCount, 1);
}

TEST_F(EntitySets, AGroupThatDiedKeepsItsBoxOnRemoval) {
    MultipleSelection m;
    m.AddGrpHandles(g[0]);
    m.AddGrpHandles(g[1]);
    ZELMAR_group_delete_members(g[0]);
    m.RemoveGrp(g[0]); // the engine no longer calls it a group: the box array stays as it was
    EXPECT_EQ(m.GrpCount, 1);
    EXPECT_EQ(m.BoxCount(), 2);
}

TEST_F(EntitySets, EqualityIsByPositionAndTheCopyKeepsTheOrder) {
    MultipleSelection a, b, c;
    a.AddGrpHandles(g[0]);
    a.AddGrpHandles(g[1]);
    b.AddGrpHandles(g[1]);
    b.AddGrpHandles(g[0]);
    EXPECT_FALSE(a.SameAs(b)); // the same entities in another order are another selection
    c.CopyFrom(a);
    EXPECT_TRUE(c.SameAs(a));
    c.AddCamHandles(77);
    EXPECT_FALSE(c.SameAs(a));
    c.Reset();
    EXPECT_EQ(c.TotalCount, 0);
    EXPECT_EQ(c.BoxCount(), 0);
}

} // namespace
