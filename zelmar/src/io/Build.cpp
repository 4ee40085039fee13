#include "io/Build.h"

#include "io/AtomicFile.h"
#include "io/Schema.h"
#include "scene/BitmapStore.h"
#include <cstring>
#include <filesystem>

namespace zelmar::io {

uint32_t pointStride(uint32_t mask) {
    uint32_t n = 0;
    const auto& attrs = pointAttrs();
    for (size_t i = 0; i < attrs.size(); ++i)
        if (mask & (1u << i)) n += attrs[i].count * 8;
    return n;
}

namespace {

std::string at(const char* unit, uint64_t where) {
    return std::string(unit) + " " + std::to_string(where) + ": ";
}

size_t countOf(const WorldData& d, Kind k) {
    switch (k) {
    case Kind::Group:
        return d.groups.size();
    case Kind::Polygon:
        return d.polygons.size();
    case Kind::Camera:
        return d.cameras.size();
    case Kind::Light:
        return d.lights.size();
    case Kind::Track:
        return d.tracks.size();
    case Kind::Background:
        return d.backgrounds.size();
    case Kind::Bitmap:
        return d.bitmaps.size();
    case Kind::Animation:
        return d.animations.size();
    default:
        return 0;
    }
}

bool validFileName(const std::string& f) {
    if (f.empty() || f == "." || f == ".." || f.size() > 255) return false;
    for (char c : f)
        if (c == '/' || c == '\\' || c == '\0') return false;
    return true;
}

} // namespace

bool validate(const WorldData& d, const char* unit, std::string& error) {
    for (size_t i = 0; i < d.bitmaps.size(); ++i)
        if (!validFileName(d.bitmaps[i].file)) {
            error =
                at(unit, d.bitmaps[i].where) + "bitmap " + std::to_string(i) + " has an invalid file name";
            return false;
        }
    for (size_t i = 0; i < d.groups.size(); ++i) {
        const int64_t f = d.groups[i].father;
        if (f < -1 || f >= static_cast<int64_t>(i)) {
            error = at(unit, d.groups[i].where) + "group " + std::to_string(i) + " names father " +
                    std::to_string(f) + ", which is not an earlier group (a cycle or a dangling link)";
            return false;
        }
    }
    for (const StagedRef& r : d.refs) {
        const size_t n = countOf(d, r.kind);
        if (r.index >= n) {
            error = at(unit, r.where) + "reference to " + kindWord(r.kind) + " " + std::to_string(r.index) +
                    ", but the file has " + std::to_string(n);
            return false;
        }
    }
    for (size_t i = 0; i < d.tracks.size(); ++i)
        if (d.tracks[i].points.size() % 3 != 0) {
            error = at(unit, i < d.trackWhere.size() ? d.trackWhere[i] : 0) + "track " + std::to_string(i) +
                    " has a number of values that is not a multiple of 3";
            return false;
        }
    // Polygons are checked by the readers as they go (group, style, point bytes); this is
    // the last line of defence for a reader that forgot one.
    uint64_t end = 0;
    for (size_t i = 0; i < d.polygons.size(); ++i) {
        const StagedPolygon& p = d.polygons[i];
        if (p.group >= d.groups.size() || p.style >= d.styles.size() || !(p.mask & 1u)) {
            error = at(unit, p.where) + "polygon " + std::to_string(i) + " names group " +
                    std::to_string(p.group) + " of " + std::to_string(d.groups.size()) + " and style " +
                    std::to_string(p.style) + " of " + std::to_string(d.styles.size());
            return false;
        }
        end = p.pointOffset + static_cast<uint64_t>(p.pointCount) * pointStride(p.mask);
        if (end > d.pointBytesSize) {
            error = at(unit, p.where) + "polygon " + std::to_string(i) + " has point data past the end";
            return false;
        }
    }
    return true;
}

BitmapImages loadBitmapImages(const WorldData& d, const std::vector<std::string>& folders) {
    BitmapImages out;
    const size_t n = d.bitmaps.size();
    out.images.resize(n);
    out.paths.resize(n);
    out.found.assign(n, false);
    for (size_t i = 0; i < n; ++i) {
        const std::string& file = d.bitmaps[i].file;
        std::string lastProblem = "not found";
        for (const std::string& folder : folders) {
            if (folder.empty()) continue;
            const std::filesystem::path p = std::filesystem::path(folder) / file;
            std::error_code ec;
            if (const std::string why = notARegularFile(p.string()); !why.empty()) {
                if (why != "not found") lastProblem = p.string() + ": " + why;
                continue;
            }
            std::string err;
            if (image::decodeFile(p.string(), out.images[i], err)) {
                out.paths[i] = std::filesystem::absolute(p, ec).string();
                out.found[i] = true;
                break;
            }
            lastProblem = err;
        }
        if (!out.found[i]) out.problems.push_back("bitmap \"" + file + "\": " + lastProblem);
    }
    return out;
}

namespace {

struct Builder {
    World& w;
    WorldData& d;
    std::vector<Handle> handles[10]; // by Kind, file index -> handle

