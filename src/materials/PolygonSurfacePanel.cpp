#include "PolygonSurfacePanel.h"

#include "BitmapFiles.h"
#include "MaterialsHost.h"
#include "MaterialsUi.h"
#include "PolygonFilters.h"
#include "SurfaceCommands.h"
#include "engine/EntityNaming.h"
#include "formTrnsClrPcr.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Spinner.h"
#include "selection/SelectionState.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

constexpr const char* kDissableChange = "Dissable Change";
constexpr const char* kDissableClick = "Dissable Click";

int firstSelectedPolygon() { return Sel().SelPols.At(1); }

} // namespace

PolygonSurfacePanel::PolygonSurfacePanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("frmPolSurface"));
    auto* form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    cmbPolFilter = new QComboBox(this);
    cmbPolFilter->setObjectName(QStringLiteral("cmbPolFilter"));
    chkPolRotated = new QCheckBox(this);
    chkPolRotated->setObjectName(QStringLiteral("chkPolRotated"));
    lblLightDimu = new QLabel(this);
    spnLightDimu = new Spinner(this);
    spnLightDimu->setObjectName(QStringLiteral("spnLightDimu"));
    spnLightDimu->setRange(0, 100);
    spnLightDimu->setDecimals(0);
    spnLightDimu->setProperty("wholeNumbers", true);
    chkEditPolTrans = new QCheckBox(this);
    chkEditPolTrans->setObjectName(QStringLiteral("chkEditPolTrans"));
    cmdPoltextureTransparentClr = new QPushButton(this);
    cmdPoltextureTransparentClr->setObjectName(QStringLiteral("cmdPoltextureTransparentClr"));
    cmdPoltextureTransparentClr->setEnabled(false);
    lblSelPolName = new QLabel(this);
    txtSelPolName = new QLineEdit(this);
    txtSelPolName->setObjectName(QStringLiteral("txtSelPolName"));
    txtSelPolName->setReadOnly(true);
    cmdGrpClr = new QPushButton(this);
    cmdGrpClr->setObjectName(QStringLiteral("cmdGrpClr"));
    chkGrpDyn = new QCheckBox(this);
    chkGrpDyn->setObjectName(QStringLiteral("chkGrpDyn"));

    form->addRow(cmbPolFilter);
    form->addRow(chkPolRotated);
    form->addRow(lblLightDimu, spnLightDimu);
    form->addRow(chkEditPolTrans, cmdPoltextureTransparentClr);
    form->addRow(lblSelPolName, txtSelPolName);
    form->addRow(cmdGrpClr, chkGrpDyn);

    const auto on = [this](const char* name, auto body) {
        return [this, name, body] { handleEvent("Form1", name, [&] { (this->*body)(); }); };
    };
    connect(cmbPolFilter, &QComboBox::activated, this, on("cmbPolFilter_Click", &PolygonSurfacePanel::cmbPolFilter_Click));
    connect(chkPolRotated, &QCheckBox::clicked, this, on("chkPolRotated_Click", &PolygonSurfacePanel::chkPolRotated_Click));
    connect(spnLightDimu, &Spinner::MouseUp, this, on("spnLightDimu_MouseUp", &PolygonSurfacePanel::spnLightDimu_MouseUp));
    // A value typed and confirmed is one step too, as a drag ended by the mouse is.
    connect(spnLightDimu, &QAbstractSpinBox::editingFinished, this,
            on("spnLightDimu_MouseUp", &PolygonSurfacePanel::spnLightDimu_MouseUp));
    connect(chkEditPolTrans, &QCheckBox::clicked, this,
            on("chkEditPolTrans_Click", &PolygonSurfacePanel::chkEditPolTrans_Click));
    connect(cmdPoltextureTransparentClr, &QPushButton::clicked, this,
            on("cmdPoltextureTransparentClr_Click", &PolygonSurfacePanel::cmdPoltextureTransparentClr_Click));
    connect(txtSelPolName, &QLineEdit::textEdited, this,
            on("txtSelPolName_Change", &PolygonSurfacePanel::txtSelPolName_Change));
    connect(txtSelPolName, &QLineEdit::editingFinished, this,
            on("txtSelPolName_LostFocus", &PolygonSurfacePanel::txtSelPolName_LostFocus));
    connect(cmdGrpClr, &QPushButton::clicked, this, on("cmdGrpClr_Click", &PolygonSurfacePanel::cmdGrpClr_Click));
    connect(chkGrpDyn, &QCheckBox::clicked, this, on("chkGrpDyn_Click", &PolygonSurfacePanel::chkGrpDyn_Click));

    ApplyLanguage();
    cmbPolFilter_InitialSetup();
    materialsUi().panel = this;
}

