// Argument checks shared by the entity families' C functions: a failed check sets the
// last error ("<operation>: ...") and the caller answers 0 / does nothing.
#pragma once
#include "api/LastError.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

namespace zelmar::api {

inline std::string handleText(int h) {
    return std::to_string(h);
}

template <class T> T* checked(T* p, const char* op, int h, const char* kind) {
    if (!p) setLastError(std::string(op) + ": " + handleText(h) + " is not a " + kind);
    return p;
}

inline Camera* cameraArg(int h, const char* op) {
    return checked(world().camera(h), op, h, "camera");
}
inline Light* lightArg(int h, const char* op) {
    return checked(world().light(h), op, h, "light");
}
inline Track* trackArg(int h, const char* op) {
    return checked(world().track(h), op, h, "track");
}
inline Background* backgroundArg(int h, const char* op) {
    return checked(world().background(h), op, h, "background");
}
inline Bitmap* bitmapArg(int h, const char* op) {
    return checked(world().bitmap(h), op, h, "bitmap");
}
inline Animation* animationArg(int h, const char* op) {
    return checked(world().animation(h), op, h, "animation");
}

inline bool finiteArg(double v, const char* op) {
    if (std::isfinite(v)) return true;
    setLastError(std::string(op) + ": the value is not a finite number");
    return false;
}

// A caller's array of three doubles: present and finite.
inline bool vecArg(const double* v, const char* op) {
    if (!v) {
        setLastError(std::string(op) + ": no array given");
        return false;
    }
    if (!std::isfinite(v[0]) || !std::isfinite(v[1]) || !std::isfinite(v[2])) {
        setLastError(std::string(op) + ": the array holds a value that is not a finite number");
        return false;
    }
    return true;
}

inline bool outArg(const void* p, const char* op) {
    if (p) return true;
    setLastError(std::string(op) + ": no result array given");
    return false;
}

inline bool nameArg(const char* name, const char* op) {
    if (name) return true;
    setLastError(std::string(op) + ": no name given");
    return false;
}

inline void copy3(const double* from, double* to) {
    to[0] = from[0], to[1] = from[1], to[2] = from[2];
}

inline int flagValue(int flag) {
    return flag == 0 ? 0 : 1;
}

// First entity of that name in creation order, or nullptr.
template <class T> T* findByName(const char* name) {
    if (!name) return nullptr;
    for (T* x : world().list<T>())
        if (x->name == name) return x;
    return nullptr;
}

// First-then-next walks: O(1) per step.
template <class T> int firstOf() {
    const auto& v = world().list<T>();
    return v.empty() ? 0 : v.front()->handle;
}
template <class T> int nextAfter(const T* x) {
    if (!x) return 0;
    const T* n = world().nextOf(*x);
    return n ? n->handle : 0;
}

} // namespace zelmar::api
