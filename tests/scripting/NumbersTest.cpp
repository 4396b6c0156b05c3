// Values that no PDF can hold and no path consists of raise, and leave the document as it was.
#include "scripting/ScriptFixture.h"

namespace {

struct TRefused {
    const char* Script;
    const char* Told;
};

using Numbers = TScriptTest;

TEST_F(Numbers, ThatNoPageCanHoldRaise) {
    const TRefused cases[] = {
        {"Document.AddText('t', '', 12, 0, NaN, 36)", "X is NaN"},
        {"Document.AddText('t', '', Infinity, 0, 36, 36)", "FontSize is Infinity"},
        {"Document.AddImage('', 0, -1e30)", "Y is -1"},
        {"Document.AddNoteAnnotation(-Infinity, 0, 0)", "X is -Infinity"},
        {"Document.AddStampAnnotation(0, 1000001, 'n', 's', 0, 0, 0)", "Y is 1000001"},
        {"Document.AddFileAttachAnnotation(NaN, 0, 'DIR/in.pdf')", "X is NaN"},
        {"Document.AddLinkAnnotation(0, 0, NaN, 9, 1)", "Width is NaN"},
        {"Document.AddWebAnnotation(0, 0, 9, Infinity, 'x')", "Height is Infinity"},
        {"Document.AddFreeTextAnnotation('t', 0, NaN, 9, 9)", "Y is NaN"},
        {"Document.AddText('t', '', 12, 0, 36, 36).X = NaN", "X is NaN"},
        {"Document.CropPages('', -1e30, 0, 0, 0)", "Top is -1e+30"},
        {"Document.InsertPages(1, 1, 1e9, 100, true)", "Width is 1e+09"},
        {"Document.AddBatesNumbering({HeaderLeft: 'x', MarginLeft: NaN}, '')", "MarginLeft is NaN"},
        {"var w = new TPDFWatermarkSettings(); w.Text = 'w'; w.Scale = Infinity; Document.AddWatermark(w)",
         "Scale is Infinity"},
        {"Document.SaveAs('DIR/a\\0.pdf')", "holds a NUL character"},
        {"FileExists('DIR/in.pdf\\0')", "holds a NUL character"},
        {"Document.Encrypt('own\\0er', 'open', 3, new TPDFDocPermissions())",
         "The owner password holds a NUL character."},
        {"Document.IsPasswordOK('DIR/in.pdf', 'a\\0')", "The password holds a NUL character."},
    };
    for (const TRefused& c : cases) {
        SCOPED_TRACE(c.Script);
        Open(1);
        EXPECT_FALSE(Run(QString::fromLatin1(c.Script)));
        EXPECT_TRUE(Failure().contains(QLatin1String(c.Told))) << Failure().toStdString();
    }
}

/// A reader takes "#" for the beginning of an escape (ISO 32000-1, 7.3.5).
TEST_F(Numbers, CaptionsOfStampsMakeNamesThatAreRead) {
    for (const char* caption : {"Case # 9", "Case #41", "a\\0b (c)", "#"}) {
        SCOPED_TRACE(caption);
        Open(1);
        const string text = QString::fromLatin1(caption);
        ASSERT_TRUE(Run("Document.AddStampAnnotation(9, 9, '" + text +
                        "', 's', 0, 0xFFFFFF, 0xFFFFFF);"
                        "Document.SaveAs('DIR/out.pdf')"));
        const QByteArray json = RunProgram("qpdf", {"--json=2", FWorkspace.Path("out.pdf")}).Out;
        // JSON shows names as they are read: without escapes.
        EXPECT_TRUE(json.contains("\"/Name\": \"/" + QByteArray(caption).replace("\\0", "") + '"'));
        EXPECT_EQ(RunProgram("qpdf", {"--check", FWorkspace.Path("out.pdf")}).Exit, 0);
    }
}

} // namespace
