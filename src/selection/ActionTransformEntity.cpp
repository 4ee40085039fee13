#include "ActionTransformEntity.h"

#include "SubObjectTransforms.h"

#include "EntityKinds.h"
#include "SelectionModel.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

#include <algorithm>

namespace vexil {

namespace {

Loc3 groupLocation(int g) {
    Loc3 l{};
    ZELMAR_group_get_location(g, l.data());
    return l;
}

Loc3 locationOf(int kind, int handle) {
    if (kind == 1) return groupLocation(handle);
    EntityKindOps& ops = KindOps(kind);
    return ops.GetLocation ? ops.GetLocation(handle) : Loc3{};
}

void setLocationOf(int kind, int handle, const Loc3& l) {
    if (kind == 1) {
        ZELMAR_group_set_location(handle, l.data());
    } else if (kind == 3) {
        // A track moves by its points.
        const Loc3 c = locationOf(3, handle);
        const int n = ZELMAR_track_get_number_of_points(handle);
        for (int i = 0; i < n; ++i) {
            double p[3];
            ZELMAR_track_get_point(handle, i, p);
            for (int k = 0; k < 3; ++k)
                p[k] += l[k] - c[k];
            ZELMAR_track_set_point(handle, i, p);
        }
    } else if (KindOps(kind).SetLocation) {
        KindOps(kind).SetLocation(handle, l);
    }
}

void refreshBox(int kind, int handle) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    if (kind == 1)
        if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(handle);
    if (kind == 6) Sel().MultiSel.InitializeBndBoxes();
}

} // namespace

void TransformedEntity::Set(int k, int h, const MultipleSelection* s) {
    kind = k;
    handle = h;
    if (s)
        set.CopyFrom(*s);
    else
        set.Reset();
}

// ---- ExactEntity --------------------------------------------------------------------------------

void ExactEntity::Capture(const TransformedEntity& e) {
    m_groups.clear();
    m_track = 0;
    if (e.kind == 1) m_groups.push_back(e.handle);
    if (e.kind == 6) m_groups = e.set.Groups();
    if (e.kind == 3) m_track = e.handle;
    m_hasAfter = false;
    m_after = State();
    m_before = State();
    // Beyond a million points the two copies would hold over a hundred megabytes: such a transform is
    // run backwards on undo instead.
    constexpr std::size_t kMaxPoints = 1'000'000;
    if (m_track != 0) {
        m_before = read();
        m_has = true;
        return;
    }
    m_has = !m_groups.empty() && m_before.groups.Capture(m_groups, kMaxPoints);
}

ExactEntity::State ExactEntity::read() const {
    State s;
    if (!m_groups.empty()) s.groups = m_before.groups.Again();
    if (m_track != 0 && ZELMAR_track_is_track(m_track) == 1) {
        const int n = ZELMAR_track_get_number_of_points(m_track);
        s.track.resize(std::size_t(n) * 3);
        for (int i = 0; i < n; ++i)
            ZELMAR_track_get_point(m_track, i, s.track.data() + std::size_t(i) * 3);
    }
    return s;
}

void ExactEntity::put(const State& s) const {
    s.groups.Restore();
    if (m_track == 0 || ZELMAR_track_is_track(m_track) != 1) return;
    const int n = std::min(ZELMAR_track_get_number_of_points(m_track), int(s.track.size() / 3));
    for (int i = 0; i < n; ++i)
        ZELMAR_track_set_point(m_track, i, s.track.data() + std::size_t(i) * 3);
}

bool ExactEntity::Undo() {
    if (!m_has) return false;
    if (!m_hasAfter) {
        m_after = read();
        m_hasAfter = true;
    }
    put(m_before);
    return true;
}

bool ExactEntity::Redo() {
    if (!m_hasAfter) return false;
    put(m_after);
    return true;
}

// ---- ActionMove ---------------------------------------------------------------------------------

