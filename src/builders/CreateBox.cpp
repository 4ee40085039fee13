// CreateBox and CreatePlane: grids of four-point polygons on flat faces.
#include "Primitives.h"

namespace vexil {

namespace {

// A grid of segsA x segsB cells on the face whose in-plane axes are a and b, at `offset` along the third
// axis k, facing `side` (+1 or -1) along k. Texture coordinates span the face once and read the right way
// round from outside.
void FlatGrid(int group, int a, int b, int k, int side, double offset, const Point3& dim, const Point3& loc,
              int segsA, int segsB) {
    // (a0,b0) (a1,b0) (a1,b1) (a0,b1) runs counter-clockwise about e_a x e_b; reversed when that is the
    // inside of the face.
    const Point3 ea{a == 0 ? 1.0 : 0.0, a == 1 ? 1.0 : 0.0, a == 2 ? 1.0 : 0.0};
    const Point3 eb{b == 0 ? 1.0 : 0.0, b == 1 ? 1.0 : 0.0, b == 2 ? 1.0 : 0.0};
    const double crossK = (k == 0)   ? ea[1] * eb[2] - ea[2] * eb[1]
                          : (k == 1) ? ea[2] * eb[0] - ea[0] * eb[2]
                                     : ea[0] * eb[1] - ea[1] * eb[0];
    const bool reversed = crossK * side < 0;
    Point3 normal{0, 0, 0};
    normal[size_t(k)] = side;
    const double stepA = dim[size_t(a)] / segsA, stepB = dim[size_t(b)] / segsB;
    const double texA = 1.0 / segsA, texB = 1.0 / segsB;
    for (int j = 0; j < segsB; ++j) {
        for (int i = 0; i < segsA; ++i) {
            auto corner = [&](int di, int dj) {
                Corner c;
                c.xyz[size_t(a)] = loc[size_t(a)] - dim[size_t(a)] / 2 + (i + di) * stepA;
                c.xyz[size_t(b)] = loc[size_t(b)] - dim[size_t(b)] / 2 + (j + dj) * stepB;
                c.xyz[size_t(k)] = loc[size_t(k)] + offset;
                const double fa = (i + di) * texA;
                c.u = reversed ? 1.0 - fa : fa;
                c.v = (j + dj) * texB;
                c.normal = normal;
                return c;
            };
            if (!reversed)
                primitive::AddPolygon(group, {corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1)});
            else
                primitive::AddPolygon(group, {corner(0, 0), corner(0, 1), corner(1, 1), corner(1, 0)});
        }
    }
}

} // namespace

int CreatePlane::Create(double depth, double width, int depthSegs, int widthSegs, const Point3& location,
                        int father) {
    const int group = primitive::BeginGroup(primitive::NewGroupName("Plane"), father);
    FlatGrid(group, 0, 1, 2, +1, 0.0, {depth, width, 0.0}, location, depthSegs, widthSegs);
    primitive::NameFaces(group);
    primitive::SetRandomColour(group);
    return group;
}

int CreateBox::Create(double depth, double width, double height, int depthSegs, int widthSegs, int heightSegs,
                      const Point3& location, int father) {
    m_group = primitive::BeginGroup(primitive::NewGroupName("Box"), father);
    m_dim = {depth, width, height};
    m_segs = {depthSegs, widthSegs, heightSegs};
    m_loc = location;
    for (int side : {+1, -1}) {
        FacesAcrossX(side);
        FacesAcrossY(side);
        FacesAcrossZ(side);
    }
    primitive::NameFaces(m_group);
    primitive::SetRandomColour(m_group);
    return m_group;
}

// Side faces keep height as their second axis, so that their textures stand upright.
void CreateBox::FacesAcrossX(int side) {
    Face(0, side, 1, 2);
}
void CreateBox::FacesAcrossY(int side) {
    Face(1, side, 0, 2);
}
void CreateBox::FacesAcrossZ(int side) {
    Face(2, side, 0, 1);
}

void CreateBox::Face(int axis, int side, int a, int b) {
    FlatGrid(m_group, a, b, axis, side, side * m_dim[size_t(axis)] / 2, m_dim, m_loc, m_segs[size_t(a)],
             m_segs[size_t(b)]);
}

} // namespace vexil
