// The window as the host of a run: progress bar, status label, message boxes, the yield that lets
// pending events through (at most every YieldIntervalMs, so that a run on a large mesh costs little
// more than the bare simplifier), and the cancel that Escape or the Cancel button asks for.
#pragma once
#include "formSurfaceSimplification.h"
#include "simplify/SimplifyHost.h"

#include <QElapsedTimer>

namespace vexil {

class formSurfaceSimplification::Host final : public simplify::SimplifyHost,
                                              public simplify::SimplifyProgress,
                                              public simplify::SimplifyStatus {
public:
    explicit Host(formSurfaceSimplification& form) : m_form(form) {}

    // ---- SimplifyHost ----
    void messageBox(const std::string& text) override;
    void yieldEvents() override;
    bool cancelRequested() override { return m_form.m_cancel; }
    // ---- SimplifyProgress: kept here, shown on the bar when events are let through ----
    void setMaximum(int value) override;
    void setMinimum(int value) override;
    void setValue(int value) override;
    // ---- SimplifyStatus ----
    void setText(const std::string& text) override;

    // Shows the kept progress on the bar.
    void Flush();
    // A run starts: the clock of the yield starts.
    void Start() {
        m_clock.start();
        m_yields = 0;
    }
    // How often pending events were let through since Start (for the benchmark and the tests).
    long long Yields() const { return m_yields; }

private:
    formSurfaceSimplification& m_form;
    QElapsedTimer m_clock;
    int m_min = 0, m_max = 100, m_value = 0;
    bool m_dirty = false;
    long long m_yields = 0;
};

} // namespace vexil
