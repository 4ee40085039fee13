// formSurfaceSimplification: a run (cmdSimplify_Click) and its host, the percentage (UpDown1) and the
// option check boxes.
#include "formSurfaceSimplification.h"

#include "formSurfaceSimplification_Host.h"
#include "UpDown.h"
#include "frame/Dialogs.h"
#include "frame/InputState.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

using simplify::SimplifyOutcome;

// ---- the host of a run ------------------------------------------------------------------------

void formSurfaceSimplification::Host::messageBox(const std::string& text) {
    Flush();
    dialogs().msgBox(QString::fromStdString(text), MsgOKOnly, MsgExclamation);
}

void formSurfaceSimplification::Host::yieldEvents() {
    // Once per contraction: a look at the clock is all it costs until the interval has passed.
    if (m_form.YieldIntervalMs > 0 && m_clock.isValid() && m_clock.elapsed() < m_form.YieldIntervalMs) return;
    Flush();
    ++m_yields;
    QCoreApplication::processEvents();
    m_clock.start();
}

void formSurfaceSimplification::Host::setMaximum(int value) {
    m_max = value;
    m_dirty = true;
}

void formSurfaceSimplification::Host::setMinimum(int value) {
    m_min = value;
    m_dirty = true;
}

void formSurfaceSimplification::Host::setValue(int value) {
    m_value = value;
    m_dirty = true;
}

void formSurfaceSimplification::Host::setText(const std::string& text) {
    m_form.lblProgress->setText(QString::fromStdString(text));
}

void formSurfaceSimplification::Host::Flush() {
    if (!m_dirty) return;
    m_dirty = false;
    QProgressBar* bar = m_form.ProgressBar1;
    // The model may set the maximum below the minimum for a moment; the bar takes the pair as it ends.
    bar->setRange(std::min(m_min, m_max), std::max(m_min, m_max));
    bar->setValue(std::clamp(m_value, bar->minimum(), bar->maximum()));
}

long long formSurfaceSimplification::Yields() const {
    return m_host->Yields();
}

// ---- cmdSimplify_Click --------------------------------------------------------------------------

simplify::SimplifyOptions formSurfaceSimplification::readOptions() const {
    simplify::SimplifyOptions o;
    o.protectTexSeams = chkPrtTxrSm->isChecked();
    o.geomOnly = chkProsGeomOnly->isChecked();
    o.lockSelected = chkLockSelVertices->isChecked();
    o.protectColorBorders = chkProtectPolClrBndr->isChecked();
    o.zeroError = chkZeroErrSimp->isChecked();
    return o;
}

void formSurfaceSimplification::cmdSimplify_Click() {
    if (m_busy || !m_activated || m_unloaded || m_working == 0 || !m_session->IsOpen()) return;
    m_busy = true;
    m_cancel = false;
    struct Idle {
        formSurfaceSimplification& f;
        ~Idle() {
            f.Frame5->setEnabled(true);
            f.cmdCancel->setEnabled(false);
            f.m_busy = false;
        }
    } idle{*this};

    // 2. The last output goes; the working group shows during the run.
    if (m_output != 0 && ZELMAR_group_is_group(m_output) == 1) ZELMAR_group_delete_members(m_output);
    m_output = 0;
    ZELMAR_group_disable(m_working, 0);
    m_shown = m_working;
    lblSimp->clear();

    // 3 to 5.
    const simplify::SimplifyOptions options = readOptions();
    Frame5->setEnabled(false);
    cmdCancel->setEnabled(true);
    const int target = options.zeroError ? 0 : m_session->TargetForReduction(Reduction());
    m_host->Start();
    m_last = m_session->Run(target, options, m_host.get(), m_host.get(), m_host.get());
    m_host->Flush();

    // 6 to 8.
    switch (m_last.outcome) {
    case SimplifyOutcome::Reduced:
    case SimplifyOutcome::CannotSimplifyFurther: // its message was shown during the run
        m_output = m_last.outputGroup;
        break;
    case SimplifyOutcome::Cancelled:
        lblProgress->setText(CancelledText());
        break;
    case SimplifyOutcome::Failed:
        lblProgress->clear();
        dialogs().msgBox(QString::fromStdString(m_last.message), MsgOKOnly, MsgExclamation);
        break;
    }
    ProgressBar1->setValue(ProgressBar1->minimum());
    if (m_output != 0) {
        ZELMAR_group_set_father_group(m_output, m_renderGroup);
        ZELMAR_group_disable(m_working, 1);
        m_shown = m_output;
        const int simp = ZELMAR_group_get_number_of_polygons(m_output);
        lblSimp->setText(QString::number(simp));
        if (options.zeroError) {
            const int original = ZELMAR_group_get_number_of_polygons(m_working);
            if (original > 0) SetReduction(std::nearbyint(double(original - simp) / original * 1000.0) / 10.0);
        }
    }
    // 9.
    Render();
    if (m_closePending) {
        m_closePending = false;
        m_busy = false;
        QMetaObject::invokeMethod(this, [this] { done(QDialog::Accepted); }, Qt::QueuedConnection);
    }
}

QString formSurfaceSimplification::CancelledText() {
    return QStringLiteral("Cancelled: the model is as it was read.");
}

void formSurfaceSimplification::cmdCancel_Click() {
    if (m_busy) m_cancel = true;
}

// ---- UpDown1 -----------------------------------------------------------------------------------

void formSurfaceSimplification::UpDown1_Change() {
    const int v = UpDown1->Value();
    if (v == 0) return;
    const double step = keyDown(Qt::Key_Shift) ? 2.0 : keyDown(Qt::Key_Alt) ? 0.5 : 1.0;
    const double r = Reduction() + step * v;
    if (r > 100) lblReduction->setText(QStringLiteral("100"));
    else if (r < 0) lblReduction->setText(QStringLiteral("0"));
    else lblReduction->setText(QString::number(r));
    UpDown1->SetValue(0);
}

void formSurfaceSimplification::UpDown1_Click() {
    if (keyDown(Qt::Key_U)) cmdSimplify_Click();
}

// ---- the option check boxes ----------------------------------------------------------------------

// ForceRestart is what a bare Reduce reads; the session also starts again from the copy by itself
// whenever the options differ from those the model was set up with.
void formSurfaceSimplification::chkOption_Click() {
    m_session->Model().ForceRestart = true;
}

void formSurfaceSimplification::chkProsGeomOnly_Click() {
    const bool only = chkProsGeomOnly->isChecked();
    if (only) {
        chkPrtTxrSm->setChecked(false);
        chkProtectPolClrBndr->setChecked(false);
    }
    chkPrtTxrSm->setEnabled(!only);
    chkProtectPolClrBndr->setEnabled(!only);
    m_session->Model().ForceRestart = true;
}

void formSurfaceSimplification::chkZeroErrSimp_Click() {
    m_session->Model().ZeroErrorMode = chkZeroErrSimp->isChecked();
}

} // namespace vexil
