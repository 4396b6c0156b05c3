// Stamping: each chosen page gets a group of its own with the six texts of the scheme.
#include "bates/BatesDictionary.h"

#include "base/GivenNumbers.h"
#include "base/Paths.h"
#include "bates/BatesText.h"
#include "bates/CommaText.h"
#include "bates/NumberList.h"
#include "bates/SchemeUpdate.h"
#include "bates/SeriesMacro.h"
#include "engine/document/GlobalDocument.h"
#include "engine/layers/XObjectGroup.h"
#include "engine/macros/Macros.h"
#include "engine/pages/PageRange.h"
#include "engine/pdf/Numbers.h"

#include <array>

namespace {

/// The columns of one row, the header's before the footer's: the order of the record.
enum TColumn { Left, Center, Right, Columns };
constexpr size_t Positions = 2 * size_t(Columns);
using TStampTexts = std::array<std::unique_ptr<TZQPDFBatesText>, Positions>;

void SetLook(TZQPDFBatesText& text, const TZQPDFBatesSetting& scheme) {
    text.BeginUpdate();
    text.SetFontName(Narrow(scheme.FontName));
    text.SetFontSize(Single(scheme.FontSize));
    text.SetFontStyle(scheme.FontStyle);
    if (scheme.FontOutline) {
        text.SetStrokeColor(scheme.FontColor);
        text.SetFillColor(0);
        text.SetStrokePenWidth(1.0);
    } else {
        text.SetFillColor(scheme.FontColor);
        text.SetStrokeColor(0);
    }
    text.CancelUpdate();
}

void RequireNumbers(const TZQPDFBatesSetting& scheme) {
    RequireLength("FontSize", scheme.FontSize);
    RequireLength("MarginLeft", scheme.MarginLeft);
    RequireLength("MarginRight", scheme.MarginRight);
    RequireLength("MarginTop", scheme.MarginTop);
    RequireLength("MarginBottom", scheme.MarginBottom);
}

/// The time for the macros of a text, taken anew for each text that can show it: asking for the local time
/// looks at the time zone's file, which for six texts a page is a tenth of the work.
QDateTime NowFor(const string& text) {
    const bool shown = text.contains(QLatin1String("[date"), Qt::CaseInsensitive) ||
                       text.contains(QLatin1String("[time"), Qt::CaseInsensitive);
    return shown ? QDateTime::currentDateTime() : QDateTime();
}

Double XOf(size_t column, Double width, Double pageWidth, const TZQPDFBatesSetting& scheme) {
    switch (column) {
    case Left:
        return scheme.MarginLeft;
    case Center:
        return scheme.MarginLeft + (pageWidth - scheme.MarginLeft - scheme.MarginRight - width) / 2;
    default:
        return pageWidth - scheme.MarginRight - width;
    }
}

/// A header stands on the top margin's line and a footer hangs from the bottom one's, so that both lie in
/// the margins.
void Place(const TStampTexts& texts, const TZQPDFPage& page, const TZQPDFBatesSetting& scheme) {
    const auto pageWidth = Double(page.GetWidth());
    const auto pageHeight = Double(page.GetHeight());
    for (size_t i = 0; i < Positions; ++i) {
        TZQPDFBatesText& text = *texts[i];
        const Double x = XOf(i % Columns, Double(text.Width()), pageWidth, scheme);
        const Double y =
            i < Columns ? scheme.MarginTop - Double(text.Height()) : pageHeight - scheme.MarginBottom;
        text.MoveTo(Single(x), Single(y));
    }
}

void PutOnPage(TZQPDFDocument& document, TZQPDFPage& page, TStampTexts& texts) {
    auto group = std::make_unique<TZQPDFXObjectGroup>(document, TZQPDFXObjectGroupType::BatesStamp);
    for (auto& text : texts)
        group->Add(text.release(), 0);
    TZQPDFXObjectGroup* stamp = group.release();
    document.XObjects().Add(stamp);
    if (page.getRendered())
        new TZQPDFXObjectBatesStampRef(&page.Layers(), string(), stamp); // the layers own it
    page.updateXObject(document, *stamp);
}

} // namespace

void TZQPDFBatesDictionary::StampPage(TZQPDFDocument& document, int number,
                                      const QMap<string, qint64>& numbers) {
    TZQPDFPage& page = document.Pages().getItem(number - 1);
    const QStringList schemeTexts = Texts();
    TStampTexts texts;
    for (size_t i = 0; i < Positions; ++i) {
        texts[i] = std::make_unique<TZQPDFBatesText>(nullptr);
        SetLook(*texts[i], CurrScheme);
        const string numbered = SeriesMacro::Replace(
            NumberList::Replace(schemeTexts[qsizetype(i)], BatesStrl, NumberList::Shown::Current), numbers);
        texts[i]->SetText(PDFformatMacroString(&document, QString::number(number),
                                               QString::number(document.GetPageCount()), numbered,
                                               ExtractFileName(document.FileName()), NowFor(numbered)));
    }
    Place(texts, page, CurrScheme);
    NumberList::Advance(BatesStrl, /*pages=*/1);
    PutOnPage(document, page, texts);
}

void TZQPDFBatesDictionary::StampPages(TZQPDFDocument& document, const TZQPDFPagesRangeSelector& pages) {
    QMap<string, qint64> next;
    if (pages.Count() > 0)
        for (const string& series : SeriesMacro::SeriesOf(Texts()))
            next.insert(series, TGivenNumbers::Take(series, pages.Count()));
    for (const int page : pages) {
        StampPage(document, page, next);
        for (auto number = next.begin(); number != next.end(); ++number)
            TGivenNumbers::Show(number.key(), (*number)++, document.Pages().getItem(page - 1).Id());
    }
    CurrScheme.BatesNumbers = ToCommaText(BatesStrl);
}

void TZQPDFBatesDictionary::StampFromFile(TZQPDFDocument& document, const TZQPDFPagesRangeSelector& pages) {
    TSchemeUpdate update(FSchemeFile);
    const QStringList before = BatesStrl;
    const TZQPDFBatesSetting schemeBefore = CurrScheme;
    try {
        TakeStoredNumbers(Known(), update.Document());
        TZQPDFBatesSetting after = CurrScheme;
        QStringList numbers = BatesStrl;
        NumberList::Advance(numbers, pages.Count());
        after.Name = TrimBlanks(after.Name);
        after.BatesNumbers = ToCommaText(numbers);
        update.Document().Write(after);
        update.Prepare();
        StampPages(document, pages);
        update.Publish();
        CurrScheme = after;
        FXml->Write(CurrScheme);
    } catch (...) {
        BatesStrl = before;
        CurrScheme = schemeBefore;
        throw;
    }
}

void TZQPDFBatesDictionary::ApplySchemeToDocument(TZQPDFDocument& ADocument, const string& PageRangeMacro) {
    RequireNumbers(CurrScheme);
    GlobalDocument = &ADocument;
    const string range = PageRangeMacro.isEmpty() ? QStringLiteral("1-[numpages]") : PageRangeMacro;
    const TZQPDFPagesRangeSelector pages(range, ADocument.GetPageCount(), /*firstPage*/ 1);
    if (FPrepared)
        StampFromFile(ADocument, pages);
    else
        StampPages(ADocument, pages);
    GlobalDocument = nullptr;
}
