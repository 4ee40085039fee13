#include "maths/Maths.h"

#include "MathsTestSupport.h"

using namespace Maths;
using maths_test::raised;
using maths_test::Recorder;

TEST(Vectors, FromToAndAddMayWriteIntoAnInput) {
    Vector from{1, 2, 3}, to{4, 6, 8};
    VectorFromTo(from, to, to);
    EXPECT_EQ(to, (Vector{3, 4, 5}));
    Vector a{1, 2, 3}, b{10, 20, 30};
    VectorFromTo(a, b, a);
    EXPECT_EQ(a, (Vector{9, 18, 27}));
    VectorAdd(a, b, b);
    EXPECT_EQ(b, (Vector{19, 38, 57}));
    VectorAdd(a, a, a);
    EXPECT_EQ(a, (Vector{18, 36, 54}));
}

TEST(Vectors, OutputsGrowButAreNeverShrunk) {
    Vector empty, big{9, 9, 9, 9, 9};
    VectorFromValues(empty, 1, 2, 3);
    EXPECT_EQ(empty, (Vector{1, 2, 3}));
    VectorScale(Vector{1, 2, 3}, 2.0, big);
    EXPECT_EQ(big, (Vector{2, 4, 6, 9, 9}));
    Vector copy;
    VectorCopy(copy, Vector{1, 2, 3, 4});
    EXPECT_EQ(copy, (Vector{1, 2, 3}));
}

TEST(Vectors, CrossDotLengthNegate) {
    Vector c;
    VectorCross(Vector{1, 0, 0}, Vector{0, 1, 0}, c);
    EXPECT_EQ(c, (Vector{0, 0, 1}));
    VectorCross(Vector{1, 2, 3}, Vector{4, 5, 6}, c);
    EXPECT_EQ(c, (Vector{-3, 6, -3}));
    EXPECT_EQ(VectorDot(Vector{1, 2, 3}, Vector{4, 5, 6}), 32.0);
    EXPECT_EQ(VectorLength(Vector{3, 4, 12}), 13.0);
    Vector v{1, -2, 0};
    VectorNegate(v);
    EXPECT_EQ(v, (Vector{-1, 2, -0.0}));
}

TEST(Vectors, NormalizeInPlaceAndZeroLengthRaisesDivision) {
    Vector v{0, 3, 4};
    VectorNormalize(v, v);
    EXPECT_EQ(v, (Vector{0, 0.6, 0.8}));
    Vector dest{7, 7, 7};
    auto e = raised([&] { VectorNormalize(Vector{0, 0, 0}, dest); });
    EXPECT_EQ(e.number, vexil::ErrDivisionByZero);
    EXPECT_EQ(e.source, "Vexil.Maths.VectorNormalize");
    EXPECT_EQ(dest, (Vector{7, 7, 7}));
}

TEST(Vectors, OverflowAndShortInputsRaise) {
    auto e = raised([] { VectorLength(Vector{1e200, 0, 0}); });
    EXPECT_EQ(e.number, vexil::ErrOverflow);
    EXPECT_EQ(e.source, "Vexil.Maths.VectorLength");
    EXPECT_EQ(raised([] { VectorDot(Vector{1e300, 0, 0}, Vector{1e300, 0, 0}); }).number, vexil::ErrOverflow);
    Vector d;
    EXPECT_EQ(raised([&] { VectorFromTo(Vector{1, 2}, Vector{1, 2, 3}, d); }).number, vexil::ErrSubscript);
    // Normalize of a vector whose length overflows is an overflow, not a silent zero.
    EXPECT_EQ(raised([&] { VectorNormalize(Vector{1e300, 1e300, 0}, d); }).number, vexil::ErrOverflow);
}

TEST(Vectors, NestedFailureGrowsTheTraceInnermostFirst) {
    Vector dest, direction{1, 2};
    auto e = raised([&] { PointOnLine(dest, Vector{0, 0, 0}, direction, true, 1.0, 0.0); });
    EXPECT_EQ(e.number, vexil::ErrSubscript);
    EXPECT_EQ(e.source, "Vexil.Maths.VectorNegate\r\nVexil.Maths.PointOnLine");
}

