#include "actions/Binding.h"

#include "base/Exceptions.h"
#include "scripting/ParkedDocuments.h"

namespace {

// No class name is checked for the prefix: the characters are skipped, whatever they are.
constexpr int PrefixLength = 10;
constexpr int LongestName = 256;

QVariantList ArgumentsFrom(const QObject& action, const QMetaMethod& method) {
    QVariantList arguments;
    for (const QByteArray& name : method.parameterNames()) {
        const string parameter = QString::fromLatin1(name);
        const QMetaProperty source = Reflection::FindMember(*action.metaObject(), parameter);
        if (!source.isValid())
            throw Exception(QStringLiteral("TPDFAction.Execute invalid propert/parameter name ") + parameter);
        arguments.append(source.read(&action));
    }
    return arguments;
}

} // namespace

void InvokeByClassName(const QObject& action, const QMetaObject& receiverType,
                       const std::function<QObject&()>& receiver) {
    const string name = Reflection::ClassName(*action.metaObject()).mid(PrefixLength, LongestName);
    for (const QMetaMethod& method : Reflection::FindMethods(receiverType, name)) {
        const QVariantList arguments = ArgumentsFrom(action, method);
        ParkResult(Reflection::Call(receiver(), method, arguments));
    }
}
