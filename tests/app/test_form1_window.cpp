// What a new user meets in the main window: commands that say when they are not there yet, the tip and
// the messages in front, the Edit Group panel that follows its mode, the progress bar, and the development
// switches. Each test is named for the fault found by trying the editor.
#include "materials/PolygonSurfacePanel.h"
#include "modelling/frmEditGeom.h"
#include "Form1Fixture.h"
#include "app/formSplash.h"
#include "builders/CreatePanel.h"
#include "builders/CreateNewObject.h"
#include <zelmar/zelmar.h>
#include "frame/Spinner.h"
#include "document/WorldDocument.h"
#include "frame/AppIcons.h"
#include "frame/NotAvailable.h"
#include "library/formTip.h"
#include "view/frmPicWins.h"
#include "UrlRecorder.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QToolBar>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QTabWidget>
#include <QWindow>

using namespace vexil;
using vexil::test::Form1Test;

namespace {

// Every item of the menu bar's menus and of the popup menus, submenus included, that is a command.
std::vector<QAction*> commandItems(Form1* form) {
    std::vector<QMenu*> menus = form->PopupMenus();
    for (QAction* a : form->menuBar()->actions())
        if (a->menu()) menus.push_back(a->menu());
    std::vector<QAction*> items;
    for (size_t i = 0; i < menus.size(); ++i)
        for (QAction* a : menus[i]->actions()) {
            if (a->isSeparator()) continue;
            if (a->menu()) {
                menus.push_back(a->menu());
                continue;
            }
            items.push_back(a);
        }
    return items;
}

} // namespace

// Menu items connected to nothing did nothing when chosen: every item now runs a command, which may be to
// say that its feature is not available yet.
TEST_F(Form1Test, EveryMenuItemDoesSomethingWhenChosen) {
    start();
    const std::vector<QAction*> items = commandItems(form);
    ASSERT_GT(items.size(), 100u);
    for (QAction* a : items) {
        if (a->objectName().startsWith(QLatin1String("mnuMru"))) continue; // shown only with a recent file
        const bool connected = QObject::disconnect(a, &QAction::triggered, nullptr, nullptr) ||
                               QObject::disconnect(a, &QAction::toggled, nullptr, nullptr);
        EXPECT_TRUE(connected) << a->objectName().toStdString() << " \"" << a->text().toStdString() << "\"";
    }
}

TEST_F(Form1Test, ACommandNotBuiltYetSaysSo) {
    start();
    ScriptedDialogs dlg;
    form->mnuModelGalleryAddFolder->trigger();
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, NotAvailableYetText(form->mnuModelGalleryAddFolder->text()));
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->icon, MsgInformation);
    // Commands that have landed no longer say so: Bend asks for a group first.
    form->mnuCamera->trigger();
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    form->mnuBend->trigger();
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 2);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, GetLocaleString(357));
    EXPECT_EQ(NotAvailableYetText(QStringLiteral("Light &Maps")), QStringLiteral("\"Light Maps\" is not available yet."));
}

// The Tip of the Day was shown during Form_Load, before the window itself, and so opened behind it.
TEST_F(Form1Test, TheTipOfTheDayOpensInFrontOfTheWindow) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(VEXIL_SOURCE_DATA "/TIPOFDAY.TXT"), AppPath(QStringLiteral("TIPOFDAY.TXT"))));
    std::vector<QObject*> shown;
    struct ShowOrder : QObject {
        std::vector<QObject*>* out;
        bool eventFilter(QObject* o, QEvent* e) override {
            if (e->type() == QEvent::Show && o->isWidgetType() && static_cast<QWidget*>(o)->isWindow()) out->push_back(o);
            return false;
        }
    } order;
    order.out = &shown;
    qApp->installEventFilter(&order);
    start();
    qApp->removeEventFilter(&order);
    ASSERT_TRUE(form->TipForm);
    EXPECT_TRUE(form->TipForm->isVisible());
    const auto at = [&](QObject* o) { return std::find(shown.begin(), shown.end(), o) - shown.begin(); };
    ASSERT_LT(at(form), long(shown.size()));
    ASSERT_LT(at(form->TipForm), long(shown.size()));
    EXPECT_LT(at(form), at(form->TipForm)) << "the window first, then the tip over it";
    ASSERT_NE(form->TipForm->windowHandle(), nullptr);
    EXPECT_EQ(form->TipForm->windowHandle()->transientParent(), form->windowHandle()) << "kept above its window";
}

// A world named on the command line that failed to load gave its message behind the splash screen, and
// without the reason.
TEST_F(Form1Test, AFailedLoadAtStartIsExplainedInFrontOfTheSplash) {
    formSplash::MinimumTimeMs() = 50;
    QFile bad(tempPath(QStringLiteral("damaged.wld")));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("not a world at all");
    bad.close();
    ScriptedDialogs dlg;
    bool splashShowing = true;
    dlg.onAsk = [&](const ScriptedDialogs::Asked& a) {
        if (a.kind != QLatin1String("msgBox")) return;
        splashShowing = false;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->windowType() == Qt::SplashScreen && w->isVisible()) splashShowing = true;
    };
    start(tempPath(QStringLiteral("damaged.wld")));
    ASSERT_GE(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_FALSE(splashShowing);
    const QString text = dlg.last(QStringLiteral("msgBox"))->text;
    EXPECT_TRUE(text.contains(QStringLiteral("damaged.wld"))) << text.toStdString();
    EXPECT_GT(text.size(), QStringLiteral("Error Loading World").size() + tempPath(QStringLiteral("damaged.wld")).size() + 4)
        << "the engine's reason is given: " << text.toStdString();
}

