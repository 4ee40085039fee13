#include "TracksController.h"

#include "BackgroundPanel.h"
#include "CameraPanel.h"
#include "EntityCreation.h"
#include "TracksHost.h"
#include "formCamChaseParams.h"
#include "formCreateTrack.h"
#include "document/WorkspaceTrees.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "selection/ActionDeleteCreate.h"
#include "selection/ActionSelect.h"
#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <zelmar/zelmar.h>

#include <QComboBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace vexil {

TracksController::TracksController(TracksHost& host)
    : m_host(host), m_markers([&host] { return host.WorldSize(); }), m_tracks(host) {
    m_stack = new QStackedWidget;
    m_stack->setObjectName(QStringLiteral("frmCamTrackBkPanels"));
    m_empty = new QWidget(m_stack);
    m_camPanel = new CameraPanel(host, m_markers, m_stack);
    m_camPanel->EditChase = [this] { EditChase(); };
    m_frmTrack = new QWidget(m_stack);
    m_frmTrack->setObjectName(QStringLiteral("frmTrack"));
    auto* trackLayout = new QVBoxLayout(m_frmTrack);
    trackLayout->setContentsMargins(4, 4, 4, 4);
    m_frmTrackPoint = new QWidget(m_frmTrack);
    m_frmTrackPoint->setObjectName(QStringLiteral("frmTrackPoint"));
    auto* pointLayout = new QVBoxLayout(m_frmTrackPoint);
    pointLayout->setContentsMargins(0, 0, 0, 0);
    m_cmdTrkPtDelete = new QPushButton(GetLocaleString(211), m_frmTrackPoint);
    m_cmdTrkPtDelete->setObjectName(QStringLiteral("cmdTrkPtDelete"));
    pointLayout->addWidget(m_cmdTrkPtDelete);
    trackLayout->addWidget(m_frmTrackPoint);
    trackLayout->addStretch(1);
    m_frmTrackPoint->hide();
    m_bkgPanel = new BackgroundPanel(host, m_stack);
    m_bkgPanel->Committed = [this] {
        OpenPanelOfKind(Sel().CurrSelEntityType, Sel().CurrSelEntity);
    };
    for (QWidget* w : {m_empty, static_cast<QWidget*>(m_camPanel), m_frmTrack, static_cast<QWidget*>(m_bkgPanel)})
        m_stack->addWidget(w);
    m_stack->setCurrentWidget(m_empty);
    QObject::connect(m_cmdTrkPtDelete, &QPushButton::clicked, m_cmdTrkPtDelete, [this] {
        handleEvent("Form1", "cmdTrkPtDelete_Click", [&] { m_tracks.cmdTrkPtDelete_Click(); });
    });
    installKindOps();
}

TracksController::~TracksController() {
    uninstallKindOps();
    // The panels belong to the window's tab once placed; a stack never placed is ours.
    if (m_stack && !m_stack->parent()) delete m_stack;
}

QWidget* TracksController::Panels() const { return m_stack; }

void TracksController::AttachTrackControls(QComboBox* cmbTrackPoint, QToolBar* tlbrBtnInsert) {
    m_cmbTrackPoint = cmbTrackPoint;
    auto* layout = static_cast<QVBoxLayout*>(m_frmTrack->layout());
    if (cmbTrackPoint) layout->insertWidget(0, cmbTrackPoint);
    if (tlbrBtnInsert) {
        auto* points = static_cast<QVBoxLayout*>(m_frmTrackPoint->layout());
        points->insertWidget(0, tlbrBtnInsert);
        // Pressing Insert selects the Select tool: insertion follows the mouse, nothing else may.
        for (QAction* a : tlbrBtnInsert->actions())
            QObject::connect(a, &QAction::toggled, a, [this](bool on) {
                if (on) m_host.SetToolMode(0);
            });
    }
    if (cmbTrackPoint)
        QObject::connect(cmbTrackPoint, &QComboBox::currentIndexChanged, cmbTrackPoint, [this] {
            handleEvent("Form1", "cmbTrackPoint_Change", [&] { cmbTrackPoint_Change(); });
        });
}

void TracksController::showOnly(QWidget* panel) { m_stack->setCurrentWidget(panel ? panel : m_empty); }

