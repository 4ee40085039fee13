// Form1: the host of the cameras, tracks and backgrounds, their menu items and popup menu, and the viewport
// hooks that draw and lay tracks.
#include "Form1_Tracks.h"

#include "Form1.h"
#include "Form1_Selection.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "frame/ErrLog.h"
#include "frame/Preferences.h"
#include "selection/SelectionModel.h"
#include "tracks/TracksController.h"
#include "tracks/TracksHost.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

#include <QAction>
#include <QLayout>
#include <QMenu>
#include <QScrollArea>
#include <QTabWidget>
#include <QToolBar>
#include <memory>

namespace vexil {

namespace {

class Form1TracksHost : public TracksHost {
  public:
    explicit Form1TracksHost(Form1& f) : m_f(f) {}

    ActionUndoRedo_Stack& UndoStack() override { return m_f.UndoStack(); }
    SelectionModel* Selection() override { return FormSelection(); }
    frmPicWins* Views() override { return m_f.frmPicWins; }
    trwCamTrackBK* CamTrackBkTree() override { return m_f.CamTrackBkTree; }
    bool WorldOpen() override { return m_f.WorldOpen(); }
    int RootGrp() override { return m_f.Document() ? m_f.Document()->RootGrp : 0; }
    double WorldSize() override { return m_f.Document() ? m_f.Document()->WorldSize : 1000.0; }
    bool CamTabShowing() override { return m_f.tabWorkspace->currentIndex() == Form1::TabCamTrackBk; }
    void ShowCamTab() override { m_f.tabWorkspace->setCurrentIndex(Form1::TabCamTrackBk); }
    bool SelectToolPressed() override { return m_f.ToolMode == 0; }
    void SetToolMode(int mode) override { m_f.SetToolMode(mode); }
    void SetMousePointer(const QString& key) override { m_f.picWinSetMousePtr(key); }
    void SetStatusText(const QString& text) override { m_f.SetStatusPanel(3, text); }
    double RelativeMarkerSize() override { return Prefs().CamLightObjRelativeSize; }
    QWidget* DialogParent() override { return &m_f; }

  private:
    Form1& m_f;
};

std::unique_ptr<Form1TracksHost> g_host;
std::unique_ptr<TracksController> g_tracks;

void on(QAction* a, const char* name, std::function<void()> body) {
    if (!a) return;
    QObject::connect(a, &QAction::triggered, a, [name, body] {
        handleEvent("Form1", name, [&] {
            if (g_tracks) body();
        });
    });
}

} // namespace

TracksController* FormTracks() { return g_tracks.get(); }

void InstallTracks(Form1& f) {
    g_host = std::make_unique<Form1TracksHost>(f);
    g_tracks = std::make_unique<TracksController>(*g_host);
    if (QWidget* page = f.CamTrackBkTree ? f.CamTrackBkTree->parentWidget() : nullptr) {
        g_tracks->AttachTrackControls(f.cmbTrackPoint, f.tlbrBtnInsert);
        // The panels scroll rather than make the window taller than its default.
        auto* scroll = new QScrollArea(page);
        scroll->setObjectName(QStringLiteral("frmCamTrackBkScroll"));
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setWidgetResizable(true);
        scroll->setWidget(g_tracks->Panels());
        if (page->layout()) page->layout()->addWidget(scroll);
    }
    on(f.mnuCamera, "mnuCamera_Click", [] { g_tracks->mnuCamera_Click(); });
    on(f.mnuCircular, "mnuCircular_Click", [] { g_tracks->mnuCircular_Click(); });
    on(f.mnuCustom, "mnuCustom_Click", [] { g_tracks->mnuCustom_Click(); });
    Form1* form = &f;
    on(f.mnuCamTrkBkMenuNew, "mnuCamTrkBkMenuNew_Click",
       [form] { g_tracks->mnuCamTrkBkMenuNew_Click(form->CamTrackBkTree->currentItem()); });
    on(f.mnuCamTrkBkMenuDelete, "mnuCamTrkBkMenuDelete_Click",
       [form] { g_tracks->mnuCamTrkBkMenuDelete_Click(form->CamTrackBkTree->currentItem()); });
    on(f.mnuCamTrkBkMenuSaveCurrent, "mnuCamTrkBkMenuSaveCurrent_Click",
       [] { g_tracks->mnuCamTrkBkMenuSaveCurrent_Click(); });
}

void ReleaseTracks() {
    if (g_tracks) g_tracks->ClearWorldState();
    g_tracks.reset();
    g_host.reset();
}

void ShowCamTrkBkMenu(Form1& f, QTreeWidgetItem* node, const QPoint& globalPos) {
    if (!node) return;
    const bool folder = node->parent() == nullptr;
    const QString key = WorkspaceTree::NodeKey(folder ? node : node->parent());
    const bool cameras = key == QLatin1String("CAMERA");
    const bool hidden = !folder && cameras && FormSelection() && FormSelection()->IsCamHidden(Sel().CurrSelEntity);
    f.mnuCamTrkBkMenuNew->setVisible(folder);
    f.mnuCamTrkBkMenuDelete->setVisible(!folder);
    f.mnuCamTrkBkMenuSaveCurrent->setVisible(!folder && cameras);
    f.mnuCamTrkBkMenuHide->setVisible(!folder && cameras && !hidden);
    f.mnuCamTrkBkMenuUnhide->setVisible(!folder && cameras && hidden);
    f.mnuCamTrkBkMenuHideAll->setVisible(folder && cameras);
    f.mnuCamTrkBkMenuShowAll->setVisible(folder && cameras);
    // Not exec: the menu must not hold up the event that opened it.
    f.mnuCamTrkBkMenu->popup(globalPos);
}

// ---- Form1 ------------------------------------------------------------------------------------------------

bool Form1::IsLayingCustomTrack() { return g_tracks && g_tracks->Tracks().LayingCustomTrack(); }

void Form1::ResetCustomTrk() {
    if (g_tracks) g_tracks->Tracks().ResetCustomTrk();
}

void Form1::CreateCustomTrack(int button, int x, int y) {
    if (g_tracks) handleEvent("Form1", "CreateCustomTrack", [&] { g_tracks->Tracks().CreateCustomTrack(button, x, y); });
}

void Form1::DrawTrack(int, QPainter& p) {
    if (g_tracks) g_tracks->Tracks().DrawTrack(p);
}

void Form1::DrawCustomTrk(int, QPainter& p) {
    if (g_tracks) g_tracks->Tracks().DrawCustomTrk(p);
}

void Form1::MonitorInsertTrackPoint(int x, int y) {
    if (g_tracks) g_tracks->Tracks().MonitorInsertTrackPoint(x, y);
}

void Form1::InsertTrackPt() {
    if (g_tracks) handleEvent("Form1", "InsertTrackPt", [&] { g_tracks->Tracks().InsertTrackPt(); });
}

bool Form1::TrackCenter(int track, double c[3]) {
    if (!ZELMAR_track_is_track(track)) return false;
    const std::array<double, 3> at = TrackTools::TrackCenter(track);
    for (int k = 0; k < 3; ++k) c[k] = at[size_t(k)];
    return true;
}

void Form1::ScaleSceneCameras(int) {
    if (g_tracks) g_tracks->ScaleSceneCameras(ZELMAR_camera_get_current());
}

} // namespace vexil
