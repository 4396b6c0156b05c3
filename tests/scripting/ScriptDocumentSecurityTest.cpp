// The script document's loading and protection, judged by other readers.
#include "base/Exceptions.h"
#include "engine/core/Permissions.h"
#include "engine/document/Document.h"
#include "scripting/AskForPassword.h"
#include "scripting/ScriptDocument.h"
#include "testing/Raised.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

namespace {

/// Types the prepared answers, then cancels.
class TPlayedPrompt : public TPasswordPrompt {
public:
    TPlayedPrompt() { SetPasswordPrompt(this); }
    ~TPlayedPrompt() override { SetPasswordPrompt(nullptr); }
    std::optional<string> Ask(const string& message) override {
        Messages.append(message);
        return Answers.isEmpty() ? std::nullopt : std::optional(Answers.takeFirst());
    }
    QStringList Answers;
    QStringList Messages;
};

struct TScriptSecurity : testing::Test {
    const TWorkspace Files;
    const string In = Files.Path("in.pdf");
    const string Out = Files.Path("out.pdf");
    TPlayedPrompt Prompt;
    TJSPDFDocument Document;
};

TEST_F(TScriptSecurity, LoadAsksUntilTheOwnerPasswordFits) {
    struct {
        const char* Given;
        QStringList Typed;
        bool Loads;
        int Prompts;
    } const cases[] = {
        {"own", {}, true, 0},
        {"open", {"no", "", "own"}, true, 3},
        {"open", {}, false, 1},
        {"", {"open", "own"}, true, 2},
    };
    MakePdf(In, 3, {.UserPassword = "open", .OwnerPassword = "own"});
    for (const auto& c : cases) {
        TJSPDFDocument document;
        Prompt.Answers = c.Typed;
        Prompt.Messages.clear();
        EXPECT_EQ(document.Load(In, QString::fromLatin1(c.Given)), c.Loads);
        EXPECT_EQ(document.Document().GetPageCount(), c.Loads ? 3 : 1);
        EXPECT_EQ(Prompt.Messages.size(), c.Prompts);
        EXPECT_EQ(document.GetLastError(), 0);
    }
    EXPECT_EQ(Prompt.Messages.first(), "'in.pdf' is protected. To change it, enter its owner password.");
}

TEST_F(TScriptSecurity, AFileWithoutProtectionNeedsNoAnswer) {
    MakePdf(In, 2);
    EXPECT_FALSE(Document.Load(Files.Path("missing.pdf"), {}));
    EXPECT_EQ(Document.GetLastError(), 2);
    Document.Save();
    EXPECT_EQ(Files.Names(), QStringList{"in.pdf"});
    EXPECT_TRUE(Document.Load(In, "any"));
    EXPECT_EQ(Document.GetLastError(), 2) << "nothing resets it";
    EXPECT_TRUE(Prompt.Messages.isEmpty());
    Document.RotatePages({}, 90);
    Document.Save();
    EXPECT_TRUE(RunProgram("pdfinfo", {In}).Out.contains("Page rot:        90"));
    Files.Write("in.pdf", "nothing");
    EXPECT_THROW(Document.Load(In, {}), Exception);
    EXPECT_EQ(Document.Document().GetPageCount(), 2);
}

TEST_F(TScriptSecurity, AnOpenPasswordIsAskedForInItsOwnWords) {
    MakePdf(In, 1, {.UserPassword = "open", .OwnerPassword = "own"});
    Prompt.Answers = {"open"};
    string password;
    EXPECT_TRUE(AskForPassword(In, TIsPasswordOkOption::poOpen, password));
    EXPECT_EQ(password, "open");
    EXPECT_EQ(Prompt.Messages, QStringList{"'in.pdf' is protected. To open it, enter its password."});
    SetPasswordPrompt(nullptr); // nobody to ask: cancelled at once
    password = QStringLiteral("first");
    EXPECT_FALSE(AskForPassword(In, TIsPasswordOkOption::poOpen, password));
    EXPECT_EQ(password, "first");
}

TEST_F(TScriptSecurity, EveryAlgorithmAndPermissionHolds) {
    struct {
        int Algo;
        const char* Cipher; // as qpdf tells
        const char* Owner;
        const char* Open;
        bool TPDFDocPermissions::*Denied;
        const char* Told; // what pdfinfo tells
    } const cases[] = {
        {0, "R = 2", "own", "open", &TPDFDocPermissions::FPrint, "print:no copy:yes change:yes addNotes:yes"},
        {1, "R = 3", "own", "open", &TPDFDocPermissions::FCopy, "print:yes copy:no change:yes addNotes:yes"},
        {2, "AESv2", "own", "open", &TPDFDocPermissions::FModify,
         "print:yes copy:yes change:no addNotes:yes"},
        {3, "AESv3", "own", "open", &TPDFDocPermissions::FAnnotate,
         "print:yes copy:yes change:yes addNotes:no"},
        {3, "R = 6", "所有者", "開く ñ", nullptr, "print:yes copy:yes change:yes addNotes:yes"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Cipher);
        MakePdf(In, 2);
        TJSPDFDocument document;
        ASSERT_TRUE(document.Load(In, {}));
        TPDFDocPermissions allowed;
        if (c.Denied)
            allowed.*c.Denied = false;
        EXPECT_TRUE(
            document.Encrypt(QString::fromUtf8(c.Owner), QString::fromUtf8(c.Open), c.Algo, &allowed));
        EXPECT_FALSE(document.Encrypt("x", "y", c.Algo, &allowed)) << "encrypted already";
        document.SaveAs(Out);
        EXPECT_FALSE(document.Encrypt("x", "y", c.Algo, &allowed)) << "in the file, too";

        const QString open = QString::fromUtf8(c.Open);
        const QString owner = QString::fromUtf8(c.Owner);
        const QByteArray shown = RunProgram("qpdf", {"--password=" + open, "--show-encryption", Out}).Out;
        EXPECT_TRUE(shown.contains(c.Cipher)) << shown.toStdString();
        EXPECT_TRUE(RunProgram("pdfinfo", {"-upw", open, Out}).Out.contains(c.Told))
            << RunProgram("pdfinfo", {"-upw", open, Out}).Out.toStdString();
        EXPECT_EQ(RunProgram("pdfinfo", {"-opw", owner, Out}).Exit, 0);
        EXPECT_NE(RunProgram("pdfinfo", {"-upw", "wrong", "-opw", "wrong", Out}).Exit, 0);
        for (const QString& password : {open, owner})
            EXPECT_EQ(RunProgram("mutool", {"info", "-p", password, Out}).Exit, 0) << password.toStdString();
        EXPECT_NE(RunProgram("mutool", {"info", "-p", "wrong", Out}).Exit, 0);
        EXPECT_TRUE(document.IsOpenPasswordOK(Out, open) && document.IsPermissionPasswordOK(Out, owner));
        EXPECT_FALSE(document.IsPermissionPasswordOK(Out, open) || document.IsPasswordOK(Out, "wrong"));
    }
}

TEST_F(TScriptSecurity, APathGoesWithTheDocumentThatItBelongsTo) {
    MakePdf(In, 1);
    TZQPDFDocument first(nullptr);
    TZQPDFDocument second(nullptr);
    first.OpenFromFile(In, {});
    second.OpenFromFile(In, {});
    Document.SetDocument(&first);
    Document.SaveAs(Out);
    Document.SetDocument(&first); // by the next action on the same file
    Document.RotatePages({}, 90);
    Document.Save();
    Document.SetDocument(&second);
    EXPECT_TRUE(Document.Save());
    EXPECT_TRUE(RunProgram("pdfinfo", {Out}).Out.contains("Page rot:        90")) << "still the first one's";
}

TEST_F(TScriptSecurity, ExtractingNothingSaysSo) {
    EXPECT_EQ(RaisedBy([&] { delete Document.ExtractPages("3-4", Out, /*OverwriteExisting*/ true); }),
              "There is no page to extract: the range \"3-4\" selects none of 1.");
    EXPECT_EQ(Files.Names(), QStringList());
}

TEST_F(TScriptSecurity, SignedAndUnknownAreRefused) {
    Files.Write(
        "in.pdf",
        PdfOf({"<< /Type /Catalog /Pages 2 0 R /AcroForm << /SigFlags 3 /Fields [4 0 R] >> >>",
               "<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
               "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>",
               "<< /FT /Sig /T (s) /V << /Type /Sig /Filter /X /Contents <00> /ByteRange [0 1 2 3] >> >>"}));
    TPDFDocPermissions allowed;
    ASSERT_TRUE(Document.Load(In, {}));
    EXPECT_FALSE(Document.Encrypt("own", "open", 3, &allowed));
    EXPECT_EQ(Document.Document().SecurityHandler(), nullptr);
    EXPECT_EQ(Document.GetSignaturesCount(), 1);
    MakePdf(In, 1);
    ASSERT_TRUE(Document.Load(In, {}));
    EXPECT_TRUE(Document.Encrypt("own", "open", 4, &allowed));
    EXPECT_THROW(Document.SaveAs(Out), Exception) << "never without the protection that was asked for";
    EXPECT_FALSE(Files.Has("out.pdf"));
}

} // namespace
