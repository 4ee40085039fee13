// Random sequences of operations with live, dead and made-up handles: nothing may crash
// (CI runs this under the address and undefined-behaviour sanitizers), and the walks keep
// agreeing with the counts.
#include "CoreTest.h"

#include <cmath>
#include <functional>
#include <random>
#include <set>

namespace {
class RandomOps : public CoreTest {
  protected:
    std::mt19937 rng{12345};
    std::vector<int> groups, polygons, points;

    int pick(const std::vector<int>& v) {
        const int r = static_cast<int>(rng() % 10);
        if (r == 0 || v.empty()) return static_cast<int>(rng()); // anything at all
        if (r == 1) return 0;
        return v[rng() % v.size()];
    }
    double num() { return std::uniform_real_distribution<double>(-10, 10)(rng); }
    void vec(double* v, int n) {
        for (int i = 0; i < n; ++i)
            v[i] = num();
        if (rng() % 50 == 0) v[rng() % n] = std::nan("");
    }

    void checkWalks() {
        std::set<int> seen;
        for (int g = ZELMAR_group_get_first_group(); g; g = ZELMAR_group_get_next(g)) {
            const std::vector<int> w = walk(g);
            ASSERT_EQ(static_cast<int>(w.size()), ZELMAR_group_get_number_of_polygons(g));
            for (int p : w)
                ASSERT_EQ(ZELMAR_polygon_is_in_group(p, g), 1);
            if (ZELMAR_group_get_father_group(g) == 0) {
                for (int p : w) {
                    ASSERT_TRUE(seen.insert(p).second) << "polygon " << p << " met twice";
                }
            }
        }
        for (int p = ZELMAR_polygon_get_first_polygon(); p; p = ZELMAR_polygon_get_next(p))
            ASSERT_EQ(seen.count(p), ZELMAR_polygon_get_group(p) != 0 ? 1u : 0u);
    }
};
} // namespace

TEST_F(RandomOps, NoCrashAndWalksAgreeWithCounts) {
    std::vector<std::function<void()>> ops = {
        [&] { groups.push_back(ZELMAR_group_create("g")); },
        [&] {
            const int p = ZELMAR_polygon_create();
            polygons.push_back(p);
            for (int i = 0, n = 3 + static_cast<int>(rng() % 3); i < n; ++i) {
                double v[6];
                vec(v, 6);
                if (const int pt = ZELMAR_polygon_add_point(p, v)) points.push_back(pt);
            }
            ZELMAR_polygon_set_group(p, pick(groups));
            ZELMAR_engine_add_polygon(p);
        },
        [&] { ZELMAR_group_set_father_group(pick(groups), pick(groups)); },
        [&] { ZELMAR_group_set_father_group(pick(groups), 0); },
        [&] { ZELMAR_polygon_set_group(pick(polygons), pick(groups)); },
        [&] { ZELMAR_group_disable(pick(groups), static_cast<int>(rng() % 2)); },
        [&] {
            if (rng() % 4 == 0) ZELMAR_group_delete_members(pick(groups));
        },
        [&] {
            if (rng() % 2 == 0) ZELMAR_polygon_delete(pick(polygons));
        },
        [&] { ZELMAR_polygon_delete_point(pick(polygons), pick(points)); },
        [&] {
            double v[6];
            vec(v, 6);
            points.push_back(ZELMAR_polygon_add_point_to_head(pick(polygons), v));
        },
        [&] {
            if (const int g = ZELMAR_group_duplicate_tree(pick(groups))) groups.push_back(g);
        },
        [&] {
            if (const int g = ZELMAR_group_create_copy_made_of_triangles(pick(groups), "t"))
                groups.push_back(g);
        },
        [&] { ZELMAR_group_ungroup(pick(groups)); },
        [&] {
            if (const int p = ZELMAR_polygon_duplicate(pick(polygons))) polygons.push_back(p);
        },
        [&] {
            double v[3];
            vec(v, 3);
            ZELMAR_group_move(pick(groups), v, static_cast<int>(rng() % 3));
        },
        [&] {
            double v[3];
            vec(v, 3);
            ZELMAR_group_rotate(pick(groups), v, static_cast<int>(rng() % 3));
        },
        [&] { ZELMAR_group_scale(pick(groups), static_cast<int>(rng() % 2), num(), num(), num()); },
        [&] {
            double v[3];
            vec(v, 3);
            ZELMAR_group_set_location(pick(groups), v);
        },
        [&] {
            double v[3];
            vec(v, 3);
            ZELMAR_group_set_rotate_reference_point(pick(groups), v);
        },
        [&] {
            double x[3], y[3], z[3];
            vec(x, 3);
            vec(y, 3);
            vec(z, 3);
            ZELMAR_group_rotate_to_match_axis_system(pick(groups), x, y, z);
        },
        [&] {
            double v[3];
            vec(v, 3);
            ZELMAR_point_set_xyz(pick(points), v);
        },
        [&] { ZELMAR_polygon_flip_visible_side(pick(polygons)); },
        [&] { ZELMAR_polygon_remove_redundant_points(pick(polygons)); },
        [&] {
            double out[6], plane[4];
            const int g = pick(groups), p = pick(polygons);
            ZELMAR_group_get_bounding_box(g, out);
            ZELMAR_group_get_dimensions(g, out);
            ZELMAR_group_get_location(g, out);
            ZELMAR_group_get_center_of_mass(g, out);
            ZELMAR_group_convert_point_to_world_space(g, out, out + 3);
            ZELMAR_polygon_get_plane(p, plane);
            ZELMAR_polygon_is_valid(p);
            ZELMAR_polygon_is_convex(p);
            ZELMAR_polygon_get_center(p, out);
            char name[256];
            ZELMAR_entity_get_name(pick(polygons), name, 255);
            ZELMAR_entity_get_name(pick(points), name, 255);
        },
        [&] {
            // Walk with removals of the polygons met, fetching next first.
            for (int p = ZELMAR_group_get_first_polygon(pick(groups)); p;) {
                const int next = ZELMAR_group_get_next_polygon(p);
                if (rng() % 3 == 0) ZELMAR_polygon_set_group(p, 0);
                p = next;
            }
        },
    };
    for (int i = 0; i < 20000; ++i) {
        if (i % 5000 == 0) rng.seed(static_cast<unsigned>(i + 1));
        ops[rng() % ops.size()]();
        if (i % 250 == 0) {
            checkWalks();
            if (HasFatalFailure()) return;
        }
    }
    checkWalks();
    // Every number the engine ever gave out stays distinct from what it gives now.
    const int fresh = ZELMAR_group_create("fresh");
    for (int h : groups)
        EXPECT_NE(h, fresh);
}
