// Files that claim, decode to or are read for more than they are.
#include "base/Interrupt.h"
#include "engine/DocumentFixture.h"
#include "engine/core/EmbeddedFiles.h"
#include "engine/layers/LayerText.h"
#include "testing/Raised.h"

#include <QFile>

namespace {

using TBudget = TDocumentTest;

QByteArray Flate(const QByteArray& data) {
    return qCompress(data).mid(4);
}

/// 300 MB of blanks in a few KB: runs of 128, which are few once more.
QByteArray Bomb() {
    constexpr int Runs = 300'000'000 / 128;
    return Flate(QByteArray("\x81 ", 2).repeated(Runs));
}

QByteArray PageWith(const QByteArray& contents, const QByteArray& extra = {}) {
    return PdfOf({"<< /Type /Catalog /Pages 2 0 R /Metadata 5 0 R >>",
                  "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 400 400] /Contents 4 0 R >>", contents,
                  extra.isEmpty() ? StreamOf("") : extra});
}

const char* const BombFilters = "/Filter [/FlateDecode /RunLengthDecode]";

TEST_F(TBudget, ContentsOfChainedFiltersEndInAnError) {
    Open(PageWith(StreamOf(Bomb(), BombFilters)));
    (new TZQPDFText(&Document.Pages().getItem(0).Layers()))->SetText("t");
    EXPECT_TRUE(RaisedBy([&] { Save(); }).contains("decode to more than any document needs"));
    EXPECT_FALSE(Files.Has("out.pdf"));
}

TEST_F(TBudget, OtherStreamsOfThatKindDecodeToNothing) {
    Open(PageWith(StreamOf(""), StreamOf(Bomb(), BombFilters)));
    EXPECT_EQ(Document.GetXMLMetaData(), NarrowString());
    Document.RotatePages({}, 90); // which needs none of it
    Save();
    EXPECT_EQ(PdfInfo(Out, "Page rot"), "90");
}

/// Each entry takes a byte here, and a hundred in memory. Tables of old may lead to streams, too.
TEST_F(TBudget, TablesOfMoreObjectsThanFitAreRefused) {
    const QByteArray entries = Flate(QByteArray(20'000'000, '\0'));
    QByteArray pdf = "%PDF-1.5\n1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj\n";
    const QByteArray stream = QByteArray::number(pdf.size());
    pdf += "3 0 obj\n" +
           StreamOf(entries, "/Type /XRef /Size 20000000 /W [0 1 0] /Root 1 0 R /Filter /FlateDecode") +
           "\nendobj\n";
    const QByteArray table = QByteArray::number(pdf.size());
    const QByteArray hybrid = "xref\n0 1\n0000000000 65535 f \n1 1\n0000000009 00000 n \n"
                              "trailer << /Size 3 /Root 1 0 R /XRefStm " +
                              stream + " >>\n";
    for (const QByteArray& end : {"startxref\n" + stream, hybrid + "startxref\n" + table}) {
        const string error = RaisedBy([&] { Open(pdf + end + "\n%%EOF\n"); });
        EXPECT_TRUE(error.contains("names more objects than a file of this size can hold"))
            << error.toStdString();
    }
}

/// A download that was begun, or an attack: repair finds what is there and passes over what isn't.
TEST_F(TBudget, HolesOfSparseFilesCostNothing) {
    QByteArray pdf = SamplePdf(2);
    pdf.truncate(pdf.lastIndexOf("startxref"));
    Files.Write("in.pdf", pdf);
    QFile file(In);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(40LL << 30));
    file.close();
    Document.OpenFromFile(In, {});
    EXPECT_EQ(Document.GetPageCount(), 2);
    EXPECT_TRUE(Document.Warnings().Has(TWarningKind::DamageRepaired));
}

/// The wrong length of a stream has the library look for its end, from each to the end of the file.
TEST_F(TBudget, RepairThatReadsTheFileOverAndOverEnds) {
    constexpr int Streams = 3000;
    QByteArray pdf = "%PDF-1.5\n1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj\n"
                     "2 0 obj << /Type /Pages /Kids [";
    for (int i = 3; i < Streams; ++i)
        pdf += QByteArray::number(i) + " 0 R ";
    pdf += "] /Count 1 >> endobj\n";
    for (int i = 3; i < Streams; ++i)
        pdf += QByteArray::number(i) + " 0 obj << /Length 9999999 >> stream\n" + QByteArray(300, 'x') + "\n";
    pdf += "trailer << /Root 1 0 R /Size 3000 >>\n";
    EXPECT_TRUE(RaisedBy([&] { Open(pdf); }).contains("would take reading it without end"));
}

