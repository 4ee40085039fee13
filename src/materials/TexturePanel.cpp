// The Texture tab: building the panel, the tree and its images, node clicks, the context menu, and the
// preview of bitmaps and animations. The New, Edit, Update, Delete and apply flows are in
// TexturePanelFlows.cpp.
#include "TexturePanel.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "TextureImages.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frmTextureMapping.h"

#include <QAction>
#include <QButtonGroup>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

constexpr int kPreviewHeight = 150;

} // namespace

TexturePanel::TexturePanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TexturePanel"));
    auto* col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    col->setSpacing(4);

    trwTextures = new QTreeWidget(this);
    trwTextures->setObjectName(QStringLiteral("trwTextures"));
    trwTextures->setHeaderHidden(true);
    trwTextures->setIconSize(QSize(16, 16));
    trwTextures->setContextMenuPolicy(Qt::CustomContextMenu);
    trwTextures->setUniformRowHeights(true);
    col->addWidget(trwTextures, 1);

    picTexture = new QWidget(this);
    picTexture->setObjectName(QStringLiteral("picTexture"));
    picTexture->setMinimumHeight(kPreviewHeight);
    picTexture->setAutoFillBackground(true);
    QPalette pal = picTexture->palette();
    pal.setColor(QPalette::Window, QColor(90, 90, 90));
    picTexture->setPalette(pal);
    imgTexture = new QLabel(picTexture);
    imgTexture->setObjectName(QStringLiteral("imgTexture"));
    imgTexture->setScaledContents(true);
    col->addWidget(picTexture);

    lblTextureDim = new QLabel(this);
    lblTextureDim->setObjectName(QStringLiteral("lblTextureDim"));
    lblTextureDim->setWordWrap(true);
    lblTextureDim->setTextInteractionFlags(Qt::TextSelectableByMouse);
    col->addWidget(lblTextureDim);

    auto* apply = new QHBoxLayout;
    for (int i = 0; i < 2; ++i) {
        auto* b = new QPushButton(this);
        b->setObjectName(QStringLiteral("cmdTextureApplyToSel%1").arg(i));
        b->setEnabled(false);
        connect(b, &QPushButton::clicked, this, [this, i] {
            handleEvent("Form1", "cmdTextureApplyToSel_Click", [&] { cmdTextureApplyToSel_Click(i); });
        });
        cmdTextureApplyToSel[size_t(i)] = b;
        apply->addWidget(b);
    }
    col->addLayout(apply);
    auto* edit = new QHBoxLayout;
    cmdTextureUpdate = new QPushButton(this);
    cmdTextureUpdate->setObjectName(QStringLiteral("cmdTextureUpdate"));
    cmdTextureUpdate->setEnabled(false);
    cmdEditTexture = new QPushButton(this);
    cmdEditTexture->setObjectName(QStringLiteral("cmdEditTexture"));
    edit->addWidget(cmdTextureUpdate);
    edit->addWidget(cmdEditTexture);
    col->addLayout(edit);

    auto* mapping = new QGroupBox(this);
    mapping->setObjectName(QStringLiteral("frmMappingNormal"));
    auto* grid = new QGridLayout(mapping);
    m_normals = new QButtonGroup(this);
    for (int i = 0; i < 4; ++i) {
        auto* o = new QRadioButton(mapping);
        o->setObjectName(QStringLiteral("opnNormal%1").arg(i));
        opnNormal[size_t(i)] = o;
        m_normals->addButton(o, i);
        grid->addWidget(o, i / 2, i % 2);
    }
    opnNormal[2]->setChecked(true);
    cmdPlanarMap = new QPushButton(mapping);
    cmdPlanarMap->setObjectName(QStringLiteral("cmdPlanarMap"));
    grid->addWidget(cmdPlanarMap, 2, 0, 1, 2);
    col->addWidget(mapping);

    tmrAnimPreview = new QTimer(this);
    tmrAnimPreview->setObjectName(QStringLiteral("tmrAnimPreview"));

    connect(trwTextures, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* n, int) {
        handleEvent("Form1", "trwTextures_NodeClick", [&] { trwTextures_NodeClick(n); });
    });
    connect(trwTextures, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* n) { trwTextures_Collapse(n); });
    connect(trwTextures, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* n) { trwTextures_Expand(n); });
    connect(trwTextures, &QWidget::customContextMenuRequested, this, [this](const QPoint& p) {
        handleEvent("Form1", "trwTextures_MouseUp", [&] { trwTextures_MouseUp(p); });
    });
    connect(cmdTextureUpdate, &QPushButton::clicked, this,
            [this] { handleEvent("Form1", "cmdTextureUpdate_Click", [&] { cmdTextureUpdate_Click(); }); });
    connect(cmdEditTexture, &QPushButton::clicked, this,
            [this] { handleEvent("Form1", "cmdEditTexture_Click", [&] { cmdEditTexture_Click(); }); });
    connect(cmdPlanarMap, &QPushButton::clicked, this,
            [this] { handleEvent("Form1", "cmdPlanarMap_Click", [&] { cmdPlanarMap_Click(); }); });
    connect(tmrAnimPreview, &QTimer::timeout, this,
            [this] { handleEvent("Form1", "tmrAnimPreview_Timer", [&] { tmrAnimPreview_Timer(); }); });

    SetMenu(nullptr, nullptr, nullptr, nullptr, nullptr);
    ApplyLanguage();
    trwTextures_Populate();
    materialsUi().textures = this;
}

