#include "engine/file/CrossReferences.h"

#include "engine/pdf/Errors.h"
#include "engine/pdf/Qpdf.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>

namespace {

constexpr qint64 MostObjects = 8'388'607; // ISO 32000-1, annex C
constexpr qint64 FewObjects = 250'000;    // in a file of any size
constexpr qint64 BytesPerObject = 8;      // stored; small objects compress well together
constexpr size_t MaxSections = 1000;

class TSections {
public:
    explicit TSections(TFileInput& input) : FInput(input) {}

    /// The objects that all sections together name. Each revision of a file may name them all once more.
    qint64 Count() {
        std::set<qint64> seen;
        qint64 entries = 0;
        for (qint64 at = Start(); at > 0 && seen.size() < MaxSections && seen.insert(at).second;) {
            QPDFObjectHandle dict = DictOf(at);
            if (QPDFObjectHandle hybrid = Entry(dict, "/XRefStm"); hybrid.isInteger())
                entries += Declared(DictOf(hybrid.getIntValue()));
            entries += Declared(dict);
            QPDFObjectHandle previous = Entry(dict, "/Prev");
            at = previous.isInteger() ? previous.getIntValue() : 0;
        }
        return std::min(entries, FHighest);
    }

private:
    std::string Read(qint64 at, size_t most) {
        FInput.seek(std::max<qint64>(at, 0), SEEK_SET);
        std::string text(most, '\0');
        text.resize(FInput.read(text.data(), most));
        return text;
    }

    qint64 Start() {
        constexpr qint64 Tail = 1054; // where the library looks, too
        const std::string tail = Read(FInput.Info().st_size - Tail, size_t(Tail));
        const size_t word = tail.rfind("startxref");
        return word == std::string::npos ? 0 : std::atoll(tail.c_str() + word + std::strlen("startxref"));
    }

    /// The dictionary of a cross-reference stream, or the trailer behind a table. Null where there is
    /// neither.
    QPDFObjectHandle DictOf(qint64 at) {
        constexpr size_t Longest = 1 << 16;
        std::string text = Read(at, Longest);
        const bool table = text.substr(0, text.find_first_not_of(" \r\n\t") + 4).ends_with("xref");
        if (table)
            text = Read(BehindTable(at, text), Longest);
        const size_t begin = text.find("<<");
        const size_t end = text.rfind(">>", text.find(table ? "startxref" : "stream", begin));
        if (begin == std::string::npos || end == std::string::npos || end < begin)
            return QPDFObjectHandle::newNull();
        try {
            if (!FScratch) {
                FScratch = QPDF::create(); // references need a document, though nobody follows them
                FScratch->emptyPDF();
            }
            return QPDFObjectHandle::parse(FScratch.get(), text.substr(begin, end + 2 - begin));
        } catch (const std::exception&) {
            return QPDFObjectHandle::newNull();
        }
    }

    /// Subsections are a line of two numbers and so many lines of 20 bytes (ISO 32000-1, 7.5.4).
    qint64 BehindTable(qint64 at, std::string text) {
        constexpr int EntrySize = 20;
        constexpr size_t Line = 64;
        at += qint64(text.find("xref") + std::strlen("xref"));
        for (size_t i = 0; i < MaxSections; ++i) {
            text = Read(at, Line);
            char* rest = nullptr;
            std::strtoll(text.c_str(), &rest, 10);
            char* end = nullptr;
            const qint64 count = std::strtoll(rest, &end, 10);
            if (end == rest || count < 0 || count > FInput.Info().st_size / EntrySize)
                break;
            while (*end == ' ' || *end == '\r' || *end == '\n')
                ++end;
            at += (end - text.c_str()) + count * EntrySize;
        }
        return at;
    }

    /// The entries by /Index, pairs of a first number and a count, else by /Size (ISO 32000-1, 7.5.8.2).
    /// Numbers are capped, so that sums don't overflow. A table's entries take more bytes of the file than
    /// matters here.
    qint64 Declared(QPDFObjectHandle dict) {
        if (!IsName(Entry(dict, "/Type"), "/XRef"))
            return 0;
        const auto capped = [](QPDFObjectHandle number) {
            return number.isInteger() ? std::clamp<qint64>(number.getIntValue(), 0, MostObjects * 2) : 0;
        };
        QPDFObjectHandle index = dict.getKey("/Index");
        if (!index.isArray()) {
            const qint64 size = capped(dict.getKey("/Size"));
            FHighest = std::max(FHighest, size);
            return size;
        }
        qint64 entries = 0;
        for (int i = 0; i + 1 < index.getArrayNItems(); i += 2) {
            const qint64 count = capped(index.getArrayItem(i + 1));
            FHighest = std::max(FHighest, capped(index.getArrayItem(i)) + count);
            entries += count;
        }
        return entries;
    }

    TFileInput& FInput;
    std::shared_ptr<QPDF> FScratch;
    qint64 FHighest = 0; // number named, and one more
};

} // namespace

void RequireModestTable(TFileInput& input, const string& path) {
    const qint64 most = std::min(MostObjects, FewObjects + input.StoredBytes() / BytesPerObject);
    if (TSections(input).Count() > most)
        throw EPDFError(
            QStringLiteral("Cannot open \"%1\": its cross-reference table names more objects than a "
                           "file of this size can hold")
                .arg(path),
            TPDFErrorKind::Damaged);
}
