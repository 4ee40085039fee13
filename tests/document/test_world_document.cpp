// World documents: new, load, save, save as, hold and fetch, add, close, viewer mode.
#include "DocTestHost.h"

#include "frame/ErrLog.h"
#include "frame/Locale.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QListWidget>
#include <QPushButton>
#include <QFileInfo>
#include <QTextStream>
#include <QTest>

using namespace vexil;

namespace {

class World : public DocFixture {
protected:
    void SetUp() override {
        DocFixture::SetUp();
        doc->NewWorld(true);
    }
    std::string name(int h) { return EntityName(h); }
    QString scratch(const QString& dir) { return dir + "/VXEtmpDir$@$$"; }
    // A world with a few groups, saved as `file` in the application folder.
    QString saveSample(const QString& file) {
        makeGroup("floor", doc->RootGrp, 0, 2);
        const int walls = makeGroup("walls", doc->RootGrp, 20);
        makeGroup("door", walls, 40);
        dialogs.fileAnswers.push_back(path(file));
        doc->mnuSaveAs_Click();
        return path(file);
    }
};

} // namespace

TEST_F(World, NewWorldHoldsTheRootAndFourViewportCameras) {
    EXPECT_TRUE(doc->WorldOpen);
    EXPECT_EQ(name(doc->RootGrp), "the_world");
    EXPECT_EQ(doc->WorldFileName, "Untitled.wld");
    EXPECT_EQ(doc->WorldSize, 1000.0);
    EXPECT_EQ(host.caption, UiAppTitle() + " - Untitled.wld");
    EXPECT_FALSE(host.stack.SaveRequired());
    EXPECT_TRUE(host.workspaceEnabled);
    EXPECT_TRUE(host.addWorldEnabled);
    EXPECT_EQ(host.worldChanged, 1);
    // The crossing of numbers and names.
    ASSERT_EQ(host.viewportCameras.size(), 4u);
    EXPECT_EQ(name(host.viewportCameras[0]), "camera0");
    EXPECT_EQ(name(host.viewportCameras[2]), "camera1");
    EXPECT_EQ(name(host.viewportCameras[3]), "camera2");
    EXPECT_EQ(name(host.viewportCameras[1]), "camera3");
    for (auto [i, cam] : host.viewportCameras) EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 0) << i;
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(doc->RootGrp), 0);
    EXPECT_EQ(ZELMAR_light_get_first_light(), 0);
    EXPECT_EQ(groups.Keys(), QStringList{"WORLD"});
    EXPECT_EQ(host.panels[1], "0");
    // The first start shows no template dialog.
    EXPECT_EQ(host.templatesShown, 0);
}

TEST_F(World, FileNewOffersTheTemplates) {
    doc->mnuNew_Click();
    EXPECT_EQ(host.templatesShown, 1);
    EXPECT_TRUE(doc->WorldOpen);
}

TEST_F(World, AskingToSaveCancelStopsNoGoesOn) {
    makeGroup("box", doc->RootGrp);
    ActionRef a = ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity);
    host.stack.Push(a);
    const int root = doc->RootGrp;
    dialogs.msgAnswers.push_back(vbCancel);
    doc->mnuNew_Click();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(332));
    EXPECT_EQ(dialogs.last("msgBox")->buttons, MsgYesNoCancel);
    EXPECT_EQ(dialogs.last("msgBox")->icon, MsgQuestion);
    EXPECT_EQ(doc->RootGrp, root);  // nothing happened
    // Yes on an untitled world asks for a file; cancelling it stops too.
    dialogs.msgAnswers.push_back(vbYes);
    dialogs.fileAnswers.push_back(QString());
    doc->mnuNew_Click();
    EXPECT_EQ(doc->RootGrp, root);
    EXPECT_EQ(dialogs.count("save"), 1);
    // No: a new world, and the undo stack was reset on the way.
    dialogs.msgAnswers.push_back(vbNo);
    doc->mnuNew_Click();
    EXPECT_NE(doc->RootGrp, root);
    EXPECT_EQ(host.stack.UBound(), 0);
    EXPECT_FALSE(host.stack.SaveRequired());
}

