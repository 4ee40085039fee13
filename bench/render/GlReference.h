// The same grid drawn by Mesa's llvmpipe through EGL (surfaceless) and fixed-function GL:
// textured (bilinear, no mipmaps), Gouraud-shaded, depth-tested, linear fog.
#pragma once
#include "BenchScene.h"
#include <string>

namespace bench {

class GlReference {
  public:
    // Creates the context; LP_NUM_THREADS must be set before. False with a reason.
    bool init(std::string& error);
    void upload(const Grid& g);
    void drawFrame();                // clear, draw, glFinish
    std::vector<uint8_t> readRgba(); // top row first
    std::string renderer() const { return renderer_; }

  private:
    unsigned fbo_ = 0, color_ = 0, depth_ = 0, vbo_ = 0, tex_ = 0;
    int count_ = 0;
    std::string renderer_;
};

} // namespace bench
