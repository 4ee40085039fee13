// Bitmaps as files and names: which bitmaps the texture list shows, the file behind a bitmap, the open-file
// dialog for bitmaps, and the colour values of transparent colours.
#pragma once
#include <QString>
#include <string>

namespace vexil {

// The texture list leaves out a bitmap only when "LIGHTMAP_" stands in its name after some other text;
// at the very start, or nowhere, the bitmap is listed.
bool IsListedBitmapName(const std::string& name);

// The engine's name of a bitmap or animation, cut at its first NUL.
QString BitmapName(int bitmap);

// The file behind a bitmap: the file the engine loaded it from while it exists; else its name plus ".bmp",
// then ".jpg" (then ".png", ".tga") in the world's bitmap folder. Empty when no such file exists.
QString FileBehindBitmap(int bitmap);
QString FileBehindName(const QString& name, const QString& loadedFrom = QString());

// The kinds of image file the editor offers (extensions without the dot, lower case).
bool IsSupportedImageFile(const QString& path);

// GetOpenedBitmapFile: the open-file dialog for bitmaps; "" when cancelled.
QString GetOpenedBitmapFile(bool allowMany);

// A colour value as the colour dialogs give it: red + 256 * green + 65536 * blue, split by division by
// 2 to the 8th and 16th power.
constexpr long ColourValue(int r, int g, int b) { return long(r) + 256L * g + 65536L * b; }
void SplitColour(long colour, int& r, int& g, int& b);
// The button-face system colour that stands for "no transparent colour" (engine index -1).
constexpr long kButtonFace = 0x8000000FL;

// The transparent index that a colour gives on a bitmap: -1 for kButtonFace, else the engine's index of
// the nearest colour. And back: kButtonFace for -1 or an index without colour.
int TransparentIndexForColour(int bitmap, long colour);
long ColourForTransparentIndex(int bitmap, int index);

} // namespace vexil
