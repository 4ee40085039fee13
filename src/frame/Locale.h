// Language resources. Every visible text comes from the numbered string table:
//
//   label->setText(vexil::GetLocaleString(322));   // "New Object" in the current language
//
// The built-in table is language 409 (English). Other languages are files
// "<application folder>/Locale Resources/Sat<n>.lng" (n: the Windows locale number with its hex
// digits read as decimal, e.g. 407 German), one "id<TAB>text" per line, UTF-8; "\n" and "\t"
// and "\\" are escapes. Switching (SetAppLCID) works at run time: whoever shows strings
// connects to LocaleNotifier::languageChanged and reapplies them.
#pragma once
#include <QObject>
#include <QString>
#include <QStringList>
#include <map>
#include <vector>

namespace vexil {

// The program's only reader of UI strings. A missing string: the empty string and one line
// "Error while loading LocaleStringResource: ..." in the log, per reading.
QString GetLocaleString(int id);

// MessageStrings(i), 1 <= i <= 180: the strings code reads as messages, loaded at each language
// change: i 1..85 is UI string 319 + i; the indices above hold other message strings (see
// Locale.cpp for the list). Out-of-range indices give the empty string.
QString MessageStrings(int index);

// The window title, UI string 602 ("Vexil 2.0 c"), as loaded with the language.
QString UiAppTitle();

// The current language number (0 before the first SetAppLCID).
int CurrentLCID();
// Changes the language if lcid differs from the current one: loads the table (falling back to
// 409 with a message when the language file is missing), informs the plug-ins, and emits
// LocaleNotifier::languageChanged.
void SetAppLCID(int lcid);
// Fills and returns SupportedLanguages: element 0 is 409, then n of each language file "Sat<n>.lng" in
// "Locale Resources" (letter case aside); other files there are no languages.
const std::vector<int>& GetAllSupportedLanguages();
const std::vector<int>& SupportedLanguages();

// "German (Germany)": the English language name + " (" + English country name + ")".
QString LanguageDisplayName(int lcid);

// The built-in table (language 409): id -> text.
const std::map<int, QString>& BuiltInStringTable();
// Reads a language file; false if it can't be read.
bool ReadLanguageFile(const QString& path, std::map<int, QString>& table);
// The folder of the language files: application folder + "/Locale Resources".
QString LocaleResourcesFolder();

// Hook called by SetAppLCID with the new number after loading (InformPluginsOfChangeInUserLCID);
// the plug-in host installs it.
void setInformPluginsOfChangeInUserLCID(void (*hook)(int lcid));

// Emits languageChanged after every successful language load.
class LocaleNotifier : public QObject {
    Q_OBJECT
public:
    static LocaleNotifier& instance();
signals:
    void languageChanged(int lcid);
};

// Test support: forget the loaded language (CurrentLCID back to 0).
void ResetLocaleForTests();

} // namespace vexil
