#include "NotAvailable.h"

#include "Dialogs.h"

#include <QAction>
#include <QRegularExpression>

namespace vexil {

QString NotAvailableYetText(const QString& command) {
    QString name = command;
    name.remove(QRegularExpression(QStringLiteral("&(?!&)")));
    name = name.trimmed();
    return QStringLiteral("\"%1\" is not available yet.").arg(name);
}

void NotAvailableYet(const QString& command) {
    const QString text = NotAvailableYetText(command);
    dialogs().msgBox(text, MsgOKOnly, MsgInformation);
}

void ConnectNotAvailableYet(QAction* action) {
    if (!action) return;
    // The caption is read when the item is used, so that it is in the current language.
    QObject::connect(action, &QAction::triggered, action, [action] { NotAvailableYet(action->text()); });
}

} // namespace vexil
