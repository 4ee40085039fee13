// What the four viewports need of the main window. Form1 implements it; src/view never includes Form1.h.
//
// The viewports own their own state (active window, tool mode, cameras, grids, mouse corners); everything
// else they read or trigger goes through this interface. Every hook has an empty default, so that Form1 can
// fill them in as the subsystems that own them arrive (selection, gizmo, cut, align, tracks, plug-ins), and
// tests override only what they watch.
#pragma once
#include <QCoreApplication>
#include <QString>

class QPainter;
class QWidget;

namespace vexil {

class frmPicWins;

// How a click in a viewport is read (selection model): worked out by the main window from its workspace
// tab and combo boxes each time it is asked.
enum class SelectMode {
    Entity = 0,
    Point = 1,
    Polygon = 2,
    TrackPoint = 3,
    TrackPointInsert = 4,
};

class ViewportHost {
  public:
    virtual ~ViewportHost() = default;

    // ---- world ---------------------------------------------------------------------------------------
    virtual bool WorldOpen() { return false; }
    virtual int RootGrp() { return 0; }
    // Largest extent of the world (1000 for a new world).
    virtual double WorldSize() { return 1000.0; }
    // The sensitivity of dolly and wheel (MouseStepFactor): doubled by numeric +, halved by numeric -.
    virtual double CamMoveFactor() { return m_camMoveFactor; }
    virtual void SetCamMoveFactor(double f) { m_camMoveFactor = f; }
    // True after the user chose to end the program from the error dialog: the viewports ignore the mouse.
    virtual bool Terminating() { return false; }

    // ---- selection (read) ---------------------------------------------------------------------------
    virtual int CurrSelEntityType() { return 0; }
    virtual int CurrSelEntity() { return 0; }
    virtual SelectMode CurrentSelectMode() { return SelectMode::Entity; }
    // "Edit Texture" is open: no gizmo, polygon selection.
    virtual bool EditTextureMode() { return false; }
    virtual int SelPtsCount() { return 0; }
    virtual int SelPolsCount() { return 0; }
    virtual void SelPtsAvgCenter(double c[3]) { c[0] = c[1] = c[2] = 0; }
    virtual void SelPolsAvgCenter(double c[3]) { c[0] = c[1] = c[2] = 0; }
    virtual void SelObjsAvgCenter(double c[3]) { c[0] = c[1] = c[2] = 0; }
    // GetSelObjsBoundingBx: the world box of the selection. False lets the viewports work it out from the
    // current entity alone (a group, a camera, a light or a track); the selection model answers for type 6.
    virtual bool GetSelObjsBoundingBx(double /*min*/[3], double /*max*/[3]) { return false; }
    // The current group, camera or light is hidden in its tree (no gizmo, no box).
    virtual bool CurrentEntityHidden() { return false; }
    // Track centre for ZoomExtentSingle on a track.
    virtual bool TrackCenter(int /*track*/, double /*c*/[3]) { return false; }

    // ---- main window controls -----------------------------------------------------------------------
    // Panel i (1 to 6) of StatusBar1; panel 3 is the status text.
    virtual void SetStatusPanel(int /*panel*/, const QString& /*text*/) {}
    // Decimals of displayed numbers ("SignificantDecimals").
    virtual int SignificantDecimals() { return 2; }
    // The polygon cut state: first button of tlbrCut pressed, "Edit Geometry", "Polygon", tab 1.
    virtual bool CutStateActive() { return false; }
    virtual void ReleaseCutButton() {}
    // formCreateTrack is up (a custom track is being laid).
    virtual bool CreateTrackUp() { return false; }
    // IgnoreMouseUp: a command ended a modal state in this click.
    virtual bool IgnoreMouseUp() { return false; }
    // frmTextureMapping is up: refresh it after a polygon selection.
    virtual void RefreshTextureMapping() {}
    // The toolbar button "3D Card Toggle" (frame's toolbar band).
    virtual bool Is3DCardTogglePressed() { return m_3dCard; }
    virtual void Set3DCardTogglePressed(bool pressed) { m_3dCard = pressed; }
    // The "Wireframe" toolbar button.
    virtual void SetWireframePressed(bool /*pressed*/) {}
    // Lets pending events run (DoEvents).
    virtual void ProcessEvents() { QCoreApplication::processEvents(); }
    // mnuWinViewCam: the camera the user picks in formSelectionWindow (action SetWinViewNewCam); 0 when
    // cancelled.
    virtual int ChooseViewCamera() { return 0; }

