// The workspace trees: keys, images, texts, population rules, rename and node clicks.
#include "DocTestHost.h"

#include "frame/Locale.h"
#include "undo/ActionRenameEntity.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>

using namespace vexil;

namespace {

class Trees : public DocFixture {
protected:
    void SetUp() override {
        DocFixture::SetUp();
        doc->NewWorld(true);
        root = doc->RootGrp;
    }
    QString key(const char* prefix, int h) { return QString::fromLatin1(prefix) + QString::number(h); }
    int root = 0;
};

} // namespace

TEST_F(Trees, AWorldWithoutPolygonsShowsOnlyWorld) {
    EXPECT_EQ(groups.Keys(), QStringList{"WORLD"});
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node("WORLD")), "Folder");
    EXPECT_EQ(groups.Node("WORLD")->text(0), "WORLD");
    EXPECT_EQ(cams.Keys(), (QStringList{"CAMERA", "TRACK", "BACKGROUND"}));  // the viewport cameras are not listed
    EXPECT_EQ(cams.FolderNode(1)->text(0), GetLocaleString(341));
    EXPECT_EQ(cams.FolderNode(2)->text(0), GetLocaleString(343));
    EXPECT_EQ(cams.FolderNode(3)->text(0), GetLocaleString(342));
    EXPECT_EQ(lights.Keys(), QStringList{"LIGHT"});
    EXPECT_EQ(lights.FolderNode()->text(0), GetLocaleString(344));
}

TEST_F(Trees, GroupsNestUnderTheirFathersAndUnnamedOnesAreLeftOut) {
    const int a = makeGroup("a", root);
    const int b = makeGroup("b", root);
    const int a1 = makeGroup("a1", a);
    const int helper = makeGroup("", a);  // the engine's helper groups have no names
    const int a11 = makeGroup("a11", a1);
    const int marker = makeGroup("marker", 0);  // fatherless: a marker or a deleted group
    ZELMAR_group_disable(b, 1);
    groups.trwGroupView_Populate();
    EXPECT_EQ(groups.Keys(), (QStringList{"WORLD", key("Group", a), key("Group", a1), key("Group", a11), key("Group", b)}));
    EXPECT_EQ(groups.Node(key("Group", a1))->parent(), groups.Node(key("Group", a)));
    EXPECT_EQ(groups.Node(key("Group", a11))->text(0), "a11");
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node(key("Group", a))), "Group");
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node(key("Group", b))), "Group Invisible");  // a hidden group is greyed
    EXPECT_EQ(groups.Node(key("Group", helper)), nullptr);
    EXPECT_EQ(groups.Node(key("Group", marker)), nullptr);
    EXPECT_TRUE(groups.isEnabled());

    // Polygons appear only on request, under their group, keyed "Pol" + handle.
    groups.trwGroupView_PopulateWithPolygons(a11);
    const int p = ZELMAR_group_get_first_polygon(a11);
    ASSERT_NE(groups.Node(key("Pol", p)), nullptr);
    EXPECT_EQ(groups.Node(key("Pol", p))->parent(), groups.Node(key("Group", a11)));
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node(key("Pol", p))), "Pol");
}

