// The configurations that people are told to begin with, run on documents as they drop them.
#include "scenarios/PlayedAgent.h"
#include "testing/SamplePdf.h"

#include <QRegularExpression>

namespace {

string Text(const char* name) {
    QFile file(QStringLiteral(MORVANE_SOURCE "/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
}

/// The example of a document whose root is this element.
string Example(const string& text, const char* root) {
    const QRegularExpression block(
        QStringLiteral("```xml\n((?:<[?][^\n]*\n)?<%1.*?)```").arg(QLatin1String(root)),
        QRegularExpression::DotMatchesEverythingOption);
    return block.match(text).captured(1);
}

/// Its action lists served over a folder, as the documents of one, two and ten pages come out.
void ExpectStamped(const TConfiguredWorkspace& workspace, const string& folder) {
    const auto name = [](int pages) { return QString::number(pages) + ".pdf"; };
    for (const int pages : {1, 2, 10})
        MakePdf(folder + u'/' + name(pages), pages);
    PlayTicks(workspace, 1);
    for (const int pages : {1, 2, 10}) {
        const string result = folder + "/output/" + name(pages);
        EXPECT_EQ(RunProgram("qpdf", {"--check", result}).Exit, 0) << pages;
        EXPECT_EQ(RunProgram("qpdf", {"--show-npages", result}).Out.trimmed().toInt(), pages);
        const QByteArray stamps = RunProgram("qpdf", {"--json=2", "--json-key=qpdf", result}).Out;
        EXPECT_EQ(stamps.count("\"/Subtype\": \"/Stamp\""), 1) << pages;
        const QByteArray first =
            RunProgram("mutool", {"show", result, "pages/1/Annots/1/Subtype"}).Out.trimmed();
        EXPECT_EQ(first, "/Stamp") << pages;
        EXPECT_TRUE(QFile::exists(folder + "/process/" + name(pages)));
    }
}

} // namespace

TEST(Examples, OfTheDocumentationStampWhatIsDropped) {
    for (const char* document : {"README.md", "docs/configuration.md"}) {
        SCOPED_TRACE(document);
        const TConfiguredWorkspace workspace;
        string folders = Example(Text(document), "WatchedFolder");
        folders.replace(QRegularExpression("<Name>/(srv/scans|home/you/Morvane)</Name>"),
                        "<Name>" + workspace.Path("in") + "</Name>");
        workspace.Write("c/watchedfolders.xml", Narrow(folders));
        workspace.Write("c/actions.xml", Narrow(Example(Text(document), "ActionManager")));
        EXPECT_EQ(RunProgram(MORVANECTL, {"lint", workspace.Path("c")}).Errors, "");
        ExpectStamped(workspace, workspace.Path("in"));
    }
}

TEST(Examples, OfInitStampsWhatIsDropped) {
    const TConfiguredWorkspace workspace;
    QDir(workspace.Path("c")).removeRecursively();
    EXPECT_EQ(RunProgram(MORVANECTL, {"init", workspace.Path("c")}).Exit, 0);
    QDir().mkpath(workspace.Path("c/logs"));
    ExpectStamped(workspace, workspace.Path("c/inbox"));
}

TEST(Examples, OfAnActionInTheScriptsDocumentationRuns) {
    const TConfiguredWorkspace workspace;
    workspace.Write("c/actions.xml",
                    Narrow("<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>" +
                           Example(Text("docs/scripting.md"), "Action") +
                           "</Actions></ActionList></ManagerActions></ActionManager>"));
    for (const int pages : {1, 2, 10})
        MakePdf(workspace.Path(QStringLiteral("in/%1.pdf").arg(pages)), pages);
    PlayTicks(workspace, 1);
    for (const int pages : {1, 2, 10}) {
        const QByteArray info =
            RunProgram("pdfinfo", {"-l", "2", workspace.Path(QStringLiteral("in/output/%1.pdf").arg(pages))})
                .Out.simplified();
        EXPECT_TRUE(info.contains("Page 1 rot: 90")) << pages;
        EXPECT_EQ(info.contains("Page 2 rot: 0"), pages > 1) << pages;
    }
}
