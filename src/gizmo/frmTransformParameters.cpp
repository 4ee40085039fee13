#include "frmTransformParameters.h"

#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "view/frmPicWins.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vexil {

namespace {
constexpr int StrMoveTransform = 338, StrObjectSpace = 552, StrOffset = 553, StrAbsolute = 554,
              StrWorldSpace = 555, StrApply = 456, StrStep = 600;
constexpr int StrOffsetX = 443, StrPositionX = 415, StrX = 143, StrY = 142, StrZ = 141;
} // namespace

frmTransformParameters::frmTransformParameters(frmPicWins& views, ActionUndoRedo_Stack& stack,
                                               QWidget* parent)
    : QWidget(parent, parent ? Qt::Widget : Qt::Tool), m_views(views), m_stack(stack) {
    setObjectName(QStringLiteral("frmTransformParameters"));
    auto* column = new QVBoxLayout(this);
    cmbTransform = new QComboBox(this);
    cmbTransform->setObjectName(QStringLiteral("cmbTransform"));
    column->addWidget(cmbTransform);

    auto* options = new QGridLayout;
    optOffset = new QRadioButton(this);
    optAbsolute = new QRadioButton(this);
    optObjectSpace = new QRadioButton(this);
    optWorldSpace = new QRadioButton(this);
    optOffset->setObjectName(QStringLiteral("optOffset"));
    optAbsolute->setObjectName(QStringLiteral("optAbsolute"));
    optObjectSpace->setObjectName(QStringLiteral("optObjectSpace"));
    optWorldSpace->setObjectName(QStringLiteral("optWorldSpace"));
    auto* valueKind = new QGroupBox(this);
    auto* space = new QGroupBox(this);
    auto* vk = new QVBoxLayout(valueKind);
    vk->addWidget(optOffset);
    vk->addWidget(optAbsolute);
    auto* sp = new QVBoxLayout(space);
    sp->addWidget(optObjectSpace);
    sp->addWidget(optWorldSpace);
    optOffset->setChecked(true);
    optWorldSpace->setChecked(true);
    options->addWidget(valueKind, 0, 0);
    options->addWidget(space, 0, 1);
    column->addLayout(options);

    auto* fields = new QGridLayout;
    for (int i = 0; i < 3; ++i) {
        lblValue[size_t(i)] = new QLabel(this);
        txtValue[size_t(i)] = new QLineEdit(this);
        txtValue[size_t(i)]->setObjectName(QStringLiteral("txtValue%1").arg(i));
        txtValue[size_t(i)]->installEventFilter(this);
        fields->addWidget(lblValue[size_t(i)], i, 0);
        fields->addWidget(txtValue[size_t(i)], i, 1);
    }
    column->addLayout(fields);
    lblStep = new QLabel(this);
    column->addWidget(lblStep);
    cmdApply = new QPushButton(this);
    cmdApply->setObjectName(QStringLiteral("cmdApply"));
    column->addWidget(cmdApply);
    column->addStretch(1);

    ApplyLanguage();
    connect(cmbTransform, &QComboBox::currentIndexChanged, this, [this] { optionsChanged(); });
    for (QRadioButton* o : {optOffset, optAbsolute, optObjectSpace, optWorldSpace})
        connect(o, &QRadioButton::toggled, this, [this](bool on) {
            if (on) optionsChanged();
        });
    connect(cmdApply, &QPushButton::clicked, this,
            [this] { handleEvent("frmTransformParameters", "cmdApply_Click", [&] { cmdApply_Click(); }); });
    connect(&LocaleNotifier::instance(), &LocaleNotifier::languageChanged, this, [this] { ApplyLanguage(); });
    optionsChanged();
}

TransformKind frmTransformParameters::Kind() const {
    return static_cast<TransformKind>(std::clamp(cmbTransform->currentIndex(), 0, 2));
}

void frmTransformParameters::SetKind(TransformKind kind) {
    if (cmbTransform->currentIndex() == static_cast<int>(kind))
        optionsChanged();
    else
        cmbTransform->setCurrentIndex(static_cast<int>(kind));
}

QStringList frmTransformParameters::labels() const {
    return {lblValue[0]->text(), lblValue[1]->text(), lblValue[2]->text()};
}

TypedTransform frmTransformParameters::Current(QString* error) const {
    TypedTransform t;
    t.kind = Kind();
    t.absolute = optAbsolute->isChecked();
    t.worldSpace = optWorldSpace->isChecked();
    const QString e = ParseTransformValues({txtValue[0]->text(), txtValue[1]->text(), txtValue[2]->text()},
                                           labels(), t.values);
    if (error) *error = e;
    return t;
}

