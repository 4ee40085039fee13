// the preferences: the store ignores the letter case of keys, the kept quirks, the preference loader.
#include "AppTestSupport.h"

using namespace vexil;
using vexil::test::AppEnv;

class SettingsTest : public AppEnv {};

TEST_F(SettingsTest, StoreLivesWhereTheTestPutsIt) {
    SaveSetting(SecPrefrences, QStringLiteral("MoveStep"), QStringLiteral("25"));
    EXPECT_EQ(SettingsStore::instance().fileName(), tempPath(QStringLiteral("settings/Vexil 2.0.ini")));
    EXPECT_TRUE(QFile::exists(SettingsStore::instance().fileName()));
}

TEST_F(SettingsTest, KeysAndSectionsMatchWithoutRegardToCase) {
    SaveSetting(QStringLiteral("Prefrences"), QStringLiteral("rotateStep"), QStringLiteral("30"));
    EXPECT_EQ(GetSetting(QStringLiteral("prefrences"), QStringLiteral("ROTATESTEP"), QStringLiteral("45")), QStringLiteral("30"));
    SaveSetting(QStringLiteral("PREFRENCES"), QStringLiteral("RotateStep"), QStringLiteral("15"));
    EXPECT_EQ(SettingsStore::instance().keys(SecPrefrences), QStringList{QStringLiteral("rotateStep")})
        << "one key: the first spelling stays";
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("rotatestep")), QStringLiteral("15"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("Missing"), QStringLiteral("dflt")), QStringLiteral("dflt"));
}

TEST_F(SettingsTest, ValuesSurviveAsTextIncludingLineFeedsCommasAndBlanksInKeys) {
    SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band0"), QStringLiteral("Toolbar10\n0\nTrue\n0\n1200\n0"));
    SaveSetting(SecMRUFiles, QStringLiteral("0"), QStringLiteral("/tmp/a, b.wld"));
    SaveSetting(SecPrefrences, QStringLiteral("Show Tips at Startup"), QStringLiteral("0"));
    SettingsStore::setLocation(tempPath(QStringLiteral("settings"))); // reopen from disk
    EXPECT_EQ(GetSetting(SecInterface, QStringLiteral("Coolbar1 Band0")), QStringLiteral("Toolbar10\n0\nTrue\n0\n1200\n0"));
    EXPECT_EQ(GetSetting(SecMRUFiles, QStringLiteral("0")), QStringLiteral("/tmp/a, b.wld"));
    EXPECT_EQ(ReadShowTipsAtStartup(), 0);
}

TEST_F(SettingsTest, EmptyStoreGivesTheDefaults) {
    LoadPreferences();
    const Preferences& p = Prefs();
    EXPECT_EQ(p.CamLightObjRelativeSize, 35);
    EXPECT_EQ(p.TransformGizmoSensitivity, 50);
    EXPECT_EQ(p.MoveStep, 100);
    EXPECT_EQ(p.RotateStep, 45);
    EXPECT_EQ(p.ScaleStep, 2);
    EXPECT_EQ(p.SignificantDecimals, 2);
    EXPECT_EQ(p.StartUpGrid, 1);
    EXPECT_EQ(p.StartUpGridSnap, 1);
    EXPECT_EQ(CurrentLCID(), 409);
    EXPECT_EQ(AppLog().beepMask, 255);
    EXPECT_EQ(ReadShowSplashMode(), 1);
    EXPECT_EQ(ReadShowTipsAtStartup(), 1);
    EXPECT_TRUE(ReadExpertModeStartup());
    EXPECT_EQ(ReadGridDensity(), 40);
    EXPECT_TRUE(ReadMaxUndoRedoText().isEmpty());
}

TEST_F(SettingsTest, ScaleStepIsReadWithABlankAndWrittenWithout) {
    SaveSetting(SecPrefrences, QStringLiteral("ScaleStep"), QStringLiteral("5"));
    LoadPreferences();
    EXPECT_EQ(Prefs().ScaleStep, 2) << "the stored value never comes back";
    SaveSetting(SecPrefrences, QStringLiteral("scaleStep "), QStringLiteral("7"));
    LoadPreferences();
    EXPECT_EQ(Prefs().ScaleStep, 7);
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("ScaleStep")), QStringLiteral("5"));
    // "rotateStep" is read, "RotateStep" written: one key.
    SaveSetting(SecPrefrences, QStringLiteral("RotateStep"), QStringLiteral("12.5"));
    LoadPreferences();
    EXPECT_EQ(Prefs().RotateStep, 12.5);
}

TEST_F(SettingsTest, SplashExpertModeAndBeepFallbacks) {
    SaveSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), QStringLiteral("yes please"));
    EXPECT_EQ(ReadShowSplashMode(), 1) << "text counts as 1";
    SaveSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), QStringLiteral("0"));
    EXPECT_EQ(ReadShowSplashMode(), 0);
    SaveSetting(SecPrefrences, QStringLiteral("Expert Mode Startup"), QStringLiteral("False"));
    EXPECT_FALSE(ReadExpertModeStartup());
    SaveSetting(SecPrefrences, QStringLiteral("Expert Mode Startup"), QStringLiteral("-1"));
    EXPECT_TRUE(ReadExpertModeStartup());
}

TEST_F(SettingsTest, NonNumericValueRaisesAConversionErrorFromTheLoader) {
    SaveSetting(SecPrefrences, QStringLiteral("MoveStep"), QStringLiteral("12"));
    SaveSetting(SecPrefrences, QStringLiteral("SignificantDecimals"), QStringLiteral("many"));
    try {
        LoadPreferences();
        FAIL() << "expected a conversion error";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrTypeMismatch);
        EXPECT_EQ(e.source, "Vexil.mdlPreferences.LoadPreferences");
    }
    EXPECT_EQ(Prefs().MoveStep, 12) << "values read before the failure stay";
    SaveSetting(SecPrefrences, QStringLiteral("SignificantDecimals"), QStringLiteral("3"));
    SaveSetting(SecPrefrences, QStringLiteral("ErrLogBeepVal"), QStringLiteral("300"));
    try {
        LoadPreferences();
        FAIL() << "a beep value beyond 8 bits overflows";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrOverflow);
    }
}
