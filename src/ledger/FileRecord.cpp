#include "ledger/FileRecord.h"

#include "ledger/StoredText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace {

constexpr std::pair<TRecordState, const char*> StateNames[] = {
    {TRecordState::Done, "Done"},       {TRecordState::DoneWithWarnings, "DoneWithWarnings"},
    {TRecordState::Failed, "Failed"},   {TRecordState::Waiting, "Waiting"},
    {TRecordState::Stopped, "Stopped"},
};

template <class TItem, class TToJson> string ToJson(const QList<TItem>& items, TToJson toJson) {
    if (items.isEmpty())
        return QStringLiteral("[]");
    QJsonArray array;
    for (const TItem& item : items)
        array.append(toJson(item));
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

template <class TItem, class TFromJson> QList<TItem> FromJson(const string& json, TFromJson fromJson) {
    QList<TItem> items;
    if (json == QLatin1String("[]"))
        return items;
    const QJsonArray array = QJsonDocument::fromJson(json.toUtf8()).array();
    for (const auto& item : array)
        items.append(fromJson(item.toObject()));
    return items;
}

void Cut(string& text) {
    constexpr qsizetype Longest = 4000;
    if (text.size() > Longest)
        text = text.left(Longest) + QChar(0x2026);
}

template <class TItem> void Cut(QList<TItem>& items) {
    constexpr qsizetype Most = 1000;
    if (items.size() > Most)
        items.resize(Most);
}

} // namespace

string StateName(TRecordState state) {
    for (const auto& [known, name] : StateNames)
        if (known == state)
            return QLatin1String(name);
    return {};
}

std::optional<TRecordState> StateNamed(const string& name) {
    for (const auto& [state, known] : StateNames)
        if (name == QLatin1String(known))
            return state;
    return std::nullopt;
}

void Shorten(TFileRecord& record) {
    Cut(record.Folder);
    Cut(record.List);
    Cut(record.Results);
    Cut(record.Reasons);
    Cut(record.Numbers);
    for (TRecordReason& reason : record.Reasons) {
        Cut(reason.Step);
        Cut(reason.Text);
    }
}

// Texts are brought into their stored form here, too: \u0000 is no part of PostgreSQL's JSON.

string StoredResults(const QList<TResultFile>& results) {
    return ToJson(results, [](const TResultFile& result) {
        return QJsonObject{{"name", StoredText(result.Name)}, {"size", result.Size}};
    });
}

QList<TResultFile> ResultsOfStored(const string& json) {
    return FromJson<TResultFile>(json, [](const QJsonObject& item) {
        return TResultFile{BytesOfStored(item["name"].toString()), item["size"].toInteger()};
    });
}

string StoredReasons(const QList<TRecordReason>& reasons) {
    return ToJson(reasons, [](const TRecordReason& reason) {
        return QJsonObject{{"code", StoredText(reason.Code)},
                           {"step", StoredText(reason.Step)},
                           {"text", StoredText(reason.Text)}};
    });
}

QList<TRecordReason> ReasonsOfStored(const string& json) {
    return FromJson<TRecordReason>(json, [](const QJsonObject& item) {
        return TRecordReason{TextOfStored(item["code"].toString()), TextOfStored(item["step"].toString()),
                             TextOfStored(item["text"].toString())};
    });
}

string StoredNumbers(const QList<TNumberRun>& numbers) {
    return ToJson(numbers, [](const TNumberRun& run) {
        return QJsonObject{{"series", StoredText(run.Series)},
                           {"first", run.First},
                           {"count", run.Count},
                           {"page", run.Page}};
    });
}

QList<TNumberRun> NumbersOfStored(const string& json) {
    return FromJson<TNumberRun>(json, [](const QJsonObject& item) {
        return TNumberRun{TextOfStored(item["series"].toString()), item["first"].toInteger(),
                          item["count"].toInteger(), item["page"].toInteger()};
    });
}