void ActionMove::move(const Loc3& at, const Loc3& from, bool put) {
    if (m_e.kind != 6) {
        if (!put) setLocationOf(m_e.kind, m_e.handle, at);
        refreshBox(m_e.kind, m_e.handle);
        return;
    }
    const Loc3 d{at[0] - from[0], at[1] - from[1], at[2] - from[2]};
    auto shifted = [&](Loc3 l) {
        for (int k = 0; k < 3; ++k)
            l[k] += d[k];
        return l;
    };
    if (!put)
        for (int g : m_e.set.Groups())
            setLocationOf(1, g, shifted(groupLocation(g)));
    for (int c : m_e.set.Cams())
        setLocationOf(2, c, shifted(locationOf(2, c)));
    for (int l : m_e.set.Lights())
        setLocationOf(4, l, shifted(locationOf(4, l)));
    refreshBox(6, 0);
    Vec3& centre = Sel().SelObjsAvgCenter;
    for (int k = 0; k < 3; ++k)
        centre[k] += d[k];
}

// ---- ActionRotate -------------------------------------------------------------------------------

void RotateSetAbout(const MultipleSelection& set, const Loc3& centre, double degrees, int axis, bool groups) {
    if (axis < 0 || axis > 2) return;
    Loc3 turn{0, 0, 0};
    turn[static_cast<size_t>(axis)] = degrees;
    static const std::vector<int> none;
    for (int g : groups ? set.Groups() : none) {
        Loc3 own{};
        ZELMAR_group_get_rotate_reference_point(g, own.data());
        ZELMAR_group_set_rotate_reference_point(g, centre.data());
        ZELMAR_group_rotate(g, turn.data(), 0);
        ZELMAR_group_set_rotate_reference_point(g, own.data());
    }
    auto swing = [&](int kind, int handle) {
        EntityKindOps& ops = KindOps(kind);
        if (ops.Rotate) ops.Rotate(handle, turn);
        if (ops.GetLocation && ops.SetLocation)
            ops.SetLocation(handle, RotateAbout(ops.GetLocation(handle), centre, degrees, axis));
    };
    for (int c : set.Cams())
        swing(2, c);
    for (int l : set.Lights())
        swing(4, l);
}

void ActionRotate::SetRotatedEntity(int kind, int handle, const MultipleSelection* set) {
    m_e.Set(kind, handle, set);
    m_centre = Sel().SelObjsAvgCenter;
}

void ActionRotate::turn(double amount, int axis, bool groups) {
    if (axis < 0 || axis > 2) return;
    if (m_e.kind == 6) {
        RotateSetAbout(m_e.set, m_centre, amount, axis, groups);
        return;
    }
    if (!groups && (m_e.kind == 1 || m_e.kind == 3)) return; // put back from the copy
    Loc3 deg{0, 0, 0};
    deg[static_cast<size_t>(axis)] = amount;
    if (m_e.kind == 1)
        ZELMAR_group_rotate(m_e.handle, deg.data(), 0);
    else if (KindOps(m_e.kind).Rotate)
        KindOps(m_e.kind).Rotate(m_e.handle, deg);
}

void ActionRotate::Undo() {
    const bool groups = !m_exact.Undo();
    for (auto it = m_steps.rbegin(); it != m_steps.rend(); ++it)
        turn(-it->amount, it->axis, groups);
    refreshBox(m_e.kind, m_e.handle);
}

void ActionRotate::Redo() {
    const bool groups = !m_exact.Redo();
    for (const Step& s : m_steps)
        turn(s.amount, s.axis, groups);
    refreshBox(m_e.kind, m_e.handle);
}

// ---- ActionScale --------------------------------------------------------------------------------

void ActionScale::SetScaledEntity(int kind, int handle, const MultipleSelection* set) {
    m_e.Set(kind, handle, set);
    m_exact.Capture(m_e);
    m_memberDims.clear();
    for (int g : m_e.set.Groups()) {
        Loc3 d{};
        ZELMAR_group_get_dimensions(g, d.data());
        m_memberDims.push_back(d);
    }
}

Loc3 ActionScale::factors() const {
    Loc3 f{1, 1, 1};
    for (int k = 0; k < 3; ++k)
        if (m_ini[k] != 0) f[k] = m_fnl[k] / m_ini[k];
    return f;
}

