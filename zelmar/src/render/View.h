// One camera seen on one target: the transform from world space to camera space and on
// to pixels, shared by the rasteriser, the projections and the picks so that they agree
// to the pixel. Camera space is (depth ahead, left, up); pixel (0,0) is the top-left
// corner of the top-left pixel, y grows downwards.
#pragma once
#include "scene/Entities.h"

namespace zelmar::render {

struct View {
    double eye[3] = {0, 0, 0};
    double axis[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}; // forward, left, up
    int width = 0, height = 0;
    double cx = 0, cy = 0; // centre of the target in pixels
    bool perspective = true;
    double focal = 1;        // pixels per unit of (lateral / depth), perspective
    double scale = 1;        // pixels per world unit, parallel
    double nearDepth = 1e-6; // nothing nearer than this is drawn

    void toCamera(const double world[3], double out[3]) const;
    // Pixel position of a camera-space point; meaningful for depth > 0 (perspective).
    void toScreen(const double cam[3], double& sx, double& sy) const;
    // The world ray through screen position (sx, sy): origin at the eye (perspective) or
    // on the eye's plane (parallel), direction of unit length.
    void ray(double sx, double sy, double origin[3], double dir[3]) const;
};

// False when the camera cannot give a picture (non-finite values, zero size).
bool makeView(const Camera& camera, int width, int height, View& out);

// Statuses documented in docs/engine-render.md.
int projectPoint(const View& v, const double p[3], int out[2]);
int projectEdge(const View& v, const double p1[3], const double p2[3], int r1[2], int r2[2]);

} // namespace zelmar::render
