#include "EntityNaming.h"

#include <zelmar/zelmar.h>

#include <cstring>

namespace vexil {

std::string EntityName(int handle) {
    char buffer[256];
    std::memset(buffer, 0, sizeof buffer);
    ZELMAR_entity_get_name(handle, buffer, 255);
    buffer[255] = '\0';
    return std::string(buffer);  // cut at the first zero
}

std::string PadCounter(int counter) {
    std::string s = std::to_string(counter);
    if (s.size() < 2) s.insert(0, 2 - s.size(), '0');
    return s;
}

int GroupUsingName(const std::string& name) { return ZELMAR_group_get_using_name(name.c_str()); }
int CameraUsingName(const std::string& name) { return ZELMAR_camera_get_using_name(name.c_str()); }
int LightUsingName(const std::string& name) { return ZELMAR_light_get_using_name(name.c_str()); }
int TrackUsingName(const std::string& name) { return ZELMAR_track_get_using_name(name.c_str()); }
int BackgroundUsingName(const std::string& name) { return ZELMAR_background_get_handle(name.c_str()); }

int PolygonUsingName(const std::string& name) { return ZELMAR_polygon_get_handle_using_name(name.c_str()); }

namespace {
template <class Taken> std::string firstFree(const std::string& stem, Taken taken) {
    for (int counter = 1;; ++counter) {
        std::string candidate = stem + PadCounter(counter);
        if (taken(candidate) == 0) return candidate;
    }
}
} // namespace

std::string GetNewCamName() { return firstFree("Camera", CameraUsingName); }
std::string GetNewBkName() { return firstFree("Background", BackgroundUsingName); }
std::string GetNewTrkName() { return firstFree("Track", TrackUsingName); }
std::string GetNewLightName() { return firstFree("Light", LightUsingName); }

std::string GetNewGrpNameFrmGivenStr(const std::string& name) {
    if (GroupUsingName(name) == 0) return name;
    return firstFree(name, GroupUsingName);
}

} // namespace vexil
