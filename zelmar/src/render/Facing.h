// A rotated polygon (a sprite card: a tree, a lamp) is drawn turned about the vertical (+z) line through
// the centre of its box, so that its face looks towards the eye. The render and the picks turn it alike.
#pragma once
#include "render/SceneCache.h"
#include "render/View.h"

#include <cmath>

namespace zelmar::render {

struct FacingTurn {
    bool turned = false; // false: a level card, or the eye straight above it, is seen as stored
    double cosA = 1, sinA = 0, cx = 0, cy = 0;
    // A point turned about the vertical through (cx, cy); a direction about the vertical.
    void point(const double* in, double* out) const { turn(in, out, cx, cy); }
    void direction(const double* in, double* out) const { turn(in, out, 0, 0); }

  private:
    void turn(const double* in, double* out, double ox, double oy) const {
        const double x = in[0] - ox, y = in[1] - oy;
        out[0] = ox + cosA * x - sinA * y;
        out[1] = oy + sinA * x + cosA * y;
        out[2] = in[2];
    }
};

// The turn that brings the level part of the card's normal onto the level part of the way to the eye
// (the eye's direction in a parallel view).
inline FacingTurn facingTurn(const View& view, const PackedPolygon& pp) {
    FacingTurn f;
    if (!pp.rotated) return f;
    f.cx = (pp.box[0] + pp.box[3]) / 2;
    f.cy = (pp.box[1] + pp.box[4]) / 2;
    const double nx = pp.normal[0], ny = pp.normal[1];
    double tx, ty;
    if (view.perspective) {
        tx = view.eye[0] - f.cx;
        ty = view.eye[1] - f.cy;
    } else {
        tx = -view.axis[0][0];
        ty = -view.axis[0][1];
    }
    const double nl = std::hypot(nx, ny), tl = std::hypot(tx, ty);
    if (!(nl > 1e-9) || !(tl > 1e-9)) return f;
    f.cosA = (nx * tx + ny * ty) / (nl * tl);
    f.sinA = (nx * ty - ny * tx) / (nl * tl);
    f.turned = true;
    return f;
}

} // namespace zelmar::render
