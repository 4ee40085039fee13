// End to end on the main window (offscreen): a box made from the create panel, picked in a viewport,
// dragged by its X handle, undone, redone, saved and loaded again.
#include "MainWindowFixture.h"
#include "app/Form1.h"
#include "frame/InputState.h"
#include "frame/Spinner.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "builders/CreatePanel.h"
#include "app/mdlSubMain.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "app/Form1_Gizmo.h"
#include "selection/SelectionState.h"
#include "gizmo/ViewGizmos.h"
#include "view/frmPicWins.h"
#include "gizmo/frmTransformParameters.h"
#include "view/picWindow.h"

#include <QAction>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>
#include <cmath>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

class Form1Gizmo : public vexil::test::MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        ASSERT_TRUE(form->WorldOpen());
    }
    std::array<double, 3> location(int g) {
        std::array<double, 3> l{};
        ZELMAR_group_get_location(g, l.data());
        return l;
    }

};

TEST_F(Form1Gizmo, CreateDragUndoRedoSaveAndLoad) {
    const int before = form->UndoStack().GetChangesSinceSave();
    const int box = createBox();
    ASSERT_NE(box, 0);
    char name[256] = {};
    ZELMAR_entity_get_name(box, name, 255);
    EXPECT_STREQ(name, "Box01");
    EXPECT_EQ(Sel().CurrSelEntityType, 1);
    EXPECT_EQ(form->UndoStack().GetChangesSinceSave(), before + 1);
    EXPECT_EQ(form->UndoStack().Retrive()->ActionType, AT_ActionCreate);
    EXPECT_NE(form->GroupTree->Node(QStringLiteral("Group%1").arg(box)), nullptr);

    // Deselect with a click in empty space, then pick the box in the top view.
    form->ToolbarButton(QStringLiteral("Select"))->trigger();
    click(0, QPoint(3, 3));
    EXPECT_EQ(Sel().CurrSelEntityType, 0);
    click(0, QPoint(win(0)->width() / 2, win(0)->height() / 2));
    ASSERT_EQ(Sel().CurrSelEntityType, 1);
    ASSERT_EQ(Sel().CurrSelEntity, box);

    // Drag the X handle with the move tool.
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    ASSERT_EQ(form->frmPicWins->ToolMode(), ToolMove);
    TransformGizmo& g = FormGizmos()->Gizmo(0);
    ASSERT_TRUE(g.Place());
    const QPointF c(g.Center2D[0], g.Center2D[1]), tip(g.TipX[0], g.TipX[1]);
    const QPointF dir = (tip - c) / std::hypot(tip.x() - c.x(), tip.y() - c.y());
    const QPoint from = (c + (tip - c) * 0.6).toPoint();
    const auto l0 = location(box);
    drag(0, from, from + (dir * 50).toPoint(), 5);
    const auto l1 = location(box);
    EXPECT_GT(l1[0] - l0[0], 1.0);
    EXPECT_DOUBLE_EQ(l1[1], l0[1]);
    EXPECT_DOUBLE_EQ(l1[2], l0[2]);
    EXPECT_EQ(form->UndoStack().Retrive()->ActionType, AT_ActionMove);

    form->mnuUndo->trigger();
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(location(box)[k], l0[k], 1e-9);
    form->mnuRedo->trigger();
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(location(box)[k], l1[k], 1e-9);

    // Save, close, load: the box is where the drag left it.
    ScriptedDialogs dialogs;
    const QString path = tempPath(QStringLiteral("gizmo world.wld"));
    dialogs.fileAnswers = {path};
    form->mnuSaveAs_Click();
    ASSERT_TRUE(QFileInfo::exists(path));
    form->mnuCloseFile_Click();
    dialogs.fileAnswers = {path};
    form->mnuOpenFile_Click();
    ASSERT_TRUE(form->WorldOpen());
    const int loaded = ZELMAR_group_get_using_name("Box01");
    ASSERT_NE(loaded, 0);
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(location(loaded)[k], l1[k], 1e-9);
    EXPECT_EQ(dialogs.count(QStringLiteral("msgBox")), 0);
}

