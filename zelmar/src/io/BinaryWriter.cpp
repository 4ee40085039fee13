#include "io/BinaryFormat.h"

#include "io/Crc32.h"
#include "io/Schema.h"
#include <cstring>

namespace zelmar::io {

const uint8_t kMagicZelmar[kMagicSize] = {0x89, 'Z', 'L', 'W', '\r', '\n', 0x1A, '\n'};
const uint8_t kMagicTolvane[kMagicSize] = {0x89, 'T', 'L', 'V', '\r', '\n', 0x1A, '\n'};
const uint8_t kMagicCompressed[kMagicSize] = {0x89, 'Z', 'L', 'Z', '\r', '\n', 0x1A, '\n'};

namespace {

// Chunks above this size are split (only polygons ever get there).
constexpr size_t kPolygonChunkBytes = size_t(8) << 20;

struct Writer {
    const World& w;
    const SaveSet& s;
    Sink& sink;
    std::string& error;
    Out out;

    bool fail(std::string text) {
        error = std::move(text);
        return false;
    }

    bool chunk(const char* tag) {
        uint8_t head[16];
        std::memcpy(head, tag, 4);
        const uint32_t reserved = 0;
        const uint64_t len = out.size();
        std::memcpy(head + 4, &reserved, 4);
        std::memcpy(head + 8, &len, 8);
        const uint32_t c = crc32(crc32(0, head, 16), out.data(), out.size());
        const bool ok = sink.write(head, 16) && sink.write(out.data(), out.size()) && sink.write(&c, 4);
        out.clear();
        return ok ? true : fail("write failed");
    }

    void ref(Handle h, Kind expected) {
        Kind k;
        uint32_t idx;
        if (s.refOf(w, h, k, idx) && (expected == Kind::None || expected == k)) {
            out.i32(static_cast<int32_t>(k));
            out.u32(idx);
        } else {
            out.i32(0);
            out.u32(0);
        }
    }

    bool record(const Fields& f, const char* what, size_t index) {
        const char* bad = nullptr;
        if (!allFinite(f, &bad))
            return fail(std::string(what) + " " + std::to_string(index) + ": field " + bad +
                        " is not finite");
        for (const Field& x : f) {
            switch (x.type) {
            case FieldType::I32:
                out.raw(x.ptr, x.count * 4u);
                break;
            case FieldType::I64:
            case FieldType::F64:
                out.raw(x.ptr, x.count * 8u);
                break;
            case FieldType::Bool:
                out.u8(*static_cast<const bool*>(x.ptr) ? 1 : 0);
                break;
            case FieldType::Str:
                out.str(*static_cast<const std::string*>(x.ptr));
                break;
            case FieldType::Ref:
                ref(*static_cast<const Handle*>(x.ptr), x.refKind);
                break;
            case FieldType::F64List: {
                const auto& v = *static_cast<const std::vector<double>*>(x.ptr);
                out.u32(static_cast<uint32_t>(v.size()));
                out.raw(v.data(), v.size() * 8);
                break;
            }
            case FieldType::Frames: {
                const auto& v = *static_cast<const std::vector<Animation::Frame>*>(x.ptr);
                out.u32(static_cast<uint32_t>(v.size()));
                for (const Animation::Frame& fr : v) {
                    Kind k;
                    uint32_t idx;
                    out.i32(s.refOf(w, fr.bitmap, k, idx) && k == Kind::Bitmap ? static_cast<int32_t>(idx)
                                                                               : -1);
                    out.i32(fr.time);
                    out.i32(fr.transparentIndex);
                }
                break;
            }
            }
        }
        return true;
    }

    template <class T, class Fn>
    bool records(const char* tag, const std::vector<T*>& list, Fn fieldsOf, const char* what) {
        out.u32(static_cast<uint32_t>(list.size()));
        for (size_t i = 0; i < list.size(); ++i) {
            Fields f;
            fieldsOf(*list[i], f);
            if (!record(f, what, i)) return false;
        }
        return chunk(tag);
    }

