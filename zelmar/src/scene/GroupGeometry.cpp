#include "scene/GroupGeometry.h"

#include "scene/World.h"

#include <algorithm>
#include <cmath>

namespace zelmar {

M3 axisMatrix(const Group& g) {
    return M3::fromRows(V3(g.axis[0]), V3(g.axis[1]), V3(g.axis[2]));
}

namespace {
template <class F> void forEachGroup(Group& root, F f) {
    for (Group* g = &root; g; g = World::nextInSubtree(g, &root))
        f(*g);
}
template <class F> void forEachGroup(const Group& root, F f) {
    for (const Group* g = &root; g; g = World::nextInSubtree(g, &root))
        f(*g);
}

void refresh(const Group& root) {
    const World& w = world();
    if (root.boundsGeneration == w.generation) return;
    const M3 a = axisMatrix(root);
    bool empty = true;
    V3 wlo, whi, olo, ohi;
    forEachGroup(root, [&](const Group& g) {
        for (const Polygon* p = g.firstPolygon; p; p = p->nextInGroup)
            for (const PointData& d : p->points) {
                const V3 q(d.xyz);
                const V3 o = a * q;
                if (empty) {
                    wlo = whi = q;
                    olo = ohi = o;
                    empty = false;
                    continue;
                }
                for (int i = 0; i < 3; ++i) {
                    wlo[i] = std::min(wlo[i], q[i]);
                    whi[i] = std::max(whi[i], q[i]);
                    olo[i] = std::min(olo[i], o[i]);
                    ohi[i] = std::max(ohi[i], o[i]);
                }
            }
    });
    root.boundsEmpty = empty;
    wlo.store(root.worldMin);
    whi.store(root.worldMax);
    olo.store(root.orientedMin);
    ohi.store(root.orientedMax);
    root.boundsGeneration = w.generation;
}

void changedAll(Group& root) {
    World& w = world();
    forEachGroup(root, [&](Group& g) {
        ++g.version;
        for (Polygon* p = g.firstPolygon; p; p = p->nextInGroup)
            ++p->version;
    });
    w.touch();
}

V3 transformedNormal(const M3& cof, const double* n) {
    const V3 v(n);
    const double len = length(v);
    if (len == 0) return v;
    const V3 t = cof * v;
    const double tl = length(t);
    return tl > 0 ? t * (len / tl) : V3{};
}

// Gram-Schmidt from x and y; false when they are parallel or zero.
bool orthonormal(V3 x, V3 y, V3& ox, V3& oy, V3& oz) {
    ox = normalized(x);
    if (length(ox) == 0) return false;
    oy = normalized(y - ox * dot(ox, y));
    if (length(oy) < 0.5) return false;
    oz = cross(ox, oy);
    return true;
}
} // namespace

bool groupHasPoints(const Group& g) {
    refresh(g);
    return !g.boundsEmpty;
}

V3 groupLocation(const Group& g) {
    refresh(g);
    if (g.boundsEmpty) return V3(g.emptyLocation);
    const V3 c = (V3(g.orientedMin) + V3(g.orientedMax)) * 0.5;
    return axisMatrix(g).transposed() * c;
}

V3 groupDimensions(const Group& g) {
    refresh(g);
    if (g.boundsEmpty) return {};
    return V3(g.orientedMax) - V3(g.orientedMin);
}

void groupBoundingBox(const Group& g, double box[6]) {
    refresh(g);
    if (g.boundsEmpty) {
        for (int i = 0; i < 6; ++i)
            box[i] = g.emptyLocation[i % 3];
        return;
    }
    for (int i = 0; i < 3; ++i) {
        box[i] = g.worldMin[i];
        box[i + 3] = g.worldMax[i];
    }
}

V3 groupCenterOfMass(const Group& g) {
    V3 sum;
    double n = 0;
    forEachGroup(g, [&](const Group& x) {
        for (const Polygon* p = x.firstPolygon; p; p = p->nextInGroup)
            for (const PointData& d : p->points) {
                sum = sum + V3(d.xyz);
                n += 1;
            }
    });
    return n > 0 ? sum * (1.0 / n) : groupLocation(g);
}

V3 groupReferencePoint(const Group& g) {
    return g.referencePointSet ? V3(g.referencePoint) : groupLocation(g);
}

V3 groupToWorld(const Group& g, V3 p) {
    const V3 l = groupLocation(g);
    return l + axisMatrix(g).transposed() * (p - l);
}

V3 worldToGroup(const Group& g, V3 p) {
    const V3 l = groupLocation(g);
    return l + axisMatrix(g) * (p - l);
}

void moveGroup(Group& root, V3 d) {
    forEachGroup(root, [&](Group& g) {
        for (Polygon* p = g.firstPolygon; p; p = p->nextInGroup)
            for (PointData& pt : p->points) {
                pt.xyz[0] += d.x;
                pt.xyz[1] += d.y;
                pt.xyz[2] += d.z;
            }
        if (g.referencePointSet) (V3(g.referencePoint) + d).store(g.referencePoint);
        (V3(g.emptyLocation) + d).store(g.emptyLocation);
    });
    changedAll(root);
}

void transformPolygon(Polygon& p, const M3& m, V3 pivot, V3 shift) {
    const M3 cof = m.cofactor();
    for (PointData& pt : p.points) {
        (pivot + m * (V3(pt.xyz) - pivot) + shift).store(pt.xyz);
        transformedNormal(cof, pt.normal).store(pt.normal);
    }
}

void transformGroup(Group& root, const M3& m, V3 pivot, V3 shift, bool turnAxes) {
    forEachGroup(root, [&](Group& g) {
        for (Polygon* p = g.firstPolygon; p; p = p->nextInGroup)
            transformPolygon(*p, m, pivot, shift);
        if (g.referencePointSet) (pivot + m * (V3(g.referencePoint) - pivot) + shift).store(g.referencePoint);
        (pivot + m * (V3(g.emptyLocation) - pivot) + shift).store(g.emptyLocation);
        if (turnAxes) {
            V3 x, y, z;
            if (orthonormal(m * V3(g.axis[0]), m * V3(g.axis[1]), x, y, z)) {
                x.store(g.axis[0]);
                y.store(g.axis[1]);
                z.store(g.axis[2]);
            }
        }
    });
    changedAll(root);
}

void rotateGroup(Group& g, const double degrees[3], int space) {
    M3 r = rotationXYZ(degrees);
    if (space == 1) {
        const M3 a = axisMatrix(g);
        r = a.transposed() * r * a;
    }
    transformGroup(g, r, groupReferencePoint(g), {}, true);
}

void scaleGroup(Group& g, int space, V3 f) {
    M3 s;
    s.m[0][0] = f.x;
    s.m[1][1] = f.y;
    s.m[2][2] = f.z;
    if (space == 1) {
        const M3 a = axisMatrix(g);
        s = a.transposed() * s * a;
    }
    transformGroup(g, s, groupReferencePoint(g), {}, false);
}

bool rotateGroupToAxes(Group& g, V3 x, V3 y, V3 z) {
    V3 ox, oy, oz;
    if (!orthonormal(x, y, ox, oy, oz)) {
        // x and y unusable: try z with whichever of them is usable.
        if (orthonormal(z, x, oz, ox, oy)) {
        } else if (orthonormal(y, z, oy, oz, ox)) {
        } else {
            return false;
        }
    }
    const M3 target = M3::fromRows(ox, oy, oz);
    const M3 m = target.transposed() * axisMatrix(g);
    transformGroup(g, m, groupReferencePoint(g), {}, false);
    ox.store(g.axis[0]);
    oy.store(g.axis[1]);
    oz.store(g.axis[2]);
    // Children turned by m; their axes too.
    for (Group* c = g.firstChild ? g.firstChild : nullptr; c; c = World::nextInSubtree(c, &g)) {
        V3 cx, cy, cz;
        if (orthonormal(m * V3(c->axis[0]), m * V3(c->axis[1]), cx, cy, cz)) {
            cx.store(c->axis[0]);
            cy.store(c->axis[1]);
            cz.store(c->axis[2]);
        }
    }
    return true;
}

} // namespace zelmar
