#include "frmLightMapParameterInput.h"

#include "LightController.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "base/VexilError.h"
#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// VB's IsNumeric and CDbl of a text: a finite decimal number, or "&H" and hexadecimal digits. The
// infinities and NaN that the C library reads are not numbers here.
bool number(const QString& text, double& value) {
    const QString t = text.trimmed();
    bool ok = false;
    value = t.toDouble(&ok);
    if (ok) return std::isfinite(value);
    if (t.startsWith(QStringLiteral("&H"), Qt::CaseInsensitive)) {
        value = double(t.mid(2).toLongLong(&ok, 16));
        return ok;
    }
    return false;
}

bool numeric(const QString& text) {
    double v = 0;
    return number(text, v);
}

double toDouble(const QString& text) {
    double v = 0;
    if (!number(text, v)) throw VexilError(ErrTypeMismatch, "Type mismatch");
    return v;
}

// CLng: rounded half to even; beyond 32 bits an overflow (error 6).
int toLong(const QString& text) {
    const double r = std::nearbyint(toDouble(text));
    if (r < -2147483648.0 || r > 2147483647.0) throw VexilError(ErrOverflow, "Overflow");
    return static_cast<int>(r);
}

void info(int id) {
    dialogs().msgBox(GetLocaleString(id), MsgOKOnly, MsgInformation);
}

// The markers of saved entities of one kind that show now; they are hidden for the bake.
std::vector<int> hideShownMarkers(int kind, int (*first)(), int (*next)(int), int (*saved)(int)) {
    std::vector<int> hidden;
    const EntityKindOps& ops = KindOps(kind);
    if (!ops.Marker) return hidden;
    for (int e = first(); e != 0; e = next(e)) {
        if (saved(e) != 1) continue; // deleted: already hidden
        const int g = ops.Marker(e);
        if (g != 0 && ZELMAR_group_is_disable(g) == 0) {
            ZELMAR_group_disable(g, 1);
            hidden.push_back(g);
        }
    }
    return hidden;
}

} // namespace

frmLightMapParameterInput::frmLightMapParameterInput(LightController& lights, QWidget* parent)
    : QDialog(parent), m_lights(lights) {
    setObjectName(QStringLiteral("frmLightMapParameterInput"));
    setWindowTitle(GetLocaleString(522));
    build();
}

