// The C operations that turn points between the world and the current camera's target,
// and the picks.
#include "api/LastError.h"
#include "pick/Picker.h"
#include "render/Settings.h"
#include "render/Target.h"
#include "render/View.h"
#include "scene/Current.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace zelmar;

namespace {

// The view of the last call, with what it was made from: a click or a drag asks for the
// same view many times, and making it takes square roots, divisions and a tangent. Keyed on
// every camera field makeView reads (and the target's size), so it cannot go stale.
struct ViewMemo {
    static constexpr int kKey = 17;
    bool valid = false;
    double key[kKey] = {}; // compared bit for bit: a -0 is not a 0 here
    render::View view;

    static void keyOf(const Camera& c, int w, int h, double out[kKey]) {
        std::copy(c.location, c.location + 3, out);
        std::copy(&c.axis[0][0], &c.axis[0][0] + 9, out + 3);
        out[12] = c.zoom;
        out[13] = c.distanceFromEye;
        out[14] = c.parallelWidth;
        out[15] = c.perspective ? 1.0 : 0.0;
        out[16] = static_cast<double>(w) * 65536.0 * 65536.0 + static_cast<double>(h);
    }
};

// The current camera on its target, or false with the last error set.
bool currentView(render::View& v) {
    const Camera* c = currentCamera();
    const render::Target* t = render::target(render::settings().currentTarget);
    if (!c || !t) {
        setLastError("no current camera on a render target (camera_set_current)");
        return false;
    }
    static ViewMemo memo;
    double key[ViewMemo::kKey];
    ViewMemo::keyOf(*c, t->width, t->height, key);
    if (memo.valid && std::memcmp(key, memo.key, sizeof key) == 0) {
        v = memo.view;
        return true;
    }
    if (!render::makeView(*c, t->width, t->height, v)) {
        setLastError("the current camera has no usable location, axis system or zoom");
        return false;
    }
    std::copy(key, key + ViewMemo::kKey, memo.key);
    memo.view = v;
    memo.valid = true;
    return true;
}

bool finite3(const double* p) {
    return p && std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

bool pickAt(int x, int y, pick::WorldHit& hit) {
    render::View v;
    if (!currentView(v)) return false;
    return pick::pickPixel(v, x, y, hit);
}

// Screen movement (dx, dy) of a point, as a world displacement at the point's depth.
bool screenToWorldMove(const double point[3], int dx, int dy, double out[3]) {
    render::View v;
    if (!currentView(v) || !finite3(point) || !out) return false;
    double cam[3];
    v.toCamera(point, cam);
    double perPixel;
    if (v.perspective) {
        if (!(cam[0] > 0)) {
            setLastError("the point is not in front of the camera");
            return false;
        }
        perPixel = cam[0] / v.focal;
    } else {
        perPixel = 1.0 / v.scale;
    }
    const double left = -dx * perPixel, up = -dy * perPixel;
    for (int k = 0; k < 3; ++k)
        out[k] = v.axis[1][k] * left + v.axis[2][k] * up;
    return true;
}

} // namespace

extern "C" {

int ZELMAR_engine_3D_point_to_2D(const double point[3], int result[2]) {
    render::View v;
    if (!point || !result || !currentView(v)) return -1;
    return render::projectPoint(v, point, result);
}

int ZELMAR_engine_3D_edge_to_2D(const double p1[3], const double p2[3], int r1[2], int r2[2]) {
    render::View v;
    if (!p1 || !p2 || !r1 || !r2 || !currentView(v)) return 0;
    return render::projectEdge(v, p1, p2, r1, r2);
}

int ZELMAR_engine_3D_edges_to_2D(const double* ends, int count, int* screen, int* shown) {
    if (!ends || !screen || !shown || count <= 0) return 0;
    for (int i = 0; i < count; ++i)
        shown[i] = 0;
    render::View v; // made once: the single call makes it per edge
    if (!currentView(v)) return 0;
    int n = 0;
    for (int i = 0; i < count; ++i) {
        const double* e = ends + 6 * static_cast<size_t>(i);
        int* s = screen + 4 * static_cast<size_t>(i);
        shown[i] = render::projectEdge(v, e, e + 3, s, s + 2);
        if (shown[i] == 1) ++n;
    }
    return n;
}

int ZELMAR_engine_2D_point_to_3D(int x, int y, double result[3], int* group_out, int* polygon_out) {
    if (group_out) *group_out = 0;
    if (polygon_out) *polygon_out = 0;
    pick::WorldHit hit;
    if (!pickAt(x, y, hit)) return -1;
    if (result)
        for (int k = 0; k < 3; ++k)
            result[k] = hit.point[k];
    if (group_out) *group_out = hit.group;
    if (polygon_out) *polygon_out = hit.polygon;
    return 1;
}

int ZELMAR_engine_2D_point_to_3D_point_on_plane(int x, int y, const double plane[4], double result[3]) {
    render::View v;
    if (!plane || !result || !currentView(v)) return -1;
    for (int k = 0; k < 4; ++k)
        if (!std::isfinite(plane[k])) return -1;
    double o[3], d[3];
    v.ray(x + 0.5, y + 0.5, o, d);
    const double denom = plane[0] * d[0] + plane[1] * d[1] + plane[2] * d[2];
    const double num = -(plane[0] * o[0] + plane[1] * o[1] + plane[2] * o[2] + plane[3]);
    if (denom == 0 || !std::isfinite(denom)) return -1;
    const double t = num / denom;
    if (v.perspective && !(t > 0)) return -1; // behind the eye
    for (int k = 0; k < 3; ++k)
        result[k] = o[k] + d[k] * t;
    return 1;
}

int ZELMAR_engine_get_polygon_at_point_2D(int x, int y) {
    pick::WorldHit hit;
    return pickAt(x, y, hit) ? hit.polygon : 0;
}

int ZELMAR_engine_get_object_at_point_2D(int x, int y) {
    pick::WorldHit hit;
    return pickAt(x, y, hit) ? hit.group : 0;
}

int ZELMAR_engine_translate_movement_on_screen_to_movement_in_world(const double point[3], int dx, int dy,
                                                                    double result[3]) {
    return screenToWorldMove(point, dx, dy, result) ? 1 : -1;
}

int ZELMAR_engine_translate_movement_on_screen_to_world(const double point[3], int dx, int dy,
                                                        double result[3]) {
    double move[3];
    if (!screenToWorldMove(point, dx, dy, move)) return -1;
    for (int k = 0; k < 3; ++k)
        result[k] = point[k] + move[k];
    return 1;
}

} // extern "C"
