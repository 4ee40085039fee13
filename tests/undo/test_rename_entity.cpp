// ActionRenameEntity (type 27) against the real engine: Undo and Redo set the engine name and the tree text.
#include "undo/ActionRenameEntity.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"

#include <zelmar/zelmar.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

using namespace vexil;

namespace {

struct TreeHost : UndoHost {
    std::map<std::string, std::string> texts;
    void SetTreeNodeText(const std::string& key, const std::string& text) override { texts[key] = text; }
};

std::string nameOf(int handle) {
    char buf[256] = {};
    ZELMAR_entity_get_name(handle, buf, 255);
    return buf;
}

class Rename : public ::testing::Test {
protected:
    void SetUp() override {
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
        setUndoHost(&host);
    }
    void TearDown() override { setUndoHost(nullptr); }
    TreeHost host;
};

} // namespace

TEST(RenameKeys, NodeKeysByKind) {
    EXPECT_EQ(EntityNodeKey(EntityGroup, 12), "Group12");
    EXPECT_EQ(EntityNodeKey(EntityPolygon, 7), "Pol7");
    EXPECT_EQ(EntityNodeKey(EntityCamera, 3), "Camera3");
    EXPECT_EQ(EntityNodeKey(EntityTrack, 3), "Track3");
    EXPECT_EQ(EntityNodeKey(EntityLight, 3), "Light3");
    EXPECT_EQ(EntityNodeKey(EntityBackground, 3), "Background3");
    EXPECT_EQ(EntityNodeKey(EntityMultiple, 3), "");
}

TEST_F(Rename, GroupUndoRedoThroughTheStack) {
    const int g = ZELMAR_group_create("box");
    ASSERT_NE(g, 0);
    ActionUndoRedo_Stack stack("", &host);
    auto a = ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity);
    auto* r = a->As<ActionRenameEntity>();
    ASSERT_NE(r, nullptr);
    r->SetEntityRenamed(EntityGroup, g);
    r->SetPrevName("box");
    r->SetNewName("crate");
    ZELMAR_group_set_name(g, "crate");
    stack.Push(a);

    ASSERT_TRUE(mnuUndo_Click(stack, host));
    EXPECT_EQ(nameOf(g), "box");
    EXPECT_EQ(host.texts["Group" + std::to_string(g)], "box");
    ASSERT_TRUE(mnuRedo_Click(stack, host));
    EXPECT_EQ(nameOf(g), "crate");
    EXPECT_EQ(host.texts["Group" + std::to_string(g)], "crate");
}

TEST_F(Rename, EveryNamedKind) {
    const int cam = ZELMAR_camera_create("cam");
    const int light = ZELMAR_light_create("lamp", nullptr);
    const int track = ZELMAR_track_create("path", nullptr, 0, 0);
    const int bk = ZELMAR_background_create("sky", 0);
    for (auto [kind, h] : {std::pair{EntityCamera, cam}, {EntityLight, light}, {EntityTrack, track}, {EntityBackground, bk}}) {
        ASSERT_NE(h, 0) << kind;
        ActionRenameEntity r;
        r.SetEntityRenamed(kind, h);
        const std::string old = nameOf(h);
        r.SetPrevName(old);
        r.SetNewName("renamed");
        r.Redo();
        EXPECT_EQ(nameOf(h), "renamed") << kind;
        EXPECT_EQ(host.texts[EntityNodeKey(kind, h)], "renamed");
        r.Undo();
        EXPECT_EQ(nameOf(h), old) << kind;
    }
}
