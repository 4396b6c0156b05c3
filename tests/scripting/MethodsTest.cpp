// Every method and function that a script can reach, and the actions that do the same: their effect seen from
// outside, in the file as other programs read it, in a process, in a box.
#include "actions/ActionClasses.h"
#include "actions/ActionList.h"
#include "platform/Signals.h"
#include "scripting/GlobalFunctions.h"
#include "scripting/ScriptFixture.h"
#include "xml/Xmlserial.h"

#include <QBuffer>
#include <QSet>

#include <dirent.h>

namespace {

/// What tells whether a script had its effect.
enum class TJudge {
    Said,     ///< what boxes said
    Text,     ///< the text of the pages of DIR/out.pdf, which is saved behind the script
    Has,      ///< something that stands in the objects of that file
    Attached, ///< its attachments
    Metadata, ///< its XMP
    File,     ///< the contents of DIR/made, as soon as there are any
};

struct TMethodCase {
    const char* Method;
    string Script;
    TJudge Judge;
    string Expected;
    const char* Action = nullptr; ///< elements of the action of that name, where it is to do the same
};

QList<TMethodCase> DocumentCases() {
    using enum TJudge;
    return {
        {"TPDFDocument.Save", "Document.SaveAs('DIR/out.pdf'); Document.RotatePages('', 90); Document.Save()",
         Has, "/Rotate 90"},
        {"TPDFDocument.SaveAs",
         "ShowMessage(Document.SaveAs('DIR/made.pdf') + ' ' + FileExists('DIR/made.pdf'))", Said,
         "true true"},
        {"TPDFDocument.GetLastError", "ShowMessage(Document.GetLastError())", Said, "0"},
        {"TPDFDocument.IsPasswordOK",
         "ShowMessage('' + ['', 'user', 'owner'].map(p => Document.IsPasswordOK('DIR/locked.pdf', p)))", Said,
         "false,true,true"},
        {"TPDFDocument.IsOpenPasswordOK",
         "ShowMessage('' + ['', 'user', 'owner'].map(p => Document.IsOpenPasswordOK('DIR/locked.pdf', p)))",
         Said, "false,true,false"},
        {"TPDFDocument.IsPermissionPasswordOK",
         "ShowMessage('' + ['', 'user', 'owner'].map(p => Document.IsPermissionPasswordOK('DIR/locked.pdf', "
         "p)))",
         Said, "false,false,true"},
        {"TPDFDocument.Decrypt", "ShowMessage(Document.Decrypt())", Said,
         "false"}, // there is no protection to take off
        {"TPDFDocument.GetSignaturesCount", "ShowMessage(Document.GetSignaturesCount())", Said, "0"},
        {"TPDFDocument.AddFileAttachment", "Document.AddFileAttachment('DIR/note.txt')", Attached, "note.txt",
         "<fileName>DIR/note.txt</fileName>"},
        {"TPDFDocument.AddDocumentDescription",
         "Document.AddDocumentDescription({Title: 'Neu', AuthorAsIs: true})", Has, "/Title (Neu)",
         "<Description><Title>Neu</Title><AuthorAsIs>true</AuthorAsIs></Description>"},
        {"TPDFDocument.InsertPages", "Document.InsertPages(1, 2, 200, 300, true)", Has, "/Count 6"},
        {"TPDFDocument.DeletePages", "Document.DeletePages(1, 1)", Text, "Page 3 Page 4",
         "<Index>1</Index><Count>1</Count>"},
        {"TPDFDocument.DeletePagesEx", "Document.DeletePagesEx('2-last')", Text, "Page 1",
         "<pageRange>2-last</pageRange>"},
        {"TPDFDocument.ExtractPages", "Document.ExtractPages('4,2', '', true).SaveAs('DIR/out.pdf')", Text,
         "Page 4 Page 2"},
        {"TPDFDocument.CropPages", "Document.CropPages('1', 10, 20, 30, 40)", Has, "565 832",
         "<pageRange>1</pageRange><top>10</top><left>20</left><right>30</right><bottom>40</bottom>"},
        {"TPDFDocument.ImportPages", "Document.ImportPages('DIR/in.pdf', '3', false, 'ppFirst')", Text,
         "Page 3 Page 1 Page 2 Page 3 Page 4",
         "<fileName>DIR/in.pdf</fileName><pageRange>3</pageRange><insertAfter>false</insertAfter>"
         "<pagePosition>ppFirst</pagePosition>"},
        {"TPDFDocument.ImportPages", "Document.ImportPages('DIR/in.pdf', '4', true, 'ppFirst')", Text,
         "Page 1 Page 4 Page 2 Page 3 Page 4"},
        {"TPDFDocument.ImportPages", "Document.ImportPages('DIR/in.pdf', '1', false, 'ppLast')", Text,
         "Page 1 Page 2 Page 3 Page 1 Page 4"},
        {"TPDFDocument.ImportPagesFromDocument", "Document.ImportPagesFromDocument(Document, '1-2', true, 2)",
         Text, "Page 1 Page 2 Page 3 Page 4 Page 1 Page 2"},
        {"TPDFDocument.RotatePages", "Document.RotatePages('3', -90)", Has, "/Rotate 270",
         "<pageRange>3</pageRange><Angle>-90</Angle>"},
        {"TPDFDocument.GotoPage", "Document.GotoPage(3); Document.ImportPages('DIR/in.pdf', '1', true, 0)",
         Text, "Page 1 Page 2 Page 3 Page 1 Page 4"},
        {"TPDFDocument.GotoNextPage",
         "Document.GotoNextPage(); Document.ImportPages('DIR/in.pdf', '1', true, 0)", Text,
         "Page 1 Page 2 Page 1 Page 3 Page 4"},
        {"TPDFDocument.GotoPreviousPage",
         "Document.GotoPage(3); Document.GotoPreviousPage(); Document.ImportPages('DIR/in.pdf', '1', true, "
         "0)",
         Text, "Page 1 Page 2 Page 1 Page 3 Page 4"},
        {"TPDFDocument.GotoFirstPage",
         "Document.GotoPage(3); Document.GotoFirstPage(); Document.ImportPages('DIR/in.pdf', '4', true, 0)",
         Text, "Page 1 Page 4 Page 2 Page 3 Page 4"},
        {"TPDFDocument.GotoLastPage",
         "Document.GotoLastPage(); Document.ImportPages('DIR/in.pdf', '1', false, 0)", Text,
         "Page 1 Page 2 Page 3 Page 1 Page 4"},
        {"TPDFDocument.GetPageInfo", "ShowMessage(JSON.stringify(Document.GetPageInfo()))", Said,
         R"({"Width":595,"Height":842,"Rotation":0,"PdfWidth":595,"PDFHeight":842})"},
        {"TPDFDocument.SetPageMode", "Document.SetPageMode('pmUseThumbs')", Has, "/PageMode /UseThumbs"},
        {"TPDFDocument.GetPageMode", "ShowMessage(Document.GetPageMode())", Said, "0"},
        {"TPDFDocument.SetPageLayout", "Document.SetPageLayout('plTwoPageLeft')", Has,
         "/PageLayout /TwoPageLeft"},
        {"TPDFDocument.GetPageLayout", "ShowMessage(Document.GetPageLayout())", Said, "0"},
        {"TPDFDocument.SetXMLMetaData",
         "Document.SetXMLMetaData('<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">ü</x:xmpmeta>')", Metadata,
         "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">ü</x:xmpmeta>"},
        {"TPDFDocument.GetXMLMetaData",
         "Document.SetXMLMetaData('<ä/>'); ShowMessage(Document.GetXMLMetaData())", Said, "<ä/>"},
        {"TPDFDocument.Load",
         "const d = new TPDFDocument(); ShowMessage([d.Load('DIR/none.pdf', ''), d.GetLastError(), "
         "d.Load('DIR/in.pdf', '')].join()); d.DeletePagesEx('2-last'); d.SaveAs('DIR/out.pdf')",
         Text, "Page 1"},
        {"TPDFDocument.Encrypt",
         "ShowMessage(Document.Encrypt('owner', 'user', ENC_ALGORITHM_256_AES, new TPDFDocPermissions()) && "
         "Document.SaveAs('DIR/out.pdf') && ['', 'user'].map(p => Document.IsOpenPasswordOK('DIR/out.pdf', "
         "p)).join())",
         Said, "false,true"},
        {"TPDFDocument.AddText", "Document.AddText('Hello', '', 0, 0, 72, 36).FontSize = 20", Text,
         "Hello Page 1 Page 2 Page 3 Page 4", "<Text>Hello</Text><x>72</x><y>36</y>"},
        {"TPDFDocument.AddImage", "Document.AddImage('DIR/dot.png', 10, 10)", Has, "/Subtype /Image",
         "<x>10</x><y>10</y><Filename>DIR/dot.png</Filename>"},
        {"TZQPDFImage.LoadFromFile", "Document.AddImage('', 10, 10).LoadFromFile('DIR/dot.png')", Has,
         "/Subtype /Image"},
        {"TPDFDocument.SaveGraphicPageToBitmap",
         "Document.SaveGraphicPageToBitmap('DIR/page.png', 36); ShowMessage(FileExists('DIR/page.png'))",
         Said, "true"},
        {"TPDFDocument.GetOutlineCount", "ShowMessage(Document.GetOutlineCount())", Said, "4"},
        {"TPDFDocument.NewOutline", "Document.NewOutline(null, 'New', 2, 'ldFit')", Has, "/Title (New)"},
        {"TPDFDocument.GetFirstOutline", "Document.SetOutlineColor(Document.GetFirstOutline(), 0x0000FF)",
         Has, "/C [ 1 0 0 ]"},
        {"TPDFDocument.SetOutlineColor", "Document.SetOutlineColor(Document.GetFirstOutline(), 0x00FF00)",
         Has, "/C [ 0 1 0 ]"},
        {"TPDFDocument.GetFirstChildOutline",
         "const first = Document.GetFirstOutline(); Document.NewOutline(first, 'Below', 1, 'ldXYZ');"
         "Document.SetOutlineColor(Document.GetFirstChildOutline(first), 0xFF0000)",
         Has, "/C [ 0 0 1 ]"},
        {"TPDFDocument.GetNextOutline",
         "const first = Document.GetFirstOutline(), next = Document.GetNextOutline(first);"
         "ShowMessage(next !== null && next !== first)",
         Said, "true"},
        {"TPDFDocument.GetPrevOutline",
         "const first = Document.GetFirstOutline();"
         "ShowMessage(Document.GetPrevOutline(first) === null && "
         "Document.GetPrevOutline(Document.GetNextOutline(first)) !== null)",
         Said, "true"},
        {"TPDFDocument.AddBatesNumbering", "Document.AddBatesNumbering({HeaderLeft: 'Case 7'}, '2')", Text,
         "Page 1 Case 7 Page 2 Page 3 Page 4",
         "<bates><HeaderLeft>Case 7</HeaderLeft></bates><pageRange>2</pageRange>"},
        {"TPDFDocument.AddWatermark",
         "const w = new TPDFWatermarkSettings(); w.Text = 'DRAFT'; w.Rotation = 0; w.PageRange = '2';"
         "w.VerticalPosition = 'vpTop'; Document.AddWatermark(w)",
         Text, "Page 1 DRAFT Page 2 Page 3 Page 4"},
        {"TPDFDocument.AddWatermarkDefined", "ShowMessage(Document.AddWatermarkDefined('Draft'))", Said,
         "false"},
        {"TPDFWatermarkSettings.Assign",
         "const w = new TPDFWatermarkSettings(), v = new TPDFWatermarkSettings(); w.Text = 'COPY'; "
         "v.Assign(w);"
         "ShowMessage(v.Text)",
         Said, "COPY"},
        {"TPDFWatermarkSettings.SaveToFile",
         "const w = new TPDFWatermarkSettings(); w.Text = 'COPY'; w.SaveToFile('DIR/made')", File,
         "<Text>COPY</Text>"},
        {"TPDFWatermarkSettings.LoadFromFile",
         "const w = new TPDFWatermarkSettings(), v = new TPDFWatermarkSettings(); w.Text = 'COPY';"
         "w.SaveToFile('DIR/made'); v.LoadFromFile('DIR/made'); ShowMessage(v.Text)",
         Said, "COPY"},
        {"TPDFDocument.AddNoteAnnotation", "Document.AddNoteAnnotation(9, 9, 0xFF).Contents = 'Look'", Has,
         "/Contents (Look)"},
        {"TPDFDocument.AddNoteAnnotation", "Document.AddNoteAnnotation(9, 9, 0xFF)", Has, "/Subtype /Text",
         "<x>9</x><y>9</y>"},
        {"TPDFDocument.AddStampAnnotation",
         "Document.AddStampAnnotation(9, 9, 'PAID', 'Done', 0xFF, 0xFFFFFF, 0xCCCCCC)", Has,
         "/Subtype /Stamp", "<Text>PAID</Text><Subject>Done</Subject>"},
        {"TPDFDocument.AddStampAnnotationDefined",
         "ShowMessage(String(Document.AddStampAnnotationDefined('Standard.Paid')))", Said, "null"},
        {"TPDFDocument.AddFileAttachAnnotation", "Document.AddFileAttachAnnotation(9, 9, 'DIR/note.txt')",
         Attached, "note.txt", "<Filename>DIR/note.txt</Filename>"},
        {"TPDFDocument.AddLinkAnnotation", "Document.AddLinkAnnotation(9, 9, 99, 99, 2)", Has,
         "/Subtype /Link", "<width>99</width><height>99</height><pageNum>2</pageNum>"},
        {"TPDFDocument.AddWebAnnotation", "Document.AddWebAnnotation(9, 9, 99, 9, 'https://localhost/')", Has,
         "/URI (https://localhost/)"},
        {"TPDFDocument.AddFreeTextAnnotation", "Document.AddFreeTextAnnotation('Free', 9, 9, 99, 50)", Has,
         "/Subtype /FreeText", "<Text>Free</Text><width>99</width><height>50</height>"},
        {"TZQPDFBatesDictionary.Prepare",
         "const s = new TZQPDFBatesDictionary(); s.Prepare('DIR/s.xml'); ShowMessage(s.IsPrepared && "
         "s.SchemeFile)",
         Said, "DIR/s.xml"},
        {"TZQPDFBatesDictionary.SaveCurrSchemeToName",
         "const s = new TZQPDFBatesDictionary(); s.Prepare('DIR/made'); s.CurrScheme = {FooterRight: 'Case "
         "7'};"
         "s.SaveCurrSchemeToName('Case')",
         File, "Case 7"},
        {"TZQPDFBatesDictionary.GetSchemeByName",
         "const s = new TZQPDFBatesDictionary(); s.Prepare('DIR/made'); s.CurrScheme = {FooterRight: 'Case "
         "7'};"
         "s.SaveCurrSchemeToName('Case'); const t = new TZQPDFBatesDictionary(); t.Prepare('DIR/made');"
         "t.GetSchemeByName('Case'); ShowMessage(t.CurrScheme.FooterRight)",
         Said, "Case 7"},
        {"TZQPDFBatesDictionary.DeleteScheme",
         "const s = new TZQPDFBatesDictionary(); s.Prepare('DIR/made'); s.SaveCurrSchemeToName('A');"
         "s.SaveCurrSchemeToName('B'); s.DeleteScheme('A'); ShowMessage(s.Schemes.join())",
         Said, "B"},
        {"TZQPDFBatesDictionary.InitCurrScheme",
         "const s = new TZQPDFBatesDictionary(); s.CurrScheme = {FooterRight: 'x', FontSize: 9};"
         "s.InitCurrScheme(); ShowMessage(s.CurrScheme.FooterRight + s.CurrScheme.FontSize)",
         Said, "12"},
        {"TZQPDFBatesDictionary.FindSchemes",
         "const s = new TZQPDFBatesDictionary(); s.Prepare('DIR/made'); s.SaveCurrSchemeToName('A');"
         "ShowMessage(s.FindSchemes().join())",
         Said, "A"},
        {"TZQPDFBatesDictionary.FillBatesStrl",
         "const s = new TZQPDFBatesDictionary(); s.CurrScheme = {HeaderLeft: '<BN:0:3:7:0>'};"
         "s.FillBatesStrl(); ShowMessage(s.Numbers.join())",
         Said, "<BN:0:3:7:0>=7"},
        {"TZQPDFBatesDictionary.ContinueNumbers",
         "const s = new TZQPDFBatesDictionary(); s.CurrScheme = {HeaderLeft: '<BN:0,3,7,0> <BN:0:3:7:0>', "
         "BatesNumbers: '\"<BN:0,3,7,0>=9\",<BN:0:3:7:0>=8'};"
         "s.ContinueNumbers(); ShowMessage(s.Numbers.join(' '))",
         Said, "<BN:0,3,7,0>=9 <BN:0:3:7:0>=8"},
        {"TZQPDFBatesDictionary.SetStartToCurNum",
         "const s = new TZQPDFBatesDictionary(); s.Numbers = ['<BN:0:3:7:0>=9'];"
         "s.SetStartToCurNum(); ShowMessage(s.Numbers.join())",
         Said, "<BN:0:3:7:0>=7"},
        {"TZQPDFBatesDictionary.ParseTextTest",
         "const s = new TZQPDFBatesDictionary(); s.Numbers = ['<BN:0:3:7:0>=9'];"
         "ShowMessage(s.ParseTextTest('<BN:0:3:7:0> of [numpages]'))",
         Said, "007 of NNN"},
        {"TZQPDFBatesDictionary.ApplySchemeToDocument",
         "const s = new TZQPDFBatesDictionary(); s.CurrScheme = {HeaderLeft: '<BN:0:3:7:0>'};"
         "s.FillBatesStrl(); s.ApplySchemeToDocument(Document, '2-3')",
         Text, "Page 1 007 Page 2 008 Page 3 Page 4"},
        {"TPDFDocPermissions.Load",
         "const a = new TPDFDocPermissions(), b = new TPDFDocPermissions();"
         "a.Modify = a.Assemble = false; b.Load(a); ShowMessage('' + [b.Modify, b.Assemble, b.Print])",
         Said, "false,false,true"},
    };
}

QList<TMethodCase> FunctionCases() {
    using enum TJudge;
    return {
        {"TJSGlobalFunctions.Include", "try { Include('DIR/s.js') } catch (e) { ShowMessage(e.message) }",
         Said, "Include has no script engine; use IncludeResource."},
        {"TJSGlobalFunctions.IncludeResource", "IncludeResource('included.js'); ShowMessage(included)", Said,
         ":Include.Resource.included.js:|grün"},
        {"TJSGlobalFunctions.IncludeResource",
         "IncludeResource(5); IncludeResource(''); IncludeResource(); ShowMessage('on')", Said, "on"},
        {"TJSGlobalFunctions.ShellExecute",
         "ShellExecute(0, '', 'sh', '-c \"pwd > DIR/made\"', '/usr/share', 0)", File, "/usr/share\n"},
        {"TJSGlobalFunctions.ShellExecute", "ShowMessage(ShellExecute(0, 'open', 'DIR/note.txt', '', '', 1))",
         File, "DIR/note.txt\n"},
        {"TJSGlobalFunctions.ShellExecute", "ShellExecute(0, null, 'https://localhost/', null, null, 1)",
         File, "https://localhost/\n"},
        {"TJSGlobalFunctions.ShellExecute",
         "ShowMessage('' + [ShellExecute(0, 'open', 'DIR/missing.txt', '', '', 1), ShellExecute(0, 'print', "
         "'DIR/note.txt', '', '', 1), ShellExecute(0, 'open', 'true', '', '', 1)])",
         Said, "2,31,42"},
        {"TJSGlobalFunctions.CreateProcess",
         "ShowMessage('' + [CreateProcess('sh -c \"exit 3\"', 0, true), CreateProcess('DIR/missing', 0, "
         "true), "
         "CreateProcess('no-such-program', 0, false), CreateProcess('', 0, true), "
         "CreateProcess('DIR/note.txt', "
         "0, true), CreateProcess('true', 0, false), CreateProcess('sh -c \"kill -PIPE $$\"', 0, true)])",
         Said, "3,2,2,2,13,0,141"},
        {"TJSGlobalFunctions.CreateProcess",
         "CreateProcess('tee \"DIR/made\" \"DIR/a;b $HOME\"', 0, true); CreateProcess('sh -c \"echo "
         "$0 > DIR/made\" \"\"\"q\"\"\"*', 0, true)",
         File, "\"q\"*\n"},
        {"TJSGlobalFunctions.TakeNumbers", "try { TakeNumbers('A', 1) } catch (e) { ShowMessage(e.message) }",
         Said, "Numbers of a series are given by the agent's ledger alone, and no agent is at work"},
        {"TJSGlobalFunctions.ShowMessage",
         "ShowMessage('Grüße 😀'); ShowMessage(4.5); ShowMessage(new Error('e'))", Said,
         "Grüße 😀|4.5|Error: e"},
        {"TJSGlobalFunctions.FileExists",
         "ShowMessage('' + [FileExists('DIR/note.txt'), FileExists('DIR'), FileExists('DIR/none')])", Said,
         "true,false,false"},
        {"TJSGlobalFunctions.FindFiles",
         "ShowMessage('' + FindFiles('DIR/tree', '*.PDF', true)); ShowMessage('' + FindFiles('DIR/tree/', "
         "'?2.*', "
         "false))",
         Said, "DIR/tree/a2.pdf,DIR/tree/a10.pdf|DIR/tree/a2.pdf,DIR/tree/sub/b2.pdf"},
        {"TJSGlobalFunctions.ExtractFileName",
         "ShowMessage('' + [ExtractFileName('/a/b.c'), ExtractFileName('b'), ExtractFileName('/a/')])", Said,
         "b.c,b,"},
        {"TJSGlobalFunctions.ChangeFileExt",
         "ShowMessage('' + [ChangeFileExt('/a.b/c', '.x'), ChangeFileExt('/a.b/c.d.e', '.x'), "
         "ChangeFileExt('c.d', "
         "'')])",
         Said, "/a.b/c.x,/a.b/c.d.x,c"},
        {"TJSGlobalFunctions.ExeName", "ShowMessage(ExtractFileName(ExeName()) + FileExists(ExeName()))",
         Said, "test_scriptingtrue"},
        {"TJSGlobalFunctions.ExeFolder",
         "ShowMessage(ExeName() === IncludeTrailingBackslash(ExeFolder()) + 'test_scripting')", Said, "true"},
        {"TJSGlobalFunctions.IncludeTrailingBackslash",
         "ShowMessage('' + [IncludeTrailingBackslash('/a'), IncludeTrailingBackslash('/a//')])", Said,
         "/a/,/a/"},
        {"TJSGlobalFunctions.ExcludeTrailingBackslash",
         "ShowMessage('' + [ExcludeTrailingBackslash('/a/'), ExcludeTrailingBackslash('/a')])", Said,
         "/a,/a"},
        {"TJSGlobalFunctions.MessageBox", "ShowMessage(MessageBox('Sure?', 4 + 32))", Said, "Sure?|1"},
    };
}

QSet<string> NamesOf(const QMetaObject& type) {
    QSet<string> names;
    const string name = Reflection::ClassInfo(type, "ScriptName");
    for (const QMetaMethod& method : Reflection::Methods(type))
        names.insert((name.isEmpty() ? Reflection::ClassName(type) : name) + u'.' +
                     QString::fromLatin1(method.name()));
    return names;
}

QSet<string> NamesOf(const QList<TMethodCase>& cases) {
    QSet<string> names;
    for (const TMethodCase& row : cases)
        names.insert(QString::fromLatin1(row.Method));
    return names;
}

int Zombies() {
    int count = 0;
    for (const string& entry : QDir("/proc").entryList(QDir::Dirs)) {
        QFile stat("/proc/" + entry + "/stat");
        if (stat.open(QIODevice::ReadOnly))
            count += stat.readAll().contains(") Z " + QByteArray::number(::getpid()) + ' ') ? 1 : 0;
    }
    return count;
}

} // namespace

class ScriptMethods : public TScriptTest {
protected:
    ScriptMethods() {
        IgnoreDisruptiveSignals();
        FWorkspace.Write("note.txt", "note");
        FWorkspace.Write("dot.png",
                         QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElE"
                                                "QVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElFTkSuQmCC"));
        for (const char* name : {"a10.pdf", "a2.pdf", "b.txt", "sub/b2.pdf"})
            FWorkspace.Write(string("tree/") + name, {});
        MakePdf(FWorkspace.Path("locked.pdf"), 1, {.UserPassword = "user", .OwnerPassword = "owner"});
        // What a desktop would bring.
        FWorkspace.Write("bin/xdg-open",
                         "#!/bin/sh\necho \"$1\" > '" + Narrow(FWorkspace.Path("made")) + "'\n");
        QFile::setPermissions(FWorkspace.Path("bin/xdg-open"), QFile::ReadOwner | QFile::ExeOwner);
        qputenv("PATH", Narrow(FWorkspace.Path("bin")) + ':' + FPath);
    }
    ~ScriptMethods() override { qputenv("PATH", FPath); }

