// Stamped pages as another program reads them.
#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "bates/BatesDictionary.h"
#include "engine/PdfJudges.h"
#include "engine/document/GlobalDocument.h"
#include "engine/layers/LayerText.h"
#include "engine/layers/XObjectGroup.h"
#include "platform/FileLock.h"
#include "platform/StopSignal.h"

#include <QRectF>
#include <QRegularExpression>
#include <QSet>

#include <sys/wait.h>
#include <unistd.h>

namespace {

class Stamp : public testing::Test {
protected:
    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(FFolder.Path("in.pdf"), pages, options);
        FDocument.OpenFromFile(FFolder.Path("in.pdf"), {});
    }
    string Save() {
        const string path = FFolder.Path("out.pdf");
        FDocument.SaveToPath(path, /*keepSource=*/true, /*takeName=*/false);
        EXPECT_EQ(QpdfCheck(path), 0);
        return path;
    }
    /// As content that is placed on the page does: from here on its size is on record.
    void BuildLayers() {
        TZQPDFPage& page = FDocument.Pages().getItem(0);
        page.SetWidth(page.GetWidth());
        page.SetHeight(page.GetHeight());
        page.SetRendered(true);
    }
    /// What stands on each page beside its own "Page n", after stamping the range.
    QStringList Stamped(const string& range) {
        FStore.ApplySchemeToDocument(FDocument, range);
        QStringList texts = PageTexts(Save());
        for (string& text : texts)
            text = text.remove(QRegularExpression("Page \\d+")).simplified();
        return texts;
    }
    TWorkspace FFolder;
    TZQPDFDocument FDocument{nullptr};
    TZQPDFBatesDictionary FStore;
};

} // namespace

TEST_F(Stamp, StandsInTheMarginsOfThePageAsDisplayed) {
    TZQPDFBatesSetting& scheme = FStore.CurrScheme;
    scheme.HeaderLeft = "HeadLeft";
    scheme.HeaderCenter = "HeadMiddle";
    scheme.HeaderRight = "HeadRight";
    scheme.FooterLeft = "FootLeft";
    scheme.FooterCenter = QStringLiteral("Fußmitte");
    scheme.FooterRight = "FootRight";
    scheme.FontStyle = 3;
    scheme.MarginLeft = 50;
    scheme.MarginRight = 20;
    scheme.MarginTop = 40;
    scheme.MarginBottom = 30;
    const struct {
        QByteArray Entries;
        Double Width; // as displayed
        Double Height;
        int Turned = 0; // after the page's layers were built
        TPDFMargins Cut = {};
    } pages[] = {
        {"", 595, 842},
        {"/Rotate 90", 842, 595},
        {"/Rotate 180", 595, 842},
        {"/Rotate 270", 842, 595},
        {"/CropBox[100 120 500 720]", 400, 600},
        {"/CropBox[100 120 500 720]/Rotate 90", 600, 400},
        {"/CropBox[500 720 100 120]/Rotate -90", 600, 400},
        {"", 842, 595, 90},
        {"/Rotate 270", 595, 842, 90},
        {"", 400, 642, 0, TPDFMargins::Create(150, 95, 100, 50)},
        {"/CropBox[100 120 500 720]/Rotate 90", 400, 500, 90, TPDFMargins::Create(50, 0, 0, 50)},
    };
    for (const auto& page : pages) {
        SCOPED_TRACE(page.Entries.toStdString());
        Open(1, {.PageEntries = page.Entries});
        BuildLayers();
        FDocument.RotatePages({}, page.Turned);
        TPDFMargins cut = page.Cut;
        FDocument.CropPages({}, cut);
        FStore.ApplySchemeToDocument(FDocument, {});
        auto words = WordBoxes(Save()).value(0);
        ASSERT_EQ(words.size(), 6 + 2); // and the page's own
        const Double middle = (50 + page.Width - 20) / 2;
        for (const string& row : {string("Head"), string("Foot")}) {
            EXPECT_NEAR(words[row + "Left"].left(), 50, 0.5);
            EXPECT_NEAR(words[row + "Right"].right(), page.Width - 20, 0.5);
        }
        EXPECT_NEAR(words["HeadMiddle"].center().x(), middle, 0.5);
        EXPECT_NEAR(words[QStringLiteral("Fußmitte")].center().x(), middle, 0.5);
        for (auto word = words.begin(); word != words.end(); ++word) {
            if (word.key().startsWith("Head")) { // on the margin's line, the letters' feet a little above it
                EXPECT_NEAR(word->bottom(), 40, 1.5);
                EXPECT_GT(word->width(), word->height()); // upright
            }
            if (word.key().startsWith("Foot")) {
                EXPECT_NEAR(word->top(), page.Height - 30, 1.5);
            }
        }
    }
}

