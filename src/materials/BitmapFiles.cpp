#include "BitmapFiles.h"

#include "MaterialsHost.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"

#include <QDir>
#include <QFileInfo>
#include <zelmar/zelmar.h>

namespace vexil {

bool IsListedBitmapName(const std::string& name) {
    const std::size_t at = name.find("LIGHTMAP_");
    return at == 0 || at == std::string::npos;
}

QString BitmapName(int bitmap) {
    return QString::fromLocal8Bit(EntityName(bitmap).c_str());
}

QString FileBehindName(const QString& name, const QString& loadedFrom) {
    if (!loadedFrom.isEmpty() && QFileInfo(loadedFrom).isFile()) return loadedFrom;
    const QString folder = materialsHost().BitmapFolder();
    if (!folder.isEmpty() && !name.isEmpty())
        for (const char* ext : {".bmp", ".jpg", ".png", ".tga"}) {
            const QString path = QDir(folder).filePath(name + QLatin1String(ext));
            if (QFileInfo(path).isFile()) return path;
        }
    return {};
}

QString FileBehindBitmap(int bitmap) {
    if (!ZELMAR_bitmap_is_bitmap(bitmap)) return {};
    return FileBehindName(BitmapName(bitmap), QString::fromLocal8Bit(ZELMAR_bitmap_get_file(bitmap)));
}

bool IsSupportedImageFile(const QString& path) {
    const QString ext = QFileInfo(path).suffix().toLower();
    return ext == QLatin1String("bmp") || ext == QLatin1String("jpg") || ext == QLatin1String("jpeg") ||
           ext == QLatin1String("png") || ext == QLatin1String("tga");
}

QString GetOpenedBitmapFile(bool /*allowMany*/) {
    // The design's filter, with the two kinds this editor reads beside .bmp and .jpg.
    const QString filter = GetLocaleString(320) + QStringLiteral(" (*.bmp *.jpg *.png *.tga);;Bitmaps *.bmp (*.bmp);;"
                                                                 "JPEG Images *.jpg (*.jpg);;PNG Images *.png "
                                                                 "(*.png);;TGA Images *.tga (*.tga)");
    return dialogs().getOpenFileName(QString(), materialsHost().BitmapFolder(), filter);
}

void SplitColour(long colour, int& r, int& g, int& b) {
    b = int(colour / 65536L);
    g = int((colour - 65536L * b) / 256L);
    r = int(colour - 65536L * b - 256L * g);
}

int TransparentIndexForColour(int bitmap, long colour) {
    if (colour == kButtonFace || colour < 0) return -1;
    int r = 0, g = 0, b = 0;
    SplitColour(colour, r, g, b);
    return ZELMAR_bitmap_rgb_color_to_index(bitmap, r, g, b);
}

long ColourForTransparentIndex(int bitmap, int index) {
    int rgb[3] = {0, 0, 0};
    if (index < 0 || ZELMAR_bitmap_index_to_rgb(bitmap, index, rgb) != 1) return kButtonFace;
    return ColourValue(rgb[0], rgb[1], rgb[2]);
}

} // namespace vexil
