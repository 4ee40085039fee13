#include "SurfSimView.h"
#include "view/RenderTarget.h"

#include "frame/ErrLog.h"
#include "view/picWindow.h" // the dispatch's button numbers

#include <QMouseEvent>
#include <QPainter>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {
QPen penOf(simplify::SimpPen pen) {
    using simplify::SimpPen;
    switch (pen) {
    case SimpPen::White1: return QPen(Qt::white, 1);
    case SimpPen::Red1: return QPen(Qt::red, 1);
    case SimpPen::Blue1: return QPen(QColor(60, 120, 255), 1);
    case SimpPen::Red2: return QPen(Qt::red, 2);
    case SimpPen::Green2: return QPen(Qt::green, 2);
    case SimpPen::Blue2: return QPen(QColor(60, 120, 255), 2);
    case SimpPen::Yellow2: return QPen(Qt::yellow, 2);
    }
    return QPen(Qt::white, 1);
}
} // namespace

SurfSimView::SurfSimView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("picBox"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(false);
    setMinimumSize(320, 240);
}

SurfSimView::~SurfSimView() {
    if (m_target && ZELMAR_target_is_target(m_target)) ZELMAR_target_destroy(m_target);
}

int SurfSimView::Target() {
    m_target = TargetOfSize(m_target, width(), height());
    return m_target;
}

void SurfSimView::Compose(const std::function<void()>& overlay) {
    m_lines = m_circles = 0;
    const int w = ZELMAR_target_get_width(m_target), h = ZELMAR_target_get_height(m_target);
    const unsigned char* px = ZELMAR_target_get_pixels(m_target);
    if (!px || w < 1 || h < 1) return;
    if (m_back.width() != w || m_back.height() != h || m_back.format() != QImage::Format_RGB32)
        m_back = QImage(w, h, QImage::Format_RGB32);
    QPainter p(&m_back);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(0, 0, QImage(px, w, h, w * 4, QImage::Format_RGBX8888));
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setRenderHint(QPainter::Antialiasing, true);
    if (overlay) {
        m_painter = &p;
        struct Done {
            QPainter*& painter;
            ~Done() { painter = nullptr; }
        } done{m_painter};
        overlay();
    }
    p.end();
    update();
}

void SurfSimView::SetRubberBand(const QPoint& a, const QPoint& b) {
    m_band = true;
    m_bandA = a;
    m_bandB = b;
    update();
}

void SurfSimView::HideRubberBand() {
    if (!m_band) return;
    m_band = false;
    update();
}

bool SurfSimView::project(const double xyz[3], double& x, double& y) {
    if (m_camera == 0 || m_target == 0) return false;
    if (ZELMAR_camera_get_current() != m_camera || ZELMAR_engine_get_current_target() != m_target)
        ZELMAR_camera_set_current(m_camera, m_target);
    int r[2] = {0, 0};
    const int status = ZELMAR_engine_3D_point_to_2D(xyz, r);
    if (status != 0 && status != 1) return false;
    x = r[0];
    y = r[1];
    return true;
}

void SurfSimView::drawLine(simplify::SimpPen pen, double x1, double y1, double x2, double y2) {
    ++m_lines;
    if (!m_painter) return;
    m_painter->setPen(penOf(pen));
    m_painter->drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void SurfSimView::drawCircle(simplify::SimpPen pen, double x, double y, double radius) {
    ++m_circles;
    if (!m_painter) return;
    m_painter->setPen(penOf(pen));
    m_painter->setBrush(Qt::NoBrush);
    m_painter->drawEllipse(QPointF(x, y), radius, radius);
}

void SurfSimView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (m_back.isNull()) p.fillRect(rect(), Qt::black);
    else {
        p.drawImage(0, 0, m_back);
        if (m_back.width() < width()) p.fillRect(m_back.width(), 0, width() - m_back.width(), height(), Qt::black);
        if (m_back.height() < height())
            p.fillRect(0, m_back.height(), width(), height() - m_back.height(), Qt::black);
    }
    if (m_band) {
        p.setPen(QPen(Qt::white, 1, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRect(m_bandA, m_bandB).normalized());
    }
}

void SurfSimView::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    if (onResized) onResized();
}

void SurfSimView::mousePressEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    if (onMouseDown) handleEvent("formSurfaceSimplification", "picBox_MouseDown", [&] {
            onMouseDown(ButtonOf(e->button()), p.x(), p.y());
        });
}

void SurfSimView::mouseMoveEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    if (onMouseMove) handleEvent("formSurfaceSimplification", "picBox_MouseMove", [&] {
            onMouseMove(ButtonsOf(e->buttons()), p.x(), p.y());
        });
}

void SurfSimView::mouseReleaseEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    if (onMouseUp) handleEvent("formSurfaceSimplification", "picBox_MouseUp", [&] {
            onMouseUp(ButtonOf(e->button()), p.x(), p.y());
        });
}

} // namespace vexil
