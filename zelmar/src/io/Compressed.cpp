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
// zstd's skippable frames: the writer pads with one so that no file it writes declares more
// than kMaxRatio times its own size, the bound the reader enforces.
constexpr uint32_t kSkippableMagic = 0x184D2A50;
constexpr uint32_t kSkippableMask = 0xFFFFFFF0;
constexpr size_t kFirstStep = 64 << 10;

// Where the decompressed bytes must already look like a binary world, checked as soon as
// they arrive and before the buffer grows: what lies inside is refused after its first
// bytes, not after a gigabyte. Empty when they do (or are too few to tell yet).
std::string innerProblem(const uint8_t* p, size_t produced, uint64_t plainSize) {
    if (produced < 16) return {};
    if (std::memcmp(p, kMagicZelmar, kMagicSize) != 0 && std::memcmp(p, kMagicTolvane, kMagicSize) != 0)
        return "byte offset 0: not a binary world file";
    uint32_t version, reserved;
    std::memcpy(&version, p + 8, 4);
    std::memcpy(&reserved, p + 12, 4);
    if (version == 0 || version > kBinaryVersion)
        return "byte offset 8: format version " + std::to_string(version) + " is not supported";
    if (reserved != 0) return "byte offset 12: reserved header bytes are not zero";
    if (produced < 32) return {};
    uint64_t length;
    std::memcpy(&length, p + 24, 8);
    if (length > plainSize - 16 || plainSize - 16 - length < 20)
        return "byte offset 24: the first chunk is longer than the declared size";
    return {};
}

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
    uint64_t written = kHeaderSize;
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
        written += o.pos;
        if (left == 0) break;
    }
    // A world that compresses beyond the bound (thousands of identical empty groups do) is
    // padded up to it, so that every file written here reads back.
    const uint64_t least = (size + kMaxRatio - 1) / kMaxRatio;
    if (written < least) {
        const uint64_t pad = std::max<uint64_t>(least - written, 8) - 8;
        uint8_t frame[8];
        const uint32_t magic = kSkippableMagic, length = static_cast<uint32_t>(pad);
        std::memcpy(frame, &magic, 4);
        std::memcpy(frame + 4, &length, 4);
        const std::vector<uint8_t> zeros(static_cast<size_t>(pad), 0);
        if (!out.write(frame, 8) || (pad && !out.write(zeros.data(), zeros.size()))) {
            error = "write failed";
            return false;
        }
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
    if (plainSize / kMaxRatio > size) {
        error = "byte offset 16: declared size " + std::to_string(plainSize) + " is more than " +
                std::to_string(kMaxRatio) + " times the file's " + std::to_string(size) + " bytes";
        return false;
    }
    DCtx dc;
    if (!dc.p) {
        error = "out of memory for the decompressor";
        return false;
    }
    // Grow towards the declared size only as data really arrives: the header is not trusted
    // with an allocation. The first step stops after kFirstStep bytes, so that the inner
    // header is looked at before anything more is decompressed.
    std::vector<uint8_t> plain(
        static_cast<size_t>(std::min<uint64_t>(plainSize, std::max<uint64_t>(1 << 20, size * 8))));
    size_t limit = std::min(plain.size(), kFirstStep);
    ZSTD_inBuffer in{data + kHeaderSize, size - kHeaderSize, 0};
    size_t produced = 0;
    bool innerChecked = false;
    for (;;) {
        if (produced == limit) {
            if (limit == plainSize) {
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
            if (limit == plain.size())
                plain.resize(static_cast<size_t>(std::min<uint64_t>(plainSize, plain.size() * 2)));
            limit = plain.size();
        }
        ZSTD_outBuffer o{plain.data(), limit, produced};
        const size_t r = ZSTD_decompressStream(dc.p, &o, &in);
        produced = o.pos;
        if (ZSTD_isError(r)) {
            error = "byte offset " + std::to_string(kHeaderSize + in.pos) +
                    ": damaged compressed data: " + ZSTD_getErrorName(r);
            return false;
        }
        if (!innerChecked && produced >= std::min<uint64_t>(32, plainSize)) {
            if (std::string why = innerProblem(plain.data(), produced, plainSize); !why.empty()) {
                error = "inside the compressed data, " + why;
                return false;
            }
            innerChecked = true;
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
    // Only padding may follow: skippable frames up to the end.
    for (size_t at = kHeaderSize + in.pos; at < size;) {
        uint32_t magic = 0, length = 0;
        if (size - at >= 8) {
            std::memcpy(&magic, data + at, 4);
            std::memcpy(&length, data + at + 4, 4);
        }
        if (size - at < 8 || (magic & kSkippableMask) != kSkippableMagic || length > size - at - 8) {
            error = "byte offset " + std::to_string(at) + ": bytes after the compressed data";
            return false;
        }
        at += 8 + size_t(length);
    }
    plain.resize(produced);
    if (!readBinary(std::move(plain), d, error)) {
        error = "inside the compressed data, " + error;
        return false;
    }
    return true;
}

} // namespace zelmar::io
