#include "Headless.h"

#include "Player.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace vexil::viewer {

namespace {

std::string vec(const double v[3]) {
    char buf[128];
    std::snprintf(buf, sizeof buf, "%.17g %.17g %.17g", v[0], v[1], v[2]);
    return buf;
}

} // namespace

int runHeadless(const Options& o, std::ostream& out, std::ostream& err) {
    Player player;
    const LoadResult loaded = player.load(o.world);
    if (loaded.code != ExitOk) {
        err << "vexil-viewer: " << loaded.message << "\n";
        return loaded.code;
    }
    if (const char* warning = ZELMAR_engine_get_last_error(); warning && *warning)
        err << "vexil-viewer: warning: " << warning << "\n";
    player.selectCamera(o.camera - 1);
    out << "world \"" << o.world << "\": " << player.cameraCount() << " cameras\n";

    using Clock = std::chrono::steady_clock;
    std::vector<double> ms;
    ms.reserve(static_cast<size_t>(o.frames));
    for (int f = 0; f < o.frames; ++f) {
        const auto t0 = Clock::now();
        player.step();
        if (!player.render(o.width, o.height)) {
            err << "vexil-viewer: the engine could not render: " << ZELMAR_engine_get_last_error() << "\n";
            return ExitBadWorld;
        }
        ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
    }
    const int cam = player.viewCamera();
    double loc[3], dir[3];
    ZELMAR_camera_get_location(cam, loc);
    ZELMAR_camera_get_direction(cam, dir);
    out << "camera \"" << player.viewName() << "\" location " << vec(loc) << " direction " << vec(dir) << "\n";
    if (!ms.empty()) {
        std::vector<double> sorted = ms;
        std::sort(sorted.begin(), sorted.end());
        const double median = sorted[sorted.size() / 2];
        char buf[160];
        std::snprintf(buf, sizeof buf, "frames %d at %dx%d: median %.2f ms, %.1f frames per second\n", o.frames,
                      o.width, o.height, median, median > 0 ? 1000.0 / median : 0.0);
        out << buf;
    }
    if (!o.out.empty()) {
        if (o.frames == 0 && !player.render(o.width, o.height)) return ExitBadWorld;
        if (ZELMAR_utilities_save_bitmap24(player.target(), o.out.c_str()) != 1) {
            err << "vexil-viewer: the frame could not be written to \"" << o.out << "\"\n";
            return ExitWriteFailed;
        }
    }
    return ExitOk;
}

} // namespace vexil::viewer
