// World documents. Each procedure follows the documented steps in order; the step numbers are in
// the comments.
#include "WorldDocument.h"

#include "DocumentHost.h"
#include "engine/EntityNaming.h"
#include "GroupHierarchy.h"
#include "WorkspaceTrees.h"
#include "frame/AppPaths.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "frame/Locale.h"
#include "frame/mdlFileFunctions.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace vexil {

using mdlFileFunctions::GetFileName;
using mdlFileFunctions::GetFolder;
using mdlFileFunctions::MoveFileReplace;
using mdlFileFunctions::MoveFolderFiles;

namespace {

QByteArray ansi(const QString& s) { return s.toLocal8Bit(); }

void logWarning(const QString& text) { AppLog().LogEvent(text, LogWarning); }

// The engine's explanation of its last failure, for the log.
QString engineLastError() {
    const char* e = ZELMAR_engine_get_last_error();
    return e ? QString::fromLocal8Bit(e) : QString();
}

// A sub-folder named like `name` without regard to letter case (as the Windows file system
// matched it); the literal name when none exists.
QString folderIgnoringCase(const QString& parent, const QString& name) {
    const QString literal = parent + '/' + name;
    if (QFileInfo(literal).isDir()) return literal;
    const QDir dir(parent);
    for (const QString& entry : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden))
        if (entry.compare(name, Qt::CaseInsensitive) == 0) return parent + '/' + entry;
    return literal;
}

} // namespace

QString LoadFailureText(const QString& path, const QString& reason) {
    QString text = GetLocaleString(321) + QStringLiteral("\n\n") + path;
    if (!reason.isEmpty()) text += QStringLiteral("\n\n") + reason;
    return text;
}

WorldDocument::WorldDocument(DocumentHost& host) : m_host(host) { DisabledGroupsAtSave.resize(1); }

WorldDocument::~WorldDocument() = default;

void WorldDocument::AttachTrees(trwGroupView* groups, trwCamTrackBK* camTrackBk, trwLight* lights) {
    m_groupTree = groups;
    m_camTree = camTrackBk;
    m_lightTree = lights;
    for (WorkspaceTree* t : {static_cast<WorkspaceTree*>(groups), static_cast<WorkspaceTree*>(camTrackBk),
                             static_cast<WorkspaceTree*>(lights)})
        if (t) t->SetDocument(this);
}

QString WorldDocument::ApplicationFolder() const { return m_appFolder.isEmpty() ? AppFolder() : m_appFolder; }

QString WorldDocument::ProgramFolder() const {
    if (!m_programFolder.isEmpty()) return m_programFolder;
    if (QCoreApplication::instance()) return QCoreApplication::applicationDirPath();
    return AppFolder();
}

QString WorldDocument::OpenFilter() {
    // UI string 320 with every type the engine reads, then each type labelled with its own pattern.
    return GetLocaleString(320) + QStringLiteral(" (*.wld *.tolvane *.zelmar *.3dzelmar *.x);;*.wld (*.wld);;"
                                                 "*.tolvane (*.tolvane);;*.zelmar (*.zelmar);;*.3dzelmar (*.3dzelmar)");
}

QString WorldDocument::SaveFilter() {
    return QStringLiteral("*.wld (*.wld);;*.tolvane (*.tolvane);;*.zelmar (*.zelmar);;*.3dzelmar (*.3dzelmar)");
}

QString WorldDocument::WithWorldExtension(const QString& path, const QString& chosenFilter) {
    if (path.isEmpty()) return path;
    static const QStringList known = {QStringLiteral("wld"), QStringLiteral("tolvane"), QStringLiteral("zelmar"),
                                      QStringLiteral("3dzelmar")};
    // A name with an extension of its own keeps it; a name without one gets the extension of the chosen
    // type (".wld" when the dialog did not say which), as the dialog's default extension did.
    if (!QFileInfo(path).suffix().isEmpty()) return path;
    QString ext = QStringLiteral("wld");
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("\\*\\.([A-Za-z0-9]+)\\)")).match(chosenFilter);
    if (m.hasMatch() && known.contains(m.captured(1), Qt::CaseInsensitive)) ext = m.captured(1).toLower();
    return path + QLatin1Char('.') + ext;
}

