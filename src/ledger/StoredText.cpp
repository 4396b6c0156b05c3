#include "ledger/StoredText.h"

#include <QStringDecoder>

#include <algorithm>

namespace {

constexpr QChar Escape(0x241B);
constexpr char EscapeBytes[] = "\xE2\x90\x9B";
constexpr char MarkBytes[] = "\xEF\xBB\xBF";

/// Without the flag a byte order mark at the start would be dropped, which names may begin with.
QStringDecoder Decoder() {
    return QStringDecoder(QStringDecoder::Utf8,
                          QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
}

/// The character of valid UTF-8 that begins at `at`; empty where none does.
QByteArray CharacterAt(const QByteArray& bytes, qsizetype at) {
    constexpr qsizetype Longest = 4;
    for (qsizetype length = 1; length <= std::min(Longest, bytes.size() - at); ++length) {
        QStringDecoder decoder = Decoder();
        const string character = decoder.decode(bytes.sliced(at, length));
        if (!decoder.hasError() && !character.isEmpty())
            return bytes.sliced(at, length);
    }
    return {};
}

string Escaped(const QByteArray& bytes) {
    string stored;
    for (qsizetype at = 0; at < bytes.size();) {
        const bool isLost =
            bytes[at] == '\0' || (at < qsizetype(sizeof MarkBytes - 1) && bytes.startsWith(MarkBytes));
        const QByteArray character = isLost ? QByteArray() : CharacterAt(bytes, at);
        if (character.isEmpty())
            stored += Escape + QString::fromLatin1(bytes.sliced(at, 1).toHex().toUpper());
        else if (character == EscapeBytes)
            stored += string(2, Escape);
        else
            stored += string(Decoder().decode(character));
        at += std::max(character.size(), qsizetype(1));
    }
    return stored;
}

} // namespace

string StoredText(const QByteArray& bytes) {
    QStringDecoder decoder = Decoder();
    const string text = decoder.decode(bytes);
    const bool isPlain = !decoder.hasError() && !bytes.contains('\0') && !bytes.contains(EscapeBytes) &&
                         !bytes.startsWith(MarkBytes);
    return isPlain ? text : Escaped(bytes);
}

string StoredText(const string& text) {
    const auto isPlain = [](QChar c) {
        return c != QChar::Null && c != Escape && c != QChar::ByteOrderMark && !c.isSurrogate();
    };
    return std::all_of(text.begin(), text.end(), isPlain) ? text : StoredText(text.toUtf8());
}

QByteArray BytesOfStored(const string& stored) {
    QByteArray bytes;
    qsizetype at = 0;
    for (qsizetype next = stored.indexOf(Escape); next >= 0; next = stored.indexOf(Escape, at)) {
        bytes += QStringView(stored).sliced(at, next - at).toUtf8();
        if (next + 1 < stored.size() && stored[next + 1] == Escape) {
            bytes += EscapeBytes;
            at = next + 2;
        } else {
            bytes += QByteArray::fromHex(stored.mid(next + 1, 2).toLatin1());
            at = std::min(next + 3, stored.size());
        }
    }
    return bytes + QStringView(stored).sliced(at).toUtf8();
}

string TextOfStored(const string& stored) {
    return stored.contains(Escape) ? string(Decoder().decode(BytesOfStored(stored))) : stored;
}
