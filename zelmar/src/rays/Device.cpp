#include "rays/Device.h"

#include <mutex>

namespace zelmar::rays {
namespace {

std::mutex& errorMutex() {
    static std::mutex m;
    return m;
}

std::string& errorText() {
    static std::string s;
    return s;
}

void onError(void*, RTCError code, const char* text) {
    std::lock_guard<std::mutex> lock(errorMutex());
    errorText() = "ray kernel error " + std::to_string(static_cast<int>(code)) + (text ? std::string(": ") + text : "");
}

RTCDevice makeDevice() {
    // "verbose=0": the kernel prints nothing on its own.
    RTCDevice d = rtcNewDevice("verbose=0");
    if (d) rtcSetDeviceErrorFunction(d, onError, nullptr);
    return d;
}

} // namespace

RTCDevice device() {
    static RTCDevice d = makeDevice();
    return d;
}

std::string lastDeviceError() {
    std::lock_guard<std::mutex> lock(errorMutex());
    return errorText();
}

} // namespace zelmar::rays