QString WorldDocument::GetOpenedFile() { return dialogs().getOpenFileName(GetLocaleString(101), QString(), OpenFilter()); }

QString WorldDocument::GetSaveAsFile() {
    QString chosen;
    const QString path = dialogs().getSaveFileNameAndFilter(GetLocaleString(331), WorldFileName, SaveFilter(), &chosen);
    return WithWorldExtension(path, chosen);
}

// ---- asking to save ----------------------------------------------------------------------------------------

bool WorldDocument::AskToSave() {
    ActionUndoRedo_Stack& stack = m_host.UndoStack();
    if (!stack.SaveRequired()) return true;
    const MsgResult r = dialogs().msgBox(GetLocaleString(332), MsgYesNoCancel, MsgQuestion);
    if (r == vbYes) {
        mnuSave_Click();
        return !stack.SaveRequired();  // the user cancelled the file dialog: stop
    }
    return r != vbCancel;
}

// ---- new, load ----------------------------------------------------------------------------------------------

void WorldDocument::releaseCard3DToggle(bool& wasPressed) {
    wasPressed = m_host.Is3DCardTogglePressed();
    if (wasPressed) m_host.Set3DCardTogglePressed(false);
}

void WorldDocument::PopulateTrees() {
    // NewWorld steps 12 to 14.
    if (m_camTree) {
        m_camTree->trwCamTrackBK_Populate();
        for (int i = 1; i <= 3; ++i)
            if (QTreeWidgetItem* n = m_camTree->FolderNode(i); n && n->isExpanded()) m_camTree->trwCamTrackBK_Collapse(n);
    }
    if (m_groupTree) m_groupTree->trwGroupView_Populate();
    if (m_lightTree) {
        m_lightTree->trwLight_Populate();
        if (QTreeWidgetItem* n = m_lightTree->FolderNode(); n && n->isExpanded()) m_lightTree->trwLight_Collapse(n);
    }
}

void WorldDocument::afterLoadCommon() {
    // NewWorld steps 10 to 16, as LoadWorld continues with them.
    ZELMAR_engine_set_atmospheric_effect_intensity(0.0);                  // 10
    if (m_host.Is3DCardTogglePressed()) ZELMAR_engine_use_3D_accelerator_card(1);  // 11
    PopulateTrees();                                                       // 12 to 14
    m_host.SetNewWorldCombos(GetLocaleString(322), GetLocaleString(325));  // 13
    m_host.PopulateTextureTree();                                          // 15
    // 16: the crossing of numbers and names is kept.
    m_host.SetViewportCamera(0, ZELMAR_camera_create("camera0"));
    m_host.SetViewportCamera(2, ZELMAR_camera_create("camera1"));
    m_host.SetViewportCamera(3, ZELMAR_camera_create("camera2"));
    m_host.SetViewportCamera(1, ZELMAR_camera_create("camera3"));
}

void WorldDocument::NewWorld(bool bFirstStart) {
    if (!AskToSave()) return;                                              // 1
    WorldFileName = QString::fromLatin1(UntitledName);                      // 2
    bool pressed = false;
    releaseCard3DToggle(pressed);                                          // 3
    UnloadWorld();                                                         // 4
    m_host.ResetControls();
    const int result = ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);  // 5: empties the engine
    RootGrp = ZELMAR_group_create("the_world");                            // 6
    RootGroupHandleChanged();
    if (result == -1) {                                                    // 7
        dialogs().msgBox(GetLocaleString(326), MsgOKOnly, MsgInformation);
        return;
    }
    m_host.UndoStack().SetSaveMarker();                                    // 8
    SetCaptionDash();                                                      // 9
    afterLoadCommon();                                                     // 10 to 16
    WorldSize = 1000.0;                                                    // 17
    WorldOpen = true;                                                      // 18
    UpdateStatusBar();
    m_host.ResetViews();
    if (!bFirstStart) {                                                    // 19
        m_host.ShowTemplates([this](const QString& path) { return LoadWorld(path); });
    }
    m_host.MenuUpdate();                                                   // 20
    m_host.SetWorkspaceEnabled(true);
    m_host.SetAddWorldEnabled(true);
    m_host.WorldChanged();                                                 // 21
    m_host.SetStatusPanel(3, QString());
}

