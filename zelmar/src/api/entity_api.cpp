// Names of any named handle, and the engine-wide questions of the scene core.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <cstring>

using namespace zelmar;

namespace {
const std::string* nameOf(int handle) {
    const World& w = world();
    switch (w.kindOf(handle)) {
    case Kind::Group:
        return &w.group(handle)->name;
    case Kind::Polygon:
        return &w.polygon(handle)->name;
    case Kind::Camera:
        return &w.camera(handle)->name;
    case Kind::Light:
        return &w.light(handle)->name;
    case Kind::Track:
        return &w.track(handle)->name;
    case Kind::Background:
        return &w.background(handle)->name;
    case Kind::Bitmap:
        return &w.bitmap(handle)->name;
    case Kind::Animation:
        return &w.animation(handle)->name;
    default:
        return nullptr;
    }
}

// `size` counts characters: the buffer holds size + 1 bytes with the terminating zero.
void copyName(const std::string* name, char* buffer, int size) {
    if (!buffer || size < 0) return;
    const size_t n = name ? std::min(name->size(), static_cast<size_t>(size)) : 0;
    if (n) std::memcpy(buffer, name->data(), n);
    buffer[n] = '\0';
}
} // namespace

extern "C" {

void ZELMAR_entity_get_name(int handle, char* buffer, int size) {
    const std::string* name = nameOf(handle);
    if (!name) setLastError("entity_get_name: " + std::to_string(handle) + " has no name");
    copyName(name, buffer, size);
}

void ZELMAR_entity_get_name_to_chase(int handle, char* buffer, int size) {
    const World& w = world();
    const std::string* name = nullptr;
    if (const Group* g = w.group(handle))
        name = &g->chasedName;
    else if (const Camera* c = w.camera(handle))
        name = &c->chasedName;
    else
        setLastError("entity_get_name_to_chase: " + std::to_string(handle) + " is not a camera or a group");
    copyName(name, buffer, size);
}

int ZELMAR_engine_is_engine_empty(void) {
    return world().empty() ? 1 : 0;
}

void ZELMAR_engine_close(void) {
    world().clear();
}

} // extern "C"
