#include "maths/Maths.h"

#include "MathsTestSupport.h"

#include <cmath>

using namespace Maths;
using maths_test::raised;
using maths_test::Recorder;

TEST(Angles, AngleFromXYOnTheAxesAndInEachQuadrant) {
    EXPECT_EQ(AngleFromXY(0, 0), 3.14159265359 / 2);
    EXPECT_EQ(AngleFromXY(0, 5), 3.14159265359 / 2);
    EXPECT_EQ(AngleFromXY(0, -5), 9.424777960770001 / 2);
    EXPECT_EQ(AngleFromXY(2, 0), 0.0);
    EXPECT_EQ(AngleFromXY(-2, 0), 3.14159265359);
    EXPECT_DOUBLE_EQ(AngleFromXY(1, 1), std::atan(1.0));
    EXPECT_DOUBLE_EQ(AngleFromXY(1, -1), -std::atan(1.0));                 // lowest: above -pi/2
    EXPECT_DOUBLE_EQ(AngleFromXY(-1, -1), std::atan(1.0) + 3.14159265359); // highest: below 3pi/2
}

TEST(Angles, AngleFromXYOverflowRaises) {
    auto e = raised([] { AngleFromXY(1e-300, 1e300); });
    EXPECT_EQ(e.number, vexil::ErrOverflow);
    EXPECT_EQ(e.source, "Vexil.Maths.AngleFromXY");
}

TEST(Angles, SameVectorGivesZero) {
    EXPECT_EQ(angleBetVectors(Vector{1, 0, 0}, Vector{1, 0, 0}), 0.0);
    EXPECT_EQ(angleBetVectors(Vector{3, 4, 0}, Vector{6, 8, 0}), 0.0);
    // Where rounding pushes the cosine to or above 1, the result stays defined and tiny.
    for (const Vector& v : {Vector{0.1, 0.2, 0.3}, Vector{1, 2, 3}, Vector{-7.3, 1e-3, 12345.678}}) {
        const double angle = angleBetVectors(v, v);
        EXPECT_TRUE(std::isfinite(angle));
        EXPECT_GE(angle, 0.0);
        EXPECT_LT(angle, 1e-5);
    }
}

TEST(Angles, PerpendicularGivesExactly90) {
    EXPECT_EQ(angleBetVectors(Vector{1, 0, 0}, Vector{0, 5, 0}), 90.0);
    EXPECT_EQ(angleBetVectors(Vector{1, 1, 0}, Vector{-2, 2, 7}), 90.0);
    EXPECT_EQ(angleBetVectors2D(Vector{1, 0, 0}, Vector{0, 0, 1}), 0.0);
}

TEST(Angles, OppositeGives180ByTheHalfTurnOfAngleFromXY) {
    // c = -1, s = 0: AngleFromXY adds 3.14159265359, converted with 3.14159265358979.
    const double expected = 3.14159265359 * 180.0 / 3.14159265358979;
    EXPECT_DOUBLE_EQ(angleBetVectors(Vector{1, 0, 0}, Vector{-1, 0, 0}), expected);
    EXPECT_DOUBLE_EQ(angleBetVectors(Vector{0, 3, 4}, Vector{0, -6, -8}), expected);
    // Where the lengths are inexact c is not quite -1, and s of about 1e-8 shows: a micro-degree off.
    EXPECT_NEAR(angleBetVectors(Vector{0, 2, 2}, Vector{0, -1, -1}), 180.0, 1e-5);
    EXPECT_NEAR(angleBetVectors(Vector{1, 0, 0}, Vector{-1, 0, 0}), 180.0, 1e-9);
    EXPECT_NEAR(angleBetVectors2D(Vector{1, 0, 0}, Vector{-1, 0, 0}), -90.0, 1e-9);
}

TEST(Angles, IntermediateAngles) {
    EXPECT_NEAR(angleBetVectors(Vector{1, 0, 0}, Vector{1, 1, 0}), 45.0, 1e-9);
    EXPECT_NEAR(angleBetVectors(Vector{1, 0, 0}, Vector{-1, 1, 0}), 135.0, 1e-9);
    EXPECT_NEAR(angleBetVectors(Vector{1, 0, 0}, Vector{1, std::sqrt(3.0), 0}), 60.0, 1e-9);
    // Just past perpendicular: above 90, as the simplifier's flip test needs.
    EXPECT_GT(angleBetVectors(Vector{1, 0, 0}, Vector{-1e-9, 1, 0}), 90.0);
    EXPECT_LT(angleBetVectors(Vector{1, 0, 0}, Vector{1e-9, 1, 0}), 90.0);
}

TEST(Angles, ZeroVectorLogsAndGivesZero) {
    Recorder rec;
    EXPECT_EQ(angleBetVectors(Vector{0, 0, 0}, Vector{1, 2, 3}), 0.0);
    EXPECT_EQ(angleBetVectors(Vector{1, 2, 3}, Vector{0, 0, 0}), 0.0);
    ASSERT_EQ(rec.log.size(), 2u);
    EXPECT_EQ(rec.log[0].first, "angleBetVectors: invalid vector");
    EXPECT_EQ(rec.log[0].second, 1);
}

TEST(Angles, RotatePointXY) {
    double x = 0, y = 0;
    RotatePointXY(1, 0, 90, x, y);
    EXPECT_NEAR(x, 0.0, 1e-12);
    EXPECT_NEAR(y, 1.0, 1e-12);
    RotatePointXY(0, 2, 90, x, y); // starts from AngleFromXY(0, 2) = pi/2
    EXPECT_NEAR(x, -2.0, 1e-12);
    EXPECT_NEAR(y, 0.0, 1e-12);
    RotatePointXY(0, 0, 45, x, y);
    EXPECT_EQ(x, 0.0);
    EXPECT_EQ(y, 0.0);
    double px = 3, py = 4;
    RotatePointXY(px, py, 180, px, py); // outputs may be the inputs
    EXPECT_NEAR(px, -3.0, 1e-9);
    EXPECT_NEAR(py, -4.0, 1e-9);
}

TEST(Angles, RotatePointAboutKeepsZAndMayWriteIntoThePoint) {
    Vector p{2, 1, 7};
    RotatePointAbout(p, Vector{1, 1, -5}, 90, p);
    EXPECT_NEAR(p[0], 1.0, 1e-12);
    EXPECT_NEAR(p[1], 2.0, 1e-12);
    EXPECT_EQ(p[2], 7.0);
}
