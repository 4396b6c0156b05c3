#pragma once
// The store of Bates schemes: one scheme at hand, and, once prepared with a file, the named ones in it.
//
// Without a file everything works but what stores and loads. One thread at a time may use a store. Several
// stores, also of several processes, may work on one file: each writes the scheme concerned only, under the
// file's lock (bates/SchemeUpdate.h), and numbers that others have given meanwhile are not given again.
#include "base/Component.h"
#include "bates/BatesNumbers.h"
#include "bates/BatesSetting.h"

#include <QStringList>

class TSchemeDocument;
class TZQPDFDocument;
class TZQPDFPagesRangeSelector;

class TZQPDFBatesDictionary : public TComponent {
    Q_OBJECT
    Q_CLASSINFO("ScriptCollect", "true") // it writes when it goes: not long after the script
    Q_PROPERTY(bool IsPrepared READ GetIsPrepared STORED false)
    Q_PROPERTY(bool IsValid READ GetIsValid STORED false)
    Q_PROPERTY(string SchemeFile READ GetSchemeFile STORED false)
    Q_PROPERTY(string Xml READ GetXml STORED false)
    Q_PROPERTY(QStringList Schemes READ GetSchemes STORED false)
    Q_PROPERTY(TZQPDFBatesSetting CurrScheme MEMBER CurrScheme STORED false)
public:
    Q_INVOKABLE explicit TZQPDFBatesDictionary(TComponent* AOwner = nullptr);
    /// Of a prepared store: removes the scratch scheme from the file as it is then, and writes it. Never
    /// raises; a failed write leaves a line in the journal.
    ~TZQPDFBatesDictionary() override;

    /// Attaches a scheme file. One that is missing is made by the first save. Raises EFileError or EXmlError
    /// for a file that can't be read; the store is then not prepared, and the file stays as it is.
    Q_INVOKABLE void Prepare(const string& ASchemeFile);
    [[nodiscard]] bool GetIsPrepared() const { return FPrepared; }
    [[nodiscard]] const string& GetSchemeFile() const { return FSchemeFile; }
    /// The scheme file as this store knows it: as it was read, with the store's own changes.
    [[nodiscard]] string GetXml() const;
    /// Whether any of the six texts of the scheme at hand isn't empty.
    [[nodiscard]] bool GetIsValid() const;

    /// Puts the scheme at hand on its defaults; the number list stays.
    Q_INVOKABLE void InitCurrScheme();
    /// Appends the names in the order of the file, duplicates too, without the scratch scheme.
    void FindSchemes(QStringList& Schemes) const;
    /// The same names as a list.
    [[nodiscard]] QStringList GetSchemes() const;
    /// Loads a scheme and its numbers; the name is looked for as it is. Where there is none, the scheme at
    /// hand is on its defaults. No name, or that of no scheme, means the scratch scheme.
    Q_INVOKABLE void GetSchemeByName(const string& ASchemeName);
    /// Stores the scheme at hand under a name, without blanks at its ends, which it then bears. Stored
    /// numbers that others have moved on since they were read stay so, unless they were set here. Raises
    /// EFileError, and the store keeps the change.
    Q_INVOKABLE void SaveCurrSchemeToName(const string& ASchemeName);
    /// Removes a scheme and writes the file, also if there is no such scheme.
    Q_INVOKABLE void DeleteScheme(const string& ASchemeName);

    /// The parts of a line or macro (bates/BatesNumbers.h).
    static void StrToBates(const string& AText, TBates& ABates);
    /// The formatted number of a line: the current one, or the start. Format 4 appends to `Result`.
    static void GetBates(const string& AText, bool GetCur, string& Result);
    /// Brings the number list into line with the six texts (NumberList::Build).
    void FillBatesStrl();
    /// The same, but each number goes on where the scheme at hand has it stored, the first one too, which
    /// else begins anew with each load.
    Q_INVOKABLE void ContinueNumbers();
    void SetStartToCurNum();
    /// What a stamp text looks like on a first page: numbers at their start, "NNN" pages.
    [[nodiscard]] string ParseTextTest(const string& AText) const;

    /// Stamps the pages of a range (engine/pages/PageRange.h; empty: all) with the scheme at hand and moves
    /// each number on once a page. Number macros are expanded as far as the list has them, so call
    /// FillBatesStrl first where they shall be. A prepared store holds the file's lock meanwhile: numbers
    /// that weren't set since they were read are the file's, the scheme that is to be saved under its name is
    /// on the disk before the first page is stamped, and replaces the old one behind the last. Where
    /// something raises, pages stamped so far stay so, the file and the list are as they were, and
    /// GlobalDocument stays set.
    void ApplySchemeToDocument(TZQPDFDocument& ADocument, const string& PageRangeMacro);

    QStringList BatesStrl; ///< lines "macro=current" (bates/NumberList.h)
    TZQPDFBatesSetting CurrScheme;

private:
    /// The six texts in the order of the record.
    [[nodiscard]] QStringList Texts() const;
    /// `numbers` are the page's own of each series.
    void StampPage(TZQPDFDocument& document, int number, const QMap<string, qint64>& numbers);
    void StampPages(TZQPDFDocument& document, const TZQPDFPagesRangeSelector& pages);
    void StampFromFile(TZQPDFDocument& document, const TZQPDFPagesRangeSelector& pages);
    /// Numbers that others have moved on: `known` and `stored` are the scheme at hand as this store knows it
    /// and as the file has it now.
    void TakeStoredNumbers(const TZQPDFBatesSetting& known, const TSchemeDocument& stored);
    [[nodiscard]] TZQPDFBatesSetting Known() const;

    std::unique_ptr<TSchemeDocument> FXml;
    string FSchemeFile;
    bool FPrepared = false;
};
