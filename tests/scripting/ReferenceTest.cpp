// docs/scripting.md: the tutorial's examples run, and the reference says what the run-time tables say.
//
// With MORVANE_WRITE_DOCS set, the reference is brought up to date in the file; descriptions stay, and a new
// entry gets an empty one, which this test refuses.
#include "base/Convert.h"
#include "scripting/Declarations.h"
#include "scripting/GlobalFunctions.h"
#include "scripting/ScriptFixture.h"

#include <QMap>
#include <QRegularExpression>

#include <functional>

namespace {

constexpr char Mark[] =
    "<!-- What follows is made from the run-time tables, but for what stands behind the colons. "
    "-->\n";

string DocsText() {
    QFile file(MORVANE_DOCS "/scripting.md");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll());
}

/// Writes the reference in the order of the tables, with the descriptions of the text that is there.
class TReference {
public:
    explicit TReference(const string& former) {
        string heading;
        for (const string& line : former.split(u'\n')) {
            static const QRegularExpression entry("^- `(\\w+)[^`]*`: (.*)$");
            if (line.startsWith("### "))
                heading = line.mid(4);
            else if (const auto match = entry.match(line); match.hasMatch())
                FDescriptions[heading + u'.' + match.captured(1)] = match.captured(2);
        }
    }

    string Make() {
        QList<const QMetaObject*> classes = ScriptClasses();
        for (qsizetype i = 0; i < classes.size(); ++i) { // grows by what methods return
            Class(*classes[i]);
            for (const QMetaMethod& method : Reflection::Methods(*classes[i])) {
                const QMetaType result = method.returnMetaType();
                if (result.flags().testFlag(QMetaType::PointerToQObject) &&
                    !classes.contains(result.metaObject()))
                    classes.append(result.metaObject());
            }
        }
        Heading("Global functions");
        Methods(TJSGlobalFunctions::staticMetaObject);
        for (const QMetaType& record : FRecords) {
            Heading(TypeName(record));
            Properties(*record.metaObject());
        }
        Heading("Enumerations");
        for (const QMetaType& enumeration : FEnumerations)
            Enumeration(enumeration);
        return FText;
    }

    QStringList FWithoutDescription;

private:
    void Heading(const string& heading) {
        FHeading = heading;
        FText += "\n### " + heading + "\n\n";
    }
    void Entry(const string& name, const string& signature) {
        const string description = FDescriptions.value(FHeading + u'.' + name);
        if (description.isEmpty())
            FWithoutDescription.append(FHeading + u'.' + name);
        FText += "- `" + signature + "`: " + description + '\n';
    }
    void Note(QMetaType type) {
        // A class that the header of a method declares only forwards is unknown to the table.
        EXPECT_TRUE(type.isValid()) << FText.right(100).toStdString();
        const auto add = [&type](QList<QMetaType>& list) {
            if (!list.contains(type))
                list.append(type);
        };
        if (type.flags().testFlag(QMetaType::IsEnumeration))
            add(FEnumerations);
        else if (type.flags().testFlag(QMetaType::IsGadget) &&
                 !Reflection::Members(*type.metaObject()).isEmpty())
            add(FRecords);
    }
    void Class(const QMetaObject& type) {
        const string name = Reflection::OwnClassInfo(type, "ScriptName");
        Heading(name.isEmpty() ? Reflection::ClassName(type) : name);
        Methods(type);
        Properties(type);
    }
    void Methods(const QMetaObject& type) {
        for (const QMetaMethod& method : Reflection::Methods(type)) {
            const string signature = MethodDeclaration(method).remove(0, 9).chopped(1).simplified();
            Entry(QString::fromLatin1(method.name()), signature);
            Note(method.returnMetaType());
            for (int i = 0; i < method.parameterCount(); ++i)
                Note(method.parameterMetaType(i));
        }
    }
    void Properties(const QMetaObject& type) {
        for (const QMetaProperty& member : Reflection::Members(type))
            if (member.isScriptable()) {
                const string name = QString::fromLatin1(member.name());
                Entry(name, name + ": " + TypeName(member.metaType()));
                Note(member.metaType());
            }
    }
    void Enumeration(QMetaType type) {
        const QMetaEnum names = EnumOf(type);
        QStringList values;
        for (int i = 0; i < names.keyCount(); ++i)
            values.append(
                QStringLiteral("%1 (%2)").arg(QString::fromLatin1(names.key(i))).arg(names.value(i)));
        FText += "- `" + TypeName(type) + "`: " + values.join(", ") + '\n';
    }

    QMap<string, string> FDescriptions;
    string FHeading;
    string FText;
    QList<QMetaType> FRecords;
    QList<QMetaType> FEnumerations;
};

/// What another program tells of a file after the example under a heading has run on a document of N pages.
struct TExample {
    const char* Heading;
    const char* Program;
    QStringList Arguments;
    std::function<string(int)> Expected;
};

