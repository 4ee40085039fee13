// the shared containers (LinkedList, file helpers), ParseCommand of the application entry, and the dialogs seam (the input seam is exercised by the key tests).
#include "AppTestSupport.h"
#include "app/Form1.h"
#include "frame/LinkedList.h"
#include "frame/mdlFileFunctions.h"

using namespace vexil;
using vexil::test::AppEnv;

class HelpersTest : public AppEnv {};

TEST_F(HelpersTest, LinkedListAppendsWalksAndDeletes) {
    LinkedList l;
    for (int v : {5, 7, 9}) l.Append(v);
    EXPECT_EQ(l.Count(), 3);
    EXPECT_EQ(l.CurrItemData(), 9) << "the new node is current";
    l.SetCurrToFirst();
    std::vector<int> seen;
    while (l.IsCurrItemValid()) {
        seen.push_back(l.CurrItemData());
        l.SetCurrToNext();
    }
    EXPECT_EQ(seen, (std::vector<int>{5, 7, 9}));
    l.FindAndDelete(7);
    EXPECT_EQ(l.Count(), 2);
    EXPECT_EQ(l.CurrItemData(), 9) << "the cursor moves on to the next";
    l.FindAndDelete(9);
    l.Append(11);
    l.SetCurrToFirst();
    l.SetCurrToNext();
    EXPECT_EQ(l.CurrItemData(), 11) << "the last pointer followed the deletion";
}

TEST_F(HelpersTest, LinkedListOnlyNodeAndInvalidCursor) {
    ScriptedDialogs dlg;
    LinkedList l;
    l.Append(1);
    l.DeleteCurr();
    EXPECT_EQ(l.Count(), 0);
    EXPECT_TRUE(l.IsFirstNull());
    EXPECT_TRUE(l.IsLastNull());
    EXPECT_FALSE(l.IsCurrItemValid());
    l.DeleteCurr();
    EXPECT_EQ(l.CurrItemData(), 0);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 2);
    EXPECT_EQ(dlg.asked[0].text, QStringLiteral("Current Item Invalid"));
    EXPECT_EQ(dlg.asked[0].title, QStringLiteral("LinkedList"));
    EXPECT_EQ(dlg.asked[0].icon, MsgCritical);
    l.Append(3);
    l.FindAndDelete(4);
    EXPECT_EQ(l.Count(), 1) << "a value that isn't there changes nothing but the cursor";
    EXPECT_FALSE(l.IsCurrItemValid());
}

TEST_F(HelpersTest, FileNameAndFolderOfAPath) {
    using namespace mdlFileFunctions;
    EXPECT_EQ(GetFileName(QStringLiteral("/worlds/city/town.wld")), QStringLiteral("town.wld"));
    EXPECT_EQ(GetFolder(QStringLiteral("/worlds/city/town.wld")), QStringLiteral("/worlds/city"));
    EXPECT_EQ(GetFileName(QStringLiteral("town.wld")), QStringLiteral("town.wld"));
    EXPECT_EQ(GetFolder(QStringLiteral("town.wld")), QString());
    EXPECT_EQ(GetFolder(QStringLiteral("/town.wld")), QString()) << "the root has no closing separator";
}

TEST_F(HelpersTest, MoveFolderFilesMovesFilesReplacingAndSkipsFolders) {
    using namespace mdlFileFunctions;
    QDir d(tempPath(QString()));
    d.mkpath(QStringLiteral("src/sub"));
    d.mkpath(QStringLiteral("dst"));
    auto write = [&](const QString& rel, const QByteArray& data) {
        QFile f(tempPath(rel));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(data);
    };
    write(QStringLiteral("src/a.bmp"), "new");
    write(QStringLiteral("src/b.bmp"), "b");
    write(QStringLiteral("dst/a.bmp"), "old");
    EXPECT_TRUE(MoveFolderFiles(tempPath(QStringLiteral("src")), tempPath(QStringLiteral("dst"))));
    EXPECT_EQ(vexil::test::readFile(tempPath(QStringLiteral("dst/a.bmp"))), QStringLiteral("new"));
    EXPECT_TRUE(QFile::exists(tempPath(QStringLiteral("dst/b.bmp"))));
    EXPECT_FALSE(QFile::exists(tempPath(QStringLiteral("src/a.bmp"))));
    EXPECT_TRUE(QDir(tempPath(QStringLiteral("src/sub"))).exists());
    EXPECT_FALSE(MoveFolderFiles(tempPath(QStringLiteral("nowhere")), tempPath(QStringLiteral("dst"))));
}

TEST(ParseCommand, QuoteRules) {
    EXPECT_EQ(Form1::ParseCommand(QString()), QString());
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("  \"/tmp/my worlds/city.wld\"  ")), QStringLiteral("/tmp/my worlds/city.wld"));
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("/tmp/my worlds/city.wld")), QStringLiteral("/tmp/my worlds/city.wld"))
        << "blanks inside are part of the path";
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("\"")), QString()) << "a lone quote";
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("\"/a.wld")), QStringLiteral("/a.wld"));
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("/a.wld\"")), QStringLiteral("/a.wld"));
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("\"\"/a.wld\"\"")), QStringLiteral("\"/a.wld\"")) << "one quote at each end";
    EXPECT_EQ(Form1::ParseCommand(QStringLiteral("   ")), QString());
}

TEST_F(HelpersTest, ScriptedDialogsAnswerFromQueuesAndRecord) {
    ScriptedDialogs dlg;
    dlg.msgAnswers = {vbNo};
    dlg.fileAnswers = {QStringLiteral("/tmp/x.wld")};
    EXPECT_EQ(dialogs().msgBox(QStringLiteral("Q?"), MsgYesNoCancel, MsgQuestion), vbNo);
    EXPECT_EQ(dialogs().msgBox(QStringLiteral("again"), MsgYesNo), vbYes) << "an empty queue answers the first button";
    EXPECT_EQ(dlg.unexpected, 1);
    EXPECT_EQ(dialogs().getOpenFileName(QStringLiteral("Open"), QString(), QString()), QStringLiteral("/tmp/x.wld"));
    EXPECT_TRUE(dialogs().getSaveFileName(QStringLiteral("Save"), QString(), QString()).isEmpty());
    EXPECT_FALSE(dialogs().chooseColor(Qt::red).has_value());
    EXPECT_TRUE(dialogs().inputBox(QStringLiteral("Name?")).isEmpty());
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 2);
    {
        ScriptedDialogs inner;
        EXPECT_EQ(&dialogs(), &inner);
    }
    EXPECT_EQ(&dialogs(), &dlg);
}
