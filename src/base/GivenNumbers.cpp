#include "base/GivenNumbers.h"

#include <algorithm>
#include <utility>

namespace {

thread_local TGivenNumbers* Current = nullptr;

} // namespace

bool IsSeriesName(const string& name) {
    return !name.isEmpty() && name.size() <= NumberLimits::SeriesName && name == name.trimmed() &&
           std::all_of(name.begin(), name.end(), [](QChar c) {
               return c != u'[' && c != u']' && c != u':' && c.category() != QChar::Other_Control;
           });
}

TGivenNumbers::TGivenNumbers(TTake take) : FTake(std::move(take)), FOuter(std::exchange(Current, this)) {}

TGivenNumbers::~TGivenNumbers() {
    Current = FOuter;
}

qint64 TGivenNumbers::Take(const string& series, qint64 count) {
    if (!IsSeriesName(series))
        throw Exception(QStringLiteral("\"%1\" is no name of a series of numbers").arg(series));
    if (count < 1 || count > NumberLimits::AtOnce)
        throw Exception(QStringLiteral("From 1 to %1 numbers can be taken at once, and not %2")
                            .arg(NumberLimits::AtOnce)
                            .arg(count));
    if (Current == nullptr)
        throw Exception(QStringLiteral(
            "Numbers of a series are given by the agent's ledger alone, and no agent is at work"));
    try {
        return Current->FTake(series, count);
    } catch (const ENumbersAway& e) {
        Current->FTrouble = e.Message();
        throw;
    }
}

void TGivenNumbers::Show(const string& series, qint64 number, quint64 page) {
    if (Current != nullptr)
        Current->FShown.append({series, number, page});
}

void TGivenNumbers::Give(const string& series, qint64 first, qint64 count) {
    if (Current != nullptr)
        Current->FGiven.append({series, first, count, 0});
}

void TGivenNumbers::Check() const {
    if (!FTrouble.isEmpty())
        throw ENumbersAway(FTrouble);
}

QList<TNumberRun> TGivenNumbers::Runs(const std::function<qint64(quint64 page)>& pageOf) const {
    QList<TNumberRun> runs = FGiven;
    for (const TShown& shown : FShown) {
        const qint64 page = pageOf(shown.Page);
        const bool goesOn = page > 0 && !runs.isEmpty() && runs.last().Series == shown.Series &&
                            runs.last().Page > 0 && runs.last().First + runs.last().Count == shown.Number &&
                            runs.last().Page + runs.last().Count == page;
        if (goesOn)
            ++runs.last().Count;
        else
            runs.append({shown.Series, shown.Number, 1, page});
    }
    return runs;
}
