// main of the document's Qt tests: a QApplication (offscreen), the built-in language, a private settings
// store and application folder.
#include "frame/AppPaths.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Settings.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen") : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    QTemporaryDir settings;
    vexil::SettingsStore::setLocation(settings.path());
    vexil::AppLog().setLogFile(settings.path() + "/VXE_Error.log");
    vexil::SetAppLCID(409);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
