// The workbench window on a box with a lid: runs by percentage and by keys, the toggle between
// original and simplified, locking points chosen by rectangle, zero-error mode, the options, the
// camera, the debug keys and help.
#include "WorkbenchTestSupport.h"

#include "simplify/SimplifySession.h"
#include "workbench/UpDown.h"

#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QToolButton>
#include <cmath>
#include <set>

using namespace vexil;
using namespace vexil::test;
using simplify::SimplifyOutcome;

namespace {

class Window : public WorkbenchTest {
protected:
    void SetUp() override {
        WorkbenchTest::SetUp();
        box = makeBoxWithLid(root);
        polygonsBefore = countPolygons(box);
    }
    static int countPolygons(int group) {
        int n = 0;
        for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p)) ++n;
        return n;
    }
    // What a fresh run from the working group's copy gives, in a session of its own.
    std::vector<std::array<double, 9>> freshRun(int target, const simplify::SimplifyOptions& o = {},
                                                const std::vector<std::int32_t>& locked = {}) {
        simplify::SimplifySession s;
        s.Open(form->WorkingGroup());
        s.SetLockedPoints(locked);
        const simplify::SimplifyResult r = s.Run(target, o);
        EXPECT_NE(r.outputGroup, 0) << r.message;
        auto tris = trianglesOf(r.outputGroup);
        ZELMAR_group_delete_members(r.outputGroup);
        return tris;
    }
    int box = 0;
    int polygonsBefore = 0;
};

TEST_F(Window, LoadsATriangulatedCopyUnderItsOwnRenderGroupAndLeavesTheSourceAlone) {
    formSurfaceSimplification& f = open(box);
    ASSERT_NE(f.WorkingGroup(), 0);
    EXPECT_EQ(f.OriginalFather(), root);
    EXPECT_EQ(ZELMAR_group_get_father_group(f.WorkingGroup()), f.RenderGroup());
    EXPECT_STREQ(ZELMAR_group_get_name(f.RenderGroup()), "GroupToRenger");
    EXPECT_EQ(ZELMAR_group_get_father_group(f.RenderGroup()), 0); // never in the world's tree
    const int triangles = ZELMAR_group_get_number_of_polygons(f.WorkingGroup());
    EXPECT_GT(triangles, polygonsBefore); // quads became pairs
    EXPECT_EQ(f.lblOriginal->text().toInt(), triangles);
    EXPECT_EQ(f.Session().OriginalTriangles(), triangles); // the model is built once, nothing contracted
    EXPECT_EQ(f.Session().Triangles(), triangles);
    EXPECT_EQ(f.OutputGroup(), 0);
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Surface Simplification."));
    // the view shows the working copy: some pixels are not the background
    const QImage& img = f.picBox->BackBuffer();
    ASSERT_FALSE(img.isNull());
    int lit = 0;
    for (int y = 0; y < img.height(); y += 4)
        for (int x = 0; x < img.width(); x += 4) lit += (img.pixel(x, y) & 0xffffff) != 0;
    EXPECT_GT(lit, 50);
    EXPECT_EQ(ZELMAR_group_get_father_group(box), root);
    EXPECT_EQ(countPolygons(box), polygonsBefore);
}

