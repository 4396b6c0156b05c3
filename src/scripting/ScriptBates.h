#pragma once
// The store of Bates schemes as scripts see it: it can also stamp the script's document, and its numbers can
// be read and set.
#include "bates/BatesDictionary.h"
#include "scripting/ScriptDocument.h"

class TJSBatesDictionary : public TZQPDFBatesDictionary {
    Q_OBJECT
    Q_CLASSINFO("ScriptName", "TZQPDFBatesDictionary")
    Q_PROPERTY(QStringList Numbers MEMBER BatesStrl STORED false)
public:
    Q_INVOKABLE TJSBatesDictionary() = default;

    /// The names of the stored schemes, in the order of the file.
    Q_INVOKABLE QStringList FindSchemes() { return GetSchemes(); }
    Q_INVOKABLE void FillBatesStrl() { TZQPDFBatesDictionary::FillBatesStrl(); }
    Q_INVOKABLE void SetStartToCurNum() { TZQPDFBatesDictionary::SetStartToCurNum(); }
    Q_INVOKABLE string ParseTextTest(const string& AText) {
        return TZQPDFBatesDictionary::ParseTextTest(AText);
    }
    /// Stamps the pages of a range and moves the numbers on; a store with a file then saves the scheme.
    /// False, and nothing happens, where the document doesn't allow it.
    Q_INVOKABLE bool ApplySchemeToDocument(TJSPDFDocument* Document, const string& PageRange);
};
