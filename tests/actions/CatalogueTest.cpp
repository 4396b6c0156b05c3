// The catalogue: that every action finds its method, and that all of its members survive a file. Which
// actions and members there are is told by docs/configuration.md.
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

TEST(Catalogue, TheFirstManagerCollectsTheCategories) {
    const TWorkspace workspace;
    qputenv("XDG_CONFIG_HOME", workspace.Path("none").toUtf8());
    for (const TRow& row : RegisteredActions())
        EXPECT_EQ(row.imageIndex, row.category == "Go to" || row.title == "Crop Pages" ? 1 : -1);
    RegisterAction(TPDFAction::staticMetaObject, "Another", "PAGES", 5); // known, in another case
    (void)GetActionManager();
    (void)GetActionManager();
    EXPECT_EQ(ActionCategories(), QStringList({"Protection", "Annotations", "Page Contents", "Pages", "Go to",
                                               "Document properies", "Advanced"}));
    EXPECT_EQ(RegisteredActions().takeLast().imageIndex, 5);
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
        SCOPED_TRACE(others[i]->metaObject()->className());
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