TexturePanel::~TexturePanel() {
    if (materialsUi().textures == this) materialsUi().textures = nullptr;
    if (m_editor) delete m_editor.data();
}

void TexturePanel::SetMenu(QMenu* menu, QAction* mnuNew, QAction* mnuEdit, QAction* mnuUpdate, QAction* mnuDelete) {
    if (!menu) {
        menu = new QMenu(this);
        menu->setObjectName(QStringLiteral("mnuTexture"));
        mnuNew = menu->addAction(GetLocaleString(309));
        mnuEdit = menu->addAction(GetLocaleString(310));
        mnuUpdate = menu->addAction(GetLocaleString(311));
        mnuDelete = menu->addAction(GetLocaleString(312));
    }
    if (mnuTexture && mnuTexture != menu && mnuTexture->parent() == this) mnuTexture->deleteLater();
    mnuTexture = menu;
    mnuTextureNew = mnuNew;
    mnuTextureEdit = mnuEdit;
    mnuTextureUpdate = mnuUpdate;
    mnuTextureDelete = mnuDelete;
    const auto on = [this](QAction* a, const char* name, void (TexturePanel::*f)()) {
        connect(a, &QAction::triggered, this, [this, name, f] { handleEvent("Form1", name, [&] { (this->*f)(); }); });
    };
    on(mnuTextureNew, "mnuTextureNew_Click", &TexturePanel::mnuTextureNew_Click);
    on(mnuTextureEdit, "mnuTextureEdit_Click", &TexturePanel::mnuTextureEdit_Click);
    on(mnuTextureUpdate, "mnuTextureUpdate_Click", &TexturePanel::mnuTextureUpdate_Click);
    on(mnuTextureDelete, "mnuTextureDelete_Click", &TexturePanel::mnuTextureDelete_Click);
}

void TexturePanel::ApplyLanguage() {
    cmdTextureApplyToSel[0]->setText(GetLocaleString(153));
    cmdTextureApplyToSel[1]->setText(GetLocaleString(154));
    cmdTextureUpdate->setText(GetLocaleString(152));
    cmdEditTexture->setText(GetLocaleString(163));
    if (auto* box = findChild<QGroupBox*>(QStringLiteral("frmMappingNormal"))) box->setTitle(GetLocaleString(164));
    opnNormal[0]->setText(QStringLiteral("X"));
    opnNormal[1]->setText(QStringLiteral("Y"));
    opnNormal[2]->setText(QStringLiteral("Z"));
    opnNormal[3]->setText(GetLocaleString(165));
    cmdPlanarMap->setText(GetLocaleString(166));
    if (m_mapRoot) m_mapRoot->setText(0, GetLocaleString(355));
    if (m_animRoot) m_animRoot->setText(0, GetLocaleString(356));
}

