// formSurfaceSimplification: the keys (Form_KeyPress, Form_KeyUp), the debug walks and help.
#include "formSurfaceSimplification.h"

#include "UpDown.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"

#include <QRadioButton>
#include <zelmar/zelmar.h>

namespace vexil {

bool formSurfaceSimplification::Form_KeyPress(int key, const QString& text) {
    if (key == Qt::Key_Escape) {
        cmdCancel_Click();
        return true;
    }
    if (key == Qt::Key_Backspace) {
        // swaps the mouse's mode
        if (opnSelectPts->isChecked()) opnMoveCam->setChecked(true);
        else opnSelectPts->setChecked(true);
        return true;
    }
    if (text.size() != 1) return false;
    switch (text.at(0).toLatin1()) {
    case 'm':
        m_debug1 = !m_debug1;
        Render();
        return true;
    case 'b':
        m_debug2 = !m_debug2;
        Render();
        return true;
    case '1':
        swapShownGroup();
        return true;
    case '.': m_session->Model().GetNextValidPt(); debugStep(0); return true;
    case ',': m_session->Model().GetPrevValidPt(); debugStep(0); return true;
    case '\'': m_session->Model().GetNextValidEdge(); debugStep(1); return true;
    case ';': m_session->Model().GetPrevValidEdge(); debugStep(1); return true;
    case ']': m_session->Model().GetNextValidTri(); debugStep(2); return true;
    case '[': m_session->Model().GetPrevValidTri(); debugStep(2); return true;
    default: return false;
    }
}

bool formSurfaceSimplification::Form_KeyUp(int key) {
    switch (key) {
    case Qt::Key_Plus:
        UpDown1->SetValue(1);
        cmdSimplify_Click();
        return true;
    case Qt::Key_Minus:
        UpDown1->SetValue(-1);
        cmdSimplify_Click();
        return true;
    case Qt::Key_PageUp:
        m_cam.ZoomSensitivity *= 2;
        return true;
    case Qt::Key_PageDown:
        m_cam.ZoomSensitivity /= 2;
        return true;
    case Qt::Key_F1:
        cmdHlp_Click();
        return true;
    case Qt::Key_F2:
        m_wireframe = !m_wireframe;
        Render();
        return true;
    default:
        return false;
    }
}

void formSurfaceSimplification::swapShownGroup() {
    if (m_output == 0 || m_working == 0) return;
    const int other = m_shown == m_output ? m_working : m_output;
    ZELMAR_group_disable(m_shown, 1);
    ZELMAR_group_disable(other, 0);
    m_shown = other;
    Render();
}

void formSurfaceSimplification::debugStep(int kind) {
    simplify::SurfSimpli& model = m_session->Model();
    const int pt = model.PtCursor(), edge = model.EdgeCursor(), tri = model.TriCursor();
    const double cost = (edge >= 0 && edge <= model.EdgeCount()) ? model.GetEdgCost(edge) : 0.0;
    m_debugLine = QStringLiteral("Pt=%1  Edge=%2  Tri=%3 EdgContractionCost = %4")
                      .arg(pt)
                      .arg(edge)
                      .arg(tri)
                      .arg(QString::number(cost, 'g', 15));
    m_statusDebug = true;
    m_debugKind = kind;
    setCaptionText();
    Render();
}

void formSurfaceSimplification::drawDiagnostics() {
    simplify::SurfSimpli& model = m_session->Model();
    if (m_debug1) {
        model.DrawAllBorderEdges();
        model.DisplayMinCostEdge();
    }
    if (m_debug2) model.DisplayAffectedEdges();
    switch (m_debugKind) {
    case 0: model.DisplayPtAssEdgsAndAssTris(model.PtCursor()); break;
    case 1: model.DisplayEdgeAndAssTris(model.EdgeCursor()); break;
    case 2: model.DisplayTriAndAssEdges(model.TriCursor()); break;
    default: break;
    }
}

void formSurfaceSimplification::cmdHlp_Click() {
    QStringList lines;
    for (int id = 581; id <= 589; ++id) lines << GetLocaleString(id);
    dialogs().msgBox(lines.join(QLatin1Char('\n')), MsgOKOnly, MsgInformation);
}

} // namespace vexil
