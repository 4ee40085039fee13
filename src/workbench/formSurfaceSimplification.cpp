// formSurfaceSimplification: controls, language, loading, activation, unloading and closing.
#include "formSurfaceSimplification.h"

#include "formSurfaceSimplification_Host.h"
#include "SurfSimView.h"
#include "UpDown.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <zelmar/zelmar.h>

namespace vexil {

int& SurfSimpOutputGroup() {
    static int output = 0;
    return output;
}

namespace {
QCheckBox* check(QWidget* parent, const char* name) {
    auto* c = new QCheckBox(parent);
    c->setObjectName(QString::fromLatin1(name));
    return c;
}
QLabel* label(QWidget* parent, const char* name) {
    auto* l = new QLabel(parent);
    l->setObjectName(QString::fromLatin1(name));
    return l;
}
QPushButton* button(QWidget* parent, const char* name) {
    auto* b = new QPushButton(parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    return b;
}
} // namespace

formSurfaceSimplification::formSurfaceSimplification(int sourceGroup, QWidget* parent)
    : QDialog(parent), m_source(sourceGroup), m_session(std::make_unique<simplify::SimplifySession>()),
      m_host(std::make_unique<Host>(*this)) {
    setObjectName(QStringLiteral("formSurfaceSimplification"));
    setModal(true);
    buildControls();
    Form_Load();
}

formSurfaceSimplification::~formSurfaceSimplification() {
    if (m_loaded && !m_unloaded) Form_Unload();
}

void formSurfaceSimplification::buildControls() {
    auto* outer = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    outer->addLayout(top, 1);

    picBox = new SurfSimView(this);
    picBox->onMouseDown = [this](int b, int x, int y) { picBox_MouseDown(b, x, y); };
    picBox->onMouseMove = [this](int b, int x, int y) { picBox_MouseMove(b, x, y); };
    picBox->onMouseUp = [this](int b, int x, int y) { picBox_MouseUp(b, x, y); };
    picBox->onResized = [this] {
        if (m_activated && !m_unloaded) QMetaObject::invokeMethod(this, [this] { Render(); }, Qt::QueuedConnection);
    };
    top->addWidget(picBox, 1);

    auto* side = new QVBoxLayout;
    top->addLayout(side);

    Frame5 = new QGroupBox(this);
    Frame5->setObjectName(QStringLiteral("Frame5"));
    auto* opts = new QVBoxLayout(Frame5);
    chkPrtTxrSm = check(Frame5, "chkPrtTxrSm");
    chkProtectPolClrBndr = check(Frame5, "chkProtectPolClrBndr");
    chkProsGeomOnly = check(Frame5, "chkProsGeomOnly");
    chkLockSelVertices = check(Frame5, "chkLockSelVertices");
    chkZeroErrSimp = check(Frame5, "chkZeroErrSimp");
    for (QCheckBox* c : {chkPrtTxrSm, chkProtectPolClrBndr, chkProsGeomOnly, chkLockSelVertices, chkZeroErrSimp})
        opts->addWidget(c);

    auto* reduction = new QHBoxLayout;
    lblReductionCaption = label(Frame5, "lblReductionCaption");
    lblReduction = label(Frame5, "lblReduction");
    lblReduction->setText(QStringLiteral("0"));
    lblReduction->setMinimumWidth(40);
    lblReduction->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    UpDown1 = new UpDown(Frame5);
    UpDown1->onChange = [this] { UpDown1_Change(); };
    UpDown1->onClick = [this] { UpDown1_Click(); };
    reduction->addWidget(lblReductionCaption);
    reduction->addWidget(lblReduction);
    reduction->addWidget(new QLabel(QStringLiteral("%"), Frame5));
    reduction->addWidget(UpDown1);
    reduction->addStretch(1);
    opts->addLayout(reduction);
    side->addWidget(Frame5);

    auto* counts = new QGridLayout;
    lblOriginalCaption = label(this, "lblOriginalCaption");
    lblOriginal = label(this, "lblOriginal");
    lblSimpCaption = label(this, "lblSimpCaption");
    lblSimp = label(this, "lblSimp");
    for (QLabel* l : {lblOriginal, lblSimp}) {
        l->setMinimumWidth(80);
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    counts->addWidget(lblOriginalCaption, 0, 0);
    counts->addWidget(lblOriginal, 0, 1);
    counts->addWidget(lblSimpCaption, 1, 0);
    counts->addWidget(lblSimp, 1, 1);
    side->addLayout(counts);

    auto* mouse = new QGroupBox(this);
    mouse->setObjectName(QStringLiteral("Frame2"));
    auto* modes = new QVBoxLayout(mouse);
    opnMoveCam = new QRadioButton(mouse);
    opnMoveCam->setObjectName(QStringLiteral("opnMoveCam"));
    opnSelectPts = new QRadioButton(mouse);
    opnSelectPts->setObjectName(QStringLiteral("opnSelectPts"));
    opnMoveCam->setChecked(true);
    chkIgnoreBckFaced = check(mouse, "chkIgnoreBckFaced");
    chkIgnoreBckFaced->setChecked(true);
    modes->addWidget(opnMoveCam);
    modes->addWidget(opnSelectPts);
    modes->addWidget(chkIgnoreBckFaced);
    side->addWidget(mouse);

    cmdSimplify = button(this, "cmdSimplify");
    cmdCancel = button(this, "cmdCancel");
    cmdCancel->setEnabled(false);
    cmdHlp = button(this, "cmdHlp");
    Command1 = button(this, "Command1");
    for (QPushButton* b : {cmdSimplify, cmdCancel, cmdHlp, Command1}) side->addWidget(b);
    side->addStretch(1);

    auto* bottom = new QHBoxLayout;
    lblProgress = label(this, "lblProgress");
    lblProgress->setMinimumWidth(200);
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    ProgressBar1->setTextVisible(false);
    bottom->addWidget(lblProgress);
    bottom->addWidget(ProgressBar1, 1);
    outer->addLayout(bottom);

    auto ev = [this](const char* proc, void (formSurfaceSimplification::*f)()) {
        return [this, proc, f] { handleEvent("formSurfaceSimplification", proc, [&] { (this->*f)(); }); };
    };
    connect(cmdSimplify, &QPushButton::clicked, this, ev("cmdSimplify_Click", &formSurfaceSimplification::cmdSimplify_Click));
    connect(cmdCancel, &QPushButton::clicked, this, ev("cmdCancel_Click", &formSurfaceSimplification::cmdCancel_Click));
    connect(cmdHlp, &QPushButton::clicked, this, ev("cmdHlp_Click", &formSurfaceSimplification::cmdHlp_Click));
    connect(Command1, &QPushButton::clicked, this, ev("Command1_Click", &formSurfaceSimplification::Command1_Click));
    for (QCheckBox* c : {chkLockSelVertices, chkProtectPolClrBndr, chkPrtTxrSm})
        connect(c, &QCheckBox::clicked, this, ev("chkOption_Click", &formSurfaceSimplification::chkOption_Click));
    connect(chkProsGeomOnly, &QCheckBox::clicked, this,
            ev("chkProsGeomOnly_Click", &formSurfaceSimplification::chkProsGeomOnly_Click));
    connect(chkZeroErrSimp, &QCheckBox::clicked, this,
            ev("chkZeroErrSimp_Click", &formSurfaceSimplification::chkZeroErrSimp_Click));

    // Key preview: the window sees the keys of every control first.
    installEventFilter(this);
    for (QWidget* w : findChildren<QWidget*>()) w->installEventFilter(this);
    resize(860, 580);
}

void formSurfaceSimplification::ApplyLanguage() {
    setCaptionText();
    Frame5->setTitle(QString());
    chkPrtTxrSm->setText(GetLocaleString(505));
    chkProtectPolClrBndr->setText(GetLocaleString(501));
    chkProsGeomOnly->setText(GetLocaleString(503));
    chkLockSelVertices->setText(GetLocaleString(502));
    chkZeroErrSimp->setText(GetLocaleString(514));
    chkIgnoreBckFaced->setText(GetLocaleString(511));
    lblReductionCaption->setText(GetLocaleString(508));
    UpDown1->setToolTip(GetLocaleString(506));
    lblOriginalCaption->setText(GetLocaleString(590));
    lblOriginal->setToolTip(GetLocaleString(499));
    lblSimpCaption->setText(GetLocaleString(591));
    lblSimp->setToolTip(GetLocaleString(500));
    opnSelectPts->setText(GetLocaleString(509));
    opnMoveCam->setText(GetLocaleString(510));
    cmdSimplify->setText(GetLocaleString(507));
    cmdCancel->setText(GetLocaleString(425));
    cmdHlp->setText(GetLocaleString(512));
    Command1->setText(GetLocaleString(504));
}

void formSurfaceSimplification::setCaptionText() {
    setWindowTitle(m_statusDebug ? m_debugLine : GetLocaleString(498));
}

void formSurfaceSimplification::Form_Load() {
    m_loaded = true;
    ApplyLanguage();
    lblProgress->clear();
    UpDown1->SetValue(static_cast<int>(Reduction())); // the label's text; 0 as it starts

    simplify::SurfSimpli& model = m_session->Model();
    model.SetPaintableAreaDC(picBox);
    simplify::SimplifyMessages messages;
    messages.simplifying = GetLocaleString(618).toStdString();
    messages.cantSimplify = GetLocaleString(619).toStdString();
    messages.improperTexture = GetLocaleString(620).toStdString();
    messages.invalidTri = GetLocaleString(621).toStdString();
    messages.extracting = GetLocaleString(622).toStdString();
    messages.building = GetLocaleString(623).toStdString();
    model.SetLocaleMessages(messages);

    m_renderGroup = ZELMAR_group_create("GroupToRenger");
    ZELMAR_engine_set_group_to_render(m_renderGroup);

    if (m_source != 0 && ZELMAR_group_is_group(m_source) == 1) {
        m_originalFather = ZELMAR_group_get_father_group(m_source);
        m_working = ZELMAR_group_create_copy_made_of_triangles(m_source, "SurfSimWorkingCopy");
    }
    if (m_working != 0) {
        ZELMAR_group_set_father_group(m_working, m_renderGroup);
        m_shown = m_working;
        lblOriginal->setText(QString::number(ZELMAR_group_get_number_of_polygons(m_working)));
    }

    m_cam.Initialize(25.0, 45.0, 500.0);
    m_cam.CamHandle = ZELMAR_camera_create("camSurfSim");
    picBox->SetCamera(m_cam.CamHandle);
    if (m_working != 0) m_cam.FrameGroup(m_working);
    m_cam.Update();
    m_cam.ReSetCamDistFrmEye();
}

void formSurfaceSimplification::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    if (m_activateQueued) return;
    m_activateQueued = true;
    QMetaObject::invokeMethod(
        this, [this] { handleEvent("formSurfaceSimplification", "Form_Activate", [&] { Form_Activate(); }); },
        Qt::QueuedConnection);
}

void formSurfaceSimplification::Form_Activate() {
    if (m_activated || m_unloaded) return;
    m_activated = true;
    QCoreApplication::processEvents();
    QString failure;
    if (m_working == 0) {
        failure = QStringLiteral("The group cannot be simplified: it is not a group of the world.");
    } else {
        m_session->Model().ForceRestart = true;
        m_last = m_session->Open(m_working, m_host.get());
        if (m_last.outcome == simplify::SimplifyOutcome::Failed) failure = QString::fromStdString(m_last.message);
    }
    if (!failure.isEmpty()) {
        cmdSimplify->setEnabled(false);
        Frame5->setEnabled(false);
        dialogs().msgBox(failure, MsgOKOnly, MsgExclamation);
        // Nothing can be done here: the window goes, the group stays as it was.
        QMetaObject::invokeMethod(this, [this] { done(QDialog::Rejected); }, Qt::QueuedConnection);
        return;
    }
    ZELMAR_engine_use_3D_accelerator_card(1);
    Render();
}

void formSurfaceSimplification::Form_Unload() {
    if (m_unloaded) return;
    m_unloaded = true;
    // 1. The output goes to the caller, shown.
    SurfSimpOutputGroup() = m_output;
    if (m_output != 0) ZELMAR_group_disable(m_output, 0);
    // 2. The camera.
    if (m_cam.CamHandle != 0) ZELMAR_camera_delete(m_cam.CamHandle);
    m_cam.CamHandle = 0;
    picBox->SetCamera(0);
    // 3. The output back under the source's father.
    if (m_output != 0) ZELMAR_group_set_father_group(m_output, m_originalFather);
    // 4. The render group with the working group.
    if (m_renderGroup != 0 && ZELMAR_group_is_group(m_renderGroup) == 1) ZELMAR_group_delete_members(m_renderGroup);
    m_renderGroup = 0;
    // 5, 6.
    m_output = m_working = m_shown = 0;
    m_session->Model().Reset();
    m_session->Model().ResetPtSelection();
}

void formSurfaceSimplification::done(int r) {
    if (m_busy) {
        // A run is letting events through: it stops after its contraction, then the window closes.
        m_cancel = true;
        m_closePending = true;
        return;
    }
    Form_Unload();
    QDialog::done(r);
}

void formSurfaceSimplification::keyPressEvent(QKeyEvent* e) {
    // Escape belongs to the run (cancel), not to the dialog (it would close the window).
    if (e->key() == Qt::Key_Escape) {
        e->accept();
        return;
    }
    QDialog::keyPressEvent(e);
}

bool formSurfaceSimplification::eventFilter(QObject* obj, QEvent* e) {
    if (e->type() == QEvent::KeyPress) {
        auto* k = static_cast<QKeyEvent*>(e);
        bool handled = false;
        handleEvent("formSurfaceSimplification", "Form_KeyPress", [&] { handled = Form_KeyPress(k->key(), k->text()); });
        if (handled) return true;
    } else if (e->type() == QEvent::KeyRelease) {
        auto* k = static_cast<QKeyEvent*>(e);
        if (k->isAutoRepeat()) return false;
        bool handled = false;
        handleEvent("formSurfaceSimplification", "Form_KeyUp", [&] { handled = Form_KeyUp(k->key()); });
        if (handled) return true;
    }
    return QDialog::eventFilter(obj, e);
}

double formSurfaceSimplification::Reduction() const {
    bool ok = false;
    const double v = lblReduction->text().trimmed().toDouble(&ok);
    return ok ? v : 0.0;
}

void formSurfaceSimplification::SetReduction(double percent) {
    if (!(percent >= 0)) percent = 0; // NaN too
    if (percent > 100) percent = 100;
    lblReduction->setText(QString::number(percent));
}

} // namespace vexil
