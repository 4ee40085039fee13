// vexil-viewer run as a program without a window: the camera's place after N frames of the
// sample world flying its track, a golden picture of that frame, and the exit codes of bad input.
// VEXIL_UPDATE_GOLDEN=1 rewrites the picture (look at it before committing).
#include "../support/GoldenImages.h"
#include "ChaseWorldFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>

namespace {

struct ViewerRun {
    int code = -1;
    QString out, err;
};

ViewerRun viewer(const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral(VIEWER_EXE), args);
    ViewerRun r;
    if (!p.waitForFinished(120000)) return r;
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

TEST(Headless, TheSampleCameraFliesItsTrackAndTheFrameMatchesItsGolden) {
    QTemporaryDir tmp;
    const std::string world = viewertest::writeChaseWorld(tmp.path().toStdString());
    ASSERT_FALSE(world.empty());
    const ViewerRun r = viewer({"--frames", "400", "--size", "32x24", QString::fromStdString(world)});
    ASSERT_EQ(r.code, 0) << r.err.toStdString();
    const QRegularExpressionMatch m =
        QRegularExpression(QStringLiteral("camera \"Camera01\" location (\\S+) (\\S+) (\\S+) direction")).match(r.out);
    ASSERT_TRUE(m.hasMatch()) << r.out.toStdString();
    // 400 steps of 5 units = 2000: 1239.395 from (0, -900, 320) to the track's first point
    // (850, 0, 260), 444.064 along the chord to its second point, the 316.541 left on the way
    // to the third.
    const double p1[3] = {736.1215932167729, 424.99999999999994, 320};
    const double p2[3] = {425.0000000000001, 736.1215932167728, 260};
    const double first = std::sqrt(850.0 * 850 + 900 * 900 + 60 * 60);
    const double chord1 = std::sqrt(std::pow(p1[0] - 850, 2) + std::pow(p1[1], 2) + std::pow(p1[2] - 260, 2));
    const double left = 400 * 5.0 - first - chord1; // beyond point 1, on the way to point 2
    ASSERT_GT(left, 0);
    const double chord2 = std::sqrt(std::pow(p2[0] - p1[0], 2) + std::pow(p2[1] - p1[1], 2) + std::pow(p2[2] - p1[2], 2));
    ASSERT_LT(left, chord2);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(m.captured(i + 1).toDouble(), p1[i] + (p2[i] - p1[i]) * left / chord2, 1e-6) << i;
    // The frame after 100 steps: on the first leg, looking over a tree and the grass.
    const QString frame = tmp.filePath(QStringLiteral("frame.png"));
    const ViewerRun g = viewer({"--frames", "100", "--size", "160x120", "--out", frame, QString::fromStdString(world)});
    ASSERT_EQ(g.code, 0) << g.err.toStdString();
    const QImage got = QImage(frame).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(got.size(), QSize(160, 120));
    EXPECT_LE(vexil::test::compareGolden(QStringLiteral("sample_chase_frame"), got, 8), 160 * 120 / 200);
}

TEST(Headless, BadInputGivesAMessageAndItsExitCode) {
    QTemporaryDir tmp;
    ViewerRun r = viewer({"--frames", "1", tmp.filePath(QStringLiteral("missing.wld"))});
    EXPECT_EQ(r.code, 3);
    EXPECT_TRUE(r.err.contains(QStringLiteral("does not exist"))) << r.err.toStdString();
    QFile junk(tmp.filePath(QStringLiteral("junk.wld")));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("zelmar-world-text 1\ngroup 0 father=7 name=\"x\"\n");
    junk.close();
    r = viewer({"--frames", "1", junk.fileName()});
    EXPECT_EQ(r.code, 4);
    EXPECT_TRUE(r.err.contains(QStringLiteral("could not be loaded"))) << r.err.toStdString();
    r = viewer({"--frames", "many", QStringLiteral(VIEWER_SAMPLE_WORLD)});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains(QStringLiteral("usage:")));
    r = viewer({"--frames", "1", "--out", tmp.filePath(QStringLiteral("no/such/folder/f.png")),
                QStringLiteral(VIEWER_SAMPLE_WORLD)});
    EXPECT_EQ(r.code, 5);
    EXPECT_TRUE(r.err.contains(QStringLiteral("could not be written")));
}

} // namespace
