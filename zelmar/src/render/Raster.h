// Triangle setup and the per-pixel work of the software rasteriser. Edges are exact
// integer functions in 1/16 pixel with the top-left fill rule; attributes are planes in
// screen space evaluated per row from the triangle's own reference point, so a pixel's
// value never depends on which band or thread draws it.
#pragma once
#include "render/Texture.h"
#include <cstdint>

namespace zelmar::render {

// Interpolated attributes. Z is the depth key (larger is nearer: 1/depth in perspective,
// -depth in parallel views); Q is 1/w for perspective correction (1 in parallel views);
// U, V, U2, V2 are multiplied by Q; R, G, B the shade; F the fog amount 0..1.
enum Attr { kZ, kQ, kU, kV, kU2, kV2, kR, kG, kB, kF, kAttrs };

struct ScreenVertex {
    float sx, sy;
    float a[kAttrs];
};

enum TriFlags : uint8_t {
    kTextured = 1,
    kBilinear = 2,
    kLightMap = 4,
    kFog = 8,
};

struct Tri {
    int32_t ea[3], eb[3];
    int64_t ec[3];
    int32_t minX, maxX, minY, maxY; // pixel bounds, clamped to the target
    float x0, y0;                   // reference point of the planes
    float a0[kAttrs], dx[kAttrs], dy[kAttrs];
    const Texture* tex;
    const Texture* tex2;
    uint8_t flags;
    uint8_t blend;
};

// False when the triangle covers no pixel centre of the width x height target.
bool setupTri(const ScreenVertex& v0, const ScreenVertex& v1, const ScreenVertex& v2, int width, int height,
              Tri& out);

struct FrameBuffer {
    uint32_t* color;
    float* depth;
    int width;
    uint32_t fogColor; // RGBA
};

// Draws the rows y0..y1-1 of the triangle.
void rasterTri(const Tri& t, const FrameBuffer& fb, int y0, int y1);

// The nine blending filters; any other value is opaque.
uint32_t blendPixel(uint8_t filter, uint32_t src, uint32_t dst);

} // namespace zelmar::render
