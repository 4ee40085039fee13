// Polygons: the ring, plane sign, validity, convexity, fills and the triangulated copy.
#include "CoreTest.h"

#include <cmath>
#include <map>

using Polygons = CoreTest;

namespace {
double area(int p) {
    double plane[4];
    ZELMAR_polygon_get_plane(p, plane);
    double n[3] = {0, 0, 0};
    std::vector<std::array<double, 3>> pts;
    for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
        pts.push_back(CoreTest::xyz(pt));
    for (size_t i = 0; i < pts.size(); ++i) {
        const auto& a = pts[i];
        const auto& b = pts[(i + 1) % pts.size()];
        n[0] += (a[1] - b[1]) * (a[2] + b[2]);
        n[1] += (a[2] - b[2]) * (a[0] + b[0]);
        n[2] += (a[0] - b[0]) * (a[1] + b[1]);
    }
    return -0.5 * (n[0] * plane[0] + n[1] * plane[1] + n[2] * plane[2]); // Newell's normal points to the back
}
} // namespace

TEST_F(Polygons, PlaneNormalFollowsTheRingOrder) {
    const int p = square(0, 0, 0, 5); // clockwise seen from +z
    double plane[4];
    ZELMAR_polygon_get_plane(p, plane);
    EXPECT_V3_NEAR(plane, 0, 0, 1, 1e-15);
    EXPECT_DOUBLE_EQ(plane[3], -5);
    const double above[3] = {0, 0, 9}, below[3] = {0, 0, 1}, on[3] = {3, 3, 5};
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane, above, 0.0), 1);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane, below, 0.0), 2);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane, on, 0.0), 0);
    const double near[3] = {0, 0, 5.01};
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane, near, 0.1), 0);

    ZELMAR_polygon_flip_visible_side(p);
    ZELMAR_polygon_get_plane(p, plane);
    EXPECT_V3_NEAR(plane, 0, 0, -1, 1e-15);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane, above, 0.0), 2);
}

TEST_F(Polygons, FlipKeepsTheFirstPointAndReversesTheRest) {
    const int p = square(0);
    std::vector<int> before;
    for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
        before.push_back(pt);
    ZELMAR_polygon_flip_visible_side(p);
    std::vector<int> after;
    for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
        after.push_back(pt);
    EXPECT_EQ(after, (std::vector<int>{before[0], before[3], before[2], before[1]}));
    EXPECT_V3_NEAR(xyz(after[1]), 1, 0, 0, 0); // handles keep their data
}

TEST_F(Polygons, Validity) {
    const int two = poly(0, {{0, 0, 0}, {1, 0, 0}});
    const int line = poly(0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    const int bent = poly(0, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.5}});
    const int tiny = poly(0, {{0, 0, 0}, {1e-3, 0, 0}, {1e-3, 1e-3, 0}});
    const int ok = square(0);
    const int empty = ZELMAR_polygon_create();
    EXPECT_EQ(ZELMAR_polygon_is_valid(two), 0);
    EXPECT_EQ(ZELMAR_polygon_is_valid(line), 0);
    EXPECT_EQ(ZELMAR_polygon_is_valid(bent), 0);
    EXPECT_EQ(ZELMAR_polygon_are_all_points_on_one_plane(bent), 0);
    EXPECT_EQ(ZELMAR_polygon_is_valid(tiny), 1);
    EXPECT_EQ(ZELMAR_polygon_is_valid(ok), 1);
    EXPECT_EQ(ZELMAR_polygon_is_valid(empty), 0);
    double plane[4] = {9, 9, 9, 9};
    ZELMAR_polygon_get_plane(line, plane);
    EXPECT_V3_NEAR(plane, 0, 0, 0, 0);
    EXPECT_EQ(plane[3], 0);
}

TEST_F(Polygons, Convexity) {
    const int sq = square(0);
    const int ell = poly(0, {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}, {1, 2, 0}, {0, 2, 0}});
    const int colinear = poly(0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
    std::initializer_list<std::array<double, 3>> star = {
        {0, 1, 0}, {0.588, -0.809, 0}, {-0.951, 0.309, 0}, {0.951, 0.309, 0}, {-0.588, -0.809, 0}};
    const int pentagram = poly(0, star);
    const int clockwise = poly(0, {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}});
    EXPECT_EQ(ZELMAR_polygon_is_convex(sq), 1);
    EXPECT_EQ(ZELMAR_polygon_is_convex(ell), 0);
    EXPECT_EQ(ZELMAR_polygon_is_convex(colinear), 1);
    EXPECT_EQ(ZELMAR_polygon_is_convex(pentagram), 0);
    EXPECT_EQ(ZELMAR_polygon_is_convex(clockwise), 1);
}

