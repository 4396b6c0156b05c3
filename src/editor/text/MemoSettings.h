#pragma once
// The switches that the user of the control sets.
#include "base/Text.h"

enum TWordWrapStyle { wwNone, wwClientWidth, wwRightMargin };
enum TSelectionMode { smText, smBlock };
enum TScrollBars { sbNone, sbHorizontal, sbVertical, sbBoth };
/// smStrict: where there is no bar, the caret stays in the view instead of scrolling it.
enum TScrollMode { smAuto, smStrict };
enum TEditCharCase { ecNormal, ecUpperCase, ecLowerCase };

struct TMemoSettings {
    int FTabSize = 4;
    bool FOverwrite = false;
    bool FReadOnly = false;
    bool FDelErase = true; ///< typing and deleting keys take a selection away first
    bool FSmartTabs = false;
    bool FEnhancedHomeKey = false;
    bool FAutoIndent = true;
    bool FAutoExpand = false; ///< the caret may stand past a line's end, which is then padded with blanks
    bool FTrimTrailingSpaces = false; ///< when the caret leaves a line
    bool FSelectSingleLine = false;
    bool FUndoLineByLine = false; ///< a line break ends the merging of typing into one undo step
    bool FShowActiveLine = true;

    // What people expect of an editor today; TurnOnComforts turns all of it on.
    bool FGuardFolds = false;      ///< Backspace and Delete open a fold before they touch what it hides
    bool FMoreKeys = false;        ///< Ctrl+Delete, Ctrl+Shift+Z
    bool FIndentSelection = false; ///< Tab indents also what is selected in one line
    bool FIndentBlocks = false;    ///< a line behind an opening brace is indented, a closing one goes back
    bool FCloseBrackets = false;   ///< brackets and quotes come in pairs; with an exact history
    bool FSmartHome = false;       ///< Home goes to the text of a line first
    bool FRightOverBlanks = false; ///< Right goes over blanks at a line's end, too
    bool FMarkEqualWords = false;  ///< a window marks the word at the caret wherever it stands
    void TurnOnComforts();

    bool FCodeFolding = false; ///< change through TMemoFolding::SetEnabled
    TSelectionMode FSelectionMode = smText;
    TScrollBars FScrollBars = sbBoth;
    TScrollMode FScrollMode = smAuto;
    TEditCharCase FCharCase = ecNormal;
    TWordWrapStyle FWordWrap = wwNone; ///< change through TAdvCustomMemo::SetWordWrap
    int FRightMargin = 80;             ///< columns
    string FWordBreaks;                ///< what ends words for the caret; empty: the styler's symbols
};

inline void TMemoSettings::TurnOnComforts() {
    for (bool* comfort : {&FGuardFolds, &FMoreKeys, &FIndentSelection, &FIndentBlocks, &FCloseBrackets,
                          &FSmartHome, &FRightOverBlanks, &FMarkEqualWords})
        *comfort = true;
}
