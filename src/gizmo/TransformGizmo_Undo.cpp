// TransformGizmo: the undo records of a drag. A move is pushed at mouse-down and completed at mouse-up, so
// that a click on a handle leaves a move with equal ends on the stack; a turn or a scale is pushed at
// mouse-up, and only when it changed something.
#include "selection/SelectionModel.h"
#include "SelectionTransforms.h"
#include "TransformGizmo.h"
#include "view/frmPicWins.h"
#include "undo/ActionUndoRedo_Stack.h"

namespace vexil {

void TransformGizmo::BeginActions() {
    m_open.reset();
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    switch (m_views.ToolMode()) {
    case ToolMove:
        m_open = OpenMoveAction(host, mode);
        if (m_open) m_stack.Push(m_open);
        break;
    case ToolScale:
        m_open = OpenScaleAction(host, mode);
        break;
    default:
        break;
    }
}

void TransformGizmo::EndActions() {
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    switch (m_views.ToolMode()) {
    case ToolMove:
        CloseMoveAction(m_open, host, mode);
        break;
    case ToolRotate: {
        if (ActiveAxis < AxisX || ActiveAxis > AxisZ) return;
        const ActionRef env = MakeRotateAction(mode, {{TotalRotation[size_t(ActiveAxis)], ActiveAxis}});
        if (!env) return;
        m_stack.Push(env);
        if (mode == SelectMode::Point)
            if (SelectionModel* m = selectionModel()) m->ComputeSelPtsAvgCenter();
        break;
    }
    case ToolScale: {
        const Vec3& total = mode == SelectMode::TrackPoint ? TotalTrackScale : TotalScale;
        if (const ActionRef env = CloseScaleAction(m_open, host, mode, total)) m_stack.Push(env);
        break;
    }
    default:
        break;
    }
}

} // namespace vexil
