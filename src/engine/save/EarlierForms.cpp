#include "engine/save/EarlierForms.h"

#include "engine/save/PageContent.h"

#include <unordered_set>

std::vector<QPDFObjectHandle> FontsOfEarlierForms(const TDocumentCore& core) {
    constexpr size_t MostFonts = 24; // each is tried for each face, which takes a while
    std::vector<QPDFObjectHandle> fonts;
    std::unordered_set<quint64> seen; // forms and fonts
    const auto take = [&](QPDFObjectHandle form) {
        if (!form.isStream() || !seen.insert(KeyOf(form)).second)
            return;
        QPDFObjectHandle used = Entry(Entry(form.getDict(), "/Resources"), "/Font");
        if (!used.isDictionary())
            return;
        for (auto& [name, font] : used.getDictAsMap())
            if (fonts.size() < MostFonts && font.isIndirect() && seen.insert(KeyOf(font)).second)
                fonts.push_back(font);
    };
    for (const auto& item : core.Pages.Items()) {
        if (fonts.size() >= MostFonts)
            break;
        QPDFObjectHandle drawn = Entry(item->Object().Attribute("/Resources"), "/XObject");
        for (int i = 0; drawn.isDictionary(); ++i) {
            QPDFObjectHandle form = drawn.getKey(FormName(i));
            if (form.isNull())
                break;
            take(form);
        }
    }
    return fonts;
}
