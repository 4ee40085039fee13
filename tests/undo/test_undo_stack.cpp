// The undo stack of the action stack: push, pop, redo, the limit, deferred destruction, the save-marker arithmetic.
#include "undo/ActionRenameEntity.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"
#include "base/VexilError.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vexil;

namespace {

// A recording action: its id, and a shared log of what happened to it.
struct Log {
    std::vector<std::string> events;
    int destroyed = 0;
};

class TestAction : public Action {
public:
    TestAction(int id, Log* log) : id(id), log(log) {}
    ~TestAction() override {
        ++log->destroyed;
        log->events.push_back("destroy" + std::to_string(id));
    }
    void Undo() override { log->events.push_back("undo" + std::to_string(id)); }
    void Redo() override { log->events.push_back("redo" + std::to_string(id)); }
    int id;
    Log* log;
};

ActionRef makeAction(int id, Log& log, int type = AT_ActionMove) {
    auto a = std::make_shared<ActionUndoRedo>(type);
    a->SetObject(std::make_unique<TestAction>(id, &log));
    return a;
}

int idOf(const ActionRef& a) { return a ? static_cast<TestAction*>(a->Object())->id : 0; }

struct RecordingHost : UndoHost {
    bool undoEnabled = false, redoEnabled = false;
    int captions = 0, updates = 0;
    std::vector<bool> hourglass;
    void SetUndoMenuEnabled(bool e) override { undoEnabled = e; }
    void SetRedoMenuEnabled(bool e) override { redoEnabled = e; }
    void SetCaption() override { ++captions; }
    void UpdateCameras() override { ++updates; }
    void SetMousePtrToHourGlass(bool r) override { hourglass.push_back(r); }
};

} // namespace

TEST(MaxSize, FromSetting) {
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting(""), 20);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("abc"), 20);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("12x"), 20);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("35"), 35);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting(" 7 "), 7);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("2.5"), 2);  // CLng rounds half to even
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("0"), 0);    // taken as it stands
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("&H10"), 16);
    EXPECT_EQ(ActionUndoRedo_Stack::MaxSizeFromSetting("99999999999"), 20);
    ActionUndoRedo_Stack s("5");
    EXPECT_EQ(s.GetStackSize(), 5);
    s.SetStackSize(9);  // the preference dialog: in force at the next start only
    EXPECT_EQ(s.GetStackSize(), 5);
    EXPECT_EQ(s.PendingStackSize(), 9);
}

TEST(Stack, PushPopRedoOrderAndMenus) {
    Log log;
    RecordingHost host;
    ActionUndoRedo_Stack s("", &host);
    EXPECT_FALSE(s.SaveRequired());
    for (int i = 1; i <= 3; ++i) s.Push(makeAction(i, log));
    EXPECT_EQ(host.captions, 3);
    EXPECT_TRUE(host.undoEnabled);
    EXPECT_FALSE(host.redoEnabled);
    EXPECT_EQ(s.UBound(), 3);
    EXPECT_EQ(idOf(s.Slot(1)), 3);  // newest at StackTop
    EXPECT_EQ(idOf(s.Slot(3)), 1);  // oldest at the upper bound
    EXPECT_EQ(idOf(s.Retrive()), 3);

    EXPECT_EQ(idOf(s.Pop()), 3);
    EXPECT_TRUE(host.redoEnabled);
    EXPECT_EQ(idOf(s.Pop()), 2);
    EXPECT_EQ(idOf(s.Pop()), 1);
    EXPECT_FALSE(host.undoEnabled);  // undo of everything disables mnuUndo
    EXPECT_EQ(s.Pop(), nullptr);
    EXPECT_EQ(s.GetStackTop(), 4);

    EXPECT_EQ(idOf(s.GetRedoObj()), 1);
    EXPECT_TRUE(host.undoEnabled);
    EXPECT_EQ(idOf(s.GetRedoObj()), 2);
    EXPECT_EQ(idOf(s.GetRedoObj()), 3);
    EXPECT_FALSE(host.redoEnabled);  // StackTop below 2
    EXPECT_EQ(s.GetRedoObj(), nullptr);
    EXPECT_EQ(log.destroyed, 0);
}

TEST(Stack, RedoAtTheBottomLeavesStackTopAtZeroAndPopMendsIt) {
    Log log;
    ActionUndoRedo_Stack s;
    s.Push(makeAction(1, log));
    s.Push(makeAction(2, log));
    EXPECT_EQ(s.GetRedoObj(), nullptr);
    EXPECT_EQ(s.GetStackTop(), 0);
    EXPECT_EQ(idOf(s.Pop()), 2);  // treats StackTop as 1
    EXPECT_EQ(s.GetStackTop(), 2);
    // And Push mends it too.
    EXPECT_EQ(idOf(s.GetRedoObj()), 2);
    EXPECT_EQ(s.GetRedoObj(), nullptr);
    s.Push(makeAction(3, log));
    EXPECT_EQ(s.GetStackTop(), 1);
    EXPECT_EQ(idOf(s.Slot(1)), 3);
    EXPECT_EQ(idOf(s.Slot(2)), 2);
}

