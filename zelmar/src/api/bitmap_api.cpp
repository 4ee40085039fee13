// Bitmaps: loading .bmp, .jpg, .png and .tga files, palette and transparent colour queries.
#include "api/EntityArgs.h"
#include "scene/BitmapStore.h"

#include <zelmar/zelmar.h>

#include <new>

using namespace zelmar;
using namespace zelmar::api;

extern "C" {

int ZELMAR_bitmap_load(const char* file, int transparent_index) {
    if (!nameArg(file, "bitmap_load")) return 0;
    std::string error;
    Bitmap* b = nullptr;
    try {
        b = bitmaps::load(file, transparent_index, error);
    } catch (const std::bad_alloc&) {
        error = std::string(file) + ": not enough memory for its pixels";
    }
    if (!b) {
        setLastError("bitmap_load: " + error);
        return 0;
    }
    return b->handle;
}

void ZELMAR_bitmap_unload(int bitmap) {
    if (Bitmap* b = bitmapArg(bitmap, "bitmap_unload")) bitmaps::unload(*b);
}

int ZELMAR_bitmap_is_bitmap(int handle) {
    return world().bitmap(handle) ? 1 : 0;
}

int ZELMAR_bitmap_get_first_bitmap(void) {
    return firstOf<Bitmap>();
}

int ZELMAR_bitmap_get_next(int bitmap) {
    return nextAfter(bitmapArg(bitmap, "bitmap_get_next"));
}

int ZELMAR_bitmap_get_handle(const char* name_or_path) {
    if (!name_or_path) return 0;
    const Bitmap* b = bitmaps::find(name_or_path);
    return b ? b->handle : 0;
}

const char* ZELMAR_bitmap_get_name(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_name");
    return b ? b->name.c_str() : "";
}

int ZELMAR_bitmap_get_width(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_width");
    return b ? b->width : 0;
}

int ZELMAR_bitmap_get_height(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_height");
    return b ? b->height : 0;
}

const unsigned char* ZELMAR_bitmap_get_memory(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_memory");
    return b && !b->rgba.empty() ? b->rgba.data() : nullptr;
}

int ZELMAR_bitmap_get_palette_size(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_palette_size");
    return b && !b->indices.empty() ? static_cast<int>(b->palette.size() / 3) : 0;
}

int ZELMAR_bitmap_get_palette(int bitmap, unsigned char rgb[768]) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_palette");
    if (!b || !outArg(rgb, "bitmap_get_palette") || b->indices.empty()) return 0;
    const size_t bytes = std::min<size_t>(b->palette.size(), 768);
    std::copy(b->palette.begin(), b->palette.begin() + std::ptrdiff_t(bytes), rgb);
    return static_cast<int>(bytes / 3);
}

void ZELMAR_bitmap_set_palette_color(int bitmap, int index, int red, int green, int blue) {
    Bitmap* b = bitmapArg(bitmap, "bitmap_set_palette_color");
    std::string error;
    if (b && !bitmaps::setPaletteColour(*b, index, red, green, blue, error))
        setLastError("bitmap_set_palette_color: " + error);
}

int ZELMAR_bitmap_get_transparent_index(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_transparent_index");
    return b ? b->transparentIndex : bitmaps::kNoTransparency;
}

int ZELMAR_bitmap_get_transparent_rgb(int bitmap, int rgb[3]) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_transparent_rgb");
    if (!b || !outArg(rgb, "bitmap_get_transparent_rgb")) return 0;
    std::copy(b->transparentRgb, b->transparentRgb + 3, rgb);
    return b->transparentIndex == bitmaps::kNoTransparency ? 0 : 1;
}

int ZELMAR_bitmap_rgb_color_to_index(int bitmap, int red, int green, int blue) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_rgb_color_to_index");
    return b ? bitmaps::colourToIndex(*b, red, green, blue) : bitmaps::kNoTransparency;
}

int ZELMAR_bitmap_index_to_rgb(int bitmap, int index, int rgb[3]) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_index_to_rgb");
    if (!b || !outArg(rgb, "bitmap_index_to_rgb")) return 0;
    if (bitmaps::indexToRgb(*b, index, rgb)) return 1;
    setLastError("bitmap_index_to_rgb: index " + std::to_string(index) + " has no colour in this bitmap");
    return 0;
}

int ZELMAR_bitmap_get_number_of_polygons_using_bitmap(int bitmap) {
    return bitmapArg(bitmap, "bitmap_get_number_of_polygons_using_bitmap") ? bitmaps::polygonsUsing(bitmap)
                                                                           : 0;
}

int ZELMAR_bitmap_save(int bitmap, const char* file) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_save");
    if (!b || !nameArg(file, "bitmap_save")) return 0;
    std::string error;
    if (bitmaps::save(*b, file, error)) return 1;
    setLastError("bitmap_save: " + error);
    return 0;
}

int ZELMAR_bitmap_resample(int bitmap, int width, int height) {
    Bitmap* b = bitmapArg(bitmap, "bitmap_resample");
    if (!b) return 0;
    std::string error;
    if (bitmaps::resample(*b, width, height, error)) return 1;
    setLastError("bitmap_resample: " + error);
    return 0;
}

const char* ZELMAR_bitmap_get_file(int bitmap) {
    const Bitmap* b = bitmapArg(bitmap, "bitmap_get_file");
    return b ? b->path.c_str() : "";
}

int ZELMAR_bitmap_get_number_of_missing(void) {
    return static_cast<int>(bitmaps::missing().size());
}

const char* ZELMAR_bitmap_get_missing_file(int index) {
    const auto& m = bitmaps::missing();
    return index >= 0 && size_t(index) < m.size() ? m[size_t(index)].file.c_str() : "";
}

const char* ZELMAR_bitmap_get_missing_reason(int index) {
    const auto& m = bitmaps::missing();
    return index >= 0 && size_t(index) < m.size() ? m[size_t(index)].reason.c_str() : "";
}

} // extern "C"
