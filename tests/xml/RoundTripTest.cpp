// The form of documents, and that reading restores what was written.
#include "Samples.h"
#include "base/Exceptions.h"
#include "testing/Raised.h"
#include "xml/Xmlserial.h"

#include <QBuffer>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

/// What another XML reader says of the document; empty if it accepts it.
string Xmllint(const QByteArray& document) {
    QProcess lint;
    lint.setProcessChannelMode(QProcess::MergedChannels);
    lint.start("xmllint", {"--noout", "-"});
    lint.write(document);
    lint.closeWriteChannel();
    if (!lint.waitForFinished())
        return QStringLiteral("xmllint did not run");
    return lint.exitCode() == 0 ? string() : Widen(lint.readAll());
}

constexpr char Golden[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<Sample>
  <Name></Name>
  <Tag>0</Tag>
  <Held>
    <Print>true</Print>
  </Held>
  <Steps>
    <Step Class="TSampleTextStep">
      <Name>first</Name>
      <Tag>3</Tag>
      <Text>a &lt; b &amp;&amp; c
&#13;	"'_x0001_</Text>
      <FillColor>0xFF000000</FillColor>
    </Step>
    <Step Class="TSampleNumberStep">
      <Name></Name>
      <Tag>0</Tag>
      <x>0.1</x>
      <Dummy>0</Dummy>
    </Step>
  </Steps>
  <Strangers>
    <Stranger Class="TSampleStranger">
      <Name></Name>
      <Tag>0</Tag>
    </Stranger>
  </Strangers>
  <HeldList>
    <TSampleHeld>
      <Print>false</Print>
    </TSampleHeld>
  </HeldList>
  <Text></Text>
  <fileName></fileName>
  <FontName>Arial</FontName>
  <Narrow></Narrow>
  <Enabled>true</Enabled>
  <Byte>7</Byte>
  <Number>0</Number>
  <CheckEvery>-9223372036854775808</CheckEvery>
  <Big>0</Big>
  <Short>12</Short>
  <Long>0</Long>
  <Color>0xFF000000</Color>
  <Alpha>0x00000000</Alpha>
  <Size>szSmall</Size>
  <Record>
    <Filename></Filename>
    <isFolder>false</isFolder>
    <Inner>
      <Depth>0</Depth>
    </Inner>
  </Record>
  <AllRecords/>
  <Plain>
    <TSampleRecord>
      <Filename>a.pdf</Filename>
      <isFolder>true</isFolder>
      <Inner>
        <Depth>2.5</Depth>
      </Inner>
    </TSampleRecord>
  </Plain>
  <Lines>
    <Item> x </Item>
  </Lines>
</Sample>
)";

void FillAsGolden(TSample& sample) {
    sample.FCheckEvery = std::numeric_limits<qint64>::min();
    sample.FPlain = {{"a.pdf", true, {2.5}}};
    sample.FLines = QStringList{" x "};
    auto* text = new TSampleTextStep;
    sample.FSteps.Add(std::unique_ptr<TSampleStep>(text));
    text->FName = QStringLiteral("first");
    text->FTag = 3;
    text->FText = QStringLiteral("a < b && c\n\r\t\"'\x01");
    auto number = std::make_unique<TSampleNumberStep>();
    number->Fx = 0.1F;
    sample.FSteps.Add(std::move(number));
    sample.FStrangers.Add(std::make_unique<TSampleStranger>());
    sample.FHeldList.Add(std::make_unique<TSampleHeld>())->FPrint = false;
}

class RoundTrip : public testing::Test {
protected:
    void SetUp() override { RegisterSamples(); }
};

} // namespace

TEST_F(RoundTrip, DocumentsLookLikeThis) {
    TSample sample;
    FillAsGolden(sample);
    EXPECT_EQ(Written(sample).toStdString(), Golden);
}

TEST_F(RoundTrip, RandomObjectsComeBackEqual) {
    QByteArray previous;
    for (quint32 seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        TSample sample;
        Randomize(sample, seed);
        const QByteArray document = Written(sample);
        ASSERT_NE(document, previous);
        if (seed % 10 == 0) {
            ASSERT_EQ(Xmllint(document), "");
        }
        TSample copy;
        Randomize(copy, seed + 1); // what was there before must not shine through
        ASSERT_EQ(ReadFrom(copy, document), "");
        ASSERT_EQ(copy.Dump(), sample.Dump());
        previous = document;
    }
}

