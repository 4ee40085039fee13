// The dialogs seam (docs/platform.md).
#include "Dialogs.h"

#include "Locale.h"

#include <QColorDialog>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QApplication>

namespace vexil {

namespace {
QtDialogs& production() {
    static QtDialogs d;
    return d;
}
Dialogs*& current() {
    static Dialogs* d = nullptr;
    return d;
}
QString titleOr(const QString& title) {
    if (!title.isEmpty()) return title;
    const QString t = UiAppTitle();
    return t.isEmpty() ? QStringLiteral("Vexil") : t;
}
MsgResult firstAnswer(int buttons) {
    switch (buttons & 7) {
    case MsgOKCancel: return vbOK;
    case MsgAbortRetryIgnore: return vbAbort;
    case MsgYesNoCancel:
    case MsgYesNo: return vbYes;
    case MsgRetryCancel: return vbRetry;
    default: return vbOK;
    }
}
} // namespace

Dialogs& dialogs() { return current() ? *current() : production(); }

int Dialogs::ClearTheWay() {
    int hidden = 0;
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return 0;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->windowType() == Qt::SplashScreen) {
            w->hide();
            ++hidden;
        }
    return hidden;
}
void setDialogs(Dialogs* d) {
    if (d && !d->parentWindow && current()) d->parentWindow = current()->parentWindow;
    if (d && !d->parentWindow) d->parentWindow = production().parentWindow;
    current() = d;
}

// ---- production -------------------------------------------------------------------------

MsgResult QtDialogs::msgBox(const QString& text, int buttons, int icon, const QString& title) {
    ClearTheWay();
    QMessageBox box(parentWindow);
    box.setWindowTitle(titleOr(title));
    box.setText(text);
    switch (icon & 0x70) {
    case MsgCritical: box.setIcon(QMessageBox::Critical); break;
    case MsgQuestion: box.setIcon(QMessageBox::Question); break;
    case MsgExclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgInformation: box.setIcon(QMessageBox::Information); break;
    default: break;
    }
    QMessageBox::StandardButtons b;
    switch (buttons & 7) {
    case MsgOKCancel: b = QMessageBox::Ok | QMessageBox::Cancel; break;
    case MsgAbortRetryIgnore: b = QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore; break;
    case MsgYesNoCancel: b = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel; break;
    case MsgYesNo: b = QMessageBox::Yes | QMessageBox::No; break;
    case MsgRetryCancel: b = QMessageBox::Retry | QMessageBox::Cancel; break;
    default: b = QMessageBox::Ok; break;
    }
    box.setStandardButtons(b);
    switch (box.exec()) {
    case QMessageBox::Ok: return vbOK;
    case QMessageBox::Cancel: return vbCancel;
    case QMessageBox::Abort: return vbAbort;
    case QMessageBox::Retry: return vbRetry;
    case QMessageBox::Ignore: return vbIgnore;
    case QMessageBox::Yes: return vbYes;
    case QMessageBox::No: return vbNo;
    default: break;
    }
    // Closed by the window's close box: the escape answer.
    if (b & QMessageBox::Cancel) return vbCancel;
    if (b & QMessageBox::No) return vbNo;
    return vbOK;
}

QString QtDialogs::inputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    bool ok = false;
    ClearTheWay();
    const QString r = QInputDialog::getText(parentWindow, titleOr(title), prompt, QLineEdit::Normal, defaultText, &ok);
    return ok ? r : QString();
}

QString QtDialogs::getOpenFileName(const QString& title, const QString& dir, const QString& filter) {
    ClearTheWay();
    return QFileDialog::getOpenFileName(parentWindow, title, dir, filter);
}

QString QtDialogs::getSaveFileName(const QString& title, const QString& dir, const QString& filter) {
    ClearTheWay();
    return QFileDialog::getSaveFileName(parentWindow, title, dir, filter);
}

QString QtDialogs::getSaveFileNameAndFilter(const QString& title, const QString& dir, const QString& filter,
                                            QString* selectedFilter) {
    ClearTheWay();
    return QFileDialog::getSaveFileName(parentWindow, title, dir, filter, selectedFilter);
}

