#include "agent/Pauses.h"

#include "base/PartFile.h"
#include "base/Paths.h"

#include <QFile>

namespace {

string Key(const string& folder) {
    return folder.isEmpty() ? string() : IncludeTrailingDelimiter(folder);
}

} // namespace

TPauses::TPauses(const string& stateFolder) {
    if (stateFolder.isEmpty())
        return;
    FFile = IncludeTrailingDelimiter(stateFolder) + QStringLiteral("paused");
    QFile file(FFile);
    if (file.open(QIODevice::ReadOnly))
        for (const QByteArray& line : file.readAll().split('\n').mid(1))
            FPaused.append(QString::fromUtf8(line));
}

bool TPauses::IsPaused(const string& folder) const {
    const std::lock_guard guard(FLock);
    return FPaused.contains(string()) || FPaused.contains(Key(folder));
}

bool TPauses::AllPaused() const {
    const std::lock_guard guard(FLock);
    return FPaused.contains(string());
}

void TPauses::Set(const string& folder, bool paused) {
    const std::lock_guard guard(FLock);
    QStringList changed = FPaused;
    changed.removeAll(Key(folder));
    if (paused)
        changed.append(Key(folder));
    else if (folder.isEmpty())
        changed.clear();
    if (!FFile.isEmpty())
        Save(changed);
    FPaused = changed;
}

void TPauses::Save(const QStringList& paused) const {
    ForceDirectories(ExtractFilePath(FFile));
    TPartFile file(FFile);
    QByteArray text = "Folders that are paused, one a line; an empty line is all of them.";
    for (const string& folder : paused)
        text += '\n' + PathBytes(folder);
    file.Write(text.constData(), size_t(text.size()));
    file.PublishReplacing();
}
