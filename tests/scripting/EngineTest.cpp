// The script host: what scripts see of the program and what crosses between them.
#include "base/Exceptions.h"
#include "scripting/ScriptFixture.h"

#include <QBuffer>

#include <thread>

class ScriptEngine : public TScriptTest {};

TEST_F(ScriptEngine, ValuesCross) {
    Open(3);
    struct TCase {
        string Expression;
        string Expected;
    };
    for (const TCase& row : {
             TCase{"Document.GetLastError()", "0"},
             TCase{"Document.GotoPage(2) === true", "true"},
             TCase{"Object.keys(Document.GetPageInfo()).join()", "Width,Height,Rotation,PdfWidth,PDFHeight"},
             TCase{"Document.GetPageInfo().Width", "595"},
             TCase{"Document.GetPageMode()", "0"},
             TCase{"Document.SetPageMode('pmUseOutlines') && Document.GetPageMode()", "1"},
             TCase{"Document.SetPageMode(2) && Document.GetPageMode()", "2"},
             TCase{"typeof Document.SetXMLMetaData('')", "undefined"},
             TCase{"ExtractFileName('/srv/Grüße 漢字 😀.pdf')", "Grüße 漢字 😀.pdf"},
             TCase{"ChangeFileExt(1.5, '.x')", "1.x"}, // a number has one spelling
             TCase{"FindFiles('', '*', false).length", "0"},
             TCase{"['/a/b', '/c/d'].map(ExtractFileName).join()", "b,d"},
             TCase{"ENC_ALGORITHM_40_RC4 * 1000 + ENC_ALGORITHM_128_RC4 * 100 + ENC_ALGORITHM_128_AES * 10 + "
                   "ENC_ALGORITHM_256_AES",
                   "123"},
             TCase{"typeof TJSPDFDocument + typeof TPDFDocument + typeof Document.Document + typeof "
                   "Document.objectName + typeof Document.deleteLater",
                   "undefinedfunctionundefinedundefinedundefined"},
             TCase{"Document instanceof TPDFDocument", "true"},
             TCase{"(Document = 5, ENC_ALGORITHM_256_AES = 7, typeof Document + ENC_ALGORITHM_256_AES)",
                   "object3"},
             TCase{"(() => { const p = new TPDFDocPermissions(); return p.Load(null) })()", "undefined"},
             TCase{"(() => { const e = Document.ExtractPages('1-2', '', true); return "
                   "e.ImportPagesFromDocument(Document, '3', true, 'ppLast') && e !== Document })()",
                   "true"},
         })
        EXPECT_EQ(Value(row.Expression), row.Expected) << row.Expression.toStdString();
}

