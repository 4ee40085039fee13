// The two outlets of the maths library that are not return values: lines for the event
// log and message boxes (`MatrixADD`, `MatrixMultiply`).
// The library has no Qt and no log of its own: the application points these sinks at
// `AppLog` and at its dialogs seam at start-up; tests point them at a recorder.
// Without a sink, both write a line to standard error.
#pragma once
#include <functional>
#include <string>

namespace Maths {

// eventType as in ErrLog.LogEvent: 1 error, 2 warning, 4 information.
using LogSink = std::function<void(const std::string& message, int eventType)>;
using MessageBoxSink = std::function<void(const std::string& title, const std::string& text)>;

// Installs a sink; an empty function restores the default (standard error).
void SetLogSink(LogSink sink);
void SetMessageBoxSink(MessageBoxSink sink);

// Used by the library itself.
void LogEvent(const std::string& message, int eventType);
void ShowMessageBox(const std::string& title, const std::string& text);

} // namespace Maths
