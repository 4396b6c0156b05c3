// Macros in texts: what each stands for, what stays, and what a hostile text cannot do.
#include "engine/macros/Macros.h"
#include "engine/PdfJudges.h"
#include "engine/document/Document.h"
#include "testing/Workspace.h"

namespace {

const QDateTime Noon(QDate(2026, 3, 9), QTime(14, 5, 7));

string Expand(const string& text, const TPDFDocument* document = nullptr, const string& page = "7") {
    return PDFformatMacroString(document, page, "12", text, "a.pdf", Noon);
}

} // namespace

TEST(Macros, EachStandsForItsValueAndTheRestStays) {
    const struct {
        string Text;
        const char* Expanded = nullptr; // null: the text stays
    } cases[] = {
        {"Page [page] of [NumPages]", "Page 7 of 12"},
        {"[date] [time] [filename]", "2026-03-09 14:05 a.pdf"},
        {"[date:dd/mm/yyyy hh:MM]", "09/03/2026 14:05"},
        {"[DATE:yy-mm yyyyy ss]", "26-03 2026y 07"},
        {"[author][title][subject][created]", ""}, // without a document
        {"[page+100:6] [page+0:0] [page+5:2]", "000107 7 12"},
        {"[page+1] [page+:6] [page+x:6] [page+-1:6] [page-1:6]"},
        {"[user] [unknown] [] [date:] [page ] [pagė]"},
        {"[[page]] [[[page]", "[7] [[7"},
        {"[page [page] page]", "[page 7 page]"},
        {"page] [page"},
        {"[page+9223372036854775807:6] [page+99999999999999999999:6]"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Expand(c.Text), c.Expanded != nullptr ? string(c.Expanded) : c.Text);
    EXPECT_EQ(Expand("[page] [page+1:3]", nullptr, "iv"), "iv [page+1:3]");
}

TEST(Macros, ADocumentTellsItsInformationAndAnExpandedValueIsNotExpandedAgain) {
    TWorkspace folder;
    const auto source =
        folder.Write("in.pdf", PdfOf({"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                      "<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]>>",
                                      "<</Title([page] [TITLE])/Author(\\223\\(x\\))"
                                      "/CreationDate(D:20240229235959-08'00')>>"},
                                     "/Info 4 0 R"));
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(source, {});
    document.SetInfoString("Subject", "[date]", /*keepExisting=*/false);
    EXPECT_EQ(Expand("[title]|[subject]|[created]", &document), "[page] [TITLE]|[date]|2024-02-29 23:59");
    EXPECT_EQ(formatVarString(&document, "[filename] [title] [page] [numpages] [page+1:2]"),
              "in.pdf [page] [TITLE] [page] [numpages] [page+1:2]");
    const string user = QString::fromUtf8(RunProgram("id", {"-un"}).Out).trimmed();
    EXPECT_EQ(formatVarString(nullptr, "by [USER], [author][filename]"), "by " + user + ", ");

    for (const char* date : {"yesterday", "D:2024", "20241301", "D:202402", "D:2024022", ""}) {
        document.SetInfoString("CreationDate", date, /*keepExisting=*/false);
        const string shown = string(date) == "D:2024"     ? string("2024-01-01 00:00")
                             : string(date) == "D:202402" ? string("2024-02-01 00:00")
                                                          : string(date);
        EXPECT_EQ(Expand("[created]", &document), shown);
    }
}

TEST(Macros, AHostileTextStaysWithinBounds) {
    EXPECT_EQ(Expand("[page+1:2000000000]"), string(254, '0') + "8");
    EXPECT_EQ(Expand(string("[").repeated(1'000'000) + "page]"), string("[").repeated(999'999) + "7");

    TZQPDFDocument document(nullptr);
    document.SetInfoString("Title", string(100'000, 't'), /*keepExisting=*/false);
    const string text = Expand(string("[title]").repeated(100'000), &document);
    EXPECT_LE(text.size(), MacroLimits::ExpandedText + 700'000);
    EXPECT_EQ(text.count("t"), 10 * 100'000 + (100'000 - 10) * 2);
}
