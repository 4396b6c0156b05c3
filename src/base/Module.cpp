#include "base/Module.h"

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "base/Version.h"

#include <QFile>
#include <QHash>

#include <dlfcn.h>
#include <fcntl.h>

namespace {

constexpr const char* Modules[ModuleCount] = {ScriptModule, PainterModule};

string ModulePath(const char* module) {
    const string program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return ExtractFilePath(program) + QStringLiteral("../lib/morvane/") + QLatin1String(module);
}

/// Descriptors by module, to the end of the process.
QHash<QByteArray, int>& Held() {
    static auto& held = *new QHash<QByteArray, int>;
    return held;
}

QByteArray PathToLoad(const char* module) {
    const int held = Held().value(module, -1);
    return held < 0 ? PathBytes(ModulePath(module)) : "/proc/self/fd/" + QByteArray::number(held);
}

} // namespace

void HoldModules() {
    for (const char* module : Modules) {
        if (Held().contains(module))
            continue;
        const int descriptor = ::open(PathBytes(ModulePath(module)).constData(), O_RDONLY | O_CLOEXEC);
        if (descriptor >= 0)
            Held().insert(module, descriptor);
    }
}

QList<int> HeldModules() {
    QList<int> held;
    for (const char* module : Modules)
        held.append(Held().value(module, -1));
    return held;
}

void HoldModulesFrom(int first) {
    for (int i = 0; i < ModuleCount; ++i)
        if (::fcntl(first + i, F_SETFD, FD_CLOEXEC) == 0)
            Held().insert(Modules[i], first + i);
    HoldModules();
}

void* LoadModule(const char* module, const char* entry) {
    // Never unloaded: what the modules load themselves doesn't survive that.
    void* library = ::dlopen(PathToLoad(module).constData(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    const auto* version =
        library ? static_cast<const char*>(::dlsym(library, "MorvaneModuleVersion")) : nullptr;
    void* found = version ? ::dlsym(library, entry) : nullptr;
    if (!found)
        throw Exception(QString::fromUtf8(::dlerror()));
    if (ProgramVersion() != QLatin1String(version))
        throw Exception(QStringLiteral("\"%1\" is of version %2, the program of version %3; start it again.")
                            .arg(ModulePath(module), QLatin1String(version), ProgramVersion()));
    return found;
}
