// Internal helpers of the maths library: checked element access and the overflow test.
#pragma once
#include "base/VexilError.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace Maths::detail {

[[noreturn]] inline void raiseSubscript() {
    vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
}

// Reads element i; an array that has no element i is the Windows design's bounds failure.
template <class T> inline double at(const std::vector<T>& v, std::size_t i) {
    if (i >= v.size()) raiseSubscript();
    return static_cast<double>(v[i]);
}

// Makes sure that the output has at least n elements (never shrinks it).
template <class T> inline void grow(std::vector<T>& v, std::size_t n) {
    if (v.size() < n) v.resize(n);
}

// The Windows design's run-time raised Overflow for a result out of the range of a double.
inline double fin(double x) {
    if (!std::isfinite(x)) vexil::raiseOverflow();
    return x;
}

inline double sq(double x) {
    return fin(x * x);
}

} // namespace Maths::detail