/// The text of a place, with a number that follows from the count of pages in the place of %1.
std::function<string(int)> Counted(const char* text, const std::function<int(int)>& count) {
    return [=](int pages) { return string(QLatin1String(text)).arg(count(pages)); };
}
std::function<string(int)> Always(const char* text) {
    return [=](int) { return QLatin1String(text); };
}

QList<TExample> Examples() {
    return {
        {"Turn pages",
         "pdfinfo",
         {"-f", "1", "-l", "2", "out.pdf"},
         [](int pages) { return string(pages == 1 ? "Page 1 rot: 0" : "Page 2 rot: 90"); }},
        {"Describe the document", "pdfinfo", {"out.pdf"}, Always("Title: Delivery note")},
        {"Write in the upper right corner",
         "pdftotext",
         {"-x", "400", "-y", "0", "-W", "195", "-H", "70", "out.pdf", "-"},
         Always("RECEIVED")},
        {"Put a cover in front and terms behind",
         "pdfinfo",
         {"out.pdf"},
         Counted("Pages: %1", [](int pages) { return 1 + pages + 3; })},
        {"Take pages out to files",
         "pdftotext",
         {"parts/last.pdf", "-"},
         Counted("Page %1", [](int pages) { return pages; })},
        {"Stamp the last page if it is large",
         "qpdf",
         {"--json=2", "--json-key=qpdf", "out.pdf"},
         Always("\"/Subj\": \"u:Scan\"")},
        {"Number files one after the other",
         "pdftotext",
         {"out.pdf", "-"},
         [](int pages) { return QStringLiteral("Exhibit %1").arg(2 * pages, 6, 10, QChar(u'0')); }},
        {"Append all files of a folder",
         "pdfinfo",
         {"out.pdf"},
         Counted("Pages: %1", [](int pages) { return pages + 3; })},
        {"Work with another document",
         "pdfinfo",
         {"-l", "2", "out.pdf"},
         Always("Page 1 rot: 180 Page 2 size: 595 x 842 pts (A4) Page 2 rot: 0")},
        {"Protect a document", "pdfinfo", {"out.pdf"}, Always("copy:no change:no")},
        {"Ask another program", "pdfdetach", {"-list", "out.pdf"}, Always("note.txt")},
    };
}

} // namespace

class ScriptDocs : public TScriptTest {
protected:
    void ExpectExample(const TExample& example, string script, int pages) {
        QFile::remove(FWorkspace.Path("schemes.xml"));
        script.replace("/srv", "DIR");
        for (int file = 0; file < 2; ++file) { // scripts share their scope: the second file must work too
            Open(pages);
            EXPECT_TRUE(Run(script)) << example.Heading << ", " << pages;
        }
        EXPECT_TRUE(Run("Document.SaveAs('DIR/out.pdf')"));
        QStringList arguments = example.Arguments;
        for (string& argument : arguments)
            if (argument.endsWith(".pdf"))
                argument = FWorkspace.Path(argument);
        const QByteArray told = RunProgram(example.Program, arguments).Out.simplified();
        EXPECT_TRUE(told.contains(Narrow(example.Expected(pages))))
            << example.Heading << ", " << pages << " pages: " << told.left(2000).toStdString();
    }
};

TEST_F(ScriptDocs, ReferenceIsThatOfTheTables) {
    const string text = DocsText();
    const qsizetype mark = text.indexOf(Mark);
    ASSERT_GE(mark, 0);
    const string head = text.left(mark) + Mark;
    TReference reference(text.mid(mark));
    const string made = head + reference.Make();
    if (qEnvironmentVariableIsSet("MORVANE_WRITE_DOCS")) {
        QFile file(MORVANE_DOCS "/scripting.md");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(Narrow(made));
    }
    EXPECT_EQ(made.split(u'\n'), text.split(u'\n'))
        << "run it again with MORVANE_WRITE_DOCS=1, then describe";
    EXPECT_EQ(reference.FWithoutDescription, QStringList());
}

TEST_F(ScriptDocs, ExamplesDoWhatTheySay) {
    const QList<TExample> examples = Examples();
    FWorkspace.Write("note.txt", "for purchase order 7");
    FWorkspace.Write("parts/x", {});
    FWorkspace.Write("inserts/x", {});
    for (const char* name : {"cover.pdf", "inserts/a.pdf", "inserts/b.pdf", "inserts/c.pdf"})
        MakePdf(FWorkspace.Path(name), 1);
    MakePdf(FWorkspace.Path("terms.pdf"), 3);

    static const QRegularExpression example("\n### ([^\n]*)\n(?:(?!\n### ).)*?```js\n(.*?)```",
                                            QRegularExpression::DotMatchesEverythingOption);
    qsizetype found = 0;
    for (auto matches = example.globalMatch(DocsText()); matches.hasNext(); ++found) {
        const auto match = matches.next();
        ASSERT_LT(found, examples.size());
        EXPECT_EQ(match.captured(1), examples[found].Heading);
        for (const int pages : {1, 2, 10})
            ExpectExample(examples[found], match.captured(2), pages);
    }
    EXPECT_EQ(found, examples.size());
}
