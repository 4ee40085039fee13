// formGrpProperties ("Group Properties."): a group's name, colour, dynamic flag, light diminution and blending
// filter of all its polygons, and its size typed per axis. Apply validates every entry first
// (AllEntriesValid) and changes nothing on a refusal; each change it makes is an undo step of its own kind
// (rename 27, diminution 33, filter 34, size 4), except the dynamic flag, which is not undoable.
#pragma once
#include <QDialog>
#include <array>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace vexil {

class formGrpProperties : public QDialog {
    Q_OBJECT
  public:
    explicit formGrpProperties(int group, QWidget* parent = nullptr);

    QLineEdit* txtGrpName = nullptr;
    QPushButton* cmdColor = nullptr;
    QCheckBox* chkGrpDyn = nullptr;
    QLineEdit* txtPolLightDimu = nullptr;
    QComboBox* cmbPolFilter = nullptr;
    std::array<QLineEdit*, 3> txtGrpDim{};
    QPushButton* cmdEditChase = nullptr;
    QPushButton* cmdApply = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;

    // The light diminution range accepted, in per cent.
    static constexpr double kMinLightDimu = 0.0, kMaxLightDimu = 100.0;

    // Shows the message of the first bad entry and answers false; true when all can be applied.
    bool AllEntriesValid();
    void cmdApply_Click();
    void cmdOk_Click();
    void cmdCancel_Click();
    void cmdColor_Click();
    void cmdEditChase_Click();
    void cmbPolFilter_InitialSetup();
    void cmbPolFilter_SetAccordingToSelPol();

  private:
    void fill();
    int m_group;
    int m_filterShown = -1;
};

} // namespace vexil
