#include "formTip.h"

#include "frame/AppPaths.h"
#include "frame/Locale.h"
#include "frame/Settings.h"

#include <QCheckBox>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTextStream>
#include <QVBoxLayout>

namespace vexil {

QString formTip::DefaultTipsFile() { return AppPath(QString::fromLatin1(TipsFileName)); }

formTip::formTip(QWidget* parent, const QString& tipsFile) : QDialog(parent), m_file(tipsFile.isEmpty() ? DefaultTipsFile() : tipsFile) {
    setObjectName(QStringLiteral("formTip"));
    auto* layout = new QVBoxLayout(this);
    m_heading = new QLabel(this);
    QFont f = m_heading->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.2);
    m_heading->setFont(f);
    layout->addWidget(m_heading);
    lblTipText = new QLabel(this);
    lblTipText->setObjectName(QStringLiteral("lblTipText"));
    lblTipText->setWordWrap(true);
    lblTipText->setMinimumSize(340, 90);
    lblTipText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(lblTipText, 1);
    auto* row = new QHBoxLayout;
    chkLoadTipsAtStartup = new QCheckBox(this);
    chkLoadTipsAtStartup->setObjectName(QStringLiteral("chkLoadTipsAtStartup"));
    row->addWidget(chkLoadTipsAtStartup);
    row->addStretch();
    cmdNextTip = new QPushButton(this);
    cmdNextTip->setObjectName(QStringLiteral("cmdNextTip"));
    cmdOk = new QPushButton(this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdOk->setDefault(true);
    row->addWidget(cmdNextTip);
    row->addWidget(cmdOk);
    layout->addLayout(row);

    ApplyLanguage();
    chkLoadTipsAtStartup->setChecked(GetSetting(SettingSection, SettingKey, QStringLiteral("1")).trimmed() != QLatin1String("0"));
    connect(cmdNextTip, &QPushButton::clicked, this, [this] { cmdNextTip_Click(); });
    connect(cmdOk, &QPushButton::clicked, this, [this] { cmdOk_Click(); });
    connect(chkLoadTipsAtStartup, &QCheckBox::clicked, this, [this] { chkLoadTipsAtStartup_Click(); });

    if (LoadTips(m_file)) {
        DisplayCurrentTip();
    } else {
        lblTipText->setText(QStringLiteral("That the ") + QString::fromLatin1(TipsFileName) + QStringLiteral("\nfile was not found."));
    }
}

void formTip::ApplyLanguage() {
    setWindowTitle(GetLocaleString(516));
    m_heading->setText(GetLocaleString(519));
    chkLoadTipsAtStartup->setText(GetLocaleString(517));
    cmdNextTip->setText(GetLocaleString(518));
    cmdOk->setText(GetLocaleString(414));
}

bool formTip::LoadTips(const QString& file) {
    QFile in(file);
    if (!in.exists() || !in.open(QIODevice::ReadOnly | QIODevice::Text)) return false;  // 1
    Tips.clear();
    QTextStream ts(&in);
    while (!ts.atEnd()) Tips << ts.readLine();                                        // 2
    CurrentTip = Tips.isEmpty() ? 0 : 1 + static_cast<int>(QRandomGenerator::global()->bounded(Tips.size()));  // 3
    return true;
}

void formTip::DisplayCurrentTip() {
    if (CurrentTip >= 1 && CurrentTip <= Tips.size()) lblTipText->setText(Tips.at(CurrentTip - 1));
}

void formTip::cmdNextTip_Click() {
    if (Tips.isEmpty()) return;
    ++CurrentTip;
    if (CurrentTip > Tips.size()) CurrentTip = 1;
    DisplayCurrentTip();
}

void formTip::cmdOk_Click() { accept(); }

void formTip::chkLoadTipsAtStartup_Click() {
    SaveSetting(SettingSection, SettingKey, chkLoadTipsAtStartup->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
}

bool formTip::ShouldShowAtStartup(const QString& tipsFile) {
    const QString v = GetSetting(SettingSection, SettingKey, QStringLiteral("1")).trimmed();
    bool ok = false;
    const int n = v.toInt(&ok);
    if (ok && n == 0) return false;
    QFile in(tipsFile.isEmpty() ? DefaultTipsFile() : tipsFile);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Text)) return false;
    return !in.readAll().trimmed().isEmpty();
}

} // namespace vexil
