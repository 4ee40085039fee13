// Polygons: fill, lighting values, flags, names and texture coordinates.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

using namespace zelmar;
using namespace zelmar::api;

namespace {
int clampByte(int v) {
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}

// Runs f on a live polygon and records the change.
template <class F> void change(int polygon, const char* op, F f) {
    if (Polygon* p = polygonArg(polygon, op)) {
        f(*p);
        world().changed(*p);
    }
}

template <class T, class F> T read(int polygon, const char* op, F f) {
    const Polygon* p = polygonArg(polygon, op);
    return p ? f(*p) : T{};
}

// A handle argument that must be 0 or a live entity of a kind.
bool optionalHandle(int h, bool live, const char* op, const char* kind) {
    if (h == 0 || live) return true;
    setLastError(std::string(op) + ": " + std::to_string(h) + " is not a " + kind);
    return false;
}

void setTriple(int polygon, const double v[3], const char* op, double (Fill::*member)[3]) {
    Polygon* p = polygonArg(polygon, op);
    if (!p || !inArray(v, 3, op)) return;
    for (int i = 0; i < 3; ++i)
        (p->fill.*member)[i] = v[i];
    world().changed(*p);
}

void getTriple(int polygon, double out[3], const char* op, double (Fill::*member)[3]) {
    const Polygon* p = polygonArg(polygon, op);
    if (!p || !outArray(out, op)) return;
    for (int i = 0; i < 3; ++i)
        out[i] = (p->fill.*member)[i];
}

// The uv of every point through f(u, v).
template <class F> void mapUv(int polygon, const char* op, F f) {
    change(polygon, op, [&](Polygon& p) {
        for (PointData& d : p.points)
            f(d.uv[0], d.uv[1]);
    });
}

void uvCentre(const Polygon& p, double& cu, double& cv) {
    double lu = 0, hu = 0, lv = 0, hv = 0;
    for (size_t i = 0; i < p.points.size(); ++i) {
        const double u = p.points[i].uv[0], v = p.points[i].uv[1];
        if (i == 0) {
            lu = hu = u;
            lv = hv = v;
        }
        lu = std::min(lu, u);
        hu = std::max(hu, u);
        lv = std::min(lv, v);
        hv = std::max(hv, v);
    }
    cu = (lu + hu) / 2;
    cv = (lv + hv) / 2;
}
} // namespace

