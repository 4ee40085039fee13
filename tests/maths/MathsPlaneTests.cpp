#include "maths/Maths.h"

#include "MathsTestSupport.h"

using namespace Maths;
using maths_test::raised;

TEST(Planes, PlaneFromPointsIsTheUnnormalisedCrossOfTheSides) {
    Plane pl;
    PlaneFromPoints(Vector{0, 0, 0}, Vector{1, 0, 0}, Vector{0, 1, 0}, pl);
    EXPECT_EQ(pl, (Plane{0, 0, 1, 0}));

    const Vector p1{1, 2, 3}, p2{4, -1, 2}, p3{-2, 5, 7};
    PlaneFromPoints(p1, p2, p3, pl);
    Vector e1, e2, n;
    VectorFromTo(p1, p2, e1);
    VectorFromTo(p1, p3, e2);
    VectorCross(e1, e2, n);
    EXPECT_EQ(pl[0], n[0]);
    EXPECT_EQ(pl[1], n[1]);
    EXPECT_EQ(pl[2], n[2]);
    for (const Vector& p : {p1, p2, p3})
        EXPECT_EQ(VectorDot(pl, p) + pl[3], 0.0);
}

TEST(Planes, DistanceToPlaneIsSignedAndAZeroNormalRaises) {
    const Plane pl{0, 0, 2, -4}; // z = 2
    EXPECT_EQ(DistanceToPlane(pl, Vector{5, 5, 5}), 3.0);
    EXPECT_EQ(DistanceToPlane(pl, Vector{5, 5, 0}), -2.0);
    auto e = raised([] { DistanceToPlane(Plane{0, 0, 0, 1}, Vector{1, 1, 1}); });
    EXPECT_EQ(e.number, vexil::ErrDivisionByZero);
    EXPECT_EQ(e.source, "Vexil.Maths.DistanceToPlane");
}

TEST(Planes, ProjectPointOnPlaneDoesNotDivideTheConstantTerm) {
    Vector p{1, 2, 5};
    ProjectPointOnPlane(p, Plane{0, 0, 1, 2}, p); // unit normal: the plane z = 2
    EXPECT_EQ(p, (Vector{1, 2, 2}));
    Vector q;
    // n = (0, 0, 2): k = 2 - 10 / 4 = -0.5, dest = point - (0, 0, 1).
    ProjectPointOnPlane(Vector{1, 2, 5}, Plane{0, 0, 2, 2}, q);
    EXPECT_EQ(q, (Vector{1, 2, 4}));
    EXPECT_EQ(raised([&] {
                  ProjectPointOnPlane(Vector{1, 2, 5}, Plane{0, 0, 0, 2}, q);
              }).number,
              vexil::ErrDivisionByZero);
}

TEST(Planes, LineMeetsPlaneAndAParallelLineLeavesDestAlone) {
    Vector dest;
    LineMeetsPlane(Vector{1, 1, 10}, Vector{1, 1, 9}, Vector{0, 0, 2}, Vector{0, 0, 1}, dest);
    EXPECT_EQ(dest, (Vector{1, 1, 2}));
    // Beyond the end point too: the line is infinite.
    LineMeetsPlane(Vector{0, 0, 0}, Vector{1, 2, 1}, Vector{0, 0, 3}, Vector{0, 0, 5}, dest);
    EXPECT_EQ(dest, (Vector{3, 6, 3}));
    Vector untouched{7, 8, 9};
    EXPECT_NO_THROW(
        LineMeetsPlane(Vector{0, 0, 0}, Vector{1, 0, 0}, Vector{0, 0, 3}, Vector{0, 0, 1}, untouched));
    EXPECT_EQ(untouched, (Vector{7, 8, 9}));
}

TEST(Lines, NearestPointOnLine) {
    Vector dest;
    NearestPointOnLine(Vector{1, 1, 0}, Vector{0, 0, 0}, Vector{2, 0, 0}, dest);
    EXPECT_EQ(dest, (Vector{1, 0, 0}));
    // Beyond the segment, and in two dimensions (indices follow the point).
    Vector d2;
    NearestPointOnLine(Vector{5, 3}, Vector{0, 0}, Vector{1, 1}, d2);
    ASSERT_EQ(d2.size(), 2u);
    EXPECT_DOUBLE_EQ(d2[0], 4.0);
    EXPECT_DOUBLE_EQ(d2[1], 4.0);
    // A line of one point: s1 is 0, dest is b.
    NearestPointOnLine(Vector{5, 5, 5}, Vector{1, 2, 3}, Vector{1, 2, 3}, dest);
    EXPECT_EQ(dest, (Vector{1, 2, 3}));
    // dest may be an end of the line.
    Vector a{0, 0, 0};
    NearestPointOnLine(Vector{1, 1, 0}, a, Vector{2, 0, 0}, a);
    EXPECT_EQ(a, (Vector{1, 0, 0}));
}

TEST(Lines, NearestPointOnLineIntRoundsHalfToEven) {
    IntPoint dest;
    NearestPointOnLineInt(IntPoint{3, 5}, IntPoint{0, 0}, IntPoint{10, 0}, dest);
    EXPECT_EQ(dest, (IntPoint{3, 0}));
    NearestPointOnLineInt(IntPoint{0, 5}, IntPoint{0, 0}, IntPoint{2, 2}, dest); // exactly (2.5, 2.5)
    EXPECT_EQ(dest, (IntPoint{2, 2}));
    NearestPointOnLineInt(IntPoint{0, 3}, IntPoint{0, 0}, IntPoint{1, 1}, dest); // exactly (1.5, 1.5)
    EXPECT_EQ(dest, (IntPoint{2, 2}));
    EXPECT_EQ(raised([&] {
                  NearestPointOnLineInt(IntPoint{0, 0}, IntPoint{-50000, 0}, IntPoint{50000, 0}, dest);
              }).number,
              vexil::ErrOverflow);
}

TEST(Lines, SegmentsMeet2D) {
    double x = -1, y = -1;
    EXPECT_TRUE(SegmentsMeet2D(0, 0, 2, 2, 0, 2, 2, 0, x, y));
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 1.0);
    EXPECT_TRUE(SegmentsMeet2D(0, 0, 2, 0, 2, -1, 2, 1, x, y)); // at an end: parameters inclusive
    EXPECT_EQ(x, 2.0);
    EXPECT_EQ(y, 0.0);
    EXPECT_FALSE(SegmentsMeet2D(0, 0, 1, 0, 2, -1, 2, 1, x, y));
    // Parallel (also disjoint) counts as meeting; the crossing is left alone.
    x = y = 42;
    EXPECT_TRUE(SegmentsMeet2D(0, 0, 1, 0, 0, 5, 1, 5, x, y));
    EXPECT_EQ(x, 42.0);
    EXPECT_EQ(y, 42.0);
}
