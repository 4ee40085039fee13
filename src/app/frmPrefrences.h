// frmPrefrences: the preferences dialog, opened from Edit > Preference.
#pragma once
#include <QDialog>
#include <array>
#include <cstdint>

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTabWidget;

namespace vexil {

class Spinner;

class frmPrefrences : public QDialog {
    Q_OBJECT
public:
    explicit frmPrefrences(QWidget* parent = nullptr);
    void ApplyLanguage();
    // Fills the controls from the globals (Form_Load).
    void LoadValues();
    // The undo depth in force from the next start: the stored "MaxUndoRedo" (empty, "0" or text give 20).
    static int StoredUndoDepth();

    void cmdApply_Click();
    void cmdOk_Click();
    void cmdCancel_Click();
    void cmdDefault_Click();
    void UpDown1_Change(int index);
    void cmdSaveToolbar_Click();
    void cmdRestoreToolbar_Click();
    void Command1_Click();

    // The beep list <-> mask: item 0 "No Beep" exactly when the mask is 0; items 1 to 3 for the bits 2, 4, 8.
    void SetBeepList(std::uint8_t mask);
    std::uint8_t BeepListMask() const;

    QTabWidget* tabOptions = nullptr;
    std::array<QSpinBox*, 3> UpDown1{};
    std::array<QLabel*, 3> Label4{};
    std::array<QLabel*, 3> lblUpDown{};
    QCheckBox *chkShowSplash = nullptr, *chkGrid = nullptr, *chkGridSnap = nullptr, *chkExpertMode = nullptr;
    Spinner *spnGridDensity = nullptr, *spnSignificantDecs = nullptr, *spnMoveStep = nullptr, *spnRotateStep = nullptr,
            *spnScaleStep = nullptr;
    QLabel *lblGridDensity = nullptr, *lblSignificantDecs = nullptr, *lblMoveStep = nullptr, *lblRotateStep = nullptr,
           *lblScaleStep = nullptr, *lblLang = nullptr;
    QComboBox* cmbLang = nullptr;
    QListWidget* lstErrLogBeep = nullptr;
    QListWidget* lstSaveFlags = nullptr;
    QPushButton *cmdSaveToolbar = nullptr, *cmdRestoreToolbar = nullptr, *Command1 = nullptr;
    QPushButton *cmdOk = nullptr, *cmdCancel = nullptr, *cmdApply = nullptr, *cmdDefault = nullptr;

private:
    int m_languageShown = 0; // the index of cmbLang at load or last apply
    int m_depthShown = 20;   // the undo depth at load or last apply
};

} // namespace vexil
