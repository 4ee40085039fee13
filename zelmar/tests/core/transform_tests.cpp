// Group geometry: location, dimensions, the box that turns with the group, and the
// move / rotate / scale operations about the rotate reference point.
#include "CoreTest.h"

#include <cmath>

using Transform = CoreTest;

namespace {
// A closed box of six faces, outward, from lo to hi.
int box(int g, std::array<double, 3> lo, std::array<double, 3> hi) {
    const double x0 = lo[0], y0 = lo[1], z0 = lo[2], x1 = hi[0], y1 = hi[1], z1 = hi[2];
    CoreTest::poly(g, {{x0, y0, z1}, {x1, y0, z1}, {x1, y1, z1}, {x0, y1, z1}});
    CoreTest::poly(g, {{x0, y0, z0}, {x0, y1, z0}, {x1, y1, z0}, {x1, y0, z0}});
    CoreTest::poly(g, {{x0, y0, z0}, {x1, y0, z0}, {x1, y0, z1}, {x0, y0, z1}});
    CoreTest::poly(g, {{x0, y1, z0}, {x0, y1, z1}, {x1, y1, z1}, {x1, y1, z0}});
    CoreTest::poly(g, {{x0, y0, z0}, {x0, y0, z1}, {x0, y1, z1}, {x0, y1, z0}});
    return CoreTest::poly(g, {{x1, y0, z0}, {x1, y1, z0}, {x1, y1, z1}, {x1, y0, z1}});
}
} // namespace

TEST_F(Transform, LocationAndDimensionsOfAnUnrotatedGroup) {
    const int g = ZELMAR_group_create("g");
    box(g, {1, 2, 3}, {5, 4, 4});
    double loc[3], dim[3], bb[6];
    ZELMAR_group_get_location(g, loc);
    ZELMAR_group_get_dimensions(g, dim);
    ZELMAR_group_get_bounding_box(g, bb);
    EXPECT_V3_NEAR(loc, 3, 3, 3.5, 1e-12);
    EXPECT_V3_NEAR(dim, 4, 2, 1, 1e-12);
    EXPECT_V3_NEAR(bb, 1, 2, 3, 0);
    EXPECT_V3_NEAR(bb + 3, 5, 4, 4, 0);
    double rp[3];
    ZELMAR_group_get_rotate_reference_point(g, rp); // not set: the location
    EXPECT_V3_NEAR(rp, 3, 3, 3.5, 1e-12);
}

TEST_F(Transform, Rotate90DegreesAboutTheReferencePoint) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 10, 0, 0);
    const double ref[3] = {0, 0, 0};
    ZELMAR_group_set_rotate_reference_point(g, ref);
    const double deg[3] = {0, 0, 90};
    ZELMAR_group_rotate(g, deg, 0);
    const int first = ZELMAR_polygon_get_first_point(p);
    EXPECT_EQ(xyz(first), (std::array<double, 3>{0, 10, 0})); // exact for quarter turns
    EXPECT_EQ(xyz(ZELMAR_point_get_next_point(first)), (std::array<double, 3>{-1, 10, 0}));
    double rp[3];
    ZELMAR_group_get_rotate_reference_point(g, rp);
    EXPECT_V3_NEAR(rp, 0, 0, 0, 0);
    // The axis system turned with it.
    double x[3], y[3], z[3];
    ZELMAR_group_calculate_axis_system(g, x, y, z);
    EXPECT_V3_NEAR(x, 0, 1, 0, 1e-15);
    EXPECT_V3_NEAR(y, -1, 0, 0, 1e-15);
    EXPECT_V3_NEAR(z, 0, 0, 1, 1e-15);
    // Four quarter turns come back exactly.
    for (int i = 0; i < 3; ++i)
        ZELMAR_group_rotate(g, deg, 0);
    EXPECT_EQ(xyz(first), (std::array<double, 3>{10, 0, 0}));
}

