// The navigator of one viewport: it drives an engine camera in orbit around a look-at point, kept as
// spherical coordinates (Theta azimuth, Phi elevation, Dist) and rebuilt into the engine camera by Update.
// Parallel views are narrow perspective cameras (zoom 1) far away.
//
//   camera& c = views.ViewCams(0);
//   c.Theta = 0; c.Phi = 3.14 / 2; c.Dist = worldSize * 100; c.Update(); c.ReSetCamDistFrmEye();
#pragma once
#include "maths/Maths.h"

#include <QSize>
#include <memory>

namespace vexil {

// What a navigator reads of the viewports around it.
class CameraContext {
  public:
    virtual ~CameraContext() = default;
    virtual int ToolMode() const = 0;
    virtual double WorldSize() = 0;
    virtual double CamMoveFactor() = 0;
    virtual int CurrSelEntityType() = 0;
    virtual int CurrSelEntity() = 0;
    // Height and width in pixels of the active viewport.
    virtual int ActiveWindowHeight() = 0;
    virtual int ActiveWindowWidth() = 0;
    // UpdateCamerasSingle(ActiveWin).
    virtual void RedrawActiveView() = 0;
    virtual void ProcessEvents() = 0;
    // Size of the screen in pixels (cursor wrap).
    virtual QSize ScreenSize() = 0;
};

// Mouse buttons as the dispatch passes them (bit mask), and the shift mask.
constexpr int BtnLeft = 1, BtnRight = 2, BtnMiddle = 4;
constexpr int ShiftMask = 1, CtrlMask = 2, AltMask = 4;

constexpr double TwoPi = 6.28318530717958;
constexpr double MinDist = 1e-05;
constexpr double MinZoom = 1.0, MaxZoom = 179.0;

class camera {
  public:
    explicit camera(CameraContext& ctx);
    ~camera();
    camera(const camera&) = delete;
    camera& operator=(const camera&) = delete;

    double Roll = 0;
    int CamHandle = 0;
    double Dist = 1;
    double LookAtOffsetV = 0, LookAtOffsetH = 0;
    double Phi = 0, Theta = 0;
    Maths::Vector Direction{0, 0, 0};
    Maths::Vector Location{0, 0, 0};
    Maths::Vector LookAt{0, 0, 0};
    double LastX = 0, LastY = 0;
    double SavedZoom = 1.0;
    int AutoRevolving = 0;

    void Initialize(double dist, double theta, double phi);
    // Rebuilds the engine camera's location and axes from the spherical coordinates.
    void Update();
    // Near plane follows the distance: Dist * 0.5 / zoom.
    void ReSetCamDistFrmEye();
    void MouseDown(int button, int shift, double x, double y);
    void MouseMove(int button, int shift, double x, double y);
    void PointAtGrp(int group);
    void PointAtGrpLoc(int group);
    void PointAtLoc(const Maths::Vector& location);
    void SetLookAtOffset(double v, double h);
    // Perspective <-> parallel, keeping Dist * zoom (the picture keeps its size).
    void ToggleProjection();
    // Spins the view at the speed of the last flick until Escape, a mouse-down or StopAutoRevolve.
    void AutoRevolve();
    void StopAutoRevolve();

    double Zoom() const;
    // World units per pixel of the active window at the depth of `point` along the viewing direction.
    double WorldPerPixelAt(const double point[3]) const;

  private:
    void Pan(double x, double y);
    void ApplyLookAtOffset();
    CameraContext& m_ctx;
    // The camera's left and up axes before the roll (Update): the directions of the look-at offsets.
    Maths::Vector m_axisY0{0, 1, 0}, m_axisZ0{0, 0, 1};
    // The point the last press hit, which a pan keeps under the cursor.
    Maths::Vector m_panPoint{0, 0, 0};
    bool m_panPointValid = false;
    // Lets a running AutoRevolve notice that its camera died while events ran.
    std::shared_ptr<bool> m_alive;
};

} // namespace vexil
