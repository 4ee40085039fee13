#include "UpDown.h"

#include <QToolButton>
#include <QVBoxLayout>

namespace vexil {

UpDown::UpDown(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("UpDown1"));
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    m_up = new QToolButton(this);
    m_up->setObjectName(QStringLiteral("UpDown1Up"));
    m_up->setArrowType(Qt::UpArrow);
    m_up->setAutoRepeat(true);
    m_down = new QToolButton(this);
    m_down->setObjectName(QStringLiteral("UpDown1Down"));
    m_down->setArrowType(Qt::DownArrow);
    m_down->setAutoRepeat(true);
    for (QToolButton* b : {m_up, m_down}) {
        b->setFocusPolicy(Qt::NoFocus);
        b->setFixedSize(22, 13);
        box->addWidget(b);
    }
    connect(m_up, &QToolButton::clicked, this, [this] {
        SetValue(1);
        if (onClick) onClick();
    });
    connect(m_down, &QToolButton::clicked, this, [this] {
        SetValue(-1);
        if (onClick) onClick();
    });
}

void UpDown::SetValue(int value) {
    if (value == m_value) return;
    m_value = value;
    if (onChange) onChange();
}

} // namespace vexil