TEST_F(Trees, CamerasTracksBackgroundsAndLights) {
    const int cam = ZELMAR_camera_create("Camera01");
    ZELMAR_camera_set_save_flag(cam, 1);
    const int own = ZELMAR_camera_create("ownCamera");  // no save flag: the program's own
    const int trk = ZELMAR_track_create("Track01", nullptr, 0, 0);
    const int bk = ZELMAR_background_create("Background01", 0);
    const int l1 = ZELMAR_light_create("Light01", nullptr);
    ZELMAR_light_set_save_flag(l1, 1);
    const int l2 = ZELMAR_light_create("Light02", nullptr);  // without its flag: not listed
    cams.trwCamTrackBK_Populate();
    lights.trwLight_Populate();
    EXPECT_EQ(cams.Keys(), (QStringList{"CAMERA", key("Camera", cam), "TRACK", key("Track", trk), "BACKGROUND", key("Background", bk)}));
    EXPECT_EQ(cams.Node(key("Camera", own)), nullptr);
    EXPECT_EQ(WorkspaceTree::NodeImage(cams.Node(key("Camera", cam))), "Cam");
    EXPECT_EQ(WorkspaceTree::NodeImage(cams.Node(key("Track", trk))), "Track");
    EXPECT_EQ(WorkspaceTree::NodeImage(cams.Node(key("Background", bk))), "Background");
    EXPECT_EQ(cams.Node(key("Track", trk))->text(0), "Track01");
    // Tracks and backgrounds get their flags as they are listed.
    EXPECT_EQ(ZELMAR_track_get_save_flag(trk), 1);
    EXPECT_EQ(lights.Keys(), (QStringList{"LIGHT", key("Light", l1)}));
    EXPECT_EQ(lights.Node(key("Light", l2)), nullptr);
    EXPECT_EQ(WorkspaceTree::NodeImage(lights.Node(key("Light", l1))), "Light");
    // Every image is drawn.
    for (const char* image : {"Folder", "Group", "Group Invisible", "Pol", "Cam", "Track", "Background", "Light"})
        EXPECT_FALSE(TreeImage(image).isNull()) << image;
}

TEST_F(Trees, RenamingToAnotherGroupsNameAddsZeroOne) {
    const int a = makeGroup("alpha", root);
    makeGroup("beta", root);
    groups.trwGroupView_Populate();
    QTreeWidgetItem* node = groups.Node(key("Group", a));
    ASSERT_TRUE(groups.trwGroupView_AfterLabelEdit(node, "  beta "));
    EXPECT_EQ(EntityName(a), "beta01");
    EXPECT_EQ(node->text(0), "beta01");
    EXPECT_TRUE(host.stack.SaveRequired());
    ASSERT_NE(host.stack.Retrive(), nullptr);
    EXPECT_EQ(host.stack.Retrive()->ActionType, AT_ActionRenameEntity);
    EXPECT_TRUE(host.caption.endsWith("*]"));

    ASSERT_TRUE(mnuUndo_Click(host.stack, host));
    EXPECT_EQ(EntityName(a), "alpha");
    EXPECT_EQ(node->text(0), "alpha");
    EXPECT_FALSE(host.stack.SaveRequired());
    ASSERT_TRUE(mnuRedo_Click(host.stack, host));
    EXPECT_EQ(EntityName(a), "beta01");
    EXPECT_EQ(node->text(0), "beta01");
}

TEST_F(Trees, AnEmptyLabelEditLeavesTheOldName) {
    const int a = makeGroup("alpha", root);
    groups.trwGroupView_Populate();
    QTreeWidgetItem* node = groups.Node(key("Group", a));
    EXPECT_FALSE(groups.trwGroupView_AfterLabelEdit(node, ""));
    EXPECT_EQ(EntityName(a), "alpha");
    EXPECT_EQ(node->text(0), "alpha");
    EXPECT_EQ(host.stack.UBound(), 0);
    EXPECT_FALSE(groups.trwGroupView_AfterLabelEdit(groups.Node("WORLD"), "X"));
}

TEST_F(Trees, PolygonsAreRenamedWithoutAUniquenessTest) {
    const int a = makeGroup("alpha", root, 0, 2);
    groups.trwGroupView_Populate();
    groups.trwGroupView_PopulateWithPolygons(a);
    const int p1 = ZELMAR_group_get_first_polygon(a);
    const int p2 = ZELMAR_group_get_next_polygon(p1);
    ZELMAR_polygon_set_name(p1, "face");
    ASSERT_TRUE(groups.trwGroupView_AfterLabelEdit(groups.Node(key("Pol", p2)), "face"));
    EXPECT_EQ(EntityName(p2), "face");
    auto top = host.stack.Retrive();
    ASSERT_NE(top->As<ActionRenameEntity>(), nullptr);
    EXPECT_EQ(top->As<ActionRenameEntity>()->Kind(), EntityPolygon);
    mnuUndo_Click(host.stack, host);
    EXPECT_EQ(EntityName(p2), "");
}