TEST(Stack, RedoAtTheBottomOfAnEmptyStackThenPopIsASubscriptError) {
    ActionUndoRedo_Stack s;
    EXPECT_EQ(s.GetRedoObj(), nullptr);
    EXPECT_EQ(s.GetStackTop(), 0);
    try {
        s.Pop();
        FAIL() << "expected error 9";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrSubscript);
    }
}

TEST(Stack, TheTwentyFirstPushDestroysTheFirstAction) {
    Log log;
    ActionUndoRedo_Stack s;
    for (int i = 1; i <= 20; ++i) s.Push(makeAction(i, log));
    EXPECT_EQ(log.destroyed, 0);
    EXPECT_EQ(s.UBound(), 20);
    s.Push(makeAction(21, log));
    EXPECT_EQ(log.destroyed, 1);
    EXPECT_EQ(log.events.back(), "destroy1");
    EXPECT_EQ(s.UBound(), 20);
    EXPECT_EQ(idOf(s.Slot(20)), 2);
    EXPECT_EQ(idOf(s.Slot(1)), 21);
}

TEST(Stack, PushDropsTheRedoSideAndDestroysThoseActions) {
    Log log;
    ActionUndoRedo_Stack s;
    for (int i = 1; i <= 4; ++i) s.Push(makeAction(i, log));
    s.Pop();  // 4
    s.Pop();  // 3
    s.Push(makeAction(5, log));
    EXPECT_EQ(log.destroyed, 2);
    EXPECT_EQ(s.UBound(), 3);
    EXPECT_EQ(idOf(s.Slot(1)), 5);
    EXPECT_EQ(idOf(s.Slot(2)), 2);
    EXPECT_EQ(idOf(s.Slot(3)), 1);
    // Undo everything, then push: everything before is dropped.
    s.Pop(); s.Pop(); s.Pop();
    s.Push(makeAction(6, log));
    EXPECT_EQ(log.destroyed, 5);
    EXPECT_EQ(s.UBound(), 1);
}

TEST(Stack, APoppedActionHeldByItsCallerDiesWhenTheCallerLetsGo) {
    Log log;
    ActionUndoRedo_Stack s;
    s.Push(makeAction(1, log));
    ActionRef held = s.Pop();
    s.Push(makeAction(2, log));  // drops 1 from the redo side, but the caller still holds it
    EXPECT_EQ(log.destroyed, 0);
    held.reset();
    EXPECT_EQ(log.destroyed, 1);
}

TEST(Stack, ResetReleasesAllButKeepsTheMarkerArithmetic) {
    Log log;
    RecordingHost host;
    ActionUndoRedo_Stack s("", &host);
    s.Push(makeAction(1, log));
    s.Push(makeAction(2, log));
    s.Pop();
    const bool undoBefore = host.undoEnabled, redoBefore = host.redoEnabled;
    s.Reset();
    EXPECT_EQ(log.destroyed, 2);
    EXPECT_EQ(log.events[0], "destroy2");  // slot order: the undone action was in slot 1
    EXPECT_EQ(s.UBound(), 0);
    EXPECT_EQ(s.GetStackTop(), 1);
    EXPECT_EQ(s.GetChangesSinceSave(), 1);  // untouched
    EXPECT_TRUE(s.SaveRequired());
    EXPECT_EQ(host.undoEnabled, undoBefore);
    EXPECT_EQ(host.redoEnabled, redoBefore);
    EXPECT_EQ(s.Pop(), nullptr);
}

TEST(Stack, DestroyingTheStackRunsEveryDestructor) {
    Log log;
    {
        ActionUndoRedo_Stack s;
        for (int i = 1; i <= 3; ++i) s.Push(makeAction(i, log));
        s.Pop();
    }
    EXPECT_EQ(log.destroyed, 3);
}

TEST(SaveMarker, UndoToTheSavedStateIsClean) {
    Log log;
    ActionUndoRedo_Stack s;
    s.Push(makeAction(1, log));
    s.SetSaveMarker();
    EXPECT_FALSE(s.SaveRequired());
    s.Push(makeAction(2, log));
    EXPECT_TRUE(s.SaveRequired());
    s.Pop();
    EXPECT_FALSE(s.SaveRequired());
    s.Pop();
    EXPECT_TRUE(s.SaveRequired());
    s.GetRedoObj();
    EXPECT_FALSE(s.SaveRequired());
}

TEST(SaveMarker, SaveAtTheBottomThenUndoAllIsClean) {
    Log log;
    ActionUndoRedo_Stack s;
    s.SetSaveMarker();
    for (int i = 1; i <= 5; ++i) s.Push(makeAction(i, log));
    for (int i = 1; i <= 5; ++i) s.Pop();
    EXPECT_EQ(s.GetChangesSinceSave(), 0);
    EXPECT_FALSE(s.SaveRequired());
}

