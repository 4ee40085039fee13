#include "scene/TreeOps.h"

#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <array>
#include <vector>

namespace zelmar {

namespace {
// Everything of a polygon but its identity, links and points.
void copyAttributes(const Polygon& src, Polygon& dst) {
    dst.name = src.name;
    dst.fill = src.fill;
    dst.orientation = src.orientation;
    dst.disabled = src.disabled;
    dst.collisional = src.collisional;
    dst.releaseSaveFlag = src.releaseSaveFlag;
    dst.addedToWorld = src.addedToWorld;
    dst.ownData = src.ownData;
}

// Everything of a group but its identity, links, name and caches.
void copyGroupAttributes(const Group& src, Group& dst) {
    dst.disabled = src.disabled;
    dst.loadAsDisabled = src.loadAsDisabled;
    dst.isStatic = src.isStatic;
    for (int i = 0; i < 3; ++i) {
        dst.referencePoint[i] = src.referencePoint[i];
        dst.emptyLocation[i] = src.emptyLocation[i];
        dst.chaseOffset[i] = src.chaseOffset[i];
        dst.trackOffset[i] = src.trackOffset[i];
        dst.physicsRotation[i] = src.physicsRotation[i];
        dst.physicsForce[i] = src.physicsForce[i];
        for (int j = 0; j < 3; ++j)
            dst.axis[i][j] = src.axis[i][j];
    }
    dst.referencePointSet = src.referencePointSet;
    dst.chaseType = src.chaseType;
    dst.chasedName = src.chasedName;
    dst.chaseDistance = src.chaseDistance;
    dst.chaseSoftness = src.chaseSoftness;
    dst.trackName = src.trackName;
    dst.speed = src.speed;
    dst.absoluteSpeed = src.absoluteSpeed;
    dst.physicsFriction = src.physicsFriction;
    dst.physicsElasticity = src.physicsElasticity;
    dst.physicsMaxSpeed = src.physicsMaxSpeed;
    dst.controlNumber = src.controlNumber;
    dst.fallingFromTrack = src.fallingFromTrack;
    dst.fallingHeight = src.fallingHeight;
}
} // namespace

Polygon* copyPolygon(const Polygon& src, Group* into) {
    World& w = world();
    Polygon* p = w.createPolygon();
    copyAttributes(src, *p);
    p->points.reserve(src.points.size());
    for (const PointData& d : src.points)
        w.addPoint(*p, d);
    if (into) w.setPolygonGroup(*p, into);
    w.changed(*p);
    return p;
}

Group* duplicateTree(const Group& src) {
    World& w = world();
    // Pairs of (source, copy) so that children find their copied father; iterative, since
    // file-made trees can be deep.
    std::vector<std::pair<const Group*, Group*>> stack;
    Group* root = w.createGroup(src.name);
    copyGroupAttributes(src, *root);
    if (src.father) w.setFather(*root, src.father);
    stack.push_back({&src, root});
    while (!stack.empty()) {
        auto [from, to] = stack.back();
        stack.pop_back();
        for (const Polygon* p = from->firstPolygon; p; p = p->nextInGroup)
            copyPolygon(*p, to);
        for (const Group* c = from->firstChild; c; c = c->nextSibling) {
            Group* cc = w.createGroup(c->name);
            copyGroupAttributes(*c, *cc);
            w.setFather(*cc, to);
            stack.push_back({c, cc});
        }
    }
    w.touch();
    return root;
}

void ungroup(Group& g) {
    World& w = world();
    while (Group* c = g.firstChild)
        w.setFather(*c, g.father);
}

Group* triangulatedCopy(const Group& src, const std::string& name) {
    World& w = world();
    Group* out = w.createGroup(name);
    copyGroupAttributes(src, *out);
    out->disabled = false;
    if (src.father) w.setFather(*out, src.father);
    // Every triangle first, so that the world can take room for all of them at once (the pages of a large
    // copy are then mapped ahead of the creation, and each ring holds exactly three points).
    struct Source {
        const Polygon* polygon;
        std::vector<std::array<uint32_t, 3>> triangles;
    };
    std::vector<Source> sources;
    size_t count = 0;
    for (const Group* g = &src; g; g = World::nextInSubtree(g, &src))
        for (const Polygon* p = g->firstPolygon; p; p = p->nextInGroup) {
            auto tris = triangulate(*p);
            if (tris.empty()) continue;
            count += tris.size();
            sources.push_back({p, std::move(tris)});
        }
    size_t rings[World::kPooledRing + 1] = {};
    rings[3] = count;
    if (count > 0) {
        w.reserveHandles(4 * count);
        w.reservePolygons(count, rings);
    }
    for (const Source& s : sources) {
        Polygon style;
        copyAttributes(*s.polygon, style);
        for (const auto& tri : s.triangles) {
            Polygon* t = w.createPolygonFrom(style, 3);
            t->name = style.name;
            t->addedToWorld = true;
            for (uint32_t i : tri)
                w.addPoint(*t, s.polygon->points[i]);
            w.appendToGroup(*t, *out);
        }
    }
    w.endBulk();
    return out;
}

} // namespace zelmar
