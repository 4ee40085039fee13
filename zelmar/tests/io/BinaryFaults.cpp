#include "BinaryFaults.h"

#include "io/BinaryFormat.h"
#include "io/Schema.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <zlib.h>
#include <zstd.h>

using namespace zelmar;
using namespace zelmar::io;

namespace iotest {

std::vector<Chunk> chunks(const Bytes& b) {
    std::vector<Chunk> out;
    size_t at = 16;
    while (at + 16 <= b.size()) {
        uint64_t len;
        std::memcpy(&len, &b[at + 8], 8);
        out.push_back({at, std::string(reinterpret_cast<const char*>(&b[at]), 4), len});
        at += 16 + len + 4;
    }
    return out;
}

Chunk find(const Bytes& b, const std::string& tag) {
    for (const Chunk& c : chunks(b))
        if (c.tag == tag) return c;
    std::fprintf(stderr, "no chunk %s\n", tag.c_str());
    std::abort();
}

void fixCrc(Bytes& b, const Chunk& c) {
    const uint32_t v = static_cast<uint32_t>(crc32_z(0, &b[c.at], 16 + c.len));
    std::memcpy(&b[c.at + 16 + c.len], &v, 4);
}

void appendChunk(Bytes& b, const char* tag, const Bytes& payload) {
    const size_t at = b.size();
    b.insert(b.end(), tag, tag + 4);
    b.insert(b.end(), 4, 0);
    const uint64_t len = payload.size();
    b.insert(b.end(), reinterpret_cast<const uint8_t*>(&len), reinterpret_cast<const uint8_t*>(&len) + 8);
    b.insert(b.end(), payload.begin(), payload.end());
    b.insert(b.end(), 4, 0);
    fixCrc(b, Chunk{at, tag, len});
}

void appendU32(Bytes& b, uint32_t v) {
    b.insert(b.end(), reinterpret_cast<const uint8_t*>(&v), reinterpret_cast<const uint8_t*>(&v) + 4);
}
void appendStr(Bytes& b, const std::string& s) {
    appendU32(b, static_cast<uint32_t>(s.size()));
    b.insert(b.end(), s.begin(), s.end());
}

namespace {

// `bin` with its schema chunk rebuilt: the camera fields given by `cameraFields` (which
// appends them and answers their number), the other kinds as this version has them; and a
// camera chunk claiming 0xFFFFFFFF records.
template <class F> Bytes withCameraSchema(const Bytes& bin, F cameraFields) {
    Bytes schema;
    appendU32(schema, kRecordKinds);
    for (int k = 0; k < kRecordKinds; ++k) {
        const RecordKind kind = static_cast<RecordKind>(k);
        appendStr(schema, recordName(kind));
        if (kind == RecordKind::Camera) {
            const size_t countAt = schema.size();
            appendU32(schema, 0);
            const uint32_t n = cameraFields(schema);
            std::memcpy(&schema[countAt], &n, 4);
            continue;
        }
        const auto& fields = schemaOf(kind);
        appendU32(schema, static_cast<uint32_t>(fields.size()));
        for (const SchemaEntry& e : fields) {
            appendStr(schema, e.name);
            schema.push_back(static_cast<uint8_t>(e.type));
            schema.push_back(e.count);
        }
    }
    Bytes out(bin.begin(), bin.begin() + 16);
    for (const Chunk& c : chunks(bin)) {
        if (c.tag == "SCHM")
            appendChunk(out, "SCHM", schema);
        else if (c.tag == "CAMS")
            appendChunk(out, "CAMS", Bytes{0xFF, 0xFF, 0xFF, 0xFF});
        else
            out.insert(out.end(), bin.begin() + long(c.at), bin.begin() + long(c.at + 20 + c.len));
    }
    return out;
}

void appendField(Bytes& schema, FieldType type, uint8_t count) {
    appendStr(schema, "");
    schema.push_back(static_cast<uint8_t>(type));
    schema.push_back(count);
}

} // namespace

Bytes emptyRecordBomb(const Bytes& bin) {
    return withCameraSchema(bin, [](Bytes&) { return 0u; });
}

Bytes wrappingRecordSize(const Bytes& bin) {
    // 2,105,376 fields of 255 i64 (2,040 bytes each) and one of 64 i32: 2^32 bytes exactly.
    return withCameraSchema(bin, [](Bytes& schema) {
        constexpr uint32_t wide = 2105376;
        static_assert(uint64_t(wide) * 2040 + 256 == uint64_t(1) << 32);
        schema.reserve(schema.size() + size_t(wide + 1) * 6);
        for (uint32_t i = 0; i < wide; ++i)
            appendField(schema, FieldType::I64, 255);
        appendField(schema, FieldType::I32, 64);
        return wide + 1;
    });
}

namespace {
Bytes header(uint64_t declared) {
    Bytes out(24, 0);
    std::memcpy(out.data(), kMagicCompressed, kMagicSize);
    const uint32_t version = 1;
    std::memcpy(&out[8], &version, 4);
    std::memcpy(&out[16], &declared, 8);
    return out;
}
} // namespace

Bytes compress(const Bytes& plain, uint64_t declared, bool padded) {
    Bytes out = header(declared);
    Bytes z(ZSTD_compressBound(plain.size()));
    z.resize(ZSTD_compress(z.data(), z.size(), plain.data(), plain.size(), 3));
    out.insert(out.end(), z.begin(), z.end());
    const uint64_t least = (declared + kMaxRatio - 1) / kMaxRatio;
    if (padded && out.size() < least) {
        const uint64_t pad = std::max<uint64_t>(least - out.size(), 8) - 8;
        appendU32(out, 0x184D2A50);
        appendU32(out, static_cast<uint32_t>(pad));
        out.resize(out.size() + pad, 0);
    }
    return out;
}

Bytes compressedZeros(uint64_t zeros) {
    Bytes out = header(zeros);
    ZSTD_CCtx* c = ZSTD_createCCtx();
    ZSTD_CCtx_setParameter(c, ZSTD_c_compressionLevel, 3);
    ZSTD_CCtx_setPledgedSrcSize(c, zeros);
    const Bytes block(size_t(1) << 20, 0);
    Bytes buf(ZSTD_CStreamOutSize());
    for (uint64_t left = zeros;;) {
        const size_t n = static_cast<size_t>(std::min<uint64_t>(left, block.size()));
        left -= n;
        ZSTD_inBuffer in{block.data(), n, 0};
        const ZSTD_EndDirective mode = left ? ZSTD_e_continue : ZSTD_e_end;
        for (;;) {
            ZSTD_outBuffer o{buf.data(), buf.size(), 0};
            const size_t r = ZSTD_compressStream2(c, &o, &in, mode);
            out.insert(out.end(), buf.begin(), buf.begin() + long(o.pos));
            if (mode == ZSTD_e_end ? r == 0 : in.pos == in.size) break;
        }
        if (!left) break;
    }
    ZSTD_freeCCtx(c);
    return out;
}

Bytes compressedGarbageCutShort(size_t plainBytes) {
    // Mostly zeros with a random byte in about every 32nd place: the compressed blocks are
    // small, so that the first ones arrive whole before the cut, yet far below the ratio bound.
    Bytes plain(plainBytes);
    uint64_t x = 12345;
    for (uint8_t& b : plain) {
        x = x * 6364136223846793005ull + 1442695040888963407ull;
        b = (x >> 59) == 0 ? static_cast<uint8_t>(x >> 40) : 0;
    }
    Bytes out = compress(plain, plainBytes);
    out.resize(24 + (out.size() - 24) / 2);
    return out;
}

} // namespace iotest
