// The settings store: application "Vexil 2.0", section,
// key; every value a string. An INI file (QSettings) under the user's config folder, wrapped so
// that key lookup ignores letter case as the registry does ("rotateStep" and "RotateStep" are
// one key; "scaleStep " with its blank is another).
//
// Location: $VEXIL_SETTINGS_DIR if set, else <user config folder>/Vexil; the file is
// "Vexil 2.0.ini" in it. Tests call SettingsStore::setLocation(tempDir) (or set the env var).
//
//   QString v = vexil::GetSetting("Prefrences", "MoveStep", "100");
//   vexil::SaveSetting("Prefrences", "MoveStep", "25");
#pragma once
#include <QString>
#include <QStringList>
#include <memory>

class QSettings;

namespace vexil {

class SettingsStore {
public:
    // The store of the process.
    static SettingsStore& instance();

    // Points the store at another folder (tests); an empty dir returns to the default rule.
    // Takes effect at once (the file is reopened).
    static void setLocation(const QString& dir);
    // The folder and file in use.
    static QString location();
    QString fileName() const;

    // Reads a key; a missing key yields def. Section and key match without regard to case.
    QString get(const QString& section, const QString& key, const QString& def = QString()) const;
    // Writes a key. If the key exists under another letter case, that key is overwritten.
    void save(const QString& section, const QString& key, const QString& value);
    // Removes a key (DeleteSetting); an empty key removes the whole section.
    void remove(const QString& section, const QString& key = QString());
    bool contains(const QString& section, const QString& key) const;
    // Key names of a section, as stored.
    QStringList keys(const QString& section) const;
    // Writes to disk.
    void sync();

    ~SettingsStore();

private:
    SettingsStore();
    void reopen();
    QString findSection(const QString& section) const;
    QString findKey(const QString& realSection, const QString& key) const;
    std::unique_ptr<QSettings> m_settings;
};

// VB-style shorthands on SettingsStore::instance().
QString GetSetting(const QString& section, const QString& key, const QString& def = QString());
void SaveSetting(const QString& section, const QString& key, const QString& value);
void DeleteSetting(const QString& section, const QString& key = QString());

} // namespace vexil