PolygonSurfacePanel::~PolygonSurfacePanel() {
    if (materialsUi().panel == this) materialsUi().panel = nullptr;
}

void PolygonSurfacePanel::ApplyLanguage() {
    chkPolRotated->setText(GetLocaleString(190));
    lblLightDimu->setText(GetLocaleString(203));
    chkEditPolTrans->setText(GetLocaleString(191));
    cmdPoltextureTransparentClr->setText(GetLocaleString(193));
    lblSelPolName->setText(GetLocaleString(197));
    cmdGrpClr->setText(GetLocaleString(180));
    chkGrpDyn->setText(GetLocaleString(177));
    if (cmbPolFilter->count() == int(kPolygonFilters.size())) {
        const int i = cmbPolFilter->currentIndex();
        setTag(cmbPolFilter, kDissableChange);
        for (std::size_t k = 0; k < kPolygonFilters.size(); ++k)
            cmbPolFilter->setItemText(int(k), GetLocaleString(kPolygonFilters[k].stringId));
        cmbPolFilter->setCurrentIndex(i);
        setTag(cmbPolFilter, "");
    }
}

void PolygonSurfacePanel::setTag(QWidget* w, const char* tag) {
    w->setProperty("Tag", QString::fromLatin1(tag));
}

bool PolygonSurfacePanel::guarded(const QWidget* w, const char* tag) {
    return w->property("Tag").toString() == QLatin1String(tag);
}

void PolygonSurfacePanel::paintButton(QPushButton* b, long colour) {
    if (colour == kButtonFace || colour < 0) {
        b->setStyleSheet(QString());
        return;
    }
    int r = 0, g = 0, bl = 0;
    SplitColour(colour, r, g, bl);
    const QColor c(r, g, bl);
    b->setStyleSheet(QStringLiteral("background-color: %1; color: %2;")
                         .arg(c.name(), c.lightness() > 128 ? QStringLiteral("black") : QStringLiteral("white")));
}

// ---- filter ---------------------------------------------------------------------------------------------------

void PolygonSurfacePanel::cmbPolFilter_InitialSetup() {
    setTag(cmbPolFilter, kDissableChange);
    cmbPolFilter->clear();
    for (const PolygonFilter& f : kPolygonFilters) cmbPolFilter->addItem(GetLocaleString(f.stringId));
    cmbPolFilter->setCurrentIndex(0);
    setTag(cmbPolFilter, "");
}

void PolygonSurfacePanel::cmbPolFilter_Click() {
    cmbPolFilter_Change();
    materialsHost().UpdateCameras();
}

void PolygonSurfacePanel::cmbPolFilter_Change() {
    if (guarded(cmbPolFilter, kDissableChange) || Sel().SelPols.Count() == 0) return;
    const int value = FilterValueOfText(cmbPolFilter->currentText());
    if (value < 0) return;
    ChangeSelectedPolygonsFilter(value);
}

