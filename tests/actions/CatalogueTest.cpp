// The catalogue: every action with its place, its title, its members and their defaults, and that all of it
// survives a file.
#include "actions/ActionClasses.h"
#include "actions/ActionRegistry.h"
#include "actions/ContentActions.h"
#include "actions/Leaves.h"
#include "base/Exceptions.h"
#include "engine/document/Document.h"
#include "scripting/Declarations.h"
#include "scripting/ScriptDocument.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"
#include "xml/Xmlserial.h"

#include <QBuffer>

namespace {

using TRow = TPDFActionManager::TRegisteredAction;

/// A row of the registry, and the members as "name:type=default".
struct TExpected {
    const char* Class;
    const char* Row;
    const char* Members; ///< with those of records and objects, without Name and Tag
};

constexpr char Bates[] =
    "bates/Name:string= bates/HeaderLeft:string= bates/HeaderCenter:string= bates/HeaderRight:string= "
    "bates/FooterLeft:string= bates/FooterCenter:string= bates/FooterRight:string= "
    "bates/FontName:string=Arial bates/FontSize:Double=12 bates/FontStyle:Integer=0 "
    "bates/FontColor:ARGB=0xFF000000 bates/FontOutline:Boolean=false bates/MarginLeft:Double=72 "
    "bates/MarginRight:Double=72 bates/MarginTop:Double=36 bates/MarginBottom:Double=36 "
    "bates/BatesNumbers:string= pageRange:string=";
constexpr char Watermark[] =
    "Watermark/Text:string= Watermark/FontName:TFontName=Arial Watermark/FontSize:Single=72 "
    "Watermark/FontStyle:Integer=0 Watermark/Color:TColor=0x00808080 Watermark/ImageFile:TFileName= "
    "Watermark/Opacity:Single=0.5 Watermark/Rotation:Single=45 Watermark/Scale:Single=1 "
    "Watermark/HorizontalPosition:TPDFHorizontalPosition=hpCenter "
    "Watermark/VerticalPosition:TPDFVerticalPosition=vpCenter Watermark/OffsetX:Single=0 "
    "Watermark/OffsetY:Single=0 Watermark/PageRange:string= Watermark/BehindContent:Boolean=false";
constexpr char Encrypt[] =
    "OwnerPassword:string= OpenPassword:string= Algorithm:Integer=0 Perms/Print:Boolean=true "
    "Perms/PrintHighResolution:Boolean=true Perms/Modify:Boolean=true Perms/Copy:Boolean=true "
    "Perms/Accessibility:Boolean=true Perms/Annotate:Boolean=true Perms/FillForms:Boolean=true "
    "Perms/Assemble:Boolean=true";
constexpr char InitialView[] =
    "InitialView/HideMenubar:Boolean=false InitialView/HideToolbar:Boolean=false "
    "InitialView/HideWindowUI:Boolean=false InitialView/FitWindow:Boolean=false "
    "InitialView/CenterWindow:Boolean=false InitialView/DisplayDocTitle:Boolean=false "
    "InitialView/PageMode:TPDFPageMode=pmUseNone InitialView/PageLayout:TPDFPageLayout=plSinglePage";
constexpr char Description[] =
    "Description/Title:string= Description/Subject:string= Description/Author:string= "
    "Description/Keywords:string= Description/TitleAsIs:Boolean=false Description/SubjectAsIs:Boolean=false "
    "Description/AuthorAsIs:Boolean=false Description/KeywordsAsIs:Boolean=false";

const TExpected Catalogue[] = {
    {"TPDFActionEncrypt", "Password Protect Document|Protection|-1", Encrypt},
    {"TPDFActionDecrypt", "Decrypt document|Protection|-1", ""},
    {"TPDFActionAddFileAttachment", "Attach file in document|Annotations|-1", "fileName:TFileName="},
    {"TPDFActionAddStampAnnotation", "Add Stamp Annotation|Annotations|-1",
     "x:Single=0 y:Single=0 Text:string= Subject:string= baseColor:TColor=0x00416A1C "
     "BgGradientStartColor:TColor=0x00C7E0C6 BgGradientEndColor:TColor=0x00F2F7EB"},
    {"TPDFActionAddFileAttachAnnotation", "Add File Attach Annotation|Annotations|-1",
     "x:Single=0 y:Single=0 Filename:TFileName="},
    {"TPDFActionAddLinkAnnotation", "Add Link Annotation|Annotations|-1",
     "x:Single=0 y:Single=0 width:Single=0 height:Single=0 pageNum:Integer=0"},
    {"TPDFActionAddWebLinkAnnotation", "Add Web Link Annotation|Annotations|-1",
     "x:Single=0 y:Single=0 width:Single=0 height:Single=0 uri:string="},
    {"TPDFActionAddFreeTextAnnotation", "Add Free Text Annotation|Annotations|-1",
     "Text:string= x:Single=0 y:Single=0 width:Single=0 height:Single=0"},
    {"TPDFActionAddNoteAnnotation", "Add Note Annotation|Annotations|-1",
     "x:Single=0 y:Single=0 Color:TColor=0x000000FF"},
    {"TPDFActionAddText", "Add Text|Page Contents|-1",
     "x:Single=0 y:Single=0 Text:string= FontName:TFontName=Arial FontSize:Single=12 "
     "FillColor:TColor=0xFF000000"},
    {"TPDFActionAddImage", "Add Image|Page Contents|-1", "x:Single=0 y:Single=0 Filename:TFileName="},
    {"TPDFActionImportPages", "Import pages|Pages|-1",
     "fileName:TFileName= pageRange:string= insertAfter:Boolean=true "
     "pagePosition:TZQPDFPagePosition=ppCurrent"},
    {"TPDFActionRotatePages", "Rotate pages|Pages|-1", "pageRange:string= Angle:Integer=90"},
    {"TPDFActionAddWatermarkDefined", "Add defined watermark|Pages|-1", "FileName:string="},
    {"TPDFActionAddWatermark", "Add watermark|Pages|-1", Watermark},
    {"TPDFActionAddBatesNumbering", "Add bates numbering|Pages|-1", Bates},
    {"TPDFActionInsertPages", "Insert Empty Pages|Pages|-1",
     "Index:Integer=1 Count:Integer=1 width:Single=595 height:Single=842 BeforeCurrentPage:Boolean=false"},
    {"TPDFActionDeletePages", "Delete Pages|Pages|-1", "Index:Integer=1 Count:Integer=1"},
    {"TPDFActionDeletePagesEx", "Delete Pages by range|Pages|-1", "pageRange:string=1"},
    {"TPDFActionExtractPages", "Extract Pages|Pages|-1",
     "pageRange:string= fileName:string= OverwriteExisting:Boolean=false"},
    {"TPDFActionCropPages", "Crop Pages|Pages|1",
     "pageRange:string= top:Single=0 left:Single=0 right:Single=0 bottom:Single=0"},
    {"TPDFActionGotoPage", "Goto page|Go to|1", "PageNumber:Integer=1 PageIndex:Integer=0"},
    {"TPDFActionGotoNextPage", "Goto Next Page|Go to|1", "Dummy:Integer=0"},
    {"TPDFActionGotoPreviousPage", "Goto Previous Page|Go to|1", "Dummy:Integer=0"},
    {"TPDFActionGotoFirstPage", "Goto First Page|Go to|1", "Dummy:Integer=0"},
    {"TPDFActionGotoLastPage", "Goto Last Page|Go to|1", "Dummy:Integer=0"},
    {"TPDFActionDocumentInitialView", "Initial View|Document properies|-1", InitialView},
    {"TPDFActionAddDocumentDescription", "Add document description|Document properies|-1", Description},
    {"TPDFActionJavaScript", "PDF Javascript|Advanced|-1", "Javascript:string="},
};

/// A value of the same type that differs from `value`.
QVariant Another(const QVariant& value) {
    const QMetaType type = value.metaType();
    if (type.id() == QMetaType::Bool)
        return !value.toBool();
    if (type.id() == QMetaType::Int || type.id() == QMetaType::LongLong)
        return Lexical::Parse("-7", type);
    if (type.id() == QMetaType::Float || type.id() == QMetaType::Double)
        return Lexical::Parse("0.1", type); // no single or double is exactly that
    if (type == QMetaType::fromType<TColor>() || type == QMetaType::fromType<ARGB>())
        return Lexical::Parse("0x12345678", type);
    if (type.flags().testFlag(QMetaType::IsEnumeration))
        return Lexical::Parse("2", type);
    return Lexical::Parse("\n a <&> \"題\" \x01 _x0001_", type);
}

} // namespace

