// The workspace trees.
#include "WorkspaceTrees.h"

#include "DocumentHost.h"
#include "GroupHierarchy.h"
#include "frame/Dialogs.h"
#include "engine/EntityNaming.h"
#include "WorldDocument.h"
#include "frame/Locale.h"
#include "undo/ActionRenameEntity.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

#include <QHash>
#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>

#include <dlfcn.h>
#include <algorithm>
#include <map>
#include <vector>

namespace vexil {

namespace {

bool lookUpEntryPoint(const char* name) { return dlsym(RTLD_DEFAULT, name) != nullptr; }
EntryPointLookup& entryPointLookup() {
    static EntryPointLookup lookup = &lookUpEntryPoint;
    return lookup;
}

QString qname(int handle) { return QString::fromLocal8Bit(EntityName(handle).c_str()); }

QPixmap drawImage(const QString& name) {
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor dark(60, 60, 60);
    if (name == QLatin1String("Folder")) {
        p.setPen(QColor(150, 110, 20));
        p.setBrush(QColor(250, 205, 80));
        p.drawRect(QRectF(1.5, 4.5, 13, 9));
        p.drawRect(QRectF(1.5, 2.5, 5, 2));
    } else if (name == QLatin1String("Group") || name == QLatin1String("Group Invisible")) {
        const bool hidden = name != QLatin1String("Group");
        const QColor front = hidden ? QColor(200, 200, 200) : QColor(90, 150, 230);
        const QColor top = hidden ? QColor(225, 225, 225) : QColor(150, 195, 250);
        const QColor side = hidden ? QColor(175, 175, 175) : QColor(50, 105, 190);
        p.setPen(hidden ? QColor(150, 150, 150) : QColor(30, 60, 120));
        QPolygonF topFace({{2.5, 5.5}, {6.5, 1.5}, {14.5, 1.5}, {10.5, 5.5}});
        QPolygonF sideFace({{10.5, 5.5}, {14.5, 1.5}, {14.5, 10.5}, {10.5, 14.5}});
        p.setBrush(top);
        p.drawPolygon(topFace);
        p.setBrush(side);
        p.drawPolygon(sideFace);
        p.setBrush(front);
        p.drawRect(QRectF(2.5, 5.5, 8, 9));
    } else if (name == QLatin1String("Pol")) {
        p.setPen(QColor(20, 110, 40));
        p.setBrush(QColor(110, 200, 120));
        p.drawPolygon(QPolygonF({{8, 1.5}, {14.5, 14.5}, {1.5, 14.5}}));
    } else if (name == QLatin1String("Cam")) {
        p.setPen(dark);
        p.setBrush(QColor(110, 110, 120));
        p.drawRoundedRect(QRectF(1.5, 5.5, 10, 8), 1.5, 1.5);
        p.drawPolygon(QPolygonF({{11.5, 8}, {15, 5.5}, {15, 13.5}, {11.5, 11}}));
        p.setBrush(QColor(190, 220, 250));
        p.drawEllipse(QRectF(4, 7, 4, 4));
    } else if (name == QLatin1String("Track")) {
        QPainterPath path(QPointF(1.5, 13));
        path.cubicTo(4, 2, 11, 16, 14.5, 3);
        p.setPen(QPen(QColor(200, 80, 30), 2));
        p.setBrush(Qt::NoBrush);
        p.drawPath(path);
        p.setPen(dark);
        p.setBrush(QColor(240, 160, 60));
        p.drawEllipse(QPointF(1.5, 13), 1.5, 1.5);
        p.drawEllipse(QPointF(14.5, 3), 1.5, 1.5);
    } else if (name == QLatin1String("Background")) {
        QLinearGradient g(0, 1, 0, 15);
        g.setColorAt(0, QColor(60, 120, 220));
        g.setColorAt(0.6, QColor(170, 210, 250));
        g.setColorAt(0.61, QColor(90, 160, 80));
        g.setColorAt(1, QColor(60, 120, 50));
        p.setPen(dark);
        p.setBrush(g);
        p.drawRect(QRectF(0.5, 1.5, 15, 13));
    } else if (name == QLatin1String("Light")) {
        p.setPen(QColor(160, 120, 0));
        p.setBrush(QColor(255, 230, 90));
        p.drawEllipse(QRectF(3, 1, 10, 10));
        p.setBrush(QColor(150, 150, 150));
        p.drawRect(QRectF(5.5, 11, 5, 4));
    }
    return pm;
}

// In-place rename: the tree decides (AfterLabelEdit); the model is only changed by it.
class LabelEditDelegate : public QStyledItemDelegate {
public:
    explicit LabelEditDelegate(trwGroupView* tree) : QStyledItemDelegate(tree), m_tree(tree) {}
    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
        auto* line = qobject_cast<QLineEdit*>(editor);
        if (!line) return;
        if (QTreeWidgetItem* item = m_tree->ItemForIndex(index)) m_tree->trwGroupView_AfterLabelEdit(item, line->text());
    }

private:
    trwGroupView* m_tree;
};

} // namespace

