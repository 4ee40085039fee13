// the language resources: the string table, missing strings, satellites, switching, the list of languages.
#include "AppTestSupport.h"

#include <QSignalSpy>

using namespace vexil;
using vexil::test::AppEnv;

class LocaleTest : public AppEnv {};

TEST_F(LocaleTest, BuiltInTableHoldsEveryIdFrom100To636) {
    const auto& table = BuiltInStringTable();
    EXPECT_EQ(table.size(), 537u);
    for (int id = 100; id <= 636; ++id) {
        if (id == 331 || (id >= 411 && id <= 414) || (id >= 485 && id <= 492) || (id >= 610 && id <= 612)) continue;
        // The ids that the design leaves without text are ours; all others are the documented.
        EXPECT_FALSE(GetLocaleString(id).isEmpty()) << id;
    }
    EXPECT_EQ(GetLocaleString(602), QStringLiteral("Vexil 2.0 c"));
    EXPECT_EQ(GetLocaleString(332), QStringLiteral("Save changes?"));
    EXPECT_EQ(GetLocaleString(201), QStringLiteral("Keep \"Shift\"/\"Alt\" pressed to change value by 2/0.5"));
    EXPECT_EQ(GetLocaleString(198), QStringLiteral(" Cut    "));
    EXPECT_EQ(UiAppTitle(), QStringLiteral("Vexil 2.0 c"));
}

TEST_F(LocaleTest, MissingStringIsEmptyAndLoggedOncePerReading) {
    EXPECT_TRUE(GetLocaleString(99).isEmpty());
    EXPECT_TRUE(GetLocaleString(99).isEmpty());
    const QString l = log();
    EXPECT_EQ(l.count(QStringLiteral("Error while loading LocaleStringResource: ")), 2);
    EXPECT_TRUE(l.startsWith(QStringLiteral("Error:\n")));
}

TEST_F(LocaleTest, MessageStringsFollowTheTable) {
    for (int i = 1; i <= 85; ++i) EXPECT_EQ(MessageStrings(i), GetLocaleString(319 + i)) << i;
    EXPECT_EQ(MessageStrings(86), QStringLiteral("NO_CHASE"));
    EXPECT_EQ(MessageStrings(93), QStringLiteral("NO_TRACK"));
    for (int i = 86; i <= 169; ++i) EXPECT_FALSE(MessageStrings(i).isEmpty()) << i;
    EXPECT_TRUE(MessageStrings(170).isEmpty());
    EXPECT_TRUE(MessageStrings(500).isEmpty());
}

TEST_F(LocaleTest, SwitchingToGermanChangesEveryReadingAndTellsListeners) {
    QSignalSpy spy(&LocaleNotifier::instance(), &LocaleNotifier::languageChanged);
    SetAppLCID(407);
    EXPECT_EQ(CurrentLCID(), 407);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(GetLocaleString(218), QStringLiteral("&Datei"));
    EXPECT_EQ(GetLocaleString(332), QStringLiteral("Änderungen speichern?"));
    EXPECT_EQ(MessageStrings(13), GetLocaleString(332));
    SetAppLCID(407);
    EXPECT_EQ(spy.count(), 1) << "the same number changes nothing";
    SetAppLCID(409);
    EXPECT_EQ(GetLocaleString(218), QStringLiteral("&File"));
}

TEST_F(LocaleTest, GermanFileTranslatesTheWholeTable) {
    std::map<int, QString> de;
    ASSERT_TRUE(ReadLanguageFile(AppPath(QStringLiteral("Locale Resources/Sat407.lng")), de));
    for (const auto& [id, text] : BuiltInStringTable()) {
        ASSERT_TRUE(de.count(id)) << "missing id " << id;
        EXPECT_FALSE(de[id].isEmpty()) << id;
    }
    EXPECT_EQ(de.size(), BuiltInStringTable().size());
    EXPECT_EQ(de[198], QStringLiteral(" Schneiden    ")) << "blanks are part of the text";
}

TEST_F(LocaleTest, MissingSatelliteGivesOneMessageAndTheDefaultLanguage) {
    ScriptedDialogs dlg;
    SetAppLCID(1036);
    EXPECT_EQ(CurrentLCID(), 409);
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.contains(QStringLiteral("Sat1036")));
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->icon, MsgInformation);
    EXPECT_EQ(GetLocaleString(218), QStringLiteral("&File"));
}

// A backup "Sat1031.lng.bak" or a "Sat1040.txt" beside the language files used to be offered as a
// language: only "Sat<n>.lng" files are languages.
TEST_F(LocaleTest, SupportedLanguagesComeFromTheLanguageFilesOnly) {
    for (const char* name : {"Sat1031.dll", "SatABC.lng", "Sat1036.lng", "Notes.txt", "Sat1040.txt",
                             "Sat1041.lng.bak", "Sat1043.LNG", "Xat1044.lng"}) {
        QFile f(AppPath(QStringLiteral("Locale Resources/") + QString::fromLatin1(name)));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    const std::vector<int> langs = GetAllSupportedLanguages();
    EXPECT_EQ(langs, (std::vector<int>{409, 1036, 1043, 407}));
    EXPECT_EQ(LanguageDisplayName(407), QStringLiteral("German (Germany)"));
    EXPECT_EQ(LanguageDisplayName(409), QStringLiteral("English (United States)"));
}

TEST_F(LocaleTest, NoLanguageFolderLogsAndLeavesTheDefault) {
    QDir(AppPath(QStringLiteral("Locale Resources"))).removeRecursively();
    EXPECT_EQ(GetAllSupportedLanguages(), std::vector<int>{409});
    EXPECT_TRUE(log().contains(QStringLiteral("GetAllSupportedLanguages: ")));
}
