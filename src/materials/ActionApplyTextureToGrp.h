// ActionApplyTextureToGrp (23): a new fill for a group or for the selected polygons: a bitmap (fill type 1),
// an animation (0) or a colour (2). It keeps each polygon's own colour, bitmap and animation (with its
// frame), so that Undo gives every polygon back its own fill even when the group mixed them.
#pragma once
#include "undo/Action.h"

#include <array>
#include <vector>

namespace vexil {

class ActionApplyTextureToGrp : public Action {
  public:
    enum FillType { FillAnimation = 0, FillBitmap = 1, FillColour = 2 };

    // Records the polygons and their fills: every polygon of the selected groups (wholeGroup), else the
    // selected polygons.
    void SetSelToCurrSel(bool wholeGroup);
    // The same for a list given.
    void SetPolygons(const std::vector<int>& polygons);
    void SetNewFillType(int type) { m_type = type; }
    void SetNewMapHandle(int bitmap) { m_bitmap = bitmap; }
    void SetNewColor(int r, int g, int b) { m_colour = {r, g, b}; }
    void SetNewAnimation(int animation) { m_animation = animation; }
    bool ForGroup() const { return m_forGroup; }
    int NewFillType() const { return m_type; }
    const std::vector<int>& Polygons() const { return m_polygons; }

    void Undo() override;
    void Redo() override;

  private:
    struct OldFill {
        std::array<int, 3> colour;
        int bitmap, animation, frame;
    };
    void refreshPanel() const;
    bool m_forGroup = false;
    std::vector<int> m_polygons;
    std::vector<OldFill> m_old;
    int m_type = FillBitmap, m_bitmap = 0, m_animation = 0;
    std::array<int, 3> m_colour{255, 255, 255};
};

} // namespace vexil
