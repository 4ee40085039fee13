// The main window (offscreen): a box made from the create panel, edited through the Edit Geometry panel,
// the gizmo in polygon and point mode, the views' point marks, Align as a tool of the views.
#include "AppTestSupport.h"
#include "app/Form1.h"
#include "app/mdlSubMain.h"
#include "builders/CreatePanel.h"
#include "frame/InputState.h"
#include "gizmo/TransformGizmo.h"
#include "gizmo/ViewGizmos.h"
#include "app/Form1_Gizmo.h"
#include "app/Form1_Selection.h"
#include "modelling/frmEditGeom.h"
#include "selection/SelectionModel.h"
#include "selection/SelectionState.h"
#include "selection/WeldedPoints.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <cmath>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

class Form1Modelling : public vexil::test::AppEnv {
  protected:
    void SetUp() override {
        AppEnv::SetUp();
        form = StartApplication(QString());
        ASSERT_NE(form, nullptr);
        fake = std::make_unique<FakeInputState>();
        form->resize(1100, 800);
        QCoreApplication::processEvents();
    }
    void TearDown() override {
        fake.reset();
        delete form;
        form = nullptr;
        AppEnv::TearDown();
    }
    picWindow* win(int i) { return form->frmPicWins->PicWindow(i); }
    void mouse(int i, QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        const QPoint g = win(i)->mapToGlobal(p);
        fake->setCursorPos(g);
        QMouseEvent e(type, QPointF(p), QPointF(g), b, held, Qt::NoModifier);
        QApplication::sendEvent(win(i), &e);
    }
    void drag(int i, QPoint from, QPoint to, int steps) {
        mouse(i, QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
        fake->press(VkLButton);
        mouse(i, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int s = 1; s <= steps; ++s)
            mouse(i, QEvent::MouseMove, from + (to - from) * s / steps, Qt::NoButton, Qt::LeftButton);
        mouse(i, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
        fake->release(VkLButton);
    }
    void click(int i, QPoint p) { drag(i, p, p, 0); }
    int createBox() {
        form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        form->frmCreate->SetKind(PrimitiveKind::Box);
        QTest::mouseClick(form->frmCreate->cmdCreate, Qt::LeftButton);
        return Sel().CurrSelEntity;
    }
    // Opens Edit Geometry with "Point" or "Polygon".
    void editGeometry(int stringId) {
        form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        form->cmbObj->setCurrentIndex(form->cmbObj->findText(GetLocaleString(323)));
        form->cmbObjEditGeom->setCurrentIndex(form->cmbObjEditGeom->findText(GetLocaleString(stringId)));
    }
    QPoint pixel(int i, const double p[3]) {
        ZELMAR_camera_set_current(form->frmPicWins->ViewCams(i).CamHandle, win(i)->Target());
        int r[2] = {0, 0};
        ZELMAR_engine_3D_point_to_2D(p, r);
        return {r[0], r[1]};
    }
    // Drags the X handle of view i's gizmo by `pixels` along it.
    void dragXHandle(int i, int pixels) {
        TransformGizmo& g = FormGizmos()->Gizmo(i);
        ASSERT_TRUE(g.Place());
        const QPointF c(g.Center2D[0], g.Center2D[1]), tip(g.TipX[0], g.TipX[1]);
        const QPointF dir = (tip - c) / std::hypot(tip.x() - c.x(), tip.y() - c.y());
        const QPoint from = (c + (tip - c) * 0.6).toPoint();
        drag(i, from, from + (dir * pixels).toPoint(), 5);
    }
    int changes() { return form->UndoStack().GetChangesSinceSave(); }

    Form1* form = nullptr;
    std::unique_ptr<FakeInputState> fake;
};

// Found by trying the editor: opening Edit Geometry left the weld table empty, so the polygon-mode gizmo
// moved nothing and still pushed an empty move.
TEST_F(Form1Modelling, OpeningEditGeometryFillsTheWeldTableAndThePolygonGizmoMoves) {
    const int box = createBox();
    ASSERT_NE(0, box);
    editGeometry(329);
    EXPECT_EQ(8, WeldTable().Count()); // the eight corners of the box
    form->mnuSelectAll_Click();
    ASSERT_EQ(6, Sel().SelPols.Count());
    double before[6], after[6];
    ZELMAR_group_get_bounding_box(box, before);
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    const int c0 = changes();
    dragXHandle(0, 40);
    ZELMAR_group_get_bounding_box(box, after);
    EXPECT_GT(after[0] - before[0], 1.0);
    EXPECT_EQ(c0 + 1, changes());
    EXPECT_EQ(AT_ActionMoveGrpPols, form->UndoStack().Retrive()->ActionType);
    // Leaving Edit Geometry empties the table.
    form->cmbObj->setCurrentIndex(0);
    EXPECT_EQ(0, WeldTable().Count());
}

TEST_F(Form1Modelling, PointModeDrawsEveryPointAndADragReportsBentPolygons) {
    const int box = createBox();
    editGeometry(325);
    form->frmPicWins->UpdateCameras();
    const int pt = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(box));
    double xyz[3];
    ZELMAR_point_get_xyz(pt, xyz);
    const QPoint p = pixel(3, xyz); // the perspective view shows every corner apart
    const QImage& img = win(3)->BackBuffer();
    bool blue = false;
    for (int dx = -2; dx <= 2; ++dx)
        for (int dy = -2; dy <= 2; ++dy)
            if (img.valid(p.x() + dx, p.y() + dy) && img.pixelColor(p.x() + dx, p.y() + dy) == QColor(0, 0, 255))
                blue = true;
    EXPECT_TRUE(blue) << "no point mark at " << p.x() << "," << p.y();

    // One corner pulled out of its polygons' planes: the status bar says so during the drag.
    std::vector<int> corner;
    for (int q = ZELMAR_group_get_first_polygon(box); q; q = ZELMAR_group_get_next_polygon(q))
        for (int c = ZELMAR_polygon_get_first_point(q); c; c = ZELMAR_point_get_next_point(c)) {
            double at[3];
            ZELMAR_point_get_xyz(c, at);
            if (at[0] == xyz[0] && at[1] == xyz[1] && at[2] == xyz[2]) corner.push_back(c);
        }
    ASSERT_EQ(3u, corner.size());
    Sel().SelPts.Assign(corner);
    FormSelection()->UpdateSelPtsPolArray();
    FormSelection()->ComputeSelPtsAvgCenter();
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    double moved[3];
    dragXHandle(3, 40);
    ZELMAR_point_get_xyz(pt, moved);
    EXPECT_GT(std::abs(moved[0] - xyz[0]) + std::abs(moved[1] - xyz[1]) + std::abs(moved[2] - xyz[2]), 1.0);
    EXPECT_TRUE(form->StatusPanel[3]->text().contains(QStringLiteral("not flat"))) << form->StatusPanel[3]->text().toStdString();
}

TEST_F(Form1Modelling, ThePanelDeletesAndUndoRefreshesTheCounts) {
    const int box = createBox();
    editGeometry(329);
    EXPECT_TRUE(form->EditGeomPanel->frmEditPol->isVisibleTo(form->EditGeomPanel));
    EXPECT_FALSE(form->EditGeomPanel->frmEditPt->isVisibleTo(form->EditGeomPanel));
    form->mnuSelectAll_Click();
    QTest::mouseClick(form->EditGeomPanel->cmdDeletePol, Qt::LeftButton);
    EXPECT_EQ(0, ZELMAR_group_get_number_of_polygons(box));
    EXPECT_EQ(QStringLiteral("0"), form->StatusPanel[2]->text());
    form->mnuUndo->trigger();
    EXPECT_EQ(6, ZELMAR_group_get_number_of_polygons(box));
    EXPECT_EQ(QStringLiteral("6"), form->StatusPanel[2]->text());
}

// Found by reading the dispatch: the views' Align slot was never pressed, so Align never received a click.
TEST_F(Form1Modelling, AlignIsAToolOfTheViewsAndMovesTheSelectionToTheTarget) {
    const int a = createBox();
    const int b = createBox();
    ASSERT_NE(a, b);
    const double off[3] = {300, 0, 0};
    ZELMAR_group_move(b, off, 0);
    form->frmPicWins->UpdateCameras();
    // a is current; the Align button, then a click on b in the top view.
    form->tabWorkspace->setCurrentIndex(Form1::TabGroups);
    form->SelectEntityFromTree(1, a);
    ASSERT_EQ(a, Sel().CurrSelEntity);
    ScriptedDialogs dlg;
    dlg.execAnswers.push_back([](QDialog&) { return int(QDialog::Accepted); });
    form->ToolbarButton(QStringLiteral("Align"))->trigger();
    EXPECT_EQ(ToolAlign, form->frmPicWins->ToolMode());
    double bl[3];
    ZELMAR_group_get_location(b, bl);
    const int c0 = changes();
    click(0, pixel(0, bl));
    EXPECT_EQ(1, dlg.count(QStringLiteral("exec")));
    double al[3];
    ZELMAR_group_get_location(a, al);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(bl[k], al[k], 1e-9);
    EXPECT_EQ(c0 + 1, changes());
    EXPECT_EQ(AT_ActionAlign, form->UndoStack().Retrive()->ActionType);
    EXPECT_EQ(ToolSelect, form->frmPicWins->ToolMode());
}

} // namespace
