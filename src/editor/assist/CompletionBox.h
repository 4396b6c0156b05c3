#pragma once
// TAutoCompletionListBox: the entries that the completion list shows, how wide they are and how they look.
#include "editor/assist/AssistWindow.h"
#include "editor/style/CompletionSettings.h"

/// One piece of text of a drawn entry.
struct TEntryPiece {
    string Text;
    int Left = 0;
    bool Bold = false;
    bool Colored = false; ///< in Color; otherwise in the normal or selected text colour
    TColor Color;
    bool operator==(const TEntryPiece&) const = default;
};

class TAutoCompletionListBox {
public:
    explicit TAutoCompletionListBox(const TAutoCompletion& settings) : FSettings(settings) {}

    TCompletionList Entries;
    int ItemIndex = -1;

    [[nodiscard]] const TAutoCompletion& Settings() const { return FSettings; }
    /// The width that shows every entry; computes identifier width and item height on the way.
    int AutoAdaptWidth(const TTextMetrics& metrics);
    [[nodiscard]] int IdentifierWidth() const { return FIdentifierWidth; }
    [[nodiscard]] int ItemHeight() const { return FItemHeight; }

    /// Of the images for variable, property, event, procedure and method, from 0; -1 for none.
    [[nodiscard]] int ImageOf(int index) const;
    /// Where and how the entry's text is drawn. Images take the first 20 pixels.
    [[nodiscard]] std::vector<TEntryPiece> PiecesOf(int index, bool selected,
                                                    const TTextMetrics& metrics) const;

    void Select(int index);

private:
    [[nodiscard]] TColor ColorOf(int value) const;

    const TAutoCompletion& FSettings;
    int FIdentifierWidth = 0;
    int FItemHeight = 16;
};

/// Where an entry's text begins behind its first word and blank. An entry whose first word is followed by
/// its parameters has none before its identifier.
[[nodiscard]] qsizetype KindLength(QStringView entry);
