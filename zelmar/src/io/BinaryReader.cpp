#include "io/BinaryFormat.h"

#include "io/Crc32.h"
#include "io/Schema.h"
#include <algorithm>
#include <cstring>

namespace zelmar::io {

namespace {

// The file's own description of one record kind, matched by name against ours: fields we
// do not know are skipped, fields the file lacks keep their defaults.
struct FileSchema {
    bool present = false;
    std::vector<SchemaEntry> fields;
    std::vector<int> own; // our field index per file field, -1 to skip
    // The least bytes of one record, in 64 bits: a 32-bit sum over millions of wide fields
    // could wrap to nothing and let a count claim any number (the field limit now keeps
    // sums far below 2^32; the width stays, so that no limit can bring the wrap back).
    uint64_t minBytes = 0;
};

// Far more than any version will need, and few enough that a schema is read at once: a
// small (compressed) file could otherwise describe millions of fields.
constexpr uint32_t kMaxSchemaKinds = 256, kMaxSchemaFields = 4096;

uint64_t minBytesOf(FieldType t, uint8_t count) {
    switch (t) {
    case FieldType::I32:
        return 4u * uint64_t(count);
    case FieldType::I64:
    case FieldType::F64:
        return 8u * uint64_t(count);
    case FieldType::Bool:
        return 1;
    case FieldType::Ref:
        return 8;
    case FieldType::Str:
    case FieldType::F64List:
    case FieldType::Frames:
        return 4;
    }
    return 0;
}

bool knownType(uint8_t t) {
    return t >= static_cast<uint8_t>(FieldType::I32) && t <= static_cast<uint8_t>(FieldType::Frames);
}

bool validKind(int32_t k) {
    return k >= static_cast<int32_t>(Kind::Group) && k <= static_cast<int32_t>(Kind::Animation) &&
           k != static_cast<int32_t>(Kind::Point);
}

// Chunk order of a file; a chunk may not come before one of a lower rank.
int rankOf(const char* tag) {
    static const char* const order[] = {"SCHM", "BMPS", "ANIM", "GRPS", "STYL", "POLY",
                                        "CAMS", "LGTS", "TRKS", "BKGS", "END "};
    for (int i = 0; i < 11; ++i)
        if (std::memcmp(tag, order[i], 4) == 0) return i;
    return -1;
}

struct Reader {
    WorldData& d;
    FileSchema schemas[kRecordKinds];
    // Point attributes of the file mapped to ours; `samePoints` when they are identical.
    std::vector<int> pointOwn;
    std::vector<uint8_t> pointCounts;
    bool samePoints = false;

    const FileSchema& need(Cursor& c, RecordKind k) {
        const FileSchema& s = schemas[static_cast<int>(k)];
        if (!s.present) c.fail(std::string("no schema for ") + recordName(k) + " records");
        return s;
    }

    void readSchema(Cursor& c) {
        const uint32_t kinds = c.count(8);
        if (kinds > kMaxSchemaKinds)
            c.fail("the schema names " + std::to_string(kinds) + " record kinds (at most " +
                   std::to_string(kMaxSchemaKinds) + ")");
        for (uint32_t i = 0; i < kinds; ++i) {
            const std::string name = c.str();
            int kind = -1;
            for (int k = 0; k < kRecordKinds; ++k)
                if (name == recordName(static_cast<RecordKind>(k))) kind = k;
            const uint32_t n = c.count(6);
            if (n > kMaxSchemaFields)
                c.fail("schema of " + name.substr(0, 40) + " records has " + std::to_string(n) +
                       " fields (at most " + std::to_string(kMaxSchemaFields) + ")");
            FileSchema fs;
            fs.present = true;
            const auto& ours =
                kind >= 0 ? schemaOf(static_cast<RecordKind>(kind)) : schemaOf(RecordKind::Group);
            for (uint32_t f = 0; f < n; ++f) {
                SchemaEntry e;
                e.name = c.str();
                const uint8_t t = c.u8();
                e.count = c.u8();
                if (!knownType(t))
                    c.fail("field \"" + e.name + "\" has an unknown type " + std::to_string(t));
                e.type = static_cast<FieldType>(t);
                if (e.count == 0) c.fail("field \"" + e.name + "\" has no values");
                int own = -1;
                for (size_t o = 0; kind >= 0 && o < ours.size(); ++o)
                    if (ours[o].name == e.name) {
                        if (ours[o].type != e.type || ours[o].count != e.count)
                            c.fail("field \"" + e.name + "\" of " + name +
                                   " records has another type or size");
                        own = static_cast<int>(o);
                    }
                fs.minBytes += minBytesOf(e.type, e.count);
                fs.fields.push_back(std::move(e));
                fs.own.push_back(own);
            }
            if (kind < 0) continue; // a record kind of a later version: its chunks are skipped
            // Records of no bytes would let a count claim any number of them.
            if (fs.fields.empty()) c.fail("schema of " + name + " records has no fields");
            if (schemas[kind].present) c.fail("schema of " + name + " records given twice");
            schemas[kind] = std::move(fs);
        }
        if (!c.atEnd()) c.fail("unexpected bytes after the schema");
        // Points are copied in bulk, so each attribute must be plain doubles.
        const FileSchema& ps = schemas[static_cast<int>(RecordKind::Point)];
        if (!ps.present) c.fail("no schema for point records");
        if (ps.fields.size() > 32) c.fail("too many point attributes");
        samePoints = ps.fields.size() == pointAttrs().size();
        for (size_t i = 0; i < ps.fields.size(); ++i) {
            if (ps.fields[i].type != FieldType::F64)
                c.fail("point attribute \"" + ps.fields[i].name + "\" is not F64");
            pointOwn.push_back(ps.own[i]);
            pointCounts.push_back(ps.fields[i].count);
            if (ps.own[i] != static_cast<int>(i)) samePoints = false;
        }
        if (ps.fields.empty() || ps.own[0] != 0) c.fail("the first point attribute must be \"xyz\"");
    }

