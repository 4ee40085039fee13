// Form1: the viewport hooks of the transform gizmos, and the typed transform panel.
#include "Form1_Gizmo.h"

#include "gizmo/ViewGizmos.h"
#include "frame/ErrLog.h"
#include "Form1.h"
#include "view/frmPicWins.h"
#include "gizmo/frmTransformParameters.h"
#include "library/formTip.h"

#include <QAction>
#include <QEvent>
#include <QTimer>
#include <QToolBar>
#include <memory>

namespace vexil {

namespace {

std::unique_ptr<ViewGizmos> g_gizmos;
QPointer<frmTransformParameters> g_panel;
Form1* g_form = nullptr;

// Right and double clicks on the Move, Rotate and Scale buttons open the typed panel for that tool.
class ToolButtonWatcher : public QObject {
  public:
    ToolButtonWatcher(Form1& f, int kind, QObject* parent) : QObject(parent), m_form(f), m_kind(kind) {}

  protected:
    bool eventFilter(QObject* obj, QEvent* e) override {
        if (e->type() == QEvent::ContextMenu || e->type() == QEvent::MouseButtonDblClick) {
            handleEvent("Form1", "ShowTransformParameters", [&] { m_form.ShowTransformParameters(m_kind); });
            return true;
        }
        return QObject::eventFilter(obj, e);
    }

  private:
    Form1& m_form;
    int m_kind;
};

void watchToolButtons(Form1& f) {
    static const char* const keys[3] = {"Move", "Rotate", "Scale"};
    for (int kind = 0; kind < 3; ++kind) {
        QAction* a = f.ToolbarButton(QString::fromLatin1(keys[kind]));
        if (!a) continue;
        for (QToolBar* bar : f.Toolbar1) {
            QWidget* w = bar ? bar->widgetForAction(a) : nullptr;
            if (w) w->installEventFilter(new ToolButtonWatcher(f, kind, w));
        }
    }
}

} // namespace

ViewGizmos* FormGizmos() {
    return g_gizmos.get();
}
frmTransformParameters* FormTransformParameters() {
    return g_panel.data();
}

// For pictures of the gizmo (docs/gizmo.md): VEXIL_DEMO_GIZMO=move|rotate|scale makes a box once the window
// runs, selects it and takes that tool.
static void demoGizmo(Form1& f) {
    const QString tool = qEnvironmentVariable("VEXIL_DEMO_GIZMO").toLower();
    const int mode = tool == QLatin1String("rotate") ? 2 : tool == QLatin1String("scale") ? 3 : 1;
    QTimer::singleShot(300, &f, [&f, mode] {
        if (!f.WorldOpen()) return;
        if (f.TipForm) f.TipForm->close();
        f.resize(1500, 950);
        f.mnuStandardGroups_Click(1);
        static const char* const keys[4] = {"", "Move", "Rotate", "Scale"};
        if (QAction* a = f.ToolbarButton(QString::fromLatin1(keys[mode]))) a->trigger();
        f.ZoomExtentAll();
    });
}

void InstallGizmos(Form1& f) {
    g_form = &f;
    if (f.frmPicWins) g_gizmos = std::make_unique<ViewGizmos>(*f.frmPicWins, f.UndoStack());
    watchToolButtons(f);
    if (qEnvironmentVariableIsSet("VEXIL_DEMO_GIZMO")) demoGizmo(f);
}

void ReleaseGizmos() {
    delete g_panel.data();
    g_gizmos.reset();
    g_form = nullptr;
}

void Form1::DrawGizmo(int index, QPainter& p) {
    if (g_gizmos) g_gizmos->DrawGizmo(index, p);
}

void Form1::Gizmo_MouseDown(int index, int button, int x, int y) {
    if (g_gizmos) g_gizmos->MouseDown(index, button, x, y);
}

void Form1::Gizmo_MouseUp(int index, int button, int x, int y) {
    if (g_gizmos) g_gizmos->MouseUp(index, button, x, y);
}

void Form1::Gizmo_MouseMoveRotateScale(int index, int button, int x, int y) {
    if (g_gizmos) g_gizmos->MouseMoveRotateScale(index, button, x, y);
}

void Form1::UpdateTransformGizmo(int button, int x, int y) {
    if (g_gizmos) g_gizmos->UpdateTransformGizmo(button, x, y);
}

void Form1::ShowTransformParameters(int kind) {
    if (!frmPicWins || kind < 0 || kind > 2) return;
    if (!g_panel) {
        // A tool window of its own, owned by the main window.
        g_panel = new frmTransformParameters(*frmPicWins, UndoStack(), nullptr);
        g_panel->setParent(this, Qt::Tool);
    }
    g_panel->SetKind(static_cast<TransformKind>(kind));
    g_panel->show();
    g_panel->raise();
    g_panel->activateWindow();
}

} // namespace vexil
