// MostRecentUsedFiles: the recent-files list, at most 8 items, shown as the menu array
// mnuMru below the File menu's separator. Persisted in section "MRUFiles", keys "0", "1", ... oldest
// first, with the empty string after the last item as an end mark.
#pragma once
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

class QAction;
class QMenu;

namespace vexil {

class MostRecentUsedFiles : public QObject {
    Q_OBJECT
public:
    static constexpr int MaxItems = 8;

    // menu/before: the items are inserted into menu before the action `before` (may be null: appended).
    // Loads the stored list (class start).
    MostRecentUsedFiles(QMenu* menu, QAction* before, QObject* parent = nullptr);
    // Saves the list (class end).
    ~MostRecentUsedFiles() override;

    void AddMRUItem(const QString& path);
    void ReorderMRUList(int index);   // moves item index (0 = top) to the top
    void AddMenuElement(const QString& path);
    void RemoveItem(int index);       // closes the gap, hides the last element
    void Load();
    void Save() const;

    int Count() const { return int(m_items.size()); }
    // Item i, 0 = top ("&1 ").
    QString Item(int index) const { return m_items.at(size_t(index)); }
    QStringList Items() const;
    // The menu element of item i (mnuMru(i + 1)).
    QAction* Element(int index) const { return m_actions.at(size_t(index)); }

signals:
    void itemClicked(int index, const QString& path);

private:
    void refreshMenu();
    QMenu* m_menu;
    QAction* m_before;
    std::vector<QString> m_items;   // top first
    std::vector<QAction*> m_actions;
    QAction* m_separator = nullptr; // shown while there are items
};

} // namespace vexil
