// The Texture tab: the tree trwTextures of every bitmap ("MAP") and two-dimensional animation ("ANIMATION")
// of the world, the preview of the chosen item with its size, the apply buttons, Update and Edit, and the
// planar mapper. The tree is always rebuilt from the engine's lists; a node's key ("Map" or "Animation" +
// handle) is its only link to the entity. Bitmap files a loaded world named but could not read are listed
// under "MAP" with a warning mark (key "Missing" + number) instead of vanishing.
#pragma once
#include <QHash>
#include <QPointer>
#include <QWidget>
#include <array>

class QAction;
class QButtonGroup;
class QLabel;
class QMenu;
class QPushButton;
class QRadioButton;
class QTimer;
class QTreeWidget;
class QTreeWidgetItem;

namespace vexil {

class frmTextureMapping;

class TexturePanel : public QWidget {
    Q_OBJECT
  public:
    static constexpr int KeyRole = Qt::UserRole;
    static constexpr int ImageRole = Qt::UserRole + 1;

    explicit TexturePanel(QWidget* parent = nullptr);
    ~TexturePanel() override;

    QTreeWidget* trwTextures = nullptr;
    QWidget* picTexture = nullptr; // the preview frame
    QLabel* imgTexture = nullptr;  // the preview picture
    QLabel* lblTextureDim = nullptr;
    std::array<QPushButton*, 2> cmdTextureApplyToSel{};
    QPushButton* cmdTextureUpdate = nullptr;
    QPushButton* cmdEditTexture = nullptr;
    std::array<QRadioButton*, 4> opnNormal{};
    QPushButton* cmdPlanarMap = nullptr;
    QTimer* tmrAnimPreview = nullptr;

    // The popup menu mnuTexture of the main window and its four items (the panel creates its own when none
    // is given).
    void SetMenu(QMenu* menu, QAction* mnuNew, QAction* mnuEdit, QAction* mnuUpdate, QAction* mnuDelete);
    QMenu* mnuTexture = nullptr;
    QAction *mnuTextureNew = nullptr, *mnuTextureEdit = nullptr, *mnuTextureUpdate = nullptr,
            *mnuTextureDelete = nullptr;

    void ApplyLanguage();

    // ---- the tree -------------------------------------------------------------------------------------
    void trwTextures_Populate();
    // The world unloaded: the preview timer stops, the picture clears, the two roots stay empty.
    void trwTextures_Reset();
    void trwTextures_NodeClick(QTreeWidgetItem* node);
    void trwTextures_Collapse(QTreeWidgetItem* node);
    void trwTextures_Expand(QTreeWidgetItem* node);
    // The right-button mouse-up over the tree at a viewport position: the menu's items are enabled by the
    // node there and the menu pops up (not exec).
    void trwTextures_MouseUp(const QPoint& pos);
    QTreeWidgetItem* Node(const QString& key) const;
    static QString NodeKey(const QTreeWidgetItem* node);
    static QString NodeImage(const QTreeWidgetItem* node);
    QTreeWidgetItem* SelectedNode() const;
    // Adds a bitmap node under "MAP" (a missing-file mark when the file behind it is gone).
    QTreeWidgetItem* AddBitmapNode(int bitmap);
    QTreeWidgetItem* AddAnimationNode(int animation);

    // ---- flows -----------------------------------------------------------------------------------------
    void mnuTextureNew_Click();
    void mnuTextureEdit_Click();
    void mnuTextureUpdate_Click();
    void mnuTextureDelete_Click();
    void cmdTextureApplyToSel_Click(int index);
    void cmdTextureUpdate_Click();
    void cmdEditTexture_Click();
    void cmdPlanarMap_Click();
    // Loads or finds the bitmap of a path and selects its node; 0 when the file cannot be used.
    int AddTexture(const QString& path);
    void DeleteBKGusingMap(int bitmap);
    static void RemoveAnimFrmAllPolsUsingIt(int animation);
    void PreviewAnimation(int animation);
    void tmrAnimPreview_Timer();
    // The option chosen among opnNormal (0..3).
    int MappingOption() const;
    // The texture map editor while it is open.
    frmTextureMapping* TextureMapping() const;
    // Closes the texture map editor (world unload).
    void UnloadTextureMapping();

    // ---- preview ---------------------------------------------------------------------------------------
    void ClearPreview();
    // Shows a bitmap in the preview (false with "File not found!" when its file is gone).
    bool PreviewBitmap(int bitmap);
    int PreviewFrame() const { return m_animFrame; }

  private:
    void trwTextures_Populate(bool withEntities);
    void enableButtons(bool apply, bool update);
    void setImage(QTreeWidgetItem* node, const QString& image);
    void placePreview(const QImage& img);
    QHash<QString, QTreeWidgetItem*> m_nodes;
    QTreeWidgetItem* m_mapRoot = nullptr;
    QTreeWidgetItem* m_animRoot = nullptr;
    QButtonGroup* m_normals = nullptr;
    int m_animation = 0, m_animFrame = 0;
    QPointer<frmTextureMapping> m_editor;
};

} // namespace vexil
