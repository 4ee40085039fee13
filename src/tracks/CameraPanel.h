// frmCamera: the panel of the current scene camera in the Background/Camera/Track tab. Location and
// direction apply when their boxes lose focus (not on each key), the lens and the minimum viewing distance
// as they change; "Edit Chase" opens the chase dialog.
#pragma once
#include <QWidget>
#include <array>
#include <functional>

class QPushButton;

namespace vexil {

class CameraGrp;
class Spinner;
class TracksHost;

class CameraPanel : public QWidget {
    Q_OBJECT
  public:
    CameraPanel(TracksHost& host, CameraGrp& markers, QWidget* parent = nullptr);

    // Fills the boxes from the engine under the guard (nothing is sent back).
    void SetCamWorkspaceFrame_Params(int camera);
    void ResetCamWorkSpaceFrame();
    int Camera() const { return m_camera; }

    void txtCamLoc_LostFocus();
    void txtCamDir_LostFocus();
    void spnFOV_Changed();
    void spnCamDistFrmEye_Changed();

    std::array<Spinner*, 3> spnCamLoc{};
    std::array<Spinner*, 3> spnCamDir{};
    Spinner* spnFOV = nullptr;
    Spinner* spnCamDistFrmEye = nullptr;
    QPushButton* cmdCamEditChase = nullptr;
    // Runs the chase dialog for the panel's camera.
    std::function<void()> EditChase;

  private:
    void redraw();

    TracksHost& m_host;
    CameraGrp& m_markers;
    int m_camera = 0;
    bool m_guard = false;
};

} // namespace vexil
