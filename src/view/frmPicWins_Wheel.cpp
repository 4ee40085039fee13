// frmPicWins: the mouse wheel. The picture windows queue their wheel turns; the tick loop takes them.
// (Keys are the main window's: its one key table runs the view commands through this class's methods.)
#include "frmPicWins.h"

#include "frame/InputState.h"
#include "picWindow.h"

#include <zelmar/zelmar.h>

namespace vexil {

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
