// Contents that something is put behind: those of copied pages, and those that are damaged.
#include "engine/DocumentFixture.h"
#include "engine/layers/LayerText.h"

#include <QRegularExpression>

namespace {

using TContents = TDocumentTest;

const string Stamp = QStringLiteral("stamped");

/// Pages of one page object, listed so often, whose contents are these streams in a direct array.
QByteArray PagesOf(const QList<QByteArray>& contents, int listed = 1) {
    constexpr int FirstStream = 4;
    QList<QByteArray> objects{"<< /Type /Catalog /Pages 2 0 R >>", {}, {}};
    QByteArray references;
    for (const QByteArray& content : contents) {
        references += QByteArray::number(FirstStream + objects.size() - 3) + " 0 R ";
        objects.append(StreamOf(content));
    }
    objects[1] = "<< /Type /Pages /Count " + QByteArray::number(listed) + " /Kids [" +
                 QByteArray("3 0 R ").repeated(listed) + "] >>";
    objects[2] =
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 400 400] /Contents [" + references +
        "] /Resources << /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >> >>";
    return PdfOf(objects);
}

void StampPages(TZQPDFDocument& document) {
    for (int i = 0; i < document.GetPageCount(); ++i) {
        auto* text = new TZQPDFText(&document.Pages().getItem(i).Layers()); // which own it
        text->SetPosition(TGPPointF::Create(36, 36));
        text->SetText(Stamp);
    }
}

/// Restores that restore nothing are taken out of a copy of the contents, whose array may belong to nobody.
TEST_F(TContents, OfCopiedPagesTakeWhatIsPutOnThem) {
    const QByteArray unmatched =
        PagesOf({"Q Q BT /F1 20 Tf 100 200 Td (one) Tj ET", "BT /F1 20 Tf 100 100 Td (two) Tj ET Q"}, 2);
    Open(unmatched); // one page listed twice: the second is a copy
    TZQPDFDocument into(nullptr);
    ASSERT_EQ(into.ImportPagesFrom(Document, "1-2", -1), 2);
    into.DeletePage(0);
    TZQPDFDocument extract(nullptr);
    ASSERT_EQ(extract.ImportPagesFrom(Document, "last", -1), 1);
    extract.DeletePage(0);
    for (TZQPDFDocument* document : {&Document, &into, &extract}) {
        StampPages(*document);
        document->SaveToPath(Out, /*keepSource*/ true, /*takeName*/ false);
        EXPECT_EQ(QpdfCheck(Out), 0);
        const QStringList texts = PageTexts(Out);
        ASSERT_EQ(texts.size(), document->GetPageCount());
        for (const QString& text : texts)
            EXPECT_EQ(text.split(QRegularExpression("\\s+")), QStringList({Stamp, "one", "two"}));
    }
}

/// Of pages that say much, so that damage in the middle leaves something on either side.
QByteArray LongContent() {
    QByteArray content;
    for (int i = 0; i < 200; ++i)
        content += "BT /F1 8 Tf 40 " + QByteArray::number(380 - i) + " Td (line " +
                   QByteArray::number(i * i) + ") Tj ET\n";
    return content;
}

QByteArray Flate(const QByteArray& data) {
    return qCompress(data).mid(4); // behind its own length
}

/// A page with that stream as its contents.
QByteArray PageWith(const QByteArray& stream) {
    return PdfOf(
        {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
         "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 400 400] /Contents 4 0 R /Resources << /Font << /F1 "
         "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >> >>",
         stream});
}

QStringList WordsOf(const string& path, const string& program) {
    const QStringList arguments =
        program == "mutool" ? QStringList{"draw", "-q", "-F", "txt", path} : QStringList{path, "-"};
    const QByteArray text = RunProgram(program, arguments).Out;
    return QString::fromUtf8(text).split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
}

/// Readers give up on damage each at a place of its own, and must find what we add all the same.
TEST_F(TContents, ThatAreDamagedKeepWhatTheyShowAndTakeMore) {
    QByteArray broken = Flate(LongContent());
    broken[broken.size() / 2] = char(~broken[broken.size() / 2]);
    broken[broken.size() / 2 + 1] = char(~broken[broken.size() / 2 + 1]);
    const QByteArray whole = Flate(LongContent());
    const struct {
        const char* What;
        QByteArray Stream;
        bool Told;
    } cases[] = {
        {"two wrong bytes", StreamOf(broken, "/Filter /FlateDecode"), true},
        {"cut off", StreamOf(whole.left(whole.size() / 2), "/Filter /FlateDecode"), true},
        {"ends in a string", StreamOf("BT /F1 8 Tf 40 40 Td (before) Tj ET BT (and so on"), true},
        {"nests without end",
         StreamOf("BT /F1 8 Tf 40 40 Td (before) Tj ET" + QByteArray(" q").repeated(1'100'000)), true},
        {"a wrong checksum", StreamOf(whole.chopped(1) + char(~whole.back()), "/Filter /FlateDecode"), true},
        {"a checksum that is missing", StreamOf(whole.chopped(4), "/Filter /FlateDecode"), false},
        {"whole", StreamOf(whole, "/Filter /FlateDecode"), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.What);
        Open(PageWith(c.Stream));
        StampPages(Document);
        Save();
        EXPECT_EQ(Document.Warnings().Has(TWarningKind::DamageContentUnreadable), c.Told);
        for (const char* program : {"pdftotext", "mutool"}) {
            QStringList after = WordsOf(Out, program);
            EXPECT_EQ(after.removeAll(Stamp), 1) << program;
            EXPECT_EQ(after, WordsOf(In, program)) << program;
        }
    }
}

TEST_F(TContents, OfWhichOneIsDamagedAreReadOn) {
    QByteArray broken = Flate(LongContent());
    broken.truncate(broken.size() / 2);
    QByteArray pdf =
        PagesOf({"BT /F1 8 Tf 40 40 Td (before) Tj ET", "", "BT /F1 8 Tf 40 20 Td (behind) Tj ET"});
    pdf.replace(StreamOf(""), StreamOf(broken, "/Filter /FlateDecode"));
    Open(pdf); // whose table is wrong by then
    StampPages(Document);
    Save();
    const QStringList words = WordsOf(Out, "pdftotext");
    for (const string& word : {string("before"), string("behind"), Stamp})
        EXPECT_EQ(words.count(word), 1) << word.toStdString();
    EXPECT_TRUE(Document.Warnings().Has(TWarningKind::DamageRepaired));
    EXPECT_TRUE(Document.Warnings().Has(TWarningKind::DamageContentUnreadable));
    EXPECT_FALSE(Document.Warnings().Has(TWarningKind::DamagePagesLost));
}

TEST_F(TContents, PagesThatAreLostAreTold) {
    QByteArray pdf = PagesOf({"BT ET"});
    Open(pdf.replace("/Count 1 /Kids [", "/Count 3 /Kids [9 0 R 10 0 R "));
    EXPECT_EQ(Document.GetPageCount(), 1);
    EXPECT_TRUE(Document.Warnings().Has(TWarningKind::DamagePagesLost));
}

TEST_F(TContents, RefusedChangesAreTold) {
    MakePdf(In, 1, {.OwnerPassword = "owner", .Restrictions = {"--modify=none"}});
    Document.OpenFromFile(In, {});
    EXPECT_FALSE(Document.Warnings().Has(TWarningKind::PermissionRefused));
    EXPECT_FALSE(Document.GetCanModify());
    EXPECT_FALSE(Document.GetCanModify());
    const TPDFWarnings warnings = Document.Warnings();
    ASSERT_EQ(warnings.end() - warnings.begin(), 1); // each once
    EXPECT_STREQ(CodeOf(warnings.begin()->Kind), "permission.refused");
}

} // namespace
