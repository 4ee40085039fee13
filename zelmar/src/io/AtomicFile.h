// The engine's file helpers. Writes never damage what was there before and leave nothing
// behind: the bytes go to an unnamed file in the target's folder, are flushed to disk, and
// only then take the target's name in one step. Reads refuse anything but a regular file
// before opening it, so a named pipe or a device can never block or feed the reader.
#pragma once
#include "io/Bytes.h"
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zelmar::io {

// `body` writes the content into the sink; false from it (with `error` set) abandons the
// new file and leaves the target as it was. Where the file system has no unnamed files,
// the new file has a scratch name (`scratchPrefix`, then the process number and a random
// part); scratch files of the same target left by a process that died are removed here.
bool writeFileAtomically(const std::string& target, const std::function<bool(Sink&, std::string&)>& body,
                         std::string& error);

// Off: every write takes the path of file systems without unnamed files (for tests).
void useUnnamedFiles(bool on);

// The start of the name of a scratch file of `target` (".<name>.zelmar-save-").
std::string scratchPrefix(const std::string& target);

// Removes the scratch files of `target` whose process no longer runs; answers how many.
int removeStaleScratchFiles(const std::string& target);

// Empty for a regular file; else why it cannot be read as one ("it is a folder", "it is a
// named pipe", "not found", ...). Follows symbolic links.
std::string notARegularFile(const std::string& path);

// The whole file, with a clear error for missing, unreadable or non-regular files, and for
// files larger than `maxBytes`.
bool readWholeFile(const std::string& path, std::vector<uint8_t>& out, std::string& error,
                   uint64_t maxBytes = UINT64_MAX);

} // namespace zelmar::io