TEST_F(RoundTrip, MembersMayLackStandInAnyOrderAndBeUnknown) {
    TSample sample;
    ASSERT_EQ(
        ReadFrom(sample, SampleWith("<!-- c --><Unknown><Deep a='1'>x</Deep></Unknown>"
                                    "<x:Number xmlns:x='u'>9</x:Number><y:Number>9</y:Number>"
                                    "<SIZE>1</SIZE><Text><![CDATA[a<]]>b</Text><Enabled> False </Enabled>"
                                    "<Count>x</Count><ReadOnly>x</ReadOnly>"
                                    "<Record><isFolder>1</isFolder></Record>")),
        "");
    EXPECT_EQ(sample.FSize, TSampleSizes::TSize::szLarge);
    EXPECT_EQ(sample.FText, "a<b");
    EXPECT_FALSE(sample.FEnabled);
    EXPECT_EQ(sample.FNumber, 0);
    EXPECT_EQ(sample.FFontName, "Arial");
    EXPECT_TRUE(sample.FRecord.isFolder);
}

TEST_F(RoundTrip, RootNamesFollowMarksAndTheCaller) {
    const auto rootOf = [](const QObject& object) {
        const QByteArray document = Written(object);
        const auto begin = document.indexOf('<', 1) + 1;
        return document.mid(begin, document.indexOf('>', begin) - begin);
    };
    EXPECT_EQ(rootOf(TSample()), "Sample");
    EXPECT_EQ(rootOf(TSampleChild()), "TSampleChild");
    EXPECT_EQ(rootOf(TSampleTextStep()), "Step");
    EXPECT_EQ(rootOf(TSampleHeld()), "TSampleHeld");

    QBuffer stream;
    stream.open(QIODevice::ReadWrite);
    XMLSerialize(TSampleHeld(), stream, "Other");
    EXPECT_EQ(stream.data(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Other>\n"
                             "  <Print>true</Print>\n</Other>\n");
    stream.seek(0);
    TSampleHeld held;
    held.FPrint = false;
    XMLDeserialize(held, stream, "Other");
    EXPECT_TRUE(held.FPrint);
}

TEST_F(RoundTrip, StepsOfUnknownClassesAreWrittenBackAsTheyWere) {
    const QByteArray unknown = "<Step  Class='TNewStep' extra=\"1\" >\r\n\t<!-- why --><Text>a&#xD;"
                               "<![CDATA[<b>]]>&quot;\xC3\xA4</Text><p:q/>\n  <List><Step/></List></Step >";
    const QByteArray document = "<?xml version=\"1.0\"?>\n<Sample><Steps>" + unknown +
                                "<Step Class=\"TSampleTextStep\"><Text>known</Text></Step>"
                                "<Step Class=\"TSampleStranger\"/></Steps></Sample>";
    TSample sample;
    ASSERT_EQ(ReadFrom(sample, document), "");
    ASSERT_EQ(sample.FSteps.Count(), 3);
    const auto* kept = qobject_cast<TSampleUnknownStep*>(sample.FSteps[0]);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->ClassName, "TNewStep");
    EXPECT_STREQ(sample.FSteps[1]->metaObject()->className(), "TSampleTextStep");
    // A known class that is no step doesn't belong into the list either.
    EXPECT_STREQ(sample.FSteps[2]->metaObject()->className(), "TSampleUnknownStep");

    const QByteArray written = Written(sample);
    EXPECT_TRUE(written.contains("\n    " + unknown + "\n    <Step Class=\"TSampleTextStep\">"))
        << written.toStdString();
    TSample again;
    ASSERT_EQ(ReadFrom(again, written), "");
    EXPECT_EQ(Written(again), written);
}

TEST_F(RoundTrip, WhatCouldNotBeReadBackIsNotWritten) {
    class TUnregistered : public TSampleStep {};
    const auto refusal = [](std::unique_ptr<TSampleStep> step) {
        TSample sample;
        sample.FSteps.Add(std::move(step));
        return RaisedBy([&] { (void)Written(sample); }).toStdString();
    };
    EXPECT_EQ(refusal(std::make_unique<TUnregistered>()),
              "Objects of class TSampleStep could not be read back: it is not registered");
    auto broken = std::make_unique<TSampleUnknownStep>();
    broken->Xml = QStringLiteral("<Step><a></Step>");
    EXPECT_THAT(refusal(std::move(broken)), testing::HasSubstr("A kept element, line 1, column"));
}
