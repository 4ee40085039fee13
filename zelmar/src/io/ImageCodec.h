// Reading and writing the image kinds the engine supports: .bmp and .jpg, and beside them
// .png and .tga (read and written; a world saves such a bitmap under its own extension).
// Decoding is stb's; a paletted .bmp also keeps its palette and per-pixel indices so
// that transparent indices and palette queries mean what they meant in the file.
// Nothing here throws: every failure answers false with a readable text in `error`.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zelmar::image {

struct Image {
    int width = 0, height = 0;
    std::vector<uint8_t> rgba;    // width * height * 4, rows top to bottom, alpha 255
    std::vector<uint8_t> indices; // width * height palette indices when paletted, else empty
    std::vector<uint8_t> palette; // rgb triples (at most 256) when paletted, else empty

    bool paletted() const { return !indices.empty(); }
    int paletteSize() const { return static_cast<int>(palette.size() / 3); }
};

enum class Format { Unknown, Bmp, Jpeg, Png, Tga };

// Largest width or height accepted from a file; protects against absurd headers.
constexpr int kMaxDimension = 16384;
// Largest number of pixels decoded from a file (256 MiB of RGBA): a 16384 x 16384 header
// is refused with a clear text instead of claiming gigabytes.
constexpr uint64_t kMaxPixels = uint64_t(1) << 26;

// The kind of the bytes, by their signature (a .tga has none: its header is checked for sense).
Format sniff(const uint8_t* data, size_t size);
// The kind a file name asks for, by its extension (case-insensitive).
Format formatForPath(const std::string& path);

bool decodeMemory(const uint8_t* data, size_t size, Image& out, std::string& error);
bool decodeFile(const std::string& path, Image& out, std::string& error);

// .bmp: 8-bit with the palette when the image is paletted, otherwise 24-bit.
bool encodeBmp(const Image& img, std::vector<uint8_t>& out, std::string& error);
// .jpg with quality 1..100 (out-of-range values are clamped).
bool encodeJpeg(const Image& img, int quality, std::vector<uint8_t>& out, std::string& error);
// .png (lossless, 24-bit) and .tga (uncompressed 24-bit).
bool encodePng(const Image& img, std::vector<uint8_t>& out, std::string& error);
bool encodeTga(const Image& img, std::vector<uint8_t>& out, std::string& error);
// By the file's extension (.bmp, .jpg/.jpeg, .png or .tga). Written as io/AtomicFile writes, so a
// failed write never leaves a half-written image nor a scratch file.
bool encodeFile(const Image& img, const std::string& path, std::string& error, int jpegQuality = 90);

// Whole file into memory, with a clear error for missing, unreadable or non-regular files
// (a named pipe is refused, never waited on).
bool readFile(const std::string& path, std::vector<uint8_t>& out, std::string& error);

// Bilinear resample of the RGBA pixels; palette indices are resampled by nearest neighbour.
Image resample(const Image& img, int width, int height);

} // namespace zelmar::image