TEST(Catalogue, TheRegistryHoldsEveryActionInOrder) {
    ASSERT_EQ(RegisteredActions().size(), qsizetype(std::size(Catalogue)));
    for (qsizetype i = 0; i < RegisteredActions().size(); ++i) {
        const TRow& row = RegisteredActions()[i];
        EXPECT_EQ(Reflection::ClassName(*row.cl), Catalogue[i].Class);
        EXPECT_EQ(row.title + u'|' + row.category + u'|' + QString::number(row.imageIndex), Catalogue[i].Row);
    }
}

TEST(Catalogue, TheFirstManagerCollectsTheCategories) {
    const TWorkspace workspace;
    qputenv("XDG_CONFIG_HOME", workspace.Path("none").toUtf8());
    RegisterAction(TPDFAction::staticMetaObject, "Another", "PAGES", 5); // known, in another case
    (void)GetActionManager();
    (void)GetActionManager();
    EXPECT_EQ(ActionCategories(), QStringList({"Protection", "Annotations", "Page Contents", "Pages", "Go to",
                                               "Document properies", "Advanced"}));
    EXPECT_EQ(RegisteredActions().takeLast().imageIndex, 5);
}

TEST(Catalogue, EveryClassHasItsMembersInOrderWithTheirDefaults) {
    // moc drops members without a word where it can't resolve an include; here they would be missed.
    RegisterActionClasses();
    for (const TExpected& expected : Catalogue) {
        const QMetaObject* type = Reflection::FindClass(QString(expected.Class));
        ASSERT_NE(type, nullptr) << expected.Class;
        const auto action = TPDFAction::CreateInstance(*type);
        QStringList members;
        for (const TLeaf& leaf : LeavesOf(*action).mid(2)) // behind Name and Tag
            members.append(leaf.Path + u':' + TypeName(leaf.Value.metaType()) + u'=' +
                           Lexical::Format(leaf.Value));
        EXPECT_EQ(members.join(u' '), expected.Members) << expected.Class;
    }
}