TEST_F(ScriptEngine, RefusalsNameWhatIsWrong) {
    Open(1);
    struct TCase {
        string Script;
        string Message;
    };
    for (const TCase& row : {
             TCase{"Document.RotatePages('1', 2.5)", "parameter \"Angle\" of RotatePages: 2.5 is no Integer"},
             TCase{"Document.RotatePages('1')",
                   "RotatePages needs 2 arguments (pageRange, Angle) and got 1."},
             TCase{"Document.RotatePages(null, 90)",
                   "parameter \"pageRange\" of RotatePages: null is no string"},
             TCase{"Document.RotatePages({}, 90)",
                   "parameter \"pageRange\" of RotatePages: an object is no string"},
             TCase{"Document.SetPageMode('pmNone')", "\"pmNone\" is no TPDFPageMode (pmUseNone, "},
             TCase{"Document.SetPageMode(77)", "77 is no"},
             TCase{"Document.AddDocumentDescription({title: 'x'})",
                   "TPDFDocumentDescription has no member \"title\"."},
             TCase{"Document.AddDocumentDescription({Title: 'x', TitleAsIs: 1})",
                   "member \"TitleAsIs\": 1 is no Boolean"},
             TCase{"Document.ImportPagesFromDocument(new TPDFDocPermissions(), '', true, 0)",
                   "is no TPDFDocument"},
             TCase{"new TPDFDocPermissions().print = false", "TPDFDocPermissions has no member \"print\"."},
             TCase{"new TPDFDocPermissions().Print = 'no'",
                   "member \"Print\" of TPDFDocPermissions: \"no\" is no Boolean"},
             TCase{"TPDFDocument()", "write \"new TPDFDocument()\""},
             TCase{"Document.Save.call({})", "Save is a member of TPDFDocument and of nothing else."},
             TCase{"Document.Save.call(new TPDFDocPermissions())", "Save is a member of TPDFDocument"},
             TCase{"Document.CropPages('1', 500, 0, 0, 500)", ""},
             TCase{"Document.ExtractPages('x', '', true)", "Invalid page range \"x\"."},
             TCase{"Include('a.js')", "Include has no script engine"},
             TCase{"IncludeResource('nothing')", "Resource \"nothing\" not found."},
             TCase{"FindFiles('/nowhere', '*', true)", "/nowhere"},
             TCase{"ShellExecute(0, undefined, 'true', '', '', 1)", "undefined is no string or null"},
             TCase{"throw new RangeError('mine')", "RangeError: mine"},
             TCase{"throw {toString() { return 'odd' }}", "odd"},
             TCase{"nothing.here", "ReferenceError: nothing is not defined"},
             TCase{"if (", "SyntaxError"},
             TCase{"Promise.reject(new Error('late'))", "Error: late"},
             TCase{"(async () => { await 0; nothing() })()", "nothing is not defined"},
         }) {
        EXPECT_FALSE(Run("\n  " + row.Script)) << row.Script.toStdString();
        EXPECT_TRUE(Failure().contains(row.Message)) << Failure().toStdString();
        EXPECT_TRUE(Failure().startsWith("test:2:")) << Failure().toStdString();
        if (row.Script.startsWith("nothing")) {
            EXPECT_TRUE(Failure().startsWith("test:2:3:")) << Failure().toStdString();
        }
        // A native failure is an exception there.
        const bool later = row.Script.contains("romise") || row.Script.contains("async");
        if (!later && !row.Script.startsWith("if (")) {
            EXPECT_EQ(
                Said("try { " + row.Script + "; ShowMessage('none') } catch (e) { ShowMessage('caught') }"),
                "caught");
        }
    }
}

TEST_F(ScriptEngine, NothingIsCutOffOrTakenForSomethingElse) {
    Open(1);
    FWorkspace.Write("note", "note");
    struct TCase {
        string Call;
        string Message;
    };
    for (const TCase& row : {
             TCase{"Document.RotatePages('1', 2n ** 64n + 90n)",
                   "a whole number of more than 64 bits is no Integer"},
             TCase{"Document.RotatePages('1', 2n ** 63n)", "9223372036854775808 is no Integer"},
             TCase{"Document.RotatePages('1', -(2n ** 63n))", "-9223372036854775808 is no Integer"},
             TCase{"Document.AddBatesNumbering(new Map([['HeaderLeft', 'x']]), '')", "an object is no"},
             TCase{"Document.AddBatesNumbering(['x'], '')", "an object is no"},
             TCase{"Document.AddBatesNumbering(new TPDFDocPermissions(), '')", "an object is no"},
             TCase{"Document.AddFileAttachment('DIR/note\\0')", "is no TFileName"},
             TCase{"Document.SaveGraphicPageToBitmap('DIR/note\\0.png', 9)", "holds a NUL"},
             TCase{"CreateProcess('touch DIR/note\\0', 0, true)", "holds a NUL"},
         }) {
        EXPECT_FALSE(Run(row.Call)) << row.Call.toStdString();
        EXPECT_TRUE(Failure().contains(row.Message)) << Failure().toStdString();
    }
    EXPECT_EQ(FWorkspace.Read("note"), "note");
    EXPECT_EQ(Value("Document.AddBatesNumbering(Object.create(null), '') || Document.RotatePages('1', 90n)"),
              "false");
}

