// Made meshes for the simplification tests: closed, open, seamed, coloured, multi-bitmap,
// non-manifold, with duplicated and nearly duplicated points. Deterministic.
#pragma once
#include "MeshData.h"

namespace simplify_test {

MeshData makeGrid(int nx, int ny, double bump = 0.0, unsigned seed = 1);  // open, z = bump * noise
MeshData makeCube(int n, double bump = 0.0, unsigned seed = 1);           // closed, n x n cells a face
MeshData makeSphere(int lat, int lon);                                     // closed, poles
MeshData makeTorus(int a, int b, double bump = 0.0, unsigned seed = 1);    // closed, genus 1
MeshData makeSeamGrid(int nx, int ny, double bump, unsigned seed);         // texture seam along x = nx/2
MeshData makeColorGrid(int nx, int ny, double bump, unsigned seed);        // three colour regions
MeshData makeBitmapGrid(int nx, int ny, double bump, unsigned seed);       // three bitmaps
MeshData makeNonManifold(int n, unsigned seed);                            // fins on a grid, bow-tie cubes
MeshData makeDuplicates(int n, unsigned seed);                             // copies and 1-ulp near copies
MeshData makeOneTriangle();
MeshData makeQuad();                                                       // one four-point polygon
MeshData concat(const MeshData& a, const MeshData& b);
// Splits every triangle into four at its edge midpoints, `levels` times (4^levels as many
// triangles); each new midpoint is lifted along the mean of its ends' offsets from the centroid by
// a small deterministic amount, so the new points are not all coplanar with the old faces.
MeshData subdivide(const MeshData& mesh, int levels);

} // namespace simplify_test
