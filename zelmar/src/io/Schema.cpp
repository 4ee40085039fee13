#include "io/Schema.h"

#include <cmath>
#include <cstddef>
#include <cstring>

namespace zelmar::io {

void Fields::add(const char* n, void* p, FieldType t, int count, Kind k) {
    // A list that outgrows kMax is a programming error caught by the schema test.
    if (n_ >= kMax) return;
    items_[n_++] = Field{n, p, t, static_cast<uint8_t>(count), k};
}

const char* recordName(RecordKind k) {
    static const char* const names[kRecordKinds] = {"bitmap", "animation", "group", "style",     "point",
                                                    "camera", "light",     "track", "background"};
    return names[static_cast<int>(k)];
}

namespace {
struct KindWord {
    Kind kind;
    const char* word;
};
constexpr KindWord kKindWords[] = {{Kind::Group, "group"},   {Kind::Polygon, "polygon"},       {Kind::Camera, "camera"},
                                   {Kind::Light, "light"},   {Kind::Track, "track"},           {Kind::Background, "background"},
                                   {Kind::Bitmap, "bitmap"}, {Kind::Animation, "animation"}};
} // namespace

const char* kindWord(Kind k) {
    for (const KindWord& kw : kKindWords)
        if (kw.kind == k) return kw.word;
    return "none";
}

Kind kindOfWord(std::string_view word) {
    for (const KindWord& kw : kKindWords)
        if (word == kw.word) return kw.kind;
    return Kind::None;
}

void bitmapFields(Bitmap& b, Fields& f) {
    f.str("name", b.name);
    f.i32("transparent_index", b.transparentIndex);
}

void animationFields(Animation& a, Fields& f) {
    f.str("name", a.name);
    f.frames("frames_front", a.frames[0]);
    f.frames("frames_front_sided", a.frames[1]);
    f.frames("frames_side", a.frames[2]);
    f.frames("frames_back_sided", a.frames[3]);
    f.frames("frames_back", a.frames[4]);
    f.i32("save_flag", a.saveFlag);
}

void groupFields(Group& g, Fields& f) {
    f.str("name", g.name);
    f.boolean("disabled", g.disabled);
    f.boolean("load_as_disabled", g.loadAsDisabled);
    f.boolean("static", g.isStatic);
    f.f64("reference_point", g.referencePoint, 3);
    f.boolean("reference_point_set", g.referencePointSet);
    f.f64("empty_location", g.emptyLocation, 3);
    f.f64("axis", &g.axis[0][0], 9);
    f.i32("chase_type", g.chaseType);
    f.str("chased_name", g.chasedName);
    f.f64("chase_distance", g.chaseDistance);
    f.f64("chase_softness", g.chaseSoftness);
    f.f64("chase_offset", g.chaseOffset, 3);
    f.str("track_name", g.trackName);
    f.f64("track_offset", g.trackOffset, 3);
    f.f64("speed", g.speed);
    f.f64("absolute_speed", g.absoluteSpeed);
    f.f64("physics_rotation", g.physicsRotation, 3);
    f.f64("physics_force", g.physicsForce, 3);
    f.f64("physics_friction", g.physicsFriction);
    f.f64("physics_elasticity", g.physicsElasticity);
    f.f64("physics_max_speed", g.physicsMaxSpeed);
    f.i32("control_number", g.controlNumber);
    f.i32("falling_from_track", g.fallingFromTrack);
    f.f64("falling_height", g.fallingHeight);
}

void styleFields(Polygon& p, Fields& f) {
    Fill& x = p.fill;
    f.i32("color", x.color, 3);
    f.ref("bitmap", x.bitmap, Kind::Bitmap);
    f.ref("animation", x.animation, Kind::Animation);
    f.i32("animation_frame", x.animationFrame);
    f.ref("second_bitmap", x.secondBitmap, Kind::Bitmap);
    f.i32("translucent", x.translucent);
    f.i32("rotated", x.rotated);
    f.f64("bitmap_rotation", x.bitmapRotation);
    f.f64("light_diminution", x.lightDiminution);
    f.i32("bilinear", x.bilinear);
    f.f64("brightness", x.brightness);
    f.f64("ambient", x.ambient, 3);
    f.f64("diffuse", x.diffuse, 3);
    f.f64("specular", x.specular, 3);
    f.f64("specular_shining", x.specularShining);
    f.i32("orientation", p.orientation);
    f.boolean("disabled", p.disabled);
    f.boolean("collisional", p.collisional);
    f.i32("release_save_flag", p.releaseSaveFlag);
    f.i64("own_data", p.ownData);
}

void pointFields(PointData& p, Fields& f) {
    f.f64("xyz", p.xyz, 3);
    f.f64("uv", p.uv, 2);
    f.f64("uv2", p.uv2, 2);
    f.f64("brightness", p.brightness);
    f.f64("rgb", p.rgb, 3);
    f.f64("normal", p.normal, 3);
}

void cameraFields(Camera& c, Fields& f) {
    f.str("name", c.name);
    f.f64("location", c.location, 3);
    f.f64("axis", &c.axis[0][0], 9);
    f.f64("zoom", c.zoom);
    f.f64("distance_from_eye", c.distanceFromEye);
    f.boolean("perspective", c.perspective);
    f.f64("parallel_width", c.parallelWidth);
    f.f64("parallel_height", c.parallelHeight);
    f.i32("save_flag", c.saveFlag);
    f.i32("chase_type", c.chaseType);
    f.str("chased_name", c.chasedName);
    f.ref("chased_camera", c.chasedCamera, Kind::Camera);
    f.ref("chased_group", c.chasedGroup, Kind::Group);
    f.ref("chased_object", c.chasedObject, Kind::None);
    f.f64("chase_distance", c.chaseDistance);
    f.f64("chase_softness", c.chaseSoftness);
    f.f64("chase_offset", c.chaseOffset, 3);
    f.ref("track", c.track, Kind::Track);
    f.str("track_name", c.trackName);
    f.f64("track_offset", c.trackOffset, 3);
    f.i32("next_point_on_track", c.nextPointOnTrack);
    f.f64("speed", c.speed);
    f.f64("absolute_speed", c.absoluteSpeed);
    f.f64("max_speed", c.maxSpeed);
    f.f64("force", c.force, 3);
    f.f64("friction", c.friction);
    f.f64("elasticity", c.elasticity);
    f.f64("focus", c.focus);
}

void lightFields(Light& l, Fields& f) {
    f.str("name", l.name);
    f.f64("location", l.location, 3);
    f.f64("direction", l.direction, 3);
    f.f64("color", l.color, 3);
    f.f64("ambient", l.ambient);
    f.f64("diffuse", l.diffuse);
    f.f64("specular", l.specular);
    f.f64("specular_shining", l.specularShining);
    f.i32("type", l.type);
    f.f64("distance_reach", l.distanceReach);
    f.ref("entity_to_light", l.entityToLight, Kind::None);
    f.i32("ray_tracing", l.rayTracing);
    f.i32("activate_before_render", l.activateBeforeRender);
    f.boolean("disabled", l.disabled);
    f.i32("save_flag", l.saveFlag);
}

void trackFields(Track& t, Fields& f) {
    f.str("name", t.name);
    f.f64list("points", t.points);
    f.i32("cyclic", t.cyclic);
    f.i32("save_flag", t.saveFlag);
}

void backgroundFields(Background& b, Fields& f) {
    f.str("name", b.name);
    f.ref("bitmap", b.bitmap, Kind::Bitmap);
    f.f64("bottom", b.bottom);
    f.f64("bottom_intensity", b.bottomIntensity);
    f.f64("distance", b.distance);
    f.f64("intensity_step", b.intensityStep);
    f.i32("save_flag", b.saveFlag);
}

namespace {
std::vector<SchemaEntry> toSchema(const Fields& f) {
    std::vector<SchemaEntry> out;
    for (const Field& x : f)
        out.push_back(SchemaEntry{x.name, x.type, x.count});
    return out;
}

std::vector<SchemaEntry> buildSchema(RecordKind k) {
    Fields f;
    switch (k) {
    case RecordKind::Bitmap: {
        static Bitmap b;
        bitmapFields(b, f);
        break;
    }
    case RecordKind::Animation: {
        static Animation a;
        animationFields(a, f);
        break;
    }
    case RecordKind::Group: {
        static Group g;
        groupFields(g, f);
        break;
    }
    case RecordKind::Style: {
        static Polygon p;
        styleFields(p, f);
        break;
    }
    case RecordKind::Point: {
        static PointData p;
        pointFields(p, f);
        break;
    }
    case RecordKind::Camera: {
        static Camera c;
        cameraFields(c, f);
        break;
    }
    case RecordKind::Light: {
        static Light l;
        lightFields(l, f);
        break;
    }
    case RecordKind::Track: {
        static Track t;
        trackFields(t, f);
        break;
    }
    case RecordKind::Background: {
        static Background b;
        backgroundFields(b, f);
        break;
    }
    }
    return toSchema(f);
}
} // namespace

const std::vector<SchemaEntry>& schemaOf(RecordKind k) {
    static const std::vector<SchemaEntry> all[kRecordKinds] = {
        buildSchema(RecordKind::Bitmap),    buildSchema(RecordKind::Animation),
        buildSchema(RecordKind::Group),     buildSchema(RecordKind::Style),
        buildSchema(RecordKind::Point),     buildSchema(RecordKind::Camera),
        buildSchema(RecordKind::Light),     buildSchema(RecordKind::Track),
        buildSchema(RecordKind::Background)};
    return all[static_cast<int>(k)];
}

const std::vector<PointAttr>& pointAttrs() {
    static const std::vector<PointAttr> attrs = [] {
        std::vector<PointAttr> out;
        PointData p;
        Fields f;
        pointFields(p, f);
        for (const Field& x : f)
            out.push_back(PointAttr{
                x.name,
                static_cast<uint32_t>(static_cast<const char*>(x.ptr) - reinterpret_cast<const char*>(&p)),
                x.count});
        return out;
    }();
    return attrs;
}

uint32_t pointMaskOf(const Polygon& p) {
    static const PointData defaults{};
    const auto& attrs = pointAttrs();
    const uint32_t all = (attrs.size() >= 32) ? 0xFFFFFFFFu : ((1u << attrs.size()) - 1);
    uint32_t mask = 0;
    for (const PointData& d : p.points) {
        for (size_t i = 0; i < attrs.size(); ++i) {
            if (mask & (1u << i)) continue;
            const char* a = reinterpret_cast<const char*>(&d) + attrs[i].offset;
            const char* b = reinterpret_cast<const char*>(&defaults) + attrs[i].offset;
            if (std::memcmp(a, b, attrs[i].count * sizeof(double)) != 0) mask |= 1u << i;
        }
        if (mask == all) break;
    }
    return mask;
}

namespace {
struct Slot {
    uint32_t offset;
    uint32_t bytes;
    FieldType type;
};

uint32_t podBytes(const Field& x) {
    switch (x.type) {
    case FieldType::I32:
    case FieldType::Ref:
        return 4u * x.count;
    case FieldType::I64:
    case FieldType::F64:
        return 8u * x.count;
    case FieldType::Bool:
        return sizeof(bool);
    default:
        return 0;
    }
}

const std::vector<Slot>& styleSlots() {
    static const std::vector<Slot> slots = [] {
        std::vector<Slot> out;
        Polygon p;
        Fields f;
        styleFields(p, f);
        for (const Field& x : f)
            out.push_back(Slot{
                static_cast<uint32_t>(static_cast<const char*>(x.ptr) - reinterpret_cast<const char*>(&p)),
                podBytes(x), x.type});
        return out;
    }();
    return slots;
}

template <class T> const T& at(const Polygon& p, const Slot& s) {
    return *reinterpret_cast<const T*>(reinterpret_cast<const char*>(&p) + s.offset);
}
template <class T> T& at(Polygon& p, const Slot& s) {
    return *reinterpret_cast<T*>(reinterpret_cast<char*>(&p) + s.offset);
}
} // namespace

bool sameStyle(const Polygon& a, const Polygon& b) {
    for (const Slot& s : styleSlots()) {
        if (s.bytes) {
            const char* x = reinterpret_cast<const char*>(&a) + s.offset;
            const char* y = reinterpret_cast<const char*>(&b) + s.offset;
            for (uint32_t k = 0; k < s.bytes; ++k) // short runs: a call to memcmp costs more
                if (x[k] != y[k]) return false;
        } else if (s.type == FieldType::Str) {
            if (at<std::string>(a, s) != at<std::string>(b, s)) return false;
        } else if (s.type == FieldType::F64List) {
            const auto& u = at<std::vector<double>>(a, s);
            const auto& v = at<std::vector<double>>(b, s);
            if (u.size() != v.size() || (!u.empty() && std::memcmp(u.data(), v.data(), u.size() * 8) != 0))
                return false;
        } else {
            const auto& u = at<std::vector<Animation::Frame>>(a, s);
            const auto& v = at<std::vector<Animation::Frame>>(b, s);
            if (u.size() != v.size()) return false;
            for (size_t k = 0; k < u.size(); ++k)
                if (u[k].bitmap != v[k].bitmap || u[k].time != v[k].time ||
                    u[k].transparentIndex != v[k].transparentIndex)
                    return false;
        }
    }
    return true;
}

void copyStyle(const Polygon& from, Polygon& to) {
    for (const Slot& s : styleSlots()) {
        if (s.bytes)
            std::memcpy(reinterpret_cast<char*>(&to) + s.offset,
                        reinterpret_cast<const char*>(&from) + s.offset, s.bytes);
        else if (s.type == FieldType::Str)
            at<std::string>(to, s) = at<std::string>(from, s);
        else if (s.type == FieldType::F64List)
            at<std::vector<double>>(to, s) = at<std::vector<double>>(from, s);
        else
            at<std::vector<Animation::Frame>>(to, s) = at<std::vector<Animation::Frame>>(from, s);
    }
}

bool allFinite(const Fields& f, const char** badField) {
    for (const Field& x : f) {
        const double* v = nullptr;
        size_t n = 0;
        if (x.type == FieldType::F64) {
            v = static_cast<const double*>(x.ptr);
            n = x.count;
        } else if (x.type == FieldType::F64List) {
            const auto& vec = *static_cast<const std::vector<double>*>(x.ptr);
            v = vec.data();
            n = vec.size();
        }
        for (size_t i = 0; i < n; ++i)
            if (!std::isfinite(v[i])) {
                if (badField) *badField = x.name;
                return false;
            }
    }
    return true;
}

void copyFields(const Fields& from, const Fields& to) {
    for (int i = 0; i < from.size() && i < to.size(); ++i) {
        const Field& a = from[i];
        const Field& b = to[i];
        switch (a.type) {
        case FieldType::I32:
        case FieldType::Ref:
            std::memcpy(b.ptr, a.ptr, a.count * sizeof(int32_t));
            break;
        case FieldType::I64:
            std::memcpy(b.ptr, a.ptr, a.count * sizeof(int64_t));
            break;
        case FieldType::F64:
            std::memcpy(b.ptr, a.ptr, a.count * sizeof(double));
            break;
        case FieldType::Bool:
            *static_cast<bool*>(b.ptr) = *static_cast<const bool*>(a.ptr);
            break;
        case FieldType::Str:
            *static_cast<std::string*>(b.ptr) = *static_cast<const std::string*>(a.ptr);
            break;
        case FieldType::F64List:
            *static_cast<std::vector<double>*>(b.ptr) = *static_cast<const std::vector<double>*>(a.ptr);
            break;
        case FieldType::Frames:
            *static_cast<std::vector<Animation::Frame>*>(b.ptr) =
                *static_cast<const std::vector<Animation::Frame>*>(a.ptr);
            break;
        }
    }
}

bool equalFields(const Fields& a, const Fields& b, SameRef sameRef, void* context, const char** differing) {
    auto fail = [&](const Field& x) {
        if (differing) *differing = x.name;
        return false;
    };
    if (a.size() != b.size()) return fail(a[0]);
    for (int i = 0; i < a.size(); ++i) {
        const Field& x = a[i];
        const Field& y = b[i];
        switch (x.type) {
        case FieldType::I32:
            if (std::memcmp(x.ptr, y.ptr, x.count * sizeof(int32_t)) != 0) return fail(x);
            break;
        case FieldType::I64:
            if (std::memcmp(x.ptr, y.ptr, x.count * sizeof(int64_t)) != 0) return fail(x);
            break;
        case FieldType::F64: // bit for bit: -0.0 differs from 0.0
            if (std::memcmp(x.ptr, y.ptr, x.count * sizeof(double)) != 0) return fail(x);
            break;
        case FieldType::Bool:
            if (*static_cast<const bool*>(x.ptr) != *static_cast<const bool*>(y.ptr)) return fail(x);
            break;
        case FieldType::Str:
            if (*static_cast<const std::string*>(x.ptr) != *static_cast<const std::string*>(y.ptr))
                return fail(x);
            break;
        case FieldType::Ref:
            if (!sameRef(*static_cast<const Handle*>(x.ptr), *static_cast<const Handle*>(y.ptr), context))
                return fail(x);
            break;
        case FieldType::F64List: {
            const auto& u = *static_cast<const std::vector<double>*>(x.ptr);
            const auto& v = *static_cast<const std::vector<double>*>(y.ptr);
            if (u.size() != v.size() || (!u.empty() && std::memcmp(u.data(), v.data(), u.size() * 8) != 0))
                return fail(x);
            break;
        }
        case FieldType::Frames: {
            const auto& u = *static_cast<const std::vector<Animation::Frame>*>(x.ptr);
            const auto& v = *static_cast<const std::vector<Animation::Frame>*>(y.ptr);
            if (u.size() != v.size()) return fail(x);
            for (size_t k = 0; k < u.size(); ++k)
                if (u[k].time != v[k].time || u[k].transparentIndex != v[k].transparentIndex ||
                    !sameRef(u[k].bitmap, v[k].bitmap, context))
                    return fail(x);
            break;
        }
        }
    }
    return true;
}

} // namespace zelmar::io