    /// Carries the row's action out, as its configuration file would have it.
    string OutcomeOfAction(const TMethodCase& row) {
        string xml =
            QStringLiteral("<ActionList><Actions><Action Class=\"TPDFAction%1\">%2</Action></Actions>"
                           "</ActionList>")
                .arg(QByteArray(row.Method).split('.')[1], row.Action);
        QBuffer file;
        file.setData(Narrow(xml.replace("DIR", FWorkspace.Path())));
        file.open(QIODevice::ReadOnly);
        TPDFActionList list;
        XMLDeserialize(list, file, {});
        EXPECT_EQ(list.Execute(*FDocument), 0U);
        return Outcome({row.Method, {}, row.Judge, {}});
    }
    string Outcome(const TMethodCase& row) {
        const bool saves = row.Judge != TJudge::Said && row.Judge != TJudge::File;
        const string said =
            Said("{" + row.Script + "}" +
                 (saves && !row.Script.contains("'DIR/out.pdf'") ? string("Document.SaveAs('DIR/out.pdf')")
                                                                 : string()));
        const string out = FWorkspace.Path("out.pdf");
        switch (row.Judge) {
        case TJudge::Said:
            return said;
        case TJudge::Text:
            return TextOf("out.pdf");
        case TJudge::Has:
            return RunProgram("qpdf", {"--qdf", "--object-streams=disable", out, "-"}).Out.simplified();
        case TJudge::Attached:
            return RunProgram("pdfdetach", {"-list", out}).Out;
        case TJudge::Metadata:
            return InfoOf("out.pdf", {"-meta"}).trimmed();
        case TJudge::File:
            for (int i = 0; i < 30'000 && FWorkspace.Read("made").isEmpty(); ++i)
                ::usleep(2000);
            return FWorkspace.Read("made");
        }
        return {};
    }

    const QByteArray FPath = qgetenv("PATH");
};

TEST_F(ScriptMethods, HaveTheirEffectAsTheActionsHave) {
    RegisterActionClasses();
    for (const TMethodCase& row : DocumentCases() + FunctionCases())
        for (const bool asAction : {false, true}) {
            if (asAction && row.Action == nullptr)
                continue;
            Open(4, {.Outlines = true});
            QFile::remove(FWorkspace.Path("made"));
            string expected = row.Expected;
            expected.replace("DIR", FWorkspace.Path());
            const string outcome = asAction ? OutcomeOfAction(row) : Outcome(row);
            const bool part = row.Judge != TJudge::Said && row.Judge != TJudge::Text;
            EXPECT_TRUE(part ? outcome.contains(expected) : outcome == expected)
                << row.Method << ": " << (asAction ? string(row.Action) : row.Script).toStdString()
                << "\ngave " << outcome.left(2000).toStdString();
        }
}

TEST_F(ScriptMethods, NoneIsWithoutACase) {
    QSet<string> document;
    for (const QMetaObject* type : ScriptClasses())
        document += NamesOf(*type);
    EXPECT_EQ(QStringList((document - NamesOf(DocumentCases())).values()), QStringList());
    const QSet<string> functions = NamesOf(TJSGlobalFunctions::staticMetaObject);
    EXPECT_EQ(functions.size(), 15);
    EXPECT_EQ(QStringList((functions - NamesOf(FunctionCases())).values()), QStringList());
}

TEST_F(ScriptMethods, RefusedPermissionsChangeNothing) {
    MakePdf(FWorkspace.Path("in.pdf"), 2,
            {.Outlines = true, .OwnerPassword = "owner", .Restrictions = {"--modify=none"}});
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(FWorkspace.Path("in.pdf"), {});
    ActionDocument().SetDocument(&document);
    EXPECT_EQ(
        Value("[Document.RotatePages('', 90), Document.DeletePages(1, 0), Document.InsertPages(1, 1, 9, 9, "
              "true), Document.CropPages('', 1, 1, 1, 1), Document.ExtractPages('1', '', true), "
              "Document.SetPageMode(1), Document.Decrypt(), Document.NewOutline(null, 'x', 99, 'ldFit'), "
              "Document.SetOutlineColor(Document.GetFirstOutline(), 0xFF)]"),
        "false,false,false,false,,false,false,,false");
    EXPECT_FALSE(document.GetModified());
}

TEST_F(ScriptMethods, EndedProgramsAreCollected) {
    EXPECT_TRUE(Run("for (let i = 0; i < 40; ++i) CreateProcess('true', 0, false)"));
    for (int i = 0; i < 1000 && (i == 0 || Zombies() > 0); ++i) { // some may yet have to end
        ::usleep(20'000);
        EXPECT_EQ(Value("CreateProcess('true', 0, true)"), "0");
    }
    EXPECT_EQ(Zombies(), 0);
}
