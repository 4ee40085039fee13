#include "MostRecentUsedFiles.h"

#include "frame/Preferences.h"
#include "frame/Settings.h"

#include <QAction>
#include <QMenu>

namespace vexil {

MostRecentUsedFiles::MostRecentUsedFiles(QMenu* menu, QAction* before, QObject* parent)
    : QObject(parent), m_menu(menu), m_before(before) {
    if (m_menu) {
        m_separator = new QAction(m_menu);
        m_separator->setSeparator(true);
        m_separator->setVisible(false);
        m_menu->insertAction(m_before, m_separator);
    }
    for (int i = 0; i < MaxItems; ++i) {
        auto* a = new QAction(m_menu ? static_cast<QObject*>(m_menu) : this);
        a->setObjectName(QStringLiteral("mnuMru%1").arg(i + 1));
        a->setVisible(false);
        connect(a, &QAction::triggered, this, [this, i] {
            if (i < Count()) emit itemClicked(i, m_items[size_t(i)]);
        });
        if (m_menu) m_menu->insertAction(m_before, a);
        m_actions.push_back(a);
    }
    Load();
}

MostRecentUsedFiles::~MostRecentUsedFiles() { Save(); }

void MostRecentUsedFiles::Load() {
    m_items.clear();
    for (int i = 0;; ++i) {
        const QString path = GetSetting(SecMRUFiles, QString::number(i), QString());
        if (path.isEmpty()) break;
        AddMRUItem(path);
    }
    refreshMenu();
}

void MostRecentUsedFiles::Save() const {
    // Oldest first: key 0 gets the last menu item; the empty string after the last is the end mark.
    const int n = Count();
    for (int k = 0; k < n; ++k) SaveSetting(SecMRUFiles, QString::number(k), m_items[size_t(n - 1 - k)]);
    SaveSetting(SecMRUFiles, QString::number(n), QString());
}

void MostRecentUsedFiles::AddMRUItem(const QString& path) {
    const QString upper = path.toUpper();
    for (int i = 0; i < Count(); ++i) {
        if (m_items[size_t(i)].toUpper() == upper) {
            ReorderMRUList(i);
            return;
        }
    }
    AddMenuElement(path);
}

void MostRecentUsedFiles::ReorderMRUList(int index) {
    if (index <= 0 || index >= Count()) return;
    const QString item = m_items[size_t(index)];
    m_items.erase(m_items.begin() + index);
    m_items.insert(m_items.begin(), item);
    refreshMenu();
}

void MostRecentUsedFiles::AddMenuElement(const QString& path) {
    // Fewer than 8: a new element; else the oldest drops out. All items move down by one.
    if (Count() >= MaxItems) m_items.pop_back();
    m_items.insert(m_items.begin(), path);
    refreshMenu();
}

void MostRecentUsedFiles::RemoveItem(int index) {
    if (index < 0 || index >= Count()) return;
    m_items.erase(m_items.begin() + index);
    refreshMenu();
}

QStringList MostRecentUsedFiles::Items() const {
    QStringList l;
    for (const auto& s : m_items) l << s;
    return l;
}

void MostRecentUsedFiles::refreshMenu() {
    for (int i = 0; i < MaxItems; ++i) {
        QAction* a = m_actions[size_t(i)];
        if (i < Count()) {
            QString shown = m_items[size_t(i)];
            shown.replace(QLatin1Char('&'), QStringLiteral("&&"));
            a->setText(QStringLiteral("&%1 %2").arg(i + 1).arg(shown));
            a->setData(m_items[size_t(i)]);
            a->setVisible(true);
        } else {
            a->setVisible(false);
            a->setData(QVariant());
        }
    }
    if (m_separator) m_separator->setVisible(Count() > 0);
}

} // namespace vexil
