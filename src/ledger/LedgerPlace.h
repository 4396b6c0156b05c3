#pragma once
// Where the ledger is: a file of SQLite, or a database of a PostgreSQL server.
#include "base/Text.h"

#include <QMap>

struct TLedgerPlace {
    enum class TKind { SQLite, PostgreSQL };

    TKind Kind = TKind::SQLite;
    string Path; ///< SQLite: of the file
    // PostgreSQL; what is empty, libpq takes from its own environment and files:
    string Host;
    string Database;
    string User;
    string Password;
    QMap<string, string> Options; ///< port, sslmode, passfile and all else that libpq knows

    /// For texts and logs: the path, or host and database. Never the password.
    [[nodiscard]] string Name() const;
};

/// The value of the setting `Ledger`: empty for `ledger.sqlite` in the state folder, the whole path of
/// another file, or `postgresql://[user@][host[:port]][/database][?option=value&...]` with %XX for what has a
/// meaning there. Raises ELedger (Refused).
[[nodiscard]] TLedgerPlace ParseLedgerPlace(const string& setting);
