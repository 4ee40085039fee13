// Shared helpers of the maths tests: a recorder for the log and message-box sinks, and a
// matcher for the VexilError that a call raises.
#pragma once
#include "base/VexilError.h"
#include "maths/MathsReport.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace maths_test {

struct Recorder {
    std::vector<std::pair<std::string, int>> log;
    std::vector<std::pair<std::string, std::string>> boxes;
    Recorder() {
        Maths::SetLogSink([this](const std::string& m, int t) { log.emplace_back(m, t); });
        Maths::SetMessageBoxSink(
            [this](const std::string& t, const std::string& m) { boxes.emplace_back(t, m); });
    }
    ~Recorder() {
        Maths::SetLogSink({});
        Maths::SetMessageBoxSink({});
    }
};

// Runs f, which must raise a VexilError; returns it.
template <class F> vexil::VexilError raised(F&& f) {
    try {
        f();
    } catch (const vexil::VexilError& e) {
        return e;
    }
    ADD_FAILURE() << "no VexilError raised";
    return vexil::VexilError(0, "");
}

} // namespace maths_test
