// The binary world format of ".zelmar" and ".tolvane" files (one layout, two magics) and
// its zstd-compressed form ".3dzelmar". Layout in docs/world-format.md.
#pragma once
#include "io/Bytes.h"
#include "io/SaveSet.h"
#include "io/WorldData.h"
#include <cstdint>
#include <string>
#include <vector>

namespace zelmar::io {

constexpr uint32_t kBinaryVersion = 1;
constexpr size_t kMagicSize = 8;
extern const uint8_t kMagicZelmar[kMagicSize];
extern const uint8_t kMagicTolvane[kMagicSize];
extern const uint8_t kMagicCompressed[kMagicSize];

bool writeBinary(const World& w, const SaveSet& s, const uint8_t* magic, Sink& out, std::string& error);
// Reads a whole binary file; `bytes` moves into `d` because the staged points refer to it.
bool readBinary(std::vector<uint8_t>&& bytes, WorldData& d, std::string& error);

// The largest ratio of a compressed file's declared size to the file's own size. zstd itself
// reaches about 32,000:1 (1 GiB from 32 KiB); worlds reach a few to a few tens, and only
// files of thousands of identical empty entities come near this bound (the writer pads those).
constexpr uint64_t kMaxRatio = 1024;

bool writeCompressed(const World& w, const SaveSet& s, Sink& out, std::string& error);
// `maxBytes` bounds the decompressed size (the header's size is never trusted beyond it).
bool readCompressed(const uint8_t* data, size_t size, WorldData& d, std::string& error,
                    uint64_t maxBytes = uint64_t(1) << 36);

} // namespace zelmar::io
