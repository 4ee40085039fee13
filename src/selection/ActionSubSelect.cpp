#include "ActionSubSelect.h"

#include "SelectionModel.h"

namespace vexil {

void SelArrayCopy::Set(const std::vector<int>& source, int n) {
    const int available = static_cast<int>(source.size()) - 1;
    count = n < available ? n : available;
    if (count <= 0) {
        count = 0;
        items.assign(1, 0);
        return;
    }
    items.assign(source.begin(), source.begin() + count + 1);
    items[0] = 0;
}

void ActionSelectPts::apply(const SelArrayCopy& a) {
    Sel().SelPts.Assign1(a.items, a.count);
    if (SelectionModel* m = selectionModel()) {
        m->UpdateSelPtsPolArray();
        m->ComputeSelPtsAvgCenter();
    }
}

void ActionSelectPols::apply(const SelArrayCopy& a) {
    Sel().SelPols.Assign1(a.items, a.count);
    if (SelectionModel* m = selectionModel()) {
        m->UpdateSelPolsRelatedPtsArray();
        m->ComputeSelPolsAvgCenter();
        m->Host().UpdateEditGeomTabBasedOnPolsSelected();
    }
}

void ActionSelectTrkPts::apply(const SelArrayCopy& a) {
    Sel().SelTrackPts = a.items;
    if (SelectionModel* m = selectionModel()) m->ComputeSelTrackPtsAvgCenter();
}

std::function<void(const std::vector<int>&, int)>& ActionSelectCoords::Apply() {
    static std::function<void(const std::vector<int>&, int)> f;
    return f;
}

} // namespace vexil
