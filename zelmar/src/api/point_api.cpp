// Points: the vertices of a polygon's ring.
#include "api/CoreArgs.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {
template <int N>
void getArray(int point, double* out, const char* op, const double* (*field)(const PointData&)) {
    const PointData* d = pointArg(point, op);
    if (!d || !outArray(out, op)) return;
    const double* src = field(*d);
    for (int i = 0; i < N; ++i)
        out[i] = src[i];
}

template <int N> void setArray(int point, const double* in, const char* op, double* (*field)(PointData&)) {
    Polygon* owner = nullptr;
    PointData* d = pointArg(point, op, &owner);
    if (!d || !inArray(in, N, op)) return;
    double* dst = field(*d);
    for (int i = 0; i < N; ++i)
        dst[i] = in[i];
    world().changed(*owner);
}
} // namespace

extern "C" {

int ZELMAR_point_is_point(int handle) {
    return world().point(handle) ? 1 : 0;
}

int ZELMAR_point_get_next_point(int point) {
    Polygon* owner = nullptr;
    uint32_t index = 0;
    if (!pointArg(point, "point_get_next_point", &owner, &index)) return 0;
    return index + 1 < owner->points.size() ? owner->points[index + 1].handle : 0;
}

void ZELMAR_point_get_xyz(int point, double xyz[3]) {
    getArray<3>(point, xyz, "point_get_xyz", [](const PointData& d) -> const double* { return d.xyz; });
}
void ZELMAR_point_set_xyz(int point, const double xyz[3]) {
    setArray<3>(point, xyz, "point_set_xyz", [](PointData& d) -> double* { return d.xyz; });
}
void ZELMAR_point_get_bitmap_xy(int point, double uv[2]) {
    getArray<2>(point, uv, "point_get_bitmap_xy", [](const PointData& d) -> const double* { return d.uv; });
}
void ZELMAR_point_set_bitmap_xy(int point, const double uv[2]) {
    setArray<2>(point, uv, "point_set_bitmap_xy", [](PointData& d) -> double* { return d.uv; });
}
void ZELMAR_point_get_second_bitmap_xy(int point, double uv[2]) {
    getArray<2>(point, uv, "point_get_second_bitmap_xy",
                [](const PointData& d) -> const double* { return d.uv2; });
}
void ZELMAR_point_set_second_bitmap_xy(int point, const double uv[2]) {
    setArray<2>(point, uv, "point_set_second_bitmap_xy", [](PointData& d) -> double* { return d.uv2; });
}
void ZELMAR_point_get_rgb(int point, double rgb[3]) {
    getArray<3>(point, rgb, "point_get_rgb", [](const PointData& d) -> const double* { return d.rgb; });
}
void ZELMAR_point_set_rgb(int point, const double rgb[3]) {
    setArray<3>(point, rgb, "point_set_rgb", [](PointData& d) -> double* { return d.rgb; });
}
void ZELMAR_point_get_normal(int point, double normal[3]) {
    getArray<3>(point, normal, "point_get_normal",
                [](const PointData& d) -> const double* { return d.normal; });
}
void ZELMAR_point_set_normal(int point, const double normal[3]) {
    setArray<3>(point, normal, "point_set_normal", [](PointData& d) -> double* { return d.normal; });
}

double ZELMAR_point_get_brightness(int point) {
    const PointData* d = pointArg(point, "point_get_brightness");
    return d ? d->brightness : 0.0;
}

void ZELMAR_point_set_brightness(int point, double brightness) {
    Polygon* owner = nullptr;
    PointData* d = pointArg(point, "point_set_brightness", &owner);
    if (!d || !finite(brightness, "point_set_brightness")) return;
    d->brightness = brightness;
    world().changed(*owner);
}

} // extern "C"
