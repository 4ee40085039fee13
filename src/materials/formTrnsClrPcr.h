// formTrnsClrPcr ("Select Transparent Color."): picks a bitmap's transparent colour by a click on the
// bitmap. Mode 0 works for the polygon panel: Ok gives the colour to the selected polygon's bitmap (or, with
// Check1, to every polygon of the group with that bitmap) as one undo step. Mode 1 works for formAnimation:
// Check1 is hidden and Ok only hands the colour back.
#pragma once
#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

namespace vexil {

class TransparentColourPicture;

class formTrnsClrPcr : public QDialog {
    Q_OBJECT
  public:
    formTrnsClrPcr(int mode, int bitmap, QWidget* parent = nullptr);

    TransparentColourPicture* picture = nullptr;
    QLabel* lblCLR = nullptr;
    QCheckBox* Check1 = nullptr;
    QPushButton* cmdOk = nullptr;
    QPushButton* cmdCancel = nullptr;

    // The colour value chosen (kButtonFace until a click).
    long ChosenColour() const { return m_colour; }
    // A click on the bitmap's pixel (x, y): its colour is chosen and shown.
    void PickPixel(int x, int y);
    // Mode 0: the chosen colour becomes the transparent colour (one undo step). Stops unless a group is
    // current at polygon level.
    void SetTransColor();
    void cmdOk_Click();
    void cmdCancel_Click();

  private:
    int m_mode;
    int m_bitmap;
    long m_colour;
};

} // namespace vexil
