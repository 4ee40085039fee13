#include "BackgroundPanel.h"

#include "TracksHost.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "undo/ActionRenameEntity.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "document/WorkspaceTrees.h"

#include <zelmar/zelmar.h>

#include <QEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vexil {

QString GetOpenedBitmapFile() {
    return dialogs().getOpenFileName(GetLocaleString(205), QString(),
                                     QStringLiteral("Bitmaps (*.bmp *.jpg *.jpeg *.png *.tga);;All files (*)"));
}

BackgroundPanel::BackgroundPanel(TracksHost& host, QWidget* parent) : QWidget(parent), m_host(host) {
    setObjectName(QStringLiteral("frmBackground"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 4, 4, 4);
    static const char* const names[FieldCount] = {"txtBkgName", "txtBkgBottom", "txtBkgBottomInt", "txtBkgDist",
                                                  "txtBkgIntStp"};
    static const int captions[FieldCount] = {178, 207, 206, 209, 208};
    int row = 0;
    for (int f = 0; f < FieldCount; ++f) {
        txt[size_t(f)] = new QLineEdit(this);
        txt[size_t(f)]->setObjectName(QLatin1String(names[f]));
        txt[size_t(f)]->installEventFilter(this);
        grid->addWidget(new QLabel(GetLocaleString(captions[f]), this), row, 0);
        grid->addWidget(txt[size_t(f)], row, 1, 1, 2);
        connect(txt[size_t(f)], &QLineEdit::textEdited, this, [this, f] { txtBkg_Change(f); });
        ++row;
        if (f == Name) {
            txtBkgMap = new QLineEdit(this);
            txtBkgMap->setObjectName(QStringLiteral("txtBkgMap"));
            txtBkgMap->setReadOnly(true);
            cmbBkgMap = new QPushButton(QStringLiteral("..."), this);
            cmbBkgMap->setObjectName(QStringLiteral("cmbBkgMap"));
            grid->addWidget(new QLabel(GetLocaleString(205), this), row, 0);
            grid->addWidget(txtBkgMap, row, 1);
            grid->addWidget(cmbBkgMap, row, 2);
            ++row;
        }
    }
    grid->setRowStretch(row, 1);
    connect(cmbBkgMap, &QPushButton::clicked, this,
            [this] { handleEvent("Form1", "cmbBkgMap_Click", [&] { cmbBkgMap_Click(); }); });
}

bool BackgroundPanel::eventFilter(QObject* watched, QEvent* e) {
    for (int f = 0; f < FieldCount; ++f) {
        if (watched != txt[size_t(f)]) continue;
        if (e->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(e)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                handleEvent("Form1", "txtBkg_KeyPress", [&] { txtBkg_Enter(f); });
                return true;
            }
        } else if (e->type() == QEvent::FocusOut) {
            handleEvent("Form1", "txtBkg_LostFocus", [&] { txtBkg_LostFocus(f); });
        }
    }
    return QWidget::eventFilter(watched, e);
}

QString BackgroundPanel::engineText(int field) const {
    const int b = m_background;
    switch (field) {
    case Name: return QString::fromLocal8Bit(EntityName(b).c_str());
    case Bottom: return NumText(ZELMAR_background_get_bottom(b));
    case BottomInt: return NumText(ZELMAR_background_get_bottom_intensity(b));
    case Dist: return NumText(ZELMAR_background_get_distance(b));
    case IntStp: return NumText(ZELMAR_background_get_intensity_step(b));
    default: return {};
    }
}

void BackgroundPanel::mark(int field, bool on) {
    QLineEdit* t = txt[size_t(field)];
    t->setProperty("changed", on);
    // The highlighted state of a box that holds an entry not yet stored.
    t->setStyleSheet(on ? QStringLiteral("QLineEdit { background: #fff3c4; }") : QString());
}

bool BackgroundPanel::Marked(int field) const { return txt[size_t(field)]->property("changed").toBool(); }

void BackgroundPanel::SetBackGndFrame(int background) {
    m_background = background;
    if (background == 0) return;
    m_guard = true;
    for (int f = 0; f < FieldCount; ++f) {
        txt[size_t(f)]->setText(engineText(f));
        mark(f, false);
    }
    // The map's name is cut at its first NUL.
    const int bitmap = ZELMAR_background_get_bitmap(background);
    const std::string name = bitmap ? EntityName(bitmap) : std::string();
    txtBkgMap->setText(QString::fromLocal8Bit(name.c_str()));
    m_guard = false;
}

void BackgroundPanel::txtBkg_Change(int field) {
    if (!m_guard) mark(field, true);
}

void BackgroundPanel::txtBkg_Enter(int field) {
    const int b = m_background;
    if (b == 0) return;
    const QString t = txt[size_t(field)]->text();
    if (field == Name) {
        const std::string newName = t.toLocal8Bit().toStdString();
        const std::string old = EntityName(b);
        if (newName.empty() || newName == old) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity);
        if (auto* a = env->As<ActionRenameEntity>()) {
            a->SetEntityRenamed(EntityBackground, b);
            a->SetPrevName(old);
            a->SetNewName(newName);
        }
        SetEngineEntityName(EntityBackground, b, newName);
        if (trwCamTrackBK* tree = m_host.CamTrackBkTree())
            tree->SetNodeText(QStringLiteral("Background") + QString::number(b), t);
        m_host.UndoStack().Push(env);
    } else {
        if (!IsNumeric(t)) return; // not a number: ignored
        const double v = t.toDouble();
        switch (field) {
        case Bottom: ZELMAR_background_set_bottom(b, v); break;
        case BottomInt: ZELMAR_background_set_bottom_intensity(b, v); break;
        case Dist: ZELMAR_background_set_distance(b, v); break;
        case IntStp: ZELMAR_background_set_intensity_step(b, v); break;
        default: break;
        }
    }
    mark(field, false);
    if (Committed) Committed();
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

void BackgroundPanel::txtBkg_LostFocus(int field) {
    if (m_background == 0) return;
    m_guard = true;
    txt[size_t(field)]->setText(engineText(field));
    m_guard = false;
    mark(field, false);
}

void BackgroundPanel::cmbBkgMap_Click() {
    if (m_background == 0) return;
    const QString path = GetOpenedBitmapFile();
    if (path.isEmpty()) return;
    const int bitmap = ZELMAR_bitmap_load(path.toLocal8Bit().constData(), -1);
    if (bitmap == 0) {
        dialogs().msgBox(GetLocaleString(574), MsgOKOnly, MsgExclamation);
        return;
    }
    txtBkgMap->setText(path);
    ZELMAR_background_set_bitmap(m_background, bitmap);
    if (frmPicWins* v = m_host.Views()) v->UpdateCameras();
}

} // namespace vexil
