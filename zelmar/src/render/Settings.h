// Process-wide switches and state of the renderer: modes, fog, background colour, the
// group to render, the current target, the worker count and the animation clock.
#pragma once
#include <cstdint>

namespace zelmar::render {

struct Settings {
    bool wireframe = false;
    bool colorFill = false;
    uint8_t fogColor[3] = {128, 128, 128};
    double fogIntensity = 0.0;
    bool fogEnabled = true; // toggle_atmospheric_effect
    uint8_t backgroundColor[3] = {0, 0, 0};
    int groupToRender = 0;
    int currentTarget = 0;
    int lastRenderedTarget = 0;
    int threads = 0;         // 0 = one per core
    bool clockFixed = false; // tests pin the animation clock
    int64_t fixedClockMs = 0;
};

Settings& settings();

// Milliseconds on the animation clock: since the first call, or the pinned value.
int64_t animationClockMs();
// Pins the clock (tests, tools); a negative value lets it run again.
void setAnimationClockMs(int64_t ms);

int workerCount(); // resolved thread count, 1..64

} // namespace zelmar::render
