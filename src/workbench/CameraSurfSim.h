// The camera navigator of the simplification workbench: it drives the one engine camera
// "camSurfSim" in orbit around a look-at point (azimuth Theta, elevation Phi, distance Dist), with
// the left button revolving and the right button zooming (moving nearer or farther). Nothing of the
// main viewports is touched.
//
// Distances are in units of a fifteenth of the bounding radius of the group looked at (Unit), so that
// the same numbers frame a bunny of 0.2 units and a tower of 200:
//
//   CameraSurfSim cam;
//   cam.Initialize(25.0, 45.0, 500.0);       // nearest, starting and farthest distance, in units
//   cam.CamHandle = ZELMAR_camera_create("camSurfSim");
//   cam.FrameGroup(group);                    // look-at point and unit from the group's box
//   cam.Update(); cam.ReSetCamDistFrmEye();
#pragma once
#include "maths/Maths.h"

namespace vexil {

class CameraSurfSim {
public:
    int CamHandle = 0;
    double Theta = 0.6, Phi = 0.35; // radians
    double Dist = 45;               // in units
    double MinDist = 25, MaxDist = 500;
    double Unit = 1.0;              // world length of one unit
    double ZoomSensitivity = 1.0;   // PAGE UP doubles it, PAGE DOWN halves it
    double LookAtOffsetV = 0, LookAtOffsetH = 0;
    Maths::Vector LookAt{0, 0, 0};
    double LastX = 0, LastY = 0;

    // The nearest, the starting and the farthest distance, in units.
    void Initialize(double minDist, double dist, double maxDist);
    // Rebuilds the engine camera's location and axes (x viewing direction, y left, z up).
    void Update();
    // The near plane follows the distance: Dist * 0.5 / zoom (world length).
    void ReSetCamDistFrmEye();
    void MouseDown(int button, int shift, double x, double y);
    // Left button: revolve about the look-at point; right button: nearer (drag up) or farther.
    void MouseMove(int button, int shift, double x, double y);
    void PointAtGrp(int group);    // the group's rotate reference point
    void PointAtGrpLoc(int group); // the group's location (the centre of its box)
    void PointAtLoc(const Maths::Vector& location);
    void SetLookAtOffset(double v, double h);
    // Looks at the centre of the group's box; one unit becomes a fifteenth of its bounding radius.
    void FrameGroup(int group);
    // The camera's location in the world (after Update).
    Maths::Vector Location() const;

private:
    Maths::Vector m_location{0, 0, 0};
};

} // namespace vexil
