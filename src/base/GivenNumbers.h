#pragma once
// Numbers of series, each given exactly once, on their way to whoever stamps them: who has them given (the
// ledger, behind an agent) stands above all that asks for them.
#include "base/Exceptions.h"

#include <QList>

#include <functional>

/// Consecutive numbers of a series on consecutive pages.
struct TNumberRun {
    string Series;
    qint64 First = 0;
    qint64 Count = 0;
    qint64 Page = 0; ///< that bears the first, from 1; 0: the numbers belong to no page
    bool operator==(const TNumberRun&) const = default;
};

namespace NumberLimits {
inline constexpr qsizetype SeriesName = 100; ///< characters of a series' name at most
inline constexpr qint64 AtOnce = 1'000'000;  ///< numbers that are taken in one go at most
} // namespace NumberLimits

/// Letters, digits and most others, but no brackets, colons and control characters.
[[nodiscard]] bool IsSeriesName(const string& name);

/// Numbers can't be given now, and may be later: the file waits.
class ENumbersAway : public Exception {
public:
    using Exception::Exception;
};

/// What the file at work is given. For its thread, while it lives; an inner one stands in front of an outer
/// one.
class TGivenNumbers {
public:
    /// `take` gives the first of so many consecutive numbers. Raises ENumbersAway, or Exception where that
    /// series has none.
    using TTake = std::function<qint64(const string& series, qint64 count)>;
    explicit TGivenNumbers(TTake take);
    ~TGivenNumbers();
    TGivenNumbers(const TGivenNumbers&) = delete;
    TGivenNumbers& operator=(const TGivenNumbers&) = delete;

    /// The first of `count` numbers for the file at work. Raises Exception for a series or a count that is
    /// none, and where nobody gives numbers; else as `take`.
    [[nodiscard]] static qint64 Take(const string& series, qint64 count);
    /// A page, by its identifier among all pages of all documents, bears one of them.
    static void Show(const string& series, qint64 number, quint64 page);
    /// They belong to no page.
    static void Give(const string& series, qint64 first, qint64 count);

    /// Raises again what Take raised as ENumbersAway, whatever became of that: a script may have caught it.
    void Check() const;
    [[nodiscard]] bool IsEmpty() const { return FShown.isEmpty() && FGiven.isEmpty(); }
    /// All that was given, where `pageOf` tells the place of a page, from 1, and 0 for one that isn't in the
    /// result.
    [[nodiscard]] QList<TNumberRun> Runs(const std::function<qint64(quint64 page)>& pageOf) const;

private:
    struct TShown {
        string Series;
        qint64 Number;
        quint64 Page;
    };

    TTake FTake;
    QList<TShown> FShown;
    QList<TNumberRun> FGiven;
    string FTrouble;
    TGivenNumbers* const FOuter;
};
