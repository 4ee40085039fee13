// Form1: the keyboard; the wheel is in Form1_Views.cpp.
//
// Form_KeyDown receives the key code and the shift state but reads most keys by polling the input-state
// seam: "down" is a negative key state, "pressed" a key state of 0x8001 (down, and not reported since
// the previous poll). The rows of the table are tested in order; modifiers first, so that a row whose
// modifiers do not match does not consume the "pressed" report of its key. A row held "none" requires
// Ctrl, Shift and Alt all up.
#include "Form1.h"

#include "frame/ErrLog.h"
#include "frame/InputState.h"

#include <QToolBar>

namespace vexil {

void Form1::Form_KeyDown(int keyCode, Qt::KeyboardModifiers shift) {
    handleEvent("Form1", "Form_KeyDown", [&] {
        // First, regardless of state: the I key.
        if (keyCode == Qt::Key_I && !KeyIHeld) {
            auto* w = picWindow[size_t(ActiveWin)];
            IKeyMousePos = w->mapFromGlobal(inputState().cursorPos());
            if (WorldOpen()) PointViewCameraAt(ActiveWin, IKeyMousePos.x(), IKeyMousePos.y());
            KeyIHeld = true;
        } else if (keyCode != Qt::Key_I) {
            KeyIHeld = false;
        }
        // Every key releases the first button of tlbrCut. (The Escape branch below reads the state the button
        // had before this release, or it could never act: docs/ui.md.)
        QAction* cut = tlbrCut->actions().value(0);
        const bool cutWasPressed = cut && cut->isChecked();
        if (cutWasPressed) cut->setChecked(false);
        if (keyDown(Qt::Key_Escape)) {
            if (IsLayingCustomTrack()) {
                ResetCustomTrk();
                UpdateCameras();
            } else if (cutWasPressed) {
                picWinSetMousePtr(QStringLiteral("Select"));
                UpdateCamerasSingle(ActiveWin);
            }
        }

        if (ViewHasFocus) {
            const bool ctrl = keyDown(Qt::Key_Control);
            const bool shf = keyDown(Qt::Key_Shift);
            const bool alt = keyDown(Qt::Key_Alt);
            const bool none = !ctrl && !shf && !alt;
            if (ctrl && shf && keyPressed(Qt::Key_Z)) {
                ZoomExtentAll();
            } else if (ctrl && alt && keyPressed(Qt::Key_F)) {
                mnuFetch_Click();
            } else if (ctrl && alt && keyPressed(Qt::Key_H)) {
                mnuHold_Click();
            } else if (ctrl && alt && keyPressed(Qt::Key_V)) {
                if (QAction* card = ToolbarButton(QStringLiteral("3D Card Toggle"))) card->setChecked(!card->isChecked());
                Toggle3DCard();
            } else if (ctrl && alt && keyPressed(Qt::Key_Z)) {
                ZoomExtentSingle(ActiveWin);
            } else if (ctrl && alt && keyPressed(Qt::Key_M)) {
                MirrorObjects();
            } else if (shf && !ctrl && !alt && keyDown(Qt::Key_1)) {
                SetToolMode(1);
                picWinSetMousePtr(QStringLiteral("Pointer"));
            } else if (shf && !ctrl && !alt && keyDown(Qt::Key_2)) {
                SetToolMode(2);
                picWinSetMousePtr(QStringLiteral("Pointer"));
            } else if (shf && !ctrl && !alt && keyDown(Qt::Key_3)) {
                SetToolMode(3);
                picWinSetMousePtr(QStringLiteral("Pointer"));
            } else if (shf && !ctrl && !alt && keyPressed(Qt::Key_C)) {
                CenterObjInView();
            } else if (shf && !ctrl && !alt && keyPressed(Qt::Key_Z)) {
                // The Shift+Z branch exists and does nothing; it stays.
            } else if (alt && !ctrl && !shf && keyPressed(Qt::Key_A)) {
                ShowAtmosphereForm();
            } else if (alt && !ctrl && !shf && keyPressed(Qt::Key_S)) {
                ShowSelectionWindow();
            } else if ((alt || ctrl) && !(alt && ctrl) && !shf && keyPressed(Qt::Key_D)) {
                DuplicatGrp(); // Alt+D, and Ctrl+D as other editors have it

            } else if (alt && !ctrl && !shf && keyPressed(Qt::Key_L)) {
                if (QAction* align = ToolbarButton(QStringLiteral("Align"))) align->setChecked(true);
                AlignObjects();
            } else if (alt && !ctrl && !shf && keyPressed(Qt::Key_Q)) {
                DisplaceGrp();
            } else if (none && keyPressed(Qt::Key_F2)) {
                ToggleWireframe();
            } else if (none && keyDown(Qt::Key_M)) {
                SetToolMode(7);
                picWinSetMousePtr(QStringLiteral("Move Camera"));
            } else if (none && keyDown(Qt::Key_Z)) {
                SetToolMode(6);
                picWinSetMousePtr(QStringLiteral("Zoom"));
            } else if (none && keyDown(Qt::Key_W)) {
                ToggleWindowMinMax();
            } else if (none && keyDown(Qt::Key_R)) {
                SetToolMode(5);
                picWinSetMousePtr(QStringLiteral("Revolve"));
            } else if (none && keyDown(Qt::Key_P)) {
                SetToolMode(4);
                picWinSetMousePtr(QStringLiteral("Pan"));
            } else if (none && keyDown(Qt::Key_S)) {
                SetToolMode(0);
                picWinSetMousePtr(IsLayingCustomTrack() ? QStringLiteral("Cross hair") : QStringLiteral("Select"));
            } else if (none && keyPressed(Qt::Key_Delete)) {
                DeleteSelected();
            } else if (none && keyPressed(VkAdd)) {
                MouseStepFactor *= 2.0;
            } else if (none && keyPressed(VkSubtract)) {
                MouseStepFactor /= 2.0;
            } else if (none && keyPressed(Qt::Key_Backspace)) {
                BackspaceValue -= 1.0;
                UpdateCameras();
            } else if (none && keyPressed(Qt::Key_G)) {
                ToggleGridVisibility(ActiveWin);
                UpdateCameras();
            }
        }
        // All keys go on to the plug-ins.
        PluginsKeyDown(keyCode, shift);
    });
}

void Form1::Form_KeyUp(int, Qt::KeyboardModifiers) { KeyIHeld = false; }

} // namespace vexil
