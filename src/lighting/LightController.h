// The lights of the world as entities: creating them, the three levels of deleting them, hiding, the
// markers that stand for them in the viewports, and the commands of the Light menu and the light tree. It
// installs the light operations of the selection model (KindOps(4)), so that the Delete key, the View
// menu, the gizmo, the typed transform panel and the undo actions reach lights through their markers.
//
//   LightController lights(selectionModel);   // the main window owns one, after the selection model
//   lights.CreateLight(0, at);                 // an omnidirectional light; one ActionCreate
#pragma once
#include "LightGrp.h"
#include "selection/EntityKinds.h"

#include <functional>

namespace vexil {

class SelectionModel;
class frmLight;

class LightController {
  public:
    using Vec = LightGrp::Vec;
    explicit LightController(SelectionModel& model);
    ~LightController();
    LightController(const LightController&) = delete;
    LightController& operator=(const LightController&) = delete;

    SelectionModel& Model() { return m_model; }
    LightGrp& Markers() { return m_markers; }

    // ---- the panel --------------------------------------------------------------------------------
    // The Light panel of the light tab (not owned); null until the window makes it.
    void SetPanel(frmLight* panel) { m_panel = panel; }
    frmLight* Panel() const { return m_panel; }
    // Shows or hides the panel's frame with its scroll bar; the window sets it.
    std::function<void(bool)> ShowPanelFrame;
    // OpenPanelOfKind(4): the panel shows the light's parameters.
    void OpenPanel(int light);
    // HideLightFrame.
    void HidePanel();

    // ---- the world ----------------------------------------------------------------------------------
    bool WorldOpen();
    int RootGrp();
    double WorldSize();
    void UpdateCameras();
    // The current light (entity type 4), 0 for none.
    int CurrentLight() const;

    // ---- entities -----------------------------------------------------------------------------------
    // kind 0 omnidirectional, 1 directional, at `at`: named "Light" + the first free number, save flag
    // 1, lighting the whole world; its tree node, its marker; current; one ActionCreate. Answers it.
    int CreateLight(int kind, const Vec& at);
    // At the look-at point of the active view (the Create menu, the light tree's New).
    int CreateLightInView(int kind);
    void FakeDeleteLight(int light);
    void UnDeleteLight(int light);
    // The fake deletion with its ActionDelete pushed first.
    void DeleteLight(int light);
    // The marker and the engine light; only an action's destructor calls it.
    void DeleteLightPermanently(int light);
    void HideUnhideLight(int light, bool hide);

    // ---- menus --------------------------------------------------------------------------------------
    void mnuLightMenuNew_Click();
    void mnuLightMenuDelete_Click();
    void mnuGroupMenuRemoveLight_Click();
    // Every polygon of the current group loses its light map; the bitmaps stay loaded. Not undoable.
    void mnuGroupMenuRemoveLightMaps_Click();

    // ---- what the panel and the dialogs share -----------------------------------------------------
    // ZELMAR_group_remove_light on every top-level group.
    void RemoveLightFromAllGroups();
    // The current light relights the world with its present values, and the views are drawn again.
    void UpdateOnLightChange();
    // After the place of a light changed elsewhere (gizmo, undo): the panel shows it, if it shows that light.
    void RefreshPanelPlacement(int light);

    // ---- markers and the document ---------------------------------------------------------------------
    // A marker for every saved light that has none (world load and add); each light keeps its kind.
    void LoadMarkers();
    // World close: every marker goes.
    void ResetMarkers();
    // ScaleSceneLights of viewport `index` (its camera is current).
    void ScaleSceneLights(int index);

  private:
    void installOps();
    SelectionModel& m_model;
    LightGrp m_markers;
    frmLight* m_panel = nullptr;
    EntityKindOps m_previousOps;
};

// The controller of the main window (or of a test), null when none is made.
LightController* lightController();

} // namespace vexil
