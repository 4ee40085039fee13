// The preference globals and their loader. Read once, at start-up, before any window
// exists; frmPrefrences writes them back.
#pragma once
#include <QString>
#include <cstdint>

namespace vexil {

struct Preferences {
    double CamLightObjRelativeSize = 35;   // "CamLightObjRelativeSize"
    double TransformGizmoSensitivity = 50; // "TransformGizmoSensitivity"
    double MoveStep = 100;                 // "MoveStep"
    double RotateStep = 45;                // read "rotateStep", written "RotateStep" (one key: case is ignored)
    double ScaleStep = 2;                  // read "scaleStep " (with the blank), written "ScaleStep": kept quirk
    int SignificantDecimals = 2;           // "SignificantDecimals"
    int StartUpGrid = 1;                   // "StartUpGrid" (chkGrid value)
    int StartUpGridSnap = 1;               // "StartUpGridSnap" (chkGridSnap value)
    int ShowSplashMode = 1;                // "ShowSplashScreen", read by the entry routine
    bool ExpertModeStartup = true;         // "Expert Mode Startup", read at first activation
};

// The process's preferences.
Preferences& Prefs();

// Section names of the store.
inline const QString SecPrefrences = QStringLiteral("Prefrences");
inline const QString SecSettings = QStringLiteral("Settings");
inline const QString SecInterface = QStringLiteral("Interface");
inline const QString SecMRUFiles = QStringLiteral("MRUFiles");

// The preference loader: reads, in this order, "CamLightObjRelativeSize", "TransformGizmoSensitivity",
// "MoveStep", "rotateStep", "scaleStep ", "SignificantDecimals", "StartUpGrid", "StartUpGridSnap",
// "APP_LCID" (applied at once: SetAppLCID) and "ErrLogBeepVal" (given to AppLog at once).
// A non-numeric value raises a conversion error (13, "Type mismatch"; 6, "Overflow" for a beep value
// beyond 8 bits) with the trace "Vexil.mdlPreferences.LoadPreferences"; the values read before it stay.
void LoadPreferences();

// "ShowSplashScreen" with an empty default; a value that is not numeric counts as 1.
int ReadShowSplashMode();
// "Show Tips at Startup" (default 1).
int ReadShowTipsAtStartup();
// "Expert Mode Startup" (default True): "True"/"False" text, or a number (non-zero is true).
bool ReadExpertModeStartup();
// "GridDensity" (default 40), read by Grid construction: a number of cells from 1 to 1000. A stored
// value that is not such a number gives `current` (the density in force); `problem`, when given, receives
// a message that names the value and says that the density stays.
double ReadGridDensity(double current = 40.0, QString* problem = nullptr);
// "MaxUndoRedo" as stored (empty default); the undo stack interprets it (0 or non-numeric: 20).
QString ReadMaxUndoRedoText();

// VB's conversions: CDbl / CLng / CByte of a stored text; throw VexilError 13 (type mismatch) or 6 (overflow).
double ToDouble(const QString& text);
int ToLong(const QString& text);
std::uint8_t ToByte(const QString& text);
// VB's IsNumeric for the texts the store holds.
bool IsNumeric(const QString& text);
// CStr of a Boolean: "True" / "False".
inline QString BoolText(bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); }
// CBool of a text: "True"/"False" (any case) or a number.
bool ToBool(const QString& text);
// A double as VB's CStr writes it (shortest round-trip form, no exponent for ordinary values).
QString NumText(double v);

} // namespace vexil
