// The typed transform panel: offsets and absolute values, object and world space, one undo step per apply,
// clear refusals of bad values.
#include "GizmoTestSupport.h"
#include "frame/Dialogs.h"
#include "gizmo/frmTransformParameters.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

using namespace vexil;
using namespace vexil::test;

namespace {

using P3 = std::array<double, 3>;

class TypedTransformPanel : public GizmoFixture {
  protected:
    void SetUp() override {
        GizmoFixture::SetUp();
        panel = std::make_unique<frmTransformParameters>(*views, host.stack);
        panel->show();
    }
    void TearDown() override {
        panel.reset();
        GizmoFixture::TearDown();
    }
    void type(const QString& x, const QString& y, const QString& z) {
        panel->txtValue[0]->setText(x);
        panel->txtValue[1]->setText(y);
        panel->txtValue[2]->setText(z);
    }
    void expectNear(const P3& a, const P3& b, double tol = 1e-9) {
        for (size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(a[k], b[k], tol) << "component " << k;
    }
    std::unique_ptr<frmTransformParameters> panel;
    ScriptedDialogs dialogs;
};

TEST_F(TypedTransformPanel, MoveByOffsetAndToAnAbsoluteLocationOneUndoStepEach) {
    selectBoxByClick();
    const int base = host.stack.GetChangesSinceSave();
    panel->SetKind(TransformKind::Move);
    type("10", "-20", "2.5");
    QTest::mouseClick(panel->cmdApply, Qt::LeftButton);
    expectNear(location(box), {10, -20, 2.5});
    EXPECT_EQ(host.stack.GetChangesSinceSave(), base + 1);
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionMove);

    panel->optAbsolute->setChecked(true);
    // The fields show where the selection stands.
    EXPECT_EQ(panel->txtValue[0]->text(), QStringLiteral("10"));
    EXPECT_EQ(panel->lblValue[0]->text(), QStringLiteral("X Position"));
    type("100", "200", "300");
    QTest::keyClick(panel->txtValue[2], Qt::Key_Return);
    expectNear(location(box), {100, 200, 300});
    EXPECT_EQ(host.stack.GetChangesSinceSave(), base + 2);
    ASSERT_TRUE(undo());
    expectNear(location(box), {10, -20, 2.5});
    ASSERT_TRUE(undo());
    expectNear(location(box), {0, 0, 0});
    EXPECT_EQ(dialogs.count("msgBox"), 0);
}

TEST_F(TypedTransformPanel, ObjectSpaceFollowsTheGroupsOwnAxes) {
    selectBoxByClick();
    const double quarter[3] = {0, 0, 90};
    ZELMAR_group_rotate(box, quarter, 0); // the box's x axis now points along world y
    panel->SetKind(TransformKind::Move);
    panel->optObjectSpace->setChecked(true);
    type("10", "0", "0");
    ASSERT_TRUE(panel->cmdApply_Click());
    expectNear(location(box), {0, 10, 0});

    // A turn about the group's own x axis is what the engine does with its group space.
    const int twin = ZELMAR_group_duplicate_tree(box);
    const double own[3] = {30, 0, 0};
    ZELMAR_group_rotate(twin, own, 1);
    panel->SetKind(TransformKind::Rotate);
    EXPECT_FALSE(panel->optAbsolute->isEnabled());
    panel->optObjectSpace->setChecked(true);
    type("30", "0", "0");
    ASSERT_TRUE(panel->cmdApply_Click());
    for (int p = ZELMAR_group_get_first_polygon(box), q = ZELMAR_group_get_first_polygon(twin); p && q;
         p = ZELMAR_group_get_next_polygon(p), q = ZELMAR_group_get_next_polygon(q))
        for (int a = ZELMAR_polygon_get_first_point(p), b = ZELMAR_polygon_get_first_point(q); a && b;
             a = ZELMAR_point_get_next_point(a), b = ZELMAR_point_get_next_point(b)) {
            P3 pa{}, pb{};
            ZELMAR_point_get_xyz(a, pa.data());
            ZELMAR_point_get_xyz(b, pb.data());
            expectNear(pa, pb, 1e-7);
        }
    // One undo step turns it back.
    ASSERT_TRUE(undo());
    P3 d = dimensions(box);
    expectNear(d, {100, 100, 100}, 1e-7);
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionMove);
}

TEST_F(TypedTransformPanel, WorldTurnsOfAnAxesTurnReproduceIt) {
    // A turn about tilted axes, as three world turns: the same matrix.
    const std::array<P3, 3> axes{P3{0, 1, 0}, P3{-1, 0, 0}, P3{0, 0, 1}};
    const P3 w = WorldTurnsOfAxesTurns(axes, {90, 0, 0});
    // About the group's x (= world y) by 90 degrees.
    EXPECT_NEAR(w[0], 0, 1e-9);
    EXPECT_NEAR(w[1], 90, 1e-9);
    EXPECT_NEAR(w[2], 0, 1e-9);
    const P3 id = WorldTurnsOfAxesTurns({P3{1, 0, 0}, P3{0, 1, 0}, P3{0, 0, 1}}, {10, 20, 30});
    expectNear(id, {10, 20, 30});
}

