#include "actions/WatchedFolders.h"

#include "actions/ActionManager.h"
#include "actions/ConfigurationPaths.h"
#include "base/Exceptions.h"
#include "base/FolderListing.h"
#include "base/Paths.h"
#include "engine/document/Document.h"
#include "scripting/ParkedDocuments.h"
#include "xml/Xmlserial.h"

#include <QBuffer>

namespace {

void ExecuteOn(const string& file, const TPDFWatchedFolder& folder) {
    const string target = folder.OverwriteExistingFiles ? file : TPDFActionManager::UniqueFileName(file);
    auto document = std::make_unique<TZQPDFDocument>(nullptr);
    const TParkOnException park(document); // an exception leaves the document allocated
    document->OpenFromFile(file, {});
    TPDFActionManager& manager = GetActionManager();
    if (const Integer index = manager.IndexOf(folder.Action); index >= 0)
        manager[index].Execute(*document);
    document->SaveToPath(target, /*keepSource=*/true, /*takeName=*/false);
}

} // namespace

void TPDFWatchedFolders::Assign(const TPDFWatchedFolders& Source) {
    Clear();
    QBuffer stream;
    stream.open(QIODevice::ReadWrite);
    XMLSerialize(Source, stream, QString());
    stream.seek(0);
    XMLDeserialize(*this, stream, QString());
}

void TPDFWatchedFolders::Clear() {
    FFolders.clear();
}

void TPDFWatchedFolders::Load(const string& fileName) {
    const string path = fileName.isEmpty() ? WatchedFoldersFile() : fileName;
    Clear();
    if (FileExists(path))
        XMLDeserialize(*this, path, QString());
}

void TPDFWatchedFolders::Save() {
    XMLSerialize(*this, WatchedFoldersFile(), /*compact=*/false, QString());
}

void TPDFWatchedFolders::Execute(Integer Index) {
    if (Index < 0 || Index >= FFolders.size())
        throw Exception(QStringLiteral("There is no watched folder with the index %1.").arg(Index));
    const TPDFWatchedFolder folder = FFolders.at(Index);
    if (!folder.Enabled)
        return;
    const string path = IncludeTrailingDelimiter(folder.Name);
    for (const string& name : ListFiles(path, QStringLiteral("*.pdf")))
        ExecuteOn(path + name, folder);
}
