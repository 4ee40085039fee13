// The one QApplication of a test program, on the offscreen platform so that tests run without a display.
#pragma once
#include <QApplication>

namespace vexil::test {

inline QApplication& offscreenApp() {
    static int argc = 1;
    static char name[] = "vexil_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* a = [] {
        // A test may ask for the offscreen platform with options (a screen of a given size).
        if (!qgetenv("QT_QPA_PLATFORM").startsWith("offscreen")) qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    return *a;
}

} // namespace vexil::test
