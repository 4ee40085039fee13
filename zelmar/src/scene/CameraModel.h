// The camera's geometry: axis system, angles, conversions between camera and world
// space, and the projection onto a target of given pixel size. Pure functions over a
// Camera; no engine state.
//
// Conventions (docs/camera-conventions.md, docs/engine-entities.md):
//  - world space is right-handed with +z up;
//  - axis rows: x = viewing direction, y = left, z = up, y = z cross x;
//  - camera-space coordinates of a point are (ahead, left, up) relative to the location;
//  - zoom is the horizontal field of view in degrees, strictly between 0 and 180;
//  - head is the compass angle of the view direction about +z (0 looks along +x, 90
//    along +y), tilt the elevation (positive looks up), bank the right-handed turn about
//    the view direction; all in degrees.
#pragma once
#include "scene/Entities.h"

namespace zelmar::camera {

constexpr double kMinZoom = 1e-6;  // exclusive bounds of a stored field of view
constexpr double kMaxZoom = 180.0; // exclusive

bool validZoom(double degrees);

// Rebuilds an orthonormal, right-handed axis system from rows that may have drifted.
// Returns false when x and z are parallel or zero (the camera is left unchanged).
bool setAxisSystem(Camera& c, const double x[3], const double y[3], const double z[3]);

// The view direction is normalised. `level` rebuilds the frame with bank 0 (up towards
// +z, head kept when the direction is vertical); otherwise the frame turns by the
// smallest rotation, keeping its roll. False for a zero or non-finite direction.
bool setDirection(Camera& c, const double dir[3], bool level);
// Turns the camera, level, to look at a point; false when the point is the location.
bool pointAt(Camera& c, const double point[3]);

// Turn about the camera's own axis (0 = x roll, 1 = y, 2 = z), right-handed, radians.
void rotateAboutOwnAxis(Camera& c, int axis, double radians);

double headDegrees(const Camera& c);
double tiltDegrees(const Camera& c);
double bankDegrees(const Camera& c);
void setAngles(Camera& c, double headDeg, double tiltDeg, double bankDeg);

void worldToCamera(const Camera& c, const double world[3], double out[3]);
void cameraToWorld(const Camera& c, const double local[3], double out[3]);
// Row-major 4x4 matrix taking homogeneous world points to camera space.
void viewMatrix(const Camera& c, double m[16]);

// Focal length in pixels for a target `width` pixels wide (perspective cameras).
double focalPixels(const Camera& c, int width);

// Screen position of a world point on a width x height target: pixel (0,0) is the top
// left corner of the top left pixel, x grows right and y down. `depth` receives the
// distance ahead of the eye along the view direction. False when the point is not in
// front of the projection plane (depth below distanceFromEye) for perspective cameras.
// Parallel cameras map parallelWidth (and parallelHeight, or the same scale when 0)
// onto the target (without a width: the field of view at the projection plane) and
// answer for any depth.
bool project(const Camera& c, int width, int height, const double world[3], double& sx, double& sy,
             double& depth);

// The ray through screen position (sx, sy): origin on the projection plane for
// perspective cameras, direction unit length.
void rayThrough(const Camera& c, int width, int height, double sx, double sy, double origin[3],
                double dir[3]);

// A location, keeping the direction and zoom, from which a sphere around the box
// (min xyz, max xyz) fills the field of view.
void locationToFit(const Camera& c, const double box[6], double out[3]);

} // namespace zelmar::camera
