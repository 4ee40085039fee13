// The run without a window (--frames N): N frames of one chase step and one render each,
// then the view camera and the frame times on `out`, the last frame written to a file.
#pragma once
#include "CommandLine.h"

#include <ostream>

namespace vexil::viewer {

// Answers the exit code; messages for the user go to `err`.
int runHeadless(const Options& options, std::ostream& out, std::ostream& err);

} // namespace vexil::viewer
