// The selection list: cameras, lights and groups by name, with check boxes for the kinds shown. It serves
// three actions: a camera for a viewport (0), a new selection (1), a group to attach the selection to (2).
// Enter is OK, Escape is Cancel.
#pragma once
#include <QDialog>
#include <utility>
#include <vector>

class QCheckBox;
class QListWidget;
class QPushButton;

namespace vexil {

class SelectionModel;

class formSelectionWindow : public QDialog {
    Q_OBJECT
  public:
    enum Action { SetWinViewNewCam = 0, SelectMultiple = 1, AttachSelectionToGrp = 2 };

    formSelectionWindow(SelectionModel& model, QWidget* parent = nullptr);

    // Which kinds are shown, whether their check boxes may change, the action, and whether several items
    // may be chosen.
    void SetSelectionType(bool groups, bool cams, bool lights, bool kindsEditable, Action action,
                          bool multiSelect);
    // Fills lstSelection from the ticked kinds: cameras, then lights, then groups.
    void FillList();
    // The chosen items as (kind, handle), in list order.
    std::vector<std::pair<int, int>> Chosen() const;
    // Marks the items of the current selection.
    void MarkCurrentSelection();

    QCheckBox* chkGroups = nullptr;
    QCheckBox* chkCams = nullptr;
    QCheckBox* chkLights = nullptr;
    QListWidget* lstSelection = nullptr;
    QPushButton* cmdAll = nullptr;
    QPushButton* cmdNone = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;

  private:
    SelectionModel& m_model;
    Action m_action = SelectMultiple;
};

} // namespace vexil
