#include "frmSmoothLight.h"

#include "mdlSmoothLight.h"
#include "frame/ErrLog.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "selection/SelectionModel.h"
#include "view/frmPicWins.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

namespace vexil {

namespace {

void updateCameras() {
    if (SelectionModel* m = selectionModel())
        if (frmPicWins* v = m->Views()) v->UpdateCameras();
}

} // namespace

frmSmoothLight::frmSmoothLight(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmSmoothLight"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    cmdSmoothLight = new QPushButton(GetLocaleString(199), this);
    cmdSmoothLight->setObjectName(QStringLiteral("cmdSmoothLight"));
    cmdSmoothClearAll = new QPushButton(GetLocaleString(200), this);
    cmdSmoothClearAll->setObjectName(QStringLiteral("cmdSmoothClearAll"));
    auto* caption = new QLabel(GetLocaleString(202), this);
    lblSmoothAng = new QLabel(this);
    lblSmoothAng->setObjectName(QStringLiteral("lblSmoothAng"));
    lblSmoothAng->setFrameShape(QFrame::StyledPanel);
    updwnSmoothLight = new QSpinBox(this);
    updwnSmoothLight->setObjectName(QStringLiteral("updwnSmoothLight"));
    updwnSmoothLight->setRange(-1, 1);
    updwnSmoothLight->setValue(0);
    updwnSmoothLight->setMaximumWidth(22 + updwnSmoothLight->fontMetrics().horizontalAdvance(QStringLiteral("0")));
    updwnSmoothLight->setStyleSheet(QStringLiteral("QSpinBox { color: transparent; }"));
    auto* hint = new QLabel(GetLocaleString(201), this);
    hint->setWordWrap(true);
    grid->addWidget(cmdSmoothLight, 0, 0);
    grid->addWidget(cmdSmoothClearAll, 0, 1, 1, 2);
    grid->addWidget(caption, 1, 0);
    grid->addWidget(lblSmoothAng, 1, 1);
    grid->addWidget(updwnSmoothLight, 1, 2);
    grid->addWidget(hint, 2, 0, 1, 3);
    SetThreshold(m_threshold);
    connect(cmdSmoothLight, &QPushButton::clicked, this,
            [this] { handleEvent("frmSmoothLight", "cmdSmoothLight_Click", [&] { cmdSmoothLight_Click(); }); });
    connect(cmdSmoothClearAll, &QPushButton::clicked, this,
            [this] { handleEvent("frmSmoothLight", "cmdSmoothClearAll_Click", [&] { cmdSmoothClearAll_Click(); }); });
    connect(updwnSmoothLight, &QSpinBox::valueChanged, this,
            [this] { handleEvent("frmSmoothLight", "updwnSmoothLight_Change", [&] { updwnSmoothLight_Change(); }); });
}

void frmSmoothLight::SetThreshold(double degrees) {
    m_threshold = degrees;
    lblSmoothAng->setText(QString::number(m_threshold));
}

void frmSmoothLight::cmdSmoothLight_Click() {
    SmoothLight(Sel().SelPols.ToVector(), m_threshold);
    updateCameras();
}

void frmSmoothLight::cmdSmoothClearAll_Click() {
    SmoothClearAll(Sel().SelPols.ToVector());
    updateCameras();
}

void frmSmoothLight::updwnSmoothLight_Change() {
    const int v = updwnSmoothLight->value();
    if (v == 0) return;
    SetThreshold(StepSmoothThreshold(m_threshold, v, keyDown(Qt::Key_Shift), keyDown(Qt::Key_Alt)));
    // The up-down is a wheel: it returns to 0 after each step.
    const QSignalBlocker still(updwnSmoothLight);
    updwnSmoothLight->setValue(0);
}

} // namespace vexil
