// The mesh readers of the command line and the benchmarks refuse every file they cannot read
// with a one-line reason, and never block, crash or read garbage as a mesh. The files are those
// of the command line's tests (tests/simplify/cli).
#include "MeshData.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

using namespace simplify_test;

namespace {

const std::string kDir = SIMPLIFY_CLI_FILES;

std::string refusal(const std::string& path) {
    try {
        loadMesh(path);
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "(read)";
}

TEST(MeshFiles, EveryUnreadableFileIsRefusedWithItsReason) {
    const struct {
        const char* file;
        const char* reason;
    } cases[] = {
        {"tetrahedron.off", "'.off' is not a mesh format this reader knows (it reads .obj and .ply)"},
        {"off_inside.obj", "line 1: 'OFF' is not an OBJ statement: not an OBJ file"},
        {"off_inside.ply", "not a PLY file (it does not start with 'ply')"},
        {"no_such_mesh.obj", "no such file"},
        {"binary.obj", "line 1: binary data: not a text OBJ file"},
        {"letter_in_number.obj", "line 3: 'O.5' is not a number"},
        {"index_out_of_range.obj", "line 4: index 7 refers to none of the 3 listed"},
        {"not_finite.obj", "line 3: a vertex that is not a finite number"},
        {"truncated.ply", "PLY: element 'vertex', row 1: bad value"},
        {"huge_count.ply", "PLY: element 'vertex' lists 4000000000 rows, more than the file holds"},
        {"nan_index.ply", "PLY: a vertex index that is not a whole number from 0"},
    };
    for (const auto& c : cases) EXPECT_EQ(refusal(kDir + "/" + c.file), c.reason) << c.file;
    // what has no faces reads as an empty mesh; the command line refuses it
    EXPECT_TRUE(loadMesh(kDir + "/empty.obj").faces.empty());
    EXPECT_TRUE(loadMesh(kDir + "/no_faces.obj").faces.empty());
}

TEST(MeshFiles, OnlyRegularFilesAreOpened) {
    const auto dir = std::filesystem::temp_directory_path() / ("mesh_files_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir / "folder.obj");
    const std::string fifo = (dir / "fifo.ply").string();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(refusal((dir / "folder.obj").string()), "not a regular file");
    EXPECT_EQ(refusal(fifo), "not a regular file"); // opening it would wait for a writer for ever
    std::filesystem::remove_all(dir);
}

// The strictness costs nothing that is OBJ: other statements, comments, signs and exponents,
// a w, vertex colours, negative indices and every corner form still read.
TEST(MeshFiles, WellFormedObjStillReads) {
    const auto path = std::filesystem::temp_directory_path() / ("mesh_files_" + std::to_string(::getpid()) + ".obj");
    {
        std::ofstream out(path);
        out << "# made by hand\r\nmtllib a.mtl\no thing\ng part\ns off\nusemtl red\n"
               "v +1 2. -3e0\nv 0 0 0 1\nv 1E1 0 0 0.5 0.5 0.5\nvt 0.5\nvt 0 1\nvn 0 0 1\n"
               "f 1 2 3\nf -3/1 -2/2 -1/1\nf 1//1 2//1 3//1\nf 1/2/1 2/1/1 3/2/1 1\nl 1 2\n";
    }
    const MeshData m = loadMesh(path.string());
    std::filesystem::remove(path);
    ASSERT_EQ(m.faces.size(), 4u);
    EXPECT_EQ(m.faces[3].v.size(), 4u);
    EXPECT_EQ(m.vertices[0].xyz[0], 1.0);
    EXPECT_EQ(m.vertices[0].xyz[2], -3.0);
    EXPECT_EQ(m.vertices[2].xyz[0], 10.0);
}

} // namespace
