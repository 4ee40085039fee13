#include "ObjectToolDialogs.h"

#include "ObjectTools.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/SelectionModel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QImage>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

QFormLayout* frame(QDialog* d, const char* name, int titleId) {
    d->setObjectName(QString::fromLatin1(name));
    d->setWindowTitle(GetLocaleString(titleId));
    auto* col = new QVBoxLayout(d);
    auto* form = new QFormLayout;
    col->addLayout(form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, d);
    buttons->button(QDialogButtonBox::Ok)->setText(GetLocaleString(424));
    buttons->button(QDialogButtonBox::Cancel)->setText(GetLocaleString(425));
    QObject::connect(buttons, &QDialogButtonBox::accepted, d, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, d, &QDialog::reject);
    col->addWidget(buttons);
    return form;
}

QDoubleSpinBox* number(QWidget* parent, double lo, double hi, double value) {
    auto* s = new QDoubleSpinBox(parent);
    s->setRange(lo, hi);
    s->setDecimals(3);
    s->setValue(value);
    return s;
}

QComboBox* axes(QWidget* parent, int chosen) {
    auto* c = new QComboBox(parent);
    c->addItems({GetLocaleString(143), GetLocaleString(142), GetLocaleString(141)}); // X, Y, Z
    c->setCurrentIndex(chosen);
    return c;
}

std::vector<int> selectedGroups() {
    SelectionModel* m = selectionModel();
    return m ? m->SelectedGroups() : std::vector<int>{};
}

bool needGroup(const std::vector<int>& groups) {
    if (!groups.empty()) return true;
    dialogs().msgBox(GetLocaleString(357), MsgOKOnly, MsgInformation); // "No group selected"
    return false;
}

} // namespace

formMirror::formMirror(QWidget* parent) : QDialog(parent) {
    QFormLayout* f = frame(this, "formMirror", 478);
    cmbAxis = new QComboBox(this);
    cmbAxis->addItems({GetLocaleString(143), GetLocaleString(142), GetLocaleString(141), GetLocaleString(484),
                       GetLocaleString(483), GetLocaleString(482), GetLocaleString(480)});
    chkCopy = new QCheckBox(GetLocaleString(481), this);
    f->addRow(GetLocaleString(479), cmbAxis);
    f->addRow(chkCopy);
}

formDuplicate::formDuplicate(QWidget* parent) : QDialog(parent) {
    QFormLayout* f = frame(this, "formDuplicate", 467);
    spnCount = new QSpinBox(this);
    spnCount->setRange(1, 100);
    f->addRow(GetLocaleString(468), spnCount);
    const int ids[3] = {143, 142, 141};
    for (int k = 0; k < 3; ++k) {
        spnOffset[size_t(k)] = number(this, -1e7, 1e7, k == 0 ? 100.0 : 0.0);
        f->addRow(GetLocaleString(469) + QLatin1Char(' ') + GetLocaleString(ids[k]), spnOffset[size_t(k)]);
    }
}

formAlign::formAlign(QWidget* parent) : QDialog(parent) {
    QFormLayout* f = frame(this, "formAlign", 112);
    for (int k = 0; k < 3; ++k) {
        chkAxis[size_t(k)] = new QCheckBox(GetLocaleString(415 + k), this);
        chkAxis[size_t(k)]->setChecked(true);
        f->addRow(chkAxis[size_t(k)]);
    }
    cmbMode = new QComboBox(this);
    cmbMode->addItems({GetLocaleString(420), GetLocaleString(421), GetLocaleString(422), GetLocaleString(423)});
    cmbMode->setCurrentIndex(1);
    f->addRow(GetLocaleString(419), cmbMode);
}

formBend::formBend(QWidget* parent) : QDialog(parent) {
    QFormLayout* f = frame(this, "formBend", 398);
    cmbAlong = axes(this, 2);
    cmbDirection = axes(this, 0);
    spnAngle = number(this, -360, 360, 45);
    f->addRow(GetLocaleString(556), cmbAlong);
    f->addRow(GetLocaleString(557), cmbDirection);
    f->addRow(GetLocaleString(559), spnAngle);
}