TEST_F(Trees, InPlaceEditingGoesThroughAfterLabelEdit) {
    const int a = makeGroup("alpha", root);
    makeGroup("beta", root);
    groups.trwGroupView_Populate();
    groups.show();
    QTreeWidgetItem* node = groups.Node(key("Group", a));
    groups.setCurrentItem(node);
    ASSERT_TRUE(node->flags() & Qt::ItemIsEditable);
    ASSERT_TRUE(groups.isEnabled());
    groups.editItem(node);
    auto* editor = groups.findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("beta");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();  // the delegate commits by a queued call
    EXPECT_EQ(EntityName(a), "beta01");
    EXPECT_EQ(node->text(0), "beta01");
    EXPECT_EQ(host.stack.UBound(), 1);

    // An emptied label is refused: nothing changes.
    groups.editItem(node);
    editor = groups.findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();  // the delegate commits by a queued call
    EXPECT_EQ(node->text(0), "beta01");
    EXPECT_EQ(host.stack.UBound(), 1);
}

TEST_F(Trees, ANodeClickFindsTheEntityByName) {
    const int a = makeGroup("same", root);
    const int b = makeGroup("same", root);  // two of one name: the first found wins
    groups.trwGroupView_Populate();
    groups.trwGroupView_NodeClick(groups.Node(key("Group", b)));
    ASSERT_EQ(host.treeSelections.size(), 1u);
    EXPECT_EQ(host.treeSelections[0], std::make_pair(int(EntityGroup), a));
    groups.trwGroupView_PopulateWithPolygons(a);
    const int p = ZELMAR_group_get_first_polygon(a);
    ZELMAR_polygon_set_name(p, "face");
    groups.Node(key("Pol", p))->setText(0, "face");
    groups.trwGroupView_NodeClick(groups.Node(key("Pol", p)));
    EXPECT_EQ(host.treeSelections.back(), std::make_pair(int(EntityPolygon), p));
    groups.trwGroupView_NodeClick(groups.Node("WORLD"));
    EXPECT_EQ(host.treeSelections.size(), 2u);
}

TEST_F(Trees, GrpSetNameAndGroupHide) {
    const int a = makeGroup("alpha", root);
    groups.trwGroupView_Populate();
    doc->GrpSetName(a, "gamma");
    EXPECT_EQ(groups.Node(key("Group", a))->text(0), "gamma");
    doc->GroupHide(a);
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node(key("Group", a))), "Group Invisible");
    groups.GroupUnhide(a);
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node(key("Group", a))), "Group");
}

TEST_F(Trees, ResetKeepsTheFoldersOnly) {
    makeGroup("alpha", root);
    groups.trwGroupView_Populate();
    groups.trwGroupView_Reset();
    EXPECT_EQ(groups.Keys(), QStringList{"WORLD"});
    cams.trwCamTrackBKInitialSetup();
    EXPECT_TRUE(cams.Keys().contains("CAM01"));
    cams.trwCamTrackBK_Reset();
    EXPECT_EQ(cams.Keys(), (QStringList{"CAMERA", "TRACK", "BACKGROUND"}));
}

TEST_F(Trees, TabWorkspaceClickRefillsCmbObj) {
    const int a = makeGroup("alpha", root);
    doc->tabWorkspace_Click(1);
    EXPECT_EQ(host.cmbObj, QStringList{GetLocaleString(322)});
    host.currType = 1;
    host.currEntity = a;
    doc->tabWorkspace_Click(1);
    EXPECT_EQ(host.cmbObj, (QStringList{GetLocaleString(322), GetLocaleString(323), GetLocaleString(324)}));
    groups.trwGroupView_Populate();
    doc->tabWorkspace_Click(0);
    EXPECT_EQ(groups.currentItem(), groups.Node(key("Group", a)));
}

TEST_F(Trees, NodesRemovedOrClearedAreNeverFoundAgain) {
    const int a = makeGroup("alpha", root, 0, 3);
    groups.trwGroupView_Populate();
    groups.trwGroupView_PopulateWithPolygons(a);
    const int p = ZELMAR_group_get_first_polygon(a);
    ASSERT_NE(groups.Node(key("Pol", p)), nullptr);
    groups.RemoveNode(key("Group", a));  // its polygon nodes go with it
    EXPECT_EQ(groups.Node(key("Group", a)), nullptr);
    EXPECT_EQ(groups.Node(key("Pol", p)), nullptr);
    groups.trwGroupView_Populate();
    ASSERT_NE(groups.Node(key("Group", a)), nullptr);
    groups.trwGroupView_Reset();
    EXPECT_EQ(groups.Node(key("Group", a)), nullptr);
    // A node deleted behind the tree's back (as Form1 may do) is not found either.
    groups.trwGroupView_Populate();
    delete groups.Node(key("Group", a));
    EXPECT_EQ(groups.Node(key("Group", a)), nullptr);
}

