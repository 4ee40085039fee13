#include "ViewGizmos.h"

#include "view/frmPicWins.h"

namespace vexil {

ViewGizmos::ViewGizmos(frmPicWins& views, ActionUndoRedo_Stack& stack) : m_views(views) {
    for (int i = 0; i < 4; ++i)
        m_gizmos[size_t(i)] = std::make_unique<TransformGizmo>(views, i, stack);
}

ViewGizmos::~ViewGizmos() = default;

void ViewGizmos::DrawGizmo(int index, QPainter& p) {
    if (index < 0 || index > 3 || m_views.Host().CurrentEntityHidden()) return;
    Gizmo(index).Draw(p);
}

void ViewGizmos::MouseDown(int index, int button, int x, int y) {
    if (index < 0 || index > 3) return;
    Gizmo(index).MouseDown(button, x, y);
}

void ViewGizmos::MouseUp(int index, int button, int x, int y) {
    if (index < 0 || index > 3) return;
    Gizmo(index).MouseUp(button, x, y);
}

void ViewGizmos::MouseMoveRotateScale(int index, int button, int x, int y) {
    if (index < 0 || index > 3 || m_views.Host().CurrentEntityHidden()) return;
    Gizmo(index).MouseMove(button, x, y);
    UpdateTransformGizmo(button, x, y);
}

void ViewGizmos::UpdateTransformGizmo(int /*button*/, int /*x*/, int /*y*/) {
    const int tool = m_views.ToolMode();
    if (tool < ToolMove || tool > ToolScale) return;
    static const char* const keys[4] = {"", "Move", "Rotate", "Scale"};
    if (Gizmo(m_views.ActiveWin).ActiveAxis != TransformGizmo::AxisNone)
        m_views.SetMousePointer(QString::fromLatin1(keys[tool]));
    else
        m_views.ResetMousePointer();
}

} // namespace vexil
