// Camera operations that go through a pixel of the current render target.
#include "api/EntityArgs.h"
#include "scene/CameraModel.h"
#include "scene/Current.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

// The current target's size, or false (with an error) when there is none.
bool targetSize(int& width, int& height, const char* op) {
    const int target = ZELMAR_engine_get_current_target();
    width = target ? ZELMAR_target_get_width(target) : 0;
    height = target ? ZELMAR_target_get_height(target) : 0;
    if (width > 0 && height > 0) return true;
    setLastError(std::string(op) + ": no current render target (camera_set_current)");
    return false;
}

// The unit direction from the camera through the centre of pixel (x, y).
bool pixelRay(const Camera& c, int x, int y, double dir[3], const char* op) {
    int w = 0, h = 0;
    if (!targetSize(w, h, op)) return false;
    double origin[3];
    camera::rayThrough(c, w, h, x + 0.5, y + 0.5, origin, dir);
    return true;
}

int sizeOf(int camera, bool width, const char* op) {
    const Camera* c = cameraArg(camera, op);
    if (!c || currentCamera() != c) return 0;
    const int target = ZELMAR_engine_get_current_target();
    if (!target) return 0;
    return width ? ZELMAR_target_get_width(target) : ZELMAR_target_get_height(target);
}

} // namespace

extern "C" {

int ZELMAR_camera_get_width(int camera) {
    return sizeOf(camera, true, "camera_get_width");
}

int ZELMAR_camera_get_height(int camera) {
    return sizeOf(camera, false, "camera_get_height");
}

int ZELMAR_camera_point_at_2D(int camera, int x, int y) {
    const char* op = "camera_point_at_2D";
    Camera* c = cameraArg(camera, op);
    double dir[3];
    if (!c || !pixelRay(*c, x, y, dir, op)) return 0;
    return camera::setDirection(*c, dir, true) ? 1 : 0;
}

int ZELMAR_camera_move_toward_point_2D(int camera, int x, int y, double distance) {
    const char* op = "camera_move_toward_point_2D";
    Camera* c = cameraArg(camera, op);
    double dir[3];
    if (!c || !finiteArg(distance, op) || !pixelRay(*c, x, y, dir, op)) return 0;
    for (int i = 0; i < 3; ++i)
        c->location[i] += dir[i] * distance;
    return 1;
}

} // extern "C"