TEST_F(Stamp, NumbersCountStampedPagesAndAreKept) {
    struct TCase {
        string Header;
        string Numbers;
        string Range;
        QStringList Shown;
        string After;
    };
    const TCase cases[] = {
        {"<BN:0:6:10:0>", "", "2 4", {"", "000010", "", "000011"}, "<BN:0:6:10:0>=12"},
        {"<bn:0:6:10:1>", "", "2 4", {"", "000010", "", "000012"}, "<BN:0:6:10:1>=14"},
        {"x<BN:0:6:1:0>", "<BN:0:6:1:0>=5", "1-3", {"x000005", "x000006", "x000007", ""}, "<BN:0:6:1:0>=8"},
        {"[page]/[numpages] [filename] [page+9:3]",
         "",
         "3,2",
         {"", "2/4 in.pdf 011", "3/4 in.pdf 012", ""},
         ""},
        {"<BN:1:1:27:0> <BN:4:1:4:0>", "", "1", {"aa aaIV", "", "", ""}, "<BN:1:1:27:0>=28,<BN:4:1:4:0>=5"},
        {"never", "", "7", {"", "", "", ""}, ""},
    };
    FStore.Prepare(FFolder.Path("schemes.xml"));
    for (const TCase& c : cases) {
        Open(4);
        FStore.CurrScheme.Name = "s";
        FStore.CurrScheme.HeaderLeft = c.Header;
        FStore.BatesStrl = QStringList();
        FStore.FillBatesStrl();
        if (!c.Numbers.isEmpty())
            FStore.BatesStrl = QStringList(c.Numbers);
        EXPECT_EQ(Stamped(c.Range), c.Shown);
        TZQPDFBatesDictionary other;
        other.Prepare(FFolder.Path("schemes.xml"));
        other.GetSchemeByName("s");
        EXPECT_EQ(other.CurrScheme.BatesNumbers, c.After);
    }
}

TEST_F(Stamp, EveryPageGetsItsGroupOfSixTexts) {
    Open(3);
    FStore.CurrScheme.FooterRight = "f";
    FStore.CurrScheme.FontOutline = true;
    FStore.CurrScheme.FontColor = 0xFFFF0000;
    FDocument.Pages().getItem(1).SetRendered(true);
    FStore.ApplySchemeToDocument(FDocument, {});
    ASSERT_EQ(FDocument.XObjects().Count(), 3);
    ASSERT_EQ(FDocument.XObjects().GetItem(2).Count(), 6);
    const auto& text = dynamic_cast<const TZQLayerText&>(FDocument.XObjects().GetItem(2).GetItem(5));
    EXPECT_EQ(text.Text(), "f");
    EXPECT_EQ(text.FillColor(), 0U);
    EXPECT_EQ(text.StrokeColor(), 0xFFFF0000);
    EXPECT_EQ(text.StrokePenWidth(), 1);
    EXPECT_EQ(FDocument.Pages().getItem(0).Layers().Count(), 0);
    EXPECT_EQ(FDocument.Pages().getItem(1).Layers().Count(), 1);
    EXPECT_EQ(GlobalDocument, nullptr);
    EXPECT_EQ(PageTexts(Save()), QStringList({"Page 1\n\nf", "Page 2\n\nf", "Page 3\n\nf"})); // drawn once
}

TEST_F(Stamp, AFailureLeavesTheFileAndIsMetBeforeTheFirstPage) {
    static std::pair<const char*, int> fault;
    const struct {
        const char* Call; // that fails
        int Error;
        string Line;
        int Stamped;
    } cases[] = {
        {"none", 0, "<BN:0:1:1:0>=2147483645", 0}, // the third page has no next number
        {"create part", EROFS, "<BN:0:1:1:0>=1", 0}, {"write", ENOSPC, "<BN:0:1:1:0>=1", 0},
        {"fsync", EIO, "<BN:0:1:1:0>=1", 0},         {"flock", ENOLCK, "<BN:0:1:1:0>=1", 0},
        {"publish over", EIO, "<BN:0:1:1:0>=1", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Call);
        Open(3);
        QFile::remove(FFolder.Path("schemes.xml"));
        TZQPDFBatesDictionary store;
        store.Prepare(FFolder.Path("schemes.xml"));
        store.CurrScheme.BatesNumbers = "kept";
        store.BatesStrl = QStringList(c.Line);
        fault = {c.Call, c.Error};
        SetFaultHook([](const char* call) { return qstrcmp(call, fault.first) == 0 ? fault.second : 0; });
        EXPECT_THROW(store.ApplySchemeToDocument(FDocument, {}), Exception);
        SetFaultHook(nullptr);
        EXPECT_EQ(FDocument.XObjects().Count(), c.Stamped);
        EXPECT_EQ(store.BatesStrl, QStringList(c.Line));
        EXPECT_EQ(store.CurrScheme.BatesNumbers, "kept");
        EXPECT_FALSE(FFolder.Has("schemes.xml"));
        EXPECT_EQ(GlobalDocument, &FDocument);
        EXPECT_THROW(store.ApplySchemeToDocument(FDocument, "no range"), Exception);
    }
}

