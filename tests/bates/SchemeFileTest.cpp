// The scheme file: its format, what a reader tolerates, what a writer keeps, and what never harms it.
#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "bates/BatesDictionary.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

#include <QLocale>

#include <cerrno>
#include <clocale>
#include <sys/stat.h>

namespace {

class SchemeFile : public testing::Test {
protected:
    [[nodiscard]] string Path() const { return FFolder.Path("schemes.xml"); }
    void Give(const QByteArray& inRoot) {
        FFolder.Write("schemes.xml", "<batesstamps>" + inRoot + "</batesstamps>");
    }
    [[nodiscard]] QByteArray Text() const { return FFolder.Read("schemes.xml"); }

    QStringList Names() {
        QStringList names;
        Store().FindSchemes(names);
        return names;
    }
    TZQPDFBatesSetting Load(const string& name) {
        Store().GetSchemeByName(name);
        return Store().CurrScheme;
    }
    TZQPDFBatesDictionary& Store() {
        if (!FStore) {
            FStore = std::make_unique<TZQPDFBatesDictionary>();
            FStore->Prepare(Path());
        }
        return *FStore;
    }
    /// Another program's view of the file.
    string XPath(const string& path) {
        const auto result = RunProgram("xmllint", {"--xpath", path, Path()});
        EXPECT_EQ(result.Exit, 0) << result.Errors.toStdString();
        return QString::fromUtf8(result.Out).trimmed();
    }

    TWorkspace FFolder;
    std::unique_ptr<TZQPDFBatesDictionary> FStore;
};

constexpr char Whole[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<batesstamps>
  <batestamp id="Court &amp; Co">
    <headerleft>&lt;BN:0:6:1:0&gt; é</headerleft>
    <headercenter></headercenter>
    <headerright></headerright>
    <footerleft></footerleft>
    <footercenter></footercenter>
    <footerright>[page]</footerright>
    <fontname>Arial</fontname>
    <fontsize>10.5</fontsize>
    <fontstyle>-3</fontstyle>
    <fontcolor>4278190080</fontcolor>
    <fontoutline>1</fontoutline>
    <marginleft>0.333333333333333</marginleft>
    <marginright>1e+20</marginright>
    <margintop>36</margintop>
    <marginbottom>36</marginbottom>
    <batesnumbers>&lt;BN:0:6:1:0&gt;=5</batesnumbers>
  </batestamp>
</batesstamps>
)";

} // namespace

TEST_F(SchemeFile, IsWrittenToTheLetterWhateverTheLocale) {
    const QLocale before;
    QLocale::setDefault(QLocale::German); // writes 10,5
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    TZQPDFBatesSetting& scheme = Store().CurrScheme;
    scheme.HeaderLeft = QStringLiteral(" <BN:0:6:1:0> é\n");
    scheme.FooterRight = "[page]";
    scheme.FontSize = 10.5;
    scheme.FontStyle = -3;
    scheme.FontOutline = true;
    scheme.MarginLeft = 1.0 / 3;
    scheme.MarginRight = 1e20;
    scheme.BatesNumbers = "<BN:0:6:1:0>=5";
    EXPECT_FALSE(FFolder.Has("schemes.xml"));
    Store().SaveCurrSchemeToName(" Court & Co ");
    EXPECT_EQ(Text()
                  .replace("<headercenter/>", "<headercenter></headercenter>")
                  .replace("<headerright/>", "<headerright></headerright>")
                  .replace("<footerleft/>", "<footerleft></footerleft>")
                  .replace("<footercenter/>", "<footercenter></footercenter>"),
              QByteArray(Whole));
    TZQPDFBatesSetting expected = scheme;
    expected.HeaderLeft = expected.HeaderLeft.trimmed();
    expected.MarginLeft = 0.333333333333333;
    EXPECT_EQ(Load("Court & Co"), expected);
    QLocale::setDefault(before);
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(XPath("string(//batestamp/@id)"), "Court & Co");
    EXPECT_EQ(XPath("string(//headerleft)"), "<BN:0:6:1:0> é");
}

