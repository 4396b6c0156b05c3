#pragma once
// What there is to know of the series of numbers, and the one thing that may be changed.
#include "base/Text.h"

#include <QList>

class TLedgerConnection;

struct TSeriesState {
    string Name;
    qint64 Next = 0;
    qint64 Given = 0; ///< how many
    qint64 Void = 0;  ///< how many will never be given
    qint64 Reserved = 0;
};

enum class TNumberState { Reserved, Given, Void };

struct TAuditRow {
    string Series;
    qint64 Number = 0;
    TNumberState State = TNumberState::Reserved;
    string Folder;
    QByteArray File;
    QByteArray Result; ///< given: as what the file was published
    qint64 Page = 0;   ///< 0: of no page, or not given
    qint64 Time = 0;   ///< of the last change of its state, in ms since 1970 by the database's clock
    string Agent;
    QByteArray Sha256; ///< of the file
};

class TSeries {
public:
    explicit TSeries(TLedgerConnection& ledger) : FLedger(ledger) {}

    /// In the order of their names. Raises ELedger, as all here.
    [[nodiscard]] QList<TSeriesState> List();
    /// The number that is given next; a new series comes to be by it. Refused where it would lead back.
    void SetNext(const string& series, qint64 next);
    /// Each number that was ever reserved, in order. `row` must not use the connection.
    void Audit(const string& series, const std::function<void(const TAuditRow&)>& row);

private:
    TLedgerConnection& FLedger;
};
