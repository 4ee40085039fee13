// Reduce Polys in the main window with the sample world: the workbench on the tower, the tower
// replaced in one undoable step, undo bringing the very same group back; no group, no run.
#include "Form1Fixture.h"
#include "WorkbenchTestSupport.h"

#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "engine/EntityNaming.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

using namespace vexil;
using vexil::test::Form1Test;
using vexil::test::waitUntil;

namespace {

class ReducePolys : public Form1Test {
protected:
    void SetUp() override {
        Form1Test::SetUp();
        start(QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""));
        ASSERT_TRUE(form->WorldOpen());
        root = form->Document()->RootGrp;
        tower = GroupUsingName("Tower");
        ASSERT_NE(tower, 0);
    }
    void select(int group) {
        QTreeWidgetItem* n = form->GroupTree->Node(QStringLiteral("Group%1").arg(group));
        ASSERT_NE(n, nullptr);
        form->GroupTree->trwGroupView_NodeClick(n);
    }
    QTreeWidgetItem* node(int group) { return form->GroupTree->Node(QStringLiteral("Group%1").arg(group)); }
    int root = 0, tower = 0;
};

TEST_F(ReducePolys, TheTowerIsReplacedInOneStepAndUndoBringsTheSameGroupBack) {
    select(tower);
    const int towerPolys = ZELMAR_group_get_number_of_polygons(tower);
    ScriptedDialogs dlg;
    int simplified = 0, shownSimp = 0;
    dlg.execAnswers.push_back([&](QDialog& d) {
        auto& f = dynamic_cast<formSurfaceSimplification&>(d);
        f.show();
        EXPECT_TRUE(waitUntil([&] { return f.Activated(); }));
        f.SetReduction(80);
        f.cmdSimplify->click();
        simplified = f.OutputGroup();
        shownSimp = f.lblSimp->text().toInt();
        f.close();
        return int(QDialog::Accepted);
    });
    const int top = form->UndoStackPtr()->UBound();
    form->mnuReducePols->trigger();
    ASSERT_EQ(dlg.count(QStringLiteral("exec")), 1);
    ASSERT_NE(simplified, 0);
    EXPECT_EQ(form->UndoStackPtr()->UBound(), top + 1);

    const SelectionState& s = Sel();
    EXPECT_EQ(s.CurrSelEntityType, 1);
    EXPECT_EQ(s.CurrSelEntity, simplified);
    EXPECT_EQ(EntityName(simplified), "Tower01");
    EXPECT_EQ(ZELMAR_group_get_father_group(simplified), root);
    EXPECT_EQ(ZELMAR_group_is_disable(simplified), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(simplified), shownSimp);
    EXPECT_LT(shownSimp, towerPolys * 2);
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Tower01"));
    EXPECT_NE(node(simplified), nullptr);
    EXPECT_EQ(node(tower), nullptr);
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), 0); // kept for the undo
    EXPECT_EQ(GroupUsingName("GroupToRenger"), 0);
    EXPECT_EQ(CameraUsingName("camSurfSim"), 0);

    form->mnuUndo->trigger();
    EXPECT_EQ(s.CurrSelEntity, tower);
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), root);
    EXPECT_EQ(ZELMAR_group_is_disable(tower), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(tower), towerPolys);
    EXPECT_NE(node(tower), nullptr);
    EXPECT_EQ(node(simplified), nullptr);
    EXPECT_EQ(ZELMAR_group_get_father_group(simplified), 0);

    form->mnuRedo->trigger();
    EXPECT_EQ(s.CurrSelEntity, simplified);
    EXPECT_EQ(ZELMAR_group_get_father_group(simplified), root);
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), 0);
}

TEST_F(ReducePolys, WithoutAGroupItAsksForOneAndWithoutARunNothingChanges) {
    ScriptedDialogs dlg;
    form->mnuReducePols->trigger();
    EXPECT_EQ(dlg.count(QStringLiteral("exec")), 0);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Please select a single group first."));

    select(tower);
    const int top = form->UndoStackPtr()->UBound();
    dlg.execAnswers.push_back([&](QDialog& d) {
        auto& f = dynamic_cast<formSurfaceSimplification&>(d);
        f.show();
        EXPECT_TRUE(waitUntil([&] { return f.Activated(); }));
        f.close();
        return int(QDialog::Rejected);
    });
    form->mnuReducePols->trigger();
    EXPECT_EQ(form->UndoStackPtr()->UBound(), top);
    EXPECT_EQ(Sel().CurrSelEntity, tower);
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), root);
    EXPECT_NE(node(tower), nullptr);
    EXPECT_EQ(GroupUsingName("Simplified_version"), 0);
}

} // namespace
