// What stands around the script editor: what it offers, and the action that opens it.
#include "actions/JavaScriptAction.h"
#include "scripting/ScriptEditorHost.h"
#include "scripting/ScriptFixture.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::Each;
using testing::Not;

MATCHER_P(OfMethod, name, "") {
    return arg.startsWith(QStringLiteral("function %1 ").arg(QString(name)));
}

TEST(ScriptCompletion, OffersTheDocumentsMethodsBehindItsDot) {
    const TJSCompletion completion = BuildCompletion();
    EXPECT_EQ(completion.keys(), (QStringList{"DOCUMENT.", "{DEFAULT}"}));
    const QStringList methods = completion["DOCUMENT."];
    EXPECT_EQ(methods[0], "function Load (fileName: string, Password: string) Boolean;");
    EXPECT_EQ(methods[1], "function Save  Boolean;");
    EXPECT_THAT(methods, Contains(QString("function SetXMLMetaData (XMP: string);")));
    EXPECT_THAT(methods, Contains(OfMethod("GetLastError")));
    for (const char* hidden : {"Create", "Destroy", "Document", "TJSPDFDocument", "deleteLater"})
        EXPECT_THAT(methods, Each(Not(OfMethod(hidden)))) << hidden;
    EXPECT_EQ(QSet<string>(methods.begin(), methods.end()).size(), methods.size());
    EXPECT_EQ(methods.last(), "function GetOutlineCount  Integer;");
}

TEST(ScriptCompletion, OffersTheGlobalFunctionsButThree) {
    const QStringList functions = BuildCompletion()["{DEFAULT}"];
    EXPECT_EQ(functions[0], "Document.");
    EXPECT_EQ(functions[1], "function Include (ScriptFileName: string);");
    EXPECT_EQ(functions.size(), 1 + 14 - 3);
    for (const char* offered : {"FileExists", "ShowMessage", "MessageBox", "CreateProcess"})
        EXPECT_THAT(functions, Contains(OfMethod(offered))) << offered;
    for (const char* hidden : {"IncludeResource", "ExeName", "ExeFolder"})
        EXPECT_THAT(functions, Each(Not(OfMethod(hidden)))) << hidden;
}

/// Compiles what was typed, as the editor does, and confirms it if it is told to.
struct TPlayedEditor : TScriptEditorHost {
    TPlayedEditor() { SetScriptEditorHost(this); }
    ~TPlayedEditor() override { SetScriptEditorHost(nullptr); }
    bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        Shown = jsSource;
        Compiles = Engine->Global().Compile(Typed, ":inline:") != nullptr;
        Offered = AutoCompletion->keys();
        if (Confirms)
            jsSource = Typed;
        return Confirms;
    }
    string Typed;
    bool Confirms = true;
    string Shown;
    bool Compiles = false;
    QStringList Offered;
};

class ScriptConfig : public TScriptTest {};

TEST_F(ScriptConfig, TakesOnlyWhatTheEditorConfirms) {
    TPDFActionJavaScript action;
    action.FJavascript = "first";
    EXPECT_FALSE(action.Config()); // nobody has an editor
    TPlayedEditor editor;
    editor.Typed = "second()";
    editor.Confirms = false;
    EXPECT_FALSE(action.Config());
    EXPECT_EQ(action.FJavascript, "first");
    editor.Confirms = true;
    EXPECT_TRUE(action.Config());
    EXPECT_EQ(editor.Shown, "first");
    EXPECT_TRUE(editor.Compiles);
    EXPECT_EQ(editor.Offered, BuildCompletion().keys());
    EXPECT_EQ(action.FJavascript, "second()");
    editor.Typed = "if (";
    EXPECT_TRUE(action.Config()); // whether it compiles is the editor's business
    EXPECT_FALSE(editor.Compiles);
    EXPECT_EQ(FEngine.LastMessage().ScriptName, ":inline:");
}

} // namespace
