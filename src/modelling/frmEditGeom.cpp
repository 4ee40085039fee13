#include "frmEditGeom.h"

#include "EditGeometry.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "mdlExtrude.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QToolBar>
#include <QVBoxLayout>

namespace vexil {

void ExtBvlSpinner::mousePressEvent(QMouseEvent* e) {
    emit MouseDown();
    Spinner::mousePressEvent(e);
}

namespace {

template <class F> void onClick(QPushButton* b, const char* name, F f) {
    QObject::connect(b, &QPushButton::clicked, b, [name, f] { handleEvent("Form1", name, f); });
}

} // namespace

frmEditGeom::frmEditGeom(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmEditGeom"));
    auto* col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);

    frmEditPt = new QWidget(this);
    frmEditPt->setObjectName(QStringLiteral("frmEditPt"));
    auto* pt = new QGridLayout(frmEditPt);
    pt->setContentsMargins(0, 0, 0, 0);
    lblWeldTh = new QLabel(frmEditPt);
    txtWeldTh = new QLineEdit(QStringLiteral("0.1"), frmEditPt);
    txtWeldTh->setObjectName(QStringLiteral("txtWeldTh"));
    cmdWeld = new QPushButton(frmEditPt);
    cmdWeld->setObjectName(QStringLiteral("cmdWeld"));
    cmdEditPtDelete = new QPushButton(frmEditPt);
    cmdEditPtDelete->setObjectName(QStringLiteral("cmdEditPtDelete"));
    chkIgnoreBackFacedForPtSel = new QCheckBox(frmEditPt);
    chkIgnoreBackFacedForPtSel->setObjectName(QStringLiteral("chkIgnoreBackFacedForPtSel"));
    pt->addWidget(lblWeldTh, 0, 0);
    pt->addWidget(txtWeldTh, 0, 1);
    pt->addWidget(cmdWeld, 1, 0);
    pt->addWidget(cmdEditPtDelete, 1, 1);
    pt->addWidget(chkIgnoreBackFacedForPtSel, 2, 0, 1, 2);

    frmEditPol = new QWidget(this);
    frmEditPol->setObjectName(QStringLiteral("frmEditPol"));
    auto* pol = new QGridLayout(frmEditPol);
    pol->setContentsMargins(0, 0, 0, 0);
    lblSelPolName = new QLabel(frmEditPol);
    txtSelPolName = new QLineEdit(frmEditPol);
    txtSelPolName->setObjectName(QStringLiteral("txtSelPolName"));
    txtSelPolName->setReadOnly(true);
    cmdFlipPol = new QPushButton(frmEditPol);
    cmdFlipPol->setObjectName(QStringLiteral("cmdFlipPol"));
    cmdDeletePol = new QPushButton(frmEditPol);
    cmdDeletePol->setObjectName(QStringLiteral("cmdDeletePol"));
    cmdDetachPols = new QPushButton(frmEditPol);
    cmdDetachPols->setObjectName(QStringLiteral("cmdDetachPols"));
    pol->addWidget(lblSelPolName, 0, 0);
    pol->addWidget(txtSelPolName, 0, 1, 1, 2);
    pol->addWidget(cmdFlipPol, 1, 0);
    pol->addWidget(cmdDeletePol, 1, 1);
    pol->addWidget(cmdDetachPols, 1, 2);
    for (int i = 0; i < 2; ++i) {
        auto* s = new ExtBvlSpinner(frmEditPol);
        s->setObjectName(QStringLiteral("spnExtBvl%1").arg(i));
        s->setRange(i == 0 ? -1e6 : 0.0, 1e6);
        s->setDecimals(3);
        s->SetStep(i == 0 ? 1.0 : 0.01);
        s->SetValue(i == 0 ? 0.0 : 1.0);
        spnExtBvl[size_t(i)] = s;
        lblExtBvl[size_t(i)] = new QLabel(frmEditPol);
        pol->addWidget(lblExtBvl[size_t(i)], 2 + i, 0);
        pol->addWidget(s, 2 + i, 1, 1, 2);
        connect(s, &ExtBvlSpinner::MouseDown, this,
                [i] { handleEvent("Form1", "updwnExtBvl_MouseDown", [&] { mdlExtrude::Instance().updwnExtBvl_MouseDown(i); }); });
        connect(s, &Spinner::Changed, this, [i](double v) {
            handleEvent("Form1", "updwnExtBvl_Change", [&] { mdlExtrude::Instance().updwnExtBvl_Change(i, v); });
        });
        connect(s, &Spinner::MouseUp, this, [i, s] {
            handleEvent("Form1", "updwnExtBvl_MouseUp", [&] { mdlExtrude::Instance().updwnExtBvl_MouseUp(i, s->Value()); });
        });
    }
    mdlExtrude& x = mdlExtrude::Instance();
    x.SetStep = [this](int i, double step) { spnExtBvl[size_t(i)]->SetStep(step); };
    x.SetValue = [this](int i, double v) { spnExtBvl[size_t(i)]->SetValue(v); };
    tlbrCut = new QToolBar(frmEditPol);
    tlbrCut->setObjectName(QStringLiteral("tlbrCut"));
    QAction* cut = tlbrCut->addAction(QStringLiteral(" Cut    "));
    cut->setCheckable(true);
    cut->setProperty("tipId", 198);
    pol->addWidget(tlbrCut, 4, 0, 1, 3);
    chkIgnoreBackFacedForPolSel = new QCheckBox(frmEditPol);
    chkIgnoreBackFacedForPolSel->setObjectName(QStringLiteral("chkIgnoreBackFacedForPolSel"));
    pol->addWidget(chkIgnoreBackFacedForPolSel, 5, 0, 1, 3);

