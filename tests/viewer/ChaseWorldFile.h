// The sample world with its first camera set to fly its track, saved into a temporary folder,
// for the viewer's tests.
#pragma once
#include <string>

namespace viewertest {

constexpr double kTrackSpeed = 300; // world units per second: 5 a step

// Writes <folder>/Chase.wld (and its bitmaps) and answers its path; "" on failure.
std::string writeChaseWorld(const std::string& folder);

} // namespace viewertest
