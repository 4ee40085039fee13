#include "frmPrefrences.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "Form1.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"
#include "frame/Spinner.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace vexil {

namespace {
// A list shows every item without scrolling: as tall as its rows and as wide as its widest item.
void fitToContents(QListWidget* list) {
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    const int frame = 2 * list->frameWidth();
    int height = frame, width = 0;
    for (int r = 0; r < list->count(); ++r) {
        height += list->sizeHintForRow(r);
        width = std::max(width, list->sizeHintForColumn(0));
    }
    list->setMinimumHeight(height + 2);
    list->setMinimumWidth(width + frame + 4);
}

Spinner* spinner(QWidget* parent, const char* name, double min, double max, double step, int decimals) {
    auto* s = new Spinner(parent);
    s->setObjectName(QString::fromLatin1(name));
    s->setRange(min, max);
    s->SetStep(step);
    s->setDecimals(decimals);
    return s;
}
} // namespace

frmPrefrences::frmPrefrences(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmPrefrences"));
    auto* v = new QVBoxLayout(this);
    tabOptions = new QTabWidget(this);
    tabOptions->setObjectName(QStringLiteral("tabOptions"));
    v->addWidget(tabOptions);

    // The tabs hold what cmdDefault resets on each: General (depth, splash), Viewports (steps, decimals),
    // Start Up (sensitivity, relative size, density, grid and snap), Toolbar.
    auto* general = new QWidget(tabOptions);
    auto* views = new QWidget(tabOptions);
    auto* start = new QWidget(tabOptions);
    static const int upDownMax[3] = {1000, 100, 100};
    for (int i = 0; i < 3; ++i) {
        QWidget* owner = i == 0 ? general : start;
        lblUpDown[size_t(i)] = new QLabel(owner);
        Label4[size_t(i)] = new QLabel(owner);
        Label4[size_t(i)]->setObjectName(QStringLiteral("Label4_%1").arg(i));
        Label4[size_t(i)]->setFrameShape(QFrame::StyledPanel);
        Label4[size_t(i)]->setMinimumWidth(50);
        Label4[size_t(i)]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        UpDown1[size_t(i)] = new QSpinBox(owner);
        UpDown1[size_t(i)]->setObjectName(QStringLiteral("UpDown1_%1").arg(i));
        UpDown1[size_t(i)]->setRange(1, upDownMax[i]);
        UpDown1[size_t(i)]->setFixedWidth(22);
        UpDown1[size_t(i)]->setStyleSheet(QStringLiteral("QSpinBox { color: transparent; }"));
        connect(UpDown1[size_t(i)], &QSpinBox::valueChanged, this, [this, i] { UpDown1_Change(i); });
    }
    auto upDownRow = [this](int i) {
        auto* h = new QHBoxLayout;
        h->addWidget(Label4[size_t(i)]);
        h->addWidget(UpDown1[size_t(i)]);
        h->addStretch(1);
        return h;
    };

    // General.
    auto* g = new QFormLayout(general);
    g->addRow(lblUpDown[0], upDownRow(0));
    chkShowSplash = new QCheckBox(general);
    chkShowSplash->setObjectName(QStringLiteral("chkShowSplash"));
    g->addRow(chkShowSplash);
    chkExpertMode = new QCheckBox(general);
    chkExpertMode->setObjectName(QStringLiteral("chkExpertMode"));
    g->addRow(chkExpertMode);
    lblLang = new QLabel(general);
    cmbLang = new QComboBox(general);
    cmbLang->setObjectName(QStringLiteral("cmbLang"));
    g->addRow(lblLang, cmbLang);
    lstErrLogBeep = new QListWidget(general);
    lstErrLogBeep->setObjectName(QStringLiteral("lstErrLogBeep"));
    for (const char* t : {"No Beep", "Error", "Warning", "Message"}) {
        auto* it = new QListWidgetItem(QString::fromLatin1(t), lstErrLogBeep);
        it->setFlags(it->flags() | Qt::ItemIsUserCheckable);
        it->setCheckState(Qt::Unchecked);
    }

    lstSaveFlags = new QListWidget(general);
    lstSaveFlags->setObjectName(QStringLiteral("lstSaveFlags"));
    lstSaveFlags->addItems({QStringLiteral("SAVE_BITMAP_OPTIMIZED "), QStringLiteral("SAVE_IN_MULTIPLE_FILES"),
                            QStringLiteral("SAVE_ONLY_MODELS "), QStringLiteral("SAVE_WITHOUT_GROUPS"),
                            QStringLiteral("SAVE_WITHOUT_CALCULATING_POINT_NORMALS"),
                            QStringLiteral("SAVE_WITH_BSP_TREE_INFORMATION")});
    lstSaveFlags->setSelectionMode(QAbstractItemView::NoSelection);
    lstSaveFlags->setEnabled(false); // inert: no code reads it
    fitToContents(lstErrLogBeep);
    fitToContents(lstSaveFlags);
    auto* lists = new QHBoxLayout;
    lists->addWidget(lstErrLogBeep);
    lists->addWidget(lstSaveFlags, 1);
    g->addRow(lists);
    tabOptions->addTab(general, QString());

    // Viewports.
    auto* f = new QFormLayout(views);
    lblMoveStep = new QLabel(views);
    spnMoveStep = spinner(views, "spnMoveStep", 0.001, 1e7, 10, 3);
    lblRotateStep = new QLabel(views);
    spnRotateStep = spinner(views, "spnRotateStep", 0.001, 360, 5, 3);
    lblScaleStep = new QLabel(views);
    spnScaleStep = spinner(views, "spnScaleStep", 0.001, 1000, 0.5, 3);
    lblSignificantDecs = new QLabel(views);
    spnSignificantDecs = spinner(views, "spnSignificantDecs", 0, 10, 1, 0);
    f->addRow(lblMoveStep, spnMoveStep);
    f->addRow(lblRotateStep, spnRotateStep);
    f->addRow(lblScaleStep, spnScaleStep);
    f->addRow(lblSignificantDecs, spnSignificantDecs);
    tabOptions->addTab(views, QString());

    // Start Up.
    auto* s = new QFormLayout(start);
    s->addRow(lblUpDown[1], upDownRow(1));
    s->addRow(lblUpDown[2], upDownRow(2));
    lblGridDensity = new QLabel(start);
    spnGridDensity = spinner(start, "spnGridDensity", 1, 1000, 1, 0);
    s->addRow(lblGridDensity, spnGridDensity);
    chkGrid = new QCheckBox(start);
    chkGrid->setObjectName(QStringLiteral("chkGrid"));
    chkGridSnap = new QCheckBox(start);
    chkGridSnap->setObjectName(QStringLiteral("chkGridSnap"));
    s->addRow(chkGrid);
    s->addRow(chkGridSnap);
    tabOptions->addTab(start, QString());

    // Toolbar.
    auto* tools = new QWidget(tabOptions);
    auto* t = new QHBoxLayout(tools);
    cmdSaveToolbar = new QPushButton(tools);
    cmdSaveToolbar->setObjectName(QStringLiteral("cmdSaveToolbar"));
    cmdRestoreToolbar = new QPushButton(tools);
    cmdRestoreToolbar->setObjectName(QStringLiteral("cmdRestoreToolbar"));
    Command1 = new QPushButton(tools);
    Command1->setObjectName(QStringLiteral("Command1"));
    for (QPushButton* b : {cmdSaveToolbar, cmdRestoreToolbar, Command1}) t->addWidget(b);
    tabOptions->addTab(tools, QString());

    auto* buttons = new QHBoxLayout;
    cmdDefault = new QPushButton(this);
    cmdDefault->setObjectName(QStringLiteral("cmdDefault"));
    cmdOk = new QPushButton(this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdApply = new QPushButton(this);
    cmdApply->setObjectName(QStringLiteral("cmdApply"));
    buttons->addWidget(cmdDefault);
    buttons->addStretch(1);
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    buttons->addWidget(cmdApply);
    v->addLayout(buttons);
    cmdOk->setDefault(true);

    auto ev = [this](const char* proc, void (frmPrefrences::*fn)()) {
        return [this, proc, fn] { handleEvent("frmPrefrences", proc, [&] { (this->*fn)(); }); };
    };
    connect(cmdApply, &QPushButton::clicked, this, ev("cmdApply_Click", &frmPrefrences::cmdApply_Click));
    connect(cmdOk, &QPushButton::clicked, this, ev("cmdOk_Click", &frmPrefrences::cmdOk_Click));
    connect(cmdCancel, &QPushButton::clicked, this, ev("cmdCancel_Click", &frmPrefrences::cmdCancel_Click));
    connect(cmdDefault, &QPushButton::clicked, this, ev("cmdDefault_Click", &frmPrefrences::cmdDefault_Click));
    connect(cmdSaveToolbar, &QPushButton::clicked, this, ev("cmdSaveToolbar_Click", &frmPrefrences::cmdSaveToolbar_Click));
    connect(cmdRestoreToolbar, &QPushButton::clicked, this,
            ev("cmdRestoreToolbar_Click", &frmPrefrences::cmdRestoreToolbar_Click));
    connect(Command1, &QPushButton::clicked, this, ev("Command1_Click", &frmPrefrences::Command1_Click));
    connect(lstErrLogBeep, &QListWidget::itemChanged, this, [this](QListWidgetItem* it) {
        // "No Beep" wins over the other items.
        if (lstErrLogBeep->row(it) == 0 && it->checkState() == Qt::Checked) {
            lstErrLogBeep->blockSignals(true);
            for (int r = 1; r < 4; ++r) lstErrLogBeep->item(r)->setCheckState(Qt::Unchecked);
            lstErrLogBeep->blockSignals(false);
        } else if (lstErrLogBeep->row(it) > 0 && it->checkState() == Qt::Checked) {
            lstErrLogBeep->blockSignals(true);
            lstErrLogBeep->item(0)->setCheckState(Qt::Unchecked);
            lstErrLogBeep->blockSignals(false);
        }
    });

    ApplyLanguage();
    LoadValues();
}

void frmPrefrences::ApplyLanguage() {
    setWindowTitle(GetLocaleString(532));
    tabOptions->setTabText(0, GetLocaleString(628));
    tabOptions->setTabText(1, GetLocaleString(629));
    tabOptions->setTabText(2, GetLocaleString(630));
    tabOptions->setTabText(3, GetLocaleString(542));
    lblUpDown[0]->setText(GetLocaleString(535));
    lblUpDown[1]->setText(GetLocaleString(536));
    lblUpDown[2]->setText(GetLocaleString(537));
    lblSignificantDecs->setText(GetLocaleString(538));
    lblMoveStep->setText(GetLocaleString(539));
    lblRotateStep->setText(GetLocaleString(540));
    lblScaleStep->setText(GetLocaleString(541));
    lblGridDensity->setText(GetLocaleString(546));
    lblLang->setText(GetLocaleString(601));
    chkShowSplash->setText(GetLocaleString(534));
    chkGrid->setText(GetLocaleString(395));
    chkGridSnap->setText(GetLocaleString(396));
    chkExpertMode->setText(GetLocaleString(245).remove(QLatin1Char('&')));
    cmdSaveToolbar->setText(GetLocaleString(543));
    cmdRestoreToolbar->setText(GetLocaleString(544));
    Command1->setText(GetLocaleString(545));
    cmdDefault->setText(GetLocaleString(533));
    cmdOk->setText(GetLocaleString(424));
    cmdCancel->setText(GetLocaleString(425));
    cmdApply->setText(GetLocaleString(456));
}

int frmPrefrences::StoredUndoDepth() {
    // The depth the next start will have: the stored "MaxUndoRedo" (empty, "0" or text: 20). A change takes
    // effect at the next start, so the stack's own size would show the old value again and Apply would
    // write it back.
    const QString stored = ReadMaxUndoRedoText();
    if (IsNumeric(stored)) {
        try {
            const int n = ToLong(stored);
            if (n > 0) return n;
        } catch (const VexilError&) {
        }
    }
    return 20;
}

void frmPrefrences::LoadValues() {
    Form1* form = Form1::instance();
    const Preferences& p = Prefs();
    m_depthShown = std::clamp(StoredUndoDepth(), UpDown1[0]->minimum(), UpDown1[0]->maximum());
    UpDown1[0]->setValue(m_depthShown);
    UpDown1[1]->setValue(int(p.TransformGizmoSensitivity));
    UpDown1[2]->setValue(int(p.CamLightObjRelativeSize));
    for (int i = 0; i < 3; ++i) UpDown1_Change(i);
    chkShowSplash->setChecked(p.ShowSplashMode == 1);
    spnGridDensity->SetValue(form ? form->GridDensity() : ReadGridDensity());
    spnSignificantDecs->SetValue(p.SignificantDecimals);
    spnMoveStep->SetValue(p.MoveStep);
    spnRotateStep->SetValue(p.RotateStep);
    spnScaleStep->SetValue(p.ScaleStep);
    // The boxes say "the grid (its snap) is on at start": a stored 1 is off (Form_Load step 20).
    chkGrid->setChecked(p.StartUpGrid != 1);
    chkGridSnap->setChecked(p.StartUpGridSnap != 1);
    chkExpertMode->setChecked(form ? form->ExpertMode : p.ExpertModeStartup);
    cmbLang->clear();
    int current = 0;
    const auto& langs = SupportedLanguages();
    for (size_t i = 0; i < langs.size(); ++i) {
        cmbLang->addItem(LanguageDisplayName(langs[i]));
        if (langs[i] == CurrentLCID()) current = int(i);
    }
    cmbLang->setCurrentIndex(current);
    m_languageShown = current;
    SetBeepList(AppLog().beepMask);
}

void frmPrefrences::UpDown1_Change(int index) {
    Label4[size_t(index)]->setText(QString::number(UpDown1[size_t(index)]->value()));
}

void frmPrefrences::SetBeepList(std::uint8_t mask) {
    lstErrLogBeep->blockSignals(true);
    lstErrLogBeep->item(0)->setCheckState(mask == 0 ? Qt::Checked : Qt::Unchecked);
    lstErrLogBeep->item(1)->setCheckState(mask & 2 ? Qt::Checked : Qt::Unchecked);
    lstErrLogBeep->item(2)->setCheckState(mask & 4 ? Qt::Checked : Qt::Unchecked);
    lstErrLogBeep->item(3)->setCheckState(mask & 8 ? Qt::Checked : Qt::Unchecked);
    lstErrLogBeep->blockSignals(false);
}

std::uint8_t frmPrefrences::BeepListMask() const {
    if (lstErrLogBeep->item(0)->checkState() == Qt::Checked) return 0;
    std::uint8_t m = 0;
    if (lstErrLogBeep->item(1)->checkState() == Qt::Checked) m |= 2;
    if (lstErrLogBeep->item(2)->checkState() == Qt::Checked) m |= 4;
    if (lstErrLogBeep->item(3)->checkState() == Qt::Checked) m |= 8;
    return m;
}

void frmPrefrences::cmdApply_Click() {
    Form1* form = Form1::instance();
    Preferences& p = Prefs();
    ActionUndoRedo_Stack* stack = form ? form->UndoStackPtr() : nullptr;
    const int depth = UpDown1[0]->value();
    SaveSetting(SecPrefrences, QStringLiteral("MaxUndoRedo"), QString::number(depth));
    SaveSetting(SecPrefrences, QStringLiteral("TransformGizmoSensitivity"), QString::number(UpDown1[1]->value()));
    SaveSetting(SecPrefrences, QStringLiteral("CamLightObjRelativeSize"), QString::number(UpDown1[2]->value()));
    SaveSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), chkShowSplash->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    p.TransformGizmoSensitivity = UpDown1[1]->value();
    p.CamLightObjRelativeSize = UpDown1[2]->value();
    if (stack) stack->SetStackSize(depth);
    const int decimals = int(spnSignificantDecs->Value());
    if (decimals != p.SignificantDecimals || depth != m_depthShown)
        dialogs().msgBox(QStringLiteral("Some settings will take effect only after restarting the application."), MsgOKOnly,
                         MsgInformation);
    p.ShowSplashMode = chkShowSplash->isChecked() ? 1 : 0;
    SaveSetting(SecPrefrences, QStringLiteral("GridDensity"), NumText(spnGridDensity->Value()));
    if (form) form->SetGridDensity(spnGridDensity->Value());
    SaveSetting(SecPrefrences, QStringLiteral("SignificantDecimals"), QString::number(decimals));
    p.SignificantDecimals = decimals;
    SaveSetting(SecPrefrences, QStringLiteral("MoveStep"), NumText(spnMoveStep->Value()));
    SaveSetting(SecPrefrences, QStringLiteral("RotateStep"), NumText(spnRotateStep->Value()));
    SaveSetting(SecPrefrences, QStringLiteral("ScaleStep"), NumText(spnScaleStep->Value()));
    p.MoveStep = spnMoveStep->Value();
    p.RotateStep = spnRotateStep->Value();
    p.ScaleStep = spnScaleStep->Value();
    m_depthShown = depth;
    p.StartUpGrid = chkGrid->isChecked() ? 0 : 1;
    p.StartUpGridSnap = chkGridSnap->isChecked() ? 0 : 1;
    SaveSetting(SecPrefrences, QStringLiteral("StartUpGrid"), QString::number(p.StartUpGrid));
    SaveSetting(SecPrefrences, QStringLiteral("StartUpGridSnap"), QString::number(p.StartUpGridSnap));
    if (cmbLang->currentIndex() != m_languageShown && cmbLang->currentIndex() >= 0) {
        const int lcid = SupportedLanguages().at(size_t(cmbLang->currentIndex()));
        SetAppLCID(lcid);
        SaveSetting(SecPrefrences, QStringLiteral("APP_LCID"), QString::number(lcid));
        if (form) form->ApplyLanguage();
        ApplyLanguage();
        m_languageShown = cmbLang->currentIndex();
    }
    AppLog().beepMask = BeepListMask();
    SaveSetting(SecPrefrences, QStringLiteral("ErrLogBeepVal"), QString::number(AppLog().beepMask));
    SaveSetting(SecPrefrences, QStringLiteral("Expert Mode Startup"), BoolText(chkExpertMode->isChecked()));
    if (form && form->WorldOpen()) form->UpdateCameras();
}

