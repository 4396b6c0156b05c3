#pragma once
// What completion, correction and parameter hints are set to.
#include "base/Text.h"
#include "editor/style/MemoFont.h"

#include <QStringList>

#include <vector>

/// An entry is "Kind Text": an optional first word such as "function", a blank, and an identifier with its
/// parameters. The value selects image and colour.
struct TCompletionEntry {
    string Text;
    int Value = 0; ///< TCompletionKind
    bool operator==(const TCompletionEntry&) const = default;
};
using TCompletionList = std::vector<TCompletionEntry>;

enum TCompletionKind { ckIdentifier, ckVar, ckProp, ckEvent, ckMethod, ckFunc, ckProc };

struct TAutoCompletion {
    bool ShowImages = false;
    bool Active = true;
    int Height = 100; ///< pixels, as all sizes here
    int Width = 200;
    int Delay = 500;           ///< milliseconds between a start token and the opening
    TColor Color = 0xFF000005; ///< the desktop's window colour
    TMemoFont Font;
    TColor ColorVar = 0x00FF0000;
    TColor ColorProp = 0x00808000;
    TColor ColorIdentifier = 0x00808000;
    TColor ColorFunc = 0x00800000;
    TColor ColorEvent = 0x000000FF;
    TColor ColorProc = 0x00800000;
    TColor ColorMethod = 0x00800000;
    bool SizeDropDown = true; ///< the user may size the list
    bool AutoDisplay = true;
    bool AutoWidth = true;
    bool KeepLastSize = false; ///< the size on closing is that of the next opening; AutoWidth goes for good
    int MaxWidth = 0;          ///< 0: no limit
    string StartToken = "(.";  ///< characters that open the list
    bool FromFirstChar = true; ///< an entry must begin with the word, not only hold it
    /// The list never stands in the way of typing. It opens by itself behind a dot only, where that has a
    /// list of its own, and closes when nothing fits; Enter, Tab and blank choose only what was typed at or
    /// moved to; every other key goes to the text.
    bool Yielding = false;
};

struct TAutoCorrect {
    QStringList OldValue;
    QStringList NewValue;
    bool Active = true;

    /// The new value at the place of `word` among the old ones, else `word`.
    [[nodiscard]] string Corrected(const string& word) const {
        const qsizetype at = Active ? OldValue.indexOf(word) : -1;
        return at >= 0 && at < NewValue.size() ? NewValue[at] : word;
    }
};

/// How calls look, and the parameters of those that are known.
struct THintParameter {
    TColor TextColor = 0;
    TColor BkColor = 0xFF000018; ///< the desktop's colour of hints
    QChar HintCharStart = u'(';
    QChar HintCharEnd = u')';
    QChar HintCharDelimiter = u';';
    /// One entry per hint: "Name(first; second; third)".
    QStringList Parameters;
    QChar HintCharWriteDelimiter = u','; ///< between the arguments of a call
    QChar HintClassDelimiter = u'.';
};
