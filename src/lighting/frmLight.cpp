#include "frmLight.h"

#include "LightController.h"
#include "LightGrp.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Spinner.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

Spinner* spinner(QWidget* parent, const QString& name, double lo, double hi, double step, int decimals) {
    auto* s = new Spinner(parent);
    s->setObjectName(name);
    s->setRange(lo, hi);
    s->SetStep(step);
    s->setDecimals(decimals);
    return s;
}

// The list's items in order: three lighting terms, then directional.
constexpr int TermBits[3] = {8, 16, 32};

} // namespace

frmLight::frmLight(LightController& lights, QWidget* parent) : QWidget(parent), m_lights(lights) {
    setObjectName(QStringLiteral("frmLight"));
    build();
    Clear();
}

void frmLight::build() {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);

    auto* place = new QGridLayout;
    const char* axes[3] = {"X", "Y", "Z"};
    place->addWidget(new QLabel(GetLocaleString(144), this), 0, 0);
    place->addWidget(new QLabel(GetLocaleString(140), this), 1, 0);
    for (int i = 0; i < 3; ++i) {
        spnLightLoc[size_t(i)] = spinner(this, QStringLiteral("spnLightLoc%1").arg(i), -1e9, 1e9, 10, 2);
        spnLightDir[size_t(i)] = spinner(this, QStringLiteral("spnLightDir%1").arg(i), -1e6, 1e6, 0.1, 4);
        spnLightLoc[size_t(i)]->setToolTip(QString::fromLatin1(axes[i]));
        spnLightDir[size_t(i)]->setToolTip(QString::fromLatin1(axes[i]));
        place->addWidget(spnLightLoc[size_t(i)], 0, i + 1);
        place->addWidget(spnLightDir[size_t(i)], 1, i + 1);
        connect(spnLightLoc[size_t(i)], &Spinner::Changed, this,
                [this, i] { act("spnLightLoc_Changed", &frmLight::spnLightLoc_Changed, i); });
        connect(spnLightDir[size_t(i)], &Spinner::Changed, this,
                [this, i] { act("spnLightDir_Changed", &frmLight::spnLightDir_Changed, i); });
    }
    outer->addLayout(place);

    auto* params = new QFormLayout;
    cmdLightColor = new QPushButton(this);
    cmdLightColor->setObjectName(QStringLiteral("cmdLightColor"));
    cmdLightColor->setAutoFillBackground(true);
    cmdLightColor->setMinimumWidth(60);
    connect(cmdLightColor, &QPushButton::clicked, this, [this] { act("cmdLightColor_Click", &frmLight::cmdLightColor_Click); });
    params->addRow(GetLocaleString(139), cmdLightColor);
    spnAmbient = spinner(this, QStringLiteral("spnAmbient"), 0, 100, 0.05, 3);
    spnDiffuse = spinner(this, QStringLiteral("spnDiffuse"), 0, 100, 0.05, 3);
    spnSpecular = spinner(this, QStringLiteral("spnSpecular"), 0, 100, 0.05, 3);
    spnShine = spinner(this, QStringLiteral("spnShine"), 0, 10000, 1, 2);
    spnDistanceReach = spinner(this, QStringLiteral("spnDistanceReach"), 0, 1e9, 10, 2);
    params->addRow(GetLocaleString(138), spnAmbient);
    params->addRow(GetLocaleString(137), spnDiffuse);
    params->addRow(GetLocaleString(136), spnSpecular);
    params->addRow(GetLocaleString(135), spnShine);
    params->addRow(GetLocaleString(134), spnDistanceReach);
    connect(spnAmbient, &Spinner::Changed, this, [this] { act("spnAmbient_Changed", &frmLight::spnAmbient_Changed); });
    connect(spnDiffuse, &Spinner::Changed, this, [this] { act("spnDiffuse_Changed", &frmLight::spnDiffuse_Changed); });
    connect(spnSpecular, &Spinner::Changed, this, [this] { act("spnSpecular_Changed", &frmLight::spnSpecular_Changed); });
    connect(spnShine, &Spinner::Changed, this, [this] { act("spnShine_Changed", &frmLight::spnShine_Changed); });
    connect(spnDistanceReach, &Spinner::Changed, this,
            [this] { act("spnDistanceReach_Changed", &frmLight::spnDistanceReach_Changed); });
    outer->addLayout(params);

    auto* checks = new QHBoxLayout;
    chkLightOn = new QCheckBox(GetLocaleString(132), this);
    chkLightOn->setObjectName(QStringLiteral("chkLightOn"));
    chkLightRaytracing = new QCheckBox(GetLocaleString(131), this);
    chkLightRaytracing->setObjectName(QStringLiteral("chkLightRaytracing"));
    chkAutoUpdate = new QCheckBox(GetLocaleString(133), this);
    chkAutoUpdate->setObjectName(QStringLiteral("chkAutoUpdate"));
    for (QCheckBox* c : {chkLightOn, chkLightRaytracing, chkAutoUpdate})
        checks->addWidget(c);
    connect(chkLightOn, &QCheckBox::clicked, this, [this] { act("chkLightOn_Click", &frmLight::chkLightOn_Click); });
    connect(chkLightRaytracing, &QCheckBox::clicked, this,
            [this] { act("chkLightRaytracing_Click", &frmLight::chkLightRaytracing_Click); });
    connect(chkAutoUpdate, &QCheckBox::clicked, this, [this] { act("chkAutoUpdate_Click", &frmLight::chkAutoUpdate_Click); });
    outer->addLayout(checks);

    auto* target = new QFormLayout;
    cmbLightTraget = new QComboBox(this);
    cmbLightTraget->setObjectName(QStringLiteral("cmbLightTraget"));
    target->addRow(GetLocaleString(151), cmbLightTraget);
    connect(cmbLightTraget, &QComboBox::activated, this,
            [this] { act("cmbLightTraget_Change", &frmLight::cmbLightTraget_Change); });
    outer->addLayout(target);

    auto* type = new QGroupBox(GetLocaleString(145), this);
    auto* typeRows = new QVBoxLayout(type);
    auto* typeOptions = new QHBoxLayout;
    opnLightTypeDefault = new QRadioButton(GetLocaleString(150), type);
    opnLightTypeDefault->setObjectName(QStringLiteral("opnLightTypeDefault"));
    opnLightTypeCustom = new QRadioButton(GetLocaleString(149), type);
    opnLightTypeCustom->setObjectName(QStringLiteral("opnLightTypeCustom"));
    typeOptions->addWidget(opnLightTypeDefault);
    typeOptions->addWidget(opnLightTypeCustom);
    typeRows->addLayout(typeOptions);
    lstLightType = new QListWidget(type);
    lstLightType->setObjectName(QStringLiteral("lstLightType"));
    lstLightType->setSelectionMode(QAbstractItemView::MultiSelection);
    lstLightType->addItems({GetLocaleString(138), GetLocaleString(137), GetLocaleString(136), QStringLiteral("Directional")});
    lstLightType->setMaximumHeight(4 * lstLightType->sizeHintForRow(0) + 6);
    typeRows->addWidget(lstLightType);
    connect(opnLightTypeDefault, &QRadioButton::clicked, this,
            [this] { act("opnLightTypeDefault_Click", &frmLight::opnLightTypeDefault_Click); });
    connect(opnLightTypeCustom, &QRadioButton::clicked, this,
            [this] { act("opnLightTypeCustom_Click", &frmLight::opnLightTypeCustom_Click); });
    connect(lstLightType, &QListWidget::itemSelectionChanged, this,
            [this] { act("lstLightType_Click", &frmLight::lstLightType_Click); });
    outer->addWidget(type);

    auto* decay = new QGroupBox(GetLocaleString(146), this);
    auto* decayRow = new QHBoxLayout(decay);
    opnDecalLinearly = new QRadioButton(GetLocaleString(148), decay);
    opnDecalLinearly->setObjectName(QStringLiteral("opnDecalLinearly"));
    opnDecayAsSquare = new QRadioButton(GetLocaleString(147), decay);
    opnDecayAsSquare->setObjectName(QStringLiteral("opnDecayAsSquare"));
    decayRow->addWidget(opnDecalLinearly);
    decayRow->addWidget(opnDecayAsSquare);
    // A change of decay is a change of the type bits.
    connect(opnDecalLinearly, &QRadioButton::clicked, this, [this] { act("lstLightType_Click", &frmLight::lstLightType_Click); });
    connect(opnDecayAsSquare, &QRadioButton::clicked, this, [this] { act("lstLightType_Click", &frmLight::lstLightType_Click); });
    outer->addWidget(decay);
    outer->addStretch(1);
}

