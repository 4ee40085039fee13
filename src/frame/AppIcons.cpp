#include "AppIcons.h"

#include "AppPaths.h"

#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace vexil {

namespace {

// Button key -> icon file of the set in data/icons (docs/ui.md lists the same table).
const QHash<QString, QString>& iconNames() {
    static const QHash<QString, QString> names = {
        {QStringLiteral("New"), QStringLiteral("document-new")},
        {QStringLiteral("Open"), QStringLiteral("document-open")},
        {QStringLiteral("Save"), QStringLiteral("document-save")},
        {QStringLiteral("Zoom Extents"), QStringLiteral("zoom-fit-selection")},
        {QStringLiteral("Zoom Extents All"), QStringLiteral("edit-select-all")},
        {QStringLiteral("Min/Max Toggle"), QStringLiteral("view-fullscreen")},
        {QStringLiteral("Center Obj In View"), QStringLiteral("crosshairs")},
        {QStringLiteral("Select"), QStringLiteral("tool-pointer")},
        {QStringLiteral("Move"), QStringLiteral("transform-move")},
        {QStringLiteral("Rotate"), QStringLiteral("transform-rotate")},
        {QStringLiteral("Scale"), QStringLiteral("transform-scale")},
        {QStringLiteral("Pan"), QStringLiteral("transform-browse")},
        {QStringLiteral("Revolve"), QStringLiteral("object-rotate-right")},
        {QStringLiteral("Zoom Camera"), QStringLiteral("zoom-in-large")},
        {QStringLiteral("Move Camera"), QStringLiteral("transform-move-vertical")},
        {QStringLiteral("Roll Camera"), QStringLiteral("object-rotate-left")},
        {QStringLiteral("Align"), QStringLiteral("align-horizontal-center")},
        {QStringLiteral("Duplicate"), QStringLiteral("edit-copy")},
        {QStringLiteral("Mirror"), QStringLiteral("object-flip-horizontal")},
        {QStringLiteral("Atmosphere"), QStringLiteral("atmosphere")},
        {QStringLiteral("Displace"), QStringLiteral("distribute-randomize")},
        {QStringLiteral("Selection List"), QStringLiteral("view-list-tree")},
        {QStringLiteral("Grid"), QStringLiteral("grid-rectangular")},
        {QStringLiteral("Grid Snap"), QStringLiteral("snap")},
        {QStringLiteral("Wireframe"), QStringLiteral("step_object_Polygon")},
        {QStringLiteral("3D Card Toggle"), QStringLiteral("show-gpu-effects")},
    };
    return names;
}

} // namespace

QString ButtonIconName(const QString& buttonKey) { return iconNames().value(buttonKey); }

QIcon ButtonIcon(const QString& buttonKey) {
    const QString name = ButtonIconName(buttonKey);
    if (name.isEmpty()) return {};
    QSvgRenderer svg(AppPath(QStringLiteral("icons/") + name + QStringLiteral(".svg")));
    if (!svg.isValid()) return {};
    // Drawn once for each size a toolbar may ask for, at 1x and at the scale factors of a HiDPI screen.
    QIcon icon;
    for (int size : {16, 20, 22, 24, 30, 32, 40, 44, 48, 64}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        svg.render(&p, QRectF(0, 0, size, size));
        p.end();
        icon.addPixmap(pm);
    }
    return icon;
}

} // namespace vexil