TEST_F(Polygons, TriangulatedCopyOfAConcavePolygon) {
    const int root = ZELMAR_group_create("the_world");
    const int src = ZELMAR_group_create("L");
    const int sub = ZELMAR_group_create("sub");
    ZELMAR_group_set_father_group(src, root);
    ZELMAR_group_set_father_group(sub, src);
    // An L, ring starting at the reflex corner so that a plain fan would go wrong.
    const int ell = poly(src, {{1, 1, 0}, {2, 1, 0}, {2, 0, 0}, {0, 0, 0}, {0, 2, 0}, {1, 2, 0}});
    ZELMAR_polygon_set_bitmap_fill(ell, 0);
    ZELMAR_polygon_set_color_fill(ell, 1, 2, 3);
    ZELMAR_polygon_set_translucent(ell, 7);
    std::map<std::array<double, 3>, std::array<double, 2>> uvOf;
    for (int pt = ZELMAR_polygon_get_first_point(ell); pt; pt = ZELMAR_point_get_next_point(pt)) {
        double uv[2];
        ZELMAR_point_get_bitmap_xy(pt, uv);
        uvOf[xyz(pt)] = {uv[0], uv[1]};
    }
    square(sub, 5, 5, 0); // a convex quad below: fanned into two
    ZELMAR_group_disable(sub, 1);

    const int tri = ZELMAR_group_create_copy_made_of_triangles(src, "L_tri");
    ASSERT_NE(tri, 0);
    EXPECT_EQ(name(tri), "L_tri");
    EXPECT_EQ(ZELMAR_group_get_father_group(tri), root);
    EXPECT_EQ(ZELMAR_group_is_disable(tri), 0);
    const std::vector<int> tris = walk(tri);
    ASSERT_EQ(tris.size(), 4u + 2u);
    double total = 0;
    for (size_t i = 0; i < 4; ++i) {
        const int t = tris[i];
        EXPECT_EQ(ZELMAR_polygon_get_num_of_points(t), 3);
        const double a = area(t);
        EXPECT_GT(a, 0);
        total += a;
        double plane[4];
        ZELMAR_polygon_get_plane(t, plane);
        EXPECT_V3_NEAR(plane, 0, 0, 1, 1e-12); // same side as the source
        int rgb[3];
        ZELMAR_polygon_get_color(t, rgb);
        EXPECT_EQ(rgb[2], 3);
        EXPECT_EQ(ZELMAR_polygon_get_translucent(t), 7);
        for (int pt = ZELMAR_polygon_get_first_point(t); pt; pt = ZELMAR_point_get_next_point(pt)) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(pt, uv);
            ASSERT_TRUE(uvOf.count(xyz(pt)));
            EXPECT_EQ(uvOf[xyz(pt)][0], uv[0]);
            EXPECT_EQ(uvOf[xyz(pt)][1], uv[1]);
        }
    }
    EXPECT_NEAR(total, 3.0, 1e-12); // the L's area: nothing outside, nothing missing
    // The source is untouched.
    EXPECT_EQ(walk(src).size(), 2u);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(ell), 6);
}

TEST_F(Polygons, RingEditing) {
    const int p = square(0);
    const double v[6] = {-1, -1, 0, 0.5, 0.25, 80};
    const int head = ZELMAR_polygon_add_point_to_head(p, v);
    EXPECT_EQ(ZELMAR_polygon_get_first_point(p), head);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(p), 5);
    EXPECT_EQ(ZELMAR_point_get_brightness(head), 80);
    double uv[2];
    ZELMAR_point_get_bitmap_xy(head, uv);
    EXPECT_EQ(uv[1], 0.25);
    const int second = ZELMAR_point_get_next_point(head);
    EXPECT_V3_NEAR(xyz(second), 0, 0, 0, 0);

    const int other = square(0);
    EXPECT_EQ(ZELMAR_polygon_delete_point(other, head), 0); // not its point
    EXPECT_EQ(ZELMAR_polygon_delete_point(p, head), 1);
    EXPECT_EQ(ZELMAR_point_is_point(head), 0);
    EXPECT_EQ(ZELMAR_polygon_get_first_point(p), second);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(p), 4);

    const int dup = poly(0, {{0, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}});
    EXPECT_EQ(ZELMAR_polygon_count_redundant_points(dup), 2);
    EXPECT_EQ(ZELMAR_polygon_remove_redundant_points(dup), 2);
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(dup), 3);
    EXPECT_EQ(ZELMAR_polygon_is_valid(dup), 1);
}

