// The program-wide selection: the current and previous entity, the entity sets, the three sub-object
// selections with their pivots. One instance, Sel(), read and written by the selection model, the
// viewports' overlays and the undo actions.
//
// Entity kinds: 0 none, 1 group, 2 camera, 3 track, 4 light, 5 background, 6 several (MultiSel holds them;
// CurrSelEntity is then stale and must not be used).
#pragma once
#include "MultipleSelection.h"
#include "SelectionArrays.h"

#include <array>
#include <vector>

namespace vexil {

using Vec3 = std::array<double, 3>;

struct SelectionState {
    static constexpr int SelPtsCapacity = 1048576;
    static constexpr int SelPolsCapacity = 349526;
    // Initial best distance of the nearest-to-centre searches.
    static constexpr double FarAway = 1.79769313486232e+307;

    int CurrSelEntityType = 0, CurrSelEntity = 0;
    int PrevSelEntityType = 0, PrevSelEntity = 0;
    int ClickedEntityType = 0, ClickedEntity = 0;
    int ClickedCamGrp = 0, ClickedLightGrp = 0;
    MultipleSelection MultiSel, PrevMultiSel;

    HandleArray SelPts{SelPtsCapacity};
    HandleArray SelPtsPols{SelPolsCapacity, false};
    HandleArray SelPols{SelPolsCapacity};
    HandleArray SelPolsWeldedPts{SelPtsCapacity, false};
    // 1-based 0-based track point indices; slot 0 unused.
    std::vector<int> SelTrackPts{0};
    int SelTrackPtsCount() const { return static_cast<int>(SelTrackPts.size()) - 1; }

    Vec3 SelPtsAvgCenter{}, SelPolsAvgCenter{}, SelObjsAvgCenter{}, SelTrackPtsAvgCenter{};
    int PtNearestToAvgCenter = 0;
    int ObjNearestToAvgCenter = 0, ObjNearestType = 0;

    // World unload and load: both types 0, the counts 0, the sets empty.
    void Clear();
};

SelectionState& Sel();

} // namespace vexil
