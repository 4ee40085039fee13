#include "EntityKinds.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

EntityKindOps defaults(int kind) {
    EntityKindOps ops;
    switch (kind) {
    case 2:
        ops.DeletePermanently = [](int h) { ZELMAR_camera_delete(h); };
        ops.GetLocation = [](int h) {
            std::array<double, 3> l{};
            ZELMAR_camera_get_location(h, l.data());
            return l;
        };
        ops.SetLocation = [](int h, const std::array<double, 3>& l) {
            ZELMAR_camera_set_location(h, l.data());
        };
        ops.Rotate = [](int h, const std::array<double, 3>& d) {
            ZELMAR_camera_rotate_x(h, d[0]);
            ZELMAR_camera_rotate_y(h, d[1]);
            ZELMAR_camera_rotate_z(h, d[2]);
        };
        break;
    case 3:
        ops.DeletePermanently = [](int h) { ZELMAR_track_delete(h); };
        // A track's location is the mean of its points.
        ops.GetLocation = [](int h) {
            std::array<double, 3> c{};
            const int n = ZELMAR_track_get_number_of_points(h);
            for (int i = 0; i < n; ++i) {
                double p[3] = {0, 0, 0};
                ZELMAR_track_get_point(h, i, p);
                for (int k = 0; k < 3; ++k)
                    c[k] += p[k] / n;
            }
            return c;
        };
        break;
    case 4:
        ops.DeletePermanently = [](int h) { ZELMAR_light_delete(h); };
        ops.GetLocation = [](int h) {
            std::array<double, 3> l{};
            ZELMAR_light_get_location(h, l.data());
            return l;
        };
        ops.SetLocation = [](int h, const std::array<double, 3>& l) {
            ZELMAR_light_set_location(h, l.data());
        };
        break;
    case 5:
        ops.DeletePermanently = [](int h) { ZELMAR_background_delete(h); };
        break;
    default:
        break;
    }
    return ops;
}

std::array<EntityKindOps, 7>& table() {
    static std::array<EntityKindOps, 7> t = [] {
        std::array<EntityKindOps, 7> d;
        for (int k = 2; k <= 5; ++k)
            d[static_cast<size_t>(k)] = defaults(k);
        return d;
    }();
    return t;
}

} // namespace

EntityKindOps& KindOps(int kind) {
    static EntityKindOps none;
    if (kind < 2 || kind > 5) {
        none = EntityKindOps();
        return none;
    }
    return table()[static_cast<size_t>(kind)];
}

void ResetKindOps(int kind) {
    if (kind >= 2 && kind <= 5) table()[static_cast<size_t>(kind)] = defaults(kind);
}

} // namespace vexil