/// Two stores on one file, as two scripts have them, each with a number in the first place and one behind it.
class SharedNumbers : public Stamp {
protected:
    SharedNumbers() {
        for (TZQPDFBatesDictionary* store : {&A, &B})
            store->Prepare(FFolder.Path("schemes.xml"));
    }
    /// What each script begins with.
    static void Take(TZQPDFBatesDictionary& store) {
        store.GetSchemeByName("Case");
        if (!store.GetIsValid()) {
            store.CurrScheme.Name = "Case";
            store.CurrScheme.HeaderLeft = "<BN:0:1:1:0>/<BN:0:1:7:0>";
        }
        store.ContinueNumbers();
    }
    string Stamp(TZQPDFBatesDictionary& store) {
        Open(2);
        store.ApplySchemeToDocument(FDocument, {});
        return PageTexts(Save()).join(u' ').remove(QRegularExpression("Page \\d+")).simplified();
    }
    /// The stored numbers, as a third one finds them.
    [[nodiscard]] string Stored() const {
        TZQPDFBatesDictionary store;
        store.Prepare(FFolder.Path("schemes.xml"));
        store.GetSchemeByName("Case");
        return store.CurrScheme.BatesNumbers;
    }
    TZQPDFBatesDictionary A;
    TZQPDFBatesDictionary B;
};

TEST_F(SharedNumbers, AreTakenAsTheFileHasThemThen) {
    Take(A);
    Take(B); // neither finds the scheme
    EXPECT_EQ(Stamp(A), "1/7 2/8");
    EXPECT_EQ(Stamp(B), "3/9 4/10");
    EXPECT_EQ(Stamp(A), "5/11 6/12");
    EXPECT_EQ(Stamp(A), "7/13 8/14");
    B.BatesStrl[0] = "<BN:0:1:1:0>=50"; // what is set stays
    EXPECT_EQ(Stamp(B), "50/15 51/16");
    A.GetSchemeByName("Case"); // the first begins anew with a load
    EXPECT_EQ(Stamp(A), "1/17 2/18");
    EXPECT_EQ(Stored(), "<BN:0:1:1:0>=3,<BN:0:1:7:0>=19");
}

TEST_F(SharedNumbers, AreNotPutBackByAStoreThatDoesSomethingElse) {
    Take(A);
    Stamp(A);
    auto late = std::make_unique<TZQPDFBatesDictionary>();
    late->Prepare(FFolder.Path("schemes.xml"));
    Take(*late);
    Stamp(A);
    const string after = "<BN:0:1:1:0>=5,<BN:0:1:7:0>=11";
    late->DeleteScheme("Other");
    EXPECT_EQ(Stored(), after);
    late->CurrScheme.FontSize = 8;
    late->SaveCurrSchemeToName("Case");
    EXPECT_EQ(Stored(), after);
    EXPECT_EQ(Stamp(*late), "5/11 6/12");
    Stamp(A);
    late.reset();
    EXPECT_EQ(Stored(), "<BN:0:1:1:0>=9,<BN:0:1:7:0>=15");
    A.CurrScheme.BatesNumbers = "<BN:0:1:1:0>=2"; // set, not read
    A.SaveCurrSchemeToName("Case");
    EXPECT_EQ(Stored(), "<BN:0:1:1:0>=2");
}

TEST_F(SharedNumbers, WaitForTheFilesLockUntilAStop) {
    Take(A);
    Open(1);
    {
        const auto held = TFileLock::Try(FFolder.Path(".schemes.xml.lock"), TLockUsers::All);
        StopSignal().Raise();
        EXPECT_THROW(A.ApplySchemeToDocument(FDocument, {}), Exception);
        StopSignal().Lower();
        EXPECT_EQ(FDocument.XObjects().Count(), 0);
        EXPECT_FALSE(FFolder.Has("schemes.xml"));
    }
    EXPECT_EQ(Stamp(A), "1/7 2/8");
}

TEST_F(SharedNumbers, OfTwoProcessesAreAllDifferent) {
    constexpr int Documents = 10;
    std::vector<pid_t> children;
    for (const char* name : {"first", "second"}) {
        const pid_t child = ::fork();
        if (child == 0) {
            QFile given(FFolder.Path(name));
            bool done = given.open(QIODevice::WriteOnly);
            for (int i = 0; i < Documents && done; ++i) {
                TZQPDFBatesDictionary store;
                store.Prepare(FFolder.Path("schemes.xml"));
                Take(store);
                TZQPDFDocument document(nullptr);
                done = document.GetPageCount() == 1;
                store.ApplySchemeToDocument(document, {});
                given.write(Narrow(store.BatesStrl.value(0) + u'\n'));
            }
            given.close();
            ::_exit(done ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    const QByteArrayList given = (FFolder.Read("first") + FFolder.Read("second")).trimmed().split('\n');
    EXPECT_EQ(given.size(), 2 * Documents);
    EXPECT_EQ(QSet<QByteArray>(given.begin(), given.end()).size(), 2 * Documents);
    EXPECT_EQ(Stored(), "<BN:0:1:1:0>=21,<BN:0:1:7:0>=27");
}