TEST_F(SchemeFile, AReaderTakesWhatItCanUse) {
    Give("<!-- x --><batestamp/><other id='a'><fontsize>12,5</fontsize><fontcolor>-16777216</fontcolor>"
         "<marginleft> +7.25\n</marginleft><margintop>nan</margintop><marginright><b>3</b></marginright>"
         "<fontstyle>2147483648</fontstyle><fontoutline>true</fontoutline>"
         "<headerleft> a<!-- c --><![CDATA[<b]]> </headerleft><headerright>x<i/></headerright>"
         "<x:footerleft xmlns:x='urn:x'>no</x:footerleft></other>"
         "<batestamp id='a'><fontname>second</fontname></batestamp><batestamp id=' b '/><batestamp id=' '/>"
         "<batestamp id='temp-current'><fontname>scratch</fontname></batestamp>");
    QStringList names = {"kept"};
    Store().FindSchemes(names);
    EXPECT_EQ(names, QStringList({"kept", "a", "a", "b"}));
    TZQPDFBatesSetting expected;
    expected.Name = "a";
    expected.FontName.clear(); // missing
    expected.HeaderLeft = " a<b ";
    expected.MarginLeft = 7.25;
    EXPECT_EQ(Load("a"), expected);
    EXPECT_EQ(Load("b"), TZQPDFBatesSetting());
    EXPECT_EQ(Load(" b ").Name, " b ");
    EXPECT_EQ(Load("").FontName, "scratch");
    EXPECT_EQ(Load("[None]").Name, "temp-current");
}

TEST_F(SchemeFile, LoadingBringsTheNumbersInLine) {
    Give("<s id='a'><headerleft>&lt;BN:0:6:1:0&gt;&lt;bn:2:6:1:0&gt;</headerleft>"
         "<batesnumbers>&lt;BN:0:6:1:0&gt;=50,&lt;BN:2:6:1:0&gt;=50</batesnumbers></s>");
    EXPECT_EQ(Load("a").BatesNumbers, "<BN:0:6:1:0>=50,<BN:2:6:1:0>=50");
    const QStringList numbers = {"<BN:0:6:1:0>=1", "<BN:2:6:1:0>=50"};
    EXPECT_EQ(Store().BatesStrl, numbers);
    EXPECT_EQ(Load("none"), TZQPDFBatesSetting());
    EXPECT_EQ(Store().BatesStrl, numbers);
}

TEST_F(SchemeFile, SavingKeepsWhatItDoesNotKnow) {
    const QByteArray before = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- ours -->\n"
                              "<batesstamps v='2'>\n\t<batestamp id='a' x='1'><!-- size --><new>1</new>\n"
                              "    <fontsize><!-- pt -->9</fontsize>\n  </batestamp>\n  <?pi?>\n"
                              "  <batestamp id='b'/></batesstamps>";
    FFolder.Write("schemes.xml", before);
    Load("a");
    Store().CurrScheme.FontSize = 8;
    Store().SaveCurrSchemeToName(" a ");
    const QByteArray text = Text();
    for (const char* part :
         {"<!-- ours -->", "v=\"2\"", "x=\"1\"><!-- size --><new>1</new>\n    <fontsize>",
          "<!-- pt -->8</fontsize>\n    <headerleft/>\n", "<?pi?>\n  <batestamp id=\"b\"/>"})
        EXPECT_TRUE(text.contains(part)) << part << " in " << text.toStdString();
    EXPECT_EQ(XPath("count(//batestamp[1]/*)"), "17");
    Store().DeleteScheme(" b ");
    EXPECT_EQ(Names(), QStringList("a"));
    Store().SaveCurrSchemeToName("c");
    EXPECT_EQ(Store().CurrScheme.Name, "c");
    EXPECT_TRUE(Text().contains("  <?pi?>\n  <batestamp id=\"c\">\n    <headerleft/>"))
        << Text().toStdString();
    EXPECT_EQ(RunProgram("xmllint", {"--noout", Path()}).Exit, 0);
}

