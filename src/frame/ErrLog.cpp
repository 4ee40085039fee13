// ErrLog, ReportError and the formatter.
#include "ErrLog.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace vexil {

ErrLog& AppLog() {
    static ErrLog log;
    return log;
}

QString& LastErrorText() {
    static QString text;
    return text;
}

bool& TerminatingOnError() {
    static bool flag = false;
    return flag;
}

namespace {
ErrorPresenter& presenter() {
    static ErrorPresenter p;
    return p;
}
} // namespace

void setErrorPresenter(ErrorPresenter p) { presenter() = std::move(p); }

bool ErrLog::beepsFor(int type) const {
    // The three tests of the Windows design, kept: 4 for information, 2 or 4 for warnings, 2 for errors;
    // the preference list offers the bits 2, 4 and 8, so "Message" (8) never beeps.
    switch (type) {
    case LogInformation: return (beepMask & 4) != 0;
    case LogWarning: return (beepMask & 6) != 0;
    case LogError: return (beepMask & 2) != 0;
    default: return false;
    }
}

void ErrLog::LogEvent(const QString& message, int type) {
    QFile file(m_logFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;
    QTextStream out(&file);
    switch (type) {
    case LogError: out << "Error:\n"; break;
    case LogWarning: out << "Warning:\n"; break;
    case LogInformation: out << "Information:\n"; break;
    default: break;
    }
    if (beepsFor(type)) {
        if (beep)
            beep();
        else if (qobject_cast<QApplication*>(QCoreApplication::instance()))
            QApplication::beep();
    }
    // Only LF ends a line; a CR stays in the text (the CR LF test of the Windows design never matches
    // a single character). The last collected text is always written, so an empty message and a
    // message ending in LF both give one empty line here.
    QString line;
    for (const QChar c : message) {
        if (c == QLatin1Char('\n')) {
            out << line << '\n';
            line.clear();
        } else {
            line += c;
        }
    }
    out << line << '\n';
    out << '\n';
}

void ErrLog::ClearLogFile() {
    QFile file(m_logFile);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.close();
}

void ErrLog::RotateLogFiles(int kept) {
    const QFileInfo current(m_logFile);
    if (kept > 0 && current.exists() && current.size() > 0) {
        auto older = [&](int i) { return m_logFile + QLatin1Char('.') + QString::number(i); };
        QFile::remove(older(kept));
        for (int i = kept - 1; i >= 1; --i)
            if (QFileInfo::exists(older(i))) QFile::rename(older(i), older(i + 1));
        QFile::rename(m_logFile, older(1));
    }
    ClearLogFile();
}

QString FormatErrorSource(const QString& source, const QString& objectName, const QString& procedureName) {
    return QString::fromStdString(
        vexil::FormatErrorSource(source.toStdString(), objectName.toStdString(), procedureName.toStdString()));
}

void ReportError(long number, const QString& sourceText, const QString& description) {
    const QString text = QStringLiteral("Unexpected error found ") + QString::number(number) + QStringLiteral("\r\n ") +
                         sourceText + QStringLiteral("\r\n ") + description;
    AppLog().LogEvent(text, LogError);
    LastErrorText() = text;
    if (presenter()) presenter()(text);
}

} // namespace vexil
