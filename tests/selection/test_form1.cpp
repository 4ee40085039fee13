// The selection in the main window with the sample world: tree, list, viewport clicks, the View and Group
// menus and the Delete key, each undone and redone through the Edit menu.
#include "Form1Fixture.h"
#include "frame/InputState.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "selection/SelectionState.h"
#include "view/frmPicWins.h"
#include "selection/ActionTransformSubObject.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <zelmar/zelmar.h>

using namespace vexil;
using vexil::test::Form1Test;

namespace {

class SampleWorld : public Form1Test {
  protected:
    void SetUp() override {
        Form1Test::SetUp();
        start(QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""));
        ASSERT_TRUE(form->WorldOpen());
        root = form->Document()->RootGrp;
    }
    void TearDown() override {
        const QByteArray shot = qgetenv("VEXIL_SEL_SHOT");
        if (!shot.isEmpty() && form) form->grab().save(QString::fromLocal8Bit(shot));
        Form1Test::TearDown();
    }
    void treeClick(const char* name) {
        QTreeWidgetItem* n = form->GroupTree->Node(QStringLiteral("Group%1").arg(GroupUsingName(name)));
        ASSERT_NE(n, nullptr) << name;
        form->GroupTree->trwGroupView_NodeClick(n);
    }
    const SelectionState& sel() { return Sel(); }
    int root = 0;
};

TEST_F(SampleWorld, ATreeClickSelectsAndTheViewMenuHidesAndTheEditMenuUndoes) {
    treeClick("House");
    const int house = GroupUsingName("House");
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, house);
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("House"));
    EXPECT_TRUE(form->mnuUngroup->isEnabled()); // House has parts
    form->mnuHideSelected->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(house), 1);
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(house), 0);
    EXPECT_EQ(sel().CurrSelEntity, house);
    form->mnuRedo->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(house), 1);
    form->mnuUnhideAll->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(house), 0);
}

TEST_F(SampleWorld, TheDeleteKeyDeletesTheSelectedGroupAndUndoBringsItBack) {
    treeClick("Tower");
    const int tower = GroupUsingName("Tower");
    FakeInputState in;
    form->ViewHasFocus = true; // the key table acts for the viewports
    in.press(Qt::Key_Delete);
    form->Form_KeyDown(Qt::Key_Delete, {});
    in.releaseAll();
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), 0);
    EXPECT_EQ(form->GroupTree->Node(QStringLiteral("Group%1").arg(tower)), nullptr);
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_get_father_group(tower), root);
    EXPECT_NE(form->GroupTree->Node(QStringLiteral("Group%1").arg(tower)), nullptr);
}

TEST_F(SampleWorld, TheListAndTheGroupMenuGroupAndUngroupInOneStepEach) {
    ScriptedDialogs dlg;
    dlg.execAnswers.push_back([](QDialog& d) {
        auto* list = d.findChild<QListWidget*>(QStringLiteral("lstSelection"));
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->text() == QStringLiteral("Tower") ||
                list->item(i)->text() == QStringLiteral("Pond"))
                list->item(i)->setSelected(true);
        return int(QDialog::Accepted);
    });
    form->ShowSelectionWindow();
    ASSERT_EQ(sel().CurrSelEntityType, 6);
    dlg.inputAnswers.push_back(QStringLiteral("Landmarks"));
    form->mnuGroupTogether->trigger();
    const int g = GroupUsingName("Landmarks");
    ASSERT_NE(g, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(GroupUsingName("Tower")), g);
    EXPECT_EQ(sel().CurrSelEntity, g);
    form->mnuUngroup->trigger();
    EXPECT_EQ(ZELMAR_group_get_father_group(GroupUsingName("Tower")), root);
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_get_father_group(GroupUsingName("Pond")), g);
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_get_father_group(GroupUsingName("Pond")), root);
    EXPECT_EQ(ZELMAR_group_get_father_group(g), 0);
}

