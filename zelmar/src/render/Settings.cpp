#include "render/Settings.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zelmar::render {

Settings& settings() {
    static Settings s;
    return s;
}

int64_t animationClockMs() {
    Settings& s = settings();
    if (s.clockFixed) return s.fixedClockMs;
    static const auto start = std::chrono::steady_clock::now();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

void setAnimationClockMs(int64_t ms) {
    Settings& s = settings();
    s.clockFixed = ms >= 0;
    s.fixedClockMs = ms;
}

int workerCount() {
    int n = settings().threads;
    if (n <= 0) n = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(n, 1, 64);
}

} // namespace zelmar::render
