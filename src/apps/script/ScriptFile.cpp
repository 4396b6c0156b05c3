#include "apps/script/ScriptFile.h"

#include "base/Exceptions.h"
#include "base/PartFile.h"
#include "base/Paths.h"
#include "editor/text/LineStore.h"
#include "editor/text/MemoSettings.h"
#include "editor/text/TextForm.h"

#include <QFileInfo>
#include <QStringDecoder>

#include <cerrno>
#include <unistd.h>

namespace {

const string LineFeed = QStringLiteral("\n");

string WithLineFeeds(string text) {
    return text.replace(QStringLiteral("\r\n"), LineFeed).replace(u'\r', u'\n');
}

/// As the editor shows it, which has blanks for tabs.
string AsShown(const string& text) {
    return TabsToBlanks(WithLineFeeds(text), TMemoSettings().FTabSize);
}

/// The file behind a link, so that saving replaces it and not the link.
string TargetOf(const string& path) {
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    if (info.isSymLink())
        throw Exception(QStringLiteral("\"%1\" is a link to a file that does not exist.").arg(path));
    return path;
}

} // namespace

TScriptFile::TScriptFile(const string& path)
    : FPath(path), FTarget(TargetOf(path)), FFile(FTarget), FContents(Read()) {
    if (!FContents)
        return;
    // Held open, so that its permissions are known even after its name has gone.
    [[maybe_unused]] const bool held = FFile.open(QIODevice::ReadOnly);
    Decode();
}

std::optional<QByteArray> TScriptFile::Read() const {
    if (!NameTaken(FTarget))
        return std::nullopt;
    if (DirectoryExists(FTarget))
        throw EFileError(QStringLiteral("open"), FPath, EISDIR);
    if (!FileExists(FTarget)) // a pipe would be waited for
        throw Exception(QStringLiteral("\"%1\" is no regular file.").arg(FPath));
    QFile file(FTarget);
    QByteArray contents;
    if (file.open(QIODevice::ReadOnly))
        contents = file.read(Limit + 1);
    if (file.error() != QFileDevice::NoError)
        throw Exception(QStringLiteral("Cannot open \"%1\": %2").arg(FPath, file.errorString()));
    if (contents.size() > Limit)
        throw Exception(QStringLiteral("\"%1\" is too large for a script.").arg(FPath));
    return contents;
}

/// Text is what encodes to the same bytes again.
void TScriptFile::Decode() {
    const auto marked = QStringConverter::encodingForData(*FContents);
    FMarked = marked.has_value();
    FEncoding = marked.value_or(QStringConverter::Utf8);
    QStringDecoder decode(FEncoding); // drops the mark
    FText = decode(*FContents);
    if (FEncoding == QStringConverter::Utf32LE || FEncoding == QStringConverter::Utf32BE ||
        decode.hasError() || FText.contains(QChar::Null) || Encode(FText) != *FContents)
        throw Exception(QStringLiteral("\"%1\" is no UTF-8 or UTF-16 text.").arg(FPath));
}

QByteArray TScriptFile::Encode(const string& text) const {
    QStringEncoder encode(FEncoding);
    return encode(FMarked ? QChar(QChar::ByteOrderMark) + text : text);
}

void TScriptFile::RequireSavable() const {
    if (Exists() && ::access(PathBytes(FTarget).constData(), W_OK) != 0)
        throw EFileError(QStringLiteral("write"), FPath, errno);
    const TPartFile trial(FTarget);
}

bool TScriptFile::WouldChange(const string& text) const {
    return !Exists() || AsShown(text) != AsShown(FText);
}

bool TScriptFile::HoldsOther() const {
    const auto now = Read();
    return now && now != FContents; // one that has gone is made again
}

bool TScriptFile::Save(const string& text, Replace changed) {
    if (changed == Replace::No && HoldsOther())
        return false;
    const string formed = WithFormOf(FText, AsShown(text), TMemoSettings().FTabSize);
    const QByteArray contents = Encode(formed);
    TPartFile file(FTarget);
    file.TakeModeOf(FFile.handle()); // before the text: what was private never shows
    file.TakeModeOf(FTarget);
    file.Write(contents.constData(), size_t(contents.size()));
    if (Exists() || changed == Replace::Yes)
        file.PublishReplacing();
    else if (!file.PublishNew())
        return false;
    FContents = contents;
    FText = formed;
    return true;
}
