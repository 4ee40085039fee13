// What the six primitive builders share: the naming of a new group and of its faces, the making of one
// polygon from its corners, and the random colour of the result.
#pragma once
#include <array>
#include <string>
#include <vector>

namespace vexil {

using Point3 = std::array<double, 3>;

// One corner of a polygon handed to the engine: location, texture coordinates, normal.
struct Corner {
    Point3 xyz{};
    double u = 0, v = 0;
    Point3 normal{};
};

namespace primitive {

// The largest number of sides a cylinder or a cone may have.
constexpr int MaxSides = 100;
// The full circle as the builders walk it.
constexpr double FullCircle = 6.28318530717958;
constexpr double HalfCircle = 3.14159265358979;

// `kind` followed by a counter of at least two digits, the first that no group has ("Box01").
std::string NewGroupName(const std::string& kind);
// A group of that name under `father`.
int BeginGroup(const std::string& name, int father);
// One polygon of the group from corners given counter-clockwise seen from outside (brightness 100),
// each with its normal, added to the world. The ring stores them in reverse, so that its front (the side
// it runs clockwise from) looks outward.
int AddPolygon(int group, const std::vector<Corner>& corners);
// Every polygon of the group gets the group's name, "_Face" and its running number ("Box01_Face01").
void NameFaces(int group);
// Three random bytes as the group's colour.
void SetRandomColour(int group);
// The generator behind SetRandomColour (tests seed it for repeatable colours).
void SeedRandomColour(unsigned seed);
// cos and sin of a step of the circle, rounded so that the quarter turns are exact.
double RoundedCos(double angle);
double RoundedSin(double angle);
// The message shown when a cylinder or a cone would have more sides than allowed; false when refused.
bool CheckSides(int sides);

} // namespace primitive
} // namespace vexil
