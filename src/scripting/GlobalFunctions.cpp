#include "scripting/GlobalFunctions.h"

#include "base/Exceptions.h"
#include "base/FolderListing.h"
#include "base/GivenNumbers.h"
#include "base/Paths.h"
#include "platform/MessageBox.h"
#include "platform/StopSignal.h"
#include "scripting/Occasion.h"
#include "scripting/host/Engine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>

TJSEngine* GlobalScriptEngine = nullptr;

void TJSGlobalFunctions::Include(const string& ScriptFileName) {
    if (GlobalScriptEngine == nullptr)
        throw Exception(QStringLiteral("Include has no script engine; use IncludeResource."));
    [[maybe_unused]] const bool ran = GlobalScriptEngine->EvaluateFile(ScriptFileName, /*Scope=*/nullptr);
}

void TJSGlobalFunctions::IncludeResource(TJSNativeCallParams Params) {
    string name;
    if (Params.Count > 0 && JSValIsString(Params.Arguments[0]))
        name = JSStringToString(*Params.Context, JSValToJSString(Params.Arguments[0]));
    if (name.isEmpty())
        return;
    QFile resource(QStringLiteral(":/") + name);
    if (!resource.open(QIODevice::ReadOnly))
        throw Exception(QStringLiteral("Resource \"%1\" not found.").arg(name));
    TJSEngine& engine = TJSClass::JSEngine(*Params.Context);
    // Its failure is reported like any other, and the including script goes on.
    [[maybe_unused]] const bool ran =
        engine.Evaluate(TJSScript::LoadScript(resource), QStringLiteral(":Include.Resource.%1:").arg(name));
}

void TJSGlobalFunctions::ShowMessage(const string& S) {
    [[maybe_unused]] const int answer = MessageBox(S, MB_OK);
}

int TJSGlobalFunctions::MessageBox(const string& Text, int flags) {
    const string occasion = TScriptOccasion::Text();
    const string caption = QCoreApplication::applicationName();
    return MessageBoxHost().Show(
        Text, occasion.isEmpty() ? caption : caption + QStringLiteral(": ") + occasion, flags);
}

qint64 TJSGlobalFunctions::TakeNumbers(const string& series, int count) {
    const qint64 first = TGivenNumbers::Take(series, count);
    TGivenNumbers::Give(series, first, count);
    return first;
}

bool TJSGlobalFunctions::FileExists(const string& n) {
    return ::FileExists(n);
}

namespace {

/// An empty answer would say that nothing is there.
void CheckListable(const string& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> listed(::opendir(PathBytes(folder).constData()), ::closedir);
    if (listed == nullptr)
        throw EFileError(QStringLiteral("read"), folder, errno);
}

void AddFiles(const string& folder, const string& mask, bool topOnly, QStringList& found) {
    if (StopSignal().Raised())
        throw Exception(QStringLiteral("The agent is stopping."));
    CheckListable(folder);
    const QDir directory(folder);
    const string prefix = IncludeTrailingDelimiter(folder);
    const auto sorted = [&directory](QDir::Filters filters) {
        QStringList names = directory.entryList(filters | QDir::Hidden | QDir::NoDotAndDotDot, QDir::NoSort);
        std::sort(names.begin(), names.end(), NaturalLess);
        return names;
    };
    for (const string& name : sorted(QDir::Files))
        if (MatchesMask(name, mask))
            found.append(prefix + name);
    if (!topOnly)
        for (const string& name : sorted(QDir::Dirs | QDir::NoSymLinks))
            AddFiles(prefix + name, mask, topOnly, found);
}

string WithoutDelimiters(string path) {
    while (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

} // namespace

QStringList TJSGlobalFunctions::FindFiles(const string& p, const string& filter, bool TopDirOnly) {
    QStringList found;
    if (!p.isEmpty()) // no folder, not the agent's own one
        AddFiles(p, filter, TopDirOnly, found);
    return found;
}

string TJSGlobalFunctions::ExtractFileName(const string& name) {
    return ::ExtractFileName(name);
}

string TJSGlobalFunctions::ChangeFileExt(const string& name, const string& ext) {
    return WithoutExtension(name) + ext;
}

string TJSGlobalFunctions::ExeName() {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

string TJSGlobalFunctions::ExeFolder() {
    return WithoutDelimiters(ExtractFilePath(ExeName()));
}

string TJSGlobalFunctions::IncludeTrailingBackslash(const string& S) {
    return WithoutDelimiters(S) + u'/';
}

string TJSGlobalFunctions::ExcludeTrailingBackslash(const string& S) {
    return WithoutDelimiters(S);
}
