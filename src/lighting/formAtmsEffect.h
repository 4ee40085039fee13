// formAtmsEffect ("Set Fog Parameters."): the world's fog colour and intensity, previewed live in the
// viewports. One ActionChngFog covers the whole time the dialog is open: it is made with the values at
// opening and pushed with the values at closing (also when nothing changed). Cancel puts the values of
// the opening back and pushes nothing.
#pragma once
#include "ActionChngFog.h"

#include <QDialog>
#include <functional>
#include <memory>

class QLabel;
class QPushButton;
class QSpinBox;

namespace vexil {

class ActionUndoRedo;
class ActionUndoRedo_Stack;

class formAtmsEffect : public QDialog {
    Q_OBJECT
  public:
    static constexpr double IntensityStep = 0.0006;

    // refresh: redraws the viewports. A closed world: the dialog does nothing and pushes nothing.
    formAtmsEffect(ActionUndoRedo_Stack& stack, bool worldOpen, std::function<void()> refresh,
                   QWidget* parent = nullptr);
    ~formAtmsEffect() override;

    void cmdColor_Click();
    void updwnIntensity_Change();
    void updwnIntensity_MouseUp();
    void cmdCancel_Click();

    // Form_Unload: the action gets the final values and goes on the stack (once).
    void Form_Unload();

    QPushButton* cmdColor = nullptr;
    QSpinBox* updwnIntensity = nullptr;
    QLabel* lblIntensity = nullptr;
    QPushButton *cmdOK = nullptr, *cmdCancel = nullptr;

  public:
    void done(int result) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

  private:
    void Form_Load();
    void showValues();
    void refresh();

    ActionUndoRedo_Stack& m_stack;
    bool m_worldOpen;
    std::function<void()> m_refresh;
    std::shared_ptr<ActionUndoRedo> m_action;
    FogValues m_initial;
    bool m_unloaded = false, m_cancelled = false;
};

} // namespace vexil
