#include "formCamChaseParams.h"

#include "engine/EntityNaming.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"

#include <zelmar/zelmar.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>

namespace vexil {

namespace {

QString num(double v) { return NumText(v); }

std::array<double, 3> values(const std::array<ChaseField, 3>& f) {
    return {f[0].value(), f[1].value(), f[2].value()};
}

std::string text(const QComboBox* c) { return c->currentText().toLocal8Bit().toStdString(); }

// Selects the entry `name` of a list, or its first entry when absent.
void showEntry(QComboBox* c, const QString& name) {
    const int i = name.isEmpty() ? -1 : c->findText(name);
    c->setCurrentIndex(i < 0 ? 0 : i);
}

} // namespace

double ChaseField::value() const { return textValue.toDouble(); }

formCamChaseParams::formCamChaseParams(const ChaseTarget& target, std::function<void(int)> groupDynamicChanged,
                                       QWidget* parent)
    : QDialog(parent), m_target(target), m_groupDynamicChanged(std::move(groupDynamicChanged)) {
    setObjectName(QStringLiteral("formCamChaseParams"));
    setWindowTitle(GetLocaleString(441) + QString::fromLocal8Bit(EntityName(target.handle).c_str()));
    auto* root = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(GetLocaleString(455), this));
    cmbChaseType = new QComboBox(this);
    cmbChaseType->setObjectName(QStringLiteral("cmbChaseType"));
    // frmChaseInitialSetup: the seven types in list order.
    for (int id = 567; id <= 573; ++id) cmbChaseType->addItem(GetLocaleString(id));
    top->addWidget(cmbChaseType, 1);
    root->addLayout(top);
    buildFrames();
    root->addWidget(frmLocPrcFlex);
    root->addWidget(frmTrack);
    root->addWidget(frmPhysics);
    auto* buttons = new QHBoxLayout;
    cmdOk = new QPushButton(GetLocaleString(461), this);
    cmdCancel = new QPushButton(GetLocaleString(425), this);
    cmdApply = new QPushButton(GetLocaleString(456), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdApply->setObjectName(QStringLiteral("cmdApply"));
    buttons->addStretch(1);
    for (QPushButton* b : {cmdOk, cmdCancel, cmdApply}) buttons->addWidget(b);
    root->addLayout(buttons);
    connect(cmdOk, &QPushButton::clicked, this, [this] { handleEvent("formCamChaseParams", "cmdOk_Click", [&] { cmdOk_Click(); }); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    connect(cmdApply, &QPushButton::clicked, this,
            [this] { handleEvent("formCamChaseParams", "cmdApply_Click", [&] { cmdApply_Click(); }); });
    connect(cmbChaseType, &QComboBox::currentIndexChanged, this, [this](int i) {
        if (m_loading) return;
        m_loading = true;
        loadFrame(i);
        m_loading = false;
        changed();
    });

    // Form_Load.
    frmLocPrcFlex->hide();
    frmTrack->hide();
    frmPhysics->hide();
    if (!m_target.Valid()) {
        cmbChaseType->setCurrentIndex(0);
        AppLog().LogEvent(QStringLiteral("Edit Chase invoked for non camera or group type"), LogError);
    } else {
        cmbChaseType_HighlightChaseType(m_target.ChaseType());
    }
    cmdApply->setEnabled(false);
}

void formCamChaseParams::wireField(ChaseField& f, QGridLayout* grid, int row, int col, int captionId, double step,
                                   bool floorAtZero) {
    QWidget* owner = grid->parentWidget();
    f.step = step;
    f.floorAtZero = floorAtZero;
    f.txt = new QLineEdit(owner);
    f.updwn = new QSpinBox(owner);
    f.updwn->setRange(-1, 1);
    f.updwn->setFixedWidth(20);
    f.updwn->setStyleSheet(QStringLiteral("QSpinBox { color: transparent; }"));
    if (captionId) grid->addWidget(new QLabel(GetLocaleString(captionId), owner), row, col);
    grid->addWidget(f.txt, row, col + 1);
    grid->addWidget(f.updwn, row, col + 2);
    ChaseField* field = &f;
    connect(f.txt, &QLineEdit::textChanged, this, [this, field](const QString& t) {
        // Text that is not a number is ignored; a number is the field's value.
        if (!IsNumeric(t)) return;
        field->textValue = t;
        changed();
    });
    connect(f.updwn, &QSpinBox::valueChanged, this, [this, field](int v) {
        if (v == 0) return;
        double next = field->txt->text().toDouble() + v * field->step;
        if (field->floorAtZero && next < 0) next = 0;
        field->updwn->blockSignals(true);
        field->updwn->setValue(0);
        field->updwn->blockSignals(false);
        SetFieldText(*field, num(std::round(next * 1e9) / 1e9));
    });
}

void formCamChaseParams::SetFieldText(ChaseField& f, const QString& t) { f.txt->setText(t); }

void formCamChaseParams::buildFrames() {
    auto frame = [this](const char* name) {
        auto* f = new QFrame(this);
        f->setObjectName(QLatin1String(name));
        f->setFrameShape(QFrame::StyledPanel);
        return f;
    };
    frmLocPrcFlex = frame("frmLocPrcFlex");
    auto* g1 = new QGridLayout(frmLocPrcFlex);
    g1->addWidget(new QLabel(GetLocaleString(447), frmLocPrcFlex), 0, 0);
    cmbCamChaseCamOrObj = new QComboBox(frmLocPrcFlex);
    cmbCamChaseCamOrObj->setObjectName(QStringLiteral("cmbCamChaseCamOrObj"));
    g1->addWidget(cmbCamChaseCamOrObj, 0, 1, 1, 2);
    for (int k = 0; k < 3; ++k) wireField(Offset[size_t(k)], g1, 1 + k, 0, 443 + k, 1.0, false);
    wireField(Distance, g1, 4, 0, 446, 1.0, false);
    wireField(Softness, g1, 5, 0, 442, 0.01, false);
    connect(cmbCamChaseCamOrObj, &QComboBox::currentIndexChanged, this, [this] { changed(); });

    frmTrack = frame("frmTrack");
    auto* g2 = new QGridLayout(frmTrack);
    cmbTrackToChase = new QComboBox(frmTrack);
    cmbTrackToChase->setObjectName(QStringLiteral("cmbTrackToChase"));
    g2->addWidget(cmbTrackToChase, 0, 0, 1, 3);
    for (int k = 0; k < 3; ++k) wireField(TrackOffset[size_t(k)], g2, 1 + k, 0, 443 + k, 1.0, false);
    wireField(TrkSpeed, g2, 4, 0, 449, 1.0, false);
    wireField(TrkSoftness, g2, 5, 0, 442, 0.01, false);
    chkTrkFall = new QCheckBox(GetLocaleString(448), frmTrack);
    chkTrkFall->setObjectName(QStringLiteral("chkTrkFall"));
    g2->addWidget(chkTrkFall, 6, 0, 1, 3);
    connect(cmbTrackToChase, &QComboBox::currentIndexChanged, this, [this] { changed(); });
    connect(chkTrkFall, &QCheckBox::toggled, this, [this] { changed(); });

    frmPhysics = frame("frmPhysics");
    auto* g3 = new QGridLayout(frmPhysics);
    for (int k = 0; k < 3; ++k) wireField(ForceDir[size_t(k)], g3, k, 0, k == 0 ? 450 : 0, 0.1, false);
    wireField(ForceMag, g3, 3, 0, 454, 1.0, false);
    wireField(Speed, g3, 4, 0, 449, 1.0, false);
    wireField(MaxSpeed, g3, 5, 0, 452, 1.0, false);
    wireField(Friction, g3, 6, 0, 451, 0.01, true);
    wireField(Elasticity, g3, 7, 0, 453, 0.01, true);
}

void formCamChaseParams::changed() {
    if (!m_loading) cmdApply->setEnabled(true);
}

void formCamChaseParams::enableDistanceSoftness(bool distance, bool softness) {
    for (QWidget* w : {static_cast<QWidget*>(Distance.txt), static_cast<QWidget*>(Distance.updwn)}) w->setEnabled(distance);
    for (QWidget* w : {static_cast<QWidget*>(Softness.txt), static_cast<QWidget*>(Softness.updwn)}) w->setEnabled(softness);
}

void formCamChaseParams::cmbChaseType_HighlightChaseType(int code) {
    const bool was = m_loading;
    m_loading = true;
    const int index = ChaseListIndex(code);
    cmbChaseType->setCurrentIndex(index);
    loadFrame(index);
    m_loading = was;
}

// Shows the frame of list index `index` and reads the engine's values into it.
void formCamChaseParams::loadFrame(int index) {
    const bool was = m_loading;
    m_loading = true;
    frmLocPrcFlex->setVisible(index >= 1 && index <= 3);
    frmTrack->setVisible(index == 4 || index == 5);
    frmPhysics->setVisible(index == 6);
    if (index >= 1 && index <= 3) {
        enableDistanceSoftness(index >= 2, index == 3);
        cmbChaseCamOrObj_Populate();
        const std::array<double, 3> o = m_target.ChaseOffset();
        for (int k = 0; k < 3; ++k) SetFieldText(Offset[size_t(k)], num(o[size_t(k)]));
        SetFieldText(Distance, num(m_target.ChaseDistance()));
        SetFieldText(Softness, num(m_target.Softness()));
    } else if (index == 4 || index == 5) {
        frmLocPrcFlex_SetChaseTrackParams();
    } else if (index == 6) {
        frmPhysics_setParams();
    }
    m_loading = was;
}

void formCamChaseParams::cmbChaseCamOrObj_Populate() {
    cmbCamChaseCamOrObj->clear();
    cmbCamChaseCamOrObj->addItem(GetLocaleString(567));
    const int self = m_target.handle;
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (c != self && ZELMAR_camera_get_save_flag(c) == 1)
            cmbCamChaseCamOrObj->addItem(QString::fromLocal8Bit(EntityName(c).c_str()));
    // Only dynamic groups of the world can be chased (markers and deleted groups have no father).
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (g != self && ZELMAR_group_get_father_group(g) != 0 && ZELMAR_group_is_static(g) == 0)
            cmbCamChaseCamOrObj->addItem(QString::fromLocal8Bit(EntityName(g).c_str()));
    const QString chased = QString::fromLocal8Bit(m_target.NameToChase().c_str());
    showEntry(cmbCamChaseCamOrObj, chased == GetLocaleString(567) ? QString() : chased);
}

void formCamChaseParams::frmLocPrcFlex_SetChaseTrackParams() {
    cmbTrackToChase->clear();
    cmbTrackToChase->addItem(GetLocaleString(575));
    for (int t = ZELMAR_track_get_first_track(); t != 0; t = ZELMAR_track_get_next(t))
        if (ZELMAR_track_get_save_flag(t) == 1) cmbTrackToChase->addItem(QString::fromLocal8Bit(EntityName(t).c_str()));
    const int track = m_target.TrackHandle();
    showEntry(cmbTrackToChase, track == 0 ? QString() : QString::fromLocal8Bit(EntityName(track).c_str()));
    const std::array<double, 3> o = m_target.TrackOffset();
    for (int k = 0; k < 3; ++k) SetFieldText(TrackOffset[size_t(k)], num(o[size_t(k)]));
    SetFieldText(TrkSpeed, num(m_target.Speed()));
    SetFieldText(TrkSoftness, num(m_target.Softness()));
    chkTrkFall->setVisible(m_target.kind == 1);
    if (m_target.kind == 1) {
        double params[2] = {0, 0};
        ZELMAR_group_get_falling_from_track_params(m_target.handle, params);
        chkTrkFall->setChecked(params[0] == 1);
    }
}

void formCamChaseParams::frmPhysics_setParams() {
    const std::array<double, 3> f = m_target.Force();
    const double magnitude = ZELMAR_math_get_vector_length(f.data());
    for (int k = 0; k < 3; ++k)
        SetFieldText(ForceDir[size_t(k)], num(magnitude > 0 ? f[size_t(k)] / magnitude : 0.0));
    SetFieldText(ForceMag, num(magnitude));
    SetFieldText(Speed, num(m_target.Speed()));
    SetFieldText(MaxSpeed, num(m_target.MaxSpeed()));
    SetFieldText(Elasticity, num(m_target.Elasticity()));
    SetFieldText(Friction, num(m_target.Friction()));
}

void formCamChaseParams::cmdApply_Click() {
    cmdApply->setEnabled(false);
    const ChaseTarget& t = m_target;
    switch (cmbChaseType->currentIndex()) {
    case 0: t.SetChaseType(NO_CHASE); break;
    case 1:
        t.SetChaseType(CHASE_LOCATION);
        t.SetNameToChase(text(cmbCamChaseCamOrObj));
        t.SetChaseOffset(values(Offset));
        break;
    case 2:
        t.SetChaseType(CHASE_PRECISE);
        t.SetNameToChase(text(cmbCamChaseCamOrObj));
        t.SetChaseOffset(values(Offset));
        t.SetChaseDistance(Distance.value());
        break;
    case 3:
        t.SetChaseType(CHASE_FLEXIBLE);
        t.SetNameToChase(text(cmbCamChaseCamOrObj));
        t.SetChaseOffset(values(Offset));
        t.SetChaseDistance(Distance.value());
        t.SetSoftness(Softness.value());
        break;
    case 4:
    case 5:
        t.SetChaseType(cmbChaseType->currentIndex() == 4 ? CHASE_TRACK : TRACK_AIRPLANE);
        t.SetTrackToChase(text(cmbTrackToChase));
        t.SetTrackOffset(values(TrackOffset));
        t.SetSpeed(TrkSpeed.value());
        t.SetSoftness(TrkSoftness.value());
        if (t.kind == 1 && cmbChaseType->currentIndex() == 4) {
            if (chkTrkFall->isChecked()) {
                double dims[3] = {0, 0, 0};
                ZELMAR_group_get_dimensions(t.handle, dims);
                ZELMAR_group_set_falling_from_track(t.handle, dims[2] / 2.0);
            } else {
                ZELMAR_group_unset_falling_from_track(t.handle);
            }
        }
        break;
    case 6:
        // The chased name stays as the engine has it.
        t.SetChaseType(CHASE_PHYSICS);
        t.SetPhysicForce(values(ForceDir), ForceMag.value());
        t.SetSpeed(Speed.value());
        t.SetPhysicFriction(Friction.value());
        t.SetPhysicElasticity(Elasticity.value());
        t.SetPhysicMaxSpeed(MaxSpeed.value());
        break;
    default: break;
    }
    if (t.kind == 1 && m_groupDynamicChanged) m_groupDynamicChanged(t.handle);
}

void formCamChaseParams::cmdOk_Click() {
    cmdApply_Click();
    accept();
}

void formCamChaseParams::cmdCancel_Click() { reject(); }

} // namespace vexil