TEST_F(TypedTransformPanel, ScaleByFactorsAndToASize) {
    selectBoxByClick();
    panel->SetKind(TransformKind::Scale);
    EXPECT_EQ(panel->txtValue[1]->text(), QStringLiteral("1"));
    EXPECT_FALSE(panel->optObjectSpace->isEnabled());
    type("2", "1", "0.5");
    ASSERT_TRUE(panel->cmdApply_Click());
    expectNear(dimensions(box), {200, 100, 50});
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionScale);
    panel->optAbsolute->setChecked(true);
    EXPECT_EQ(panel->txtValue[0]->text(), QStringLiteral("200"));
    type("10", "20", "30");
    ASSERT_TRUE(panel->cmdApply_Click());
    expectNear(dimensions(box), {10, 20, 30});
    ASSERT_TRUE(undo());
    expectNear(dimensions(box), {200, 100, 50});
    ASSERT_TRUE(undo());
    expectNear(dimensions(box), {100, 100, 100});
}

TEST_F(TypedTransformPanel, BadValuesAreRefusedWithAMessageAndChangeNothing) {
    const int base = host.stack.GetChangesSinceSave();
    // Nothing selected.
    panel->SetKind(TransformKind::Move);
    type("1", "2", "3");
    EXPECT_FALSE(panel->cmdApply_Click());
    ASSERT_EQ(dialogs.count("msgBox"), 1);
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("No group selected"));

    selectBoxByClick();
    const int selected = host.stack.GetChangesSinceSave();
    EXPECT_EQ(selected, base + 1);
    type("1", "abc", "3");
    EXPECT_FALSE(panel->cmdApply_Click());
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("Offset Y: \"abc\" is not a number."));
    type("1", "2", "inf");
    EXPECT_FALSE(panel->cmdApply_Click());
    EXPECT_EQ(dialogs.count("msgBox"), 3);
    panel->SetKind(TransformKind::Scale);
    type("1", "0", "1");
    EXPECT_FALSE(panel->cmdApply_Click());
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("A scale factor must be greater than 0."));
    panel->optAbsolute->setChecked(true);
    type("10", "-1", "10");
    EXPECT_FALSE(panel->cmdApply_Click());
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("A size must be greater than 0."));
    EXPECT_EQ(host.stack.GetChangesSinceSave(), selected);
    expectNear(location(box), {0, 0, 0});
    expectNear(dimensions(box), {100, 100, 100});
}

TEST_F(TypedTransformPanel, UpAndDownStepByThePreferences) {
    Prefs().MoveStep = 25;
    Prefs().RotateStep = 15;
    Prefs().ScaleStep = 2;
    panel->SetKind(TransformKind::Move);
    EXPECT_EQ(panel->lblStep->text(), QStringLiteral("Step: 25"));
    QTest::keyClick(panel->txtValue[0], Qt::Key_Up);
    QTest::keyClick(panel->txtValue[0], Qt::Key_Up);
    EXPECT_EQ(panel->txtValue[0]->text(), QStringLiteral("50"));
    QTest::keyClick(panel->txtValue[1], Qt::Key_Down);
    EXPECT_EQ(panel->txtValue[1]->text(), QStringLiteral("-25"));
    panel->SetKind(TransformKind::Rotate);
    QTest::keyClick(panel->txtValue[2], Qt::Key_Up);
    EXPECT_EQ(panel->txtValue[2]->text(), QStringLiteral("15"));
    panel->SetKind(TransformKind::Scale);
    QTest::keyClick(panel->txtValue[0], Qt::Key_Up);
    QTest::keyClick(panel->txtValue[1], Qt::Key_Down);
    EXPECT_EQ(panel->txtValue[0]->text(), QStringLiteral("2"));
    EXPECT_EQ(panel->txtValue[1]->text(), QStringLiteral("0.5"));
}

TEST_F(TypedTransformPanel, PointsMoveThroughTheSameActionAsTheGizmo) {
    selectBoxByClick();
    WeldTable().EnterGroup(box);
    host.mode = SelectMode::Point;
    const int pol = ZELMAR_group_get_first_polygon(box);
    const int pt = ZELMAR_polygon_get_first_point(pol);
    Sel().SelPts.Append(pt);
    model->ComputeSelPtsAvgCenter();
    P3 before{};
    ZELMAR_point_get_xyz(pt, before.data());
    panel->SetKind(TransformKind::Move);
    type("0", "0", "7");
    ASSERT_TRUE(panel->cmdApply_Click());
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionMoveGrpPoints);
    P3 after{};
    ZELMAR_point_get_xyz(pt, after.data());
    expectNear(after, {before[0], before[1], before[2] + 7});
    panel->SetKind(TransformKind::Rotate);
    type("0", "0", "90");
    ASSERT_TRUE(panel->cmdApply_Click()); // a single point turns about itself
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionRotateGrpPoints);
    ASSERT_TRUE(undo());
    ASSERT_TRUE(undo());
    ZELMAR_point_get_xyz(pt, after.data());
    expectNear(after, before);
}

} // namespace
