// The Texture tab's flows: New, Edit, Update and Delete of bitmaps and animations, applying them to polygons
// or groups, the planar mapper and the texture map editor.
#include "TexturePanel.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "SurfaceCommands.h"
#include "formAnimation.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "frmTextureMapping.h"

#include <QAction>
#include <QFileInfo>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

// The frames of an animation that show a bitmap, so that they can be given another one.
struct FrameUse {
    int animation, direction;
    std::vector<std::pair<int, int>> frames; // bitmap, time
};

std::vector<FrameUse> framesUsing(int bitmap) {
    std::vector<FrameUse> out;
    for (int a = ZELMAR_animation_get_first_animation(); a; a = ZELMAR_animation_get_next(a))
        for (int d = 1; d <= 5; ++d) {
            FrameUse use{a, d, {}};
            bool uses = false;
            for (int f = 0, n = ZELMAR_animation_get_number_of_frames(a, d); f < n; ++f) {
                const int b = ZELMAR_animation_get_bitmap(a, d, f);
                uses = uses || b == bitmap;
                use.frames.emplace_back(b, ZELMAR_animation_get_frame_time(a, d, f));
            }
            if (uses) out.push_back(std::move(use));
        }
    return out;
}

// Puts the direction's frames back with `to` where `from` was.
void restoreFrames(const FrameUse& use, int from, int to) {
    while (ZELMAR_animation_get_number_of_frames(use.animation, use.direction) > 0)
        ZELMAR_animation_remove_bitmap(use.animation, use.direction, 0);
    int index = 0;
    for (const auto& [bitmap, time] : use.frames) {
        const int b = bitmap == from ? to : bitmap;
        if (!ZELMAR_animation_add_bitmap(use.animation, use.direction, b)) continue;
        ZELMAR_animation_set_frame_time(use.animation, use.direction, index++, time);
    }
}

} // namespace

// ---- New, Edit ----------------------------------------------------------------------------------------------

void TexturePanel::mnuTextureNew_Click() {
    QTreeWidgetItem* node = SelectedNode();
    QTreeWidgetItem* root = node ? (node->parent() ? node->parent() : node) : m_mapRoot;
    if (root == m_animRoot) {
        formAnimation form(0, 0, materialsHost().MainWindow());
        dialogs().exec(form);
        return;
    }
    const QString path = GetOpenedBitmapFile(false);
    if (path.isEmpty()) return;
    AddTexture(path);
}

void TexturePanel::mnuTextureEdit_Click() {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || node->parent() != m_animRoot) return;
    tmrAnimPreview->stop();
    formAnimation form(1, NodeKey(node).mid(9).toInt(), materialsHost().MainWindow());
    dialogs().exec(form);
    if (SelectedNode() && SelectedNode()->parent() == m_animRoot) PreviewAnimation(NodeKey(SelectedNode()).mid(9).toInt());
}

int TexturePanel::AddTexture(const QString& path) {
    const QByteArray file = path.toLocal8Bit();
    int bitmap = ZELMAR_bitmap_get_handle(file.constData());
    if (!bitmap || !Node(QStringLiteral("Map") + QString::number(bitmap))) {
        if (!bitmap) bitmap = ZELMAR_bitmap_load(file.constData(), -1);
        if (!bitmap) return 0; // the design loads silently: a file that cannot be used adds nothing
        AddBitmapNode(bitmap);
    }
    QTreeWidgetItem* node = Node(QStringLiteral("Map") + QString::number(bitmap));
    m_mapRoot->setExpanded(true);
    trwTextures->setCurrentItem(node);
    trwTextures_NodeClick(node);
    return bitmap;
}

// ---- Delete -------------------------------------------------------------------------------------------------

void TexturePanel::DeleteBKGusingMap(int bitmap) {
    std::vector<int> gone;
    for (int b = ZELMAR_background_get_first_background(); b; b = ZELMAR_background_get_next(b))
        if (ZELMAR_background_get_bitmap(b) == bitmap) gone.push_back(b);
    for (int b : gone) {
        ZELMAR_background_delete(b);
        materialsHost().RemoveBackgroundNode(b);
    }
}

void TexturePanel::RemoveAnimFrmAllPolsUsingIt(int animation) {
    for (int p = ZELMAR_polygon_get_first_polygon(); p; p = ZELMAR_polygon_get_next(p))
        if (ZELMAR_polygon_get_animation(p) == animation) ZELMAR_polygon_set_color_fill(p, 100, 100, 255);
}

void TexturePanel::mnuTextureDelete_Click() {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || !node->parent()) return;
    const QString key = NodeKey(node);
    QTreeWidgetItem* root = node->parent();
    if (key.startsWith(QLatin1String("Missing"))) {
        m_nodes.remove(key);
        delete node;
        ClearPreview();
    } else if (root == m_mapRoot) {
        const QString question = QStringLiteral(
            "This will remove textures from polygons using this bitmap. Also, any backgrounds using this bitmap "
            "will be deleted. Do you wish to continue?");
        if (dialogs().msgBox(question, MsgYesNoCancel, MsgQuestion) != vbYes) return;
        const int bitmap = key.mid(3).toInt();
        DeleteBKGusingMap(bitmap);
        ZELMAR_bitmap_unload(bitmap);
        m_nodes.remove(key);
        delete node;
        ClearPreview();
        if (frmTextureMapping* editor = materialsUi().editor) editor->BitmapsChanged();
    } else {
        const int animation = key.mid(9).toInt();
        RemoveAnimFrmAllPolsUsingIt(animation);
        ZELMAR_animation_delete(animation);
        m_nodes.remove(key);
        delete node;
        tmrAnimPreview->stop();
        ClearPreview();
    }
    if (root->childCount() == 0) setImage(root, QStringLiteral("Folder"));
    enableButtons(false, false);
    materialsHost().UpdateCameras();
}

