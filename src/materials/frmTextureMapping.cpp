// The texture map editor: the window, its toolbars and keys, the bitmap list, zoom and pans.
#include "frmTextureMapping.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "TextureMapPicture.h"
#include "frame/ErrLog.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "selection/ActionSubSelect.h"
#include "selection/SelectionState.h"
#include "view/ViewCursors.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QKeyEvent>
#include <QToolBar>
#include <QVBoxLayout>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

// 32-bit integers of the design take a double rounded half to even.
int toLong(double v) {
    if (!std::isfinite(v)) return 0;
    return int(std::clamp(std::nearbyint(v), -2147483648.0, 2147483647.0));
}

const char* const kToolKeys[] = {"select", "move", "rotate", "scale", "pan", "", "zoom"};
const char* const kCursorKeys[] = {"Select", "Move", "Rotate", "Scale", "Pan", "", "Zoom"};

// The selection coordinates of the undo actions of kind 26: pairs (point, polygon) one after the other.
std::vector<PointOfPolygon> decodePairs(const std::vector<int>& items, int count) {
    std::vector<PointOfPolygon> out;
    for (int i = 1; i + 1 <= count && i + 1 < int(items.size()); i += 2) out.push_back({items[size_t(i)], items[size_t(i) + 1]});
    return out;
}

} // namespace

