// Failure reporting and the event log.
//
//   vexil::AppLog().LogEvent("text", vexil::LogWarning);   // a line in VXE_Error.log
//   vexil::ReportError(number, source, description);        // log + formError (modal, via the dialogs seam)
//   vexil::handleEvent("Form1", "mnuSave_Click", [&]{ ... }); // the event-handler shape
#pragma once
#include "base/VexilError.h"

#include <QString>
#include <cstdint>
#include <functional>

namespace vexil {

enum LogEventType { LogError = 1, LogWarning = 2, LogInformation = 4 };

class ErrLog {
public:
    ErrLog() = default;

    // Beep mask: 16 at construction, then the setting "ErrLogBeepVal".
    // The tests of LogEvent are by bit values 4, 6 and 2 (the kept quirk, see ErrLog.cpp).
    std::uint8_t beepMask = 16;

    QString LogFile() const { return m_logFile; }
    void setLogFile(const QString& path) { m_logFile = path; }

    // Appends: type line, the message's lines (split at LF only, CR stays), an empty line.
    void LogEvent(const QString& message, int type);
    // Empties the log file.
    void ClearLogFile();
    // Starts a new run's log and keeps the last few: a log that holds something becomes LogFile + ".1",
    // ".1" becomes ".2" and so on, up to `kept` earlier runs; the oldest goes. The log itself is then empty.
    // (An empty log is not kept: it would push out a run that had something to say, a crash report say.)
    static constexpr int KeptRuns = 4;
    void RotateLogFiles(int kept = KeptRuns);

    // The system beep; replaceable so that tests can count beeps.
    std::function<void()> beep;

    // True when LogEvent would beep for this type with the current mask.
    bool beepsFor(int type) const;

private:
    QString m_logFile = QStringLiteral("Error.txt");
};

// The process-wide log. Exists from the first use (the entry routine sets its file and clears it).
ErrLog& AppLog();

// Text of the last reported error, for formError.
QString& LastErrorText();

// Qt flavour of the formatter (same rule as the std::string one in VexilError.h).
QString FormatErrorSource(const QString& source, const QString& objectName, const QString& procedureName);

// "Unexpected error found " + number + CRLF + " " + source + CRLF + " " + description: logged as an
// error, stored in LastErrorText and shown in formError (modal through the dialogs seam).
void ReportError(long number, const QString& sourceText, const QString& description);
inline void ReportError(const VexilError& e) {
    ReportError(e.number, QString::fromStdString(e.source), QString::fromStdString(e.description));
}

// Hook: what ReportError shows. Production shows formError (installed by the application);
// if nothing is installed, ReportError only logs. Tests may replace it.
using ErrorPresenter = std::function<void(const QString& text)>;
void setErrorPresenter(ErrorPresenter presenter);

// True after the user chose to terminate from formError: the close box stops asking
// and the viewports ignore the mouse.
bool& TerminatingOnError();

// The event-handler shape: runs body; a failure gets this level's trace line and is reported by
// ReportError. The event is over; the program carries on. Returns false if body failed.
template <class F>
bool handleEvent(const char* objectName, const char* procedureName, F&& body) {
    try {
        body();
        return true;
    } catch (VexilError& e) {
        e.addSource(objectName, procedureName);
        ReportError(e);
    } catch (const std::exception& e) {
        ReportError(ErrInvalidCall, FormatErrorSource(QString(), QString::fromLatin1(objectName),
                                                      QString::fromLatin1(procedureName)),
                    QString::fromLocal8Bit(e.what()));
    }
    return false;
}

} // namespace vexil
