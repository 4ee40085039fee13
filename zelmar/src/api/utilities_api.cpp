// Image and file utilities that need no rendering. Results: 1 done, -1 failed (the last
// error says why), as the screenshot savers answer.
#include "api/EntityArgs.h"
#include "io/ImageCodec.h"

#include <zelmar/zelmar.h>

#include <cstring>

using namespace zelmar;
using namespace zelmar::api;

namespace {

int fail(const char* op, const std::string& error) {
    setLastError(std::string(op) + ": " + error);
    return -1;
}

bool sizeArg(int width, int height, const char* op) {
    if (width > 0 && height > 0 && width <= image::kMaxDimension && height <= image::kMaxDimension)
        return true;
    fail(op, "an image cannot be " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
    return false;
}

image::Image fromPixels(const unsigned char* rgba, int width, int height) {
    image::Image img;
    img.width = width;
    img.height = height;
    img.rgba.assign(rgba, rgba + size_t(width) * size_t(height) * 4);
    return img;
}

// Decodes `from` and writes it as `to`, whatever the two kinds are.
int convert(const char* from, const char* to, int quality, const char* op) {
    if (!from || !to) return fail(op, "no file name given");
    image::Image img;
    std::string error;
    if (!image::decodeFile(from, img, error)) return fail(op, error);
    if (!image::encodeFile(img, to, error, quality)) return fail(op, error);
    return 1;
}

} // namespace

extern "C" {

int ZELMAR_utilities_save_bitmap(const unsigned char* rgba, int width, int height, const char* file) {
    const char* op = "utilities_save_bitmap";
    if (!rgba || !file) return fail(op, "no pixels or no file name given");
    if (!sizeArg(width, height, op)) return -1;
    std::string error;
    if (!image::encodeFile(fromPixels(rgba, width, height), file, error)) return fail(op, error);
    return 1;
}

int ZELMAR_utilities_jpg2bmp(const char* jpg_file, const char* bmp_file) {
    if (bmp_file && image::formatForPath(bmp_file) != image::Format::Bmp)
        return fail("utilities_jpg2bmp", std::string("not a .bmp file name: ") + bmp_file);
    return convert(jpg_file, bmp_file, 90, "utilities_jpg2bmp");
}

int ZELMAR_utilities_bmp2jpg(const char* bmp_file, const char* jpg_file, int quality) {
    if (jpg_file && image::formatForPath(jpg_file) != image::Format::Jpeg)
        return fail("utilities_bmp2jpg", std::string("not a .jpg file name: ") + jpg_file);
    return convert(bmp_file, jpg_file, quality, "utilities_bmp2jpg");
}

int ZELMAR_utilities_file_to_memory(const char* file, unsigned char* buffer, int buffer_size) {
    const char* op = "utilities_file_to_memory";
    if (!file) return fail(op, "no file name given");
    std::vector<uint8_t> bytes;
    std::string error;
    if (!image::readFile(file, bytes, error)) return fail(op, error);
    if (bytes.size() > size_t(INT32_MAX)) return fail(op, "file too large");
    if (buffer && buffer_size > 0)
        std::memcpy(buffer, bytes.data(), std::min(bytes.size(), size_t(buffer_size)));
    return static_cast<int>(bytes.size());
}

int ZELMAR_utilities_load_bitmap_from_file(const char* file, unsigned char* rgba, int buffer_size,
                                           int size[2]) {
    const char* op = "utilities_load_bitmap_from_file";
    if (!file || !size) return fail(op, "no file name or size array given");
    image::Image img;
    std::string error;
    if (!image::decodeFile(file, img, error)) return fail(op, error);
    size[0] = img.width;
    size[1] = img.height;
    if (rgba && buffer_size > 0 && img.rgba.size() <= size_t(buffer_size))
        std::memcpy(rgba, img.rgba.data(), img.rgba.size());
    return 1;
}

int ZELMAR_utilities_resample_bitmap(const unsigned char* rgba, int width, int height, unsigned char* result,
                                     int new_width, int new_height) {
    const char* op = "utilities_resample_bitmap";
    if (!rgba || !result) return fail(op, "no pixels given");
    if (!sizeArg(width, height, op) || !sizeArg(new_width, new_height, op)) return -1;
    const image::Image r = image::resample(fromPixels(rgba, width, height), new_width, new_height);
    std::memcpy(result, r.rgba.data(), r.rgba.size());
    return 1;
}

int ZELMAR_utilities_rgb16_to_rgb24(int rgb16) {
    // 5-6-5 bits (red high) to a packed colour with red in the low byte; the top bits
    // of each channel are repeated so that full intensity stays 255.
    const int r5 = (rgb16 >> 11) & 0x1F, g6 = (rgb16 >> 5) & 0x3F, b5 = rgb16 & 0x1F;
    const int r = (r5 << 3) | (r5 >> 2), g = (g6 << 2) | (g6 >> 4), b = (b5 << 3) | (b5 >> 2);
    return r | g << 8 | b << 16;
}

int ZELMAR_utilities_is_windows98(void) {
    return 0;
}

} // extern "C"
