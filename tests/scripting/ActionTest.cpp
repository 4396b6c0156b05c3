// The script action: its result, its place in a list, its file form.
#include "actions/ActionClasses.h"
#include "actions/ActionList.h"
#include "actions/JavaScriptAction.h"
#include "actions/PageActions.h"
#include "scripting/Occasion.h"
#include "scripting/ScriptFixture.h"
#include "xml/Xmlserial.h"

#include <QBuffer>
#include <QCoreApplication>

class ScriptAction : public TScriptTest {
protected:
    Cardinal Execute(const string& script) {
        TPDFActionJavaScript action;
        action.FJavascript = script;
        return action.Execute(*FDocument);
    }
};

TEST_F(ScriptAction, AnswersOneWhereTheScriptFailed) {
    Open(2);
    ActionDocument().SetDocument(nullptr);
    EXPECT_EQ(Execute("Document.RotatePages('1', 90); var left = 5"), 0U); // on the document it is given
    EXPECT_EQ(Execute({}), 0U);
    EXPECT_EQ(Execute("Document.RotatePages('1', 90); if ("), 1U); // nothing of it runs
    EXPECT_EQ(Execute("Document.RotatePages('2', 180); throw left"), 1U);
    EXPECT_EQ(FEngine.LastMessage().ScriptName, "PDFActions.Inline");
    FDocument->SaveToPath(FWorkspace.Path("out.pdf"), /*keepSource=*/true, /*takeName=*/false);
    const QByteArray told = InfoOf("out.pdf", {"-l", "2"}).simplified();
    EXPECT_TRUE(told.contains("Page 1 rot: 90") && told.contains("Page 2 rot: 180")) << told.toStdString();
}

TEST_F(ScriptAction, JournalAndBoxesNameTheFileAndTheList) {
    Open(1);
    const auto told = [this] {
        testing::internal::CaptureStderr();
        EXPECT_EQ(Execute("ShowMessage('x'); throw new Error('no')"), 1U);
        return QString::fromStdString(testing::internal::GetCapturedStderr());
    };
    {
        const TScriptOccasion occasion("/srv/a.pdf", "Stamp");
        EXPECT_EQ(told(), "PDFActions.Inline:1:25: Error: no (\"/srv/a.pdf\", list \"Stamp\")\n");
        EXPECT_EQ(FBoxes.Caption, QCoreApplication::applicationName() + ": \"/srv/a.pdf\", list \"Stamp\"");
    }
    EXPECT_EQ(told(), "PDFActions.Inline:1:25: Error: no\n");
    EXPECT_EQ(FBoxes.Caption, QCoreApplication::applicationName());
}

TEST_F(ScriptAction, FailureEndsTheListAndScriptsComeThroughItsFile) {
    RegisterActionClasses();
    TPDFActionList list;
    list.FActions->Add(std::make_unique<TPDFActionJavaScript>())
        ->setProperty("Javascript",
                      "if (1 < 2 && \"ü\" > '\\t') {\n\tDocument.RotatePages('', 90);\n}\n// ]]> \x01");
    list.FActions->Add(std::make_unique<TPDFActionJavaScript>())->setProperty("Javascript", "throw 1");
    list.FActions->Add(std::make_unique<TPDFActionRotatePages>());
    TPDFActionList read;
    read.Assign(list);
    ASSERT_EQ(read.FActions->Count(), 3);
    EXPECT_EQ((*read.FActions)[0]->property("Javascript"), (*list.FActions)[0]->property("Javascript"));
    Open(1);
    EXPECT_EQ(read.Execute(*FDocument), 1U);
    EXPECT_EQ(Value("Document.GetPageInfo().Rotation"), "90");
}
