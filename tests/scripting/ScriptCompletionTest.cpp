// What stands around the script editor: what it offers, and the action that opens it.
#include "actions/JavaScriptAction.h"
#include "scripting/ScriptEditorHost.h"
#include "scripting/ScriptFixture.h"

namespace {

TEST(ScriptCompletion, FollowsTheRunTimeTables) {
    const TJSCompletion completion = BuildCompletion();
    EXPECT_EQ(completion.keys(), (QStringList{"DOCUMENT.", "{DEFAULT}"}));
    const QStringList methods = completion["DOCUMENT."];
    EXPECT_EQ(methods[0], "function Load (const fileName: string, Password: string) Boolean;");
    EXPECT_EQ(methods[1], "function Save  Boolean;");
    EXPECT_TRUE(methods.contains("function GetLastError  Integer;"));
    EXPECT_TRUE(methods.contains("function SetXMLMetaData (const XMP: string);"));
    EXPECT_EQ(methods.last(), "function GetOutlineCount  Integer;");
    const QStringList functions = completion["{DEFAULT}"];
    EXPECT_EQ(functions[0], "Document.");
    EXPECT_EQ(functions[1], "function Include (ScriptFileName: string);");
    EXPECT_TRUE(functions.contains("function FileExists (n: string) Boolean;"));
    EXPECT_EQ(functions.size(), 1 + 15 - 3);
    for (const char* hidden :
         {"Create", "Destroy", "Document", "deleteLater", "IncludeResource", "ExeName", "ExeFolder"})
        EXPECT_FALSE((methods + functions).join('\n').contains(QString("function %1 ").arg(hidden)))
            << hidden;
}

/// Compiles what was typed, as the editor does, and confirms it if it is told to.
struct TPlayedEditor : TScriptEditorHost {
    TPlayedEditor() { SetScriptEditorHost(this); }
    ~TPlayedEditor() override { SetScriptEditorHost(nullptr); }
    bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        EXPECT_EQ(jsSource, "first");
        EXPECT_EQ(*AutoCompletion, BuildCompletion());
        EXPECT_EQ(Engine->Global().Compile("if (", ":inline:"), nullptr);
        if (Confirms)
            jsSource = "second";
        return Confirms;
    }
    bool Confirms = false;
};

class ScriptConfig : public TScriptTest {};

TEST_F(ScriptConfig, TakesOnlyWhatTheEditorConfirms) {
    TPDFActionJavaScript action;
    action.FJavascript = "first";
    EXPECT_FALSE(action.Config()); // nobody has an editor
    TPlayedEditor editor;
    EXPECT_FALSE(action.Config());
    EXPECT_EQ(action.FJavascript, "first");
    EXPECT_EQ(FEngine.LastMessage().ScriptName, ":inline:"); // the engine of all scripts
    editor.Confirms = true;
    EXPECT_TRUE(action.Config());
    EXPECT_EQ(action.FJavascript, "second");
}

} // namespace
