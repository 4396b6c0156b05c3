// Documents that must be refused: quickly, with file and place, and without a word on standard error.
#include "Samples.h"
#include "testing/CpuTime.h"
#include "xml/XmlParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

QByteArray Nested(int depth) {
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

QByteArray Laughs() {
    QByteArray dtd = "<!DOCTYPE Sample [<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 20; ++i) {
        const QByteArray below = "&l" + QByteArray::number(i - 1) + ";";
        dtd += "<!ENTITY l" + QByteArray::number(i) + " \"" + below.repeated(10) + "\">";
    }
    return dtd + "]><Sample><Text>&l19;</Text></Sample>";
}

QByteArray Utf16(const QString& text) {
    return QByteArray("\xFF\xFE") +
           QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * qsizetype(sizeof(QChar)));
}

struct TBadDocument {
    QByteArray Document;
    const char* Message; ///< a part of it
};

class BadXml : public testing::Test {
protected:
    void SetUp() override { RegisterSamples(); }
};

} // namespace

TEST_F(BadXml, IsRefusedWithPlaceAndReason) {
    const QList<TBadDocument> table{
        {"", "stream is empty"},
        {" \n ", "stream is empty"},
        {"plain text", "stream, line 1, column 1: Start tag expected"},
        {"<Sample>\n<Text>a</Txt></Sample>", "stream, line 2, column 14: Opening and ending tag mismatch"},
        {"<Sample><Text>a</Text>", "stream, line 1, column 23: "},
        {"<Sample/><Sample/>", "Extra content at the end of the document"},
        {"<Sample>&nbsp;</Sample>", "Entity 'nbsp' not defined"},
        {"<Sample a='1' a='2'/>", "Attribute a redefined"},
        {SampleWith("<Text>\x01</Text>"), "line 2, column 15: "},
        {SampleWith("<Text>&#1;</Text>"), "invalid xmlChar value 1"},
        {SampleWith("<Text>\xFF</Text>"), "not proper UTF-8"},
        {SampleWith("<Text>\xC3</Text>"), "not proper UTF-8"},
        {SampleWith("<Text>\xED\xA0\x80</Text>"), "line 2, column"},
        {Nested(201), "elements are nested more than 200 deep"},
        {Nested(100000), "elements are nested more than 200 deep"},
        {Laughs(), "document type declarations (<!DOCTYPE ...>) are not accepted"},
        {"<!DOCTYPE Sample SYSTEM \"file:///etc/passwd\"><Sample/>", "document type declarations"},
        {"<!DOCTYPE Sample [<!ENTITY e SYSTEM \"http://localhost/\">]><Sample>&e;</Sample>",
         "document type declarations"},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Sample/>",
         "the encoding ISO-8859-1 is not supported, save the file as UTF-8"},
        {"<?xml version=\"1.0\" encoding=\"UTF-16\"?><Sample/>", "UTF-16"},
        {"<?xml version=\"1.0\" encoding=\"nonsense\"?><Sample/>", "Unsupported encoding nonsense"},
        {QByteArray("<?xml version=\"1.0\"?>\n<Sample>") + QByteArray("<a/>").repeated(1'000'001) +
             "</Sample>",
         "stream, line 2, column 4000007: more than 1000000 elements"},
        {"<Other/>", "stream, line 1: the root element is \"Other\", expected is \"Sample\""},
        {SampleWith("\n<Enabled>maybe</Enabled>"),
         "stream, line 3: Enabled: \"maybe\" is no Boolean (true or false)"},
        {SampleWith("<Text>a<b/></Text>"), "stream, line 2: \"Text\" holds a value and no elements"},
        {SampleWith("<Text>a</Text><text>b</text>"), "\"text\" appears twice in \"Sample\""},
        {SampleWith("<Record>x<isFolder>1</isFolder></Record>"), "text between the elements of \"Record\""},
        {SampleWith("<Plain>x</Plain>"), "text in the list \"Plain\""},
        {SampleWith("<Steps><Stp Class='TSampleTextStep'/></Steps>"), "\"Stp\" in a list of \"Step\""},
        {SampleWith("<Steps><Step/></Steps>"), "\"Step\" lacks the attribute Class"},
        {SampleWith("<Strangers><Stranger Class='TNew'/></Strangers>"), "line 2: unknown class \"TNew\""},
        {SampleWith("<AllRecords>\n<One>\n<isFolder/></One></AllRecords>"),
         "line 4: isFolder: \"\" is no Boolean"},
    };
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    for (const TBadDocument& row : table) {
        SCOPED_TRACE(row.Document.left(100).toStdString());
        TSample sample;
        const double begin = CpuSeconds();
        EXPECT_THAT(ReadFrom(sample, row.Document).toStdString(), HasSubstr(row.Message));
        EXPECT_LT(CpuSeconds() - begin, 20); // under sanitizers, too
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(BadXml, EveryTruncationOfADocumentIsRefused) {
    TSample sample;
    Randomize(sample, 4);
    const QByteArray document = Written(sample).trimmed();
    for (qsizetype length = 0; length < document.size(); ++length) {
        TSample read;
        ASSERT_THAT(ReadFrom(read, document.left(length)).toStdString(), StartsWith("stream")) << length;
    }
}

TEST_F(BadXml, DamagedBytesNeverDoMoreThanRaise) {
    TSample sample;
    Randomize(sample, 5);
    const QByteArray document = Written(sample);
    int refused = 0;
    for (int i = 0; i < 3000; ++i) {
        QByteArray damaged = document;
        damaged[(i * 7919) % damaged.size()] = char((i * 31) % 256);
        TSample read;
        refused += ReadFrom(read, damaged).isEmpty() ? 0 : 1;
    }
    EXPECT_GT(refused, 1000);
}

TEST_F(BadXml, OtherEncodingsOfUnicodeAreRead) {
    const QString text =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?><Sample><Text>\u00E4</Text>"
                       "<Steps><Step Class=\"TNew\"><a/></Step></Steps></Sample>");
    TSample wide;
    ASSERT_EQ(ReadFrom(wide, Utf16(text)), "");
    EXPECT_EQ(wide.FText, "\u00E4");
    EXPECT_EQ(qobject_cast<TSampleUnknownStep*>(wide.FSteps[0])->Xml, "<Step Class=\"TNew\"><a/></Step>");
    TSample marked;
    ASSERT_EQ(ReadFrom(marked, "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"us-ascii\"?><Sample><Steps>"
                               "<Step Class=\"TNew\"/></Steps></Sample>"),
              "");
    EXPECT_EQ(qobject_cast<TSampleUnknownStep*>(marked.FSteps[0])->Xml, "<Step Class=\"TNew\"/>");
}
