#include "CommandLine.h"

#include <charconv>
#include <utility>

namespace vexil::viewer {

namespace {

bool fail(std::string& error, std::string text) {
    error = std::move(text);
    return false;
}

bool toInt(const std::string& s, int lo, int hi, int& out) {
    int v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    if (ec != std::errc() || end != s.data() + s.size() || v < lo || v > hi) return false;
    out = v;
    return true;
}

} // namespace

const char* usageText() {
    return "usage: vexil-viewer [--frames N [--out FILE]] [--size WxH] [--camera K] [--paused] WORLD\n"
           "  --frames N   play N frames without a window, print the view camera and frame times\n"
           "  --out FILE   write the last frame (.png, .bmp or .jpg)\n"
           "  --size WxH   picture size, default 800x600\n"
           "  --camera K   start with scene camera K (1 = first, 0 = free camera)\n"
           "  --paused     start paused\n"
           "keys: Tab next camera, 1-9 scene camera, 0 free camera, Space pause, W/A/S/D/Q/E and the mouse\n"
           "      (button held) fly, Shift faster, F frames per second on/off, Esc quit\n";
}

bool parseCommandLine(const std::vector<std::string>& args, Options& o, std::string& error) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        const auto value = [&](std::string& v) {
            if (i + 1 >= args.size()) {
                error = a + " needs a value";
                return false;
            }
            v = args[++i];
            return true;
        };
        std::string v;
        if (a == "--help" || a == "-h") {
            o.help = true;
        } else if (a == "--paused") {
            o.paused = true;
        } else if (a == "--frames") {
            if (!value(v)) return false;
            if (!toInt(v, 0, 100000000, o.frames)) return fail(error, "--frames takes a whole number, not \"" + v + "\"");
        } else if (a == "--out") {
            if (!value(o.out)) return false;
        } else if (a == "--camera") {
            if (!value(v)) return false;
            if (!toInt(v, 0, 1000000, o.camera)) return fail(error, "--camera takes a whole number, not \"" + v + "\"");
        } else if (a == "--size") {
            if (!value(v)) return false;
            const size_t x = v.find('x');
            if (x == std::string::npos || !toInt(v.substr(0, x), 1, 16384, o.width) ||
                !toInt(v.substr(x + 1), 1, 16384, o.height))
                return fail(error, "--size takes WIDTHxHEIGHT (1 to 16384 each), not \"" + v + "\"");
        } else if (a.size() > 1 && a[0] == '-' && a != "-") {
            error = "unknown option " + a;
            return false;
        } else if (o.world.empty()) {
            o.world = a;
        } else {
            error = "one world file only (\"" + o.world + "\" and \"" + a + "\")";
            return false;
        }
    }
    if (!o.help && o.world.empty()) {
        error = "no world file given";
        return false;
    }
    if (!o.out.empty() && o.frames < 0) {
        error = "--out needs --frames";
        return false;
    }
    return true;
}

} // namespace vexil::viewer
