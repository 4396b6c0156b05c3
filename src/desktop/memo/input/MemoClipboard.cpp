#include "desktop/memo/input/MemoClipboard.h"

#include "editor/text/Characters.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>

string PlainText(string text) {
    text.replace("\r\n", "\n").replace(u'\r', u'\n');
    text.replace(QChar(QChar::ParagraphSeparator), u'\n').replace(QChar(QChar::LineSeparator), u'\n');
    text.removeIf([](QChar c) { return c.unicode() < 32 && c != u'\n' && c != u'\t'; });
    return WithoutHalfPairs(std::move(text));
}

string TQtMemoClipboard::Text() const {
    return PlainText(QGuiApplication::clipboard()->text());
}

void TQtMemoClipboard::SetText(const string& text) {
    QGuiApplication::clipboard()->setText(PlainText(text));
}

bool TQtMemoClipboard::HasPrimary() const {
    return QGuiApplication::clipboard()->supportsSelection();
}

string TQtMemoClipboard::PrimaryText() const {
    return PlainText(QGuiApplication::clipboard()->text(QClipboard::Selection));
}

void TQtMemoClipboard::SetPrimaryText(const string& text) {
    QGuiApplication::clipboard()->setText(PlainText(text), QClipboard::Selection);
}