// ---- Update -------------------------------------------------------------------------------------------------

void TexturePanel::cmdTextureUpdate_Click() {
    QTreeWidgetItem* node = SelectedNode();
    if (node && node->parent()) mnuTextureUpdate_Click();
}

void TexturePanel::mnuTextureUpdate_Click() {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || node->parent() != m_mapRoot) return;
    const QString key = NodeKey(node);
    if (key.startsWith(QLatin1String("Missing"))) {
        // A file that was missing at load and is back now joins the list.
        const QString path = FileBehindName(node->text(0));
        if (path.isEmpty()) {
            dialogs().msgBox(GetLocaleString(359), MsgOKOnly, MsgInformation);
            return;
        }
        m_nodes.remove(key);
        delete node;
        AddTexture(path);
        return;
    }
    const int old = key.mid(3).toInt();
    // 1. Every polygon and background using it (and, beyond the design, every animation frame).
    std::vector<int> polygons, backgrounds;
    for (int p = ZELMAR_polygon_get_first_polygon(); p; p = ZELMAR_polygon_get_next(p))
        if (ZELMAR_polygon_get_bitmap_handle(p) == old) polygons.push_back(p);
    for (int b = ZELMAR_background_get_first_background(); b; b = ZELMAR_background_get_next(b))
        if (ZELMAR_background_get_bitmap(b) == old) backgrounds.push_back(b);
    const std::vector<FrameUse> frames = framesUsing(old);
    // 2. The file, or the world stays as it is.
    const QString path = FileBehindBitmap(old);
    if (path.isEmpty()) {
        dialogs().msgBox(GetLocaleString(359), MsgOKOnly, MsgInformation);
        return;
    }
    // 3. Reloaded with its transparent index; a file that no longer decodes leaves the world unchanged.
    const int index = ZELMAR_bitmap_get_transparent_index(old);
    const QByteArray file = path.toLocal8Bit();
    int size[2] = {0, 0};
    if (ZELMAR_utilities_load_bitmap_from_file(file.constData(), nullptr, 0, size) != 1) {
        dialogs().msgBox(GetLocaleString(574) + QStringLiteral("\n") +
                             QString::fromLocal8Bit(ZELMAR_engine_get_last_error()),
                         MsgOKOnly, MsgExclamation);
        return;
    }
    ZELMAR_bitmap_unload(old);
    const int fresh = ZELMAR_bitmap_load(file.constData(), index);
    if (!fresh) { // the file changed again between the look and the load
        dialogs().msgBox(GetLocaleString(574), MsgOKOnly, MsgExclamation);
        m_nodes.remove(key);
        delete node;
        materialsHost().UpdateCameras();
        return;
    }
    // 4. The new handle everywhere the old one was.
    for (int p : polygons) ZELMAR_polygon_set_bitmap_fill(p, fresh);
    for (int b : backgrounds) ZELMAR_background_set_bitmap(b, fresh);
    for (const FrameUse& use : frames) restoreFrames(use, old, fresh);
    // 5. The node's key follows.
    m_nodes.remove(key);
    const QString newKey = QStringLiteral("Map") + QString::number(fresh);
    node->setData(0, KeyRole, newKey);
    m_nodes.insert(newKey, node);
    PreviewBitmap(fresh);
    if (frmTextureMapping* editor = materialsUi().editor) editor->BitmapsChanged();
    materialsHost().UpdateCameras();
}

// ---- apply, map, edit -------------------------------------------------------------------------------------

void TexturePanel::cmdTextureApplyToSel_Click(int index) {
    QTreeWidgetItem* node = SelectedNode();
    if (!node || !node->parent()) return;
    const QString key = NodeKey(node);
    if (key.startsWith(QLatin1String("Missing"))) return;
    const bool animation = node->parent() == m_animRoot;
    const int handle = key.mid(animation ? 9 : 3).toInt();
    const QString refusal = ApplyFillToSelection(handle, animation, index == 1);
    if (!refusal.isEmpty()) dialogs().msgBox(refusal, MsgOKOnly, MsgInformation);
}

void TexturePanel::cmdPlanarMap_Click() {
    PlanarMapSelection(MappingOption());
}

void TexturePanel::cmdEditTexture_Click() {
    if (m_editor) {
        if (m_editor->isMinimized()) m_editor->showNormal();
        m_editor->raise();
        m_editor->activateWindow();
        return;
    }
    m_editor = new frmTextureMapping(materialsHost().MainWindow());
    m_editor->show();
}

frmTextureMapping* TexturePanel::TextureMapping() const {
    return m_editor.data();
}

void TexturePanel::UnloadTextureMapping() {
    if (m_editor) m_editor->close();
}

} // namespace vexil