void frmLightMapParameterInput::build() {
    auto* outer = new QVBoxLayout(this);
    frmParam = new QWidget(this);
    frmParam->setObjectName(QStringLiteral("frmParam"));
    auto* form = new QFormLayout(frmParam);
    auto row = [&](const char* txtName, const char* updName, int caption, int lo, int hi, QLineEdit*& txt,
                   QSpinBox*& upd) {
        txt = new QLineEdit(frmParam);
        txt->setObjectName(QString::fromLatin1(txtName));
        upd = new QSpinBox(frmParam);
        upd->setObjectName(QString::fromLatin1(updName));
        upd->setRange(lo, hi);
        upd->setButtonSymbols(QAbstractSpinBox::UpDownArrows);
        upd->setMaximumWidth(22 + upd->fontMetrics().horizontalAdvance(QStringLiteral("0")));
        upd->setStyleSheet(QStringLiteral("QSpinBox { color: transparent; }"));
        auto* box = new QHBoxLayout;
        box->addWidget(txt);
        box->addWidget(upd);
        form->addRow(GetLocaleString(caption), box);
    };
    row("txtMaxSize", "updwnMaxSize", 528, 1, 4096, txtMaxSize, updwnMaxSize);
    row("txtMinSize", "updwnMinSize", 527, 1, 4096, txtMinSize, updwnMinSize);
    row("txtSamplingRate", "updwnSamplingRate", 529, 1, 100000, txtSamplingRate, updwnSamplingRate);
    chkRaytracing = new QCheckBox(GetLocaleString(526), frmParam);
    chkRaytracing->setObjectName(QStringLiteral("chkRaytracing"));
    chkRaytracing->setChecked(true);
    Option1 = new QRadioButton(QStringLiteral("Sharp"), frmParam);
    Option1->setObjectName(QStringLiteral("Option1"));
    Option2 = new QRadioButton(QStringLiteral("Smooth"), frmParam);
    Option2->setObjectName(QStringLiteral("Option2"));
    Option2->setChecked(true);
    auto* modes = new QHBoxLayout;
    modes->addWidget(Option1);
    modes->addWidget(Option2);
    form->addRow(chkRaytracing);
    form->addRow(modes);
    outer->addWidget(frmParam);

    // Defaults: maps of 2 to 256 texels a side, a texel per 8 units, shadows, smoothed: the sample world bakes
    // in about a second and its house casts a shadow that can be seen.
    m_syncing = true;
    const LightMapParams d{256, 2, 8, 1, 2};
    txtMaxSize->setText(QString::number(d.maxSize));
    txtMinSize->setText(QString::number(d.minSize));
    txtSamplingRate->setText(QString::number(d.samplingRate));
    updwnMaxSize->setValue(d.maxSize);
    updwnMinSize->setValue(d.minSize);
    updwnSamplingRate->setValue(int(d.samplingRate));
    m_syncing = false;
    for (auto [txt, upd] : {std::pair{txtMaxSize, updwnMaxSize}, std::pair{txtMinSize, updwnMinSize},
                            std::pair{txtSamplingRate, updwnSamplingRate}}) {
        connect(txt, &QLineEdit::textChanged, this, [this, txt, upd] {
            handleEvent("frmLightMapParameterInput", "txt_Change", [&] { txtChange(txt, upd); });
        });
        connect(upd, &QSpinBox::valueChanged, this, [this, txt, upd] {
            handleEvent("frmLightMapParameterInput", "updwn_Change", [&] { updwnChange(upd, txt); });
        });
    }

    frmcmdCompute = new QWidget(this);
    frmcmdCompute->setObjectName(QStringLiteral("frmcmdCompute"));
    auto* computeRow = new QHBoxLayout(frmcmdCompute);
    cmdCompute = new QPushButton(GetLocaleString(530), frmcmdCompute);
    cmdCompute->setObjectName(QStringLiteral("cmdCompute"));
    cmdCompute->setToolTip(GetLocaleString(531));
    cmdCompute->setAutoDefault(false);
    computeRow->addWidget(cmdCompute);
    connect(cmdCompute, &QPushButton::clicked, this,
            [this] { handleEvent("frmLightMapParameterInput", "cmdCompute_Click", [&] { cmdCompute_Click(); }); });
    outer->addWidget(frmcmdCompute);

    frmProgress = new QWidget(this);
    frmProgress->setObjectName(QStringLiteral("frmProgress"));
    auto* progress = new QFormLayout(frmProgress);
    lblPolsProcessed = new QLabel(GetLocaleString(523), frmProgress);
    lblPolsProcessed->setObjectName(QStringLiteral("lblPolsProcessed"));
    lblPolsProcessedCount = new QLabel(QStringLiteral("0"), frmProgress);
    lblPolsProcessedCount->setObjectName(QStringLiteral("lblPolsProcessedCount"));
    lblTotalPols = new QLabel(GetLocaleString(524), frmProgress);
    lblTotalPols->setObjectName(QStringLiteral("lblTotalPols"));
    lblTotalPolsCount = new QLabel(QStringLiteral("0"), frmProgress);
    lblTotalPolsCount->setObjectName(QStringLiteral("lblTotalPolsCount"));
    ProgressBar1 = new QProgressBar(frmProgress);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    progress->addRow(lblTotalPols, lblTotalPolsCount);
    progress->addRow(lblPolsProcessed, lblPolsProcessedCount);
    progress->addRow(ProgressBar1);
    frmProgress->hide();
    outer->addWidget(frmProgress);
}

// ---- the texts and their up-downs ----------------------------------------------------------------------------

void frmLightMapParameterInput::updwnChange(QSpinBox* updown, QLineEdit* text) {
    if (m_syncing) return;
    // The text's own handler validates what the up-down wrote.
    text->setText(QString::number(updown->value()));
}

void frmLightMapParameterInput::txtChange(QLineEdit* text, QSpinBox* updown) {
    if (m_syncing || !EntriesOk()) return;
    const double v = toDouble(text->text());
    const QSignalBlocker still(updown);
    if (v >= updown->minimum() && v <= updown->maximum()) updown->setValue(int(std::nearbyint(v)));
}

bool frmLightMapParameterInput::EntriesOk() {
    const QString rate = txtSamplingRate->text(), maxSize = txtMaxSize->text(), minSize = txtMinSize->text();
    if (!numeric(rate)) return info(592), false;
    if (toDouble(rate) <= 0) return info(593), false;
    if (!numeric(maxSize)) return info(594), false;
    const double m = toDouble(maxSize);
    if (m != std::nearbyint(m)) return info(595), false;
    // The design tests the sampling rate here, not the size: it can't fail after the second test.
    if (toDouble(rate) <= 0) return info(596), false;
    if (!numeric(minSize)) return info(597), false;
    return true;
}

