#include "MathsReport.h"

#include <cstdio>
#include <utility>

namespace Maths {
namespace {
LogSink& logSink() {
    static LogSink sink;
    return sink;
}
MessageBoxSink& messageBoxSink() {
    static MessageBoxSink sink;
    return sink;
}
} // namespace

void SetLogSink(LogSink sink) {
    logSink() = std::move(sink);
}
void SetMessageBoxSink(MessageBoxSink sink) {
    messageBoxSink() = std::move(sink);
}

void LogEvent(const std::string& message, int eventType) {
    if (logSink()) {
        logSink()(message, eventType);
        return;
    }
    std::fprintf(stderr, "Maths log (%d): %s\n", eventType, message.c_str());
}

void ShowMessageBox(const std::string& title, const std::string& text) {
    if (messageBoxSink()) {
        messageBoxSink()(title, text);
        return;
    }
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
}

} // namespace Maths