TEST_F(Window, HalfByTheNumericPadWithShiftGoesOnRunByRunAndEqualsAFreshRunAndOneToggles) {
    formSurfaceSimplification& f = open(box);
    keyPress(Qt::Key_1, QStringLiteral("1")); // nothing to toggle before a run
    EXPECT_EQ(f.ShownGroup(), f.WorkingGroup());
    EXPECT_EQ(ZELMAR_group_is_disable(f.WorkingGroup()), 0);

    const int triangles = f.Session().OriginalTriangles();
    keys.press(Qt::Key_Shift);
    int continued = 0;
    for (int i = 0; i < 25; ++i) {
        keyPress(Qt::Key_Plus, QStringLiteral("+"), Qt::KeypadModifier);
        ASSERT_NE(f.LastResult().outcome, SimplifyOutcome::Failed) << f.LastResult().message;
        continued += f.LastResult().continued;
    }
    keys.release(Qt::Key_Shift);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("50"));
    EXPECT_GE(continued, 20); // each deeper step goes on from the last
    const int out = f.OutputGroup();
    ASSERT_NE(out, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(out), f.RenderGroup());
    const int simp = ZELMAR_group_get_number_of_polygons(out);
    EXPECT_EQ(f.lblSimp->text().toInt(), simp);
    const int target = static_cast<int>(std::nearbyint(triangles * 0.5));
    EXPECT_LE(simp, target);
    EXPECT_GE(simp, target - 2);
    EXPECT_EQ(trianglesOf(out), freshRun(target));

    // "1" shows the original, and again the simplified
    EXPECT_EQ(f.ShownGroup(), out);
    EXPECT_EQ(ZELMAR_group_is_disable(f.WorkingGroup()), 1);
    keyPress(Qt::Key_1, QStringLiteral("1"));
    EXPECT_EQ(f.ShownGroup(), f.WorkingGroup());
    EXPECT_EQ(ZELMAR_group_is_disable(f.WorkingGroup()), 0);
    EXPECT_EQ(ZELMAR_group_is_disable(out), 1);
    keyPress(Qt::Key_1, QStringLiteral("1"));
    EXPECT_EQ(f.ShownGroup(), out);
    EXPECT_EQ(ZELMAR_group_is_disable(out), 0);

    // going back to 30% starts again from the copy; the old output is gone
    keys.press(Qt::Key_Shift);
    for (int i = 0; i < 10; ++i) keyPress(Qt::Key_Minus, QStringLiteral("-"), Qt::KeypadModifier);
    keys.release(Qt::Key_Shift);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("30"));
    EXPECT_EQ(ZELMAR_group_is_group(out), 0);
    EXPECT_EQ(trianglesOf(f.OutputGroup()), freshRun(static_cast<int>(std::nearbyint(triangles * 0.7))));
}

TEST_F(Window, UpDownStepsByOneTwoAndAHalfAndClampsAndTheUKeyRuns) {
    formSurfaceSimplification& f = open(box);
    QToolButton* up = f.UpDown1->UpButton();
    QToolButton* down = f.UpDown1->DownButton();
    up->click();
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("1"));
    EXPECT_EQ(f.UpDown1->Value(), 0); // back at rest
    keys.press(Qt::Key_Shift);
    up->click();
    keys.release(Qt::Key_Shift);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("3"));
    keys.press(Qt::Key_Alt);
    down->click();
    keys.release(Qt::Key_Alt);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("2.5"));
    EXPECT_EQ(f.OutputGroup(), 0); // a click alone only changes the percentage
    for (int i = 0; i < 3; ++i) down->click();
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("0"));
    f.SetReduction(99.5);
    keys.press(Qt::Key_Shift);
    up->click();
    keys.release(Qt::Key_Shift);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("100"));
    f.SetReduction(40);
    keys.press(Qt::Key_U); // U held: the click runs too
    up->click();
    keys.release(Qt::Key_U);
    EXPECT_EQ(f.lblReduction->text(), QStringLiteral("41"));
    ASSERT_NE(f.OutputGroup(), 0);
    EXPECT_EQ(f.lblSimp->text().toInt(), ZELMAR_group_get_number_of_polygons(f.OutputGroup()));
}

