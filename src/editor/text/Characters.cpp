#include "editor/text/Characters.h"

#include <QTextBoundaryFinder>

#include <algorithm>

string WithoutHalfPairs(string text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate())
            continue;
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

int WholeColumn(QStringView text, int column) {
    const bool inside = column > 0 && column < text.size() && text[column].isLowSurrogate() &&
                        text[column - 1].isHighSurrogate();
    return inside ? column - 1 : column;
}

bool IsCaretStop(QStringView line, int column) {
    constexpr char16_t FirstCombining = 0x300;
    if (column <= 0 || column >= line.size() || line[column].unicode() < FirstCombining)
        return true;
    // A piece of the line is enough: characters with more marks than that are torn.
    constexpr int Reach = 64;
    const int from = WholeColumn(line, std::max(0, column - Reach));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line.mid(from, qsizetype(2) * Reach));
    finder.setPosition(column - from);
    return finder.isAtBoundary();
}

int CharacterEnd(QStringView line, int column) {
    if (column >= line.size())
        return int(line.size());
    ++column;
    while (!IsCaretStop(line, column))
        ++column;
    return column;
}
