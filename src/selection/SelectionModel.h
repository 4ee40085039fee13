// The selection model: what the user is working on, and every way of changing it. Clicks and rubber bands
// in the viewports, tree clicks, the selection list, select all and invert; the one notice of a change
// (ThingsToDoOnSelectedEntityChange); and the entity commands that act on the selection: delete, hide and
// unhide, group, ungroup, attach, detach. Every change pushes its action on the undo stack.
//
// State lives in Sel() (SelectionState.h). The main window owns one model and installs it with
// setSelectionModel, so that undo actions find it; the viewport host forwards its selection hooks here:
//
//   SelectionModel sel(host);                  // host: SelectionHost (Form1 or a test host)
//   setSelectionModel(&sel);
//   ViewportHost::SelectMultipleObjects()  ->  sel.SelectEntitiesAtMouseUp(button)
//   ViewportHost::MultipleSelection(b, x, y)  ->  sel.MultipleSelection(b, x, y)
#pragma once
#include "SelectionHost.h"
#include "SelectionState.h"

#include <QPoint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QPainter;
class QTreeWidgetItem;

namespace vexil {

class formSelectionWindow;

// What one viewport click or band of the model covers, in window pixels, bounds included.
struct PixelRect {
    int lowX = 0, lowY = 0, highX = 0, highY = 0;
    bool IsClick() const { return lowX == highX && lowY == highY; }
    bool Contains(int x, int y) const { return x >= lowX && x <= highX && y >= lowY && y <= highY; }
};

class SelectionModel {
  public:
    explicit SelectionModel(SelectionHost& host);
    ~SelectionModel();
    SelectionModel(const SelectionModel&) = delete;
    SelectionModel& operator=(const SelectionModel&) = delete;

    SelectionHost& Host() { return m_host; }
    frmPicWins* Views() { return m_host.Views(); }
    int RootGrp() { return m_host.RootGrp(); }

    // ---- groups and visibility -----------------------------------------------------------------------
    // Walks the fathers; stops below RootGrp (or at the last father); 0 for a fatherless group.
    int GetTopMostFatherGrpExcludingRootGrp(int group);
    // Hidden as the trees show it: the node's image is the "Invisible" variant of its kind.
    bool IsGrpHidden(int group);
    bool IsCamHidden(int camera);
    bool IsLightHidden(int light);
    bool IsEntityHidden(int kind, int handle);
    // The current group, camera or light is hidden (no gizmo, no box).
    bool CurrentEntityHidden();

    // ---- entity selection (viewport) -----------------------------------------------------------------
    // The stored down and up corners of the viewports, ordered and truncated.
    PixelRect SetUpperAndLowerCorners();
    void SetClickedEntity(int x, int y);
    void FreshObjSelection(const PixelRect& r);
    void AddToObjSelection(const PixelRect& r);
    void RemoveFromObjSelection(const PixelRect& r);
    void RemoveChildGrpSelectedIfAny();
    // Current entity from MultiSel: 0, the one entity's kind (groups, cameras, lights, tracks in that
    // order), or 6. strict: a single entity settles only when its kind's counter is 1 too.
    void SettleCurrentEntity(bool strict = false);
    void SelectMultipleObjects();
    // The mouse-up sequence of buttons 1 and 2 in entity mode: previous := current, SelectMultipleObjects,
    // ThingsToDoOnSelectedEntityChange, UpdateCameras, an ActionSelect if the selection changed.
    void SelectEntitiesAtMouseUp();
    // Button 2 after an entity selection: the context menu of the current kind at the mouse.
    void ShowContextMenu(int x, int y);
    void ComputeSelObjsAvgCenter();
    void SetObjNearestToObjsAvgCenter();

    // ---- the rubber band -------------------------------------------------------------------------------
    void MultipleSelection(int button, int x, int y);
    void DrawSelectionRectangle(int x, int y, int red, int green, int blue);

    // ---- change ----------------------------------------------------------------------------------------
    void SetPrevSelEntityToCurrSelEntity();
    void SetCurrSelEntityToPrevSelEntity();
    bool IsSelectionUnchanged();
    void ThingsToDoOnSelectedEntityChange();
    void treeViewHighlightCurrentSelectedAndDeHighlightPrevSelected();
    void treeViewHighlightNode(int type, int handle, bool mark);
    // After an undo or a redo: the name field, the tree's highlight and the selection box follow the
    // current entity and the points as they are now (the actions restore state, not the views of it).
    void RefreshAfterUndoRedo();
    // Type-1 envelope: recorded and pushed only if the selection changed.
    void PushSelectIfChanged();
    // Makes (kind, handle) current as a tree click does: previous := current, the change notice, a push.
    // kind 7 is a polygon node: its group becomes current and the polygon the polygon selection.
    void SelectEntityFromTree(int kind, int handle);
    void trwCamTrackBK_NodeClick(QTreeWidgetItem* node);
    void trwLight_NodeClick(QTreeWidgetItem* node);
    // Sub-object arrays of the previous entity, kept at the last previous := current (ActionSelect).
    const std::vector<int>& PrevSelPts() const { return m_prevSelPts; }
    const std::vector<int>& PrevSelPols() const { return m_prevSelPols; }