TEST_F(Window, RectangleSelectionWithCtrlAndShiftAndLockedPointsSurviveAReduction) {
    formSurfaceSimplification& f = open(box);
    keyPress(Qt::Key_Backspace); // to point selection
    ASSERT_TRUE(f.opnSelectPts->isChecked());
    const QSize s = f.picBox->size();
    const QPoint c(s.width() / 2, s.height() / 2);
    drag(c - QPoint(60, 60), c);
    std::vector<std::int32_t> first = f.Session().Model().SelectedPts();
    ASSERT_GT(first.size(), 3u);
    EXPECT_FALSE(f.picBox->RubberBandShown());
    EXPECT_GE(f.picBox->CirclesDrawn(), static_cast<int>(first.size())); // marked in the view

    keys.press(Qt::Key_Control); // CTRL adds
    drag(c, c + QPoint(60, 60));
    keys.release(Qt::Key_Control);
    const std::vector<std::int32_t> both = f.Session().Model().SelectedPts();
    EXPECT_GT(both.size(), first.size());
    for (std::int32_t p : first) EXPECT_NE(std::find(both.begin(), both.end(), p), both.end());
    keys.press(Qt::Key_Shift); // SHIFT removes
    drag(c, c + QPoint(60, 60));
    keys.release(Qt::Key_Shift);
    EXPECT_EQ(std::set<std::int32_t>(f.Session().Model().SelectedPts().begin(), f.Session().Model().SelectedPts().end()),
              std::set<std::int32_t>(first.begin(), first.end()));
    // the whole view, front faces only, against all points
    drag(QPoint(1, 1), QPoint(s.width() - 2, s.height() - 2));
    const std::size_t front = f.Session().Model().SelectedPts().size();
    f.chkIgnoreBckFaced->setChecked(false);
    drag(QPoint(1, 1), QPoint(s.width() - 2, s.height() - 2));
    const std::size_t all = f.Session().Model().SelectedPts().size();
    EXPECT_LT(front, all);

    // a rectangle of points locked, reduced hard: each stays near where it was (two locked
    // neighbours may still merge, into one of them); without the lock some go far
    f.chkIgnoreBckFaced->setChecked(true);
    drag(c - QPoint(60, 60), c);
    first = f.Session().Model().SelectedPts();
    std::vector<std::array<double, 3>> where;
    for (std::int32_t p : first) {
        const double* xyz = f.Session().Model().PointCoords(p);
        where.push_back({xyz[0], xyz[1], xyz[2]});
    }
    auto farthest = [&](int group) { // of the locked places, from the nearest output vertex
        const auto tris = trianglesOf(group);
        double worst = 0;
        for (const auto& w : where) {
            double best = 1e300;
            for (const auto& t : tris)
                for (int k = 0; k < 3; ++k)
                    best = std::min(best, std::hypot(t[k * 3] - w[0], t[k * 3 + 1] - w[1], t[k * 3 + 2] - w[2]));
            worst = std::max(worst, best);
        }
        return worst;
    };
    const double size = 100; // the box's edge
    f.chkLockSelVertices->click();
    simplifyAt(90);
    ASSERT_NE(f.OutputGroup(), 0) << f.LastResult().message;
    EXPECT_FALSE(f.LastResult().continued);
    EXPECT_LT(farthest(f.OutputGroup()), 0.2 * size);
    f.chkLockSelVertices->click();
    f.Session().Model().ResetPtSelection();
    simplifyAt(90);
    EXPECT_GT(farthest(f.OutputGroup()), 0.2 * size);

    // one point alone and locked is never merged away, and stays close by; unselected it goes
    const int lone = first.front();
    const double* at = f.Session().Model().PointCoords(lone);
    const std::array<double, 3> place{at[0], at[1], at[2]};
    EXPECT_FALSE(f.Session().Model().PointValid(lone));
    simplifyAt(0); // all points are there again to be chosen
    double x = 0, y = 0;
    ASSERT_TRUE(f.picBox->project(place.data(), x, y));
    drag(QPoint(int(x) - 3, int(y) - 3), QPoint(int(x) + 3, int(y) + 3));
    ASSERT_EQ(f.Session().Model().SelectedPts(), std::vector<std::int32_t>{lone});
    f.chkLockSelVertices->click();
    simplifyAt(90);
    EXPECT_TRUE(f.Session().Model().PointValid(lone));
    const double* now = f.Session().Model().PointCoords(lone);
    EXPECT_LT(std::hypot(now[0] - place[0], now[1] - place[1], now[2] - place[2]), 1e-6 * size);
}

TEST_F(Window, ZeroErrorModeSetsThePercentageFromTheCounts) {
    formSurfaceSimplification& f = open(box);
    f.chkZeroErrSimp->click();
    EXPECT_TRUE(f.Session().Model().ZeroErrorMode);
    f.cmdSimplify->click();
    ASSERT_NE(f.OutputGroup(), 0);
    const int original = f.lblOriginal->text().toInt();
    const int simp = f.lblSimp->text().toInt();
    EXPECT_LT(simp, original); // the flat faces' inner points go at no cost
    EXPECT_GT(simp, 0);
    const double expected = std::nearbyint(double(original - simp) / original * 1000.0) / 10.0;
    EXPECT_EQ(f.lblReduction->text(), QString::number(expected));
    EXPECT_DOUBLE_EQ(f.Reduction(), expected);
}

