// The ray-tracing kernel's device, shared by every scene of the engine. Only the files of
// this folder include the kernel's headers; the rest of the engine sees OcclusionScene and
// PickScene.
#pragma once
#include <embree3/rtcore.h>
#include <string>

namespace zelmar::rays {

// Created at first use and kept for the life of the process; nullptr if the kernel cannot
// run on this processor (then every query answers "no hit").
RTCDevice device();

// The kernel's last complaint, for error messages; empty when none.
std::string lastDeviceError();

} // namespace zelmar::rays
