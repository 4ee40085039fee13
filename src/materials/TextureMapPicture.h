// PicMain of the texture map editor: shows the form's back buffer and hands the mouse to the form.
#pragma once
#include <QWidget>

namespace vexil {

class frmTextureMapping;

class TextureMapPicture : public QWidget {
  public:
    explicit TextureMapPicture(frmTextureMapping* form);

  protected:
    void paintEvent(QPaintEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

  private:
    frmTextureMapping* m_form;
};

} // namespace vexil
