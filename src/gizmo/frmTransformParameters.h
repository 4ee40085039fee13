// The typed transform panel: moves, turns or scales the current selection by typed values. Offset or
// absolute values, object or world space; the Up and Down keys in a field step its value by the move,
// rotate or scale step of the preferences (a scale step multiplies and divides). Apply (or Enter) does it
// as one undo step; a value that is not a number, or that cannot be applied, gets a message and changes
// nothing.
#pragma once
#include "TypedTransform.h"

#include <QWidget>
#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vexil {

class frmPicWins;

class frmTransformParameters : public QWidget {
    Q_OBJECT
  public:
    frmTransformParameters(frmPicWins& views, ActionUndoRedo_Stack& stack, QWidget* parent = nullptr);

    QComboBox* cmbTransform = nullptr; // Move Transform, Rotate Transform, Scale Transform
    QRadioButton *optOffset = nullptr, *optAbsolute = nullptr;
    QRadioButton *optObjectSpace = nullptr, *optWorldSpace = nullptr;
    std::array<QLabel*, 3> lblValue{};
    std::array<QLineEdit*, 3> txtValue{};
    QLabel* lblStep = nullptr;
    QPushButton* cmdApply = nullptr;

    TransformKind Kind() const;
    // Shows the panel for a kind, with the values that kind starts from.
    void SetKind(TransformKind kind);
    // What the fields and options say now (values unparsed fields excluded): for tests and callers.
    TypedTransform Current(QString* error = nullptr) const;
    // Apply: true when something was applied.
    bool cmdApply_Click();
    // One step of a field's value up (+1) or down (-1).
    void StepValue(int field, int direction);
    // The fields from the selection (absolute move: its location; absolute scale: its size) or neutral.
    void ResetValues();
    void ApplyLanguage();

  protected:
    bool eventFilter(QObject* obj, QEvent* e) override;

  private:
    void optionsChanged();
    QStringList labels() const;
    frmPicWins& m_views;
    ActionUndoRedo_Stack& m_stack;
};

} // namespace vexil
