#include "SurfaceCommands.h"

#include "ActionApplyTextureToGrp.h"
#include "ActionChngTextureCoords.h"
#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "PlanarMapper.h"
#include "PolygonLists.h"
#include "SurfaceActions.h"
#include "base/VexilError.h"
#include "frame/Locale.h"
#include "frmTextureMapping.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

namespace vexil {
namespace {

void push(const ActionRef& action) {
    if (ActionUndoRedo_Stack* stack = materialsHost().UndoStack()) stack->Push(action);
}

template <class T> T* make(ActionRef& ref, int type) {
    ref = ActionUndoRedo_Stack::MakeAction(type);
    if (!ref->As<T>()) ref->SetObject(std::make_unique<T>()); // registered or not, the envelope carries it
    return ref->As<T>();
}

} // namespace

bool ChangeSelectedPolygonsFilter(int value) {
    const std::vector<int> pols = SelectedPolygons();
    if (pols.empty()) return false;
    ActionRef ref;
    auto* a = make<ActionChngPolTranslucency>(ref, AT_ActionChngPolTranslucency);
    a->SetSelToCurrSel();
    a->SetPrevTranslucency(ZELMAR_polygon_get_translucent(pols.front()));
    a->SetnewTranslucency(value);
    push(ref);
    for (int p : pols) ZELMAR_polygon_set_translucent(p, value);
    return true;
}

bool ChangeSelectedPolygonsRotated(bool rotated) {
    const std::vector<int> pols = SelectedPolygons();
    ActionRef ref;
    auto* a = make<ActionChngPolRotatedProp>(ref, AT_ActionChngPolRotatedProp);
    a->SetSelToCurrSel();
    a->SetNewRotatedFlag(rotated);
    a->SetPrevRotatedFlag(!rotated);
    push(ref);
    for (int p : pols) ZELMAR_polygon_set_rotated(p, rotated ? 1 : 0);
    return !pols.empty();
}

bool ChangeSelectedPolygonsLightDimu(double value) {
    const std::vector<int> pols = SelectedPolygons();
    if (pols.empty()) return false;
    ActionRef ref;
    auto* a = make<ActionChngPolLightDimu>(ref, AT_ActionChngPolLightDimu);
    const double first = ZELMAR_polygon_get_light_diminution(pols.front());
    a->SetPrevLightDimu(first);
    if (value == first) return false;
    a->SetSelToCurrSel();
    for (int p : pols) ZELMAR_polygon_set_light_diminution(p, value);
    materialsHost().UpdateCameras();
    a->SetnewLightDimu(value);
    push(ref);
    return true;
}

bool ChangeTransparentColour(int polygon, int group, long colour, bool allWithSameBitmap) {
    const int oldBitmap = ZELMAR_polygon_get_bitmap_handle(polygon);
    if (!oldBitmap) return false;
    const QString file = FileBehindBitmap(oldBitmap);
    if (file.isEmpty()) return false;
    ActionRef ref;
    auto* a = make<ActionChngPolTrnsIndx>(ref, AT_ActionChngPolTrnsIndx);
    a->SetSel_PolandFatherGrp(polygon, group);
    a->SetPrevTrnsIndx(ZELMAR_bitmap_get_transparent_index(oldBitmap));
    a->SetAffectAllPolsWithSameMapNameFlag(allWithSameBitmap);
    const int index = TransparentIndexForColour(oldBitmap, colour);
    const int newBitmap = ZELMAR_bitmap_load(file.toLocal8Bit().constData(), index);
    if (!newBitmap) return false;
    std::vector<int> changed, old;
    if (allWithSameBitmap) {
        for (int p : GroupPolygons(group))
            if (ZELMAR_polygon_get_bitmap_handle(p) == oldBitmap) changed.push_back(p);
    } else {
        changed.push_back(polygon);
    }
    old.assign(changed.size(), oldBitmap);
    for (int p : changed) ZELMAR_polygon_set_bitmap_fill(p, newBitmap);
    a->SetChangedPols(changed, old, newBitmap);
    a->SetNewTrnsIndx(ZELMAR_bitmap_get_transparent_index(newBitmap));
    materialsHost().UpdateCameras();
    push(ref);
    return true;
}

QString ApplyFillToSelection(int handle, bool isAnimation, bool toGroup) {
    ActionRef ref;
    auto* a = make<ActionApplyTextureToGrp>(ref, AT_ActionApplyTextureToGrp);
    const SelectionState& s = Sel();
    if (toGroup) {
        if (!(s.CurrSelEntityType == 1 || (s.CurrSelEntityType == 6 && s.MultiSel.TotalCount > 0)))
            return GetLocaleString(357);
    } else if (s.SelPols.Count() == 0) {
        return GetLocaleString(358);
    }
    a->SetSelToCurrSel(toGroup);
    if (isAnimation) {
        a->SetNewFillType(ActionApplyTextureToGrp::FillAnimation);
        a->SetNewAnimation(handle);
        for (int p : a->Polygons()) ZELMAR_polygon_set_animation(p, handle);
    } else {
        a->SetNewFillType(ActionApplyTextureToGrp::FillBitmap);
        a->SetNewMapHandle(handle);
        if (toGroup)
            for (int g : SelectedGroups()) ZELMAR_group_set_bitmap(g, handle);
        else
            for (int p : a->Polygons()) ZELMAR_polygon_set_bitmap_fill(p, handle);
    }
    materialsHost().UpdateCameras();
    push(ref);
    return {};
}

bool ApplyColourToSelection(int r, int g, int b, bool polygonLevel) {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || !ZELMAR_group_is_group(s.CurrSelEntity)) return false;
    ActionRef ref;
    auto* a = make<ActionApplyTextureToGrp>(ref, AT_ActionApplyTextureToGrp);
    a->SetNewFillType(ActionApplyTextureToGrp::FillColour);
    a->SetNewColor(r, g, b);
    if (polygonLevel && s.SelPols.Count() > 0) {
        a->SetSelToCurrSel(false);
        for (int p : a->Polygons()) ZELMAR_polygon_set_color_fill(p, r, g, b);
    } else {
        a->SetPolygons(GroupPolygons(s.CurrSelEntity));
        ZELMAR_group_set_color(s.CurrSelEntity, r, g, b);
    }
    materialsHost().UpdateCameras();
    push(ref);
    return true;
}

void PlanarMapSelection(int option) {
    propagate("SurfaceCommands", "PlanarMapSelection", [&] {
        ActionRef ref;
        auto* a = make<ActionChngTextureCoords>(ref, AT_ActionChngTextureCoords);
        a->SetPtsChangedToCurrSel();
        a->ExtractIniCoordsLoc();
        std::vector<std::array<double, 2>> uvs;
        try {
            uvs = PlanarMapPoints(option, SelectedPolygons(), a->Points());
        } catch (...) {
            a->Undo(); // whatever was written goes back: the world stays as it was
            throw;
        }
        materialsHost().UpdateCameras();
        if (frmTextureMapping* editor = materialsUi().editor) {
            editor->ResetSelections();
            editor->SetupWithNewZoom();
        }
        a->SetFnlCoords(std::move(uvs));
        push(ref);
    });
}

} // namespace vexil