TEST_F(TBudget, AStopEndsRepairAndDecoding) {
    struct TStop {
        TStop() {
            SetInterruptTest([] { return true; });
        }
        ~TStop() { SetInterruptTest(nullptr); }
    };
    const QByteArray pdf = PageWith(StreamOf(Flate("BT ET"), "/Filter /FlateDecode"));
    {
        const TStop stop;
        EXPECT_THROW(Open(pdf), EInterrupted);
    }
    Open(pdf);
    (new TZQPDFText(&Document.Pages().getItem(0).Layers()))->SetText("t");
    {
        const TStop stop;
        EXPECT_THROW(Save(), EInterrupted);
    }
    Save();
    EXPECT_EQ(PageTexts(Out), QStringList("t"));
}

/// Literal codes only, which become longer as the table grows (ISO 32000-1, 7.4.4.2).
QByteArray LzwLiterals(const QByteArray& data, int early) {
    QByteArray coded;
    quint32 bits = 0;
    int count = 0;
    int width = 9;
    int next = 257; // the first literal makes no entry
    const auto put = [&](int code) {
        bits = bits << width | quint32(code);
        for (count += width; count >= 8; count -= 8)
            coded += char(bits >> (count - 8));
    };
    put(256);
    for (const char c : data) {
        put(quint8(c));
        ++next;
        if (next + early >= 1 << width && width < 12)
            ++width;
        if (next == 4090) {
            put(256);
            width = 9;
            next = 257;
        }
    }
    put(257);
    return coded + char(bits << (8 - count));
}

/// What another program decodes is decoded to the same: the counting filters stand in the library's place.
TEST_F(TBudget, CountingFiltersDecodeAsOthersDo) {
    QByteArray noise;
    for (quint32 i = 0, x = 1; i < 61 * 60; ++i, x = x * 1664525 + 1013904223)
        noise += char(i % 61 == 0 ? (x >> 24) % 5 : x >> 24); // a PNG filter's tag in front of some rows
    const auto params = [](const char* text) { return "/DecodeParms << " + QByteArray(text) + " >>"; };
    const std::pair<QByteArray, QByteArray> cases[] = {
        {Flate(noise), "/Filter /FlateDecode"},
        {Flate(noise), "/Filter /FlateDecode " + params("/Predictor 15 /Columns 60")},
        {Flate(noise), "/Filter /FlateDecode " + params("/Predictor 12 /Columns 20 /Colors 3")},
        {Flate(noise),
         "/Filter /FlateDecode " + params("/Predictor 10 /Columns 10 /Colors 3 /BitsPerComponent 16")},
        {Flate(noise), "/Filter /FlateDecode " + params("/Predictor 2 /Columns 20 /Colors 3")},
        {Flate(noise),
         "/Filter /FlateDecode " + params("/Predictor 2 /Columns 30 /Colors 2 /BitsPerComponent 4")},
        {Flate(noise),
         "/Filter /FlateDecode " + params("/Predictor 2 /Columns 15 /Colors 1 /BitsPerComponent 16")},
        {Flate(noise),
         "/Filter /FlateDecode " + params("/Predictor 2 /Columns 24 /Colors 1 /BitsPerComponent 1")},
        {LzwLiterals(noise, 1), "/Filter /LZWDecode"},
        {LzwLiterals(noise, 0), "/Filter /LZWDecode " + params("/EarlyChange 0")},
        {QByteArray("\x02one\xFEx\x80", 7), "/Filter /RunLengthDecode"},
        {QByteArray::fromHex("800B6050220C0C8501"), "/Filter /LZWDecode"},
        {Flate(LzwLiterals(noise, 1)).toHex() + '>', "/Filter [/ASCIIHexDecode /FlateDecode /LZWDecode]"},
    };
    for (const auto& [data, entries] : cases) {
        SCOPED_TRACE(entries.toStdString());
        Open(PageWith(StreamOf(""), StreamOf(data, entries)));
        const QByteArray judged = RunProgram("qpdf", {"--show-object=5", "--filtered-stream-data", In}).Out;
        EXPECT_GT(judged.size(), 5);
        EXPECT_EQ(Document.GetXMLMetaData(), judged);
    }
}

} // namespace
