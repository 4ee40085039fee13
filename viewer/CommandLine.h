// The command line of vexil-viewer:
//   vexil-viewer [options] WORLD
//   --frames N      headless: play N frames (one step of the chase rules each), print the view
//                   camera and the frame times, and exit; no window, no display needed
//   --out FILE      with --frames: write the last frame (.png, .bmp or .jpg by extension)
//   --size WxH      picture size (default 800x600)
//   --camera K      start with scene camera K (1 = the first; 0 = the free camera)
//   --paused        start paused (window only)
//   --help
#pragma once
#include <string>
#include <vector>

namespace vexil::viewer {

struct Options {
    std::string world;
    int frames = -1; // headless when >= 0
    std::string out;
    int width = 800, height = 600;
    int camera = 1;
    bool paused = false;
    bool help = false;
};

// Fills `options`; false with the reason in `error` for anything it does not understand.
bool parseCommandLine(const std::vector<std::string>& args, Options& options, std::string& error);

const char* usageText();

} // namespace vexil::viewer
