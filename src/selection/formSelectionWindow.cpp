#include "formSelectionWindow.h"

#include "SelectionModel.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {
constexpr int KindRole = Qt::UserRole;
constexpr int HandleRole = Qt::UserRole + 1;

} // namespace

formSelectionWindow::formSelectionWindow(SelectionModel& model, QWidget* parent)
    : QDialog(parent), m_model(model) {
    setObjectName(QStringLiteral("formSelectionWindow"));
    setWindowTitle(GetLocaleString(493));
    auto* v = new QVBoxLayout(this);
    auto* kinds = new QHBoxLayout;
    chkGroups = new QCheckBox(GetLocaleString(214), this);
    chkGroups->setObjectName(QStringLiteral("chkGroups"));
    chkCams = new QCheckBox(GetLocaleString(497), this);
    chkCams->setObjectName(QStringLiteral("chkCams"));
    chkLights = new QCheckBox(GetLocaleString(496), this);
    chkLights->setObjectName(QStringLiteral("chkLights"));
    kinds->addWidget(chkGroups);
    kinds->addWidget(chkCams);
    kinds->addWidget(chkLights);
    v->addLayout(kinds);
    lstSelection = new QListWidget(this);
    lstSelection->setObjectName(QStringLiteral("lstSelection"));
    v->addWidget(lstSelection, 1);
    auto* buttons = new QHBoxLayout;
    cmdAll = new QPushButton(GetLocaleString(494), this);
    cmdAll->setObjectName(QStringLiteral("cmdAll"));
    cmdNone = new QPushButton(GetLocaleString(495), this);
    cmdNone->setObjectName(QStringLiteral("cmdNone"));
    cmdOk = new QPushButton(GetLocaleString(414), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    cmdCancel = new QPushButton(GetLocaleString(425), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    for (QPushButton* b : {cmdAll, cmdNone, cmdOk, cmdCancel})
        buttons->addWidget(b);
    v->addLayout(buttons);
    cmdOk->setDefault(true);
    cmdOk->setAutoDefault(true);
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(cmdAll, &QPushButton::clicked, this, [this] { lstSelection->selectAll(); });
    connect(cmdNone, &QPushButton::clicked, this, [this] { lstSelection->clearSelection(); });
    for (QCheckBox* c : {chkGroups, chkCams, chkLights})
        connect(c, &QCheckBox::toggled, this, [this] { FillList(); });
    resize(300, 380);
}

void formSelectionWindow::SetSelectionType(bool groups, bool cams, bool lights, bool kindsEditable,
                                           Action action, bool multiSelect) {
    m_action = action;
    for (QCheckBox* c : {chkGroups, chkCams, chkLights})
        c->blockSignals(true);
    chkGroups->setChecked(groups);
    chkCams->setChecked(cams);
    chkLights->setChecked(lights);
    for (QCheckBox* c : {chkGroups, chkCams, chkLights}) {
        c->setEnabled(kindsEditable);
        c->blockSignals(false);
    }
    lstSelection->setSelectionMode(multiSelect ? QAbstractItemView::MultiSelection
                                               : QAbstractItemView::SingleSelection);
    cmdAll->setEnabled(multiSelect);
    cmdNone->setEnabled(multiSelect);
    FillList();
}

void formSelectionWindow::FillList() {
    const auto chosen = Chosen();
    lstSelection->clear();
    auto add = [this](int kind, int handle) {
        auto* item = new QListWidgetItem(QString::fromLocal8Bit(EntityName(handle).c_str()), lstSelection);
        item->setData(KindRole, kind);
        item->setData(HandleRole, handle);
    };
    if (chkCams->isChecked())
        for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
            if (ZELMAR_camera_get_save_flag(c) == 1 && !m_model.IsCamHidden(c)) add(2, c);
    if (chkLights->isChecked())
        for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
            if (ZELMAR_light_get_save_flag(l) == 1 && !m_model.IsLightHidden(l)) add(4, l);
    if (chkGroups->isChecked()) {
        if (trwGroupView* tree = m_model.Host().GroupTree()) {
            // A new selection takes top-level groups that are shown; any group can take others under it.
            for (QTreeWidgetItemIterator it(tree); *it; ++it) {
                const QString key = WorkspaceTree::NodeKey(*it);
                if (!key.startsWith(QLatin1String("Group"))) continue;
                const bool topLevel =
                    (*it)->parent() && WorkspaceTree::NodeKey((*it)->parent()) == QLatin1String("WORLD");
                if (m_action == SelectMultiple &&
                    (!topLevel || WorkspaceTree::NodeImage(*it) == QLatin1String("Group Invisible")))
                    continue;
                add(1, key.mid(5).toInt());
            }
        }
    }
    for (int i = 0; i < lstSelection->count(); ++i) {
        QListWidgetItem* item = lstSelection->item(i);
        const std::pair<int, int> k{item->data(KindRole).toInt(), item->data(HandleRole).toInt()};
        if (std::find(chosen.begin(), chosen.end(), k) != chosen.end()) item->setSelected(true);
    }
}

std::vector<std::pair<int, int>> formSelectionWindow::Chosen() const {
    std::vector<std::pair<int, int>> out;
    for (int i = 0; i < lstSelection->count(); ++i) {
        QListWidgetItem* item = lstSelection->item(i);
        if (item->isSelected())
            out.emplace_back(item->data(KindRole).toInt(), item->data(HandleRole).toInt());
    }
    return out;
}

void formSelectionWindow::MarkCurrentSelection() {
    const SelectionState& s = Sel();
    for (int i = 0; i < lstSelection->count(); ++i) {
        QListWidgetItem* item = lstSelection->item(i);
        const int kind = item->data(KindRole).toInt(), h = item->data(HandleRole).toInt();
        bool on = false;
        if (s.CurrSelEntityType == 6)
            on = (kind == 1 && s.MultiSel.HasGrp(h)) || (kind == 2 && s.MultiSel.HasCam(h)) ||
                 (kind == 4 && s.MultiSel.HasLight(h));
        else
            on = kind == s.CurrSelEntityType && h == s.CurrSelEntity;
        item->setSelected(on);
    }
}

// ---- the model's side ---------------------------------------------------------------------------

void SelectionModel::ShowSelectionWindow() {
    if (!m_host.WorldOpen()) return;
    formSelectionWindow w(*this, dialogs().parentWindow);
    w.SetSelectionType(true, true, true, true, formSelectionWindow::SelectMultiple, true);
    w.MarkCurrentSelection();
    if (dialogs().exec(w) != QDialog::Accepted) return;
    SelectMultiple(w.Chosen());
}

void SelectionModel::SelectMultiple(const std::vector<std::pair<int, int>>& items) {
    SelectionState& s = Sel();
    SetPrevSelEntityToCurrSelEntity();
    if (items.empty()) {
        s.CurrSelEntityType = 0;
    } else {
        s.MultiSel.Reset();
        for (const auto& [kind, h] : items) {
            if (kind == 1)
                s.MultiSel.AddGrpHandles(h);
            else if (kind == 2)
                s.MultiSel.AddCamHandles(h);
            else if (kind == 4)
                s.MultiSel.AddLightHandles(h);
        }
        SettleCurrentEntity();
    }
    ThingsToDoOnSelectedEntityChange();
    PushSelectIfChanged();
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

int SelectionModel::ChooseViewCamera() {
    formSelectionWindow w(*this, dialogs().parentWindow);
    w.SetSelectionType(false, true, false, false, formSelectionWindow::SetWinViewNewCam, false);
    if (dialogs().exec(w) != QDialog::Accepted) return 0;
    const auto chosen = w.Chosen();
    return chosen.empty() ? 0 : chosen.front().second;
}

int SelectionModel::ChooseGroupToAttach() {
    formSelectionWindow w(*this, dialogs().parentWindow);
    w.SetSelectionType(true, false, false, false, formSelectionWindow::AttachSelectionToGrp, false);
    if (dialogs().exec(w) != QDialog::Accepted) return 0;
    const auto chosen = w.Chosen();
    return chosen.empty() ? 0 : chosen.front().second;
}

} // namespace vexil
