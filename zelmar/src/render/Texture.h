// Bitmaps prepared for sampling: 32-bit texels (RGBA bytes), transparent texels with
// alpha 0 and colour 0 so that bilinear filtering does not bleed the key colour.
#pragma once
#include "scene/Entities.h"
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace zelmar::render {

struct Texture {
    int width = 0, height = 0;
    bool pow2 = false;
    uint32_t wmask = 0, hmask = 0;
    bool transparent = false; // some texel has alpha 0
    uint32_t mean = 0xFFFFFFFFu;
    std::vector<uint32_t> texels;
};

// The prepared form of a bitmap with a given transparent index (-1: the bitmap's own
// transparent index and rgb). Cached by handle, bitmap version and index; nullptr for a
// handle that is not a bitmap with pixels. Not thread-safe: call before a render spreads.
const Texture* preparedTexture(Handle bitmap, int transparentIndex = -1);

// Drops prepared bitmaps that no longer exist.
void pruneTextures();

inline int wrapIndex(int i, int n, bool pow2, uint32_t mask) {
    if (pow2) return static_cast<int>(static_cast<uint32_t>(i) & mask);
    int r = i % n;
    return r < 0 ? r + n : r;
}

} // namespace zelmar::render
