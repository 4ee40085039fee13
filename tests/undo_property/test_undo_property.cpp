// Random edits, then undo all and redo all: the saved world must come back byte for byte. Seeds are fixed
// so that a failure can be replayed: VEXIL_UNDO_SEED=n runs that seed alone; VEXIL_UNDO_EDITS=n sets the
// length of a run.
#include "UndoPropertyFixture.h"

#include <cstdlib>
#include <sstream>

namespace vexil::test {
namespace {

class UndoProperty : public UndoPropertyFixture {
  protected:
    // Runs `count` random edits from `seed`; answers the names of those that pushed.
    std::vector<std::string> Run(unsigned seed, int count) {
        std::mt19937 rng(seed);
        EditContext c{rng, *this};
        const std::vector<EditGenerator>& all = EditRegistry();
        std::vector<int> weights;
        for (const EditGenerator& g : all)
            weights.push_back(g.weight);
        std::discrete_distribution<int> pick(weights.begin(), weights.end());
        std::vector<std::string> done;
        for (int i = 0; i < count; ++i) {
            const EditGenerator& g = all[size_t(pick(rng))];
            if (g.run(c)) done.push_back(g.name);
        }
        return done;
    }
    void Check(unsigned seed, int count) {
        const QByteArray start = Saved();
        const int base = host.stack->UBound();
        const std::vector<std::string> done = Run(seed, count);
        const QByteArray after = Saved();
        std::ostringstream log;
        for (const std::string& n : done)
            log << n << ' ';
        int undone = 0;
        while (mnuUndo_Click(*host.stack, undoHost()))
            ++undone;
        EXPECT_EQ(host.stack->UBound() - base, undone);
        const QByteArray back = Saved();
        EXPECT_TRUE(back == start) << "seed " << seed << ": undo all did not give the start back ("
                                   << back.size() << " bytes, " << start.size() << " at the start); edits: "
                                   << log.str();
        int redone = 0;
        while (mnuRedo_Click(*host.stack, undoHost()))
            ++redone;
        EXPECT_EQ(undone, redone);
        EXPECT_TRUE(Saved() == after) << "seed " << seed << ": redo all did not give the edited world back; edits: "
                                      << log.str();
        EXPECT_GT(done.size(), size_t(count / 3)) << "seed " << seed << ": too few edits pushed";
    }
};

int editsPerRun() {
    const char* n = std::getenv("VEXIL_UNDO_EDITS");
    return n ? std::atoi(n) : 200;
}

TEST_F(UndoProperty, EveryRegisteredEditIsThere) {
    std::vector<std::string> names;
    for (const EditGenerator& g : EditRegistry())
        names.push_back(g.name);
    for (const char* n : {"MovePoints", "RotatePolygons", "Weld", "DeletePolygons", "Detach", "Flip", "Triangulate",
                          "Mirror", "Duplicate", "Extrude", "Bevel", "Cut", "RotateGroups", "Align", "Materials", "CreateCamera", "DeleteCamera",
                          "CreateCircularTrack", "CreateLight", "DeleteLight"})
        EXPECT_NE(names.end(), std::find(names.begin(), names.end(), n)) << n;
}

TEST_F(UndoProperty, UndoAllAndRedoAllGiveTheSameBytes) {
    if (const char* s = std::getenv("VEXIL_UNDO_SEED")) {
        Check(unsigned(std::strtoul(s, nullptr, 10)), editsPerRun());
        return;
    }
    for (unsigned seed : {11u, 23u, 37u, 41u, 59u, 71u, 83u, 97u, 101u, 113u}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TearDown();
        SetUp();
        Check(seed, editsPerRun());
        if (HasFailure()) return;
    }
}

} // namespace
} // namespace vexil::test