bool WorldDocument::LoadWorld(const QString& path) {
    if (path.isEmpty()) return false;                                      // 1
    SetMousePtrToHourGlass(false);                                         // 2
    bool pressed = false;
    releaseCard3DToggle(pressed);                                          // 3
    UnloadWorld();                                                         // 4
    m_host.ResetControls();
    m_host.ProcessEvents();
    const QString bitmaps = GetFolder(path) + QStringLiteral("/bitmaps");
    const int result = ZELMAR_engine_load_world(ansi(path).constData(), "", ansi(bitmaps).constData(), 4);  // 5
    if (result == -1) {                                                    // 6
        const QString why = engineLastError();
        if (!why.isEmpty()) logWarning(QStringLiteral("Loading \"%1\": %2").arg(path, why));
        mnuCloseFile_Click();
        // The message says why (the engine's reason), not only that the load failed.
        dialogs().msgBox(LoadFailureText(path, why), MsgOKOnly, MsgExclamation);
        SetMousePtrToHourGlass(true);
        return false;
    }
    // A missing bitmap does not fail a load; the engine names it in its last error.
    if (const QString why = engineLastError(); !why.isEmpty()) logWarning(QStringLiteral("Loading \"%1\": %2").arg(path, why));
    m_host.UndoStack().SetSaveMarker();                                    // 7
    RootGrp = GetRootGroup();                                              // 8
    RootGroupHandleChanged();
    setAllPolygonsOrientation0(RootGrp);                                   // 9
    SetAllSaveFlags();                                                     // 10
    m_host.RefreshMarkers();  // markers of the saved cameras and lights
    WorldSize = GetWorldSize();                                            // 11
    WorldFileName = path;
    m_host.SetWindowCaption(UiAppTitle() + QStringLiteral(" [") + WorldFileName + QStringLiteral("]"));  // 12
    afterLoadCommon();                                                     // 13: NewWorld 10 to 16
    WorldOpen = true;
    UpdateStatusBar();
    m_host.ResetViews();
    m_host.MenuUpdate();
    m_host.SetWorkspaceEnabled(true);
    m_host.SetAddWorldEnabled(true);
    SetMousePtrToHourGlass(true);
    m_host.WorldChanged();
    m_host.SetStatusPanel(3, QString());
    return true;
}

void WorldDocument::LoadWorldWithOpenDialog() {
    const QString path = GetOpenedFile();
    if (LoadWorld(path)) m_host.AddMRUItem(WorldFileName);
}

void WorldDocument::setAllPolygonsOrientation0(int group) {
    if (group == 0) return;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        ZELMAR_polygon_set_orientation(p, 0);
}

int WorldDocument::GetRootGroup() {
    const int found = ZELMAR_group_get_using_name("the_world");
    if (found != 0) return found;
    // A world from elsewhere is adopted: a new root above every fatherless group.
    const int root = ZELMAR_group_create("the_world");
    std::vector<int> orphans;  // collected first, so that a moved group can't be lost by the walk
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (g != root && ZELMAR_group_get_father_group(g) == 0) orphans.push_back(g);
    for (int g : orphans) ZELMAR_group_set_father_group(g, root);
    return root;
}

void WorldDocument::RootGroupHandleChanged() {
    // Nothing in the document keeps the root's handle but RootGrp itself; the trees read it from here.
}

