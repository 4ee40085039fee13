#include "formAbout.h"

#include "frame/Locale.h"
#include "formError.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vexil {

formAbout::formAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("formAbout"));
    auto* v = new QVBoxLayout(this);
    lblTitle = new QLabel(this);
    QFont f = lblTitle->font();
    f.setPointSizeF(f.pointSizeF() * 2);
    f.setBold(true);
    lblTitle->setFont(f);
    lblVersion = new QLabel(this);
    lblPowered = new QLabel(this);
    lblFeedback = new QLabel(this);
    lblWebSite = new QLabel(this);
    for (QLabel* l : {lblTitle, lblVersion, lblPowered, lblFeedback, lblWebSite}) v->addWidget(l, 0, Qt::AlignHCenter);
    cmdOk = new QPushButton(this);
    v->addWidget(cmdOk, 0, Qt::AlignHCenter);
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);
    ApplyLanguage();
}

void formAbout::ApplyLanguage() {
    setWindowTitle(GetLocaleString(405));
    lblTitle->setText(GetLocaleString(406));
    lblVersion->setText(GetLocaleString(407));
    lblPowered->setText(GetLocaleString(408));
    lblFeedback->setText(GetLocaleString(409) + QString::fromLatin1(formError::MailTarget));
    lblWebSite->setText(GetLocaleString(410));
    cmdOk->setText(GetLocaleString(414));
}

} // namespace vexil
