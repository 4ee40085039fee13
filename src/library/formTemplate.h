// formTemplate: "Choose a template to start with." Lists "New" and the worlds of the
// Templates folder; OK loads the chosen one.
#pragma once
#include <QDialog>
#include <QString>
#include <functional>

class QListWidget;
class QPushButton;
class QLabel;

namespace vexil {

class formTemplate : public QDialog {
    Q_OBJECT
public:
    // templatesFolder: application folder + "/Templates". loadWorld: LoadWorld of the main window.
    // startEmpty: the main window's step for starting an empty world (may be empty: the world is new already).
    formTemplate(const QString& templatesFolder, std::function<bool(const QString&)> loadWorld,
                 std::function<void()> startEmpty = {}, QWidget* parent = nullptr);

    // The listing step: clear List1, add "New", add each file of extension "wld" (lower-cased compare),
    // without its ".wld"; select entry 0.
    void ListTemplates(const QString& folder);
    void ApplyLanguage();

    void cmdOk_Click();
    void cmdCancel_Click();
    void List1_DblClick();

    QListWidget* List1 = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;

protected:
    void keyPressEvent(QKeyEvent* e) override;  // Form_KeyPress: Enter acts as OK

private:
    QString m_folder;
    std::function<bool(const QString&)> m_loadWorld;
    std::function<void()> m_startEmpty;
    QLabel* m_label = nullptr;
};

} // namespace vexil
