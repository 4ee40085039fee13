// The random-edit undo property test's registry of edits. Each subsystem adds the edits it makes
// undoable with one line at namespace scope in a source file of this test program:
//
//   VEXIL_UNDO_EDIT(FlipPolygons, [](EditContext& c) { ...; return pushed; });
//
// An edit gets a context (the random generator, the world's groups, the fixture's helpers) and answers
// whether it pushed something on the undo stack (false when it found nothing to do). It must push one undo
// step per change of the world, exactly as the command a user runs does (docs/undo.md).
#pragma once
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace vexil::test {

class UndoPropertyFixture;

struct EditContext {
    std::mt19937& rng;
    UndoPropertyFixture& fixture;
    // A number in [lo, hi].
    int Int(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
    double Real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(rng); }
    bool Chance(double p) { return Real(0, 1) < p; }
};

struct EditGenerator {
    std::string name;
    std::function<bool(EditContext&)> run;
    int weight = 1;
};

inline std::vector<EditGenerator>& EditRegistry() {
    static std::vector<EditGenerator> r;
    return r;
}

// What a subsystem's edits need in the world before a run starts (bitmaps loaded from files, hosts
// installed), run by the fixture after it has built the world.
inline std::vector<std::function<void(UndoPropertyFixture&)>>& WorldSetupRegistry() {
    static std::vector<std::function<void(UndoPropertyFixture&)>> r;
    return r;
}

struct WorldSetupRegistrar {
    explicit WorldSetupRegistrar(std::function<void(UndoPropertyFixture&)> setup) {
        WorldSetupRegistry().push_back(std::move(setup));
    }
};

struct EditRegistrar {
    EditRegistrar(const char* name, std::function<bool(EditContext&)> run, int weight = 1) {
        EditRegistry().push_back({name, std::move(run), weight});
    }
};

} // namespace vexil::test

#define VEXIL_UNDO_EDIT_CAT2(a, b) a##b
#define VEXIL_UNDO_EDIT_CAT(a, b) VEXIL_UNDO_EDIT_CAT2(a, b)
// VEXIL_UNDO_EDIT(Name, callable [, weight])
#define VEXIL_UNDO_EDIT(name, ...)                                                                           \
    static ::vexil::test::EditRegistrar VEXIL_UNDO_EDIT_CAT(undoEdit_, __LINE__)(#name, __VA_ARGS__)
// VEXIL_UNDO_WORLD_SETUP(callable taking the fixture)
#define VEXIL_UNDO_WORLD_SETUP(...)                                                                          \
    static ::vexil::test::WorldSetupRegistrar VEXIL_UNDO_EDIT_CAT(undoSetup_, __LINE__)(__VA_ARGS__)
