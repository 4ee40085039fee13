// Shared set-up of the frame's tests: a QApplication (offscreen), a private settings store and
// application folder in a temporary directory, the language files of data/, and the log.
#pragma once
#include "../support/OffscreenApp.h"
#include "frame/AppPaths.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"
#include "app/formSplash.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace vexil::test {

inline QApplication& app() {
    return offscreenApp();
}

inline QString readFile(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return QString();
    return QString::fromUtf8(f.readAll());
}

// A fresh program environment per test: empty store, application folder with "Locale Resources".
class AppEnv : public ::testing::Test {
protected:
    void SetUp() override {
        app();
        ASSERT_TRUE(m_dir.isValid());
        QDir(m_dir.path()).mkpath(QStringLiteral("settings"));
        QDir(m_dir.path()).mkpath(QStringLiteral("app/Locale Resources"));
        SettingsStore::setLocation(m_dir.path() + QStringLiteral("/settings"));
        setAppFolderForTests(m_dir.path() + QStringLiteral("/app"));
        QFile::copy(QStringLiteral(VEXIL_SOURCE_DATA "/Locale Resources/Sat407.lng"),
                    AppPath(QStringLiteral("Locale Resources/Sat407.lng")));
        AppLog().setLogFile(AppPath(QStringLiteral("VXE_Error.log")));
        AppLog().ClearLogFile();
        AppLog().beepMask = 16;
        AppLog().beep = [this] { ++beeps; };
        Prefs() = Preferences{};
        ResetLocaleForTests();
        SetAppLCID(409);
        TerminatingOnError() = false;
        setErrorPresenter({});
        formSplash::MinimumTimeMs() = 20;
        formSplash::LingerMs() = 0;
        // No test may block on a modal window: a question nobody scripted gets the default answer. A
        // fixture that scripts its own dialogs (a member made before this) keeps them.
        if (!dynamic_cast<ScriptedDialogs*>(&dialogs())) m_noModal = std::make_unique<ScriptedDialogs>();
    }
    void TearDown() override {
        m_noModal.reset();
        AppLog().beep = nullptr;
        setErrorPresenter({});
        ResetLocaleForTests();
        SetAppLCID(409);
        setAppFolderForTests(QString());
    }
    QString log() const { return readFile(AppLog().LogFile()); }
    QString tempPath(const QString& rel) const { return m_dir.path() + QLatin1Char('/') + rel; }

    QTemporaryDir m_dir;
    int beeps = 0;
    std::unique_ptr<ScriptedDialogs> m_noModal;
};

} // namespace vexil::test