TEST_F(Window, AHundredPercentEndsWhenNoContractionIsLegalAndStillShowsTheOutput) {
    formSurfaceSimplification& f = open(box);
    simplifyAt(100);
    ASSERT_EQ(f.LastResult().outcome, SimplifyOutcome::CannotSimplifyFurther);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Can't simplify further!"));
    ASSERT_NE(f.OutputGroup(), 0);
    EXPECT_EQ(f.ShownGroup(), f.OutputGroup());
    EXPECT_EQ(f.lblSimp->text(), QString::number(ZELMAR_group_get_number_of_polygons(f.OutputGroup())));
    EXPECT_TRUE(f.lblProgress->text().isEmpty()); // the output's building clears it
    simplifyAt(50); // fewer reductions afterwards start again from the copy
    EXPECT_EQ(f.LastResult().outcome, SimplifyOutcome::Reduced);
    EXPECT_FALSE(f.LastResult().continued);
}

TEST_F(Window, GeometryOnlyClearsAndDisablesTheBorderOptionsAndOptionsRestartTheNextRun) {
    formSurfaceSimplification& f = open(box);
    f.chkPrtTxrSm->click();
    f.chkProtectPolClrBndr->click();
    f.chkProsGeomOnly->click();
    EXPECT_FALSE(f.chkPrtTxrSm->isChecked());
    EXPECT_FALSE(f.chkProtectPolClrBndr->isChecked());
    EXPECT_FALSE(f.chkPrtTxrSm->isEnabled());
    EXPECT_FALSE(f.chkProtectPolClrBndr->isEnabled());
    f.chkProsGeomOnly->click();
    EXPECT_TRUE(f.chkPrtTxrSm->isEnabled());
    EXPECT_TRUE(f.chkProtectPolClrBndr->isEnabled());

    simplifyAt(30);
    EXPECT_FALSE(f.LastResult().continued);
    simplifyAt(50); // deeper, same options: goes on
    EXPECT_TRUE(f.LastResult().continued);
    f.chkProtectPolClrBndr->click(); // an option changed: from the copy
    simplifyAt(60);
    EXPECT_FALSE(f.LastResult().continued);
    EXPECT_EQ(trianglesOf(f.OutputGroup()),
              freshRun(f.Session().TargetForReduction(60), simplify::SimplifyOptions{false, false, false, true, false}));
    EXPECT_TRUE(f.Frame5->isEnabled());
    EXPECT_FALSE(f.Busy());
}

TEST_F(Window, TheCameraRevolvesWithTheLeftButtonAndZoomsWithTheRightWithinItsLimits) {
    formSurfaceSimplification& f = open(box);
    ASSERT_TRUE(f.opnMoveCam->isChecked());
    const double theta = f.Camera().Theta, dist = f.Camera().Dist;
    double before[3], after[3];
    ZELMAR_camera_get_location(f.Camera().CamHandle, before);
    drag(QPoint(100, 100), QPoint(160, 100));
    ZELMAR_camera_get_location(f.Camera().CamHandle, after);
    EXPECT_NE(f.Camera().Theta, theta);
    EXPECT_NE(after[0], before[0]);
    drag(QPoint(100, 100), QPoint(100, 140), Qt::RightButton);
    EXPECT_GT(f.Camera().Dist, dist);
    keyPress(Qt::Key_PageUp);
    EXPECT_EQ(f.Camera().ZoomSensitivity, 2.0);
    keyPress(Qt::Key_PageDown);
    keyPress(Qt::Key_PageDown);
    EXPECT_EQ(f.Camera().ZoomSensitivity, 0.5);
    for (int i = 0; i < 20; ++i) drag(QPoint(100, 400), QPoint(100, 0), Qt::RightButton);
    EXPECT_EQ(f.Camera().Dist, f.Camera().MinDist);
    keyPress(Qt::Key_F2);
    EXPECT_TRUE(f.WireframeMode());
    keyPress(Qt::Key_F2);
    EXPECT_FALSE(f.WireframeMode());
}

