// formTemplate and formTip, and the shipped data files they read.
#include "library/formTemplate.h"
#include "library/formTip.h"
#include "frame/Locale.h"
#include "frame/Settings.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace vexil;

namespace {

void writeFile(const QString& path, const QByteArray& text) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
}

QStringList entries(const QListWidget* list) {
    QStringList out;
    for (int i = 0; i < list->count(); ++i) out << list->item(i)->text();
    return out;
}

struct Recorder {
    QStringList loaded;
    int empty = 0;
    formTemplate* make(const QString& folder) {
        return new formTemplate(
            folder, [this](const QString& p) { loaded << p; return true; }, [this] { ++empty; });
    }
};

} // namespace

TEST(Template, AnEmptyFolderOffersNewOnly) {
    QTemporaryDir dir;
    Recorder r;
    std::unique_ptr<formTemplate> form(r.make(dir.path()));
    EXPECT_EQ(entries(form->List1), QStringList{"New"});
    EXPECT_EQ(form->List1->currentRow(), 0);
    EXPECT_EQ(form->windowTitle(), GetLocaleString(515));
    form->cmdOk_Click();
    EXPECT_EQ(r.empty, 1);
    EXPECT_TRUE(r.loaded.isEmpty());
    EXPECT_EQ(form->result(), QDialog::Accepted);
}

TEST(Template, WorldsAreListedWithoutTheirExtension) {
    QTemporaryDir dir;
    writeFile(dir.path() + "/Room.wld", "x");
    writeFile(dir.path() + "/Arena.WLD", "x");  // the extension is compared in lower case
    writeFile(dir.path() + "/notes.txt", "x");
    writeFile(dir.path() + "/model.zelmar", "x");
    QDir(dir.path()).mkdir("sub.wld");
    Recorder r;
    std::unique_ptr<formTemplate> form(r.make(dir.path()));
    EXPECT_EQ(entries(form->List1), (QStringList{"New", "Arena", "Room"}));
    form->List1->setCurrentRow(2);
    form->cmdOk_Click();
    EXPECT_EQ(r.loaded, QStringList{dir.path() + "/Room.wld"});
    EXPECT_EQ(r.empty, 0);
}

TEST(Template, EnterAndDoubleClickActAsOkCancelDoesNothing) {
    QTemporaryDir dir;
    writeFile(dir.path() + "/Room.wld", "x");
    Recorder r;
    std::unique_ptr<formTemplate> form(r.make(dir.path()));
    form->List1->setCurrentRow(1);
    QTest::keyClick(form.get(), Qt::Key_Return);
    EXPECT_EQ(r.loaded.size(), 1);
    std::unique_ptr<formTemplate> form2(r.make(dir.path()));
    form2->List1->setCurrentRow(1);
    form2->List1_DblClick();
    EXPECT_EQ(r.loaded.size(), 2);
    std::unique_ptr<formTemplate> form3(r.make(dir.path()));
    QTest::mouseClick(form3->cmdCancel, Qt::LeftButton);
    EXPECT_EQ(r.loaded.size(), 2);
    EXPECT_EQ(r.empty, 0);
    EXPECT_EQ(form3->result(), QDialog::Rejected);
}

TEST(Tip, AOneLineFileShowsThatLineAgainOnNext) {
    QTemporaryDir dir;
    writeFile(dir.path() + "/TIPOFDAY.TXT", "The only tip.\n");
    formTip tip(nullptr, dir.path() + "/TIPOFDAY.TXT");
    EXPECT_EQ(tip.Tips.size(), 1);
    EXPECT_EQ(tip.CurrentTip, 1);
    EXPECT_EQ(tip.lblTipText->text(), "The only tip.");
    QTest::mouseClick(tip.cmdNextTip, Qt::LeftButton);
    EXPECT_EQ(tip.lblTipText->text(), "The only tip.");
    EXPECT_EQ(tip.windowTitle(), GetLocaleString(516));
}

TEST(Tip, NextWrapsPastTheCountToOne) {
    QTemporaryDir dir;
    writeFile(dir.path() + "/t.txt", "one\ntwo\nthree\n");
    formTip tip(nullptr, dir.path() + "/t.txt");
    ASSERT_EQ(tip.Tips.size(), 3);
    EXPECT_GE(tip.CurrentTip, 1);
    EXPECT_LE(tip.CurrentTip, 3);
    tip.CurrentTip = 3;
    tip.cmdNextTip_Click();
    EXPECT_EQ(tip.CurrentTip, 1);
    EXPECT_EQ(tip.lblTipText->text(), "one");
    tip.cmdNextTip_Click();
    EXPECT_EQ(tip.lblTipText->text(), "two");
}

TEST(Tip, AMissingFileIsSaidInTheLabel) {
    QTemporaryDir dir;
    formTip tip(nullptr, dir.path() + "/TIPOFDAY.TXT");
    EXPECT_FALSE(tip.LoadTips(dir.path() + "/TIPOFDAY.TXT"));
    EXPECT_TRUE(tip.lblTipText->text().startsWith("That the TIPOFDAY.TXT"));
    EXPECT_TRUE(tip.lblTipText->text().contains("not found"));
    tip.cmdNextTip_Click();  // no tips: nothing happens
    EXPECT_FALSE(formTip::ShouldShowAtStartup(dir.path() + "/TIPOFDAY.TXT"));
}

TEST(Tip, TheCheckBoxWritesTheSettingAtOnce) {
    QTemporaryDir dir;
    writeFile(dir.path() + "/t.txt", "one\n");
    SaveSetting("Prefrences", "Show Tips at Startup", "1");
    formTip tip(nullptr, dir.path() + "/t.txt");
    EXPECT_TRUE(tip.chkLoadTipsAtStartup->isChecked());
    EXPECT_TRUE(formTip::ShouldShowAtStartup(dir.path() + "/t.txt"));
    QTest::mouseClick(tip.chkLoadTipsAtStartup, Qt::LeftButton);
    EXPECT_EQ(GetSetting("Prefrences", "show tips at startup"), "0");
    EXPECT_FALSE(formTip::ShouldShowAtStartup(dir.path() + "/t.txt"));
    formTip again(nullptr, dir.path() + "/t.txt");
    EXPECT_FALSE(again.chkLoadTipsAtStartup->isChecked());
    QTest::mouseClick(again.chkLoadTipsAtStartup, Qt::LeftButton);
    EXPECT_EQ(GetSetting("Prefrences", "Show Tips at Startup"), "1");
}

TEST(ShippedData, TheTipsFileAndTemplatesAreReal) {
    const QString data = QStringLiteral(VEXIL_SOURCE_DIR) + "/data";
    formTip tip(nullptr, data + "/TIPOFDAY.TXT");
    EXPECT_GE(tip.Tips.size(), 15);
    for (const QString& line : tip.Tips) EXPECT_FALSE(line.trimmed().isEmpty());
    Recorder r;
    std::unique_ptr<formTemplate> form(r.make(data + "/Templates"));
    EXPECT_GE(form->List1->count(), 4);  // "New" and at least three worlds
}
