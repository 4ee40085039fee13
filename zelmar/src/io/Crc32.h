// CRC-32 of the world files' chunks: the same value as zlib's crc32 (reflected polynomial
// 0xEDB88320, inverted in and out), so files stay readable either way. Chunks run to
// megabytes and every byte of a file is checked, so the check must cost far less than
// reading the bytes: where the processor multiplies without carries, 64 bytes are folded
// per step; elsewhere zlib does the work.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zelmar::io {

uint32_t crc32(uint32_t crc, const void* data, size_t size);

} // namespace zelmar::io