    // ---- points, polygons, track points ---------------------------------------------------------------
    void SelectMultiplePoints();
    void FreshSelection(const PixelRect& r);
    void AddToSelection(const PixelRect& r);
    void RemoveFromSelection(const PixelRect& r);
    bool PtAlreadyPartOfSelPtsArray(int point) const;
    void RemoveFromSelPtsArray(int point);
    void UpdateSelPtsPolArray();
    void ComputeSelPtsAvgCenter();
    void SetPtNearestToAvgCenter();

    void SelectMultiplePols();
    void FreshPolSelection(const PixelRect& r);
    void AddToPolSelection(const PixelRect& r);
    void RemoveFromPolSelection(const PixelRect& r);
    int GetClickedPolOfGrp(int group, int x, int y);
    void UpdateSelPolsRelatedPtsArray();
    void ComputeSelPolsAvgCenter();
    void SetPtNearestToPolsAvgCenter();

    void SelectMultipleTrackPts();
    void FreshTrackPtSelection(const PixelRect& r);
    void AddToTrackPtSelection(const PixelRect& r);
    void RemoveFromTrackPtSelection(const PixelRect& r);
    void ComputeSelTrackPtsAvgCenter();

    // ---- select all, invert ------------------------------------------------------------------------------
    void mnuSelectAll_Click();
    void mnuSelectInvert_Click();
    void SelectAllPoints();
    void SelectAllPols();
    void SelectAllObjects();
    void SelectAllGroups();
    void SelectAllCams();
    void SelectAllLights();

    // The polygons that a sub-object change touched (point mode: the owners of the selected points; polygon
    // mode: every polygon of the selection's welded sets) are asked ZELMAR_polygon_is_valid; the host shows
    // how many are not (bent out of their plane, or without area). Answers that count.
    int ValidateChangedPolygons();

    // ---- overlays ----------------------------------------------------------------------------------------
    // Point mode: a small mark on every point of the current group.
    void DrawPoints(int index, QPainter& p);
    void DrawSelectedPts(int index, QPainter& p);
    void DrawSelectedPols(int index, QPainter& p);
    void DrawSelectedTrackPts(int index, QPainter& p);
    void DrawMultiSelection(int index, QPainter& p, bool wireframe);
    bool GetSelObjsBoundingBx(double mn[3], double mx[3]);

    // ---- the selection list ------------------------------------------------------------------------------
    // Alt+S and the Selection List button: the list with its three kinds, multi-select (action 1).
    void ShowSelectionWindow();
    // Action 0: one camera for a viewport; 0 when cancelled.
    int ChooseViewCamera();
    // Action 2: one group to attach the selection to; 0 when cancelled.
    int ChooseGroupToAttach();
    // SelectMultiple: the ticked list items (tree texts with their kinds) become the selection.
    void SelectMultiple(const std::vector<std::pair<int, int>>& kindAndHandle);

    // ---- deletion and creation ---------------------------------------------------------------------------
    void DeleteGroup(int group);
    void FakeDeleteGroup(int group);
    // Under `father` again, in front of the sibling `before` when it is one (else last), its tree node too.
    void UnDeleteGroup(int group, int father, int before = 0);
    void DeleteMultiple();
    void FakeDeleteMultiple(const vexil::MultipleSelection& set);
    void UnDeleteMultiple(const vexil::MultipleSelection& set, const std::vector<int>& fathers);
    // Delete key and Group > Delete: by the current kind.
    void DeleteSelected();
    void mnuGroupMenuDelete_Click();
    // A group that a command made: it becomes current and one ActionCreate goes on the stack.
    void SelectCreatedGroup(int group);