TEST_F(Form1Gizmo, CreatePanelAndStandardGroups) {
    form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
    CreatePanel& panel = *form->frmCreate;
    EXPECT_EQ(form->cmbNewObjType, panel.cmbNewObjType);
    EXPECT_EQ(panel.cmbNewObjType->currentText(), QStringLiteral("BOX"));
    // Each kind shows its labels and as many boxes as it reads.
    panel.SetKind(PrimitiveKind::Cone);
    EXPECT_EQ(panel.lblBoxDim[0]->text(), QStringLiteral("Radius1"));
    EXPECT_EQ(panel.lblBoxDim[2]->text(), QStringLiteral("Height"));
    EXPECT_TRUE(panel.spnBoxDim[2]->isVisibleTo(&panel));
    EXPECT_FALSE(panel.spnBoxSegments[2]->isVisibleTo(&panel));
    EXPECT_EQ(panel.spnBoxSegments[0]->minimum(), 3);
    panel.SetKind(PrimitiveKind::Sphere);
    EXPECT_EQ(panel.lblBoxSegments[0]->text(), QStringLiteral("Segments"));
    EXPECT_FALSE(panel.spnBoxDim[1]->isVisibleTo(&panel));
    EXPECT_EQ(panel.spnBoxSegments[0]->minimum(), 2);
    // Values typed for a kind stay with it.
    panel.spnBoxDim[0]->SetValue(77);
    panel.SetKind(PrimitiveKind::Torus);
    panel.SetKind(PrimitiveKind::Sphere);
    EXPECT_EQ(panel.spnBoxDim[0]->Value(), 77);

    // A cylinder the builder refuses (101 sides; its message is the builders' test's) leaves nothing on the stack.
    ScriptedDialogs dialogs;
    panel.SetKind(PrimitiveKind::Cylinder);
    const int changes = form->UndoStack().GetChangesSinceSave();
    panel.spnBoxSegments[0]->SetValue(101);
    QTest::mouseClick(panel.cmdCreate, Qt::LeftButton);
    EXPECT_EQ(ZELMAR_group_get_using_name("Cylinder01"), 0);
    EXPECT_EQ(dialogs.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(form->UndoStack().GetChangesSinceSave(), changes);

    // The menu's entries make the kind with the panel's values; a second box takes the next number.
    form->mnuBox->trigger();
    form->mnuBox->trigger();
    EXPECT_NE(ZELMAR_group_get_using_name("Box01"), 0);
    EXPECT_EQ(Sel().CurrSelEntity, ZELMAR_group_get_using_name("Box02"));
    EXPECT_EQ(panel.cmbNewObjType->currentText(), QStringLiteral("BOX"));
    // Undo of a creation takes the group out of the tree and the picture.
    const int box2 = Sel().CurrSelEntity;
    form->mnuUndo->trigger();
    EXPECT_EQ(form->GroupTree->Node(QStringLiteral("Group%1").arg(box2)), nullptr);
    EXPECT_EQ(ZELMAR_group_is_disable(box2), 1);
}

TEST_F(Form1Gizmo, ARightClickOnTheMoveButtonOpensTheTypedPanel) {
    const int box = createBox();
    QAction* move = form->ToolbarButton(QStringLiteral("Move"));
    ASSERT_NE(move, nullptr);
    QWidget* button = nullptr;
    for (QToolBar* bar : form->Toolbar1)
        if (bar && bar->widgetForAction(move)) button = bar->widgetForAction(move);
    ASSERT_NE(button, nullptr);
    QContextMenuEvent e(QContextMenuEvent::Mouse, QPoint(2, 2), button->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(button, &e);
    frmTransformParameters* panel = FormTransformParameters();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->Kind(), TransformKind::Move);
    const double z = location(box)[2]; // a new box stands on the ground
    panel->txtValue[2]->setText(QStringLiteral("40"));
    QTest::mouseClick(panel->cmdApply, Qt::LeftButton);
    EXPECT_NEAR(location(box)[2], z + 40, 1e-9);
    form->mnuUndo->trigger();
    EXPECT_NEAR(location(box)[2], z, 1e-9);
}

} // namespace