TEST_F(ScriptEngine, ScriptsShareTheirGlobalScope) {
    EXPECT_TRUE(Run("var kept = 7; let held = 8; function twice(x) { return 2 * x }"));
    EXPECT_EQ(Value("twice(kept) + held"), "22");
    EXPECT_TRUE(Run({}));
    EXPECT_EQ(Said("Promise.resolve(1).then(x => ShowMessage('later ' + x)); ShowMessage('now')"),
              "now|later 1");
    EXPECT_EQ(Said("Promise.reject(1).catch(() => ShowMessage('handled'))"), "handled");
    EXPECT_TRUE(Run("(async () => { await new Promise(() => {}); ShowMessage('never') })()"));
}

TEST_F(ScriptEngine, ObjectsKeepIdentityAndDieSafely) {
    Open(2);
    EXPECT_EQ(
        Value("(() => { const d = new TPDFDocument(); d.GotoPage(1); return d === d && d !== Document && "
              "Math.round(d.GetPageInfo().Width) })()"),
        "595");
    TJSDocumentScripting* engine = &FEngine;
    {
        TJSPDFDocument lent;
        const TJSClass bound(lent, *engine, "Lent");
        EXPECT_EQ(Value("Lent.GetLastError()"), "0");
        EXPECT_EQ(Value("Lent === Lent && Lent !== Document"), "true");
    }
    EXPECT_FALSE(Run("Lent.Save()"));
    EXPECT_TRUE(Failure().contains("This TPDFDocument is gone")) << Failure().toStdString();
    EXPECT_EQ(Value("(text = Document.AddText('t', '', 9, 0, 5, 5)) === text && text.X"), "5");
    FDocument.reset(); // under "Document", which stays
    EXPECT_FALSE(Run("text.X = 7"));
    EXPECT_TRUE(Failure().contains("This TZQPDFText is gone")) << Failure().toStdString();
    EXPECT_FALSE(Run("Document.RotatePages('', 90)"));
    EXPECT_TRUE(Failure().contains("The document is no longer open.")) << Failure().toStdString();
}

TEST_F(ScriptEngine, CompilesWithoutRunning) {
    EXPECT_NE(FEngine.Global().Compile("ShowMessage('ran')", ":inline:"), nullptr);
    EXPECT_EQ(FEngine.Global().Compile("ShowMessage('ran'", ":inline:"), nullptr);
    EXPECT_TRUE(Failure().startsWith(":inline::1:")) << Failure().toStdString();
    EXPECT_EQ(FBoxes.Said, QStringList());
}

TEST_F(ScriptEngine, EvaluatesFiles) {
    const QByteArray utf16("\xFF\xFE"
                           "a\0=\0\x31\0",
                           8);
    QBuffer buffer;
    buffer.setData(utf16);
    buffer.open(QIODevice::ReadOnly);
    EXPECT_EQ(TJSScript::LoadScript(buffer), "a=1");
    EXPECT_TRUE(FEngine.EvaluateFile(FWorkspace.Write("s.js", "\xEF\xBB\xBFShowMessage('grüß')"), nullptr));
    EXPECT_EQ(FBoxes.Said, QStringList("grüß"));
    EXPECT_FALSE(FEngine.EvaluateFile(FWorkspace.Path("missing.js"), &FEngine.Global()));
    EXPECT_TRUE(FEngine.LastMessage().ScriptName.endsWith("missing.js"));
}

TEST_F(ScriptEngine, BelongsToItsThread) {
    EXPECT_THROW(TJSDocumentScripting(nullptr, 1 << 24), Exception); // a second one on a thread
    std::thread([this] {
        EXPECT_THROW(FEngine.Evaluate("1", "test"), Exception);
        EXPECT_THROW(std::ignore = GetDocumentScripting().LastMessage(), Exception);
        TJSPDFDocument own;
        TJSDocumentScripting other(&own, 1 << 24);
        EXPECT_TRUE(other.Evaluate("Document.GotoFirstPage(); var x = new TPDFDocument()", "test"));
    }).join();
    EXPECT_EQ(Value("1 + 1"), "2");
}
