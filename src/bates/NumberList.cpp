#include "bates/NumberList.h"

#include "base/Exceptions.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <limits>

namespace {

/// Each different macro of the texts that can be used.
QStringList ValidMacros(const QStringList& texts) {
    QStringList macros;
    QSet<string> seen;
    for (const string& text : texts)
        for (const string& macro : BatesNumbers::MacrosOf(text)) {
            if (macros.size() >= BatesLimits::Macros)
                return macros;
            if (seen.contains(macro))
                continue;
            seen.insert(macro);
            if (BatesNumbers::IsValid(macro))
                macros.append(macro);
        }
    return macros;
}

/// All of a list's numbers but that of its first line; a macro that stands there twice counts by its first.
QHash<string, Integer> NumbersBehindFirst(const QStringList& list) {
    QHash<string, Integer> numbers;
    QSet<string> seen;
    for (qsizetype i = 0; i < list.size(); ++i) {
        const string macro = NumberList::MacroOf(list[i]).toUpper();
        if (macro.isEmpty() || seen.contains(macro))
            continue;
        seen.insert(macro);
        if (i > 0)
            numbers.insert(macro, BatesNumbers::Parse(list[i]).CurNum);
    }
    return numbers;
}

void ReplaceWithin(string& text, const string& macro, const string& number) {
    const qsizetype growth = number.size() - macro.size();
    if (growth > 0) {
        const qsizetype room = BatesLimits::ExpandedText - text.size();
        if (text.count(macro, Qt::CaseInsensitive) > room / growth)
            return;
    }
    text.replace(macro, number, Qt::CaseInsensitive);
}

} // namespace

namespace NumberList {

string MacroOf(const string& line) {
    return line.left(std::max<qsizetype>(line.indexOf(u'='), 0));
}

string LineOf(const string& macro, Integer current) {
    return macro + u'=' + QString::number(current);
}

QStringList Build(const QStringList& texts, const QStringList& before) {
    const QHash<string, Integer> numbers = NumbersBehindFirst(before);
    QStringList list;
    for (const string& macro : ValidMacros(texts)) {
        const Integer start = BatesNumbers::Parse(LineOf(macro, 0)).Start;
        list.append(LineOf(macro, std::max(start, numbers.value(macro, start))));
    }
    return list;
}

void Restart(QStringList& list) {
    for (string& line : list)
        if (const string macro = MacroOf(line); !macro.isEmpty())
            line = LineOf(macro, BatesNumbers::Parse(line).Start);
}

void Advance(QStringList& list) {
    for (string& line : list) {
        const string macro = MacroOf(line);
        if (macro.isEmpty())
            continue;
        const TBates bates = BatesNumbers::Parse(line);
        const Integer step = bates.Alternate ? 2 : 1;
        if (bates.CurNum > std::numeric_limits<Integer>::max() - step)
            throw Exception(QStringLiteral("The number %1 has come to its end at %2.")
                                .arg(macro, QString::number(bates.CurNum)));
        line = LineOf(macro, bates.CurNum + step);
    }
}

string Replace(string text, const QStringList& list, Shown shown) {
    string number; // one for all lines: format 4 appends
    for (const string& line : list) {
        const TBates bates = BatesNumbers::Parse(line);
        BatesNumbers::Format(bates, shown == Shown::Current ? bates.CurNum : bates.Start, number);
        if (const string macro = MacroOf(line); !macro.isEmpty())
            ReplaceWithin(text, macro, number);
    }
    return text;
}

} // namespace NumberList
