// The viewer's one window: the engine's picture of the view camera, redrawn as fast as the
// renderer allows, with the camera's name, the frame rate and the pause state over it.
// Keys and mouse as in CommandLine.h's usage text.
#pragma once
#include "FrameRate.h"
#include "Player.h"

#include <QElapsedTimer>
#include <QPoint>
#include <QTimer>
#include <QWidget>

namespace vexil::viewer {

class ViewerWindow : public QWidget {
    Q_OBJECT
  public:
    explicit ViewerWindow(Player& player, QWidget* parent = nullptr);

    // One frame: the time since the last one to the player, a render. The timer calls it.
    void tick();
    double framesPerSecond() const { return m_rate.perSecond(); }
    bool overlayShown() const { return m_overlay; }

  protected:
    bool event(QEvent* e) override; // Tab is a key here, not a focus move
    void keyPressEvent(QKeyEvent* e) override;
    void keyReleaseEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

  private:
    bool setMove(int key, bool held);
    void updateTitle();
    Player& m_player;
    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_last = 0;
    FrameRate m_rate;
    bool m_overlay = true;
    bool m_looking = false;
    QPoint m_lastMouse;
};

} // namespace vexil::viewer
