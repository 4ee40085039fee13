// The binary world reader refuses any bytes cleanly; what it accepts builds and saves again.
#include "WorldFuzz.h"
#include "io/BinaryFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelmar::io::WorldData d;
    std::string error;
    const bool ok = zelmar::io::readBinary(std::vector<uint8_t>(data, data + size), d, error);
    fuzzworld::check(ok, d, zelmar::io::FileFormat::Zelmar);
    return 0;
}
