#include "ChaseWorldFile.h"

#include <zelmar/zelmar.h>

#include <filesystem>

namespace viewertest {

std::string writeChaseWorld(const std::string& folder) {
    const std::string sample = VIEWER_SAMPLE_WORLD;
    const std::string bitmaps = (std::filesystem::path(sample).parent_path() / "bitmaps").string();
    if (ZELMAR_engine_load_world(sample.c_str(), "", bitmaps.c_str(), 4) == -1) return "";
    const int cam = ZELMAR_camera_get_using_name("Camera01");
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_track(cam, "Track01");
    ZELMAR_camera_set_absolute_speed(cam, kTrackSpeed);
    const std::string out = folder + "/Chase.wld";
    const int ok = ZELMAR_engine_save(out.c_str(), ZELMAR_group_get_using_name("the_world"), 0x1203);
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    return ok ? out : "";
}

} // namespace viewertest
