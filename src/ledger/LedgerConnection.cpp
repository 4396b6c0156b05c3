#include "ledger/LedgerConnection.h"

#include "base/FaultPoint.h"
#include "base/Paths.h"
#include "ledger/LedgerFile.h"
#include "ledger/Schema.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThread>

#include <atomic>
#include <map>
#include <sys/stat.h>

namespace {

struct TWord {
    const char* Name;
    const char* SQLite;
    const char* PostgreSQL;
};
constexpr TWord Words[] = {
    {"{identity}", "INTEGER PRIMARY KEY AUTOINCREMENT", "BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY"},
    {"{now}", "CAST(ROUND((julianday('now') - 2440587.5) * 86400000) AS INTEGER)",
     "CAST(extract(epoch FROM clock_timestamp()) * 1000 AS BIGINT)"},
    {"{lock}", "", "FOR UPDATE"}, // a SQLite transaction that writes has the whole file
    // Case matters for no letter from A to Z, and for all others.
    {"{like}", R"(LIKE ? ESCAPE '\')", R"(ILIKE ? COLLATE "C" ESCAPE '\')"},
    {"{has versions}", "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'versions'",
     "SELECT 1 WHERE to_regclass('versions') IS NOT NULL"},
    // For who works on one file's reservations; to its transaction's end.
    {"{lock source}", "SELECT ?", "SELECT 1 FROM pg_advisory_xact_lock(?)"},
    {"{lock schema}", "SELECT 1", "SELECT 1 FROM pg_advisory_xact_lock(7237141)"},
};

/// Codes of SQLite's errors (sqlite.org/rescode.html), without the details in their upper bytes.
enum TSQLiteCode { Busy = 5, Corrupt = 11, TooBig = 18, Constraint = 19, Mismatch = 20, NotADatabase = 26 };

constexpr int Patience = 5000; // ms, for what another process holds

string ServerOptions(const TLedgerPlace& place) {
    QMap<string, string> options{{"connect_timeout", "3"},
                                 {"application_name", "morvane"},
                                 {"keepalives_idle", "10"},
                                 {"keepalives_interval", "5"},
                                 {"tcp_user_timeout", "10000"}};
    options.insert(place.Options);
    QStringList texts;
    for (auto it = options.begin(); it != options.end(); ++it) {
        string value = it.value();
        value.replace(u'\\', QLatin1String("\\\\")).replace(u'\'', QLatin1String("\\'"));
        texts.append(QStringLiteral("%1='%2'").arg(it.key(), value));
    }
    return texts.join(u' ');
}

string UniqueConnectionName() {
    static std::atomic<int> count = 0;
    return QStringLiteral("ledger-%1").arg(++count);
}

} // namespace

struct TLedgerConnection::Impl {
    Impl(TLedgerConnection& owner, const TLedgerPlace& place) : Owner(owner), Place(place) {}
    ~Impl() { Close(); }

    TLedgerConnection& Owner;
    const TLedgerPlace Place;
    const string Name = UniqueConnectionName();
    QSqlDatabase Database;
    std::map<QByteArray, QSqlQuery> Statements; // by their text before its words were replaced
    std::optional<TDurable> Durable;            // what is set
    bool InTransaction = false;
    bool Broken = false; // the server is gone
    struct stat File {}; // as it was opened
    // A server that doesn't answer costs seconds at each attempt, and callers have other things to do.
    QElapsedTimer SinceFailure;
    qint64 Rest = 0; // ms from the failure on
    string Failure;

    [[nodiscard]] bool IsSQLite() const { return Place.Kind == TLedgerPlace::TKind::SQLite; }

    [[noreturn]] void Raise(TLedgerFault fault, const string& doing, const string& reason) const {
        throw ELedger(fault,
                      QStringLiteral("Cannot %1 the ledger \"%2\": %3").arg(doing, Place.Name(), reason));
    }
    [[noreturn]] void RaiseError(const string& doing, const QSqlError& error);

    void Open();
    void Close();
    void Connect();
    void StartFile();
    void StartServer();
    [[nodiscard]] bool IsReplaced() const;

    [[nodiscard]] string InItsWords(const char* sql) const;
    [[nodiscard]] QSqlQuery& Statement(const char* sql);
    QSqlQuery& Run(const char* sql, const QVariantList& values);
    qint64 Execute(const char* sql);
    void SetDurable(TDurable durable);
    void Transact(TDurable durable, const std::function<void()>& work);
    template <class TWork> void Again(TWork work);
};

