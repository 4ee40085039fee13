// The polygon panel of the Edit Group tab: blending filter, rotated flag, light diminution, transparent
// colour, polygon name, group colour and the dynamic flag. It reads the selection when the polygon selection
// changes and changes the selected polygons through SurfaceCommands, one undo step per change.
//
// Guard words: while the program fills the controls, cmbPolFilter and spnLightDimu carry the tag
// "Dissable Change" and chkPolRotated "Dissable Click" (property "Tag"); their handlers then do nothing.
#pragma once
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vexil {

class Spinner;

class PolygonSurfacePanel : public QWidget {
    Q_OBJECT
  public:
    explicit PolygonSurfacePanel(QWidget* parent = nullptr);
    ~PolygonSurfacePanel() override;

    QComboBox* cmbPolFilter = nullptr;
    QCheckBox* chkPolRotated = nullptr;
    Spinner* spnLightDimu = nullptr;
    QLabel* lblLightDimu = nullptr;
    QCheckBox* chkEditPolTrans = nullptr;
    QPushButton* cmdPoltextureTransparentClr = nullptr;
    QLabel* lblSelPolName = nullptr;
    QLineEdit* txtSelPolName = nullptr;
    QPushButton* cmdGrpClr = nullptr;
    QCheckBox* chkGrpDyn = nullptr;

    // The texts of the active language.
    void ApplyLanguage();
    // The nine filters in order, "Disable Blending" showing.
    void cmbPolFilter_InitialSetup();
    void cmbPolFilter_Click();
    void cmbPolFilter_Change();
    void cmbPolFilter_SetAccordingToSelPol();
    void chkPolRotated_Click();
    void spnLightDimu_MouseUp();
    void chkEditPolTrans_Click();
    void cmdPoltextureTransparentClr_Click();
    void txtSelPolName_Change();
    void txtSelPolName_LostFocus();
    void cmdGrpClr_Click();
    void chkGrpDyn_Click();
    // The colour dialog starting at `initial`; -1 when cancelled.
    static long GetSelectedColor(long initial);

    // The selection changed: the controls show the first selected polygon and the current group.
    void UpdateEditGeomTabBasedOnPolsSelected();
    // What undo and redo show, each under its guard.
    void ShowRotatedFlag(bool rotated);
    void ShowLightDimu(double value);
    void ShowTransparentColour(int bitmap, int index);
    void ShowGroupColour();

    // The message of the four transparency tests (0 when the one selected polygon has a bitmap), and whether
    // the button is disabled by it.
    static int TransparencyRefusal(bool* disables = nullptr);

  private:
    void setTag(QWidget* w, const char* tag);
    static bool guarded(const QWidget* w, const char* tag);
    void paintButton(QPushButton* b, long colour);
    bool m_transReentry = false;
};

} // namespace vexil
