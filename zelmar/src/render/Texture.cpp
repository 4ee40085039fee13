#include "render/Texture.h"

#include "scene/World.h"
#include <cstring>

namespace zelmar::render {
namespace {

struct Entry {
    uint32_t version = 0;
    Texture tex;
};

std::unordered_map<uint64_t, Entry>& cache() {
    static std::unordered_map<uint64_t, Entry> c;
    return c;
}

uint64_t keyOf(Handle h, int index) {
    return (static_cast<uint64_t>(static_cast<uint32_t>(h)) << 32) | static_cast<uint32_t>(index + 1);
}

void prepare(const Bitmap& b, int index, Texture& t) {
    t.width = b.width;
    t.height = b.height;
    t.pow2 = (b.width & (b.width - 1)) == 0 && (b.height & (b.height - 1)) == 0;
    t.wmask = static_cast<uint32_t>(b.width - 1);
    t.hmask = static_cast<uint32_t>(b.height - 1);
    const size_t n = static_cast<size_t>(b.width) * b.height;
    t.texels.resize(n);
    std::memcpy(t.texels.data(), b.rgba.data(), n * 4);
    const int ti = index >= 0 ? index : b.transparentIndex;
    const bool byIndex = ti >= 0 && b.indices.size() == n;
    // A true-colour bitmap keys on a colour: its own, or the packed colour of the index asked for
    // (an animation frame keeps the index it was added with).
    int key[3] = {b.transparentRgb[0], b.transparentRgb[1], b.transparentRgb[2]};
    bool byRgb = false;
    if (!byIndex && index >= 0 && index <= 0xFFFFFF) {
        key[0] = index & 0xFF, key[1] = (index >> 8) & 0xFF, key[2] = (index >> 16) & 0xFF;
        byRgb = b.indices.empty();
    } else if (!byIndex && index < 0) {
        byRgb = b.transparentRgb[0] >= 0;
    }
    t.transparent = false;
    uint64_t sum[3] = {0, 0, 0};
    size_t opaque = 0;
    for (size_t i = 0; i < n; ++i) {
        uint32_t& c = t.texels[i];
        bool clear = false;
        if (byIndex)
            clear = b.indices[i] == ti;
        else if (byRgb)
            clear = static_cast<int>(c & 0xFF) == key[0] && static_cast<int>((c >> 8) & 0xFF) == key[1] &&
                    static_cast<int>((c >> 16) & 0xFF) == key[2];
        if (clear) {
            c = 0;
            t.transparent = true;
        } else {
            c |= 0xFF000000u;
            sum[0] += c & 0xFF, sum[1] += (c >> 8) & 0xFF, sum[2] += (c >> 16) & 0xFF;
            ++opaque;
        }
    }
    if (opaque)
        t.mean = 0xFF000000u | static_cast<uint32_t>(sum[0] / opaque) |
                 static_cast<uint32_t>(sum[1] / opaque) << 8 | static_cast<uint32_t>(sum[2] / opaque) << 16;
}

} // namespace

const Texture* preparedTexture(Handle h, int index) {
    const Bitmap* b = world().bitmap(h);
    if (!b || b->width <= 0 || b->height <= 0 ||
        b->rgba.size() < static_cast<size_t>(b->width) * b->height * 4)
        return nullptr;
    if (index < -1) index = -1;
    Entry& e = cache()[keyOf(h, index)];
    if (e.tex.texels.empty() || e.version != b->version || e.tex.width != b->width ||
        e.tex.height != b->height) {
        prepare(*b, index, e.tex);
        e.version = b->version;
    }
    return &e.tex;
}

void pruneTextures() {
    auto& c = cache();
    for (auto it = c.begin(); it != c.end();)
        it = world().bitmap(static_cast<Handle>(it->first >> 32)) ? std::next(it) : c.erase(it);
}

} // namespace zelmar::render