    Handle readRef(Cursor& c, Kind expected) {
        const uint64_t where = c.offset();
        const int32_t kind = c.i32();
        const uint32_t index = c.u32();
        if (kind == 0) return 0;
        if (!validKind(kind)) c.fail("reference of unknown kind " + std::to_string(kind));
        if (expected != Kind::None && static_cast<Kind>(kind) != expected)
            c.fail("reference to the wrong kind");
        return d.addRef(static_cast<Kind>(kind), index, where);
    }

    void readValue(Cursor& c, const SchemaEntry& e, const Field* into) {
        switch (e.type) {
        case FieldType::I32: {
            const uint8_t* p = c.take(4u * e.count);
            if (into) std::memcpy(into->ptr, p, 4u * e.count);
            break;
        }
        case FieldType::I64: {
            const uint8_t* p = c.take(8u * e.count);
            if (into) std::memcpy(into->ptr, p, 8u * e.count);
            break;
        }
        case FieldType::F64:
            for (unsigned k = 0; k < e.count; ++k) {
                const double v = c.f64();
                if (into) static_cast<double*>(into->ptr)[k] = v;
            }
            break;
        case FieldType::Bool: {
            const uint8_t v = c.u8();
            if (v > 1) c.fail("a Boolean is neither 0 nor 1");
            if (into) *static_cast<bool*>(into->ptr) = v == 1;
            break;
        }
        case FieldType::Str: {
            std::string s = c.str();
            if (into) *static_cast<std::string*>(into->ptr) = std::move(s);
            break;
        }
        case FieldType::Ref: {
            const Handle h = readRef(c, into ? into->refKind : Kind::None);
            if (into) *static_cast<Handle*>(into->ptr) = h;
            break;
        }
        case FieldType::F64List: {
            const uint32_t n = c.count(8);
            std::vector<double> v(n);
            for (uint32_t k = 0; k < n; ++k)
                v[k] = c.f64();
            if (into) *static_cast<std::vector<double>*>(into->ptr) = std::move(v);
            break;
        }
        case FieldType::Frames: {
            const uint32_t n = c.count(12);
            std::vector<Animation::Frame> v(n);
            for (uint32_t k = 0; k < n; ++k) {
                const uint64_t where = c.offset();
                const int32_t bitmap = c.i32();
                if (bitmap < -1) c.fail("bad bitmap index in a frame");
                v[k].bitmap = bitmap < 0 ? 0 : d.addRef(Kind::Bitmap, static_cast<uint32_t>(bitmap), where);
                v[k].time = c.i32();
                v[k].transparentIndex = c.i32();
            }
            if (into) *static_cast<std::vector<Animation::Frame>*>(into->ptr) = std::move(v);
            break;
        }
        }
    }

    void readRecord(Cursor& c, const FileSchema& fs, const Fields& own) {
        for (size_t i = 0; i < fs.fields.size(); ++i)
            readValue(c, fs.fields[i], fs.own[i] >= 0 ? &own[fs.own[i]] : nullptr);
    }