TEST(SaveMarker, SaveUndoNewActionCountsAsUnmodified) {
    // The required arithmetic: the count, not the identity of the state.
    Log log;
    ActionUndoRedo_Stack s;
    s.Push(makeAction(1, log));
    s.Push(makeAction(2, log));
    s.SetSaveMarker();
    s.Pop();
    EXPECT_TRUE(s.SaveRequired());
    s.Push(makeAction(3, log));
    EXPECT_FALSE(s.SaveRequired());
}

TEST(SaveMarker, TheSavedStateFallsOffTheEnd) {
    Log log;
    ActionUndoRedo_Stack s;
    s.SetSaveMarker();  // SaveMarker 1
    for (int i = 1; i <= 21; ++i) s.Push(makeAction(i, log));
    EXPECT_GT(s.GetSaveMarker(), s.GetStackSize());
    for (int n = 0; n < 25; ++n) {
        EXPECT_TRUE(s.SaveRequired()) << "after " << n << " undos";
        s.Pop();
    }
    EXPECT_TRUE(s.SaveRequired());
}

TEST(SaveMarker, SmallLimit) {
    Log log;
    ActionUndoRedo_Stack s("2");
    s.Push(makeAction(1, log));
    s.SetSaveMarker();  // SaveMarker 1
    s.Push(makeAction(2, log));  // SaveMarker 2, still within
    s.Pop();
    EXPECT_FALSE(s.SaveRequired());
    s.GetRedoObj();
    s.Push(makeAction(3, log));  // SaveMarker 3 > 2: gone
    EXPECT_EQ(log.destroyed, 1);
    EXPECT_EQ(s.GetChangesSinceSave(), 1000000000);
    s.Pop();
    s.Pop();
    EXPECT_TRUE(s.SaveRequired());
}

TEST(Stack, ALimitOfZeroFailsAtTheFirstPush) {
    Log log;
    ActionUndoRedo_Stack s("0");
    try {
        s.Push(makeAction(1, log));
        FAIL() << "expected error 9";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrSubscript);
    }
    EXPECT_EQ(s.UBound(), 0);
}

TEST(Envelope, TypeNumbersAndFactories) {
    EXPECT_STREQ(ActionClassName(27), "ActionRenameEntity");
    EXPECT_STREQ(ActionClassName(1), "ActionSelect");
    EXPECT_STREQ(ActionClassName(46), "ActionPlugin");
    EXPECT_STREQ(ActionClassName(19), "ActionSelectPols");
    EXPECT_STREQ(ActionClassName(13), "ActionDeleteGrpPols");
    for (int unused : {9, 25, 45, 0, 47}) EXPECT_STREQ(ActionClassName(unused), "");
    EXPECT_TRUE(IsActionClassRegistered(AT_ActionRenameEntity));

    ActionUndoRedo e(AT_ActionRenameEntity);
    e.SetActionObjects();
    EXPECT_NE(e.As<ActionRenameEntity>(), nullptr);
    // The envelope made by MakeAction carries the matching class only.
    auto m = ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity);
    EXPECT_NE(m->As<ActionRenameEntity>(), nullptr);

    // Unused numbers make nothing, and dispatch does nothing.
    for (int unused : {9, 25, 45}) {
        ActionUndoRedo u(unused);
        u.SetActionObjects();
        EXPECT_EQ(u.Object(), nullptr);
        u.Undo();
        u.Redo();
        RegisterActionClass(unused, [] { return std::unique_ptr<Action>(); });
        EXPECT_FALSE(IsActionClassRegistered(unused));
    }
}

TEST(Envelope, AClassRegisteredAtRunTime) {
    static Log log;
    RegisterActionClass(AT_ActionPlugin, [] { return std::unique_ptr<Action>(std::make_unique<TestAction>(46, &log)); });
    auto a = ActionUndoRedo_Stack::MakeAction(AT_ActionPlugin);
    ASSERT_NE(a->As<TestAction>(), nullptr);
    a->Undo();
    a->Redo();
    EXPECT_EQ(log.events, (std::vector<std::string>{"undo46", "redo46"}));
    RegisterActionClass(AT_ActionPlugin, nullptr);
}

TEST(Menu, UndoAndRedoClickDispatchAndRefresh) {
    Log log;
    RecordingHost host;
    ActionUndoRedo_Stack s("", &host);
    EXPECT_FALSE(mnuUndo_Click(s, host));
    EXPECT_EQ(host.updates, 0);
    s.Push(makeAction(1, log));
    s.Push(makeAction(2, log));
    const int captions = host.captions;
    EXPECT_TRUE(mnuUndo_Click(s, host));
    EXPECT_TRUE(mnuUndo_Click(s, host));
    EXPECT_FALSE(mnuUndo_Click(s, host));
    EXPECT_TRUE(mnuRedo_Click(s, host));
    EXPECT_EQ(log.events, (std::vector<std::string>{"undo2", "undo1", "redo1"}));
    EXPECT_EQ(host.updates, 3);
    EXPECT_EQ(host.captions, captions + 3);
    // Hourglass during the dispatch, pointer restored after it.
    ASSERT_EQ(host.hourglass.size(), 6u);
    EXPECT_FALSE(host.hourglass[0]);
    EXPECT_TRUE(host.hourglass[1]);
}
