// A move, turn or scale of the selection by typed values: what the typed transform panel applies. One
// apply is one undo step, recorded by the same actions as a gizmo drag.
//
//   move    offset: a displacement, along the world axes or the current group's own axes
//           absolute: where the selection's location goes (world coordinates)
//   rotate  offset: degrees about x, then y, then z, of the world or of the current group
//   scale   offset: factors (a group along its own axes, sub-objects and sets along the world axes)
//           absolute: the size the selection gets
#pragma once
#include "SelectionTransforms.h"

#include <QString>
#include <QStringList>

namespace vexil {

class ActionUndoRedo_Stack;

enum class TransformKind { Move = 0, Rotate = 1, Scale = 2 };

struct TypedTransform {
    TransformKind kind = TransformKind::Move;
    bool absolute = false;
    bool worldSpace = true;
    Vec3 values{0, 0, 0};
};

// Reads three typed numbers (a dot or the locale's decimal sign); on failure a message that names the
// field (labels[i]) and `values` unchanged.
QString ParseTransformValues(const QStringList& texts, const QStringList& labels, Vec3& values);

// Applies the transform to the selection of `mode` and pushes its action. Empty on success; otherwise a
// message saying why, and nothing was changed.
QString ApplyTypedTransform(ViewportHost& host, SelectMode mode, const TypedTransform& t,
                            ActionUndoRedo_Stack& stack);

// Degrees (about x, then y, then z, of the world) that turn as `degrees` about x, then y, then z of the
// given axes (rows) do.
Vec3 WorldTurnsOfAxesTurns(const std::array<Vec3, 3>& axes, const Vec3& degrees);

} // namespace vexil
