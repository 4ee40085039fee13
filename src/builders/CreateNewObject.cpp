#include "CreateNewObject.h"

#include "Primitives.h"
#include "frame/Locale.h"

#include <cmath>

namespace vexil {

namespace {

constexpr int IdPlane = 351, IdBox = 403, IdSphere = 352, IdCylinder = 353, IdCone = 404, IdTorus = 354;
constexpr int LblDepth = 167, LblWidth = 168, LblHeight = 169, LblDepthSegs = 170, LblWidthSegs = 171,
              LblHeightSegs = 172, LblRadius = 603, LblSides = 605, LblRadius1 = 606, LblRadius2 = 607,
              LblSegments = 608;

// A world of more polygons than this from one click is a slip of the finger, not a model.
constexpr double MaxPolygons = 1000000;

double polygonCount(const CreateParams& p) {
    const double a = p.segs[0], b = p.segs[1], c = p.segs[2];
    switch (p.kind) {
    case PrimitiveKind::Plane:
        return a * b;
    case PrimitiveKind::Box:
        return 2 * (a * b + a * c + b * c);
    case PrimitiveKind::Sphere:
        return 2 * a * a;
    case PrimitiveKind::Cylinder:
    case PrimitiveKind::Cone:
        return a * b + 2;
    case PrimitiveKind::Torus:
        return a * b;
    }
    return 0;
}

} // namespace

int PrimitiveKindStringId(PrimitiveKind kind) {
    static const int ids[PrimitiveKindCount] = {IdPlane, IdBox, IdSphere, IdCylinder, IdCone, IdTorus};
    return ids[static_cast<int>(kind)];
}

int PrimitiveKindFromText(const QString& text) {
    for (int k = 0; k < PrimitiveKindCount; ++k)
        if (text == GetLocaleString(PrimitiveKindStringId(static_cast<PrimitiveKind>(k)))) return k;
    return -1;
}

const KindLayout& LayoutOf(PrimitiveKind kind) {
    static const KindLayout layouts[PrimitiveKindCount] = {
        {2, {LblDepth, LblWidth, 0}, 2, {LblDepthSegs, LblWidthSegs, 0}, {1, 1, 1}},
        {3, {LblDepth, LblWidth, LblHeight}, 3, {LblDepthSegs, LblWidthSegs, LblHeightSegs}, {1, 1, 1}},
        {1, {LblRadius, 0, 0}, 1, {LblSegments, 0, 0}, {2, 1, 1}},
        {2, {LblRadius, LblHeight, 0}, 2, {LblSides, LblHeightSegs, 0}, {3, 1, 1}},
        {3, {LblRadius1, LblRadius2, LblHeight}, 2, {LblSides, LblHeightSegs, 0}, {3, 1, 1}},
        {2, {LblRadius1, LblRadius2, 0}, 2, {LblSegments, LblSides, 0}, {3, 3, 1}},
    };
    return layouts[static_cast<int>(kind)];
}

CreateParams DefaultParams(PrimitiveKind kind) {
    CreateParams p;
    p.kind = kind;
    switch (kind) {
    case PrimitiveKind::Plane:
        p.dim = {200, 200, 0};
        p.segs = {1, 1, 1};
        break;
    case PrimitiveKind::Box:
        p.dim = {100, 100, 100};
        p.segs = {1, 1, 1};
        break;
    case PrimitiveKind::Sphere:
        p.dim = {50, 0, 0};
        p.segs = {8, 1, 1};
        break;
    case PrimitiveKind::Cylinder:
        p.dim = {50, 100, 0};
        p.segs = {16, 1, 1};
        break;
    case PrimitiveKind::Cone:
        p.dim = {50, 0, 100};
        p.segs = {16, 1, 1};
        break;
    case PrimitiveKind::Torus:
        p.dim = {60, 20, 0};
        p.segs = {24, 12, 1};
        break;
    }
    return p;
}

QString ValidateCreateParams(const CreateParams& p) {
    const KindLayout& l = LayoutOf(p.kind);
    const bool cone = p.kind == PrimitiveKind::Cone;
    for (int i = 0; i < l.dimCount; ++i) {
        const QString name = GetLocaleString(l.dimLabel[size_t(i)]);
        const double d = p.dim[size_t(i)];
        if (!std::isfinite(d)) return QStringLiteral("%1 must be a number.").arg(name);
        // A cone's radii may be 0 (a point at that end); every other size must be above 0.
        const bool radiusOfCone = cone && i < 2;
        if (radiusOfCone ? d < 0 : d <= 0)
            return radiusOfCone ? QStringLiteral("%1 must not be negative.").arg(name)
                                : QStringLiteral("%1 must be greater than 0.").arg(name);
    }
    if (cone && p.dim[0] == 0 && p.dim[1] == 0)
        return QStringLiteral("A cone needs a radius greater than 0.");
    for (int i = 0; i < l.segCount; ++i)
        if (p.segs[size_t(i)] < l.segMin[size_t(i)])
            return QStringLiteral("%1 must be at least %2.")
                .arg(GetLocaleString(l.segLabel[size_t(i)]))
                .arg(l.segMin[size_t(i)]);
    if (polygonCount(p) > MaxPolygons)
        return QStringLiteral("These values would make more than %1 polygons.").arg(MaxPolygons, 0, 'f', 0);
    return {};
}

int CreatePrimitive(const CreateParams& p, const Point3& location, int father) {
    const auto& d = p.dim;
    const auto& s = p.segs;
    switch (p.kind) {
    case PrimitiveKind::Plane:
        return CreatePlane().Create(d[0], d[1], s[0], s[1], location, father);
    case PrimitiveKind::Box:
        return CreateBox().Create(d[0], d[1], d[2], s[0], s[1], s[2], location, father);
    case PrimitiveKind::Sphere:
        return CreateSphere().Create(d[0], s[0], location, father);
    case PrimitiveKind::Cylinder:
        return CreateCylinder().Create(d[0], d[1], s[0], s[1], location, father);
    case PrimitiveKind::Cone:
        return CreateCone().Create(d[0], d[1], d[2], s[0], s[1], location, father);
    case PrimitiveKind::Torus:
        return CreateTorus().Create(d[0], d[1], s[0], s[1], location, father);
    }
    return 0;
}

} // namespace vexil
