// Edits that keep places (the order of polygons in a group and of children under a father), joining two
// polygons along their shared edge and splitting one along a line.
#include "CoreTest.h"

#include <algorithm>

namespace {

std::vector<int> ownOrder(int group) {
    std::vector<int> out;
    for (int p = ZELMAR_group_get_first_polygon(group); p; p = ZELMAR_group_get_next_polygon(p))
        if (ZELMAR_polygon_get_group(p) == group) out.push_back(p);
    return out;
}

std::vector<int> children(int father) {
    std::vector<int> out;
    for (int g = ZELMAR_group_get_first_included_group(father); g; g = ZELMAR_group_get_next_included_group(g))
        if (ZELMAR_group_get_father_group(g) == father) out.push_back(g);
    return out;
}

std::vector<int> ring(int polygon) {
    std::vector<int> out;
    for (int pt = ZELMAR_polygon_get_first_point(polygon); pt; pt = ZELMAR_point_get_next_point(pt))
        out.push_back(pt);
    return out;
}

} // namespace

TEST_F(CoreTest, PolygonsTakenOutGoBackToTheirPlacesInReverseOrder) {
    const int g = ZELMAR_group_create("g");
    std::vector<int> pols;
    for (int i = 0; i < 40; ++i)
        pols.push_back(square(g, i));
    const std::vector<int> before = ownOrder(g);
    // Take out every third polygon, remembering what followed each at the time.
    std::vector<int> out, next;
    for (size_t i = 0; i < pols.size(); i += 3) {
        out.push_back(pols[i]);
        next.push_back(ZELMAR_polygon_get_next_in_group(pols[i]));
        ZELMAR_polygon_set_group(pols[i], 0);
    }
    std::reverse(out.begin(), out.end());
    std::reverse(next.begin(), next.end());
    EXPECT_EQ(int(out.size()), ZELMAR_group_insert_polygons(g, out.data(), next.data(), int(out.size())));
    EXPECT_EQ(before, ownOrder(g));
    EXPECT_EQ(before, walk(g)); // the subtree walk follows the same order
    EXPECT_EQ(40, ZELMAR_group_get_number_of_polygons(g));
    // A partner that is not in the group, or none, appends.
    const int extra = square(0, 100);
    const int stranger = square(0, 200);
    ZELMAR_group_insert_polygons(g, &extra, &stranger, 1);
    EXPECT_EQ(extra, ownOrder(g).back());
    EXPECT_EQ(0, ZELMAR_polygon_get_next_in_group(extra));
}

TEST_F(CoreTest, AGroupGoesBackInFrontOfItsSibling) {
    const int root = ZELMAR_group_create("root");
    std::vector<int> kids;
    for (int i = 0; i < 4; ++i) {
        const char names[4][3] = {"k0", "k1", "k2", "k3"};
        kids.push_back(ZELMAR_group_create(names[i]));
        ZELMAR_group_set_father_group(kids.back(), root);
    }
    EXPECT_EQ(kids[2], ZELMAR_group_get_next_sibling(kids[1]));
    EXPECT_EQ(0, ZELMAR_group_get_next_sibling(kids[3]));
    const int next = ZELMAR_group_get_next_sibling(kids[1]);
    ZELMAR_group_set_father_group(kids[1], 0);
    EXPECT_EQ(1, ZELMAR_group_set_father_group_before(kids[1], root, next));
    EXPECT_EQ(kids, children(root));
    EXPECT_EQ(1, ZELMAR_group_set_father_group_before(kids[0], root, kids[0])); // itself: appended
    EXPECT_EQ(kids[0], children(root).back());
    EXPECT_EQ(0, ZELMAR_group_set_father_group_before(root, kids[2], 0)); // a cycle is refused
}

TEST_F(CoreTest, JoinMergesAlongTheSharedEdgeAndKeepsTheFirstPolygonsPoints) {
    const int g = ZELMAR_group_create("g");
    const int a = square(g, 0, 0, 0);
    const int b = square(g, 1, 0, 0); // shares the edge x = 1, running the other way
    const std::vector<int> kept = ring(a);
    EXPECT_EQ(1, ZELMAR_polygon_join(a, b));
    EXPECT_EQ(0, ZELMAR_polygon_is_polygon(b));
    const std::vector<int> r = ring(a);
    ASSERT_EQ(6u, r.size());
    for (int pt : kept)
        EXPECT_NE(r.end(), std::find(r.begin(), r.end(), pt));
    EXPECT_EQ(1, ZELMAR_polygon_is_valid(a));
    double plane[4];
    ZELMAR_polygon_get_plane(a, plane);
    EXPECT_NEAR(1.0, plane[2], 1e-12); // still facing +z
    EXPECT_EQ(0, ZELMAR_polygon_join(a, square(g, 5, 5, 0))); // nothing shared
    EXPECT_EQ(0, ZELMAR_polygon_join(a, a));
}

TEST_F(CoreTest, SplitCutsAlongTheLineAndInterpolatesTheNewCorners) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 0, 0, 0, 2);
    ZELMAR_polygon_set_name(p, "sq");
    const double at[3] = {1, -5, 0}, dir[3] = {0, 1, 0};
    const int q = ZELMAR_polygon_split(p, at, dir);
    ASSERT_NE(0, q);
    EXPECT_EQ(g, ZELMAR_polygon_get_group(q));
    EXPECT_EQ("sq", name(q));
    EXPECT_EQ(4u, ring(p).size());
    EXPECT_EQ(4u, ring(q).size());
    EXPECT_EQ(1, ZELMAR_polygon_is_valid(p));
    EXPECT_EQ(1, ZELMAR_polygon_is_valid(q));
    double cp[3], cq[3];
    ZELMAR_polygon_get_center(p, cp);
    ZELMAR_polygon_get_center(q, cq);
    EXPECT_NEAR(1.0, std::abs(cp[0] - cq[0]), 1e-12);
    // Through two opposite corners: the corners serve as crossings, two triangles.
    const int s = square(g, 10, 0, 0, 2);
    const double at2[3] = {10, 0, 0}, diag[3] = {1, 1, 0};
    const int t = ZELMAR_polygon_split(s, at2, diag);
    ASSERT_NE(0, t);
    EXPECT_EQ(3u, ring(s).size());
    EXPECT_EQ(3u, ring(t).size());
    // A line that misses, or runs along an edge: nothing changes.
    const double far[3] = {50, 0, 0};
    EXPECT_EQ(0, ZELMAR_polygon_split(s, far, dir));
    const double edge[3] = {10, 0, 0}, along[3] = {0, 1, 0};
    const int u = square(g, 10, 10, 0, 2);
    const double edgeAt[3] = {10, 10, 0};
    EXPECT_EQ(0, ZELMAR_polygon_split(u, edgeAt, along));
    EXPECT_EQ(4u, ring(u).size());
    (void)edge;
}
