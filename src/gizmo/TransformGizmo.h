// The transform gizmo of one viewport: three handles drawn from the pivot of the selection along the world
// axes (X red, Y green, Z blue), a constant size on screen. A drag along a handle moves, turns or scales
// (the tool of the viewports) whatever the selection mode addresses: the current entity or entities,
// the selected points, the selected polygons or the selected track points. It pushes the undo actions of
// the drag.
//
// The four viewports have one each; the main window forwards the viewports' gizmo hooks to the gizmo of
// the viewport concerned (Form1_Gizmo.cpp):
//
//   gizmo[index]->Draw(painter);                  // DrawGizmo, while the view paints
//   gizmo[index]->MouseDown(button, x, y);        // and MouseMove, MouseUp
#pragma once
#include "SelectionTransforms.h"
#include "selection/SelectionState.h"

#include <QPen>
#include <array>
#include <memory>

class QPainter;

namespace vexil {

class ActionUndoRedo_Stack;
class ActionUndoRedo;
class frmPicWins;

class TransformGizmo {
  public:
    // Handles: 0 X, 1 Y, 2 Z, 3 all three (uniform scale, grabbed on the X handle with Shift), 4 none.
    static constexpr int AxisX = 0, AxisY = 1, AxisZ = 2, AxisAll = 3, AxisNone = 4;
    // Hit tolerance of the handles' ellipse test.
    static constexpr double HitTolerance = 0.2;

    TransformGizmo(frmPicWins& views, int index, ActionUndoRedo_Stack& stack);
    virtual ~TransformGizmo();
    TransformGizmo(const TransformGizmo&) = delete;
    TransformGizmo& operator=(const TransformGizmo&) = delete;

    // ---- state -----------------------------------------------------------------------------------------
    int ActiveAxis = AxisNone;
    std::array<int, 2> LastProj{0, 0}; // (0, 0): no reference yet
    std::array<int, 2> TipX{}, TipY{}, TipZ{}, Center2D{}, Mouse2D{};
    double HandleLen = 0;
    bool Dragging = false;
    Vec3 Pivot{};
    Vec3 AxisDir{};
    Vec3 TotalRotation{};
    Vec3 TotalScale{1, 1, 1}, TotalTrackScale{1, 1, 1};
    double TotalMove = 0;
    double ScaleFactorShown = 1.0;
    // True when the last placement found a selection and a pivot in front of the camera.
    bool Placed = false;

    // ---- operations ------------------------------------------------------------------------------------
    // Places the gizmo for this view (its camera made current) and draws it; nothing without a selection
    // in the current mode or with the pivot behind the camera.
    virtual void Draw(QPainter& p);
    // Works out pivot, handle length and the pixels of pivot and tips; false when there is nothing to draw.
    bool Place();
    virtual void MouseDown(int button, int x, int y);
    virtual void MouseUp(int button, int x, int y);
    virtual void MouseMove(int button, int x, int y);
    // The handle under Mouse2D: X before Y before Z; Shift on X with the scale tool grabs all three.
    virtual void UpdateTransformationPossible();
    // Panel 3 of the status bar: distance moved, degrees turned or scale factor of this drag.
    virtual void UpdateStatusbarTransformParams();
    // One step of a drag: degrees = amount * 30 about the active axis.
    virtual void Rotate(double amount);
    virtual void RotatePts(double degrees, int axis);
    virtual void RotatePols(double degrees, int axis);
    // One step of a scale drag: the active factor(s) grow by amount / 40.
    virtual void ChangeScale(double amount);
    virtual void RefreshViewOrViews();
    // One step of a move drag: amount along the active axis.
    void MoveSelection(double amount);

    // Hit test of one handle (exposed for tests): the mouse lies in the ellipse with the pivot and the
    // tip as foci.
    bool HitHandle(int axis, double tolerance, const std::array<int, 2>& mouse) const;
    // A selection exists for the current mode (the gizmo reacts to the mouse).
    bool SelectionExists() const;

  private:
    void DragHandle(int button, int x, int y);
    static double DistSquared(const std::array<int, 2>& a, const std::array<int, 2>& b);
    const std::array<int, 2>& Tip(int axis) const;
    void RefreshDependants();
    void BeginActions();
    void EndActions();
    const QPen& HandlePen(int axis) const;

    frmPicWins& m_views;
    int m_index;
    ActionUndoRedo_Stack& m_stack;
    // The action opened at mouse-down (move, or an entity scale), completed at mouse-up.
    std::shared_ptr<ActionUndoRedo> m_open;
    TransformBefore m_before; // what a turn or a scale changes, as it was at the press, for an exact undo
};

} // namespace vexil
