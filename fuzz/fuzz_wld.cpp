// The text world reader refuses any bytes cleanly; what it accepts builds and saves again.
#include "WorldFuzz.h"
#include "io/TextFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelmar::io::WorldData d;
    std::string error;
    const bool ok = zelmar::io::readText(data, size, d, error);
    fuzzworld::check(ok, d, zelmar::io::FileFormat::Text);
    return 0;
}
