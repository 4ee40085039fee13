#include "ViewerWindow.h"

#include <zelmar/zelmar.h>

#include <QFileInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace vexil::viewer {

ViewerWindow::ViewerWindow(Player& player, QWidget* parent) : QWidget(parent), m_player(player) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(64, 48);
    updateTitle();
    m_clock.start();
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(0); // as fast as frames can be made
    connect(&m_timer, &QTimer::timeout, this, &ViewerWindow::tick);
    m_timer.start();
}

void ViewerWindow::updateTitle() {
    setWindowTitle(QStringLiteral("Vexil Viewer - %1").arg(QFileInfo(QString::fromStdString(m_player.path())).fileName()));
}

void ViewerWindow::tick() {
    const double now = m_clock.nsecsElapsed() * 1e-9;
    m_player.advance(now - m_last);
    m_last = now;
    m_player.render(width(), height());
    m_rate.frame(now);
    repaint(); // now, not coalesced: one picture per frame
}

void ViewerWindow::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const unsigned char* px = m_player.pixels();
    const int w = m_player.width(), h = m_player.height();
    if (px && w > 0 && h > 0)
        p.drawImage(0, 0, QImage(px, w, h, w * 4, QImage::Format_RGBX8888)); // the engine's pixels, no copy
    else
        p.fillRect(rect(), Qt::black);
    if (w < width() || h < height()) {
        p.fillRect(w, 0, width() - w, height(), Qt::black);
        p.fillRect(0, h, w, height() - h, Qt::black);
    }
    if (!m_overlay) return;
    QString text = QStringLiteral("%1   %2 fps").arg(QString::fromStdString(m_player.viewName())).arg(framesPerSecond(), 0, 'f', 1);
    if (m_player.activeIndex() >= 0)
        text = QStringLiteral("%1 (%2/%3)   %4 fps")
                   .arg(QString::fromStdString(m_player.viewName()))
                   .arg(m_player.activeIndex() + 1)
                   .arg(m_player.cameraCount())
                   .arg(framesPerSecond(), 0, 'f', 1);
    if (m_player.paused()) text += QStringLiteral("   Paused");
    QFont f = p.font();
    f.setBold(true);
    p.setFont(f);
    p.setPen(Qt::black);
    p.drawText(9, 19, text);
    p.setPen(Qt::white);
    p.drawText(8, 18, text);
}

bool ViewerWindow::event(QEvent* e) {
    if (e->type() == QEvent::KeyPress) {
        auto* k = static_cast<QKeyEvent*>(e);
        if (k->key() == Qt::Key_Tab || k->key() == Qt::Key_Backtab) {
            m_player.nextCamera();
            update();
            return true;
        }
    }
    return QWidget::event(e);
}

bool ViewerWindow::setMove(int key, bool held) {
    FreeFly::Move m;
    switch (key) {
    case Qt::Key_W: m = FreeFly::Ahead; break;
    case Qt::Key_S: m = FreeFly::Back; break;
    case Qt::Key_A: m = FreeFly::Left; break;
    case Qt::Key_D: m = FreeFly::Right; break;
    case Qt::Key_E: m = FreeFly::Up; break;
    case Qt::Key_Q: m = FreeFly::Down; break;
    case Qt::Key_Shift: m = FreeFly::Fast; break;
    default: return false;
    }
    // Flying starts from the place of the camera looked through.
    if (held && m != FreeFly::Fast && m_player.activeIndex() != -1) m_player.takeOverView();
    m_player.fly().setHeld(m, held);
    return true;
}

void ViewerWindow::keyPressEvent(QKeyEvent* e) {
    const int key = e->key();
    if (setMove(key, true)) return;
    if (e->isAutoRepeat()) return;
    if (key == Qt::Key_Space) {
        m_player.setPaused(!m_player.paused());
    } else if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        m_player.selectCamera(key - Qt::Key_1);
    } else if (key == Qt::Key_0) {
        m_player.selectCamera(-1);
    } else if (key == Qt::Key_F) {
        m_overlay = !m_overlay;
    } else if (key == Qt::Key_Escape) {
        close();
        return;
    } else {
        QWidget::keyPressEvent(e);
        return;
    }
    update();
}

void ViewerWindow::keyReleaseEvent(QKeyEvent* e) {
    if (e->isAutoRepeat()) return;
    if (!setMove(e->key(), false)) QWidget::keyReleaseEvent(e);
}

void ViewerWindow::mousePressEvent(QMouseEvent* e) {
    m_looking = true;
    m_lastMouse = e->position().toPoint();
}

void ViewerWindow::mouseMoveEvent(QMouseEvent* e) {
    if (!m_looking) return;
    const QPoint at = e->position().toPoint(), d = at - m_lastMouse;
    m_lastMouse = at;
    if (d.isNull()) return;
    if (m_player.activeIndex() != -1) m_player.takeOverView();
    FreeFly::look(m_player.viewCamera(), d.x(), d.y());
}

void ViewerWindow::mouseReleaseEvent(QMouseEvent* e) {
    if (e->buttons() == Qt::NoButton) m_looking = false;
}

void ViewerWindow::focusOutEvent(QFocusEvent* e) {
    m_player.fly().releaseAll(); // a key released elsewhere must not keep the camera flying
    m_looking = false;
    QWidget::focusOutEvent(e);
}

} // namespace vexil::viewer