QString QtDialogs::getExistingDirectory(const QString& title, const QString& dir) {
    ClearTheWay();
    return QFileDialog::getExistingDirectory(parentWindow, title, dir);
}

std::optional<QColor> QtDialogs::chooseColor(const QColor& initial, const QString& title) {
    ClearTheWay();
    const QColor c = QColorDialog::getColor(initial, parentWindow, title);
    if (!c.isValid()) return std::nullopt;
    return c;
}

int QtDialogs::exec(QDialog& dialog) {
    ClearTheWay();
    return dialog.exec();
}

// ---- scripted -----------------------------------------------------------------------------

ScriptedDialogs::ScriptedDialogs() {
    m_previous = current();
    setDialogs(this);
}

ScriptedDialogs::~ScriptedDialogs() {
    if (current() == this) current() = m_previous;
}

int ScriptedDialogs::count(const QString& kind) const {
    int n = 0;
    for (const auto& a : asked) n += a.kind == kind ? 1 : 0;
    return n;
}

const ScriptedDialogs::Asked* ScriptedDialogs::last(const QString& kind) const {
    for (auto it = asked.rbegin(); it != asked.rend(); ++it)
        if (it->kind == kind) return &*it;
    return nullptr;
}

void ScriptedDialogs::record(Asked a) {
    ClearTheWay();
    asked.push_back(std::move(a));
    if (onAsk) onAsk(asked.back());
}

MsgResult ScriptedDialogs::msgBox(const QString& text, int buttons, int icon, const QString& title) {
    record({QStringLiteral("msgBox"), text, buttons, icon, title});
    if (msgAnswers.empty()) {
        ++unexpected;
        return firstAnswer(buttons);
    }
    const MsgResult r = msgAnswers.front();
    msgAnswers.pop_front();
    return r;
}

QString ScriptedDialogs::inputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    record({QStringLiteral("inputBox"), prompt, 0, 0, title});
    Q_UNUSED(defaultText);
    if (inputAnswers.empty()) {
        ++unexpected;
        return QString();
    }
    QString r = inputAnswers.front();
    inputAnswers.pop_front();
    return r;
}

namespace {
QString takeFile(ScriptedDialogs& d) {
    if (d.fileAnswers.empty()) {
        ++d.unexpected;
        return QString();
    }
    QString r = d.fileAnswers.front();
    d.fileAnswers.pop_front();
    return r;
}
} // namespace

QString ScriptedDialogs::getOpenFileName(const QString& title, const QString&, const QString&) {
    record({QStringLiteral("open"), title, 0, 0, title});
    return takeFile(*this);
}
QString ScriptedDialogs::getSaveFileName(const QString& title, const QString&, const QString&) {
    record({QStringLiteral("save"), title, 0, 0, title});
    return takeFile(*this);
}
QString ScriptedDialogs::getSaveFileNameAndFilter(const QString& title, const QString&, const QString& filter,
                                                  QString* selectedFilter) {
    record({QStringLiteral("save"), title, 0, 0, title});
    QString chosen = filter.section(QStringLiteral(";;"), 0, 0);
    if (!filterAnswers.empty()) {
        chosen = filterAnswers.front();
        filterAnswers.pop_front();
    }
    if (selectedFilter) *selectedFilter = chosen;
    return takeFile(*this);
}
QString ScriptedDialogs::getExistingDirectory(const QString& title, const QString&) {
    record({QStringLiteral("dir"), title, 0, 0, title});
    return takeFile(*this);
}

std::optional<QColor> ScriptedDialogs::chooseColor(const QColor&, const QString& title) {
    record({QStringLiteral("color"), title, 0, 0, title});
    if (colorAnswers.empty()) {
        ++unexpected;
        return std::nullopt;
    }
    auto r = colorAnswers.front();
    colorAnswers.pop_front();
    return r;
}

int ScriptedDialogs::exec(QDialog& dialog) {
    record({QStringLiteral("exec"), dialog.objectName(), 0, 0, dialog.windowTitle()});
    if (execAnswers.empty()) {
        ++unexpected;
        return QDialog::Rejected;
    }
    auto f = std::move(execAnswers.front());
    execAnswers.pop_front();
    return f ? f(dialog) : int(QDialog::Rejected);
}

} // namespace vexil
