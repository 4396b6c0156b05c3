// A text with macros: its expansion has a limit.
#include "engine/macros/Macros.h"
#include "fuzz/Target.h"

int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
    static const QDateTime now(QDate(2024, 2, 29), QTime(13, 5, 7));
    const string text = TextOf(data, size);
    try {
        const string shown = PDFformatMacroString(nullptr, QStringLiteral("7"), QStringLiteral("12"), text,
                                                  QStringLiteral("a.pdf"), now);
        Require(shown.size() <= std::max(text.size(), MacroLimits::ExpandedText), "a text without end");
        if (!text.contains(u'['))
            Require(shown == text, "a text without macros was changed");
        static_cast<void>(formatVarString(nullptr, text));
    } catch (const Exception&) {
    }
    return 0;
}
