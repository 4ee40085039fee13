#include "formTemplate.h"

#include "frame/Locale.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace vexil {

formTemplate::formTemplate(const QString& templatesFolder, std::function<bool(const QString&)> loadWorld,
                           std::function<void()> startEmpty, QWidget* parent)
    : QDialog(parent), m_folder(templatesFolder), m_loadWorld(std::move(loadWorld)), m_startEmpty(std::move(startEmpty)) {
    setObjectName(QStringLiteral("formTemplate"));
    auto* layout = new QVBoxLayout(this);
    m_label = new QLabel(this);
    layout->addWidget(m_label);
    List1 = new QListWidget(this);
    List1->setObjectName(QStringLiteral("List1"));
    layout->addWidget(List1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    cmdOk = new QPushButton(this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdOk->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdOk, &QPushButton::clicked, this, [this] { cmdOk_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    connect(List1, &QListWidget::itemDoubleClicked, this, [this] { List1_DblClick(); });
    // Form_Load: the language strings, then the listing.
    ApplyLanguage();
    ListTemplates(m_folder);
    resize(320, 260);
}

void formTemplate::ApplyLanguage() {
    setWindowTitle(GetLocaleString(515));
    m_label->setText(GetLocaleString(515));
    cmdOk->setText(GetLocaleString(414));
    cmdCancel->setText(GetLocaleString(425));
}

void formTemplate::ListTemplates(const QString& folder) {
    List1->clear();
    List1->addItem(QStringLiteral("New"));
    const QDir dir(folder);
    const QStringList files = dir.entryList(QDir::Files, QDir::Name);
    for (const QString& f : files) {
        if (QFileInfo(f).suffix().toLower() == QLatin1String("wld")) List1->addItem(f.left(f.size() - 4));
    }
    List1->setCurrentRow(0);
}

void formTemplate::cmdOk_Click() {
    const QListWidgetItem* item = List1->currentItem();
    const QString chosen = item ? item->text() : QStringLiteral("New");
    if (chosen == QLatin1String("New")) {
        if (m_startEmpty) m_startEmpty();
    } else if (m_loadWorld) {
        m_loadWorld(m_folder + '/' + chosen + QStringLiteral(".wld"));
    }
    accept();
}

void formTemplate::cmdCancel_Click() { reject(); }

void formTemplate::List1_DblClick() { cmdOk_Click(); }

void formTemplate::keyPressEvent(QKeyEvent* e) {
    if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) {
        cmdOk_Click();
        return;
    }
    QDialog::keyPressEvent(e);
}

} // namespace vexil
