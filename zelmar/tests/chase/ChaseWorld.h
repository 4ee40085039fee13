// Small worlds for the chase tests, built through the C API as a player's world would be.
#pragma once
#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <array>

namespace chasetest {

using P3 = std::array<double, 3>;

// Empties the engine and the run-time clock.
void resetWorld();
// A closed box of six faces, centred on c, half size h, in a new group under `father`.
int box(const char* name, P3 c, double h, int father = 0);
// A square floor at height z, half size h, facing up.
int floor(const char* name, double z, double h);
int track(const char* name, std::initializer_list<P3> points, int cyclic);
int cameraAt(const char* name, P3 at, P3 direction = {1, 0, 0});

P3 cameraLocation(int camera);
P3 cameraDirection(int camera);
P3 groupLocation(int group);
P3 groupAxisX(int group);

// Runs `n` single steps of every chasing group and camera.
void steps(int n);

} // namespace chasetest

#define EXPECT_P3(actual, x, y, z, tol)                                                                          \
    do {                                                                                                       \
        const auto a_ = (actual);                                                                              \
        EXPECT_NEAR(a_[0], (x), (tol));                                                                        \
        EXPECT_NEAR(a_[1], (y), (tol));                                                                        \
        EXPECT_NEAR(a_[2], (z), (tol));                                                                        \
    } while (0)