void TLedgerConnection::Impl::RaiseError(const string& doing, const QSqlError& error) {
    const string code = error.nativeErrorCode();
    // A server's further lines hold values and what else changes from one time to the next.
    string reason = error.databaseText().trimmed().section(u'\n', 0, 0).simplified();
    if (reason.isEmpty())
        reason = error.driverText().simplified();
    TLedgerFault fault = TLedgerFault::Unusable;
    if (IsSQLite()) {
        const int number = code.toInt() & 0xFF;
        if (number == Constraint || number == TooBig || number == Mismatch)
            fault = TLedgerFault::Refused;
        if (number == Corrupt || number == NotADatabase)
            reason += QStringLiteral(". Move it away, with the files -wal and -shm beside it, or put a "
                                     "back-up in its place");
        if (number == Busy)
            reason += QStringLiteral(": another program holds it");
    } else {
        // Classes of SQLSTATE: 22 and 23 blame the values; without any, or with 08 or 57P, the server has
        // gone.
        if (code.startsWith(QLatin1String("22")) || code.startsWith(QLatin1String("23")))
            fault = TLedgerFault::Refused;
        Broken =
            code.isEmpty() || code.startsWith(QLatin1String("08")) || code.startsWith(QLatin1String("57P"));
    }
    Raise(fault, doing, reason);
}

/// Somebody has moved the file away, or put another in its place: what is written now would be lost.
bool TLedgerConnection::Impl::IsReplaced() const {
    struct stat now {};
    return IsSQLite() && (::stat(PathBytes(Place.Path).constData(), &now) != 0 || now.st_dev != File.st_dev ||
                          now.st_ino != File.st_ino);
}

void TLedgerConnection::Impl::Open() {
    if (Database.isValid() && (!Database.isOpen() || Broken || IsReplaced()))
        Close();
    if (Database.isOpen())
        return;
    if (Rest > 0 && !SinceFailure.hasExpired(Rest))
        throw ELedger(TLedgerFault::Unusable, Failure);
    QElapsedTimer taken;
    taken.start();
    try {
        Connect();
        PrepareSchema(Owner);
        Rest = 0;
    } catch (const Exception& e) {
        Close();
        constexpr qint64 Share = 5; // so that attempts take at most a sixth of the time
        Rest = taken.elapsed() * Share;
        Failure = e.Message();
        SinceFailure.start();
        throw;
    }
}

void TLedgerConnection::Impl::Close() {
    if (Database.isValid()) {
        Database.close();
        Database = QSqlDatabase();
        QSqlDatabase::removeDatabase(Name);
    }
    Statements.clear(); // last: while its driver lives, each would ask a server that may be gone to forget it
    Durable.reset();
    InTransaction = false;
    Broken = false;
}

void TLedgerConnection::Impl::Connect() {
    const string driver = IsSQLite() ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL");
    if (!QSqlDatabase::isDriverAvailable(driver))
        Raise(TLedgerFault::Unusable, QStringLiteral("open"),
              QStringLiteral("Qt's driver %1 is not installed (package libqt6sql6-%2)")
                  .arg(driver, IsSQLite() ? QStringLiteral("sqlite") : QStringLiteral("psql")));
    Database = QSqlDatabase::addDatabase(driver, Name);
    if (IsSQLite())
        StartFile();
    else
        StartServer();
}

void TLedgerConnection::Impl::StartFile() {
    try {
        MakeLedgerFile(Place.Path);
    } catch (const EFileError& e) {
        Raise(TLedgerFault::Unusable, QStringLiteral("open"), e.Message());
    }
    Database.setDatabaseName(Place.Path);
    Database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(Patience));
    if (!Database.open())
        RaiseError(QStringLiteral("open"), Database.lastError());
    (void)::stat(PathBytes(Place.Path).constData(), &File);
    // Two that turn the log on at once are told to wait without being made to.
    QElapsedTimer waiting;
    waiting.start();
    QSqlQuery mode(Database);
    while (!mode.exec(QStringLiteral("PRAGMA journal_mode = WAL"))) {
        if ((mode.lastError().nativeErrorCode().toInt() & 0xFF) != Busy || waiting.hasExpired(Patience))
            RaiseError(QStringLiteral("open"), mode.lastError());
        QThread::msleep(20);
    }
}

void TLedgerConnection::Impl::StartServer() {
    Database.setHostName(Place.Host);
    Database.setDatabaseName(Place.Database);
    Database.setUserName(Place.User);
    Database.setPassword(Place.Password);
    Database.setConnectOptions(ServerOptions(Place));
    if (!Database.open())
        RaiseError(QStringLiteral("open"), Database.lastError());
    // A session that hangs must not hold others for ever.
    for (const char* setting :
         {"SET client_min_messages TO warning", "SET lock_timeout TO '5s'", "SET statement_timeout TO '30s'",
          "SET idle_in_transaction_session_timeout TO '60s'"})
        Execute(setting);
    const string encoding =
        Owner.Rows("SELECT current_setting('server_encoding')").value(0).value(0).toString();
    if (encoding != QLatin1String("UTF8"))
        Raise(TLedgerFault::Unusable, QStringLiteral("use"),
              QStringLiteral("its encoding is %1; make the database with ENCODING 'UTF8'").arg(encoding));
}

