// The world's bitmaps: loading files through the image codec, transparent colours,
// palette lookups, and what happens to the users of a bitmap that goes away.
//
// A transparent index is -1 for none. For a paletted bitmap it is a palette entry; for a
// true-colour bitmap it is the colour red + 256 * green + 65536 * blue. Pixels of the
// transparent colour have alpha 0 in Bitmap::rgba; all others 255.
#pragma once
#include "io/ImageCodec.h"
#include "scene/Entities.h"

#include <string>
#include <vector>

namespace zelmar::bitmaps {

constexpr int kNoTransparency = -1;
constexpr int kMaxPackedColour = 0xFFFFFF;

// The bitmap of `file` with that transparent index: the one already loaded if any (same
// absolute path, same index), else a new one named after the file's stem. nullptr with
// a readable `error` for a missing or corrupt file or an index the bitmap cannot have.
Bitmap* load(const std::string& file, int transparentIndex, std::string& error);

// A bitmap made from pixels in memory (light maps, generated textures). Path stays empty.
Bitmap* create(const std::string& name, image::Image img, int transparentIndex, std::string& error);

// By name first, then by the absolute path of `nameOrPath`; nullptr when neither matches.
Bitmap* find(const std::string& nameOrPath);

// Whether `index` is a transparent index this bitmap can have.
bool validIndex(const Bitmap& b, int index);
// Sets the transparent index (already validated) and the alpha of every pixel.
void applyTransparency(Bitmap& b, int index);

int colourToIndex(const Bitmap& b, int r, int g, int blue);
bool indexToRgb(const Bitmap& b, int index, int rgb[3]);

image::Image toImage(const Bitmap& b); // alpha back to 255
bool save(const Bitmap& b, const std::string& file, std::string& error);
bool resample(Bitmap& b, int width, int height, std::string& error);
bool setPaletteColour(Bitmap& b, int index, int r, int g, int blue, std::string& error);

// Polygons that use the bitmap as bitmap or second bitmap.
int polygonsUsing(Handle bitmap);
// Polygons fall back to their colour fill, backgrounds lose it, animation frames showing it
// are removed; then the bitmap is destroyed.
void unload(Bitmap& b);

std::string absolutePath(const std::string& file);

// Bitmap files that a world being loaded or added named but that could not be read (missing or
// corrupt), so that the editor can list them rather than let them vanish. Emptied with the world.
struct MissingFile {
    std::string file;   // as the world file names it
    std::string reason; // why it could not be read
};
void noteMissing(const std::string& file, const std::string& reason);
void clearMissing();
const std::vector<MissingFile>& missing();

} // namespace zelmar::bitmaps
