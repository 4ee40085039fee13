// The action classes of whole entities and of selections, and their registration with the envelope.
#pragma once
#include "ActionDeleteCreate.h"
#include "ActionGrouping.h"
#include "ActionHideUnhide.h"
#include "ActionSelect.h"
#include "ActionSubSelect.h"
#include "ActionTransformEntity.h"

namespace vexil {

// Lets SetActionObjects make these classes (types 1 to 5, 14, 15, 16, 19 to 22, 26, 29, 30, 37, 38). The
// selection model calls it when it is made; calling it again changes nothing.
void RegisterEntityActions();

} // namespace vexil