void WorldDocument::SetAllSaveFlags() {
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c)) ZELMAR_camera_set_save_flag(c, 1);
    for (int t = ZELMAR_track_get_first_track(); t != 0; t = ZELMAR_track_get_next(t)) ZELMAR_track_set_save_flag(t, 1);
    for (int b = ZELMAR_background_get_first_background(); b != 0; b = ZELMAR_background_get_next(b))
        ZELMAR_background_set_save_flag(b, 1);
}

double WorldDocument::GetWorldSize() {
    if (ZELMAR_group_get_number_of_polygons(RootGrp) == 0) return 10000.0;  // 1
    double box[6] = {0, 0, 0, 0, 0, 0};                                       // 2
    ZELMAR_group_get_bounding_box(RootGrp, box);
    const double dx = std::fabs(box[3] - box[0]);
    const double dy = std::fabs(box[4] - box[1]);
    const double dz = std::fabs(box[5] - box[2]);
    return std::max({dx, dy, dz});
}

// ---- add ---------------------------------------------------------------------------------------------------

void WorldDocument::AddWorld(const QString& path, const std::array<double, 3>& location) {
    m_addRefused = false;
    if (path.isEmpty()) return;                                            // 1
    SetMousePtrToHourGlass(false);                                         // 2
    if (path == WorldFileName) {                                           // 3: exact string comparison only
        m_addRefused = true;
        dialogs().msgBox(GetLocaleString(328));
        SetMousePtrToHourGlass(true);
        return;
    }
    // 4: the design passes "\Bitmaps" with a capital letter, which the Windows file system matched without
    // regard to case; so do we.
    const QString bitmaps = folderIgnoringCase(GetFolder(path), QStringLiteral("Bitmaps"));
    AddedGroup = ZELMAR_engine_add_world(ansi(path).constData(), "", ansi(bitmaps).constData(), location.data());
    if (AddedGroup == 0) {
        const QString why = engineLastError();
        if (!why.isEmpty()) logWarning(QStringLiteral("Adding \"%1\": %2").arg(path, why));
    }
    ZELMAR_group_set_location(AddedGroup, location.data());               // 5
    setAllPolygonsOrientation0(AddedGroup);                                // 6
    if (AddedGroup == 0) {                                                 // 7
        SetMousePtrToHourGlass(true);
        return;
    }
    ZELMAR_group_set_father_group(AddedGroup, RootGrp);                    // 8
    // The added root of one of our own files is a second "the_world"; names are how the tree and a later
    // load find groups, so it is named after its file instead.
    if (EntityName(AddedGroup) == "the_world") {
        const std::string base = QFileInfo(path).completeBaseName().toLocal8Bit().toStdString();
        ZELMAR_group_set_name(AddedGroup, GetNewGrpNameFrmGivenStr(base.empty() ? std::string("World") : base).c_str());
    }
    m_host.RefreshMarkers();                                               // 9
    UpdateStatusBar();
    PopulateTrees();
    m_host.PopulateTextureTree();
    WorldSize = GetWorldSize();                                            // 10
    m_host.MenuUpdate();
    SetMousePtrToHourGlass(true);
}

void WorldDocument::AddWorldWithOpenDialog() {
    const QString path = GetOpenedFile();
    if (path.isEmpty()) return;
    AddedGroup = 0;
    AddWorld(path, {0.0, 0.0, 0.0});
    if (m_addRefused) return;  // "This file is the one that is opened" has been said
    if (AddedGroup == 0) {
        dialogs().msgBox(GetLocaleString(327));
        return;
    }
    m_host.SelectAddedGroup(AddedGroup);
}

// ---- unload, close ---------------------------------------------------------------------------------------

void WorldDocument::UnloadWorld() {
    if (!WorldOpen) return;
    m_host.UnloadTextureMapping();                                         // 1
    WorldOpen = false;                                                     // 2
    m_host.UndoStack().Reset();                                            // 4: before the world goes
    m_host.ClearWorldState();                                              // 3, 4 (timer), 6, 9, 10, 11
    m_host.SetWorkspaceEnabled(false);                                     // 5
    m_host.SetWindowCaption(UiAppTitle());                                 // 7
    if (m_groupTree) m_groupTree->trwGroupView_Reset();                    // 8
    if (m_camTree) m_camTree->trwCamTrackBK_Reset();
    m_host.SetStatusPanel(1, QString());
    m_host.SetStatusPanel(2, QString());
    m_host.SetAddWorldEnabled(false);                                      // 10
}

