#include "PrimitiveBuilder.h"

#include "frame/Dialogs.h"
#include "engine/EntityNaming.h"

#include <QString>
#include <cmath>
#include <random>
#include <zelmar/zelmar.h>

namespace vexil::primitive {

namespace {
std::mt19937& generator() {
    static std::mt19937 g{std::random_device{}()};
    return g;
}

double roundTo(double v, int decimals) {
    const double scale = std::pow(10.0, decimals);
    const double r = std::round(v * scale) / scale;
    return r == 0.0 ? 0.0 : r; // no negative zero in the geometry
}
} // namespace

std::string NewGroupName(const std::string& kind) {
    for (int counter = 1;; ++counter) {
        std::string candidate = kind + PadCounter(counter);
        if (ZELMAR_group_get_using_name(candidate.c_str()) == 0) return candidate;
    }
}

int BeginGroup(const std::string& name, int father) {
    const int group = ZELMAR_group_create(name.c_str());
    ZELMAR_group_set_father_group(group, father);
    return group;
}

int AddPolygon(int group, const std::vector<Corner>& corners) {
    const int polygon = ZELMAR_polygon_create();
    // The builders walk corners counter-clockwise seen from outside; the engine's front is the side
    // from which a ring runs clockwise, so the ring takes them backwards.
    for (auto it = corners.rbegin(); it != corners.rend(); ++it) {
        const Corner& c = *it;
        const double vertex[6] = {c.xyz[0], c.xyz[1], c.xyz[2], c.u, c.v, 100.0};
        const int point = ZELMAR_polygon_add_point(polygon, vertex);
        ZELMAR_point_set_normal(point, c.normal.data());
    }
    ZELMAR_polygon_set_group(polygon, group);
    ZELMAR_engine_add_polygon(polygon);
    return polygon;
}

void NameFaces(int group) {
    const std::string stem = EntityName(group) + "_Face";
    int counter = 0;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        ZELMAR_polygon_set_name(p, (stem + PadCounter(++counter)).c_str());
}

void SetRandomColour(int group) {
    std::uniform_real_distribution<double> rnd(0.0, 1.0);
    const int r = static_cast<int>(std::lround(rnd(generator()) * 255.0));
    const int g = static_cast<int>(std::lround(rnd(generator()) * 255.0));
    const int b = static_cast<int>(std::lround(rnd(generator()) * 255.0));
    ZELMAR_group_set_color(group, r, g, b);
}

void SeedRandomColour(unsigned seed) {
    generator().seed(seed);
}

double RoundedCos(double angle) {
    return roundTo(std::cos(angle), 10);
}
double RoundedSin(double angle) {
    return roundTo(std::sin(angle), 10);
}

bool CheckSides(int sides) {
    if (sides <= MaxSides) return true;
    dialogs().msgBox(QStringLiteral("Only Cylinders with a max of 100 sides are supported."));
    return false;
}

} // namespace vexil::primitive
