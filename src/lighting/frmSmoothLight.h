// The smoothing panel: Smooth and Clear All act on the selected polygons (mdlSmoothLight) with the
// threshold angle that the up-down sets (Shift doubles a step, Alt halves it).
#pragma once
#include <QWidget>

class QLabel;
class QPushButton;
class QSpinBox;

namespace vexil {

class frmSmoothLight : public QWidget {
    Q_OBJECT
  public:
    explicit frmSmoothLight(QWidget* parent = nullptr);

    double Threshold() const { return m_threshold; }
    void SetThreshold(double degrees);

    void cmdSmoothLight_Click();
    void cmdSmoothClearAll_Click();
    void updwnSmoothLight_Change();

    QPushButton *cmdSmoothLight = nullptr, *cmdSmoothClearAll = nullptr;
    QLabel* lblSmoothAng = nullptr;
    QSpinBox* updwnSmoothLight = nullptr;

  private:
    double m_threshold = 45;
};

} // namespace vexil