TEST_F(Window, DebugKeysWalkTheModelIntoTheCaptionAndDrawTheirRecords) {
    formSurfaceSimplification& f = open(box);
    simplifyAt(50);
    keyPress(Qt::Key_Period, QStringLiteral("."));
    keyPress(Qt::Key_Period, QStringLiteral("."));
    const QRegularExpression line(QStringLiteral("^Pt=(\\d+)  Edge=(\\d+)  Tri=(\\d+) EdgContractionCost = (\\S+)$"));
    QRegularExpressionMatch m = line.match(f.windowTitle());
    ASSERT_TRUE(m.hasMatch()) << f.windowTitle().toStdString();
    EXPECT_EQ(m.captured(1).toInt(), f.Session().Model().PtCursor());
    EXPECT_TRUE(f.Session().Model().PointValid(m.captured(1).toInt()));
    EXPECT_GE(f.picBox->CirclesDrawn(), 1); // the point and its triangles and edges
    EXPECT_GE(f.picBox->LinesDrawn(), 3);
    keyPress(Qt::Key_Apostrophe, QStringLiteral("'"));
    m = line.match(f.windowTitle());
    ASSERT_TRUE(m.hasMatch());
    const int edge = m.captured(2).toInt();
    EXPECT_GT(edge, 0);
    EXPECT_EQ(m.captured(4).toDouble(), f.Session().Model().GetEdgCost(edge));
    keyPress(Qt::Key_BracketRight, QStringLiteral("]"));
    keyPress(Qt::Key_BracketRight, QStringLiteral("]"));
    keyPress(Qt::Key_BracketLeft, QStringLiteral("["));
    m = line.match(f.windowTitle());
    ASSERT_TRUE(m.hasMatch());
    EXPECT_EQ(m.captured(3).toInt(), f.Session().Model().TriCursor());
    keyPress(Qt::Key_M, QStringLiteral("m"));
    EXPECT_TRUE(f.DebugFlag1());
    const int lines = f.picBox->LinesDrawn();
    keyPress(Qt::Key_B, QStringLiteral("b"));
    EXPECT_TRUE(f.DebugFlag2());
    EXPECT_GT(f.picBox->LinesDrawn(), lines); // the edges the last contraction touched
    keyPress(Qt::Key_Backspace);
    EXPECT_TRUE(f.opnSelectPts->isChecked());
    keyPress(Qt::Key_Backspace);
    EXPECT_TRUE(f.opnMoveCam->isChecked());
}

TEST_F(Window, HelpShowsTheNineHintsInOneMessageAndF1Too) {
    formSurfaceSimplification& f = open(box);
    f.cmdHlp->click();
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    const QStringList lines = dlg.last(QStringLiteral("msgBox"))->text.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 9);
    EXPECT_EQ(lines.front(), QStringLiteral("Press 1 to toggle between original and simplified model."));
    EXPECT_EQ(lines.back(), QStringLiteral("When in 'Select Vertices' mode, keep CTRL pressed to add to selection or keep "
                                           "SHIFT pressed to remove from selection."));
    keyPress(Qt::Key_F1);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 2);
}

TEST_F(Window, UnloadHandsTheOutputOverUnderTheOriginalFatherAndDisposesOfTheRest) {
    formSurfaceSimplification& f = open(box);
    simplifyAt(50);
    const int out = f.OutputGroup(), working = f.WorkingGroup(), render = f.RenderGroup();
    const int cam = f.Camera().CamHandle;
    ASSERT_NE(out, 0);
    keyPress(Qt::Key_1, QStringLiteral("1")); // the output is hidden now
    f.close();
    EXPECT_TRUE(f.Unloaded());
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(SurfSimpOutputGroup(), out);
    EXPECT_EQ(ZELMAR_group_get_father_group(out), root);
    EXPECT_EQ(ZELMAR_group_is_disable(out), 0);
    EXPECT_STREQ(ZELMAR_group_get_name(out), "Simplified_version");
    EXPECT_EQ(ZELMAR_group_is_group(working), 0);
    EXPECT_EQ(ZELMAR_group_is_group(render), 0);
    EXPECT_EQ(ZELMAR_camera_is_camera(cam), 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(box), root); // the caller decides about the original
    EXPECT_EQ(countPolygons(box), polygonsBefore);
}

} // namespace