// The Edit Group tab showed every control whatever the mode, and its two spinners had no labels.
TEST_F(Form1Test, TheEditGroupPanelFollowsItsModeAndItsSpinnersAreLabelled) {
    start();
    form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
    form->SetCmbObjItems({QStringLiteral("New Object"), QStringLiteral("Edit Geometry"), QStringLiteral("Edit Texture")}, 0);
    QCoreApplication::processEvents();
    frmEditGeom* geom = form->EditGeomPanel;
    EXPECT_TRUE(form->frmCreate->isVisibleTo(form->tabWorkspace));
    EXPECT_FALSE(geom->isVisibleTo(form->tabWorkspace));
    EXPECT_FALSE(form->frmPolSurface->isVisibleTo(form->tabWorkspace));
    form->cmbObj->setCurrentIndex(1);
    form->cmbObjEditGeom->setCurrentIndex(1); // Polygon
    EXPECT_FALSE(form->frmCreate->isVisibleTo(form->tabWorkspace));
    EXPECT_TRUE(geom->isVisibleTo(form->tabWorkspace));
    EXPECT_TRUE(geom->frmEditPol->isVisibleTo(form->tabWorkspace));
    EXPECT_EQ(geom->lblExtBvl[0]->text(), QStringLiteral("Extrude"));
    EXPECT_EQ(geom->lblExtBvl[1]->text(), QStringLiteral("Bevel"));
    form->cmbObjEditGeom->setCurrentIndex(0); // Point
    EXPECT_FALSE(geom->frmEditPol->isVisibleTo(form->tabWorkspace));
    EXPECT_TRUE(geom->frmEditPt->isVisibleTo(form->tabWorkspace));
    form->cmbObj->setCurrentIndex(2);
    EXPECT_TRUE(form->frmPolSurface->isVisibleTo(form->tabWorkspace));
    EXPECT_FALSE(geom->isVisibleTo(form->tabWorkspace));
}

// The progress bar stood empty in the status bar all the time.
TEST_F(Form1Test, TheProgressBarShowsOnlyWhileThereIsProgress) {
    start();
    EXPECT_FALSE(form->ProgressBar1->isVisible());
    form->ShowProgress(3, 10);
    EXPECT_TRUE(form->ProgressBar1->isVisible());
    EXPECT_EQ(form->ProgressBar1->value(), 3);
    form->ShowProgress(10, 10);
    EXPECT_FALSE(form->ProgressBar1->isVisible());
}

// SetDebug and PrintAllControlNames were missing.
TEST_F(Form1Test, TheDevelopmentSwitchesSetDebugAndListTheCaptions) {
    start();
    EXPECT_FALSE(form->DebugEnabled);
    form->SetDebug();
    EXPECT_TRUE(form->DebugEnabled);
    const QString path = form->PrintAllControlNames();
    EXPECT_EQ(path, AppPath(QStringLiteral("String Table Entries/Strings.txt")));
    const QStringList lines = vexil::test::readFile(path).split(QLatin1Char('\n'));
    for (const char* caption : {"&File", "Save &As", "Groups", "Edit Group", "Extrude"})
        EXPECT_TRUE(lines.contains(QString::fromUtf8(caption))) << caption;
    // Written again, not added to.
    const int n = int(lines.size());
    form->PrintAllControlNames();
    EXPECT_EQ(vexil::test::readFile(path).split(QLatin1Char('\n')).size(), n);
}

// Help > Reference said "File not found!": the help pages ship in "help" beside the program, and they
// speak of every menu item.
TEST_F(Form1Test, HelpOpensThePagesThatCoverEveryMenuItem) {
    QDir().mkpath(AppPath(QStringLiteral("help")));
    QString allText;
    for (const QString& f : QDir(QStringLiteral(VEXIL_SOURCE_DATA "/help")).entryList(QDir::Files)) {
        QFile::copy(QStringLiteral(VEXIL_SOURCE_DATA "/help/") + f, AppPath(QStringLiteral("help/") + f));
        allText += vexil::test::readFile(AppPath(QStringLiteral("help/") + f));
    }
    allText = allText.simplified(); // a caption may be broken across lines
    start();
    ScriptedDialogs dlg;
    vexil::test::UrlRecorder browser;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &browser, "open");
    form->mnuReference->trigger();
    form->mnuTutorial->trigger();
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
    ASSERT_EQ(browser.opened.size(), 2);
    EXPECT_EQ(browser.opened[0].toLocalFile(), AppPath(QStringLiteral("help/index.html")));
    EXPECT_EQ(browser.opened[1].toLocalFile(), AppPath(QStringLiteral("help/tutorial.html")));
    // Every item of every menu is named in the pages.
    for (QAction* a : commandItems(form)) {
        if (a->objectName().startsWith(QLatin1String("mnuMru"))) continue;
        QString caption = a->text();
        caption.remove(QLatin1Char('&'));
        caption = caption.trimmed();
        EXPECT_TRUE(allText.contains(caption, Qt::CaseInsensitive)) << caption.toStdString();
    }
    // Without the pages, the user is told where they were looked for.
    QDir(AppPath(QStringLiteral("help"))).removeRecursively();
    form->mnuReference->trigger();
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.contains(QStringLiteral("help/index.html")));
}

