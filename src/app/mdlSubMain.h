// The entry routine and the tick loop.
#pragma once
#include <QString>
#include <QStringList>

namespace vexil {

class Form1;

// True only under a development environment; always false in a built program.
bool IsDevelopmentRun();

// The command line as one text: the arguments after the program's name joined by blanks.
QString CommandLineOf(const QStringList& arguments);

// Steps 1 to 7 of the entry routine, with an existing QApplication: log, preferences (and language),
// languages, splash (if ShowSplashScreen is 1) and Form1 shown. Returns the main window.
Form1* StartApplication(const QString& commandLine);

// Step 8: the tick loop, until form.ExitRequested: ScrollCheck, let events run, sleep 3 ms, and the
// engine call ZELMAR_engine_set_picture_quality(1111111111) while a world is open. Returns the number of
// passes (for tests); maxTicks > 0 ends the loop after that many passes.
long TickLoop(Form1& form, long maxTicks = 0);

// The whole program: QApplication, steps 1 to 9. Returns the process's exit code.
int SubMain(int argc, char** argv);

} // namespace vexil
