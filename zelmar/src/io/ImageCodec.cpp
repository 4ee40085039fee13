#include "io/ImageCodec.h"

#include "io/AtomicFile.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unordered_map>

// stb is compiled here, privately (static functions), so that no other object of the
// engine can clash with it.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_BMP
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNG
#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STBI_MAX_DIMENSIONS 16384
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#include <stb_image.h>
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace zelmar::image {
namespace {

constexpr size_t kMaxFileBytes = size_t(1) << 30;

uint32_t le16(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8;
}
uint32_t le32(const uint8_t* p) {
    return le16(p) | le16(p + 2) << 16;
}
void put16(std::vector<uint8_t>& v, uint32_t x) {
    v.push_back(uint8_t(x)), v.push_back(uint8_t(x >> 8));
}
void put32(std::vector<uint8_t>& v, uint32_t x) {
    put16(v, x & 0xffff), put16(v, x >> 16);
}

std::string lower(std::string s) {
    for (char& c : s)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// The colour table of a 1-, 4- or 8-bit .bmp, read from its header; empty for any other
// kind. stb decodes the pixels; this only recovers what the file called each colour.
std::vector<uint8_t> bmpPalette(const uint8_t* data, size_t size) {
    std::vector<uint8_t> pal;
    if (size < 26 || data[0] != 'B' || data[1] != 'M') return pal;
    const uint32_t headerSize = le32(data + 14);
    uint32_t bpp = 0, used = 0, entryBytes = 4;
    if (headerSize == 12) {
        bpp = le16(data + 24);
        entryBytes = 3;
    } else if (headerSize >= 40 && size >= 50) {
        bpp = le16(data + 28);
        used = le32(data + 46);
    } else {
        return pal;
    }
    if (bpp != 1 && bpp != 4 && bpp != 8) return pal;
    uint32_t count = used ? used : (1u << bpp);
    count = std::min<uint32_t>(count, 1u << bpp);
    const size_t start = 14 + size_t(headerSize);
    if (start >= size) return pal;
    count = uint32_t(std::min<size_t>(count, (size - start) / entryBytes));
    for (uint32_t i = 0; i < count; ++i) {
        const uint8_t* e = data + start + size_t(i) * entryBytes;
        pal.push_back(e[2]), pal.push_back(e[1]), pal.push_back(e[0]);
    }
    return pal;
}

// A 1-, 4- or 8-bit .bmp whose colour table is missing, or a pixel naming a colour past its
// end: stb would take such colours from its own uninitialised table. Empty when every index
// is in the table. The table is counted as stb counts it (what lies between the header and
// the pixels; for the old 12-byte header, four entries fewer).
std::string bmpIndexProblem(const uint8_t* data, uint32_t headerSize, uint32_t offset, int64_t width,
                            int64_t height, uint32_t bpp) {
    if (bpp != 1 && bpp != 4 && bpp != 8) return "";
    const int64_t entryBytes = headerSize == 12 ? 3 : 4;
    const int64_t tableBytes = int64_t(offset) - 14 - (headerSize == 12 ? 24 : int64_t(headerSize));
    if (tableBytes < entryBytes) return "the .bmp has no colour table";
    const uint64_t colours = uint64_t(tableBytes / entryBytes);
    if (colours > 256) return ""; // stb names this one itself
    if (colours >= (uint64_t(1) << bpp)) return "";
    const uint64_t stride = (uint64_t(width) * bpp + 31) / 32 * 4;
    const uint64_t rows = uint64_t(height < 0 ? -height : height);
    for (uint64_t y = 0; y < rows; ++y) {
        const uint8_t* row = data + offset + y * stride;
        for (uint64_t x = 0; x < uint64_t(width); ++x) {
            const uint64_t bit = x * bpp;
            const uint32_t index = (row[bit / 8] >> (8 - bpp - bit % 8)) & ((1u << bpp) - 1);
            if (index >= colours)
                return "pixel " + std::to_string(x) + ", " + std::to_string(y) + " names colour " +
                       std::to_string(index) + " of a table of " + std::to_string(colours);
        }
    }
    return "";
}

// What is wrong with a .bmp that stb would misread or refuse without saying why: a
// header or pixel rows cut short (stb reads zeros past the end), run-length compression,
// which stb does not decode, or a pixel naming a colour the file does not have. Empty when
// nothing is.
std::string bmpProblem(const uint8_t* data, size_t size) {
    if (size < 26) return "truncated .bmp header";
    const uint32_t headerSize = le32(data + 14);
    const uint32_t offset = le32(data + 10);
    int64_t width = 0, height = 0;
    uint32_t bpp = 0, compression = 0;
    if (headerSize == 12) {
        width = le16(data + 18);
        height = le16(data + 20);
        bpp = le16(data + 24);
    } else {
        if (size < 14 + 40 || headerSize < 40) return "truncated .bmp header";
        width = int32_t(le32(data + 18));
        height = int32_t(le32(data + 22));
        bpp = le16(data + 28);
        compression = le32(data + 30);
    }
    if (compression == 1 || compression == 2) return "run-length compressed .bmp files are not supported";
    if (compression != 0 && compression != 3)
        return "unsupported .bmp compression " + std::to_string(compression);
    if (width <= 0 || height == 0 || bpp == 0 || width > kMaxDimension || std::abs(height) > kMaxDimension)
        return ""; // stb names these itself
    if (uint64_t(width) * uint64_t(std::abs(height)) > kMaxPixels) return ""; // refused by size
    const uint64_t stride = (uint64_t(width) * bpp + 31) / 32 * 4;
    if (uint64_t(offset) + stride * uint64_t(std::abs(height)) > size) return "truncated .bmp pixel data";
    return bmpIndexProblem(data, headerSize, offset, width, height, bpp);
}

// stb's text for its last failure; it gives none for some corrupt files (a JPEG scan naming
// a component the frame lacks), and the text of an earlier failure would be misleading.
void forgetFailure() {
    stbi__g_failure_reason = nullptr;
}
std::string failureReason() {
    const char* why = stbi_failure_reason();
    return why && *why ? why : "corrupt or unsupported image data";
}

// Gives each pixel the first palette entry of its colour. False if a pixel has a colour
// the palette lacks, in which case the image is treated as true colour.
bool indexPixels(Image& img) {
    std::unordered_map<uint32_t, uint8_t> lookup;
    for (int i = img.paletteSize() - 1; i >= 0; --i) {
        const uint8_t* p = &img.palette[size_t(i) * 3];
        lookup[uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16] = uint8_t(i);
    }
    const size_t n = size_t(img.width) * size_t(img.height);
    img.indices.resize(n);
    for (size_t i = 0; i < n; ++i) {
        const uint8_t* p = &img.rgba[i * 4];
        auto it = lookup.find(uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16);
        if (it == lookup.end()) return false;
        img.indices[i] = it->second;
    }
    return true;
}

// stb 2.27 trusts the symbol counts of a JPEG Huffman table and writes past its tables
// when they add up to more than 256; such files are refused before stb sees them.
bool jpegHuffmanTablesSane(const uint8_t* data, size_t size) {
    size_t pos = 2; // after the start-of-image marker
    while (pos + 4 <= size) {
        if (data[pos] != 0xFF) { // stb skips stray bytes between segments, and so do we
            ++pos;
            continue;
        }
        const uint8_t marker = data[pos + 1];
        if (marker == 0xFF) {
            ++pos;
            continue;
        }
        if (marker == 0x01 || marker == 0xD8 || (marker >= 0xD0 && marker <= 0xD7)) {
            pos += 2;
            continue;
        }
        if (marker == 0xD9) return true;
        const size_t length = size_t(data[pos + 2]) << 8 | data[pos + 3];
        if (length < 2) return true;
        const size_t end = std::min(size, pos + 2 + length);
        if (marker == 0xC4) {
            // Tables are read as the decoder reads them: on to the segment's stated end,
            // with zeros past the end of the data.
            const auto at = [&](size_t i) { return i < size ? data[i] : uint8_t(0); };
            for (size_t t = pos + 4; t < pos + 2 + length;) {
                size_t symbols = 0;
                for (size_t i = 1; i <= 16; ++i)
                    symbols += at(t + i);
                if (symbols > 256) return false;
                t += 17 + symbols;
            }
        }
        pos = end;
        if (marker == 0xDA) {
            // Entropy-coded data runs until the next marker that is not a restart or a stuffed byte.
            while (pos + 1 < size && !(data[pos] == 0xFF && data[pos + 1] != 0 && data[pos + 1] != 0xFF &&
                                       !(data[pos + 1] >= 0xD0 && data[pos + 1] <= 0xD7)))
                ++pos;
        }
    }
    return true;
}

void appendBytes(void* context, void* data, int size) {
    auto* out = static_cast<std::vector<uint8_t>*>(context);
    const auto* bytes = static_cast<const uint8_t*>(data);
    out->insert(out->end(), bytes, bytes + size);
}

bool checkImage(const Image& img, std::string& error) {
    if (img.width <= 0 || img.height <= 0 || img.width > kMaxDimension || img.height > kMaxDimension) {
        error = "image size " + std::to_string(img.width) + " x " + std::to_string(img.height) +
                " is not writable";
        return false;
    }
    if (img.rgba.size() != size_t(img.width) * size_t(img.height) * 4) {
        error = "image pixel buffer does not match its size";
        return false;
    }
    return true;
}

std::vector<uint8_t> toRgb(const Image& img) {
    const size_t n = size_t(img.width) * size_t(img.height);
    std::vector<uint8_t> rgb(n * 3);
    for (size_t i = 0; i < n; ++i)
        std::memcpy(&rgb[i * 3], &img.rgba[i * 4], 3);
    return rgb;
}

// A hand-built 8-bit .bmp: stb writes only 24 and 32 bits, and a paletted source must
// keep its indices for transparent indices to survive a save.
void writeBmp8(const Image& img, std::vector<uint8_t>& out) {
    const uint32_t colours = uint32_t(img.paletteSize());
    const uint32_t stride = (uint32_t(img.width) + 3) & ~3u;
    const uint32_t offset = 14 + 40 + colours * 4;
    const uint32_t imageBytes = stride * uint32_t(img.height);
    out.clear();
    out.reserve(offset + imageBytes);
    out.push_back('B'), out.push_back('M');
    put32(out, offset + imageBytes);
    put32(out, 0);
    put32(out, offset);
    put32(out, 40);
    put32(out, uint32_t(img.width));
    put32(out, uint32_t(img.height)); // positive: rows bottom to top
    put16(out, 1);
    put16(out, 8);
    put32(out, 0); // no compression
    put32(out, imageBytes);
    put32(out, 2835), put32(out, 2835); // 72 dpi
    put32(out, colours);
    put32(out, 0);
    for (uint32_t i = 0; i < colours; ++i) {
        const uint8_t* p = &img.palette[size_t(i) * 3];
        out.push_back(p[2]), out.push_back(p[1]), out.push_back(p[0]), out.push_back(0);
    }
    for (int y = img.height - 1; y >= 0; --y) {
        const uint8_t* row = &img.indices[size_t(y) * size_t(img.width)];
        out.insert(out.end(), row, row + img.width);
        out.insert(out.end(), stride - uint32_t(img.width), 0);
    }
}

// A .tga has no signature: its 18-byte header must describe an image stb can read (colour-mapped,
// true-colour or grey, plain or run-length) with a size, a pixel depth and a colour map that make sense.
bool tgaHeaderSane(const uint8_t* d, size_t size) {
    if (size < 18) return false;
    const uint8_t mapType = d[1], type = d[2], depth = d[16];
    const uint32_t mapLength = le16(d + 5), mapDepth = d[7];
    const uint32_t width = le16(d + 12), height = le16(d + 14);
    if (mapType > 1 || width == 0 || height == 0) return false;
    const uint8_t base = type > 8 ? type - 8 : type;
    if (base != 1 && base != 2 && base != 3) return false;
    if (base == 1) {
        if (mapType != 1 || mapLength == 0 || (depth != 8 && depth != 16)) return false;
        if (mapDepth != 15 && mapDepth != 16 && mapDepth != 24 && mapDepth != 32) return false;
    } else if (base == 2) {
        if (depth != 15 && depth != 16 && depth != 24 && depth != 32) return false;
    } else if (depth != 8 && depth != 16) {
        return false;
    }
    return true;
}

// A .tga whose pixels are cut short (stb reads zeros past the end): the plain rows, or the
// run-length packets walked, must fit in the bytes. Empty when nothing is wrong.
std::string tgaProblem(const uint8_t* d, size_t size) {
    const size_t idLength = d[0], mapLength = le16(d + 5), mapEntry = (size_t(d[7]) + 7) / 8;
    const size_t pixelBytes = (size_t(d[16]) + 7) / 8;
    const size_t pixels = size_t(le16(d + 12)) * le16(d + 14);
    size_t pos = 18 + idLength + (d[1] ? mapLength * mapEntry : 0);
    if (pos > size) return "truncated .tga header";
    if (d[2] < 8) return pos + pixels * pixelBytes > size ? "truncated .tga pixel data" : "";
    for (size_t done = 0; done < pixels;) {
        if (pos >= size) return "truncated .tga pixel data";
        const uint8_t packet = d[pos++];
        const size_t count = size_t(packet & 0x7F) + 1;
        pos += packet & 0x80 ? pixelBytes : count * pixelBytes;
        if (pos > size) return "truncated .tga pixel data";
        done += count;
    }
    return "";
}

} // namespace

Format sniff(const uint8_t* data, size_t size) {
    if (!data) return Format::Unknown;
    if (size >= 2 && data[0] == 'B' && data[1] == 'M') return Format::Bmp;
    if (size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) return Format::Jpeg;
    static const uint8_t png[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (size >= 8 && std::memcmp(data, png, 8) == 0) return Format::Png;
    if (tgaHeaderSane(data, size)) return Format::Tga;
    return Format::Unknown;
}

Format formatForPath(const std::string& path) {
    const std::string ext = lower(std::filesystem::path(path).extension().string());
    if (ext == ".bmp") return Format::Bmp;
    if (ext == ".jpg" || ext == ".jpeg") return Format::Jpeg;
    if (ext == ".png") return Format::Png;
    if (ext == ".tga") return Format::Tga;
    return Format::Unknown;
}

bool decodeMemory(const uint8_t* data, size_t size, Image& out, std::string& error) {
    out = Image{};
    if (size == 0) {
        error = "the file is empty";
        return false;
    }
    const Format f = sniff(data, size);
    if (f == Format::Unknown) {
        error = "not a .bmp, .jpg, .png or .tga image";
        return false;
    }
    if (size > size_t(INT32_MAX)) {
        error = "image data too large";
        return false;
    }
    if (f == Format::Jpeg && !jpegHuffmanTablesSane(data, size)) {
        error = "cannot decode image: corrupt JPEG (bad Huffman table)";
        return false;
    }
    if (f == Format::Tga) {
        if (std::string problem = tgaProblem(data, size); !problem.empty()) {
            error = "cannot decode image: " + problem;
            return false;
        }
    }
    if (f == Format::Bmp) {
        if (std::string problem = bmpProblem(data, size); !problem.empty()) {
            error = "cannot decode image: " + problem;
            return false;
        }
    }
    int w = 0, h = 0, comp = 0;
    forgetFailure();
    if (!stbi_info_from_memory(data, int(size), &w, &h, &comp)) {
        error = "cannot decode image: " + failureReason();
        return false;
    }
    if (w <= 0 || h <= 0 || w > kMaxDimension || h > kMaxDimension) {
        error = "image size " + std::to_string(w) + " x " + std::to_string(h) + " is out of range";
        return false;
    }
    if (uint64_t(w) * uint64_t(h) > kMaxPixels) {
        error = "image size " + std::to_string(w) + " x " + std::to_string(h) + " is larger than " +
                std::to_string(kMaxPixels) + " pixels";
        return false;
    }
    forgetFailure();
    stbi_uc* pixels = stbi_load_from_memory(data, int(size), &w, &h, &comp, 4);
    if (!pixels) {
        error = "cannot decode image: " + failureReason();
        return false;
    }
    try {
        out.width = w;
        out.height = h;
        out.rgba.assign(pixels, pixels + size_t(w) * size_t(h) * 4);
        stbi_image_free(pixels);
        pixels = nullptr;
        for (size_t i = 3; i < out.rgba.size(); i += 4)
            out.rgba[i] = 255;
        if (f == Format::Bmp) {
            out.palette = bmpPalette(data, size);
            if (!out.palette.empty() && !indexPixels(out)) {
                out.palette.clear();
                out.indices.clear();
            }
        }
    } catch (const std::bad_alloc&) {
        stbi_image_free(pixels);
        out = Image{};
        error = "not enough memory for an image of " + std::to_string(w) + " x " + std::to_string(h);
        return false;
    }
    return true;
}

bool readFile(const std::string& path, std::vector<uint8_t>& out, std::string& error) {
    if (path.empty()) {
        error = "no file name given";
        return false;
    }
    return io::readWholeFile(path, out, error, kMaxFileBytes);
}

bool decodeFile(const std::string& path, Image& out, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!readFile(path, bytes, error)) return false;
    if (!decodeMemory(bytes.data(), bytes.size(), out, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

bool encodeBmp(const Image& img, std::vector<uint8_t>& out, std::string& error) {
    if (!checkImage(img, error)) return false;
    out.clear();
    const bool paletted = img.paletted() && img.indices.size() == img.rgba.size() / 4 &&
                          img.paletteSize() > 0 && img.paletteSize() <= 256;
    if (paletted) {
        writeBmp8(img, out);
        return true;
    }
    const std::vector<uint8_t> rgb = toRgb(img);
    if (!stbi_write_bmp_to_func(appendBytes, &out, img.width, img.height, 3, rgb.data())) {
        error = "cannot encode .bmp";
        return false;
    }
    return true;
}

bool encodeJpeg(const Image& img, int quality, std::vector<uint8_t>& out, std::string& error) {
    if (!checkImage(img, error)) return false;
    out.clear();
    const std::vector<uint8_t> rgb = toRgb(img);
    if (!stbi_write_jpg_to_func(appendBytes, &out, img.width, img.height, 3, rgb.data(),
                                std::clamp(quality, 1, 100))) {
        error = "cannot encode .jpg";
        return false;
    }
    return true;
}

bool encodePng(const Image& img, std::vector<uint8_t>& out, std::string& error) {
    if (!checkImage(img, error)) return false;
    out.clear();
    const std::vector<uint8_t> rgb = toRgb(img);
    if (!stbi_write_png_to_func(appendBytes, &out, img.width, img.height, 3, rgb.data(), img.width * 3)) {
        error = "cannot encode .png";
        return false;
    }
    return true;
}

bool encodeTga(const Image& img, std::vector<uint8_t>& out, std::string& error) {
    if (!checkImage(img, error)) return false;
    out.clear();
    const std::vector<uint8_t> rgb = toRgb(img);
    stbi_write_tga_with_rle = 0;
    if (!stbi_write_tga_to_func(appendBytes, &out, img.width, img.height, 3, rgb.data())) {
        error = "cannot encode .tga";
        return false;
    }
    return true;
}

bool encodeFile(const Image& img, const std::string& path, std::string& error, int jpegQuality) {
    std::vector<uint8_t> bytes;
    switch (formatForPath(path)) {
    case Format::Bmp:
        if (!encodeBmp(img, bytes, error)) return false;
        break;
    case Format::Jpeg:
        if (!encodeJpeg(img, jpegQuality, bytes, error)) return false;
        break;
    case Format::Png:
        if (!encodePng(img, bytes, error)) return false;
        break;
    case Format::Tga:
        if (!encodeTga(img, bytes, error)) return false;
        break;
    default:
        error = "unsupported image file type (only .bmp, .jpg, .png and .tga): " + path;
        return false;
    }
    return io::writeFileAtomically(
        path,
        [&](io::Sink& out, std::string& e) {
            if (out.write(bytes.data(), bytes.size())) return true;
            e = "cannot write " + path;
            return false;
        },
        error);
}

Image resample(const Image& img, int width, int height) {
    Image r;
    if (width <= 0 || height <= 0 || img.width <= 0 || img.height <= 0) return r;
    r.width = width;
    r.height = height;
    r.rgba.resize(size_t(width) * size_t(height) * 4);
    const bool paletted = img.paletted();
    if (paletted) {
        r.palette = img.palette;
        r.indices.resize(size_t(width) * size_t(height));
    }
    const double kx = double(img.width) / width, ky = double(img.height) / height;
    for (int y = 0; y < height; ++y) {
        const double fy = std::clamp((y + 0.5) * ky - 0.5, 0.0, double(img.height - 1));
        const int y0 = int(fy), y1 = std::min(y0 + 1, img.height - 1);
        const double ty = fy - y0;
        for (int x = 0; x < width; ++x) {
            const double fx = std::clamp((x + 0.5) * kx - 0.5, 0.0, double(img.width - 1));
            const int x0 = int(fx), x1 = std::min(x0 + 1, img.width - 1);
            const double tx = fx - x0;
            const size_t o = (size_t(y) * size_t(width) + size_t(x));
            if (paletted) {
                // Indices cannot be blended: nearest source pixel, and its colour with it.
                const int sx = std::min(int((x + 0.5) * kx), img.width - 1);
                const int sy = std::min(int((y + 0.5) * ky), img.height - 1);
                const size_t s = size_t(sy) * size_t(img.width) + size_t(sx);
                r.indices[o] = img.indices[s];
                std::memcpy(&r.rgba[o * 4], &img.rgba[s * 4], 4);
                continue;
            }
            auto at = [&](int xx, int yy, int c) {
                return double(img.rgba[(size_t(yy) * size_t(img.width) + size_t(xx)) * 4 + size_t(c)]);
            };
            for (int c = 0; c < 4; ++c) {
                const double top = at(x0, y0, c) * (1 - tx) + at(x1, y0, c) * tx;
                const double bottom = at(x0, y1, c) * (1 - tx) + at(x1, y1, c) * tx;
                r.rgba[o * 4 + size_t(c)] =
                    uint8_t(std::lround(std::clamp(top * (1 - ty) + bottom * ty, 0.0, 255.0)));
            }
        }
    }
    return r;
}

} // namespace zelmar::image
