// The line-oriented text world format of ".wld" files. Layout in docs/world-format.md.
#pragma once
#include "io/Bytes.h"
#include "io/SaveSet.h"
#include "io/WorldData.h"
#include <string>

namespace zelmar::io {

constexpr int kTextVersion = 1;
extern const char kTextMagic[]; // first word of the first line

bool writeText(const World& w, const SaveSet& s, Sink& out, std::string& error);
bool readText(const uint8_t* data, size_t size, WorldData& d, std::string& error);

} // namespace zelmar::io
