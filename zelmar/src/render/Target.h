// Render targets: the pixel buffers the engine draws into, with their depth buffers.
// Handles are positive, counted up and never reused; they are not world entities, so
// they survive loading and closing worlds.
#pragma once
#include <cstdint>
#include <vector>

namespace zelmar::render {

constexpr int kMaxTargetSize = 16384;

struct Target {
    int handle = 0;
    int width = 0, height = 0;
    std::vector<uint32_t> color; // RGBA bytes in memory order R, G, B, A
    std::vector<float> depth;    // larger is nearer; see Rasterizer.h
    bool rendered = false;       // something was drawn since creation or resize
    bool depthValid = false;     // depth holds the last render's values
};

int createTarget(int width, int height); // 0 for a bad size
bool resizeTarget(int handle, int width, int height);
bool destroyTarget(int handle);
Target* target(int handle); // nullptr for anything that is not a live target

} // namespace zelmar::render
