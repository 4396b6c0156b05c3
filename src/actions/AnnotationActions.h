#pragma once
// Actions that put an annotation on the current page.
#include "actions/Action.h"

class TPDFActionAddNoteAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddNoteAnnotation() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(TColor, Color, FColor) = 0x000000FF;
};

class TPDFActionAddStampAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddStampAnnotation() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(string, Text, FText);
    PUBLISHED(string, Subject, FSubject);
    PUBLISHED(TColor, baseColor, FbaseColor) = 0x00416A1C;
    PUBLISHED(TColor, BgGradientStartColor, fBgGradientStartColor) = 0x00C7E0C6;
    PUBLISHED(TColor, BgGradientEndColor, fBgGradientEndColor) = 0x00F2F7EB;
};

class TPDFActionAddFileAttachAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddFileAttachAnnotation() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(TFileName, Filename, FFilename);
};

class TPDFActionAddLinkAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddLinkAnnotation() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(Single, width, Fwidth) = 0;
    PUBLISHED(Single, height, Fheight) = 0;
    PUBLISHED(Integer, pageNum, FpageNum) = 0;
};

/// Does nothing, on purpose: no document method has its name, and lists that hold it count with that. A
/// script reaches AddWebAnnotation.
class TPDFActionAddWebLinkAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddWebLinkAnnotation() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(Single, width, Fwidth) = 0;
    PUBLISHED(Single, height, Fheight) = 0;
    PUBLISHED(string, uri, Furi);
};

class TPDFActionAddFreeTextAnnotation : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddFreeTextAnnotation() = default;
    PUBLISHED(string, Text, FText);
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(Single, width, Fwidth) = 0;
    PUBLISHED(Single, height, Fheight) = 0;
};
