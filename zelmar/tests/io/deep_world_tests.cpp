// A world whose groups form one chain 100,000 levels deep: it loads, saves back the same bytes
// in every format, walks, draws, picks, copies and deletes with work linear in the number of
// groups (counted in steps up the tree, not timed), and nothing recurses once per level: every
// test body runs on a 1 MiB stack, which a recursion over the chain would overflow.
#include "WorldGen.h"
#include "render/Renderer.h"
#include "scene/World.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <pthread.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using iotest::TempDir;

namespace {

constexpr long kDepth = 100000;
constexpr long kPolygons = kDepth / 16; // a triangle in every 16th group

// Group i (named "the_world" at 0, "g<i>" below) has a triangle at x = i when i is a multiple of 16.
void writeChain(const std::string& path) {
    std::ofstream o(path, std::ios::binary);
    o << "zelmar-world-text 1\nstyle 0\ngroup 0 father=-1 name=\"the_world\"\n";
    for (long i = 1; i < kDepth; ++i)
        o << "group " << i << " father=" << i - 1 << " name=\"g" << i << "\"\n";
    for (long i = 0; i < kDepth; i += 16)
        o << "polygon group=" << i << " style=0 name=\"t\" points=3 attrs=xyz\np " << i << " 0 0\np " << i
          << " 1 0\np " << i << " 0 1\n";
    o << "end\n";
}

void onSmallStack(const std::function<void()>& body) {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, size_t(1) << 20);
    pthread_t thread;
    auto run = [](void* fn) -> void* {
        (*static_cast<const std::function<void()>*>(fn))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, run, const_cast<std::function<void()>*>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

long includedGroups(int root) {
    long n = 0;
    for (int g = ZELMAR_group_get_first_included_group(root); g; g = ZELMAR_group_get_next_included_group(g))
        ++n;
    return n;
}

long polygonsBelow(int root) {
    long n = 0;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p))
        ++n;
    return n;
}

// Linear: a few steps per group at most (a walk to the root per group would be kDepth / 2 each).
constexpr uint64_t kStepBudget = 4 * kDepth;

