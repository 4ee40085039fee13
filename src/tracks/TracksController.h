// The cameras, tracks and backgrounds of the main window: the marker groups of scene cameras, the three
// panels of the Background/Camera/Track tab, the entity commands (create, delete, save current), the
// chase dialog, and the operations that the selection model and the undo actions reach through KindOps
// for kinds 2 (camera), 3 (track) and 5 (background). Form1 owns one and forwards its hooks here.
#pragma once
#include "CameraGrp.h"
#include "TrackTools.h"

#include <memory>
#include <set>

class QComboBox;
class QPainter;
class QPushButton;
class QStackedWidget;
class QToolBar;
class QTreeWidgetItem;
class QWidget;

namespace vexil {

class BackgroundPanel;
class CameraPanel;
class TracksHost;

class TracksController {
  public:
    explicit TracksController(TracksHost& host);
    ~TracksController();
    TracksController(const TracksController&) = delete;
    TracksController& operator=(const TracksController&) = delete;

    // ---- the tab --------------------------------------------------------------------------------------
    // The panels (camera, track, background); one shows at a time, by the current entity's kind.
    QWidget* Panels() const;
    // The window's edit-level combo and Insert button go into the track panel.
    void AttachTrackControls(QComboBox* cmbTrackPoint, QToolBar* tlbrBtnInsert);
    CameraPanel& CamPanel() const { return *m_camPanel; }
    BackgroundPanel& BkgPanel() const { return *m_bkgPanel; }
    QPushButton* cmdTrkPtDelete() const { return m_cmdTrkPtDelete; }
    QWidget* frmTrackPoint() const { return m_frmTrackPoint; }
    // Step 6 of the selection-changed notice for kinds 2, 3, 5, and step 5 (closing the previous kind).
    void OpenPanelOfKind(int kind, int handle);
    void ClosePanelOfKind(int prevKind, int newKind);
    // The combo's text "Point" shows the point panel.
    void cmbTrackPoint_Change();

    // ---- cameras -------------------------------------------------------------------------------------
    CameraGrp& Markers() { return m_markers; }
    int CreateNewCam();
    void mnuCamera_Click();
    void mnuCamTrkBkMenuSaveCurrent_Click();
    void DeleteCamera(int camera);
    void FakeDeleteCamera(int camera);
    void UnDeleteCamera(int camera);
    void DeleteCameraPermanently(int camera);
    // The chase dialog for the current camera or group, or for the given entity (type 1 group, 2 camera).
    void EditChase();
    void EditChaseOf(int type, int handle);

    // ---- tracks --------------------------------------------------------------------------------------
    TrackTools& Tracks() { return m_tracks; }
    void CreateNewTrack();
    void mnuCircular_Click();
    void mnuCustom_Click();
    void DeleteTrack(int track);
    void FakeDeleteTrack(int track);
    void UnDeleteTrack(int track);

    // ---- backgrounds -----------------------------------------------------------------------------------
    int CreateNewBackground();
    void DeleteBkg(int background);
    void FakeDeleteBkg(int background);
    void UnDeleteBkg(int background);

    // ---- the tree's popup menu -------------------------------------------------------------------------
    // New by the folder of the selected node; Delete by the folder of its parent.
    void mnuCamTrkBkMenuNew_Click(QTreeWidgetItem* selected);
    void mnuCamTrkBkMenuDelete_Click(QTreeWidgetItem* selected);

    // ---- world ---------------------------------------------------------------------------------------
    // Markers for every saved camera (load, add).
    void RefreshMarkers() { m_markers.Refresh(); }
    // World close: markers gone, laying and insert modes off.
    void ClearWorldState();
    // A view is about to be drawn with `viewCamera` current: markers keep their size on screen.
    void ScaleSceneCameras(int viewCamera);

  private:
    void installKindOps();
    void uninstallKindOps();
    void afterDelete(int kind);
    void showOnly(QWidget* panel);

    TracksHost& m_host;
    CameraGrp m_markers;
    TrackTools m_tracks;
    QStackedWidget* m_stack = nullptr;
    CameraPanel* m_camPanel = nullptr;
    QWidget* m_frmTrack = nullptr;
    QWidget* m_frmTrackPoint = nullptr;
    QPushButton* m_cmdTrkPtDelete = nullptr;
    BackgroundPanel* m_bkgPanel = nullptr;
    QWidget* m_empty = nullptr;
    QComboBox* m_cmbTrackPoint = nullptr;
    std::set<int> m_deletedBkgs; // fake deleted: kept for undo, never drawn
};

} // namespace vexil
