// Long runs and bad input in the workbench: cancel by Escape, by the Cancel button and by closing
// during a run; groups with no polygons, one triangle, degenerate and non-manifold triangles, and an
// open mesh whose border penalties divide by zero. The source group is never touched.
#include "WorkbenchTestSupport.h"

#include "MeshMaker.h"
#include "workbench/ReducePolys.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <filesystem>

using namespace vexil;
using namespace vexil::test;
using simplify::SimplifyOutcome;

namespace {

class Runs : public WorkbenchTest {
protected:
    // The state a cancelled or failed run must leave: no output, the working copy shown, idle.
    void expectIdleOnTheCopy() {
        EXPECT_EQ(form->OutputGroup(), 0);
        EXPECT_EQ(form->ShownGroup(), form->WorkingGroup());
        EXPECT_EQ(ZELMAR_group_is_disable(form->WorkingGroup()), 0);
        EXPECT_FALSE(form->Busy());
        EXPECT_TRUE(form->Frame5->isEnabled());
        EXPECT_TRUE(form->cmdSimplify->isEnabled());
        EXPECT_FALSE(form->cmdCancel->isEnabled());
        EXPECT_TRUE(form->lblSimp->text().isEmpty());
    }
    // Only the render group's subtree and the source exist: no group was left behind.
    int liveGroups() {
        int n = 0;
        for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g)) ++n;
        return n;
    }
};

TEST_F(Runs, EscapeDuringARunCancelsItAndTheNextRunStartsFromTheCopy) {
    const int big = makeBoxWithLid(root, 16);
    formSurfaceSimplification& f = open(big);
    f.YieldIntervalMs = 0; // let events through after every contraction
    const int groups = liveGroups();
    QCoreApplication::postEvent(&f, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    simplifyAt(90);
    EXPECT_EQ(f.LastResult().outcome, SimplifyOutcome::Cancelled);
    EXPECT_GT(f.Yields(), 0);
    EXPECT_EQ(f.lblProgress->text(), formSurfaceSimplification::CancelledText());
    expectIdleOnTheCopy();
    EXPECT_EQ(liveGroups(), groups);
    EXPECT_TRUE(f.isVisible()); // Escape cancels, it does not close

    // the next run is one from the copy and gives what a fresh session gives
    simplifyAt(80);
    ASSERT_EQ(f.LastResult().outcome, SimplifyOutcome::Reduced) << f.LastResult().message;
    EXPECT_FALSE(f.LastResult().continued);
    simplify::SimplifySession fresh;
    fresh.Open(f.WorkingGroup());
    const simplify::SimplifyResult r = fresh.Run(f.Session().TargetForReduction(80), {});
    EXPECT_EQ(trianglesOf(f.OutputGroup()), trianglesOf(r.outputGroup));
}

TEST_F(Runs, TheCancelButtonStopsARunAndClosingDuringARunClosesAfterIt) {
    const int big = makeBoxWithLid(root, 16);
    formSurfaceSimplification& f = open(big);
    f.YieldIntervalMs = 0;
    simplifyAt(50);
    ASSERT_NE(f.OutputGroup(), 0);
    QMetaObject::invokeMethod(f.cmdCancel, [&] { f.cmdCancel->click(); }, Qt::QueuedConnection);
    simplifyAt(90); // a deeper run that would go on, cancelled: the earlier output went at its start
    EXPECT_EQ(f.LastResult().outcome, SimplifyOutcome::Cancelled);
    expectIdleOnTheCopy();

    QMetaObject::invokeMethod(&f, [&] { f.close(); }, Qt::QueuedConnection);
    simplifyAt(90);
    EXPECT_EQ(f.LastResult().outcome, SimplifyOutcome::Cancelled);
    EXPECT_TRUE(waitUntil([&] { return !f.isVisible(); }));
    EXPECT_TRUE(f.Unloaded());
    EXPECT_EQ(SurfSimpOutputGroup(), 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(big), root);
}

TEST_F(Runs, AGroupWithoutPolygonsIsExplainedAndTheWindowGoesWithoutAGroup) {
    const int empty = ZELMAR_group_create("Empty");
    ZELMAR_group_set_father_group(empty, root);
    const int groups = liveGroups();
    dlg.execAnswers.push_back([&](QDialog& d) {
        d.show();
        EXPECT_TRUE(waitUntil([&] { return !d.isVisible(); })); // it closes itself after the message
        return int(QDialog::Rejected);
    });
    EXPECT_EQ(ShowSurfaceSimplification(empty), 0);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("The group has no polygons to reduce."));
    EXPECT_EQ(liveGroups(), groups);
    EXPECT_EQ(ZELMAR_group_get_father_group(empty), root);

    // a handle that is no group at all
    dlg.execAnswers.push_back([&](QDialog& d) {
        d.show();
        EXPECT_TRUE(waitUntil([&] { return !d.isVisible(); }));
        return int(QDialog::Rejected);
    });
    EXPECT_EQ(ShowSurfaceSimplification(987654), 0);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 2);
    EXPECT_EQ(liveGroups(), groups);
}

