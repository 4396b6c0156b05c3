// docs/configuration.md names every action with its elements as the run-time tables have them.
//
// With MORVANE_WRITE_DOCS set, that part of the file is brought up to date; texts stay, and a new action or
// element gets empty ones, which this test refuses.
#include "actions/ActionRegistry.h"
#include "actions/Leaves.h"
#include "base/Convert.h"
#include "scripting/Declarations.h"
#include "testing/Workspace.h"

#include <QMap>
#include <QRegularExpression>

namespace {

constexpr char Begin[] =
    "<!-- From here on names, kinds and defaults are made from the run-time tables. -->\n";
constexpr char End[] = "<!-- To here. -->\n";

string KindName(QMetaType type) {
    if (type.flags().testFlag(QMetaType::IsEnumeration)) {
        QStringList values;
        const QMetaEnum names = EnumOf(type);
        for (int i = 0; i < names.keyCount(); ++i)
            values.append(u'`' + QString::fromLatin1(names.key(i)) + u'`');
        return values.join(", ");
    }
    static const QHash<string, string> names{
        {"Boolean", "yes or no"}, {"Integer", "whole number"}, {"Single", "number"},
        {"Double", "number"},     {"string", "text"},          {"TFontName", "font"},
        {"TFileName", "file"},    {"TColor", "colour"},        {"ARGB", "colour"}};
    return names.value(TypeName(type));
}

/// Writes the actions in the order of the registry, with the texts of what is there.
class TActionDocs {
public:
    explicit TActionDocs(const string& former) {
        static const QRegularExpression heading("^#### `(\\w+)`"),
            row("^\\| `([^`]+)` \\|.*\\| ([^|]*) \\|$");
        string name;
        for (const string& line : former.split(u'\n'))
            if (const auto found = heading.match(line); found.hasMatch())
                name = found.captured(1);
            else if (const auto cells = row.match(line); cells.hasMatch())
                FTexts[name + u'.' + cells.captured(1)] = cells.captured(2);
            else if (!line.startsWith(u'|') && !line.isEmpty())
                FTexts[name] += line + u'\n';
    }

    string Make() {
        string text;
        for (const TPDFActionManager::TRegisteredAction& row : RegisteredActions()) {
            const string name = Reflection::ClassName(*row.cl);
            text += "\n#### `" + name + "`: " + row.title + " (" + row.category + ")\n\n" + Text(name);
            const auto action = TPDFAction::CreateInstance(*row.cl);
            const QList<TLeaf> leaves = LeavesOf(*action).mid(2); // behind Name and Tag
            if (!leaves.isEmpty())
                text += "\n| Element | Kind | Default | Meaning |\n| --- | --- | --- | --- |\n";
            for (const TLeaf& leaf : leaves) {
                const string value = Lexical::Format(leaf.Value);
                text +=
                    QStringLiteral("| `%1` | %2 | %3 | %4 |\n")
                        .arg(leaf.Path, KindName(leaf.Value.metaType()),
                             value.isEmpty() ? "empty" : u'`' + value + u'`', Text(name + u'.' + leaf.Path));
            }
        }
        return text + u'\n';
    }

    QStringList FWithoutText;

private:
    string Text(const string& key) {
        if (FTexts.value(key).trimmed().isEmpty())
            FWithoutText.append(key);
        return FTexts.value(key);
    }
    QMap<string, string> FTexts;
};

} // namespace

TEST(ActionDocs, NameEveryActionAsTheTablesDo) {
    QFile file(MORVANE_DOCS "/configuration.md");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const string text = QString::fromUtf8(file.readAll());
    file.close();
    const qsizetype begin = text.indexOf(Begin) + qsizetype(sizeof Begin) - 1;
    const qsizetype end = text.indexOf(End);
    ASSERT_TRUE(text.contains(Begin) && end > begin);
    TActionDocs docs(text.mid(begin, end - begin));
    const string made = text.left(begin) + docs.Make() + text.mid(end);
    if (qEnvironmentVariableIsSet("MORVANE_WRITE_DOCS")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(Narrow(made));
    }
    EXPECT_EQ(made.split(u'\n'), text.split(u'\n'))
        << "run it again with MORVANE_WRITE_DOCS=1, then describe";
    EXPECT_EQ(docs.FWithoutText, QStringList());
}