    // ---- hiding ------------------------------------------------------------------------------------------
    void HideUnhideGroup(int group, bool hide);
    void HideUnhideCamera(int camera, bool hide);
    void HideUnhideLight(int light, bool hide);
    void HideUnhideMultiple(const vexil::MultipleSelection& set, bool hide);
    void HideUnhideEntity(int kind, int handle, const vexil::MultipleSelection* set, bool hide);
    void HideUnhideAllGroups(bool hide);
    void HideUnhideAllCamera(bool hide);
    void HideUnhideAllLight(bool hide);
    // The hidden fathers of a group up to RootGrp, and its hidden descendants.
    std::vector<int> UnhideGroupParents(int group);
    std::vector<int> UnhideGroupChilds(int group);
    void ThingsToDoAfterHiding();
    void ThingsToDoAfterUnhiding();
    void mnuHideSelected_Click();
    void mnuHideUnSelected_Click();
    void mnuUnhideAll_Click();
    void mnuGroupMenuHide_Click();
    void mnuGroupMenuUnhide_Click();
    // Shows the current camera or light (a group: mnuGroupMenuUnhide_Click).
    void mnuUnhideCurrent_Click();
    void mnuLightMenuHideAll_Click(bool hide);
    void mnuCamTrkBkMenuHideAll_Click(bool hide);
    // Sets the selection to (kind, handle, set) and runs the change notice (undo of hide and unhide).
    void RestoreSelection(int kind, int handle, const vexil::MultipleSelection& set);

    // ---- grouping (docs/selection.md) --------------------------------------------------------------------
    void mnuGroupTogether_Click();
    void mnuUngroup_Click();
    void mnuAttach_Click();
    void mnuDetach_Click();
    void mnuGroupMenuRemoveFromGroup_Click();
    void mnuUngroupAll_Click();
    // Makes (or revives) the group `name` under `father` and hangs the children below it; the new group
    // becomes current. Answers the group.
    int GroupSelectedUnderNewGrp(const std::string& name, const std::vector<int>& children, int father);
    // The current group's child groups go to its father; an emptied container is taken away (fake delete).
    // Answers the children moved.
    std::vector<int> SelectedGrpUngroup();
    // Moves each child under its father (RootGrp hangs it at the tree's top), tree nodes included.
    void ChangeFathers(const std::vector<int>& children, const std::vector<int>& fathers);
    // The groups of the current selection (type 1 or the groups of type 6).
    std::vector<int> SelectedGroups();

    // ---- menus ---------------------------------------------------------------------------------------
    void mnuGroup_ShowOnlyRelavant();
    struct GroupMenuItems {
        bool removeFromGroup = false, ungroup = false, hide = false, unhide = false, del = false;
    };
    GroupMenuItems mnuGroupMenu_HideObsoleteItems();

    // ---- world -------------------------------------------------------------------------------------------
    // Unload and load: types 0, counts 0, sets empty.
    void ClearWorldState();

  private:
    // Hide All / Show All of the light tree (lights) or of the camera tree (cameras), as one undo step.
    void hideOrShowAll(bool hide, bool lights);
    void makeActiveCameraCurrent();
    // The selected point nearest to SelPtsAvgCenter, from the points' locations (three per point).
    void nearestPoint(const std::vector<double>& xyz);
    void bandScanEntities(const PixelRect& r, bool adding, bool strictVisibility);
    // hit(point, its polygon) for each point of the current group in the rectangle.
    void scanPoints(const PixelRect& r, bool backFaceTest, const std::function<void(int, int)>& hit);
    void freshSelection(const PixelRect& r, std::vector<int>* owners);
    void scanPolygons(const PixelRect& r, bool backFaceTest, const std::function<void(int)>& hit);
    std::vector<int> scanTrackPoints(const PixelRect& r);
    int keyMode(); // 1 add (Ctrl), 2 remove (Shift), 0 fresh
    void setCurrent(int type, int handle);
    int pushSubSelection(int type, const std::vector<int>& oldSlots, int oldCount);
    void addClickedEntity(bool setCurrentForMarkers);
    void removeEntity(int kind, int handle);
    void highlight(int type, int handle, bool mark);
    void selectAfterGrouping(int type, const std::vector<int>& groups);

    SelectionHost& m_host;
    std::vector<int> m_prevSelPts, m_prevSelPols;
};

// The model the undo actions act through; null when none is installed.
SelectionModel* selectionModel();
void setSelectionModel(SelectionModel* model);

// The tree image of a camera (kind 2) or light (kind 4): "Cam Invisible" / "Light Invisible" when hidden,
// drawn as a greyed copy of the visible image. The selection reads hidden cameras and lights from it.
void MarkHiddenInTree(int kind, int handle, bool hide);

// Permanent deletion of a group (its subtree, polygons and points): only an action's destructor calls it.
void DeleteGroupPermanently(int group);

} // namespace vexil
