// The interface the workbench drives (SimplifySession): a deeper run goes on from the last one
// and gives what a run from the copy gives; changed options or locked points start again; a
// cancel leaves no output and the next run starts from the copy; bad groups give an outcome
// with a message, never a crash, and the source group is never changed.
#include "Harness.h"
#include "MeshMaker.h"
#include "simplify/SimplifySession.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

using namespace simplify_test;
using simplify::SimplifyOptions;
using simplify::SimplifyOutcome;
using simplify::SimplifyResult;
using simplify::SimplifySession;

namespace {

// Counts yields and messages; asks to cancel once `cancelAfter` yields have passed.
struct TestHost final : simplify::SimplifyHost {
    long yields = 0, cancelAfter = -1;
    std::vector<std::string> messages;
    void messageBox(const std::string& t) override { messages.push_back(t); }
    void yieldEvents() override { ++yields; }
    bool cancelRequested() override { return cancelAfter >= 0 && yields >= cancelAfter; }
};

struct Bench {
    MemoryEngine eng;
    int group = 0;
    SimplifySession session;
    explicit Bench(const MeshData& mesh) : session(&eng) { group = eng.addMesh(mesh); }
};

// What a fresh session gives for one run from the copy.
std::vector<OutputTri> freshRun(const MeshData& mesh, int target, const SimplifyOptions& o,
                                const std::vector<std::int32_t>& locked = {}) {
    Bench b(mesh);
    b.session.Open(b.group);
    b.session.SetLockedPoints(locked);
    const SimplifyResult r = b.session.Run(target, o);
    EXPECT_NE(r.outcome, SimplifyOutcome::Failed) << r.message;
    return readOutput(b.eng, r.outputGroup);
}

std::string sameOutput(const std::vector<OutputTri>& a, const std::vector<OutputTri>& b) {
    StepResult x, y;
    x.output = a;
    y.output = b;
    return compareResults(x, y);
}

TEST(Session, DeeperRunsGoOnAndGiveWhatARunFromTheCopyGives) {
    const MeshData mesh = makeTorus(14, 10, 0.15, 4);
    const int total = static_cast<int>(mesh.faces.size());
    Bench b(mesh);
    TestHost host;
    ASSERT_EQ(b.session.Open(b.group, &host).outcome, SimplifyOutcome::Reduced);
    EXPECT_EQ(b.session.OriginalTriangles(), total);
    SimplifyOptions o;
    b.session.Model().TraceContractions = true;

    const SimplifyResult first = b.session.Run(b.session.TargetForReduction(30), o, &host);
    EXPECT_FALSE(first.continued);
    const std::size_t firstWork = b.session.Model().ContractionTrace.size();
    const long yieldsBefore = host.yields;

    const int deeper = b.session.TargetForReduction(70);
    ASSERT_TRUE(b.session.WouldContinue(deeper, o));
    const SimplifyResult second = b.session.Run(deeper, o, &host);
    EXPECT_TRUE(second.continued);
    EXPECT_EQ(second.outcome, SimplifyOutcome::Reduced);
    EXPECT_LE(second.triangles, deeper);
    // only the new contractions were made (about (70 - 30)% of the triangles, two a contraction)
    const std::size_t secondWork = b.session.Model().ContractionTrace.size() - firstWork;
    EXPECT_EQ(static_cast<long>(secondWork), host.yields - yieldsBefore);
    EXPECT_LT(secondWork, static_cast<std::size_t>(total * 40 / 100 / 2 + 4));
    EXPECT_EQ(sameOutput(readOutput(b.eng, second.outputGroup), freshRun(mesh, deeper, o)), "");
    EXPECT_EQ(b.session.OutputGroup(), second.outputGroup);

    // less reduction than the state holds: from the copy, with the same result as a fresh run
    const int shallower = b.session.TargetForReduction(50);
    EXPECT_FALSE(b.session.WouldContinue(shallower, o));
    const SimplifyResult third = b.session.Run(shallower, o, &host);
    EXPECT_FALSE(third.continued);
    EXPECT_EQ(sameOutput(readOutput(b.eng, third.outputGroup), freshRun(mesh, shallower, o)), "");
    // the source group is read, never written
    EXPECT_EQ(static_cast<int>(b.eng.group(b.group).polygons.size()), total);
}

TEST(Session, ChangedOptionsOrLockedPointsStartAgainAndZeroErrorDoesNot) {
    const MeshData mesh = makeSeamGrid(10, 8, 0.3, 7);
    Bench b(mesh);
    b.session.Open(b.group);
    SimplifyOptions o;
    const int t1 = b.session.TargetForReduction(40), t2 = b.session.TargetForReduction(60);
    b.session.Run(t1, o);
    SimplifyOptions seams = o;
    seams.protectTexSeams = true;
    EXPECT_FALSE(b.session.WouldContinue(t2, seams));
    SimplifyResult r = b.session.Run(t2, seams);
    EXPECT_FALSE(r.continued);
    EXPECT_EQ(sameOutput(readOutput(b.eng, r.outputGroup), freshRun(mesh, t2, seams)), "");

    // zero-error mode only decides where a run stops: from a state no costly contraction has
    // reached it goes on, from one beyond its stop it starts again
    SimplifyOptions zero = seams;
    zero.zeroError = true;
    EXPECT_TRUE(b.session.Model().CostlyContractionMade());
    EXPECT_FALSE(b.session.WouldContinue(0, zero));
    r = b.session.Run(0, zero);
    EXPECT_FALSE(r.continued);
    const std::vector<OutputTri> zeroOut = freshRun(mesh, 0, zero);
    EXPECT_EQ(sameOutput(readOutput(b.eng, r.outputGroup), zeroOut), "");
    EXPECT_LT(r.triangles, static_cast<int>(mesh.faces.size())); // the flat parts went
    r = b.session.Run(0, zero); // again: nothing more to do, the same result
    EXPECT_TRUE(r.continued);
    EXPECT_EQ(sameOutput(readOutput(b.eng, r.outputGroup), zeroOut), "");
    SimplifyOptions plain = seams;
    EXPECT_TRUE(b.session.WouldContinue(t2, plain)); // a zero-error run is the start of any other
    r = b.session.Run(t2, plain);
    EXPECT_TRUE(r.continued);
    EXPECT_EQ(sameOutput(readOutput(b.eng, r.outputGroup), freshRun(mesh, t2, seams)), "");

    // locked points: a change starts again, and they survive
    SimplifyOptions lock = seams;
    lock.lockSelected = true;
    const std::vector<std::int32_t> locked = {3, 17, 40};
    b.session.SetLockedPoints(locked);
    r = b.session.Run(t1, lock);
    EXPECT_FALSE(r.continued);
    for (const std::int32_t p : locked) EXPECT_TRUE(b.session.Model().PointValid(p)) << p;
    EXPECT_EQ(sameOutput(readOutput(b.eng, r.outputGroup), freshRun(mesh, t1, lock, locked)), "");
    EXPECT_TRUE(b.session.WouldContinue(t2, lock));
    b.session.SetLockedPoints({3, 17});
    EXPECT_FALSE(b.session.WouldContinue(t2, lock));
}

TEST(Session, CancelLeavesNoOutputAndTheNextRunStartsFromTheCopy) {
    const MeshData mesh = makeSphere(16, 20);
    Bench b(mesh);
    b.session.Open(b.group);
    SimplifyOptions o;
    const int target = b.session.TargetForReduction(80);
    TestHost host;
    host.cancelAfter = 25;
    const std::size_t groupsBefore = b.eng.groupCount();
    const SimplifyResult cancelled = b.session.Run(target, o, &host);
    EXPECT_EQ(cancelled.outcome, SimplifyOutcome::Cancelled);
    EXPECT_EQ(cancelled.outputGroup, 0);
    EXPECT_EQ(host.yields, 25); // stopped right after the contraction whose yield asked
    EXPECT_EQ(b.eng.groupCount(), groupsBefore); // no output group was made
    EXPECT_EQ(b.session.OutputGroup(), 0);
    // the model stands after a whole contraction: every valid triangle has valid corners
    const simplify::SurfSimpli& m = b.session.Model();
    for (int t = 1; t <= m.TriCount(); ++t) {
        const simplify::SimpTri T = m.Tri(t);
        if (!T.Valid) continue;
        for (const int p : T.Pts) EXPECT_TRUE(m.PointValid(p)) << t;
    }
    // even a deeper target starts over, and gives what a fresh run gives
    EXPECT_FALSE(b.session.WouldContinue(target, o));
    host.cancelAfter = -1;
    const SimplifyResult again = b.session.Run(target, o, &host);
    EXPECT_FALSE(again.continued);
    EXPECT_EQ(again.outcome, SimplifyOutcome::Reduced);
    EXPECT_EQ(sameOutput(readOutput(b.eng, again.outputGroup), freshRun(mesh, target, o)), "");
}

TEST(Session, BadGroupsGiveAnOutcomeNotACrash) {
    // no polygons
    {
        Bench b(MeshData{});
        const SimplifyResult r = b.session.Open(b.group);
        EXPECT_EQ(r.outcome, SimplifyOutcome::Failed);
        EXPECT_EQ(r.message, "The group has no polygons to reduce.");
        const std::size_t groups = b.eng.groupCount();
        EXPECT_EQ(b.session.Run(0, {}).outcome, SimplifyOutcome::Failed);
        EXPECT_EQ(b.eng.groupCount(), groups);
    }
    // run before open
    {
        SimplifySession s(nullptr);
        EXPECT_EQ(s.Run(0, {}).outcome, SimplifyOutcome::Failed);
    }
    // one triangle: down to nothing, or stopped; an output either way
    {
        Bench b(makeOneTriangle());
        b.session.Open(b.group);
        TestHost host;
        const SimplifyResult r = b.session.Run(0, {}, &host);
        EXPECT_NE(r.outcome, SimplifyOutcome::Failed);
        EXPECT_NE(r.outputGroup, 0);
        EXPECT_EQ(static_cast<int>(b.eng.group(r.outputGroup).polygons.size()), r.triangles);
    }
    // degenerate triangles (repeated corners, collinear corners) and non-manifold fins, every option
    {
        MeshData m = concat(makeNonManifold(6, 3), makeDuplicates(5, 8));
        const int base = static_cast<int>(m.vertices.size());
        m.vertices.push_back(m.vertices[0]);
        m.vertices.back().xyz[0] += 0.5;
        m.vertices.push_back(m.vertices[0]);
        m.vertices.back().xyz[0] += 1.0;
        MeshFace f;
        f.v = {0, 0, 1}; // two corners the same
        m.faces.push_back(f);
        f.v = {0, base, base + 1}; // on one line
        m.faces.push_back(f);
        for (int combo = 0; combo < 16; ++combo) {
            Bench b(m);
            b.session.Open(b.group);
            SimplifyOptions o;
            o.protectTexSeams = combo & 1;
            o.geomOnly = combo & 2;
            o.lockSelected = combo & 4;
            o.protectColorBorders = combo & 8;
            b.session.SetLockedPoints({1, 2});
            for (const double percent : {50.0, 100.0}) {
                const SimplifyResult r = b.session.Run(b.session.TargetForReduction(percent), o);
                if (r.outcome == SimplifyOutcome::Failed) {
                    EXPECT_FALSE(r.message.empty());
                    continue;
                }
                EXPECT_EQ(static_cast<int>(b.eng.group(r.outputGroup).polygons.size()), r.triangles) << combo;
            }
        }
    }
    // a position that is not a number: Overflow, reported
    {
        MeshData m = makeGrid(4, 4, 0.2, 1);
        m.vertices[7].xyz[1] = std::nan("");
        Bench b(m);
        b.session.Open(b.group);
        const SimplifyResult r = b.session.Run(4, {});
        EXPECT_EQ(r.outcome, SimplifyOutcome::Failed);
        EXPECT_NE(r.message.find("Overflow"), std::string::npos) << r.message;
        EXPECT_EQ(r.outputGroup, 0);
    }
}

// An open part of the bunny whose border penalties divide by zero on the way down (as the design
// has it): a clear outcome, the source untouched, and the next run starts from the copy.
TEST(Session, DivisionByZeroOfABorderPenaltyIsAnOutcome) {
    const char* bunny = "/usr/share/glmark2/models/bunny.obj";
    if (!std::filesystem::exists(bunny)) GTEST_SKIP() << "glmark2-data not installed";
    const MeshData mesh = firstFaces(loadObj(bunny), 2500);
    Bench b(mesh);
    b.session.Open(b.group);
    const std::size_t groups = b.eng.groupCount();
    const SimplifyResult r = b.session.Run(250, {});
    ASSERT_EQ(r.outcome, SimplifyOutcome::Failed);
    EXPECT_NE(r.message.find("Division by zero"), std::string::npos) << r.message;
    EXPECT_EQ(b.eng.groupCount(), groups);
    EXPECT_EQ(static_cast<int>(b.eng.group(b.group).polygons.size()), 2500);
    // a smaller reduction afterwards: from the copy, equal to a fresh run
    EXPECT_FALSE(b.session.WouldContinue(2000, {}));
    const SimplifyResult next = b.session.Run(2000, {});
    EXPECT_EQ(next.outcome, SimplifyOutcome::Reduced);
    EXPECT_FALSE(next.continued);
    EXPECT_EQ(sameOutput(readOutput(b.eng, next.outputGroup), freshRun(mesh, 2000, {})), "");
}

} // namespace
