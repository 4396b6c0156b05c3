#pragma once
// Texts of the editor as tests write them: lines between line feeds, a bar where the caret stands, and an
// arrow up at the other end of the selection.
#include "editor/Memo.h"

#include <QStringList>

#include <string>

/// Replaces the text, and puts caret and selection where the marks stand; at the start where there are none.
inline void GiveMarked(TAdvMemo& memo, const QString& text) {
    const QString plain = QString(text).remove('|').remove('^');
    memo.SetText(plain + '\n');
    TSelectionRange range;
    const QStringList lines = text.split('\n');
    for (int y = 0; y < lines.size(); ++y) {
        if (const qsizetype x = QString(lines[y]).remove('^').indexOf('|'); x >= 0)
            range.EndX = int(x), range.EndY = y;
        if (const qsizetype x = QString(lines[y]).remove('|').indexOf('^'); x >= 0)
            range.StartX = int(x), range.StartY = y;
    }
    memo.Caret().MoveTo(range.EndX, range.EndY);
    memo.ClearSelection();
    if (text.contains('^'))
        memo.Selection().Take(range, memo.Settings.FSelectionMode == smBlock);
}

/// What GiveMarked takes. A bar within a pair of surrogates would show.
[[nodiscard]] inline std::string Marked(const TAdvMemo& memo) {
    const TSelectionRange range = memo.Selection().Range();
    QStringList lines;
    for (int y = 0; y < memo.Lines().Count(); ++y) {
        QString line = memo.Lines()[y];
        const qsizetype bar = y == memo.Caret().Y() ? memo.Caret().X() : -1;
        if (bar >= 0)
            line.insert(bar, '|');
        if (!memo.Selection().IsEmpty() && y == range.StartY)
            line.insert(range.StartX + (bar >= 0 && bar < range.StartX ? 1 : 0), '^');
        lines += line;
    }
    return lines.join('\n').toStdString();
}
