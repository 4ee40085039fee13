// The two ways into the simplifier give the same result: the engine's reducing operation
// (ZELMAR_group_create_reduced_copy through the installed reducer, on libzelmar3) and a
// SimplifySession on the in-memory engine, driven as the workbench drives it (a triangulated
// working copy, the target from TargetForReduction). Same triangle count, same triangles to the
// bit, on open and closed meshes at several percentages. Meshes read from files hold triangles
// without area (repeated or collinear corners); the engine's triangulation leaves them out, and
// the counts the targets come from are those of the triangulated copies.
#include "EngineMeshes.h"
#include "Harness.h"
#include "MeshMaker.h"
#include "simplify/EngineReducer.h"
#include "simplify/SimplifySession.h"

#include <zelmar/zelmar.h>

#include <gtest/gtest.h>

#include <filesystem>

using namespace simplify_test;

namespace {

// The mesh with triangles without area among its faces: after every seventh face one with a
// repeated corner, after every eleventh one whose third corner is the midpoint of an edge.
MeshData withTrianglesWithoutArea(MeshData m) {
    m.name += " with triangles without area";
    std::vector<MeshFace> faces;
    for (std::size_t i = 0; i < m.faces.size(); ++i) {
        const MeshFace& f = m.faces[i];
        faces.push_back(f);
        if (i % 7 == 3) {
            MeshFace d = f;
            d.v = {f.v[0], f.v[1], f.v[1]};
            faces.push_back(d);
        }
        if (i % 11 == 5) {
            const MeshVertex &a = m.vertices[static_cast<std::size_t>(f.v[1])], &b = m.vertices[static_cast<std::size_t>(f.v[2])];
            MeshVertex mid = a;
            for (int k = 0; k < 3; ++k) mid.xyz[k] = (a.xyz[k] + b.xyz[k]) / 2;
            MeshFace d = f;
            d.v = {f.v[1], f.v[2], static_cast<int>(m.vertices.size())};
            m.vertices.push_back(mid);
            faces.push_back(d);
        }
    }
    m.faces = faces;
    return m;
}

class EnginePath : public ::testing::Test {
protected:
    void SetUp() override { ZELMAR_engine_close(); }
    void TearDown() override {
        ZELMAR_engine_set_reducer(nullptr, nullptr);
        ZELMAR_engine_close();
    }
};

TEST_F(EnginePath, ReducedCopyAndSessionGiveTheSameTriangles) {
    if (ZELMAR_group_create("probe") == 0) GTEST_SKIP() << "engine operations are not real yet";
    std::vector<MeshData> corpus = {makeCube(3, 0.3, 7),     makeSphere(6, 8),           makeTorus(8, 6, 0.1, 5), // closed
                                    makeGrid(7, 6, 0.5, 3),  makeSeamGrid(6, 5, 0.4, 11), makeColorGrid(6, 6, 0.4, 13),
                                    makeNonManifold(5, 19), makeDuplicates(6, 23), // open
                                    withTrianglesWithoutArea(makeSphere(6, 8)), withTrianglesWithoutArea(makeGrid(7, 6, 0.5, 3))};
    for (const char* file : {"/usr/share/assimp/models/OBJ/regr01.obj", "/usr/share/assimp/models/PLY/Wuson.ply",
                             "/usr/share/assimp/models/OBJ/spider.obj"})
        if (std::filesystem::exists(file)) corpus.push_back(triangulateFans(loadMesh(file)));
    for (MeshData& mesh : corpus) {
        SCOPED_TRACE(mesh.name);
        for (MeshFace& f : mesh.faces) f.bitmap = 0; // toEngine makes no bitmaps
        for (const double percent : {10.0, 25.0, 50.0, 90.0}) {
            SCOPED_TRACE(percent);
            ZELMAR_engine_close();
            simplify::InstallEngineReducer();
            const int source = toEngine(mesh);
            const int copy = ZELMAR_group_create_reduced_copy(source, "reduced", percent);
            MemoryEngine mem;
            const int working = mem.triangulatedCopy(mem.addMesh(mesh), "SurfSimWorkingCopy");
            ASSERT_EQ(mem.group(working).polygons.size(),
                      static_cast<std::size_t>(ZELMAR_group_get_number_of_polygons(
                          ZELMAR_group_create_copy_made_of_triangles(source, "triangles"))));
            simplify::SimplifySession session(&mem);
            session.Open(working);
            const simplify::SimplifyResult r = session.Run(session.TargetForReduction(percent), {});
            StepResult viaEngine, inMemory;
            if (copy != 0) viaEngine.output = readEngineOutput(copy);
            if (r.outputGroup != 0) inMemory.output = readOutput(mem, r.outputGroup);
            ASSERT_EQ(copy != 0, r.outputGroup != 0) << ZELMAR_engine_get_last_error() << " / " << r.message;
            EXPECT_EQ(viaEngine.output.size(), inMemory.output.size()) << "of " << mesh.faces.size();
            EXPECT_EQ(compareResults(viaEngine, inMemory), "");
        }
    }
}

} // namespace
