#include "TypedTransform.h"

#include "frame/Locale.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QLocale>
#include <cmath>

namespace vexil {

namespace {

constexpr double DegToRad = 3.14159265358979 / 180.0;
using Mat3 = std::array<std::array<double, 3>, 3>;

Mat3 mul(const Mat3& a, const Mat3& b) {
    Mat3 r{};
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j)
            for (size_t k = 0; k < 3; ++k)
                r[i][j] += a[i][k] * b[k][j];
    return r;
}

Mat3 turnAbout(int axis, double degrees) {
    const double c = std::cos(degrees * DegToRad), s = std::sin(degrees * DegToRad);
    switch (axis) {
    case 0:
        return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
    case 1:
        return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
    default:
        return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
    }
}

QString nothingSelected(SelectMode mode) {
    switch (mode) {
    case SelectMode::Point:
        return GetLocaleString(350);
    case SelectMode::Polygon:
        return GetLocaleString(358);
    case SelectMode::TrackPoint:
    case SelectMode::TrackPointInsert:
        return QStringLiteral("No track points selected.");
    case SelectMode::Entity:
        break;
    }
    return GetLocaleString(357);
}

Vec3 axesCombination(const std::array<Vec3, 3>& axes, const Vec3& o) {
    Vec3 d{};
    for (size_t k = 0; k < 3; ++k)
        d[k] = o[0] * axes[0][k] + o[1] * axes[1][k] + o[2] * axes[2][k];
    return d;
}

} // namespace

QString ParseTransformValues(const QStringList& texts, const QStringList& labels, Vec3& values) {
    Vec3 v{};
    for (int i = 0; i < 3; ++i) {
        const QString t = i < texts.size() ? texts[i].trimmed() : QString();
        const QString name = i < labels.size() ? labels[i] : QString(QChar('X' + i));
        bool ok = false;
        double d = t.toDouble(&ok);
        if (!ok) d = QLocale().toDouble(t, &ok);
        if (!ok || !std::isfinite(d)) return QStringLiteral("%1: \"%2\" is not a number.").arg(name, t);
        v[size_t(i)] = d;
    }
    values = v;
    return {};
}

Vec3 WorldTurnsOfAxesTurns(const std::array<Vec3, 3>& axes, const Vec3& degrees) {
    // B has the axes as columns: a turn about axis k of B is B R_k B^T.
    Mat3 b{}, bt{};
    for (size_t i = 0; i < 3; ++i)
        for (size_t k = 0; k < 3; ++k) {
            b[i][k] = axes[k][i];
            bt[k][i] = axes[k][i];
        }
    const Mat3 local = mul(turnAbout(2, degrees[2]), mul(turnAbout(1, degrees[1]), turnAbout(0, degrees[0])));
    const Mat3 m = mul(b, mul(local, bt));
    // m = Rz(g) Ry(b) Rx(a).
    const double sb = std::clamp(-m[2][0], -1.0, 1.0);
    const double beta = std::asin(sb);
    double alpha, gamma;
    if (std::abs(std::cos(beta)) > 1e-9) {
        alpha = std::atan2(m[2][1], m[2][2]);
        gamma = std::atan2(m[1][0], m[0][0]);
    } else {
        gamma = 0;
        alpha = std::atan2(m[0][1] / sb, m[1][1]);
    }
    return {alpha / DegToRad, beta / DegToRad, gamma / DegToRad};
}

QString ApplyTypedTransform(ViewportHost& host, SelectMode mode, const TypedTransform& t,
                            ActionUndoRedo_Stack& stack) {
    if (host.EditTextureMode())
        return QStringLiteral("Nothing can be transformed while the texture is edited.");
    const int type = Sel().CurrSelEntityType;
    Vec3 pivot{};
    if (!SelectionPivot(host, mode, pivot) || (mode == SelectMode::Entity && type == 0))
        return nothingSelected(mode);
    const bool entity = mode == SelectMode::Entity;
    // The group whose axes "object space" means: the current group, in entity mode or while its points or
    // polygons are edited.
    const bool groupAxes = !t.worldSpace && type == 1;
    const std::array<Vec3, 3> axes =
        groupAxes ? CurrentGroupAxes() : std::array<Vec3, 3>{Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}};

    switch (t.kind) {
    case TransformKind::Move: {
        Vec3 d;
        if (t.absolute) {
            const Vec3 from = SelectionLocation(host, mode);
            d = {t.values[0] - from[0], t.values[1] - from[1], t.values[2] - from[2]};
        } else {
            d = axesCombination(axes, t.values);
        }
        const ActionRef env = OpenMoveAction(host, mode);
        if (!env) return nothingSelected(mode);
        MoveSelectionBy(host, mode, d);
        CloseMoveAction(env, host, mode);
        stack.Push(env);
        break;
    }
    case TransformKind::Rotate: {
        if (t.absolute) return QStringLiteral("A turn is typed as an offset: degrees about each axis.");
        if (entity && type == 5) return nothingSelected(mode);
        const Vec3 world = groupAxes ? WorldTurnsOfAxesTurns(axes, t.values) : t.values;
        std::vector<RotationStep> steps;
        for (int axis = 0; axis < 3; ++axis)
            if (world[size_t(axis)] != 0) steps.push_back({world[size_t(axis)], axis});
        if (steps.empty()) return {};
        const TransformBefore before = StateBefore(mode, true);
        for (const RotationStep& s : steps)
            RotateSelectionBy(host, mode, s.amount, s.axis);
        if (const ActionRef env = MakeRotateAction(mode, steps)) {
            GiveBefore(env, before);
            stack.Push(env);
        }
        break;
    }
    case TransformKind::Scale: {
        if (entity && (type == 2 || type == 4 || type == 5))
            return QStringLiteral("Cameras, lights and backgrounds have no size to scale.");
        Vec3 f = t.values;
        if (t.absolute) {
            const Vec3 now = SelectionDimensions(host, mode);
            for (size_t k = 0; k < 3; ++k) {
                if (!(t.values[k] > 0)) return QStringLiteral("A size must be greater than 0.");
                if (now[k] <= 0 && t.values[k] != now[k])
                    return QStringLiteral("The selection has no size along %1: it cannot be given one.")
                        .arg(QChar('X' + int(k)));
                f[k] = now[k] > 0 ? t.values[k] / now[k] : 1.0;
            }
        }
        for (double v : f)
            if (!(v > 0)) return QStringLiteral("A scale factor must be greater than 0.");
        const ActionRef open = OpenScaleAction(host, mode);
        const TransformBefore before = StateBefore(mode, false);
        if (!ScaleSelectionBy(host, mode, f)) return nothingSelected(mode);
        if (const ActionRef env = CloseScaleAction(open, host, mode, f)) {
            GiveBefore(env, before);
            stack.Push(env);
        }
        break;
    }
    }
    return {};
}

} // namespace vexil
