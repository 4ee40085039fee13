// Welding points: each point falls into a cell of a grid of the threshold's size fixed at the world's
// origin, and the points of a cell go to their mean. Two points closer than the threshold in neighbouring
// cells are not welded; that is how the tool works.
#pragma once
#include <vector>

namespace vexil {

enum class WeldResult {
    Welded,           // at least one cell had two points or more
    NoPointsWithin,   // no cell had two points: "No points within weld threshold."
    ThresholdTooSmall // the cell numbers overflow (a threshold of 0 too): "Threshold too small."
};

// The cell of one coordinate: value / threshold rounded half to even. False when it does not fit a
// 32-bit cell number.
bool WeldCell(double value, double threshold, long long& cell);
// A value rounded to 6 decimals, half to even.
double RoundTo6(double v);

// Welds the points (a point named twice counts once). threshold: its absolute value is used. On any
// answer but Welded nothing has moved. weldedCells (optional): how many cells welded.
WeldResult WeldPoints(const std::vector<int>& points, double threshold, int* weldedCells = nullptr);

} // namespace vexil
