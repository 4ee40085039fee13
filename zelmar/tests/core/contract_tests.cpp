// The boundary's promises: walks, names, validators and handles.
#include "CoreTest.h"
#include "scene/World.h"

#include <cmath>
#include <cstring>
#include <random>
#include <set>

using Contract = CoreTest;

TEST_F(Contract, EmptyWorldWalksYieldNothing) {
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
    EXPECT_EQ(ZELMAR_group_get_first_group(), 0);
    EXPECT_EQ(ZELMAR_polygon_get_first_polygon(), 0);
    const int root = ZELMAR_group_create("the_world");
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 0);
    EXPECT_EQ(ZELMAR_group_get_first_polygon(root), 0);
    EXPECT_EQ(ZELMAR_group_get_first_included_group(root), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(root), 0);
    EXPECT_EQ(ZELMAR_group_get_first_group(), root);
    EXPECT_EQ(ZELMAR_group_get_next(root), 0);
}

TEST_F(Contract, SubtreeWalkOnRootSeesEverySubgroupIncludingDisabled) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    const int empty = ZELMAR_group_create("empty");
    const int c = ZELMAR_group_create("c");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(empty, root);
    ZELMAR_group_set_father_group(b, a);
    ZELMAR_group_set_father_group(c, empty);
    ZELMAR_group_disable(a, 1);
    ZELMAR_group_disable(c, 1);
    const int pr = square(root), pa = square(a), pb1 = square(b), pb2 = square(b), pc = square(c);
    square(0); // an ownerless polygon is in no subtree
    const std::vector<int> expected{pr, pa, pb1, pb2, pc};
    EXPECT_EQ(walk(root), expected);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(root), 5);
    EXPECT_EQ(walk(a), (std::vector<int>{pa, pb1, pb2}));
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(a), 3);
    EXPECT_EQ(walk(empty), (std::vector<int>{pc}));
}

TEST_F(Contract, NestedWalksKeepTheirOwnRoots) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, root);
    square(a);
    square(a);
    square(b);
    // For each polygon of the world, walk the polygons of its own group.
    int outer = 0, inner = 0;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p)) {
        ++outer;
        for (int q = ZELMAR_group_get_first_polygon(ZELMAR_polygon_get_group(p)); q;
             q = ZELMAR_group_get_next_polygon(q))
            ++inner;
    }
    EXPECT_EQ(outer, 3);
    EXPECT_EQ(inner, 2 + 2 + 1);
    // Looking at the first polygon of many groups (emptiness tests) inside a walk of a
    // subgroup keeps that walk inside its subgroup.
    std::vector<int> probes;
    for (int i = 0; i < 40; ++i) {
        probes.push_back(ZELMAR_group_create("probe"));
        square(probes.back());
    }
    std::vector<int> inA;
    for (int p = ZELMAR_group_get_first_polygon(a); p; p = ZELMAR_group_get_next_polygon(p)) {
        inA.push_back(p);
        for (int g : probes)
            EXPECT_NE(ZELMAR_group_get_first_polygon(g), 0);
    }
    EXPECT_EQ(inA, walk(a));
    EXPECT_EQ(inA.size(), 2u);
    // Many abandoned walks do not break a later one.
    for (int i = 0; i < 40; ++i)
        ZELMAR_group_get_first_polygon(a);
    EXPECT_EQ(walk(root).size(), 3u);
}

TEST_F(Contract, WalkSurvivesRemovalsAroundIt) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, root);
    std::vector<int> pa, pb;
    for (int i = 0; i < 100; ++i)
        pa.push_back(square(a, i));
    for (int i = 0; i < 3; ++i)
        pb.push_back(square(b, i));
    // Removing most of a group (its walk array gets compacted) keeps the order of the rest.
    std::vector<int> kept;
    for (int i = 0; i < 100; ++i) {
        if (i % 5 == 0)
            kept.push_back(pa[i]);
        else
            ZELMAR_polygon_set_group(pa[i], 0);
    }
    std::vector<int> expected = kept;
    expected.insert(expected.end(), pb.begin(), pb.end());
    EXPECT_EQ(walk(root), expected);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(root), 23);
    // Deleting polygons ahead of the current one during a walk: they are simply not met.
    std::vector<int> seen;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p)) {
        seen.push_back(p);
        if (p == kept[0])
            for (size_t i = 1; i < kept.size(); i += 2)
                ZELMAR_polygon_delete(kept[i]);
    }
    EXPECT_EQ(seen.size(), 1 + 9 + 3u);
    EXPECT_EQ(seen.back(), pb.back());
    // A polygon moved out of the walked subtree mid-walk ends that walk.
    const int first = ZELMAR_group_get_first_polygon(a);
    ZELMAR_polygon_set_group(first, b);
    EXPECT_EQ(ZELMAR_group_get_next_polygon(first), 0);
}