void PolygonSurfacePanel::cmbPolFilter_SetAccordingToSelPol() {
    const int p = firstSelectedPolygon();
    if (!p) return;
    const int index = FilterIndexOfValue(ZELMAR_polygon_get_translucent(p));
    const QString before = cmbPolFilter->property("Tag").toString();
    setTag(cmbPolFilter, kDissableChange);
    cmbPolFilter->setCurrentIndex(index < 0 ? 0 : index);
    cmbPolFilter->setProperty("Tag", before);
}

// ---- rotated, diminution ------------------------------------------------------------------------------------

void PolygonSurfacePanel::chkPolRotated_Click() {
    if (guarded(chkPolRotated, kDissableClick)) return;
    ChangeSelectedPolygonsRotated(chkPolRotated->isChecked());
    materialsHost().UpdateCameras();
}

void PolygonSurfacePanel::ShowRotatedFlag(bool rotated) {
    setTag(chkPolRotated, kDissableClick);
    chkPolRotated->setChecked(rotated);
    setTag(chkPolRotated, "");
}

void PolygonSurfacePanel::spnLightDimu_MouseUp() {
    if (guarded(spnLightDimu, kDissableChange) || Sel().SelPols.Count() == 0) return;
    ChangeSelectedPolygonsLightDimu(spnLightDimu->Value());
}

void PolygonSurfacePanel::ShowLightDimu(double value) {
    setTag(spnLightDimu, kDissableChange);
    spnLightDimu->SetValue(value);
    setTag(spnLightDimu, "");
}

// ---- transparency -------------------------------------------------------------------------------------------

int PolygonSurfacePanel::TransparencyRefusal(bool* disables) {
    const HandleArray& pols = Sel().SelPols;
    auto answer = [&](int id, bool dis) {
        if (disables) *disables = dis;
        return id;
    };
    if (pols.Count() == 0) return answer(372, true);
    if (pols.Count() > 1) return answer(375, true);
    const int p = pols.At(1);
    if (ZELMAR_polygon_get_animation(p)) return answer(374, true);
    if (!ZELMAR_polygon_get_bitmap_handle(p)) return answer(373, false);
    return answer(0, false);
}

void PolygonSurfacePanel::chkEditPolTrans_Click() {
    if (m_transReentry) return;
    if (chkEditPolTrans->isChecked()) {
        bool disables = false;
        if (const int id = TransparencyRefusal(&disables)) {
            dialogs().msgBox(GetLocaleString(id), MsgOKOnly, MsgInformation);
            if (disables) cmdPoltextureTransparentClr->setEnabled(false);
            m_transReentry = true;
            chkEditPolTrans->setChecked(false);
            m_transReentry = false;
        } else {
            cmdPoltextureTransparentClr->setEnabled(true);
        }
    } else {
        cmdPoltextureTransparentClr->setEnabled(false);
    }
    materialsHost().UpdateCameras();
}

void PolygonSurfacePanel::cmdPoltextureTransparentClr_Click() {
    if (const int id = TransparencyRefusal()) {
        dialogs().msgBox(GetLocaleString(id), MsgOKOnly, MsgInformation);
        return;
    }
    formTrnsClrPcr form(0, ZELMAR_polygon_get_bitmap_handle(firstSelectedPolygon()), materialsHost().MainWindow());
    dialogs().exec(form);
}

void PolygonSurfacePanel::ShowTransparentColour(int bitmap, int index) {
    paintButton(cmdPoltextureTransparentClr, ColourForTransparentIndex(bitmap, index));
    m_transReentry = true;
    chkEditPolTrans->setChecked(index != -1);
    m_transReentry = false;
    cmdPoltextureTransparentClr->setEnabled(chkEditPolTrans->isChecked());
}

// ---- name, group colour, dynamic -----------------------------------------------------------------------------

void PolygonSurfacePanel::txtSelPolName_Change() {
    txtSelPolName->setReadOnly(Sel().SelPols.Count() != 1);
}

