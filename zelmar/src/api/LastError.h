// The engine's one error text: set by a failing operation, read on request through
// ZELMAR_engine_get_last_error. The engine is called from one thread only.
#pragma once

#include <string>

namespace zelmar {

void setLastError(std::string message);
void clearLastError();
const std::string& lastError();

} // namespace zelmar
