#include "render/PngWriter.h"

#include <cstdio>

// stb's writer compiled privately (static functions) so that it cannot clash with the
// codec's own copy.
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace zelmar::render {
namespace {

void append(void* context, void* data, int size) {
    auto* v = static_cast<std::vector<uint8_t>*>(context);
    const auto* p = static_cast<const uint8_t*>(data);
    v->insert(v->end(), p, p + size);
}

} // namespace

bool writePng(const std::string& path, const uint8_t* rgba, int width, int height, bool keepAlpha,
              std::string& error) {
    if (!rgba || width <= 0 || height <= 0) {
        error = "no pixels to write";
        return false;
    }
    std::vector<uint8_t> pixels;
    const int comp = keepAlpha ? 4 : 3;
    pixels.reserve(static_cast<size_t>(width) * height * comp);
    for (size_t i = 0; i < static_cast<size_t>(width) * height; ++i)
        for (int k = 0; k < comp; ++k)
            pixels.push_back(rgba[i * 4 + k]);
    std::vector<uint8_t> out;
    if (!stbi_write_png_to_func(append, &out, width, height, comp, pixels.data(), width * comp)) {
        error = "PNG encoding failed";
        return false;
    }
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        error = "cannot write " + path;
        return false;
    }
    const bool ok = std::fwrite(out.data(), 1, out.size(), f) == out.size();
    if (std::fclose(f) != 0 || !ok) {
        error = "cannot write " + path;
        return false;
    }
    return true;
}

} // namespace zelmar::render