string TLedgerConnection::Impl::InItsWords(const char* sql) const {
    string text = QString::fromUtf8(sql);
    for (const TWord& word : Words)
        text.replace(QLatin1String(word.Name), QLatin1String(IsSQLite() ? word.SQLite : word.PostgreSQL));
    return text;
}

QSqlQuery& TLedgerConnection::Impl::Statement(const char* sql) {
    const QByteArray key = QByteArray::fromRawData(sql, qsizetype(qstrlen(sql)));
    if (const auto known = Statements.find(key); known != Statements.end())
        return known->second;
    QSqlQuery query(Database);
    query.setForwardOnly(IsSQLite()); // which spares a copy of each row; with PostgreSQL it would cost
    if (!query.prepare(InItsWords(sql)))
        RaiseError(QStringLiteral("use"), query.lastError());
    return Statements.emplace(QByteArray(sql), std::move(query)).first->second;
}

QSqlQuery& TLedgerConnection::Impl::Run(const char* sql, const QVariantList& values) {
    QSqlQuery& query = Statement(sql);
    for (qsizetype i = 0; i < values.size(); ++i) {
        const QVariant& value = values.at(i);
        const bool isText = value.typeId() == QMetaType::QString;
        // A text without characters isn't NULL.
        query.bindValue(int(i), isText && value.toString().isEmpty() ? QVariant(QStringLiteral("")) : value);
    }
    if (!query.exec())
        RaiseError(QStringLiteral("use"), query.lastError());
    return query;
}

/// What takes no values isn't prepared: servers prepare no statements that make tables.
qint64 TLedgerConnection::Impl::Execute(const char* sql) {
    QSqlQuery query(Database);
    if (!query.exec(InItsWords(sql)))
        RaiseError(QStringLiteral("use"), query.lastError());
    return query.numRowsAffected();
}

void TLedgerConnection::Impl::SetDurable(TDurable durable) {
    if (Durable == durable)
        return;
    const bool fully = durable == TDurable::Fully;
    if (IsSQLite())
        Execute(fully ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
    else
        Execute(fully ? "SET synchronous_commit TO on" : "SET synchronous_commit TO off");
    Durable = durable;
}

void TLedgerConnection::Impl::Transact(TDurable durable, const std::function<void()>& work) {
    SetDurable(durable);
    Execute(IsSQLite() ? "BEGIN IMMEDIATE" : "BEGIN");
    InTransaction = true;
    try {
        work();
        if (const int error = FaultPoint("ledger commit"); error != 0)
            Raise(TLedgerFault::Unusable, QStringLiteral("write"),
                  QString::fromLocal8Bit(std::strerror(error)));
        Execute("COMMIT");
        InTransaction = false;
        (void)FaultPoint("ledger committed");
    } catch (...) {
        InTransaction = false;
        QSqlQuery query(Database);
        if (!query.exec(QStringLiteral("ROLLBACK")) && !IsSQLite()) // SQLite may have done so by itself
            Broken = true;
        throw;
    }
}

/// A connection that stood idle may be dead without anybody's knowing: then once more, with a new one.
template <class TWork> void TLedgerConnection::Impl::Again(TWork work) {
    const bool stood = Database.isOpen();
    Open();
    try {
        work();
        return;
    } catch (const ELedger&) {
        if (!stood || !Broken)
            throw;
    }
    Open();
    work();
}

TLedgerConnection::TLedgerConnection(const TLedgerPlace& place)
    : FImpl(std::make_unique<Impl>(*this, place)) {}

TLedgerConnection::~TLedgerConnection() = default;

const TLedgerPlace& TLedgerConnection::Place() const {
    return FImpl->Place;
}

void TLedgerConnection::Write(TDurable durable, const std::function<void()>& work) {
    if (FImpl->InTransaction)
        work();
    else
        FImpl->Again([&] { FImpl->Transact(durable, work); });
}

void TLedgerConnection::Read(const std::function<void()>& work) {
    if (FImpl->InTransaction)
        work();
    else
        FImpl->Again(work);
}

QList<QVariantList> TLedgerConnection::Rows(const char* sql, const QVariantList& values) {
    QSqlQuery& query = FImpl->Run(sql, values);
    const int columns = query.record().count();
    QList<QVariantList> rows;
    while (query.next()) {
        QVariantList row;
        for (int i = 0; i < columns; ++i)
            row.append(query.value(i));
        rows.append(row);
    }
    const QSqlError error = query.lastError();
    query.finish(); // or its reading would hold off others
    if (error.isValid())
        FImpl->RaiseError(QStringLiteral("read"), error);
    return rows;
}

qint64 TLedgerConnection::Change(const char* sql, const QVariantList& values) {
    if (values.isEmpty())
        return FImpl->Execute(sql);
    QSqlQuery& query = FImpl->Run(sql, values);
    const qint64 changed = query.numRowsAffected();
    query.finish();
    return changed;
}
