// CreateSphere and CreateTorus: cells of four points over two nested walks of angles.
#include "Primitives.h"

namespace vexil {

int CreateSphere::Create(double radius, int segments, const Point3& location, int father) {
    const int group = primitive::BeginGroup(primitive::NewGroupName("Sphere"), father);
    const double step = primitive::HalfCircle / segments;
    const double uStep = 0.5 / segments, vStep = 1.0 / segments;
    // Polar angle a from the +z pole, azimuth b about z; rows top to bottom, columns once round.
    auto corner = [&](int row, int col) {
        const double a = row * step, b = (col == 2 * segments) ? 0.0 : col * step;
        const double sa = primitive::RoundedSin(a), ca = primitive::RoundedCos(a);
        const double sb = primitive::RoundedSin(b), cb = primitive::RoundedCos(b);
        Corner k;
        k.normal = {sa * cb, sa * sb, ca};
        k.xyz = {location[0] + radius * k.normal[0], location[1] + radius * k.normal[1],
                 location[2] + radius * k.normal[2]};
        k.u = col * uStep;
        k.v = row * vStep;
        return k;
    };
    for (int row = 1; row <= segments; ++row)
        for (int col = 1; col <= 2 * segments; ++col)
            primitive::AddPolygon(group, {corner(row - 1, col - 1), corner(row, col - 1), corner(row, col),
                                          corner(row - 1, col)});
    primitive::NameFaces(group);
    primitive::SetRandomColour(group);
    return group;
}

int CreateTorus::Create(double radius1, double radius2, int ringSegs, int tubeSegs, const Point3& location,
                        int father) {
    const int group = primitive::BeginGroup(primitive::NewGroupName("Torus"), father);
    const double ringStep = primitive::FullCircle / ringSegs, tubeStep = primitive::FullCircle / tubeSegs;
    // Ring angle u about z, tube angle v about the tube's centre line.
    auto corner = [&](int i, int j) {
        const double u = (i == ringSegs) ? 0.0 : i * ringStep, v = (j == tubeSegs) ? 0.0 : j * tubeStep;
        const double cu = primitive::RoundedCos(u), su = primitive::RoundedSin(u);
        const double cv = primitive::RoundedCos(v), sv = primitive::RoundedSin(v);
        const double r = radius1 + radius2 * cv;
        Corner k;
        k.xyz = {location[0] + r * cu, location[1] + r * su, location[2] + radius2 * sv};
        k.normal = {cv * cu, cv * su, sv};
        k.u = double(i) / ringSegs;
        k.v = double(j) / tubeSegs;
        return k;
    };
    for (int i = 0; i < ringSegs; ++i)
        for (int j = 0; j < tubeSegs; ++j)
            primitive::AddPolygon(group,
                                  {corner(i, j), corner(i + 1, j), corner(i + 1, j + 1), corner(i, j + 1)});
    primitive::NameFaces(group);
    primitive::SetRandomColour(group);
    return group;
}

} // namespace vexil