void WorldDocument::mnuCloseFile_Click() {
    UnloadWorld();
    m_host.ClearViewports();
    m_host.MenuUpdate();
}

// ---- save ---------------------------------------------------------------------------------------------------

void WorldDocument::mnuSave_Click() {
    if (WorldFileName == QLatin1String(UntitledName))
        mnuSaveAs_Click();
    else
        ZelmarEngineSave(WorldFileName, RootGrp, SaveFlags);
}

void WorldDocument::mnuSaveAs_Click() {
    QString path;
    for (;;) {
        path = GetSaveAsFile();                                            // 1
        if (path.isEmpty()) return;
        const QFileInfo info(path);                                        // 2: files only, not folders
        if (!(info.exists() && !info.isDir())) break;
        const MsgResult r = dialogs().msgBox(GetLocaleString(334), MsgYesNoCancel);
        if (r == vbYes) break;
        if (r == vbCancel) return;
    }
    ZelmarEngineSave(path, RootGrp, SaveFlags);                            // 3
    if (LastSaveFailed) return; // said; the document keeps its name
    WorldFileName = path;                                                  // 4
    SetCaptionDash();
    m_host.AddMRUItem(WorldFileName);                                      // 5
}

void WorldDocument::ZelmarEngineSave(const QString& pathIn, int group, int flags) {
    SetMousePtrToHourGlass(false);                                         // 1
    m_host.SetStatusPanel(3, GetLocaleString(394));
    SaveWorld_PrePostProcessing(true);                                     // 2
    const QString path = QFileInfo(pathIn).absoluteFilePath();
    const QString dir = GetFolder(path);                                // 3
    const QString file = GetFileName(path);
    const QString scratch = dir + '/' + QLatin1String(ScratchFolderName);  // 4
    if (!QDir().mkdir(scratch) && !QFileInfo(scratch).isDir())
        logWarning(QStringLiteral("Saving: could not create the folder \"%1\".").arg(scratch));
    const int saved = ZELMAR_engine_save(ansi(scratch + '/' + file).constData(), group, flags);  // 5
    const QString why = saved == 0 ? engineLastError() : QString();
    if (saved == 0)
        logWarning(QStringLiteral("Saving \"%1\": the engine did not write the world: %2").arg(path, why));
    const QString bitmaps = dir + QStringLiteral("/bitmaps");             // 6
    if (!QFileInfo(bitmaps).isDir() && !QDir().mkdir(bitmaps))
        logWarning(QStringLiteral("Saving: could not create the folder \"%1\".").arg(bitmaps));
    const QString scratchBitmaps = scratch + QStringLiteral("/bitmaps");
    if (QFileInfo(scratchBitmaps).isDir()) {                               // 7
        QStringList failed;
        if (!MoveFolderFiles(scratchBitmaps, bitmaps, &failed))
            for (const QString& f : failed)
                logWarning(QStringLiteral("Saving: could not move \"%1\" to \"%2\".").arg(f, bitmaps + '/' + GetFileName(f)));
    }
    // 8: the new world takes the old one's place in one step (flushed first); the old file is never
    // deleted before, so a move that fails leaves it as it was.
    bool moved = false;
    if (saved != 0) {
        moved = MoveFileReplace(scratch + '/' + file, dir + '/' + file);
        if (!moved)
            logWarning(QStringLiteral("Saving: could not move \"%1\" to \"%2\"; it stays in the scratch folder.")
                           .arg(scratch + '/' + file, dir + '/' + file));
    }
    if (QFileInfo(scratchBitmaps).isDir() && !QDir().rmdir(scratchBitmaps))  // 9
        logWarning(QStringLiteral("Saving: could not remove the folder \"%1\".").arg(scratchBitmaps));
    if (!QDir().rmdir(scratch)) logWarning(QStringLiteral("Saving: could not remove the folder \"%1\".").arg(scratch));
    SaveWorld_PrePostProcessing(false);                                    // 10
    m_host.SetStatusPanel(3, QString());
    SetMousePtrToHourGlass(true);
    if (!moved) {
        // Not saved: the user is told why, and the world stays marked as changed.
        LastSaveFailed = true;
        dialogs().msgBox(QStringLiteral("The world was not saved to \"%1\".").arg(path) +
                             (why.isEmpty() ? QString() : QStringLiteral("\n\n") + why),
                         MsgOKOnly, MsgExclamation);
        SetCaption();
        return;
    }
    LastSaveFailed = false;
    m_host.UndoStack().SetSaveMarker();                                    // 11
    SetCaption();
}

