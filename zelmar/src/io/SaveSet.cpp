#include "io/SaveSet.h"

#include "io/SaveFlags.h"
#include "io/Schema.h"
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unordered_set>

namespace zelmar::io {

bool SaveSet::refOf(const World& w, Handle h, Kind& kind, uint32_t& idx) const {
    if (h == 0) return false;
    auto it = index.find(h);
    if (it == index.end()) return false;
    kind = w.kindOf(h);
    idx = it->second;
    return kind != Kind::None;
}

namespace {

// The style fields of a polygon as raw bytes, handles as they are: equal keys, equal styles.
void styleKey(Polygon& p, std::string& key) {
    key.clear();
    Fields f;
    styleFields(p, f);
    for (const Field& x : f) {
        switch (x.type) {
        case FieldType::I32:
        case FieldType::Ref:
            key.append(static_cast<const char*>(x.ptr), x.count * 4u);
            break;
        case FieldType::I64:
        case FieldType::F64:
            key.append(static_cast<const char*>(x.ptr), x.count * 8u);
            break;
        case FieldType::Bool:
            key.push_back(*static_cast<const bool*>(x.ptr) ? 1 : 0);
            break;
        case FieldType::Str: {
            const auto& s = *static_cast<const std::string*>(x.ptr);
            const uint64_t n = s.size();
            key.append(reinterpret_cast<const char*>(&n), 8);
            key += s;
            break;
        }
        case FieldType::F64List: {
            const auto& v = *static_cast<const std::vector<double>*>(x.ptr);
            const uint64_t n = v.size();
            key.append(reinterpret_cast<const char*>(&n), 8);
            key.append(reinterpret_cast<const char*>(v.data()), v.size() * 8);
            break;
        }
        case FieldType::Frames: {
            const auto& v = *static_cast<const std::vector<Animation::Frame>*>(x.ptr);
            const uint64_t n = v.size();
            key.append(reinterpret_cast<const char*>(&n), 8);
            key.append(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(Animation::Frame));
            break;
        }
        }
    }
}

// The file a bitmap is written to: its name with the extension of its source (".bmp"
// for generated ones), made unique when two different bitmaps would share it.
std::string bitmapFileName(const Bitmap& b, std::unordered_map<std::string, const Bitmap*>& taken) {
    std::string ext = std::filesystem::path(b.path).extension().string();
    if (ext.empty()) ext = ".bmp";
    std::string base = b.name;
    for (char& c : base)
        if (c == '/' || c == '\\' || c == '\0') c = '_';
    if (base.empty() || base == "." || base == "..") base = "bitmap";
    std::string file = base + ext;
    for (int n = 2;; ++n) {
        auto it = taken.find(file);
        if (it == taken.end()) break;
        if (!b.path.empty() && it->second->path == b.path) return file; // same source, same file
        file = base + "_" + std::to_string(n) + ext;
    }
    taken.emplace(file, &b);
    return file;
}

} // namespace

bool collectSaveSet(const World& w, Group* root, int flags, SaveSet& out, std::string& error) {
    if (flags & ~kSaveKnownFlags) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "unknown save flag bits 0x%X",
                      static_cast<unsigned>(flags & ~kSaveKnownFlags));
        error = buf;
        return false;
    }
    if ((flags & kSaveGroups) && !root) {
        error = "no group to save";
        return false;
    }
    out = SaveSet{};
    std::unordered_set<Handle> usedBitmaps, usedAnimations;

    if (flags & kSaveGroups) {
        for (Group* g = root; g; g = World::nextInSubtree(g, root)) {
            const uint32_t gi = static_cast<uint32_t>(out.groups.size());
            out.index[g->handle] = gi;
            out.groups.push_back(g);
            out.fathers.push_back(g == root ? -1 : static_cast<int32_t>(out.index.at(g->father->handle)));
        }
        std::unordered_map<std::string, uint32_t> styleIds;
        std::string key;
        uint32_t prevStyle = 0;
        const Polygon* prev = nullptr;
        for (uint32_t gi = 0; gi < out.groups.size(); ++gi) {
            for (Polygon* p = out.groups[gi]->firstPolygon; p; p = p->nextInGroup) {
                uint32_t sid;
                if (prev && sameStyle(*prev, *p)) { // neighbours mostly look alike
                    sid = prevStyle;
                } else {
                    styleKey(*p, key);
                    auto [it, fresh] = styleIds.emplace(key, static_cast<uint32_t>(out.styles.size()));
                    if (fresh) {
                        out.styles.push_back(p);
                        if (p->fill.bitmap) usedBitmaps.insert(p->fill.bitmap);
                        if (p->fill.secondBitmap) usedBitmaps.insert(p->fill.secondBitmap);
                        if (p->fill.animation) usedAnimations.insert(p->fill.animation);
                    }
                    sid = it->second;
                    prevStyle = sid;
                }
                prev = p;
                out.polygons.push_back(p);
                out.polygonGroup.push_back(gi);
                out.polygonStyle.push_back(sid);
            }
        }
    }

    auto inSubtree = [&](Handle h) {
        if (!h) return false;
        if (Group* g = w.group(h)) return out.index.count(g->handle) > 0;
        if (Polygon* p = w.polygon(h)) return p->group && out.index.count(p->group->handle) > 0;
        return false;
    };
    for (Light* l : w.list<Light>())
        if (l->saveFlag == 1 &&
            ((flags & kSaveScene) || ((flags & kSaveSubtreeLights) && inSubtree(l->entityToLight))))
            out.lights.push_back(l);
    if (flags & kSaveScene) {
        for (Camera* c : w.list<Camera>())
            if (c->saveFlag == 1) out.cameras.push_back(c);
        for (Track* t : w.list<Track>())
            if (t->saveFlag == 1) out.tracks.push_back(t);
        for (Background* b : w.list<Background>())
            if (b->saveFlag == 1) {
                out.backgrounds.push_back(b);
                if (b->bitmap) usedBitmaps.insert(b->bitmap);
            }
    }
    for (Animation* a : w.list<Animation>())
        if (usedAnimations.count(a->handle) || ((flags & kSaveAnimations) && a->saveFlag == 1)) {
            out.animations.push_back(a);
            for (const auto& dir : a->frames)
                for (const Animation::Frame& f : dir)
                    if (f.bitmap) usedBitmaps.insert(f.bitmap);
        }
    std::unordered_map<std::string, const Bitmap*> taken;
    for (Bitmap* b : w.list<Bitmap>())
        if (usedBitmaps.count(b->handle)) {
            out.bitmaps.push_back(b);
            out.bitmapFiles.push_back(bitmapFileName(*b, taken));
        }

    auto number = [&](const auto& list) {
        for (uint32_t i = 0; i < list.size(); ++i)
            out.index[list[i]->handle] = i;
    };
    number(out.bitmaps);
    number(out.animations);
    number(out.cameras);
    number(out.lights);
    number(out.tracks);
    number(out.backgrounds);

    // Polygons get a number only when a light or camera refers to one.
    std::unordered_set<Handle> wanted;
    for (Light* l : out.lights)
        if (w.polygon(l->entityToLight)) wanted.insert(l->entityToLight);
    for (Camera* c : out.cameras)
        if (w.polygon(c->chasedObject)) wanted.insert(c->chasedObject);
    if (!wanted.empty())
        for (uint32_t i = 0; i < out.polygons.size(); ++i)
            if (wanted.count(out.polygons[i]->handle)) out.index[out.polygons[i]->handle] = i;
    return true;
}

} // namespace zelmar::io
