// An up-down arrow pair whose value sits at 0 between uses: a click on the upper arrow sets it to 1,
// on the lower to -1, and its change handler runs (and puts it back to 0).
#pragma once
#include <QWidget>
#include <functional>

class QToolButton;

namespace vexil {

class UpDown : public QWidget {
    Q_OBJECT
public:
    explicit UpDown(QWidget* parent = nullptr);
    int Value() const { return m_value; }
    // Sets the value and runs the change handler when it differs.
    void SetValue(int value);
    QToolButton* UpButton() const { return m_up; }
    QToolButton* DownButton() const { return m_down; }
    // The change handler (UpDown1_Change).
    std::function<void()> onChange;
    // After a click on an arrow (the change has run).
    std::function<void()> onClick;

private:
    int m_value = 0;
    QToolButton *m_up = nullptr, *m_down = nullptr;
};

} // namespace vexil
