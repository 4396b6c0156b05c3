#pragma once
// Actions that change the page set. Their meaning is that of the script document's methods.
#include "actions/Action.h"
#include "engine/pdf/Types.h"

/// Always raises: the document's method asks for "AWidth", and the member is called `width`. That is the
/// format of existing lists; a script can insert pages.
class TPDFActionInsertPages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionInsertPages() = default;
    PUBLISHED(Integer, Index, FIndex) = 1;
    PUBLISHED(Integer, Count, FCount) = 1;
    PUBLISHED(Single, width, Fwidth) = 595;
    PUBLISHED(Single, height, Fheight) = 842;
    PUBLISHED(bool, BeforeCurrentPage, FBeforeCurrentPage) = false;
};

class TPDFActionDeletePages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionDeletePages() = default;
    PUBLISHED(Integer, Index, FIndex) = 1;
    PUBLISHED(Integer, Count, FCount) = 1;
};

class TPDFActionDeletePagesEx : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionDeletePagesEx() = default;
    PUBLISHED(string, pageRange, FPageRange) = QStringLiteral("1");
};

class TPDFActionExtractPages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionExtractPages() = default;
    PUBLISHED(string, pageRange, FPageRange);
    PUBLISHED(string, fileName, FfileName);
    PUBLISHED(bool, OverwriteExisting, FOverwriteExisting) = false;
};

class TPDFActionCropPages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionCropPages() = default;
    PUBLISHED(string, pageRange, FText);
    PUBLISHED(Single, top, Ftop) = 0;
    PUBLISHED(Single, left, Fleft) = 0;
    PUBLISHED(Single, right, Fright) = 0;
    PUBLISHED(Single, bottom, Fbottom) = 0;
};

/// A password for the imported file cannot be given.
class TPDFActionImportPages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionImportPages() = default;
    PUBLISHED(TFileName, fileName, FfileName);
    PUBLISHED(string, pageRange, fpageRange);
    PUBLISHED(bool, insertAfter, finsertAfter) = true;
    PUBLISHED(TZQPDFPagePosition, pagePosition, FpagePosition) = TZQPDFPagePosition::ppCurrent;
};

class TPDFActionRotatePages : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionRotatePages() = default;
    PUBLISHED(string, pageRange, FText);
    PUBLISHED(Integer, Angle, FAngle) = 90;
};
