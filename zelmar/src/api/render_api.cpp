// The C operations of render targets, cameras made current, rendering and its switches.
#include "api/LastError.h"
#include "render/Renderer.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "render/Target.h"
#include "render/Texture.h"
#include "scene/Current.h"
#include "scene/World.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

using namespace zelmar;
using zelmar::render::settings;

namespace {

render::Target* targetOrError(int handle) {
    render::Target* t = render::target(handle);
    if (!t) setLastError(std::to_string(handle) + " is not a render target");
    return t;
}

// Every variant of a render: validates, makes the camera current on that target, draws.
int renderInto(int targetHandle, int cameraHandle, bool clear) {
    render::Target* t = targetOrError(targetHandle);
    if (!t) return 0;
    Camera* c = world().camera(cameraHandle);
    if (!c) {
        setLastError(std::to_string(cameraHandle) + " is not a camera");
        return 0;
    }
    setCurrentCamera(cameraHandle);
    settings().currentTarget = targetHandle;
    std::string error;
    if (!render::renderFrame(*t, *c, clear, error)) {
        setLastError("render: " + error);
        return 0;
    }
    settings().lastRenderedTarget = targetHandle;
    static uint64_t seenGeneration = ~0ull;
    if (world().generation != seenGeneration) { // forget what belongs to deleted entities
        seenGeneration = world().generation;
        render::sceneCache().prune();
        render::pruneTextures();
    }
    return 1;
}

uint8_t channel(int v) {
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

} // namespace

extern "C" {

int ZELMAR_target_create(int width, int height) {
    const int h = render::createTarget(width, height);
    if (!h) setLastError("target_create: size must be 1 to 16384 pixels each way");
    return h;
}

int ZELMAR_target_resize(int target, int width, int height) {
    if (!targetOrError(target)) return 0;
    if (!render::resizeTarget(target, width, height)) {
        setLastError("target_resize: size must be 1 to 16384 pixels each way");
        return 0;
    }
    return 1;
}

int ZELMAR_target_destroy(int target) {
    if (!render::destroyTarget(target)) {
        setLastError(std::to_string(target) + " is not a render target");
        return 0;
    }
    if (settings().currentTarget == target) settings().currentTarget = 0;
    if (settings().lastRenderedTarget == target) settings().lastRenderedTarget = 0;
    return 1;
}

int ZELMAR_target_is_target(int handle) {
    return render::target(handle) ? 1 : 0;
}

int ZELMAR_target_get_width(int target) {
    const render::Target* t = targetOrError(target);
    return t ? t->width : 0;
}

int ZELMAR_target_get_height(int target) {
    const render::Target* t = targetOrError(target);
    return t ? t->height : 0;
}

const unsigned char* ZELMAR_target_get_pixels(int target) {
    const render::Target* t = targetOrError(target);
    return t ? reinterpret_cast<const unsigned char*>(t->color.data()) : nullptr;
}

int ZELMAR_target_read_pixels(int target, unsigned char* rgba, int buffer_size) {
    const render::Target* t = targetOrError(target);
    if (!t) return 0;
    const size_t need = t->color.size() * 4;
    if (!rgba || buffer_size < 0 || static_cast<size_t>(buffer_size) < need) {
        setLastError("target_read_pixels: the buffer needs width * height * 4 bytes");
        return 0;
    }
    std::memcpy(rgba, t->color.data(), need);
    return 1;
}

int ZELMAR_engine_get_current_target(void) {
    return render::target(settings().currentTarget) ? settings().currentTarget : 0;
}

void ZELMAR_engine_set_render_threads(int count) {
    settings().threads = std::clamp(count, 0, 64);
}

int ZELMAR_engine_get_render_threads(void) {
    return settings().threads;
}

void ZELMAR_camera_set_current(int camera, int target) {
    if (!world().camera(camera)) {
        setLastError(std::to_string(camera) + " is not a camera");
        return;
    }
    setCurrentCamera(camera);
    if (target != 0) {
        if (render::target(target))
            settings().currentTarget = target;
        else
            setLastError(std::to_string(target) + " is not a render target");
    }
}

int ZELMAR_engine_render(int target, int camera) {
    return renderInto(target, camera, true);
}

int ZELMAR_engine_render_on_dc(int target, int camera) {
    return renderInto(target, camera, true);
}

int ZELMAR_engine_render_on_bitmap(int target, int camera) {
    return renderInto(target, camera, true);
}

int ZELMAR_engine_render_on_memCDC(int target, int camera) {
    return renderInto(target, camera, true);
}

int ZELMAR_engine_render_on_top_of_previous_rendering(int target, int camera) {
    return renderInto(target, camera, false);
}

int ZELMAR_engine_copy_image_from_dc_to_screen(void) {
    return render::target(settings().lastRenderedTarget) ? 1 : 0;
}

void ZELMAR_engine_set_group_to_render(int group) {
    settings().groupToRender = world().group(group) ? group : 0;
}

void ZELMAR_engine_set_wire_frame_rendering_mode(int value) {
    settings().wireframe = value != 0;
}

void ZELMAR_engine_set_color_fill_rendering_mode(int value) {
    settings().colorFill = value != 0;
}

void ZELMAR_engine_set_normal_rendering_mode(int value) {
    if (value) settings().wireframe = settings().colorFill = false;
}

int ZELMAR_engine_toggle_wire_frame_flag(void) {
    settings().wireframe = !settings().wireframe;
    return settings().wireframe ? 1 : 0;
}

int ZELMAR_engine_toggle_rendering_mode(void) {
    settings().colorFill = !settings().colorFill;
    return settings().colorFill ? 1 : 0;
}

void ZELMAR_engine_set_atmospheric_effect(int red, int green, int blue) {
    settings().fogColor[0] = channel(red);
    settings().fogColor[1] = channel(green);
    settings().fogColor[2] = channel(blue);
}

int ZELMAR_engine_get_atmospheric_effect(void) {
    const auto& c = settings().fogColor;
    return c[0] | (c[1] << 8) | (c[2] << 16);
}

void ZELMAR_engine_set_atmospheric_effect_intensity(double value) {
    settings().fogIntensity = (std::isfinite(value) && value > 0) ? value : 0.0;
}

double ZELMAR_engine_get_atmospheric_effect_intensity(void) {
    return settings().fogIntensity;
}

void ZELMAR_engine_set_default_atmospheric_effect_intensity(double value) {
    ZELMAR_engine_set_atmospheric_effect_intensity(value);
}

int ZELMAR_engine_increase_atmospheric_effect_intensity(void) {
    settings().fogIntensity += 0.0006;
    return 1;
}

int ZELMAR_engine_decrease_atmospheric_effect_intensity(void) {
    settings().fogIntensity = std::max(0.0, settings().fogIntensity - 0.0006);
    return 1;
}

int ZELMAR_engine_toggle_atmospheric_effect(void) {
    settings().fogEnabled = !settings().fogEnabled;
    return settings().fogEnabled ? 1 : 0;
}

void ZELMAR_engine_set_background_color(double value) {
    const int64_t v = std::isfinite(value) ? static_cast<int64_t>(value) : 0;
    settings().backgroundColor[0] = static_cast<uint8_t>(v & 0xFF);
    settings().backgroundColor[1] = static_cast<uint8_t>((v >> 8) & 0xFF);
    settings().backgroundColor[2] = static_cast<uint8_t>((v >> 16) & 0xFF);
}

double ZELMAR_engine_get_background_color(void) {
    const auto& c = settings().backgroundColor;
    return c[0] + c[1] * 256.0 + c[2] * 65536.0;
}

} // extern "C"
