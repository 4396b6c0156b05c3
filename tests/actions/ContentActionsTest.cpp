// Actions and document methods that put something on pages.
#include "actions/ContentActions.h"
#include "actions/AnnotationActions.h"
#include "actions/WatermarkActions.h"
#include "base/Exceptions.h"
#include "engine/document/Document.h"
#include "engine/pages/Pages.h"
#include "platform/FileDialog.h"
#include "scripting/ScriptDocument.h"
#include "testing/Raised.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

class ContentActions : public testing::Test {
protected:
    void Open(const TSampleOptions& options = {}) {
        MakePdf(FWorkspace.Path("in.pdf"), 2, options);
        FDocument.OpenFromFile(FWorkspace.Path("in.pdf"), Narrow(options.UserPassword));
        FScript.SetDocument(&FDocument);
    }
    /// The file as saved, uncompressed.
    QByteArray Saved() {
        FDocument.SaveToPath(FWorkspace.Path("out.pdf"), /*keepSource=*/true, /*takeName=*/false);
        return RunProgram("qpdf", {"--qdf", "--object-streams=disable", FWorkspace.Path("out.pdf"), "-"}).Out;
    }
    TWorkspace FWorkspace;
    TZQPDFDocument FDocument{nullptr};
    TJSPDFDocument FScript;
};

TEST_F(ContentActions, WhatFailsLeavesNothing) {
    Open();
    TPDFActionAddFileAttachAnnotation file;
    file.FFilename = FWorkspace.Path("none.csv");
    EXPECT_THROW(file.Execute(FDocument), EFileError);
    TPDFActionAddLinkAnnotation link;
    link.FpageNum = 3;
    EXPECT_THROW(link.Execute(FDocument), EPDFError);
    EXPECT_FALSE(Saved().contains("/Annot"));
}

TEST_F(ContentActions, SomeLeaveTheDocumentAsItIs) {
    Open();
    qputenv("XDG_CONFIG_HOME", FWorkspace.Path("settings").toUtf8());
    FWorkspace.Write("settings/morvane/settings.ini",
                     "WatermarksFolder=" + FWorkspace.Path("marks").toUtf8() +
                         "\nRepositoryFilename=" + FWorkspace.Path("stamps.xml").toUtf8());
    FWorkspace.Write("marks/known.xml", "<Watermark><Text>Draft</Text></Watermark>");
    FWorkspace.Write("stamps.xml", "<ObjectsRepository><Categories><Category><Name>Office</Name>"
                                   "<Stamps><Stamp>Paid</Stamp></Stamps></Category></Categories>"
                                   "</ObjectsRepository>");
    TPDFActionAddWebLinkAnnotation web;
    web.Fwidth = web.Fheight = 20;
    web.Furi = "https://example.org";
    EXPECT_EQ(web.Execute(FDocument), 0U);
    TPDFActionAddWatermarkDefined defined;
    defined.FName = "known";
    defined.FfileName = "known";
    EXPECT_EQ(defined.Execute(FDocument), 0U);
    EXPECT_FALSE(FScript.AddWatermarkDefined("known"));
    EXPECT_EQ(FScript.AddStampAnnotationDefined("Office.Paid"), nullptr);
    TPDFWatermarkSettings settings;
    settings.FText = "Draft";
    TPDFActionAddWatermark watermark;
    const TPDFWatermarkSettings* held = watermark.Watermark();
    watermark.SetWatermark(&settings);
    EXPECT_EQ(watermark.Watermark(), held);
    EXPECT_EQ(held->FText, "Draft");
    EXPECT_EQ(RaisedBy([&] { watermark.Execute(FDocument); }),
              "TPDFAction.Execute invalid propert/parameter name w");
    EXPECT_FALSE(FDocument.GetModified());
    EXPECT_FALSE(Saved().contains("/Annots"));
}

TEST_F(ContentActions, AWebLinkIsSavedWithoutBeingRecorded) {
    Open();
    EXPECT_NE(FScript.AddWebAnnotation(10, 10, 20, 20, "https://example.org"), nullptr);
    EXPECT_FALSE(FDocument.GetModified());
    EXPECT_EQ(FDocument.Pages().getItem(0).ChangedParts, 0U);
    EXPECT_TRUE(Saved().contains("/URI (https://example.org)"));
    EXPECT_NE(FScript.AddLinkAnnotation(10, 10, 20, 20, 2), nullptr);
    EXPECT_TRUE(FDocument.GetModified());
    EXPECT_NE(FDocument.Pages().getItem(0).ChangedParts, 0U);
    TPDFWatermarkSettings settings;
    settings.FText = "Draft";
    settings.FRotation = 0; // what reads the text below sees turned letters one by one
    EXPECT_TRUE(FScript.AddWatermark(&settings));
    Saved();
    EXPECT_EQ(RunProgram("pdftotext", {FWorkspace.Path("out.pdf"), "-"}).Out.count("Draft"), 2);
}

TEST_F(ContentActions, PermissionsRefuseEachKindForItself) {
    TPDFWatermarkSettings settings;
    Open({.UserPassword = "u", .OwnerPassword = "o", .Restrictions = {"--annotate=n", "--modify-other=n"}});
    EXPECT_EQ(FScript.AddText("t", {}, 0, 0U, 0, 0), nullptr);
    EXPECT_FALSE(FScript.AddWatermark(&settings));
    EXPECT_EQ(FScript.AddNoteAnnotation(0, 0, 0U), nullptr);
    EXPECT_EQ(FScript.AddFileAttachAnnotation(0, 0, FWorkspace.Path("in.pdf")), nullptr);
    EXPECT_EQ(FScript.AddFreeTextAnnotation("t", 0, 0, 9, 9), nullptr);
    Open({.UserPassword = "u", .OwnerPassword = "o", .Restrictions = {"--modify-other=n"}});
    EXPECT_EQ(FScript.AddText("t", {}, 0, 0U, 0, 0), nullptr);
    EXPECT_NE(FScript.AddNoteAnnotation(0, 0, 0U), nullptr);
    Open({.UserPassword = "u", .OwnerPassword = "o", .Restrictions = {"--annotate=n"}});
    EXPECT_NE(FScript.AddText("t", {}, 0, 0U, 0, 0), nullptr);
    EXPECT_EQ(FScript.AddStampAnnotation(0, 0, "t", "s", 0U, 0U, 0U), nullptr);
}
