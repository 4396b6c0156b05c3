// The rule for free names, its regular-expression quirks included: numbered results of years lie in users'
// folders, and the rule must go on naming them alike.
#include "base/UniqueName.h"
#include "base/Paths.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

struct TNameCase {
    QStringList Present;
    string Asked;
    string Expected;
};

TEST(UniqueName, Table) {
    const QList<TNameCase> table{
        {{}, "A.Txt", "A.Txt"}, // a free name comes back as it is, whatever its case and extension
        {{"a.pdf"}, "a.pdf", "a (1).pdf"},
        {{"a.pdf", "a (1).pdf", "a (5).pdf"}, "a.pdf", "a (6).pdf"}, // gaps are not filled
        {{"a.pdf", "A (3).PDF"}, "a.pdf", "a (4).pdf"},
        {{"a.pdf", "a 1.pdf", "ab.pdf", "ab (9).pdf"}, "a.pdf", "a (1).pdf"},
        {{"a.pdf", "a (2)x.pdf"}, "a.pdf", "a (3).pdf"}, // the pattern is not anchored
        {{"a.pdf", "a (0).pdf"}, "a.pdf", "a (1).pdf"},
        {{"a.txt"}, "a.txt", "a (1).pdf"}, // the answer always ends in .pdf
        {{"a.pdf", "a (99999999999).pdf"}, "a.pdf", "a (1).pdf"},
        {{"a.pdf", "a (2147483647).pdf"}, "a.pdf", "a (2147483648).pdf"},
        {{"a.b.pdf", "axb (4).pdf"}, "a.b.pdf", "a.b (1).pdf"}, // outside the mask
        {{"a.b.pdf", "a.b (4).pdf"}, "a.b.pdf", "a.b (5).pdf"},
        // Brackets in the name form a group: no sibling matches, and the answer may be taken.
        {{"a (2).pdf", "a (2) (1).pdf"}, "a (2).pdf", "a (2) (1).pdf"},
        {{"f(x).pdf", "f(x) (7).pdf"}, "f(x).pdf", "f(x) (1).pdf"},
        {{"a+.pdf", "a+ (3).pdf"}, "a+.pdf", "a+ (1).pdf"},
        {{"a\\b.pdf", "a\\b (3).pdf"}, "a\\b.pdf", "a\\b (4).pdf"}, // the one escaped character
    };
    for (const TNameCase& row : table) {
        SCOPED_TRACE(row.Asked.toStdString() + " beside " + row.Present.join(u',').toStdString());
        const TWorkspace workspace;
        for (const string& name : row.Present)
            workspace.Write(name, "x");
        EXPECT_EQ(UniqueFileName(workspace.Path(row.Asked)), workspace.Path(row.Expected));
    }
}

TEST(UniqueName, PatternThatDoesNotCompileIsRaisedWithItsReason) {
    const TWorkspace workspace;
    workspace.Write("a(b.pdf", "x");
    EXPECT_EQ(UniqueFileName(workspace.Path("c[d.pdf")), workspace.Path("c[d.pdf"))
        << "free: nothing to compile";
    EXPECT_TRUE(RaisedBy([&] {
                    (void)UniqueFileName(workspace.Path("a(b.pdf"));
                }).contains("missing closing parenthesis"));
}

TEST(UniqueName, WhateverHasTheNameTakesIt) {
    const TWorkspace workspace;
    QDir().mkpath(workspace.Path("folder.pdf"));
    QFile::link("/nowhere/at/all", workspace.Path("link.pdf"));
    EXPECT_EQ(UniqueFileName(workspace.Path("folder.pdf")), workspace.Path("folder (1).pdf"));
    EXPECT_EQ(UniqueFileName(workspace.Path("link.pdf")), workspace.Path("link (1).pdf"));
}

TEST(UniqueName, NamesThatGrowTooLongLoseWholeCharacters) {
    const TWorkspace workspace;
    const string pair = QStringLiteral("😀");                             // four bytes, two code units
    const string name = string(239, u'n') + pair + pair + pair + ".pdf"; // 255 bytes
    const string folder = workspace.Path();
    for (const string& expected : {name, string(238, u'n') + " (1).pdf", string(238, u'n') + " (2).pdf"}) {
        const string answer = UniqueFileName(folder + name);
        EXPECT_EQ(answer, folder + expected);
        workspace.Write(answer.mid(folder.size()), "x");
    }
    // A name with brackets, for which the rule gives the same answers again and again.
    string answer = folder + "(b).pdf";
    for (int i = 0; i < 80; ++i) {
        workspace.Write(answer.mid(folder.size()), "x");
        while (NameTaken(answer))
            answer = UniqueFileName(answer);
    }
    EXPECT_EQ(workspace.Names().size(), 3 + 80);
}
