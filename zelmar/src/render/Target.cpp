#include "render/Target.h"

#include <memory>
#include <unordered_map>

namespace zelmar::render {
namespace {

struct Registry {
    int next = 1;
    std::unordered_map<int, std::unique_ptr<Target>> targets;
};

Registry& registry() {
    static Registry r;
    return r;
}

bool validSize(int width, int height) {
    return width >= 1 && height >= 1 && width <= kMaxTargetSize && height <= kMaxTargetSize;
}

void allocate(Target& t, int width, int height) {
    t.width = width;
    t.height = height;
    const size_t n = static_cast<size_t>(width) * height;
    t.color.assign(n, 0xFF000000u);
    t.depth.assign(n, 0.0f);
    t.rendered = false;
    t.depthValid = false;
}

} // namespace

int createTarget(int width, int height) {
    if (!validSize(width, height)) return 0;
    Registry& r = registry();
    if (r.next == INT32_MAX) return 0;
    auto t = std::make_unique<Target>();
    t->handle = r.next++;
    allocate(*t, width, height);
    const int h = t->handle;
    r.targets.emplace(h, std::move(t));
    return h;
}

bool resizeTarget(int handle, int width, int height) {
    Target* t = target(handle);
    if (!t || !validSize(width, height)) return false;
    allocate(*t, width, height);
    return true;
}

bool destroyTarget(int handle) {
    return registry().targets.erase(handle) > 0;
}

Target* target(int handle) {
    auto& m = registry().targets;
    auto it = m.find(handle);
    return it == m.end() ? nullptr : it->second.get();
}

} // namespace zelmar::render
