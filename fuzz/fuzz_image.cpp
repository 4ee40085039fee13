// The image reader must refuse any bytes cleanly: never crash, never read outside them.
#include "io/ImageCodec.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelmar::image::Image img;
    std::string error;
    if (zelmar::image::decodeMemory(data, size, img, error)) {
        // A decoded image is whole and can be written again.
        if (img.rgba.size() != size_t(img.width) * size_t(img.height) * 4) __builtin_trap();
        if (img.paletted() && img.indices.size() * 4 != img.rgba.size()) __builtin_trap();
        if (size_t(img.width) * size_t(img.height) <= 4096) {
            std::vector<uint8_t> out;
            zelmar::image::encodeBmp(img, out, error);
        }
    }
    return 0;
}
