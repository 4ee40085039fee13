// Cameras: storage, placement and the chase values kept for the player. The geometry
// is in scene/CameraModel; camera_set_current and the 2D operations are render's.
#include "api/EntityArgs.h"
#include "scene/CameraModel.h"
#include "scene/ChaseStep.h"
#include "scene/Current.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;

void setScalar(int camera, double value, double Camera::*field, const char* op) {
    if (Camera* c = cameraArg(camera, op); c && finiteArg(value, op)) c->*field = value;
}

double getScalar(int camera, double Camera::*field, const char* op) {
    const Camera* c = cameraArg(camera, op);
    return c ? c->*field : 0.0;
}

void setVector(int camera, const double* v, double (Camera::*field)[3], const char* op) {
    if (Camera* c = cameraArg(camera, op); c && vecArg(v, op)) copy3(v, c->*field);
}

void getVector(int camera, double* out, double (Camera::*field)[3], const char* op) {
    if (const Camera* c = cameraArg(camera, op); c && outArg(out, op)) copy3(c->*field, out);
}

void turn(int camera, int axis, double radians, const char* op) {
    if (Camera* c = cameraArg(camera, op); c && finiteArg(radians, op))
        camera::rotateAboutOwnAxis(*c, axis, radians);
}

void setAngle(int camera, double degrees, int which, bool add, const char* op) {
    Camera* c = cameraArg(camera, op);
    if (!c || !finiteArg(degrees, op)) return;
    double a[3] = {camera::headDegrees(*c), camera::tiltDegrees(*c), camera::bankDegrees(*c)};
    a[which] = add ? a[which] + degrees : degrees;
    camera::setAngles(*c, a[0], a[1], a[2]);
}

bool setZoom(Camera& c, double degrees, const char* op) {
    if (!camera::validZoom(degrees)) {
        setLastError(std::string(op) + ": a field of view must lie strictly between 0 and 180 degrees");
        return false;
    }
    c.zoom = degrees;
    return true;
}

bool setDistance(Camera& c, double d, const char* op) {
    if (!(std::isfinite(d) && d > 0)) {
        setLastError(std::string(op) + ": the distance from eye must be above 0");
        return false;
    }
    c.distanceFromEye = d;
    return true;
}

void setDirectionOp(int camera, const double* dir, bool level, const char* op) {
    Camera* c = cameraArg(camera, op);
    if (!c || !vecArg(dir, op)) return;
    if (!camera::setDirection(*c, dir, level)) setLastError(std::string(op) + ": a direction cannot be zero");
}

void chaseTarget(int camera, Handle target, Kind kind, const char* op) {
    Camera* c = cameraArg(camera, op);
    if (!c) return;
    std::string name;
    if (target != 0) {
        World& w = world();
        const Kind k = w.kindOf(target);
        if (k != kind && !(kind == Kind::None && (k == Kind::Group || k == Kind::Camera))) {
            setLastError(std::string(op) + ": " + handleText(target) + " cannot be chased");
            return;
        }
        if (k == Kind::Camera) name = w.camera(target)->name;
        if (k == Kind::Group) name = w.group(target)->name;
    }
    c->chasedCamera = kind == Kind::Camera ? target : 0;
    c->chasedGroup = kind == Kind::Group ? target : 0;
    c->chasedObject = kind == Kind::None ? target : 0;
    c->chasedName = name;
}

Handle liveOr0(Handle h, Kind k) {
    return world().kindOf(h) == k ? h : 0;
}

} // namespace

