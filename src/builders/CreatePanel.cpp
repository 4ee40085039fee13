#include "CreatePanel.h"

#include "frame/Locale.h"
#include "frame/Spinner.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <cmath>

namespace vexil {

namespace {
constexpr int LblCreate = 173;
// Sizes up to ten million units, counts up to a thousand (more than 100 sides is refused by the
// builder with its own message, so the box must let the user type it).
constexpr double MaxDim = 1e7, MaxSegs = 1000;
} // namespace

CreatePanel::CreatePanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmCreate"));
    for (int k = 0; k < PrimitiveKindCount; ++k)
        m_values[size_t(k)] = DefaultParams(static_cast<PrimitiveKind>(k));

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    cmbNewObjType = new QComboBox(this);
    cmbNewObjType->setObjectName(QStringLiteral("cmbNewObjType"));
    grid->addWidget(cmbNewObjType, 0, 0, 1, 2);
    for (int i = 0; i < 3; ++i) {
        lblBoxDim[size_t(i)] = new QLabel(this);
        lblBoxDim[size_t(i)]->setObjectName(QStringLiteral("lblBoxDim%1").arg(i));
        spnBoxDim[size_t(i)] = new Spinner(this);
        spnBoxDim[size_t(i)]->setObjectName(QStringLiteral("spnBoxDim%1").arg(i));
        spnBoxDim[size_t(i)]->setRange(0, MaxDim);
        spnBoxDim[size_t(i)]->SetStep(10);
        grid->addWidget(lblBoxDim[size_t(i)], 1 + i, 0);
        grid->addWidget(spnBoxDim[size_t(i)], 1 + i, 1);
    }
    for (int i = 0; i < 3; ++i) {
        lblBoxSegments[size_t(i)] = new QLabel(this);
        lblBoxSegments[size_t(i)]->setObjectName(QStringLiteral("lblBoxSegments%1").arg(i));
        spnBoxSegments[size_t(i)] = new Spinner(this);
        spnBoxSegments[size_t(i)]->setObjectName(QStringLiteral("spnBoxSegments%1").arg(i));
        spnBoxSegments[size_t(i)]->setDecimals(0);
        spnBoxSegments[size_t(i)]->setProperty("wholeNumbers", true);
        spnBoxSegments[size_t(i)]->setRange(1, MaxSegs);
        spnBoxSegments[size_t(i)]->SetStep(1);
        grid->addWidget(lblBoxSegments[size_t(i)], 4 + i, 0);
        grid->addWidget(spnBoxSegments[size_t(i)], 4 + i, 1);
    }
    cmdCreate = new QPushButton(this);
    cmdCreate->setObjectName(QStringLiteral("cmdCreate"));
    grid->addWidget(cmdCreate, 7, 0, 1, 2);

    ApplyLanguage();
    cmbNewObjType->setCurrentIndex(static_cast<int>(PrimitiveKind::Box));
    cmbNewObjType_Click();
    connect(cmbNewObjType, &QComboBox::currentIndexChanged, this, [this] { cmbNewObjType_Click(); });
    connect(cmdCreate, &QPushButton::clicked, this, &CreatePanel::cmdCreateClicked);
    connect(&LocaleNotifier::instance(), &LocaleNotifier::languageChanged, this, [this] { ApplyLanguage(); });
}

PrimitiveKind CreatePanel::Kind() const {
    const int i = cmbNewObjType->currentIndex();
    return static_cast<PrimitiveKind>(i >= 0 && i < PrimitiveKindCount ? i : 1);
}

void CreatePanel::SetKind(PrimitiveKind kind) {
    cmbNewObjType->setCurrentIndex(static_cast<int>(kind));
}

CreateParams CreatePanel::Parameters() const {
    CreateParams p;
    p.kind = Kind();
    for (size_t i = 0; i < 3; ++i) {
        p.dim[i] = spnBoxDim[i]->Value();
        p.segs[i] = static_cast<int>(std::lround(spnBoxSegments[i]->Value()));
    }
    return p;
}

void CreatePanel::SetParameters(const CreateParams& p) {
    for (size_t i = 0; i < 3; ++i) {
        spnBoxDim[i]->SetValue(p.dim[i]);
        spnBoxSegments[i]->SetValue(p.segs[i]);
    }
}

void CreatePanel::cmbNewObjType_Click() {
    if (cmbNewObjType->currentIndex() < 0) return; // the list is being refilled
    // The values typed for the kind that was shown stay with it.
    if (m_shownKind >= 0) {
        CreateParams old = Parameters();
        old.kind = static_cast<PrimitiveKind>(m_shownKind);
        m_values[size_t(m_shownKind)] = old;
    }
    m_shownKind = static_cast<int>(Kind());
    SetBoxDimControls();
    SetBoxSegsControls();
    SetNewObjSegsMin();
    SetParameters(m_values[size_t(m_shownKind)]);
}

void CreatePanel::SetBoxDimControls() {
    const KindLayout& l = LayoutOf(Kind());
    for (int i = 0; i < 3; ++i) {
        const bool used = i < l.dimCount;
        lblBoxDim[size_t(i)]->setVisible(used);
        spnBoxDim[size_t(i)]->setVisible(used);
        if (used) lblBoxDim[size_t(i)]->setText(GetLocaleString(l.dimLabel[size_t(i)]));
    }
}

void CreatePanel::SetBoxSegsControls() {
    const KindLayout& l = LayoutOf(Kind());
    for (int i = 0; i < 3; ++i) {
        const bool used = i < l.segCount;
        lblBoxSegments[size_t(i)]->setVisible(used);
        spnBoxSegments[size_t(i)]->setVisible(used);
        if (used) lblBoxSegments[size_t(i)]->setText(GetLocaleString(l.segLabel[size_t(i)]));
    }
}

void CreatePanel::SetNewObjSegsMin() {
    const KindLayout& l = LayoutOf(Kind());
    for (size_t i = 0; i < 3; ++i)
        spnBoxSegments[i]->setMinimum(l.segMin[i]);
}

void CreatePanel::ApplyLanguage() {
    const int i = cmbNewObjType->currentIndex();
    cmbNewObjType->blockSignals(true);
    cmbNewObjType->clear();
    for (int k = 0; k < PrimitiveKindCount; ++k)
        cmbNewObjType->addItem(GetLocaleString(PrimitiveKindStringId(static_cast<PrimitiveKind>(k))));
    cmbNewObjType->setCurrentIndex(i >= 0 ? i : static_cast<int>(PrimitiveKind::Box));
    cmbNewObjType->blockSignals(false);
    cmdCreate->setText(GetLocaleString(LblCreate));
    if (m_shownKind >= 0) {
        SetBoxDimControls();
        SetBoxSegsControls();
    }
}

} // namespace vexil
