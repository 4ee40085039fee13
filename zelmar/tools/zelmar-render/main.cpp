// zelmar-render: loads a world and writes one picture of it.
//   zelmar-render WORLD OUT.png [--eye x,y,z] [--look-at x,y,z] [--fov degrees]
//                 [--size WxH] [--threads N] [--bitmaps DIR] [--wireframe]
// Without --eye the camera stands off the world's box, looking at its centre.
#include <zelmar/zelmar.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int usage(const char* self) {
    std::fprintf(stderr,
                 "usage: %s WORLD OUT.png [--eye x,y,z] [--look-at x,y,z] [--fov degrees] [--size WxH]\n"
                 "          [--threads N] [--bitmaps DIR] [--wireframe]\n",
                 self);
    return 2;
}

bool parse3(const char* s, double out[3]) {
    char* end = nullptr;
    for (int i = 0; i < 3; ++i) {
        out[i] = std::strtod(s, &end);
        if (end == s || !std::isfinite(out[i])) return false;
        if (i < 2) {
            if (*end != ',') return false;
            s = end + 1;
        }
    }
    return *end == '\0';
}

// The box around every group of the world; false when there is no geometry.
bool worldBox(double box[6]) {
    bool any = false;
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g)) {
        if (ZELMAR_group_get_number_of_polygons(g) <= 0) continue;
        double b[6];
        ZELMAR_group_get_bounding_box(g, b);
        if (!(b[0] <= b[3])) continue;
        for (int k = 0; k < 3; ++k) {
            box[k] = any ? std::fmin(box[k], b[k]) : b[k];
            box[k + 3] = any ? std::fmax(box[k + 3], b[k + 3]) : b[k + 3];
        }
        any = true;
    }
    return any;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) return usage(argv[0]);
    const std::string worldFile = argv[1], out = argv[2];
    double eye[3], lookAt[3];
    bool haveEye = false, haveLookAt = false, wireframe = false;
    double fov = 60.0;
    int width = 800, height = 600, threads = 0;
    std::string bitmaps;
    for (int i = 3; i < argc; ++i) {
        const std::string a = argv[i];
        const char* v = i + 1 < argc ? argv[i + 1] : nullptr;
        if (a == "--wireframe") {
            wireframe = true;
            continue;
        }
        if (!v) return usage(argv[0]);
        ++i;
        if (a == "--eye") {
            if (!parse3(v, eye)) return usage(argv[0]);
            haveEye = true;
        } else if (a == "--look-at") {
            if (!parse3(v, lookAt)) return usage(argv[0]);
            haveLookAt = true;
        } else if (a == "--fov") {
            fov = std::atof(v);
            if (!(fov > 0 && fov < 180)) {
                std::fprintf(stderr, "--fov must be between 0 and 180 degrees\n");
                return 2;
            }
        } else if (a == "--size") {
            if (std::sscanf(v, "%dx%d", &width, &height) != 2 || width < 1 || height < 1 || width > 16384 ||
                height > 16384) {
                std::fprintf(stderr, "--size must be WxH, 1 to 16384 each\n");
                return 2;
            }
        } else if (a == "--threads") {
            threads = std::atoi(v);
        } else if (a == "--bitmaps") {
            bitmaps = v;
        } else {
            return usage(argv[0]);
        }
    }

    if (ZELMAR_engine_load_world(worldFile.c_str(), nullptr, bitmaps.empty() ? nullptr : bitmaps.c_str(),
                                 4) == -1) {
        std::fprintf(stderr, "cannot load %s: %s\n", worldFile.c_str(), ZELMAR_engine_get_last_error());
        return 1;
    }
    double box[6] = {-1, -1, -1, 1, 1, 1};
    const bool hasGeometry = worldBox(box);
    if (!hasGeometry) std::fprintf(stderr, "note: the world has no polygons\n");
    if (!haveLookAt)
        for (int k = 0; k < 3; ++k)
            lookAt[k] = 0.5 * (box[k] + box[k + 3]);
    double size = 0;
    for (int k = 0; k < 3; ++k)
        size = std::fmax(size, box[k + 3] - box[k]);
    if (!(size > 0)) size = 1;
    if (!haveEye) {
        const double away[3] = {-1.4, -1.1, 0.9};
        for (int k = 0; k < 3; ++k)
            eye[k] = lookAt[k] + away[k] * size;
    }
    const int camera = ZELMAR_camera_create("zelmar-render");
    ZELMAR_camera_set_location(camera, eye);
    ZELMAR_camera_point_at(camera, lookAt);
    ZELMAR_camera_set_zoom(camera, fov);
    ZELMAR_camera_set_distance_from_eye(camera, size * 1e-3);
    ZELMAR_engine_set_render_threads(threads);
    ZELMAR_engine_set_wire_frame_rendering_mode(wireframe ? 1 : 0);
    const int target = ZELMAR_target_create(width, height);
    if (!target || ZELMAR_engine_render(target, camera) != 1) {
        std::fprintf(stderr, "render failed: %s\n", ZELMAR_engine_get_last_error());
        return 1;
    }
    if (ZELMAR_utilities_save_bitmap24(target, out.c_str()) != 1) {
        std::fprintf(stderr, "cannot write %s: %s\n", out.c_str(), ZELMAR_engine_get_last_error());
        return 1;
    }
    ZELMAR_target_destroy(target);
    return 0;
}
