// frmPicWins: the key table of the viewports and the mouse wheel.
//
// Keys are read by polling, as the table was written: "down" is a held key (negative state), "pressed" a
// key that went down since it was last polled. The first matching row wins.
#include "frmPicWins.h"

#include "frame/InputState.h"
#include "picWindow.h"

#include <QAction>
#include <zelmar/zelmar.h>

namespace vexil {

void frmPicWins::picWindow_KeyDown(int /*index*/, int key, int shift) {
    if (!HandlesOwnKeys) return; // the main window's key preview runs the table
    ViewportKeyDown(key, shift);
    m_host.Plugin_KeyDown(key, shift);
}

void frmPicWins::picWindow_KeyUp(int /*index*/, int key, int /*shift*/) {
    if (HandlesOwnKeys && key == Qt::Key_I) KeyIHeld = false;
}

bool frmPicWins::ViewportKeyDown(int key, int /*shift*/) {
    // ---- regardless of focus ----
    if (key == Qt::Key_I) {
        if (!KeyIHeld) {
            // A pan without a button starts where the cursor is.
            const QPoint local = m_wins[ActiveWin]->mapFromGlobal(inputState().cursorPos());
            LastDownX = static_cast<float>(local.x());
            LastDownY = static_cast<float>(local.y());
            if (m_host.WorldOpen()) {
                ZELMAR_camera_set_current(m_cams[ActiveWin]->CamHandle, m_wins[ActiveWin]->Target());
                m_cams[ActiveWin]->MouseDown(0, 0, local.x(), local.y());
            }
            KeyIHeld = true;
        }
    } else {
        KeyIHeld = false;
    }
    m_host.ReleaseCutButton();
    if (key == Qt::Key_Escape && keyDown(Qt::Key_Escape)) {
        if (m_host.CreateTrackUp()) {
            m_host.ResetCustomTrk();
            UpdateCameras();
        } else if (m_host.CutStateActive()) {
            m_host.ReleaseCutButton();
            picWinSetMousePtr(QStringLiteral("Select"));
            UpdateCamerasSingle(ActiveWin);
        }
    }
    if (!ViewHasFocus) return false;

    const bool ctrl = keyDown(Qt::Key_Control), alt = keyDown(Qt::Key_Alt), sh = keyDown(Qt::Key_Shift);
    // A row held "none" wants no modifier, as in the main window's table.
    const bool none = !ctrl && !alt && !sh;
    auto pressed = [](int k) { return keyPressed(k); };
    auto down = [](int k) { return vexil::keyDown(k); };

    if (ctrl && sh && pressed(Qt::Key_Z)) {
        ZoomExtentAll();
    } else if (ctrl && alt && pressed(Qt::Key_V)) {
        m_host.Set3DCardTogglePressed(!m_host.Is3DCardTogglePressed());
        Toggle3DCard();
    } else if (ctrl && alt && pressed(Qt::Key_Z)) {
        ZoomExtentSingle(ActiveWin);
    } else if (ctrl && alt && pressed(Qt::Key_M)) {
        m_host.MirrorObjects();
    } else if (sh && down(Qt::Key_1)) {
        SetToolMode(ToolMove);
        picWinSetMousePtr(QStringLiteral("Pointer"));
    } else if (sh && down(Qt::Key_2)) {
        SetToolMode(ToolRotate);
        picWinSetMousePtr(QStringLiteral("Pointer"));
    } else if (sh && down(Qt::Key_3)) {
        SetToolMode(ToolScale);
        picWinSetMousePtr(QStringLiteral("Pointer"));
    } else if (sh && pressed(Qt::Key_C)) {
        CenterObjInView();
    } else if (alt && pressed(Qt::Key_S)) {
        m_host.ShowSelectionWindow();
    } else if (alt && pressed(Qt::Key_D)) {
        m_host.DuplicatGrp();
    } else if (alt && pressed(Qt::Key_L)) {
        m_toolActions[ToolAlign]->setChecked(true);
        SetToolMode(ToolAlign);
        m_host.AlignObjects();
    } else if (alt && pressed(Qt::Key_Q)) {
        m_host.DisplaceGrp();
    } else if (none && pressed(Qt::Key_F2)) {
        ToggleWireframe();
    } else if (none && down(Qt::Key_M)) {
        SetToolMode(ToolMoveCamera);
        picWinSetMousePtr(QStringLiteral("Move Camera"));
    } else if (none && down(Qt::Key_Z)) {
        SetToolMode(ToolZoomCamera);
        picWinSetMousePtr(QStringLiteral("Zoom"));
    } else if (none && down(Qt::Key_W)) {
        ToggleWindowMinMax();
    } else if (none && down(Qt::Key_R)) {
        SetToolMode(ToolRevolve);
        picWinSetMousePtr(QStringLiteral("Revolve"));
    } else if (none && down(Qt::Key_P)) {
        SetToolMode(ToolPan);
        picWinSetMousePtr(QStringLiteral("Pan"));
    } else if (none && down(Qt::Key_S)) {
        SetToolMode(ToolSelect);
        picWinSetMousePtr(m_host.CreateTrackUp() ? QStringLiteral("Cross hair") : QStringLiteral("Select"));
    } else if (none && pressed(Qt::Key_Delete)) {
        m_host.DeleteSelected();
    } else if (none && pressed(VkAdd)) {
        m_host.SetCamMoveFactor(m_host.CamMoveFactor() * 2);
    } else if (none && pressed(VkSubtract)) {
        m_host.SetCamMoveFactor(m_host.CamMoveFactor() / 2);
    } else if (none && pressed(Qt::Key_G)) {
        m_grids[ActiveWin]->ToggleVisibility();
        UpdateCameras();
    } else {
        return false;
    }
    return true;
}

void frmPicWins::AddWheelDelta(int delta) {
    if (delta != 0) m_wheel.push_back(delta);
}

int frmPicWins::GetWheelMessages() {
    // At most 100 messages per call, as the message queue was emptied.
    int sum = 0;
    for (int n = 0; n < 100 && !m_wheel.empty(); ++n) {
        sum += m_wheel.front();
        m_wheel.pop_front();
    }
    return sum;
}

void frmPicWins::ScrollCheck() {
    if (!m_host.WorldOpen() || !ViewHasFocus) {
        // Wheel turns with no world or no focused view are dropped, as the toolkit would.
        m_wheel.clear();
        return;
    }
    const int sum = GetWheelMessages();
    if (sum == 0) return;
    const int s = sum > 0 ? 1 : -1;
    camera& cam = *m_cams[ActiveWin];
    const double zoom = cam.Zoom();
    if (zoom == 0) return;
    const double step = keyDown(Qt::Key_Shift) ? 30.0 : 3.0;
    cam.Dist += s * m_host.WorldSize() * m_host.CamMoveFactor() * step / zoom;
    if (cam.Dist < MinDist) cam.Dist = MinDist;
    cam.Update();
    cam.ReSetCamDistFrmEye();
    picWindow_Paint(ActiveWin);
}

} // namespace vexil