bool EngineHasEntryPoint(const char* name) { return entryPointLookup()(name); }

void SetEntryPointLookup(EntryPointLookup lookup) { entryPointLookup() = lookup ? lookup : &lookUpEntryPoint; }

QIcon TreeImage(const QString& name) {
    static QHash<QString, QIcon> cache;
    auto it = cache.find(name);
    if (it == cache.end()) it = cache.insert(name, QIcon(drawImage(name)));
    return *it;
}

// ---- WorkspaceTree -----------------------------------------------------------------------------------------

WorkspaceTree::WorkspaceTree(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(1);
    header()->hide();
    setIconSize(QSize(16, 16));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(model(), &QAbstractItemModel::rowsAboutToBeRemoved, this, [this] { m_nodes.clear(); });
    connect(model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_nodes.clear(); });
}

// The model outlives this part of the object: its removals during ~QTreeWidget must not reach m_nodes.
// The nodes go first, without recursion: a tree as deep as a world can be would overflow the stack in
// the nodes' own destructors.
WorkspaceTree::~WorkspaceTree() {
    disconnect(model(), nullptr, this, nullptr);
    ClearNodes();
}

namespace {

// Deletes detached subtrees without recursion and in linear time: parents are emptied deepest first, so
// that each one's children are leaves when it lets them go (a node's own destructor would recurse, and
// taking the children of a node walks everything below it).
void deleteDetached(const QList<QTreeWidgetItem*>& roots) {
    std::vector<std::pair<int, QTreeWidgetItem*>> parents; // (depth, node) of every node with children
    std::vector<std::pair<int, QTreeWidgetItem*>> stack;
    for (QTreeWidgetItem* r : roots)
        if (r) stack.emplace_back(0, r);
    while (!stack.empty()) {
        const auto [depth, n] = stack.back();
        stack.pop_back();
        if (n->childCount() == 0) continue;
        parents.emplace_back(depth, n);
        for (int i = 0; i < n->childCount(); ++i)
            stack.emplace_back(depth + 1, n->child(i));
    }
    std::stable_sort(parents.begin(), parents.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    for (const auto& [depth, n] : parents)
        for (QTreeWidgetItem* leaf : n->takeChildren())
            delete leaf;
    for (QTreeWidgetItem* r : roots)
        delete r;
}

} // namespace

void WorkspaceTree::DeleteSubtree(QTreeWidgetItem* node) {
    if (!node) return;
    if (QTreeWidgetItem* parent = node->parent())
        parent->removeChild(node);
    else if (const int i = indexOfTopLevelItem(node); i >= 0)
        takeTopLevelItem(i);
    deleteDetached({node});
}

void WorkspaceTree::ClearNodes() {
    m_nodes.clear();
    QList<QTreeWidgetItem*> roots;
    while (topLevelItemCount() > 0)
        roots.append(takeTopLevelItem(topLevelItemCount() - 1));
    deleteDetached(roots);
}

QTreeWidgetItem* WorkspaceTree::AddNode(const QString& parentKey, const QString& key, const QString& text, const QString& image) {
    QTreeWidgetItem* parentNode = parentKey.isEmpty() ? nullptr : Node(parentKey);
    auto* item = parentNode ? new QTreeWidgetItem(parentNode) : new QTreeWidgetItem(this);
    item->setText(0, text);
    item->setData(0, KeyRole, key);
    SetNodeImage(item, image);
    if (!m_nodes.contains(key)) m_nodes.insert(key, item);
    return item;
}

QTreeWidgetItem* WorkspaceTree::Node(const QString& key) const {
    if (auto hit = m_nodes.constFind(key); hit != m_nodes.constEnd() && NodeKey(*hit) == key) return *hit;
    for (QTreeWidgetItemIterator it(const_cast<WorkspaceTree*>(this)); *it; ++it)
        if (NodeKey(*it) == key) {
            m_nodes.insert(key, *it);
            return *it;
        }
    return nullptr;
}

void WorkspaceTree::ShowNode(QTreeWidgetItem* node) {
    if (!node) return;
    int depth = 0;
    for (QTreeWidgetItem* p = node->parent(); p && depth <= MaxShownDepth; p = p->parent()) ++depth;
    const bool show = depth <= MaxShownDepth;
    // A new current item scrolls itself into view (opening its fathers) unless told not to.
    const bool autoScrolls = hasAutoScroll();
    setAutoScroll(show && autoScrolls);
    setCurrentItem(node);
    setAutoScroll(autoScrolls);
    node->setSelected(true);
    if (show) scrollToItem(node);
}

void WorkspaceTree::RememberNode(const QString& key, QTreeWidgetItem* node) { m_nodes.insert(key, node); }

void WorkspaceTree::RemoveNode(const QString& key) { DeleteSubtree(Node(key)); }

bool WorkspaceTree::SetNodeText(const QString& key, const QString& text) {
    QTreeWidgetItem* n = Node(key);
    if (!n) return false;
    n->setText(0, text);
    return true;
}

void WorkspaceTree::SetNodeImage(QTreeWidgetItem* node, const QString& image) {
    node->setData(0, ImageRole, image);
    node->setIcon(0, TreeImage(image));
}

QString WorkspaceTree::NodeKey(const QTreeWidgetItem* node) { return node ? node->data(0, KeyRole).toString() : QString(); }
QString WorkspaceTree::NodeImage(const QTreeWidgetItem* node) { return node ? node->data(0, ImageRole).toString() : QString(); }

QStringList WorkspaceTree::Keys() const {
    QStringList keys;
    for (QTreeWidgetItemIterator it(const_cast<WorkspaceTree*>(this)); *it; ++it) keys << NodeKey(*it);
    return keys;
}

void WorkspaceTree::CollapseNode(QTreeWidgetItem* node) {
    std::vector<QTreeWidgetItem*> stack;
    if (node) stack.push_back(node);
    while (!stack.empty()) {
        QTreeWidgetItem* n = stack.back();
        stack.pop_back();
        for (int i = 0; i < n->childCount(); ++i) stack.push_back(n->child(i));
        n->setExpanded(false);
    }
}

// ---- trwGroupView --------------------------------------------------------------------------------------------

trwGroupView::trwGroupView(QWidget* parent) : WorkspaceTree(parent) {
    setObjectName(QStringLiteral("trwGroupView"));
    setItemDelegate(new LabelEditDelegate(this));
    setEditTriggers(QAbstractItemView::SelectedClicked | QAbstractItemView::EditKeyPressed);
    connect(this, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item, int) { trwGroupView_NodeClick(item); });
    trwGroupViewInitialSetup();
    trwGroupView_Reset();
}