void TracksController::OpenPanelOfKind(int kind, int handle) {
    switch (kind) {
    case 2:
        m_camPanel->SetCamWorkspaceFrame_Params(handle);
        showOnly(m_camPanel);
        break;
    case 3:
        m_tracks.UpdateTrackCenter();
        cmbTrackPoint_Change();
        showOnly(m_frmTrack);
        break;
    case 5:
        m_bkgPanel->SetBackGndFrame(handle);
        showOnly(m_bkgPanel);
        break;
    default:
        break;
    }
}

void TracksController::ClosePanelOfKind(int prevKind, int newKind) {
    if (prevKind == newKind) return;
    if (prevKind == 2) m_camPanel->ResetCamWorkSpaceFrame();
    if (prevKind == 3) Sel().SelTrackPts.resize(1);
    if (prevKind >= 2 && prevKind <= 5) showOnly(nullptr);
}

void TracksController::cmbTrackPoint_Change() {
    const bool points = m_cmbTrackPoint && m_cmbTrackPoint->currentText() == GetLocaleString(325);
    m_frmTrackPoint->setVisible(points);
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

// ---- cameras --------------------------------------------------------------------------------------------

int TracksController::CreateNewCam() {
    if (!m_host.WorldOpen()) return 0;
    const std::string name = GetNewCamName();
    const int camera = ZELMAR_camera_create(name.c_str());
    if (camera == 0) return 0;
    ZELMAR_camera_set_save_flag(camera, 1);
    m_markers.Add(camera);
    AnnounceCreatedEntity(m_host, 2, camera);
    return camera;
}

void TracksController::mnuCamera_Click() {
    if (CreateNewCam() != 0) m_host.ShowCamTab();
}

void TracksController::mnuCamTrkBkMenuSaveCurrent_Click() {
    const SelectionState& s = Sel();
    const int camera = s.CurrSelEntityType == 2 ? s.CurrSelEntity : 0;
    frmPicWins* v = m_host.Views();
    if (camera == 0 || !v || !ZELMAR_camera_is_camera(camera)) return;
    const int i = v->ActiveWin;
    const int view = v->ShownCamera(i) ? v->ShownCamera(i) : v->ViewCams(i).CamHandle;
    if (view == 0 || view == camera) return;
    // The placement only: a chase the camera has, or that chases it, stays as it is.
    double at[3], dir[3];
    ZELMAR_camera_get_location1(view, at);
    ZELMAR_camera_get_direction1(view, dir);
    ZELMAR_camera_set_location1(camera, at);
    ZELMAR_camera_set_direction1(camera, dir);
    ZELMAR_camera_set_zoom(camera, ZELMAR_camera_get_zoom(view));
    ZELMAR_camera_set_distance_from_eye(camera, ZELMAR_camera_get_distance_from_eye(view));
    m_markers.SetDirection(camera, {dir[0], dir[1], dir[2]});
    m_markers.SetLocation(camera, {at[0], at[1], at[2]});
    if (m_host.CamTabShowing()) m_camPanel->SetCamWorkspaceFrame_Params(camera);
    v->UpdateCameras();
}

void TracksController::FakeDeleteCamera(int camera) {
    m_markers.HideUnhide(camera, true);
    ZELMAR_camera_set_save_flag(camera, 0);
    RemoveCamTrackBkNode(m_host, 2, camera);
    if (m_camPanel->Camera() == camera) m_camPanel->ResetCamWorkSpaceFrame();
}

void TracksController::UnDeleteCamera(int camera) {
    m_markers.HideUnhide(camera, false);
    ZELMAR_camera_set_save_flag(camera, 1);
    AddCamTrackBkNode(m_host, 2, camera);
}

void TracksController::DeleteCameraPermanently(int camera) {
    m_markers.Remove(camera);
    ZELMAR_camera_delete(camera);
}

void TracksController::DeleteCamera(int camera) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(2, camera);
    m_host.UndoStack().Push(env);
    FakeDeleteCamera(camera);
}

void TracksController::EditChase() {
    EditChaseOf(Sel().CurrSelEntityType, Sel().CurrSelEntity);
}

void TracksController::EditChaseOf(int type, int handle) {
    if (type == 0 || handle == 0) return;
    ChaseTarget target{type, handle};
    formCamChaseParams form(target, [this](int g) { m_host.GroupDynamicChanged(g); }, m_host.DialogParent());
    dialogs().exec(form);
}

// ---- tracks ---------------------------------------------------------------------------------------------

