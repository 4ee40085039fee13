// Shared set-up of the selection tests: an offscreen QApplication, a scripted input state and dialogs, a
// small world built through the engine's C API (two boxes, a child box, a light with its marker group), the
// real viewports and workspace trees in one window, and a host that plays the main window for the viewports,
// the selection model and the document.
#pragma once
#include "../support/OffscreenApp.h"
#include "frame/Dialogs.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "frame/Settings.h"
#include "document/DocumentHost.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "selection/EntityActions.h"
#include "undo/UndoHost.h"
#include "selection/SelectionModel.h"
#include "view/camera.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

inline QApplication& app() {
    return offscreenApp();
}

// An axis-aligned box of polygons facing outwards, centred on c, in group g. The corners are listed
// counter-clockwise seen from outside and put in backwards (fronts run clockwise).
inline std::vector<int> addBox(int g, const std::array<double, 3>& c, double size) {
    const double h = size / 2;
    const double f[6][4][3] = {
        {{h, -h, -h}, {h, h, -h}, {h, h, h}, {h, -h, h}},
        {{-h, h, -h}, {-h, -h, -h}, {-h, -h, h}, {-h, h, h}},
        {{h, h, -h}, {-h, h, -h}, {-h, h, h}, {h, h, h}},
        {{-h, -h, -h}, {h, -h, -h}, {h, -h, h}, {-h, -h, h}},
        {{-h, -h, h}, {h, -h, h}, {h, h, h}, {-h, h, h}},
        {{-h, h, -h}, {h, h, -h}, {h, -h, -h}, {-h, -h, -h}},
    };
    std::vector<int> pols;
    for (int k = 0; k < 6; ++k) {
        const int p = ZELMAR_polygon_create();
        for (int v = 3; v >= 0; --v) {
            const double vert[6] = {f[k][v][0] + c[0], f[k][v][1] + c[1], f[k][v][2] + c[2], 0, 0, 100};
            ZELMAR_polygon_add_point(p, vert);
        }
        ZELMAR_polygon_set_color_fill(p, 60 + 30 * k, 200 - 20 * k, 120);
        ZELMAR_polygon_set_orientation(p, 1);
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        pols.push_back(p);
    }
    return pols;
}

inline int makeGroup(const char* name, int father) {
    const int g = ZELMAR_group_create(name);
    ZELMAR_group_set_father_group(g, father);
    return g;
}

// The host: main window for the viewports, the selection model and the document at once.
class SelHost : public ViewportHost, public SelectionHost, public DocumentHost {
  public:
    std::unique_ptr<ActionUndoRedo_Stack> stack;
    frmPicWins* views = nullptr;
    trwGroupView* groupTree = nullptr;
    trwCamTrackBK* camTree = nullptr;
    trwLight* lightTree = nullptr;
    SelectionModel* model = nullptr;
    int root = 0;
    SelectMode mode = SelectMode::Entity;
    int tab = 0;
    bool ignoreBackPts = false, ignoreBackPols = false;
    std::map<int, int> lightMarkers, camMarkers; // marker group -> entity
    // What the panels were told.
    QString nameText;
    bool nameEnabled = true;
    std::vector<std::pair<int, int>> closedPanels, openedPanels;
    std::vector<int> menus;
    int lightFrameHidden = 0, groupPanels = 0, resetToNewObj = 0;
    int invalidShown = -1; // the last count of invalid polygons the status bar was given

    // ---- shared ----
    bool WorldOpen() override { return true; }
    int RootGrp() override { return root; }
    SelectMode CurrentSelectMode() override { return mode; }
    ActionUndoRedo_Stack& UndoStack() override { return *stack; }
    int CurrSelEntityType() override { return Sel().CurrSelEntityType; }
    int CurrSelEntity() override { return Sel().CurrSelEntity; }
    void ProcessEvents() override {}
    double WorldSize() override { return 600.0; }

