// The four transform gizmos of the viewports and the viewport hooks that reach them. The main window
// owns one ViewGizmos and forwards its ViewportHost gizmo hooks here.
#pragma once
#include "TransformGizmo.h"

#include <array>
#include <memory>

class QPainter;

namespace vexil {

class ViewGizmos {
  public:
    ViewGizmos(frmPicWins& views, ActionUndoRedo_Stack& stack);
    ~ViewGizmos();

    TransformGizmo& Gizmo(int index) { return *m_gizmos[size_t(index & 3)]; }

    // DrawGizmo: the gizmo of the view being painted, unless the current entity is hidden.
    void DrawGizmo(int index, QPainter& p);
    void MouseDown(int index, int button, int x, int y);
    void MouseUp(int index, int button, int x, int y);
    // picWindow_MouseMove_MoveRotateScale (tools 1 to 3): the gizmo's MouseMove, then UpdateTransformGizmo.
    void MouseMoveRotateScale(int index, int button, int x, int y);
    // The pointer of the active view: the tool's own while a handle is under the mouse.
    void UpdateTransformGizmo(int button, int x, int y);

  private:
    frmPicWins& m_views;
    std::array<std::unique_ptr<TransformGizmo>, 4> m_gizmos;
};

} // namespace vexil
