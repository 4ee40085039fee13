#include "PolygonFilters.h"

#include "frame/Locale.h"

namespace vexil {

int FilterIndexOfValue(int value) {
    for (std::size_t i = 0; i < kPolygonFilters.size(); ++i)
        if (kPolygonFilters[i].value == value) return int(i);
    return -1;
}

int FilterValueOfText(const QString& text) {
    for (const PolygonFilter& f : kPolygonFilters)
        if (GetLocaleString(f.stringId) == text) return f.value;
    return -1;
}

} // namespace vexil
