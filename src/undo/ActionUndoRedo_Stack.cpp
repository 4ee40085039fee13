#include "ActionUndoRedo_Stack.h"

#include "UndoHost.h"
#include "base/VexilError.h"

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace vexil {
namespace {

[[noreturn]] void subscriptError() { throw VexilError(ErrSubscript, "Subscript out of range"); }

// VB's IsNumeric followed by CLng, for the texts a settings store holds: blanks around, a sign, digits with
// an optional fraction and exponent, or "&H" hex. Answers false when not numeric or out of range.
bool parseNumeric(const std::string& text, long long& out) {
    size_t b = 0, e = text.size();
    while (b < e && std::isspace(static_cast<unsigned char>(text[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(text[e - 1]))) --e;
    if (b == e) return false;
    const std::string s = text.substr(b, e - b);
    if (s.size() > 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h')) {
        char* end = nullptr;
        const long long v = std::strtoll(s.c_str() + 2, &end, 16);
        if (*end != '\0') return false;
        out = v;
        return true;
    }
    // Strict decimal shape.
    size_t i = 0;
    if (s[i] == '+' || s[i] == '-') ++i;
    bool digits = false;
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) { ++i; digits = true; }
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) { ++i; digits = true; }
    }
    if (!digits) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
        bool expDigits = false;
        while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) { ++i; expDigits = true; }
        if (!expDigits) return false;
    }
    if (i != s.size()) return false;
    const double v = std::strtod(s.c_str(), nullptr);
    const double r = std::nearbyint(v);  // banker's rounding, as CLng
    if (!(r >= static_cast<double>(INT_MIN) && r <= static_cast<double>(INT_MAX))) return false;
    out = static_cast<long long>(r);
    return true;
}

} // namespace

int ActionUndoRedo_Stack::MaxSizeFromSetting(const std::string& text) {
    long long v = 0;
    if (!text.empty() && parseNumeric(text, v)) return static_cast<int>(v);
    return 20;
}

ActionUndoRedo_Stack::ActionUndoRedo_Stack(const std::string& maxUndoRedoSetting, UndoHost* host)
    : m_actions(1), MaxSize(MaxSizeFromSetting(maxUndoRedoSetting)), m_host(host) {
    m_pendingSize = MaxSize;
}

ActionUndoRedo_Stack::~ActionUndoRedo_Stack() {
    // The stack's end is one of the four ways an action leaves: release in slot order.
    for (auto& a : m_actions) a.reset();
}

UndoHost& ActionUndoRedo_Stack::host() const { return m_host ? *m_host : undoHost(); }

ActionRef ActionUndoRedo_Stack::Slot(int i) const {
    if (i < 0 || i > UBound()) return nullptr;
    return m_actions[static_cast<size_t>(i)];
}

ActionRef ActionUndoRedo_Stack::MakeAction(int actionType) {
    auto a = std::make_shared<ActionUndoRedo>(actionType);
    a->SetActionObjects();
    return a;
}

void ActionUndoRedo_Stack::Push(ActionRef action) {
    // 1. Drop the redo side.
    if (StackTop < 1) StackTop = 1;
    if (StackTop != 1) {
        const int ub = UBound();
        if (StackTop > ub + 1) StackTop = ub;
        const int count = ub - StackTop + 1;
        std::vector<ActionRef> dropped(m_actions.begin() + 1, m_actions.begin() + StackTop);
        for (int i = 0; i < count; ++i) m_actions[static_cast<size_t>(1 + i)] = m_actions[static_cast<size_t>(StackTop + i)];
        m_actions.resize(static_cast<size_t>(count) + 1);
        StackTop = 1;
        for (auto& d : dropped) d.reset();  // destroys the undone actions (their destructors run now)
    }
    // 2. Make room; the oldest falls off at the limit.
    int newUb = UBound() + 1;
    if (newUb > MaxSize) {
        newUb = MaxSize;
        if (MaxSize < 0 || MaxSize > UBound()) subscriptError();
        m_actions[static_cast<size_t>(MaxSize)].reset();  // the oldest action's destructor runs here
    }
    // 3. Resize keeping contents.
    if (newUb < 0) subscriptError();
    m_actions.resize(static_cast<size_t>(newUb) + 1);
    // 4. Shift up by one.
    for (int i = newUb; i >= 1; --i) m_actions[static_cast<size_t>(i)] = m_actions[static_cast<size_t>(i - 1)];
    // 5. The new action at StackTop (1).
    if (StackTop > UBound()) subscriptError();
    m_actions[static_cast<size_t>(StackTop)] = std::move(action);
    // 6. Menus.
    host().SetUndoMenuEnabled(true);
    host().SetRedoMenuEnabled(false);
    // 7. The save marker moves with the actions; past the end the saved state is gone for good.
    ++SaveMarker;
    ++ChangesSinceSave;
    if (SaveMarker > MaxSize) ChangesSinceSave = 1000000000;
    // 8.
    host().SetCaption();
}

ActionRef ActionUndoRedo_Stack::Pop() {
    if (StackTop > UBound()) {
        host().SetUndoMenuEnabled(false);
        return nullptr;
    }
    if (StackTop < 1) StackTop = 1;
    if (StackTop > UBound()) subscriptError();  // an empty stack after a redo at the bottom
    ActionRef result = m_actions[static_cast<size_t>(StackTop)];
    ++StackTop;
    if (StackTop > UBound()) host().SetUndoMenuEnabled(false);
    host().SetRedoMenuEnabled(true);
    --ChangesSinceSave;
    return result;
}

ActionRef ActionUndoRedo_Stack::GetRedoObj() {
    --StackTop;
    if (StackTop < 1) {
        host().SetRedoMenuEnabled(false);
        return nullptr;
    }
    if (StackTop > UBound()) subscriptError();
    ActionRef result = m_actions[static_cast<size_t>(StackTop)];
    if (StackTop < 2) host().SetRedoMenuEnabled(false);
    host().SetUndoMenuEnabled(true);
    ++ChangesSinceSave;
    return result;
}

ActionRef ActionUndoRedo_Stack::Retrive() {
    if (StackTop < 0 || StackTop > UBound()) return nullptr;  // error 9 is caught: nothing
    return m_actions[static_cast<size_t>(StackTop)];
}

void ActionUndoRedo_Stack::Reset() {
    std::vector<ActionRef> old;
    old.swap(m_actions);
    m_actions.resize(1);
    StackTop = 1;
    for (auto& a : old) a.reset();  // all destructors run, in slot order
}

void ActionUndoRedo_Stack::SetSaveMarker() {
    ChangesSinceSave = 0;
    SaveMarker = StackTop;
}

bool mnuUndo_Click(ActionUndoRedo_Stack& stack, UndoHost& host) {
    ActionRef a = stack.Pop();
    if (!a) return false;
    host.SetMousePtrToHourGlass(false);  // hourglass while the action runs (see docs/document.md)
    a->Undo();
    host.UpdateCameras();
    host.SetMousePtrToHourGlass(true);
    host.SetCaption();
    return true;
}

bool mnuRedo_Click(ActionUndoRedo_Stack& stack, UndoHost& host) {
    ActionRef a = stack.GetRedoObj();
    if (!a) return false;
    host.SetMousePtrToHourGlass(false);
    a->Redo();
    host.UpdateCameras();
    host.SetMousePtrToHourGlass(true);
    host.SetCaption();
    return true;
}

} // namespace vexil
