// The six primitive builders. Each makes one new group of polygons under a father group, centred on a
// location, and answers the group's handle (0 when nothing was made). The group is named after its kind
// with the first free counter ("Box01"), its faces after the group ("Box01_Face01"), and it gets a random
// colour. Every face is a polygon whose front looks outward (its points run clockwise seen from
// outside), with outward normals at its corners.
//
// Axes: x is depth, y is width, z is height; round shapes turn about z.
#pragma once
#include "PrimitiveBuilder.h"

namespace vexil {

class CreatePlane {
  public:
    // A grid of four-point polygons in the xy plane, facing +z.
    int Create(double depth, double width, int depthSegs, int widthSegs, const Point3& location, int father);
};

class CreateBox {
  public:
    int Create(double depth, double width, double height, int depthSegs, int widthSegs, int heightSegs,
               const Point3& location, int father);

  private:
    // Each pair of opposite faces, built at plus and minus half the dimension across it.
    void FacesAcrossX(int side);
    void FacesAcrossY(int side);
    void FacesAcrossZ(int side);
    void Face(int axis, int side, int a, int b); // a, b: the in-plane axes

    int m_group = 0;
    Point3 m_dim{}, m_loc{};
    std::array<int, 3> m_segs{};
};

class CreateCylinder {
  public:
    // More than 100 sides: a message, and nothing is made.
    int Create(double radius, double height, int sides, int heightSegs, const Point3& location, int father);
};

class CreateCone {
  public:
    // radius1 at the bottom, radius2 at the top; a radius of 0 gives no cap at that end. More than 100
    // sides: a message, and nothing is made.
    int Create(double radius1, double radius2, double height, int sides, int heightSegs,
               const Point3& location, int father);
};

class CreateSphere {
  public:
    // `segments` rows from pole to pole, twice as many columns round; the pole cells are four-point
    // polygons with two corners on the pole.
    int Create(double radius, int segments, const Point3& location, int father);
};

class CreateTorus {
  public:
    // radius1 of the ring, radius2 of the tube; ringSegs cells round the ring, tubeSegs round the tube.
    int Create(double radius1, double radius2, int ringSegs, int tubeSegs, const Point3& location,
               int father);
};

} // namespace vexil
