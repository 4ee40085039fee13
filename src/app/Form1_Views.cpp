// Form1: the viewport area. Form1 embeds frmPicWins, answers its questions (ViewportHost) and forwards the
// view commands of its menus, toolbar bands, key table and tick loop to it.
//
// Form1 keeps a few mirrors of the viewports' state (ActiveWin, ViewHasFocus, ToolMode) because its key
// table and menus read and write them directly: they are pushed to the viewports before every forwarded
// command, and pulled back when a picture window takes focus or a click, and when a tool button changes.
// The grids' state lives in the grids alone (GridDisplay, GridSnap read it there), so nothing has to be
// copied into them on the tick loop's every pass.
#include "Form1.h"
#include "frame/Locale.h"

#include "frame/ErrLog.h"
#include "frame/Preferences.h"
#include "document/WorldDocument.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QToolBar>
#include <QVBoxLayout>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// Keeps Form1's mirrors of the active window and of the view focus current with what the picture windows
// see (frmPicWins updates its own copy from the same events).
class ViewFocusWatcher : public QObject {
  public:
    ViewFocusWatcher(Form1& form, int index) : QObject(&form), m_form(form), m_index(index) {}

  protected:
    bool eventFilter(QObject* obj, QEvent* e) override {
        switch (e->type()) {
        case QEvent::FocusIn:
        case QEvent::MouseButtonPress:
            m_form.ActiveWin = m_index;
            m_form.ViewHasFocus = true;
            break;
        case QEvent::FocusOut:
            m_form.ViewHasFocus = false;
            break;
        default:
            break;
        }
        return QObject::eventFilter(obj, e);
    }

  private:
    Form1& m_form;
    int m_index;
};

} // namespace

void Form1::buildViewports() {
    auto* l = new QVBoxLayout(Picture2);
    l->setContentsMargins(0, 0, 0, 0);
    frmPicWins = new vexil::frmPicWins(*this, Picture2);
    frmPicWins->setObjectName(QStringLiteral("frmPicWins"));
    l->addWidget(frmPicWins);
    for (int i = 0; i < 4; ++i) {
        picWindow[size_t(i)] = frmPicWins->PicWindow(i);
        lblPicView[size_t(i)] = frmPicWins->lblPicView(i);
        picWindow[size_t(i)]->installEventFilter(new ViewFocusWatcher(*this, i));
    }
    // "Align" (slot 9) is a tool button too: the viewports hand its drags and releases to AlignObjects_*.
    static const char* const toolKeys[10] = {"Select",  "Move",        "Rotate",      "Scale",      "Pan",
                                            "Revolve", "Zoom Camera", "Move Camera", "Roll Camera", "Align"};
    std::array<QAction*, 10> buttons{};
    for (int m = 0; m < 10; ++m) {
        buttons[size_t(m)] = ToolbarButton(QString::fromLatin1(toolKeys[m]));
        if (QAction* a = buttons[size_t(m)])
            connect(a, &QAction::toggled, this, [this, m](bool on) {
                if (on) ToolMode = m;
            });
    }
    frmPicWins->UseToolButtons(buttons);
    if (QAction* snap = ToolbarButton(QStringLiteral("Grid Snap")))
        connect(snap, &QAction::triggered, this, [this] {
            handleEvent("Form1", "Toolbar1_ButtonClick", [&] {
                SyncViewState();
                frmPicWins->Grid_ToggleSnap(false);
                SyncGridButtons();
            });
        });
}

void Form1::SyncViewState() {
    if (!frmPicWins) return;
    frmPicWins->ActiveWin = std::clamp(ActiveWin, 0, 3);
    frmPicWins->ViewHasFocus = ViewHasFocus;
    if (frmPicWins->ToolMode() != ToolMode) frmPicWins->SetToolMode(ToolMode);
}

bool Form1::GridDisplay(int index) const {
    return frmPicWins && index >= 0 && index < 4 && frmPicWins->ViewGrids(index).GridVisible;
}

bool Form1::GridSnap(int index) const {
    return frmPicWins && index >= 0 && index < 4 && frmPicWins->ViewGrids(index).GridSnapOn;
}

void Form1::SetGridDisplay(int index, bool visible) {
    if (frmPicWins && index >= 0 && index < 4) frmPicWins->ViewGrids(index).GridVisible = visible;
    SyncGridButtons();
}

void Form1::SetGridSnap(int index, bool on) {
    if (frmPicWins && index >= 0 && index < 4) frmPicWins->ViewGrids(index).GridSnapOn = on;
    SyncGridButtons();
}

void Form1::SyncGridButtons() {
    // The band's Grid and Grid Snap buttons show the state of the active viewport's grid.
    const int i = std::clamp(ActiveWin, 0, 3);
    if (QAction* a = ToolbarButton(QStringLiteral("Grid"))) a->setChecked(GridDisplay(i));
    if (QAction* a = ToolbarButton(QStringLiteral("Grid Snap"))) a->setChecked(GridSnap(i));
}

// ---- focus
// --------------------------------------------------------------------------------------------------

void Form1::SetWindowFocus() {
    SyncViewState();
    if (frmPicWins) frmPicWins->SetWindowFocus();
}

void Form1::picWindow_GotFocus(int index) {
    ActiveWin = index;
    ViewHasFocus = true;
    SyncViewState();
    if (frmPicWins) frmPicWins->picWindow_GotFocus(index);
}

void Form1::picWindow_LostFocus(int index) {
    ViewHasFocus = false;
    SyncViewState();
    if (frmPicWins) frmPicWins->picWindow_LostFocus(index);
}

