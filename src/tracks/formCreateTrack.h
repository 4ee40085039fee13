// formCreateTrack ("Create TRACK."): Circular shows the number of points and creates on Ok; Custom closes
// and leaves the laying of points to the viewports.
#pragma once
#include <QDialog>

class QFrame;
class QLabel;
class QPushButton;
class QSpinBox;

namespace vexil {

class formCreateTrack : public QDialog {
    Q_OBJECT
  public:
    explicit formCreateTrack(QWidget* parent = nullptr);

    void cmdCircular_Click();
    void cmdCustom_Click();
    void cmdOk_Click();

    // The choice made: Custom, or the number of points of a circle (0 when cancelled).
    bool CustomChosen() const { return m_custom; }
    int CircularPoints() const { return m_points; }

    QPushButton *cmdCircular = nullptr, *cmdCustom = nullptr, *cmdOk = nullptr;
    QFrame *Frame1 = nullptr, *Frame2 = nullptr;
    QSpinBox* updwnNumOfPts = nullptr;
    QLabel* lblNumOfPts = nullptr;

  private:
    bool m_custom = false;
    int m_points = 0;
};

} // namespace vexil
