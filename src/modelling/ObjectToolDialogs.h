// The dialogs of the object tools: formMirror, formDuplicate, formAlign, formBend, formDisplace. Each runs
// through the dialogs seam and, when accepted, runs its command on the current selection as one undo step.
#pragma once
#include <QDialog>
#include <array>
#include <vector>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace vexil {

class formMirror : public QDialog {
    Q_OBJECT
  public:
    explicit formMirror(QWidget* parent = nullptr);
    QComboBox* cmbAxis = nullptr; // X, Y, Z, XY, YZ, XZ, XYZ
    QCheckBox* chkCopy = nullptr;
};

class formDuplicate : public QDialog {
    Q_OBJECT
  public:
    explicit formDuplicate(QWidget* parent = nullptr);
    QSpinBox* spnCount = nullptr;
    std::array<QDoubleSpinBox*, 3> spnOffset{};
};

class formAlign : public QDialog {
    Q_OBJECT
  public:
    explicit formAlign(QWidget* parent = nullptr);
    // Per axis: the check box "X/Y/Z Position" and the mode (1 minimum, 2 centre, 3 pivot, 4 maximum).
    std::array<QCheckBox*, 3> chkAxis{};
    QComboBox* cmbMode = nullptr;
};

class formBend : public QDialog {
    Q_OBJECT
  public:
    explicit formBend(QWidget* parent = nullptr);
    QComboBox *cmbAlong = nullptr, *cmbDirection = nullptr;
    QDoubleSpinBox* spnAngle = nullptr;
};

class formDisplace : public QDialog {
    Q_OBJECT
  public:
    explicit formDisplace(QWidget* parent = nullptr);
    QComboBox* cmbSource = nullptr; // "Noise" or a bitmap file
    QLineEdit* txtBitmap = nullptr;
    QDoubleSpinBox* spnStrength = nullptr;
};

// The commands: read the dialog, act on the current group (or the groups of a multiple selection).
void MirrorObjects();
void DuplicatGrp();
void BendGrp();
void DisplaceGrp();
// Align: the selected groups go to `target` by the dialog's choice.
void AlignObjectsTo(int target);

} // namespace vexil