TEST_F(Polygons, APointNormalIsStoredAsGiven) {
    const int pt = ZELMAR_polygon_get_first_point(square(0));
    const double n[3] = {0, 0, 2};
    ZELMAR_point_set_normal(pt, n);
    double o3[3];
    ZELMAR_point_get_normal(pt, o3);
    EXPECT_V3_NEAR(o3, 0, 0, 2, 0); // not normalised
}

TEST_F(Polygons, FillsAndFlags) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g);
    EXPECT_EQ(ZELMAR_polygon_get_brightness(p), 100.0);
    int rgb[3];
    ZELMAR_polygon_get_color(p, rgb);
    EXPECT_EQ(rgb[0], 255);
    ZELMAR_polygon_set_color_fill(p, 300, -4, 17);
    ZELMAR_polygon_get_color(p, rgb);
    EXPECT_EQ(rgb[0], 255);
    EXPECT_EQ(rgb[1], 0);
    EXPECT_EQ(rgb[2], 17);
    ZELMAR_polygon_set_bitmap_fill(p, 424242); // not a bitmap: refused
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), 0);
    EXPECT_EQ(ZELMAR_polygon_get_transparent_index(p), -1);
    ZELMAR_polygon_set_translucent(p, 0x1FF);
    EXPECT_EQ(ZELMAR_polygon_get_translucent(p), 0xFF);
    ZELMAR_polygon_set_rotated(p, 5);
    EXPECT_EQ(ZELMAR_polygon_is_rotated(p), 1);
    ZELMAR_polygon_set_orientation(p, 1);
    EXPECT_EQ(ZELMAR_polygon_get_orientation(p), 1);
    ZELMAR_group_set_orientation(g, 0);
    EXPECT_EQ(ZELMAR_polygon_get_orientation(p), 0);
    ZELMAR_polygon_set_name(p, "Box01_Face01");
    EXPECT_STREQ(ZELMAR_polygon_get_name(p), "Box01_Face01");
    EXPECT_EQ(ZELMAR_polygon_get_handle_using_name("Box01_Face01"), p);
    ZELMAR_group_set_color(g, 4, 5, 6);
    ZELMAR_polygon_get_color(p, rgb);
    EXPECT_EQ(rgb[1], 5);
}

TEST_F(Polygons, DuplicateAndTransforms) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 0, 0, 0, 2);
    const int d = ZELMAR_polygon_duplicate(p);
    EXPECT_NE(d, p);
    EXPECT_EQ(ZELMAR_polygon_get_group(d), g);
    EXPECT_NE(ZELMAR_polygon_get_first_point(d), ZELMAR_polygon_get_first_point(p));
    const double off[3] = {1, 0, 0};
    ZELMAR_polygon_move(d, off);
    double c[3];
    ZELMAR_polygon_get_center(d, c);
    EXPECT_V3_NEAR(c, 2, 1, 0, 1e-12);
    ZELMAR_polygon_get_center(p, c);
    EXPECT_V3_NEAR(c, 1, 1, 0, 1e-12);
    ZELMAR_polygon_rotate_z(d, 90);
    ZELMAR_polygon_get_center(d, c);
    EXPECT_V3_NEAR(c, 2, 1, 0, 1e-12);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(d)), 3, 0, 0, 1e-12);
    ZELMAR_polygon_scale(d, 2, 2, 2);
    const double inside[3] = {2, 1, 0}, outside[3] = {9, 1, 0}, edge[3] = {4, 1, 0};
    EXPECT_EQ(ZELMAR_polygon_is_point_inside_polygon(d, inside), 1);
    EXPECT_EQ(ZELMAR_polygon_is_point_inside_polygon(d, outside), 0);
    EXPECT_EQ(ZELMAR_polygon_is_point_inside_polygon_concave(d, edge), 1);
    const double a[3] = {1, 1, -1}, b[3] = {1, 1, 1};
    double hit[3];
    EXPECT_EQ(ZELMAR_polygon_check_intersection_with_line_segment(p, a, b, hit), 1);
    EXPECT_V3_NEAR(hit, 1, 1, 0, 1e-12);
    ZELMAR_polygon_delete(d);
    EXPECT_EQ(ZELMAR_polygon_is_polygon(d), 0);
    EXPECT_EQ(walk(g), std::vector<int>{p});
}