bool frmTransformParameters::cmdApply_Click() {
    QString error;
    const TypedTransform t = Current(&error);
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    if (error.isEmpty()) error = ApplyTypedTransform(host, mode, t, m_stack);
    if (!error.isEmpty()) {
        dialogs().msgBox(error, MsgOKOnly, MsgExclamation, windowTitle());
        return false;
    }
    RefreshAfterTransform(host, mode, &m_views);
    m_views.UpdateCameras();
    // An absolute value stays what it is; offsets may be applied again.
    if (t.absolute) ResetValues();
    return true;
}

void frmTransformParameters::StepValue(int field, int direction) {
    if (field < 0 || field > 2 || direction == 0) return;
    QLineEdit* box = txtValue[size_t(field)];
    bool ok = false;
    double v = box->text().trimmed().toDouble(&ok);
    if (!ok) return;
    const Preferences& p = Prefs();
    switch (Kind()) {
    case TransformKind::Move:
        v += direction * p.MoveStep;
        break;
    case TransformKind::Rotate:
        v += direction * p.RotateStep;
        break;
    case TransformKind::Scale:
        if (p.ScaleStep > 0) v = direction > 0 ? v * p.ScaleStep : v / p.ScaleStep;
        break;
    }
    box->setText(NumText(v));
}

void frmTransformParameters::ResetValues() {
    Vec3 v{0, 0, 0};
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    const bool absolute = optAbsolute->isChecked();
    Vec3 pivot{};
    const bool any = SelectionPivot(host, mode, pivot);
    switch (Kind()) {
    case TransformKind::Move:
        if (absolute && any) v = SelectionLocation(host, mode);
        break;
    case TransformKind::Rotate:
        break;
    case TransformKind::Scale:
        v = {1, 1, 1};
        if (absolute && any) v = SelectionDimensions(host, mode);
        break;
    }
    for (size_t i = 0; i < 3; ++i)
        txtValue[i]->setText(NumText(v[i]));
}

void frmTransformParameters::optionsChanged() {
    const TransformKind kind = Kind();
    // A turn is typed as an offset; a scale is along a group's own axes, or along the world axes.
    optAbsolute->setEnabled(kind != TransformKind::Rotate);
    if (kind == TransformKind::Rotate && optAbsolute->isChecked()) optOffset->setChecked(true);
    const bool absolute = optAbsolute->isChecked();
    optObjectSpace->setEnabled(!absolute && kind != TransformKind::Scale);
    optWorldSpace->setEnabled(!absolute && kind != TransformKind::Scale);
    setWindowTitle(cmbTransform->currentText());
    for (int i = 0; i < 3; ++i) {
        int id = StrX - i; // "X", "Y", "Z" are 143, 142, 141
        if (kind == TransformKind::Move) id = (absolute ? StrPositionX : StrOffsetX) + i;
        lblValue[size_t(i)]->setText(GetLocaleString(id));
    }
    const Preferences& p = Prefs();
    const double step = kind == TransformKind::Move     ? p.MoveStep
                        : kind == TransformKind::Rotate ? p.RotateStep
                                                        : p.ScaleStep;
    lblStep->setText(GetLocaleString(StrStep) + QStringLiteral(": ") + NumText(step));
    ResetValues();
}

void frmTransformParameters::ApplyLanguage() {
    const int i = cmbTransform->currentIndex();
    cmbTransform->blockSignals(true);
    cmbTransform->clear();
    for (int k = 0; k < 3; ++k)
        cmbTransform->addItem(GetLocaleString(StrMoveTransform + k));
    cmbTransform->setCurrentIndex(i >= 0 ? i : 0);
    cmbTransform->blockSignals(false);
    optOffset->setText(GetLocaleString(StrOffset));
    optAbsolute->setText(GetLocaleString(StrAbsolute));
    optObjectSpace->setText(GetLocaleString(StrObjectSpace));
    optWorldSpace->setText(GetLocaleString(StrWorldSpace));
    cmdApply->setText(GetLocaleString(StrApply));
    setWindowTitle(cmbTransform->currentText());
}

bool frmTransformParameters::eventFilter(QObject* obj, QEvent* e) {
    if (e->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(e)->key();
        for (int i = 0; i < 3; ++i) {
            if (obj != txtValue[size_t(i)]) continue;
            if (key == Qt::Key_Up || key == Qt::Key_Down) {
                StepValue(i, key == Qt::Key_Up ? 1 : -1);
                return true;
            }
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                handleEvent("frmTransformParameters", "cmdApply_Click", [&] { cmdApply_Click(); });
                return true;
            }
        }
    }
    return QWidget::eventFilter(obj, e);
}

} // namespace vexil