void ActionScale::scaleSet(const Loc3& f) {
    const Vec3 c = Sel().SelObjsAvgCenter;
    for (int g : m_e.set.Groups()) {
        ZELMAR_group_scale(g, 0, f[0], f[1], f[2]);
        // The member's location is pulled towards (or pushed from) the centre of the selection.
        Loc3 l = groupLocation(g);
        for (int k = 0; k < 3; ++k)
            l[k] = l[k] - (1.0 - f[k]) * (l[k] - c[k]);
        ZELMAR_group_set_location(g, l.data());
    }
    refreshBox(6, 0);
}

// A track scales its points about their mean.
static void scaleTrack(int track, const Loc3& f) {
    const Loc3 c = locationOf(3, track);
    const int n = ZELMAR_track_get_number_of_points(track);
    for (int i = 0; i < n; ++i) {
        double p[3];
        ZELMAR_track_get_point(track, i, p);
        for (int k = 0; k < 3; ++k)
            p[k] = c[k] + (p[k] - c[k]) * f[k];
        ZELMAR_track_set_point(track, i, p);
    }
}

// Tracks and sets scale by factors; a group goes to the given dimensions along its own axes.
void ActionScale::apply(const Loc3& dims, const Loc3& f) {
    if (m_e.kind == 3) {
        scaleTrack(m_e.handle, f);
        return;
    }
    if (m_e.kind == 6) {
        scaleSet(f);
        return;
    }
    if (m_e.kind != 1) return;
    Loc3 cur{};
    ZELMAR_group_get_dimensions(m_e.handle, cur.data());
    Loc3 g{1, 1, 1};
    for (int k = 0; k < 3; ++k)
        if (cur[k] != 0) g[k] = dims[k] / cur[k];
    ZELMAR_group_scale(m_e.handle, 1, g[0], g[1], g[2]);
    refreshBox(1, m_e.handle);
}

void ActionScale::Undo() {
    if (m_exact.Undo()) { // groups and tracks are all a scale changes
        refreshBox(m_e.kind, m_e.handle);
        return;
    }
    const Loc3 f = factors();
    apply(m_ini, {f[0] != 0 ? 1.0 / f[0] : 1.0, f[1] != 0 ? 1.0 / f[1] : 1.0, f[2] != 0 ? 1.0 / f[2] : 1.0});
}

void ActionScale::Redo() {
    if (m_exact.Redo()) {
        refreshBox(m_e.kind, m_e.handle);
        return;
    }
    apply(m_fnl, factors());
}

// ---- ActionAlign --------------------------------------------------------------------------------

std::vector<Loc3> ActionAlign::read() const {
    std::vector<Loc3> locs;
    if (m_e.kind != 6) {
        locs.push_back(locationOf(m_e.kind, m_e.handle));
        return locs;
    }
    for (int g : m_e.set.Groups())
        locs.push_back(groupLocation(g));
    return locs;
}

void ActionAlign::SetAlignedEntity(int kind, int handle, const MultipleSelection* set) {
    m_e.Set(kind, handle, set);
    m_exact.Capture(m_e);
    m_before = read();
    m_after = m_before;
}

void ActionAlign::SetLocationsAfter() {
    m_after = read();
}

void ActionAlign::Undo() {
    if (m_exact.Undo())
        refreshBox(m_e.kind, m_e.handle);
    else
        put(m_before);
}

void ActionAlign::Redo() {
    if (m_exact.Redo())
        refreshBox(m_e.kind, m_e.handle);
    else
        put(m_after);
}

void ActionAlign::put(const std::vector<Loc3>& locs) {
    if (m_e.kind != 6) {
        if (!locs.empty()) setLocationOf(m_e.kind, m_e.handle, locs[0]);
        refreshBox(m_e.kind, m_e.handle);
        return;
    }
    const std::vector<int>& groups = m_e.set.Groups();
    for (size_t i = 0; i < groups.size() && i < locs.size(); ++i)
        ZELMAR_group_set_location(groups[i], locs[i].data());
    refreshBox(6, 0);
}

} // namespace vexil
