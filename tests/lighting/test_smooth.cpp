// Light smoothing on engine groups: weld sets, averaged normals under the threshold, hard edges kept,
// Clear All, the threshold's up-down, and polygons that have no normal.
#include "../support/OffscreenApp.h"
#include "builders/Primitives.h"
#include "frame/InputState.h"
#include "lighting/frmSmoothLight.h"
#include "lighting/mdlSmoothLight.h"
#include "selection/SelectionState.h"

#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

using N = std::array<double, 3>;

N normalOf(int point) {
    N n{};
    ZELMAR_point_get_normal(point, n.data());
    return n;
}

N planeOf(int polygon) {
    double p[4] = {0, 0, 0, 0};
    ZELMAR_polygon_get_plane(polygon, p);
    return {p[0], p[1], p[2]};
}

std::vector<int> polygonsOf(int g) {
    std::vector<int> all;
    for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p))
        all.push_back(p);
    return all;
}

double dot(const N& a, const N& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

class Smooth : public ::testing::Test {
  protected:
    void SetUp() override {
        test::offscreenApp();
        root = ZELMAR_group_create("the_world");
    }
    void TearDown() override {
        Sel().Clear();
        ZELMAR_engine_close();
    }
    int root = 0;
};

TEST_F(Smooth, ASphereGetsNormalsAlongItsRadiiAndClearAllMakesItFlatAgain) {
    const int g = CreateSphere().Create(100, 12, {0, 0, 0}, root);
    const std::vector<int> pols = polygonsOf(g);
    ASSERT_GT(pols.size(), 100u);
    const int written = SmoothLight(pols, 45);
    EXPECT_EQ(written, int(pols.size()) * 4);
    double worstSmooth = 1, worstFlat = 1;
    for (int pol : pols)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            N at{};
            ZELMAR_point_get_xyz(pt, at.data());
            const double r = std::sqrt(dot(at, at));
            const N radial{at[0] / r, at[1] / r, at[2] / r};
            worstSmooth = std::min(worstSmooth, dot(normalOf(pt), radial));
            worstFlat = std::min(worstFlat, dot(planeOf(pol), radial));
            EXPECT_NEAR(dot(normalOf(pt), normalOf(pt)), 1.0, 1e-12);
        }
    // Flat faces of a 12-row sphere lean about 10 degrees from the radius at their corners; the averaged
    // normals far less.
    EXPECT_LT(worstFlat, 0.99);
    EXPECT_GT(worstSmooth, 0.995) << worstSmooth;
    // The result depends only on the polygons at each spot, not on the order they are given in.
    std::vector<N> first;
    for (int pol : pols)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            first.push_back(normalOf(pt));
    std::vector<int> shuffled = pols;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
    SmoothClearAll(pols);
    SmoothLight(shuffled, 45);
    size_t i = 0;
    for (int pol : pols)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt), ++i)
            for (size_t k = 0; k < 3; ++k)
                EXPECT_NEAR(normalOf(pt)[k], first[i][k], 1e-12);

    SmoothClearAll(pols);
    for (int pol : pols)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            EXPECT_EQ(normalOf(pt), planeOf(pol));
}

TEST_F(Smooth, ABoxKeepsItsEdgesHardUnderTheThresholdAndRoundsThemAt180) {
    const int g = CreateBox().Create(100, 100, 100, 1, 1, 1, {0, 0, 0}, root);
    const std::vector<int> pols = polygonsOf(g);
    ASSERT_EQ(pols.size(), 6u);
    // Weld sets: eight corners, three points each.
    const auto sets = BuildWeldSets(pols);
    ASSERT_EQ(sets.size(), 8u);
    for (const auto& s : sets)
        EXPECT_EQ(s.size(), 3u);
    // 0 and 89 degrees: only coplanar neighbours would be averaged, so every point has its face's normal.
    for (double t : {0.0, 89.0}) {
        SmoothLight(pols, t);
        for (int pol : pols)
            for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
                for (size_t k = 0; k < 3; ++k)
                    EXPECT_NEAR(normalOf(pt)[k], planeOf(pol)[k], 1e-12) << t;
    }
    // 180 degrees: all three faces at a corner are averaged.
    SmoothLight(pols, 180);
    const double c = 1 / std::sqrt(3.0);
    for (int pol : pols)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            N at{};
            ZELMAR_point_get_xyz(pt, at.data());
            for (size_t k = 0; k < 3; ++k)
                EXPECT_NEAR(normalOf(pt)[k], at[k] > 0 ? c : -c, 1e-12);
        }
    // Nothing selected: nothing happens.
    EXPECT_EQ(SmoothLight({}, 90), 0);
    EXPECT_EQ(SmoothClearAll({}), 0);
}

