// The compressed world reader refuses any bytes cleanly, and never lets a declared size
// allocate beyond what the data really holds; what it accepts builds and saves again.
#include "WorldFuzz.h"
#include "io/BinaryFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelmar::io::WorldData d;
    std::string error;
    const bool ok = zelmar::io::readCompressed(data, size, d, error, uint64_t(64) << 20);
    fuzzworld::check(ok, d, zelmar::io::FileFormat::Compressed);
    return 0;
}
