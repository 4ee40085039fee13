#include "RandomMaterialsEdit.h"

#include "materials/ActionChngTextureCoords.h"
#include "materials/BitmapFiles.h"
#include "materials/MaterialsHost.h"
#include "materials/PolygonFilters.h"
#include "materials/PolygonLists.h"
#include "materials/SurfaceCommands.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

namespace vexil::test {
namespace {

template <class T> const T& pick(std::mt19937& rng, const std::vector<T>& v) {
    return v[std::uniform_int_distribution<std::size_t>(0, v.size() - 1)(rng)];
}

int roll(std::mt19937& rng, int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }

// Groups that own polygons, in the engine's order.
std::vector<int> groupsWithPolygons() {
    std::vector<int> out;
    for (int g = ZELMAR_group_get_first_group(); g; g = ZELMAR_group_get_next(g))
        if (ZELMAR_group_get_number_of_polygons(g) > 0) out.push_back(g);
    return out;
}

std::vector<int> bitmapsWithFiles() {
    std::vector<int> out;
    for (int b = ZELMAR_bitmap_get_first_bitmap(); b; b = ZELMAR_bitmap_get_next(b))
        if (!FileBehindBitmap(b).isEmpty()) out.push_back(b);
    return out;
}

std::vector<int> animations() {
    std::vector<int> out;
    for (int a = ZELMAR_animation_get_first_animation(); a; a = ZELMAR_animation_get_next(a)) out.push_back(a);
    return out;
}

// The group current, with a random non-empty subset of its polygons selected.
std::vector<int> selectSome(std::mt19937& rng, int group) {
    const std::vector<int> all = GroupPolygons(group);
    std::vector<int> some;
    for (int p : all)
        if (roll(rng, 0, 2) == 0) some.push_back(p);
    if (some.empty()) some.push_back(pick(rng, all));
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = group;
    Sel().SelPols.Assign(some);
    return some;
}

} // namespace

std::string ApplyRandomMaterialsEdit(std::mt19937& rng) {
    const std::vector<int> groups = groupsWithPolygons();
    if (groups.empty()) return {};
    const int group = pick(rng, groups);
    const std::vector<int> pols = selectSome(rng, group);
    const std::vector<int> bitmaps = bitmapsWithFiles();
    const std::vector<int> anims = animations();
    switch (roll(rng, 0, 10)) {
    case 0:
        if (bitmaps.empty()) return {};
        ApplyFillToSelection(pick(rng, bitmaps), false, false);
        return "bitmap to polygons";
    case 1:
        if (bitmaps.empty()) return {};
        ApplyFillToSelection(pick(rng, bitmaps), false, true);
        return "bitmap to group";
    case 2:
        if (anims.empty()) return {};
        ApplyFillToSelection(pick(rng, anims), true, roll(rng, 0, 1) == 1);
        return "animation";
    case 3:
        ApplyColourToSelection(roll(rng, 0, 255), roll(rng, 0, 255), roll(rng, 0, 255), roll(rng, 0, 1) == 1);
        return "colour";
    case 4:
        ChangeSelectedPolygonsFilter(pick(rng, std::vector<int>{0x00, 0x31, 0x43, 0x52, 0x44, 0x32, 0x42, 0x22, 0x51}));
        return "filter";
    case 5:
        ChangeSelectedPolygonsRotated(roll(rng, 0, 1) == 1);
        return "rotated";
    case 6: {
        if (!ChangeSelectedPolygonsLightDimu(roll(rng, 0, 100))) return {};
        return "diminution";
    }
    case 7: {
        // A transparent colour on the first selected polygon that has a bitmap.
        int polygon = 0;
        for (int p : pols)
            if (!polygon && ZELMAR_polygon_get_bitmap_handle(p) && !ZELMAR_polygon_get_animation(p)) polygon = p;
        if (!polygon) return {};
        const long colour = roll(rng, 0, 3) == 0 ? kButtonFace : ColourValue(roll(rng, 0, 255), roll(rng, 0, 255), roll(rng, 0, 255));
        if (!ChangeTransparentColour(polygon, group, colour, roll(rng, 0, 1) == 1)) return {};
        return "transparent colour";
    }
    case 8:
        try {
            PlanarMapSelection(roll(rng, 0, 3));
        } catch (...) {
            return {}; // all points on one spot: refused, nothing pushed
        }
        return "planar map";
    default: {
        // A texture map editor gesture: the points of the selected polygons moved, scaled or mirrored.
        ActionRef ref = ActionUndoRedo_Stack::MakeAction(AT_ActionChngTextureCoords);
        auto* a = ref->As<ActionChngTextureCoords>();
        if (!a) return {};
        a->SetPtsChangedToCurrSel();
        a->ExtractIniCoordsLoc();
        const double du = roll(rng, -50, 50) / 64.0, dv = roll(rng, -50, 50) / 64.0, k = roll(rng, 1, 8) / 4.0;
        const int kind = roll(rng, 0, 2);
        for (const PointOfPolygon& p : a->Points()) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(p.point, uv);
            if (kind == 0) uv[0] += du, uv[1] += dv;
            else if (kind == 1) uv[0] *= k, uv[1] *= k;
            else uv[0] = 1 - uv[0];
            ZELMAR_point_set_bitmap_xy(p.point, uv);
        }
        a->ExtractFnlCoordsLoc();
        if (ActionUndoRedo_Stack* s = materialsHost().UndoStack()) s->Push(ref);
        return "coordinates";
    }
    }
}

} // namespace vexil::test
