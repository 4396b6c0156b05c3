#include "ledger/LedgerPlace.h"

#include "base/Settings.h"
#include "ledger/LedgerError.h"

#include <QUrl>

namespace {

string Decoded(const string& part) {
    return QUrl::fromPercentEncoding(part.toUtf8());
}

/// The part behind the separator, taken off the text; empty where there is none.
string TakeBehind(string& text, QChar separator) {
    const qsizetype at = text.indexOf(separator);
    string behind = at < 0 ? string() : text.mid(at + 1);
    if (at >= 0)
        text.truncate(at);
    return behind;
}

/// Hosts as libpq has them: several with commas, each with a port or none, IPv6 in brackets.
void TakeHosts(const string& hosts, TLedgerPlace& place) {
    QStringList names;
    QStringList ports;
    for (const string& host : hosts.split(u',')) {
        const qsizetype colon = host.indexOf(u':', host.startsWith(u'[') ? host.indexOf(u']') : 0);
        string name = colon < 0 ? host : host.left(colon);
        if (name.startsWith(u'[') && name.endsWith(u']'))
            name = name.mid(1, name.size() - 2);
        names.append(Decoded(name));
        ports.append(colon < 0 ? string() : host.mid(colon + 1));
    }
    place.Host = names.join(u',');
    if (!ports.join(string()).isEmpty())
        place.Options.insert(QStringLiteral("port"), ports.join(u','));
}

/// The query and the user are taken off first: a password may hold any character but "@" and "/".
TLedgerPlace ParseServer(string rest) {
    TLedgerPlace place;
    place.Kind = TLedgerPlace::TKind::PostgreSQL;
    const string query = TakeBehind(rest, u'?');
    for (const string& entry : query.split(u'&', Qt::SkipEmptyParts)) {
        string key = entry;
        const string value = TakeBehind(key, u'=');
        place.Options.insert(Decoded(key), Decoded(value));
    }
    place.Database = Decoded(TakeBehind(rest, u'/'));
    if (const qsizetype at = rest.lastIndexOf(u'@'); at >= 0) {
        string user = rest.left(at);
        rest = rest.mid(at + 1);
        place.Password = Decoded(TakeBehind(user, u':'));
        place.User = Decoded(user);
    }
    TakeHosts(rest, place);
    return place;
}

} // namespace

string TLedgerPlace::Name() const {
    return Kind == TKind::SQLite ? Path : QStringLiteral("postgresql://%1/%2").arg(Host, Database);
}

TLedgerPlace ParseLedgerPlace(const string& setting) {
    const string text = setting.trimmed();
    for (const char* scheme : {"postgresql://", "postgres://"})
        if (text.startsWith(QLatin1String(scheme)))
            return ParseServer(text.mid(qsizetype(qstrlen(scheme))));
    TLedgerPlace place;
    place.Path = text.isEmpty() ? StateFolder() + QStringLiteral("ledger.sqlite") : text;
    if (!place.Path.startsWith(u'/'))
        throw ELedger(
            TLedgerFault::Refused,
            QStringLiteral("The ledger's place must be a whole path or begin with \"postgresql://\"."));
    return place;
}