TEST_F(Transform, RotationWithoutReferencePointKeepsTheLocation) {
    const int g = ZELMAR_group_create("g");
    box(g, {0, 0, 0}, {4, 2, 1});
    const double deg[3] = {0, 0, 37};
    ZELMAR_group_rotate(g, deg, 0);
    double loc[3], dim[3];
    ZELMAR_group_get_location(g, loc);
    ZELMAR_group_get_dimensions(g, dim);
    EXPECT_V3_NEAR(loc, 2, 1, 0.5, 1e-12);
    EXPECT_V3_NEAR(dim, 4, 2, 1, 1e-12); // measured along the group's own axes
    // The world-aligned box grew.
    double bb[6];
    ZELMAR_group_get_bounding_box(g, bb);
    EXPECT_GT(bb[3] - bb[0], 4.0);
}

TEST_F(Transform, BoundingBoxCornersTurnWithTheGroup) {
    const int g = ZELMAR_group_create("g");
    box(g, {-1, 2, 0}, {3, 3, 5});
    const double deg[3] = {20, -35, 50};
    ZELMAR_group_rotate(g, deg, 0);
    double loc[3], dim[3];
    ZELMAR_group_get_location(g, loc);
    ZELMAR_group_get_dimensions(g, dim);
    // Every corner formed as the overlay does lands on a corner of the turned box.
    for (int c = 0; c < 8; ++c) {
        double corner[3], w[3];
        for (int i = 0; i < 3; ++i)
            corner[i] = loc[i] + ((c >> i) & 1 ? 0.5 : -0.5) * dim[i];
        ZELMAR_group_convert_point_to_world_space_fast(g, corner, w);
        double best = 1e9;
        for (int p = ZELMAR_group_get_first_polygon(g); p; p = ZELMAR_group_get_next_polygon(p))
            for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) {
                const auto q = xyz(pt);
                best = std::min(best, std::hypot(q[0] - w[0], q[1] - w[1], q[2] - w[2]));
            }
        EXPECT_LT(best, 1e-9) << "corner " << c;
        double back[3];
        ZELMAR_group_convert_point_to_group_space(g, w, back);
        EXPECT_V3_NEAR(back, corner[0], corner[1], corner[2], 1e-9);
    }
}

TEST_F(Transform, MatchAxisSystemAndGroupSpaceMoves) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 0, 0, 0, 2);                                // location (1, 1, 0)
    const double x[3] = {0, 2, 0}, y[3] = {-3, 0, 0}, z[3] = {0, 0, 1}; // lengths don't matter
    ZELMAR_group_rotate_to_match_axis_system(g, x, y, z);
    double ax[3], ay[3], az[3];
    ZELMAR_group_calculate_axis_system(g, ax, ay, az);
    EXPECT_V3_NEAR(ax, 0, 1, 0, 1e-12);
    EXPECT_V3_NEAR(ay, -1, 0, 0, 1e-12);
    EXPECT_V3_NEAR(az, 0, 0, 1, 1e-12);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(p)), 2, 0, 0, 1e-12); // (0,0) turned about (1,1)
    // A move along the group's own x goes along world y.
    const double d[3] = {5, 0, 0};
    ZELMAR_group_move(g, d, 1);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(p)), 2, 5, 0, 1e-12);
    ZELMAR_group_move(g, d, 0);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(p)), 7, 5, 0, 1e-12);
    // Parallel axes are refused.
    const double bad[3] = {1, 0, 0};
    ZELMAR_group_rotate_to_match_axis_system(g, bad, bad, bad);
    ZELMAR_group_calculate_axis_system(g, ax, ay, az);
    EXPECT_V3_NEAR(ax, 0, 1, 0, 1e-12);
}

