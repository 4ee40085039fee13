// PNG encoding of RGBA pixels (the command-line renderer and golden images use it).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zelmar::render {

// Writes 8-bit RGB (alpha dropped) or RGBA; false with a reason on failure.
bool writePng(const std::string& path, const uint8_t* rgba, int width, int height, bool keepAlpha,
              std::string& error);

} // namespace zelmar::render
