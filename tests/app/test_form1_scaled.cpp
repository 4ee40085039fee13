// The window on a 1600 x 1000 screen at 1.5 times the size (QT_SCALE_FACTOR=1.5), in German. The whole
// program runs with that screen and scale: they are set before its application object is made.
#include "Form1Fixture.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

using namespace vexil;
using vexil::test::Form1Test;

namespace {
const bool screenSet = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" VEXIL_SCREEN_CONFIG);
    qputenv("QT_SCALE_FACTOR", "1.5");
    return true;
}();
} // namespace

// The first window was 687 x 433 pixels on this screen and its tabs were clipped behind scroll arrows.
TEST_F(Form1Test, AtOneAndAHalfTimesTheSizeTheGermanTabsAreAllReadable) {
    ASSERT_DOUBLE_EQ(qApp->primaryScreen()->devicePixelRatio(), 1.5) << "QT_SCALE_FACTOR=1.5";
    SaveSetting(SecPrefrences, QStringLiteral("APP_LCID"), QStringLiteral("407"));
    start();
    QCoreApplication::processEvents();
    ASSERT_TRUE(form->isMaximized());
    EXPECT_GE(form->width(), 1000) << "the whole screen: " << form->width();
    QTabBar* bar = form->tabWorkspace->tabBar();
    EXPECT_EQ(form->tabWorkspace->tabText(1).simplified(), QStringLiteral("Gruppe bearbeiten"));
    for (int i = 0; i < form->tabWorkspace->count(); ++i) {
        const QRect r = bar->tabRect(i);
        EXPECT_GE(r.left(), 0) << i;
        EXPECT_LE(r.right(), bar->width()) << i << ": " << form->tabWorkspace->tabToolTip(i).toStdString();
        // Every word of the title is on the tab.
        EXPECT_EQ(QString(form->tabWorkspace->tabText(i)).replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char(' ')),
                  QString(form->tabWorkspace->tabToolTip(i)).remove(QLatin1Char(' ')))
            << i;
    }
    for (QToolButton* scroll : bar->findChildren<QToolButton*>())
        EXPECT_FALSE(scroll->isVisible()) << "no scroll arrows";
    // The viewports keep a fair share.
    EXPECT_GT(form->Picture2->width(), form->width() * 2 / 5);
}
