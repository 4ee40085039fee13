#include "scene/BitmapStore.h"

#include "scene/World.h"

#include <algorithm>
#include <filesystem>
#include <limits>

namespace zelmar::bitmaps {
namespace {

void adopt(Bitmap& b, image::Image&& img) {
    b.width = img.width;
    b.height = img.height;
    b.rgba = std::move(img.rgba);
    b.indices = std::move(img.indices);
    b.palette = std::move(img.palette);
}

int paletteSize(const Bitmap& b) {
    return static_cast<int>(b.palette.size() / 3);
}

bool paletted(const Bitmap& b) {
    return !b.indices.empty() && !b.palette.empty();
}

void changed(Bitmap& b) {
    ++b.version;
    world().touch();
}

std::string indexError(const Bitmap& b, int index) {
    if (paletted(b))
        return "transparent index " + std::to_string(index) + " is outside the palette of " +
               std::to_string(paletteSize(b)) + " colours";
    return "transparent index " + std::to_string(index) + " is not a colour (0 to 16777215) or -1";
}

} // namespace

std::string absolutePath(const std::string& file) {
    std::error_code ec;
    std::filesystem::path p = std::filesystem::absolute(file, ec);
    if (ec) return file;
    return p.lexically_normal().string();
}

bool validIndex(const Bitmap& b, int index) {
    if (index == kNoTransparency) return true;
    if (index < 0) return false;
    return paletted(b) ? index < paletteSize(b) : index <= kMaxPackedColour;
}

void applyTransparency(Bitmap& b, int index) {
    b.transparentIndex = index;
    int rgb[3] = {-1, -1, -1};
    if (index != kNoTransparency) indexToRgb(b, index, rgb);
    std::copy(rgb, rgb + 3, b.transparentRgb);
    const size_t n = size_t(b.width) * size_t(b.height);
    for (size_t i = 0; i < n && i * 4 + 3 < b.rgba.size(); ++i) {
        bool clear = false;
        if (index != kNoTransparency) {
            if (paletted(b))
                clear = b.indices[i] == index;
            else
                clear = b.rgba[i * 4] == rgb[0] && b.rgba[i * 4 + 1] == rgb[1] && b.rgba[i * 4 + 2] == rgb[2];
        }
        b.rgba[i * 4 + 3] = clear ? 0 : 255;
    }
}

Bitmap* find(const std::string& nameOrPath) {
    const auto& all = world().list<Bitmap>();
    for (Bitmap* b : all)
        if (b->name == nameOrPath) return b;
    if (nameOrPath.empty()) return nullptr;
    const std::string path = absolutePath(nameOrPath);
    for (Bitmap* b : all)
        if (!b->path.empty() && b->path == path) return b;
    return nullptr;
}

Bitmap* create(const std::string& name, image::Image img, int transparentIndex, std::string& error) {
    if (img.width <= 0 || img.height <= 0 || img.rgba.size() != size_t(img.width) * size_t(img.height) * 4) {
        error = "the pixels do not match the bitmap's size";
        return nullptr;
    }
    Bitmap probe;
    adopt(probe, std::move(img));
    if (!validIndex(probe, transparentIndex)) {
        error = indexError(probe, transparentIndex);
        return nullptr;
    }
    Bitmap* b = world().createBitmap(name);
    if (!b) {
        error = "no more handles";
        return nullptr;
    }
    b->width = probe.width;
    b->height = probe.height;
    b->rgba = std::move(probe.rgba);
    b->indices = std::move(probe.indices);
    b->palette = std::move(probe.palette);
    applyTransparency(*b, transparentIndex);
    changed(*b);
    return b;
}

Bitmap* load(const std::string& file, int transparentIndex, std::string& error) {
    if (file.empty()) {
        error = "no file name given";
        return nullptr;
    }
    const std::string path = absolutePath(file);
    for (Bitmap* b : world().list<Bitmap>())
        if (b->path == path && b->transparentIndex == transparentIndex) return b;
    image::Image img;
    if (!image::decodeFile(path, img, error)) return nullptr;
    Bitmap* b = create(std::filesystem::path(path).stem().string(), std::move(img), transparentIndex, error);
    if (!b) {
        error = path + ": " + error;
        return nullptr;
    }
    b->path = path;
    return b;
}

int colourToIndex(const Bitmap& b, int r, int g, int blue) {
    r = std::clamp(r, 0, 255), g = std::clamp(g, 0, 255), blue = std::clamp(blue, 0, 255);
    if (!paletted(b)) return r + 256 * g + 65536 * blue;
    int best = 0;
    long bestDistance = std::numeric_limits<long>::max();
    for (int i = 0; i < paletteSize(b); ++i) {
        const uint8_t* p = &b.palette[size_t(i) * 3];
        const long dr = p[0] - r, dg = p[1] - g, db = p[2] - blue;
        const long d = dr * dr + dg * dg + db * db;
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
            if (d == 0) break;
        }
    }
    return best;
}