void TracksController::CreateNewTrack() {
    if (!m_host.WorldOpen()) return;
    formCreateTrack form(m_host.DialogParent());
    dialogs().exec(form);
    if (form.CustomChosen()) {
        m_tracks.StartCustomTrack();
    } else if (form.CircularPoints() > 0) {
        if (m_tracks.CreateCircularTrack(form.CircularPoints()) != 0) m_host.ShowCamTab();
    }
}

void TracksController::mnuCircular_Click() {
    if (!m_host.WorldOpen()) return;
    formCreateTrack form(m_host.DialogParent());
    form.cmdCircular_Click();
    dialogs().exec(form);
    if (form.CircularPoints() > 0 && m_tracks.CreateCircularTrack(form.CircularPoints()) != 0) m_host.ShowCamTab();
}

void TracksController::mnuCustom_Click() {
    if (m_host.WorldOpen()) m_tracks.StartCustomTrack();
}

void TracksController::FakeDeleteTrack(int track) {
    ZELMAR_track_set_save_flag(track, 0);
    RemoveCamTrackBkNode(m_host, 3, track);
    SelectionState& s = Sel();
    if (s.CurrSelEntityType == 3 && s.CurrSelEntity == track) s.SelTrackPts.resize(1);
}

void TracksController::UnDeleteTrack(int track) {
    ZELMAR_track_set_save_flag(track, 1);
    AddCamTrackBkNode(m_host, 3, track);
}

void TracksController::DeleteTrack(int track) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(3, track);
    m_host.UndoStack().Push(env);
    FakeDeleteTrack(track);
}

// ---- backgrounds ----------------------------------------------------------------------------------------

int TracksController::CreateNewBackground() {
    if (!m_host.WorldOpen()) return 0;
    const std::string name = GetNewBkName();
    const QString path = GetOpenedBitmapFile();
    if (path.isEmpty()) return 0;
    const int bitmap = ZELMAR_bitmap_load(path.toLocal8Bit().constData(), -1);
    if (bitmap == 0) {
        dialogs().msgBox(GetLocaleString(574), MsgOKOnly, MsgExclamation);
        return 0;
    }
    const int background = ZELMAR_background_create(name.c_str(), bitmap);
    if (background == 0) return 0;
    ZELMAR_background_set_save_flag(background, 1);
    ZELMAR_background_set_bottom(background, -5500);
    ZELMAR_background_set_bottom_intensity(background, 0);
    ZELMAR_background_set_distance(background, 30000);
    ZELMAR_background_set_intensity_step(background, 0.3);
    ZELMAR_background_use(background);
    AnnounceCreatedEntity(m_host, 5, background);
    m_host.ShowCamTab();
    return background;
}

void TracksController::FakeDeleteBkg(int background) {
    ZELMAR_background_set_save_flag(background, 0);
    RemoveCamTrackBkNode(m_host, 5, background);
    m_deletedBkgs.insert(background);
    // The world draws another background that is not deleted, or none.
    int other = 0;
    for (int b = ZELMAR_background_get_first_background(); b != 0 && other == 0; b = ZELMAR_background_get_next(b))
        if (!m_deletedBkgs.count(b)) other = b;
    ZELMAR_background_use(other);
    if (m_bkgPanel->Background() == background) showOnly(nullptr);
}

void TracksController::UnDeleteBkg(int background) {
    ZELMAR_background_set_save_flag(background, 1);
    m_deletedBkgs.erase(background);
    AddCamTrackBkNode(m_host, 5, background);
    ZELMAR_background_use(background);
}

void TracksController::DeleteBkg(int background) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(5, background);
    m_host.UndoStack().Push(env);
    FakeDeleteBkg(background);
}

// ---- the tree's popup menu --------------------------------------------------------------------------------

void TracksController::mnuCamTrkBkMenuNew_Click(QTreeWidgetItem* selected) {
    if (!selected) return;
    QTreeWidgetItem* root = selected;
    while (root->parent()) root = root->parent();
    const QString key = WorkspaceTree::NodeKey(root);
    if (key == QLatin1String("CAMERA")) CreateNewCam();
    else if (key == QLatin1String("TRACK")) CreateNewTrack();
    else if (key == QLatin1String("BACKGROUND")) CreateNewBackground();
}

