// CameraGrp: the marker groups that show scene cameras in the viewports. A camera is an engine entity
// without geometry; each one saved with the world gets a small root group of real polygons (a camera body
// with a lens, named "CameraGrp") that is kept in step with the camera's placement, so that it can be seen,
// clicked and moved with the gizmo. Markers never reach a saved world or the group tree: they have no
// father group.
#pragma once
#include "selection/MarkerGroup.h"

#include <array>
#include <functional>

namespace vexil {

class CameraGrp {
  public:
    // worldSize: the world's size at creation time (markers start at worldSize * 0.1 / 320.4).
    explicit CameraGrp(std::function<double()> worldSize);
    ~CameraGrp();
    CameraGrp(const CameraGrp&) = delete;
    CameraGrp& operator=(const CameraGrp&) = delete;

    // Builds, aligns and scales the marker of `camera` (nothing if it has one).
    void Add(int camera);
    // Deletes the marker and forgets the camera.
    void Remove(int camera);
    // Deletes every marker (world close).
    void RemoveAll();
    // A hidden camera is a disabled marker.
    void HideUnhide(int camera, bool hide);
    bool IsHidden(int camera) const;
    // The camera drawn by a marker group, 0 for any other group; and back.
    int GetCamHandle(int group) const;
    int GetCamGrp(int camera) const;
    // 1-based, as the rest of the editor counts them.
    int GetCamGrp_UsingIndex(int index) const;
    int GetCam_UsingIndex(int index) const;
    int TotalCamGrps() const { return m_records.Count(); }

    void SetLocation(int camera, const std::array<double, 3>& location);
    // Levels the camera towards `direction` (the engine normalises it) and turns the marker to match.
    void SetDirection(int camera, const std::array<double, 3>& direction);
    void Move(int camera, const std::array<double, 3>& offset);
    // Turns the camera about its own axes by degrees about x, then y, then z, and the marker with it.
    void Rotate(int camera, const std::array<double, 3>& degrees);
    // Scales the marker only: a camera has no size.
    void ScaleGrp(int camera, double factor);
    // Keeps every marker a constant size on the screen of a view whose camera is `viewCamera`:
    // relativeSize is the preference "CamLightObjRelativeSize" (1 to 50).
    void ScaleSceneCam(int viewCamera, double relativeSize);
    // Markers for every camera with save flag 1 that has none (after a load or an add).
    void Refresh();
    // Puts a marker in step with its camera's axis system and location.
    void Align(int camera);

  private:
    static int buildMarker();

    std::function<double()> m_worldSize;
    MarkerGroup m_records;
};

} // namespace vexil
