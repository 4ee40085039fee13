// failure reporting to language resources through the window: frmPrefrences (language switch, quirks, beep list), formError.
#include "Form1Fixture.h"
#include "app/formError.h"
#include "app/frmPrefrences.h"
#include "frame/Spinner.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

using namespace vexil;
using vexil::test::Form1Test;

namespace {
int indexOfLanguage(int lcid) {
    const auto& l = SupportedLanguages();
    return int(std::find(l.begin(), l.end(), lcid) - l.begin());
}
} // namespace

TEST_F(Form1Test, LanguageChangeInPreferencesChangesTheMenusAtOnce) {
    start();
    const QString caption = form->windowTitle();
    ScriptedDialogs dlg;
    QString fileMenuInside;
    dlg.execAnswers.push_back([&](QDialog& d) {
        auto& p = dynamic_cast<frmPrefrences&>(d);
        p.cmbLang->setCurrentIndex(indexOfLanguage(407));
        p.cmdApply->click();
        fileMenuInside = form->mnuFile->title();
        EXPECT_EQ(p.windowTitle(), QStringLiteral("Einstellungen")) << "the dialog's strings too";
        p.cmdOk->click();
        return p.result();
    });
    form->mnuPreference->trigger();
    EXPECT_EQ(fileMenuInside, QStringLiteral("&Datei"));
    EXPECT_EQ(CurrentLCID(), 407);
    EXPECT_EQ(form->mnuSave->text(), QStringLiteral("&Speichern"));
    EXPECT_EQ(form->mnuWinWiewMaxMin->text(), QStringLiteral("&Max/Min"));
    EXPECT_EQ(form->ToolbarButton(QStringLiteral("Open"))->toolTip(), QStringLiteral("Öffnen"));
    EXPECT_EQ(form->tabWorkspace->tabText(0), QStringLiteral("Gruppen"));
    EXPECT_EQ(form->cmbObj->currentText(), QStringLiteral("Neues Objekt"));
    EXPECT_EQ(form->windowTitle(), caption) << "the caption stays until the next call that sets it";
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("APP_LCID")), QStringLiteral("407"));
    // At the next start the language is German from the outset.
    start();
    EXPECT_EQ(form->mnuEdit->title(), QStringLiteral("&Bearbeiten"));
}

TEST_F(Form1Test, CancelAfterAChangedLanguageKeepsTheOldLanguage) {
    start();
    ScriptedDialogs dlg;
    dlg.execAnswers.push_back([&](QDialog& d) {
        auto& p = dynamic_cast<frmPrefrences&>(d);
        p.cmbLang->setCurrentIndex(indexOfLanguage(407));
        p.cmdCancel->click();
        return p.result();
    });
    form->mnuPreference->trigger();
    EXPECT_EQ(CurrentLCID(), 409);
    EXPECT_EQ(form->mnuFile->title(), QStringLiteral("&File"));
    EXPECT_TRUE(GetSetting(SecPrefrences, QStringLiteral("APP_LCID")).isEmpty());
}

TEST_F(Form1Test, ApplyWritesTheKeysWithTheirQuirks) {
    start();
    ScriptedDialogs dlg;
    frmPrefrences p(form);
    EXPECT_EQ(p.Label4[0]->text(), QStringLiteral("20"));
    EXPECT_EQ(p.spnScaleStep->Value(), 2);
    p.spnScaleStep->SetValue(5);
    p.spnRotateStep->SetValue(30);
    p.UpDown1[0]->setValue(25);
    EXPECT_EQ(p.Label4[0]->text(), QStringLiteral("25")) << "UpDown1_Change";
    p.chkExpertMode->setChecked(false);
    p.cmdApply->click();
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("ScaleStep")), QStringLiteral("5"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("RotateStep")), QStringLiteral("30"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("MaxUndoRedo")), QStringLiteral("25"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("Expert Mode Startup")), QStringLiteral("False"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("ShowSplashScreen")), QStringLiteral("1"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("GridDensity")), QStringLiteral("40"));
    EXPECT_EQ(Prefs().ScaleStep, 5);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1) << "the depth changed";
    EXPECT_EQ(dlg.asked[0].text, QStringLiteral("Some settings will take effect only after restarting the application."));
    EXPECT_EQ(dlg.asked[0].icon, MsgInformation);
    EXPECT_EQ(form->UndoStack().PendingStackSize(), 25);
    // After a restart the scale step is 2 again, the rotate step is kept.
    LoadPreferences();
    EXPECT_EQ(Prefs().ScaleStep, 2);
    EXPECT_EQ(Prefs().RotateStep, 30);
}

