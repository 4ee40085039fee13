// What the selection model needs of the main window. Form1 implements it (src/app/Form1_Selection.cpp);
// tests implement it over real viewports and trees. Every hook of a panel of another subsystem
// (cameras, lights, tracks, backgrounds, texture mapping, plug-ins) has an empty default.
#pragma once
#include "view/ViewportHost.h"

#include <QPoint>
#include <QString>

namespace vexil {

class ActionUndoRedo_Stack;
class frmPicWins;
class trwCamTrackBK;
class trwGroupView;
class trwLight;

class SelectionHost {
  public:
    virtual ~SelectionHost() = default;

    // ---- what the model works on ------------------------------------------------------------------
    virtual ActionUndoRedo_Stack& UndoStack() = 0;
    virtual bool WorldOpen() { return true; }
    virtual int RootGrp() = 0;
    // The viewports (null while the window has none).
    virtual frmPicWins* Views() { return nullptr; }
    virtual trwGroupView* GroupTree() { return nullptr; }
    virtual trwCamTrackBK* CamTrackBkTree() { return nullptr; }
    virtual trwLight* LightTree() { return nullptr; }
    // The sub-object mode, read from tabWorkspace, cmbObj, cmbObjEditGeom, cmbTrackPoint.
    virtual SelectMode CurrentSelectMode() { return SelectMode::Entity; }
    virtual int WorkspaceTab() { return 0; }
    // "Edit Geometry" open in the Edit Group tab (DeleteSelected of points and polygons).
    virtual bool EditGeometryOpen() { return false; }
    virtual bool IgnoreBackFacedForPtSel() { return false; }
    virtual bool IgnoreBackFacedForPolSel() { return false; }
    virtual bool TextureMappingUp() { return false; }

    // ---- markers of cameras and lights (their marker managers) -------------------------------------
    virtual int GetCamHandle(int /*group*/) { return 0; }
    virtual int GetLightHandle(int /*group*/) { return 0; }

    // ---- panels (ThingsToDoOnSelectedEntityChange) --------------------------------------------------
    // txtSelectedGrpName: its text and whether it is enabled.
    virtual void SetSelectedGrpName(const QString& /*text*/, bool /*enabled*/) {}
    // tabWorkspace_ResetGroupsTabToNewObj: cmbObj back to "New Object" alone.
    virtual void ResetGroupsTabToNewObj() {}
    // A group became current: cmbObj refilled with "New Object", "Edit Geometry", "Edit Texture" showing
    // "New Object"; chkGrpDyn, frmEditGeom_SetGrpNameNColor, txtSelPolName "None", the group panel's size.
    virtual void ShowGroupPanel(int /*group*/) {}
    // Step 1: hide the light frame and its scroll bar.
    virtual void HideLightFrame() {}
    // Step 5 for cameras, tracks, lights and backgrounds: close the frame of the previous kind unless the
    // new kind is the same.
    virtual void ClosePanelOfKind(int /*prevType*/, int /*newType*/) {}
    // Step 6 for cameras (2), tracks (3), lights (4) and backgrounds (5).
    virtual void OpenPanelOfKind(int /*type*/, int /*handle*/) {}
    virtual void UpdateEditGeomTabBasedOnPolsSelected() {}
    virtual void InformPluginsOfSelectedEntityChange() {}
    virtual void UpdateStatusBar() {}
    // Panel i (1 to 6) of the status bar; 3 is the status text.
    virtual void SetStatusPanel(int /*panel*/, const QString& /*text*/) {}
    // After the Group menu's enabling changed (mnuGroup_ShowOnlyRelavant), the window applies it.
    virtual void SetGroupMenuEnabled(bool /*group*/, bool /*ungroup*/, bool /*attach*/, bool /*detach*/,
                                     bool /*ungroupAll*/, bool /*del*/) {}
    // The context menu of an entity kind at a screen position (mnuGroupMenu, mnuCamTrkBkMenu, mnuLightMenu),
    // after its obsolete items were hidden.
    virtual void PopupEntityMenu(int /*type*/, QPoint /*globalPos*/) {}
    // The shared refresh of a group's cached geometry after its points moved or its polygons changed hands:
    // its box, the counts of the status bar.
    virtual void RefreshGroup(int /*group*/) {}
    // txtSelPolName of the polygon panel.
    virtual void SetSelPolName(const QString& /*text*/) {}
    // ValidateChangedPolygons: how many changed polygons are not valid (0: all are).
    virtual void ShowInvalidPolygons(int /*count*/) {}
};

} // namespace vexil
