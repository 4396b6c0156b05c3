#pragma once
// What became of a file, as the ledger keeps it.
#include "base/GivenNumbers.h"

#include <QList>

enum class TRecordState { Done, DoneWithWarnings, Failed, Waiting, Stopped };
/// As it is stored, and never changed: "Done", "DoneWithWarnings", "Failed", "Waiting", "Stopped".
[[nodiscard]] string StateName(TRecordState state);
/// Nothing for a name that is none.
[[nodiscard]] std::optional<TRecordState> StateNamed(const string& name);

struct TResultFile {
    QByteArray Name; ///< in output/, as bytes of the file system
    qint64 Size = 0;
    bool operator==(const TResultFile&) const = default;
};

struct TRecordReason {
    string Code; ///< as "damage.repaired"
    string Step; ///< as "action 3, AddWatermark"; empty where no action is concerned
    string Text;
    bool operator==(const TRecordReason&) const = default;
};

struct TFileRecord {
    string Folder;   ///< its path
    QByteArray Name; ///< in the folder, as bytes of the file system
    string List;     ///< of actions
    TRecordState State = TRecordState::Done;
    QList<TResultFile> Results;
    QList<TRecordReason> Reasons;
    QList<TNumberRun> Numbers;
    qint64 Pages = 0; ///< of the results
    qint64 Size = 0;  ///< of the source
    qint64 Began = 0; ///< ms since 1970, UTC
    qint64 Ended = 0; ///< likewise
    string Agent;     ///< set by who writes it
    /// The source's name in process/ or Error/, where its own may have been taken; empty while it is in
    /// neither.
    QByteArray Settled;
    bool operator==(const TFileRecord&) const = default;
};

/// Cuts texts and lists that are longer than any person reads, as messages of scripts may be.
void Shorten(TFileRecord& record);

// The lists as JSON, in which they stand in one column each.
[[nodiscard]] string StoredResults(const QList<TResultFile>& results);
[[nodiscard]] QList<TResultFile> ResultsOfStored(const string& json);
[[nodiscard]] string StoredReasons(const QList<TRecordReason>& reasons);
[[nodiscard]] QList<TRecordReason> ReasonsOfStored(const string& json);
[[nodiscard]] string StoredNumbers(const QList<TNumberRun>& numbers);
[[nodiscard]] QList<TNumberRun> NumbersOfStored(const string& json);
