// The contract of an action class: Undo and Redo take no arguments, act on the engine and
// on the editor directly, and rely on the state being the very one their own previous step left.
// An action that has deferred a destruction does it in its destructor, which runs when the action
// leaves the stack (falls off the end, dropped from the redo side at a Push, Reset, stack destroyed).
//
// Adding an action class: derive from Action, give it its setters, and register its type number
// in ActionUndoRedo.cpp (kActionFactories) or at run time with RegisterActionClass.
#pragma once

namespace vexil {

class Action {
public:
    virtual ~Action() = default;
    virtual void Undo() = 0;
    virtual void Redo() = 0;
};

} // namespace vexil