TEST_F(Transform, ScaleAboutTheReferencePoint) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 0, 0, 0, 2);
    const double ref[3] = {0, 0, 0};
    ZELMAR_group_set_rotate_reference_point(g, ref);
    ZELMAR_group_scale(g, 0, 2, 3, 1);
    double dim[3];
    ZELMAR_group_get_dimensions(g, dim);
    EXPECT_V3_NEAR(dim, 4, 6, 0, 0);
    const int third =
        ZELMAR_point_get_next_point(ZELMAR_point_get_next_point(ZELMAR_polygon_get_first_point(p)));
    EXPECT_V3_NEAR(xyz(third), 4, 6, 0, 0);
    // Without a reference point the group scales about its location.
    const int h = ZELMAR_group_create("h");
    square(h, 10, 10, 0, 2);
    ZELMAR_group_scale(h, 0, 0.5, 0.5, 0.5);
    double loc[3];
    ZELMAR_group_get_location(h, loc);
    ZELMAR_group_get_dimensions(h, dim);
    EXPECT_V3_NEAR(loc, 11, 11, 0, 1e-12);
    EXPECT_V3_NEAR(dim, 1, 1, 0, 1e-12);
}

TEST_F(Transform, MirrorKeepsNormalsOnTheRingSide) {
    const int g = ZELMAR_group_create("g");
    const int p = square(g, 1, 1, 0);
    const double up[3] = {0, 0, 1};
    for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
        ZELMAR_point_set_normal(pt, up);
    ZELMAR_group_scale(g, 0, -1, 1, 1);
    double plane[4], n[3];
    ZELMAR_polygon_get_plane(p, plane);
    ZELMAR_point_get_normal(ZELMAR_polygon_get_first_point(p), n);
    EXPECT_V3_NEAR(plane, 0, 0, -1, 1e-12); // the mirrored ring turns the other way
    EXPECT_V3_NEAR(n, 0, 0, -1, 1e-12);
    // Flipping the polygon brings both back.
    ZELMAR_polygon_flip_visible_side(p);
    ZELMAR_polygon_get_plane(p, plane);
    ZELMAR_point_get_normal(ZELMAR_polygon_get_first_point(p), n);
    EXPECT_V3_NEAR(plane, 0, 0, 1, 1e-12);
    EXPECT_V3_NEAR(n, 0, 0, 1, 1e-12);
}

TEST_F(Transform, SetLocationMovesTheWholeSubtree) {
    const int root = ZELMAR_group_create("root");
    const int child = ZELMAR_group_create("child");
    ZELMAR_group_set_father_group(child, root);
    square(root, 0, 0, 0);
    const int pc = square(child, 4, 0, 0); // root spans x 0..5
    const double ref[3] = {4, 0, 0};
    ZELMAR_group_set_rotate_reference_point(child, ref);
    const double target[3] = {0, 0, 100};
    ZELMAR_group_set_location(root, target);
    double loc[3];
    ZELMAR_group_get_location(root, loc);
    EXPECT_V3_NEAR(loc, 0, 0, 100, 1e-12);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(pc)), 1.5, -0.5, 100, 1e-12);
    double rp[3];
    ZELMAR_group_get_rotate_reference_point(child, rp); // travels with the group
    EXPECT_V3_NEAR(rp, 1.5, -0.5, 100, 1e-12);
}

TEST_F(Transform, EmptyGroupKeepsItsLocation) {
    const int g = ZELMAR_group_create("g");
    double loc[3] = {9, 9, 9}, dim[3], bb[6];
    ZELMAR_group_get_location(g, loc);
    EXPECT_V3_NEAR(loc, 0, 0, 0, 0);
    const double to[3] = {1, 2, 3};
    ZELMAR_group_set_location(g, to);
    ZELMAR_group_get_location(g, loc);
    ZELMAR_group_get_dimensions(g, dim);
    ZELMAR_group_get_bounding_box(g, bb);
    EXPECT_V3_NEAR(loc, 1, 2, 3, 0);
    EXPECT_V3_NEAR(dim, 0, 0, 0, 0);
    EXPECT_V3_NEAR(bb, 1, 2, 3, 0);
    EXPECT_V3_NEAR(bb + 3, 1, 2, 3, 0);
    double c[3];
    ZELMAR_group_get_center_of_mass(g, c);
    EXPECT_V3_NEAR(c, 1, 2, 3, 0);
}

