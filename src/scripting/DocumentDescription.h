#pragma once
#include "base/Reflection.h"

/// The information entries of a document. An entry whose `...AsIs` flag is set is left as it stands; an
/// empty one without the flag is emptied.
struct TPDFDocumentDescription {
    Q_GADGET
public:
    FIELD(string, Title);
    FIELD(string, Subject);
    FIELD(string, Author);
    FIELD(string, Keywords);
    FIELD(bool, TitleAsIs) = false;
    FIELD(bool, SubjectAsIs) = false;
    FIELD(bool, AuthorAsIs) = false;
    FIELD(bool, KeywordsAsIs) = false;
    bool operator==(const TPDFDocumentDescription&) const = default;
};