void trwGroupView::trwGroupViewInitialSetup() {
    ClearNodes();
    AddNode({}, QStringLiteral("WORLD"), QStringLiteral("WORLD"), QStringLiteral("Folder"));
    AddNode(QStringLiteral("WORLD"), QStringLiteral("BOX01"), QStringLiteral("BOX01"), QStringLiteral("Group"));
    AddNode(QStringLiteral("WORLD"), QStringLiteral("SPHERE02"), QStringLiteral("SPHERE02"), QStringLiteral("Group"));
}

void trwGroupView::trwGroupView_Reset() {
    ClearNodes();
    QTreeWidgetItem* world = AddNode({}, QStringLiteral("WORLD"), QStringLiteral("WORLD"), QStringLiteral("Folder"));
    world->setFlags(world->flags() & ~Qt::ItemIsEditable);
}

void trwGroupView::addGroupNode(int group, const QString& fatherKey, const QString& name) {
    QTreeWidgetItem* n = AddNode(fatherKey, QStringLiteral("Group") + QString::number(group), name, QStringLiteral("Group"));
    n->setFlags(n->flags() | Qt::ItemIsEditable);
}

void trwGroupView::trwGroupView_Populate() {
    setEnabled(false);                                                      // 1
    setUpdatesEnabled(false);
    trwGroupView_Reset();
    const int root = m_doc ? m_doc->RootGrp : 0;
    if (root != 0) {
        // 2, 3: the groups whose father is the root, and below each its named descendants. One walk of the
        // engine's groups finds every father; a father is enough to be included.
        const GroupHierarchy h;
        // Filled while out of the view, so that the model is told once rather than once per node.
        QTreeWidgetItem* world = takeTopLevelItem(0);
        RememberNode(QStringLiteral("WORLD"), world);
        for (int g : h.Children(root)) {
            addGroupNode(g, QStringLiteral("WORLD"), qname(g));
            populateBelow(h, g);
            if (ZELMAR_group_is_disable(g) == 1) GroupHide(g);
        }
        insertTopLevelItem(0, world);
    }
    setUpdatesEnabled(true);
    setEnabled(true);                                                       // 4
}