void frmLight::act(const char* name, void (frmLight::*handler)()) {
    if (m_filling) return;
    handleEvent("frmLight", name, [&] {
        if (current() == 0) return;
        (this->*handler)();
    });
}

void frmLight::act(const char* name, void (frmLight::*handler)(int), int axis) {
    if (m_filling) return;
    handleEvent("frmLight", name, [&] {
        if (current() == 0) return;
        (this->*handler)(axis);
    });
}

int frmLight::current() const {
    return m_light != 0 && ZELMAR_light_is_light(m_light) == 1 ? m_light : 0;
}

void frmLight::setSpinner(Spinner* s, double v) {
    s->setValue(std::isfinite(v) ? v : 0.0);
}

void frmLight::showColour(int r, int g, int b) {
    QPalette p = cmdLightColor->palette();
    p.setColor(QPalette::Button, QColor(r, g, b));
    cmdLightColor->setPalette(p);
    cmdLightColor->setStyleSheet(QStringLiteral("background-color: rgb(%1, %2, %3);").arg(r).arg(g).arg(b));
}

// ---- filling ------------------------------------------------------------------------------------------------

void frmLight::Clear() {
    m_light = 0;
    setEnabled(false);
}

void frmLight::ShowPlacement() {
    if (current() == 0) return;
    const bool was = m_filling;
    m_filling = true;
    double l[3], d[3];
    ZELMAR_light_get_location(m_light, l);
    ZELMAR_light_get_direction(m_light, d);
    for (int i = 0; i < 3; ++i) {
        setSpinner(spnLightLoc[size_t(i)], l[i]);
        setSpinner(spnLightDir[size_t(i)], d[i]);
    }
    m_filling = was;
}

