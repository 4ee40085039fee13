// formError: the dialog of an unexpected error, with the mail report and, when it
// closes, the question whether to terminate.
#pragma once
#include <QDialog>
#include <functional>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace vexil {

class formError : public QDialog {
    Q_OBJECT
public:
    explicit formError(QWidget* parent = nullptr);
    void ApplyLanguage();
    void cmdQuit_Click();
    void cmdEmailReport_Click();
    // The body of the mail report (the "%0d" line marks of the Windows design kept).
    QString BuildMailBody() const;
    // The mail link: target + "?subject=Vexil 2.0 Bug report; LangID: <n>&body=" + body.
    QString BuildMailLink() const;

    QPlainTextEdit* Text1 = nullptr;
    QPushButton* cmdEmailReport = nullptr;
    QPushButton* cmdQuit = nullptr;
    QLabel *Label1 = nullptr, *Label2 = nullptr, *Label3 = nullptr;

    static constexpr const char* MailTarget = "vexil-support@example.org";

    // Opens a mail link (production: QDesktopServices); replaceable in tests.
    static std::function<void(const QString& link)>& OpenMailLink();
};

// ReportError's presentation: formError modal (through the dialogs seam), then, when it has closed, the
// terminate question (UI strings 577, LF, 578; Yes and No; stop icon; title "Error"). Yes sets
// TerminatingOnError, unloads Form1 through its unload handler and ends the process (`terminate`).
void ShowErrorDialog(const QString& errorText);
// How the process ends after "Yes" (production: Form1's unload, then std::_Exit). Replaceable in tests.
std::function<void()>& TerminateProcessHook();
// Installs ShowErrorDialog as ReportError's presenter.
void InstallErrorDialog();

} // namespace vexil
