#include "PolygonNodes.h"

#include "document/WorkspaceTrees.h"
#include "selection/SelectionModel.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

trwGroupView* tree() {
    SelectionModel* m = selectionModel();
    return m ? m->Host().GroupTree() : nullptr;
}

QString polKey(int p) {
    return QStringLiteral("Pol") + QString::number(p);
}

// The group node shows polygons when one of its children is a polygon node.
bool listsPolygons(QTreeWidgetItem* n) {
    for (int i = 0; i < n->childCount(); ++i)
        if (WorkspaceTree::NodeKey(n->child(i)).startsWith(QLatin1String("Pol"))) return true;
    return false;
}

} // namespace

void RemovePolygonNodes(const std::vector<int>& polygons) {
    trwGroupView* t = tree();
    if (!t) return;
    for (int p : polygons)
        if (t->Node(polKey(p))) t->RemoveNode(polKey(p));
}

void AddPolygonNodes(int group, const std::vector<int>& polygons) {
    trwGroupView* t = tree();
    if (!t) return;
    const QString key = QStringLiteral("Group") + QString::number(group);
    QTreeWidgetItem* g = t->Node(key);
    if (!g || !listsPolygons(g)) return;
    for (int p : polygons) {
        if (t->Node(polKey(p))) continue;
        QTreeWidgetItem* n =
            t->AddNode(key, polKey(p), QString::fromLocal8Bit(ZELMAR_polygon_get_name(p)), QStringLiteral("Pol"));
        n->setFlags(n->flags() | Qt::ItemIsEditable);
    }
}

void AddPolygonNodes(const std::vector<PolygonPlace>& places) {
    for (const PolygonPlace& pl : places)
        AddPolygonNodes(pl.group, {pl.polygon});
}

} // namespace vexil
