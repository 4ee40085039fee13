// CreateCylinder and CreateCone: a side walked round the circle in height segments, and a cap at each end.
#include "Primitives.h"

#include <cmath>

namespace vexil {

namespace {

// The side of a truncated cone about z, radius1 at the bottom (z = -height / 2) and radius2 at the top.
// Corners go lower-left, lower-right, upper-right, upper-left seen from outside; each corner's normal is
// its radial direction tilted by the slope of the side.
void RoundSide(int group, double radius1, double radius2, double height, int sides, int segs,
               const Point3& loc) {
    const double step = primitive::FullCircle / sides;
    const double slope = std::atan((radius1 - radius2) / height);
    const double across = std::cos(slope), up = std::sin(slope);
    auto corner = [&](int i, int j) {
        const double angle = (i == sides) ? 0.0 : i * step; // the last side closes on the first corner
        const double c = primitive::RoundedCos(angle), s = primitive::RoundedSin(angle);
        const double t = double(j) / segs;
        const double r = radius1 + (radius2 - radius1) * t;
        Corner k;
        k.xyz = {loc[0] + r * c, loc[1] + r * s, loc[2] - height / 2 + t * height};
        k.u = double(i) / sides;
        k.v = t;
        k.normal = {c * across, s * across, up};
        return k;
    };
    for (int j = 0; j < segs; ++j)
        for (int i = 0; i < sides; ++i)
            primitive::AddPolygon(group,
                                  {corner(i, j), corner(i + 1, j), corner(i + 1, j + 1), corner(i, j + 1)});
}

// One polygon of `sides` points at height z; facing +z when `up`, else -z. The texture is the disc's
// own plan: coordinate / (2 radius) + 0.5.
void Cap(int group, double radius, double z, int sides, bool up, const Point3& loc) {
    if (radius <= 0) return;
    const double step = primitive::FullCircle / sides;
    std::vector<Corner> ring(static_cast<size_t>(sides));
    for (int i = 0; i < sides; ++i) {
        const double c = primitive::RoundedCos(i * step), s = primitive::RoundedSin(i * step);
        Corner& k = ring[static_cast<size_t>(up ? i : (sides - i) % sides)];
        k.xyz = {loc[0] + radius * c, loc[1] + radius * s, loc[2] + z};
        k.u = radius * c / (2 * radius) + 0.5;
        k.v = radius * s / (2 * radius) + 0.5;
        k.normal = {0, 0, up ? 1.0 : -1.0};
    }
    primitive::AddPolygon(group, ring);
}

int RoundSolid(const char* kind, double radius1, double radius2, double height, int sides, int segs,
               const Point3& loc, int father) {
    if (!primitive::CheckSides(sides)) return 0;
    const int group = primitive::BeginGroup(primitive::NewGroupName(kind), father);
    RoundSide(group, radius1, radius2, height, sides, segs, loc);
    Cap(group, radius1, -height / 2, sides, false, loc);
    Cap(group, radius2, height / 2, sides, true, loc);
    primitive::NameFaces(group);
    primitive::SetRandomColour(group);
    return group;
}

} // namespace

int CreateCylinder::Create(double radius, double height, int sides, int heightSegs, const Point3& location,
                           int father) {
    return RoundSolid("Cylinder", radius, radius, height, sides, heightSegs, location, father);
}

int CreateCone::Create(double radius1, double radius2, double height, int sides, int heightSegs,
                       const Point3& location, int father) {
    return RoundSolid("Cone", radius1, radius2, height, sides, heightSegs, location, father);
}

} // namespace vexil
