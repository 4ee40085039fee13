// The input-state seam (docs/platform.md): GetAsyncKeyState, GetCursorPos, SetCursorPos.
// Production tracks held keys from the application's key and mouse events (an event filter on
// qApp) plus QGuiApplication::queryKeyboardModifiers and QCursor; tests install a FakeInputState.
//
// Key codes are Qt::Key values; the mouse buttons are VkLButton, VkRButton, VkMButton.
//
//   if (vexil::keyDown(Qt::Key_Control)) ...   // "down": the state is negative
//   if (vexil::keyPressed(Qt::Key_Z)) ...      // "pressed": state == 0x8001 (down, not polled since)
#pragma once
#include <QPoint>

class QEvent;
#include <set>

namespace vexil {

constexpr int VkLButton = 0x01000000 + 0x7f01; // outside Qt's key range
constexpr int VkRButton = 0x01000000 + 0x7f02;
constexpr int VkMButton = 0x01000000 + 0x7f03;
// The numeric pad's + and - (Qt::Key_Plus / Key_Minus with Qt::KeypadModifier).
constexpr int VkAdd = 0x2b | 0x20000000;
constexpr int VkSubtract = 0x2d | 0x20000000;

class InputState {
public:
    virtual ~InputState() = default;
    // As GetAsyncKeyState: bit 0x8000 (negative as 16 bits) while down; bit 0x0001 when the key went
    // down since the previous poll of that key (each poll clears it).
    virtual short GetAsyncKeyState(int key) = 0;
    virtual QPoint cursorPos() const = 0;          // screen coordinates, pixels
    virtual void setCursorPos(const QPoint& p) = 0;
    // Notes a key or mouse event (production); whoever handles an event before the seam's own filter
    // has seen it calls this first. Noting the same event twice changes nothing.
    virtual void noteEvent(QEvent*) {}
};

InputState& inputState();
// Installs s (not owned); nullptr restores the production seam.
void setInputState(InputState* s);

inline bool keyDown(int key) { return inputState().GetAsyncKeyState(key) < 0; }
inline bool keyPressed(int key) {
    return static_cast<unsigned short>(inputState().GetAsyncKeyState(key)) == 0x8001;
}

// Production: an event filter installed on qApp on first use tracks key and button presses.
class QtInputState : public InputState {
public:
    short GetAsyncKeyState(int key) override;
    QPoint cursorPos() const override;
    void setCursorPos(const QPoint& p) override;
    // Called by the event filter (and usable by anyone who sees events first).
    void noteDown(int key);
    void noteUp(int key);
    void noteEvent(QEvent* e) override;
    void installFilter();

private:
    std::set<int> m_down;
    std::set<int> m_pressedSincePoll;
    bool m_filterInstalled = false;
};

// Tests: keys are held and released by hand; the cursor is a plain point.
class FakeInputState : public InputState {
public:
    FakeInputState();   // installs itself
    ~FakeInputState() override;
    void press(int key) { m_down.insert(key); m_fresh.insert(key); }
    void release(int key) { m_down.erase(key); m_fresh.erase(key); }
    void releaseAll() { m_down.clear(); m_fresh.clear(); }
    short GetAsyncKeyState(int key) override;
    QPoint cursorPos() const override { return m_cursor; }
    void setCursorPos(const QPoint& p) override { m_cursor = p; }

private:
    std::set<int> m_down, m_fresh;
    QPoint m_cursor;
    InputState* m_previous = nullptr;
};

} // namespace vexil