    // ---- painting hooks, in the order a viewport paints them after the grid and the box ------------
    // The painter draws on the back buffer of viewport `index`, whose camera is current.
    virtual void ScaleSceneCameras(int /*index*/) {}
    virtual void ScaleSceneLights(int /*index*/) {}
    virtual void DrawGizmo(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawPoints(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawSelectedPts(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawSelectedPols(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawTrack(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawSelectedTrackPts(int /*index*/, QPainter& /*p*/) {}
    virtual void DrawCustomTrk(int /*index*/, QPainter& /*p*/) {}
    virtual void Plugin_Paint(int /*index*/, QPainter& /*p*/) {}
    // Type 6: MultiSel's boxes (DrawGrpBndBoxes) or wires (DrawGrpsWires).
    virtual void DrawMultiSelection(int /*index*/, QPainter& /*p*/, bool /*wireframe*/) {}

    // ---- mouse hooks, called by the dispatch in its fixed order ---------------------------------------
    // Plug-ins: true stops the dispatch.
    virtual bool Plugin_MouseMove(int, int /*button*/, int /*shift*/, int /*x*/, int /*y*/) { return false; }
    virtual bool Plugin_MouseUp(int, int /*button*/, int /*shift*/, int /*x*/, int /*y*/) { return false; }
    virtual void Plugin_KeyDown(int /*key*/, int /*shift*/) {}
    // The polygon cut (button 1 only).
    virtual void Cut_MouseDown(int /*x*/, int /*y*/) {}
    virtual void Cut_MouseMove(int /*x*/, int /*y*/) {}
    virtual void Cut_MouseUp(int /*x*/, int /*y*/) {}
    // Align (the "Align" button is on the viewports' tool band).
    virtual void AlignObjects() {}
    virtual void AlignObjects_MouseMove(int /*button*/, int /*x*/, int /*y*/) {}
    virtual void AlignObjects_MouseUp(int /*button*/, int /*x*/, int /*y*/) {}
    // Custom track laid in formCreateTrack; Escape resets it.
    virtual void CreateCustomTrack(int /*button*/, int /*x*/, int /*y*/) {}
    virtual void ResetCustomTrk() {}
    // Gizmo of viewport `index`.
    virtual void Gizmo_MouseDown(int /*index*/, int /*button*/, int /*x*/, int /*y*/) {}
    virtual void Gizmo_MouseUp(int /*index*/, int /*button*/, int /*x*/, int /*y*/) {}
    // picWindow_MouseMove_MoveRotateScale (tools 1 to 3).
    virtual void Gizmo_MouseMoveRotateScale(int /*index*/, int /*button*/, int /*x*/, int /*y*/) {}
    // UpdateTransformGizmo, run on each navigation move.
    virtual void UpdateTransformGizmo(int /*button*/, int /*x*/, int /*y*/) {}
    // Selection: the rubber band (tool 0 moves), track point insertion feedback, and the mouse-up entries.
    virtual void MultipleSelection(int /*button*/, int /*x*/, int /*y*/) {}
    virtual void MonitorInsertTrackPoint(int /*x*/, int /*y*/) {}
    virtual void SelectMultiplePoints() {}
    virtual void SelectMultiplePols() {}
    virtual void SelectMultipleTrackPts() {}
    virtual void InsertTrackPt() {}
    virtual void SelectMultipleObjects() {}
    // After a button 2 entity selection: the context menu of the current type.
    virtual void ShowContextMenu(int /*x*/, int /*y*/) {}

    // ---- key commands of other subsystems --------------------------------------------------------------
    virtual void MirrorObjects() {}
    virtual void ShowSelectionWindow() {}
    virtual void DuplicatGrp() {}
    virtual void DisplaceGrp() {}
    virtual void DeleteSelected() {}

  private:
    double m_camMoveFactor = 1.0;
    bool m_3dCard = false;
};

} // namespace vexil
