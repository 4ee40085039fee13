#include "api/LastError.h"

#include <zelmar/zelmar.h>

#include <utility>

namespace zelmar {
namespace {
std::string& storage() {
    static std::string text;
    return text;
}
} // namespace

void setLastError(std::string message) {
    storage() = std::move(message);
}

void clearLastError() {
    storage().clear();
}

const std::string& lastError() {
    return storage();
}

} // namespace zelmar

// The pointer stays valid until the next engine call that sets or clears the error.
extern "C" const char* ZELMAR_engine_get_last_error(void) {
    return zelmar::lastError().c_str();
}
