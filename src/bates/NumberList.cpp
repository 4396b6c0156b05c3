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

/// A list's numbers by their macros; a macro that stands there twice counts by its first line.
QHash<string, Integer> NumbersOf(const QStringList& list) {
    QHash<string, Integer> numbers;
    for (const string& line : list)
        if (const string macro = NumberList::MacroOf(line).toUpper();
            !macro.isEmpty() && !numbers.contains(macro))
            numbers.insert(macro, BatesNumbers::Parse(line).CurNum);
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

QStringList Build(const QStringList& texts, const QStringList& before, TFirst first) {
    QHash<string, Integer> numbers = NumbersOf(before);
    if (first == TFirst::BeginsAnew)
        numbers.remove(MacroOf(before.value(0)).toUpper());
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

void Advance(QStringList& list, int pages) {
    for (string& line : list) {
        const string macro = MacroOf(line);
        if (macro.isEmpty())
            continue;
        const TBates bates = BatesNumbers::Parse(line);
        const Int64 next = bates.CurNum + Int64(pages) * (bates.Alternate ? 2 : 1);
        if (next > std::numeric_limits<Integer>::max())
            throw Exception(QStringLiteral("The number %1 comes to its end: %2 pages go beyond %3.")
                                .arg(macro)
                                .arg(pages)
                                .arg(bates.CurNum));
        line = LineOf(macro, Integer(next));
    }
}

void TakeStored(QStringList& list, const QStringList& known, const QStringList& stored) {
    const QHash<string, Integer> knownNumbers = NumbersOf(known);
    const QHash<string, Integer> storedNumbers = NumbersOf(stored);
    for (string& line : list) {
        const string macro = MacroOf(line);
        const auto now = storedNumbers.constFind(macro.toUpper());
        if (now == storedNumbers.cend())
            continue;
        const TBates bates = BatesNumbers::Parse(line);
        const Integer read = std::max(bates.Start, knownNumbers.value(macro.toUpper(), bates.Start));
        if (bates.CurNum == read)
            line = LineOf(macro, std::max(bates.Start, *now));
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
