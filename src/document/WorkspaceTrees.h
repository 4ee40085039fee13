// The workspace trees: trwGroupView (groups and their polygons), trwCamTrackBK (cameras,
// tracks, backgrounds) and trwLight (lights). Views of the engine, filled again after each load; single
// changes update single nodes. A node's key is kept in Qt::UserRole, its image name in ImageRole.
#pragma once
#include <QHash>
#include <QIcon>
#include <QString>
#include <QTreeWidget>

namespace vexil {

class WorldDocument;
class GroupHierarchy;

// Whether the engine offers the entry point `name` (looked up at run time); tests replace the lookup.
using EntryPointLookup = bool (*)(const char* name);
bool EngineHasEntryPoint(const char* name);
void SetEntryPointLookup(EntryPointLookup lookup); // nullptr: the real lookup

// Images of the trees, drawn in code: "Folder", "Group", "Group Invisible", "Pol", "Cam", "Track",
// "Background", "Light".
QIcon TreeImage(const QString& name);

// Common base: keys, images, texts.
class WorkspaceTree : public QTreeWidget {
    Q_OBJECT
public:
    static constexpr int KeyRole = Qt::UserRole;
    static constexpr int ImageRole = Qt::UserRole + 1;

    explicit WorkspaceTree(QWidget* parent = nullptr);
    ~WorkspaceTree() override;
    void SetDocument(WorldDocument* doc) { m_doc = doc; }
    WorldDocument* Document() const { return m_doc; }

    // Adds a node under the node of key `parentKey` (a top-level node for an empty parent key).
    QTreeWidgetItem* AddNode(const QString& parentKey, const QString& key, const QString& text, const QString& image);
    QTreeWidgetItem* Node(const QString& key) const;
    // Removes the node and its subtree (without recursion, whatever its depth).
    void RemoveNode(const QString& key);
    // Empties the tree (without recursion, whatever its depth).
    void ClearNodes();
    void DeleteSubtree(QTreeWidgetItem* node);
    bool SetNodeText(const QString& key, const QString& text);
    void SetNodeImage(QTreeWidgetItem* node, const QString& image);
    static QString NodeKey(const QTreeWidgetItem* node);
    static QString NodeImage(const QTreeWidgetItem* node);
    // All keys in tree order (tests, diagnostics).
    QStringList Keys() const;
    // Makes the node current and selected, and opens its fathers and scrolls to it if it is no deeper than
    // MaxShownDepth: the view lays out open levels by recursion, so a far deeper node is only selected.
    void ShowNode(QTreeWidgetItem* node);
    static constexpr int MaxShownDepth = 1000;
    // Collapses a node and its children (trw..._Collapse).
    void CollapseNode(QTreeWidgetItem* node);
    QTreeWidgetItem* ItemForIndex(const QModelIndex& index) const { return itemFromIndex(index); }

protected:
    // Finds `node` by `key` also while it is out of the tree (being filled).
    void RememberNode(const QString& key, QTreeWidgetItem* node);
    WorldDocument* m_doc = nullptr;

private:
    // Key -> node, so that filling a tree is linear. Emptied whenever rows leave the model, so it never
    // holds a dead node; a miss falls back to a walk.
    mutable QHash<QString, QTreeWidgetItem*> m_nodes;
};

class trwGroupView : public WorkspaceTree {
    Q_OBJECT
public:
    explicit trwGroupView(QWidget* parent = nullptr);

    void trwGroupViewInitialSetup();  // the design-time sample nodes
    void trwGroupView_Reset();         // empty but for "WORLD"
    void trwGroupView_Populate();
    void trwGroupView_PopulateRecursive(int group, const QString& fatherKey);
    void trwGroupView_PopulateWithPolygons(int group);
    // Label edit finished (in place or programmatic): returns false when refused (cancel).
    bool trwGroupView_AfterLabelEdit(QTreeWidgetItem* node, const QString& newText);
    void trwGroupView_NodeClick(QTreeWidgetItem* node);
    // The node image of a hidden or shown group ("Group Invisible" / "Group").
    void GroupHide(int group);
    void GroupUnhide(int group);

signals:
    void nodeClicked(const QString& key);

private:
    void addGroupNode(int group, const QString& fatherKey, const QString& name);
    // The named groups below `group`, each under its father's node, depth first without recursion.
    void populateBelow(const GroupHierarchy& h, int group);
};

class trwCamTrackBK : public WorkspaceTree {
    Q_OBJECT
public:
    explicit trwCamTrackBK(QWidget* parent = nullptr);
    void trwCamTrackBKInitialSetup();
    void trwCamTrackBK_Reset();  // the three folders only
    void trwCamTrackBK_Populate();
    void trwCamTrackBK_Collapse(QTreeWidgetItem* node) { CollapseNode(node); }
    // Node 1, 2, 3 of the design: the folders "CAMERA", "TRACK", "BACKGROUND".
    QTreeWidgetItem* FolderNode(int index) const;
};

class trwLight : public WorkspaceTree {
    Q_OBJECT
public:
    explicit trwLight(QWidget* parent = nullptr);
    void trwLight_Reset();  // the folder "LIGHT" only
    void trwLight_Populate();
    void trwLight_Collapse(QTreeWidgetItem* node) { CollapseNode(node); }
    QTreeWidgetItem* FolderNode() const;
};

} // namespace vexil