TEST_F(Contract, NamesComeBackWholeAndCut) {
    const std::string long255(255, 'n');
    const int g = ZELMAR_group_create(long255.c_str());
    EXPECT_EQ(name(g), long255);
    // Any named kind answers, not only groups and polygons.
    EXPECT_EQ(name(zelmar::world().createCamera("camera0")->handle), "camera0");
    EXPECT_EQ(name(zelmar::world().createBitmap("bricks")->handle), "bricks");
    const int p = ZELMAR_polygon_create();
    ZELMAR_polygon_set_name(p, "Box01_Face01");
    EXPECT_EQ(name(p), "Box01_Face01");

    // A buffer full of garbage and trailing zeros still yields the name alone.
    char buffer[256];
    std::memset(buffer, 'x', sizeof buffer);
    ZELMAR_group_set_name(g, "short");
    ZELMAR_entity_get_name(g, buffer, 255);
    EXPECT_STREQ(buffer, "short");
    // Cut to the buffer, always terminated.
    std::memset(buffer, 'x', sizeof buffer);
    ZELMAR_entity_get_name(g, buffer, 3);
    EXPECT_STREQ(buffer, "sho");
    // No name: an empty string, never a crash.
    std::memset(buffer, 'x', sizeof buffer);
    ZELMAR_entity_get_name(123456789, buffer, 255);
    EXPECT_STREQ(buffer, "");
    ZELMAR_entity_get_name(g, nullptr, 255);
    ZELMAR_entity_get_name(g, buffer, -1);
}

TEST_F(Contract, ValidatorsAnswerForAnyInteger) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g);
    const int pt = ZELMAR_polygon_get_first_point(p);
    EXPECT_EQ(ZELMAR_group_is_group(g), 1);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(p), 1);
    EXPECT_EQ(ZELMAR_point_is_point(pt), 1);
    // Kinds don't mix.
    EXPECT_EQ(ZELMAR_group_is_group(p), 0);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(pt), 0);
    EXPECT_EQ(ZELMAR_point_is_point(g), 0);
    std::mt19937 rng(7);
    for (int i = 0; i < 2000; ++i) {
        const int h = static_cast<int>(rng());
        if (h == g || h == p || h == pt) continue;
        EXPECT_EQ(ZELMAR_group_is_group(h) + ZELMAR_polygon_is_polygon(h) + ZELMAR_point_is_point(h), 0) << h;
    }
    for (int h : {0, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(ZELMAR_group_is_group(h), 0);
        EXPECT_EQ(ZELMAR_polygon_is_polygon(h), 0);
        EXPECT_EQ(ZELMAR_point_is_point(h), 0);
    }
    ZELMAR_group_delete_members(g);
    EXPECT_EQ(ZELMAR_group_is_group(g), 0);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(p), 0);
    EXPECT_EQ(ZELMAR_point_is_point(pt), 0);
}

TEST_F(Contract, BadHandlesAnswerZeroAndExplain) {
    double out[6] = {7, 7, 7, 7, 7, 7};
    ZELMAR_group_get_bounding_box(99999, out);
    EXPECT_EQ(out[0], 7); // untouched
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("not a group"), std::string::npos);
    EXPECT_EQ(ZELMAR_group_get_next_polygon(-5), 0);
    EXPECT_EQ(ZELMAR_polygon_add_point(42, out), 0);
    EXPECT_EQ(ZELMAR_point_get_next_point(0), 0);
    const int p = ZELMAR_polygon_create();
    EXPECT_EQ(ZELMAR_polygon_add_point(p, nullptr), 0);
    const double nan[6] = {0, 0, std::nan(""), 0, 0, 100};
    EXPECT_EQ(ZELMAR_polygon_add_point(p, nan), 0);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(p), 0);
    EXPECT_EQ(ZELMAR_group_create(nullptr), 0);
}

TEST_F(Contract, HandlesAreNeverReused) {
    std::set<int> seen;
    for (int round = 0; round < 3; ++round) {
        const int g = ZELMAR_group_create("g");
        const int p = square(g);
        EXPECT_TRUE(seen.insert(g).second);
        EXPECT_TRUE(seen.insert(p).second);
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
            EXPECT_TRUE(seen.insert(pt).second);
        if (round == 0)
            ZELMAR_group_delete_members(g);
        else
            ZELMAR_engine_close();
    }
    for (int h : seen)
        EXPECT_EQ(ZELMAR_group_is_group(h) + ZELMAR_polygon_is_polygon(h) + ZELMAR_point_is_point(h), 0);
    EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
}

TEST_F(Contract, WholeWorldPolygonWalkIsCreationOrder) {
    const int g = ZELMAR_group_create("g");
    const int a = square(g), b = square(0), c = square(g);
    std::vector<int> all;
    for (int p = ZELMAR_polygon_get_first_polygon(); p; p = ZELMAR_polygon_get_next(p))
        all.push_back(p);
    EXPECT_EQ(all, (std::vector<int>{a, b, c}));
    ZELMAR_polygon_delete(b);
    EXPECT_EQ(ZELMAR_polygon_get_next(a), c);
}
