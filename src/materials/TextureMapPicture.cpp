#include "TextureMapPicture.h"

#include "frame/ErrLog.h"
#include "frame/InputState.h"
#include "frmTextureMapping.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

namespace vexil {

TextureMapPicture::TextureMapPicture(frmTextureMapping* form) : QWidget(form), m_form(form) {
    setObjectName(QStringLiteral("PicMain"));
    setMouseTracking(true);
    setMinimumSize(64, 64);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TextureMapPicture::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const QImage& buffer = m_form->BackBuffer(); // drawn now if a repaint is pending
    if (buffer.size() == size()) p.drawImage(0, 0, buffer); // the one block copy
    else p.fillRect(rect(), Qt::white);
}

void TextureMapPicture::mousePressEvent(QMouseEvent* e) {
    inputState().noteEvent(e);
    handleEvent("frmTextureMapping", "PicMain_MouseDown",
                [&] { m_form->PicMain_MouseDown(e->button(), e->position().toPoint()); });
}

void TextureMapPicture::mouseMoveEvent(QMouseEvent* e) {
    handleEvent("frmTextureMapping", "PicMain_MouseMove",
                [&] { m_form->PicMain_MouseMove(e->buttons(), e->position().toPoint()); });
}

void TextureMapPicture::mouseReleaseEvent(QMouseEvent* e) {
    inputState().noteEvent(e);
    handleEvent("frmTextureMapping", "PicMain_MouseUp",
                [&] { m_form->PicMain_MouseUp(e->button(), e->position().toPoint()); });
}

void TextureMapPicture::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    handleEvent("frmTextureMapping", "Form_Resize", [&] { m_form->PicMain_Resize(e->oldSize(), e->size()); });
}

} // namespace vexil
