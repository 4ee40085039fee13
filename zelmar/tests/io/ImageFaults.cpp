#include "ImageFaults.h"

#include "io/ImageCodec.h"
#include <string>

namespace iotest {

std::vector<uint8_t> smallImage(bool jpeg) {
    zelmar::image::Image img;
    img.width = img.height = 8;
    img.rgba.assign(8 * 8 * 4, 90);
    std::vector<uint8_t> out;
    std::string error;
    if (jpeg)
        zelmar::image::encodeJpeg(img, 90, out, error);
    else
        zelmar::image::encodeBmp(img, out, error);
    return out;
}

namespace {
// The bytes after the first marker `m` (0xFF m), patched by `patch`.
template <class F> std::vector<uint8_t> patchedAfterMarker(uint8_t m, F patch) {
    std::vector<uint8_t> b = smallImage(true);
    for (size_t i = 0; i + 9 < b.size(); ++i)
        if (b[i] == 0xFF && b[i + 1] == m) {
            patch(&b[i + 2]);
            break;
        }
    return b;
}
} // namespace

std::vector<uint8_t> damagedJpeg() {
    // Scan header: length (2), component count (1), then the first component's selector.
    return patchedAfterMarker(0xDA, [](uint8_t* p) { p[3] = 0x7F; });
}

std::vector<uint8_t> hugeJpegHeader() {
    // Frame header: length (2), precision (1), height (2), width (2).
    return patchedAfterMarker(0xC0, [](uint8_t* p) { p[3] = p[5] = 0x40, p[4] = p[6] = 0; });
}

std::vector<uint8_t> bmpIndexPastPalette() {
    std::vector<uint8_t> b(70, 0);
    auto put = [&](size_t at, uint32_t v) {
        for (int k = 0; k < 4; ++k)
            b[at + size_t(k)] = uint8_t(v >> (8 * k));
    };
    b[0] = 'B', b[1] = 'M';
    put(2, 70);                  // file size
    put(10, 62);                 // pixels after a table of 2 colours
    put(14, 40);                 // header size
    put(18, 2), put(22, 2);      // 2 x 2
    b[26] = 1, b[28] = 8;        // one plane, 8 bits
    put(46, 2);                  // colours used
    b[58] = b[59] = b[60] = 255; // colour 1 white
    b[63] = 1, b[66] = 200;      // rows of 4 bytes: 0 1 | 200 0
    return b;
}

} // namespace iotest
