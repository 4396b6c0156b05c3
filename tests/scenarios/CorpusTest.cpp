// The run over real documents by many producers: each ends up where its class belongs.
#include "testing/Corpus.h"
#include "scenarios/PlayedAgent.h"

namespace {

/// One action of each kind that adds something; they leave no page as it was.
QByteArray AddingActions(const TWorkspace& workspace) {
    const auto action = [](const char* name, const QByteArray& members) {
        return "<Action Class=\"TPDFAction" + QByteArray(name) + "\">" + members + "</Action>";
    };
    const QByteArray place = "<x>40</x><y>60</y>";
    const QByteArray size = "<width>120</width><height>30</height>";
    const QByteArray image =
        "<Filename>" + workspace.Write("image.pgm", "P5 2 2 255\n\x10\x60\xA0\xF0").toUtf8() + "</Filename>";
    const QByteArray data = workspace.Write("data.csv", "1,2\n").toUtf8();
    return "<ActionManager><ManagerActions><ActionList><Name>Work</Name><Actions>" +
           action("AddText", place + "<Text>Added 題</Text>") + action("AddImage", place + image) +
           action("AddStampAnnotation", place + "<Text>Received [date]</Text><Subject>Mail</Subject>") +
           action("AddNoteAnnotation", place) +
           action("AddLinkAnnotation", place + size + "<pageNum>1</pageNum>") +
           action("AddFreeTextAnnotation", "<Text>A box of text</Text>" + place + size) +
           action("AddFileAttachAnnotation", place + "<Filename>" + data + "</Filename>") +
           action("AddFileAttachment", "<fileName>" + data + "</fileName>") +
           action("AddBatesNumbering", "<bates><HeaderLeft>[filename]</HeaderLeft>"
                                       "<HeaderRight>[page+4999:6]</HeaderRight>"
                                       "<FooterCenter>[page] of [numpages]</FooterCenter></bates>") +
           action("RotatePages", "<Angle>90</Angle>") +
           action("AddDocumentDescription", "<Description><Title>Stamped</Title></Description>") +
           "</Actions></ActionList></ManagerActions></ActionManager>";
}

/// What another program has to say of a file: nothing, if all is well.
QByteArray Complaints(const TWorkspace& workspace, const char* program, const string& path) {
    const TProgramResult told =
        program == QLatin1String("poppler")
            ? RunProgram("pdftoppm", {"-r", "20", "-l", "1", path, workspace.Path("seen")})
            : RunProgram("mutool", {"draw", "-q", "-r", "20", "-o", workspace.Path("seen.png"), path, "1"});
    return QByteArray(told.Errors).replace("warning: ICC support is not available\n", "") +
           (told.Exit == 0 ? "" : "exit " + QByteArray::number(told.Exit));
}

} // namespace

TEST(Corpus, EveryFileEndsWhereItsClassBelongs) {
    const QList<TCorpusFile> files = CorpusFiles();
    const TConfiguredWorkspace workspace;
    for (const TCorpusFile& file : files)
        QFile::copy(file.Path, workspace.Path("in/" + file.Name));
    PlayTicks(workspace, 1);
    const string log =
        QString::fromUtf8(workspace.Read("c/logs/" + TPlayedClock().Now().toString("yyyy.MM.dd") + ".txt"));

    for (const TCorpusFile& file : files) {
        SCOPED_TRACE(file.Path.toStdString() + ", " + file.Class.toStdString());
        if (file.Class == "needs-password") {
            EXPECT_TRUE(workspace.Has("in/" + file.Name));
        } else if (file.Class == "ok" ||
                   (file.Class == "damaged-recoverable" && !workspace.Has("in/Error/" + file.Name))) {
            EXPECT_TRUE(workspace.Has("in/process/" + file.Name));
            const string result = workspace.Path("in/output/" + file.Name);
            const int check = RunProgram("qpdf", {"--check", result}).Exit;
            EXPECT_TRUE(check == 0 || (check == 3 && file.QpdfExit == 3)) << "qpdf --check: " << check;
            EXPECT_EQ(RunProgram("qpdf", {"--show-npages", result}).Out.trimmed().toInt(), file.Pages);
        } else {
            EXPECT_TRUE(workspace.Has("in/Error/" + file.Name));
        }
    }
    EXPECT_EQ(log.count("password protected"),
              std::count_if(files.begin(), files.end(),
                            [](const TCorpusFile& file) { return file.Class == "needs-password"; }));
}

TEST(Corpus, StampedFilesAreReadByOtherPrograms) {
    const QList<TCorpusFile> files = CorpusFiles({"ok"});
    const TConfiguredWorkspace workspace;
    workspace.Write("c/actions.xml", AddingActions(workspace));
    for (const TCorpusFile& file : files)
        ASSERT_TRUE(QFile::copy(file.Path, workspace.Path("in/" + file.Name)));
    PlayTicks(workspace, 1);

    int stamped = 0;
    for (const TCorpusFile& file : files) {
        SCOPED_TRACE(file.Path.toStdString());
        ASSERT_TRUE(workspace.Has("in/process/" + file.Name));
        QFile source(file.Path);
        ASSERT_TRUE(source.open(QIODevice::ReadOnly));
        EXPECT_TRUE(workspace.Read("in/process/" + file.Name) == source.readAll());
        const string result = workspace.Path("in/output/" + file.Name);
        const int check = RunProgram("qpdf", {"--check", result}).Exit;
        EXPECT_TRUE(check == 0 || (check == 3 && file.QpdfExit == 3)) << "qpdf --check: " << check;
        for (const char* program : {"poppler", "mupdf"}) {
            const QByteArray complaints = Complaints(workspace, program, result);
            EXPECT_TRUE(complaints.isEmpty() || !Complaints(workspace, program, file.Path).isEmpty())
                << program << ": " << complaints.toStdString();
        }
        const QByteArray text = RunProgram("pdftotext", {"-l", "1", result, "-"}).Out;
        stamped += text.contains("005000") && text.contains("Added") ? 1 : 0;
    }
    // Some forbid changes, and some have fonts or pages that this way of reading doesn't see through.
    EXPECT_GE(stamped, files.size() * 9 / 10);
}
