#include "formError.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "Form1.h"
#include "frame/Locale.h"

#include <QDesktopServices>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextStream>
#include <QUrl>
#include <QVBoxLayout>
#include <cstdlib>

namespace vexil {

formError::formError(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("formError"));
    setWindowFlag(Qt::WindowStaysOnTopHint, true); // SetWindowPos topmost, no move, no size
    auto* v = new QVBoxLayout(this);
    Label3 = new QLabel(this);
    Label3->setObjectName(QStringLiteral("Label3"));
    QFont f = Label3->font();
    f.setBold(true);
    Label3->setFont(f);
    Label2 = new QLabel(this);
    Label2->setObjectName(QStringLiteral("Label2"));
    Label1 = new QLabel(this);
    Label1->setObjectName(QStringLiteral("Label1"));
    for (QLabel* l : {Label3, Label2, Label1}) {
        l->setWordWrap(true);
        v->addWidget(l);
    }
    Text1 = new QPlainTextEdit(this);
    Text1->setObjectName(QStringLiteral("Text1"));
    v->addWidget(Text1, 1);
    auto* h = new QHBoxLayout;
    cmdEmailReport = new QPushButton(this);
    cmdEmailReport->setObjectName(QStringLiteral("cmdEmailReport"));
    cmdQuit = new QPushButton(this);
    cmdQuit->setObjectName(QStringLiteral("cmdQuit"));
    h->addWidget(cmdEmailReport);
    h->addStretch(1);
    h->addWidget(cmdQuit);
    v->addLayout(h);
    connect(cmdQuit, &QPushButton::clicked, this, [this] { cmdQuit_Click(); });
    connect(cmdEmailReport, &QPushButton::clicked, this, [this] { cmdEmailReport_Click(); });
    ApplyLanguage();
    resize(460, 320);
}

void formError::ApplyLanguage() {
    setWindowTitle(GetLocaleString(470));
    cmdQuit->setText(GetLocaleString(471));
    cmdEmailReport->setText(GetLocaleString(472));
    Label1->setText(GetLocaleString(473));
    Label2->setText(GetLocaleString(474));
    Label3->setText(GetLocaleString(475));
}

void formError::cmdQuit_Click() { reject(); }

std::function<void(const QString&)>& formError::OpenMailLink() {
    static std::function<void(const QString&)> f = [](const QString& link) {
        QDesktopServices::openUrl(QUrl(link, QUrl::TolerantMode));
    };
    return f;
}

QString formError::BuildMailBody() const {
    const QString cr = QStringLiteral("%0d");
    QString events = Text1->toPlainText();
    events.replace(QLatin1Char('\n'), cr + QLatin1Char('\n'));
    QString body = QStringLiteral("Error Description: ") + cr + cr + LastErrorText() + cr + QStringLiteral(".  ") +
                   QLatin1Char('\n') + QStringLiteral("Events that lead to this error.") + cr + cr + QLatin1Char('\n') +
                   events;
    body += cr + QLatin1Char('\n') + cr + QLatin1Char('\n') + QStringLiteral("--- VXE_Error.log ---");
    QFile log(AppLog().LogFile());
    if (log.open(QIODevice::ReadOnly)) {
        QTextStream in(&log);
        while (!in.atEnd()) body += cr + QLatin1Char('\n') + QLatin1Char(' ') + in.readLine();
    }
    return body;
}

QString formError::BuildMailLink() const {
    return QStringLiteral("mailto:") + QString::fromLatin1(MailTarget) + QStringLiteral("?subject=") +
           QStringLiteral("Vexil 2.0") + QStringLiteral(" Bug report; LangID: ") + QString::number(CurrentLCID()) +
           QStringLiteral("&body=") + BuildMailBody();
}

void formError::cmdEmailReport_Click() {
    if (Text1->toPlainText().isEmpty()) {
        if (dialogs().msgBox(GetLocaleString(576), MsgOKCancel, MsgInformation) == vbCancel) return;
    }
    OpenMailLink()(BuildMailLink());
    accept();
}

std::function<void()>& TerminateProcessHook() {
    static std::function<void()> f = [] {
        if (Form1* form = Form1::instance()) form->Form_Unload();
        std::_Exit(0);
    };
    return f;
}

void ShowErrorDialog(const QString&) {
    formError dlg(Form1::instance());
    dialogs().exec(dlg);
    // When the form is closed, it asks.
    const QString text = GetLocaleString(577) + QLatin1Char('\n') + GetLocaleString(578);
    if (dialogs().msgBox(text, MsgYesNo, MsgCritical, QStringLiteral("Error")) == vbYes) {
        TerminatingOnError() = true;
        TerminateProcessHook()();
    }
}

void InstallErrorDialog() { setErrorPresenter(ShowErrorDialog); }

} // namespace vexil
