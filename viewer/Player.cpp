#include "Player.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace vexil::viewer {

namespace fs = std::filesystem;

namespace {
constexpr const char* kFreeName = "vexil-viewer free camera";
} // namespace

Player::Player() = default;

Player::~Player() {
    if (m_target) ZELMAR_target_destroy(m_target);
}

LoadResult Player::load(const std::string& path) {
    m_path = path;
    m_cameras.clear();
    m_active = -1;
    m_free = 0;
    std::error_code ec;
    if (path.empty() || !fs::is_regular_file(path, ec))
        return {ExitMissingFile, "The world file \"" + path + "\" does not exist."};
    if (!std::ifstream(path, std::ios::binary))
        return {ExitMissingFile, "The world file \"" + path + "\" cannot be read."};
    const fs::path folder = fs::absolute(fs::path(path), ec).parent_path();
    const std::string bitmaps = (folder / "bitmaps").string();
    if (ZELMAR_engine_load_world(path.c_str(), "", bitmaps.c_str(), 4) == -1) {
        const std::string why = ZELMAR_engine_get_last_error();
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
        return {ExitBadWorld, "The world file \"" + path + "\" could not be loaded: " + why};
    }
    // The world is played as it was meant to be seen: its lights on.
    for (int l = ZELMAR_light_get_first_light(); l; l = ZELMAR_light_get_next_light(l))
        if (!ZELMAR_light_is_disabled(l)) ZELMAR_light_activate(l, 1);
    for (int c = ZELMAR_camera_get_first_camera(); c; c = ZELMAR_camera_get_next_camera(c))
        m_cameras.push_back(c);

    double box[6] = {-500, -500, -500, 500, 500, 500};
    if (const int root = ZELMAR_group_get_using_name("the_world"); root && ZELMAR_group_get_number_of_polygons(root) > 0)
        ZELMAR_group_get_bounding_box(root, box);
    m_worldSize = std::max({box[3] - box[0], box[4] - box[1], box[5] - box[2], 1.0});
    m_fly.setSpeed(m_worldSize / 4);

    m_free = ZELMAR_camera_create(kFreeName);
    ZELMAR_camera_set_distance_from_eye(m_free, std::max(1e-3, m_worldSize / 10000));
    if (m_cameras.empty()) {
        frameWorld();
        m_active = -1;
    } else {
        m_active = 0;
        takeOverView();
        m_active = 0;
    }
    return {};
}

void Player::frameWorld() {
    double box[6] = {-500, -500, -500, 500, 500, 500};
    if (const int root = ZELMAR_group_get_using_name("the_world"); root && ZELMAR_group_get_number_of_polygons(root) > 0)
        ZELMAR_group_get_bounding_box(root, box);
    // From the south-west, above: the way a first look at a model is usually taken.
    const double dir[3] = {0.6, 0.6, -0.45};
    const double nowhere[3] = {0, 0, 0};
    ZELMAR_camera_set_values(m_free, nowhere, dir, 60, std::max(1e-3, m_worldSize / 10000));
    double at[3];
    if (ZELMAR_camera_get_location_to_fit_rectangle(m_free, box, at)) ZELMAR_camera_set_location(m_free, at);
}

void Player::selectCamera(int index) {
    if (index == -1 || (index >= 0 && index < cameraCount())) m_active = index;
}

void Player::nextCamera() {
    if (m_active == -1)
        m_active = m_cameras.empty() ? -1 : 0;
    else
        m_active = m_active + 1 < cameraCount() ? m_active + 1 : -1;
}

int Player::viewCamera() const {
    if (m_active >= 0 && m_active < cameraCount() && ZELMAR_camera_is_camera(m_cameras[m_active]))
        return m_cameras[m_active];
    return m_free;
}

std::string Player::viewName() const {
    const int c = viewCamera();
    if (c == m_free) return "Free camera";
    return ZELMAR_camera_get_name(c);
}

void Player::takeOverView() {
    const int from = viewCamera();
    if (from != m_free && from) {
        double loc[3], x[3], y[3], z[3];
        ZELMAR_camera_get_location(from, loc);
        ZELMAR_camera_get_axis_system(from, x, y, z);
        ZELMAR_camera_set_location(m_free, loc);
        ZELMAR_camera_set_axis_system(m_free, x, y, z);
        ZELMAR_camera_set_zoom(m_free, ZELMAR_camera_get_zoom(from));
        ZELMAR_camera_set_distance_from_eye(m_free, ZELMAR_camera_get_distance_from_eye(from));
    }
    m_active = -1;
}

int Player::advance(double seconds) {
    if (!(seconds > 0) || !std::isfinite(seconds)) return 0;
    m_fly.fly(m_free, seconds);
    return m_paused ? 0 : ZELMAR_engine_advance(seconds);
}

void Player::step() {
    ZELMAR_engine_advance(ZELMAR_engine_get_time_step());
}

bool Player::render(int width, int height) {
    if (width < 1 || height < 1) return false;
    if (!m_target || !ZELMAR_target_is_target(m_target))
        m_target = ZELMAR_target_create(width, height);
    else if (ZELMAR_target_get_width(m_target) != width || ZELMAR_target_get_height(m_target) != height)
        ZELMAR_target_resize(m_target, width, height);
    return m_target && ZELMAR_engine_render(m_target, viewCamera()) == 1;
}

const unsigned char* Player::pixels() const {
    return m_target ? ZELMAR_target_get_pixels(m_target) : nullptr;
}

int Player::width() const {
    return m_target ? ZELMAR_target_get_width(m_target) : 0;
}

int Player::height() const {
    return m_target ? ZELMAR_target_get_height(m_target) : 0;
}

} // namespace vexil::viewer