TEST_F(World, SaveAsWritesTheFileAndTheScratchFolderIsGone) {
    const QString file = saveSample("first.wld");
    EXPECT_TRUE(QFileInfo(file).isFile());
    EXPECT_TRUE(QFileInfo(path("bitmaps")).isDir());
    EXPECT_FALSE(QFileInfo::exists(scratch(appDir.path())));
    EXPECT_EQ(doc->WorldFileName, file);
    EXPECT_EQ(host.caption, UiAppTitle() + " - " + file);
    ASSERT_EQ(host.mru.size(), 1u);
    EXPECT_EQ(host.mru[0], file);
    EXPECT_FALSE(host.stack.SaveRequired());
    EXPECT_EQ(host.panels[3], "");  // "Saving........" was shown and blanked
    EXPECT_FALSE(host.busy);
    // Save now writes to the same file without asking.
    const int asked = int(dialogs.asked.size());
    doc->mnuSave_Click();
    EXPECT_EQ(int(dialogs.asked.size()), asked);
    EXPECT_EQ(host.caption, UiAppTitle() + " [" + file + "]");
}

TEST_F(World, LoadGivesBackWhatWasSaved) {
    const QString file = saveSample("round.wld");
    doc->NewWorld(true);
    EXPECT_EQ(GroupUsingName("floor"), 0);
    ASSERT_TRUE(doc->LoadWorld(file));
    EXPECT_TRUE(doc->WorldOpen);
    EXPECT_EQ(doc->WorldFileName, file);
    EXPECT_EQ(host.caption, UiAppTitle() + " [" + file + "]");
    EXPECT_EQ(name(doc->RootGrp), "the_world");
    const int floor = GroupUsingName("floor"), walls = GroupUsingName("walls"), door = GroupUsingName("door");
    ASSERT_NE(floor, 0);
    ASSERT_NE(door, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(floor), doc->RootGrp);
    EXPECT_EQ(ZELMAR_group_get_father_group(door), walls);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(doc->RootGrp), 4);
    EXPECT_EQ(host.panels[1], "4");
    // WorldSize is the largest extent: x from 0 to 50.
    EXPECT_DOUBLE_EQ(doc->WorldSize, 50.0);
    EXPECT_EQ(groups.Keys(), (QStringList{"WORLD", "Group" + QString::number(floor), "Group" + QString::number(walls),
                                          "Group" + QString::number(door)}));
    EXPECT_FALSE(host.stack.SaveRequired());
    // Orientation 0 for all polygons of a loaded world.
    for (int p = ZELMAR_group_get_first_polygon(doc->RootGrp); p; p = ZELMAR_group_get_next_polygon(p))
        EXPECT_EQ(ZELMAR_polygon_get_orientation(p), 0);
}

TEST_F(World, SaveAsOverAnExistingFileAsksFirst) {
    const QString file = path("exists.wld");
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("not a world");
    }
    makeGroup("box", doc->RootGrp);
    // No: the dialog comes again; Cancel there stops.
    dialogs.fileAnswers = {file, file};
    dialogs.msgAnswers = {vbNo, vbCancel};
    doc->mnuSaveAs_Click();
    EXPECT_EQ(dialogs.count("save"), 2);
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(334));
    EXPECT_EQ(doc->WorldFileName, "Untitled.wld");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("not a world"));
    f.close();
    // Yes replaces it.
    dialogs.fileAnswers = {file};
    dialogs.msgAnswers = {vbYes};
    doc->mnuSaveAs_Click();
    EXPECT_EQ(doc->WorldFileName, file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_NE(f.readAll(), QByteArray("not a world"));
    EXPECT_FALSE(QFileInfo::exists(scratch(appDir.path())));
}