void WorldDocument::SaveWorld_PrePostProcessing(bool bPre) {
    if (bPre) {
        DisabledGroupsAtSaveCount = 0;
        // The groups below the root, from one walk of the hierarchy (linear at any depth).
        for (int g : GroupHierarchy().Below(RootGrp)) {
            if (ZELMAR_group_is_disable(g) == 1) {
                ++DisabledGroupsAtSaveCount;
                if (static_cast<int>(DisabledGroupsAtSave.size()) <= DisabledGroupsAtSaveCount)
                    DisabledGroupsAtSave.resize(static_cast<size_t>(DisabledGroupsAtSaveCount) + 1);
                DisabledGroupsAtSave[static_cast<size_t>(DisabledGroupsAtSaveCount)] = g;
                ZELMAR_group_disable(g, 0);
            }
        }
    } else {
        for (int i = 1; i <= DisabledGroupsAtSaveCount; ++i) {
            const int g = DisabledGroupsAtSave[static_cast<size_t>(i)];
            ZELMAR_group_disable(g, 1);
            GroupHide(g);
        }
    }
}

// ---- hold, fetch, viewer ----------------------------------------------------------------------------------

void WorldDocument::mnuHold_Click() {
    ZelmarEngineSave(ApplicationFolder() + '/' + QLatin1String(HoldFileName), RootGrp, SaveFlags);
}

void WorldDocument::mnuFetch_Click() {
    const QString hold = ApplicationFolder() + '/' + QLatin1String(HoldFileName);
    if (!QFileInfo::exists(hold)) {
        dialogs().msgBox(GetLocaleString(379), MsgOKOnly, MsgInformation);
        return;
    }
    if (dialogs().msgBox(GetLocaleString(378), MsgOKCancel) != vbOK) return;
    if (!AskToSave()) return;
    LoadWorld(hold);
    WorldFileName = QString::fromLatin1(UntitledName);
    m_host.UndoStack().SetSaveMarker();
    SetCaptionDash();
}

void WorldDocument::mnuViewerMode_Click() {
    if (!WorldOpen) return;
    const QString app = ApplicationFolder();
    const QString world = app + '/' + QLatin1String(ViewerWorld);
    QDir().mkpath(GetFolder(world));  // the installation does not ship this folder
    ZelmarEngineSave(world, RootGrp, SaveFlags);
    if (LastSaveFailed) return; // said
    const QString program = ProgramFolder() + '/' + QLatin1String(ViewerProgram);
    const QFileInfo info(program);
    if (!info.exists() || !info.isExecutable()) {
        dialogs().msgBox(QStringLiteral("The viewer \"%1\" was not found. The world was saved as \"%2\".").arg(program, world),
                         MsgOKOnly, MsgInformation);
        return;
    }
    if (!QProcess::startDetached(program, {world}, app)) {
        logWarning(QStringLiteral("Viewer mode: \"%1\" could not be started.").arg(program));
        dialogs().msgBox(QStringLiteral("The viewer \"%1\" could not be started.").arg(program), MsgOKOnly, MsgInformation);
    }
}

// ---- other File menu items ---------------------------------------------------------------------------------

void WorldDocument::mnuNew_Click() { NewWorld(false); }