frmTextureMapping::frmTextureMapping(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("frmTextureMapping"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(GetLocaleString(547));
    resize(640, 560);
    auto* col = new QVBoxLayout(this);
    col->setContentsMargins(2, 2, 2, 2);
    col->setSpacing(2);
    buildToolbars();
    col->addWidget(tbrTextureMapping);
    cmbTextures = new QComboBox(this);
    cmbTextures->setObjectName(QStringLiteral("cmbTextures"));
    col->addWidget(cmbTextures);
    PicMain = new TextureMapPicture(this);
    col->addWidget(PicMain, 1);
    col->addWidget(tbrBottom);
    connect(cmbTextures, &QComboBox::activated, this,
            [this] { handleEvent("frmTextureMapping", "cmbTextures_Click", [&] { cmbTextures_Click(); }); });

    // Loading: the tool, the selections, zoom and pans start afresh.
    ToolMode = ToolSelect;
    SetToolMode(ToolSelect);
    SetMousePtr(QStringLiteral("Select"));
    ResetSelections();
    Zoom = 1.0;
    PanX = PanY = 0;
    PanX1 = PanY1 = 0;
    materialsUi().editor = this;
    ActionSelectCoords::Apply() = [](const std::vector<int>& items, int count) {
        if (frmTextureMapping* f = materialsUi().editor) {
            f->SetSelPts_And_OwnerPols(decodePairs(items, count));
            f->SetSelPtsPartOfSelPols();
            f->PicMain_Paint();
        }
    };
    cmbTextures_Populate();
    SetMapProps();
    SetInitialZoom();
    CenterImgInPicBox();
}

frmTextureMapping::~frmTextureMapping() {
    if (materialsUi().editor == this) {
        materialsUi().editor = nullptr;
        ActionSelectCoords::Apply() = nullptr;
    }
}

void frmTextureMapping::buildToolbars() {
    tbrTextureMapping = new QToolBar(this);
    tbrTextureMapping->setObjectName(QStringLiteral("tbrTextureMapping"));
    auto* tools = new QActionGroup(this);
    tools->setExclusive(true);
    const int tips[] = {103, 104, 105, 106, 107, 0, 598};
    for (int t : {0, 1, 2, 3, 4, 6}) {
        QAction* a = tbrTextureMapping->addAction(ToolIcon(QString::fromLatin1(kCursorKeys[t])),
                                                  GetLocaleString(tips[t]));
        a->setObjectName(QString::fromLatin1(kToolKeys[t]));
        a->setCheckable(true);
        tools->addAction(a);
        connect(a, &QAction::triggered, this, [this, t] {
            handleEvent("frmTextureMapping", "tbrTextureMapping_ButtonClick", [&] {
                SetToolMode(t);
                SetMousePtr(t == ToolMove || t == ToolRotate || t == ToolScale ? QStringLiteral("Pointer")
                                                                               : QString::fromLatin1(kCursorKeys[t]));
            });
        });
    }
    tbrTextureMapping->addSeparator();
    QAction* texture = tbrTextureMapping->addAction(GetLocaleString(550));
    texture->setObjectName(QStringLiteral("texture on/off"));
    texture->setCheckable(true);
    texture->setChecked(true);
    connect(texture, &QAction::triggered, this, [this] {
        invalidateBackground();
        PicMain_Paint();
    });
    QAction* extent = tbrTextureMapping->addAction(GetLocaleString(118));
    extent->setObjectName(QStringLiteral("zoom extent"));
    connect(extent, &QAction::triggered, this,
            [this] { handleEvent("frmTextureMapping", "ZoomExtent", [&] { ZoomExtent(); }); });

    tbrBottom = new QToolBar(this);
    tbrBottom->setObjectName(QStringLiteral("tbrBottom"));
    tbrBottom->addSeparator(); // "Selected Only" is the bar's button number 2
    QAction* only = tbrBottom->addAction(GetLocaleString(548));
    only->setObjectName(QStringLiteral("Selected Only"));
    only->setCheckable(true);
    connect(only, &QAction::triggered, this, [this] { SetupWithNewZoom(); });
    QAction* mirror = tbrBottom->addAction(GetLocaleString(114));
    mirror->setObjectName(QStringLiteral("Mirror"));
    mirror->setToolTip(GetLocaleString(549));
    connect(mirror, &QAction::triggered, this, [this] { handleEvent("frmTextureMapping", "Mirror", [&] { Mirror(); }); });
}

QAction* frmTextureMapping::Button(const QString& key) const {
    for (QToolBar* bar : {tbrTextureMapping, tbrBottom})
        for (QAction* a : bar->actions())
            if (a->objectName() == key) return a;
    return nullptr;
}

bool frmTextureMapping::SelectedOnly() const {
    const QAction* a = Button(QStringLiteral("Selected Only"));
    return a && a->isChecked();
}

bool frmTextureMapping::TextureOn() const {
    const QAction* a = Button(QStringLiteral("texture on/off"));
    return !a || a->isChecked();
}

void frmTextureMapping::SetToolMode(int tool) {
    ToolMode = tool;
    for (int t : {0, 1, 2, 3, 4, 6})
        if (QAction* a = Button(QString::fromLatin1(kToolKeys[t]))) a->setChecked(t == tool);
}

void frmTextureMapping::SetMousePtr(const QString& name) {
    PicMain->setCursor(ViewCursor(name));
    PicMain->setProperty("pointer", name);
}

// ---- the bitmap ------------------------------------------------------------------------------------------

void frmTextureMapping::syncGroup() {
    // Another group became current, or the bitmap shown has gone (deleted, updated): the list follows.
    const bool groupChanged = Sel().CurrSelEntityType != 1 || Sel().CurrSelEntity != m_group;
    if (groupChanged || (m_bitmap && !ZELMAR_bitmap_is_bitmap(m_bitmap))) BitmapsChanged();
}

void frmTextureMapping::cmbTextures_Populate() {
    cmbTextures->clear();
    m_bitmap = 0;
    const SelectionState& s = Sel();
    m_group = s.CurrSelEntityType == 1 ? s.CurrSelEntity : 0;
    if (!m_group || !ZELMAR_group_is_group(m_group)) {
        m_group = 0;
        cmbTextures->setPlaceholderText(tr("The current entity is no group."));
        return;
    }
    for (int b = ZELMAR_bitmap_get_first_bitmap(); b; b = ZELMAR_bitmap_get_next(b))
        if (ZELMAR_group_is_bitmap_used(m_group, b) == 1) cmbTextures->addItem(BitmapName(b), b);
    if (cmbTextures->count() == 0) {
        cmbTextures->setPlaceholderText(tr("No polygon of this group has a bitmap."));
        return;
    }
    cmbTextures->setCurrentIndex(0);
    if (const int p = s.SelPols.At(1)) {
        const int i = cmbTextures->findData(ZELMAR_polygon_get_bitmap_handle(p));
        if (i >= 0) cmbTextures->setCurrentIndex(i);
    }
    m_bitmap = cmbTextures->currentData().toInt();
}

void frmTextureMapping::cmbTextures_Click() {
    m_bitmap = cmbTextures->currentData().toInt();
    SetMapProps();
    SetInitialZoom();
    CenterImgInPicBox();
    invalidateBackground();
    SetupWithNewZoom();
}

void frmTextureMapping::BitmapsChanged() {
    const int before = m_bitmap;
    cmbTextures_Populate();
    if (m_bitmap != before) ResetSelections();
    SetMapProps();
    SetInitialZoom();
    invalidateBackground();
    SetupWithNewZoom();
}

void frmTextureMapping::SetMapProps() {
    if (m_bitmap && ZELMAR_bitmap_is_bitmap(m_bitmap)) {
        MapWidth = ZELMAR_bitmap_get_width(m_bitmap);
        MapHeight = ZELMAR_bitmap_get_height(m_bitmap);
    } else {
        MapWidth = MapHeight = 256; // no bitmap: a square of the default size
    }
    MapAspect = double(MapWidth) / double(MapHeight);
}

void frmTextureMapping::SetInitialZoom() {
    const int boxW = std::max(1, PicMain->width()), boxH = std::max(1, PicMain->height());
    double w, h;
    if (double(boxW) / boxH > MapAspect) {
        h = boxH;
        w = h * MapAspect;
    } else {
        w = boxW;
        h = w / MapAspect;
    }
    ImgWidth = toLong(w);
    ImgHeight = toLong(h);
    InitialZoom = w / MapWidth;
}

void frmTextureMapping::CenterImgInPicBox() {
    ImgLeft = PicMain->width() / 2 - ImgWidth / 2;
    ImgTop = PicMain->height() / 2 - ImgHeight / 2;
}

void frmTextureMapping::SetupWithNewZoom() {
    ImgWidth = toLong(InitialZoom * Zoom * MapWidth);
    ImgHeight = toLong(InitialZoom * Zoom * MapHeight);
    CenterImgInPicBox();
    invalidateBackground();
    PicMain_Paint();
}

void frmTextureMapping::PicMain_Zoom(float y) {
    Zoom += (y - LastY) * 0.006 * Zoom;
    if (Zoom * InitialZoom < 0.01) Zoom = 0.01 / InitialZoom;
    LastY = y;
    PanX = toLong(PanX1 * Zoom);
    PanY = toLong(PanY1 * Zoom);
    SetupWithNewZoom();
}

void frmTextureMapping::PicMain_Pan(float x, float y) {
    PanX1 += (x - LastX) / Zoom;
    PanY1 += (y - LastY) / Zoom;
    LastX = x;
    LastY = y;
    PanX = toLong(PanX1 * Zoom);
    PanY = toLong(PanY1 * Zoom);
    SetupWithNewZoom();
}

QPointF frmTextureMapping::ScreenOf(double u, double v) const {
    return {ImgLeft + PanX + ImgWidth * u, ImgTop + PanY + ImgHeight * v};
}

void frmTextureMapping::UvOf(double x, double y, double& u, double& v) const {
    u = ImgWidth ? (x - ImgLeft - PanX) / ImgWidth : 0;
    v = ImgHeight ? (y - ImgTop - PanY) / ImgHeight : 0;
}

void frmTextureMapping::Redraw() {
    syncGroup();
    PicMain_Paint();
}

// ---- window events -------------------------------------------------------------------------------------

void frmTextureMapping::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
}