void frmLight::frmLight_SetParameters(int light) {
    m_light = light;
    if (current() == 0) {
        Clear();
        return;
    }
    setEnabled(true);
    m_filling = true;
    m_noAutoUpdate = true;
    cmbLightTraget_Populate();
    const int type = ZELMAR_light_get_type_of_light(light);
    for (int i = 0; i < 3; ++i)
        lstLightType->item(i)->setSelected((type & TermBits[i]) != 0);
    lstLightType->item(3)->setSelected((type & 1) != 0);
    opnDecayAsSquare->setChecked((type & 4) != 0 && (type & 2) == 0);
    opnDecalLinearly->setChecked(!opnDecayAsSquare->isChecked());
    const bool standard = type == 58;
    opnLightTypeDefault->setChecked(standard);
    opnLightTypeCustom->setChecked(!standard);
    lstLightType->setEnabled(!standard);
    ShowPlacement();
    double rgb[3] = {255, 255, 255};
    ZELMAR_light_get_color(light, rgb);
    auto byte = [](double v) { return std::isfinite(v) ? int(std::lround(std::clamp(v, 0.0, 255.0))) : 0; };
    showColour(byte(rgb[0]), byte(rgb[1]), byte(rgb[2]));
    setSpinner(spnAmbient, ZELMAR_light_get_ambient(light));
    setSpinner(spnDiffuse, ZELMAR_light_get_diffuse(light));
    setSpinner(spnSpecular, ZELMAR_light_get_specular(light));
    setSpinner(spnShine, ZELMAR_light_get_specular_shining(light));
    setSpinner(spnDistanceReach, ZELMAR_light_get_distance_reach(light));
    chkLightOn->setChecked(ZELMAR_light_is_disabled(light) == 0);
    chkLightRaytracing->setChecked(ZELMAR_light_is_ray_tracing(light) == 1);
    chkAutoUpdate->setChecked(ZELMAR_light_is_activated_before_render(light) == 1);
    m_noAutoUpdate = false;
    m_filling = false;
}

void frmLight::cmbLightTraget_Populate() {
    const bool was = m_filling;
    m_filling = true;
    cmbLightTraget->clear();
    cmbLightTraget->addItem(GetLocaleString(345));
    const int root = m_lights.RootGrp();
    // The groups of the world: markers and deleted groups have no father.
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (g != root && ZELMAR_group_get_father_group(g) != 0)
            cmbLightTraget->addItem(QString::fromLocal8Bit(EntityName(g).c_str()));
    QString shown = GetLocaleString(345);
    if (current() != 0) {
        const int target = ZELMAR_light_get_entity_to_light(m_light);
        if (target != 0 && target != root && ZELMAR_group_is_group(target) == 1 &&
            ZELMAR_group_get_father_group(target) != 0) {
            const QString name = QString::fromLocal8Bit(EntityName(target).c_str());
            if (!name.isEmpty()) shown = name;
        }
    }
    const int at = cmbLightTraget->findText(shown);
    cmbLightTraget->setCurrentIndex(at < 0 ? 0 : at);
    m_filling = was;
}

int frmLight::TypeFromControls() const {
    int type = 0;
    for (int i = 0; i < 3; ++i)
        if (lstLightType->item(i)->isSelected()) type += TermBits[i];
    if (lstLightType->item(3)->isSelected()) type += 1;
    type += opnDecalLinearly->isChecked() ? 2 : 4;
    return type;
}

