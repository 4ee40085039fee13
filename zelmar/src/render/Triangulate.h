// Cutting a planar polygon ring into triangles: a fan for convex rings, ear clipping in
// the polygon's plane for concave ones.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelmar::render {

// Newell normal of a ring of xyz triples (not normalised; zero for a degenerate ring).
void newellNormal(const double* xyz, size_t stride, size_t count, double n[3]);

// Appends triangles as index triples into the ring (0-based). A ring of fewer than 3
// points gives none; a self-crossing ring that ear clipping cannot finish is fanned.
void triangulate(const double* xyz, size_t stride, size_t count, std::vector<uint32_t>& out);

} // namespace zelmar::render