TEST_F(SchemeFile, AStoreWritesWhenItGoesAndTakesItsScratchAlong) {
    Store().SaveCurrSchemeToName("temp-current");
    Store().SaveCurrSchemeToName("  ");
    EXPECT_EQ(Names(), QStringList());
    EXPECT_EQ(XPath("count(//batestamp)"), "2");
    FStore.reset();
    EXPECT_EQ(XPath("count(//batestamp)"), "1");
    Store().DeleteScheme("");
    FStore.reset();
    EXPECT_EQ(Text(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<batesstamps/>\n");

    TZQPDFBatesDictionary unprepared;
    unprepared.CurrScheme.FontName = "x";
    unprepared.SaveCurrSchemeToName("a");
    unprepared.DeleteScheme("a");
    EXPECT_EQ(unprepared.CurrScheme.Name, string()); // nothing happened, not even to the name
    unprepared.GetSchemeByName("a");
    EXPECT_EQ(unprepared.CurrScheme, TZQPDFBatesSetting());
}

TEST_F(SchemeFile, WhatIsNoSchemeFileIsToldAndStaysAsItIs) {
    const struct {
        QByteArray Bytes;
        const char* Told;
    } cases[] = {
        {"", "empty"},
        {"<batesstamps><batestamp id='a'>", "line 1"},
        {"<batesstamps>\n</batestamps>", "line 2"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><batesstamps/>", "encoding"},
        {"<batesstamps>\xE9</batesstamps>", "line 1"},
        {"<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;'>]><a>&c;</a>", "DOCTYPE"},
        {"<batesstamps>&e;</batesstamps>", "line 1"},
        {"PK\x03\x04", "line 1"},
    };
    for (const auto& c : cases) {
        FFolder.Write("schemes.xml", c.Bytes);
        {
            TZQPDFBatesDictionary store;
            const string raised = RaisedBy([&] { store.Prepare(Path()); });
            EXPECT_TRUE(raised.contains(c.Told) && raised.contains(Path())) << raised.toStdString();
            EXPECT_FALSE(store.GetIsPrepared());
        }
        EXPECT_EQ(Text(), c.Bytes);
    }
    TZQPDFBatesDictionary store;
    EXPECT_THROW(store.Prepare(FFolder.Path()), EFileError); // a folder
    Give("<batestamp id='a'/>");
    store.Prepare(Path());
    const string pipe = FFolder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    EXPECT_THROW(store.Prepare(pipe), EFileError);
    EXPECT_FALSE(store.GetIsPrepared());
    QFile::remove(Path());
    store.Prepare(Path());
    QFile::rename(pipe, Path()); // in the place of a file that was still to be made
    EXPECT_THROW(store.SaveCurrSchemeToName("a"), EFileError);
    EXPECT_TRUE(QFileInfo::exists(Path()) && !QFileInfo(Path()).isFile());
    EXPECT_EQ(FFolder.Names(), QStringList()); // no lock was made beside it
}

TEST_F(SchemeFile, AFailedWriteLeavesTheOldFileAndIsNotThrownByTheDestructor) {
    Give("<batestamp id='a'/>");
    const QByteArray before = Text();
    Load("a");
    SetFaultHook([](const char* call) { return qstrcmp(call, "publish over") == 0 ? ENOSPC : 0; });
    EXPECT_THROW(Store().SaveCurrSchemeToName("b"), EFileError);
    EXPECT_EQ(Names(), QStringList({"a", "b"})); // the store keeps the change
    testing::internal::CaptureStderr();
    FStore.reset();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("schemes.xml"), std::string::npos);
    SetFaultHook(nullptr);
    EXPECT_EQ(Text(), before);
    EXPECT_EQ(FFolder.Names(), QStringList({".schemes.xml.lock", "schemes.xml"}));

    Load("a");
    Store().CurrScheme.FooterLeft = QStringLiteral("a\u0001b");
    EXPECT_THROW(Store().SaveCurrSchemeToName("c"), Exception);
    EXPECT_EQ(Names(), QStringList("a"));
}