TEST_F(Runs, OneTriangleReducesToNothingAtAHundredPercentAndToItselfAtZero) {
    const int one = meshToGroup(simplify_test::makeOneTriangle(), "One", root);
    formSurfaceSimplification& f = open(one);
    EXPECT_EQ(f.lblOriginal->text(), QStringLiteral("1"));
    simplifyAt(0);
    ASSERT_NE(f.OutputGroup(), 0);
    EXPECT_EQ(f.lblSimp->text(), QStringLiteral("1"));
    EXPECT_EQ(trianglesOf(f.OutputGroup()), trianglesOf(f.WorkingGroup()));
    simplifyAt(100);
    EXPECT_NE(f.LastResult().outcome, SimplifyOutcome::Failed) << f.LastResult().message;
    ASSERT_NE(f.OutputGroup(), 0);
    EXPECT_EQ(f.lblSimp->text(), QStringLiteral("0"));
    simplifyAt(100); // nothing is left to contract: still an output, empty
    EXPECT_NE(f.LastResult().outcome, SimplifyOutcome::Failed);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(one), 1);
}

TEST_F(Runs, DegenerateAndNonManifoldTrianglesReduceWithoutHarm) {
    simplify_test::MeshData mesh = simplify_test::makeNonManifold(6, 3);
    // a triangle with two equal corners and one with three points on a line
    const int base = static_cast<int>(mesh.vertices.size());
    for (const auto& xyz : {std::array<double, 3>{0, 0, 5}, {1, 0, 5}, {2, 0, 5}}) {
        simplify_test::MeshVertex v;
        v.xyz[0] = xyz[0], v.xyz[1] = xyz[1], v.xyz[2] = xyz[2];
        mesh.vertices.push_back(v);
    }
    mesh.faces.push_back({{base, base + 1, base + 1}});
    mesh.faces.push_back({{base, base + 1, base + 2}});
    const int g = meshToGroup(mesh, "Odd", root);
    const auto before = trianglesOf(g);
    formSurfaceSimplification& f = open(g);
    for (double pct : {50.0, 90.0, 100.0, 20.0}) {
        simplifyAt(pct);
        if (f.LastResult().outcome == SimplifyOutcome::Failed) {
            EXPECT_FALSE(f.LastResult().message.empty());
            expectIdleOnTheCopy();
        } else {
            ASSERT_NE(f.OutputGroup(), 0);
            EXPECT_EQ(f.lblSimp->text().toInt(), ZELMAR_group_get_number_of_polygons(f.OutputGroup()));
        }
    }
    EXPECT_EQ(trianglesOf(g), before);
}

TEST_F(Runs, DivisionByZeroInABorderPenaltyIsExplainedAndTheNextRunWorks) {
    const char* bunny = "/usr/share/glmark2/models/bunny.obj";
    if (!std::filesystem::exists(bunny)) GTEST_SKIP() << "glmark2-data not installed";
    const simplify_test::MeshData part = simplify_test::firstFaces(simplify_test::loadObj(bunny), 2500);
    const int g = meshToGroup(part, "BunnyPart", root);
    formSurfaceSimplification& f = open(g);
    ASSERT_EQ(f.Session().OriginalTriangles(), 2500);
    const int groups = liveGroups();
    simplifyAt(90);
    ASSERT_EQ(f.LastResult().outcome, SimplifyOutcome::Failed);
    ASSERT_GE(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.contains(QStringLiteral("Division by zero")));
    expectIdleOnTheCopy();
    EXPECT_EQ(liveGroups(), groups);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(g), 2500);
    simplifyAt(20);
    EXPECT_EQ(f.LastResult().outcome, SimplifyOutcome::Reduced);
    EXPECT_FALSE(f.LastResult().continued);
    EXPECT_EQ(f.lblSimp->text().toInt(), 2000);
}

} // namespace
