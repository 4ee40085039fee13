// The preference loader.
#include "Preferences.h"

#include "ErrLog.h"
#include "Locale.h"
#include "Settings.h"

#include <QLocale>
#include <cmath>

namespace vexil {

Preferences& Prefs() {
    static Preferences p;
    return p;
}

bool IsNumeric(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) return false;
    bool ok = false;
    t.toDouble(&ok);
    if (ok) return true;
    // VB also accepts a leading "&H" hexadecimal number.
    if (t.startsWith(QStringLiteral("&H"), Qt::CaseInsensitive)) {
        t.mid(2).toLongLong(&ok, 16);
        return ok;
    }
    return false;
}

double ToDouble(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok) throw VexilError(ErrTypeMismatch, "Type mismatch");
    return v;
}

int ToLong(const QString& text) {
    const double v = ToDouble(text);
    const double r = std::nearbyint(v); // banker's rounding, as CLng
    if (r < -2147483648.0 || r > 2147483647.0) throw VexilError(ErrOverflow, "Overflow");
    return static_cast<int>(r);
}

std::uint8_t ToByte(const QString& text) {
    const double r = std::nearbyint(ToDouble(text));
    if (r < 0 || r > 255) throw VexilError(ErrOverflow, "Overflow");
    return static_cast<std::uint8_t>(r);
}

bool ToBool(const QString& text) {
    const QString t = text.trimmed();
    if (t.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0) return true;
    if (t.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0) return false;
    return ToDouble(t) != 0.0;
}

QString NumText(double v) { return QString::number(v, 'g', QLocale::FloatingPointShortest); }

void LoadPreferences() {
    propagate("mdlPreferences", "LoadPreferences", [] {
        Preferences& p = Prefs();
        p.CamLightObjRelativeSize = ToDouble(GetSetting(SecPrefrences, QStringLiteral("CamLightObjRelativeSize"), QStringLiteral("35")));
        p.TransformGizmoSensitivity = ToDouble(GetSetting(SecPrefrences, QStringLiteral("TransformGizmoSensitivity"), QStringLiteral("50")));
        p.MoveStep = ToDouble(GetSetting(SecPrefrences, QStringLiteral("MoveStep"), QStringLiteral("100")));
        p.RotateStep = ToDouble(GetSetting(SecPrefrences, QStringLiteral("rotateStep"), QStringLiteral("45")));
        p.ScaleStep = ToDouble(GetSetting(SecPrefrences, QStringLiteral("scaleStep "), QStringLiteral("2")));
        p.SignificantDecimals = ToLong(GetSetting(SecPrefrences, QStringLiteral("SignificantDecimals"), QStringLiteral("2")));
        p.StartUpGrid = ToLong(GetSetting(SecPrefrences, QStringLiteral("StartUpGrid"), QStringLiteral("1")));
        p.StartUpGridSnap = ToLong(GetSetting(SecPrefrences, QStringLiteral("StartUpGridSnap"), QStringLiteral("1")));
        SetAppLCID(ToLong(GetSetting(SecPrefrences, QStringLiteral("APP_LCID"), QStringLiteral("409"))));
        AppLog().beepMask = ToByte(GetSetting(SecPrefrences, QStringLiteral("ErrLogBeepVal"), QStringLiteral("255")));
    });
}

int ReadShowSplashMode() {
    const QString v = GetSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), QString());
    if (!IsNumeric(v)) return 1;
    return ToLong(v);
}

int ReadShowTipsAtStartup() {
    const QString v = GetSetting(SecPrefrences, QStringLiteral("Show Tips at Startup"), QStringLiteral("1"));
    return IsNumeric(v) ? ToLong(v) : 1;
}

bool ReadExpertModeStartup() {
    const QString v = GetSetting(SecPrefrences, QStringLiteral("Expert Mode Startup"), QStringLiteral("True"));
    try {
        return ToBool(v);
    } catch (const VexilError&) {
        return true;
    }
}

double ReadGridDensity(double current, QString* problem) {
    const QString v = GetSetting(SecPrefrences, QStringLiteral("GridDensity"), QStringLiteral("40"));
    bool ok = false;
    const double d = v.trimmed().toDouble(&ok);
    if (ok && std::isfinite(d) && d >= 1 && d <= 1000) return std::round(d);
    if (problem)
        *problem = QStringLiteral("The preference \"GridDensity\" holds \"%1\", which is not a number of grid cells "
                                  "from 1 to 1000. The grid keeps %2 cells.")
                       .arg(v, NumText(current));
    return current;
}

QString ReadMaxUndoRedoText() { return GetSetting(SecPrefrences, QStringLiteral("MaxUndoRedo"), QString()); }

} // namespace vexil