extern "C" {

void ZELMAR_polygon_set_color_fill(int polygon, int red, int green, int blue) {
    change(polygon, "polygon_set_color_fill", [&](Polygon& p) {
        p.fill.color[0] = clampByte(red);
        p.fill.color[1] = clampByte(green);
        p.fill.color[2] = clampByte(blue);
        p.fill.bitmap = 0;
        p.fill.animation = 0;
    });
}

void ZELMAR_polygon_get_color(int polygon, int rgb[3]) {
    const Polygon* p = polygonArg(polygon, "polygon_get_color");
    if (p && outArray(rgb, "polygon_get_color"))
        for (int i = 0; i < 3; ++i)
            rgb[i] = p->fill.color[i];
}

void ZELMAR_polygon_set_bitmap_fill(int polygon, int bitmap) {
    if (!optionalHandle(bitmap, world().bitmap(bitmap) != nullptr, "polygon_set_bitmap_fill", "bitmap"))
        return;
    change(polygon, "polygon_set_bitmap_fill", [&](Polygon& p) {
        p.fill.bitmap = bitmap;
        p.fill.animation = 0;
    });
}

int ZELMAR_polygon_get_bitmap_handle(int polygon) {
    return read<int>(polygon, "polygon_get_bitmap_handle", [](const Polygon& p) { return p.fill.bitmap; });
}

const char* ZELMAR_polygon_get_bitmap_name(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_bitmap_name");
    const Bitmap* b = p ? world().bitmap(p->fill.bitmap) : nullptr;
    return keepText(b ? b->name : std::string());
}

void ZELMAR_polygon_set_second_bitmap(int polygon, int bitmap) {
    if (!optionalHandle(bitmap, world().bitmap(bitmap) != nullptr, "polygon_set_second_bitmap", "bitmap"))
        return;
    change(polygon, "polygon_set_second_bitmap", [&](Polygon& p) { p.fill.secondBitmap = bitmap; });
}

int ZELMAR_polygon_get_second_bitmap(int polygon) {
    return read<int>(polygon, "polygon_get_second_bitmap",
                     [](const Polygon& p) { return p.fill.secondBitmap; });
}

void ZELMAR_polygon_switch_between_primary_and_secondary_bitmaps(int polygon) {
    change(polygon, "polygon_switch_between_primary_and_secondary_bitmaps", [](Polygon& p) {
        std::swap(p.fill.bitmap, p.fill.secondBitmap);
        for (PointData& d : p.points)
            for (int i = 0; i < 2; ++i)
                std::swap(d.uv[i], d.uv2[i]);
    });
}

void ZELMAR_polygon_set_animation(int polygon, int animation) {
    if (!optionalHandle(animation, world().animation(animation) != nullptr, "polygon_set_animation",
                        "animation"))
        return;
    change(polygon, "polygon_set_animation", [&](Polygon& p) {
        p.fill.animation = animation;
        p.fill.animationFrame = 0;
    });
}

int ZELMAR_polygon_get_animation(int polygon) {
    return read<int>(polygon, "polygon_get_animation", [](const Polygon& p) { return p.fill.animation; });
}

void ZELMAR_polygon_set_animation_frame(int polygon, int frame) {
    change(polygon, "polygon_set_animation_frame",
           [&](Polygon& p) { p.fill.animationFrame = std::max(frame, 0); });
}

int ZELMAR_polygon_get_animation_frame(int polygon) {
    return read<int>(polygon, "polygon_get_animation_frame",
                     [](const Polygon& p) { return p.fill.animationFrame; });
}

void ZELMAR_polygon_set_translucent(int polygon, int filter) {
    change(polygon, "polygon_set_translucent", [&](Polygon& p) { p.fill.translucent = filter & 0xFF; });
}

int ZELMAR_polygon_get_translucent(int polygon) {
    return read<int>(polygon, "polygon_get_translucent", [](const Polygon& p) { return p.fill.translucent; });
}

void ZELMAR_polygon_set_rotated(int polygon, int rotated) {
    change(polygon, "polygon_set_rotated", [&](Polygon& p) { p.fill.rotated = rotated != 0 ? 1 : 0; });
}

int ZELMAR_polygon_is_rotated(int polygon) {
    return read<int>(polygon, "polygon_is_rotated", [](const Polygon& p) { return p.fill.rotated; });
}

void ZELMAR_polygon_set_bitmap_rotation(int polygon, double degrees) {
    if (!finite(degrees, "polygon_set_bitmap_rotation")) return;
    change(polygon, "polygon_set_bitmap_rotation", [&](Polygon& p) { p.fill.bitmapRotation = degrees; });
}

void ZELMAR_polygon_set_bilinear_filtering(int polygon, int yes) {
    change(polygon, "polygon_set_bilinear_filtering",
           [&](Polygon& p) { p.fill.bilinear = yes != 0 ? 1 : 0; });
}

void ZELMAR_polygon_set_light_diminution(int polygon, double diminution) {
    if (!finite(diminution, "polygon_set_light_diminution")) return;
    change(polygon, "polygon_set_light_diminution", [&](Polygon& p) { p.fill.lightDiminution = diminution; });
}

double ZELMAR_polygon_get_light_diminution(int polygon) {
    return read<double>(polygon, "polygon_get_light_diminution",
                        [](const Polygon& p) { return p.fill.lightDiminution; });
}

void ZELMAR_polygon_set_brightness(int polygon, double brightness) {
    if (!finite(brightness, "polygon_set_brightness")) return;
    change(polygon, "polygon_set_brightness", [&](Polygon& p) { p.fill.brightness = brightness; });
}

double ZELMAR_polygon_get_brightness(int polygon) {
    return read<double>(polygon, "polygon_get_brightness",
                        [](const Polygon& p) { return p.fill.brightness; });
}

int ZELMAR_polygon_is_uniform_brightness(int polygon) {
    return read<int>(polygon, "polygon_is_uniform_brightness", [](const Polygon& p) {
        for (const PointData& d : p.points)
            if (d.brightness != p.points[0].brightness) return 0;
        return 1;
    });
}

void ZELMAR_polygon_set_ambient(int polygon, const double ambient[3]) {
    setTriple(polygon, ambient, "polygon_set_ambient", &Fill::ambient);
}
void ZELMAR_polygon_get_ambient(int polygon, double ambient[3]) {
    getTriple(polygon, ambient, "polygon_get_ambient", &Fill::ambient);
}
void ZELMAR_polygon_set_diffuse(int polygon, const double diffuse[3]) {
    setTriple(polygon, diffuse, "polygon_set_diffuse", &Fill::diffuse);
}
void ZELMAR_polygon_get_diffuse(int polygon, double diffuse[3]) {
    getTriple(polygon, diffuse, "polygon_get_diffuse", &Fill::diffuse);
}
void ZELMAR_polygon_set_specular(int polygon, const double specular[3]) {
    setTriple(polygon, specular, "polygon_set_specular", &Fill::specular);
}
void ZELMAR_polygon_get_specular(int polygon, double specular[3]) {
    getTriple(polygon, specular, "polygon_get_specular", &Fill::specular);
}

void ZELMAR_polygon_set_specular_shining(int polygon, double shining) {
    if (!finite(shining, "polygon_set_specular_shining")) return;
    change(polygon, "polygon_set_specular_shining", [&](Polygon& p) { p.fill.specularShining = shining; });
}

double ZELMAR_polygon_get_specular_shining(int polygon) {
    return read<double>(polygon, "polygon_get_specular_shining",
                        [](const Polygon& p) { return p.fill.specularShining; });
}

int ZELMAR_polygon_get_transparent_index(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_transparent_index");
    if (!p) return 0;
    const Bitmap* b = world().bitmap(p->fill.bitmap);
    return b ? b->transparentIndex : -1;
}

void ZELMAR_polygon_get_transparent_rgb(int polygon, int rgb[3]) {
    const Polygon* p = polygonArg(polygon, "polygon_get_transparent_rgb");
    if (!p || !outArray(rgb, "polygon_get_transparent_rgb")) return;
    const Bitmap* b = world().bitmap(p->fill.bitmap);
    for (int i = 0; i < 3; ++i)
        rgb[i] = b ? b->transparentRgb[i] : -1;
}

void ZELMAR_polygon_set_orientation(int polygon, int orientation) {
    change(polygon, "polygon_set_orientation", [&](Polygon& p) { p.orientation = orientation; });
}

int ZELMAR_polygon_get_orientation(int polygon) {
    return read<int>(polygon, "polygon_get_orientation", [](const Polygon& p) { return p.orientation; });
}

void ZELMAR_polygon_disable(int polygon) {
    change(polygon, "polygon_disable", [](Polygon& p) { p.disabled = true; });
}

void ZELMAR_polygon_enable(int polygon) {
    change(polygon, "polygon_enable", [](Polygon& p) { p.disabled = false; });
}

int ZELMAR_polygon_is_disabled(int polygon) {
    return read<int>(polygon, "polygon_is_disabled", [](const Polygon& p) { return p.disabled ? 1 : 0; });
}

void ZELMAR_polygon_make_collisional(int polygon) {
    change(polygon, "polygon_make_collisional", [](Polygon& p) { p.collisional = true; });
}

void ZELMAR_polygon_make_non_collisional(int polygon) {
    change(polygon, "polygon_make_non_collisional", [](Polygon& p) { p.collisional = false; });
}

int ZELMAR_polygon_is_collisional(int polygon) {
    return read<int>(polygon, "polygon_is_collisional",
                     [](const Polygon& p) { return p.collisional ? 1 : 0; });
}

void ZELMAR_polygon_set_release_save_flag(int polygon, int flag) {
    change(polygon, "polygon_set_release_save_flag", [&](Polygon& p) { p.releaseSaveFlag = flag; });
}

int ZELMAR_polygon_get_release_save_flag(int polygon) {
    return read<int>(polygon, "polygon_get_release_save_flag",
                     [](const Polygon& p) { return p.releaseSaveFlag; });
}

void ZELMAR_polygon_set_name(int polygon, const char* name) {
    if (!textArg(name, "polygon_set_name")) return;
    change(polygon, "polygon_set_name", [&](Polygon& p) { p.name = name; });
}

const char* ZELMAR_polygon_get_name(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_name");
    return keepText(p ? p->name : std::string());
}

void ZELMAR_polygon_attach_my_own_data(int polygon, int data) {
    if (Polygon* p = polygonArg(polygon, "polygon_attach_my_own_data")) p->ownData = data;
}

int ZELMAR_polygon_get_my_own_data(int polygon) {
    return read<int>(polygon, "polygon_get_my_own_data",
                     [](const Polygon& p) { return static_cast<int>(p.ownData); });
}

// Texture coordinates.
int ZELMAR_polygon_are_bitmap_x_cords_ok(int polygon) {
    return read<int>(polygon, "polygon_are_bitmap_x_cords_ok", [](const Polygon& p) {
        return std::all_of(p.points.begin(), p.points.end(),
                           [](const PointData& d) { return std::isfinite(d.uv[0]); })
                   ? 1
                   : 0;
    });
}

int ZELMAR_polygon_are_bitmap_y_cords_ok(int polygon) {
    return read<int>(polygon, "polygon_are_bitmap_y_cords_ok", [](const Polygon& p) {
        return std::all_of(p.points.begin(), p.points.end(),
                           [](const PointData& d) { return std::isfinite(d.uv[1]); })
                   ? 1
                   : 0;
    });
}

int ZELMAR_polygon_match_bitmap_cords(int polygon, int source_polygon) {
    Polygon* p = polygonArg(polygon, "polygon_match_bitmap_cords");
    const Polygon* s = polygonArg(source_polygon, "polygon_match_bitmap_cords");
    if (!p || !s) return 0;
    const size_t n = std::min(p->points.size(), s->points.size());
    for (size_t i = 0; i < n; ++i)
        for (int k = 0; k < 2; ++k)
            p->points[i].uv[k] = s->points[i].uv[k];
    world().changed(*p);
    return p->points.size() == s->points.size() ? 1 : 0;
}

void ZELMAR_polygon_mirror_horizontal_bitmap(int polygon) {
    const Polygon* p = world().polygon(polygon);
    double cu = 0, cv = 0;
    if (p) uvCentre(*p, cu, cv);
    mapUv(polygon, "polygon_mirror_horizontal_bitmap", [&](double& u, double&) { u = 2 * cu - u; });
}

void ZELMAR_polygon_mirror_vertical_bitmap(int polygon) {
    const Polygon* p = world().polygon(polygon);
    double cu = 0, cv = 0;
    if (p) uvCentre(*p, cu, cv);
    mapUv(polygon, "polygon_mirror_vertical_bitmap", [&](double&, double& v) { v = 2 * cv - v; });
}

void ZELMAR_polygon_rotate_bitmap(int polygon, double degrees) {
    if (!finite(degrees, "polygon_rotate_bitmap")) return;
    const Polygon* p = world().polygon(polygon);
    double cu = 0, cv = 0;
    if (p) uvCentre(*p, cu, cv);
    const double r = degrees * 3.14159265358979323846 / 180.0, c = std::cos(r), s = std::sin(r);
    mapUv(polygon, "polygon_rotate_bitmap", [&](double& u, double& v) {
        const double du = u - cu, dv = v - cv;
        u = cu + c * du - s * dv;
        v = cv + s * du + c * dv;
    });
}

void ZELMAR_polygon_shift_bitmap(int polygon, double du, double dv) {
    if (!finite(du, "polygon_shift_bitmap") || !finite(dv, "polygon_shift_bitmap")) return;
    mapUv(polygon, "polygon_shift_bitmap", [&](double& u, double& v) {
        u += du;
        v += dv;
    });
}

void ZELMAR_polygon_shift_bitmap_including_fractions(int polygon, double du, double dv) {
    if (!finite(du, "polygon_shift_bitmap_including_fractions") ||
        !finite(dv, "polygon_shift_bitmap_including_fractions"))
        return;
    mapUv(polygon, "polygon_shift_bitmap_including_fractions", [&](double& u, double& v) {
        u += du;
        v += dv;
    });
}

} // extern "C"
