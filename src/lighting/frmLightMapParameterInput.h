// frmLightMapParameterInput ("Light Map Parameters"): the parameters of a bake of light maps over every
// polygon of the world, then its progress (frmProgress) with an abort between polygons. The markers of
// saved cameras and lights are hidden during the bake so that they cast no shadow, and only those that
// were shown are shown again. A bake pushes no action.
#pragma once
#include "BakeLightMaps.h"

#include <QDialog>
#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace vexil {

class LightController;

class frmLightMapParameterInput : public QDialog {
    Q_OBJECT
  public:
    explicit frmLightMapParameterInput(LightController& lights, QWidget* parent = nullptr);

    // Validates the three texts in the design's order; the first failure is shown as an information box.
    bool EntriesOk();
    void cmdCompute_Click();
    // The loop over the polygons of the world, with progress and the abort question.
    void ComputeLightMaps(const LightMapParams& params);
    // The parameters the controls hold (after EntriesOk).
    LightMapParams ReadParams() const;

    bool Computing() const { return m_computing; }
    bool AbortAsked() const { return m_abortAsked; }
    // After the last bake: polygons processed, maps made, and whether the user aborted.
    int Processed() const { return m_processed; }
    int Made() const { return m_made; }
    bool Aborted() const { return m_aborted; }
    // Called after each polygon, before events run (tests post keys from here).
    std::function<void(int done, int total)> AfterPolygon;

    QWidget* frmParam = nullptr;
    QLineEdit *txtMaxSize = nullptr, *txtMinSize = nullptr, *txtSamplingRate = nullptr;
    QSpinBox *updwnMaxSize = nullptr, *updwnMinSize = nullptr, *updwnSamplingRate = nullptr;
    QCheckBox* chkRaytracing = nullptr;
    QRadioButton *Option1 = nullptr, *Option2 = nullptr;
    QWidget* frmcmdCompute = nullptr;
    QPushButton* cmdCompute = nullptr;
    QWidget* frmProgress = nullptr;
    QLabel *lblPolsProcessed = nullptr, *lblTotalPols = nullptr;
    QLabel *lblPolsProcessedCount = nullptr, *lblTotalPolsCount = nullptr;
    QProgressBar* ProgressBar1 = nullptr;

  protected:
    void keyPressEvent(QKeyEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

  private:
    void build();
    void txtChange(QLineEdit* text, QSpinBox* updown);
    void updwnChange(QSpinBox* updown, QLineEdit* text);
    static int progressStep(int done, int total, void* self);
    int onProgress(int done, int total);

    LightController& m_lights;
    bool m_computing = false, m_abortAsked = false, m_aborted = false;
    bool m_syncing = false;
    int m_processed = 0, m_made = 0;
};

// CreateLightMaps of the main window: the dialog, modal, when a world is open.
void CreateLightMaps(LightController& lights, QWidget* parent);

} // namespace vexil
