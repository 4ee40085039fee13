// Binary and compressed world files with one fault each, built from a valid file: shared by
// the tests and by the program that writes the bad-file and fuzz corpora.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace iotest {

using Bytes = std::vector<uint8_t>;

struct Chunk {
    size_t at;
    std::string tag;
    uint64_t len;
};

std::vector<Chunk> chunks(const Bytes& b); // of a binary world file
Chunk find(const Bytes& b, const std::string& tag);
void fixCrc(Bytes& b, const Chunk& c);
void appendChunk(Bytes& b, const char* tag, const Bytes& payload);
void appendU32(Bytes& b, uint32_t v);
void appendStr(Bytes& b, const std::string& s);

// A schema that gives camera records no fields, and a camera chunk claiming 4 billion of them.
Bytes emptyRecordBomb(const Bytes& bin);
// A schema whose camera records take at least 2^32 bytes each (2.1 million unnamed wide
// fields), and a camera chunk claiming 4 billion of them: a 32-bit record size wraps to 0.
Bytes wrappingRecordSize(const Bytes& bin);

// A compressed world file of `plain` (one zstd frame) whose header declares `declared` bytes;
// with `padded` a skippable frame follows, as the writer adds, up to the ratio bound.
Bytes compress(const Bytes& plain, uint64_t declared, bool padded = false);
// A compressed file declaring and holding `zeros` zero bytes (streamed: never in memory).
Bytes compressedZeros(uint64_t zeros);
// A compressed file of `plainBytes` declared bytes that are no binary world (sparse random
// bytes, compressing some tens of times), its data cut off at half.
Bytes compressedGarbageCutShort(size_t plainBytes);

} // namespace iotest
