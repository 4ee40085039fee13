// A command whose feature has not been built yet tells the user so, instead of doing nothing:
//
//   void Form1::MirrorObjects() { NotAvailableYet(GetLocaleString(114)); }
//
// Whoever builds the feature replaces the call by the real body.
#pragma once
#include <QString>

class QAction;

namespace vexil {

// The message: "<command>" is not available yet. (Mnemonic marks "&" are taken out of the name.)
QString NotAvailableYetText(const QString& command);
// Shows that message (information icon, through the dialogs seam) and logs it as information.
void NotAvailableYet(const QString& command);
// Connects a menu item or button that has no command yet: triggering it says so, with its own caption.
void ConnectNotAvailableYet(QAction* action);

} // namespace vexil