    // ---- SelectionHost ----
    frmPicWins* Views() override { return views; }
    trwGroupView* GroupTree() override { return groupTree; }
    trwCamTrackBK* CamTrackBkTree() override { return camTree; }
    trwLight* LightTree() override { return lightTree; }
    int WorkspaceTab() override { return tab; }
    bool IgnoreBackFacedForPtSel() override { return ignoreBackPts; }
    bool IgnoreBackFacedForPolSel() override { return ignoreBackPols; }
    int GetCamHandle(int g) override { return camMarkers.count(g) ? camMarkers[g] : 0; }
    int GetLightHandle(int g) override { return lightMarkers.count(g) ? lightMarkers[g] : 0; }
    void SetSelectedGrpName(const QString& t, bool e) override {
        nameText = t;
        nameEnabled = e;
    }
    void ResetGroupsTabToNewObj() override { ++resetToNewObj; }
    void ShowInvalidPolygons(int count) override { invalidShown = count; }
    void ShowGroupPanel(int) override { ++groupPanels; }
    void HideLightFrame() override { ++lightFrameHidden; }
    void ClosePanelOfKind(int prev, int now) override { closedPanels.emplace_back(prev, now); }
    void OpenPanelOfKind(int type, int h) override { openedPanels.emplace_back(type, h); }
    void PopupEntityMenu(int type, QPoint) override { menus.push_back(type); }

    // ---- ViewportHost: the selection hooks go to the model ----
    bool CurrentEntityHidden() override { return model->CurrentEntityHidden(); }
    bool GetSelObjsBoundingBx(double mn[3], double mx[3]) override {
        return model->GetSelObjsBoundingBx(mn, mx);
    }
    void MultipleSelection(int b, int x, int y) override { model->MultipleSelection(b, x, y); }
    void SelectMultiplePoints() override { model->SelectMultiplePoints(); }
    void SelectMultiplePols() override { model->SelectMultiplePols(); }
    void SelectMultipleTrackPts() override { model->SelectMultipleTrackPts(); }
    void SelectMultipleObjects() override { model->SelectEntitiesAtMouseUp(); }
    void ShowContextMenu(int x, int y) override { model->ShowContextMenu(x, y); }
    void DrawSelectedPts(int i, QPainter& p) override { model->DrawSelectedPts(i, p); }
    void DrawSelectedPols(int i, QPainter& p) override { model->DrawSelectedPols(i, p); }
    void DrawSelectedTrackPts(int i, QPainter& p) override { model->DrawSelectedTrackPts(i, p); }
    void DrawMultiSelection(int i, QPainter& p, bool w) override { model->DrawMultiSelection(i, p, w); }
    void DeleteSelected() override { model->DeleteSelected(); }
    void ShowSelectionWindow() override { model->ShowSelectionWindow(); }

    // ---- DocumentHost ----
    void SelectEntityFromTree(int kind, int handle) override { model->SelectEntityFromTree(kind, handle); }
};

// The world: root "the_world"; top-level boxes A (at x -250) and B (at x 250) of edge 100; C, a child of B,
// a box of edge 40 above B; a light with its marker, a fatherless box of edge 20 at (0, 0, 250).
struct SelWorld {
    int root = 0, a = 0, b = 0, c = 0, light = 0, lightGrp = 0;
    std::vector<int> aPols, bPols, cPols;
    std::array<int, 4> cams{};

    void build() {
        ZELMAR_engine_close();
        root = ZELMAR_group_create("the_world");
        a = makeGroup("BoxA", root);
        aPols = addBox(a, {-250, 0, 0}, 100);
        b = makeGroup("BoxB", root);
        bPols = addBox(b, {250, 0, 0}, 100);
        c = makeGroup("BoxC", b);
        cPols = addBox(c, {250, 0, 150}, 40);
        const double at[3] = {0, 0, 250};
        light = ZELMAR_light_create("Light01", at);
        lightGrp = ZELMAR_group_create("");
        addBox(lightGrp, {0, 0, 250}, 20);
        ZELMAR_light_set_save_flag(light, 1);
        for (int i = 0; i < 4; ++i) {
            cams[size_t(i)] = ZELMAR_camera_create(("View" + std::to_string(i)).c_str());
            ZELMAR_camera_set_save_flag(cams[size_t(i)], 0); // the views' own cameras are not the world's
        }
    }
};

