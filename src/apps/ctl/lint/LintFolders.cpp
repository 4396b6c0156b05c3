#include "apps/ctl/lint/LintFolders.h"

#include "agent/Subfolders.h"
#include "base/NearestName.h"
#include "base/Paths.h"

#include <QFileInfo>
#include <QMap>

#include <unistd.h>

namespace {

/// Where the agent puts things.
constexpr const char* Subfolders[] = {OutputFolder, ProcessFolder, ErrorFolder};

bool MayWrite(const string& path) {
    return ::access(PathBytes(path).constData(), W_OK | X_OK) == 0;
}

/// Why nothing can be put into a folder that exists; empty where it can.
string Hindrance(const string& path) {
    if (!MayWrite(path))
        return QStringLiteral("the folder \"%1\" cannot be written to").arg(path);
    for (const char* name : Subfolders) {
        const string subfolder = IncludeTrailingDelimiter(path) + QLatin1String(name);
        if (NameTaken(subfolder) && !DirectoryExists(subfolder))
            return QStringLiteral("\"%1\" is no folder").arg(subfolder);
        if (NameTaken(subfolder) && !MayWrite(subfolder))
            return QStringLiteral("the folder \"%1\" cannot be written to").arg(subfolder);
    }
    return {};
}

/// What is wrong with the path of a folder; empty if nothing is.
string PathFault(const string& path) {
    if (path.isEmpty())
        return QStringLiteral("the folder has no Name");
    if (!path.startsWith(u'/'))
        return QStringLiteral(
                   "\"%1\" is no whole path: where it leads depends on where the agent was started")
            .arg(path);
    if (!NameTaken(path))
        return QStringLiteral("the folder \"%1\" does not exist").arg(path);
    if (!DirectoryExists(path))
        return QStringLiteral("\"%1\" is no folder").arg(path);
    return Hindrance(path);
}

QStringList NamesOf(const TPDFActionManager& manager) {
    QStringList names;
    for (int i = 0; i < manager.Count(); ++i)
        names += manager[i].FName;
    return names;
}

class TFoldersLint {
public:
    TFoldersLint(TLintedFile& file, const TPDFActionManager* manager) : FFile(file), FManager(manager) {}

    void Lint(const TPDFWatchedFolder& folder, const TXmlElement& element) {
        const int nameLine = LineOf(element, {QStringLiteral("Name")});
        if (const string fault = PathFault(folder.Name); !fault.isEmpty())
            FFile.Fault(nameLine, fault);
        NoteDouble(folder, nameLine);
        if (FManager && FManager->IndexOf(folder.Action) < 0)
            FFile.Fault(LineOf(element, {QStringLiteral("Action")}),
                        QStringLiteral("there is no action list \"%1\"").arg(folder.Action) +
                            DidYouMean(folder.Action, NamesOf(*FManager)));
        if (folder.Enabled && folder.CheckEvery == 0)
            FFile.Fault(LineOf(element, {QStringLiteral("CheckEvery")}),
                        QStringLiteral("\"%1\" is never served, as its CheckEvery is 0").arg(folder.Name));
        LintPolicy(folder.Policy, element);
    }

private:
    void LintPolicy(const TPDFFolderPolicy& policy, const TXmlElement& element) {
        const auto require = [&](const char* name, Integer value, const char* meaning) {
            if (value < 0)
                FFile.Fault(LineOf(element, {QStringLiteral("Policy"), QLatin1String(name)}),
                            QStringLiteral("%1: %2 is no %3")
                                .arg(QLatin1String(name))
                                .arg(value)
                                .arg(QLatin1String(meaning)));
        };
        require("QuietSeconds", policy.QuietSeconds, "time to wait");
        require("WorkSeconds", policy.WorkSeconds, "time to work");
        require("WorkMemory", policy.WorkMemory, "amount of memory");
    }

    /// One folder under two names is the same folder.
    void NoteDouble(const TPDFWatchedFolder& folder, int line) {
        const string place = QFileInfo(folder.Name).canonicalFilePath();
        if (place.isEmpty())
            return;
        if (const auto first = FLines.constFind(place); first != FLines.cend())
            FFile.Fault(line, QStringLiteral("the folder \"%1\" stands in line %2 already: each of its files "
                                             "goes to whichever of the two comes first")
                                  .arg(folder.Name)
                                  .arg(*first));
        else
            FLines[place] = line;
    }

    TLintedFile& FFile;
    const TPDFActionManager* FManager;
    QMap<string, int> FLines; ///< of the folders seen
};

} // namespace

void LintFolders(TLintedFile& file, const TPDFWatchedFolders& folders, const TPDFActionManager* manager) {
    if (!file.IsRead())
        return;
    TFoldersLint lint(file, manager);
    const TXmlElement* list = ChildOf(file.Root(), QStringLiteral("Folders"));
    for (int i = 0; list != nullptr && i < folders.FFolders.size(); ++i)
        lint.Lint(folders.FFolders[i], list->Children[size_t(i)]);
}
