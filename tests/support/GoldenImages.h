// Pictures compared with small golden images of the test program's golden folder (VEXIL_GOLDEN_DIR).
// VEXIL_UPDATE_GOLDEN=1 rewrites the images instead (look at them before committing).
#pragma once
#include <QDir>
#include <QImage>
#include <QString>
#include <cstdlib>
#include <gtest/gtest.h>

namespace vexil::test {

// Pixels whose channels differ by more than `tolerance` from the golden `name`; the whole picture when the
// sizes differ, -1 when the golden is missing.
inline int compareGolden(const QString& name, const QImage& actual, int tolerance,
                         const QString& dir = QStringLiteral(VEXIL_GOLDEN_DIR)) {
    const QString path = dir + QStringLiteral("/") + name + QStringLiteral(".png");
    const QImage got = actual.convertToFormat(QImage::Format_RGB32);
    if (qEnvironmentVariableIsSet("VEXIL_UPDATE_GOLDEN")) {
        QDir().mkpath(dir);
        got.save(path);
        return 0;
    }
    QImage want(path);
    if (want.isNull()) {
        ADD_FAILURE() << "missing golden " << path.toStdString() << " (VEXIL_UPDATE_GOLDEN=1 writes it)";
        return -1;
    }
    want = want.convertToFormat(QImage::Format_RGB32);
    if (want.size() != got.size()) return got.width() * got.height();
    int bad = 0;
    for (int y = 0; y < got.height(); ++y)
        for (int x = 0; x < got.width(); ++x) {
            const QRgb a = got.pixel(x, y), b = want.pixel(x, y);
            if (std::abs(qRed(a) - qRed(b)) > tolerance || std::abs(qGreen(a) - qGreen(b)) > tolerance ||
                std::abs(qBlue(a) - qBlue(b)) > tolerance)
                ++bad;
        }
    return bad;
}

} // namespace vexil::test
