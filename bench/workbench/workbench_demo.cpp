// Shows the simplification workbench on a group, reduced, for a look or a screenshot:
//
//   workbench_demo --world data/samples/Sample.wld --group Tower --reduce 80 --lock-outline
//   workbench_demo --mesh /usr/share/glmark2/models/bunny.obj --reduce 80 --lock-outline [--wireframe]
//
// A mesh file is taken as made with y up and stood up in this world (z up), its points shaded by a
// light from above. --lock-outline selects the points on the outline seen from the window's camera and runs with
// "Lock selected vertices". --dist sets the camera's distance (in the window's units, 25 to 500).
// The window stays for --seconds (default 20), then the program ends.
#include "WorkbenchBenchSupport.h"
#include "frame/Locale.h"
#include "workbench/SurfSimView.h"
#include "workbench/formSurfaceSimplification.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <cstdio>

using namespace vexil;

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QString world, group = QStringLiteral("Tower"), mesh, shot;
    double reduce = 80, seconds = 20, dist = 0;
    bool lockOutline = false, wireframe = false;
    const QStringList args = app.arguments();
    for (int i = 1; i < args.size(); ++i) {
        const QString& a = args[i];
        auto next = [&] { return i + 1 < args.size() ? args[++i] : QString(); };
        if (a == QLatin1String("--world")) world = next();
        else if (a == QLatin1String("--group")) group = next();
        else if (a == QLatin1String("--mesh")) mesh = next();
        else if (a == QLatin1String("--reduce")) reduce = next().toDouble();
        else if (a == QLatin1String("--seconds")) seconds = next().toDouble();
        else if (a == QLatin1String("--dist")) dist = next().toDouble();
        else if (a == QLatin1String("--shot")) shot = next();
        else if (a == QLatin1String("--lock-outline")) lockOutline = true;
        else if (a == QLatin1String("--wireframe")) wireframe = true;
        else {
            std::fprintf(stderr, "usage: workbench_demo (--world FILE [--group NAME] | --mesh FILE) [--reduce P] "
                                 "[--lock-outline] [--wireframe] [--dist D] [--seconds S] [--shot PNG]\n");
            return 2;
        }
    }
    SetAppLCID(409);
    int source = 0;
    try {
        if (!mesh.isEmpty()) {
            const int root = ZELMAR_group_create("the_world");
            simplify_test::MeshData data = simplify_test::loadMesh(mesh.toStdString());
            workbench_bench::standUpAndShade(data);
            source = workbench_bench::meshToGroup(data, "Mesh", root);
        } else if (!world.isEmpty()) {
            if (ZELMAR_engine_load_world(world.toLocal8Bit().constData(), "", "", 4) != 1) {
                std::fprintf(stderr, "cannot load %s: %s\n", qPrintable(world), ZELMAR_engine_get_last_error());
                return 1;
            }
            for (int g = ZELMAR_group_get_first_group(); g != 0 && source == 0; g = ZELMAR_group_get_next(g))
                if (group == QString::fromLocal8Bit(ZELMAR_group_get_name(g))) source = g;
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    if (source == 0) {
        std::fprintf(stderr, "no group to show (give --world with --group, or --mesh)\n");
        return 1;
    }

    formSurfaceSimplification form(source);
    form.show();
    while (!form.Activated()) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    form.Camera().Theta = 0.9;
    form.Camera().Phi = 0.25;
    if (dist > 0) form.Camera().Dist = dist;
    form.Camera().ReSetCamDistFrmEye();
    form.Camera().Update();
    if (lockOutline) {
        const Maths::Vector eye = form.Camera().Location();
        const double e[3] = {eye[0], eye[1], eye[2]};
        form.Session().SetLockedPoints(workbench_bench::outlinePoints(form.Session().Model(), e));
        form.chkLockSelVertices->setChecked(true);
        form.opnSelectPts->setChecked(true);
    }
    form.SetReduction(reduce);
    form.cmdSimplify->click();
    if (wireframe) {
        QKeyEvent f2(QEvent::KeyRelease, Qt::Key_F2, Qt::NoModifier);
        QApplication::sendEvent(&form, &f2);
    }
    form.Render();
    std::printf("%s: %s triangles -> %s (%s%%), %zu points locked\n", qPrintable(mesh.isEmpty() ? group : mesh),
                qPrintable(form.lblOriginal->text()), qPrintable(form.lblSimp->text()),
                qPrintable(form.lblReduction->text()), form.Session().LockedPoints().size());
    std::fflush(stdout);
    if (!shot.isEmpty()) form.grab().save(shot);
    QTimer::singleShot(static_cast<int>(seconds * 1000), &app, [&] { form.close(); });
    QObject::connect(&form, &QDialog::finished, &app, &QApplication::quit);
    return app.exec();
}
