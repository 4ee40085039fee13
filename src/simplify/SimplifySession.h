// What the simplification workbench drives: one model built once from a group, runs to a
// target that go on from the state of the previous run whenever that gives the same result as
// starting over, a host that shows progress, status and messages and may cancel, locked points,
// and the output group of each run. Failures of a run (the floating-point failures the design
// lets pass, a group without polygons) come back as an outcome with a message; the source
// group is never changed, and a run after a failure or a cancel starts again from the copy.
// docs/simplify.md, "The workbench's interface".
#pragma once
#include "simplify/SurfSimpli.h"

#include <cstdint>
#include <string>
#include <vector>

namespace simplify {

struct SimplifyOptions {
    bool protectTexSeams = false;
    bool geomOnly = false;
    bool lockSelected = false;
    bool protectColorBorders = false;
    bool zeroError = false; // stop when the next contraction would cost more than 0.00
    bool operator==(const SimplifyOptions&) const = default;
};

enum class SimplifyOutcome {
    Reduced,               // the target was reached, or zero-error mode stopped by cost
    CannotSimplifyFurther, // no legal contraction was left; the output holds what remains
    Cancelled,             // the host asked to stop; no output was made
    Failed,                // see message; no output was made
};

struct SimplifyResult {
    SimplifyOutcome outcome = SimplifyOutcome::Reduced;
    int outputGroup = 0;    // the new "Simplified_version" group, 0 when none was made
    int triangles = 0;      // triangles in the model after the run
    bool continued = false; // the run went on from the previous one instead of the copy
    std::string message;    // why it failed, or the "Can't simplify further!" text
};

class SimplifySession {
public:
    // engine: where groups are read and written; nullptr means libzelmar3.
    explicit SimplifySession(SimplifyEngine* engine = nullptr);

    // Reads the group's triangles into the model (no contraction, no output group). The group
    // should be made of triangles (ZELMAR_group_create_copy_made_of_triangles): only the first
    // three points of a polygon are read. Answers Failed when the group has no polygons.
    SimplifyResult Open(int group, SimplifyHost* host = nullptr, SimplifyProgress* progress = nullptr,
                        SimplifyStatus* status = nullptr);
    bool IsOpen() const { return group_ != 0; }

    // Reduces to `target` triangles (ignored in zero-error mode, which runs to 0) and builds a
    // new output group. Goes on from the current state when the options (but zero-error mode)
    // and locked points are those the model was set up with and the target is not above the
    // triangles left; otherwise starts again from the copy made by Open. Either way the output
    // is the one a run from the copy would give. The host gets the messages, the yield after each
    // contraction, and is asked after each whether to cancel.
    SimplifyResult Run(int target, const SimplifyOptions& options, SimplifyHost* host = nullptr,
                       SimplifyProgress* progress = nullptr, SimplifyStatus* status = nullptr);
    // The target for a reduction by `percent` (0 to 100) of the triangles read: the nearest
    // integer to count x (100 - percent) / 100, halves to even.
    int TargetForReduction(double percent) const;
    // Whether Run(target, options) would go on from the current state.
    bool WouldContinue(int target, const SimplifyOptions& options) const;

    // Points of the model to lock: each stays when an edge of it is contracted, and with the
    // lock option its neighbours are pulled to it. A change makes the next run start again.
    void SetLockedPoints(std::vector<std::int32_t> points);
    const std::vector<std::int32_t>& LockedPoints() const { return model_.SelectedPts(); }

    int SourceGroup() const { return group_; }
    int OriginalTriangles() const { return model_.TriTotal(); }
    int Triangles() const { return model_.TriCurrent(); }
    // The output group of the last run that made one (0 before); TakeOutputGroup hands it over.
    int OutputGroup() const { return output_; }
    int TakeOutputGroup() {
        const int g = output_;
        output_ = 0;
        return g;
    }
    // The model, for the diagnostic drawing and point selection of the workbench.
    SurfSimpli& Model() { return model_; }
    const SurfSimpli& Model() const { return model_; }

private:
    class Relay;
    SurfSimpli model_;
    int group_ = 0;
    int output_ = 0;
    bool ran_ = false;        // a run has set the model up since it was opened or restarted
    SimplifyOptions last_;    // the options of that set-up
    std::vector<std::int32_t> lockedAtSetup_;
    bool mustRestart_ = true; // after Open, a failure, a cancel
};

} // namespace simplify
