// Form1: the host of the materials (texture list, polygon panel, texture map editor, dialogs).
#include "Form1_Materials.h"

#include "Form1.h"
#include "Form1_Selection.h"
#include "Form1_Tracks.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "materials/MaterialsActions.h"
#include "materials/MaterialsHost.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/TexturePanel.h"
#include "materials/formGrpProperties.h"
#include "materials/frmTextureMapping.h"
#include "selection/SelectionModel.h"
#include "tracks/TracksController.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QTabWidget>
#include <memory>
#include <zelmar/zelmar.h>

namespace vexil {
namespace {

class Form1MaterialsHost : public MaterialsHost {
  public:
    explicit Form1MaterialsHost(Form1& f) : m_f(f) {}
    ActionUndoRedo_Stack* UndoStack() override { return m_f.UndoStackPtr(); }
    QWidget* MainWindow() override { return &m_f; }
    void UpdateCameras() override { m_f.UpdateCameras(); }
    QString BitmapFolder() override {
        const WorldDocument* doc = m_f.Document();
        if (!doc || !QFileInfo(doc->WorldFileName).isAbsolute()) return {};
        return QFileInfo(doc->WorldFileName).absolutePath() + QStringLiteral("/bitmaps");
    }
    bool TextureTabShowing() override { return m_f.tabWorkspace->currentIndex() == Form1::TabTexture; }
    bool PolygonEditLevel() override { return m_f.cmbObjEditGeom->currentText() == GetLocaleString(329); }
    void RemoveBackgroundNode(int background) override {
        if (m_f.CamTrackBkTree) m_f.CamTrackBkTree->RemoveNode(QStringLiteral("Background") + QString::number(background));
    }
    void MainUndo() override { m_f.mnuUndo_Click(); }
    void MainRedo() override { m_f.mnuRedo_Click(); }
    void SelectionChanged() override {
        if (SelectionModel* m = FormSelection()) m->ThingsToDoOnSelectedEntityChange();
    }
    QString RenameGroup(int group, const QString& name) override {
        QTreeWidgetItem* node = m_f.GroupTree ? m_f.GroupTree->Node(QStringLiteral("Group") + QString::number(group)) : nullptr;
        if (node) m_f.GroupTree->trwGroupView_AfterLabelEdit(node, name);
        return QString::fromLocal8Bit(EntityName(group).c_str());
    }

    bool EditChase(int group) override {
        if (!FormTracks()) return false;
        FormTracks()->EditChaseOf(1, group);
        return true;
    }

  private:
    Form1& m_f;
};

std::unique_ptr<Form1MaterialsHost> g_host;

} // namespace

void InstallMaterials(Form1& f) {
    g_host = std::make_unique<Form1MaterialsHost>(f);
    setMaterialsHost(g_host.get());
    RegisterMaterialsActions();
    if (f.frmTexture)
        f.frmTexture->SetMenu(f.mnuTexture, f.mnuTextureNew, f.mnuTextureEdit, f.mnuTextureUpdate, f.mnuTextureDelete);
    for (QAction* a : {f.mnuGrpProperties, f.mnuGroupMenuProperties})
        if (a)
            QObject::connect(a, &QAction::triggered, &f, [&f] {
                handleEvent("Form1", "mnuGrpProperties_Click", [&] { f.mnuGrpProperties_Click(); });
            });
}

void ReleaseMaterials() {
    if (&materialsHost() == g_host.get()) setMaterialsHost(nullptr);
    g_host.reset();
}

// ---- Form1 ---------------------------------------------------------------------------------------------

void Form1::mnuGrpProperties_Click() {
    if (CurrSelEntityType() != 1 || !ZELMAR_group_is_group(CurrSelEntity())) {
        dialogs().msgBox(GetLocaleString(382), MsgOKOnly, MsgInformation);
        return;
    }
    formGrpProperties form(CurrSelEntity(), this);
    dialogs().exec(form);
}

void Form1::PopulateTextureTree() {
    if (frmTexture) frmTexture->trwTextures_Populate();
}

void Form1::UnloadTextureMapping() {
    if (frmTexture) frmTexture->UnloadTextureMapping();
}

void Form1::RefreshTextureMapping() {
    if (frmTexture && frmTexture->TextureMapping()) frmTexture->TextureMapping()->Redraw();
}

} // namespace vexil