void frmPrefrences::cmdOk_Click() {
    cmdApply_Click();
    accept();
}

void frmPrefrences::cmdCancel_Click() { reject(); }

void frmPrefrences::cmdDefault_Click() {
    // Only the tab shown; nothing is written.
    switch (tabOptions->currentIndex()) {
    case 0:
        UpDown1[0]->setValue(20);
        chkShowSplash->setChecked(true);
        break;
    case 1:
        spnMoveStep->SetValue(100);
        spnRotateStep->SetValue(45);
        spnScaleStep->SetValue(2);
        spnSignificantDecs->SetValue(2);
        break;
    case 2:
        UpDown1[1]->setValue(50);
        UpDown1[2]->setValue(35);
        spnGridDensity->SetValue(40);
        // The stored defaults (1): grid and snap off at start.
        chkGrid->setChecked(false);
        chkGridSnap->setChecked(false);
        break;
    default: break; // the toolbar tab: nothing
    }
}

void frmPrefrences::cmdSaveToolbar_Click() {
    if (Form1* f = Form1::instance()) f->SaveToolbars();
}
void frmPrefrences::cmdRestoreToolbar_Click() {
    if (Form1* f = Form1::instance()) f->RestoreToolbars();
}
void frmPrefrences::Command1_Click() {
    if (Form1* f = Form1::instance()) f->ResetToolbar();
}

} // namespace vexil
