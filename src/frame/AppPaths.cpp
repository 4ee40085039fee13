#include "AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace vexil {

namespace {
QString& overrideFolder() {
    static QString folder;
    return folder;
}
} // namespace

QString AppFolder() {
    QString f = overrideFolder();
    if (f.isEmpty()) f = qEnvironmentVariable("VEXIL_HOME");
    if (f.isEmpty()) {
        if (QCoreApplication::instance())
            f = QCoreApplication::applicationDirPath();
        else
            f = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath().section('/', 0, -2);
    }
    f = QDir::cleanPath(f);
    while (f.size() > 1 && f.endsWith('/')) f.chop(1);
    return f;
}

QString AppPath(const QString& relative) { return AppFolder() + '/' + relative; }

void setAppFolderForTests(const QString& folder) { overrideFolder() = folder; }

} // namespace vexil