TEST_F(Form1Test, DefaultActsOnTheTabShownWithoutWriting) {
    start();
    frmPrefrences p(form);
    p.spnMoveStep->SetValue(7);
    p.UpDown1[0]->setValue(99);
    p.tabOptions->setCurrentIndex(1);
    p.cmdDefault->click();
    EXPECT_EQ(p.spnMoveStep->Value(), 100);
    EXPECT_EQ(p.UpDown1[0]->value(), 99) << "another tab";
    p.tabOptions->setCurrentIndex(0);
    p.cmdDefault->click();
    EXPECT_EQ(p.UpDown1[0]->value(), 20);
    EXPECT_TRUE(GetSetting(SecPrefrences, QStringLiteral("MoveStep")).isEmpty());
}

TEST_F(Form1Test, BeepListShowsAndSetsTheMask) {
    start();
    EXPECT_EQ(AppLog().beepMask, 255);
    frmPrefrences p(form);
    EXPECT_EQ(p.lstErrLogBeep->item(0)->checkState(), Qt::Unchecked);
    for (int i = 1; i < 4; ++i) EXPECT_EQ(p.lstErrLogBeep->item(i)->checkState(), Qt::Checked);
    EXPECT_EQ(p.BeepListMask(), 14);
    p.lstErrLogBeep->item(0)->setCheckState(Qt::Checked);
    EXPECT_EQ(p.lstErrLogBeep->item(2)->checkState(), Qt::Unchecked) << "\"No Beep\" wins";
    p.cmdApply->click();
    EXPECT_EQ(AppLog().beepMask, 0);
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("ErrLogBeepVal")), QStringLiteral("0"));
    p.SetBeepList(4);
    EXPECT_EQ(p.BeepListMask(), 4);
    EXPECT_FALSE(p.lstSaveFlags->isEnabled());
    EXPECT_EQ(p.lstSaveFlags->count(), 6);
}

TEST_F(Form1Test, ErrorDialogThenNoLeavesTheWorldOpen) {
    start();
    InstallErrorDialog();
    ScriptedDialogs dlg;
    QString labelShown;
    dlg.execAnswers.push_back([&](QDialog& d) {
        labelShown = d.windowTitle();
        return int(QDialog::Rejected);
    });
    dlg.msgAnswers = {vbNo};
    const bool ok = handleEvent("Form1", "mnuTest_Click", [] { raiseOverflow(); });
    EXPECT_FALSE(ok);
    EXPECT_EQ(labelShown, QStringLiteral("Error"));
    ASSERT_EQ(dlg.count(QStringLiteral("exec")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("exec"))->text, QStringLiteral("formError"));
    const auto* q = dlg.last(QStringLiteral("msgBox"));
    ASSERT_NE(q, nullptr);
    EXPECT_EQ(q->text, GetLocaleString(577) + QStringLiteral("\n") + GetLocaleString(578));
    EXPECT_EQ(q->buttons, MsgYesNo);
    EXPECT_EQ(q->icon, MsgCritical);
    EXPECT_EQ(q->title, QStringLiteral("Error"));
    EXPECT_FALSE(TerminatingOnError());
    EXPECT_TRUE(form->WorldOpen());
    EXPECT_TRUE(log().contains(QStringLiteral("Unexpected error found 6\r\n Vexil.Form1.mnuTest_Click\r\n Overflow")));
}

TEST_F(Form1Test, ErrorDialogThenYesTerminates) {
    start();
    InstallErrorDialog();
    auto saved = TerminateProcessHook();
    bool terminated = false;
    TerminateProcessHook() = [&] { terminated = true; };
    ScriptedDialogs dlg;
    dlg.msgAnswers = {vbYes};
    ReportError(5, QStringLiteral("Vexil.Form1.x"), QStringLiteral("Invalid procedure call"));
    TerminateProcessHook() = saved;
    EXPECT_TRUE(terminated);
    EXPECT_TRUE(TerminatingOnError());
}

TEST_F(Form1Test, MailReportCarriesTheErrorTheEventsAndTheLog) {
    start();
    ScriptedDialogs dlg;
    ReportError(11, QStringLiteral("Vexil.SurfSimpli.Cost"), QStringLiteral("Division by zero"));
    formError f;
    QString link;
    auto saved = formError::OpenMailLink();
    formError::OpenMailLink() = [&](const QString& l) { link = l; };
    dlg.msgAnswers = {vbCancel};
    f.cmdEmailReport_Click();
    EXPECT_TRUE(link.isEmpty()) << "an empty description, Cancel: back to the dialog";
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, GetLocaleString(576));
    f.Text1->setPlainText(QStringLiteral("opened a world\nsimplified it"));
    f.cmdEmailReport_Click();
    formError::OpenMailLink() = saved;
    EXPECT_TRUE(link.startsWith(QStringLiteral("mailto:") + QString::fromLatin1(formError::MailTarget) +
                                QStringLiteral("?subject=Vexil 2.0 Bug report; LangID: 409&body=Error Description: %0d%0d"
                                               "Unexpected error found 11")));
    EXPECT_TRUE(link.contains(QStringLiteral("opened a world%0d\nsimplified it")));
    EXPECT_TRUE(link.contains(QStringLiteral("--- VXE_Error.log ---%0d\n Error:")));
}