TEST_F(SampleWorld, AClickInAViewportSelectsATopLevelGroupAndABandSeveral) {
    form->show();
    QCoreApplication::processEvents();
    form->ZoomExtentAll();
    picWindow* w = form->picWindow[2];
    const QPoint centre(w->width() / 2, w->height() / 2);
    auto send = [&](QEvent::Type t, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        QMouseEvent e(t, QPointF(p), QPointF(w->mapToGlobal(p)), b, held, Qt::NoModifier);
        QApplication::sendEvent(w, &e);
    };
    send(QEvent::MouseButtonPress, centre, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, centre, Qt::LeftButton, Qt::NoButton);
    ASSERT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(ZELMAR_group_get_father_group(sel().CurrSelEntity), root);
    const QPoint a(2, 2), b(w->width() - 3, w->height() - 3);
    send(QEvent::MouseButtonPress, a, Qt::LeftButton, Qt::LeftButton);
    for (int s = 1; s <= 3; ++s) {
        QMouseEvent m(QEvent::MouseMove, QPointF(a + (b - a) * s / 3),
                      QPointF(w->mapToGlobal(a + (b - a) * s / 3)), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
        QApplication::sendEvent(w, &m);
    }
    send(QEvent::MouseButtonRelease, b, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_GE(sel().MultiSel.GrpCount, 5);
    for (int g : sel().MultiSel.Groups())
        EXPECT_EQ(ZELMAR_group_get_father_group(g), root);
    form->mnuUndo->trigger();
    EXPECT_EQ(sel().CurrSelEntityType, 1);
}

TEST_F(SampleWorld, ANewWorldStartsWithNothingSelected) {
    treeClick("Pond");
    ASSERT_EQ(sel().CurrSelEntityType, 1);
    ScriptedDialogs dlg;
    dlg.msgAnswers.push_back(vbNo);
    form->mnuNew_Click();
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    EXPECT_EQ(sel().MultiSel.TotalCount, 0);
}

} // namespace

// After an undo or a redo the group name field, the tree's highlight and the selection box showed the
// state before it.
TEST_F(SampleWorld, UndoAndRedoLeaveTheNameFieldTheTreeAndTheBoxCurrent) {
    const int house = GroupUsingName("House"), tower = GroupUsingName("Tower");
    auto highlighted = [&] { return form->GroupTree->currentItem() ? form->GroupTree->currentItem()->text(0) : QString(); };
    treeClick("House");
    treeClick("Tower");
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Tower"));
    form->mnuUndo->trigger();
    EXPECT_EQ(sel().CurrSelEntity, house);
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("House"));
    EXPECT_EQ(highlighted(), QStringLiteral("House"));
    form->mnuRedo->trigger();
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Tower"));
    EXPECT_EQ(highlighted(), QStringLiteral("Tower"));
    // A rename undone: the field shows the old name again.
    QTreeWidgetItem* n = form->GroupTree->Node(QStringLiteral("Group%1").arg(tower));
    ASSERT_NE(n, nullptr);
    form->GroupTree->trwGroupView_AfterLabelEdit(n, QStringLiteral("Keep"));
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Keep"));
    form->mnuUndo->trigger();
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Tower"));
    EXPECT_EQ(n->text(0), QStringLiteral("Tower"));
    form->mnuRedo->trigger();
    EXPECT_EQ(form->txtSelectedGrpName->text(), QStringLiteral("Keep"));
    // A point move undone: the box is the group's box again.
    frmPicWins* views = form->findChild<frmPicWins*>();
    ASSERT_NE(views, nullptr);
    const int pt = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(tower));
    auto boxTop = [&] {
        views->SelectionBox().Initialize(views->SelectionBox().Group());
        double top = -1e300;
        for (const auto& c : views->SelectionBox().Corners()) top = std::max(top, c[2]);
        return top;
    };
    const double before = boxTop();
    ActionRef move = ActionUndoRedo_Stack::MakeAction(AT_ActionMoveGrpPoints);
    {
        Sel().SelPts.Clear();
        Sel().SelPts.Append(pt);
        auto* a = move->As<ActionMoveGrpPoints>();
        a->SetMovedPtsToCurrSelPts();
        a->SetFrmLoc({0, 0, 0});
        a->SetToLoc({0, 0, 5000});
        double xyz[3];
        ZELMAR_point_get_xyz(pt, xyz);
        xyz[2] += 5000;
        ZELMAR_point_set_xyz(pt, xyz);
        form->UndoStack().Push(move);
    }
    views->SelectionBox().Initialize(tower); // as the gizmo does at the end of a drag
    const auto corners = [&] { return views->SelectionBox().Corners(); };
    double top = -1e300;
    for (const auto& c : corners()) top = std::max(top, c[2]);
    EXPECT_GT(top, before + 4000) << "the box takes the moved point in";
    form->mnuUndo->trigger();
    top = -1e300;
    for (const auto& c : corners()) top = std::max(top, c[2]);
    EXPECT_NEAR(top, before, 1e-6) << "and lets it go after the undo";
}
