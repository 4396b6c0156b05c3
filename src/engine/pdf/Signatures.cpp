#include "engine/pdf/Signatures.h"

#include <unordered_set>

int CountSignatures(const QPDFObjectHandle& root) {
    struct TField {
        QPDFObjectHandle Dict;
        bool Signature; // what its parents say of its type
    };
    std::vector<TField> waiting;
    std::unordered_set<quint64> seen;
    const auto add = [&](QPDFObjectHandle fields, bool signature) {
        if (fields.isArray())
            for (const QPDFObjectHandle& field : fields.getArrayAsVector())
                waiting.push_back({field, signature});
    };
    add(Entry(Entry(root, "/AcroForm"), "/Fields"), false);
    int count = 0;
    while (!waiting.empty()) {
        TField field = waiting.back();
        waiting.pop_back();
        if (!field.Dict.isDictionary() || (field.Dict.isIndirect() && !seen.insert(KeyOf(field.Dict)).second))
            continue;
        if (field.Dict.hasKey("/FT"))
            field.Signature = IsName(field.Dict.getKey("/FT"), "/Sig");
        if (field.Signature && field.Dict.getKey("/V").isDictionary())
            ++count;
        add(field.Dict.getKey("/Kids"), field.Signature);
    }
    return count;
}