// Created primitives appeared at the origin, half below the ground. A new object now stands on the
// ground where the active view looks.
TEST_F(Form1Test, ANewObjectStandsOnTheGroundWhereTheActiveViewLooks) {
    start();
    ScriptedDialogs dlg;
    form->frmCreate->SetKind(PrimitiveKind::Box);
    auto boxOf = [&](int group) {
        std::array<double, 6> b{};
        ZELMAR_group_get_bounding_box(group, b.data());
        return b;
    };
    // The top view, looking down at (300, -200).
    form->ActiveWin = 0;
    camera& top = form->frmPicWins->ViewCams(0);
    top.LookAt = {300, -200, 0};
    top.Update();
    form->cmdCreate_Click();
    const int first = form->CurrSelEntity();
    ASSERT_NE(first, 0);
    auto b = boxOf(first);
    EXPECT_NEAR(b[2], 0, 1e-6) << "its lowest point on the ground";
    EXPECT_GT(b[5], 1) << "the rest above it";
    EXPECT_NEAR((b[0] + b[3]) / 2, 300, 1.0);
    EXPECT_NEAR((b[1] + b[4]) / 2, -200, 1.0);
    // The perspective view: where its line of sight meets the ground.
    form->ActiveWin = 2;
    const std::array<double, 3> at = form->NewObjectPlace();
    double loc[3], dir[3];
    ZELMAR_camera_get_location(form->frmPicWins->ViewCams(2).CamHandle, loc);
    ZELMAR_camera_get_direction(form->frmPicWins->ViewCams(2).CamHandle, dir);
    const double t = -loc[2] / dir[2];
    EXPECT_NEAR(at[0], loc[0] + t * dir[0], 1e-6);
    EXPECT_NEAR(at[1], loc[1] + t * dir[1], 1e-6);
    form->cmdCreate_Click();
    b = boxOf(form->CurrSelEntity());
    EXPECT_NEAR(b[2], 0, 1e-6);
    EXPECT_NEAR((b[0] + b[3]) / 2, at[0], 1.0);
    // The front view looks along the ground: below where it looks, on the ground.
    form->ActiveWin = 1;
    camera& front = form->frmPicWins->ViewCams(1);
    front.LookAt = {0, -120, 500};
    front.Update();
    form->cmdCreate_Click();
    b = boxOf(form->CurrSelEntity());
    EXPECT_NEAR(b[2], 0, 1e-6);
    EXPECT_NEAR((b[1] + b[4]) / 2, -120, 1.0);
    // One undo step takes the last one away again.
    const int last = form->CurrSelEntity();
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_get_father_group(last), 0);
}

// The toolbar buttons were letter tiles: they carry the icons shipped in "icons", and a button whose
// file is missing still gets a drawn tile.
TEST_F(Form1Test, ToolbarButtonsShowTheShippedIcons) {
    QDir().mkpath(AppPath(QStringLiteral("icons")));
    for (const QString& f : QDir(QStringLiteral(VEXIL_SOURCE_DATA "/icons")).entryList(QDir::Files))
        QFile::copy(QStringLiteral(VEXIL_SOURCE_DATA "/icons/") + f, AppPath(QStringLiteral("icons/") + f));
    QFile::remove(AppPath(QStringLiteral("icons/snap.svg")));
    start();
    int withIcon = 0;
    for (int b = 0; b < Form1::BandCount; ++b)
        for (QAction* a : form->Toolbar1[size_t(b)]->actions()) {
            const QString key = a->property("buttonKey").toString();
            ASSERT_FALSE(ButtonIconName(key).isEmpty()) << key.toStdString();
            EXPECT_FALSE(a->icon().isNull()) << key.toStdString();
            if (key == QLatin1String("Grid Snap")) continue;
            // The set's pictures are drawn for every toolbar size, the tiles only at 40 pixels.
            EXPECT_TRUE(a->icon().availableSizes().contains(QSize(22, 22))) << key.toStdString();
            ++withIcon;
        }
    EXPECT_EQ(withIcon, 25);
    EXPECT_TRUE(ButtonIcon(QStringLiteral("Grid Snap")).isNull()) << "its file was taken away";
    EXPECT_FALSE(form->ToolbarButton(QStringLiteral("Grid Snap"))->icon().availableSizes().contains(QSize(22, 22)));
    EXPECT_TRUE(QFileInfo::exists(QStringLiteral(VEXIL_SOURCE_DATA "/icons/COPYING.LGPL-3")));
}