void frmTextureMapping::PicMain_Resize(QSize old, QSize now) {
    if (old.width() > 0 && old.height() > 0) {
        PanX1 = PanX1 * now.width() / old.width();
        PanY1 = PanY1 * now.height() / old.height();
    }
    SetInitialZoom();
    PanX = toLong(PanX1 * Zoom);
    PanY = toLong(PanY1 * Zoom);
    SetupWithNewZoom();
}

void frmTextureMapping::showEvent(QShowEvent* e) {
    QWidget::showEvent(e);
    SetInitialZoom();
    SetupWithNewZoom();
}

void frmTextureMapping::closeEvent(QCloseEvent* e) {
    if (materialsUi().editor == this) {
        materialsUi().editor = nullptr;
        ActionSelectCoords::Apply() = nullptr;
    }
    m_buffer = QImage();
    m_background = QImage();
    e->accept();
}

void frmTextureMapping::keyPressEvent(QKeyEvent* e) {
    handleEvent("frmTextureMapping", "Form_KeyDown",
                [&] { Form_KeyDown(e->key(), e->modifiers(), e->isAutoRepeat()); });
}

void frmTextureMapping::Form_KeyDown(int key, Qt::KeyboardModifiers m, bool autoRepeat) {
    const bool ctrl = m & Qt::ControlModifier, shift = m & Qt::ShiftModifier;
    if (ctrl && shift && key == Qt::Key_Z) {
        if (!autoRepeat) ZoomExtent();
    } else if (ctrl && key == Qt::Key_Z) {
        if (!autoRepeat) materialsHost().MainUndo();
    } else if (ctrl && key == Qt::Key_A) {
        if (!autoRepeat) materialsHost().MainRedo();
    } else if (shift && (key == Qt::Key_1 || key == Qt::Key_Exclam)) {
        SetToolMode(ToolMove);
        SetMousePtr(QStringLiteral("Pointer"));
    } else if (shift && (key == Qt::Key_2 || key == Qt::Key_At || key == Qt::Key_QuoteDbl)) {
        SetToolMode(ToolRotate);
        SetMousePtr(QStringLiteral("Pointer"));
    } else if (shift && (key == Qt::Key_3 || key == Qt::Key_NumberSign || key == Qt::Key_section)) {
        SetToolMode(ToolScale);
        SetMousePtr(QStringLiteral("Pointer"));
    } else if (shift && key == Qt::Key_Z) {
        if (!autoRepeat) ZoomExtent();
    } else if (!ctrl && !shift && key == Qt::Key_Z) {
        SetToolMode(ToolZoom);
        SetMousePtr(QStringLiteral("Zoom"));
    } else if (!ctrl && !shift && key == Qt::Key_P) {
        SetToolMode(ToolPan);
        SetMousePtr(QStringLiteral("Pan"));
    } else if (!ctrl && !shift && key == Qt::Key_S) {
        SetToolMode(ToolSelect);
        SetMousePtr(QStringLiteral("Select"));
    }
}

} // namespace vexil