bool indexToRgb(const Bitmap& b, int index, int rgb[3]) {
    if (index < 0) return false;
    if (paletted(b)) {
        if (index >= paletteSize(b)) return false;
        for (int i = 0; i < 3; ++i)
            rgb[i] = b.palette[size_t(index) * 3 + size_t(i)];
        return true;
    }
    if (index > kMaxPackedColour) return false;
    rgb[0] = index & 0xFF;
    rgb[1] = (index >> 8) & 0xFF;
    rgb[2] = (index >> 16) & 0xFF;
    return true;
}

image::Image toImage(const Bitmap& b) {
    image::Image img;
    img.width = b.width;
    img.height = b.height;
    img.rgba = b.rgba;
    for (size_t i = 3; i < img.rgba.size(); i += 4)
        img.rgba[i] = 255;
    if (paletted(b)) {
        img.indices = b.indices;
        img.palette = b.palette;
    }
    return img;
}

bool save(const Bitmap& b, const std::string& file, std::string& error) {
    return image::encodeFile(toImage(b), file, error);
}

bool resample(Bitmap& b, int width, int height, std::string& error) {
    if (width <= 0 || height <= 0 || width > image::kMaxDimension || height > image::kMaxDimension) {
        error = "a bitmap cannot be " + std::to_string(width) + " x " + std::to_string(height) + " pixels";
        return false;
    }
    adopt(b, image::resample(toImage(b), width, height));
    applyTransparency(b, b.transparentIndex);
    changed(b);
    return true;
}

bool setPaletteColour(Bitmap& b, int index, int r, int g, int blue, std::string& error) {
    if (!paletted(b)) {
        error = "the bitmap has no palette";
        return false;
    }
    if (index < 0 || index >= paletteSize(b)) {
        error = "index " + std::to_string(index) + " is outside the palette";
        return false;
    }
    const uint8_t c[3] = {uint8_t(std::clamp(r, 0, 255)), uint8_t(std::clamp(g, 0, 255)),
                          uint8_t(std::clamp(blue, 0, 255))};
    std::copy(c, c + 3, &b.palette[size_t(index) * 3]);
    for (size_t i = 0; i < b.indices.size(); ++i)
        if (b.indices[i] == index) std::copy(c, c + 3, &b.rgba[i * 4]);
    applyTransparency(b, b.transparentIndex);
    changed(b);
    return true;
}

int polygonsUsing(Handle bitmap) {
    int n = 0;
    for (const Polygon* p = world().firstPolygon(); p; p = p->nextInWorld)
        if (p->fill.bitmap == bitmap || p->fill.secondBitmap == bitmap) ++n;
    return n;
}

void unload(Bitmap& b) {
    World& w = world();
    const Handle h = b.handle;
    for (Polygon* p = w.firstPolygon(); p; p = p->nextInWorld) {
        if (p->fill.bitmap != h && p->fill.secondBitmap != h) continue;
        if (p->fill.bitmap == h) p->fill.bitmap = 0;
        if (p->fill.secondBitmap == h) p->fill.secondBitmap = 0;
        ++p->version;
    }
    for (Background* bg : w.list<Background>())
        if (bg->bitmap == h) bg->bitmap = 0;
    for (Animation* a : w.list<Animation>())
        for (auto& frames : a->frames)
            std::erase_if(frames, [h](const Animation::Frame& f) { return f.bitmap == h; });
    w.destroyBitmap(b);
}

namespace {
// Never destroyed: the world (a static too) empties it while the program ends.
std::vector<MissingFile>& missingList() {
    static auto* list = new std::vector<MissingFile>;
    return *list;
}
} // namespace

void noteMissing(const std::string& file, const std::string& reason) {
    for (const MissingFile& m : missingList())
        if (m.file == file) return;
    missingList().push_back({file, reason});
}

void clearMissing() {
    missingList().clear();
}

const std::vector<MissingFile>& missing() {
    return missingList();
}

} // namespace zelmar::bitmaps