// ---- painting and cameras
// -------------------------------------------------------------------------------------

void Form1::SetViewportCamera(int index, int handle) {
    if (frmPicWins) frmPicWins->SetViewportCamera(index, handle);
}

void Form1::ClearViewports() {
    if (frmPicWins) frmPicWins->ClearViewports();
}

void Form1::UpdateCameras() {
    SyncViewState();
    if (frmPicWins) frmPicWins->UpdateCameras();
}

void Form1::UpdateCamerasSingle(int index) {
    SyncViewState();
    if (frmPicWins) frmPicWins->UpdateCamerasSingle(index);
}

void Form1::picWindow_Paint(int index) {
    SyncViewState();
    if (frmPicWins) frmPicWins->picWindow_Paint(index);
}

void Form1::mnuResetViews_Click() {
    SyncViewState();
    // ResetCameras ends with UpdateCameras: every view shows the world from its standard side.
    if (frmPicWins) frmPicWins->ResetCameras();
}

void Form1::ZoomExtentAll() {
    SyncViewState();
    if (frmPicWins) frmPicWins->ZoomExtentAll();
}

void Form1::ZoomExtentSingle(int index) {
    SyncViewState();
    if (frmPicWins) frmPicWins->ZoomExtentSingle(index);
}

void Form1::CenterObjInView() {
    SyncViewState();
    if (frmPicWins) frmPicWins->CenterObjInView();
}

void Form1::Toggle3DCard() {
    SyncViewState();
    if (frmPicWins) frmPicWins->Toggle3DCard();
}

void Form1::ToggleWireframe() {
    SyncViewState();
    if (frmPicWins) frmPicWins->ToggleWireframe();
}

void Form1::ToggleWindowMinMax() {
    SyncViewState();
    if (frmPicWins) frmPicWins->ToggleWindowMinMax();
}

// The I key: a pan without a button starts where the cursor is.
void Form1::PointViewCameraAt(int index, int x, int y) {
    if (!frmPicWins || index < 0 || index > 3) return;
    SyncViewState();
    frmPicWins->LastDownX = static_cast<float>(x);
    frmPicWins->LastDownY = static_cast<float>(y);
    camera& cam = frmPicWins->ViewCams(index);
    ZELMAR_camera_set_current(cam.CamHandle, frmPicWins->PicWindow(index)->Target());
    cam.MouseDown(0, 0, x, y);
}

// ---- tools and grids
// ------------------------------------------------------------------------------------------

void Form1::SetToolMode(int mode) {
    ToolMode = mode;
    SyncViewState();
}

void Form1::picWinSetMousePtr(const QString& pointer) {
    if (frmPicWins) frmPicWins->picWinSetMousePtr(pointer);
}

void Form1::ToggleGridVisibility(int index) {
    if (!frmPicWins || index < 0 || index > 3) return;
    SyncViewState();
    // Grid.ToggleVisibility flips the flag and repaints that viewport.
    frmPicWins->ViewGrids(index).ToggleVisibility();
    SyncGridButtons();
}

void Form1::SetGridDensity(double density) {
    m_gridDensity = density;
    if (!frmPicWins) return;
    for (int i = 0; i < 4; ++i)
        frmPicWins->ViewGrids(i).Density = static_cast<int>(std::lround(density));
}

double Form1::GridDensity() const {
    return m_gridDensity;
}

// ---- the wheel
// ----------------------------------------------------------------------------------------------

int Form1::GetWheelMessages() {
    return frmPicWins ? frmPicWins->GetWheelMessages() : 0;
}

void Form1::ScrollCheck() {
    // Every tick: only what the wheel needs, the active window and the focus.
    if (!frmPicWins) return;
    frmPicWins->ActiveWin = std::clamp(ActiveWin, 0, 3);
    frmPicWins->ViewHasFocus = ViewHasFocus;
    handleEvent("Form1", "ScrollCheck", [&] { frmPicWins->ScrollCheck(); });
}

void Form1::WheelZoom(int sign, bool) {
    if (!frmPicWins || sign == 0) return;
    frmPicWins->AddWheelDelta(sign > 0 ? 120 : -120);
    ScrollCheck();
}

// ---- ViewportHost
// -------------------------------------------------------------------------------------------

bool Form1::WorldOpen() {
    return std::as_const(*this).WorldOpen();
}
int Form1::RootGrp() {
    return m_document ? m_document->RootGrp : 0;
}
double Form1::WorldSize() {
    return m_document ? m_document->WorldSize : 1000.0;
}
double Form1::CamMoveFactor() {
    return MouseStepFactor;
}
void Form1::SetCamMoveFactor(double f) {
    MouseStepFactor = f;
}
int Form1::SignificantDecimals() {
    return Prefs().SignificantDecimals;
}

bool Form1::CutStateActive() {
    QAction* cut = tlbrCut ? tlbrCut->actions().value(0) : nullptr;
    return cut && cut->isChecked() && tabWorkspace && tabWorkspace->currentIndex() == TabEditGroup &&
           cmbObj->currentText() == GetLocaleString(323) && cmbObjEditGeom->currentText() == GetLocaleString(329);
}

void Form1::ReleaseCutButton() {
    if (QAction* cut = tlbrCut ? tlbrCut->actions().value(0) : nullptr) cut->setChecked(false);
}

bool Form1::CreateTrackUp() {
    return IsLayingCustomTrack();
}

void Form1::SetWireframePressed(bool pressed) {
    if (QAction* a = ToolbarButton(QStringLiteral("Wireframe"))) a->setChecked(pressed);
}

} // namespace vexil