extern "C" {

int ZELMAR_camera_create(const char* name) {
    if (!nameArg(name, "camera_create")) return 0;
    Camera* c = world().createCamera(name);
    return c ? c->handle : 0;
}

void ZELMAR_camera_delete(int camera) {
    if (Camera* c = cameraArg(camera, "camera_delete")) world().destroyCamera(*c);
}

void ZELMAR_camera_delete_all(void) {
    World& w = world();
    while (!w.list<Camera>().empty())
        w.destroyCamera(*w.list<Camera>().back());
}

int ZELMAR_camera_is_camera(int handle) {
    return world().camera(handle) ? 1 : 0;
}

int ZELMAR_camera_get_first_camera(void) {
    return firstOf<Camera>();
}

int ZELMAR_camera_get_next_camera(int camera) {
    return nextAfter(cameraArg(camera, "camera_get_next_camera"));
}

int ZELMAR_camera_get_using_name(const char* name) {
    const Camera* c = findByName<Camera>(name);
    return c ? c->handle : 0;
}

const char* ZELMAR_camera_get_name(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_name");
    return c ? c->name.c_str() : "";
}

void ZELMAR_camera_set_name(int camera, const char* name) {
    if (Camera* c = cameraArg(camera, "camera_set_name"); c && nameArg(name, "camera_set_name"))
        c->name = name;
}

int ZELMAR_camera_get_save_flag(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_save_flag");
    return c ? c->saveFlag : 0;
}

void ZELMAR_camera_set_save_flag(int camera, int flag) {
    if (Camera* c = cameraArg(camera, "camera_set_save_flag")) c->saveFlag = flagValue(flag);
}

int ZELMAR_camera_get_current(void) {
    const Camera* c = currentCamera();
    return c ? c->handle : 0;
}

int ZELMAR_camera_get_default_camera(void) {
    if (const Camera* c = currentCamera()) return c->handle;
    return firstOf<Camera>();
}

int ZELMAR_camera_recreate(int camera) {
    Camera* c = cameraArg(camera, "camera_recreate");
    if (!c) return 0;
    Camera fresh;
    fresh.handle = c->handle;
    fresh.listPos = c->listPos;
    fresh.name = std::move(c->name);
    fresh.saveFlag = c->saveFlag;
    *c = std::move(fresh);
    return 1;
}

// Placement.

void ZELMAR_camera_get_location(int camera, double location[3]) {
    getVector(camera, location, &Camera::location, "camera_get_location");
}
void ZELMAR_camera_get_location1(int camera, double location[3]) {
    getVector(camera, location, &Camera::location, "camera_get_location1");
}
void ZELMAR_camera_set_location(int camera, const double location[3]) {
    setVector(camera, location, &Camera::location, "camera_set_location");
}
void ZELMAR_camera_set_location1(int camera, const double location[3]) {
    setVector(camera, location, &Camera::location, "camera_set_location1");
}

void ZELMAR_camera_get_axis_system(int camera, double x[3], double y[3], double z[3]) {
    const char* op = "camera_get_axis_system";
    const Camera* c = cameraArg(camera, op);
    if (!c || !outArg(x, op) || !outArg(y, op) || !outArg(z, op)) return;
    copy3(c->axis[0], x);
    copy3(c->axis[1], y);
    copy3(c->axis[2], z);
}

void ZELMAR_camera_set_axis_system(int camera, const double x[3], const double y[3], const double z[3]) {
    const char* op = "camera_set_axis_system";
    Camera* c = cameraArg(camera, op);
    if (!c || !vecArg(x, op) || !vecArg(y, op) || !vecArg(z, op)) return;
    if (!camera::setAxisSystem(*c, x, y, z)) setLastError(std::string(op) + ": the axes do not span space");
}

void ZELMAR_camera_get_direction(int camera, double direction[3]) {
    if (const Camera* c = cameraArg(camera, "camera_get_direction");
        c && outArg(direction, "camera_get_direction"))
        copy3(c->axis[0], direction);
}
void ZELMAR_camera_get_direction1(int camera, double direction[3]) {
    if (const Camera* c = cameraArg(camera, "camera_get_direction1");
        c && outArg(direction, "camera_get_direction1"))
        copy3(c->axis[0], direction);
}
void ZELMAR_camera_set_direction(int camera, const double direction[3]) {
    setDirectionOp(camera, direction, false, "camera_set_direction");
}
void ZELMAR_camera_set_direction1(int camera, const double direction[3]) {
    setDirectionOp(camera, direction, true, "camera_set_direction1");
}

void ZELMAR_camera_point_at(int camera, const double point[3]) {
    const char* op = "camera_point_at";
    Camera* c = cameraArg(camera, op);
    if (!c || !vecArg(point, op)) return;
    if (!camera::pointAt(*c, point)) setLastError(std::string(op) + ": the point is the camera's location");
}

void ZELMAR_camera_move(int camera, const double offset[3], int space) {
    const char* op = "camera_move";
    Camera* c = cameraArg(camera, op);
    if (!c || !vecArg(offset, op)) return;
    for (int i = 0; i < 3; ++i)
        c->location[i] +=
            space == 1 ? offset[0] * c->axis[0][i] + offset[1] * c->axis[1][i] + offset[2] * c->axis[2][i]
                       : offset[i];
}

void ZELMAR_camera_set_values(int camera, const double location[3], const double direction[3], double zoom,
                              double distance_from_eye) {
    const char* op = "camera_set_values";
    Camera* c = cameraArg(camera, op);
    if (!c) return;
    if (location && vecArg(location, op)) copy3(location, c->location);
    if (direction && vecArg(direction, op) && !camera::setDirection(*c, direction, true))
        setLastError(std::string(op) + ": a direction cannot be zero");
    setZoom(*c, zoom, op);
    setDistance(*c, distance_from_eye, op);
}

int ZELMAR_camera_get_location_to_fit_rectangle(int camera, const double box[6], double location[3]) {
    const char* op = "camera_get_location_to_fit_rectangle";
    const Camera* c = cameraArg(camera, op);
    if (!c || !vecArg(box, op) || !vecArg(box + 3, op) || !outArg(location, op)) return 0;
    camera::locationToFit(*c, box, location);
    return 1;
}

// Angles and rotations.

double ZELMAR_camera_get_head_angle(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_head_angle");
    return c ? camera::headDegrees(*c) : 0.0;
}
double ZELMAR_camera_get_tilt(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_tilt");
    return c ? camera::tiltDegrees(*c) : 0.0;
}
double ZELMAR_camera_get_bank(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_bank");
    return c ? camera::bankDegrees(*c) : 0.0;
}
void ZELMAR_camera_set_head_angle(int camera, double degrees) {
    setAngle(camera, degrees, 0, false, "camera_set_head_angle");
}
void ZELMAR_camera_set_tilt(int camera, double degrees) {
    setAngle(camera, degrees, 1, false, "camera_set_tilt");
}
void ZELMAR_camera_set_bank(int camera, double degrees) {
    setAngle(camera, degrees, 2, false, "camera_set_bank");
}
void ZELMAR_camera_modify_head_angle(int camera, double degrees) {
    setAngle(camera, degrees, 0, true, "camera_modify_head_angle");
}
void ZELMAR_camera_modify_tilt(int camera, double degrees) {
    setAngle(camera, degrees, 1, true, "camera_modify_tilt");
}
void ZELMAR_camera_modify_bank(int camera, double degrees) {
    setAngle(camera, degrees, 2, true, "camera_modify_bank");
}

void ZELMAR_camera_rotate_x(int camera, double degrees) {
    turn(camera, 0, degrees * kDeg, "camera_rotate_x");
}
void ZELMAR_camera_rotate_y(int camera, double degrees) {
    turn(camera, 1, degrees * kDeg, "camera_rotate_y");
}
void ZELMAR_camera_rotate_z(int camera, double degrees) {
    turn(camera, 2, degrees * kDeg, "camera_rotate_z");
}
void ZELMAR_camera_rotate_x_radians(int camera, double radians) {
    turn(camera, 0, radians, "camera_rotate_x_radians");
}
void ZELMAR_camera_rotate_y_radians(int camera, double radians) {
    turn(camera, 1, radians, "camera_rotate_y_radians");
}
void ZELMAR_camera_rotate_z_radians(int camera, double radians) {
    turn(camera, 2, radians, "camera_rotate_z_radians");
}

// Spaces.

void ZELMAR_camera_convert_point_to_camera_space(int camera, const double point[3], double result[3]) {
    const char* op = "camera_convert_point_to_camera_space";
    if (const Camera* c = cameraArg(camera, op); c && vecArg(point, op) && outArg(result, op))
        camera::worldToCamera(*c, point, result);
}

void ZELMAR_camera_convert_point_to_world_space(int camera, const double point[3], double result[3]) {
    const char* op = "camera_convert_point_to_world_space";
    if (const Camera* c = cameraArg(camera, op); c && vecArg(point, op) && outArg(result, op))
        camera::cameraToWorld(*c, point, result);
}

void ZELMAR_camera_get_transformation_matrix(int camera, double matrix[16]) {
    const char* op = "camera_get_transformation_matrix";
    if (const Camera* c = cameraArg(camera, op); c && outArg(matrix, op)) camera::viewMatrix(*c, matrix);
}

// Lens and projection.

double ZELMAR_camera_get_zoom(int camera) {
    return getScalar(camera, &Camera::zoom, "camera_get_zoom");
}

void ZELMAR_camera_set_zoom(int camera, double field_of_view_degrees) {
    if (Camera* c = cameraArg(camera, "camera_set_zoom"))
        setZoom(*c, field_of_view_degrees, "camera_set_zoom");
}

void ZELMAR_camera_modify_zoom(int camera, double degrees) {
    if (Camera* c = cameraArg(camera, "camera_modify_zoom"); c && finiteArg(degrees, "camera_modify_zoom"))
        setZoom(*c, c->zoom + degrees, "camera_modify_zoom");
}

double ZELMAR_camera_get_distance_from_eye(int camera) {
    return getScalar(camera, &Camera::distanceFromEye, "camera_get_distance_from_eye");
}

void ZELMAR_camera_set_distance_from_eye(int camera, double distance) {
    if (Camera* c = cameraArg(camera, "camera_set_distance_from_eye"))
        setDistance(*c, distance, "camera_set_distance_from_eye");
}

void ZELMAR_camera_set_focus(int camera, double focus) {
    setScalar(camera, focus, &Camera::focus, "camera_set_focus");
}

void ZELMAR_camera_modify_focus(int camera, double delta) {
    if (Camera* c = cameraArg(camera, "camera_modify_focus"); c && finiteArg(delta, "camera_modify_focus"))
        c->focus += delta;
}

int ZELMAR_camera_is_perspective_projection(int camera) {
    const Camera* c = cameraArg(camera, "camera_is_perspective_projection");
    return c && c->perspective ? 1 : 0;
}

void ZELMAR_camera_set_perspective_projection(int camera) {
    if (Camera* c = cameraArg(camera, "camera_set_perspective_projection")) c->perspective = true;
}

void ZELMAR_camera_set_parallel_projection(int camera, double width, double height) {
    const char* op = "camera_set_parallel_projection";
    Camera* c = cameraArg(camera, op);
    if (!c || !finiteArg(width, op) || !finiteArg(height, op)) return;
    if (width < 0 || height < 0) {
        setLastError(std::string(op) + ": a parallel view cannot have a negative size");
        return;
    }
    c->perspective = false;
    c->parallelWidth = width;
    c->parallelHeight = height;
}

double ZELMAR_camera_get_parallel_projection_width(int camera) {
    return getScalar(camera, &Camera::parallelWidth, "camera_get_parallel_projection_width");
}

double ZELMAR_camera_get_parallel_projection_height(int camera) {
    return getScalar(camera, &Camera::parallelHeight, "camera_get_parallel_projection_height");
}

// Chase values.

int ZELMAR_camera_get_chase_type(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_chase_type");
    return c ? c->chaseType : 0;
}
void ZELMAR_camera_set_chase_type(int camera, int chase_type) {
    if (Camera* c = cameraArg(camera, "camera_set_chase_type")) c->chaseType = chase_type;
}
double ZELMAR_camera_get_chase_distance(int camera) {
    return getScalar(camera, &Camera::chaseDistance, "camera_get_chase_distance");
}
void ZELMAR_camera_set_chase_distance(int camera, double distance) {
    setScalar(camera, distance, &Camera::chaseDistance, "camera_set_chase_distance");
}
double ZELMAR_camera_get_chase_softness(int camera) {
    return getScalar(camera, &Camera::chaseSoftness, "camera_get_chase_softness");
}
void ZELMAR_camera_set_chase_softness(int camera, double softness) {
    setScalar(camera, softness, &Camera::chaseSoftness, "camera_set_chase_softness");
}
void ZELMAR_camera_get_chase_offset(int camera, double offset[3]) {
    getVector(camera, offset, &Camera::chaseOffset, "camera_get_chase_offset");
}
void ZELMAR_camera_set_chase_offset(int camera, const double offset[3]) {
    setVector(camera, offset, &Camera::chaseOffset, "camera_set_chase_offset");
}

const char* ZELMAR_camera_get_name_to_chase(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_name_to_chase");
    return c ? c->chasedName.c_str() : "";
}

void ZELMAR_camera_set_name_to_chase(int camera, const char* name) {
    Camera* c = cameraArg(camera, "camera_set_name_to_chase");
    if (!c || !nameArg(name, "camera_set_name_to_chase")) return;
    c->chasedName = name;
    c->chasedCamera = c->chasedGroup = c->chasedObject = 0;
}

void ZELMAR_camera_set_camera_to_chase(int camera, int chased_camera) {
    chaseTarget(camera, chased_camera, Kind::Camera, "camera_set_camera_to_chase");
}
void ZELMAR_camera_set_group_to_chase(int camera, int group) {
    chaseTarget(camera, group, Kind::Group, "camera_set_group_to_chase");
}
void ZELMAR_camera_set_object_to_chase(int camera, int object) {
    chaseTarget(camera, object, Kind::None, "camera_set_object_to_chase");
}

int ZELMAR_camera_get_chased_camera(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_chased_camera");
    return c ? liveOr0(c->chasedCamera, Kind::Camera) : 0;
}
int ZELMAR_camera_get_chased_group(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_chased_group");
    return c ? liveOr0(c->chasedGroup, Kind::Group) : 0;
}
int ZELMAR_camera_get_chased_object(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_chased_object");
    if (!c) return 0;
    const Kind k = world().kindOf(c->chasedObject);
    return k == Kind::Group || k == Kind::Camera ? c->chasedObject : 0;
}

// Track values.

void ZELMAR_camera_set_track(int camera, const char* track_name) {
    Camera* c = cameraArg(camera, "camera_set_track");
    if (!c || !nameArg(track_name, "camera_set_track")) return;
    c->trackName = track_name;
    const Track* t = findByName<Track>(track_name);
    c->track = t ? t->handle : 0;
}

const char* ZELMAR_camera_get_track_name(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_track_name");
    return c ? c->trackName.c_str() : "";
}

int ZELMAR_camera_get_track_handle(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_track_handle");
    if (!c) return 0;
    if (world().track(c->track)) return c->track;
    // The track may have been created (or loaded) after the name was set.
    const Track* t = c->trackName.empty() ? nullptr : findByName<Track>(c->trackName.c_str());
    return t ? t->handle : 0;
}

void ZELMAR_camera_get_track_offset(int camera, double offset[3]) {
    getVector(camera, offset, &Camera::trackOffset, "camera_get_track_offset");
}
void ZELMAR_camera_set_track_offset(int camera, const double offset[3]) {
    setVector(camera, offset, &Camera::trackOffset, "camera_set_track_offset");
}
int ZELMAR_camera_get_next_point_on_track(int camera) {
    const Camera* c = cameraArg(camera, "camera_get_next_point_on_track");
    return c ? c->nextPointOnTrack : 0;
}
void ZELMAR_camera_set_next_point_on_track(int camera, int index) {
    Camera* c = cameraArg(camera, "camera_set_next_point_on_track");
    if (!c) return;
    if (index < 0) {
        setLastError("camera_set_next_point_on_track: an index cannot be negative");
        return;
    }
    c->nextPointOnTrack = index;
}

// Physics values.

double ZELMAR_camera_get_speed(int camera) {
    return getScalar(camera, &Camera::speed, "camera_get_speed");
}
void ZELMAR_camera_set_speed(int camera, double speed) {
    setScalar(camera, speed, &Camera::speed, "camera_set_speed");
}
double ZELMAR_camera_get_absolute_speed(int camera) {
    return getScalar(camera, &Camera::absoluteSpeed, "camera_get_absolute_speed");
}
void ZELMAR_camera_set_absolute_speed(int camera, double speed) {
    setScalar(camera, speed, &Camera::absoluteSpeed, "camera_set_absolute_speed");
}
double ZELMAR_camera_get_max_speed(int camera) {
    return getScalar(camera, &Camera::maxSpeed, "camera_get_max_speed");
}
void ZELMAR_camera_set_max_speed(int camera, double max_speed) {
    setScalar(camera, max_speed, &Camera::maxSpeed, "camera_set_max_speed");
}
double ZELMAR_camera_get_friction(int camera) {
    return getScalar(camera, &Camera::friction, "camera_get_friction");
}
void ZELMAR_camera_set_friction(int camera, double friction) {
    setScalar(camera, friction, &Camera::friction, "camera_set_friction");
}
double ZELMAR_camera_get_elasticity(int camera) {
    return getScalar(camera, &Camera::elasticity, "camera_get_elasticity");
}
void ZELMAR_camera_set_elasticity(int camera, double elasticity) {
    setScalar(camera, elasticity, &Camera::elasticity, "camera_set_elasticity");
}
void ZELMAR_camera_get_force(int camera, double force[3]) {
    getVector(camera, force, &Camera::force, "camera_get_force");
}
void ZELMAR_camera_set_force(int camera, const double force[3]) {
    setVector(camera, force, &Camera::force, "camera_set_force");
}

// One step of the chase rule.

int ZELMAR_camera_advance(int camera) {
    Camera* c = cameraArg(camera, "camera_advance");
    return c ? (chase::advance(*c) ? 1 : 0) : 0;
}

void ZELMAR_camera_advance_all(void) {
    chase::advanceAllCameras();
}

} // extern "C"
