#include "Spinner.h"

#include <QGuiApplication>
#include <QMouseEvent>

namespace vexil {

Spinner::Spinner(QWidget* parent) : QDoubleSpinBox(parent) {
    setRange(-1e9, 1e9);
    setDecimals(2);
    setKeyboardTracking(false);
    connect(this, &QDoubleSpinBox::valueChanged, this, &Spinner::Changed);
}

void Spinner::stepBy(int steps) {
    const Qt::KeyboardModifiers m = QGuiApplication::keyboardModifiers();
    const double base = singleStep();
    double factor = 1.0;
    if (m & Qt::ShiftModifier) factor = 2.0;
    else if (m & Qt::AltModifier) factor = 0.5;
    setValue(value() + steps * base * factor);
}

void Spinner::mouseReleaseEvent(QMouseEvent* e) {
    QDoubleSpinBox::mouseReleaseEvent(e);
    emit MouseUp();
}

} // namespace vexil