// ---- the tree ------------------------------------------------------------------------------------------------

QString TexturePanel::NodeKey(const QTreeWidgetItem* node) {
    return node ? node->data(0, KeyRole).toString() : QString();
}

QString TexturePanel::NodeImage(const QTreeWidgetItem* node) {
    return node ? node->data(0, ImageRole).toString() : QString();
}

QTreeWidgetItem* TexturePanel::Node(const QString& key) const {
    return m_nodes.value(key, nullptr);
}

QTreeWidgetItem* TexturePanel::SelectedNode() const {
    const QList<QTreeWidgetItem*> s = trwTextures->selectedItems();
    return s.isEmpty() ? nullptr : s.front();
}

void TexturePanel::setImage(QTreeWidgetItem* node, const QString& image) {
    node->setData(0, ImageRole, image);
    node->setIcon(0, TextureImage(image));
}

QTreeWidgetItem* TexturePanel::AddBitmapNode(int bitmap) {
    const QString key = QStringLiteral("Map") + QString::number(bitmap);
    auto* n = new QTreeWidgetItem(m_mapRoot);
    QString name = BitmapName(bitmap);
    // The file's name without its extension: the engine names a bitmap after its file.
    const QString file = QString::fromLocal8Bit(ZELMAR_bitmap_get_file(bitmap));
    if (!file.isEmpty()) name = QFileInfo(file).completeBaseName();
    n->setText(0, name);
    n->setData(0, KeyRole, key);
    // A bitmap whose file has gone from the disk since it was loaded is marked, not hidden.
    const bool gone = !file.isEmpty() && FileBehindBitmap(bitmap).isEmpty();
    setImage(n, gone ? QStringLiteral("Texture Missing") : QStringLiteral("Texture"));
    if (gone) n->setToolTip(0, GetLocaleString(609) + QStringLiteral(" ") + file);
    m_nodes.insert(key, n);
    return n;
}

QTreeWidgetItem* TexturePanel::AddAnimationNode(int animation) {
    const QString key = QStringLiteral("Animation") + QString::number(animation);
    auto* n = new QTreeWidgetItem(m_animRoot);
    n->setText(0, BitmapName(animation));
    n->setData(0, KeyRole, key);
    setImage(n, QStringLiteral("Texture"));
    m_nodes.insert(key, n);
    return n;
}

void TexturePanel::trwTextures_Reset() {
    tmrAnimPreview->stop();
    m_nodes.clear();
    trwTextures->clear();
    m_mapRoot = m_animRoot = nullptr;
    trwTextures_Populate(false);
}

void TexturePanel::trwTextures_Populate() {
    trwTextures_Populate(true);
}