    template <class T, class Fn>
    void readList(Cursor& c, RecordKind k, std::vector<T>& list, Fn fieldsOf,
                  std::vector<uint64_t>* where = nullptr) {
        const FileSchema& fs = need(c, k);
        const uint32_t n = c.count(fs.minBytes);
        list.resize(n);
        for (T& x : list) {
            if (where) where->push_back(c.offset());
            Fields f;
            fieldsOf(x, f);
            readRecord(c, fs, f);
        }
    }

    void readBitmaps(Cursor& c) {
        const FileSchema& fs = need(c, RecordKind::Bitmap);
        const uint32_t n = c.count(fs.minBytes + 4);
        d.bitmaps.resize(n);
        for (StagedBitmap& b : d.bitmaps) {
            b.where = c.offset();
            b.file = c.str();
            Fields f;
            bitmapFields(b.bitmap, f);
            readRecord(c, fs, f);
        }
    }

    void readGroups(Cursor& c) {
        const FileSchema& fs = need(c, RecordKind::Group);
        const uint32_t n = c.count(fs.minBytes + 4);
        d.groups.resize(n);
        for (size_t i = 0; i < n; ++i) {
            StagedGroup& g = d.groups[i];
            g.where = c.offset();
            g.father = c.i32();
            if (g.father < -1 || g.father >= static_cast<int64_t>(i))
                c.fail("group " + std::to_string(i) + " names father " + std::to_string(g.father) +
                       ", which is not an earlier group (a cycle or a dangling link)");
            Fields f;
            groupFields(g.group, f);
            readRecord(c, fs, f);
        }
    }

    void readPolygons(Cursor& c, const uint8_t* fileBegin) {
        const uint32_t n = c.count(20);
        if (d.polygons.size() + n > d.polygons.capacity())
            d.polygons.reserve(std::max(d.polygons.size() + n, d.polygons.capacity() * 2));
        const uint32_t fileAttrs = static_cast<uint32_t>(pointOwn.size());
        const auto& attrs = pointAttrs();
        for (uint32_t i = 0; i < n; ++i) {
            StagedPolygon p;
            p.where = c.offset();
            p.group = c.u32();
            if (p.group >= d.groups.size())
                c.fail("polygon names group " + std::to_string(p.group) + " of " +
                       std::to_string(d.groups.size()));
            p.style = c.u32();
            if (p.style >= d.styles.size())
                c.fail("polygon names style " + std::to_string(p.style) + " of " +
                       std::to_string(d.styles.size()));
            p.name = c.str();
            p.pointCount = c.u32();
            const uint32_t mask = c.u32();
            if (!(mask & 1u)) c.fail("polygon without point positions");
            if (fileAttrs < 32 && (mask >> fileAttrs)) c.fail("polygon names unknown point attributes");
            uint64_t stride = 0;
            for (uint32_t a = 0; a < fileAttrs; ++a)
                if (mask & (1u << a)) stride += 8u * pointCounts[a];
            const uint64_t bytes = stride * p.pointCount;
            c.need(bytes);
            const uint8_t* src = c.here();
            for (uint64_t k = 0; k < bytes; k += 8) {
                uint64_t bits;
                std::memcpy(&bits, src + k, 8);
                if (!finiteBits(bits)) {
                    c.take(k);
                    c.fail("a point value is not a finite number");
                }
            }
            if (samePoints) {
                p.mask = mask;
                p.pointOffset = static_cast<uint64_t>(src - fileBegin);
            } else {
                // Another version's attributes: rewrite the points in our layout.
                uint32_t ownMask = 0;
                for (uint32_t a = 0; a < fileAttrs; ++a)
                    if ((mask & (1u << a)) && pointOwn[a] >= 0) ownMask |= 1u << pointOwn[a];
                p.mask = ownMask;
                p.pointOffset = d.ownedBytes.size();
                std::vector<const uint8_t*> at(attrs.size());
                const uint8_t* q = src;
                for (uint32_t k = 0; k < p.pointCount; ++k) {
                    for (uint32_t a = 0; a < fileAttrs; ++a) {
                        if (!(mask & (1u << a))) continue;
                        if (pointOwn[a] >= 0) at[pointOwn[a]] = q;
                        q += 8u * pointCounts[a];
                    }
                    for (size_t a = 0; a < attrs.size(); ++a)
                        if (ownMask & (1u << a))
                            d.ownedBytes.insert(d.ownedBytes.end(), at[a], at[a] + 8u * attrs[a].count);
                }
            }
            c.take(bytes);
            d.totalPoints += p.pointCount;
            d.polygons.push_back(std::move(p));
        }
    }

