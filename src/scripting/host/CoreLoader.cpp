#include "base/Exceptions.h"
#include "base/Paths.h"
#include "scripting/host/ScriptCore.h"

#include <QFile>

#include <dlfcn.h>

namespace {

/// Beside the program's folder, installed or not: bin/morvane-agent, lib/morvane/morvane-script.so.
string ModulePath() {
    const string program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return ExtractFilePath(program) + QStringLiteral("../lib/morvane/morvane-script.so");
}

TMakeScriptCore LoadModule() {
    const string path = ModulePath();
    // Never unloaded: the script library ends with the process.
    void* module = ::dlopen(PathBytes(path).constData(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void* entry = module ? ::dlsym(module, MakeScriptCoreName) : nullptr;
    if (entry == nullptr)
        throw Exception(QStringLiteral("Scripts cannot be run: %1").arg(QString::fromUtf8(::dlerror())));
    return reinterpret_cast<TMakeScriptCore>(entry);
}

} // namespace

std::unique_ptr<TScriptCore> MakeScriptCore(const TScriptCoreHost& host) {
    static const TMakeScriptCore make = LoadModule();
    return std::unique_ptr<TScriptCore>(make(host));
}
