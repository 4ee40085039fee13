#include "formTrnsClrPcr.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "PolygonSurfacePanel.h"
#include "SurfaceCommands.h"
#include "TextureImages.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "selection/SelectionState.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <zelmar/zelmar.h>

namespace vexil {

// The bitmap, fitted into at most 384 x 384 pixels (small bitmaps enlarged by whole steps, so that a
// pixel is easy to hit); a click hands the bitmap pixel under the cursor to the dialog.
class TransparentColourPicture : public QWidget {
  public:
    TransparentColourPicture(int bitmap, formTrnsClrPcr* owner) : QWidget(owner), m_owner(owner) {
        setObjectName(QStringLiteral("picBitmap"));
        const QImage view = BitmapView(bitmap);
        if (!view.isNull()) {
            const int w = view.width(), h = view.height();
            double k = std::min(384.0 / w, 384.0 / h);
            if (k >= 1) k = std::floor(k);
            m_size = QSize(std::max(1, int(w * k)), std::max(1, int(h * k)));
            m_image = view.scaled(m_size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
            m_bitmapSize = QSize(w, h);
        }
        setFixedSize(m_size.isEmpty() ? QSize(64, 64) : m_size);
        setCursor(Qt::CrossCursor);
    }
    // The bitmap pixel under a position of the widget.
    QPoint BitmapPixel(QPoint p) const {
        if (m_size.isEmpty()) return {-1, -1};
        return {std::clamp(p.x() * m_bitmapSize.width() / m_size.width(), 0, m_bitmapSize.width() - 1),
                std::clamp(p.y() * m_bitmapSize.height() / m_size.height(), 0, m_bitmapSize.height() - 1)};
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        if (m_image.isNull()) p.fillRect(rect(), Qt::gray);
        else p.drawImage(0, 0, m_image);
    }
    void mousePressEvent(QMouseEvent* e) override {
        const QPoint px = BitmapPixel(e->position().toPoint());
        handleEvent("formTrnsClrPcr", "picBitmap_MouseDown", [&] { m_owner->PickPixel(px.x(), px.y()); });
    }

  private:
    formTrnsClrPcr* m_owner;
    QImage m_image;
    QSize m_size, m_bitmapSize;
};

formTrnsClrPcr::formTrnsClrPcr(int mode, int bitmap, QWidget* parent)
    : QDialog(parent), m_mode(mode), m_bitmap(bitmap), m_colour(kButtonFace) {
    setObjectName(QStringLiteral("formTrnsClrPcr"));
    setWindowTitle(GetLocaleString(520));
    auto* col = new QVBoxLayout(this);
    picture = new TransparentColourPicture(bitmap, this);
    col->addWidget(picture, 0, Qt::AlignCenter);
    lblCLR = new QLabel(this);
    lblCLR->setObjectName(QStringLiteral("lblCLR"));
    lblCLR->setMinimumSize(48, 20);
    lblCLR->setAutoFillBackground(true);
    lblCLR->setFrameShape(QFrame::Box);
    col->addWidget(lblCLR);
    Check1 = new QCheckBox(GetLocaleString(521), this);
    Check1->setObjectName(QStringLiteral("Check1"));
    Check1->setVisible(mode == 0);
    col->addWidget(Check1);
    auto* row = new QHBoxLayout;
    cmdOk = new QPushButton(GetLocaleString(424), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(GetLocaleString(425), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    row->addStretch(1);
    row->addWidget(cmdOk);
    row->addWidget(cmdCancel);
    col->addLayout(row);
    // A bitmap that already has a transparent colour starts with it.
    const int index = ZELMAR_bitmap_get_transparent_index(bitmap);
    if (index != -1) {
        m_colour = ColourForTransparentIndex(bitmap, index);
        int r = 0, g = 0, b = 0;
        SplitColour(m_colour, r, g, b);
        lblCLR->setStyleSheet(QStringLiteral("background-color: %1;").arg(QColor(r, g, b).name()));
    }
    connect(cmdOk, &QPushButton::clicked, this, [this] { handleEvent("formTrnsClrPcr", "cmdOk_Click", [&] { cmdOk_Click(); }); });
    connect(cmdCancel, &QPushButton::clicked, this,
            [this] { handleEvent("formTrnsClrPcr", "cmdCancel_Click", [&] { cmdCancel_Click(); }); });
}

void formTrnsClrPcr::PickPixel(int x, int y) {
    const unsigned char* px = ZELMAR_bitmap_get_memory(m_bitmap);
    const int w = ZELMAR_bitmap_get_width(m_bitmap), h = ZELMAR_bitmap_get_height(m_bitmap);
    if (!px || x < 0 || y < 0 || x >= w || y >= h) return;
    const unsigned char* c = px + (std::size_t(y) * std::size_t(w) + std::size_t(x)) * 4;
    m_colour = ColourValue(c[0], c[1], c[2]);
    lblCLR->setStyleSheet(QStringLiteral("background-color: %1;").arg(QColor(c[0], c[1], c[2]).name()));
}

void formTrnsClrPcr::SetTransColor() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || s.SelPols.Count() == 0) return;
    const int polygon = s.SelPols.At(1);
    if (!ChangeTransparentColour(polygon, s.CurrSelEntity, m_colour, Check1->isChecked())) return;
    if (PolygonSurfacePanel* panel = materialsUi().panel) {
        const int bitmap = ZELMAR_polygon_get_bitmap_handle(polygon);
        panel->ShowTransparentColour(bitmap, ZELMAR_bitmap_get_transparent_index(bitmap));
    }
}

void formTrnsClrPcr::cmdOk_Click() {
    if (m_mode == 0) SetTransColor();
    accept();
}

void formTrnsClrPcr::cmdCancel_Click() {
    reject();
}

} // namespace vexil
