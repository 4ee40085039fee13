#include "EntityCreation.h"

#include "TracksHost.h"
#include "document/WorkspaceTrees.h"
#include "engine/EntityNaming.h"
#include "selection/ActionDeleteCreate.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"

namespace vexil {

namespace {

QString folderOf(int kind) {
    switch (kind) {
    case 2: return QStringLiteral("CAMERA");
    case 3: return QStringLiteral("TRACK");
    case 5: return QStringLiteral("BACKGROUND");
    default: return {};
    }
}

QString imageOf(int kind) {
    switch (kind) {
    case 2: return QStringLiteral("Cam");
    case 3: return QStringLiteral("Track");
    default: return QStringLiteral("Background");
    }
}

} // namespace

QString CamTrackBkKey(int kind, int handle) {
    switch (kind) {
    case 2: return QStringLiteral("Camera") + QString::number(handle);
    case 3: return QStringLiteral("Track") + QString::number(handle);
    case 5: return QStringLiteral("Background") + QString::number(handle);
    default: return {};
    }
}

void AddCamTrackBkNode(TracksHost& host, int kind, int handle) {
    trwCamTrackBK* tree = host.CamTrackBkTree();
    if (!tree || folderOf(kind).isEmpty()) return;
    tree->RemoveNode(CamTrackBkKey(kind, handle));
    tree->AddNode(folderOf(kind), CamTrackBkKey(kind, handle), QString::fromLocal8Bit(EntityName(handle).c_str()),
                  imageOf(kind));
    // A folder that has children again shows as open.
    if (QTreeWidgetItem* folder = tree->Node(folderOf(kind))) folder->setExpanded(true);
}

void RemoveCamTrackBkNode(TracksHost& host, int kind, int handle) {
    if (trwCamTrackBK* tree = host.CamTrackBkTree()) tree->RemoveNode(CamTrackBkKey(kind, handle));
}

void AnnounceCreatedEntity(TracksHost& host, int kind, int handle) {
    AddCamTrackBkNode(host, kind, handle);
    if (SelectionModel* m = host.Selection()) {
        m->SetPrevSelEntityToCurrSelEntity();
        Sel().CurrSelEntityType = kind;
        Sel().CurrSelEntity = handle;
        m->ThingsToDoOnSelectedEntityChange();
    }
    if (frmPicWins* v = host.Views()) v->UpdateCameras();
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionCreate);
    if (auto* a = env->As<ActionCreate>()) a->SetCreatedEntity(kind, handle);
    host.UndoStack().Push(env);
}

} // namespace vexil
