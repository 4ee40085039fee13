// The input-state seam (docs/platform.md).
#include "InputState.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace vexil {

namespace {

QtInputState& production() {
    static QtInputState s;
    return s;
}
InputState*& current() {
    static InputState* s = nullptr;
    return s;
}

// The digit of the US number row under a shifted symbol: GetAsyncKeyState('1') is physical.
int unshifted(int key) {
    switch (key) {
    case Qt::Key_Exclam: return Qt::Key_1;
    case Qt::Key_At: return Qt::Key_2;
    case Qt::Key_NumberSign: return Qt::Key_3;
    case Qt::Key_Dollar: return Qt::Key_4;
    case Qt::Key_Percent: return Qt::Key_5;
    case Qt::Key_AsciiCircum: return Qt::Key_6;
    case Qt::Key_Ampersand: return Qt::Key_7;
    case Qt::Key_Asterisk: return Qt::Key_8;
    case Qt::Key_ParenLeft: return Qt::Key_9;
    case Qt::Key_ParenRight: return Qt::Key_0;
    case Qt::Key_Backtab: return Qt::Key_Tab;
    default: return key;
    }
}

int keyCode(QKeyEvent* k) {
    int key = unshifted(k->key());
    if ((k->modifiers() & Qt::KeypadModifier) && (key == Qt::Key_Plus || key == Qt::Key_Minus)) key |= Qt::KeypadModifier;
    return key;
}

class Filter : public QObject {
public:
    explicit Filter(QtInputState& s) : m_state(s) {}
    bool eventFilter(QObject* obj, QEvent* ev) override {
        m_state.noteEvent(ev);
        return QObject::eventFilter(obj, ev);
    }

private:
    QtInputState& m_state;
};

} // namespace

InputState& inputState() {
    if (current()) return *current();
    production().installFilter();
    return production();
}

void setInputState(InputState* s) { current() = s; }

void QtInputState::installFilter() {
    if (m_filterInstalled || !QCoreApplication::instance()) return;
    QCoreApplication::instance()->installEventFilter(new Filter(*this));
    m_filterInstalled = true;
}

void QtInputState::noteEvent(QEvent* ev) {
    auto noteModifiers = [this](Qt::KeyboardModifiers m) {
        const std::pair<Qt::KeyboardModifier, int> mods[] = {
            {Qt::ShiftModifier, Qt::Key_Shift}, {Qt::ControlModifier, Qt::Key_Control}, {Qt::AltModifier, Qt::Key_Alt}};
        for (const auto& [mod, key] : mods) {
            if (m & mod) noteDown(key);
            else noteUp(key);
        }
    };
    switch (ev->type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride: {
        auto* k = static_cast<QKeyEvent*>(ev);
        noteModifiers(k->modifiers());
        if (ev->type() == QEvent::KeyPress && !k->isAutoRepeat()) noteDown(keyCode(k));
        break;
    }
    case QEvent::KeyRelease: {
        auto* k = static_cast<QKeyEvent*>(ev);
        if (k->isAutoRepeat()) break;
        noteUp(keyCode(k));
        if (k->key() != Qt::Key_Shift && k->key() != Qt::Key_Control && k->key() != Qt::Key_Alt) noteModifiers(k->modifiers());
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: {
        auto* m = static_cast<QMouseEvent*>(ev);
        const int vk = m->button() == Qt::LeftButton     ? VkLButton
                       : m->button() == Qt::RightButton  ? VkRButton
                       : m->button() == Qt::MiddleButton ? VkMButton
                                                         : 0;
        if (vk) {
            if (ev->type() == QEvent::MouseButtonPress) noteDown(vk);
            else noteUp(vk);
        }
        noteModifiers(m->modifiers());
        break;
    }
    case QEvent::ApplicationDeactivate:
        // Keys released while another program has the focus are never reported.
        for (int k : {int(Qt::Key_Shift), int(Qt::Key_Control), int(Qt::Key_Alt)}) noteUp(k);
        break;
    default: break;
    }
}

short QtInputState::GetAsyncKeyState(int key) {
    unsigned short r = 0;
    if (m_down.count(key)) r |= 0x8000;
    if (m_pressedSincePoll.erase(key)) r |= 0x0001;
    return static_cast<short>(r);
}

void QtInputState::noteDown(int key) {
    if (!m_down.count(key)) m_pressedSincePoll.insert(key);
    m_down.insert(key);
}

void QtInputState::noteUp(int key) { m_down.erase(key); }

QPoint QtInputState::cursorPos() const { return QCursor::pos(); }
void QtInputState::setCursorPos(const QPoint& p) { QCursor::setPos(p); }

FakeInputState::FakeInputState() {
    m_previous = current();
    current() = this;
}

FakeInputState::~FakeInputState() {
    if (current() == this) current() = m_previous;
}

short FakeInputState::GetAsyncKeyState(int key) {
    unsigned short r = 0;
    if (m_down.count(key)) r |= 0x8000;
    if (m_fresh.erase(key)) r |= 0x0001;
    return static_cast<short>(r);
}

} // namespace vexil
