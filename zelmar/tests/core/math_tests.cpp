// The math family.
#include "CoreTest.h"

#include <cmath>

using Math = CoreTest;

TEST_F(Math, DistancesProductsAndCross) {
    const double a[3] = {1, 2, 3}, b[3] = {4, 6, 3};
    EXPECT_EQ(ZELMAR_math_get_distance(a, b), 5);
    EXPECT_EQ(ZELMAR_math_get_square_distance(a, b), 25);
    EXPECT_EQ(ZELMAR_math_product(a, b), 4 + 12 + 9);
    const double x[3] = {1, 0, 0}, y[3] = {0, 1, 0};
    double z[3];
    ZELMAR_math_cross(x, y, z);
    EXPECT_V3_NEAR(z, 0, 0, 1, 0);
    double v[3] = {3, 0, 4};
    EXPECT_EQ(ZELMAR_math_get_vector_length(v), 5);
    EXPECT_EQ(ZELMAR_math_normalize_vector(v), 1);
    EXPECT_V3_NEAR(v, 0.6, 0, 0.8, 1e-15);
    double zero[3] = {0, 0, 0};
    EXPECT_EQ(ZELMAR_math_normalize_vector(zero), 0);
    EXPECT_EQ(ZELMAR_math_get_distance(nullptr, b), 0); // no crash
}

TEST_F(Math, PlanesAndSegments) {
    const double p1[3] = {0, 0, 2}, p2[3] = {1, 0, 2}, p3[3] = {0, 1, 2};
    double plane[4];
    ASSERT_EQ(ZELMAR_math_points_to_plane(p1, p2, p3, plane), 1);
    EXPECT_V3_NEAR(plane, 0, 0, -1, 0); // counter-clockwise seen from +z: the front looks down
    EXPECT_EQ(plane[3], 2);
    EXPECT_EQ(ZELMAR_math_points_to_plane(p1, p1, p2, plane), 0);
    const double plane2[4] = {0, 0, 1, -2};
    const double a[3] = {0, 0, 0}, b[3] = {0, 0, 4}, c[3] = {0, 0, 1};
    double hit[3];
    EXPECT_EQ(ZELMAR_math_does_segment_intersect_plane(a, b, plane2, hit), 1);
    EXPECT_V3_NEAR(hit, 0, 0, 2, 0);
    EXPECT_EQ(ZELMAR_math_does_segment_intersect_plane(a, c, plane2, hit), 0);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane2, b, 0), 1);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane2, a, 0), 2);
    EXPECT_EQ(ZELMAR_math_get_plane_point_relations(plane2, a, 5), 0);
}

TEST_F(Math, LinesReflectionsAndWinding) {
    const double p[3] = {1, 5, 0}, o[3] = {0, 0, 0}, d[3] = {2, 0, 0};
    double foot[3];
    ZELMAR_math_get_closest_point_on_line(p, o, d, foot);
    EXPECT_V3_NEAR(foot, 1, 0, 0, 1e-15);
    EXPECT_EQ(ZELMAR_math_get_distance_between_point_and_line(p, o, d), 5);
    const double on[3] = {1, 0.001, 0}, e[3] = {2, 0, 0};
    EXPECT_EQ(ZELMAR_math_is_point_on_segment(on, o, e, 0.01), 1);
    const double beyond[3] = {3, 0, 0};
    EXPECT_EQ(ZELMAR_math_is_point_on_segment(beyond, o, e, 0.01), 0);
    const double dir[3] = {1, -1, 0}, n[3] = {0, 5, 0};
    double r[3];
    ZELMAR_math_get_reflected_direction(dir, n, r);
    EXPECT_V3_NEAR(r, 1, 1, 0, 1e-15);
    // A triangle counter-clockwise seen from +z is clockwise seen from below.
    const double t1[3] = {0, 0, 0}, t2[3] = {1, 0, 0}, t3[3] = {0, 1, 0};
    const double above[3] = {0, 0, 10}, below[3] = {0, 0, -10}, down[3] = {0, 0, -1};
    EXPECT_EQ(ZELMAR_math_is_clockwise(t1, t2, t3, above), 0);
    EXPECT_EQ(ZELMAR_math_is_clockwise(t1, t2, t3, below), 1);
    EXPECT_EQ(ZELMAR_math_is_clockwise_from_direction(t1, t2, t3, down), 0);
}
