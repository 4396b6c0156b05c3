#include "base/Settings.h"

#include "base/Journal.h"
#include "base/Paths.h"

#include <QDir>
#include <QSettings>
#include <QStringList>

#include <algorithm>
#include <thread>

namespace {

/// A value with a comma comes back as a list. An empty one is none: as a folder it would be the root.
string TextOf(const QSettings& settings, const string& key, const string& standard) {
    const string text = settings.value(key).toStringList().join(u',');
    return text.trimmed().isEmpty() ? standard : text;
}

/// What is no number that is 0 or more is taken as missing.
int NumberOf(const QSettings& settings, const string& key, int standard) {
    bool valid = false;
    const int number = settings.value(key).toString().trimmed().toInt(&valid);
    return valid && number >= 0 ? number : standard;
}

int StandardWorkers() {
    constexpr int Most = 8;
    return std::clamp(int(std::thread::hardware_concurrency()), 1, Most);
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
    // None, too, for what makes no sense: nothing is deleted by mistake.
    result.KeepDays = NumberOf(settings, QStringLiteral("KeepDays"), 0);
    result.KeepOutcomes = NumberOf(settings, QStringLiteral("KeepDays"), result.KeepOutcomes);
    result.Ledger = TextOf(settings, QStringLiteral("Ledger"), {});
    result.ReasonFiles = settings.value(QStringLiteral("ReasonFiles"), false).toBool();
    result.Workers = NumberOf(settings, QStringLiteral("Workers"), StandardWorkers());
    result.WorkSeconds = NumberOf(settings, QStringLiteral("WorkSeconds"), result.WorkSeconds);
    result.WorkMemory = NumberOf(settings, QStringLiteral("WorkMemory"), result.WorkMemory);
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