    bool schema() {
        out.u32(kRecordKinds);
        for (int k = 0; k < kRecordKinds; ++k) {
            const auto& sc = schemaOf(static_cast<RecordKind>(k));
            out.str(recordName(static_cast<RecordKind>(k)));
            out.u32(static_cast<uint32_t>(sc.size()));
            for (const SchemaEntry& e : sc) {
                out.str(e.name);
                out.u8(static_cast<uint8_t>(e.type));
                out.u8(e.count);
            }
        }
        return chunk("SCHM");
    }

    bool bitmaps() {
        out.u32(static_cast<uint32_t>(s.bitmaps.size()));
        for (size_t i = 0; i < s.bitmaps.size(); ++i) {
            out.str(s.bitmapFiles[i]);
            Fields f;
            bitmapFields(*s.bitmaps[i], f);
            if (!record(f, "bitmap", i)) return false;
        }
        return chunk("BMPS");
    }

    bool groups() {
        out.u32(static_cast<uint32_t>(s.groups.size()));
        for (size_t i = 0; i < s.groups.size(); ++i) {
            out.i32(s.fathers[i]);
            Fields f;
            groupFields(*s.groups[i], f);
            if (!record(f, "group", i)) return false;
        }
        return chunk("GRPS");
    }

    bool styles() {
        out.u32(static_cast<uint32_t>(s.styles.size()));
        for (size_t i = 0; i < s.styles.size(); ++i) {
            Fields f;
            styleFields(*s.styles[i], f);
            if (!record(f, "polygon style", i)) return false;
        }
        return chunk("STYL");
    }

    // Polygons in chunks of bounded size; the count of each chunk leads it.
    bool polygons() {
        const auto& attrs = pointAttrs();
        size_t i = 0;
        const size_t n = s.polygons.size();
        while (i < n) {
            out.u32(0); // patched below
            uint32_t inChunk = 0;
            while (i < n && out.size() < kPolygonChunkBytes) {
                const Polygon& p = *s.polygons[i];
                const uint32_t mask = pointMaskOf(p) | 1u;
                out.u32(s.polygonGroup[i]);
                out.u32(s.polygonStyle[i]);
                out.str(p.name);
                out.u32(static_cast<uint32_t>(p.points.size()));
                out.u32(mask);
                for (const PointData& d : p.points) {
                    for (size_t a = 0; a < attrs.size(); ++a) {
                        if (!(mask & (1u << a))) continue;
                        const char* src = reinterpret_cast<const char*>(&d) + attrs[a].offset;
                        for (unsigned k = 0; k < attrs[a].count; ++k) {
                            uint64_t bits;
                            std::memcpy(&bits, src + 8 * k, 8);
                            if (!finiteBits(bits))
                                return fail("polygon " + std::to_string(i) + ": point " + attrs[a].name +
                                            " is not finite");
                        }
                        out.raw(src, attrs[a].count * 8u);
                    }
                }
                ++i;
                ++inChunk;
            }
            std::memcpy(out.data(), &inChunk, 4);
            if (!chunk("POLY")) return false;
        }
        return true;
    }

    bool all(const uint8_t* magic) {
        uint8_t head[16];
        std::memcpy(head, magic, kMagicSize);
        const uint32_t version = kBinaryVersion, reserved = 0;
        std::memcpy(head + 8, &version, 4);
        std::memcpy(head + 12, &reserved, 4);
        if (!sink.write(head, 16)) return fail("write failed");
        return schema() && bitmaps() && records("ANIM", s.animations, animationFields, "animation") &&
               groups() && styles() && polygons() && records("CAMS", s.cameras, cameraFields, "camera") &&
               records("LGTS", s.lights, lightFields, "light") &&
               records("TRKS", s.tracks, trackFields, "track") &&
               records("BKGS", s.backgrounds, backgroundFields, "background") && chunk("END ");
    }
};

} // namespace

bool writeBinary(const World& w, const SaveSet& s, const uint8_t* magic, Sink& out, std::string& error) {
    Writer wr{w, s, out, error, {}};
    wr.out.reserve(kPolygonChunkBytes + (size_t(1) << 16));
    return wr.all(magic);
}

} // namespace zelmar::io
