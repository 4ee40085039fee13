// Bitmap files with one fault each: shared by the load tests and the corpus writer.
#pragma once
#include <cstdint>
#include <vector>

namespace iotest {

// A valid 8 x 8 grey image as .jpg or .bmp.
std::vector<uint8_t> smallImage(bool jpeg);
// A JPEG whose scan names a component its frame lacks: the decoder fails without a reason.
std::vector<uint8_t> damagedJpeg();
// An 8-bit 2 x 2 .bmp with a palette of 2 colours, one pixel naming colour 200.
std::vector<uint8_t> bmpIndexPastPalette();
// A JPEG whose frame header claims 16384 x 16384 pixels.
std::vector<uint8_t> hugeJpegHeader();

} // namespace iotest
