// Groups: appearance of all their polygons, and the behaviour values kept for the player.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {
template <class F> void forEachPolygon(Group& root, F f) {
    World& w = world();
    for (Group* g = &root; g; g = World::nextInSubtree(g, &root))
        for (Polygon* p = g->firstPolygon; p; p = p->nextInGroup) {
            f(*p);
            w.changed(*p);
        }
}

// A stored value of a group changed (not its geometry).
void touched(Group& g) {
    ++g.version;
    world().touch();
}

int clampByte(int v) {
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}
} // namespace

extern "C" {

void ZELMAR_group_set_color(int group, int red, int green, int blue) {
    Group* g = groupArg(group, "group_set_color");
    if (!g) return;
    forEachPolygon(*g, [&](Polygon& p) {
        p.fill.color[0] = clampByte(red);
        p.fill.color[1] = clampByte(green);
        p.fill.color[2] = clampByte(blue);
        p.fill.bitmap = 0;
        p.fill.animation = 0;
    });
}

void ZELMAR_group_set_bitmap(int group, int bitmap) {
    Group* g = groupArg(group, "group_set_bitmap");
    if (!g) return;
    if (bitmap != 0 && !world().bitmap(bitmap)) {
        setLastError("group_set_bitmap: " + std::to_string(bitmap) + " is not a bitmap");
        return;
    }
    forEachPolygon(*g, [&](Polygon& p) {
        p.fill.bitmap = bitmap;
        p.fill.animation = 0;
    });
}

int ZELMAR_group_is_bitmap_used(int group, int bitmap) {
    Group* g = groupArg(group, "group_is_bitmap_used");
    if (!g || bitmap == 0) return 0;
    for (const Group* x = g; x; x = World::nextInSubtree(x, g))
        for (const Polygon* p = x->firstPolygon; p; p = p->nextInGroup)
            if (p->fill.bitmap == bitmap) return 1;
    return 0;
}

void ZELMAR_group_set_orientation(int group, int orientation) {
    if (Group* g = groupArg(group, "group_set_orientation"))
        forEachPolygon(*g, [&](Polygon& p) { p.orientation = orientation; });
}

void ZELMAR_group_set_ambient(int group, const double ambient[3]) {
    Group* g = groupArg(group, "group_set_ambient");
    if (g && inArray(ambient, 3, "group_set_ambient"))
        forEachPolygon(*g, [&](Polygon& p) {
            for (int i = 0; i < 3; ++i)
                p.fill.ambient[i] = ambient[i];
        });
}

void ZELMAR_group_set_diffuse(int group, const double diffuse[3]) {
    Group* g = groupArg(group, "group_set_diffuse");
    if (g && inArray(diffuse, 3, "group_set_diffuse"))
        forEachPolygon(*g, [&](Polygon& p) {
            for (int i = 0; i < 3; ++i)
                p.fill.diffuse[i] = diffuse[i];
        });
}

void ZELMAR_group_set_specular(int group, const double specular[3]) {
    Group* g = groupArg(group, "group_set_specular");
    if (g && inArray(specular, 3, "group_set_specular"))
        forEachPolygon(*g, [&](Polygon& p) {
            for (int i = 0; i < 3; ++i)
                p.fill.specular[i] = specular[i];
        });
}

void ZELMAR_group_set_static(int group) {
    if (Group* g = groupArg(group, "group_set_static")) {
        g->isStatic = true;
        touched(*g);
    }
}

void ZELMAR_group_set_dynamic(int group) {
    if (Group* g = groupArg(group, "group_set_dynamic")) {
        g->isStatic = false;
        touched(*g);
    }
}

int ZELMAR_group_is_static(int group) {
    const Group* g = groupArg(group, "group_is_static");
    return g && g->isStatic ? 1 : 0;
}

// Chase.
void ZELMAR_group_set_chase_type(int group, int chase_type) {
    if (Group* g = groupArg(group, "group_set_chase_type")) {
        g->chaseType = chase_type;
        touched(*g);
    }
}

int ZELMAR_group_get_chase_type(int group) {
    const Group* g = groupArg(group, "group_get_chase_type");
    return g ? g->chaseType : 0;
}

const char* ZELMAR_group_get_chase_type_name(int group) {
    const Group* g = groupArg(group, "group_get_chase_type_name");
    if (!g) return keepText("");
    switch (g->chaseType) {
    case 0:
        return "NO_CHASE";
    case 2:
        return "CHASE_LOCATION";
    case 3:
        return "CHASE_PRECISE";
    case 4:
        return "CHASE_FLEXIBLE";
    case 9:
        return "CHASE_PHYSICS";
    case 135:
        return "CHASE_TRACK";
    case 136:
        return "TRACK_AIRPLANE";
    default:
        return "UNKNOWN";
    }
}

void ZELMAR_group_set_name_to_chase(int group, const char* name) {
    Group* g = groupArg(group, "group_set_name_to_chase");
    if (g && textArg(name, "group_set_name_to_chase")) {
        g->chasedName = name;
        touched(*g);
    }
}

const char* ZELMAR_group_get_chased_name(int group) {
    const Group* g = groupArg(group, "group_get_chased_name");
    return keepText(g ? g->chasedName : std::string());
}

void ZELMAR_group_set_chase_offset(int group, const double offset[3]) {
    Group* g = groupArg(group, "group_set_chase_offset");
    if (g && inArray(offset, 3, "group_set_chase_offset")) {
        for (int i = 0; i < 3; ++i)
            g->chaseOffset[i] = offset[i];
        touched(*g);
    }
}

void ZELMAR_group_get_chase_offset(int group, double offset[3]) {
    const Group* g = groupArg(group, "group_get_chase_offset");
    if (g && outArray(offset, "group_get_chase_offset"))
        for (int i = 0; i < 3; ++i)
            offset[i] = g->chaseOffset[i];
}

void ZELMAR_group_set_chase_distance(int group, double distance) {
    Group* g = groupArg(group, "group_set_chase_distance");
    if (g && finite(distance, "group_set_chase_distance")) {
        g->chaseDistance = distance;
        touched(*g);
    }
}

double ZELMAR_group_get_chase_distance(int group) {
    const Group* g = groupArg(group, "group_get_chase_distance");
    return g ? g->chaseDistance : 0.0;
}

void ZELMAR_group_set_chase_softness(int group, double softness) {
    Group* g = groupArg(group, "group_set_chase_softness");
    if (g && finite(softness, "group_set_chase_softness")) {
        g->chaseSoftness = softness;
        touched(*g);
    }
}

double ZELMAR_group_get_chase_softness(int group) {
    const Group* g = groupArg(group, "group_get_chase_softness");
    return g ? g->chaseSoftness : 0.0;
}

// Tracks.
void ZELMAR_group_set_track_name(int group, const char* track_name) {
    Group* g = groupArg(group, "group_set_track_name");
    if (g && textArg(track_name, "group_set_track_name")) {
        g->trackName = track_name;
        touched(*g);
    }
}

const char* ZELMAR_group_get_track_name(int group) {
    const Group* g = groupArg(group, "group_get_track_name");
    return keepText(g ? g->trackName : std::string());
}

int ZELMAR_group_get_track_handle(int group) {
    const Group* g = groupArg(group, "group_get_track_handle");
    if (!g || g->trackName.empty()) return 0;
    for (const Track* t : world().list<Track>())
        if (t->name == g->trackName) return t->handle;
    return 0;
}

void ZELMAR_group_set_track_offset(int group, const double offset[3]) {
    Group* g = groupArg(group, "group_set_track_offset");
    if (g && inArray(offset, 3, "group_set_track_offset")) {
        for (int i = 0; i < 3; ++i)
            g->trackOffset[i] = offset[i];
        touched(*g);
    }
}

void ZELMAR_group_get_track_offset(int group, double offset[3]) {
    const Group* g = groupArg(group, "group_get_track_offset");
    if (g && outArray(offset, "group_get_track_offset"))
        for (int i = 0; i < 3; ++i)
            offset[i] = g->trackOffset[i];
}

void ZELMAR_group_set_falling_from_track(int group, double height) {
    Group* g = groupArg(group, "group_set_falling_from_track");
    if (g && finite(height, "group_set_falling_from_track")) {
        g->fallingFromTrack = 1;
        g->fallingHeight = height;
        touched(*g);
    }
}

void ZELMAR_group_unset_falling_from_track(int group) {
    if (Group* g = groupArg(group, "group_unset_falling_from_track")) {
        g->fallingFromTrack = 0;
        touched(*g);
    }
}

void ZELMAR_group_get_falling_from_track_params(int group, double params[2]) {
    const Group* g = groupArg(group, "group_get_falling_from_track_params");
    if (g && outArray(params, "group_get_falling_from_track_params")) {
        params[0] = g->fallingFromTrack ? 1.0 : 0.0;
        params[1] = g->fallingHeight;
    }
}

// Speed and physics.
void ZELMAR_group_set_speed(int group, double speed) {
    Group* g = groupArg(group, "group_set_speed");
    if (g && finite(speed, "group_set_speed")) {
        g->speed = speed;
        touched(*g);
    }
}

double ZELMAR_group_get_speed(int group) {
    const Group* g = groupArg(group, "group_get_speed");
    return g ? g->speed : 0.0;
}

void ZELMAR_group_set_absolute_speed(int group, double speed) {
    Group* g = groupArg(group, "group_set_absolute_speed");
    if (g && finite(speed, "group_set_absolute_speed")) {
        g->absoluteSpeed = speed;
        touched(*g);
    }
}

double ZELMAR_group_get_absolute_speed(int group) {
    const Group* g = groupArg(group, "group_get_absolute_speed");
    return g ? g->absoluteSpeed : 0.0;
}

void ZELMAR_group_set_physics_force(int group, const double force[3]) {
    Group* g = groupArg(group, "group_set_physics_force");
    if (g && inArray(force, 3, "group_set_physics_force")) {
        for (int i = 0; i < 3; ++i)
            g->physicsForce[i] = force[i];
        touched(*g);
    }
}

void ZELMAR_group_get_physics_force(int group, double force[3]) {
    const Group* g = groupArg(group, "group_get_physics_force");
    if (g && outArray(force, "group_get_physics_force"))
        for (int i = 0; i < 3; ++i)
            force[i] = g->physicsForce[i];
}

void ZELMAR_group_set_physics_rotation(int group, const double rotation[3]) {
    Group* g = groupArg(group, "group_set_physics_rotation");
    if (g && inArray(rotation, 3, "group_set_physics_rotation")) {
        for (int i = 0; i < 3; ++i)
            g->physicsRotation[i] = rotation[i];
        touched(*g);
    }
}

void ZELMAR_group_get_physics_rotation(int group, double rotation[3]) {
    const Group* g = groupArg(group, "group_get_physics_rotation");
    if (g && outArray(rotation, "group_get_physics_rotation"))
        for (int i = 0; i < 3; ++i)
            rotation[i] = g->physicsRotation[i];
}

void ZELMAR_group_set_physics_friction(int group, double friction) {
    Group* g = groupArg(group, "group_set_physics_friction");
    if (g && finite(friction, "group_set_physics_friction")) {
        g->physicsFriction = friction;
        touched(*g);
    }
}

double ZELMAR_group_get_physics_friction(int group) {
    const Group* g = groupArg(group, "group_get_physics_friction");
    return g ? g->physicsFriction : 0.0;
}

void ZELMAR_group_set_physics_elasticity(int group, double elasticity) {
    Group* g = groupArg(group, "group_set_physics_elasticity");
    if (g && finite(elasticity, "group_set_physics_elasticity")) {
        g->physicsElasticity = elasticity;
        touched(*g);
    }
}

double ZELMAR_group_get_physics_elasticity(int group) {
    const Group* g = groupArg(group, "group_get_physics_elasticity");
    return g ? g->physicsElasticity : 0.0;
}

void ZELMAR_group_set_physics_maxspeed(int group, double max_speed) {
    Group* g = groupArg(group, "group_set_physics_maxspeed");
    if (g && finite(max_speed, "group_set_physics_maxspeed")) {
        g->physicsMaxSpeed = max_speed;
        touched(*g);
    }
}

double ZELMAR_group_get_physics_maxspeed(int group) {
    const Group* g = groupArg(group, "group_get_physics_maxspeed");
    return g ? g->physicsMaxSpeed : 0.0;
}

void ZELMAR_group_set_control_number(int group, int number) {
    if (Group* g = groupArg(group, "group_set_control_number")) {
        g->controlNumber = number;
        touched(*g);
    }
}

int ZELMAR_group_get_control_number(int group) {
    const Group* g = groupArg(group, "group_get_control_number");
    return g ? g->controlNumber : 0;
}

} // extern "C"
