#pragma once
// What was wrong with a document and could be lived with, and what work on it cost. The kinds are few and
// their codes never change: who runs a list decides by them.
#include "base/Text.h"

#include <QList>

enum class TWarningKind : quint8 {
    DamageRepaired,          ///< the file's structure; what it shows is what readers make of it, too
    DamagePagesLost,         ///< fewer pages than the file promises
    DamageContentUnreadable, ///< what a page shows can't be read to its end
    SignatureInvalidated,    ///< a signature doesn't cover what was changed
    PermissionRefused,       ///< the document's permissions denied an operation, which did nothing
    FieldsLost,              ///< form fields didn't come along with imported pages
    MetadataUnreadable,      ///< an XMP packet was left as it is
    ContentNotShown,         ///< some viewers don't show what was put on pages
    NamesUnreadable,         ///< named destinations were left as they are
};

/// The code of a kind, as "damage.repaired".
[[nodiscard]] const char* CodeOf(TWarningKind kind);

struct TPDFWarning {
    TWarningKind Kind;
    string Text;
    bool operator==(const TPDFWarning&) const = default;
};

/// The warnings of one document, each once, and of each kind a few: a damaged file can give millions.
class TPDFWarnings {
public:
    void Add(TWarningKind kind, const string& text);
    void Add(const TPDFWarnings& others);

    [[nodiscard]] bool IsEmpty() const { return FItems.isEmpty(); }
    [[nodiscard]] bool Has(TWarningKind kind) const;
    [[nodiscard]] auto begin() const { return FItems.begin(); }
    [[nodiscard]] auto end() const { return FItems.end(); }

private:
    QList<TPDFWarning> FItems;
};