formDisplace::formDisplace(QWidget* parent) : QDialog(parent) {
    QFormLayout* f = frame(this, "formDisplace", 463);
    cmbSource = new QComboBox(this);
    cmbSource->addItems({QStringLiteral("Noise"), GetLocaleString(465)});
    txtBitmap = new QLineEdit(this);
    spnStrength = number(this, -1e6, 1e6, 10);
    f->addRow(GetLocaleString(464), cmbSource);
    f->addRow(GetLocaleString(465), txtBitmap);
    f->addRow(GetLocaleString(466), spnStrength);
}

void MirrorObjects() {
    const std::vector<int> groups = selectedGroups();
    if (!needGroup(groups)) return;
    formMirror form(dialogs().parentWindow);
    if (dialogs().exec(form) != QDialog::Accepted) return;
    static const double table[7][3] = {{-1, 1, 1}, {1, -1, 1}, {1, 1, -1}, {-1, -1, 1},
                                       {1, -1, -1}, {-1, 1, -1}, {-1, -1, -1}};
    const double* t = table[std::clamp(form.cmbAxis->currentIndex(), 0, 6)];
    MirrorGroupCommand(groups.front(), {t[0], t[1], t[2]}, form.chkCopy->isChecked());
}

void DuplicatGrp() {
    const std::vector<int> groups = selectedGroups();
    if (!needGroup(groups)) return;
    formDuplicate form(dialogs().parentWindow);
    if (dialogs().exec(form) != QDialog::Accepted) return;
    DuplicateGroups(groups, form.spnCount->value(),
                    {form.spnOffset[0]->value(), form.spnOffset[1]->value(), form.spnOffset[2]->value()});
}

void BendGrp() {
    const std::vector<int> groups = selectedGroups();
    if (!needGroup(groups)) return;
    formBend form(dialogs().parentWindow);
    if (dialogs().exec(form) != QDialog::Accepted) return;
    const int along = form.cmbAlong->currentIndex(), dir = form.cmbDirection->currentIndex();
    if (along == dir) {
        dialogs().msgBox(QStringLiteral("Bend: the bend direction must differ from the axis bent along."),
                         MsgOKOnly, MsgExclamation);
        return;
    }
    if (!BendGroupCommand(groups.front(), along, dir, form.spnAngle->value()))
        dialogs().msgBox(QStringLiteral("Bend: the group has no extent along that axis, or the angle is 0."),
                         MsgOKOnly, MsgInformation);
}

void DisplaceGrp() {
    const std::vector<int> groups = selectedGroups();
    if (!needGroup(groups)) return;
    formDisplace form(dialogs().parentWindow);
    if (dialogs().exec(form) != QDialog::Accepted) return;
    const double strength = form.spnStrength->value();
    if (form.cmbSource->currentIndex() == 0) {
        double box[6];
        ZELMAR_group_get_bounding_box(groups.front(), box);
        const double size = std::max({box[3] - box[0], box[4] - box[1], box[5] - box[2], 1e-9});
        DisplaceGroupCommand(groups.front(), strength,
                             [size](const double xyz[3], double, double) { return ValueNoise(xyz, size / 4, 1u); });
        return;
    }
    const QImage image(form.txtBitmap->text());
    if (image.isNull()) {
        dialogs().msgBox(GetLocaleString(574) + QStringLiteral(" ") + form.txtBitmap->text(), MsgOKOnly,
                         MsgExclamation); // "Failed Loading Bitmap."
        return;
    }
    const QImage gray = image.convertToFormat(QImage::Format_Grayscale8);
    DisplaceGroupCommand(groups.front(), strength, [gray](const double*, double u, double v) {
        const double fu = u - std::floor(u), fv = v - std::floor(v);
        const int x = std::clamp(int(fu * gray.width()), 0, gray.width() - 1);
        const int y = std::clamp(int(fv * gray.height()), 0, gray.height() - 1);
        return gray.pixelColor(x, y).valueF();
    });
}

void AlignObjectsTo(int target) {
    const std::vector<int> groups = selectedGroups();
    if (!needGroup(groups) || target == 0) return;
    formAlign form(dialogs().parentWindow);
    if (dialogs().exec(form) != QDialog::Accepted) return;
    const int mode = form.cmbMode->currentIndex() + 1;
    std::array<int, 3> modes{};
    for (size_t k = 0; k < 3; ++k)
        modes[k] = form.chkAxis[k]->isChecked() ? mode : 0;
    AlignGroups(groups, target, modes);
}

} // namespace vexil
