// Argument checks of the group, polygon and point families: a failed check sets the last
// error ("<operation>: ...") and the caller answers 0 / does nothing.
#pragma once
#include "scene/Entities.h"
#include <string>

namespace zelmar::api {

Group* groupArg(int h, const char* op);
Polygon* polygonArg(int h, const char* op);
PointData* pointArg(int h, const char* op, Polygon** owner = nullptr, uint32_t* index = nullptr);

bool inArray(const double* v, int n, const char* op); // present, every value finite
bool outArray(const void* p, const char* op);         // present
bool textArg(const char* s, const char* op);          // present
bool finite(double v, const char* op);

// Text answered as const char *: kept until the next such answer.
const char* keepText(const std::string& s);

} // namespace zelmar::api