void TexturePanel::trwTextures_Populate(bool withEntities) {
    tmrAnimPreview->stop();
    trwTextures->setUpdatesEnabled(false);
    trwTextures->clear();
    m_nodes.clear();
    m_mapRoot = new QTreeWidgetItem(trwTextures);
    m_mapRoot->setText(0, GetLocaleString(355));
    m_mapRoot->setData(0, KeyRole, QStringLiteral("MAP"));
    setImage(m_mapRoot, QStringLiteral("Folder"));
    m_nodes.insert(QStringLiteral("MAP"), m_mapRoot);
    m_animRoot = new QTreeWidgetItem(trwTextures);
    m_animRoot->setText(0, GetLocaleString(356));
    m_animRoot->setData(0, KeyRole, QStringLiteral("ANIMATION"));
    setImage(m_animRoot, QStringLiteral("Folder"));
    m_nodes.insert(QStringLiteral("ANIMATION"), m_animRoot);

    if (!withEntities) {
        trwTextures->setUpdatesEnabled(true);
        ClearPreview();
        enableButtons(false, false);
        return;
    }
    for (int b = ZELMAR_bitmap_get_first_bitmap(); b; b = ZELMAR_bitmap_get_next(b))
        if (IsListedBitmapName(EntityName(b))) AddBitmapNode(b);
    // Files the world named but that could not be read: listed, marked, never applied.
    for (int i = 0, n = ZELMAR_bitmap_get_number_of_missing(); i < n; ++i) {
        const QString file = QString::fromLocal8Bit(ZELMAR_bitmap_get_missing_file(i));
        auto* node = new QTreeWidgetItem(m_mapRoot);
        node->setText(0, QFileInfo(file).completeBaseName());
        node->setData(0, KeyRole, QStringLiteral("Missing") + QString::number(i));
        node->setToolTip(0, QString::fromLocal8Bit(ZELMAR_bitmap_get_missing_reason(i)));
        setImage(node, QStringLiteral("Texture Missing"));
        m_nodes.insert(NodeKey(node), node);
    }
    for (int a = ZELMAR_animation_get_first_animation(); a; a = ZELMAR_animation_get_next(a)) AddAnimationNode(a);
    trwTextures->setUpdatesEnabled(true);
    ClearPreview();
    enableButtons(false, false);
}

void TexturePanel::trwTextures_Collapse(QTreeWidgetItem* node) {
    if (node && !node->parent()) setImage(node, QStringLiteral("Folder"));
}

void TexturePanel::trwTextures_Expand(QTreeWidgetItem* node) {
    if (node && !node->parent()) setImage(node, QStringLiteral("FolderOpen"));
}

void TexturePanel::enableButtons(bool apply, bool update) {
    cmdTextureApplyToSel[0]->setEnabled(apply);
    cmdTextureApplyToSel[1]->setEnabled(apply);
    cmdTextureUpdate->setEnabled(update);
}

void TexturePanel::trwTextures_NodeClick(QTreeWidgetItem* node) {
    if (!node) return;
    if (!node->parent()) {
        tmrAnimPreview->stop();
        ClearPreview();
        enableButtons(false, false);
        return;
    }
    const QString key = NodeKey(node);
    if (key.startsWith(QLatin1String("Missing"))) {
        tmrAnimPreview->stop();
        ClearPreview();
        lblTextureDim->setText(node->text(0) + QStringLiteral(": ") + node->toolTip(0));
        enableButtons(false, true);
        return;
    }
    if (node->parent() == m_mapRoot) {
        tmrAnimPreview->stop();
        PreviewBitmap(key.mid(3).toInt());
        enableButtons(true, true);
    } else {
        PreviewAnimation(key.mid(9).toInt());
        cmdTextureApplyToSel[0]->setEnabled(true);
        cmdTextureApplyToSel[1]->setEnabled(true);
    }
}

void TexturePanel::trwTextures_MouseUp(const QPoint& pos) {
    QTreeWidgetItem* node = trwTextures->itemAt(pos);
    if (node) {
        trwTextures->setCurrentItem(node);
        trwTextures_NodeClick(node);
    }
    mnuTextureNew->setEnabled(true);
    mnuTextureDelete->setEnabled(false);
    mnuTextureEdit->setEnabled(false);
    mnuTextureUpdate->setEnabled(false);
    if (node && node->parent()) {
        mnuTextureDelete->setEnabled(true);
        mnuTextureNew->setEnabled(false);
        mnuTextureUpdate->setEnabled(node->parent() == m_mapRoot);
        mnuTextureEdit->setEnabled(node->parent() == m_animRoot);
    }
    // Not exec: the menu must not hold up the event that opened it.
    mnuTexture->popup(trwTextures->viewport()->mapToGlobal(pos));
}

// ---- preview ---------------------------------------------------------------------------------------------------

void TexturePanel::ClearPreview() {
    imgTexture->clear();
    imgTexture->hide();
    lblTextureDim->clear();
}

