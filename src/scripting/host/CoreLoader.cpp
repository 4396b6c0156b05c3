#include "base/Exceptions.h"
#include "base/Module.h"
#include "scripting/host/ScriptCore.h"

namespace {

TMakeScriptCore Load() {
    try {
        return reinterpret_cast<TMakeScriptCore>(LoadModule(ScriptModule, MakeScriptCoreName));
    } catch (const Exception& e) {
        throw Exception(QStringLiteral("Scripts cannot be run: %1").arg(e.Message()));
    }
}

} // namespace

std::unique_ptr<TScriptCore> MakeScriptCore(const TScriptCoreHost& host) {
    static const TMakeScriptCore make = Load();
    return std::unique_ptr<TScriptCore>(make(host));
}
