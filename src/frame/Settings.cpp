// The settings store: QSettings in INI format, key lookup without regard to case.
#include "Settings.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace vexil {

namespace {
QString& overrideDir() {
    static QString dir;
    return dir;
}
} // namespace

SettingsStore& SettingsStore::instance() {
    static SettingsStore store;
    return store;
}

SettingsStore::SettingsStore() { reopen(); }
SettingsStore::~SettingsStore() = default;

QString SettingsStore::location() {
    if (!overrideDir().isEmpty()) return overrideDir();
    const QString env = qEnvironmentVariable("VEXIL_SETTINGS_DIR");
    if (!env.isEmpty()) return env;
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (base.isEmpty()) base = QDir::homePath() + QStringLiteral("/.config");
    return base + QStringLiteral("/Vexil");
}

void SettingsStore::setLocation(const QString& dir) {
    overrideDir() = dir;
    instance().reopen();
}

void SettingsStore::reopen() {
    if (m_settings) m_settings->sync();
    const QString dir = location();
    QDir().mkpath(dir);
    m_settings = std::make_unique<QSettings>(dir + QStringLiteral("/Vexil 2.0.ini"), QSettings::IniFormat);
}

QString SettingsStore::fileName() const { return m_settings->fileName(); }

QString SettingsStore::findSection(const QString& section) const {
    const QStringList groups = m_settings->childGroups();
    for (const QString& g : groups)
        if (g.compare(section, Qt::CaseInsensitive) == 0) return g;
    return QString();
}

QString SettingsStore::findKey(const QString& realSection, const QString& key) const {
    if (realSection.isEmpty()) return QString();
    m_settings->beginGroup(realSection);
    const QStringList keys = m_settings->childKeys();
    m_settings->endGroup();
    for (const QString& k : keys)
        if (k.compare(key, Qt::CaseInsensitive) == 0) return k;
    return QString();
}

QString SettingsStore::get(const QString& section, const QString& key, const QString& def) const {
    const QString s = findSection(section);
    const QString k = findKey(s, key);
    if (k.isEmpty()) return def;
    const QVariant v = m_settings->value(s + '/' + k);
    if (v.typeId() == QMetaType::QStringList) return v.toStringList().join(QStringLiteral(", "));
    return v.toString();
}

void SettingsStore::save(const QString& section, const QString& key, const QString& value) {
    QString s = findSection(section);
    if (s.isEmpty()) s = section;
    QString k = findKey(s, key);
    if (k.isEmpty()) k = key;
    m_settings->setValue(s + '/' + k, value);
    m_settings->sync();
}

void SettingsStore::remove(const QString& section, const QString& key) {
    const QString s = findSection(section);
    if (s.isEmpty()) return;
    if (key.isEmpty()) {
        m_settings->remove(s);
    } else {
        const QString k = findKey(s, key);
        if (!k.isEmpty()) m_settings->remove(s + '/' + k);
    }
    m_settings->sync();
}

bool SettingsStore::contains(const QString& section, const QString& key) const {
    return !findKey(findSection(section), key).isEmpty();
}

QStringList SettingsStore::keys(const QString& section) const {
    const QString s = findSection(section);
    if (s.isEmpty()) return {};
    m_settings->beginGroup(s);
    QStringList k = m_settings->childKeys();
    m_settings->endGroup();
    return k;
}

void SettingsStore::sync() { m_settings->sync(); }

QString GetSetting(const QString& section, const QString& key, const QString& def) {
    return SettingsStore::instance().get(section, key, def);
}
void SaveSetting(const QString& section, const QString& key, const QString& value) {
    SettingsStore::instance().save(section, key, value);
}
void DeleteSetting(const QString& section, const QString& key) { SettingsStore::instance().remove(section, key); }

} // namespace vexil
