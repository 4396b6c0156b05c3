#include "apps/ctl/lint/LintActions.h"

#include "actions/Binding.h"
#include "actions/JavaScriptAction.h"
#include "actions/UnknownAction.h"
#include "actions/WatermarkActions.h"
#include "base/Paths.h"
#include "base/TypeKind.h"
#include "engine/pages/PageRange.h"
#include "scripting/ScriptDocument.h"
#include "scripting/host/Engine.h"
#include "xml/Instance.h"

#include <cmath>
#include <limits>

namespace {

/// Numbers that an action can do something with.
struct TLimits {
    const char* Class; ///< without its prefix
    const char* Member;
    double Least, Most;
    const char* Else; ///< what comes of another number
};

constexpr double Any = std::numeric_limits<double>::infinity();
constexpr double MoreThanNothing = std::numeric_limits<float>::min();

constexpr TLimits Limits[] = {
    {"AddLinkAnnotation", "width", MoreThanNothing, Any, "nobody can click on the link"},
    {"AddLinkAnnotation", "height", MoreThanNothing, Any, "nobody can click on the link"},
    {"AddLinkAnnotation", "pageNum", 1, Any, "the action always fails the file"},
    {"AddFreeTextAnnotation", "width", 0, Any, "the box has no width"},
    {"AddFreeTextAnnotation", "height", 0, Any, "the box has no height"},
    {"AddText", "FontSize", MoreThanNothing, Any, "nothing is seen of the text"},
    {"AddBatesNumbering", "bates/FontSize", MoreThanNothing, Any, "nothing is seen of the texts"},
    {"AddBatesNumbering", "bates/FontStyle", 0, 3, "0 is normal, 1 bold, 2 italic, 3 both"},
    {"DeletePages", "Index", 1, Any, "pages count from 1"},
    {"DeletePages", "Count", 0, Any, "it is one less than the pages that go"},
    {"GotoPage", "PageNumber", 1, Any, "pages count from 1, so nothing happens"},
};

/// Texts without which an action does nothing; of several one is enough.
struct TNeededTexts {
    const char* Class; ///< without its prefix
    QStringList Members;
};

const QList<TNeededTexts>& NeededTexts() {
    static const QList<TNeededTexts> rows{
        {"AddText", {"Text"}},
        {"AddFreeTextAnnotation", {"Text"}},
        {"AddStampAnnotation", {"Text"}},
        {"DeletePagesEx", {"pageRange"}},
        {"ExtractPages", {"fileName"}},
        {"JavaScript", {"Javascript"}},
        {"AddBatesNumbering",
         {"bates/HeaderLeft", "bates/HeaderCenter", "bates/HeaderRight", "bates/FooterLeft",
          "bates/FooterCenter", "bates/FooterRight"}},
    };
    return rows;
}

/// One action and its members, those within members as "bates/FontSize".
class TLintedAction {
public:
    TLintedAction(TLintedFile& file, TPDFAction& action)
        : FFile(file), FElement(file.ElementOf(action)), FName(Reflection::ClassName(*action.metaObject())) {
        Collect(TInstance(action), {});
    }

    void Check() {
        CheckTexts();
        for (auto member = FMembers.cbegin(); member != FMembers.cend(); ++member)
            CheckMember(member.key(), member.value());
    }
    void Fault(const string& what) { FFile.Fault(FElement.Line, u'"' + FName + "\" " + what); }

private:
    void Collect(TInstance instance, const string& path) {
        for (const QMetaProperty& member : Reflection::Members(instance.Type())) {
            const string name = path + QLatin1String(member.name());
            QVariant value = instance.Get(member);
            if (KindOf(member) == MemberKind::Simple)
                FMembers[name] = value;
            else if (KindOf(member) == MemberKind::Record)
                Collect(TInstance(value), name + u'/');
            else if (QObject* held = KindOf(member) == MemberKind::Object ? instance.Held(member) : nullptr)
                Collect(TInstance(*held), name + u'/');
        }
    }

    [[nodiscard]] bool Is(const char* nameWithoutPrefix) const {
        return FName == QLatin1String("TPDFAction") + QLatin1String(nameWithoutPrefix);
    }
    void FaultAt(const string& member, const string& what) {
        FFile.Fault(LineOf(FElement, member.split(u'/')), what);
    }

    void CheckTexts() {
        for (const TNeededTexts& row : NeededTexts()) {
            if (!Is(row.Class))
                continue;
            bool any = false;
            for (const string& member : row.Members)
                any |= !FMembers[member].toString().trimmed().isEmpty();
            if (!any)
                Fault(QStringLiteral("does nothing without %1 %2")
                          .arg(row.Members.size() == 1 ? "the text" : "one of the texts",
                               row.Members.join(u", ")));
        }
    }

    void CheckMember(const string& name, const QVariant& value) {
        const TTypeKind kind = KindOf(value.metaType());
        if (name.endsWith(u"pageRange", Qt::CaseInsensitive))
            CheckRange(name, value.toString());
        else if (value.metaType() == QMetaType::fromType<TFileName>())
            CheckFile(name, value.value<TFileName>());
        else if (kind == TTypeKind::Float || kind == TTypeKind::Signed)
            CheckNumber(name, value.toDouble());
        if (Is("ExtractPages") && name == u"fileName")
            CheckTarget(name, value.toString());
    }

