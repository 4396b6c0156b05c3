#include "actions/Binding.h"

#include "base/Exceptions.h"
#include "scripting/ParkedDocuments.h"

namespace {

// No class name is checked for the prefix: the characters are skipped, whatever they are.
constexpr int PrefixLength = 10;
constexpr int LongestName = 256;

string MethodNameOf(const QMetaObject& action) {
    return Reflection::ClassName(action).mid(PrefixLength, LongestName);
}

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
    const string name = MethodNameOf(*action.metaObject());
    for (const QMetaMethod& method : Reflection::FindMethods(receiverType, name)) {
        const QVariantList arguments = ArgumentsFrom(action, method);
        ParkResult(Reflection::Call(receiver(), method, arguments));
    }
}

TBinding BindingOf(const QMetaObject& action, const QMetaObject& receiverType) {
    const QList<QMetaMethod> methods = Reflection::FindMethods(receiverType, MethodNameOf(action));
    for (const QMetaMethod& method : methods)
        for (const QByteArray& parameter : method.parameterNames())
            if (!Reflection::FindMember(action, QString::fromLatin1(parameter)).isValid())
                return TBinding::Raises;
    return methods.isEmpty() ? TBinding::Nothing : TBinding::Calls;
}