TEST_F(World, SavingOverTheOpenFileReplacesIt) {
    const QString file = saveSample("open.wld");
    ASSERT_TRUE(doc->LoadWorld(file));
    makeGroup("extra", doc->RootGrp, 100);
    doc->mnuSave_Click();
    ASSERT_TRUE(doc->LoadWorld(file));
    EXPECT_NE(GroupUsingName("extra"), 0);
    EXPECT_FALSE(QFileInfo::exists(scratch(appDir.path())));
}

TEST_F(World, AHiddenGroupStaysHiddenAndIsVisibleInTheFile) {
    const int box = makeGroup("box", doc->RootGrp);
    const int child = makeGroup("child", box, 20);
    groups.trwGroupView_Populate();
    ZELMAR_group_disable(box, 1);
    ZELMAR_group_disable(child, 1);
    dialogs.fileAnswers.push_back(path("hidden.wld"));
    doc->mnuSaveAs_Click();
    EXPECT_EQ(ZELMAR_group_is_disable(box), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(child), 1);
    EXPECT_EQ(doc->DisabledGroupsAtSaveCount, 2);
    EXPECT_EQ(WorkspaceTree::NodeImage(groups.Node("Group" + QString::number(box))), "Group Invisible");
    ASSERT_TRUE(doc->LoadWorld(path("hidden.wld")));
    const int loaded = GroupUsingName("box");
    ASSERT_NE(loaded, 0);
    EXPECT_EQ(ZELMAR_group_is_disable(loaded), 0);
    EXPECT_EQ(ZELMAR_group_is_disable(GroupUsingName("child")), 0);
}

TEST_F(World, HoldThenFetch) {
    // Fetch without a hold says so and does nothing.
    const int root = doc->RootGrp;
    doc->mnuFetch_Click();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(379));
    EXPECT_EQ(dialogs.last("msgBox")->icon, MsgInformation);
    EXPECT_EQ(doc->RootGrp, root);

    makeGroup("held", doc->RootGrp);
    host.stack.Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    doc->mnuHold_Click();
    EXPECT_TRUE(QFileInfo(path("Hold.wld")).isFile());
    EXPECT_FALSE(host.stack.SaveRequired());  // a hold counts as a save
    EXPECT_EQ(doc->WorldFileName, "Untitled.wld");

    doc->mnuNew_Click();  // not dirty: no question
    EXPECT_EQ(GroupUsingName("held"), 0);

    // Cancel of the confirmation does nothing.
    dialogs.msgAnswers.push_back(vbCancel);
    doc->mnuFetch_Click();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(378));
    EXPECT_EQ(GroupUsingName("held"), 0);

    dialogs.msgAnswers.push_back(vbOK);
    doc->mnuFetch_Click();
    EXPECT_NE(GroupUsingName("held"), 0);
    EXPECT_EQ(doc->WorldFileName, "Untitled.wld");
    EXPECT_FALSE(host.stack.SaveRequired());
    EXPECT_EQ(host.caption, UiAppTitle() + " - Untitled.wld");
}

TEST_F(World, AddWorldOfTheOpenFileIsRefused) {
    const QString file = saveSample("self.wld");
    dialogs.fileAnswers.push_back(file);
    doc->AddWorldWithOpenDialog();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(328));
    EXPECT_EQ(dialogs.count("msgBox"), 1);  // not also "Failed adding world!"
    EXPECT_EQ(host.selectedAdded, 0);
    EXPECT_FALSE(host.busy);
}

TEST_F(World, AddWorldPutsTheAddedRootUnderOurs) {
    const QString other = saveSample("other.wld");
    doc->NewWorld(true);
    makeGroup("mine", doc->RootGrp, -100);
    dialogs.fileAnswers.push_back(other);
    doc->AddWorldWithOpenDialog();
    ASSERT_NE(doc->AddedGroup, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(doc->AddedGroup), doc->RootGrp);
    EXPECT_EQ(host.selectedAdded, 1);
    // The added "the_world" is named after its file; the root stays the one "the_world".
    EXPECT_EQ(name(doc->AddedGroup), "other");
    EXPECT_EQ(GroupUsingName("the_world"), doc->RootGrp);
    EXPECT_NE(GroupUsingName("floor"), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(doc->RootGrp), 5);
    EXPECT_EQ(host.panels[1], "5");
    EXPECT_NE(groups.Node("Group" + QString::number(doc->AddedGroup)), nullptr);
    // The added world is centred on the origin (its location is set there): x from -25 to 25, ours -100 to -90.
    EXPECT_DOUBLE_EQ(doc->WorldSize, 125.0);
    // A file that can't be added.
    dialogs.fileAnswers.push_back(path("missing.wld"));
    doc->AddWorldWithOpenDialog();
    EXPECT_EQ(doc->AddedGroup, 0);
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(327));
}