// The window: viewports on the left, the three trees on the right; a world open, standard views.
class SelFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        app();
        ASSERT_TRUE(m_settings.isValid());
        SettingsStore::setLocation(m_settings.path());
        fake = std::make_unique<FakeInputState>();
        dlg = std::make_unique<ScriptedDialogs>();
        Sel().Clear();
        world.build();
        host.root = world.root;
        host.lightMarkers[world.lightGrp] = world.light;
        host.stack = std::make_unique<ActionUndoRedo_Stack>(maxUndo());
        top = std::make_unique<QWidget>();
        top->setGeometry(20, 20, 1400, 900);
        auto* row = new QHBoxLayout(top.get());
        row->setContentsMargins(0, 0, 0, 0);
        views = new frmPicWins(host, top.get());
        host.views = views;
        host.groupTree = new trwGroupView(top.get());
        host.camTree = new trwCamTrackBK(top.get());
        host.lightTree = new trwLight(top.get());
        row->addWidget(views, 1);
        row->addWidget(host.groupTree);
        row->addWidget(host.lightTree);
        host.camTree->hide();
        doc = std::make_unique<WorldDocument>(host);
        doc->RootGrp = world.root;
        doc->WorldOpen = true;
        doc->AttachTrees(host.groupTree, host.camTree, host.lightTree);
        host.groupTree->SetDocument(doc.get());
        host.camTree->SetDocument(doc.get());
        host.lightTree->SetDocument(doc.get());
        doc->PopulateTrees();
        model = std::make_unique<SelectionModel>(host);
        host.model = model.get();
        setSelectionModel(model.get());
        for (int i = 0; i < 4; ++i)
            views->SetViewportCamera(i, world.cams[size_t(i)]);
        top->show();
        QCoreApplication::processEvents();
        views->ResetCameras();
    }
    void TearDown() override {
        host.stack
            .reset(); // the actions finish their deferred deletions while the engine still holds the world
        setSelectionModel(nullptr);
        model.reset();
        top.reset();
        doc.reset();
        dlg.reset();
        fake.reset();
        Sel().Clear();
        ZELMAR_engine_close();
    }
    virtual std::string maxUndo() { return ""; }

    picWindow* win(int i) { return views->PicWindow(i); }
    QPoint global(int i, QPoint p) { return win(i)->mapToGlobal(p); }

    // The pixel of a world point in window i (its camera current), and whether it projects into it.
    QPoint pixelOf(int i, const std::array<double, 3>& p, bool* inView = nullptr) {
        ZELMAR_camera_set_current(views->ViewCams(i).CamHandle, win(i)->Target());
        int r[2] = {0, 0};
        const int st = ZELMAR_engine_3D_point_to_2D(p.data(), r);
        if (inView) *inView = st == 0;
        return {r[0], r[1]};
    }

    void mouse(int i, QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        fake->setCursorPos(global(i, p));
        QMouseEvent e(type, QPointF(p), QPointF(global(i, p)), b, held, Qt::NoModifier);
        QApplication::sendEvent(win(i), &e);
    }
    void click(int i, QPoint p, Qt::MouseButton b = Qt::LeftButton) {
        mouse(i, QEvent::MouseButtonPress, p, b, b);
        mouse(i, QEvent::MouseButtonRelease, p, b, Qt::NoButton);
    }
    void band(int i, QPoint from, QPoint to, Qt::MouseButton b = Qt::LeftButton) {
        mouse(i, QEvent::MouseButtonPress, from, b, b);
        for (int s = 1; s <= 3; ++s)
            mouse(i, QEvent::MouseMove, from + (to - from) * s / 3, Qt::NoButton, b);
        mouse(i, QEvent::MouseButtonRelease, to, b, Qt::NoButton);
    }
    void withKey(int key, const std::function<void()>& f) {
        fake->press(key);
        f();
        fake->release(key);
    }
    int pushes() const { return host.stack->UBound(); }
    void undo() { mnuUndo_Click(*host.stack, undoHost()); }
    void redo() { mnuRedo_Click(*host.stack, undoHost()); }
    const SelectionState& sel() const { return Sel(); }
    bool inGroupTree(int g) const {
        return host.groupTree->Node(QStringLiteral("Group") + QString::number(g)) != nullptr;
    }

    QTemporaryDir m_settings;
    std::unique_ptr<FakeInputState> fake;
    std::unique_ptr<ScriptedDialogs> dlg;
    SelWorld world;
    SelHost host;
    std::unique_ptr<QWidget> top;
    std::unique_ptr<WorldDocument> doc;
    std::unique_ptr<SelectionModel> model;
    frmPicWins* views = nullptr;
};

} // namespace vexil::test