TEST_F(Smooth, PolygonsWithoutANormalAndPointsWithoutALocationAreLeftAlone) {
    const int g = ZELMAR_group_create("odd");
    ZELMAR_group_set_father_group(g, root);
    // A flat sliver (all points on a line) beside a proper triangle that shares a corner with it.
    const double line[3][6] = {{0, 0, 0, 0, 0, 100}, {10, 0, 0, 0, 0, 100}, {20, 0, 0, 0, 0, 100}};
    const double tri[3][6] = {{0, 0, 0, 0, 0, 100}, {0, 10, 0, 0, 0, 100}, {10, 0, 0, 0, 0, 100}};
    const int a = ZELMAR_polygon_create(), b = ZELMAR_polygon_create();
    for (auto& v : line)
        ZELMAR_polygon_add_point(a, v);
    for (auto& v : tri)
        ZELMAR_polygon_add_point(b, v);
    for (int p : {a, b}) {
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
    }
    ASSERT_EQ(planeOf(a), (N{0, 0, 0}));
    const N before = normalOf(ZELMAR_polygon_get_first_point(a));
    SmoothLight({a, b}, 180);
    EXPECT_EQ(normalOf(ZELMAR_polygon_get_first_point(a)), before);
    for (int pt = ZELMAR_polygon_get_first_point(b); pt != 0; pt = ZELMAR_point_get_next_point(pt))
        for (size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(normalOf(pt)[k], planeOf(b)[k], 1e-12);
    // A point without a location joins no set.
    const double nan = std::nan("");
    ZELMAR_point_set_xyz(ZELMAR_polygon_get_first_point(b), N{nan, 0, 0}.data());
    EXPECT_NO_THROW(SmoothLight({a, b}, 180));
    EXPECT_EQ(BuildWeldSets({b}).size(), 3u);
}

TEST_F(Smooth, TheThresholdStepsByOneTwoOrAHalfAndStaysWithinHalfATurn) {
    EXPECT_EQ(StepSmoothThreshold(45, 0, false, false), 45);
    EXPECT_EQ(StepSmoothThreshold(45, 1, false, false), 46);
    EXPECT_EQ(StepSmoothThreshold(45, -1, true, false), 43);
    EXPECT_EQ(StepSmoothThreshold(45, 1, false, true), 45.5);
    EXPECT_EQ(StepSmoothThreshold(179.5, 1, true, false), 180);
    EXPECT_EQ(StepSmoothThreshold(0.5, -1, false, false), 0);

    // The panel: the up-down returns to 0 after each step; Smooth acts on the selected polygons.
    FakeInputState keys;
    frmSmoothLight panel;
    EXPECT_EQ(panel.cmdSmoothLight->text(), QStringLiteral("Smooth"));
    EXPECT_EQ(panel.cmdSmoothClearAll->text(), QStringLiteral("Clear All"));
    EXPECT_EQ(panel.lblSmoothAng->text(), QStringLiteral("45"));
    panel.updwnSmoothLight->stepUp();
    EXPECT_EQ(panel.Threshold(), 46);
    EXPECT_EQ(panel.updwnSmoothLight->value(), 0);
    keys.press(Qt::Key_Alt);
    panel.updwnSmoothLight->stepDown();
    keys.releaseAll();
    EXPECT_EQ(panel.Threshold(), 45.5);
    EXPECT_EQ(panel.lblSmoothAng->text(), QStringLiteral("45.5"));
    const int g = CreateBox().Create(100, 100, 100, 1, 1, 1, {0, 0, 0}, root);
    const std::vector<int> pols = polygonsOf(g);
    for (int p : {pols[0], pols[2]})
        Sel().SelPols.Append(p);
    std::vector<N> untouched;
    for (int pt = ZELMAR_polygon_get_first_point(pols[1]); pt != 0; pt = ZELMAR_point_get_next_point(pt))
        untouched.push_back(normalOf(pt));
    panel.SetThreshold(180);
    panel.cmdSmoothLight->click();
    // Only the selected faces are touched.
    size_t i = 0;
    for (int pt = ZELMAR_polygon_get_first_point(pols[1]); pt != 0; pt = ZELMAR_point_get_next_point(pt))
        EXPECT_EQ(normalOf(pt), untouched[i++]);
    bool smoothed = false;
    for (int pt = ZELMAR_polygon_get_first_point(pols[0]); pt != 0; pt = ZELMAR_point_get_next_point(pt))
        smoothed = smoothed || normalOf(pt) != planeOf(pols[0]);
    EXPECT_EQ(smoothed, std::find(pols.begin(), pols.end(), pols[2]) != pols.end() &&
                            BuildWeldSets({pols[0], pols[2]}).size() < 8u);
    panel.cmdSmoothClearAll->click();
    for (int pt = ZELMAR_polygon_get_first_point(pols[0]); pt != 0; pt = ZELMAR_point_get_next_point(pt))
        EXPECT_EQ(normalOf(pt), planeOf(pols[0]));
}

} // namespace
