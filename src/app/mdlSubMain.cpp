#include "mdlSubMain.h"

#include "simplify/EngineReducer.h"

#include "frame/AppPaths.h"
#include "frame/ErrLog.h"
#include "Form1.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "formError.h"
#include "formSplash.h"

#include <zelmar/zelmar.h>

#include <QApplication>
#include <QTimer>
#include <chrono>
#include <memory>
#include <thread>

namespace vexil {

bool IsDevelopmentRun() { return false; }

QString CommandLineOf(const QStringList& arguments) { return arguments.mid(1).join(QLatin1Char(' ')); }

Form1* StartApplication(const QString& commandLine) {
    // 1., 2. The log (ToolbarStateStore is the toolbar code's own state, Form1_Toolbars.cpp), empty for this
    // run; the logs of the last few runs are kept beside it, so that a crash report survives a restart.
    AppLog().setLogFile(AppPath(QStringLiteral("VXE_Error.log")));
    AppLog().RotateLogFiles();
    // 3. Preferences, and with them the language.
    try {
        LoadPreferences();
    } catch (const VexilError& e) {
        ReportError(e);
    }
    if (CurrentLCID() == 0) SetAppLCID(409);
    // 4.
    GetAllSupportedLanguages();
    // 5.
    Prefs().ShowSplashMode = ReadShowSplashMode();
    // The engine's reducing operations (plug-ins reach them) run the editor's simplifier.
    simplify::InstallEngineReducer();
    auto* form = new Form1;
    form->SetCommandLine(commandLine);
    formSplash* splash = nullptr;
    if (Prefs().ShowSplashMode == 1) {
        splash = new formSplash([form] { form->Show(); });
        splash->setAttribute(Qt::WA_DeleteOnClose);
        splash->Form_Load();
        splash->show();
        QTimer::singleShot(0, splash, [splash] { splash->Form_Activate(); });
    }
    // 6.
    QCoreApplication::processEvents();
    // 7.
    if (!form->IsLoaded()) form->Show();
    return form;
}

long TickLoop(Form1& form, long maxTicks) {
    long ticks = 0;
    while (!form.ExitRequested) {
        form.ScrollCheck();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        if (form.ExitRequested) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        if (form.WorldOpen()) ZELMAR_engine_set_picture_quality(1111111111);
        ++ticks;
        if (maxTicks > 0 && ticks >= maxTicks) break;
    }
    return ticks;
}

int SubMain(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vexil"));
    QApplication::setQuitOnLastWindowClosed(false);
    InstallErrorDialog();
    Form1* form = StartApplication(CommandLineOf(QCoreApplication::arguments()));
    TickLoop(*form);
    // 9.
    delete form;
    return 0;
}

} // namespace vexil