    Handle resolve(Handle staged) const {
        if (staged <= 0) return 0;
        const StagedRef& r = d.refs[staged - 1];
        const auto& v = handles[static_cast<int>(r.kind)];
        return r.index < v.size() ? v[r.index] : 0;
    }

    void resolveFields(const Fields& f) {
        for (const Field& x : f) {
            if (x.type == FieldType::Ref) {
                Handle& h = *static_cast<Handle*>(x.ptr);
                h = resolve(h);
            } else if (x.type == FieldType::Frames) {
                for (Animation::Frame& fr : *static_cast<std::vector<Animation::Frame>*>(x.ptr))
                    fr.bitmap = resolve(fr.bitmap);
            }
        }
    }

    template <class T, class FieldsFn> void copyInto(T& staged, T& fresh, FieldsFn fn) {
        Fields from, to;
        fn(staged, from);
        fn(fresh, to);
        copyFields(from, to);
    }
};

// The same file with the same transparency is loaded once, as bitmap_load does.
Bitmap* findShared(World& w, const Bitmap& b, const std::string& path) {
    for (Bitmap* x : w.list<Bitmap>())
        if (x->path == path && x->name == b.name && x->transparentIndex == b.transparentIndex) return x;
    return nullptr;
}

} // namespace

BuildResult build(World& w, WorldData& d, BitmapImages& images) {
    Builder b{w, d, {}};
    BuildResult result;
    auto& bitmapHandles = b.handles[static_cast<int>(Kind::Bitmap)];
    for (size_t i = 0; i < d.bitmaps.size(); ++i) {
        Bitmap& s = d.bitmaps[i].bitmap;
        if (i >= images.found.size() || !images.found[i]) {
            bitmapHandles.push_back(0);
            continue;
        }
        if (Bitmap* shared = findShared(w, s, images.paths[i])) {
            bitmapHandles.push_back(shared->handle);
            continue;
        }
        Bitmap* x = w.createBitmap(s.name);
        b.copyInto(s, *x, bitmapFields);
        image::Image& img = images.images[i];
        x->path = images.paths[i];
        x->width = img.width;
        x->height = img.height;
        x->rgba = std::move(img.rgba);
        x->indices = std::move(img.indices);
        x->palette = std::move(img.palette);
        if (bitmaps::validIndex(*x, x->transparentIndex)) bitmaps::applyTransparency(*x, x->transparentIndex);
        x->version = kPristineBitmapVersion;
        bitmapHandles.push_back(x->handle);
    }
    for (Animation& s : d.animations) {
        Animation* x = w.createAnimation(s.name);
        b.copyInto(s, *x, animationFields);
        b.handles[static_cast<int>(Kind::Animation)].push_back(x->handle);
    }
    std::vector<Group*> groups;
    groups.reserve(d.groups.size());
    for (StagedGroup& s : d.groups) {
        Group* g = w.createGroup(s.group.name);
        b.copyInto(s.group, *g, groupFields);
        if (s.father >= 0)
            w.setFather(*g, groups[static_cast<size_t>(s.father)]);
        else
            result.topGroups.push_back(g);
        groups.push_back(g);
        b.handles[static_cast<int>(Kind::Group)].push_back(g->handle);
    }
    std::vector<Camera*> cameras;
    for (Camera& s : d.cameras) {
        Camera* x = w.createCamera(s.name);
        b.copyInto(s, *x, cameraFields);
        cameras.push_back(x);
        b.handles[static_cast<int>(Kind::Camera)].push_back(x->handle);
    }
    std::vector<Light*> lights;
    for (Light& s : d.lights) {
        Light* x = w.createLight(s.name);
        b.copyInto(s, *x, lightFields);
        lights.push_back(x);
        b.handles[static_cast<int>(Kind::Light)].push_back(x->handle);
    }
    for (Track& s : d.tracks) {
        Track* x = w.createTrack(s.name);
        b.copyInto(s, *x, trackFields);
        b.handles[static_cast<int>(Kind::Track)].push_back(x->handle);
    }
    std::vector<Background*> backgrounds;
    for (Background& s : d.backgrounds) {
        Background* x = w.createBackground(s.name);
        b.copyInto(s, *x, backgroundFields);
        backgrounds.push_back(x);
        b.handles[static_cast<int>(Kind::Background)].push_back(x->handle);
    }

    // Styles: references resolved once; each becomes the model its polygons are copied from.
    std::vector<Polygon> models(d.styles.size());
    for (size_t i = 0; i < d.styles.size(); ++i) {
        Fields f;
        styleFields(d.styles[i], f);
        b.resolveFields(f);
        copyStyle(d.styles[i], models[i]);
    }
    // Every count is known: the handle table and the groups' order arrays are sized once.
    std::vector<uint32_t> perGroup(groups.size(), 0);
    uint64_t points = 0;
    size_t rings[World::kPooledRing + 1] = {};
    for (const StagedPolygon& s : d.polygons) {
        ++perGroup[s.group];
        points += s.pointCount;
        if (s.pointCount <= World::kPooledRing) ++rings[s.pointCount];
    }
    for (size_t i = 0; i < groups.size(); ++i)
        groups[i]->order.reserve(groups[i]->order.size() + perGroup[i]);
    w.reserveHandles(d.polygons.size() + points);
    w.reservePolygons(d.polygons.size(), rings);
    const auto& attrs = pointAttrs();
    auto& polygonHandles = b.handles[static_cast<int>(Kind::Polygon)];
    polygonHandles.reserve(d.polygons.size());
    const PointData defaults{};
    uint32_t planMask = 0;
    std::vector<uint32_t> plan;
    for (StagedPolygon& s : d.polygons) {
        Polygon* p = w.createPolygonFrom(models[s.style], s.pointCount);
        p->name = std::move(s.name);
        if (s.mask != planMask) { // the doubles to place, worked out once per attribute mask
            planMask = s.mask;
            plan.clear();
            for (size_t a = 0; a < attrs.size(); ++a)
                if (s.mask & (1u << a))
                    for (unsigned c = 0; c < attrs[a].count; ++c)
                        plan.push_back(attrs[a].offset + 8 * c);
        }
        const uint8_t* src = d.pointBytes + s.pointOffset;
        PointData* pts = w.appendPoints(*p, s.pointCount, defaults);
        for (uint32_t k = 0; k < s.pointCount; ++k) {
            char* dst = reinterpret_cast<char*>(pts + k);
            for (uint32_t off : plan) { // fixed-size copies: no call, no string instruction
                std::memcpy(dst + off, src, 8);
                src += 8;
            }
        }
        w.appendToGroup(*p, *groups[s.group]);
        p->addedToWorld = true;
        polygonHandles.push_back(p->handle);
    }
    w.endBulk();

    // Last, the references that may point anywhere (also forward, and at polygons).
    for (Camera* x : cameras) {
        Fields f;
        cameraFields(*x, f);
        b.resolveFields(f);
    }
    for (Light* x : lights) {
        Fields f;
        lightFields(*x, f);
        b.resolveFields(f);
    }
    for (Background* x : backgrounds) {
        Fields f;
        backgroundFields(*x, f);
        b.resolveFields(f);
    }
    auto& anims = b.handles[static_cast<int>(Kind::Animation)];
    for (Handle h : anims) {
        Fields f;
        animationFields(*w.animation(h), f);
        b.resolveFields(f);
    }
    return result;
}

} // namespace zelmar::io
