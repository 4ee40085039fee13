// Lights: every value of the editor's light panel, the type bits, the target entity
// and the activation state that render reads.
#include "api/EntityArgs.h"
#include "scene/Current.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

void changed(Light& l) {
    ++l.version;
}

void setScalar(int light, double value, double Light::*field, const char* op) {
    Light* l = lightArg(light, op);
    if (!l || !finiteArg(value, op)) return;
    l->*field = value;
    changed(*l);
}

double getScalar(int light, double Light::*field, const char* op) {
    const Light* l = lightArg(light, op);
    return l ? l->*field : 0.0;
}

void getVector(int light, double* out, double (Light::*field)[3], const char* op) {
    if (const Light* l = lightArg(light, op); l && outArg(out, op)) copy3(l->*field, out);
}

bool setDirection(Light& l, const double* d, const char* op) {
    const double len = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    if (!(len > 1e-300) || !std::isfinite(len)) {
        setLastError(std::string(op) + ": a direction cannot be zero");
        return false;
    }
    for (int i = 0; i < 3; ++i)
        l.direction[i] = d[i] / len;
    changed(l);
    return true;
}

} // namespace

extern "C" {

int ZELMAR_light_create(const char* name, const double location[3]) {
    const char* op = "light_create";
    if (!nameArg(name, op)) return 0;
    if (location && !vecArg(location, op)) return 0;
    Light* l = world().createLight(name);
    if (!l) return 0;
    if (location) copy3(location, l->location);
    return l->handle;
}

void ZELMAR_light_delete(int light) {
    if (Light* l = lightArg(light, "light_delete")) world().destroyLight(*l);
}

void ZELMAR_light_delete_all(void) {
    World& w = world();
    while (!w.list<Light>().empty())
        w.destroyLight(*w.list<Light>().back());
}

int ZELMAR_light_is_light(int handle) {
    return world().light(handle) ? 1 : 0;
}

int ZELMAR_light_get_first_light(void) {
    return firstOf<Light>();
}

int ZELMAR_light_get_next_light(int light) {
    return nextAfter(lightArg(light, "light_get_next_light"));
}

int ZELMAR_light_get_using_name(const char* name) {
    const Light* l = findByName<Light>(name);
    return l ? l->handle : 0;
}

const char* ZELMAR_light_get_name(int light) {
    const Light* l = lightArg(light, "light_get_name");
    return l ? l->name.c_str() : "";
}

void ZELMAR_light_set_name(int light, const char* name) {
    if (Light* l = lightArg(light, "light_set_name"); l && nameArg(name, "light_set_name")) l->name = name;
}

int ZELMAR_light_get_save_flag(int light) {
    const Light* l = lightArg(light, "light_get_save_flag");
    return l ? l->saveFlag : 0;
}

void ZELMAR_light_set_save_flag(int light, int flag) {
    if (Light* l = lightArg(light, "light_set_save_flag")) l->saveFlag = flagValue(flag);
}

void ZELMAR_light_get_location(int light, double location[3]) {
    getVector(light, location, &Light::location, "light_get_location");
}

void ZELMAR_light_set_location(int light, const double location[3]) {
    Light* l = lightArg(light, "light_set_location");
    if (!l || !vecArg(location, "light_set_location")) return;
    copy3(location, l->location);
    changed(*l);
}

void ZELMAR_light_get_direction(int light, double direction[3]) {
    getVector(light, direction, &Light::direction, "light_get_direction");
}

void ZELMAR_light_set_direction(int light, const double direction[3]) {
    Light* l = lightArg(light, "light_set_direction");
    if (l && vecArg(direction, "light_set_direction")) setDirection(*l, direction, "light_set_direction");
}

void ZELMAR_light_point_at(int light, const double point[3]) {
    Light* l = lightArg(light, "light_point_at");
    if (!l || !vecArg(point, "light_point_at")) return;
    const double d[3] = {point[0] - l->location[0], point[1] - l->location[1], point[2] - l->location[2]};
    setDirection(*l, d, "light_point_at");
}

void ZELMAR_light_get_color(int light, double rgb[3]) {
    getVector(light, rgb, &Light::color, "light_get_color");
}

void ZELMAR_light_set_color(int light, const double rgb[3]) {
    Light* l = lightArg(light, "light_set_color");
    if (!l || !vecArg(rgb, "light_set_color")) return;
    for (int i = 0; i < 3; ++i)
        l->color[i] = std::clamp(rgb[i], 0.0, 255.0);
    changed(*l);
}

double ZELMAR_light_get_ambient(int light) {
    return getScalar(light, &Light::ambient, "light_get_ambient");
}
void ZELMAR_light_set_ambient(int light, double ambient) {
    setScalar(light, ambient, &Light::ambient, "light_set_ambient");
}
double ZELMAR_light_get_diffuse(int light) {
    return getScalar(light, &Light::diffuse, "light_get_diffuse");
}
void ZELMAR_light_set_diffuse(int light, double diffuse) {
    setScalar(light, diffuse, &Light::diffuse, "light_set_diffuse");
}
double ZELMAR_light_get_specular(int light) {
    return getScalar(light, &Light::specular, "light_get_specular");
}
void ZELMAR_light_set_specular(int light, double specular) {
    setScalar(light, specular, &Light::specular, "light_set_specular");
}
double ZELMAR_light_get_specular_shining(int light) {
    return getScalar(light, &Light::specularShining, "light_get_specular_shining");
}
void ZELMAR_light_set_specular_shining(int light, double shining) {
    setScalar(light, shining, &Light::specularShining, "light_set_specular_shining");
}
double ZELMAR_light_get_distance_reach(int light) {
    return getScalar(light, &Light::distanceReach, "light_get_distance_reach");
}
void ZELMAR_light_set_distance_reach(int light, double reach) {
    setScalar(light, reach, &Light::distanceReach, "light_set_distance_reach");
}

int ZELMAR_light_get_type_of_light(int light) {
    const Light* l = lightArg(light, "light_get_type_of_light");
    return l ? l->type : 0;
}

void ZELMAR_light_set_type_of_light(int light, int type) {
    if (Light* l = lightArg(light, "light_set_type_of_light")) {
        l->type = type;
        changed(*l);
    }
}

int ZELMAR_light_get_entity_to_light(int light) {
    const Light* l = lightArg(light, "light_get_entity_to_light");
    return l && world().group(l->entityToLight) ? l->entityToLight : 0;
}

void ZELMAR_light_set_entity_to_light(int light, int entity) {
    Light* l = lightArg(light, "light_set_entity_to_light");
    if (!l) return;
    if (entity != 0 && !world().group(entity)) {
        setLastError("light_set_entity_to_light: " + handleText(entity) + " is not a group");
        return;
    }
    l->entityToLight = entity;
    changed(*l);
}

int ZELMAR_light_is_ray_tracing(int light) {
    const Light* l = lightArg(light, "light_is_ray_tracing");
    return l ? l->rayTracing : 0;
}

void ZELMAR_light_set_ray_tracing(int light, int yes) {
    if (Light* l = lightArg(light, "light_set_ray_tracing")) {
        l->rayTracing = flagValue(yes);
        changed(*l);
    }
}

void ZELMAR_light_disable(int light, int disable) {
    if (Light* l = lightArg(light, "light_disable")) {
        l->disabled = disable != 0;
        changed(*l);
    }
}

int ZELMAR_light_is_disabled(int light) {
    const Light* l = lightArg(light, "light_is_disabled");
    return l && l->disabled ? 1 : 0;
}

int ZELMAR_light_activate(int light, int mode) {
    Light* l = lightArg(light, "light_activate");
    if (!l) return 0;
    l->activated = true;
    l->activationMode = mode;
    l->activatedVersion = l->version;
    return 1;
}

int ZELMAR_light_remove_light(int light) {
    Light* l = lightArg(light, "light_remove_light");
    if (!l) return 0;
    l->activated = false;
    return 1;
}

void ZELMAR_light_activate_before_each_render(int light, int yes) {
    if (Light* l = lightArg(light, "light_activate_before_each_render"))
        l->activateBeforeRender = flagValue(yes);
}

int ZELMAR_light_is_activated_before_render(int light) {
    const Light* l = lightArg(light, "light_is_activated_before_render");
    return l ? l->activateBeforeRender : 0;
}

void ZELMAR_light_calcualte_vertices_normals_automatically(int value) {
    setLightNormalsAutomatically(value);
}

} // extern "C"
