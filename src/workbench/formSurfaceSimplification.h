// formSurfaceSimplification, the simplification workbench: a modal window with its own view of one
// group. The user sets a percentage of reduction and options, sees the result at once, toggles
// between original and simplified, selects vertices to lock, and on closing hands the latest
// simplified group over (SurfSimpOutputGroup); the caller replaces the original with it
// (ReducePolys.h). docs/workbench.md.
//
// The window is split over several files:
//   formSurfaceSimplification.cpp       controls, language, Form_Load, Form_Activate, Form_Unload, closing
//   formSurfaceSimplification_Run.cpp   cmdSimplify_Click, the host of a run (progress, status, yield,
//                                       cancel), UpDown1, the option check boxes
//   formSurfaceSimplification_Keys.cpp  Form_KeyPress, Form_KeyUp, the debug keys, help
//   formSurfaceSimplification_View.cpp  Render, picBox's mouse, point selection, Command1
#pragma once
#include "CameraSurfSim.h"
#include "simplify/SimplifySession.h"

#include <QDialog>
#include <memory>

class QCheckBox;
class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace vexil {

class SurfSimView;
class UpDown;

// The shared global through which the window hands its output group to the caller when it unloads;
// 0 when there is none.
int& SurfSimpOutputGroup();

class formSurfaceSimplification : public QDialog {
    Q_OBJECT
public:
    // Loads the window on the group to simplify (Form_Load). A group that cannot be read leaves the
    // window without a working group: Form_Activate then says why and closes it.
    explicit formSurfaceSimplification(int sourceGroup, QWidget* parent = nullptr);
    ~formSurfaceSimplification() override;

    // ---- lifecycle ----
    void Form_Load();
    // After the window is on the screen (runs once; showing the window queues it): builds the model.
    void Form_Activate();
    bool Activated() const { return m_activated; }
    void Form_Unload();
    bool Unloaded() const { return m_unloaded; }
    void ApplyLanguage();

    // ---- commands ----
    void cmdSimplify_Click();
    void UpDown1_Change();
    void UpDown1_Click(); // after a click on an arrow: a run too while U is held
    void chkOption_Click(); // chkLockSelVertices, chkProtectPolClrBndr, chkPrtTxrSm, chkProsGeomOnly
    void chkProsGeomOnly_Click();
    void chkZeroErrSimp_Click();
    void cmdHlp_Click();
    void Command1_Click();
    void cmdCancel_Click();
    // Character keys: "m", "b", BACK SPACE, "1", ".", ",", "'", ";", "]", "[", and Escape (cancels
    // a run). True when the key was one of them.
    bool Form_KeyPress(int key, const QString& text);
    // + and - (the numeric pad's, and the main keyboard's), PAGE UP, PAGE DOWN, F1, F2.
    bool Form_KeyUp(int key);
    void Render();

    // ---- picBox ----
    void picBox_MouseDown(int button, int x, int y);
    void picBox_MouseMove(int button, int x, int y);
    void picBox_MouseUp(int button, int x, int y);

    // ---- state ----
    int SourceGroup() const { return m_source; }
    int OutputGroup() const { return m_output; }
    int WorkingGroup() const { return m_working; }
    int OriginalFather() const { return m_originalFather; }
    int RenderGroup() const { return m_renderGroup; }
    int ShownGroup() const { return m_shown; }
    bool Busy() const { return m_busy; }
    bool WireframeMode() const { return m_wireframe; }
    bool DebugFlag1() const { return m_debug1; }
    bool DebugFlag2() const { return m_debug2; }
    bool StatusDebug() const { return m_statusDebug; }
    // The outcome of the last run (Reduced before any).
    const simplify::SimplifyResult& LastResult() const { return m_last; }
    simplify::SimplifySession& Session() { return *m_session; }
    CameraSurfSim& Camera() { return m_cam; }
    // The reduction the label holds, as a number.
    double Reduction() const;
    void SetReduction(double percent);
    // How often a run lets pending events through, in milliseconds (0: after every contraction).
    int YieldIntervalMs = 15;
    // How often the last run let events through.
    long long Yields() const;
    // What lblProgress says after a cancelled run.
    static QString CancelledText();

    // ---- controls ----
    QGroupBox* Frame5 = nullptr;
    QCheckBox *chkPrtTxrSm = nullptr, *chkProsGeomOnly = nullptr, *chkProtectPolClrBndr = nullptr,
              *chkLockSelVertices = nullptr, *chkZeroErrSimp = nullptr, *chkIgnoreBckFaced = nullptr;
    UpDown* UpDown1 = nullptr;
    QLabel *lblReductionCaption = nullptr, *lblReduction = nullptr, *lblOriginalCaption = nullptr,
           *lblOriginal = nullptr, *lblSimpCaption = nullptr, *lblSimp = nullptr, *lblProgress = nullptr;
    QProgressBar* ProgressBar1 = nullptr;
    QRadioButton *opnMoveCam = nullptr, *opnSelectPts = nullptr;
    SurfSimView* picBox = nullptr;
    QPushButton *cmdSimplify = nullptr, *cmdCancel = nullptr, *cmdHlp = nullptr, *Command1 = nullptr;

protected:
    bool eventFilter(QObject* obj, QEvent* e) override;
    void showEvent(QShowEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void done(int r) override;

private:
    class Host;
    friend class Host;
    void buildControls();
    simplify::SimplifyOptions readOptions() const;
    void setCaptionText();
    void debugStep(int kind); // 0 point, 1 edge, 2 triangle: the debug line and the drawing
    void drawDiagnostics();
    void swapShownGroup();

    int m_source = 0;
    int m_output = 0;
    int m_working = 0;
    int m_originalFather = 0;
    int m_renderGroup = 0;
    int m_shown = 0;
    std::unique_ptr<simplify::SimplifySession> m_session;
    std::unique_ptr<Host> m_host;
    CameraSurfSim m_cam;
    simplify::SimplifyResult m_last;
    bool m_loaded = false, m_activated = false, m_activateQueued = false, m_unloaded = false;
    bool m_busy = false;
    bool m_cancel = false;
    bool m_closePending = false;
    bool m_wireframe = false;
    bool m_debug1 = false, m_debug2 = false, m_statusDebug = false;
    int m_debugKind = -1; // the record kind of the last debug key
    QString m_debugLine;
    bool m_banding = false;
    QPoint m_bandStart;
    int m_camButton = 0;
};

} // namespace vexil
