// The world as a document: new, load, add, save, save as, hold, fetch, viewer mode, close,
// the careful save through the scratch folder, the caption and the status bar. Form1 owns one WorldDocument
// and forwards its File menu items to the mnu..._Click methods here.
#pragma once
#include <QString>
#include <array>
#include <vector>

class QWidget;

namespace vexil {

class DocumentHost;
class trwGroupView;
class trwCamTrackBK;
class trwLight;

class WorldDocument {
public:
    explicit WorldDocument(DocumentHost& host);
    ~WorldDocument();
    WorldDocument(const WorldDocument&) = delete;
    WorldDocument& operator=(const WorldDocument&) = delete;

    // The three workspace trees (not owned; Form1 places them in the tabs). Any may be null.
    void AttachTrees(trwGroupView* groups, trwCamTrackBK* camTrackBk, trwLight* lights);
    trwGroupView* GroupTree() const { return m_groupTree; }
    trwCamTrackBK* CamTrackBkTree() const { return m_camTree; }
    trwLight* LightTree() const { return m_lightTree; }

    // ---- state -----------------------------------------------------------------------------------------
    bool WorldOpen = false;
    int RootGrp = 0;
    QString WorldFileName = QStringLiteral("Untitled.wld");
    double WorldSize = 1000.0;
    int AddedGroup = 0;
    bool LastSaveFailed = false; // the last ZelmarEngineSave did not put the world in place
    int DisabledGroupsAtSaveCount = 0;
    std::vector<int> DisabledGroupsAtSave;  // 1-based: slot 0 unused

    // ---- constants -------------------------------------------------------------------------------------
    static constexpr int SaveFlags = 0x1203;
    static constexpr const char* UntitledName = "Untitled.wld";
    static constexpr const char* ScratchFolderName = "VXEtmpDir$@$$";
    static constexpr const char* HoldFileName = "Hold.wld";
    static constexpr const char* ViewerWorld = "Viewer Mode/Viewer.wld";
    static constexpr const char* ViewerProgram = "vexil-viewer";  // beside the editor's executable
    // The open dialog's filter (UI string 320 first) and the save dialog's, in Qt's form.
    static QString OpenFilter();
    static QString SaveFilter();
    // The path of a Save As: a name without a world extension gets the one of the chosen filter entry.
    static QString WithWorldExtension(const QString& path, const QString& chosenFilter);

    // ---- the world documents operations -----------------------------------------------------------------------------
    QString GetOpenedFile();
    QString GetSaveAsFile();
    bool LoadWorld(const QString& path);
    void LoadWorldWithOpenDialog();
    void NewWorld(bool bFirstStart);
    void AddWorld(const QString& path, const std::array<double, 3>& location);
    void AddWorldWithOpenDialog();
    void UnloadWorld();
    void ZelmarEngineSave(const QString& path, int group, int flags);
    void SaveWorld_PrePostProcessing(bool bPre);
    void SetAllSaveFlags();
    int GetRootGroup();
    void RootGroupHandleChanged();
    double GetWorldSize();
    void SetCaption();
    void SetMousePtrToHourGlass(bool bRestore);
    void UpdateStatusBar();
    // Caption forms: AppTitle + " - " + name, and AppTitle alone.
    void SetCaptionDash();

    // Asking to save (NewWorld, mnuOpenFile_Click, mnuMRU_Click, mnuFetch_Click): true to go on.
    bool AskToSave();

    // ---- File menu handlers ------------------------------------------------------------------------------
    void mnuNew_Click();  // NewWorld(false)
    void mnuOpenFile_Click();
    void mnuMRU_Click(int index, const QString& path);
    void mnuCloseFile_Click();
    void mnuSave_Click();
    void mnuSaveAs_Click();
    void mnuHold_Click();
    void mnuFetch_Click();
    void mnuViewerMode_Click();
    void mnuAddWorld_Click() { AddWorldWithOpenDialog(); }
    void mnuImport_Click(int pluginNumber);
    void mnuExport_Click(int pluginNumber);

    // ---- the workspace trees -------------------------------------------------------------------------------------------
    void tabWorkspace_Click(int tabIndex);
    void tabWorkspace_ResetGroupsTabToNewObj();
    // GroupHide(group): the tree's marks of a hidden group (node image "Group Invisible").
    void GroupHide(int group);
    // ZELMAR_group_set_name, then the node "Group" + handle takes the name read back.
    void GrpSetName(int group, const QString& name);
    // NewWorld steps 12 to 14 (camera/track/background tree, group tree, light tree), shared by load and add.
    void PopulateTrees();

    // The application folder used for Hold.wld, Viewer Mode and Templates (AppFolder() unless set).
    QString ApplicationFolder() const;
    void SetApplicationFolder(const QString& folder) { m_appFolder = folder; }
    // The folder of the executable (where vexil-viewer is looked for); AppFolder() unless set.
    QString ProgramFolder() const;
    void SetProgramFolder(const QString& folder) { m_programFolder = folder; }

    DocumentHost& Host() const { return m_host; }

private:
    void afterLoadCommon();
    void releaseCard3DToggle(bool& wasPressed);
    void setAllPolygonsOrientation0(int group);

    DocumentHost& m_host;
    trwGroupView* m_groupTree = nullptr;
    trwCamTrackBK* m_camTree = nullptr;
    trwLight* m_lightTree = nullptr;
    bool m_busy = false;
    bool m_addRefused = false;
    QString m_appFolder;
    QString m_programFolder;
};

// The message of a world that failed to load: UI string 321, the path, and the reason (the engine's last
// error) when there is one.
QString LoadFailureText(const QString& path, const QString& reason);

} // namespace vexil
