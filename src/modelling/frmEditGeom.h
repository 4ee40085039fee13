// The Edit Geometry panel of the Edit Group tab: the point sub-panel (weld threshold, Weld, Delete), the
// polygon sub-panel (polygon name, Flip, Delete, Detach, the Extrude and Bevel spinners, the Cut button)
// and the group row (Triangulate, Reduce Polys). Its buttons run EditGeometry's commands; its spinners
// drive mdlExtrude.
#pragma once
#include "frame/Spinner.h"

#include <QWidget>
#include <array>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolBar;

namespace vexil {

// A Spinner that also tells when its arrows are pressed: the start of an extrude or bevel gesture.
class ExtBvlSpinner : public Spinner {
    Q_OBJECT
  public:
    using Spinner::Spinner;
  signals:
    void MouseDown();

  protected:
    void mousePressEvent(QMouseEvent* e) override;
};

class frmEditGeom : public QWidget {
    Q_OBJECT
  public:
    explicit frmEditGeom(QWidget* parent = nullptr);
    // Which sub-panel shows: 0 none, 1 points, 2 polygons.
    void ShowMode(int mode);
    // UI strings of the current language.
    void ApplyLanguage();

    QWidget* frmEditPt = nullptr;
    QWidget* frmEditPol = nullptr;
    QLineEdit* txtWeldTh = nullptr;
    QPushButton *cmdWeld = nullptr, *cmdEditPtDelete = nullptr;
    QLineEdit* txtSelPolName = nullptr;
    QPushButton *cmdFlipPol = nullptr, *cmdDeletePol = nullptr, *cmdDetachPols = nullptr;
    QPushButton *cmdTriangulate = nullptr, *cmdReducePols = nullptr;
    std::array<ExtBvlSpinner*, 2> spnExtBvl{};
    std::array<QLabel*, 2> lblExtBvl{};
    QToolBar* tlbrCut = nullptr;
    QCheckBox *chkIgnoreBackFacedForPtSel = nullptr, *chkIgnoreBackFacedForPolSel = nullptr;
    QLabel *lblWeldTh = nullptr, *lblSelPolName = nullptr;
};

} // namespace vexil
