// A recording main window for the document's tests: implements DocumentHost and UndoHost, owns the undo
// stack and the three trees, and installs scripted dialogs.
#pragma once
#include "frame/AppPaths.h"
#include "frame/Dialogs.h"
#include "document/DocumentHost.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"

#include <zelmar/zelmar.h>

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct DocTestHost : vexil::DocumentHost, vexil::UndoHost {
    vexil::ActionUndoRedo_Stack stack{"", this};
    QString caption;
    std::map<int, QString> panels;
    std::vector<QString> mru;
    std::vector<int> removedMru;
    std::map<int, int> viewportCameras;
    int templatesShown = 0, clearedViewports = 0, worldChanged = 0, clearWorldState = 0, resetViews = 0, selectedAdded = 0;
    bool busy = false, workspaceEnabled = false, addWorldEnabled = false;
    int currType = 0, currEntity = 0;
    std::vector<int> multi;
    std::vector<std::pair<int, int>> treeSelections;
    QStringList cmbObj;
    vexil::WorldDocument* doc = nullptr;

    vexil::ActionUndoRedo_Stack& UndoStack() override { return stack; }
    void SetWindowCaption(const QString& c) override { caption = c; }
    void SetStatusPanel(int p, const QString& t) override { panels[p] = t; }
    void SetBusyPointers(bool b) override { busy = b; }
    void AddMRUItem(const QString& p) override { mru.push_back(p); }
    void RemoveMRUItem(int i) override { removedMru.push_back(i); }
    void SetWorkspaceEnabled(bool e) override { workspaceEnabled = e; }
    void SetAddWorldEnabled(bool e) override { addWorldEnabled = e; }
    void SetViewportCamera(int i, int h) override { viewportCameras[i] = h; }
    void ResetViews() override { ++resetViews; }
    // What the user does in the template dialog: given the document's load, chooses (or not).
    std::function<void(const std::function<bool(const QString&)>&)> templateChoice;
    void ShowTemplates(const std::function<bool(const QString&)>& load) override {
        ++templatesShown;
        if (templateChoice) templateChoice(load);
    }
    void WorldChanged() override { ++worldChanged; }
    void ClearWorldState() override { ++clearWorldState; }
    void ClearViewports() override { ++clearedViewports; }
    void SelectAddedGroup(int) override { ++selectedAdded; }
    int CurrSelEntityType() override { return currType; }
    int CurrSelEntity() override { return currEntity; }
    std::vector<int> PrevMultiSelGroups() override { return multi; }
    void SelectEntityFromTree(int kind, int handle) override { treeSelections.push_back({kind, handle}); }
    void SetCmbObjItems(const QStringList& items, int) override { cmbObj = items; }

    // UndoHost: the caption and the trees of the document.
    void SetCaption() override {
        if (doc) doc->SetCaption();
    }
    void SetTreeNodeText(const std::string& key, const std::string& text) override {
        if (!doc) return;
        for (vexil::WorkspaceTree* t : {static_cast<vexil::WorkspaceTree*>(doc->GroupTree()),
                                        static_cast<vexil::WorkspaceTree*>(doc->CamTrackBkTree()),
                                        static_cast<vexil::WorkspaceTree*>(doc->LightTree())})
            if (t && t->SetNodeText(QString::fromStdString(key), QString::fromStdString(text))) return;
    }
};

// A document with its trees, in a fresh application folder, with scripted dialogs.
class DocFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(appDir.isValid());
        vexil::setAppFolderForTests(appDir.path());
        vexil::setUndoHost(&host);
        doc = std::make_unique<vexil::WorldDocument>(host);
        host.doc = doc.get();
        doc->AttachTrees(&groups, &cams, &lights);
        doc->SetApplicationFolder(appDir.path());
        doc->SetProgramFolder(appDir.path());
    }
    void TearDown() override {
        doc->UnloadWorld();
        vexil::setUndoHost(nullptr);
        vexil::setAppFolderForTests(QString());
    }
    QString path(const QString& rel) const { return appDir.path() + '/' + rel; }

    // A group of `n` coloured squares under `father`.
    static int makeGroup(const char* name, int father, double x = 0, int n = 1) {
        const int g = ZELMAR_group_create(name);
        ZELMAR_group_set_father_group(g, father);
        for (int i = 0; i < n; ++i) {
            const int p = ZELMAR_polygon_create();
            const double z = i * 10.0;
            const double v[4][6] = {{x, 0, z, 0, 0, 100}, {x + 10, 0, z, 1, 0, 100}, {x + 10, 10, z, 1, 1, 100}, {x, 10, z, 0, 1, 100}};
            for (const auto& pt : v) ZELMAR_polygon_add_point(p, pt);
            ZELMAR_polygon_set_color_fill(p, 200, 100, 50);
            ZELMAR_polygon_set_group(p, g);
            ZELMAR_engine_add_polygon(p);
        }
        return g;
    }

    QTemporaryDir appDir;
    vexil::ScriptedDialogs dialogs;
    DocTestHost host;
    vexil::trwGroupView groups;
    vexil::trwCamTrackBK cams;
    vexil::trwLight lights;
    std::unique_ptr<vexil::WorldDocument> doc;
};
