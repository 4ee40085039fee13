#include "ChaseSetters.h"

#include <zelmar/zelmar.h>

#include <cmath>

namespace vexil {

namespace {

constexpr int kCodes[7] = {NO_CHASE, CHASE_LOCATION, CHASE_PRECISE, CHASE_FLEXIBLE, CHASE_TRACK, TRACK_AIRPLANE,
                           CHASE_PHYSICS};

std::array<double, 3> read3(void (*get)(int, double[3]), int h) {
    std::array<double, 3> v{0, 0, 0};
    get(h, v.data());
    return v;
}

} // namespace

int ChaseListIndex(int code) {
    for (int i = 0; i < 7; ++i)
        if (kCodes[i] == code) return i;
    return 0;
}

int ChaseCodeOfIndex(int index) { return index >= 0 && index < 7 ? kCodes[index] : NO_CHASE; }

// Each pair sends to the camera's operation for kind 2 and the group's for kind 1.
#define VEXIL_BY_KIND(cam, grp)                                                                                \
    do {                                                                                                       \
        if (kind == 2) { cam; }                                                                                \
        else if (kind == 1) { grp; }                                                                           \
    } while (0)

void ChaseTarget::SetChaseType(int code) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_chase_type(handle, code), ZELMAR_group_set_chase_type(handle, code));
}
int ChaseTarget::ChaseType() const {
    if (kind == 2) return ZELMAR_camera_get_chase_type(handle);
    if (kind == 1) return ZELMAR_group_get_chase_type(handle);
    return 0;
}
void ChaseTarget::SetNameToChase(const std::string& name) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_name_to_chase(handle, name.c_str()),
                  ZELMAR_group_set_name_to_chase(handle, name.c_str()));
}
std::string ChaseTarget::NameToChase() const {
    if (!Valid()) return {};
    char buffer[256] = {0};
    ZELMAR_entity_get_name_to_chase(handle, buffer, int(sizeof buffer));
    return buffer;
}
void ChaseTarget::SetChaseOffset(const std::array<double, 3>& o) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_chase_offset(handle, o.data()), ZELMAR_group_set_chase_offset(handle, o.data()));
}
std::array<double, 3> ChaseTarget::ChaseOffset() const {
    if (kind == 2) return read3(ZELMAR_camera_get_chase_offset, handle);
    if (kind == 1) return read3(ZELMAR_group_get_chase_offset, handle);
    return {0, 0, 0};
}
void ChaseTarget::SetChaseDistance(double d) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_chase_distance(handle, d), ZELMAR_group_set_chase_distance(handle, d));
}
double ChaseTarget::ChaseDistance() const {
    return kind == 2 ? ZELMAR_camera_get_chase_distance(handle) : kind == 1 ? ZELMAR_group_get_chase_distance(handle) : 0;
}
void ChaseTarget::SetSoftness(double s) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_chase_softness(handle, s), ZELMAR_group_set_chase_softness(handle, s));
}
double ChaseTarget::Softness() const {
    return kind == 2 ? ZELMAR_camera_get_chase_softness(handle) : kind == 1 ? ZELMAR_group_get_chase_softness(handle) : 0;
}
void ChaseTarget::SetTrackToChase(const std::string& track) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_track(handle, track.c_str()), ZELMAR_group_set_track_name(handle, track.c_str()));
}
int ChaseTarget::TrackHandle() const {
    return kind == 2 ? ZELMAR_camera_get_track_handle(handle) : kind == 1 ? ZELMAR_group_get_track_handle(handle) : 0;
}
void ChaseTarget::SetTrackOffset(const std::array<double, 3>& o) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_track_offset(handle, o.data()), ZELMAR_group_set_track_offset(handle, o.data()));
}
std::array<double, 3> ChaseTarget::TrackOffset() const {
    if (kind == 2) return read3(ZELMAR_camera_get_track_offset, handle);
    if (kind == 1) return read3(ZELMAR_group_get_track_offset, handle);
    return {0, 0, 0};
}
void ChaseTarget::SetSpeed(double s) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_absolute_speed(handle, s), ZELMAR_group_set_absolute_speed(handle, s));
}
double ChaseTarget::Speed() const {
    return kind == 2 ? ZELMAR_camera_get_absolute_speed(handle) : kind == 1 ? ZELMAR_group_get_absolute_speed(handle) : 0;
}
void ChaseTarget::SetPhysicForce(const std::array<double, 3>& direction, double magnitude) const {
    std::array<double, 3> f = direction;
    const double len = ZELMAR_math_get_vector_length(direction.data());
    for (double& c : f) c = len != 0 ? c / len * magnitude : 0.0;
    VEXIL_BY_KIND(ZELMAR_camera_set_force(handle, f.data()), ZELMAR_group_set_physics_force(handle, f.data()));
}
std::array<double, 3> ChaseTarget::Force() const {
    if (kind == 2) return read3(ZELMAR_camera_get_force, handle);
    if (kind == 1) return read3(ZELMAR_group_get_physics_force, handle);
    return {0, 0, 0};
}
void ChaseTarget::SetPhysicFriction(double f) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_friction(handle, f), ZELMAR_group_set_physics_friction(handle, f));
}
double ChaseTarget::Friction() const {
    return kind == 2 ? ZELMAR_camera_get_friction(handle) : kind == 1 ? ZELMAR_group_get_physics_friction(handle) : 0;
}
void ChaseTarget::SetPhysicElasticity(double e) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_elasticity(handle, e), ZELMAR_group_set_physics_elasticity(handle, e));
}
double ChaseTarget::Elasticity() const {
    return kind == 2 ? ZELMAR_camera_get_elasticity(handle) : kind == 1 ? ZELMAR_group_get_physics_elasticity(handle) : 0;
}
void ChaseTarget::SetPhysicMaxSpeed(double s) const {
    VEXIL_BY_KIND(ZELMAR_camera_set_max_speed(handle, s), ZELMAR_group_set_physics_maxspeed(handle, s));
}
double ChaseTarget::MaxSpeed() const {
    return kind == 2 ? ZELMAR_camera_get_max_speed(handle) : kind == 1 ? ZELMAR_group_get_physics_maxspeed(handle) : 0;
}

#undef VEXIL_BY_KIND

} // namespace vexil