void TracksController::afterDelete(int kind) {
    SelectionModel* m = m_host.Selection();
    if (trwCamTrackBK* tree = m_host.CamTrackBkTree()) {
        const QString folder = kind == 2 ? QStringLiteral("CAMERA") : kind == 3 ? QStringLiteral("TRACK") : QStringLiteral("BACKGROUND");
        if (QTreeWidgetItem* root = tree->Node(folder)) {
            tree->setCurrentItem(root);
            if (root->childCount() == 0) tree->SetNodeImage(root, QStringLiteral("Folder"));
        }
    }
    if (m) {
        m->SetPrevSelEntityToCurrSelEntity();
        Sel().CurrSelEntityType = 0;
        Sel().CurrSelEntity = 0;
        m->ThingsToDoOnSelectedEntityChange();
    }
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

void TracksController::mnuCamTrkBkMenuDelete_Click(QTreeWidgetItem* selected) {
    if (!selected || !selected->parent()) return;
    const QString parentKey = WorkspaceTree::NodeKey(selected->parent());
    const std::string name = selected->text(0).toLocal8Bit().toStdString();
    int kind = 0, handle = 0;
    if (parentKey == QLatin1String("CAMERA")) kind = 2, handle = CameraUsingName(name);
    else if (parentKey == QLatin1String("TRACK")) kind = 3, handle = TrackUsingName(name);
    else if (parentKey == QLatin1String("BACKGROUND")) kind = 5, handle = BackgroundUsingName(name);
    if (handle == 0) return;
    SelectionModel* m = m_host.Selection();
    const SelectionState& s = Sel();
    // Made current first, with a select action, so that undo comes back to it.
    if (m && !(s.CurrSelEntityType == kind && s.CurrSelEntity == handle)) m->SelectEntityFromTree(kind, handle);
    if (kind == 2) DeleteCamera(handle);
    else if (kind == 3) DeleteTrack(handle);
    else DeleteBkg(handle);
    afterDelete(kind);
}

// ---- world ----------------------------------------------------------------------------------------------

void TracksController::ClearWorldState() {
    m_markers.RemoveAll();
    m_deletedBkgs.clear();
    m_tracks.ResetCustomTrk();
    m_camPanel->ResetCamWorkSpaceFrame();
    showOnly(nullptr);
}

void TracksController::ScaleSceneCameras(int viewCamera) {
    m_markers.ScaleSceneCam(viewCamera, m_host.RelativeMarkerSize());
}

// ---- KindOps ----------------------------------------------------------------------------------------------

void TracksController::installKindOps() {
    EntityKindOps& cam = KindOps(2);
    cam.FakeDelete = [this](int c) { FakeDeleteCamera(c); };
    cam.UnDelete = [this](int c) { UnDeleteCamera(c); };
    cam.DeletePermanently = [this](int c) { DeleteCameraPermanently(c); };
    cam.Marker = [this](int c) { return m_markers.GetCamGrp(c); };
    cam.HideUnhide = [this](int c, bool hide) {
        m_markers.HideUnhide(c, hide);
        if (trwCamTrackBK* tree = m_host.CamTrackBkTree())
            if (QTreeWidgetItem* n = tree->Node(CamTrackBkKey(2, c)))
                tree->SetNodeImage(n, hide ? QStringLiteral("Cam Invisible") : QStringLiteral("Cam"));
    };
    cam.SetLocation = [this](int c, const std::array<double, 3>& at) {
        m_markers.SetLocation(c, at);
        if (m_camPanel->Camera() == c) m_camPanel->SetCamWorkspaceFrame_Params(c);
    };
    cam.Rotate = [this](int c, const std::array<double, 3>& d) {
        m_markers.Rotate(c, d);
        if (m_camPanel->Camera() == c) m_camPanel->SetCamWorkspaceFrame_Params(c);
    };
    EntityKindOps& track = KindOps(3);
    track.FakeDelete = [this](int t) { FakeDeleteTrack(t); };
    track.UnDelete = [this](int t) { UnDeleteTrack(t); };
    EntityKindOps& bkg = KindOps(5);
    bkg.FakeDelete = [this](int b) { FakeDeleteBkg(b); };
    bkg.UnDelete = [this](int b) { UnDeleteBkg(b); };
    bkg.DeletePermanently = [this](int b) {
        m_deletedBkgs.erase(b);
        ZELMAR_background_delete(b);
    };
}

void TracksController::uninstallKindOps() {
    for (int kind : {2, 3, 5}) ResetKindOps(kind);
}

} // namespace vexil
