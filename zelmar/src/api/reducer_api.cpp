// The reducing operations. The engine has no simplifier of its own: the program installs one
// (engine_set_reducer), and these operations cut the polygons into triangles, hand them to it
// and put its result in place. docs/engine-api.md, "Reducing polygon counts".
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/PolygonGeometry.h"
#include "scene/TreeOps.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <cmath>
#include <string>
#include <vector>

using namespace zelmar;
using namespace zelmar::api;

namespace {

ZELMAR_reducer g_reducer = nullptr;
void* g_context = nullptr;

bool reducerReady(const char* op) {
    if (g_reducer) return true;
    setLastError(std::string(op) + ": no reducer is installed");
    return false;
}

bool percentArg(double percent, const char* op) {
    if (std::isfinite(percent) && percent >= 0.0 && percent <= 100.0) return true;
    setLastError(std::string(op) + ": the percentage must be from 0 to 100");
    return false;
}

// Triangles wanted after removing `percent` of `count`: the nearest integer, halves to even.
int targetFor(int64_t count, double percent) {
    return static_cast<int>(std::nearbyint(static_cast<double>(count) * (100.0 - percent) / 100.0));
}

// A new fatherless group of the triangles cut from g's own polygons (each keeps its fill).
Group* ownTriangles(const Group& g) {
    World& w = world();
    Group* out = w.createGroup("reduce_input");
    for (const Polygon* p = g.firstPolygon; p; p = p->nextInGroup)
        for (const auto& tri : triangulate(*p)) {
            Polygon* t = w.createPolygon();
            t->name = p->name;
            t->fill = p->fill;
            t->orientation = p->orientation;
            t->disabled = p->disabled;
            t->collisional = p->collisional;
            t->releaseSaveFlag = p->releaseSaveFlag;
            t->addedToWorld = true;
            t->ownData = p->ownData;
            for (uint32_t i : tri) w.addPoint(*t, p->points[i]);
            w.setPolygonGroup(*t, out);
        }
    w.touch();
    return out;
}

// The reducer's new group for `input`, or nullptr (and the last error).
Group* runReducer(const Group& input, int target, bool zeroError, const char* op) {
    const int handle = g_reducer(input.handle, target, zeroError ? 1 : 0, g_context);
    Group* out = handle != 0 ? world().group(handle) : nullptr;
    if (!out) setLastError(std::string(op) + ": the reduction failed");
    return out;
}

// g's own polygons are replaced by those of `reduced`, which is destroyed.
void replaceOwnPolygons(Group& g, Group& reduced) {
    World& w = world();
    while (g.firstPolygon) w.destroyPolygon(*g.firstPolygon);
    while (reduced.firstPolygon) w.setPolygonGroup(*reduced.firstPolygon, &g);
    w.destroyGroupTree(reduced);
    ++g.version;
    w.touch();
}

bool effectivelyEnabled(const Group& g) {
    for (const Group* x = &g; x; x = x->father)
        if (x->disabled) return false;
    return true;
}

// Reduces the own polygons of every group in `groups`, all or none: answers false (nothing
// changed) when one reduction fails.
bool reduceEach(const std::vector<Group*>& groups, double percent, bool zeroError, const char* op) {
    std::vector<Group*> reduced;
    for (Group* g : groups) {
        Group* input = ownTriangles(*g);
        Group* out = runReducer(*input, zeroError ? 0 : targetFor(input->ownPolygons, percent), zeroError, op);
        world().destroyGroupTree(*input);
        if (!out) {
            for (Group* r : reduced) world().destroyGroupTree(*r);
            return false;
        }
        reduced.push_back(out);
    }
    for (std::size_t i = 0; i < groups.size(); ++i) replaceOwnPolygons(*groups[i], *reduced[i]);
    return true;
}

} // namespace

extern "C" {

void ZELMAR_engine_set_reducer(ZELMAR_reducer reducer, void* context) {
    g_reducer = reducer;
    g_context = reducer ? context : nullptr;
}

int ZELMAR_group_create_reduced_copy(int group, const char* name, double percent) {
    const char* op = "group_create_reduced_copy";
    const Group* g = groupArg(group, op);
    if (!g || !textArg(name, op) || !percentArg(percent, op) || !reducerReady(op)) return 0;
    Group* copy = triangulatedCopy(*g, name); // the subtree's triangles, with the group's attributes
    Group* out = runReducer(*copy, targetFor(copy->ownPolygons, percent), false, op);
    if (!out) {
        world().destroyGroupTree(*copy);
        return 0;
    }
    replaceOwnPolygons(*copy, *out);
    return copy->handle;
}

int ZELMAR_group_reduce_polygons_count(int group, double percent) {
    const char* op = "group_reduce_polygons_count";
    Group* g = groupArg(group, op);
    if (!g || !percentArg(percent, op) || !reducerReady(op)) return 0;
    std::vector<Group*> groups;
    for (Group* x = g; x; x = World::nextInSubtree(x, g))
        if (x->firstPolygon) groups.push_back(x);
    return reduceEach(groups, percent, false, op) ? 1 : 0;
}

int ZELMAR_engine_reduce_polygons_count(void) {
    const char* op = "engine_reduce_polygons_count";
    if (!reducerReady(op)) return 0;
    std::vector<Group*> groups;
    int64_t before = 0;
    for (Group* g = world().firstGroup(); g; g = g->nextInWorld)
        if (g->firstPolygon && effectivelyEnabled(*g)) {
            groups.push_back(g);
            before += g->ownPolygons;
        }
    if (!reduceEach(groups, 0.0, true, op)) return 0;
    int64_t after = 0;
    for (Group* g : groups) after += g->ownPolygons;
    return static_cast<int>(before - after);
}

} // extern "C"
