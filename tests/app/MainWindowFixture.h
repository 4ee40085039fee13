// The main window started as the program starts it, with the input seam faked so that real mouse events on
// its picture windows are seen as the user's. Subsystem tests of the window derive from it.
#pragma once
#include "AppTestSupport.h"
#include "app/Form1.h"
#include "app/mdlSubMain.h"
#include "builders/CreatePanel.h"
#include "frame/InputState.h"
#include "selection/SelectionState.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <memory>

namespace vexil::test {

class MainWindowTest : public AppEnv {
  protected:
    // The command line the window starts with (a world to open, or nothing).
    virtual QString CommandLine() { return {}; }
    virtual QSize WindowSize() { return {1100, 800}; }

    void SetUp() override {
        AppEnv::SetUp();
        form = StartApplication(CommandLine());
        ASSERT_NE(form, nullptr);
        fake = std::make_unique<FakeInputState>();
        form->resize(WindowSize());
        QCoreApplication::processEvents();
    }
    void TearDown() override {
        fake.reset();
        delete form;
        form = nullptr;
        AppEnv::TearDown();
    }
    picWindow* win(int i) { return form->frmPicWins->PicWindow(i); }
    void mouse(int i, QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        const QPoint g = win(i)->mapToGlobal(p);
        fake->setCursorPos(g);
        QMouseEvent e(type, QPointF(p), QPointF(g), b, held, Qt::NoModifier);
        QApplication::sendEvent(win(i), &e);
    }
    // Hover, press the left button, `steps` moves to `to`, release there.
    void drag(int i, QPoint from, QPoint to, int steps) {
        mouse(i, QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
        fake->press(VkLButton);
        mouse(i, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int s = 1; s <= steps; ++s)
            mouse(i, QEvent::MouseMove, from + (to - from) * s / steps, Qt::NoButton, Qt::LeftButton);
        mouse(i, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
        fake->release(VkLButton);
    }
    void click(int i, QPoint p) { drag(i, p, p, 0); }
    // Makes a box from the create panel of the Edit Group tab; answers the new group.
    int createBox() {
        form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        form->frmCreate->SetKind(PrimitiveKind::Box);
        QTest::mouseClick(form->frmCreate->cmdCreate, Qt::LeftButton);
        return Sel().CurrSelEntity;
    }

    Form1* form = nullptr;
    std::unique_ptr<FakeInputState> fake;
};

} // namespace vexil::test
