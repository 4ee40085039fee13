// A mesh as files and generators give it: vertices with position, texture coordinates,
// brightness and normal; faces as lists of vertex indices with a bitmap, a colour and a
// brightness. Test and benchmark support for the simplification (no engine needed).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace simplify_test {

struct MeshVertex {
    double xyz[3] = {0, 0, 0};
    double uv[2] = {0, 0};
    double brightness = 100.0;
    double normal[3] = {0, 0, 0};
};

struct MeshFace {
    std::vector<int> v; // 0-based vertex indices, ring order
    int bitmap = 0;
    int color[3] = {128, 128, 128};
    double brightness = 100.0;
};

struct MeshData {
    std::vector<MeshVertex> vertices;
    std::vector<MeshFace> faces;
    std::string name;
};

// Splits every face of more than three points into a fan from its first point.
MeshData triangulateFans(const MeshData& mesh);
// Keeps the faces whose index is below count (a subset for the slow reference).
MeshData firstFaces(const MeshData& mesh, std::size_t count);

// OBJ (v, vt, vn, f with v, v/vt, v//vn, v/vt/vn and negative indices) and PLY (ascii,
// binary_little_endian, binary_big_endian; vertex x y z, optional nx ny nz, s t or u v,
// red green blue; face vertex_indices or vertex_index lists). Throws std::runtime_error with a
// one-line reason (without the path) for a file that is missing, not a regular file, not of
// that format, or damaged: a statement or value that does not parse, an index out of range, a
// position that is not finite, a count the file cannot hold.
MeshData loadObj(const std::string& path);
MeshData loadPly(const std::string& path);
MeshData loadMesh(const std::string& path); // by extension (.obj, .ply); any other throws
// Writes the mesh as OBJ (v, vt, f v/vt).
void saveObj(const MeshData& mesh, const std::string& path);

} // namespace simplify_test
