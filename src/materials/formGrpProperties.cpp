#include "formGrpProperties.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "PolygonFilters.h"
#include "PolygonLists.h"
#include "PolygonSurfacePanel.h"
#include "SurfaceActions.h"
#include "SurfaceCommands.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "selection/ActionTransformEntity.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

// A number typed in a box; false for text, blanks or infinities.
bool number(const QLineEdit* box, double& out) {
    bool ok = false;
    out = box->text().trimmed().toDouble(&ok);
    return ok && std::isfinite(out);
}

template <class T> T* makeInto(ActionRef& ref, int type) {
    ref = ActionUndoRedo_Stack::MakeAction(type);
    if (!ref->As<T>()) ref->SetObject(std::make_unique<T>());
    return ref->As<T>();
}

void push(const ActionRef& ref) {
    if (ActionUndoRedo_Stack* s = materialsHost().UndoStack()) s->Push(ref);
}

} // namespace

formGrpProperties::formGrpProperties(int group, QWidget* parent) : QDialog(parent), m_group(group) {
    setObjectName(QStringLiteral("formGrpProperties"));
    setWindowTitle(GetLocaleString(476));
    auto* col = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    txtGrpName = new QLineEdit(this);
    txtGrpName->setObjectName(QStringLiteral("txtGrpName"));
    form->addRow(GetLocaleString(179), txtGrpName);
    cmdColor = new QPushButton(GetLocaleString(180), this);
    cmdColor->setObjectName(QStringLiteral("cmdColor"));
    chkGrpDyn = new QCheckBox(GetLocaleString(177), this);
    chkGrpDyn->setObjectName(QStringLiteral("chkGrpDyn"));
    auto* row = new QHBoxLayout;
    row->addWidget(cmdColor);
    row->addWidget(chkGrpDyn);
    form->addRow(row);
    txtPolLightDimu = new QLineEdit(this);
    txtPolLightDimu->setObjectName(QStringLiteral("txtPolLightDimu"));
    form->addRow(GetLocaleString(477), txtPolLightDimu);
    cmbPolFilter = new QComboBox(this);
    cmbPolFilter->setObjectName(QStringLiteral("cmbPolFilter"));
    form->addRow(cmbPolFilter);
    const int dimIds[3] = {168, 169, 167}; // Width (x), Height (y), Depth (z)
    for (int k = 0; k < 3; ++k) {
        txtGrpDim[size_t(k)] = new QLineEdit(this);
        txtGrpDim[size_t(k)]->setObjectName(QStringLiteral("txtGrpDim%1").arg(k));
        form->addRow(GetLocaleString(dimIds[k]), txtGrpDim[size_t(k)]);
    }
    col->addLayout(form);
    cmdEditChase = new QPushButton(GetLocaleString(155), this);
    cmdEditChase->setObjectName(QStringLiteral("cmdEditChase"));
    col->addWidget(cmdEditChase);
    auto* buttons = new QHBoxLayout;
    cmdOk = new QPushButton(GetLocaleString(424), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdApply = new QPushButton(GetLocaleString(456), this);
    cmdApply->setObjectName(QStringLiteral("cmdApply"));
    cmdCancel = new QPushButton(GetLocaleString(425), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addStretch(1);
    for (QPushButton* b : {cmdOk, cmdApply, cmdCancel}) buttons->addWidget(b);
    col->addLayout(buttons);

    const auto on = [this](QPushButton* b, const char* name, void (formGrpProperties::*f)()) {
        connect(b, &QPushButton::clicked, this, [this, name, f] { handleEvent("formGrpProperties", name, [&] { (this->*f)(); }); });
    };
    on(cmdOk, "cmdOk_Click", &formGrpProperties::cmdOk_Click);
    on(cmdApply, "cmdApply_Click", &formGrpProperties::cmdApply_Click);
    on(cmdCancel, "cmdCancel_Click", &formGrpProperties::cmdCancel_Click);
    on(cmdColor, "cmdColor_Click", &formGrpProperties::cmdColor_Click);
    on(cmdEditChase, "cmdEditChase_Click", &formGrpProperties::cmdEditChase_Click);
    const auto edited = [this] { cmdApply->setEnabled(true); };
    for (QLineEdit* e : {txtGrpName, txtPolLightDimu, txtGrpDim[0], txtGrpDim[1], txtGrpDim[2]})
        connect(e, &QLineEdit::textEdited, this, edited);
    connect(chkGrpDyn, &QCheckBox::clicked, this, edited);
    connect(cmbPolFilter, &QComboBox::activated, this, edited);
    cmbPolFilter_InitialSetup();
    fill();
}

void formGrpProperties::cmbPolFilter_InitialSetup() {
    cmbPolFilter->clear();
    for (const PolygonFilter& f : kPolygonFilters) cmbPolFilter->addItem(GetLocaleString(f.stringId));
    cmbPolFilter->setCurrentIndex(0);
}

void formGrpProperties::cmbPolFilter_SetAccordingToSelPol() {
    const int p = ZELMAR_group_get_first_polygon(m_group);
    const int i = p ? FilterIndexOfValue(ZELMAR_polygon_get_translucent(p)) : 0;
    cmbPolFilter->setCurrentIndex(i < 0 ? 0 : i);
    m_filterShown = cmbPolFilter->currentIndex();
}

void formGrpProperties::fill() {
    txtGrpName->setText(QString::fromLocal8Bit(EntityName(m_group).c_str()));
    chkGrpDyn->setChecked(ZELMAR_group_is_static(m_group) == 0);
    const int p = ZELMAR_group_get_first_polygon(m_group);
    txtPolLightDimu->setText(QString::number(p ? ZELMAR_polygon_get_light_diminution(p) : 0.0));
    cmbPolFilter_SetAccordingToSelPol();
    double dims[3] = {0, 0, 0};
    ZELMAR_group_get_dimensions(m_group, dims);
    for (int k = 0; k < 3; ++k) txtGrpDim[size_t(k)]->setText(QString::number(dims[k], 'g', 12));
    cmdEditChase->setEnabled(ZELMAR_group_is_static(m_group) == 0);
    cmdApply->setEnabled(false);
}

bool formGrpProperties::AllEntriesValid() {
    const auto refuse = [](const QString& text, QLineEdit* box) {
        dialogs().msgBox(text, MsgOKOnly, MsgExclamation);
        box->setFocus();
        box->selectAll();
        return false;
    };
    if (txtGrpName->text().trimmed().isEmpty()) return refuse(GetLocaleString(579) + GetLocaleString(179), txtGrpName);
    double v = 0;
    if (!number(txtPolLightDimu, v) || v < kMinLightDimu || v > kMaxLightDimu)
        return refuse(GetLocaleString(580), txtPolLightDimu);
    double dims[3] = {0, 0, 0};
    ZELMAR_group_get_dimensions(m_group, dims);
    const int dimIds[3] = {168, 169, 167};
    for (int k = 0; k < 3; ++k) {
        QLineEdit* box = txtGrpDim[size_t(k)];
        // A size must be a positive number; an axis along which the group is flat stays flat.
        const bool ok = number(box, v) && (dims[k] == 0 ? v >= 0 : v > 0) && v < 1e15;
        if (!ok) return refuse(GetLocaleString(579) + GetLocaleString(dimIds[k]), box);
    }
    return true;
}

void formGrpProperties::cmdApply_Click() {
    if (!ZELMAR_group_is_group(m_group)) return;
    if (!AllEntriesValid()) return;
    cmdApply->setEnabled(false);
    // Name, through the main window's rename step.
    const QString name = txtGrpName->text().trimmed();
    if (name != QString::fromLocal8Bit(EntityName(m_group).c_str()))
        txtGrpName->setText(materialsHost().RenameGroup(m_group, name));
    // Dynamic or static: not undoable.
    if (chkGrpDyn->isChecked()) ZELMAR_group_set_dynamic(m_group);
    else ZELMAR_group_set_static(m_group);
    const std::vector<int> pols = GroupPolygons(m_group);
    // Light diminution of every polygon of the group.
    double dimu = 0;
    number(txtPolLightDimu, dimu);
    bool differs = false;
    for (int p : pols) differs = differs || ZELMAR_polygon_get_light_diminution(p) != dimu;
    if (differs) {
        ActionRef ref;
        auto* a = makeInto<ActionChngPolLightDimu>(ref, AT_ActionChngPolLightDimu);
        a->SetPolygons(pols);
        a->SetPrevLightDimu(ZELMAR_polygon_get_light_diminution(pols.front()));
        a->SetnewLightDimu(dimu);
        for (int p : pols) ZELMAR_polygon_set_light_diminution(p, dimu);
        push(ref);
    }
    // The filter, if it changed.
    if (cmbPolFilter->currentIndex() != m_filterShown && !pols.empty()) {
        const int value = kPolygonFilters[std::size_t(cmbPolFilter->currentIndex())].value;
        ActionRef ref;
        auto* a = makeInto<ActionChngPolTranslucency>(ref, AT_ActionChngPolTranslucency);
        a->SetPolygons(pols);
        a->SetPrevTranslucency(ZELMAR_polygon_get_translucent(pols.front()));
        a->SetnewTranslucency(value);
        for (int p : pols) ZELMAR_polygon_set_translucent(p, value);
        push(ref);
        m_filterShown = cmbPolFilter->currentIndex();
    }
    // Size: a factor per axis that is not flat.
    double dims[3] = {0, 0, 0}, wanted[3] = {0, 0, 0}, f[3] = {1, 1, 1};
    ZELMAR_group_get_dimensions(m_group, dims);
    for (int k = 0; k < 3; ++k) {
        number(txtGrpDim[size_t(k)], wanted[k]);
        if (dims[k] != 0) f[k] = wanted[k] / dims[k];
    }
    if (f[0] != 1 || f[1] != 1 || f[2] != 1) {
        ActionRef ref;
        auto* a = makeInto<ActionScale>(ref, AT_ActionScale);
        a->SetScaledEntity(1, m_group);
        a->SetIniDim({dims[0], dims[1], dims[2]});
        ZELMAR_group_scale(m_group, 1, f[0], f[1], f[2]);
        double now[3] = {0, 0, 0};
        ZELMAR_group_get_dimensions(m_group, now);
        a->SetFnlDim({now[0], now[1], now[2]});
        push(ref);
    }
    fill();
    materialsHost().UpdateCameras();
    materialsHost().SelectionChanged();
}

void formGrpProperties::cmdOk_Click() {
    cmdApply_Click();
    accept();
}

void formGrpProperties::cmdCancel_Click() {
    reject();
}

void formGrpProperties::cmdColor_Click() {
    int rgb[3] = {255, 255, 255};
    if (const int p = ZELMAR_group_get_first_polygon(m_group)) ZELMAR_polygon_get_color(p, rgb);
    const long colour = PolygonSurfacePanel::GetSelectedColor(ColourValue(rgb[0], rgb[1], rgb[2]));
    if (colour == -1) return;
    int r = 0, g = 0, b = 0;
    SplitColour(colour, r, g, b);
    // The colour is set at once, for the whole group, as one undo step.
    ApplyColourToSelection(r, g, b, false);
}

void formGrpProperties::cmdEditChase_Click() {
    materialsHost().EditChase(m_group);
}

} // namespace vexil
