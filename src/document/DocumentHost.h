// What the world document needs of the main window. Form1 implements it and owns the
// WorldDocument and the three workspace trees; src/engine never includes Form1.h.
//
// Messages, file dialogs, UI strings, settings, the log and the application folder are not here: the document
// uses the frame's seams directly (src/app: Dialogs.h, Locale.h, Settings.h, ErrLog.h, AppPaths.h).
//
// Every hook has an empty default, so that Form1 can fill them in as the subsystems that own them arrive,
// and tests override only what they watch. The comment of each hook names the documented step it stands for.
#pragma once
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class QWidget;

namespace vexil {

class ActionUndoRedo_Stack;

class DocumentHost {
public:
    virtual ~DocumentHost() = default;

    // ---- frame ---------------------------------------------------------------------------------------
    // The one undo stack. Required.
    virtual ActionUndoRedo_Stack& UndoStack() = 0;
    // The main window, owner of modal forms (formTemplate); may be null in tests.
    virtual QWidget* MainWindow() { return nullptr; }
    // The window's title bar text.
    virtual void SetWindowCaption(const QString& /*caption*/) {}
    // Panel i (1 to 6) of StatusBar1. Panel 1: polygons of the world; 2: of the selection; 3: the status
    // text (group names, "Saving........"); 6: "Please wait!".
    virtual void SetStatusPanel(int /*panel*/, const QString& /*text*/) {}
    // SetMousePtrToHourGlass: busy true gives the four viewports and the screen the hourglass pointer (11),
    // busy false gives them back pointer 0.
    virtual void SetBusyPointers(bool /*busy*/) {}
    // Lets pending events run (DoEvents).
    virtual void ProcessEvents() {}
    // The recent-files list: MruList.AddMRUItem, and RemoveItem + menu rebuild.
    virtual void AddMRUItem(const QString& /*path*/) {}
    virtual void RemoveMRUItem(int /*index*/) {}

    // ---- main window state touched by new, load, add and unload ---------------------------
    // ResetControls: cmbObj to UI string 322, tabWorkspace to tab 4.
    virtual void ResetControls() {}
    // mnu_Update.
    virtual void MenuUpdate() {}
    // tabWorkspace enabled; mnuAddWorld enabled.
    virtual void SetWorkspaceEnabled(bool /*enabled*/) {}
    virtual void SetAddWorldEnabled(bool /*enabled*/) {}
    // The toolbar button "3D Card Toggle" (eighth band of Toolbar1): pressed state, read and set.
    virtual bool Is3DCardTogglePressed() { return false; }
    virtual void Set3DCardTogglePressed(bool /*pressed*/) {}
    // NewWorld step 13: cmbObj to UI string 322 ("New Object"), cmbObjEditGeom to 325 ("Point").
    virtual void SetNewWorldCombos(const QString& /*cmbObjText*/, const QString& /*cmbObjEditGeomText*/) {}
    // NewWorld step 15: populate the texture tree.
    virtual void PopulateTextureTree() {}
    // NewWorld step 16: the camera object of viewport `index` gets the engine camera `handle`.
    virtual void SetViewportCamera(int /*index*/, int /*handle*/) {}
    // NewWorld step 19: offer the templates of the application folder; `load` opens the chosen one.
    virtual void ShowTemplates(const std::function<bool(const QString&)>& /*load*/) {}
    // mnuResetViews_Click.
    virtual void ResetViews() {}
    // The world-changed step (NewWorld 21): clear the stored entity type, SetCurrSelEntityToPrevSelEntity,
    // InformPluginsOfWorldChange. (The document blanks the status text itself.)
    virtual void WorldChanged() {}
    // UnloadWorld step 1: unload frmTextureMapping if it is open.
    virtual void UnloadTextureMapping() {}
    // UnloadWorld steps 3, 4 (tmrAnimPreview), 6, 9, 10, 11: hide frmTrack and clear the track-point count;
    // stop tmrAnimPreview; clear selected item, entity type and handle; clear the three selected-array
    // counts and PrevMultiSel; clear imgTexture; reset CameraMarkers and LightMarkers.
    virtual void ClearWorldState() {}
    // mnuCloseFile_Click: clear the four picWindow surfaces.
    virtual void ClearViewports() {}
    // AddWorld step 9: refresh CameraMarkers and LightMarkers (their first method).
    virtual void RefreshMarkers() {}
    // UpdateCameras.
    virtual void UpdateCameras() {}
    // AddWorldWithOpenDialog: select the added group (type 1), push an ActionCreate with it, redraw the
    // selection box.
    virtual void SelectAddedGroup(int /*group*/) {}
    // the plugin host: the import or export entry of plug-in number `plugin`.
    virtual void PluginImport(int /*plugin*/) {}
    virtual void PluginExport(int /*plugin*/) {}

    // ---- selection, read by UpdateStatusBar and the trees ---------------------------------
    virtual int CurrSelEntityType() { return 0; }
    virtual int CurrSelEntity() { return 0; }
    // The groups of PrevMultiSel (type 6).
    virtual std::vector<int> PrevMultiSelGroups() { return {}; }
    // trwGroupView_NodeClick step 1: a mouse or tool state forbids selection.
    virtual bool SelectionForbidden() { return false; }
    // trwGroupView_NodeClick steps 2, 3 after the entity was found: store the previous current type and
    // entity, make (kind, handle) current, push an ActionSelect unless it was already current, and run
    // ThingsToDoOnSelectedEntityChange. kind 1 for a group; 7 (EntityPolygon) for a polygon.
    virtual void SelectEntityFromTree(int /*kind*/, int /*handle*/) {}
    // txtSelectedGrpName.
    virtual void SetSelectedGroupNameText(const QString& /*text*/) {}

    // ---- tabWorkspace_Click ----------------------------------------------------------------
    virtual void DisableAllTabs() {}
    // EnblDsbl_GrpTab (0), EnblDsbl_EditGrpTab (1), EnblDsbl_CamTab (2), EnblDsbl_LightTab (3).
    virtual void EnableWorkspaceTab(int /*index*/) {}
    // cmbObj refilled with these entries, `chosen` selected.
    virtual void SetCmbObjItems(const QStringList& /*items*/, int /*chosen*/) {}
    // Tab 2: frmCam shown with SetCamWorkspaceFrame and SetCamScrollBar when a camera is current (true),
    // else ResetCamWorkSpaceFrame and HideWorkSpCamScorllBar (false).
    virtual void ShowCameraWorkspace(bool /*cameraCurrent*/) {}
};

} // namespace vexil