LightMapParams frmLightMapParameterInput::ReadParams() const {
    LightMapParams p;
    // 32-bit fields, as CLng reads them: a size beyond them is an overflow (error 6).
    p.maxSize = toLong(txtMaxSize->text());
    p.minSize = toLong(txtMinSize->text());
    p.samplingRate = toDouble(txtSamplingRate->text());
    p.rayTracing = chkRaytracing->isChecked() ? 1 : 0;
    p.mode = Option1->isChecked() ? 1 : 2;
    return p;
}

// ---- the bake ------------------------------------------------------------------------------------------------------

void frmLightMapParameterInput::cmdCompute_Click() {
    if (m_computing || !EntriesOk()) return;                                                       // 1
    const LightMapParams params = ReadParams();                                                     // 4
    std::vector<int> hidden = hideShownMarkers(2, ZELMAR_camera_get_first_camera, ZELMAR_camera_get_next_camera,
                                               ZELMAR_camera_get_save_flag);                         // 2
    const std::vector<int> lights = hideShownMarkers(4, ZELMAR_light_get_first_light, ZELMAR_light_get_next_light,
                                                     ZELMAR_light_get_save_flag);                    // 3
    hidden.insert(hidden.end(), lights.begin(), lights.end());
    try {
        ComputeLightMaps(params);                                                                   // 5
    } catch (...) {
        for (int g : hidden)
            ZELMAR_group_disable(g, 0);
        throw;
    }
    for (int g : hidden)                                                                            // 6
        ZELMAR_group_disable(g, 0);
    m_lights.UpdateCameras();
    accept();                                                                                       // 7
}

void frmLightMapParameterInput::ComputeLightMaps(const LightMapParams& params) {
    frmProgress->show();                                                                            // 1
    frmParam->hide();
    frmcmdCompute->hide();
    m_processed = m_made = 0;
    m_aborted = false;
    const int root = m_lights.RootGrp();
    const int total = root != 0 ? ZELMAR_group_get_number_of_polygons(root) : 0;                    // 2
    if (total <= 0) return;
    lblTotalPolsCount->setText(QString::number(total));                                             // 3
    ProgressBar1->setMaximum(total);
    ProgressBar1->setValue(0);
    lblPolsProcessedCount->setText(QStringLiteral("0"));
    std::vector<int> polygons;
    polygons.reserve(size_t(total));
    for (int p = ZELMAR_group_get_first_polygon(root); p != 0; p = ZELMAR_group_get_next_polygon(p))
        polygons.push_back(p);
    m_computing = true;                                                                             // 4
    m_abortAsked = false;
    try {
        m_made = BakeLightMaps(polygons, params, &frmLightMapParameterInput::progressStep, this);   // 5
    } catch (...) {
        m_computing = false;
        throw;
    }
    m_computing = false;                                                                            // 6
}

int frmLightMapParameterInput::progressStep(int done, int total, void* self) {
    return static_cast<frmLightMapParameterInput*>(self)->onProgress(done, total);
}

int frmLightMapParameterInput::onProgress(int done, int total) {
    m_processed = done;
    lblPolsProcessedCount->setText(QString::number(done));
    ProgressBar1->setValue(done);
    if (AfterPolygon) AfterPolygon(done, total);
    // Escape and the close box reach the form here, between polygons.
    QCoreApplication::processEvents();
    if (!m_abortAsked || done >= total) return 0;
    const MsgResult r = dialogs().msgBox(
        QStringLiteral("Lightmap creation has not completed. Do you wish to abort?"), MsgYesNo, MsgQuestion);
    if (r == vbYes) {
        m_aborted = true;
        return 1;
    }
    m_abortAsked = false;
    return 0;
}

void frmLightMapParameterInput::keyPressEvent(QKeyEvent* e) {
    if (e->key() == Qt::Key_Escape) {
        if (m_computing)
            m_abortAsked = true;
        else
            reject();
        return;
    }
    QDialog::keyPressEvent(e);
}

void frmLightMapParameterInput::closeEvent(QCloseEvent* e) {
    if (m_computing) {
        // The loop asks at the next polygon; the form stays until it ends.
        m_abortAsked = true;
        e->ignore();
        return;
    }
    QDialog::closeEvent(e);
}

void CreateLightMaps(LightController& lights, QWidget* parent) {
    if (!lights.WorldOpen()) return;
    frmLightMapParameterInput form(lights, parent);
    dialogs().exec(form);
}

} // namespace vexil