void TexturePanel::placePreview(const QImage& img) {
    const PreviewPlace r = PlacePreview(picTexture->width(), picTexture->height(), img.width(), img.height());
    if (r.width <= 0) return;
    imgTexture->setGeometry(r.x, r.y, r.width, r.height);
    // Scaled once here, so that a large bitmap is never held at full size by the preview.
    imgTexture->setPixmap(QPixmap::fromImage(img.scaled(r.width, r.height, Qt::IgnoreAspectRatio,
                                                        Qt::SmoothTransformation)));
    imgTexture->show();
}

bool TexturePanel::PreviewBitmap(int bitmap) {
    const QString file = FileBehindBitmap(bitmap);
    QTreeWidgetItem* node = Node(QStringLiteral("Map") + QString::number(bitmap));
    if (file.isEmpty()) {
        ClearPreview();
        if (node && ZELMAR_bitmap_get_file(bitmap)[0]) setImage(node, QStringLiteral("Texture Missing"));
        dialogs().msgBox(GetLocaleString(609), MsgOKOnly, MsgInformation);
        return false;
    }
    if (node && NodeImage(node) != QLatin1String("Texture")) {
        setImage(node, QStringLiteral("Texture")); // back on disk
        node->setToolTip(0, QString());
    }
    const QImage img = BitmapView(bitmap);
    placePreview(img);
    lblTextureDim->setText(QStringLiteral("%1 x %2").arg(ZELMAR_bitmap_get_width(bitmap)).arg(ZELMAR_bitmap_get_height(bitmap)));
    lblTextureDim->setToolTip(file);
    lblTextureDim->setText(lblTextureDim->text() + QStringLiteral("\n") + QFileInfo(file).fileName());
    return true;
}

namespace {
// The first view direction that has frames (1..5); 0 when none has.
int firstDirection(int animation) {
    for (int d = 1; d <= 5; ++d)
        if (ZELMAR_animation_get_number_of_frames(animation, d) > 0) return d;
    return 0;
}
int frameInterval(int animation, int direction, int frame) {
    // Frame times are in hundredths of a second; a frame time of 0 still lets the window breathe.
    return std::max(10, ZELMAR_animation_get_frame_time(animation, direction, frame) * 10);
}
} // namespace

void TexturePanel::PreviewAnimation(int animation) {
    tmrAnimPreview->stop();
    m_animation = animation;
    m_animFrame = 0;
    const int d = firstDirection(animation);
    ClearPreview();
    if (!d) return;
    if (const int b = ZELMAR_animation_get_bitmap(animation, d, 0)) {
        placePreview(BitmapView(b));
        lblTextureDim->setText(QStringLiteral("%1 x %2").arg(ZELMAR_bitmap_get_width(b)).arg(ZELMAR_bitmap_get_height(b)));
    }
    tmrAnimPreview->start(frameInterval(animation, d, 0));
}

void TexturePanel::tmrAnimPreview_Timer() {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || !materialsHost().TextureTabShowing() || node->parent() != m_animRoot) {
        tmrAnimPreview->stop();
        return;
    }
    const int d = firstDirection(m_animation);
    const int frames = d ? ZELMAR_animation_get_number_of_frames(m_animation, d) : 0;
    if (frames <= 0) {
        tmrAnimPreview->stop();
        return;
    }
    // The next frame that has a bitmap, wrapping past the last.
    int bitmap = 0;
    for (int tries = 0; tries < frames && !bitmap; ++tries) {
        m_animFrame = (m_animFrame + 1) % frames;
        bitmap = ZELMAR_animation_get_bitmap(m_animation, d, m_animFrame);
    }
    if (bitmap) placePreview(BitmapView(bitmap));
    tmrAnimPreview->setInterval(frameInterval(m_animation, d, m_animFrame));
}

int TexturePanel::MappingOption() const {
    const int id = m_normals->checkedId();
    return id < 0 ? 0 : id;
}

} // namespace vexil