    void CheckRange(const string& name, const string& range) {
        try {
            [[maybe_unused]] const TZQPDFPagesRangeSelector pages(range, 1, 1);
        } catch (const Exception& e) {
            FaultAt(name, e.Message());
        }
    }

    void CheckFile(const string& name, const string& path) {
        if (path.isEmpty())
            FaultAt(name, QStringLiteral("\"%1\" always fails the file without %2").arg(FName, name));
        else if (!FileExists(path))
            FaultAt(name, QStringLiteral("the file \"%1\" does not exist").arg(path));
        else
            CheckPath(name, path);
    }
    void CheckTarget(const string& name, const string& path) {
        if (path.isEmpty())
            return;
        CheckPath(name, path);
        if (const string folder = ExtractFilePath(path); !folder.isEmpty() && !DirectoryExists(folder))
            FaultAt(name, QStringLiteral("the folder \"%1\" does not exist").arg(folder));
    }
    void CheckPath(const string& name, const string& path) {
        if (!path.startsWith(u'/'))
            FaultAt(name, QStringLiteral("\"%1\" is no whole path: where it leads depends on where the agent "
                                         "was started")
                              .arg(path));
    }

    void CheckNumber(const string& name, double number) {
        const string shown = QString::number(number);
        if (!std::isfinite(number))
            FaultAt(name, QStringLiteral("%1: \"%2\" is no number that can be used").arg(name, shown));
        else if (Is("RotatePages") && name == u"Angle" && std::fmod(number, 360) == 0)
            FaultAt(name, QStringLiteral("%1: %2 degrees turn nothing").arg(name, shown));
        else if (Is("RotatePages") && name == u"Angle" && std::fmod(number, 90) != 0)
            FaultAt(name, QStringLiteral("%1: %2 is no multiple of 90, so the action always fails the file")
                              .arg(name, shown));
        else
            CheckLimits(name, number);
    }

    void CheckLimits(const string& name, double number) {
        for (const TLimits& row : Limits)
            if (Is(row.Class) && name == QLatin1String(row.Member) &&
                (number < row.Least || number > row.Most))
                FaultAt(name, QStringLiteral("%1: %2 is out of range: %3")
                                  .arg(name, QString::number(number), QLatin1String(row.Else)));
    }

    TLintedFile& FFile;
    const TXmlElement& FElement;
    const string FName;
    QMap<string, QVariant> FMembers;
};

void LintScript(TLintedFile& file, const TPDFActionJavaScript& action, TJSEngine& engine) {
    const int line = LineOf(file.ElementOf(action), {QStringLiteral("Javascript")});
    if (!engine.Global().Compile(action.FJavascript, {})) {
        const TJSMessage& message = engine.LastMessage();
        file.Fault(line + std::max(message.Line, 1) - 1, QStringLiteral("the script fails: ") + message.Text);
    }
}

/// What comes of an action whatever the document; empty where that depends on its members.
string AlwaysOf(const TPDFAction& action) {
    if (qobject_cast<const TPDFActionAddWatermarkDefined*>(&action) != nullptr)
        return QStringLiteral("does nothing; a script can add a watermark");
    switch (BindingOf(*action.metaObject(), TJSPDFDocument::staticMetaObject)) {
    case TBinding::Calls:
        return {};
    case TBinding::Nothing:
        return QStringLiteral("does nothing; a script can do what it says");
    case TBinding::Raises:
        return QStringLiteral("always fails the file; a script can do what it says");
    }
    return {};
}

constexpr Cardinal ScriptMemory = 256 << 20; // for the largest script's syntax tree

class TListsLint {
public:
    explicit TListsLint(TLintedFile& file) : FFile(file) {}

    void Lint(TPDFAction& action) {
        if (qobject_cast<TPDFUnknownAction*>(&action) != nullptr)
            return; // the reading has told
        TLintedAction linted(FFile, action);
        auto* script = qobject_cast<TPDFActionJavaScript*>(&action);
        const string always = script == nullptr ? AlwaysOf(action) : string();
        if (always.isEmpty())
            linted.Check();
        else
            linted.Fault(always);
        if (script != nullptr)
            LintScript(FFile, *script, Engine());
    }

private:
    /// Made for the first script: its library takes a moment to load.
    TJSEngine& Engine() {
        if (!FEngine)
            FEngine = std::make_unique<TJSEngine>(ScriptMemory);
        return *FEngine;
    }

    TLintedFile& FFile;
    std::unique_ptr<TJSEngine> FEngine;
};

} // namespace

void LintLists(TLintedFile& file, TPDFActionManager& manager) {
    TListsLint lint(file);
    for (int i = 0; i < manager.Count(); ++i) {
        const TPDFActionList& list = manager[i];
        if (manager.IndexOf(list.FName) != i)
            file.Fault(LineOf(file.ElementOf(list), {QStringLiteral("Name")}),
                       QStringLiteral("a second list named \"%1\", which is never used").arg(list.FName));
        for (int k = 0; k < list.FActions->Count(); ++k)
            lint.Lint(*(*list.FActions)[k]);
    }
}
