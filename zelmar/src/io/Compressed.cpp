// ".3dzelmar": a 24-byte header, then one zstd frame holding a complete binary world.
#include "io/BinaryFormat.h"

#include <algorithm>
#include <cstring>
#include <thread>
#include <zstd.h>

namespace zelmar::io {

namespace {
constexpr size_t kHeaderSize = 24;
constexpr int kLevel = 3;

struct CCtx {
    ZSTD_CCtx* p = ZSTD_createCCtx();
    ~CCtx() { ZSTD_freeCCtx(p); }
};
struct DCtx {
    ZSTD_DCtx* p = ZSTD_createDCtx();
    ~DCtx() { ZSTD_freeDCtx(p); }
};
} // namespace

bool writeCompressed(const World& w, const SaveSet& s, Sink& out, std::string& error) {
    VectorSink plain;
    if (!writeBinary(w, s, kMagicZelmar, plain, error)) return false;

    uint8_t head[kHeaderSize] = {};
    std::memcpy(head, kMagicCompressed, kMagicSize);
    const uint32_t version = kBinaryVersion;
    const uint64_t size = plain.bytes.size();
    std::memcpy(head + 8, &version, 4);
    std::memcpy(head + 16, &size, 8);
    if (!out.write(head, kHeaderSize)) {
        error = "write failed";
        return false;
    }

    CCtx c;
    if (!c.p) {
        error = "out of memory for the compressor";
        return false;
    }
    ZSTD_CCtx_setParameter(c.p, ZSTD_c_compressionLevel, kLevel);
    ZSTD_CCtx_setParameter(c.p, ZSTD_c_checksumFlag, 1);
    // Workers only help when the library was built with them; setting the value is harmless otherwise.
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    if (cores > 1) ZSTD_CCtx_setParameter(c.p, ZSTD_c_nbWorkers, static_cast<int>(cores));
    ZSTD_CCtx_setPledgedSrcSize(c.p, size);

    std::vector<uint8_t> buf(ZSTD_CStreamOutSize() * 4);
    ZSTD_inBuffer in{plain.bytes.data(), plain.bytes.size(), 0};
    for (;;) {
        ZSTD_outBuffer o{buf.data(), buf.size(), 0};
        const size_t left = ZSTD_compressStream2(c.p, &o, &in, ZSTD_e_end);
        if (ZSTD_isError(left)) {
            error = std::string("compression failed: ") + ZSTD_getErrorName(left);
            return false;
        }
        if (o.pos && !out.write(buf.data(), o.pos)) {
            error = "write failed";
            return false;
        }
        if (left == 0) break;
    }
    return true;
}

bool readCompressed(const uint8_t* data, size_t size, WorldData& d, std::string& error, uint64_t maxBytes) {
    d = WorldData{};
    if (size < kHeaderSize || std::memcmp(data, kMagicCompressed, kMagicSize) != 0) {
        error = "byte offset 0: not a compressed world file";
        return false;
    }
    uint32_t version, reserved;
    uint64_t plainSize;
    std::memcpy(&version, data + 8, 4);
    std::memcpy(&reserved, data + 12, 4);
    std::memcpy(&plainSize, data + 16, 8);
    if (version == 0 || version > kBinaryVersion) {
        error = "byte offset 8: format version " + std::to_string(version) + " is not supported";
        return false;
    }
    if (reserved != 0) {
        error = "byte offset 12: reserved header bytes are not zero";
        return false;
    }
    if (plainSize > maxBytes) {
        error = "byte offset 16: declared size " + std::to_string(plainSize) + " exceeds the limit of " +
                std::to_string(maxBytes) + " bytes";
        return false;
    }
    DCtx dc;
    if (!dc.p) {
        error = "out of memory for the decompressor";
        return false;
    }
    // Grow towards the declared size only as data really arrives: the header is not trusted
    // with an allocation.
    std::vector<uint8_t> plain(
        static_cast<size_t>(std::min<uint64_t>(plainSize, std::max<uint64_t>(1 << 20, size * 8))));
    ZSTD_inBuffer in{data + kHeaderSize, size - kHeaderSize, 0};
    size_t produced = 0;
    for (;;) {
        if (produced == plain.size()) {
            if (plain.size() == plainSize) {
                // Full: the frame must end here; one more call tells whether it does.
                uint8_t extra;
                ZSTD_outBuffer o{&extra, 1, 0};
                const size_t r = ZSTD_decompressStream(dc.p, &o, &in);
                if (ZSTD_isError(r) || o.pos != 0 || r != 0) {
                    error = "byte offset " + std::to_string(kHeaderSize + in.pos) +
                            ": compressed data longer than its declared size, or damaged";
                    return false;
                }
                break;
            }
            plain.resize(static_cast<size_t>(std::min<uint64_t>(plainSize, plain.size() * 2)));
        }
        ZSTD_outBuffer o{plain.data(), plain.size(), produced};
        const size_t r = ZSTD_decompressStream(dc.p, &o, &in);
        produced = o.pos;
        if (ZSTD_isError(r)) {
            error = "byte offset " + std::to_string(kHeaderSize + in.pos) +
                    ": damaged compressed data: " + ZSTD_getErrorName(r);
            return false;
        }
        if (r == 0) break; // frame complete
        if (in.pos == in.size && o.pos < o.size) {
            error = "byte offset " + std::to_string(size) + ": truncated compressed data";
            return false;
        }
    }
    if (produced != plainSize) {
        error = "byte offset 16: compressed data holds " + std::to_string(produced) + " bytes, declared " +
                std::to_string(plainSize);
        return false;
    }
    if (in.pos != in.size) {
        error = "byte offset " + std::to_string(kHeaderSize + in.pos) + ": bytes after the compressed data";
        return false;
    }
    plain.resize(produced);
    if (!readBinary(std::move(plain), d, error)) {
        error = "inside the compressed data, " + error;
        return false;
    }
    return true;
}

} // namespace zelmar::io
