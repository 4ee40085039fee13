// vexil-viewer: plays a world file. The editor's Viewer Mode saves the world and starts this
// program beside it with the file as its argument.
#include "CommandLine.h"
#include "Headless.h"
#include "Player.h"
#include "ViewerWindow.h"

#include <zelmar/zelmar.h>

#include <QApplication>
#include <QMessageBox>

#include <cstdlib>
#include <iostream>

using namespace vexil::viewer;

int main(int argc, char** argv) {
    Options options;
    std::string error;
    if (!parseCommandLine(std::vector<std::string>(argv + 1, argv + argc), options, error)) {
        std::cerr << "vexil-viewer: " << error << "\n" << usageText();
        return ExitUsage;
    }
    if (options.help) {
        std::cout << usageText();
        return ExitOk;
    }
    if (options.frames >= 0) return runHeadless(options, std::cout, std::cerr);

    // Without a display Qt would abort; say what to do instead.
    const auto set = [](const char* name) { return std::getenv(name) && *std::getenv(name); };
    if (!set("DISPLAY") && !set("WAYLAND_DISPLAY") && !set("QT_QPA_PLATFORM")) {
        std::cerr << "vexil-viewer: there is no display to open a window on (--frames N plays without one)\n";
        return ExitNoDisplay;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vexil Viewer"));
    Player player;
    const LoadResult loaded = player.load(options.world);
    if (loaded.code != ExitOk) {
        std::cerr << "vexil-viewer: " << loaded.message << "\n";
        QMessageBox::critical(nullptr, QStringLiteral("Vexil Viewer"), QString::fromStdString(loaded.message));
        return loaded.code;
    }
    if (const char* warning = ZELMAR_engine_get_last_error(); warning && *warning)
        std::cerr << "vexil-viewer: warning: " << warning << "\n";
    player.selectCamera(options.camera - 1);
    player.setPaused(options.paused);
    ViewerWindow window(player);
    window.resize(options.width, options.height);
    window.show();
    return app.exec();
}
