// formCamChaseParams ("Edit Chase for: " + name): the chase rule of the current camera or group and its
// parameters. Nothing reaches the engine until Apply or Ok; nothing here is undoable.
#pragma once
#include "ChaseSetters.h"

#include <QDialog>
#include <QString>
#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QFrame;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace vexil {

// A text box with its up-down. The up-down is a wheel, not a store: each step adds value times `step` to
// the number in the box and springs back to 0. The last numeric text typed is the field's value.
struct ChaseField {
    QLineEdit* txt = nullptr;
    QSpinBox* updwn = nullptr;
    double step = 1.0;
    bool floorAtZero = false;
    QString textValue = QStringLiteral("0");
    double value() const;
};

class formCamChaseParams : public QDialog {
    Q_OBJECT
  public:
    // groupDynamicChanged: the main window's refresh of the group panel's dynamic flag after Apply.
    formCamChaseParams(const ChaseTarget& target, std::function<void(int)> groupDynamicChanged,
                       QWidget* parent = nullptr);

    void cmbChaseType_HighlightChaseType(int code);
    void cmdApply_Click();
    void cmdOk_Click();
    void cmdCancel_Click();
    // Sets a field's text as typing would (tests, and the up-downs).
    void SetFieldText(ChaseField& f, const QString& text);

    QComboBox* cmbChaseType = nullptr;
    QFrame *frmLocPrcFlex = nullptr, *frmTrack = nullptr, *frmPhysics = nullptr;
    QComboBox* cmbCamChaseCamOrObj = nullptr;
    std::array<ChaseField, 3> Offset;
    ChaseField Distance, Softness;
    QComboBox* cmbTrackToChase = nullptr;
    std::array<ChaseField, 3> TrackOffset;
    ChaseField TrkSpeed, TrkSoftness;
    QCheckBox* chkTrkFall = nullptr;
    std::array<ChaseField, 3> ForceDir;
    ChaseField ForceMag, Speed, MaxSpeed, Friction, Elasticity;
    QPushButton *cmdApply = nullptr, *cmdOk = nullptr, *cmdCancel = nullptr;

  private:
    void buildFrames();
    void wireField(ChaseField& f, QGridLayout* grid, int row, int col, int captionId, double step, bool floorAtZero);
    void loadFrame(int index);
    void cmbChaseCamOrObj_Populate();
    void frmLocPrcFlex_SetChaseTrackParams();
    void frmPhysics_setParams();
    void enableDistanceSoftness(bool distance, bool softness);
    void changed();

    ChaseTarget m_target;
    std::function<void(int)> m_groupDynamicChanged;
    bool m_loading = false;
};

} // namespace vexil
