#include "formAnimation.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "TextureImages.h"
#include "TexturePanel.h"
#include "engine/EntityNaming.h"
#include "formTrnsClrPcr.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"

#include <QApplication>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

// Fields of a frame's tag: private to the form, a character no file name holds between them.
const QChar kSep(0x1F);

const char* const kDirectionKeys[5] = {"FRONT", "FRONT SIDED", "SIDE", "BACK SIDED", "BACK"};

// A frame time typed: a whole number of hundredths of a second, at least 1.
bool frameTime(const QString& text, int& out) {
    bool ok = false;
    const int t = text.trimmed().toInt(&ok);
    if (!ok || t < 1) return false;
    out = t;
    return true;
}

} // namespace

formAnimation::formAnimation(int mode, int animation, QWidget* parent)
    : QDialog(parent), m_mode(mode), m_animation(animation) {
    setObjectName(QStringLiteral("formAnimation"));
    setWindowTitle(GetLocaleString(426));
    setAcceptDrops(true);
    auto* col = new QVBoxLayout(this);
    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(new QLabel(GetLocaleString(427), this));
    txtAnimName = new QLineEdit(this);
    txtAnimName->setObjectName(QStringLiteral("txtAnimName"));
    nameRow->addWidget(txtAnimName, 1);
    col->addLayout(nameRow);

    auto* middle = new QHBoxLayout;
    trwAnim = new QTreeWidget(this);
    trwAnim->setObjectName(QStringLiteral("trwAnim"));
    trwAnim->setHeaderHidden(true);
    trwAnim->setAcceptDrops(true);
    trwAnim->viewport()->setAcceptDrops(true);
    trwAnim->viewport()->installEventFilter(this);
    middle->addWidget(trwAnim, 1);
    auto* right = new QVBoxLayout;
    picPreview = new QLabel(this);
    picPreview->setObjectName(QStringLiteral("picPreview"));
    picPreview->setFixedSize(160, 160);
    picPreview->setAlignment(Qt::AlignCenter);
    picPreview->setFrameShape(QFrame::Box);
    right->addWidget(picPreview);
    lblNote = new QLabel(GetLocaleString(428), this);
    lblNote->setWordWrap(true);
    lblNote->setMaximumWidth(160);
    right->addWidget(lblNote);
    right->addStretch(1);
    middle->addLayout(right);
    col->addLayout(middle, 1);

    auto* grid = new QGridLayout;
    auto* timeLabel = new QLabel(GetLocaleString(433), this);
    timeLabel->setToolTip(GetLocaleString(432));
    txtFrmTime = new QLineEdit(this);
    txtFrmTime->setObjectName(QStringLiteral("txtFrmTime"));
    txtFrmTime->setToolTip(GetLocaleString(432));
    cmdApplyFrmTimeAll = new QPushButton(GetLocaleString(430), this);
    cmdApplyFrmTimeAll->setObjectName(QStringLiteral("cmdApplyFrmTimeAll"));
    chkTransparent = new QCheckBox(GetLocaleString(431), this);
    chkTransparent->setObjectName(QStringLiteral("chkTransparent"));
    cmdColor = new QPushButton(GetLocaleString(439), this);
    cmdColor->setObjectName(QStringLiteral("cmdColor"));
    cmdApplyTransClrToAll = new QPushButton(GetLocaleString(430), this);
    cmdApplyTransClrToAll->setObjectName(QStringLiteral("cmdApplyTransClrToAll"));
    grid->addWidget(timeLabel, 0, 0);
    grid->addWidget(txtFrmTime, 0, 1);
    grid->addWidget(cmdApplyFrmTimeAll, 0, 2);
    grid->addWidget(chkTransparent, 1, 0);
    grid->addWidget(cmdColor, 1, 1);
    grid->addWidget(cmdApplyTransClrToAll, 1, 2);
    col->addLayout(grid);

    auto* buttons = new QHBoxLayout;
    cmdInsert = new QPushButton(GetLocaleString(429), this);
    cmdInsert->setObjectName(QStringLiteral("cmdInsert"));
    cmdRemove = new QPushButton(GetLocaleString(434), this);
    cmdRemove->setObjectName(QStringLiteral("cmdRemove"));
    cmdOk = new QPushButton(GetLocaleString(424), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(GetLocaleString(425), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addWidget(cmdInsert);
    buttons->addWidget(cmdRemove);
    buttons->addStretch(1);
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    col->addLayout(buttons);

    const auto on = [this](QPushButton* b, const char* name, void (formAnimation::*f)()) {
        connect(b, &QPushButton::clicked, this, [this, name, f] { handleEvent("formAnimation", name, [&] { (this->*f)(); }); });
    };
    on(cmdInsert, "cmdInsert_Click", &formAnimation::cmdInsert_Click);
    on(cmdRemove, "cmdRemove_Click", &formAnimation::cmdRemove_Click);
    on(cmdApplyFrmTimeAll, "cmdApplyFrmTimeAll_Click", &formAnimation::cmdApplyFrmTimeAll_Click);
    on(cmdApplyTransClrToAll, "cmdApplyTransClrToAll_Click", &formAnimation::cmdApplyTransClrToAll_Click);
    on(cmdColor, "cmdColor_Click", &formAnimation::cmdColor_Click);
    on(cmdOk, "cmdOk_Click", &formAnimation::cmdOk_Click);
    on(cmdCancel, "cmdCancel_Click", &formAnimation::cmdCancel_Click);
    connect(chkTransparent, &QCheckBox::clicked, this,
            [this] { handleEvent("formAnimation", "chkTransparent_Click", [&] { chkTransparent_Click(); }); });
    connect(txtFrmTime, &QLineEdit::editingFinished, this,
            [this] { handleEvent("formAnimation", "txtFrmTime_Validate", [&] { txtFrmTime_Validate(); }); });
    connect(trwAnim, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* n, int) {
        handleEvent("formAnimation", "trwAnim_NodeClick", [&] { trwAnim_NodeClick(n); });
    });

    // Opening: the five directions, then the name and the frames.
    for (int d = 0; d < 5; ++d) {
        auto* root = new QTreeWidgetItem(trwAnim);
        root->setText(0, GetLocaleString(560 + d));
        root->setData(0, KeyRole, QString::fromLatin1(kDirectionKeys[d]));
        root->setIcon(0, TextureImage(QStringLiteral("FolderOpen")));
        DirectionRoots[size_t(d)] = root;
    }
    if (m_mode == 0) {
        txtAnimName->setText(GetNewAnimName());
    } else {
        txtAnimName->setText(QString::fromLocal8Bit(EntityName(m_animation).c_str()));
        LoadAnimData();
    }
    trwAnim->expandAll();
    trwAnim->setCurrentItem(DirectionRoots[0]);
    trwAnim_NodeClick(DirectionRoots[0]);
}

// ---- tags --------------------------------------------------------------------------------------------------

QString formAnimation::PackTag(const QString& mapName, int time, long colour) {
    return mapName + kSep + QString::number(time) + kSep + QString::number(colour);
}

QString formAnimation::ExtractFrmMapName(const QString& tag) {
    return tag.section(kSep, 0, 0);
}

int formAnimation::ExtractTime(const QString& tag) {
    return tag.section(kSep, 1, 1).toInt();
}

long formAnimation::ExtractTrnsIndxClr(const QString& tag) {
    bool ok = false;
    const long c = tag.section(kSep, 2, 2).toLong(&ok);
    return ok ? c : kButtonFace;
}

void formAnimation::SetFrmMapName(QTreeWidgetItem* frame, const QString& name) {
    const QString tag = frame->data(0, TagRole).toString();
    frame->setData(0, TagRole, PackTag(name, ExtractTime(tag), ExtractTrnsIndxClr(tag)));
}

void formAnimation::SetFrmTime(QTreeWidgetItem* frame, int time) {
    const QString tag = frame->data(0, TagRole).toString();
    frame->setData(0, TagRole, PackTag(ExtractFrmMapName(tag), time, ExtractTrnsIndxClr(tag)));
}

void formAnimation::SetFrmTrnsIndxClr(QTreeWidgetItem* frame, long colour) {
    const QString tag = frame->data(0, TagRole).toString();
    frame->setData(0, TagRole, PackTag(ExtractFrmMapName(tag), ExtractTime(tag), colour));
}

// ---- frames ------------------------------------------------------------------------------------------------

QTreeWidgetItem* formAnimation::addFrame(QTreeWidgetItem* root, int position, const QString& path, int time,
                                         long colour) {
    auto* frame = new QTreeWidgetItem;
    frame->setText(0, QFileInfo(path).fileName());
    frame->setData(0, KeyRole, QStringLiteral("Map") + QString::number(m_nextKey++));
    frame->setData(0, TagRole, PackTag(path, time, colour));
    frame->setIcon(0, TextureImage(QStringLiteral("Texture")));
    if (position < 0 || position > root->childCount()) position = root->childCount();
    root->insertChild(position, frame);
    return frame;
}

void formAnimation::LoadAnimData() {
    for (int d = 1; d <= 5; ++d) {
        QTreeWidgetItem* root = DirectionRoots[size_t(d - 1)];
        for (int f = 0, n = ZELMAR_animation_get_number_of_frames(m_animation, d); f < n; ++f) {
            const int bitmap = ZELMAR_animation_get_bitmap(m_animation, d, f);
            const int time = ZELMAR_animation_get_frame_time(m_animation, d, f);
            const int index = ZELMAR_animation_get_frame_transparent_index(m_animation, d, f);
            QString path = FileBehindBitmap(bitmap);
            if (path.isEmpty()) path = BitmapName(bitmap); // the file has gone: Ok will say so
            QTreeWidgetItem* frame = addFrame(root, -1, path, time, ColourForTransparentIndex(bitmap, index));
            frame->setData(0, KeyRole, QStringLiteral("Map") + QString::number(bitmap) + QStringLiteral("_") +
                                           QString::number(m_nextKey++));
        }
    }
}

QTreeWidgetItem* formAnimation::SelectedFrame() const {
    QTreeWidgetItem* n = trwAnim->currentItem();
    return n && n->parent() ? n : nullptr;
}

bool formAnimation::InsertMap(const QString& path) {
    if (path.isEmpty()) return false;
    if (!ZELMAR_bitmap_load(path.toLocal8Bit().constData(), -1)) {
        dialogs().msgBox(GetLocaleString(565), MsgOKOnly, MsgExclamation);
        return false;
    }
    QTreeWidgetItem* n = trwAnim->currentItem();
    if (!n) n = DirectionRoots[0];
    QTreeWidgetItem* root = n->parent() ? n->parent() : n;
    const int position = n->parent() ? root->indexOfChild(n) + 1 : -1;
    QTreeWidgetItem* frame = addFrame(root, position, path, kDefaultFrameTime, kButtonFace);
    root->setExpanded(true);
    trwAnim->setCurrentItem(frame);
    trwAnim_NodeClick(frame);
    return true;
}

void formAnimation::cmdInsert_Click() {
    InsertMap(GetOpenedBitmapFile(true));
}

void formAnimation::cmdRemove_Click() {
    if (QTreeWidgetItem* frame = SelectedFrame()) {
        delete frame;
        trwAnim_NodeClick(trwAnim->currentItem());
    }
}

void formAnimation::SetAllChildNodesFrmTime(QTreeWidgetItem* root, int time) {
    for (int i = 0; i < root->childCount(); ++i) SetFrmTime(root->child(i), time);
}

void formAnimation::SetAllChildNodesTransClr(QTreeWidgetItem* root, long colour) {
    for (int i = 0; i < root->childCount(); ++i) SetFrmTrnsIndxClr(root->child(i), colour);
}

void formAnimation::cmdApplyFrmTimeAll_Click() {
    QTreeWidgetItem* frame = SelectedFrame();
    if (!frame) return;
    const int time = ExtractTime(frame->data(0, TagRole).toString());
    for (QTreeWidgetItem* root : DirectionRoots) SetAllChildNodesFrmTime(root, time);
}

void formAnimation::cmdApplyTransClrToAll_Click() {
    QTreeWidgetItem* frame = SelectedFrame();
    if (!frame) return;
    const long colour = ExtractTrnsIndxClr(frame->data(0, TagRole).toString());
    for (QTreeWidgetItem* root : DirectionRoots) SetAllChildNodesTransClr(root, colour);
}

void formAnimation::txtFrmTime_Validate() {
    QTreeWidgetItem* frame = SelectedFrame();
    if (!frame) return;
    int time = 0;
    if (!frameTime(txtFrmTime->text(), time)) {
        dialogs().msgBox(GetLocaleString(579) + GetLocaleString(433), MsgOKOnly, MsgExclamation);
        txtFrmTime->setText(QString::number(ExtractTime(frame->data(0, TagRole).toString())));
        return;
    }
    SetFrmTime(frame, time);
}

void formAnimation::paintColourButton(long colour) {
    if (colour == kButtonFace) {
        cmdColor->setStyleSheet(QString());
        return;
    }
    int r = 0, g = 0, b = 0;
    SplitColour(colour, r, g, b);
    cmdColor->setStyleSheet(QStringLiteral("background-color: %1;").arg(QColor(r, g, b).name()));
}

void formAnimation::cmdColor_Click() {
    QTreeWidgetItem* frame = SelectedFrame();
    if (!frame) return;
    const int bitmap = ZELMAR_bitmap_load(ExtractFrmMapName(frame->data(0, TagRole).toString()).toLocal8Bit().constData(), -1);
    if (!bitmap) {
        dialogs().msgBox(GetLocaleString(574), MsgOKOnly, MsgExclamation);
        return;
    }
    formTrnsClrPcr picker(1, bitmap, this);
    if (dialogs().exec(picker) != QDialog::Accepted) return;
    const long colour = picker.ChosenColour();
    paintColourButton(colour);
    SetFrmTrnsIndxClr(frame, colour);
    chkTransparent->setChecked(colour != kButtonFace);
}

void formAnimation::chkTransparent_Click() {
    QTreeWidgetItem* frame = SelectedFrame();
    cmdColor->setEnabled(chkTransparent->isChecked() && frame);
    if (!chkTransparent->isChecked() && frame) {
        SetFrmTrnsIndxClr(frame, kButtonFace);
        paintColourButton(kButtonFace);
    }
}

void formAnimation::TrnsFrmEnable(bool enabled) {
    chkTransparent->setEnabled(enabled);
    cmdColor->setEnabled(enabled && chkTransparent->isChecked());
    cmdApplyTransClrToAll->setEnabled(enabled);
}

void formAnimation::TimeFrmEnable(bool enabled) {
    txtFrmTime->setEnabled(enabled);
    cmdApplyFrmTimeAll->setEnabled(enabled);
}

void formAnimation::showFrame(QTreeWidgetItem* frame) {
    picPreview->clear();
    if (!frame) return;
    const int bitmap = ZELMAR_bitmap_get_handle(ExtractFrmMapName(frame->data(0, TagRole).toString()).toLocal8Bit().constData());
    const QImage view = BitmapView(bitmap);
    if (!view.isNull())
        picPreview->setPixmap(QPixmap::fromImage(
            view.scaled(picPreview->size() - QSize(4, 4), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

void formAnimation::trwAnim_NodeClick(QTreeWidgetItem* node) {
    QTreeWidgetItem* frame = node && node->parent() ? node : nullptr;
    TimeFrmEnable(frame != nullptr);
    TrnsFrmEnable(frame != nullptr);
    cmdRemove->setEnabled(frame != nullptr);
    if (!frame) {
        txtFrmTime->clear();
        chkTransparent->setChecked(false);
        paintColourButton(kButtonFace);
        showFrame(nullptr);
        return;
    }
    const QString tag = frame->data(0, TagRole).toString();
    txtFrmTime->setText(QString::number(ExtractTime(tag)));
    const long colour = ExtractTrnsIndxClr(tag);
    chkTransparent->setChecked(colour != kButtonFace);
    cmdColor->setEnabled(colour != kButtonFace);
    paintColourButton(colour);
    showFrame(frame);
}

QString formAnimation::GetNewAnimName() {
    for (int i = 1;; ++i) {
        const std::string name = "Animation" + PadCounter(i);
        if (!ZELMAR_animation_get_handle(name.c_str())) return QString::fromStdString(name);
    }
}

// ---- Ok, Cancel --------------------------------------------------------------------------------------------

void formAnimation::cmdOk_Click() {
    if (SelectedFrame()) txtFrmTime_Validate();
    const QString name = txtAnimName->text().trimmed();
    if (name.isEmpty()) {
        dialogs().msgBox(GetLocaleString(579) + GetLocaleString(436), MsgOKOnly, MsgExclamation);
        return;
    }
    // Every frame's bitmap with its transparent index, before the engine is touched.
    struct Frame {
        int direction, bitmap, time;
    };
    std::vector<Frame> frames;
    for (int d = 1; d <= 5; ++d) {
        QTreeWidgetItem* root = DirectionRoots[size_t(d - 1)];
        for (int i = 0; i < root->childCount(); ++i) {
            const QString tag = root->child(i)->data(0, TagRole).toString();
            const QByteArray file = ExtractFrmMapName(tag).toLocal8Bit();
            int bitmap = ZELMAR_bitmap_load(file.constData(), -1);
            if (bitmap) {
                const int index = TransparentIndexForColour(bitmap, ExtractTrnsIndxClr(tag));
                if (index != -1) bitmap = ZELMAR_bitmap_load(file.constData(), index);
            }
            if (!bitmap) {
                dialogs().msgBox(GetLocaleString(574) + QStringLiteral("\n") + root->child(i)->text(0), MsgOKOnly,
                                 MsgExclamation);
                trwAnim->setCurrentItem(root->child(i));
                return;
            }
            frames.push_back({d, bitmap, std::max(1, ExtractTime(tag))});
        }
    }
    bool alive = false;
    for (int a = ZELMAR_animation_get_first_animation(); a && !alive; a = ZELMAR_animation_get_next(a)) alive = a == m_animation;
    if (m_mode == 1 && alive) {
        for (int d = 1; d <= 5; ++d)
            while (ZELMAR_animation_get_number_of_frames(m_animation, d) > 0) ZELMAR_animation_remove_bitmap(m_animation, d, 0);
    } else {
        m_mode = 0; // an animation deleted meanwhile is made again
        m_animation = ZELMAR_animation_create(name.toLocal8Bit().constData());
        if (!m_animation) {
            dialogs().msgBox(GetLocaleString(579) + GetLocaleString(436), MsgOKOnly, MsgExclamation);
            return;
        }
        ZELMAR_animation_set_save_flag(m_animation, 1);
    }
    int count[6] = {0, 0, 0, 0, 0, 0};
    for (const Frame& f : frames)
        if (ZELMAR_animation_add_bitmap(m_animation, f.direction, f.bitmap))
            ZELMAR_animation_set_frame_time(m_animation, f.direction, count[f.direction]++, f.time);
    // The name read back: the engine may adjust it.
    ZELMAR_animation_set_name(m_animation, name.toLocal8Bit().constData());
    const QString settled = BitmapName(m_animation);
    if (TexturePanel* textures = materialsUi().textures) {
        if (m_mode == 0) {
            QTreeWidgetItem* node = textures->AddAnimationNode(m_animation);
            QApplication::processEvents();
            textures->trwTextures->setCurrentItem(node);
        } else if (QTreeWidgetItem* node = textures->Node(QStringLiteral("Animation") + QString::number(m_animation))) {
            node->setText(0, settled);
        }
    }
    materialsHost().UpdateCameras();
    accept();
}

void formAnimation::cmdCancel_Click() {
    reject();
}

// ---- dropping files ----------------------------------------------------------------------------------------

void formAnimation::dragEnterEvent(QDragEnterEvent* e) {
    if (e->mimeData()->hasUrls()) e->acceptProposedAction();
}

void formAnimation::trwAnim_OLEDragDrop(const QList<QUrl>& files, QPoint pos) {
    if (QTreeWidgetItem* target = trwAnim->itemAt(pos)) trwAnim->setCurrentItem(target);
    for (const QUrl& url : files)
        if (url.isLocalFile()) InsertMap(url.toLocalFile());
}

void formAnimation::dropEvent(QDropEvent* e) {
    handleEvent("formAnimation", "trwAnim_OLEDragDrop", [&] {
        for (const QUrl& url : e->mimeData()->urls())
            if (url.isLocalFile()) InsertMap(url.toLocalFile());
    });
    e->acceptProposedAction();
}

bool formAnimation::eventFilter(QObject* obj, QEvent* e) {
    // trwAnim_OLEDragOver and trwAnim_OLEDragDrop: files dropped on the tree go in where they land.
    if (obj == trwAnim->viewport()) {
        if (e->type() == QEvent::DragEnter || e->type() == QEvent::DragMove) {
            auto* d = static_cast<QDropEvent*>(e);
            if (d->mimeData()->hasUrls()) {
                d->acceptProposedAction();
                return true;
            }
        } else if (e->type() == QEvent::Drop) {
            auto* d = static_cast<QDropEvent*>(e);
            handleEvent("formAnimation", "trwAnim_OLEDragDrop",
                        [&] { trwAnim_OLEDragDrop(d->mimeData()->urls(), d->position().toPoint()); });
            d->acceptProposedAction();
            return true;
        }
    }
    return QDialog::eventFilter(obj, e);
}

} // namespace vexil