// ---- handlers ------------------------------------------------------------------------------------------------

void frmLight::spnLightLoc_Changed(int axis) {
    LightGrp::Vec l{};
    ZELMAR_light_get_location(m_light, l.data());
    l[size_t(axis)] = spnLightLoc[size_t(axis)]->Value();
    m_lights.Markers().SetLocation(m_light, l);
    m_lights.UpdateOnLightChange();
}

void frmLight::spnLightDir_Changed(int axis) {
    LightGrp::Vec d{};
    ZELMAR_light_get_direction(m_light, d.data());
    d[size_t(axis)] = spnLightDir[size_t(axis)]->Value();
    m_lights.Markers().SetDirection(m_light, d);
    // The engine keeps the direction normalised (and refuses a zero one): the spinners show what it kept.
    ShowPlacement();
    m_lights.UpdateOnLightChange();
}

void frmLight::cmdLightColor_Click() {
    double rgb[3] = {255, 255, 255};
    ZELMAR_light_get_color(m_light, rgb);
    auto byte = [](double v) { return std::isfinite(v) ? int(std::lround(std::clamp(v, 0.0, 255.0))) : 0; };
    const std::optional<QColor> c = dialogs().chooseColor(QColor(byte(rgb[0]), byte(rgb[1]), byte(rgb[2])));
    if (!c || !c->isValid()) return;
    const double chosen[3] = {double(c->red()), double(c->green()), double(c->blue())};
    ZELMAR_light_set_color(m_light, chosen);
    showColour(c->red(), c->green(), c->blue());
    m_lights.UpdateOnLightChange();
}

void frmLight::spnAmbient_Changed() {
    ZELMAR_light_set_ambient(m_light, spnAmbient->Value());
    m_lights.UpdateOnLightChange();
}

void frmLight::spnDiffuse_Changed() {
    ZELMAR_light_set_diffuse(m_light, spnDiffuse->Value());
    m_lights.UpdateOnLightChange();
}

void frmLight::spnSpecular_Changed() {
    ZELMAR_light_set_specular(m_light, spnSpecular->Value());
    m_lights.UpdateOnLightChange();
}

void frmLight::spnShine_Changed() {
    ZELMAR_light_set_specular_shining(m_light, spnShine->Value());
    m_lights.UpdateOnLightChange();
}

void frmLight::spnDistanceReach_Changed() {
    ZELMAR_light_set_distance_reach(m_light, spnDistanceReach->Value());
    m_lights.UpdateOnLightChange();
}

void frmLight::chkLightOn_Click() {
    ZELMAR_light_disable(m_light, chkLightOn->isChecked() ? 0 : 1);
    m_lights.UpdateOnLightChange();
}

void frmLight::chkLightRaytracing_Click() {
    ZELMAR_light_set_ray_tracing(m_light, chkLightRaytracing->isChecked() ? 1 : 0);
    m_lights.UpdateOnLightChange();
}

void frmLight::chkAutoUpdate_Click() {
    if (m_noAutoUpdate) return;
    ZELMAR_light_activate_before_each_render(m_light, chkAutoUpdate->isChecked() ? 1 : 0);
    m_lights.UpdateOnLightChange();
}

void frmLight::cmbLightTraget_Change() {
    const int root = m_lights.RootGrp();
    int target = root;
    if (cmbLightTraget->currentIndex() > 0) {
        target = ZELMAR_group_get_using_name(cmbLightTraget->currentText().toLocal8Bit().constData());
        if (target == 0) target = root;
    }
    ZELMAR_light_set_entity_to_light(m_light, target);
    m_lights.RemoveLightFromAllGroups();
    m_lights.UpdateOnLightChange();
}

void frmLight::opnLightTypeDefault_Click() {
    m_filling = true;
    for (int i = 0; i < 3; ++i)
        lstLightType->item(i)->setSelected(true);
    lstLightType->item(3)->setSelected(false);
    opnDecalLinearly->setChecked(true);
    lstLightType->setEnabled(false);
    m_filling = false;
    lstLightType_Click();
}

void frmLight::opnLightTypeCustom_Click() {
    lstLightType->setEnabled(true);
}

void frmLight::lstLightType_Click() {
    const int type = TypeFromControls();
    if (type & 1)
        m_lights.Markers().SwitchToDirectional(m_light);
    else
        m_lights.Markers().SwitchToOmni(m_light);
    ZELMAR_light_set_type_of_light(m_light, type);
    m_lights.UpdateOnLightChange();
}

} // namespace vexil
