// The edits of point and polygon editing, the gestures and the object tools, for the undo property test.
#include "UndoPropertyFixture.h"

#include "modelling/ObjectTools.h"
#include "modelling/mdlCutPols.h"
#include "modelling/mdlExtrude.h"
#include "gizmo/TypedTransform.h"

namespace vexil::test {
namespace {

// A random group to work on, made current with Edit Geometry open in `mode`.
int pickGroup(EditContext& c, SelectMode mode) {
    const std::vector<int> groups = c.fixture.Groups();
    if (groups.empty()) return 0;
    const int g = c.Chance(0.7) && c.fixture.Current() ? c.fixture.Current() : groups[size_t(c.Int(0, int(groups.size()) - 1))];
    c.fixture.Edit(g, mode);
    return g;
}

std::vector<int> someOf(EditContext& c, const std::vector<int>& all, int atMost) {
    std::vector<int> out;
    if (all.empty()) return out;
    const int n = c.Int(1, std::min<int>(atMost, int(all.size())));
    for (int i = 0; i < n; ++i)
        out.push_back(all[size_t(c.Int(0, int(all.size()) - 1))]);
    return out;
}

// Polygons of the current group selected (sometimes kept from before).
bool withPolygons(EditContext& c, int atMost = 6) {
    const int g = pickGroup(c, SelectMode::Polygon);
    if (!g) return false;
    if (Sel().SelPols.Count() == 0 || c.Chance(0.5)) {
        const std::vector<int> pols = c.fixture.PolygonsOf(g);
        if (pols.empty()) return false;
        std::vector<int> some = someOf(c, pols, atMost);
        std::sort(some.begin(), some.end());
        some.erase(std::unique(some.begin(), some.end()), some.end());
        c.fixture.SelectPolygons(some);
    }
    return Sel().SelPols.Count() > 0;
}

bool withPoints(EditContext& c, int atMost = 10) {
    const int g = pickGroup(c, SelectMode::Point);
    if (!g) return false;
    if (Sel().SelPts.Count() == 0 || c.Chance(0.5)) {
        std::vector<int> pts;
        for (int p : c.fixture.PolygonsOf(g))
            for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
                pts.push_back(pt);
        if (pts.empty()) return false;
        c.fixture.SelectPoints(someOf(c, pts, atMost));
    }
    return Sel().SelPts.Count() > 0;
}

Vec3 randomVec(EditContext& c, double r) {
    return {c.Real(-r, r), c.Real(-r, r), c.Real(-r, r)};
}

bool pushed(EditContext& c, int before) {
    return c.fixture.Changes() != before;
}

// A move, turn or scale by random typed values, along the world's or the group's axes.
TypedTransform randomTransform(EditContext& c, TransformKind kind) {
    TypedTransform t;
    t.kind = kind;
    t.worldSpace = c.Chance(0.5);
    switch (kind) {
    case TransformKind::Move:
        t.values = randomVec(c, 30);
        break;
    case TransformKind::Rotate:
        t.values[size_t(c.Int(0, 2))] = c.Real(-90, 90);
        break;
    case TransformKind::Scale:
        t.values = {c.Real(0.5, 1.8), c.Real(0.5, 1.8), c.Real(0.5, 1.8)};
        break;
    }
    return t;
}

// Applies it as the typed transform panel does (the same actions as a gizmo drag).
bool applyTransform(EditContext& c, SelectMode mode, const TypedTransform& t) {
    const int before = c.fixture.Changes();
    if (!ApplyTypedTransform(c.fixture.host, mode, t, *c.fixture.host.stack).isEmpty()) return false;
    RefreshAfterTransform(c.fixture.host, mode, nullptr);
    return pushed(c, before);
}

// The selected points or polygons.
bool typedTransform(EditContext& c, SelectMode mode, TransformKind kind) {
    if (!(mode == SelectMode::Point ? withPoints(c) : withPolygons(c))) return false;
    return applyTransform(c, mode, randomTransform(c, kind));
}

// Whole groups: one group, or a set of some (a turn of a set swings its members about their centre).
bool groupTransform(EditContext& c, TransformKind kind) {
    const std::vector<int> groups = c.fixture.Groups();
    if (groups.empty()) return false;
    const int before = c.fixture.Changes();
    if (groups.size() > 1 && c.Chance(0.4)) {
        std::vector<std::pair<int, int>> set;
        for (int g : someOf(c, groups, 3))
            if (std::find(set.begin(), set.end(), std::pair<int, int>(1, g)) == set.end()) set.push_back({1, g});
        c.fixture.model->SelectMultiple(set);
    } else {
        c.fixture.model->SelectEntityFromTree(1, groups[size_t(c.Int(0, int(groups.size()) - 1))]);
    }
    c.fixture.host.mode = SelectMode::Entity;
    return applyTransform(c, SelectMode::Entity, randomTransform(c, kind)) || pushed(c, before);
}

} // namespace

VEXIL_UNDO_EDIT(SelectGroup, [](EditContext& c) {
    const std::vector<int> groups = c.fixture.Groups();
    if (groups.empty()) return false;
    const int before = c.fixture.Changes();
    c.fixture.Edit(groups[size_t(c.Int(0, int(groups.size()) - 1))], SelectMode::Polygon);
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(SelectPolygons, [](EditContext& c) {
    const int before = c.fixture.Changes();
    withPolygons(c);
    return pushed(c, before);
}, 2);

VEXIL_UNDO_EDIT(SelectPoints, [](EditContext& c) {
    const int before = c.fixture.Changes();
    withPoints(c);
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(MovePoints, [](EditContext& c) { return typedTransform(c, SelectMode::Point, TransformKind::Move); });
VEXIL_UNDO_EDIT(RotatePoints, [](EditContext& c) { return typedTransform(c, SelectMode::Point, TransformKind::Rotate); });
VEXIL_UNDO_EDIT(ScalePoints, [](EditContext& c) { return typedTransform(c, SelectMode::Point, TransformKind::Scale); });
VEXIL_UNDO_EDIT(MovePolygons, [](EditContext& c) { return typedTransform(c, SelectMode::Polygon, TransformKind::Move); });
VEXIL_UNDO_EDIT(RotatePolygons, [](EditContext& c) { return typedTransform(c, SelectMode::Polygon, TransformKind::Rotate); });
VEXIL_UNDO_EDIT(ScalePolygons, [](EditContext& c) { return typedTransform(c, SelectMode::Polygon, TransformKind::Scale); });

VEXIL_UNDO_EDIT(MoveGroups, [](EditContext& c) { return groupTransform(c, TransformKind::Move); });
VEXIL_UNDO_EDIT(RotateGroups, [](EditContext& c) { return groupTransform(c, TransformKind::Rotate); });
VEXIL_UNDO_EDIT(ScaleGroups, [](EditContext& c) { return groupTransform(c, TransformKind::Scale); });

VEXIL_UNDO_EDIT(Align, [](EditContext& c) {
    const std::vector<int> groups = c.fixture.Groups();
    if (groups.size() < 2) return false;
    const int target = groups[size_t(c.Int(0, int(groups.size()) - 1))];
    std::array<int, 3> mode{c.Int(0, 4), c.Int(0, 4), c.Int(0, 4)};
    std::vector<int> moving = someOf(c, groups, 3);
    std::sort(moving.begin(), moving.end());
    moving.erase(std::unique(moving.begin(), moving.end()), moving.end());
    return AlignGroups(moving, target, mode);
});

VEXIL_UNDO_EDIT(Weld, [](EditContext& c) {
    if (!withPoints(c, 16)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdWeld_Click(QString::number(c.Real(-60, 60)));
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(DeletePolygons, [](EditContext& c) {
    if (!withPolygons(c, 3)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdDeletePol_Click();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(DeletePoints, [](EditContext& c) {
    if (!withPoints(c, 3)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdEditPtDelete_Click();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(Detach, [](EditContext& c) {
    if (!withPolygons(c, 3)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdDetachPols_Click();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(Flip, [](EditContext& c) {
    if (!withPolygons(c)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdFlipPol_Click();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(Triangulate, [](EditContext& c) {
    if (!pickGroup(c, SelectMode::Polygon)) return false;
    const int before = c.fixture.Changes();
    EditGeometry::cmdTriangulate_Click();
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(Mirror, [](EditContext& c) {
    const int g = pickGroup(c, SelectMode::Polygon);
    if (!g) return false;
    std::array<double, 3> f{1, 1, 1};
    f[size_t(c.Int(0, 2))] = -1;
    if (c.Chance(0.4)) f[size_t(c.Int(0, 2))] = -1;
    return MirrorGroupCommand(g, f, c.Chance(0.4));
});

VEXIL_UNDO_EDIT(Duplicate, [](EditContext& c) {
    const int g = pickGroup(c, SelectMode::Polygon);
    if (!g) return false;
    return DuplicateGroups({g}, c.Int(1, 2), {c.Real(-200, 200), 0, c.Real(-50, 50)});
});

VEXIL_UNDO_EDIT(Extrude, [](EditContext& c) {
    if (!withPolygons(c, 4)) return false;
    const int before = c.fixture.Changes();
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(0);
    const int steps = c.Int(0, 4);
    double v = 0;
    for (int i = 0; i < steps; ++i)
        x.updwnExtBvl_Change(0, v += c.Real(-15, 25));
    x.updwnExtBvl_MouseUp(0, v);
    return pushed(c, before);
}, 2);

VEXIL_UNDO_EDIT(Bevel, [](EditContext& c) {
    if (!withPolygons(c, 4)) return false;
    const int before = c.fixture.Changes();
    mdlExtrude& x = mdlExtrude::Instance();
    x.updwnExtBvl_MouseDown(1);
    const int steps = c.Int(1, 4);
    double v = 1;
    for (int i = 0; i < steps; ++i)
        x.updwnExtBvl_Change(1, v = c.Real(0.3, 1.6));
    x.updwnExtBvl_MouseUp(1, v);
    return pushed(c, before);
});

VEXIL_UNDO_EDIT(Cut, [](EditContext& c) {
    if (!withPolygons(c, 4)) return false;
    UndoPropertyFixture& f = c.fixture;
    const int view = c.Int(0, 3);
    f.views->ActiveWin = view;
    bool in = false;
    const QPoint m = f.pixelOf(view, Sel().SelPolsAvgCenter, &in);
    if (!in) return false;
    const double a = c.Real(0, 3.14159);
    const int dx = int(400 * std::cos(a)), dy = int(400 * std::sin(a));
    const int ox = c.Int(-8, 8), oy = c.Int(-8, 8);
    const int before = f.Changes();
    mdlCutPols& cut = mdlCutPols::Instance();
    cut.CutMouseDown(m.x() - dx + ox, m.y() - dy + oy);
    cut.CutMouseMove(m.x(), m.y());
    cut.CutMouseUp(m.x() + dx + ox, m.y() + dy + oy);
    return pushed(c, before);
}, 2);

VEXIL_UNDO_EDIT(Bend, [](EditContext& c) {
    const int g = pickGroup(c, SelectMode::Polygon);
    if (!g) return false;
    const int along = c.Int(0, 2);
    return BendGroupCommand(g, along, (along + c.Int(1, 2)) % 3, c.Real(-120, 120));
});

VEXIL_UNDO_EDIT(Displace, [](EditContext& c) {
    const int g = pickGroup(c, SelectMode::Polygon);
    if (!g) return false;
    const unsigned seed = unsigned(c.Int(1, 1000));
    return DisplaceGroupCommand(g, c.Real(-20, 20),
                                [seed](const double xyz[3], double, double) { return ValueNoise(xyz, 37.0, seed); });
});

} // namespace vexil::test