void trwGroupView::trwGroupView_PopulateRecursive(int group, const QString& /*fatherKey*/) {
    populateBelow(GroupHierarchy(), group);
}

void trwGroupView::populateBelow(const GroupHierarchy& h, int group) {
    // Depth first, in engine order, with a stack of its own: a world may nest groups far deeper than the
    // call stack would allow. Groups with an empty name are left out with their subtrees (the engine's
    // helper groups have no names).
    std::vector<int> stack(h.Children(group).rbegin(), h.Children(group).rend());
    while (!stack.empty()) {
        const int g = stack.back();
        stack.pop_back();
        const QString name = qname(g);
        if (name.isEmpty()) continue;
        addGroupNode(g, QStringLiteral("Group") + QString::number(ZELMAR_group_get_father_group(g)), name);
        if (ZELMAR_group_is_disable(g) == 1) GroupHide(g);
        const std::vector<int>& kids = h.Children(g);
        stack.insert(stack.end(), kids.rbegin(), kids.rend());
    }
}

void trwGroupView::trwGroupView_PopulateWithPolygons(int group) {
    const QString key = QStringLiteral("Group") + QString::number(group);
    if (!Node(key)) return;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        QTreeWidgetItem* n = AddNode(key, QStringLiteral("Pol") + QString::number(p), qname(p), QStringLiteral("Pol"));
        n->setFlags(n->flags() | Qt::ItemIsEditable);
    }
}

bool trwGroupView::trwGroupView_AfterLabelEdit(QTreeWidgetItem* node, const QString& newText) {
    if (!node || newText.isEmpty()) return false;                           // 1: refused
    const QString key = NodeKey(node);
    int kind = 0;
    int handle = 0;
    if (key.startsWith(QLatin1String("Group"))) {
        kind = EntityGroup;
        handle = key.mid(5).toInt();  // the digits from the sixth character on
    } else if (key.startsWith(QLatin1String("Pol"))) {
        kind = EntityPolygon;
        handle = key.mid(3).toInt();  // from the fourth character on
    } else {
        return false;
    }
    auto action = ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity);
    auto* rename = action->As<ActionRenameEntity>();
    std::string name = newText.trimmed().toLocal8Bit().toStdString();
    if (kind == EntityGroup) name = GetNewGrpNameFrmGivenStr(name);
    const QString shown = QString::fromLocal8Bit(name.c_str());
    node->setText(0, shown);
    if (kind == EntityGroup && m_doc) m_doc->Host().SetSelectedGroupNameText(shown);
    rename->SetEntityRenamed(kind, handle);
    rename->SetPrevName(EntityName(handle));
    rename->SetNewName(name);
    if (kind == EntityGroup)
        ZELMAR_group_set_name(handle, name.c_str());
    else
        ZELMAR_polygon_set_name(handle, name.c_str());
    if (m_doc) m_doc->Host().UndoStack().Push(action);
    return true;
}

void trwGroupView::trwGroupView_NodeClick(QTreeWidgetItem* node) {
    if (!node || !m_doc) return;
    DocumentHost& host = m_doc->Host();
    if (host.SelectionForbidden()) return;                                  // 1
    const QString key = NodeKey(node);
    const std::string text = node->text(0).toLocal8Bit().toStdString();
    if (key.startsWith(QLatin1String("Group"))) {                           // 2: found by name
        host.SelectEntityFromTree(EntityGroup, GroupUsingName(text));
    } else if (key.startsWith(QLatin1String("Pol"))) {                      // 3
        host.SelectEntityFromTree(EntityPolygon, PolygonUsingName(text));
    }
    emit nodeClicked(key);
}

