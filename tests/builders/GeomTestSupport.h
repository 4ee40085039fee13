// Shared helpers of the geometry tests: an offscreen application and readers of what the engine holds.
#pragma once
#include "../support/OffscreenApp.h"
#include <QApplication>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

inline QApplication& geomApp() {
    return offscreenApp();
}

using V3 = std::array<double, 3>;

inline std::vector<int> polygonsOf(int group) {
    std::vector<int> v;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        v.push_back(p);
    return v;
}

inline std::vector<int> pointsOf(int polygon) {
    std::vector<int> v;
    for (int p = ZELMAR_polygon_get_first_point(polygon); p != 0; p = ZELMAR_point_get_next_point(p))
        v.push_back(p);
    return v;
}

inline int groupCount() {
    int n = 0;
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        ++n;
    return n;
}

inline V3 xyz(int point) {
    V3 r{};
    ZELMAR_point_get_xyz(point, r.data());
    return r;
}

inline std::string nameOf(int handle) {
    char buffer[256] = {};
    ZELMAR_entity_get_name(handle, buffer, 255);
    return buffer;
}

inline double dot(const V3& a, const V3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline V3 sub(const V3& a, const V3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

} // namespace vexil::test
