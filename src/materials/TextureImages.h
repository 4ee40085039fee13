// The images of the texture list, drawn in code: "Folder", "FolderOpen", "Texture" and "Texture Missing"
// (a bitmap whose file could not be read, marked with a warning sign).
#pragma once
#include <QIcon>
#include <QString>

namespace vexil {

QIcon TextureImage(const QString& name);

// Where the preview picture goes inside a frame of frameW x frameH pixels: 90% of the frame, the bitmap's
// aspect kept, never enlarged beyond its own size, centred (the vertical centre `captionOffset` lower, for
// the frame's caption).
struct PreviewPlace {
    int x = 0, y = 0, width = 0, height = 0;
};
PreviewPlace PlacePreview(int frameW, int frameH, int bitmapW, int bitmapH, int captionOffset = 0);

} // namespace vexil

class QImage;
namespace vexil {
// The engine's pixels of a bitmap as an image that does not own them (valid until the bitmap changes or
// goes); a null image for a dead handle. Alpha is ignored: transparent pixels show their colour.
QImage BitmapView(int bitmap);
} // namespace vexil
