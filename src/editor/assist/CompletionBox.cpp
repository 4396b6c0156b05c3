#include "editor/assist/CompletionBox.h"

#include <algorithm>

namespace {

constexpr int ImageWidth = 20;
constexpr int Margin = 8;

/// What is shown in bold: up to the first round bracket, or else the first square one.
qsizetype BoldLength(QStringView text) {
    for (const QChar bracket : {u'(', u'['}) {
        if (const qsizetype at = text.indexOf(bracket); at >= 0)
            return at;
    }
    return text.size();
}

} // namespace

qsizetype KindLength(QStringView entry) {
    const qsizetype blank = entry.indexOf(u' ');
    return blank < 0 || entry.mid(blank + 1).startsWith(u'(') ? 0 : blank + 1;
}

int TAutoCompletionListBox::AutoAdaptWidth(const TTextMetrics& metrics) {
    const TMemoFont& font = FSettings.Font;
    FIdentifierWidth = 0;
    for (const TCompletionEntry& entry : Entries) {
        const QStringView kind = QStringView(entry.Text).left(KindLength(entry.Text));
        FIdentifierWidth = std::max(FIdentifierWidth, metrics.Width(font, /*bold=*/false, kind));
    }
    int widest = 0;
    for (const TCompletionEntry& entry : Entries) {
        const qsizetype kind = KindLength(entry.Text);
        const QStringView text = QStringView(entry.Text).mid(kind);
        const qsizetype bold = BoldLength(text);
        const int width = (kind > 0 ? FIdentifierWidth : 0) +
                          metrics.Width(font, /*bold=*/true, text.left(bold)) +
                          metrics.Width(font, /*bold=*/false, text.mid(bold));
        widest = std::max(widest, width);
    }
    FItemHeight = std::max(16, metrics.Height(font, u"h_") + 1);
    return widest + (FSettings.ShowImages ? ImageWidth : 0) + metrics.ScrollBarWidth() + Margin;
}

int TAutoCompletionListBox::ImageOf(int index) const {
    if (!FSettings.ShowImages)
        return -1;
    switch (Entries.at(size_t(index)).Value) {
    case ckVar:
        return 0;
    case ckProp:
        return 1;
    case ckEvent:
        return 2;
    case ckFunc:
    case ckProc:
        return 3;
    case ckMethod:
        return 4;
    default:
        return -1;
    }
}

TColor TAutoCompletionListBox::ColorOf(int value) const {
    switch (value) {
    case ckVar:
        return FSettings.ColorVar;
    case ckProp:
        return FSettings.ColorProp;
    case ckEvent:
        return FSettings.ColorEvent;
    case ckMethod:
        return FSettings.ColorMethod;
    case ckFunc:
        return FSettings.ColorFunc;
    case ckProc:
        return FSettings.ColorProc;
    default:
        return FSettings.ColorIdentifier;
    }
}

std::vector<TEntryPiece> TAutoCompletionListBox::PiecesOf(int index, bool selected,
                                                          const TTextMetrics& metrics) const {
    const TCompletionEntry& entry = Entries.at(size_t(index));
    const qsizetype kind = KindLength(entry.Text);
    const string text = entry.Text.mid(kind);
    const qsizetype bold = BoldLength(text);
    std::vector<TEntryPiece> pieces;
    int left = ImageOf(index) >= 0 ? ImageWidth : 0;
    if (kind > 0) {
        pieces.push_back({entry.Text.left(kind), left, false, !selected, ColorOf(entry.Value)});
        left += FIdentifierWidth;
    }
    pieces.push_back({text.left(bold), left, true, false, {}});
    if (bold < text.size()) {
        left += metrics.Width(FSettings.Font, /*bold=*/true, text.left(bold));
        pieces.push_back({text.mid(bold), left, false, false, {}});
    }
    return pieces;
}

void TAutoCompletionListBox::Select(int index) {
    ItemIndex = std::clamp(index, -1, int(Entries.size()) - 1);
}