void PolygonSurfacePanel::txtSelPolName_LostFocus() {
    // The box only informs: the engine's name comes back.
    const int p = Sel().SelPols.Count() == 1 ? firstSelectedPolygon() : 0;
    txtSelPolName->setText(p ? QString::fromLocal8Bit(EntityName(p).c_str()) : GetLocaleString(196));
}

long PolygonSurfacePanel::GetSelectedColor(long initial) {
    int r = 255, g = 255, b = 255;
    if (initial >= 0 && initial != kButtonFace) SplitColour(initial, r, g, b);
    const std::optional<QColor> c = dialogs().chooseColor(QColor(r, g, b));
    if (!c) return -1;
    return ColourValue(c->red(), c->green(), c->blue());
}

void PolygonSurfacePanel::cmdGrpClr_Click() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1) return;
    int rgb[3] = {255, 255, 255};
    if (const int p = s.SelPols.At(1) ? s.SelPols.At(1) : ZELMAR_group_get_first_polygon(s.CurrSelEntity))
        ZELMAR_polygon_get_color(p, rgb);
    const long colour = GetSelectedColor(ColourValue(rgb[0], rgb[1], rgb[2]));
    if (colour == -1) return;
    int r = 0, g = 0, b = 0;
    SplitColour(colour, r, g, b);
    if (ApplyColourToSelection(r, g, b, materialsHost().PolygonEditLevel())) paintButton(cmdGrpClr, colour);
}

void PolygonSurfacePanel::ShowGroupColour() {
    const SelectionState& s = Sel();
    const int p = s.SelPols.At(1) ? s.SelPols.At(1)
                                  : (s.CurrSelEntityType == 1 ? ZELMAR_group_get_first_polygon(s.CurrSelEntity) : 0);
    if (!p) {
        paintButton(cmdGrpClr, kButtonFace);
        return;
    }
    int rgb[3] = {255, 255, 255};
    ZELMAR_polygon_get_color(p, rgb);
    paintButton(cmdGrpClr, ColourValue(rgb[0], rgb[1], rgb[2]));
}

void PolygonSurfacePanel::chkGrpDyn_Click() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1) return;
    if (chkGrpDyn->isChecked())
        ZELMAR_group_set_dynamic(s.CurrSelEntity);
    else
        ZELMAR_group_set_static(s.CurrSelEntity);
}

// ---- the selection --------------------------------------------------------------------------------------------

void PolygonSurfacePanel::UpdateEditGeomTabBasedOnPolsSelected() {
    const SelectionState& s = Sel();
    const int p = firstSelectedPolygon();
    cmbPolFilter_SetAccordingToSelPol();
    if (p) {
        ShowRotatedFlag(ZELMAR_polygon_is_rotated(p) != 0);
        ShowLightDimu(ZELMAR_polygon_get_light_diminution(p));
        const int bitmap = ZELMAR_polygon_get_bitmap_handle(p);
        const int index = bitmap ? ZELMAR_bitmap_get_transparent_index(bitmap) : -1;
        paintButton(cmdPoltextureTransparentClr, ColourForTransparentIndex(bitmap, index));
        m_transReentry = true;
        chkEditPolTrans->setChecked(bitmap && index != -1 && s.SelPols.Count() == 1);
        m_transReentry = false;
    } else {
        paintButton(cmdPoltextureTransparentClr, kButtonFace);
        m_transReentry = true;
        chkEditPolTrans->setChecked(false);
        m_transReentry = false;
    }
    cmdPoltextureTransparentClr->setEnabled(chkEditPolTrans->isChecked());
    txtSelPolName->setReadOnly(s.SelPols.Count() != 1);
    txtSelPolName->setText(s.SelPols.Count() == 1 ? QString::fromLocal8Bit(EntityName(p).c_str())
                                                  : GetLocaleString(196));
    chkGrpDyn->setChecked(s.CurrSelEntityType == 1 && ZELMAR_group_is_static(s.CurrSelEntity) == 0);
    ShowGroupColour();
}

} // namespace vexil
