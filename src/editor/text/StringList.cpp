#include "editor/text/StringList.h"

#include "base/Exceptions.h"
#include "base/PartFile.h"

#include <QFile>
#include <QStringDecoder>

#include <cerrno>

std::vector<QStringView> SplitLines(QStringView text) {
    std::vector<QStringView> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c != u'\r' && c != u'\n')
            continue;
        lines.push_back(text.mid(start, i - start));
        if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < text.size())
        lines.push_back(text.mid(start));
    return lines;
}

void TStringList::CheckIndex(int index, int end) {
    if (index < 0 || index >= end)
        throw Exception(string("List index out of bounds (%1)").arg(index));
}

const string& TStringList::Get(int index) const {
    CheckIndex(index, Count());
    return FItems[size_t(index)].Text;
}

TLineObject* TStringList::GetObject(int index) const {
    CheckIndex(index, Count());
    return Slot(index);
}

void TStringList::PutObject(int index, TLineObject* object) {
    CheckIndex(index, Count());
    Changing();
    SetSlot(index, object);
    Changed();
}

int TStringList::RawAdd(const string& text, TLineObject* object) {
    Changing();
    FItems.push_back({text, object});
    Changed();
    return Count() - 1;
}

void TStringList::RawInsert(int index, const std::vector<string>& lines) {
    CheckIndex(index, Count() + 1);
    Changing();
    const auto at = FItems.insert(FItems.begin() + index, lines.size(), TItem());
    for (size_t i = 0; i < lines.size(); ++i)
        at[std::ptrdiff_t(i)].Text = lines[i];
    Changed();
}

void TStringList::RawDelete(int index, int count) {
    CheckIndex(index, Count());
    Changing();
    FItems.erase(FItems.begin() + index, FItems.begin() + index + count);
    Changed();
}

void TStringList::RawPut(int index, const string& text) {
    CheckIndex(index, Count());
    Changing();
    FItems[size_t(index)].Text = text;
    Changed();
}

void TStringList::RawClear() {
    if (FItems.empty())
        return;
    Changing();
    FItems.clear();
    Changed();
}

int TStringList::Add(const string& text) {
    return AddObject(text, nullptr);
}

int TStringList::AddObject(const string& text, TLineObject* object) {
    return RawAdd(text, object);
}

void TStringList::AddStrings(const TStringList& list) {
    const TStringsUpdate update(*this);
    for (int i = 0; i < list.Count(); ++i)
        AddObject(list.Get(i), list.GetObject(i));
}

void TStringList::Insert(int index, const string& text) {
    RawInsert(index, {text});
}

void TStringList::Delete(int index) {
    RawDelete(index);
}

void TStringList::Put(int index, const string& text) {
    RawPut(index, text);
}

void TStringList::Clear() {
    RawClear();
}

void TStringList::Assign(const TStringList& list) {
    if (&list == this)
        return;
    const TStringsUpdate update(*this);
    Clear();
    AddStrings(list);
}

void TStringList::LoadFromFile(const string& name) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        throw EFileError(string("cannot open \"%1\": %2").arg(name, file.errorString()),
                         file.error() == QFile::OpenError ? ENOENT : EIO);
    // Not LoadFromStream, which a descendant gives effects of its own.
    TStringList::LoadFromStream(file);
}

void TStringList::LoadFromStream(QIODevice& stream) {
    const QByteArray bytes = stream.readAll();
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    QStringDecoder decode(encoding);
    SetText(string(decode(bytes)));
}

void TStringList::SaveToFile(const string& name) {
    const QByteArray bytes = Text().toUtf8();
    TPartFile file(name);
    file.TakeModeOf(name);
    file.Write(bytes.constData(), size_t(bytes.size()));
    file.PublishReplacing();
}

void TStringList::SaveToStream(QIODevice& stream) {
    const QByteArray bytes = Text().toUtf8();
    if (stream.write(bytes) != bytes.size())
        throw EFileError(string("cannot write the text: %1").arg(stream.errorString()), EIO);
}

string TStringList::Text() const {
    qsizetype size = 0;
    for (const TItem& item : FItems)
        size += item.Text.size() + 1;
    string text;
    text.reserve(size);
    for (const TItem& item : FItems)
        text.append(item.Text).append(u'\n');
    return text;
}

void TStringList::SetText(QStringView text) {
    const TStringsUpdate update(*this);
    Clear();
    for (const QStringView line : SplitLines(text))
        Add(line.toString());
}

void TStringList::BeginUpdate() {
    if (FUpdateCount++ == 0)
        SetUpdateState(true);
}

void TStringList::EndUpdate() {
    if (--FUpdateCount == 0)
        SetUpdateState(false);
}

void TStringList::SetUpdateState(bool updating) {
    const TNotifyEvent& event = updating ? OnChanging : OnChange;
    if (event)
        event();
}

void TStringList::Changing() {
    if (FUpdateCount == 0 && OnChanging)
        OnChanging();
}

void TStringList::Changed() {
    ++FRevision;
    if (FUpdateCount == 0 && OnChange)
        OnChange();
}
