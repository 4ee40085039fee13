// formAnimation ("Animation 2D."): creates (mode 0) or edits (mode 1) a two-dimensional animation, a sequence of
// bitmaps with a frame time and a transparent colour each, in up to five sets by view direction. The tree
// trwAnim has the five directions as roots (keys "FRONT", "FRONT SIDED", "SIDE", "BACK SIDED", "BACK"), the
// frames as children. Nothing reaches the engine before Ok, and Ok changes nothing when a frame's bitmap
// cannot be loaded. Not undoable.
#pragma once
#include <QDialog>
#include <array>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;

namespace vexil {

class formAnimation : public QDialog {
    Q_OBJECT
  public:
    static constexpr int TagRole = Qt::UserRole + 2;
    static constexpr int KeyRole = Qt::UserRole;
    // The default frame time of a new frame, in hundredths of a second.
    static constexpr int kDefaultFrameTime = 10;

    formAnimation(int mode, int animation, QWidget* parent = nullptr);

    QLineEdit* txtAnimName = nullptr;
    QTreeWidget* trwAnim = nullptr;
    QLabel* picPreview = nullptr;
    QLabel* lblNote = nullptr;
    QLineEdit* txtFrmTime = nullptr;
    QPushButton* cmdApplyFrmTimeAll = nullptr;
    QCheckBox* chkTransparent = nullptr;
    QPushButton* cmdColor = nullptr;
    QPushButton* cmdApplyTransClrToAll = nullptr;
    QPushButton* cmdInsert = nullptr;
    QPushButton* cmdRemove = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;
    std::array<QTreeWidgetItem*, 5> DirectionRoots{};

    int Mode() const { return m_mode; }
    int Animation() const { return m_animation; }

    // ---- the tag of a frame: map name, frame time, transparent colour ------------------------------------
    static QString PackTag(const QString& mapName, int time, long colour);
    static QString ExtractFrmMapName(const QString& tag);
    static int ExtractTime(const QString& tag);
    static long ExtractTrnsIndxClr(const QString& tag);
    static void SetFrmMapName(QTreeWidgetItem* frame, const QString& name);
    static void SetFrmTime(QTreeWidgetItem* frame, int time);
    static void SetFrmTrnsIndxClr(QTreeWidgetItem* frame, long colour);

    // ---- operations --------------------------------------------------------------------------------------
    void LoadAnimData();
    // Adds a frame for a bitmap file next to the selected frame, or last under the selected direction;
    // false with "Unsupported bitmap." when the file cannot be used.
    bool InsertMap(const QString& path);
    void cmdInsert_Click();
    void cmdRemove_Click();
    void cmdApplyFrmTimeAll_Click();
    void cmdApplyTransClrToAll_Click();
    void SetAllChildNodesFrmTime(QTreeWidgetItem* root, int time);
    void SetAllChildNodesTransClr(QTreeWidgetItem* root, long colour);
    void cmdColor_Click();
    void chkTransparent_Click();
    void txtFrmTime_Validate();
    void trwAnim_NodeClick(QTreeWidgetItem* node);
    // Files dropped on the tree at a position of its viewport: InsertMap for each, where they land.
    void trwAnim_OLEDragDrop(const QList<QUrl>& files, QPoint pos);
    void TrnsFrmEnable(bool enabled);
    void TimeFrmEnable(bool enabled);
    static QString GetNewAnimName();
    void cmdOk_Click();
    void cmdCancel_Click();
    // The frame node selected (null when a direction or nothing is).
    QTreeWidgetItem* SelectedFrame() const;

  protected:
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dropEvent(QDropEvent* e) override;
    bool eventFilter(QObject* obj, QEvent* e) override;

  private:
    QTreeWidgetItem* addFrame(QTreeWidgetItem* root, int position, const QString& path, int time, long colour);
    void showFrame(QTreeWidgetItem* frame);
    void paintColourButton(long colour);
    int m_mode;
    int m_animation;
    int m_nextKey = 1;
};

} // namespace vexil
