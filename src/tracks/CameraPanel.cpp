#include "CameraPanel.h"

#include "CameraGrp.h"
#include "TracksHost.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Spinner.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <cfloat>

namespace vexil {

namespace {

Spinner* spinner(QWidget* parent, const QString& name, double lo, double hi, double step) {
    auto* s = new Spinner(parent);
    s->setObjectName(name);
    s->setRange(lo, hi);
    s->SetStep(step);
    s->setKeyboardTracking(false);
    return s;
}

} // namespace

CameraPanel::CameraPanel(TracksHost& host, CameraGrp& markers, QWidget* parent)
    : QWidget(parent), m_host(host), m_markers(markers) {
    setObjectName(QStringLiteral("frmCamera"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 4, 4, 4);
    const QString axes[3] = {GetLocaleString(143), GetLocaleString(142), GetLocaleString(141)};
    grid->addWidget(new QLabel(GetLocaleString(162), this), 0, 0, 1, 2);
    for (int k = 0; k < 3; ++k) {
        spnCamLoc[size_t(k)] = spinner(this, QStringLiteral("spnCamLoc%1").arg(k), -DBL_MAX, DBL_MAX, 10);
        grid->addWidget(new QLabel(axes[k], this), 1 + k, 0);
        grid->addWidget(spnCamLoc[size_t(k)], 1 + k, 1);
    }
    grid->addWidget(new QLabel(GetLocaleString(156), this), 4, 0, 1, 2);
    for (int k = 0; k < 3; ++k) {
        spnCamDir[size_t(k)] = spinner(this, QStringLiteral("spnCamDir%1").arg(k), -1e6, 1e6, 0.1);
        grid->addWidget(new QLabel(axes[k], this), 5 + k, 0);
        grid->addWidget(spnCamDir[size_t(k)], 5 + k, 1);
    }
    grid->addWidget(new QLabel(GetLocaleString(157), this), 8, 0, 1, 2);
    spnFOV = spinner(this, QStringLiteral("spnFOV"), 1, 179, 1);
    spnFOV->setSuffix(QLatin1Char(' ') + GetLocaleString(160));
    grid->addWidget(new QLabel(GetLocaleString(159), this), 9, 0);
    grid->addWidget(spnFOV, 9, 1);
    grid->addWidget(new QLabel(GetLocaleString(158), this), 10, 0, 1, 2);
    spnCamDistFrmEye = spinner(this, QStringLiteral("spnCamDistFrmEye"), 0.001, 1e9, 1);
    grid->addWidget(new QLabel(GetLocaleString(161), this), 11, 0);
    grid->addWidget(spnCamDistFrmEye, 11, 1);
    cmdCamEditChase = new QPushButton(GetLocaleString(155), this);
    cmdCamEditChase->setObjectName(QStringLiteral("cmdCamEditChase"));
    grid->addWidget(cmdCamEditChase, 12, 0, 1, 2);
    grid->setRowStretch(13, 1);

    // editingFinished fires on loss of focus and on Enter: never on each key.
    for (Spinner* s : spnCamLoc)
        connect(s, &Spinner::editingFinished, this,
                [this] { handleEvent("Form1", "txtCamLoc_LostFocus", [&] { txtCamLoc_LostFocus(); }); });
    for (Spinner* s : spnCamDir)
        connect(s, &Spinner::editingFinished, this,
                [this] { handleEvent("Form1", "txtCamDir_LostFocus", [&] { txtCamDir_LostFocus(); }); });
    connect(spnFOV, &Spinner::Changed, this, [this] { handleEvent("Form1", "spnFOV_Changed", [&] { spnFOV_Changed(); }); });
    connect(spnCamDistFrmEye, &Spinner::Changed, this,
            [this] { handleEvent("Form1", "spnCamDistFrmEye_Changed", [&] { spnCamDistFrmEye_Changed(); }); });
    connect(cmdCamEditChase, &QPushButton::clicked, this, [this] {
        if (EditChase) handleEvent("Form1", "cmdCamEditChase_Click", [&] { EditChase(); });
    });
}

void CameraPanel::SetCamWorkspaceFrame_Params(int camera) {
    m_camera = camera;
    if (!ZELMAR_camera_is_camera(camera)) return;
    m_guard = true;
    spnFOV->SetValue(ZELMAR_camera_get_zoom(camera));
    spnCamDistFrmEye->SetValue(ZELMAR_camera_get_distance_from_eye(camera));
    double at[3], dir[3];
    ZELMAR_camera_get_location1(camera, at);
    ZELMAR_camera_get_direction1(camera, dir);
    for (int k = 0; k < 3; ++k) {
        spnCamLoc[size_t(k)]->SetValue(at[k]);
        spnCamDir[size_t(k)]->SetValue(dir[k]);
    }
    m_guard = false;
}

void CameraPanel::ResetCamWorkSpaceFrame() {
    m_guard = true;
    m_camera = 0;
    for (Spinner* s : spnCamLoc) s->SetValue(0);
    for (Spinner* s : spnCamDir) s->SetValue(0);
    m_guard = false;
}

void CameraPanel::redraw() {
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

void CameraPanel::txtCamLoc_LostFocus() {
    if (m_guard || !ZELMAR_camera_is_camera(m_camera)) return;
    m_markers.SetLocation(m_camera, {spnCamLoc[0]->Value(), spnCamLoc[1]->Value(), spnCamLoc[2]->Value()});
    redraw();
}

void CameraPanel::txtCamDir_LostFocus() {
    if (m_guard || !ZELMAR_camera_is_camera(m_camera)) return;
    const std::array<double, 3> d{spnCamDir[0]->Value(), spnCamDir[1]->Value(), spnCamDir[2]->Value()};
    if (d[0] == 0 && d[1] == 0 && d[2] == 0) {
        SetCamWorkspaceFrame_Params(m_camera); // no direction: the camera keeps its own
        return;
    }
    m_markers.SetDirection(m_camera, d);
    // The engine normalises: the boxes show what it keeps.
    double back[3];
    ZELMAR_camera_get_direction1(m_camera, back);
    m_guard = true;
    for (int k = 0; k < 3; ++k) spnCamDir[size_t(k)]->SetValue(back[k]);
    m_guard = false;
    redraw();
}

void CameraPanel::spnFOV_Changed() {
    if (m_guard || !ZELMAR_camera_is_camera(m_camera)) return;
    ZELMAR_camera_set_zoom(m_camera, spnFOV->Value());
    redraw();
}

void CameraPanel::spnCamDistFrmEye_Changed() {
    if (m_guard || !ZELMAR_camera_is_camera(m_camera)) return;
    ZELMAR_camera_set_distance_from_eye(m_camera, spnCamDistFrmEye->Value());
    redraw();
}

} // namespace vexil
