// The create panel of the Edit Group tab: the kind of the new object (cmbNewObjType), up to three
// dimensions (spnBoxDim) and three segment counts (spnBoxSegments) with the labels that the kind needs,
// and the Create button. Each kind keeps the values last typed for it while the panel lives.
//
// The main window puts the panel in its tab and connects cmdCreateClicked to its cmdCreate_Click.
#pragma once
#include "CreateNewObject.h"

#include <QWidget>
#include <array>

class QComboBox;
class QLabel;
class QPushButton;

namespace vexil {

class Spinner;

class CreatePanel : public QWidget {
    Q_OBJECT
  public:
    explicit CreatePanel(QWidget* parent = nullptr);

    QComboBox* cmbNewObjType = nullptr;
    std::array<QLabel*, 3> lblBoxDim{};
    std::array<Spinner*, 3> spnBoxDim{};
    std::array<QLabel*, 3> lblBoxSegments{};
    std::array<Spinner*, 3> spnBoxSegments{};
    QPushButton* cmdCreate = nullptr;

    PrimitiveKind Kind() const;
    void SetKind(PrimitiveKind kind);
    // cmdCreate_Click step 2: the three dimensions as doubles, the three counts rounded to integers.
    CreateParams Parameters() const;
    // Puts values in the spin boxes (the kind is not changed).
    void SetParameters(const CreateParams& p);

    // A change of kind: the kind's labels and number of spin boxes, its minimum counts, its values.
    void cmbNewObjType_Click();
    void SetBoxDimControls();
    void SetBoxSegsControls();
    void SetNewObjSegsMin();
    // Texts from the string table (combo entries keep their position).
    void ApplyLanguage();

  signals:
    void cmdCreateClicked();

  private:
    std::array<CreateParams, PrimitiveKindCount> m_values;
    int m_shownKind = -1;
};

} // namespace vexil