    auto* grp = new QWidget(this);
    auto* row = new QGridLayout(grp);
    row->setContentsMargins(0, 0, 0, 0);
    cmdTriangulate = new QPushButton(grp);
    cmdTriangulate->setObjectName(QStringLiteral("cmdTriangulate"));
    cmdReducePols = new QPushButton(grp);
    cmdReducePols->setObjectName(QStringLiteral("cmdReducePols"));
    row->addWidget(cmdTriangulate, 0, 0);
    row->addWidget(cmdReducePols, 0, 1);

    col->addWidget(frmEditPt);
    col->addWidget(frmEditPol);
    col->addWidget(grp);

    onClick(cmdWeld, "cmdWeld_Click", [this] { EditGeometry::cmdWeld_Click(txtWeldTh->text()); });
    onClick(cmdEditPtDelete, "cmdEditPtDelete_Click", [] { EditGeometry::cmdEditPtDelete_Click(); });
    onClick(cmdFlipPol, "cmdFlipPol_Click", [] { EditGeometry::cmdFlipPol_Click(); });
    onClick(cmdDeletePol, "cmdDeletePol_Click", [] { EditGeometry::cmdDeletePol_Click(); });
    onClick(cmdDetachPols, "cmdDetachPols_Click", [] { EditGeometry::cmdDetachPols_Click(); });
    onClick(cmdTriangulate, "cmdTriangulate_Click", [] { EditGeometry::cmdTriangulate_Click(); });
    onClick(cmdReducePols, "cmdReducePols_Click", [] { EditGeometry::cmdReducePols_Click(); });
    ApplyLanguage();
    ShowMode(0);
}

void frmEditGeom::ShowMode(int mode) {
    frmEditPt->setVisible(mode == 1);
    frmEditPol->setVisible(mode == 2);
}

void frmEditGeom::ApplyLanguage() {
    lblWeldTh->setText(GetLocaleString(184));
    cmdWeld->setText(GetLocaleString(185));
    cmdEditPtDelete->setText(GetLocaleString(186));
    chkIgnoreBackFacedForPtSel->setText(GetLocaleString(183));
    lblSelPolName->setText(GetLocaleString(197));
    cmdFlipPol->setText(GetLocaleString(194));
    cmdDeletePol->setText(GetLocaleString(211));
    cmdDetachPols->setText(GetLocaleString(195));
    lblExtBvl[0]->setText(GetLocaleString(188));
    lblExtBvl[1]->setText(GetLocaleString(189));
    chkIgnoreBackFacedForPolSel->setText(GetLocaleString(187));
    cmdTriangulate->setText(GetLocaleString(176));
    cmdReducePols->setText(GetLocaleString(175));
}

} // namespace vexil
