// the failure reporting: the log's format, the beep mask, the formatter and the trace of nested procedures.
#include "AppTestSupport.h"
#include "app/Form1.h"
#include "app/mdlSubMain.h"

#include <QFileInfo>

using namespace vexil;
using vexil::test::AppEnv;
using vexil::test::readFile;

class ErrLogTest : public AppEnv {};

TEST_F(ErrLogTest, SingleLineMessageGivesTypeLineMessageLineAndEmptyLine) {
    AppLog().LogEvent(QStringLiteral("Something failed"), LogError);
    EXPECT_EQ(log(), QStringLiteral("Error:\nSomething failed\n\n"));
}

TEST_F(ErrLogTest, OnlyLineFeedSplitsAndCarriageReturnStays) {
    AppLog().LogEvent(QStringLiteral("first\r\nsecond\nthird"), LogWarning);
    EXPECT_EQ(log(), QStringLiteral("Warning:\nfirst\r\nsecond\nthird\n\n"));
}

TEST_F(ErrLogTest, EmptyMessageAndUnknownTypeAndAppending) {
    AppLog().LogEvent(QString(), LogInformation);
    AppLog().LogEvent(QStringLiteral("no type line"), 3);
    AppLog().LogEvent(QStringLiteral("ends with LF\n"), LogError);
    EXPECT_EQ(log(), QStringLiteral("Information:\n\n\n"
                                    "no type line\n\n"
                                    "Error:\nends with LF\n\n\n"));
    AppLog().ClearLogFile();
    EXPECT_TRUE(log().isEmpty());
}

TEST_F(ErrLogTest, BeepMaskKeepsTheQuirkOfItsThreeTests) {
    auto beepsWith = [this](int mask) {
        AppLog().beepMask = std::uint8_t(mask);
        beeps = 0;
        std::string which;
        for (int type : {LogError, LogWarning, LogInformation}) {
            const int before = beeps;
            AppLog().LogEvent(QStringLiteral("x"), type);
            which += beeps > before ? "1" : "0";
        }
        return which; // error, warning, information
    };
    EXPECT_EQ(beepsWith(0), "000");
    EXPECT_EQ(beepsWith(255), "111");
    EXPECT_EQ(beepsWith(8), "000") << "\"Message\" (8) never beeps";
    EXPECT_EQ(beepsWith(4), "011") << "\"Warning\" (4) beeps for warnings and information";
    EXPECT_EQ(beepsWith(2), "110") << "\"Error\" (2) beeps for errors and warnings";
    EXPECT_EQ(beepsWith(16), "000") << "the mask at construction";
}

TEST_F(ErrLogTest, FormatterBeginsAndExtendsTheTrace) {
    EXPECT_EQ(FormatErrorSource(QString(), QStringLiteral("Form1"), QStringLiteral("Form_Load")),
              QStringLiteral("Vexil.Form1.Form_Load"));
    EXPECT_EQ(FormatErrorSource(QStringLiteral("Vexil.Maths.VectorNormalize"), QStringLiteral("Form1"),
                                QStringLiteral("cmdCreate_Click")),
              QStringLiteral("Vexil.Maths.VectorNormalize\r\nVexil.Form1.cmdCreate_Click"));
    VexilError e(ErrOverflow, "Overflow");
    e.addSource("A", "Inner").addSource("B", "Outer");
    EXPECT_EQ(e.source, "Vexil.A.Inner\r\nVexil.B.Outer");
    EXPECT_THROW(checkedDiv(1.0, 0.0), VexilError);
    EXPECT_DOUBLE_EQ(checkedDiv(1.0, 4.0), 0.25);
}

TEST_F(ErrLogTest, NestedProceduresReportATwoLineTraceInnerFirst) {
    QString shown;
    setErrorPresenter([&](const QString& text) { shown = text; });
    auto inner = [] { return propagate("mdlMaths", "Inner", [] { return checkedDiv(1.0, 0.0); }); };
    auto outer = [&] { return propagate("mdlTools", "Outer", [&] { return inner(); }); };
    const bool ok = handleEvent("Form1", "cmdTest_Click", [&] { outer(); });
    EXPECT_FALSE(ok);
    const QString expected = QStringLiteral("Unexpected error found 11\r\n Vexil.mdlMaths.Inner\r\nVexil.mdlTools.Outer\r\n"
                                            "Vexil.Form1.cmdTest_Click\r\n Division by zero");
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(LastErrorText(), expected);
    EXPECT_EQ(log(), QStringLiteral("Error:\nUnexpected error found 11\r\n Vexil.mdlMaths.Inner\r\nVexil.mdlTools.Outer\r\n"
                                    "Vexil.Form1.cmdTest_Click\r\n Division by zero\n\n"));
}

TEST_F(ErrLogTest, ForeignExceptionsBecomeVexilErrorsWithTheirLine) {
    try {
        propagate("Loader", "Read", []() -> int { throw std::runtime_error("bad file"); });
        FAIL();
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrInvalidCall);
        EXPECT_EQ(e.description, "bad file");
        EXPECT_EQ(e.source, "Vexil.Loader.Read");
    }
}

// VXE_Error.log was emptied at every start: the report of a crash was gone by the next run. The last few
// runs are kept beside it.
TEST_F(ErrLogTest, EachStartKeepsTheLogsOfTheLastFewRuns) {
    const QString file = AppLog().LogFile();
    for (int run = 1; run <= ErrLog::KeptRuns + 2; ++run) {
        AppLog().RotateLogFiles();
        EXPECT_EQ(readFile(file), QString());
        AppLog().LogEvent(QStringLiteral("run %1").arg(run), LogError);
    }
    AppLog().RotateLogFiles();
    const int last = ErrLog::KeptRuns + 2;
    for (int i = 1; i <= ErrLog::KeptRuns; ++i)
        EXPECT_TRUE(readFile(file + "." + QString::number(i)).contains(QStringLiteral("run %1").arg(last + 1 - i))) << i;
    EXPECT_FALSE(QFileInfo::exists(file + "." + QString::number(ErrLog::KeptRuns + 1)));
    // A run that logged nothing does not push out one that did.
    AppLog().RotateLogFiles();
    EXPECT_TRUE(readFile(file + ".1").contains(QStringLiteral("run %1").arg(last)));
    // The program's start does it.
    AppLog().LogEvent(QStringLiteral("before the crash"), LogError);
    delete StartApplication(QString());
    EXPECT_TRUE(readFile(file + ".1").contains(QStringLiteral("before the crash")));
}
