#include "api/CoreArgs.h"

#include "api/LastError.h"
#include "scene/World.h"

#include <cmath>

namespace zelmar::api {

namespace {
void fail(const char* op, const std::string& what) {
    setLastError(std::string(op) + ": " + what);
}
} // namespace

Group* groupArg(int h, const char* op) {
    Group* g = world().group(h);
    if (!g) fail(op, std::to_string(h) + " is not a group");
    return g;
}

Polygon* polygonArg(int h, const char* op) {
    Polygon* p = world().polygon(h);
    if (!p) fail(op, std::to_string(h) + " is not a polygon");
    return p;
}

PointData* pointArg(int h, const char* op, Polygon** owner, uint32_t* index) {
    PointData* d = world().point(h, owner, index);
    if (!d) fail(op, std::to_string(h) + " is not a point");
    return d;
}

bool inArray(const double* v, int n, const char* op) {
    if (!v) {
        fail(op, "no array given");
        return false;
    }
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(v[i])) {
            fail(op, "the array holds a value that is not a finite number");
            return false;
        }
    return true;
}

bool outArray(const void* p, const char* op) {
    if (!p) fail(op, "no array given for the result");
    return p != nullptr;
}

bool textArg(const char* s, const char* op) {
    if (!s) fail(op, "no text given");
    return s != nullptr;
}

bool finite(double v, const char* op) {
    if (!std::isfinite(v)) fail(op, "the value is not a finite number");
    return std::isfinite(v);
}

const char* keepText(const std::string& s) {
    static std::string kept;
    kept = s;
    return kept.c_str();
}

} // namespace zelmar::api
