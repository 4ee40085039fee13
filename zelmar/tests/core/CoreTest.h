// Shared set-up of the scene core tests: an empty engine per test, and builders of
// polygons through the C API.
#pragma once
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

class CoreTest : public ::testing::Test {
  protected:
    void SetUp() override { ZELMAR_engine_close(); }
    void TearDown() override { ZELMAR_engine_close(); }

  public:
    // A polygon of the given corners (z, u, v filled in), added to group g.
    static int poly(int g, std::initializer_list<std::array<double, 3>> corners) {
        const int p = ZELMAR_polygon_create();
        int i = 0;
        for (const auto& c : corners) {
            const double v[6] = {c[0], c[1], c[2], 0.1 * i, 0.2 * i, 100.0};
            ZELMAR_polygon_add_point(p, v);
            ++i;
        }
        if (g) ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        return p;
    }
    // A unit square in the plane z = z0 facing +z: clockwise seen from +z.
    static int square(int g, double x0 = 0, double y0 = 0, double z0 = 0, double size = 1) {
        return poly(g, {{x0, y0, z0}, {x0, y0 + size, z0}, {x0 + size, y0 + size, z0}, {x0 + size, y0, z0}});
    }
    static std::vector<int> walk(int group) {
        std::vector<int> out;
        for (int p = ZELMAR_group_get_first_polygon(group); p; p = ZELMAR_group_get_next_polygon(p))
            out.push_back(p);
        return out;
    }
    static std::string name(int h) {
        char buffer[256];
        ZELMAR_entity_get_name(h, buffer, 255);
        return buffer;
    }
    static std::array<double, 3> xyz(int point) {
        std::array<double, 3> r{};
        ZELMAR_point_get_xyz(point, r.data());
        return r;
    }
};

#define EXPECT_V3_NEAR(v, a, b, c, tol)                                                                      \
    do {                                                                                                     \
        EXPECT_NEAR((v)[0], (a), (tol));                                                                     \
        EXPECT_NEAR((v)[1], (b), (tol));                                                                     \
        EXPECT_NEAR((v)[2], (c), (tol));                                                                     \
    } while (0)