TEST(Vectors, DistanceFollowsTheFirstArrayDistanceSquaredAlwaysThree) {
    EXPECT_EQ(Distance(Vector{0, 0}, Vector{3, 4, 100}), 5.0);
    EXPECT_EQ(Distance(Vector{1, 2, 3}, Vector{1, 2, 3}), 0.0);
    EXPECT_EQ(Distance(Vector{0, 0, 0, 0}, Vector{1, 1, 1, 1}), 2.0);
    EXPECT_EQ(raised([] { Distance(Vector{0, 0, 0}, Vector{3, 4}); }).number, vexil::ErrSubscript);
    EXPECT_EQ(DistanceSquared(Vector{0, 0, 0, 5}, Vector{3, 4, 12}), 169.0);
    EXPECT_EQ(raised([] { DistanceSquared(Vector{0, 0}, Vector{3, 4}); }).number, vexil::ErrSubscript);
    EXPECT_EQ(DistanceInt(IntPoint{0, 0}, IntPoint{-3, 4}), 5.0);
    // The sum is kept as double: no int32 overflow for far screen points.
    EXPECT_DOUBLE_EQ(DistanceInt(IntPoint{-2000000000, 0}, IntPoint{2000000000, 0}), 4e9);
}

TEST(Vectors, SameLocationRoundsToSixDecimalsHalfToEven) {
    EXPECT_TRUE(SameLocation(Vector{1.0000001, 2, 3}, Vector{1.0000004, 2, 3}));
    EXPECT_TRUE(SameLocation(Vector{1, 2, -3.0000001}, Vector{1, 2, -3}));
    EXPECT_FALSE(SameLocation(Vector{1.000001, 2, 3}, Vector{1.000002, 2, 3}));
    EXPECT_FALSE(SameLocation(Vector{1, 2, 3}, Vector{1, 2, 3.000001}));
    // Ties go to the even sixth decimal: 2.5e-6 rounds to 2e-6, 3.5e-6 to 4e-6.
    EXPECT_TRUE(SameLocation(Vector{2.5e-6, 0, 0}, Vector{2e-6, 0, 0}));
    EXPECT_FALSE(SameLocation(Vector{2.5e-6, 0, 0}, Vector{3e-6, 0, 0}));
    EXPECT_TRUE(SameLocation(Vector{3.5e-6, 0, 0}, Vector{4e-6, 0, 0}));
}

TEST(Vectors, CopyLinearArrayLogsAShortDestinationAndKeepsWhatWasCopied) {
    Recorder rec;
    Vector dest(3, 0.0);
    CopyLinearArray(dest, Vector{1, 2, 3});
    EXPECT_EQ(dest, (Vector{1, 2, 3}));
    EXPECT_TRUE(rec.log.empty());

    Vector shortDest{0, 0};
    EXPECT_NO_THROW(CopyLinearArray(shortDest, Vector{4, 5, 6, 7}));
    EXPECT_EQ(shortDest, (Vector{4, 5}));
    ASSERT_EQ(rec.log.size(), 1u);
    EXPECT_EQ(rec.log[0].first, "CopyLinearArray: Array bounds dont match\nDetails: Subscript out of range");
    EXPECT_EQ(rec.log[0].second, 1);

    Vector longDest{9, 9, 9, 9};
    CopyLinearArray(longDest, Vector{1, 2});
    EXPECT_EQ(longDest, (Vector{1, 2, 9, 9}));
}

TEST(Vectors, PointOnLineNegatesTheCallersDirection) {
    Vector dest, direction{1, 2, 3};
    PointOnLine(dest, Vector{10, 10, 10}, direction, false, 2.0, 0.5);
    EXPECT_EQ(dest, (Vector{12, 14, 16.5}));
    PointOnLine(dest, Vector{10, 10, 10}, direction, true, 2.0, 0.0);
    EXPECT_EQ(dest, (Vector{8, 6, 4}));
    EXPECT_EQ(direction, (Vector{-1, -2, -3}));
}
