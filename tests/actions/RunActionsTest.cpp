// Actions carried out on real documents, their results judged by other programs.
#include "actions/ActionDocument.h"
#include "actions/ContentActions.h"
#include "actions/NavigationActions.h"
#include "actions/PageActions.h"
#include "actions/SecurityActions.h"
#include "base/Exceptions.h"
#include "engine/document/Document.h"
#include "scripting/ParkedDocuments.h"
#include "testing/Raised.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

class RunActions : public testing::Test {
protected:
    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(FWorkspace.Path("in.pdf"), pages, options);
        FDocument.OpenFromFile(FWorkspace.Path("in.pdf"), Narrow(options.OwnerPassword));
    }
    /// Saves and gives the number each page shows of itself, as another program reads them.
    string Pages() {
        FDocument.SaveToPath(FWorkspace.Path("out.pdf"), /*keepSource=*/true, /*takeName=*/false);
        return PagesOf("out.pdf");
    }
    [[nodiscard]] string PagesOf(const string& name) const {
        EXPECT_EQ(RunProgram("qpdf", {"--check", FWorkspace.Path(name)}).Exit, 0);
        QStringList numbers;
        const QByteArray text = RunProgram("pdftotext", {FWorkspace.Path(name), "-"}).Out;
        for (const QByteArray& page : text.split('\f').mid(0, text.count('\f')))
            numbers.append(QString::fromUtf8(page).remove("Page").trimmed());
        return numbers.join(u' ');
    }
    [[nodiscard]] QByteArray Info(const QStringList& options = {}) const {
        return RunProgram("pdfinfo", options + QStringList(FWorkspace.Path("out.pdf"))).Out;
    }
    TWorkspace FWorkspace;
    TZQPDFDocument FDocument{nullptr};
};

TEST_F(RunActions, BatesNumberingStampsMacrosAndLeavesNumbers) {
    Open(3);
    TPDFActionAddBatesNumbering action;
    EXPECT_EQ(action.Fbates.FontName, "Arial");
    action.Fbates.FooterCenter = "<BN:0:6:1:0>[page]of[NUMPAGES]";
    action.FpageRange = "2-";
    action.Execute(FDocument);
    EXPECT_EQ(Pages(), "1 2\n\n<BN:0:6:1:0>2of3 3\n\n<BN:0:6:1:0>3of3");
}

TEST_F(RunActions, GotoActionsStayWithinTheDocument) {
    Open(2);
    const auto at = [&] { return FDocument.PageTree().CurrentPage(); };
    TPDFActionGotoLastPage().Execute(FDocument);
    EXPECT_EQ(at(), 2);
    TPDFActionGotoNextPage().Execute(FDocument);
    EXPECT_EQ(at(), 2);
    TPDFActionGotoPreviousPage().Execute(FDocument);
    EXPECT_EQ(at(), 1);
    TPDFActionGotoPreviousPage().Execute(FDocument);
    EXPECT_EQ(at(), 1);
    TPDFActionGotoPage beyond;
    beyond.PageNumber = 3;
    beyond.Execute(FDocument);
    EXPECT_EQ(at(), 1);
    TPDFActionGotoLastPage().Execute(FDocument);
    TPDFActionGotoFirstPage().Execute(FDocument);
    EXPECT_EQ(at(), 1);
}

TEST_F(RunActions, ExtractedDocumentsAreSavedAndParked) {
    Open(4);
    TPDFActionExtractPages extract;
    extract.FPageRange = "4,2";
    extract.FfileName = FWorkspace.Path("part.pdf");
    const int parked = ParkedCount();
    extract.Execute(FDocument);
    extract.Execute(FDocument);
    EXPECT_EQ(PagesOf("part.pdf"), "4 2");
    EXPECT_EQ(PagesOf("part (1).pdf"), "4 2");
    extract.FfileName.clear();
    extract.Execute(FDocument);
    EXPECT_EQ(ParkedCount(), parked + 3);
    EXPECT_EQ(Pages(), "1 2 3 4") << "the document itself is untouched";
}

TEST_F(RunActions, DescriptionKeepsWhatIsMarkedAsIs) {
    Open(1);
    TPDFActionAddDocumentDescription action;
    action.Description = {"Титул 題", "S", "A", "K", false, false, false, true};
    action.Execute(FDocument);
    action.Description = {"no", "", "no", "no", true, false, true, true};
    action.Execute(FDocument);
    Pages();
    const QByteArray info = Info();
    EXPECT_TRUE(info.contains("Title:           Титул 題")) << info.constData();
    EXPECT_TRUE(info.contains("Author:          A")) << info.constData();
    EXPECT_FALSE(info.contains("Subject:         S")) << "an empty text without the flag empties the entry";
}

TEST_F(RunActions, AttachingTwiceLeavesOneEntry) {
    Open(1);
    TPDFActionAddFileAttachment action;
    action.fileName = FWorkspace.Write("note.txt", "first");
    action.Execute(FDocument);
    FWorkspace.Write("note.txt", "second");
    action.Execute(FDocument);
    Pages();
    EXPECT_EQ(RunProgram("qpdf", {"--list-attachments", FWorkspace.Path("out.pdf")}).Out.count("note.txt"),
              1);
    EXPECT_EQ(RunProgram("qpdf", {"--show-attachment=note.txt", FWorkspace.Path("out.pdf")}).Out, "second");
}

TEST_F(RunActions, EncryptHoldsItsPermissionsAndNamesWhatItLacks) {
    Open(1);
    TPDFActionEncrypt action;
    TPDFDocPermissions* held = action.Perms();
    TPDFDocPermissions given;
    given.FCopy = false;
    const QMetaProperty perms = Reflection::FindMember(*action.metaObject(), u"perms");
    perms.write(&action, QVariant::fromValue(&given));
    EXPECT_EQ(perms.read(&action).value<TPDFDocPermissions*>(), held);
    EXPECT_FALSE(held->FCopy);
    EXPECT_EQ(RaisedBy([&] { action.Execute(FDocument); }),
              "TPDFAction.Execute invalid propert/parameter name Algo");
    EXPECT_FALSE(FDocument.getIsEncrypted());
}

TEST_F(RunActions, DecryptWantsTheOwner) {
    Open(1, {.UserPassword = "", .OwnerPassword = "owner"});
    TPDFActionDecrypt().Execute(FDocument);
    Pages();
    EXPECT_EQ(RunProgram("qpdf", {"--is-encrypted", FWorkspace.Path("out.pdf")}).Exit, 2);
    FDocument.OpenFromFile(FWorkspace.Path("in.pdf"), {});
    TPDFActionDecrypt().Execute(FDocument);
    Pages();
    EXPECT_EQ(RunProgram("qpdf", {"--is-encrypted", FWorkspace.Path("out.pdf")}).Exit, 0);
}
