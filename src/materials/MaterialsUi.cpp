#include "MaterialsUi.h"

namespace vexil {

MaterialsUi& materialsUi() {
    static MaterialsUi ui;
    return ui;
}

} // namespace vexil
