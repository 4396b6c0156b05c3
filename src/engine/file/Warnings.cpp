#include "engine/file/Warnings.h"

#include <algorithm>

namespace {

constexpr qsizetype Few = 20;

/// A warning may quote the file.
string Printable(string text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control)
            c = u'?';
    return text;
}

} // namespace

const char* CodeOf(TWarningKind kind) {
    switch (kind) {
    case TWarningKind::DamageRepaired:
        return "damage.repaired";
    case TWarningKind::DamagePagesLost:
        return "damage.pages-lost";
    case TWarningKind::DamageContentUnreadable:
        return "damage.content-unreadable";
    case TWarningKind::SignatureInvalidated:
        return "signature.invalidated";
    case TWarningKind::PermissionRefused:
        return "permission.refused";
    case TWarningKind::FieldsLost:
        return "import.fields-lost";
    case TWarningKind::MetadataUnreadable:
        return "metadata.unreadable";
    case TWarningKind::ContentNotShown:
        return "content.not-shown";
    case TWarningKind::NamesUnreadable:
        return "names.unreadable";
    }
    return "";
}

void TPDFWarnings::Add(TWarningKind kind, const string& text) {
    const auto same = [kind](const TPDFWarning& one) { return one.Kind == kind; };
    const auto known = std::count_if(FItems.begin(), FItems.end(), same);
    const TPDFWarning warning{kind,
                              known < Few ? Printable(text) : QStringLiteral("There is more of this kind.")};
    if (!FItems.contains(warning))
        FItems.append(warning);
}

void TPDFWarnings::Add(const TPDFWarnings& others) {
    for (const TPDFWarning& warning : others)
        Add(warning.Kind, warning.Text);
}

bool TPDFWarnings::Has(TWarningKind kind) const {
    return std::any_of(FItems.begin(), FItems.end(),
                       [kind](const TPDFWarning& one) { return one.Kind == kind; });
}
