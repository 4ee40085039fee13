// A started program (entry routine steps 1 to 7) on a fresh store, for the Form1 tests.
#pragma once
#include "AppTestSupport.h"
#include "app/Form1.h"
#include "app/mdlSubMain.h"
#include "undo/ActionUndoRedo_Stack.h"

namespace vexil::test {

class Form1Test : public AppEnv {
protected:
    void TearDown() override {
        delete form;
        form = nullptr;
        AppEnv::TearDown();
    }
    Form1* start(const QString& commandLine = QString()) {
        delete form;
        form = StartApplication(commandLine);
        return form;
    }
    // A change that pushes an action: the document needs saving.
    void makeDirty() { form->UndoStack().Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity)); }
    Form1* form = nullptr;
};

} // namespace vexil::test