void trwGroupView::GroupHide(int group) {
    if (QTreeWidgetItem* n = Node(QStringLiteral("Group") + QString::number(group))) SetNodeImage(n, QStringLiteral("Group Invisible"));
}

void trwGroupView::GroupUnhide(int group) {
    if (QTreeWidgetItem* n = Node(QStringLiteral("Group") + QString::number(group))) SetNodeImage(n, QStringLiteral("Group"));
}

// ---- trwCamTrackBK ---------------------------------------------------------------------------------------------

trwCamTrackBK::trwCamTrackBK(QWidget* parent) : WorkspaceTree(parent) {
    setObjectName(QStringLiteral("trwCamTrackBK"));
    trwCamTrackBKInitialSetup();
    trwCamTrackBK_Reset();
}

void trwCamTrackBK::trwCamTrackBKInitialSetup() {
    ClearNodes();
    AddNode({}, QStringLiteral("CAMERA01"), QStringLiteral("CAMERA01"), QStringLiteral("Folder"));
    AddNode(QStringLiteral("CAMERA01"), QStringLiteral("CAM01"), QStringLiteral("CAM01"), QStringLiteral("Cam"));
    AddNode({}, QStringLiteral("CAMERA02"), QStringLiteral("CAMERA02"), QStringLiteral("Folder"));
    AddNode(QStringLiteral("CAMERA02"), QStringLiteral("CAM02"), QStringLiteral("CAM02"), QStringLiteral("Cam"));
    AddNode({}, QStringLiteral("BACKGROUND01"), QStringLiteral("BACKGROUND01"), QStringLiteral("Background"));
    AddNode({}, QStringLiteral("TRACK01"), QStringLiteral("TRACK01"), QStringLiteral("Track"));
}

void trwCamTrackBK::trwCamTrackBK_Reset() {
    ClearNodes();
    AddNode({}, QStringLiteral("CAMERA"), GetLocaleString(341), QStringLiteral("Folder"));
    AddNode({}, QStringLiteral("TRACK"), GetLocaleString(343), QStringLiteral("Folder"));
    AddNode({}, QStringLiteral("BACKGROUND"), GetLocaleString(342), QStringLiteral("Folder"));
}

QTreeWidgetItem* trwCamTrackBK::FolderNode(int index) const {
    return index >= 1 && index <= topLevelItemCount() ? topLevelItem(index - 1) : nullptr;
}

void trwCamTrackBK::trwCamTrackBK_Populate() {
    trwCamTrackBK_Reset();
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1)
            AddNode(QStringLiteral("CAMERA"), QStringLiteral("Camera") + QString::number(c), qname(c), QStringLiteral("Cam"));
    for (int t = ZELMAR_track_get_first_track(); t != 0; t = ZELMAR_track_get_next(t)) {
        ZELMAR_track_set_save_flag(t, 1);
        AddNode(QStringLiteral("TRACK"), QStringLiteral("Track") + QString::number(t), qname(t), QStringLiteral("Track"));
    }
    for (int b = ZELMAR_background_get_first_background(); b != 0; b = ZELMAR_background_get_next(b)) {
        ZELMAR_background_set_save_flag(b, 1);
        AddNode(QStringLiteral("BACKGROUND"), QStringLiteral("Background") + QString::number(b), qname(b), QStringLiteral("Background"));
    }
}

// ---- trwLight ----------------------------------------------------------------------------------------------------

trwLight::trwLight(QWidget* parent) : WorkspaceTree(parent) {
    setObjectName(QStringLiteral("trwLight"));
    trwLight_Reset();
}

void trwLight::trwLight_Reset() {
    ClearNodes();
    AddNode({}, QStringLiteral("LIGHT"), GetLocaleString(344), QStringLiteral("Folder"));
}

QTreeWidgetItem* trwLight::FolderNode() const { return topLevelItemCount() > 0 ? topLevelItem(0) : nullptr; }

void trwLight::trwLight_Populate() {
    trwLight_Reset();
    // The second version test: an engine without the lights' save flag can't list the lights.
    if (!EngineHasEntryPoint("ZELMAR_light_get_save_flag")) {
        dialogs().msgBox(QStringLiteral("Wrong version of ZELMAR.dll found.\nFailed extracting information of light objects."),
                         MsgOKOnly, MsgCritical);
        return;
    }
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1)
            AddNode(QStringLiteral("LIGHT"), QStringLiteral("Light") + QString::number(l), qname(l), QStringLiteral("Light"));
}

} // namespace vexil