void WorldDocument::mnuOpenFile_Click() {
    if (!AskToSave()) return;
    LoadWorldWithOpenDialog();
}

void WorldDocument::mnuMRU_Click(int index, const QString& path) {
    if (!AskToSave()) return;
    if (!LoadWorld(path)) m_host.RemoveMRUItem(index);
}

void WorldDocument::mnuImport_Click(int pluginNumber) {
    m_host.PluginImport(pluginNumber);
    UpdateStatusBar();
}

void WorldDocument::mnuExport_Click(int pluginNumber) { m_host.PluginExport(pluginNumber); }

// ---- caption, pointer, status bar -------------------------------------------------------------------------

void WorldDocument::SetCaption() {
    const bool dirty = m_host.UndoStack().SaveRequired();
    m_host.SetWindowCaption(UiAppTitle() + QStringLiteral(" [") + WorldFileName + (dirty ? QStringLiteral("*]") : QStringLiteral("]")));
}

void WorldDocument::SetCaptionDash() { m_host.SetWindowCaption(UiAppTitle() + QStringLiteral(" - ") + WorldFileName); }

void WorldDocument::SetMousePtrToHourGlass(bool bRestore) {
    if (!bRestore) {
        m_host.SetStatusPanel(6, GetLocaleString(381));
        m_busy = true;
        m_host.SetBusyPointers(true);
    } else {
        m_host.SetStatusPanel(6, QString());
        m_host.SetBusyPointers(false);
        m_busy = false;
    }
}

void WorldDocument::UpdateStatusBar() {
    m_host.SetStatusPanel(1, QString::number(ZELMAR_group_get_number_of_polygons(RootGrp)));
    switch (m_host.CurrSelEntityType()) {
    case 1: m_host.SetStatusPanel(2, QString::number(ZELMAR_group_get_number_of_polygons(m_host.CurrSelEntity()))); break;
    case 6: {
        long long sum = 0;
        for (int g : m_host.PrevMultiSelGroups()) sum += ZELMAR_group_get_number_of_polygons(g);
        m_host.SetStatusPanel(2, QString::number(sum));
        break;
    }
    default: m_host.SetStatusPanel(2, QString()); break;
    }
}

// ---- the workspace trees pieces that live on the main window ----------------------------------------------------------

void WorldDocument::tabWorkspace_Click(int tabIndex) {
    m_host.DisableAllTabs();
    const int type = m_host.CurrSelEntityType();
    switch (tabIndex) {
    case 0:
        m_host.EnableWorkspaceTab(0);
        if (type == 1 && m_groupTree) {
            if (QTreeWidgetItem* n = m_groupTree->Node(QStringLiteral("Group") + QString::number(m_host.CurrSelEntity()))) {
                m_groupTree->ShowNode(n);
            }
        }
        break;
    case 1:
        m_host.EnableWorkspaceTab(1);
        if (type == 1)
            m_host.SetCmbObjItems({GetLocaleString(322), GetLocaleString(323), GetLocaleString(324)}, 0);
        else
            m_host.SetCmbObjItems({GetLocaleString(322)}, 0);
        break;
    case 2:
        m_host.EnableWorkspaceTab(2);
        m_host.ShowCameraWorkspace(type == 2);
        break;
    case 3: m_host.EnableWorkspaceTab(3); break;
    default: break;
    }
    m_host.UpdateCameras();
}

void WorldDocument::tabWorkspace_ResetGroupsTabToNewObj() { m_host.SetCmbObjItems({GetLocaleString(322)}, 0); }

void WorldDocument::GroupHide(int group) {
    if (m_groupTree) m_groupTree->GroupHide(group);
}

void WorldDocument::GrpSetName(int group, const QString& name) {
    ZELMAR_group_set_name(group, ansi(name).constData());
    if (m_groupTree)
        m_groupTree->SetNodeText(QStringLiteral("Group") + QString::number(group), QString::fromLocal8Bit(EntityName(group).c_str()));
}

} // namespace vexil
