// Form1, the shell: construction, Form_Initialize, Form_Load, the first activation,
// MDIForm_Resize, Form_QueryUnload, Form_Unload, ParseCommand.
#include "Form1.h"

#include "frame/AppPaths.h"
#include "frame/ErrLog.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "MostRecentUsedFiles.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"
#include "frame/Spinner.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "library/formTip.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QCloseEvent>
#include <QComboBox>
#include <QScreen>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <dlfcn.h>

namespace vexil {

namespace {
Form1*& theForm() {
    static Form1* f = nullptr;
    return f;
}
} // namespace

Form1* Form1::instance() { return theForm(); }

Form1::Form1(QWidget* parent) : QMainWindow(parent) {
    theForm() = this;
    setObjectName(QStringLiteral("Form1"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    // The form's design: every control exists before Form_Initialize and Form_Load.
    buildMenus();
    buildToolbars();
    buildWorkspace();
    buildViewports();
    buildStatusBar();
    ConnectPendingCommands();
    installKeyPreview();
    Form_Initialize();
}

Form1::~Form1() {
    if (m_loaded && !m_unloaded) Form_Unload();
    if (dialogs().parentWindow == this) dialogs().parentWindow = nullptr;
    if (theForm() == this) theForm() = nullptr;
}

// ---- geometry ------------------------------------------------------------------------------------

int Form1::TwipsToPixelsX(double twips) const { return int(std::lround(twips * logicalDpiX() / 1440.0)); }
int Form1::TwipsToPixelsY(double twips) const { return int(std::lround(twips * logicalDpiY() / 1440.0)); }
double Form1::PixelsToTwipsX(int px) const { return px * 1440.0 / logicalDpiX(); }
double Form1::PixelsToTwipsY(int px) const { return px * 1440.0 / logicalDpiY(); }

// ---- Form_Initialize -----------------------------------------------------------------------------

void Form1::Form_Initialize() {
    handleEvent("Form1", "Form_Initialize", [&] { RepositionMeAccordingToLastUsedPos(); });
}

void Form1::RepositionMeAccordingToLastUsedPos() {
    propagate("Form1", "RepositionMeAccordingToLastUsedPos", [&] {
        // The first start (no placement stored) fills the screen; later starts take the placement of the
        // last normal close, maximised again if the window was.
        const bool firstStart = GetSetting(SecSettings, QStringLiteral("MainWidth")).isEmpty();
        m_startMaximised = firstStart || ToBool(GetSetting(SecSettings, QStringLiteral("MainMaximized"), BoolText(false)));
        const double left = ToDouble(GetSetting(SecSettings, QStringLiteral("MainLeft"), QStringLiteral("1000")));
        const double top = ToDouble(GetSetting(SecSettings, QStringLiteral("MainTop"), QStringLiteral("1000")));
        const double width = ToDouble(GetSetting(SecSettings, QStringLiteral("MainWidth"), QStringLiteral("6500")));
        const double height = ToDouble(GetSetting(SecSettings, QStringLiteral("MainHeight"), QStringLiteral("6500")));
        move(TwipsToPixelsX(left), TwipsToPixelsY(top));
        resize(TwipsToPixelsX(width), TwipsToPixelsY(height));
        MDIForm_Resize();
    });
}

// ---- Show, Form_Load, first activation ---------------------------------------------------------------

void Form1::Show() {
    if (!m_loaded) Form_Load();
    if (m_unloaded) return;
    if (m_startMaximised && !isVisible()) {
        // Without a window manager nothing would size a maximised window: the screen's free area first.
        if (const QScreen* s = screen()) setGeometry(s->availableGeometry());
        showMaximized();
    } else {
        show();
    }
    Form_Activate();
    ShowPendingTip();
}

void Form1::ShowPendingTip() {
    // The tip of Form_Load step 22 opens once the window is up, in front of it.
    if (!m_tipPending || !TipForm) return;
    m_tipPending = false;
    TipForm->show();
    TipForm->raise();
    TipForm->activateWindow();
}

void Form1::Form_Load() {
    if (m_loaded) return;
    m_loaded = true;
    auto load = [&] {
        // 1. Language strings, caption.
        ApplyLanguage();
        setWindowTitle(UiAppTitle());
        dialogs().parentWindow = this;
        // 2.
        spnExtBvl[1]->SetValue(1.0);
        // 3.
        ZELMAR_engine_set_speaker_mode(0);
        // 4.
        StatusBar2->hide();
        // 5. The engine version test: the entry point must be present.
        if (!dlsym(RTLD_DEFAULT, "ZELMAR_engine_set_coordinates_auto_correct_mode"))
            throw VexilError(ErrEntryPointNotFound,
                             "Can't find DLL entry point ZELMAR_engine_set_coordinates_auto_correct_mode in zelmar3");
        ZELMAR_engine_set_coordinates_auto_correct_mode(0);
        // 6.
        MouseStepFactor = 1.0;
        trwModel_InitialSetup();
        // 7. MultiSel, UndoStack.
        // "MaxUndoRedo": empty, "0" or not numeric gives 20; the stack itself reads "0" as 0,
        // so "0" is handed over as empty.
        QString maxUndo = ReadMaxUndoRedoText();
        if (IsNumeric(maxUndo) && ToDouble(maxUndo) == 0.0) maxUndo.clear();
        m_undoStack = std::make_unique<ActionUndoRedo_Stack>(maxUndo.toStdString(), this);
        setUndoHost(this);
        m_document = std::make_unique<WorldDocument>(*this);
        m_document->AttachTrees(GroupTree, CamTrackBkTree, LightTree);
        GroupTree->SetDocument(m_document.get());
        CamTrackBkTree->SetDocument(m_document.get());
        LightTree->SetDocument(m_document.get());
        // 8. The twelve pens.
        const QColor yellow(255, 255, 0), grey(122, 122, 122);
        Pens = {QPen(Qt::white, 1), QPen(Qt::red, 1), QPen(Qt::red, 2), QPen(Qt::green, 1), QPen(Qt::green, 2),
                QPen(Qt::blue, 1), QPen(Qt::blue, 2), QPen(yellow, 1), QPen(yellow, 2), QPen(grey, 1),
                QPen(Qt::black, 1), QPen(Qt::black, 1)};
        PensCreated = true;
        // 9.
        m_mru = std::make_unique<MostRecentUsedFiles>(mnuFile, mnuExit);
        connect(m_mru.get(), &MostRecentUsedFiles::itemClicked, this, [this](int index, const QString&) { mnuMRU_Click(index); });
        // 10.
        cmbTrackPoint_InitialSetup();
        cmbPolFilter_InitialSetup();
        picWinSetMousePtr(QStringLiteral("Select"));
        // 11.
        ViewLayerFlags = {1, 1, 1};
        // 12.
        tabWorkspace->setEnabled(false);
        cmbNewObjType_InitialSetup();
        // 13. The popup menus are never in the menu bar (PopupMenus()).
        // 14., 17., 18. Markers, makers, drawers, gizmos, cameras, grids (their owners).
        CreateSharedObjects();
        // 15.
        ResetControls();
        mnu_Update();
        // 16.
        LayerGlobalA = 1;
        LayerGlobalB = 2;
        ZELMAR_engine_hide_log_window();
        LayerGlobalC = 0;
        // 17.
        ShowGizmoFlag = true;
        cmbObj_Change();
        cmbObjEditGeom_Change();
        // 19.
        mnuResetViews_Click();
        InitialiseSpinners();
        // 20.
        for (int i = 0; i < 4; ++i) {
            SetGridDisplay(i, Prefs().StartUpGrid != 1);
            SetGridSnap(i, Prefs().StartUpGridSnap != 1);
        }
        // 21.
        ZELMAR_light_calcualte_vertices_normals_automatically(1002);
        // 22.
        if (ReadShowTipsAtStartup() != 0 && formTip::ShouldShowAtStartup()) {
            TipForm = new formTip(this);
            TipForm->setAttribute(Qt::WA_DeleteOnClose);
            TipForm->setModal(false);
            m_tipPending = true; // shown by Show, after the window itself
        }
        // 23. Tab order: the viewports first, then the new-object controls.
        setTabOrder(picWindow[0], picWindow[1]);
        setTabOrder(picWindow[1], picWindow[2]);
        setTabOrder(picWindow[2], picWindow[3]);
        setTabOrder(picWindow[3], cmbNewObjType);
        setTabOrder(cmbNewObjType, cmbObj);
        setTabOrder(cmbObj, spnBoxDim);
        // 24.
        QCoreApplication::processEvents();
        // 25.
        LoadPlugins();
        // 26.
        const QString path = ParseCommand();
        if (!path.isEmpty())
            m_document->LoadWorld(path); // a failure is reported by LoadWorld; the program goes on with no world
        else
            m_document->NewWorld(true);
    };
    try {
        load();
    } catch (VexilError& e) {
        // The engine version test: the engine file is older than the program.
        if (e.description == "Can't find DLL entry point ZELMAR_engine_set_coordinates_auto_correct_mode in zelmar3") {
            dialogs().msgBox(GetLocaleString(330), MsgOKOnly, MsgCritical);
            Form_Unload();
            QCoreApplication::exit(1);
            return;
        }
        e.addSource("Form1", "Form_Load");
        ReportError(e); // loading stops at the failing statement
    } catch (const std::exception& e) {
        ReportError(ErrInvalidCall, FormatErrorSource(QString(), QStringLiteral("Form1"), QStringLiteral("Form_Load")),
                    QString::fromLocal8Bit(e.what()));
    }
}

void Form1::Form_Activate() {
    if (ToolbarsRestored) return;
    ToolbarsRestored = true;
    handleEvent("Form1", "Form_Activate", [&] {
        SaveOriginalStateOfAllFormTlbrs();
        RestoreToolbars();
        if (QAction* select = ToolbarButton(QStringLiteral("Select"))) {
            select->setChecked(true);
        }
        ExpertMode = ReadExpertModeStartup();
        mnuExpertMode->setChecked(!ExpertMode);
        mnuExpertMode->trigger(); // the click handler flips it to the wanted state
    });
}

void Form1::changeEvent(QEvent* e) {
    QMainWindow::changeEvent(e);
    if (e->type() == QEvent::ActivationChange && isActiveWindow() && m_loaded && !ToolbarsRestored) Form_Activate();
}

// ---- MDIForm_Resize --------------------------------------------------------------------------------

void Form1::MDIForm_Resize() {
    handleEvent("Form1", "MDIForm_Resize", [&] {
        if (windowState() & Qt::WindowMinimized) return;
        const int minWidth = TwipsToPixelsX(MinimumWidthTwips);
        if (width() < minWidth) resize(minWidth, height());
        if (!Picture1 || !Picture2) return;
        // The width of tabWorkspace is ours to choose: wide enough for all its tab titles (long titles go on
        // two or three lines first), at most half the window, at least 260 pixels (docs/ui.md).
        const int cap = std::max(260, width() / 2 - TwipsToPixelsX(100)); // the panel's margin included
        const int tabWidth = std::clamp(FitWorkspaceTabs(cap), 260, cap);
        tabWorkspace->setFixedWidth(tabWidth);
        Picture1->setFixedWidth(tabWidth + TwipsToPixelsX(100));
        const int w = Picture1->isVisible() ? width() - Picture1->width() - TwipsToPixelsX(20)
                                            : width() - TwipsToPixelsX(20);
        Picture2->setMinimumWidth(0);
        Picture2->resize(std::max(0, w), Picture2->height());
        // 4. Refresh CoolBar1.
        for (QToolBar* t : Toolbar1)
            if (t) t->update();
    });
}

int Form1::FitWorkspaceTabs(int available) {
    QTabBar* bar = tabWorkspace->tabBar();
    const int n = tabWorkspace->count();
    // The titles as the string table has them (the tool tips keep them).
    for (int i = 0; i < n; ++i) {
        const QString title = tabWorkspace->tabToolTip(i);
        if (!title.isEmpty() && tabWorkspace->tabText(i) != title) tabWorkspace->setTabText(i, title);
    }
    // The bar's own size hint is the sum of its tabs' widths; the frame of the tab widget comes on top.
    auto total = [&] { return bar->sizeHint().width() + 8; };
    // While the titles don't fit, the widest line of the widest title that can break is broken at the
    // blank or "/" nearest its middle.
    for (int guard = 0; guard < 4 * n && total() > available; ++guard) {
        int best = -1, bestWidth = 0, bestLine = 0;
        for (int i = 0; i < n; ++i) {
            const QStringList lines = tabWorkspace->tabText(i).split(QLatin1Char('\n'));
            for (int l = 0; l < lines.size(); ++l) {
                const QString& line = lines[l];
                const bool breakable = line.contains(QLatin1Char(' ')) || line.indexOf(QLatin1Char('/')) > 0;
                const int w = bar->fontMetrics().horizontalAdvance(line);
                if (breakable && lines.size() < 3 && w > bestWidth) best = i, bestWidth = w, bestLine = l;
            }
        }
        if (best < 0) break;
        QStringList lines = tabWorkspace->tabText(best).split(QLatin1Char('\n'));
        const QString line = lines[bestLine];
        int cut = -1;
        for (int k = 1; k < line.size(); ++k) {
            const bool at = line[k] == QLatin1Char(' ') || line[k - 1] == QLatin1Char('/');
            if (at && (cut < 0 || std::abs(k - line.size() / 2) < std::abs(cut - line.size() / 2))) cut = k;
        }
        if (cut <= 0) break;
        const QString first = line.left(cut).trimmed(), second = line.mid(cut).trimmed();
        lines[bestLine] = first;
        lines.insert(bestLine + 1, second);
        tabWorkspace->setTabText(best, lines.join(QLatin1Char('\n')));
    }
    return total();
}

void Form1::resizeEvent(QResizeEvent* e) {
    QMainWindow::resizeEvent(e);
    MDIForm_Resize();
}

// ---- ParseCommand ------------------------------------------------------------------------------------

QString Form1::ParseCommand(const QString& commandLine) {
    if (commandLine.isEmpty()) return QString();
    QString s = commandLine;
    // Trim blanks (spaces only, as VB's Trim) from both ends.
    while (s.startsWith(QLatin1Char(' '))) s.remove(0, 1);
    while (s.endsWith(QLatin1Char(' '))) s.chop(1);
    if (s.startsWith(QLatin1Char('"'))) s.remove(0, 1);
    if (s.endsWith(QLatin1Char('"'))) s.chop(1);
    return s;
}

// ---- ResetControls -----------------------------------------------------------------------------------

void Form1::ResetControls() {
    const QString newObject = GetLocaleString(322);
    int i = cmbObj->findText(newObject);
    if (i < 0) {
        cmbObj->addItem(newObject);
        i = cmbObj->findText(newObject);
    }
    cmbObj->setCurrentIndex(i);
    tabWorkspace->setCurrentIndex(TabModelGallery);
}

// ---- close and unload --------------------------------------------------------------------------------

bool Form1::Form_QueryUnload() {
    bool cancel = false;
    handleEvent("Form1", "Form_QueryUnload", [&] {
        if (TerminatingOnError()) return;
        if (WorldOpen() && m_undoStack && m_undoStack->SaveRequired()) {
            switch (dialogs().msgBox(GetLocaleString(332), MsgYesNoCancel, MsgQuestion)) {
            case vbYes: mnuSave_Click(); break;
            case vbCancel: cancel = true; break; // the cancel argument is set to 6
            default: break;
            }
        }
    });
    return cancel;
}

void Form1::closeEvent(QCloseEvent* e) {
    if (m_unloaded) {
        e->accept();
        return;
    }
    if (Form_QueryUnload()) {
        e->ignore();
        return;
    }
    Form_Unload();
    e->accept();
}

void Form1::Form_Unload() {
    if (m_unloaded) return;
    m_unloaded = true;
    handleEvent("Form1", "Form_Unload", [&] {
        // 1. Placement, unless minimised.
        if (!(windowState() & Qt::WindowMinimized)) {
            const bool normal = !(windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
            const QRect g = normal ? geometry() : normalGeometry();
            const QPoint p = normal ? pos() : g.topLeft();
            SaveSetting(SecSettings, QStringLiteral("MainLeft"), QString::number(std::lround(PixelsToTwipsX(p.x()))));
            SaveSetting(SecSettings, QStringLiteral("MainTop"), QString::number(std::lround(PixelsToTwipsY(p.y()))));
            SaveSetting(SecSettings, QStringLiteral("MainWidth"), QString::number(std::lround(PixelsToTwipsX(g.width()))));
            SaveSetting(SecSettings, QStringLiteral("MainHeight"), QString::number(std::lround(PixelsToTwipsY(g.height()))));
            SaveSetting(SecSettings, QStringLiteral("MainMaximized"), BoolText(!normal));
        }
        // 2. to 4.
        UnloadPlugins();
        ReleaseWeldList();
        if (m_document) m_document->UnloadWorld();
        // 5.
        if (ZELMAR_engine_is_engine_empty() == 0) ZELMAR_engine_close();
        // 6. to 8.
        if (TipForm) TipForm->close();
        ReleaseSharedObjects();
        m_document.reset();
        if (undoHostIsThis()) setUndoHost(nullptr);
        m_undoStack.reset();
        m_mru.reset(); // saves the list
        // 9.
        Pens = {};
        PensCreated = false;
    });
    // 10.
    ExitRequested = true;
    hide();
}

// ---- development switches ------------------------------------------------------------------------

void Form1::SetDebug() { DebugEnabled = true; }

QString Form1::PrintAllControlNames() {
    // For translators: every caption of the window, one per line, in String Table Entries/Strings.txt.
    const QString folder = AppPath(QStringLiteral("String Table Entries"));
    QDir().mkpath(folder);
    const QString path = folder + QStringLiteral("/Strings.txt");
    QStringList lines;
    for (QAction* a : findChildren<QAction*>())
        if (!a->isSeparator() && !a->text().isEmpty()) lines << a->text();
    for (QWidget* w : findChildren<QWidget*>()) {
        if (auto* b = qobject_cast<QAbstractButton*>(w); b && !b->text().isEmpty()) lines << b->text();
        else if (auto* l = qobject_cast<QLabel*>(w); l && !l->text().isEmpty() && l->pixmap().isNull()) lines << l->text();
        else if (auto* t = qobject_cast<QTabWidget*>(w))
            for (int i = 0; i < t->count(); ++i)
                lines << (t->tabToolTip(i).isEmpty() ? t->tabText(i) : t->tabToolTip(i)); // the whole title
    }
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        raiseError(ErrPathNotFound, ("Can't write " + path).toStdString());
    f.write(lines.join(QLatin1Char('\n')).toUtf8());
    f.write("\n");
    return path;
}

bool Form1::undoHostIsThis() const { return &undoHost() == static_cast<const UndoHost*>(this); }

bool Form1::WorldOpen() const { return m_document && m_document->WorldOpen; }

} // namespace vexil
