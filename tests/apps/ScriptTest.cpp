// morvane-script: the program itself where it needs no window, and its editing with a played editor.
#include "apps/script/ScriptCommands.h"
#include "apps/script/ScriptFile.h"
#include "base/Exceptions.h"
#include "base/FaultPoint.h"
#include "platform/MessageBox.h"
#include "scripting/ScriptEditorHost.h"
#include "testing/Raised.h"
#include "testing/Workspace.h"

#include <QRegularExpression>

#include <cerrno>
#include <sys/stat.h>

namespace {

/// The program, on a machine without a display.
TProgramResult Script(const QStringList& arguments) {
    return RunProgram("env",
                      QStringList{"-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", MORVANE_SCRIPT} + arguments);
}

class ScriptProgramTest : public testing::Test {
protected:
    const TWorkspace FFiles;
};

TEST_F(ScriptProgramTest, ChecksFilesWithoutADisplay) {
    const QString good = FFiles.Write("good.js", "Document.Save();\nmissing(); // compiled, not run\n");
    const QString bad = FFiles.Write("ü b.js", "var a = 1;\r\n\r\n  var = 2;\r\n");
    const QString wide = FFiles.Write("w.js", QByteArray("\xFF\xFE\n\0!\0", 6));
    const QString deep = FFiles.Write("d.js", QByteArray(500'000, '('));
    const QString gone = FFiles.Path("gone.js");
    const struct {
        QStringList Files;
        int Exit;
        QString Errors; ///< an expression
    } cases[] = {
        {{good}, 0, "^$"},
        {{bad}, 4, "^" + bad + ":3:7: SyntaxError: [^\n]+\n$"},
        {{wide, good, bad}, 4, "^" + wide + ":2:2: [^\n]+\n" + bad + ":3:7: [^\n]+\n$"},
        {{deep}, 4, "^" + deep + ":1:1: InternalError: too much recursion\n$"},
        {{gone, bad}, 1, "^morvane-script: Cannot open \"" + gone + "\": No such file [^\n]+\n" + bad},
        {{FFiles.Path()}, 1, "Is a directory\n$"},
        {{}, 2, "^morvane-script: A file is missing. Try \"morvane-script --help\".\n$"},
    };
    for (const auto& c : cases) {
        const TProgramResult result = Script(QStringList("--check") + c.Files);
        EXPECT_EQ(result.Exit, c.Exit);
        EXPECT_TRUE(QRegularExpression(c.Errors).match(QString::fromUtf8(result.Errors)).hasMatch())
            << result.Errors.toStdString();
    }
    const TProgramResult edited = Script({good});
    EXPECT_EQ(edited.Exit, 1);
    EXPECT_EQ(edited.Errors,
              "morvane-script: There is no desktop to open the editor on; --check needs none.\n");
    EXPECT_EQ(Script({good, good}).Exit, 2);
    EXPECT_EQ(Script({"--chek", good}).Exit, 2);
    EXPECT_EQ(Script({"--version"}).Out, "morvane-script " MORVANE_VERSION "\n");
}

TEST_F(ScriptProgramTest, HelpManualAndCompletionKnowTheSameOptions) {
    QFile manual(MORVANE_SOURCE "/docs/man/morvane-script.1");
    ASSERT_TRUE(manual.open(QIODevice::ReadOnly));
    const QString described = QString::fromUtf8(manual.readAll()).remove('\\');
    const QString help = QString::fromUtf8(Script({"--help"}).Out).section("Options:", 1);
    QStringList options;
    for (auto found = QRegularExpression(" (--?\\w+)(?=[ ,])").globalMatch(help); found.hasNext();) {
        options += found.next().captured(1);
        EXPECT_TRUE(described.contains(options.last())) << options.last().toStdString();
    }
    EXPECT_EQ(options.size(), 6);
    FFiles.Write("a.js", {});
    FFiles.Write("a.txt", {});
    const auto offered = [this](const QString& words) {
        const QString line = "cd '%1'; source '" MORVANE_SOURCE "/completions/bash/morvane-script'; "
                             "COMP_WORDS=(morvane-script %2); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                             "_morvane_script; echo ${COMPREPLY[*]}";
        const QStringList arguments{"-c", line.arg(FFiles.Path(), words)};
        return QString::fromUtf8(RunProgram("bash", arguments).Out).simplified();
    };
    EXPECT_EQ(offered("-"), options.join(' '));
    EXPECT_EQ(offered("''"), "a.js");
    EXPECT_EQ(offered("a.js ''"), "");
    EXPECT_EQ(offered("--check a.js a"), "a.js");
}

/// Types what it is told into the editor, one text each time that it opens; then cancels.
class EditScriptTest : public ScriptProgramTest, public TScriptEditorHost, public TMessageBoxHost {
protected:
    EditScriptTest() {
        SetScriptEditorHost(this);
        SetMessageBoxHost(this);
    }
    ~EditScriptTest() override {
        SetFaultHook(nullptr);
        SetMessageBoxHost(nullptr);
        SetScriptEditorHost(nullptr);
    }
    bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        EXPECT_TRUE(Engine && AutoCompletion);
        Shown.append(jsSource);
        if (OnOpen)
            OnOpen();
        if (Typed.isEmpty())
            return false;
        jsSource = Typed.takeFirst();
        return true;
    }
    int Show(const string& text, const string& /*caption*/, int flags) override {
        Boxes.append(text);
        return (flags & MB_TYPEMASK) == MB_YESNO ? Answer : IDOK;
    }
    [[nodiscard]] struct stat Info(const string& name) const {
        struct stat info {};
        EXPECT_EQ(::stat(FFiles.Path(name).toUtf8(), &info), 0);
        return info;
    }

    QStringList Shown, Typed, Boxes;
    std::function<void()> OnOpen;
    int Answer = IDNO;
    static inline bool Typing = false; ///< what the first opening gave is being saved
};

TEST_F(EditScriptTest, SavesInTheFormThatTheFileHad) {
    const auto utf16 = [](const char16_t* text) {
        return QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text),
                                                   qsizetype(2 * std::char_traits<char16_t>::length(text)));
    };
    const struct {
        QByteArray Before;
        string Shown;
        string Typed; ///< as editors give it, with a line feed at the end
        QByteArray After;
    } cases[] = {
        {"a;\n", "a;\n", "b;\n\xC3\xBC;\n", "b;\n\xC3\xBC;\n"},
        {"a;", "a;", "b;\nc;\n", "b;\nc;"},
        {"a;\r\nb;\r\n", "a;\r\nb;\r\n", "x;\ny;\n\n", "x;\r\ny;\r\n\r\n"},
        {"a;\r\nb;\nc;\n", "a;\r\nb;\nc;\n", "x;\r\ny;\n", "x;\r\ny;\n"}, // each line as it was
        {"\xEF\xBB\xBF"
         "a;\r\n",
         "a;\r\n", "b;\n",
         "\xEF\xBB\xBF"
         "b;\r\n"},
        {"\xEF\xBB\xBF", "", "b;\n",
         "\xEF\xBB\xBF"
         "b;\n"},
        {utf16(u"a;\r\n"), "a;\r\n", "b;\n", utf16(u"b;\r\n")},
        {"", "", "b;\n", "b;\n"},
    };
    for (const auto& c : cases) {
        const string path = FFiles.Write("a.js", c.Before);
        ASSERT_EQ(::chmod(path.toUtf8(), 0750), 0);
        ::unlink(FFiles.Path("link.js").toUtf8());
        ASSERT_EQ(::symlink("a.js", FFiles.Path("link.js").toUtf8()), 0);
        Typed = {c.Typed};
        EXPECT_EQ(EditScript(FFiles.Path("link.js")), ExitDone);
        EXPECT_EQ(Shown.last(), c.Shown);
        EXPECT_EQ(FFiles.Read("a.js"), c.After);
        EXPECT_EQ(Info("a.js").st_mode & 0777, 0750U);
        EXPECT_TRUE(QFileInfo(FFiles.Path("link.js")).isSymLink());
    }
    EXPECT_EQ(FFiles.Names(), (QStringList{"a.js", "link.js"}));
    EXPECT_EQ(Boxes, QStringList());
}

TEST_F(EditScriptTest, WritesNothingOnCancelOrWhereNothingChanged) {
    FFiles.Write("a.js", "a;\r\n\tb;");
    const auto before = Info("a.js");
    EXPECT_EQ(EditScript(FFiles.Path("a.js")), ExitDone);
    Typed = {"a;\n    b;\n"};
    EXPECT_EQ(EditScript(FFiles.Path("a.js")), ExitDone);
    EXPECT_EQ(Info("a.js").st_ino, before.st_ino);
    EXPECT_EQ(Info("a.js").st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(EditScript(FFiles.Path("new.js")), ExitDone);
    EXPECT_EQ(FFiles.Names(), QStringList{"a.js"});
    Typed = {""};
    EXPECT_EQ(EditScript(FFiles.Path("new.js")), ExitDone); // OK makes it
    EXPECT_TRUE(FFiles.Has("new.js"));
}

TEST_F(EditScriptTest, AsksBeforeItReplacesWhatChangedMeanwhile) {
    const string path = FFiles.Path("new.js");
    OnOpen = [&] { FFiles.Write("new.js", "other"); };
    Typed = {"mine\n"};
    EXPECT_EQ(EditScript(path), ExitFailed);
    EXPECT_EQ(Shown, (QStringList{"", "mine\n"})); // it comes back
    EXPECT_EQ(Boxes.size(), 1);
    EXPECT_EQ(FFiles.Read("new.js"), "other");
    FFiles.Write("new.js", "before\n");
    Typed = {"mine\n"};
    Answer = IDYES;
    EXPECT_EQ(EditScript(path), ExitDone);
    EXPECT_EQ(Boxes.size(), 2);
    EXPECT_EQ(FFiles.Read("new.js"), "mine\n");
    ASSERT_EQ(::chmod(path.toUtf8(), 0600), 0);
    OnOpen = [&] { QFile::remove(path); };
    Typed = {"mine again\n"};
    EXPECT_EQ(EditScript(path), ExitDone);
    EXPECT_EQ(Boxes.size(), 2); // nothing can be lost
    EXPECT_EQ(Info("new.js").st_mode & 0777, 0600U);
}

TEST_F(EditScriptTest, AFailedSaveBringsTheTextBack) {
    static const char* failing;
    for (const char* call : {"create part", "write", "fsync", "publish over"}) {
        FFiles.Write("a.js", "before");
        failing = call;
        Shown.clear();
        Boxes.clear();
        SetFaultHook([](const char* next) { return qstrcmp(next, failing) == 0 && Typing ? ENOSPC : 0; });
        OnOpen = [this] { Typing = Shown.size() == 1; };
        Typed = {"typed", "typed more"};
        EXPECT_EQ(EditScript(FFiles.Path("a.js")), ExitDone) << call;
        EXPECT_EQ(Shown, (QStringList{"before", "typed"})) << call;
        EXPECT_EQ(Boxes,
                  QStringList("Cannot write \"" + FFiles.Path("a.js") + "\": No space left on device"));
        EXPECT_EQ(FFiles.Read("a.js"), "typed more") << call;
        EXPECT_EQ(FFiles.Names(), QStringList{"a.js"}) << call;
    }
}

TEST_F(EditScriptTest, RefusesBeforeItOpensWhatCannotBeEdited) {
    FFiles.Write("latin.js", "// \xFC\n");
    FFiles.Write("zero.js", QByteArray("a\0b", 3));
    FFiles.Write("wide.js", QByteArray("\xFF\xFE"
                                       "a\0b",
                                       5));
    FFiles.Write("large.js", QByteArray(TScriptFile::Limit + 1, ' '));
    ASSERT_EQ(::mkfifo(FFiles.Path("pipe.js").toUtf8(), 0600), 0);
    ASSERT_EQ(::symlink("nowhere.js", FFiles.Path("dangling.js").toUtf8()), 0);
    const struct {
        const char* Name;
        const char* Says;
    } cases[] = {
        {"latin.js", "is no UTF-8 or UTF-16 text."},
        {"zero.js", "is no UTF-8 or UTF-16 text."},
        {"wide.js", "is no UTF-8 or UTF-16 text."},
        {"large.js", "is too large for a script."},
        {"pipe.js", "is no regular file."},
        {"dangling.js", "is a link to a file that does not exist."},
        {"missing/a.js", "No such file or directory"},
        {"a.js", "Read-only file system"},
    };
    for (const auto& c : cases) {
        SetFaultHook(c.Name[0] == 'a' ? [](const char*) { return EROFS; } : TFaultHook());
        const string raised = RaisedBy([&] { (void)EditScript(FFiles.Path(c.Name)); });
        EXPECT_TRUE(raised.contains(c.Says) && raised.contains(c.Name)) << raised.toStdString();
    }
    EXPECT_EQ(Shown, QStringList());
}

} // namespace
