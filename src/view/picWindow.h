// One picture window: it owns an engine render target of its own size, shows the target's pixels through
// a back buffer (overlays are drawn into the back buffer, the screen only ever gets whole frames), and hands
// its mouse, wheel and focus events to the viewport area (keys go to the main window's table).
#pragma once
#include <QImage>
#include <QWidget>

namespace vexil {

class frmPicWins;

// Toolkit buttons and modifiers as the dispatch numbers them: buttons 1 left, 2 right, 4 middle; shift 1,
// ctrl 2, alt 4.
int ButtonOf(Qt::MouseButton b);
int ButtonsOf(Qt::MouseButtons b);
int ShiftOf(Qt::KeyboardModifiers m);

class picWindow : public QWidget {
    Q_OBJECT
  public:
    picWindow(frmPicWins& owner, int index, QWidget* parent);
    ~picWindow() override;

    int Index() const { return m_index; }
    // The engine render target, made or resized to the widget's size; 0 for an empty widget.
    int Target();
    // The picture as last composed (engine image plus overlays).
    QImage& BackBuffer() { return m_back; }
    // Copies the target's pixels into the back buffer (sized to the target).
    bool CopyFromTarget();
    // Blank picture (no world).
    void ClearSurface();

  protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

  private:
    frmPicWins& m_owner;
    int m_index;
    int m_target = 0;
    bool m_renderQueued = false; // a render after a resize waits for the resizes of one layout pass
    QImage m_back;
};

// A splitter bar or the cross handle between the windows: kind 0 vertical, 1 horizontal, 2 both.
class SplitterHandle : public QWidget {
    Q_OBJECT
  public:
    SplitterHandle(frmPicWins& owner, int kind, QWidget* parent);

  protected:
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

  private:
    frmPicWins& m_owner;
    int m_kind;
    bool m_dragging = false;
};

} // namespace vexil
