// Doubles into the kernel's single precision: values beyond its range become its largest
// finite value (a plain conversion of those is undefined).
#pragma once
#include <cfloat>

namespace zelmar::rays {

inline float narrow(double v) {
    return v > FLT_MAX ? FLT_MAX : (v < -FLT_MAX ? -FLT_MAX : static_cast<float>(v));
}

} // namespace zelmar::rays
