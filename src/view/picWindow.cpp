#include "picWindow.h"
#include "RenderTarget.h"

#include "frame/ErrLog.h"
#include "frmPicWins.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <zelmar/zelmar.h>

namespace vexil {

int ButtonOf(Qt::MouseButton b) {
    switch (b) {
    case Qt::LeftButton:
        return BtnLeft;
    case Qt::RightButton:
        return BtnRight;
    case Qt::MiddleButton:
        return BtnMiddle;
    default:
        return 0;
    }
}

int ButtonsOf(Qt::MouseButtons b) {
    int r = 0;
    if (b & Qt::LeftButton) r |= BtnLeft;
    if (b & Qt::RightButton) r |= BtnRight;
    if (b & Qt::MiddleButton) r |= BtnMiddle;
    return r;
}

int ShiftOf(Qt::KeyboardModifiers m) {
    int r = 0;
    if (m & Qt::ShiftModifier) r |= ShiftMask;
    if (m & Qt::ControlModifier) r |= CtrlMask;
    if (m & Qt::AltModifier) r |= AltMask;
    return r;
}

picWindow::picWindow(frmPicWins& owner, int index, QWidget* parent)
    : QWidget(parent), m_owner(owner), m_index(index) {
    setObjectName(QStringLiteral("picWindow%1").arg(index));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

picWindow::~picWindow() {
    if (m_target) ZELMAR_target_destroy(m_target);
}

int picWindow::Target() {
    m_target = TargetOfSize(m_target, width(), height());
    return m_target;
}

bool picWindow::CopyFromTarget() {
    const int w = ZELMAR_target_get_width(m_target), h = ZELMAR_target_get_height(m_target);
    const unsigned char* px = ZELMAR_target_get_pixels(m_target);
    if (!px || w < 1 || h < 1) return false;
    // The back buffer is in the painter's and the screen's own format (0xffRRGGBB words): overlays and the
    // blit then take Qt's fastest paths, and the one reordering of the bytes happens here.
    if (m_back.width() != w || m_back.height() != h || m_back.format() != QImage::Format_RGB32)
        m_back = QImage(w, h, QImage::Format_RGB32);
    const QImage engine(px, w, h, w * 4, QImage::Format_RGBX8888); // a view of the engine's pixels, no copy
    QPainter p(&m_back);
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(0, 0, engine);
    return true;
}

void picWindow::ClearSurface() {
    if (m_back.isNull()) return;
    m_back.fill(Qt::black);
    update();
}

void picWindow::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (m_back.isNull()) {
        p.fillRect(rect(), Qt::black);
        return;
    }
    p.drawImage(0, 0, m_back);
    if (m_back.width() < width())
        p.fillRect(m_back.width(), 0, width() - m_back.width(), height(), Qt::black);
    if (m_back.height() < height())
        p.fillRect(0, m_back.height(), width(), height() - m_back.height(), Qt::black);
}

void picWindow::resizeEvent(QResizeEvent*) {
    if (m_target && width() >= 1 && height() >= 1) Target();
    // The picture is rendered at the new size once the layout has settled; until then the old one shows.
    if (m_renderQueued) return;
    m_renderQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_renderQueued = false;
            if (m_back.size() != size()) m_owner.UpdateCamerasSingle(m_index);
        },
        Qt::QueuedConnection);
}

void picWindow::mousePressEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    handleEvent("Form1", "picWindow_MouseDown", [&] {
        m_owner.picWindow_MouseDown(m_index, ButtonOf(e->button()), ShiftOf(e->modifiers()), p.x(), p.y());
    });
}

void picWindow::mouseMoveEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    handleEvent("Form1", "picWindow_MouseMove", [&] {
        m_owner.picWindow_MouseMove(m_index, ButtonsOf(e->buttons()), ShiftOf(e->modifiers()), p.x(), p.y());
    });
}

void picWindow::mouseReleaseEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    handleEvent("Form1", "picWindow_MouseUp", [&] {
        m_owner.picWindow_MouseUp(m_index, ButtonOf(e->button()), ShiftOf(e->modifiers()), p.x(), p.y());
    });
}

void picWindow::wheelEvent(QWheelEvent* e) {
    m_owner.AddWheelDelta(e->angleDelta().y());
    e->accept();
}

void picWindow::focusInEvent(QFocusEvent*) {
    m_owner.picWindow_GotFocus(m_index);
}

void picWindow::focusOutEvent(QFocusEvent*) {
    m_owner.picWindow_LostFocus(m_index);
}

SplitterHandle::SplitterHandle(frmPicWins& owner, int kind, QWidget* parent)
    : QWidget(parent), m_owner(owner), m_kind(kind) {
    setCursor(kind == 0 ? Qt::SplitHCursor : kind == 1 ? Qt::SplitVCursor : Qt::SizeAllCursor);
    setObjectName(kind == 0 ? "imgSplitterVert" : kind == 1 ? "imgSplitterHoriz" : "imgSplitterHV");
}

void SplitterHandle::mousePressEvent(QMouseEvent* e) {
    if (e->button() != Qt::LeftButton) return;
    m_dragging = true;
    m_owner.Splitter_MouseDown(m_kind, mapTo(&m_owner, e->position().toPoint()));
}

void SplitterHandle::mouseMoveEvent(QMouseEvent* e) {
    if (m_dragging) m_owner.Splitter_MouseMove(m_kind, mapTo(&m_owner, e->position().toPoint()));
}

void SplitterHandle::mouseReleaseEvent(QMouseEvent* e) {
    if (!m_dragging || e->button() != Qt::LeftButton) return;
    m_dragging = false;
    m_owner.Splitter_MouseUp(m_kind, mapTo(&m_owner, e->position().toPoint()));
}

void SplitterHandle::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), palette().color(QPalette::Window).darker(m_kind == 2 ? 130 : 108));
}

} // namespace vexil
