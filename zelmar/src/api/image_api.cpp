// Saving a rendered picture: 24-bit .bmp or .jpg through the image codec, or .png.
#include "api/LastError.h"
#include "io/ImageCodec.h"
#include "render/PngWriter.h"
#include "render/Settings.h"
#include "render/Target.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

using namespace zelmar;

namespace {

int saveTarget(int handle, const char* file) {
    const render::Target* t = render::target(handle);
    if (!t) {
        setLastError(std::to_string(handle) + " is not a render target");
        return -1;
    }
    if (!file || !*file) {
        setLastError("save: no file name");
        return -1;
    }
    std::string path = file, ext;
    const size_t dot = path.find_last_of('.');
    if (dot != std::string::npos && path.find('/', dot) == std::string::npos) ext = path.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    std::string error;
    const auto* rgba = reinterpret_cast<const uint8_t*>(t->color.data());
    bool ok;
    if (ext == "png") {
        ok = render::writePng(path, rgba, t->width, t->height, false, error);
    } else {
        image::Image img;
        img.width = t->width;
        img.height = t->height;
        img.rgba.assign(rgba, rgba + t->color.size() * 4);
        if (ext == "jpg" || ext == "jpeg") {
            ok = image::encodeFile(img, path, error, 90);
        } else {
            std::vector<uint8_t> bytes;
            ok = image::encodeBmp(img, bytes, error);
            if (ok) {
                FILE* f = std::fopen(path.c_str(), "wb");
                ok = f && std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
                if (f && std::fclose(f) != 0) ok = false;
                if (!ok) error = "cannot write " + path;
            }
        }
    }
    if (!ok) {
        setLastError("save: " + error);
        return -1;
    }
    return 1;
}

} // namespace

extern "C" {

int ZELMAR_utilities_save_bitmap24(int target, const char* file) {
    return saveTarget(target, file);
}

int ZELMAR_utilities_save_screenshot(const char* file) {
    return saveTarget(render::settings().lastRenderedTarget, file);
}

} // extern "C"
