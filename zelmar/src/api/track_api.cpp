// Tracks: ordered points, cyclic or not, for cameras and groups to travel along.
#include "api/EntityArgs.h"
#include "scene/TrackGeometry.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

int count(const Track& t) {
    return static_cast<int>(t.points.size() / 3);
}

bool indexArg(const Track& t, int index, const char* op) {
    if (index >= 0 && index < count(t)) return true;
    setLastError(std::string(op) + ": point " + std::to_string(index) + " is outside the track's " +
                 std::to_string(count(t)) + " points");
    return false;
}

// Tracks are bounded so that a count from a caller can never ask for absurd memory.
constexpr int kMaxPoints = 1 << 24;

} // namespace

extern "C" {

int ZELMAR_track_create(const char* name, const double* points, int number_of_points, int cyclic) {
    const char* op = "track_create";
    if (!nameArg(name, op)) return 0;
    if (number_of_points < 0 || number_of_points > kMaxPoints || (number_of_points > 0 && !points)) {
        setLastError(std::string(op) + ": " + std::to_string(number_of_points) + " points cannot be read");
        return 0;
    }
    for (int i = 0; i < number_of_points; ++i)
        if (!vecArg(points + size_t(i) * 3, op)) return 0;
    Track* t = world().createTrack(name);
    if (!t) return 0;
    t->points.assign(points, points + size_t(number_of_points) * 3);
    t->cyclic = flagValue(cyclic);
    return t->handle;
}

void ZELMAR_track_delete(int track) {
    if (Track* t = trackArg(track, "track_delete")) world().destroyTrack(*t);
}

void ZELMAR_track_delete_all(void) {
    World& w = world();
    while (!w.list<Track>().empty())
        w.destroyTrack(*w.list<Track>().back());
}

int ZELMAR_track_is_track(int handle) {
    return world().track(handle) ? 1 : 0;
}

int ZELMAR_track_get_first_track(void) {
    return firstOf<Track>();
}

int ZELMAR_track_get_next(int track) {
    return nextAfter(trackArg(track, "track_get_next"));
}

int ZELMAR_track_get_using_name(const char* name) {
    const Track* t = findByName<Track>(name);
    return t ? t->handle : 0;
}

const char* ZELMAR_track_get_name(int track) {
    const Track* t = trackArg(track, "track_get_name");
    return t ? t->name.c_str() : "";
}

void ZELMAR_track_set_name(int track, const char* name) {
    if (Track* t = trackArg(track, "track_set_name"); t && nameArg(name, "track_set_name")) t->name = name;
}

int ZELMAR_track_get_save_flag(int track) {
    const Track* t = trackArg(track, "track_get_save_flag");
    return t ? t->saveFlag : 0;
}

void ZELMAR_track_set_save_flag(int track, int flag) {
    if (Track* t = trackArg(track, "track_set_save_flag")) t->saveFlag = flagValue(flag);
}

int ZELMAR_track_is_cyclic(int track) {
    const Track* t = trackArg(track, "track_is_cyclic");
    return t ? t->cyclic : 0;
}

int ZELMAR_track_get_number_of_points(int track) {
    const Track* t = trackArg(track, "track_get_number_of_points");
    return t ? count(*t) : 0;
}

void ZELMAR_track_set_number_of_points(int track, int number_of_points) {
    const char* op = "track_set_number_of_points";
    Track* t = trackArg(track, op);
    if (!t) return;
    if (number_of_points < 0 || number_of_points > kMaxPoints) {
        setLastError(std::string(op) + ": " + std::to_string(number_of_points) +
                     " is not a number of points");
        return;
    }
    // New points repeat the last one, so that a track never jumps to the origin.
    double last[3] = {0, 0, 0};
    if (!t->points.empty()) copy3(&t->points[t->points.size() - 3], last);
    const size_t old = t->points.size() / 3;
    t->points.resize(size_t(number_of_points) * 3);
    for (size_t i = old; i < size_t(number_of_points); ++i)
        copy3(last, &t->points[i * 3]);
}

void ZELMAR_track_get_point(int track, int index, double point[3]) {
    const char* op = "track_get_point";
    const Track* t = trackArg(track, op);
    if (t && outArg(point, op) && indexArg(*t, index, op)) copy3(&t->points[size_t(index) * 3], point);
}

void ZELMAR_track_set_point(int track, int index, const double point[3]) {
    const char* op = "track_set_point";
    Track* t = trackArg(track, op);
    if (t && vecArg(point, op) && indexArg(*t, index, op)) copy3(point, &t->points[size_t(index) * 3]);
}

double ZELMAR_track_get_point_element(int track, int index, int element) {
    const char* op = "track_get_point_element";
    const Track* t = trackArg(track, op);
    if (!t || !indexArg(*t, index, op)) return 0.0;
    if (element < 0 || element > 2) {
        setLastError(std::string(op) + ": element " + std::to_string(element) + " is not 0, 1 or 2");
        return 0.0;
    }
    return t->points[size_t(index) * 3 + size_t(element)];
}

int ZELMAR_track_get_points(int track, double* points, int max_points) {
    const Track* t = trackArg(track, "track_get_points");
    if (!t) return 0;
    if (points && max_points > 0) {
        const size_t n = std::min(size_t(max_points), t->points.size() / 3);
        std::copy(t->points.begin(), t->points.begin() + std::ptrdiff_t(n * 3), points);
    }
    return count(*t);
}

void ZELMAR_track_set_points_buffer(int track, const double* points) {
    const char* op = "track_set_points_buffer";
    Track* t = trackArg(track, op);
    if (!t) return;
    if (!points) {
        setLastError(std::string(op) + ": no array given");
        return;
    }
    for (int i = 0; i < count(*t); ++i)
        if (!vecArg(points + size_t(i) * 3, op)) return;
    std::copy(points, points + t->points.size(), t->points.begin());
}

int ZELMAR_track_find_closest_point_on_track(int track, const double point[3], double closest[3]) {
    const char* op = "track_find_closest_point_on_track";
    const Track* t = trackArg(track, op);
    if (!t || !vecArg(point, op)) return -1;
    double c[3];
    const int segment = tracks::closestPoint(t->points, t->cyclic != 0, point, c);
    if (segment >= 0 && closest) copy3(c, closest);
    return segment;
}

} // extern "C"
