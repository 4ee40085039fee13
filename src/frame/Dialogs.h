// The dialogs seam (docs/platform.md): every message box, input box, file dialog, colour
// dialog and modal form of the editor goes through vexil::dialogs(). Production shows Qt dialogs;
// tests install a ScriptedDialogs that answers from a queue and records what was asked, so that
// no test ever blocks on a modal window.
//
//   if (vexil::dialogs().msgBox(GetLocaleString(332), vexil::MsgYesNoCancel, vexil::MsgQuestion)
//       == vexil::vbCancel) ...
//   QString path = vexil::dialogs().getOpenFileName(title, dir, filter);   // empty: cancelled
//   int r = vexil::dialogs().exec(myModalForm);                            // instead of myModalForm.exec()
#pragma once
#include <QColor>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

class QDialog;
class QWidget;

namespace vexil {

// VB message box buttons and icons (the values of vbOKOnly.. and vbCritical..).
enum MsgButtons { MsgOKOnly = 0, MsgOKCancel = 1, MsgAbortRetryIgnore = 2, MsgYesNoCancel = 3, MsgYesNo = 4, MsgRetryCancel = 5 };
enum MsgIcon { MsgNoIcon = 0, MsgCritical = 16, MsgQuestion = 32, MsgExclamation = 48, MsgInformation = 64 };
// Answers (vbOK ..).
enum MsgResult { vbOK = 1, vbCancel = 2, vbAbort = 3, vbRetry = 4, vbIgnore = 5, vbYes = 6, vbNo = 7 };

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // A message box. An empty title means the application title (UI string 602).
    virtual MsgResult msgBox(const QString& text, int buttons = MsgOKOnly, int icon = MsgNoIcon,
                             const QString& title = QString()) = 0;
    // An input box: the text typed, or the empty string when cancelled (as InputBox does).
    virtual QString inputBox(const QString& prompt, const QString& title = QString(),
                             const QString& defaultText = QString()) = 0;
    // File dialogs: the chosen path, or the empty string when cancelled. filter is Qt's
    // "Worlds (*.wld *.zelmar);;All files (*)".
    virtual QString getOpenFileName(const QString& title, const QString& dir, const QString& filter) = 0;
    virtual QString getSaveFileName(const QString& title, const QString& dir, const QString& filter) = 0;
    virtual QString getExistingDirectory(const QString& title, const QString& dir) = 0;
    // Colour dialog: the colour chosen, or nothing when cancelled.
    virtual std::optional<QColor> chooseColor(const QColor& initial, const QString& title = QString()) = 0;
    // Runs a modal form (QDialog::exec in production) and answers its result code.
    virtual int exec(QDialog& dialog) = 0;

    // A file dialog that also answers the filter the user chose (empty when the dialog does not tell).
    virtual QString getSaveFileNameAndFilter(const QString& title, const QString& dir, const QString& filter,
                                             QString* selectedFilter) {
        if (selectedFilter) selectedFilter->clear();
        return getSaveFileName(title, dir, filter);
    }

    // The window that owns the dialogs in production (Form1); may be null.
    QWidget* parentWindow = nullptr;

    // A question is never hidden behind a window that stays on top: every dialog first hides the
    // splash screen, if it shows. Answers the windows it hid.
    static int ClearTheWay();
};

// The current seam; production dialogs unless a test installed another one.
Dialogs& dialogs();
// Installs d (not owned) as the seam; nullptr restores the production dialogs.
void setDialogs(Dialogs* d);

// Production: Qt dialogs.
class QtDialogs : public Dialogs {
public:
    MsgResult msgBox(const QString& text, int buttons, int icon, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    QString getOpenFileName(const QString& title, const QString& dir, const QString& filter) override;
    QString getSaveFileName(const QString& title, const QString& dir, const QString& filter) override;
    QString getSaveFileNameAndFilter(const QString& title, const QString& dir, const QString& filter,
                                     QString* selectedFilter) override;
    QString getExistingDirectory(const QString& title, const QString& dir) override;
    std::optional<QColor> chooseColor(const QColor& initial, const QString& title) override;
    int exec(QDialog& dialog) override;
};

// Tests: answers come from queues; what was asked is recorded. When a queue is empty the
// default answer is given (msgBox: the first button's answer, i.e. vbOK / vbYes / vbAbort /
// vbRetry; others: empty / nothing / QDialog::Rejected) and `unexpected` is counted.
class ScriptedDialogs : public Dialogs {
public:
    struct Asked {
        QString kind;  // "msgBox", "inputBox", "open", "save", "dir", "color", "exec"
        QString text;  // message, prompt or title; for "exec" the dialog's objectName
        int buttons = 0;
        int icon = 0;
        QString title;
    };
    std::deque<MsgResult> msgAnswers;
    std::deque<QString> inputAnswers;
    std::deque<QString> fileAnswers;  // shared by open, save and directory dialogs
    // The filter "chosen" in a save dialog; empty queue: the first entry of the filter.
    std::deque<QString> filterAnswers;
    std::deque<std::optional<QColor>> colorAnswers;
    // For exec: each entry is called with the dialog (it may fill fields, click buttons) and
    // answers the result code. Empty queue: QDialog::Rejected.
    std::deque<std::function<int(QDialog&)>> execAnswers;

    std::vector<Asked> asked;
    int unexpected = 0;
    // Called as each question is asked, while it would be on screen.
    std::function<void(const Asked&)> onAsk;

    // Installs itself as the seam for its lifetime.
    ScriptedDialogs();
    ~ScriptedDialogs() override;

    int count(const QString& kind) const;
    const Asked* last(const QString& kind) const;

    MsgResult msgBox(const QString& text, int buttons, int icon, const QString& title) override;
    QString inputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
    QString getOpenFileName(const QString& title, const QString& dir, const QString& filter) override;
    QString getSaveFileName(const QString& title, const QString& dir, const QString& filter) override;
    QString getSaveFileNameAndFilter(const QString& title, const QString& dir, const QString& filter,
                                     QString* selectedFilter) override;
    QString getExistingDirectory(const QString& title, const QString& dir) override;
    std::optional<QColor> chooseColor(const QColor& initial, const QString& title) override;
    int exec(QDialog& dialog) override;

private:
    void record(Asked a);
    Dialogs* m_previous = nullptr;
};

} // namespace vexil
