#include "bates/BatesDictionary.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "bates/CommaText.h"
#include "bates/NumberList.h"
#include "bates/SchemeUpdate.h"
#include "engine/macros/Macros.h"

#include <algorithm>

namespace {

/// The scratch scheme: what is saved without a name. It goes with the store.
constexpr QStringView ScratchName = u"temp-current";
/// The display name of no scheme.
constexpr QStringView StrNone = u"[None]";

} // namespace

TZQPDFBatesDictionary::TZQPDFBatesDictionary(TComponent* AOwner)
    : TComponent(AOwner), FXml(std::make_unique<TSchemeDocument>()) {}

TZQPDFBatesDictionary::~TZQPDFBatesDictionary() {
    try {
        DeleteScheme(ScratchName.toString());
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e));
    }
}

void TZQPDFBatesDictionary::Prepare(const string& ASchemeFile) {
    FSchemeFile = ASchemeFile;
    FPrepared = false; // a store that was prepared before must not write its schemes over this file
    FXml = ReadSchemes(ASchemeFile);
    FPrepared = true;
}

string TZQPDFBatesDictionary::GetXml() const {
    return QString::fromUtf8(FXml->Bytes());
}

QStringList TZQPDFBatesDictionary::Texts() const {
    return {CurrScheme.HeaderLeft, CurrScheme.HeaderCenter, CurrScheme.HeaderRight,
            CurrScheme.FooterLeft, CurrScheme.FooterCenter, CurrScheme.FooterRight};
}

bool TZQPDFBatesDictionary::GetIsValid() const {
    const QStringList texts = Texts();
    return std::any_of(texts.begin(), texts.end(), [](const string& text) { return !text.isEmpty(); });
}

void TZQPDFBatesDictionary::InitCurrScheme() {
    CurrScheme = {};
}

QStringList TZQPDFBatesDictionary::GetSchemes() const {
    QStringList names;
    FindSchemes(names);
    return names;
}

void TZQPDFBatesDictionary::FindSchemes(QStringList& Schemes) const {
    if (!FPrepared)
        return;
    for (const string& id : FXml->Ids())
        if (const string name = TrimBlanks(id); !name.isEmpty() && name != ScratchName)
            Schemes.append(name);
}

void TZQPDFBatesDictionary::GetSchemeByName(const string& ASchemeName) {
    InitCurrScheme();
    if (!FPrepared)
        return;
    const bool none = ASchemeName.isEmpty() || ASchemeName == StrNone;
    if (!FXml->Read(none ? ScratchName.toString() : ASchemeName, CurrScheme))
        return;
    BatesStrl = FromCommaText(CurrScheme.BatesNumbers);
    FillBatesStrl();
}

void TZQPDFBatesDictionary::SaveCurrSchemeToName(const string& ASchemeName) {
    if (!FPrepared)
        return;
    CurrScheme.Name = TrimBlanks(ASchemeName);
    const TZQPDFBatesSetting known = Known();
    FXml->Write(CurrScheme); // kept, whatever the file does
    TSchemeUpdate update(FSchemeFile);
    TakeStoredNumbers(known, update.Document());
    update.Document().Write(CurrScheme);
    update.Prepare();
    update.Publish();
    FXml->Write(CurrScheme);
}

TZQPDFBatesSetting TZQPDFBatesDictionary::Known() const {
    TZQPDFBatesSetting known;
    (void)FXml->Read(TrimBlanks(CurrScheme.Name), known);
    return known;
}

void TZQPDFBatesDictionary::TakeStoredNumbers(const TZQPDFBatesSetting& known,
                                              const TSchemeDocument& stored) {
    TZQPDFBatesSetting now;
    if (!stored.Read(TrimBlanks(CurrScheme.Name), now))
        return;
    NumberList::TakeStored(BatesStrl, FromCommaText(known.BatesNumbers), FromCommaText(now.BatesNumbers));
    if (TrimBlanks(CurrScheme.BatesNumbers) == known.BatesNumbers)
        CurrScheme.BatesNumbers = now.BatesNumbers;
}

void TZQPDFBatesDictionary::DeleteScheme(const string& ASchemeName) {
    if (!FPrepared)
        return;
    FXml->Remove(TrimBlanks(ASchemeName));
    TSchemeUpdate update(FSchemeFile);
    update.Document().Remove(TrimBlanks(ASchemeName));
    update.Prepare();
    update.Publish();
}

void TZQPDFBatesDictionary::StrToBates(const string& AText, TBates& ABates) {
    ABates = BatesNumbers::Parse(AText);
}

void TZQPDFBatesDictionary::GetBates(const string& AText, bool GetCur, string& Result) {
    const TBates bates = BatesNumbers::Parse(AText);
    BatesNumbers::Format(bates, GetCur ? bates.CurNum : bates.Start, Result);
}

void TZQPDFBatesDictionary::FillBatesStrl() {
    BatesStrl = NumberList::Build(Texts(), BatesStrl);
}

void TZQPDFBatesDictionary::ContinueNumbers() {
    BatesStrl =
        NumberList::Build(Texts(), FromCommaText(CurrScheme.BatesNumbers), NumberList::TFirst::GoesOn);
}

void TZQPDFBatesDictionary::SetStartToCurNum() {
    NumberList::Restart(BatesStrl);
}

string TZQPDFBatesDictionary::ParseTextTest(const string& AText) const {
    return PDFformatMacroString(nullptr, QStringLiteral("1"), QStringLiteral("NNN"),
                                NumberList::Replace(AText, BatesStrl, NumberList::Shown::Start),
                                QStringLiteral("File Name.pdf"), QDateTime::currentDateTime());
}
