// What the Reduce Polys button hands over to the simplification workbench. The workbench (its own window)
// implements this and installs itself; until one is installed the button says so.
#pragma once

namespace vexil {

class SimplifyWorkbench {
  public:
    virtual ~SimplifyWorkbench() = default;
    // Shows the workbench modally for `group`. Answers the simplified copy (a new group, in no tree, under
    // the group's father or fatherless) or 0 when the user made none. The caller names it, puts it in the
    // group's place and pushes one ActionReplaceGrp.
    virtual int Simplify(int group) = 0;
};

// The installed workbench (not owned), or null.
SimplifyWorkbench* simplifyWorkbench();
void setSimplifyWorkbench(SimplifyWorkbench* workbench);

} // namespace vexil
