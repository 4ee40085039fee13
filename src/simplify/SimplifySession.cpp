#include "simplify/SimplifySession.h"

#include "base/VexilError.h"

#include <cmath>

namespace simplify {

namespace {

std::string failureText(const vexil::VexilError& e) {
    switch (e.number) {
    case vexil::ErrDivisionByZero:
        return "The mesh could not be reduced further: a border edge has shrunk to a point or a line "
               "(Division by zero). The group is unchanged; try a smaller reduction.";
    case vexil::ErrOverflow:
        return "The mesh could not be reduced: a position or an error term is not a finite number "
               "(Overflow). The group is unchanged.";
    default:
        return "The mesh could not be reduced: " + e.description + ". The group is unchanged.";
    }
}
} // namespace

// Passes everything to the caller's host and notes the "Can't simplify further!" message.
class SimplifySession::Relay final : public SimplifyHost {
public:
    explicit Relay(SimplifyHost* host, const std::string& cantText) : host_(host), cantText_(cantText) {}
    void messageBox(const std::string& text) override {
        if (text == cantText_) cannotSimplify = true;
        if (host_) host_->messageBox(text);
    }
    void yieldEvents() override {
        if (host_) host_->yieldEvents();
    }
    bool cancelRequested() override { return host_ && host_->cancelRequested(); }
    bool cannotSimplify = false;

private:
    SimplifyHost* host_;
    std::string cantText_;
};

SimplifySession::SimplifySession(SimplifyEngine* engine) : model_(engine) {}

SimplifyResult SimplifySession::Open(int group, SimplifyHost* host, SimplifyProgress* progress, SimplifyStatus* status) {
    SimplifyResult r;
    group_ = 0;
    output_ = 0;
    ran_ = false;
    mustRestart_ = true;
    model_.SetHost(host);
    try {
        model_.Load(group, progress, status);
    } catch (const vexil::VexilError& e) {
        r.outcome = SimplifyOutcome::Failed;
        r.message = failureText(e);
        return r;
    }
    group_ = group;
    r.triangles = model_.TriCurrent();
    if (model_.TriTotal() == 0) {
        r.outcome = SimplifyOutcome::Failed;
        r.message = "The group has no polygons to reduce.";
    }
    return r;
}

int SimplifySession::TargetForReduction(double percent) const {
    if (!(percent >= 0.0)) percent = 0.0; // NaN too
    if (percent > 100.0) percent = 100.0;
    return static_cast<int>(std::nearbyint(model_.TriTotal() * (100.0 - percent) / 100.0));
}

void SimplifySession::SetLockedPoints(std::vector<std::int32_t> points) { model_.SetSelectedPts(std::move(points)); }

bool SimplifySession::WouldContinue(int target, const SimplifyOptions& options) const {
    if (!ran_ || mustRestart_) return false;
    SimplifyOptions a = options, b = last_;
    a.zeroError = b.zeroError = false; // the mode only decides where a run stops
    if (!(a == b)) return false;
    // selected points stay in their contractions even without the lock
    if (model_.SelectedPts() != lockedAtSetup_) return false;
    // a zero-error run from the copy stops at the first contraction that costs more than 0.00
    if (options.zeroError && model_.CostlyContractionMade()) return false;
    const int wanted = options.zeroError ? 0 : target;
    return wanted <= model_.TriCurrent();
}

SimplifyResult SimplifySession::Run(int target, const SimplifyOptions& options, SimplifyHost* host,
                                    SimplifyProgress* progress, SimplifyStatus* status) {
    SimplifyResult r;
    if (group_ == 0) {
        r.outcome = SimplifyOutcome::Failed;
        r.message = "No group is open for simplification.";
        return r;
    }
    if (model_.TriTotal() == 0) {
        r.outcome = SimplifyOutcome::Failed;
        r.message = "The group has no polygons to reduce.";
        return r;
    }
    if (target < 0) target = 0;
    r.continued = WouldContinue(target, options);
    // Anything that changes the set-up (options, the locked points a locking run uses) or a
    // run that did not finish makes this one start from the copy.
    model_.ForceRestart = !r.continued;
    model_.ZeroErrorMode = options.zeroError;
    const std::string cantText =
        model_.LocaleMessages().cantSimplify.empty() ? "Can't simplify further!" : model_.LocaleMessages().cantSimplify;
    Relay relay(host, cantText);
    model_.SetHost(&relay);
    try {
        const int out = model_.Reduce(options.zeroError ? 0 : target, group_, options.protectTexSeams, progress, status,
                                      options.geomOnly, options.lockSelected, options.protectColorBorders);
        model_.SetHost(host);
        r.triangles = model_.TriCurrent();
        if (!r.continued) {
            ran_ = true;
            last_ = options;
            lockedAtSetup_ = model_.SelectedPts();
        }
        last_.zeroError = options.zeroError;
        if (model_.Cancelled()) {
            r.outcome = SimplifyOutcome::Cancelled;
            mustRestart_ = true;
            return r;
        }
        mustRestart_ = false;
        r.outputGroup = out;
        output_ = out;
        if (relay.cannotSimplify) {
            r.outcome = SimplifyOutcome::CannotSimplifyFurther;
            r.message = cantText;
        }
        return r;
    } catch (const vexil::VexilError& e) {
        // The contraction that raised stopped half way: the model is set right by the next run,
        // which starts from the copy.
        model_.SetHost(host);
        model_.ForceRestart = true;
        mustRestart_ = true;
        r.outcome = SimplifyOutcome::Failed;
        r.message = failureText(e);
        r.triangles = model_.TriCurrent();
        return r;
    }
}

} // namespace simplify
