// Form1: "Reduce Polys", the simplification workbench on the current group. The Edit Geometry panel's button
// and the Group menu item run the same command; the workbench window is what it opens.
#include "Form1.h"
#include "modelling/EditGeometry.h"
#include "modelling/SimplifyWorkbench.h"
#include "workbench/ReducePolys.h"

#include <memory>

namespace vexil {

namespace {

class Form1Workbench : public SimplifyWorkbench {
  public:
    explicit Form1Workbench(Form1& f) : m_f(f) {}
    int Simplify(int group) override { return ShowSurfaceSimplification(group, &m_f); }

  private:
    Form1& m_f;
};

std::unique_ptr<Form1Workbench> g_workbench;

} // namespace

void InstallWorkbench(Form1& f) {
    g_workbench = std::make_unique<Form1Workbench>(f);
    setSimplifyWorkbench(g_workbench.get());
}

void ReleaseWorkbench() {
    if (simplifyWorkbench() == g_workbench.get()) setSimplifyWorkbench(nullptr);
    g_workbench.reset();
}

void Form1::cmdReducePols_Click() {
    if (!WorldOpen()) return;
    EditGeometry::cmdReducePols_Click();
}

} // namespace vexil
