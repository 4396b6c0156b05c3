#pragma once
// One connection to the ledger, for one thread: the first that uses it, which must also destroy it. It opens
// when it is first needed, and again after it broke, so that a server that comes back is found. A program
// needs a QCoreApplication for it.
#include "ledger/LedgerError.h"
#include "ledger/LedgerPlace.h"

#include <QVariantList>

/// What a commit waits for.
enum class TDurable {
    Soon,  ///< nothing: a power failure may take the last moments. Never half a transaction
    Fully, ///< the disk
};

class TLedgerConnection {
public:
    explicit TLedgerConnection(const TLedgerPlace& place);
    ~TLedgerConnection();
    TLedgerConnection(const TLedgerConnection&) = delete;
    TLedgerConnection& operator=(const TLedgerConnection&) = delete;

    [[nodiscard]] const TLedgerPlace& Place() const;

    /// Runs `work` in one transaction; within another one, as a part of that. Raises ELedger, or what `work`
    /// raises, and then nothing has changed. `work` runs a second time if the connection proves dead, which
    /// may be after the server has done all: it must be safe to repeat.
    void Write(TDurable durable, const std::function<void()>& work);
    /// The same for work that changes nothing.
    void Read(const std::function<void()>& work);

    /// Only within Write or Read. A statement is prepared once; each "?" takes a value, so that no name of
    /// others is ever a part of its text. Words in braces stand for what the two kinds of database say
    /// differently, as {now} for milliseconds since 1970 by the database's clock.
    [[nodiscard]] QList<QVariantList> Rows(const char* sql, const QVariantList& values = {});
    /// How many rows it changed. Without values it isn't prepared, as nothing is that makes tables.
    qint64 Change(const char* sql, const QVariantList& values = {});

private:
    struct Impl;
    std::unique_ptr<Impl> FImpl;
};
