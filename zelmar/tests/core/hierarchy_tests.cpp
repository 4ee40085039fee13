// The group tree: fathers, inclusion, disabling, the included-group walk, deep copies.
#include "CoreTest.h"

using Hierarchy = CoreTest;

namespace {
std::vector<int> included(int group) {
    std::vector<int> out;
    for (int g = ZELMAR_group_get_first_included_group(group); g; g = ZELMAR_group_get_next_included_group(g))
        out.push_back(g);
    return out;
}
} // namespace

TEST_F(Hierarchy, FatherCanBeSetAndClearedButNeverMakesACycle) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, a);
    EXPECT_EQ(ZELMAR_group_get_father_group(b), a);
    EXPECT_EQ(ZELMAR_group_get_father_group(root), 0);

    ZELMAR_group_set_father_group(root, b); // root below its own grandchild: refused
    EXPECT_EQ(ZELMAR_group_get_father_group(root), 0);
    ZELMAR_group_set_father_group(a, a);
    EXPECT_EQ(ZELMAR_group_get_father_group(a), root);
    EXPECT_FALSE(std::string(ZELMAR_engine_get_last_error()).empty());

    ZELMAR_group_set_father_group(b, 0); // fake delete: leaves the tree
    EXPECT_EQ(ZELMAR_group_get_father_group(b), 0);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(b, root), 0);
    ZELMAR_group_set_father_group(b, 777777); // a dead father changes nothing
    EXPECT_EQ(ZELMAR_group_get_father_group(b), 0);
}

TEST_F(Hierarchy, InclusionIsTransitiveAndStrict) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, a);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(b, root), 1);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(a, root), 1);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(root, b), 0);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(a, a), 0);

    ZELMAR_group_disable(a, 1);
    EXPECT_EQ(ZELMAR_group_is_disable(a), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(b), 0); // the flag of the group alone
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_enabled_parts_of_groupB(b, root), 0);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_enabled_parts_of_groupB(b, a),
              1); // b's own way up is enabled
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_groupB(b, root), 1);
    ZELMAR_group_disable(a, 0);
    EXPECT_EQ(ZELMAR_group_is_groupA_included_in_enabled_parts_of_groupB(b, root), 1);
}

TEST_F(Hierarchy, IncludedGroupWalkIsPreOrderOfDescendants) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int a1 = ZELMAR_group_create("a1");
    const int b = ZELMAR_group_create("b");
    const int a2 = ZELMAR_group_create("a2");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, root);
    ZELMAR_group_set_father_group(a1, a);
    ZELMAR_group_set_father_group(a2, a);
    ZELMAR_group_disable(a1, 1);
    EXPECT_EQ(included(root), (std::vector<int>{a, a1, a2, b}));
    EXPECT_EQ(included(a), (std::vector<int>{a1, a2}));
    EXPECT_EQ(included(a2), std::vector<int>{});
    // The engine order is creation order, not the tree's.
    std::vector<int> all;
    for (int g = ZELMAR_group_get_first_group(); g; g = ZELMAR_group_get_next(g))
        all.push_back(g);
    EXPECT_EQ(all, (std::vector<int>{root, a, a1, b, a2}));
}

TEST_F(Hierarchy, DeleteMembersDestroysTheSubtree) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, a);
    const int keep = square(root);
    const int pa = square(a), pb = square(b);
    ZELMAR_group_delete_members(a);
    EXPECT_EQ(ZELMAR_group_is_group(a), 0);
    EXPECT_EQ(ZELMAR_group_is_group(b), 0);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(pa), 0);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(pb), 0);
    EXPECT_EQ(walk(root), std::vector<int>{keep});
    EXPECT_EQ(ZELMAR_group_get_first_included_group(root), 0);
}

TEST_F(Hierarchy, DuplicateTreeCopiesEverythingUnderTheSameFather) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, a);
    const int p = square(b, 5, 0, 0);
    ZELMAR_polygon_set_color_fill(p, 10, 20, 30);
    ZELMAR_polygon_set_name(p, "face");
    ZELMAR_group_set_dynamic(a);

    const int copy = ZELMAR_group_duplicate_tree(a);
    ASSERT_NE(copy, 0);
    EXPECT_NE(copy, a);
    EXPECT_EQ(name(copy), "a");
    EXPECT_EQ(ZELMAR_group_get_father_group(copy), root);
    EXPECT_EQ(ZELMAR_group_is_static(copy), 0);
    const std::vector<int> kids = included(copy);
    ASSERT_EQ(kids.size(), 1u);
    EXPECT_NE(kids[0], b);
    const std::vector<int> polys = walk(copy);
    ASSERT_EQ(polys.size(), 1u);
    EXPECT_NE(polys[0], p);
    EXPECT_EQ(name(polys[0]), "face");
    int rgb[3];
    ZELMAR_polygon_get_color(polys[0], rgb);
    EXPECT_EQ(rgb[2], 30);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(polys[0]), 4);
    // The copy is independent.
    const double d[3] = {0, 0, 10};
    ZELMAR_group_move(copy, d, 0);
    EXPECT_EQ(xyz(ZELMAR_polygon_get_first_point(p))[2], 0.0);
    EXPECT_EQ(walk(root).size(), 2u);
}

TEST_F(Hierarchy, UngroupLiftsChildrenToTheFather) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int b = ZELMAR_group_create("b");
    const int c = ZELMAR_group_create("c");
    ZELMAR_group_set_father_group(a, root);
    ZELMAR_group_set_father_group(b, a);
    ZELMAR_group_set_father_group(c, a);
    const int pa = square(a);
    ZELMAR_group_ungroup(a);
    EXPECT_EQ(ZELMAR_group_get_father_group(b), root);
    EXPECT_EQ(ZELMAR_group_get_father_group(c), root);
    EXPECT_EQ(walk(a), std::vector<int>{pa});
}

TEST_F(Hierarchy, PolygonOwnershipAndMembership) {
    const int root = ZELMAR_group_create("the_world");
    const int a = ZELMAR_group_create("a");
    const int other = ZELMAR_group_create("other");
    ZELMAR_group_set_father_group(a, root);
    const int p = square(a);
    EXPECT_EQ(ZELMAR_polygon_get_group(p), a);
    EXPECT_EQ(ZELMAR_polygon_is_in_group(p, a), 1);
    EXPECT_EQ(ZELMAR_polygon_is_in_group(p, root), 1);
    EXPECT_EQ(ZELMAR_polygon_is_in_group(p, other), 0);
    ZELMAR_polygon_set_group(p, other);
    EXPECT_EQ(walk(a), std::vector<int>{});
    EXPECT_EQ(walk(other), std::vector<int>{p});
    ZELMAR_polygon_set_group(p, 0);
    EXPECT_EQ(ZELMAR_polygon_get_group(p), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(other), 0);
    EXPECT_EQ(ZELMAR_group_get_using_name("other"), other);
    EXPECT_EQ(ZELMAR_group_get_using_name("nobody"), 0);
}