TEST(Catalogue, EveryValueSurvivesSaveAndLoad) {
    RegisterActionClasses();
    TPDFActionManager manager;
    TPDFActions& actions = *manager.AddAction("All", "").FActions;
    for (const TRow& row : RegisteredActions())
        WalkLeaves(TInstance(*actions.Add(TPDFAction::CreateInstance(*row.cl))), {},
                   [](const string&, QVariant& value) { value = Another(value); });
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    XMLSerialize(manager, file, {});
    file.seek(0);
    TPDFActionManager loaded;
    XMLDeserialize(loaded, file, {});

    TPDFActions& others = *loaded[0].FActions;
    ASSERT_EQ(others.Count(), actions.Count());
    for (int i = 0; i < others.Count(); ++i) {
        SCOPED_TRACE(Catalogue[i].Class);
        const QList<TLeaf> leaves = LeavesOf(*others[i]);
        EXPECT_EQ(leaves, LeavesOf(*actions[i]));
        const auto fresh = TPDFAction::CreateInstance(*others[i]->metaObject());
        const QList<TLeaf> defaults = LeavesOf(*fresh);
        for (qsizetype leaf = 0; leaf < leaves.size(); ++leaf)
            EXPECT_NE(leaves[leaf].Value, defaults[leaf].Value) << leaves[leaf].Path.toStdString();
    }
    QBuffer again;
    again.open(QIODevice::ReadWrite);
    XMLSerialize(loaded, again, {});
    EXPECT_EQ(again.data(), file.data());
}

TEST(Catalogue, EveryActionFindsItsMethodOrSaysWhyNot) {
    // What a run would do, without a document: the lookups alone.
    const QHash<string, string> without{{"TPDFActionAddWebLinkAnnotation", "no method"},
                                        {"TPDFActionDocumentInitialView", "no method"},
                                        {"TPDFActionJavaScript", "no method"},
                                        {"TPDFActionInsertPages", "AWidth"},
                                        {"TPDFActionAddWatermark", "w"},
                                        {"TPDFActionEncrypt", "Algo"}};
    for (const TRow& row : RegisteredActions()) {
        const string name = Reflection::ClassName(*row.cl);
        const auto methods = Reflection::FindMethods(TJSPDFDocument::staticMetaObject, name.mid(10));
        string lacking = methods.isEmpty() ? "no method" : "";
        for (const QMetaMethod& method : methods)
            for (const QByteArray& parameter : method.parameterNames())
                if (lacking.isEmpty() &&
                    !Reflection::FindMember(*row.cl, QString::fromLatin1(parameter)).isValid())
                    lacking = QString::fromLatin1(parameter);
        EXPECT_EQ(lacking, without.value(name, "")) << name.toStdString();
    }
}

TEST(Catalogue, TheInitialViewLeavesTheDocumentAsItIs) {
    const TWorkspace workspace;
    MakePdf(workspace.Path("in.pdf"), 1);
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(workspace.Path("in.pdf"), {});
    TPDFActionDocumentInitialView action;
    action.InitialView = {.HideMenubar = true, .PageMode = TPDFPageMode::pmFullScreen};
    EXPECT_EQ(action.Execute(document), 0U);
    EXPECT_FALSE(document.GetModified());
    EXPECT_EQ(document.GetPageMode(), TPDFPageMode::pmUseNone);
}

TEST(Catalogue, OnlyWhatNeedsNoDialogAnswersWithoutOne) {
    const QStringList answering{"TPDFActionDecrypt", "TPDFActionGotoNextPage", "TPDFActionGotoPreviousPage",
                                "TPDFActionGotoFirstPage", "TPDFActionGotoLastPage"};
    for (const TRow& row : RegisteredActions()) {
        const string name = Reflection::ClassName(*row.cl);
        if (name == "TPDFActionAddFileAttachment" || name == "TPDFActionJavaScript" ||
            name == "TPDFActionRotatePages")
            continue; // these have tests of their own
        const auto action = TPDFAction::CreateInstance(*row.cl);
        try {
            EXPECT_TRUE(action->Config());
            EXPECT_TRUE(answering.contains(name)) << name.toStdString();
        } catch (const Exception& e) {
            EXPECT_FALSE(answering.contains(name)) << name.toStdString();
            EXPECT_EQ(e.Message(), "[TPDFAction.Config]: Class not found TFrmPDF" + name.mid(10));
        }
    }
}