TEST_F(World, ALoadThatFailsLeavesNoWorld) {
    EXPECT_FALSE(doc->LoadWorld(QString()));
    EXPECT_TRUE(doc->WorldOpen);
    EXPECT_FALSE(doc->LoadWorld(path("nothing-here.wld")));
    EXPECT_FALSE(doc->WorldOpen);
    EXPECT_TRUE(dialogs.last("msgBox")->text.startsWith(GetLocaleString(321)));
    EXPECT_EQ(dialogs.last("msgBox")->icon, MsgExclamation);
    EXPECT_FALSE(host.workspaceEnabled);
    EXPECT_FALSE(host.busy);
    EXPECT_EQ(host.clearedViewports, 1);
}

// A world that failed to load said only "Error Loading World"; the reason was in the log alone.
TEST_F(World, AFailedLoadSaysWhyInItsMessage) {
    QFile bad(path("broken.wld"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("this is not a world\n\x01\x02");
    bad.close();
    EXPECT_FALSE(doc->LoadWorld(path("broken.wld")));
    const QString text = dialogs.last("msgBox")->text;
    EXPECT_TRUE(text.startsWith(GetLocaleString(321))) << text.toStdString();
    EXPECT_TRUE(text.contains(path("broken.wld"))) << text.toStdString();
    const QString reason = QString::fromLocal8Bit(ZELMAR_engine_get_last_error());
    ASSERT_FALSE(reason.isEmpty());
    EXPECT_TRUE(text.contains(reason)) << text.toStdString();
}

TEST_F(World, OpenAndRecentFiles) {
    const QString file = saveSample("recent.wld");
    host.mru.clear();
    dialogs.fileAnswers.push_back(file);
    doc->mnuOpenFile_Click();
    ASSERT_EQ(host.mru.size(), 1u);
    EXPECT_EQ(host.mru[0], file);
    doc->mnuMRU_Click(3, path("gone.wld"));
    ASSERT_EQ(host.removedMru.size(), 1u);
    EXPECT_EQ(host.removedMru[0], 3);
    // A cancelled open dialog changes nothing.
    ASSERT_TRUE(doc->LoadWorld(file));
    dialogs.fileAnswers.push_back(QString());
    doc->mnuOpenFile_Click();
    EXPECT_TRUE(doc->WorldOpen);
}

TEST_F(World, AWorldWithoutTheWorldIsAdopted) {
    // A file whose top is "top": saved from a group that is not "the_world".
    const int top = makeGroup("top", 0);
    makeGroup("leaf", top, 20);
    const int lone = makeGroup("lone", 0, 40);
    (void)lone;
    QDir().mkpath(path("foreign"));
    ZELMAR_engine_save(path("foreign/foreign.wld").toLocal8Bit().constData(), top, WorldDocument::SaveFlags);
    ASSERT_TRUE(doc->LoadWorld(path("foreign/foreign.wld")));
    const int root = doc->RootGrp;
    EXPECT_EQ(name(root), "the_world");
    const int loadedTop = GroupUsingName("top");
    ASSERT_NE(loadedTop, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(loadedTop), root);
    EXPECT_EQ(ZELMAR_group_get_father_group(root), 0);
    for (int g = ZELMAR_group_get_first_group(); g; g = ZELMAR_group_get_next(g))
        if (g != root && ZELMAR_group_get_father_group(g) == 0) ADD_FAILURE() << "fatherless group " << name(g);
}

TEST_F(World, CloseBlanksTheViewportsAndEmptiesTheTree) {
    makeGroup("box", doc->RootGrp);
    groups.trwGroupView_Populate();
    host.stack.Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    doc->mnuCloseFile_Click();
    EXPECT_FALSE(doc->WorldOpen);
    EXPECT_EQ(host.clearedViewports, 1);
    EXPECT_EQ(host.clearWorldState, 1);
    EXPECT_EQ(groups.Keys(), QStringList{"WORLD"});
    EXPECT_EQ(host.stack.UBound(), 0);  // the stack is reset before the world goes
    EXPECT_EQ(host.caption, UiAppTitle());
    EXPECT_FALSE(host.workspaceEnabled);
    EXPECT_FALSE(host.addWorldEnabled);
    EXPECT_TRUE(host.stack.SaveRequired());  // closing does not offer to save, nor forget the count
    doc->UnloadWorld();  // nothing to do
    EXPECT_EQ(host.clearWorldState, 1);
}

TEST_F(World, CaptionFollowsTheSaveMarker) {
    dialogs.fileAnswers.push_back(path("cap.wld"));
    doc->mnuSaveAs_Click();
    doc->SetCaption();
    EXPECT_EQ(host.caption, UiAppTitle() + " [" + path("cap.wld") + "]");
    host.stack.Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    EXPECT_EQ(host.caption, UiAppTitle() + " [" + path("cap.wld") + "*]");
    mnuUndo_Click(host.stack, host);
    EXPECT_EQ(host.caption, UiAppTitle() + " [" + path("cap.wld") + "]");
}

TEST_F(World, StatusBarAndHourglass) {
    const int a = makeGroup("a", doc->RootGrp, 0, 3);
    const int b = makeGroup("b", doc->RootGrp, 20, 2);
    host.currType = 1;
    host.currEntity = a;
    doc->UpdateStatusBar();
    EXPECT_EQ(host.panels[1], "5");
    EXPECT_EQ(host.panels[2], "3");
    host.currType = 6;
    host.multi = {a, b};
    doc->UpdateStatusBar();
    EXPECT_EQ(host.panels[2], "5");
    host.currType = 2;
    doc->UpdateStatusBar();
    EXPECT_EQ(host.panels[2], "");
    doc->SetMousePtrToHourGlass(false);
    EXPECT_TRUE(host.busy);
    EXPECT_EQ(host.panels[6], GetLocaleString(381));
    doc->SetMousePtrToHourGlass(true);
    EXPECT_FALSE(host.busy);
    EXPECT_EQ(host.panels[6], "");
}

TEST_F(World, WorldSizeOfAnEmptyWorldIs10000) {
    EXPECT_EQ(doc->GetWorldSize(), 10000.0);
    makeGroup("tall", doc->RootGrp);  // 10 by 10 by 0
    EXPECT_DOUBLE_EQ(doc->GetWorldSize(), 10.0);
}

TEST_F(World, ViewerModeSavesAndStartsTheViewer) {
    // Without the viewer program: the world is saved and the user is told.
    doc->mnuViewerMode_Click();
    EXPECT_TRUE(QFileInfo(path("Viewer Mode/Viewer.wld")).isFile());
    EXPECT_TRUE(dialogs.last("msgBox")->text.contains("vexil-viewer"));
    // With a stand-in viewer that writes its argument and working folder.
    const QString program = path("vexil-viewer");
    {
        QFile f(program);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("#!/bin/sh\necho \"$1|$(pwd)\" > \"$(dirname \"$0\")/viewer-ran.txt\"\n");
    }
    QFile::setPermissions(program, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    const int before = dialogs.count("msgBox");
    doc->mnuViewerMode_Click();
    EXPECT_EQ(dialogs.count("msgBox"), before);
    // The stand-in's whole line, ended by its newline: the shell makes the file before it writes into it,
    // so the file's existence says nothing (found when the suite ran under load).
    QString line;
    auto wholeLine = [&] {
        QFile ran(path("viewer-ran.txt"));
        if (!ran.open(QIODevice::ReadOnly)) return false;
        const QString text = QString::fromLocal8Bit(ran.readAll());
        if (!text.endsWith('\n')) return false;
        line = text.trimmed();
        return true;
    };
    QElapsedTimer waited;
    waited.start();
    while (!wholeLine() && waited.elapsed() < 60000) QTest::qWait(10);
    ASSERT_TRUE(wholeLine()) << "the stand-in viewer never wrote its line";
    EXPECT_EQ(line, path("Viewer Mode/Viewer.wld") + "|" + QFileInfo(appDir.path()).canonicalFilePath());
    // Not without a world.
    doc->mnuCloseFile_Click();
    const int asked = int(dialogs.asked.size());
    doc->mnuViewerMode_Click();
    EXPECT_EQ(int(dialogs.asked.size()), asked);
}

TEST_F(World, TheShippedSampleAndTemplatesLoad) {
    const QString data = QStringLiteral(VEXIL_SOURCE_DIR) + "/data";
    ASSERT_TRUE(doc->LoadWorld(data + "/samples/Sample.wld"));
    for (const char* g : {"Ground", "House", "Walls", "Roof", "Door", "Tower", "Trees", "Tree01", "Pond", "Fence"})
        EXPECT_NE(GroupUsingName(g), 0) << g;
    EXPECT_GT(ZELMAR_group_get_number_of_polygons(doc->RootGrp), 200);
    EXPECT_NE(LightUsingName("Sun"), 0);
    EXPECT_NE(CameraUsingName("Camera01"), 0);
    EXPECT_NE(TrackUsingName("Track01"), 0);
    EXPECT_NE(BackgroundUsingName("Background01"), 0);
    EXPECT_NE(ZELMAR_bitmap_get_handle("brick"), 0);  // the bitmaps were found in data/samples/bitmaps
    EXPECT_TRUE(cams.Keys().contains("Camera" + QString::number(CameraUsingName("Camera01"))));
    EXPECT_TRUE(lights.Keys().contains("Light" + QString::number(LightUsingName("Sun"))));
    EXPECT_GT(doc->WorldSize, 1000.0);
    for (const char* t : {"Empty Room", "Green Field", "Studio", "Courtyard"}) {
        ASSERT_TRUE(doc->LoadWorld(data + "/Templates/" + t + ".wld")) << t;
        EXPECT_GT(ZELMAR_group_get_number_of_polygons(doc->RootGrp), 0) << t;
        EXPECT_NE(ZELMAR_light_get_first_light(), 0) << t;
    }
}

TEST_F(World, ATemplateChosenInTheDialogIsLoaded) {
    const QString data = QStringLiteral(VEXIL_SOURCE_DIR) + "/data";
    doc->SetApplicationFolder(data);
    host.templateChoice = [&](const std::function<bool(const QString&)>& load) {
        EXPECT_TRUE(load(data + "/Templates/Studio.wld"));
    };
    doc->mnuNew_Click();
    EXPECT_EQ(doc->WorldFileName, data + "/Templates/Studio.wld");
    EXPECT_NE(GroupUsingName("Pedestals"), 0);
    EXPECT_TRUE(doc->WorldOpen);
}

TEST_F(World, ANameWithoutExtensionIsSavedAsWld) {
    makeGroup("box", doc->RootGrp);
    dialogs.fileAnswers.push_back(path("plain"));
    doc->mnuSaveAs_Click();
    EXPECT_EQ(doc->WorldFileName, path("plain.wld"));
    EXPECT_TRUE(QFileInfo(path("plain.wld")).isFile());
}

// Choosing the ".zelmar" type for a name without an extension wrote a ".wld" file.
TEST_F(World, SaveAsWritesTheTypeChosenInTheDialog) {
    makeGroup("box", doc->RootGrp);
    dialogs.fileAnswers.push_back(path("typed"));
    dialogs.filterAnswers.push_back("*.zelmar (*.zelmar)");
    doc->mnuSaveAs_Click();
    EXPECT_EQ(doc->WorldFileName, path("typed.zelmar"));
    EXPECT_TRUE(QFileInfo(path("typed.zelmar")).isFile());
    EXPECT_FALSE(QFileInfo::exists(path("typed.wld")));
    dialogs.fileAnswers.push_back(path("packed"));
    dialogs.filterAnswers.push_back("*.3dzelmar (*.3dzelmar)");
    doc->mnuSaveAs_Click();
    EXPECT_TRUE(QFileInfo(path("packed.3dzelmar")).isFile());
    // A name with its own extension keeps it.
    dialogs.fileAnswers.push_back(path("own.wld"));
    dialogs.filterAnswers.push_back("*.tolvane (*.tolvane)");
    doc->mnuSaveAs_Click();
    EXPECT_TRUE(QFileInfo(path("own.wld")).isFile());
    // Every type the engine reads is in "All supported files", ".3dzelmar" too.
    const QString all = WorldDocument::OpenFilter().section(";;", 0, 0);
    for (const char* ext : {"*.wld", "*.tolvane", "*.zelmar", "*.3dzelmar"}) EXPECT_TRUE(all.contains(ext)) << ext;
    // And a saved ".3dzelmar" world opens again.
    EXPECT_TRUE(doc->LoadWorld(path("packed.3dzelmar")));
    EXPECT_NE(GroupUsingName("box"), 0);
}

// The document deleted the old file before moving the new one into place: a save that failed lost the
// world. It found its own copies of the file helpers; now it uses the frame's.
TEST_F(World, ASaveThatFailsKeepsTheOldFileAndSaysSo) {
    QFile old(path("keep.txt"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("the old world");
    old.close();
    makeGroup("box", doc->RootGrp);
    host.stack.Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    dialogs.fileAnswers.push_back(path("keep.txt")); // an extension the engine does not write
    dialogs.msgAnswers.push_back(vbYes);             // replace it
    doc->mnuSaveAs_Click();
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), QByteArray("the old world"));
    EXPECT_TRUE(dialogs.last("msgBox")->text.contains("not saved")) << dialogs.last("msgBox")->text.toStdString();
    EXPECT_TRUE(host.stack.SaveRequired()) << "the world is still unsaved";
    EXPECT_EQ(doc->WorldFileName, "Untitled.wld");
    EXPECT_FALSE(QFileInfo::exists(scratch(appDir.path())));
}

TEST_F(World, ASaveTheEngineRefusesIsLoggedAsAWarning) {
    AppLog().setLogFile(path("VXE_Error.log"));
    AppLog().ClearLogFile();
    makeGroup("box", doc->RootGrp);
    dialogs.fileAnswers.push_back(path("odd.txt"));  // an extension the engine does not write
    doc->mnuSaveAs_Click();
    EXPECT_FALSE(QFileInfo::exists(path("odd.txt")));
    EXPECT_FALSE(QFileInfo::exists(scratch(appDir.path())));
    QFile log(path("VXE_Error.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromLocal8Bit(log.readAll());
    EXPECT_TRUE(text.startsWith("Warning:")) << text.toStdString();
    EXPECT_TRUE(text.contains("odd.txt")) << text.toStdString();
}

TEST_F(World, AMissingBitmapDoesNotFailTheLoadButIsLogged) {
    const QString data = QStringLiteral(VEXIL_SOURCE_DIR) + "/data/samples";
    QDir().mkpath(path("copy"));
    ASSERT_TRUE(QFile::copy(data + "/Sample.wld", path("copy/Sample.wld")));  // without its bitmaps
    AppLog().setLogFile(path("VXE_Error.log"));
    AppLog().ClearLogFile();
    ASSERT_TRUE(doc->LoadWorld(path("copy/Sample.wld")));
    EXPECT_NE(GroupUsingName("House"), 0);
    QFile log(path("VXE_Error.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromLocal8Bit(log.readAll());
    EXPECT_TRUE(text.contains("brick")) << text.toStdString();
}