    // The polygon counts the POLY chunks announce, from their headers alone, so that the
    // staging list is sized once; the real pass checks everything, this one trusts nothing
    // beyond what it needs to stay inside the buffer (a count is capped by its chunk's bytes).
    static uint64_t polygonsAnnounced(const uint8_t* data, size_t size, uint64_t at) {
        uint64_t total = 0;
        while (size - at >= 16) {
            uint64_t len;
            std::memcpy(&len, data + at + 8, 8);
            if (len > size - at - 16) break;
            if (std::memcmp(data + at, "POLY", 4) == 0 && len >= 4) {
                uint32_t n;
                std::memcpy(&n, data + at + 16, 4);
                total += std::min<uint64_t>(n, len / 20);
            }
            at += 16 + len + 4;
            if (at > size) break;
        }
        return total;
    }

    void read(const uint8_t* data, size_t size) {
        Cursor file(data, size, 0);
        const uint8_t* magic = file.take(kMagicSize);
        if (std::memcmp(magic, kMagicZelmar, kMagicSize) != 0 &&
            std::memcmp(magic, kMagicTolvane, kMagicSize) != 0)
            file.fail("not a binary world file");
        const uint32_t version = file.u32();
        if (version == 0 || version > kBinaryVersion)
            file.fail("format version " + std::to_string(version) +
                      " is not supported (newest known: " + std::to_string(kBinaryVersion) + ")");
        if (file.u32() != 0) file.fail("reserved header bytes are not zero");
        d.polygons.reserve(polygonsAnnounced(data, size, file.offset()));
        int lastRank = 0;
        bool seen[11] = {};
        for (;;) {
            const uint64_t chunkAt = file.offset();
            const uint8_t* head = file.take(16);
            char tag[4];
            std::memcpy(tag, head, 4);
            uint64_t len;
            std::memcpy(&len, head + 8, 8);
            file.need(len);
            const uint8_t* payload = file.take(len);
            uint32_t stored;
            std::memcpy(&stored, file.take(4), 4);
            if (crc32(crc32(0, head, 16), payload, static_cast<size_t>(len)) != stored) {
                Cursor at(payload, 0, chunkAt);
                at.fail("checksum mismatch in chunk \"" + std::string(tag, 4) + "\"");
            }
            const int rank = rankOf(tag);
            if (rank < 0) continue; // a chunk of a later version
            if (rank < lastRank || (seen[rank] && rank != 5)) {
                Cursor at(payload, 0, chunkAt);
                at.fail("chunk \"" + std::string(tag, 4) + "\" out of order");
            }
            if (rank > 0 && !seen[0]) {
                Cursor at(payload, 0, chunkAt);
                at.fail("the schema chunk must come first");
            }
            seen[rank] = true;
            lastRank = rank;
            Cursor c(payload, static_cast<size_t>(len), chunkAt + 16);
            switch (rank) {
            case 0:
                readSchema(c);
                break;
            case 1:
                readBitmaps(c);
                break;
            case 2:
                readList(c, RecordKind::Animation, d.animations, animationFields);
                break;
            case 3:
                readGroups(c);
                break;
            case 4:
                readList(c, RecordKind::Style, d.styles, styleFields);
                break;
            case 5:
                readPolygons(c, data);
                break;
            case 6:
                readList(c, RecordKind::Camera, d.cameras, cameraFields);
                break;
            case 7:
                readList(c, RecordKind::Light, d.lights, lightFields);
                break;
            case 8:
                readList(c, RecordKind::Track, d.tracks, trackFields, &d.trackWhere);
                break;
            case 9:
                readList(c, RecordKind::Background, d.backgrounds, backgroundFields);
                break;
            case 10:
                if (!file.atEnd()) file.fail("bytes after the end chunk");
                return;
            }
            if (!c.atEnd()) c.fail("unexpected bytes at the end of chunk \"" + std::string(tag, 4) + "\"");
        }
    }
};

} // namespace

bool readBinary(std::vector<uint8_t>&& bytes, WorldData& d, std::string& error) {
    d = WorldData{};
    d.fileBytes = std::move(bytes);
    Reader r{d, {}, {}, {}, false};
    try {
        r.read(d.fileBytes.data(), d.fileBytes.size());
    } catch (const ReadError& e) {
        error = "byte offset " + std::to_string(e.where) + ": " + e.message;
        d = WorldData{};
        return false;
    }
    if (r.samePoints) {
        d.pointBytes = d.fileBytes.data();
        d.pointBytesSize = d.fileBytes.size();
    } else {
        d.pointBytes = d.ownedBytes.data();
        d.pointBytesSize = d.ownedBytes.size();
    }
    if (!validate(d, "byte offset", error)) {
        d = WorldData{};
        return false;
    }
    return true;
}

} // namespace zelmar::io
