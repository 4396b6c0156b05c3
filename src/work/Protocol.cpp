#include "work/Protocol.h"

#include <QCborArray>
#include <QMetaProperty>

namespace {

constexpr QLatin1String Kind("kind");
constexpr QLatin1String Text("text");
constexpr QLatin1String Source("source");
constexpr QLatin1String Dest("dest");
constexpr QLatin1String List("list");
constexpr QLatin1String Policy("policy");
constexpr QLatin1String State("state");
constexpr QLatin1String Reasons("reasons");
constexpr QLatin1String Written("written");
constexpr QLatin1String Pages("pages");
constexpr QLatin1String Numbers("numbers");
constexpr QLatin1String Error("error");
constexpr QLatin1String OfSource("of source");

/// By the run-time table: whatever a policy will say, workers hear it.
QCborMap MapOf(const TPDFFolderPolicy& policy) {
    QCborMap map;
    const QMetaObject& type = TPDFFolderPolicy::staticMetaObject;
    for (int i = 0; i < type.propertyCount(); ++i)
        map[QLatin1String(type.property(i).name())] = type.property(i).readOnGadget(&policy).toInt();
    return map;
}

TPDFFolderPolicy PolicyOf(const QCborMap& map) {
    TPDFFolderPolicy policy;
    const QMetaObject& type = TPDFFolderPolicy::staticMetaObject;
    for (int i = 0; i < type.propertyCount() && !map.isEmpty(); ++i)
        type.property(i).writeOnGadget(&policy,
                                       int(map.value(QLatin1String(type.property(i).name())).toInteger()));
    return policy;
}

template <class TEnum> TEnum InRange(const QCborValue& value, TEnum last, TEnum otherwise) {
    const qint64 number = value.toInteger(-1);
    return number >= 0 && number <= qint64(last) ? TEnum(number) : otherwise;
}

} // namespace

QCborMap NewMessage(TMessageKind kind) {
    return {{Kind, int(kind)}};
}

QCborMap TextMessage(TMessageKind kind, const string& text) {
    return {{Kind, int(kind)}, {Text, text}};
}

TMessageKind KindOf(const QCborMap& message) {
    return InRange(message.value(Kind), TMessageKind::Done, TMessageKind::Unknown);
}

void Put(QCborMap& message, const TFileWork& work) {
    message[Source] = work.Source;
    message[Dest] = work.Dest;
    message[List] = work.ActionName;
    if (work.Policy != TPDFFolderPolicy())
        message[Policy] = MapOf(work.Policy);
}

TFileWork WorkOf(const QCborMap& message) {
    TFileWork work;
    work.Source = message.value(Source).toString();
    work.Dest = message.value(Dest).toString();
    work.ActionName = message.value(List).toString();
    work.Policy = PolicyOf(message.value(Policy).toMap());
    return work;
}

void Put(QCborMap& message, const TOutcome& outcome) {
    message[State] = int(outcome.State);
    if (!outcome.Reasons.isEmpty()) {
        QCborArray reasons;
        for (const TReason& reason : outcome.Reasons)
            reasons.append(QCborArray{int(reason.Code), reason.Step, reason.Text});
        message[Reasons] = reasons;
    }
    message[Written] = outcome.Written;
    message[Pages] = outcome.Pages;
    if (!outcome.Numbers.isEmpty()) {
        QCborArray runs;
        for (const TNumberRun& run : outcome.Numbers)
            runs.append(QCborArray{run.Series, run.First, run.Count, run.Page});
        message[Numbers] = runs;
    }
    if (outcome.Error != 0) {
        message[Error] = outcome.Error;
        message[OfSource] = outcome.OfSource;
    }
}

TOutcome OutcomeOf(const QCborMap& message) {
    TOutcome outcome;
    outcome.State = InRange(message.value(State), TOutcomeState::Stopped, TOutcomeState::Failed);
    for (const auto& value : message.value(Reasons).toArray()) {
        const QCborArray reason = value.toArray();
        outcome.Reasons.append({InRange(reason.at(0), TReasonCode::Other, TReasonCode::Other),
                                reason.at(1).toString(), reason.at(2).toString()});
    }
    outcome.Written = message.value(Written).toBool();
    outcome.Pages = int(message.value(Pages).toInteger());
    for (const auto& value : message.value(Numbers).toArray()) {
        const QCborArray run = value.toArray();
        outcome.Numbers.append(
            {run.at(0).toString(), run.at(1).toInteger(), run.at(2).toInteger(), run.at(3).toInteger()});
    }
    outcome.Error = int(message.value(Error).toInteger());
    outcome.OfSource = message.value(OfSource).toBool();
    if (outcome.Reasons.isEmpty() && outcome.State != TOutcomeState::Done)
        outcome.Reasons.append({TReasonCode::Other, {}, QStringLiteral("The worker gave no reason")});
    return outcome;
}
