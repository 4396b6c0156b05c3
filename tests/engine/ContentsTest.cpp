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
    objects[2] = "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 400 400] /Contents [" + references +
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
            EXPECT_EQ(text.split(QRegularExpression(QStringLiteral("\\s+"))),
                      QStringList({Stamp, "one", "two"}));
    }
}

} // namespace
