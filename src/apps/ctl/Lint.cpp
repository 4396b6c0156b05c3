#include "actions/ActionClasses.h"
#include "actions/ActionManager.h"
#include "actions/WatchedFolders.h"
#include "apps/ctl/ConfigurationCommands.h"
#include "base/Paths.h"
#include "base/Settings.h"
#include "xml/ObjectReader.h"
#include "xml/XmlMarks.h"

#include <QFile>
#include <QSet>

#include <algorithm>

namespace {

/// One configuration file: its contents in `object`, and the lines that they stand in.
class TLintedFile {
public:
    /// `list` is the element that holds the file's items.
    TLintedFile(const string& path, const string& list, QObject& object, QStringList& faults)
        : FFaults(faults), FList(list) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            FFaults += QStringLiteral("\"%1\": %2").arg(path, file.errorString());
            return;
        }
        try {
            CheckXmlSize(file.size(), u'"' + path + u'"');
            FDocument = ParseXml(file.readAll(), u'"' + path + u'"');
            ReadDocument(object, FDocument, XmlMarks::RootName(*object.metaObject()),
                         [this](int line, const string& what) { Fault(line, what); });
            FRead = true;
        } catch (const Exception& e) { // it names the place itself
            FFaults += e.Message();
        }
    }

    void Fault(int line, const string& what) {
        FFaults += QStringLiteral("%1, line %2: %3").arg(FDocument.Source).arg(line).arg(what);
    }
    /// Everything in it could be read.
    [[nodiscard]] bool IsRead() const { return FRead; }
    /// The line of element `member` of the item at `index`.
    [[nodiscard]] int LineOf(size_t index, const string& member) const {
        const TXmlElement* list = Child(FDocument.Root, FList);
        if (!list || index >= list->Children.size())
            return FDocument.Root.Line;
        const TXmlElement& item = list->Children[index];
        const TXmlElement* found = Child(item, member);
        return found ? found->Line : item.Line;
    }

private:
    [[nodiscard]] static const TXmlElement* Child(const TXmlElement& element, const string& name) {
        const auto found = std::find_if(element.Children.begin(), element.Children.end(),
                                        [&](const TXmlElement& child) { return SameText(child.Name, name); });
        return found == element.Children.end() ? nullptr : &*found;
    }

    QStringList& FFaults;
    string FList;
    bool FRead = false;
    TXmlDocument FDocument;
};

void CheckLists(TLintedFile& file, const TPDFActionManager& manager) {
    for (int i = 0; i < manager.Count(); ++i)
        if (manager.IndexOf(manager[i].FName) != i)
            file.Fault(
                file.LineOf(size_t(i), "Name"),
                QStringLiteral("a second list named \"%1\", which is never used").arg(manager[i].FName));
}

/// Without a manager its lists aren't known.
void CheckFolder(TLintedFile& file, const TPDFWatchedFolders& folders, int index,
                 const TPDFActionManager* manager) {
    const TPDFWatchedFolder& folder = folders.FFolders[index];
    if (!DirectoryExists(folder.Name))
        file.Fault(file.LineOf(size_t(index), "Name"),
                   QStringLiteral("the folder \"%1\" does not exist").arg(folder.Name));
    if (manager && manager->IndexOf(folder.Action) < 0)
        file.Fault(file.LineOf(size_t(index), "Action"),
                   QStringLiteral("there is no action list \"%1\"").arg(folder.Action));
    if (folder.Enabled && folder.CheckEvery <= 0)
        file.Fault(file.LineOf(size_t(index), "CheckEvery"),
                   QStringLiteral("\"%1\" is never served, as its CheckEvery is %2")
                       .arg(folder.Name)
                       .arg(folder.CheckEvery));
}

} // namespace

TCommandResult Lint(const string& folder, const TCommandOptions& /*options*/) {
    const string path = IncludeTrailingDelimiter(
        folder.isEmpty() ? ExpandEnvironment(GetEditorSettings().ConfigurationFolder) : folder);
    if (!DirectoryExists(path))
        return {ExitFaults, QStringLiteral("The configuration folder \"%1\" does not exist.").arg(path)};
    RegisterActionClasses();
    QStringList faults;
    TPDFActionManager manager;
    TLintedFile actions(path + QStringLiteral("actions.xml"), QStringLiteral("ManagerActions"), manager,
                        faults);
    CheckLists(actions, manager);
    TPDFWatchedFolders folders;
    TLintedFile served(path + QStringLiteral("watchedfolders.xml"), QStringLiteral("Folders"), folders,
                       faults);
    for (int i = 0; i < folders.FFolders.size(); ++i)
        CheckFolder(served, folders, i, actions.IsRead() ? &manager : nullptr);
    if (!faults.isEmpty())
        return {ExitFaults, faults.join(u'\n')};
    return {ExitDone, QStringLiteral("No faults: %1 folders, %2 action lists.")
                          .arg(folders.FFolders.size())
                          .arg(manager.Count())};
}