TEST(DeepWorld, LoadsInLinearWorkAndSavesTheSameBytesInEveryFormat) {
    onSmallStack([] {
        TempDir dir;
        writeChain(dir / "chain.wld");
        const uint64_t before = world().upwardSteps();
        ASSERT_EQ(ZELMAR_engine_load_world((dir / "chain.wld").c_str(), "", "", 4), 1)
            << ZELMAR_engine_get_last_error();
        ASSERT_LT(world().upwardSteps() - before, kStepBudget);
        ASSERT_EQ(world().groupCount(), size_t(kDepth));

        const char* const exts[] = {".wld", ".zelmar", ".tolvane", ".3dzelmar"};
        std::vector<uint8_t> first[4];
        for (int f = 0; f < 4; ++f) {
            const std::string path = dir / (std::string("a") + exts[f]);
            ASSERT_EQ(ZELMAR_engine_save(path.c_str(), ZELMAR_group_get_using_name("the_world"), 0x1203), 1)
                << ZELMAR_engine_get_last_error();
            first[f] = iotest::fileBytes(path);
        }
        for (int f = 0; f < 4; ++f) {
            SCOPED_TRACE(exts[f]);
            const uint64_t start = world().upwardSteps();
            ASSERT_EQ(ZELMAR_engine_load_world((dir / (std::string("a") + exts[f])).c_str(), "", "", 4), 1)
                << ZELMAR_engine_get_last_error();
            EXPECT_LT(world().upwardSteps() - start, kStepBudget);
            const int root = ZELMAR_group_get_using_name("the_world");
            EXPECT_EQ(includedGroups(root), kDepth - 1);
            EXPECT_EQ(polygonsBelow(root), kPolygons);
            for (int g = 0; g < 4; ++g) { // its own format, and from the text every other
                if (g != f && f != 0) continue;
                const std::string again = dir / (std::string("b") + exts[g]);
                ASSERT_EQ(ZELMAR_engine_save(again.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
                EXPECT_TRUE(iotest::fileBytes(again) == first[g]) << exts[g];
            }
        }
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    });
}

TEST(DeepWorld, WalksBoxesCopiesAndDeletesInLinearWork) {
    onSmallStack([] {
        TempDir dir;
        writeChain(dir / "chain.wld");
        ASSERT_EQ(ZELMAR_engine_load_world((dir / "chain.wld").c_str(), "", "", 4), 1);
        const int root = ZELMAR_group_get_using_name("the_world");
        const uint64_t before = world().upwardSteps();

        EXPECT_EQ(includedGroups(root), kDepth - 1);
        EXPECT_EQ(polygonsBelow(root), kPolygons);
        double box[6];
        ZELMAR_group_get_bounding_box(root, box);
        EXPECT_EQ(box[0], 0);
        EXPECT_EQ(box[3], double(kDepth - 16));
        double centre[3];
        ZELMAR_group_get_center_of_mass(root, centre);
        EXPECT_NEAR(centre[0], double(kDepth - 16) / 2, 1e-6);
        const double offset[3] = {1, 0, 0};
        ZELMAR_group_move(root, offset, 0);
        ZELMAR_group_get_bounding_box(ZELMAR_group_get_using_name("g50000"), box);
        EXPECT_EQ(box[0], 50001);

        const int copy = ZELMAR_group_duplicate_tree(root);
        ASSERT_NE(copy, 0);
        EXPECT_EQ(includedGroups(copy), kDepth - 1);
        EXPECT_EQ(polygonsBelow(copy), kPolygons);
        ZELMAR_group_delete_members(copy);
        EXPECT_EQ(ZELMAR_group_is_group(copy), 0);
        EXPECT_EQ(world().groupCount(), size_t(kDepth));
        EXPECT_LT(world().upwardSteps() - before, kStepBudget);

        // Cutting the chain in the middle and hanging the lower half under the root.
        const int middle = ZELMAR_group_get_using_name("g50000");
        ZELMAR_group_set_father_group(middle, root);
        EXPECT_EQ(ZELMAR_group_get_father_group(middle), root);
        EXPECT_EQ(includedGroups(root), kDepth - 1);
        ZELMAR_group_set_father_group(root, ZELMAR_group_get_using_name("g99999")); // a cycle: refused
        EXPECT_EQ(ZELMAR_group_get_father_group(root), 0);
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    });
}

TEST(DeepWorld, DrawsAndPicksWithoutWalkingUpFromEveryGroup) {
    onSmallStack([] {
        TempDir dir;
        writeChain(dir / "chain.wld");
        ASSERT_EQ(ZELMAR_engine_load_world((dir / "chain.wld").c_str(), "", "", 4), 1);
        const int target = ZELMAR_target_create(64, 48);
        const int camera = ZELMAR_camera_create("look");
        const double eye[3] = {-10, 0.3, 0.3}; // looking along +x at the triangle of the root
        ZELMAR_camera_set_location(camera, eye);
        ZELMAR_camera_set_current(camera, target);
        ASSERT_EQ(ZELMAR_engine_render_on_bitmap(target, camera), 1) << ZELMAR_engine_get_last_error();
        const int hit = ZELMAR_engine_get_polygon_at_point_2D(32, 24);
        ASSERT_NE(hit, 0);
        EXPECT_EQ(ZELMAR_polygon_get_group(hit), ZELMAR_group_get_using_name("the_world"));

        // A disabled group hides everything below it.
        ZELMAR_group_disable(ZELMAR_group_get_using_name("g50000"), 1);
        EXPECT_EQ(render::drawnGroups().size(), 50000u);
        ASSERT_EQ(ZELMAR_engine_render_on_bitmap(target, camera), 1);
        ZELMAR_target_destroy(target);
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    });
}

} // namespace
