// The blending filters of cmbPolFilter, in their list order: UI string and the byte given to
// ZELMAR_polygon_set_translucent.
#pragma once
#include <QString>
#include <array>

namespace vexil {

struct PolygonFilter {
    int stringId; // "Disable Blending" .. "Inverse"
    int value;
};

constexpr std::array<PolygonFilter, 9> kPolygonFilters{{
    {362, 0x00}, // Disable Blending
    {363, 0x31}, // Dark Filter
    {364, 0x43}, // Opaque Filter
    {365, 0x52}, // Normal
    {366, 0x44}, // Control
    {367, 0x32}, // Bright Transparent
    {368, 0x42}, // Bright Translucent
    {369, 0x22}, // Light Source
    {370, 0x51}, // Inverse
}};

// The list position of a filter value; -1 for a value not in the list.
int FilterIndexOfValue(int value);
// The value of a list text in the active language; -1 when no filter has that text.
int FilterValueOfText(const QString& text);

} // namespace vexil
