#pragma once
// TLineProp: everything that belongs to one line besides its text.
#include "editor/text/IntList.h"

#include <memory>

class TLineProp;

/// What a caller may attach to a line. Attached objects are borrowed.
class TLineObject {
public:
    virtual ~TLineObject() = default;
    [[nodiscard]] virtual TLineProp* AsLineProp() { return nullptr; }
};

enum TLineModifiedState { lmUnmodified, lmModified, lmSaved };

/// The syntax state at a point of the text.
struct TStyle {
    bool isComment = false;
    bool isBracket = false;
    bool isnumber = false;
    bool iskeyWord = false;
    bool isdelimiter = false;
    bool isURL = false;
    bool isHighlight = false;
    char16_t EndBracket = 0;
    char16_t StartBracket = 0;
    Integer index = 0;
    bool operator==(const TStyle&) const = default;
};

class TLineProp final : public TLineObject {
public:
    [[nodiscard]] TLineProp* AsLineProp() override { return this; }

    /// Columns and lengths of error marks; null until CreateErrorInfo.
    std::unique_ptr<TIntList> FErrStart;
    std::unique_ptr<TIntList> FErrLen;
    [[nodiscard]] bool HasErrorInfo() const { return FErrStart != nullptr; }
    void CreateErrorInfo() {
        FErrStart = std::make_unique<TIntList>();
        FErrLen = std::make_unique<TIntList>();
    }
    void DropErrorInfo() {
        FErrStart.reset();
        FErrLen.reset();
    }

    TLineObject* FObject = nullptr;  ///< the caller's object, borrowed
    bool FExpanded = true;           ///< a fold that starts here is open
    Integer FLastChildOfParents = 0; ///< above 0: this line ends that many folds
    bool FHasParent = false;         ///< the line lies inside a fold
    bool FHasChildren = false;       ///< a fold starts here
    bool BreakPoint = false;
    bool Executable = false;
    TLineModifiedState Modified = lmUnmodified;
    Integer ImageIndex = -1; ///< gutter image
    bool Bookmark = false;
    Integer BookmarkIndex = 0;
    TStyle Style;             ///< the cached syntax state at the line
    bool CachedStyle = false; ///< Style is valid
    bool Wrapped = false;     ///< a continuation of the line before it, made by word wrap
    size_t FListIndex = 0;    ///< where the store that owns this object lists it
};
