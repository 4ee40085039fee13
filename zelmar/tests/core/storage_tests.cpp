// Polygons and their rings live in blocks the world owns: places are reused, blocks go back
// when empty, and a ring's memory always returns to where it came from, however the ring
// is grown, copied, moved or swapped.
#include "CoreTest.h"
#include "scene/World.h"

#include <algorithm>
#include <random>

using Storage = CoreTest;
using zelmar::world;

TEST_F(Storage, BlocksAreReusedAndReturnedWhileHandlesKeepCounting) {
    // More polygons than a block holds, deleted in a random order.
    const int g = ZELMAR_group_create("g");
    std::vector<int> polys;
    for (int i = 0; i < 20000; ++i)
        polys.push_back(square(g, i, 0, 0));
    const size_t full = world().polygonBlocks();
    EXPECT_GT(full, 4u);
    // The first polygons stay (their blocks with them); the rest go in a random order.
    const std::vector<int> kept(polys.begin(), polys.begin() + 50);
    polys.erase(polys.begin(), polys.begin() + 50);
    std::shuffle(polys.begin(), polys.end(), std::mt19937(3));
    const int newest = *std::max_element(polys.begin(), polys.end());
    for (int p : polys)
        ZELMAR_polygon_delete(p);
    for (int p : kept) {
        ASSERT_EQ(ZELMAR_polygon_get_num_of_points(p), 4);
        EXPECT_EQ(xyz(ZELMAR_polygon_get_first_point(p))[1], 0.0);
    }
    // Per size (polygons, quads' rings): the survivors' block and one spare.
    EXPECT_LE(world().polygonBlocks(), 4u);
    // Freed places are reused, handles are not.
    for (int i = 0; i < 1000; ++i)
        EXPECT_GT(square(g, 0, i, 0), newest);
    EXPECT_EQ(walk(g).size(), 1050u);
    ZELMAR_engine_close();
    EXPECT_EQ(world().polygonBlocks(), 0u);
}

TEST_F(Storage, RingsMoveBetweenThePoolsTheHeapAndOtherPolygons) {
    const int g = ZELMAR_group_create("g");
    const int a = poly(g, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    const int b = square(g, 5, 5, 5);
    // Grown past the pooled sizes and shrunk back, with points at the head.
    for (int i = 0; i < 30; ++i) {
        const double v[6] = {double(i), 9, 9, 0, 0, 100};
        if (i % 3)
            ZELMAR_polygon_add_point(a, v);
        else
            ZELMAR_polygon_add_point_to_head(a, v);
    }
    EXPECT_EQ(ZELMAR_polygon_get_num_of_points(a), 33);
    while (ZELMAR_polygon_get_num_of_points(a) > 3)
        ZELMAR_polygon_delete_point(a, ZELMAR_polygon_get_first_point(a));
    EXPECT_EQ(xyz(ZELMAR_polygon_get_first_point(a))[0], 26.0); // the tail ends 26, 28, 29

    zelmar::Polygon* pa = world().polygon(a);
    zelmar::Polygon* pb = world().polygon(b);
    // What the world knows of each ring (handles included) is put back before the deletes.
    const zelmar::Ring keepA = pa->points, keepB = pb->points;
    zelmar::Ring copy = pb->points; // a copy lives on the heap
    EXPECT_EQ(copy.get_allocator().store, nullptr);
    EXPECT_NE(pb->points.get_allocator().store, nullptr);
    std::swap(pa->points, pb->points);
    std::swap(pa->points, pb->points);
    pa->points = copy; // copied into the world's memory
    EXPECT_NE(pa->points.get_allocator().store, nullptr);
    copy.resize(12);
    pb->points = std::move(copy); // now a heap ring, freed as one
    EXPECT_EQ(pb->points.get_allocator().store, nullptr);
    pa->points = keepA;
    pb->points = keepB;
    EXPECT_EQ(xyz(ZELMAR_polygon_get_first_point(b))[2], 5.0);
    ZELMAR_polygon_delete(a);
    ZELMAR_polygon_delete(b);
    ZELMAR_engine_close();
    EXPECT_EQ(world().polygonBlocks(), 0u);
}
