#include "formAtmsEffect.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

formAtmsEffect::formAtmsEffect(ActionUndoRedo_Stack& stack, bool worldOpen, std::function<void()> refresh,
                               QWidget* parent)
    : QDialog(parent), m_stack(stack), m_worldOpen(worldOpen), m_refresh(std::move(refresh)) {
    setObjectName(QStringLiteral("formAtmsEffect"));
    setWindowTitle(GetLocaleString(437));
    RegisterLightingActions();
    auto* grid = new QGridLayout(this);
    cmdColor = new QPushButton(GetLocaleString(439), this);
    cmdColor->setObjectName(QStringLiteral("cmdColor"));
    cmdColor->setAutoDefault(false);
    auto* caption = new QLabel(GetLocaleString(440), this);
    lblIntensity = new QLabel(this);
    lblIntensity->setObjectName(QStringLiteral("lblIntensity"));
    lblIntensity->setFrameShape(QFrame::StyledPanel);
    lblIntensity->setMinimumWidth(70);
    updwnIntensity = new QSpinBox(this);
    updwnIntensity->setObjectName(QStringLiteral("updwnIntensity"));
    updwnIntensity->setRange(-1000, 1000);
    updwnIntensity->setValue(0);
    updwnIntensity->setMaximumWidth(22 + updwnIntensity->fontMetrics().horizontalAdvance(QStringLiteral("0")));
    updwnIntensity->setStyleSheet(QStringLiteral("QSpinBox { color: transparent; }"));
    updwnIntensity->installEventFilter(this);
    auto* hint = new QLabel(GetLocaleString(438), this);
    hint->setWordWrap(true);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    grid->addWidget(cmdColor, 0, 0, 1, 3);
    grid->addWidget(caption, 1, 0);
    grid->addWidget(lblIntensity, 1, 1);
    grid->addWidget(updwnIntensity, 1, 2);
    grid->addWidget(hint, 2, 0, 1, 3);
    grid->addLayout(buttons, 3, 0, 1, 3);
    connect(cmdColor, &QPushButton::clicked, this,
            [this] { handleEvent("formAtmsEffect", "cmdColor_Click", [&] { cmdColor_Click(); }); });
    connect(updwnIntensity, &QSpinBox::valueChanged, this,
            [this] { handleEvent("formAtmsEffect", "updwnIntensity_Change", [&] { updwnIntensity_Change(); }); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { accept(); });
    connect(cmdCancel, &QPushButton::clicked, this,
            [this] { handleEvent("formAtmsEffect", "cmdCancel_Click", [&] { cmdCancel_Click(); }); });
    Form_Load();
}

formAtmsEffect::~formAtmsEffect() {
    // A form that goes without being closed still ends its undo step.
    try {
        if (!m_cancelled) Form_Unload();
    } catch (...) {
    }
}

void formAtmsEffect::Form_Load() {
    if (!m_worldOpen) {
        setEnabled(false);
        return;
    }
    m_initial = ReadFog();
    showValues();
    m_action = ActionUndoRedo_Stack::MakeAction(AT_ActionChngFog);
    if (auto* a = m_action->As<ActionChngFog>()) a->SetOldFogValues(m_initial.colour, m_initial.intensity);
}

void formAtmsEffect::showValues() {
    const int c = ZELMAR_engine_get_atmospheric_effect();
    const QColor colour(c % 256, (c / 256) % 256, (c / 65536) % 256);
    cmdColor->setStyleSheet(QStringLiteral("background-color: %1; color: %2;")
                                .arg(colour.name(), colour.lightness() < 128 ? QStringLiteral("white")
                                                                              : QStringLiteral("black")));
    lblIntensity->setText(QString::number(ZELMAR_engine_get_atmospheric_effect_intensity(), 'g', 6));
}

void formAtmsEffect::refresh() {
    showValues();
    if (m_refresh) m_refresh();
}

void formAtmsEffect::cmdColor_Click() {
    if (!m_worldOpen) return;
    const int c = ZELMAR_engine_get_atmospheric_effect();
    const std::optional<QColor> chosen = dialogs().chooseColor(QColor(c % 256, (c / 256) % 256, (c / 65536) % 256));
    // A cancelled colour dialog is not a failure: nothing changes.
    if (!chosen || !chosen->isValid()) return;
    const int value = chosen->red() + chosen->green() * 256 + chosen->blue() * 65536;
    ZELMAR_engine_set_atmospheric_effect(value % 256, (value / 256) % 256, (value / 65536) % 256);
    refresh();
}

void formAtmsEffect::updwnIntensity_Change() {
    const int v = updwnIntensity->value();
    if (v == 0 || !m_worldOpen) return;
    double old = ZELMAR_engine_get_atmospheric_effect_intensity();
    if (!std::isfinite(old)) old = 0; // a world may bring any number: it starts again from none
    const double step = keyDown(Qt::Key_Shift) ? 2 * IntensityStep : IntensityStep;
    double now = old + v * step;
    if (now < 0) now = 0;
    ZELMAR_engine_set_atmospheric_effect_intensity(now);
    refresh();
}

void formAtmsEffect::updwnIntensity_MouseUp() {
    const QSignalBlocker still(updwnIntensity);
    updwnIntensity->setValue(0);
}

bool formAtmsEffect::eventFilter(QObject* watched, QEvent* e) {
    // The up-down is a wheel: it returns to 0 when the mouse (or the arrow key) is released.
    if (watched == updwnIntensity && (e->type() == QEvent::MouseButtonRelease || e->type() == QEvent::KeyRelease))
        updwnIntensity_MouseUp();
    return QDialog::eventFilter(watched, e);
}

void formAtmsEffect::cmdCancel_Click() {
    if (m_worldOpen) {
        ApplyFog(m_initial);
        if (m_refresh) m_refresh();
    }
    m_cancelled = true;
    reject();
}

void formAtmsEffect::Form_Unload() {
    if (m_unloaded || !m_action) return;
    m_unloaded = true;
    const FogValues now = ReadFog();
    if (auto* a = m_action->As<ActionChngFog>()) a->SetNewFogValues(now.colour, now.intensity);
    m_stack.Push(m_action);
}

void formAtmsEffect::done(int result) {
    if (!m_cancelled) handleEvent("formAtmsEffect", "Form_Unload", [&] { Form_Unload(); });
    QDialog::done(result);
}

} // namespace vexil