TEST_F(Transform, CenterOfMassIsTheMeanOfThePoints) {
    const int g = ZELMAR_group_create("g");
    poly(g, {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}});
    poly(g, {{0, 0, 6}, {3, 0, 6}, {0, 3, 6}});
    double c[3];
    ZELMAR_group_get_center_of_mass(g, c);
    EXPECT_V3_NEAR(c, 1, 1, 3, 1e-12);
}

TEST_F(Transform, TurnToMatchAPolygonAndFindExtremes) {
    const int g = ZELMAR_group_create("g");
    const int top = square(g, 0, 0, 1);
    const int bottom = poly(g, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    EXPECT_EQ(ZELMAR_group_get_top_polygon(g), top);
    EXPECT_EQ(ZELMAR_group_get_bottom_polygon(g), bottom);
    // Turn so that the top face looks along +x, like a wall facing that way.
    const int h = ZELMAR_group_create("wall");
    const int wall = poly(h, {{5, 0, 0}, {5, 0, 1}, {5, 1, 1}, {5, 1, 0}});
    ASSERT_EQ(ZELMAR_group_rotate_to_match_polygon(g, top, wall), 1);
    double plane[4];
    ZELMAR_polygon_get_plane(top, plane);
    EXPECT_V3_NEAR(plane, 1, 0, 0, 1e-12);
    EXPECT_EQ(ZELMAR_group_rotate_to_match_polygon(g, top, 99999), 0);
    // Turning about a line through the wall brings the normals together too.
    const int k = ZELMAR_group_create("k");
    const int face = square(k, 0, 0, 0);
    const double at[3] = {0, 0, 0}, along[3] = {0, 1, 0};
    ASSERT_EQ(ZELMAR_group_rotate_around_line_to_match_polygon(k, at, along, face, wall), 1);
    ZELMAR_polygon_get_plane(face, plane);
    EXPECT_V3_NEAR(plane, 1, 0, 0, 1e-12);
    EXPECT_V3_NEAR(xyz(ZELMAR_polygon_get_first_point(face)), 0, 0, 0, 1e-12); // on the line: stays
    // Box mapping over the group: the bitmap spans the box once.
    ZELMAR_group_wrap_a_bitmap(h, 0, 1, 1);
    double uv[2];
    int corner = ZELMAR_polygon_get_first_point(wall); // the last point, (5, 1, 0)
    for (int i = 0; i < 3; ++i) corner = ZELMAR_point_get_next_point(corner);
    ZELMAR_point_get_bitmap_xy(corner, uv);
    EXPECT_V3_NEAR((std::array<double, 3>{uv[0], uv[1], 0}), 1, 1, 0, 1e-12);
}

// A placement put back with the points gives the group back bit for bit: its axes and reference point
// decide the next turn, so a later edit after undo behaves as before it.
TEST_F(Transform, PlacementPutBackRestoresTheAxesAndReferencePoint) {
    const int g = ZELMAR_group_create("g");
    box(g, {0, 0, 0}, {3, 2, 1});
    const double ref[3] = {1, 1, 1}, turn[3] = {17, 23, 31};
    ZELMAR_group_set_rotate_reference_point(g, ref);
    double before[16], after[16], again[16];
    ZELMAR_group_get_placement(g, before);
    ZELMAR_group_rotate(g, turn, 0);
    ZELMAR_group_get_placement(g, after);
    EXPECT_NE(before[1], after[1]); // the axes turned
    EXPECT_EQ(after[12], 1.0);      // the reference point stays set
    ZELMAR_group_set_placement(g, before);
    ZELMAR_group_get_placement(g, again);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(again[i], before[i]) << i;
    // Setting moves no point, and refuses values that are not numbers.
    const int first = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(g));
    const std::array<double, 3> at = xyz(first);
    after[4] = std::nan("");
    ZELMAR_group_set_placement(g, after);
    ZELMAR_group_get_placement(g, again);
    EXPECT_EQ(again[4], before[4]);
    EXPECT_EQ(xyz(first), at);
}
