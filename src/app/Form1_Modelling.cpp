// Form1: point and polygon editing. The Edit Geometry panel, the mode combos that fill the weld table, the
// cut and align hand-offs of the viewports, and the object tools (src/modelling).
#include "Form1.h"

#include "Form1_Selection.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "builders/CreatePanel.h"
#include "modelling/EditGeometry.h"
#include "modelling/ModellingActions.h"
#include "modelling/ObjectToolDialogs.h"
#include "materials/PolygonSurfacePanel.h"
#include "modelling/frmEditGeom.h"
#include "modelling/mdlCutPols.h"
#include "selection/SelectionModel.h"
#include "selection/WeldedPoints.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QComboBox>
#include <QLabel>
#include <QTabWidget>
#include <zelmar/zelmar.h>

namespace vexil {

void Form1::cmbObj_Change() {
    const QString obj = cmbObj->currentText();
    const bool geometry = obj == GetLocaleString(323), texture = obj == GetLocaleString(324);
    if (EditGeomPanel) {
        EditGeomPanel->setVisible(geometry);
        const QString geom = cmbObjEditGeom->currentText();
        EditGeomPanel->ShowMode(!geometry ? 0 : geom == GetLocaleString(325) ? 1 : 2);
    }
    cmbObjEditGeom->setVisible(geometry);
    // The create panel belongs to "New Object", the surface panel to the editing modes.
    if (frmCreate) frmCreate->setVisible(!geometry && !texture);
    if (frmPolSurface) frmPolSurface->setVisible(geometry || texture);
    // The weld table holds the group under edit while its points or polygons can be edited.
    InstallModellingActions();
    EditGeometry::EditModeChanged(geometry || texture);
    if (WorldOpen()) UpdateCameras();
}

void Form1::cmbObjEditGeom_Change() {
    cmbObj_Change();
}

void Form1::ReleaseWeldList() {
    WeldTable().Clear();
}

void Form1::MirrorObjects() {
    vexil::MirrorObjects();
}
void Form1::DuplicatGrp() {
    vexil::DuplicatGrp();
}
void Form1::DisplaceGrp() {
    vexil::DisplaceGrp();
}
void Form1::BendGrp() {
    vexil::BendGrp();
}

void Form1::AlignObjects() {
    // The Align button is down: the next click in a view names the target.
    SetStatusPanel(3, GetLocaleString(419));
}

void Form1::AlignObjects_MouseMove(int, int, int) {}

void Form1::AlignObjects_MouseUp(int button, int x, int y) {
    if (button != 1 || !frmPicWins) return;
    const int i = frmPicWins->ActiveWin;
    ZELMAR_camera_set_current(frmPicWins->ViewCams(i).CamHandle, frmPicWins->PicWindow(i)->Target());
    double hit[3];
    int group = 0, polygon = 0;
    int target = 0;
    if (ZELMAR_engine_2D_point_to_3D(x, y, hit, &group, &polygon) == 1 && group != 0)
        if (SelectionModel* m = FormSelection()) target = m->GetTopMostFatherGrpExcludingRootGrp(group);
    if (QAction* align = ToolbarButton(QStringLiteral("Align"))) align->setChecked(false);
    frmPicWins->SetToolMode(0);
    ToolMode = 0;
    if (target != 0) AlignObjectsTo(target);
}

void Form1::DrawPoints(int index, QPainter& p) {
    if (SelectionModel* m = FormSelection()) m->DrawPoints(index, p);
}

void Form1::Cut_MouseDown(int x, int y) {
    mdlCutPols::Instance().CutMouseDown(x, y);
}
void Form1::Cut_MouseMove(int x, int y) {
    mdlCutPols::Instance().CutMouseMove(x, y);
}
void Form1::Cut_MouseUp(int x, int y) {
    mdlCutPols::Instance().CutMouseUp(x, y);
}

} // namespace vexil
