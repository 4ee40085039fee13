// Language resources: the current table, MessageStrings, switching, satellites.
#include "Locale.h"

#include "AppPaths.h"
#include "Dialogs.h"
#include "ErrLog.h"

#include <QDir>
#include <QRegularExpression>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTextStream>

namespace vexil {

namespace {

struct LocaleState {
    int currentLcid = 0;
    bool builtIn = true;
    std::map<int, QString> satellite; // the loaded language file (when not built-in)
    std::vector<QString> messageStrings = std::vector<QString>(181);
    QString appTitle;
    std::vector<int> supported{409};
    void (*informPlugins)(int) = nullptr;
};

LocaleState& state() {
    static LocaleState s;
    return s;
}

// MessageStrings indices 86..169 (1..85 are UI strings 320..404). Documented in docs/ui.md.
constexpr int kMessageIdsFrom86[] = {
    567, 568, 569, 570, 571, 572, 573, 575, 565, 574,           // 86..95  chase/track types, bitmap messages
    576, 577, 578, 579, 580,                                     // 96..100 error dialog, invalid parameter
    592, 593, 594, 595, 596, 597, 609,                           // 101..107 light map input checks, file not found
    613, 614, 615, 616, 617, 618, 619, 620, 621, 622, 623,       // 108..118 extrude, plug-ins, simplification
    624, 625, 626, 627, 636,                                     // 119..123 status texts, toolbar corrupt
    560, 561, 562, 563, 564, 566, 599,                           // 124..130 sides, "Dir", back space hint
    405, 406, 407, 408, 409, 410, 441, 520, 521,                 // 131..139 about box, chase, transparent colour
    581, 582, 583, 584, 585, 586, 587, 588, 589, 590, 591,       // 140..150 simplification hints
    598, 600, 601, 603, 604, 605, 606, 607, 608,                 // 151..159 spinner labels
    628, 629, 630, 631, 632, 633, 634, 635, 542, 602,            // 160..169 tabs and bands, title
};

// Resource lookup of the current language object (clsResources.GetResourceString).
bool lookup(int id, QString& text, QString& error) {
    const LocaleState& s = state();
    const std::map<int, QString>& table = s.builtIn ? BuiltInStringTable() : s.satellite;
    auto it = table.find(id);
    if (it == table.end()) {
        error = QStringLiteral("Resource with identifier '%1' not found").arg(id);
        return false;
    }
    text = it->second;
    return true;
}

void loadMessageStrings() {
    LocaleState& s = state();
    for (auto& m : s.messageStrings) m.clear();
    for (int i = 1; i <= 85; ++i) s.messageStrings[i] = GetLocaleString(319 + i);
    int i = 86;
    for (int id : kMessageIdsFrom86) s.messageStrings[i++] = GetLocaleString(id);
    s.appTitle = GetLocaleString(602);
}

// LoadLanguageResource.
bool loadLanguageResource() {
    LocaleState& s = state();
    if (s.currentLcid == 409) {
        s.builtIn = true;
        s.satellite.clear();
        loadMessageStrings();
        return true;
    }
    std::map<int, QString> table;
    const QString path = LocaleResourcesFolder() + QStringLiteral("/Sat%1.lng").arg(s.currentLcid);
    if (ReadLanguageFile(path, table)) {
        s.builtIn = false;
        s.satellite = std::move(table);
        loadMessageStrings();
        return true;
    }
    dialogs().msgBox(QStringLiteral("User specific language resource \"/Locale Resources/Sat%1.lng\" is either "
                                    "missing, unregistered or corrupt. Using default language settings!")
                         .arg(s.currentLcid),
                     MsgOKOnly, MsgInformation);
    SetAppLCID(409);
    return false;
}

QString unescape(const QString& in) {
    QString out;
    out.reserve(in.size());
    for (int i = 0; i < in.size(); ++i) {
        const QChar c = in[i];
        if (c == QLatin1Char('\\') && i + 1 < in.size()) {
            const QChar n = in[++i];
            if (n == QLatin1Char('n')) out += QLatin1Char('\n');
            else if (n == QLatin1Char('t')) out += QLatin1Char('\t');
            else if (n == QLatin1Char('r')) out += QLatin1Char('\r');
            else out += n;
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace

QString GetLocaleString(int id) {
    QString text, error;
    if (lookup(id, text, error)) return text;
    AppLog().LogEvent(QStringLiteral("Error while loading LocaleStringResource: ") + error, LogError);
    return QString();
}

QString MessageStrings(int index) {
    const auto& m = state().messageStrings;
    if (index < 0 || index >= int(m.size())) return QString();
    return m[index];
}

QString UiAppTitle() { return state().appTitle; }

int CurrentLCID() { return state().currentLcid; }

void SetAppLCID(int lcid) {
    LocaleState& s = state();
    if (lcid == s.currentLcid) return;
    s.currentLcid = lcid;
    if (!loadLanguageResource()) return; // the fallback to 409 has run, and emitted
    if (s.informPlugins) s.informPlugins(lcid);
    emit LocaleNotifier::instance().languageChanged(lcid);
}

const std::vector<int>& GetAllSupportedLanguages() {
    LocaleState& s = state();
    s.supported.assign(1, 409);
    const QDir dir(LocaleResourcesFolder());
    if (!dir.exists()) {
        AppLog().LogEvent(QStringLiteral("GetAllSupportedLanguages: Path not found"), LogError);
        return s.supported;
    }
    // Language files only: "Sat<n>.lng" (a backup or a note beside them is no language).
    static const QRegularExpression languageFile(QStringLiteral("^Sat([0-9]+)\\.lng$"),
                                                 QRegularExpression::CaseInsensitiveOption);
    const QStringList files = dir.entryList(QDir::Files, QDir::Name);
    for (const QString& f : files) {
        const QRegularExpressionMatch m = languageFile.match(f);
        if (!m.hasMatch()) continue;
        bool ok = false;
        const int n = m.captured(1).toInt(&ok);
        if (ok && n != 409 &&
            std::find(s.supported.begin(), s.supported.end(), n) == s.supported.end())
            s.supported.push_back(n);
    }
    return s.supported;
}

const std::vector<int>& SupportedLanguages() { return state().supported; }

QString LanguageDisplayName(int lcid) {
    // The number is a Windows locale number written with its hex digits read as decimal.
    bool ok = false;
    const int windowsLcid = QString::number(lcid).toInt(&ok, 16);
    static const struct { int lcid; QLocale::Language lang; QLocale::Territory territory; } known[] = {
        {0x409, QLocale::English, QLocale::UnitedStates}, {0x809, QLocale::English, QLocale::UnitedKingdom},
        {0x407, QLocale::German, QLocale::Germany},       {0x807, QLocale::German, QLocale::Switzerland},
        {0x40C, QLocale::French, QLocale::France},        {0x410, QLocale::Italian, QLocale::Italy},
        {0x40A, QLocale::Spanish, QLocale::Spain},        {0xC0A, QLocale::Spanish, QLocale::Spain},
        {0x413, QLocale::Dutch, QLocale::Netherlands},    {0x416, QLocale::Portuguese, QLocale::Brazil},
        {0x816, QLocale::Portuguese, QLocale::Portugal},  {0x419, QLocale::Russian, QLocale::Russia},
        {0x415, QLocale::Polish, QLocale::Poland},        {0x41D, QLocale::Swedish, QLocale::Sweden},
        {0x406, QLocale::Danish, QLocale::Denmark},       {0x414, QLocale::NorwegianBokmal, QLocale::Norway},
        {0x40B, QLocale::Finnish, QLocale::Finland},      {0x405, QLocale::Czech, QLocale::CzechRepublic},
        {0x40E, QLocale::Hungarian, QLocale::Hungary},    {0x408, QLocale::Greek, QLocale::Greece},
        {0x41F, QLocale::Turkish, QLocale::Turkey},       {0x40D, QLocale::Hebrew, QLocale::Israel},
        {0x411, QLocale::Japanese, QLocale::Japan},       {0x412, QLocale::Korean, QLocale::SouthKorea},
        {0x804, QLocale::Chinese, QLocale::China},        {0x404, QLocale::Chinese, QLocale::Taiwan},
    };
    if (ok)
        for (const auto& k : known)
            if (k.lcid == windowsLcid)
                return QLocale::languageToString(k.lang) + QStringLiteral(" (") + QLocale::territoryToString(k.territory) +
                       QStringLiteral(")");
    return QStringLiteral("Language %1").arg(lcid);
}

bool ReadLanguageFile(const QString& path, std::map<int, QString>& table) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    QTextStream in(&file);
    in.setEncoding(QStringConverter::Utf8);
    table.clear();
    while (!in.atEnd()) {
        QString line = in.readLine();
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        const int tab = line.indexOf(QLatin1Char('\t'));
        if (tab <= 0) continue;
        bool ok = false;
        const int id = line.left(tab).trimmed().toInt(&ok);
        if (!ok) continue;
        table[id] = unescape(line.mid(tab + 1));
    }
    return !table.empty();
}

QString LocaleResourcesFolder() { return AppPath(QStringLiteral("Locale Resources")); }

void setInformPluginsOfChangeInUserLCID(void (*hook)(int)) { state().informPlugins = hook; }

LocaleNotifier& LocaleNotifier::instance() {
    static LocaleNotifier n;
    return n;
}

void ResetLocaleForTests() {
    LocaleState& s = state();
    s.currentLcid = 0;
    s.builtIn = true;
    s.satellite.clear();
}

} // namespace vexil
