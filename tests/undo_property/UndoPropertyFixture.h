// The world and the window of the undo property test: the selection tests' world (boxes, a child box, a
// light with its marker) plus a flat grid of quads, real offscreen viewports, the modelling actions
// installed and an undo stack deep enough for every edit of a run.
#pragma once
#include "selection/SelTestSupport.h"

#include "EditRegistry.h"
#include "modelling/EditGeometry.h"
#include "modelling/ModellingActions.h"
#include "selection/ActionSubSelect.h"
#include "selection/WeldedPoints.h"

#include <QFile>
#include <map>
#include <memory>
#include <string>

namespace vexil::test {

class UndoPropertyFixture : public SelFixture {
  public:
    using SelFixture::host;
    using SelFixture::model;
    using SelFixture::pixelOf;
    using SelFixture::views;
    using SelFixture::world;
    std::string maxUndo() override { return "2000"; }

    void SetUp() override {
        SelFixture::SetUp();
        InstallModellingActions();
        grid = makeGroup("Grid", world.root);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                const int p = ZELMAR_polygon_create();
                const double x0 = -60 + 40.0 * i, y0 = -60 + 40.0 * j, z = -120;
                const double c[4][2] = {{x0, y0}, {x0, y0 + 40}, {x0 + 40, y0 + 40}, {x0 + 40, y0}};
                for (const auto& v : c) {
                    const double vert[6] = {v[0], v[1], z, (v[0] + 60) / 120, (v[1] + 60) / 120, 100};
                    ZELMAR_polygon_add_point(p, vert);
                }
                ZELMAR_polygon_set_color_fill(p, 40 * i, 80 + 40 * j, 200);
                ZELMAR_polygon_set_group(p, grid);
                ZELMAR_engine_add_polygon(p);
            }
        for (const auto& setup : WorldSetupRegistry())
            setup(*this);
        doc->PopulateTrees();
        FillNothing();
    }
    void TearDown() override {
        extras.clear();
        WeldTable().Clear();
        SelFixture::TearDown();
    }
    // Controllers of other subsystems that their edits make on first use (cameras and tracks, lights,
    // materials), gone before the world.
    template <class T> T* Extra(const std::string& key) {
        auto it = extras.find(key);
        return it == extras.end() ? nullptr : static_cast<T*>(it->second.get());
    }
    template <class T> T& SetExtra(const std::string& key, std::shared_ptr<T> value) {
        T& ref = *value;
        extras[key] = std::move(value);
        return ref;
    }
    static void FillNothing() { EditGeometry::EditModeChanged(false); }

    // The user groups: every group below the root, in walk order.
    std::vector<int> Groups() const {
        std::vector<int> out;
        for (int g = ZELMAR_group_get_first_included_group(world.root); g != 0;
             g = ZELMAR_group_get_next_included_group(g))
            out.push_back(g);
        return out;
    }
    int Current() const { return Sel().CurrSelEntityType == 1 ? Sel().CurrSelEntity : 0; }
    std::vector<int> PolygonsOf(int g) const {
        std::vector<int> out;
        for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p))
            out.push_back(p);
        return out;
    }
    // Makes g current as a tree click does and opens Edit Geometry in `mode`.
    void Edit(int g, SelectMode mode) {
        if (Current() != g) model->SelectEntityFromTree(1, g);
        host.mode = mode;
        host.tab = 1;
        EditGeometry::EditModeChanged(true);
        if (Sel().SelPols.Count() > 0) model->UpdateSelPolsRelatedPtsArray();
    }
    // A new polygon selection of the current group, pushed as the panel does.
    void SelectPolygons(const std::vector<int>& pols) {
        const std::vector<int> old = Sel().SelPols.Slots();
        const int oldCount = Sel().SelPols.Count();
        Sel().SelPols.Assign(pols);
        model->UpdateSelPolsRelatedPtsArray();
        model->ComputeSelPolsAvgCenter();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelectPols);
        auto* a = env->As<ActionSelectPols>();
        a->SetOldSelPols(old, oldCount);
        a->SetNewSelPols(Sel().SelPols.Slots(), Sel().SelPols.Count());
        host.stack->Push(env);
    }
    void SelectPoints(const std::vector<int>& pts) {
        const std::vector<int> old = Sel().SelPts.Slots();
        const int oldCount = Sel().SelPts.Count();
        Sel().SelPts.Assign(pts);
        model->UpdateSelPtsPolArray();
        model->ComputeSelPtsAvgCenter();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionSelectPts);
        auto* a = env->As<ActionSelectPts>();
        a->SetOldSelPts(old, oldCount);
        a->SetNewSelPts(Sel().SelPts.Slots(), Sel().SelPts.Count());
        host.stack->Push(env);
    }
    int Changes() const { return host.stack->GetChangesSinceSave(); }

    // The world as the binary format saves it: the root's subtree and the scene's flagged entities.
    QByteArray Saved() {
        const QString path = m_dir.path() + QStringLiteral("/world.zelmar");
        if (ZELMAR_engine_save(path.toLocal8Bit().constData(), world.root, 0x1201) != 1) {
            ADD_FAILURE() << "save failed: " << ZELMAR_engine_get_last_error();
            return {};
        }
        QFile f(path);
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }

    int grid = 0;
    QTemporaryDir m_dir;
    std::map<std::string, std::shared_ptr<void>> extras;
};

} // namespace vexil::test
