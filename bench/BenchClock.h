// Clocks and memory figures the benchmarks report. The machine is shared, so processor time is
// printed beside wall time.
#pragma once
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace bench {

inline double clockMs(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}
inline double wallMs() { return clockMs(CLOCK_MONOTONIC); }
inline double processCpuMs() { return clockMs(CLOCK_PROCESS_CPUTIME_ID); }
inline double threadCpuMs() { return clockMs(CLOCK_THREAD_CPUTIME_ID); }

// Peak resident set of this process in kB (-1 when /proc is not there).
inline long peakResidentKb() {
    FILE* f = std::fopen("/proc/self/status", "r");
    if (!f) return -1;
    char line[256];
    long kb = -1;
    while (std::fgets(line, sizeof line, f))
        if (std::strncmp(line, "VmHWM:", 6) == 0) kb = std::atol(line + 6);
    std::fclose(f);
    return kb;
}

inline double median(std::vector<double> v) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace bench
