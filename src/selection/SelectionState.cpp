#include "SelectionState.h"

namespace vexil {

void SelectionState::Clear() {
    CurrSelEntityType = CurrSelEntity = PrevSelEntityType = PrevSelEntity = 0;
    ClickedEntityType = ClickedEntity = ClickedCamGrp = ClickedLightGrp = 0;
    MultiSel.Reset();
    PrevMultiSel.Reset();
    SelPts.Clear();
    SelPtsPols.Clear();
    SelPols.Clear();
    SelPolsWeldedPts.Clear();
    SelTrackPts.assign(1, 0);
    PtNearestToAvgCenter = ObjNearestToAvgCenter = ObjNearestType = 0;
}

SelectionState& Sel() {
    static SelectionState state;
    return state;
}

} // namespace vexil