// A valid world of 100,000 nested groups made the editor die of a stack overflow: the tree was filled
// (and emptied) by recursion. Any depth that loads must show. The world is made through the engine's C
// API, from the deepest group up, so that the engine's own checks stay short.
TEST_F(Trees, AHundredThousandNestedGroupsShowAndGoAgain) {
    constexpr int depth = 100000;
    std::vector<int> chain(depth);
    for (int i = 0; i < depth; ++i)
        chain[size_t(i)] = ZELMAR_group_create(QString("G%1").arg(i).toLatin1().constData());
    for (int i = depth - 1; i > 0; --i)
        ASSERT_EQ(ZELMAR_group_get_father_group(chain[size_t(i)]), 0);
    for (int i = depth - 1; i > 0; --i)
        ZELMAR_group_set_father_group(chain[size_t(i)], chain[size_t(i - 1)]);
    ZELMAR_group_set_father_group(chain[0], root);
    ZELMAR_group_disable(chain[size_t(depth - 1)], 1);
    QElapsedTimer t;
    t.start();
    doc->PopulateTrees();
    const qint64 fill = t.elapsed();
    QTreeWidgetItem* deepest = groups.Node(key("Group", chain[size_t(depth - 1)]));
    ASSERT_NE(deepest, nullptr);
    int levels = 0;
    for (QTreeWidgetItem* n = deepest; n->parent(); n = n->parent()) ++levels;
    EXPECT_EQ(levels, depth) << "under WORLD, each group under its father";
    EXPECT_EQ(WorkspaceTree::NodeImage(deepest), "Group Invisible");
    EXPECT_EQ(deepest->text(0), QString("G%1").arg(depth - 1));
    // Highlighting a node (a selection) opens its fathers only as deep as the view can lay out.
    groups.resize(300, 400);
    groups.show();
    groups.ShowNode(deepest);
    QCoreApplication::processEvents();
    EXPECT_EQ(groups.currentItem(), deepest);
    QTreeWidgetItem* shallow = groups.Node(key("Group", chain[40]));
    groups.ShowNode(shallow);
    QCoreApplication::processEvents();
    EXPECT_EQ(groups.currentItem(), shallow);
    EXPECT_TRUE(shallow->parent()->isExpanded());
    groups.hide();
    // Taking a deep subtree out (a delete) and emptying the tree (a close) need no recursion either.
    groups.RemoveNode(key("Group", chain[size_t(depth / 2)]));
    EXPECT_EQ(groups.Node(key("Group", chain[size_t(depth - 1)])), nullptr);
    groups.trwGroupView_Reset();
    EXPECT_EQ(groups.Keys(), QStringList{"WORLD"});
    RecordProperty("FillMilliseconds", int(fill));
}

// The light tree's version test: an engine without the lights' save flag is told, and the tree keeps its
// folder only.
TEST_F(Trees, AnEngineWithoutTheLightsSaveFlagIsToldAndTheLightTreeStaysEmpty) {
    const double at[3] = {0, 0, 100};
    const int light = ZELMAR_light_create("Lamp", at);
    ZELMAR_light_set_save_flag(light, 1);
    SetEntryPointLookup([](const char* name) { return std::string(name) != "ZELMAR_light_get_save_flag"; });
    lights.trwLight_Populate();
    SetEntryPointLookup(nullptr);
    EXPECT_EQ(lights.Keys(), QStringList{"LIGHT"});
    ASSERT_NE(dialogs.last("msgBox"), nullptr);
    EXPECT_EQ(dialogs.last("msgBox")->text,
              "Wrong version of ZELMAR.dll found.\nFailed extracting information of light objects.");
    lights.trwLight_Populate();
    EXPECT_EQ(lights.Keys(), (QStringList{"LIGHT", key("Light", light)}));
}
