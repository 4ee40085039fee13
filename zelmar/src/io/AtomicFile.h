// Files written so that a crash or a failure never damages what was there before: the
// bytes go to a scratch file in the target's folder, are flushed to disk, and only then
// renamed over the target.
#pragma once
#include "io/Bytes.h"
#include <functional>
#include <string>
#include <vector>

namespace zelmar::io {

// `body` writes the content into the sink; false from it (with `error` set) abandons the
// scratch file and leaves the target as it was.
bool writeFileAtomically(const std::string& target, const std::function<bool(Sink&, std::string&)>& body,
                         std::string& error);

// The whole file, with a clear error for missing, unreadable or non-regular files.
bool readWholeFile(const std::string& path, std::vector<uint8_t>& out, std::string& error);

} // namespace zelmar::io
