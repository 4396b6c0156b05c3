#include "base/Settings.h"

#include "base/Journal.h"
#include "base/Paths.h"

#include <QDir>
#include <QSettings>
#include <QStringList>

#include <algorithm>

namespace {

/// A value with a comma comes back as a list. An empty one is none: as a folder it would be the root.
string TextOf(const QSettings& settings, const string& key, const string& standard) {
    const string text = settings.value(key).toStringList().join(u',');
    return text.trimmed().isEmpty() ? standard : text;
}

/// What is no number of days keeps all: nothing is deleted by mistake.
int DaysOf(const QSettings& settings, const string& key) {
    bool valid = false;
    const int days = settings.value(key).toString().trimmed().toInt(&valid);
    return valid ? std::max(days, 0) : 0;
}

/// The base directory rules tell programs to ignore a relative path.
string BaseFolder(const char* variable, const char* standard) {
    const string configured = qEnvironmentVariable(variable);
    return configured.startsWith(u'/') ? configured : QDir::homePath() + QLatin1String(standard);
}

} // namespace

string SettingsFile() {
    return BaseFolder("XDG_CONFIG_HOME", "/.config") + QStringLiteral("/morvane/settings.ini");
}

string StateFolder() {
    return BaseFolder("XDG_STATE_HOME", "/.local/state") + QStringLiteral("/morvane/");
}

TEditorSettings GetEditorSettings() {
    const QSettings settings(SettingsFile(), QSettings::IniFormat);
    TEditorSettings result;
    result.ConfigurationFolder = TextOf(settings, QStringLiteral("ConfigurationFolder"),
                                        QStringLiteral("%HOME%/.config/morvane/watched-folders"));
    if (result.ConfigurationFolder.size() > 1 && result.ConfigurationFolder.endsWith(u'/'))
        result.ConfigurationFolder.chop(1);
    const string beside = ExtractFilePath(result.ConfigurationFolder);
    result.RepositoryFilename =
        TextOf(settings, QStringLiteral("RepositoryFilename"), beside + QStringLiteral("repository.xml"));
    result.WatermarksFolder =
        TextOf(settings, QStringLiteral("WatermarksFolder"), beside + QStringLiteral("watermarks"));
    result.KeepDays = DaysOf(settings, QStringLiteral("KeepDays"));
    return result;
}

Cardinal GetScriptMemory() {
    constexpr Cardinal Standard = 256;
    constexpr Cardinal Least = 16;
    constexpr Cardinal Most = 65536;
    const QSettings settings(SettingsFile(), QSettings::IniFormat);
    const string text = TextOf(settings, QStringLiteral("ScriptMemory"), QString::number(Standard));
    bool isNumber = false;
    const Cardinal value = text.toUInt(&isNumber);
    if (isNumber && value >= Least && value <= Most)
        return value;
    JournalLine(
        QStringLiteral("\"%1\": ScriptMemory is \"%2\", which is no number from %3 to %4; it is taken as %5")
            .arg(SettingsFile(), text)
            .arg(Least)
            .arg(Most)
            .arg(Standard));
    return Standard;
}
