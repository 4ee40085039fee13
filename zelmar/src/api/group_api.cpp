// Groups: creation, names, the tree, walks, copies.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/TreeOps.h"
#include "scene/Walks.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

extern "C" {

int ZELMAR_group_create(const char* name) {
    if (!textArg(name, "group_create")) return 0;
    return world().createGroup(name)->handle;
}

int ZELMAR_group_is_group(int handle) {
    return world().group(handle) ? 1 : 0;
}

const char* ZELMAR_group_get_name(int group) {
    const Group* g = groupArg(group, "group_get_name");
    return keepText(g ? g->name : std::string());
}

void ZELMAR_group_set_name(int group, const char* name) {
    Group* g = groupArg(group, "group_set_name");
    if (!g || !textArg(name, "group_set_name")) return;
    g->name = name;
    ++g->version;
    world().touch();
}

int ZELMAR_group_get_using_name(const char* name) {
    if (!textArg(name, "group_get_using_name")) return 0;
    const Group* g = world().groupByName(name);
    return g ? g->handle : 0;
}

int ZELMAR_group_get_father_group(int group) {
    const Group* g = groupArg(group, "group_get_father_group");
    return g && g->father ? g->father->handle : 0;
}

void ZELMAR_group_set_father_group(int group, int father) {
    Group* g = groupArg(group, "group_set_father_group");
    if (!g) return;
    Group* f = nullptr;
    if (father != 0 && !(f = groupArg(father, "group_set_father_group"))) return;
    if (!world().setFather(*g, f))
        setLastError("group_set_father_group: " + std::to_string(father) + " is " + std::to_string(group) +
                     " or lies below it");
}

int ZELMAR_group_get_first_group(void) {
    const Group* g = world().firstGroup();
    return g ? g->handle : 0;
}

int ZELMAR_group_get_next(int group) {
    const Group* g = groupArg(group, "group_get_next");
    return g && g->nextInWorld ? g->nextInWorld->handle : 0;
}

int ZELMAR_group_is_groupA_included_in_groupB(int group_a, int group_b) {
    const World& w = world();
    const Group* a = w.group(group_a);
    const Group* b = w.group(group_b);
    return a && b && w.isIncludedIn(*a, *b) ? 1 : 0;
}

int ZELMAR_group_is_groupA_included_in_enabled_parts_of_groupB(int group_a, int group_b) {
    const World& w = world();
    const Group* a = w.group(group_a);
    const Group* b = w.group(group_b);
    if (!a || !b || a == b) return 0;
    for (const Group* g = a; g; g = g->father) {
        if (g == b) return 1;
        if (g->disabled) return 0;
    }
    return 0;
}

void ZELMAR_group_disable(int group, int disable) {
    Group* g = groupArg(group, "group_disable");
    if (!g) return;
    g->disabled = disable != 0;
    ++g->version;
    world().touch();
}

int ZELMAR_group_is_disable(int group) {
    const Group* g = groupArg(group, "group_is_disable");
    return g && g->disabled ? 1 : 0;
}

void ZELMAR_group_load_as_disabled(int group, int yes) {
    Group* g = groupArg(group, "group_load_as_disabled");
    if (!g) return;
    g->loadAsDisabled = yes != 0;
    world().touch();
}

int ZELMAR_group_get_load_as_disabled_status(int group) {
    const Group* g = groupArg(group, "group_get_load_as_disabled_status");
    return g && g->loadAsDisabled ? 1 : 0;
}

int ZELMAR_group_get_first_included_group(int group) {
    const Group* g = groupArg(group, "group_get_first_included_group");
    return g ? firstIncludedGroup(*g) : 0;
}

int ZELMAR_group_get_next_included_group(int group) {
    const Group* g = groupArg(group, "group_get_next_included_group");
    return g ? nextIncludedGroup(*g) : 0;
}

int ZELMAR_group_get_first_polygon(int group) {
    const Group* g = groupArg(group, "group_get_first_polygon");
    return g ? firstPolygonOfSubtree(*g) : 0;
}

int ZELMAR_group_get_next_polygon(int polygon) {
    // The walk validates the handle itself, without touching the polygon on the usual path.
    if (world().kindOf(polygon) != Kind::Polygon) {
        polygonArg(polygon, "group_get_next_polygon"); // explains the failure
        return 0;
    }
    return nextPolygonOfSubtree(polygon);
}

int ZELMAR_group_get_number_of_polygons(int group) {
    const Group* g = groupArg(group, "group_get_number_of_polygons");
    if (!g) return 0;
    const int64_t n = countPolygonsOfSubtree(*g);
    return n > INT32_MAX ? INT32_MAX : static_cast<int>(n);
}

void ZELMAR_group_delete_members(int group) {
    Group* g = groupArg(group, "group_delete_members");
    if (g) world().destroyGroupTree(*g);
}

int ZELMAR_group_duplicate_tree(int group) {
    const Group* g = groupArg(group, "group_duplicate_tree");
    return g ? duplicateTree(*g)->handle : 0;
}

void ZELMAR_group_ungroup(int group) {
    Group* g = groupArg(group, "group_ungroup");
    if (g) ungroup(*g);
}

int ZELMAR_group_create_copy_made_of_triangles(int group, const char* name) {
    const Group* g = groupArg(group, "group_create_copy_made_of_triangles");
    if (!g || !textArg(name, "group_create_copy_made_of_triangles")) return 0;
    return triangulatedCopy(*g, name)->handle;
}

} // extern "C"
