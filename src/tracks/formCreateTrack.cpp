#include "formCreateTrack.h"

#include "frame/Locale.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace vexil {

formCreateTrack::formCreateTrack(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("formCreateTrack"));
    setWindowTitle(GetLocaleString(457));
    auto* root = new QVBoxLayout(this);
    Frame2 = new QFrame(this);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    auto* choose = new QHBoxLayout(Frame2);
    cmdCircular = new QPushButton(GetLocaleString(458), Frame2);
    cmdCustom = new QPushButton(GetLocaleString(459), Frame2);
    cmdCircular->setObjectName(QStringLiteral("cmdCircular"));
    cmdCustom->setObjectName(QStringLiteral("cmdCustom"));
    choose->addWidget(cmdCircular);
    choose->addWidget(cmdCustom);
    root->addWidget(Frame2);

    Frame1 = new QFrame(this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    auto* circle = new QHBoxLayout(Frame1);
    circle->addWidget(new QLabel(GetLocaleString(462), Frame1));
    // The count is shown by the label beside the up-down.
    updwnNumOfPts = new QSpinBox(Frame1);
    updwnNumOfPts->setObjectName(QStringLiteral("updwnNumOfPts"));
    updwnNumOfPts->setRange(3, 360);
    updwnNumOfPts->setValue(12);
    lblNumOfPts = new QLabel(QString::number(updwnNumOfPts->value()), Frame1);
    lblNumOfPts->setObjectName(QStringLiteral("lblNumOfPts"));
    circle->addWidget(updwnNumOfPts);
    circle->addWidget(lblNumOfPts);
    cmdOk = new QPushButton(GetLocaleString(461), Frame1);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    circle->addWidget(cmdOk);
    root->addWidget(Frame1);
    Frame1->hide();

    connect(updwnNumOfPts, &QSpinBox::valueChanged, this, [this](int v) { lblNumOfPts->setText(QString::number(v)); });
    connect(cmdCircular, &QPushButton::clicked, this, [this] { cmdCircular_Click(); });
    connect(cmdCustom, &QPushButton::clicked, this, [this] { cmdCustom_Click(); });
    connect(cmdOk, &QPushButton::clicked, this, [this] { cmdOk_Click(); });
}

void formCreateTrack::cmdCircular_Click() {
    Frame1->show();
    Frame2->hide();
    updwnNumOfPts->setFocus();
}

void formCreateTrack::cmdCustom_Click() {
    m_custom = true;
    accept();
}

void formCreateTrack::cmdOk_Click() {
    m_points = updwnNumOfPts->value();
    accept();
}

} // namespace vexil
