// The create panel's parameters and the dispatch from the chosen kind to its builder.
#pragma once
#include "PrimitiveBuilder.h"

#include <QString>
#include <array>

namespace vexil {

// In the order of the entries of cmbNewObjType.
enum class PrimitiveKind { Plane = 0, Box = 1, Sphere = 2, Cylinder = 3, Cone = 4, Torus = 5 };
constexpr int PrimitiveKindCount = 6;

// The UI string of a kind's name as cmbNewObjType shows it ("PLANE", "BOX", ...).
int PrimitiveKindStringId(PrimitiveKind kind);
// The kind whose name (in the current language) is `text`, compared in the order plane, box, sphere,
// cylinder, cone, torus; -1 when none matches.
int PrimitiveKindFromText(const QString& text);

// What the panel holds: up to three dimensions and three segment counts, read as the kind needs them.
//   plane    depth, width              depth segs, width segs
//   box      depth, width, height      depth segs, width segs, height segs
//   sphere   radius                    segments
//   cylinder radius, height            sides, height segs
//   cone     radius1, radius2, height  sides, height segs
//   torus    radius1, radius2          segments round the ring, sides of the tube
struct CreateParams {
    PrimitiveKind kind = PrimitiveKind::Box;
    std::array<double, 3> dim{100, 100, 100};
    std::array<int, 3> segs{1, 1, 1};
};

// How many dimensions and segment counts a kind reads, their labels (UI string ids), and the smallest
// segment count each takes.
struct KindLayout {
    int dimCount;
    std::array<int, 3> dimLabel;
    int segCount;
    std::array<int, 3> segLabel;
    std::array<int, 3> segMin;
};
const KindLayout& LayoutOf(PrimitiveKind kind);
// The values a kind starts with in the panel.
CreateParams DefaultParams(PrimitiveKind kind);

// An explanation when the values cannot make the kind (a size not above 0, a count below its minimum,
// not a number); empty when they can. More than 100 sides is not refused here: the builder says so.
QString ValidateCreateParams(const CreateParams& p);

// Runs the builder of the kind; 0 when it made nothing (the cylinder's and cone's side limit).
int CreatePrimitive(const CreateParams& p, const Point3& location, int father);

} // namespace vexil
