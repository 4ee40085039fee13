// The numeric Spinner control of the design: a value with a step, a minimum and a maximum, and the events
// Changed and MouseUp. Keeping Shift pressed doubles the step, Alt halves it (UI string 201).
#pragma once
#include <QDoubleSpinBox>

namespace vexil {

class Spinner : public QDoubleSpinBox {
    Q_OBJECT
public:
    explicit Spinner(QWidget* parent = nullptr);
    // The "first numeric property": the value.
    double Value() const { return value(); }
    void SetValue(double v) { setValue(v); }
    double Step() const { return singleStep(); }
    void SetStep(double s) { setSingleStep(s); }
    void stepBy(int steps) override;

signals:
    void Changed(double value);
    void MouseUp();

protected:
    void mouseReleaseEvent(QMouseEvent* e) override;
};

} // namespace vexil
