#include "engine/CrossReferences.h"

#include "engine/Errors.h"
#include "engine/Qpdf.h"

#include <algorithm>
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

    /// The entries that all sections together declare.
    qint64 Count() {
        std::set<qint64> seen;
        qint64 entries = 0;
        for (qint64 at = Start(); at > 0 && seen.size() < MaxSections && seen.insert(at).second;) {
            QPDFObjectHandle dict = StreamDict(at);
            if (!IsName(Entry(dict, "/Type"), "/XRef"))
                break;
            entries += Declared(dict);
            QPDFObjectHandle previous = dict.getKey("/Prev");
            at = previous.isInteger() ? previous.getIntValue() : 0;
        }
        return entries;
    }

private:
    std::string Read(qint64 at, size_t most) {
        FInput.seek(at, SEEK_SET);
        std::string text(most, '\0');
        text.resize(FInput.read(text.data(), most));
        return text;
    }

    qint64 Start() {
        constexpr qint64 Tail = 1054; // where the library looks, too
        const std::string tail = Read(std::max<qint64>(0, FInput.Info().st_size - Tail), size_t(Tail));
        const size_t word = tail.rfind("startxref");
        return word == std::string::npos ? 0 : std::atoll(tail.c_str() + word + std::strlen("startxref"));
    }

    /// Null where there is no stream.
    QPDFObjectHandle StreamDict(qint64 at) {
        constexpr size_t Longest = 1 << 16;
        const std::string text = Read(at, Longest);
        const size_t begin = text.find("<<");
        const size_t keyword = text.find("stream", begin);
        const size_t end = text.rfind(">>", keyword);
        if (begin == std::string::npos || keyword == std::string::npos || end == std::string::npos ||
            end < begin)
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

    /// By /Index, pairs of a first number and a count, else by /Size (ISO 32000-1, 7.5.8.2); capped, so that
    /// sums don't overflow.
    static qint64 Declared(QPDFObjectHandle& dict) {
        const auto capped = [](QPDFObjectHandle number) {
            return number.isInteger() ? std::clamp<qint64>(number.getIntValue(), 0, MostObjects * 2) : 0;
        };
        QPDFObjectHandle index = dict.getKey("/Index");
        if (!index.isArray())
            return capped(dict.getKey("/Size"));
        qint64 entries = 0;
        for (int i = 1; i < index.getArrayNItems(); i += 2)
            entries += capped(index.getArrayItem(i));
        return entries;
    }

    TFileInput& FInput;
    std::shared_ptr<QPDF> FScratch;
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
